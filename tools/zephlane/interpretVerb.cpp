// SPDX-License-Identifier: MIT
//
// interpret: internalises schema files, shows progress meanwhile and a summary at the end.
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include <fmt/format.h>

#include "plainText.h"
#include "relay.h"
#include "runText.h"
#include "session.h"
#include "storeCount.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr char kSchemaDirectory[] = "/tmp/FOSS_schema/";
constexpr char kConfiguration[] = "/tmp/etc/SchemaURIConf.json";
constexpr char kFooter[] =
    "Needs a Redis server and the configuration /tmp/etc/SchemaURIConf.json, which names the\n"
    "schema locations. ROOT lies in /tmp/FOSS_schema/, or in the working directory and is given "
    "by\n"
    "its name alone; the files that it refers to are read from the same directory.\n"
    "Schemas are interpreted once: a second run finds them in the store and writes nothing.\n\n"
    "Example:\n"
    "  zephlane interpret /tmp/FOSS_schema/ServiceRoot.v1_0_0.json";

bool CanRead(const std::string& path) {
  if (access(path.c_str(), R_OK) != 0) { return false; }
  std::error_code error;
  if (!std::filesystem::is_directory(path, error)) { return true; }
  errno = EISDIR;
  return false;
}

bool HasItsFiles(Console& console, const std::string& root) {
  const bool has_root = CanRead(root);
  if (!has_root) {
    console.Tell(fmt::format("The root schema file {} cannot be read: {}.", Printable(root),
                             std::strerror(errno)));
  }
  const bool has_configuration = CanRead(kConfiguration);
  if (!has_configuration) {
    console.Tell(
        fmt::format("The schema locations in {} cannot be read: {}.\n"
                    "  Write them:   mkdir -p /tmp/etc\n"
                    "                echo '{{\"DmtfSchemaUri\": \"http://schemas.example.com/\"}}' "
                    "> {}",
                    kConfiguration, std::strerror(errno), kConfiguration));
  }
  return has_root && has_configuration;
}

RunCounts CountsNow() {
  InterpreterProgress progress{};
  zephlaneSchemaInterpreterProgress(&progress);
  return {progress.nFiles, progress.nObjects, progress.nReferences};
}

// The run itself: all it prints goes through the relay. One that finds its work done prints nothing
// and needs no progress.
int RunInterpreter(Console& console, bool was_interpreted, RunSummary& summary) {
  const auto start = Clock::now();
  const auto elapsed = [start] {
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - start);
  };
  std::optional<Relay> relay;
  if (!was_interpreted) {
    relay.emplace(console, [elapsed] { return ProgressText(CountsNow(), elapsed()); });
  }
  const int result = zephlaneSchemaInterpreter(summary.root.c_str());
  summary.elapsed = elapsed();
  return result;
}

// The library accepts a root schema file by the directory that is written before its name.
void TellWhereRootMayLie(Console& console, const std::string& root) {
  const std::string directory = root.substr(0, root.rfind('/') + 1);
  if (directory.empty() || directory == kSchemaDirectory ||
      isValidDmtfURL(directory.c_str()) == 1) {
    return;
  }
  console.Tell(
      fmt::format("The root schema file may lie in {}, or in the working directory and be given by "
                  "its name alone, but not in {}.",
                  kSchemaDirectory, Printable(directory)));
}

int Interpret(Console& console, const std::string& root) {
  if (!HasItsFiles(console, root)) { return kExitFailed; }
  RunSummary summary;
  summary.root = root;
  // The run makes a connection of its own; this one may time out meanwhile, so it is not kept.
  bool was_interpreted = false;
  {
    const Session session = OpenSession(console);
    if (!session) { return kExitFailed; }
    was_interpreted = isSchemaInterpreted(session.get()) == 1;
  }
  const bool done = RunInterpreter(console, was_interpreted, summary) == 0;
  if (!done) { TellWhereRootMayLie(console, root); }
  summary.result = !done             ? RunResult::kFailed
                   : was_interpreted ? RunResult::kAlreadyInterpreted
                                     : RunResult::kInterpreted;
  summary.counts = CountsNow();
  summary.sets = CountRecordedSets();
  if (const Session session = OpenSession(console)) { summary.store = CountStore(session.get()); }
  console.Out(SummaryText(summary));
  return done ? kExitDone : kExitFailed;
}

}  // namespace

void AddInterpret(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand(
      "interpret", "Internalise a schema file and all that it refers to into the store");
  sub->footer(kFooter);
  const auto root = std::make_shared<std::string>();
  sub->add_option("ROOT", *root, "Root schema file")->required();
  sub->callback(
      [&run, root] { run = [root](Console& console) { return Interpret(console, *root); }; });
}

}  // namespace zephlane::tool
