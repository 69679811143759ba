// SPDX-License-Identifier: MIT
//
// costTable CALL-GRAPHS FILE: writes the cost of a call of every exported function to FILE. It
// needs a Redis server of its own: start it below zephlane-private-redis.
#include <signal.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include <hiredis/hiredis.h>

#include "cost/callCounts.h"
#include "cost/callGraph.h"
#include "faults/everyFunction.h"
#include "redis/reply.h"

#include <zephlaneAPI/connection.h>

namespace zephlane::cost {

namespace {

using test::FunctionCase;

constexpr char kIntroduction[] = R"(# What a call costs

One successful call of every exported function: the commands that it has the server do, the times
that it sends and waits for what comes back, the allocations made by the library itself (not by
hiredis and Jansson), and the largest stack frame, in bytes, among the function and all functions of
the library that it leads to. Where the cost depends on how much there is to do, the call is a small
one: `tests/faults/` holds each call with the store it is made on. Frames are those of a release
build by g++ 12 for x86-64.

This file is written by a program, and `.ci/run` checks that it is what the program writes. After a
change that is meant to alter it:

    cmake --preset dev && cmake --build build/dev --target cost-table
)";

constexpr char kColumns[] =
    "| function | commands | round trips | allocations | largest frame |\n"
    "|---|--:|--:|--:|--:|\n";

// The number behind `name` in a line such as "cmdstat_get:calls=1,usec=9,...,rejected_calls=0,...".
int Figure(const std::string& line, const std::string& name) {
  const std::size_t at = line.find(name);
  return at == std::string::npos ? 0 : std::stoi(line.substr(at + name.size()));
}

// What the server was sent, without what was sent for asking it.
int CountedCommands(redisContext* store) {
  const Reply reply(redisCommand(store, "INFO commandstats"));
  if (!reply.Is(REDIS_REPLY_STRING)) { return -1; }
  std::istringstream lines{std::string(reply.Text())};
  int commands = 0;
  for (std::string line; std::getline(lines, line);) {
    const bool is_own = line.starts_with("cmdstat_config") || line.starts_with("cmdstat_info");
    if (!is_own) { commands += Figure(line, ":calls=") + Figure(line, ",rejected_calls="); }
  }
  return commands;
}

class Table {
 public:
  Table(redisContext* ctx, redisContext* store, const CallGraph& graph)
      : stage_{ctx, store}, graph_(graph) {}

  // False when the call did not succeed or no frame is known.
  bool Add(const FunctionCase& function) {
    test::Prepare(function, stage_);
    const Reply reset(redisCommand(stage_.store, "CONFIG RESETSTAT"));
    CallCounts counts;
    const test::Outcome outcome = function.call(stage_);
    counts.Stop();
    const int commands = CountedCommands(stage_.store);
    test::Finish(function, stage_);
    const int frame = graph_.LargestFrame(function.name);
    text_ << "| `" << function.name << "` | " << commands << " | " << counts.RoundTrips() << " | "
          << counts.Allocations() << " | " << frame << " |\n";
    return outcome.result == test::Result::kSuccess && frame > 0;
  }

  // False when one of them gave no figures.
  bool AddAll() {
    bool all_succeed = true;
    text_ << kIntroduction;
    for (const test::FunctionFamily& family : test::EveryFunction()) {
      text_ << "\n## " << family.name << "\n\n" << kColumns;
      for (const FunctionCase& function : family.cases) {
        if (Add(function)) { continue; }
        (void)std::fprintf(stderr, "%s: the call failed, or its frame is unknown\n", function.name);
        all_succeed = false;
      }
    }
    return all_succeed;
  }

  [[nodiscard]] std::string Text() const {
    return text_.str();
  }

 private:
  test::Stage stage_;
  const CallGraph& graph_;
  std::ostringstream text_;
};

int Run(const char* call_graphs, const char* file) {
  redisContext* ctx = zephlaneRedisConnect();
  redisContext* store = zephlaneRedisConnect();
  if (ctx == nullptr || store == nullptr) { return 1; }
  const CallGraph graph(call_graphs);
  Table table(ctx, store, graph);
  const bool all_succeed = table.AddAll();
  std::ofstream stream(file);
  stream << table.Text();
  stream.close();
  (void)zephlaneRedisDisconnect(ctx);
  (void)zephlaneRedisDisconnect(store);
  return all_succeed && stream ? 0 : 1;
}

}  // namespace

}  // namespace zephlane::cost

int main(int argc, char** argv) {
  if (argc != 3) {
    (void)std::fprintf(stderr, "usage: %s CALL-GRAPHS FILE\n", argv[0]);
    return 2;
  }
  (void)signal(SIGPIPE, SIG_IGN);
  (void)std::freopen("/dev/null", "w", stdout);  // what the calls print is of no interest
  return zephlane::cost::Run(argv[1], argv[2]);
}
