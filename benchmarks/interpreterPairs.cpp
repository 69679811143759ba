// SPDX-License-Identifier: MIT
//
// An interpreter run over the sample model beside the replay of the very commands it sends; and
// what an object costs as the schema directory grows.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "generatedSchemas.h"
#include "pairs.h"
#include "results.h"
#include "storeSetup.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

namespace fs = std::filesystem;

constexpr char kSchemaFolder[] = "/tmp/FOSS_schema";
constexpr char kConfiguration[] = "/tmp/etc/SchemaURIConf.json";
constexpr char kRootSchema[] = "ServiceRoot.v1_0_0.json";

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

// The sample model and its configuration, at the places where a run reads them.
void InstallSampleModel() {
  if (fs::exists(kSchemaFolder)) { return; }
  fs::create_directories("/tmp/etc");
  fs::copy(ZEPHLANE_SCHEMAS, kSchemaFolder);
  fs::rename(std::string(kSchemaFolder) + "/SchemaURIConf.json", kConfiguration);
}

void EmptyStore(redisContext* ctx) {
  Ask(ctx, "FLUSHALL");
}

void Interpret(const std::string& root) {
  const QuietOutput quiet;
  const std::string path = std::string(kSchemaFolder) + "/" + root;
  if (zephlaneSchemaInterpreter(path.c_str()) != 0) { std::exit(1); }
}

// About as many objects as the generated sets of schema files make.
constexpr std::array<unsigned int, 6> kObjectCounts = {500, 1500, 2500, 3500, 4500, 5500};

struct Run {
  double seconds;
  double objects;
};

Run RunOver(const std::string& root) {
  EmptyStore(SharedConnection());
  const auto start = std::chrono::steady_clock::now();
  Interpret(root);
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
  InterpreterProgress progress{};
  zephlaneSchemaInterpreterProgress(&progress);
  return {taken.count(), static_cast<double>(progress.nObjects)};
}

// Each repetition goes over all sizes, so that drift hits them alike.
void MeasureSizes(benchmark::State& state) {
  InstallSampleModel();
  std::array<std::string, kObjectCounts.size()> roots;
  for (std::size_t i = 0; i < roots.size(); ++i) {
    roots[i] = GenerateSchemas(kSchemaFolder, kObjectCounts[i]);
  }
  for (auto _ : state) {
    double seconds = 0;
    for (std::size_t i = 0; i < kObjectCounts.size(); ++i) {
      const Run run = RunOver(roots[i]);
      state.counters[kObjectsCounter + std::to_string(i)] = run.objects;
      state.counters[kSecondsCounter + std::to_string(i)] = run.seconds;
      seconds += run.seconds;
    }
    state.SetIterationTime(seconds);
  }
}

}  // namespace

void AddInterpreterPairs() {
  AddPair({.family = "interpreter",
           .function = "zephlaneSchemaInterpreter",
           .allowed = kSequence,
           .library = [](redisContext* /*ctx*/) { Interpret(kRootSchema); },
           .prepare =
               [](redisContext* ctx) {
                 InstallSampleModel();
                 EmptyStore(ctx);
               },
           .connects = true});
  benchmark::RegisterBenchmark("interpreter/cost per object", MeasureSizes)
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(11)
      ->Unit(benchmark::kMicrosecond);
}

}  // namespace zephlane::bench
