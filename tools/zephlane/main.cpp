// SPDX-License-Identifier: MIT
//
// zephlane VERB ...: chooses the verb and turns its result into the exit code.
#include <csignal>
#include <exception>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include "console.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr char kDescription[] =
    "Looks into the resource model that libzephlaneAPI keeps in the local Redis server,\n"
    "and internalises schema files into it.";
constexpr char kFooter[] =
    "Data goes to standard output, messages to standard error.\n"
    "Exit code: 0 done, 1 failed, 2 bad usage.\n"
    "The server is the one at 127.0.0.1:6379, its password is in /tmp/redis.requirepass.\n\n"
    "zephlane VERB --help says more about a verb.";

std::string BadUsage(const CLI::App* app, const CLI::Error& error) {
  std::string verb;
  const CLI::App* last = app;
  while (!last->get_subcommands().empty()) {
    last = last->get_subcommands().front();
    verb += last->get_name() + " ";
  }
  const bool no_verb =
      last->get_require_subcommand_min() > 0 && error.get_name() == "RequiredError";
  return fmt::format("zephlane: {}\nRun zephlane {}--help for more.\n",
                     no_verb ? "A verb is required" : error.what(), verb);
}

void Describe(CLI::App& app, Verb& run) {
  app.require_subcommand(1);
  app.get_formatter()->label("SUBCOMMAND", "VERB ...");
  app.set_version_flag("--version", std::string("zephlane " ZEPHLANE_VERSION));
  app.footer(kFooter);
  app.failure_message(BadUsage);
  for (auto* add : {AddInterpret, AddTree, AddGet, AddType, AddUuid, AddAnnotate, AddValidate,
                    AddRm, AddTask, AddHook, AddEvent, AddWatch}) {
    add(app, run);
  }
  for (CLI::App* verb : app.get_subcommands({})) { verb->group("Verbs"); }
}

// Help and the version are data that was asked for; everything else is bad usage.
int AfterParsing(const CLI::App& app, const CLI::ParseError& error, Console& console) {
  std::ostringstream data;
  std::ostringstream messages;
  const int code = app.exit(error, data, messages);
  std::string text = data.str();
  // Only some releases of CLI11 end the version in a newline.
  if (!text.empty() && text.back() != '\n') { text += '\n'; }
  console.Out(text);
  console.Err(messages.str());
  return code == 0 ? kExitDone : kExitBadUsage;
}

int ParseAndRun(int argc, char** argv, Console& console) {
  CLI::App app(kDescription, "zephlane");
  Verb run;
  Describe(app, run);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) { return AfterParsing(app, error, console); }
  return run(console);
}

int Main(int argc, char** argv) {
  // A reader that is gone and a server that is gone show as failed writes.
  (void)std::signal(SIGPIPE, SIG_IGN);
  Console console;
  int code = kExitFailed;
  try {
    code = ParseAndRun(argc, argv, console);
  } catch (const std::exception& error) { console.Tell(error.what()); }
  return console.OutFailed() ? kExitFailed : code;
}

}  // namespace

}  // namespace zephlane::tool

int main(int argc, char** argv) {
  return zephlane::tool::Main(argc, argv);
}
