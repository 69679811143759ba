// SPDX-License-Identifier: MIT
//
// An interpreter run over the sample model against the replay of the very commands it sends.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "commandRecord.h"
#include "pairs.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kRootSchema[] = "/tmp/FOSS_schema/ServiceRoot.v1_0_0.json";

// Sends standard output elsewhere while it lives: a run prints its root hash.
class QuietOutput {
 public:
  QuietOutput() : saved_(dup(STDOUT_FILENO)) {
    (void)std::fflush(stdout);
    const int nowhere = open("/dev/null", O_WRONLY);
    (void)dup2(nowhere, STDOUT_FILENO);
    (void)close(nowhere);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;
  ~QuietOutput() {
    (void)std::fflush(stdout);
    (void)dup2(saved_, STDOUT_FILENO);
    (void)close(saved_);
  }

 private:
  int saved_;
};

void InstallSchemas() {
  namespace fs = std::filesystem;
  fs::create_directories("/tmp/etc");
  fs::copy(ZEPHLANE_SCHEMAS, "/tmp/FOSS_schema");
  fs::rename("/tmp/FOSS_schema/SchemaURIConf.json", "/tmp/etc/SchemaURIConf.json");
}

void EmptyStore() {
  redisContext* ctx = zephlaneRedisConnect();
  freeReplyObject(redisCommand(ctx, "FLUSHALL"));
  (void)zephlaneRedisDisconnect(ctx);
}

void RunInterpreter() {
  const QuietOutput quiet;
  if (zephlaneSchemaInterpreter(kRootSchema) != 0) { std::exit(1); }
}

double SecondsOf(const std::function<void()>& body) {
  EmptyStore();
  const auto start = std::chrono::steady_clock::now();
  body();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

void AddInterpreterPair() {
  InstallSchemas();
  EmptyStore();
  static const std::vector<CommandWords> commands = RecordCommands(RunInterpreter);
  std::printf("an interpreter run over the sample model sends %zu commands\n", commands.size());
  AddTimedPair(
      "zephlaneSchemaInterpreter", 1.10, [] { return SecondsOf(RunInterpreter); },
      [] {
        return SecondsOf([] {
          redisContext* ctx = zephlaneRedisConnect();
          Replay(ctx, commands);
          (void)zephlaneRedisDisconnect(ctx);
        });
      });
}

}  // namespace zephlane::bench
