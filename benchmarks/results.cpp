// SPDX-License-Identifier: MIT
#include "results.h"

#include <algorithm>
#include <cstdio>
#include <map>

namespace zephlane::bench {

namespace {

std::map<std::string, PairResult>& Announced() {
  static std::map<std::string, PairResult> pairs;
  return pairs;
}

double CounterOf(const benchmark::BenchmarkReporter::Run& run, const std::string& name) {
  const auto counter = run.counters.find(name);
  return counter == run.counters.end() ? 0 : counter->second.value;
}

void Print(const PairResult& pair) {
  std::printf("%-36s %8.0f %12.2f %12.2f %8.3f %8.3f%s\n", pair.function.c_str(), pair.commands,
              1e6 * Quantile(pair.library_seconds, 0.5), 1e6 * Quantile(pair.raw_seconds, 0.5),
              pair.Ratio(), pair.allowed, pair.IsWithin() ? "" : "  above");
  (void)std::fflush(stdout);
}

void Print(const std::vector<SizeResult>& sizes) {
  for (const SizeResult& size : sizes) {
    std::printf("cost per object of %5.0f objects: %8.2f us\n", size.objects, size.Microseconds());
  }
}

}  // namespace

double Quantile(std::vector<double> values, double part) {
  if (values.empty()) { return 0; }
  std::sort(values.begin(), values.end());
  return values[static_cast<std::size_t>(part * static_cast<double>(values.size() - 1) + 0.5)];
}

bool Results::AreWithin() const {
  return std::all_of(pairs.begin(), pairs.end(),
                     [](const PairResult& pair) { return pair.IsWithin(); }) &&
         CostSpread() <= kAllowedCostSpread;
}

double Results::CostSpread() const {
  if (sizes.empty()) { return 1; }
  const auto [cheapest, dearest] =
      std::minmax_element(sizes.begin(), sizes.end(), [](const auto& left, const auto& right) {
        return left.Microseconds() < right.Microseconds();
      });
  return dearest->Microseconds() / cheapest->Microseconds();
}

double Results::CostSlope() const {
  if (sizes.empty()) { return 0; }
  double objects = 0;
  double cost = 0;
  for (const SizeResult& size : sizes) {
    objects += size.objects / static_cast<double>(sizes.size());
    cost += size.Microseconds() / static_cast<double>(sizes.size());
  }
  double products = 0;
  double squares = 0;
  for (const SizeResult& size : sizes) {
    products += (size.objects - objects) * (size.Microseconds() - cost);
    squares += (size.objects - objects) * (size.objects - objects);
  }
  const double slope = products / squares;
  const double at_begin = cost + slope * (sizes.front().objects - objects);
  return slope * (sizes.back().objects - sizes.front().objects) / at_begin;
}

void Announce(const std::string& family, const std::string& function, double allowed) {
  Announced().emplace(family + "/" + function, PairResult{family, function, allowed});
}

bool ResultReporter::ReportContext(const Context& /*context*/) {
  std::printf("%-36s %8s %12s %12s %8s %8s\n", "function", "commands", "library us", "hiredis us",
              "ratio", "allowed");
  return true;
}

void ResultReporter::ReportRuns(const std::vector<Run>& runs) {
  PairResult* pair = nullptr;
  bool has_sizes = false;
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration || run.error_occurred) { continue; }
    const auto announced = Announced().find(run.run_name.function_name);
    if (announced == Announced().end()) {
      AddSizes(run);
      has_sizes = true;
      continue;
    }
    if (pair == nullptr) { pair = &results_.pairs.emplace_back(announced->second); }
    const double library = CounterOf(run, kLibraryCounter);
    const double raw = CounterOf(run, kRawCounter);
    pair->commands = CounterOf(run, kCommandsCounter);
    pair->library_seconds.push_back(library);
    pair->raw_seconds.push_back(raw);
    pair->ratios.push_back(library / raw);
  }
  if (pair != nullptr) { Print(*pair); }
  if (has_sizes) { Print(results_.sizes); }
}

void ResultReporter::AddSizes(const Run& run) {
  for (std::size_t i = 0;; ++i) {
    const double objects = CounterOf(run, kObjectsCounter + std::to_string(i));
    if (objects == 0) { return; }
    if (results_.sizes.size() <= i) { results_.sizes.emplace_back(); }
    results_.sizes[i].objects = objects;
    results_.sizes[i].seconds_per_object.push_back(
        CounterOf(run, kSecondsCounter + std::to_string(i)) / objects);
  }
}

}  // namespace zephlane::bench
