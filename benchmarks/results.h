// SPDX-License-Identifier: MIT
//
// What the benchmarks measured, and where it goes: the terminal, a table and a plot.
#pragma once

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zephlane::bench {

// Counters by which a benchmark hands over what one repetition measured.
inline constexpr char kLibraryCounter[] = "library";
inline constexpr char kRawCounter[] = "raw";
inline constexpr char kCommandsCounter[] = "commands";
inline constexpr char kObjectsCounter[] = "objects";
inline constexpr char kSecondsCounter[] = "seconds";

// The share `part` of the values lies below it; 0.5 gives the median.
double Quantile(std::vector<double> values, double part);

// One function beside raw hiredis; a value of each repetition.
struct PairResult {
  std::string family;
  std::string function;
  double allowed;
  double commands = 0;
  std::vector<double> library_seconds = {};
  std::vector<double> raw_seconds = {};
  std::vector<double> ratios = {};

  [[nodiscard]] double Ratio() const {
    return Quantile(ratios, 0.5);
  }
  [[nodiscard]] bool IsWithin() const {
    return Ratio() <= allowed;
  }
};

// Interpreter runs over schema directories of one size.
struct SizeResult {
  double objects = 0;
  std::vector<double> seconds_per_object = {};

  [[nodiscard]] double Microseconds() const {
    return 1e6 * Quantile(seconds_per_object, 0.5);
  }
};

struct Results {
  std::vector<PairResult> pairs;  // in the order in which they were measured
  std::vector<SizeResult> sizes;

  [[nodiscard]] bool AreWithin() const;
  // Dearest over cheapest cost per object; 1 when none was measured.
  [[nodiscard]] double CostSpread() const;
  // Growth of the cost per object from the smallest to the largest directory along the line that
  // fits best, as a share of the cost at its beginning.
  [[nodiscard]] double CostSlope() const;
};

inline constexpr double kAllowedCostSpread = 1.10;

// Names a pair and its limit before it is measured.
void Announce(const std::string& family, const std::string& function, double allowed);

// Collects what is measured, and prints a line for each benchmark when it is done.
class ResultReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  [[nodiscard]] const Results& Collected() const noexcept {
    return results_;
  }

 private:
  void AddSizes(const Run& run);

  Results results_;
};

// `machine` says on what was measured, in one line.
bool WriteTable(const Results& results, const std::string& machine, const std::string& path);
bool WritePlot(const Results& results, const std::string& path);

}  // namespace zephlane::bench
