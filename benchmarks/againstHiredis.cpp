// SPDX-License-Identifier: MIT
//
// Runs all pairs with repetitions in random order and prints the ratio of the medians. Exit code 1
// when a ratio is above what is allowed.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "pairs.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

std::map<std::string, double>& AllowedRatios() {
  static std::map<std::string, double> ratios;
  return ratios;
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values.empty() ? 0 : values[values.size() / 2];
}

// Collects the times of all repetitions and prints one line for each pair at the end.
class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override {
    return true;
  }
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration) {
        times_[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
      }
    }
  }
  [[nodiscard]] bool PrintRatios() const {
    std::printf("%-28s %14s %14s %8s %8s\n", "pair", "library", "raw hiredis", "ratio", "allowed");
    bool all_within = true;
    for (const auto& [name, allowed] : AllowedRatios()) {
      const double library = Median(times_.at(name + "/library"));
      const double raw = Median(times_.at(name + "/raw"));
      const double ratio = library / raw;
      all_within = all_within && ratio <= allowed;
      std::printf("%-28s %11.2f us %11.2f us %8.3f %8.2f%s\n", name.c_str(), library, raw, ratio,
                  allowed, ratio <= allowed ? "" : "  above");
    }
    return all_within;
  }

 private:
  std::map<std::string, std::vector<double>> times_;
};

// One connection for both sides, so that neither has a better one.
redisContext* SharedConnection() {
  static redisContext* ctx = zephlaneRedisConnect();
  return ctx;
}

}  // namespace

void AddPair(const std::string& name, double allowed_ratio,
             const std::function<void(redisContext*)>& library,
             const std::function<void(redisContext*)>& raw) {
  AllowedRatios()[name] = allowed_ratio;
  for (const auto& [side, body] : {std::pair("/library", library), std::pair("/raw", raw)}) {
    benchmark::RegisterBenchmark((name + side).c_str(),
                                 [body](benchmark::State& state) {
                                   redisContext* ctx = SharedConnection();
                                   FillStore(ctx);
                                   for (auto _ : state) { body(ctx); }
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
  }
}

void AddTimedPair(const std::string& name, double allowed_ratio,
                  const std::function<double()>& library, const std::function<double()>& raw) {
  AllowedRatios()[name] = allowed_ratio;
  for (const auto& [side, body] : {std::pair("/library", library), std::pair("/raw", raw)}) {
    benchmark::RegisterBenchmark((name + side).c_str(),
                                 [body](benchmark::State& state) {
                                   for (auto _ : state) { state.SetIterationTime(body()); }
                                 })
        ->Unit(benchmark::kMicrosecond)
        ->UseManualTime()
        ->Iterations(1);
  }
}

}  // namespace zephlane::bench

int main(int argc, char** argv) {
  // Defaults that a command line may override, as the last of two equal options counts.
  std::vector<std::string> words = {argv[0], "--benchmark_repetitions=25",
                                    "--benchmark_min_time=0.02",
                                    "--benchmark_enable_random_interleaving=true"};
  words.insert(words.end(), argv + 1, argv + argc);
  std::vector<char*> pointers;
  for (std::string& word : words) { pointers.push_back(word.data()); }
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  zephlane::bench::AddSingleCommandPairs();
  zephlane::bench::AddInterpreterPair();
  zephlane::bench::RatioReporter reporter;
  (void)benchmark::RunSpecifiedBenchmarks(&reporter);
  return reporter.PrintRatios() ? 0 : 1;
}
