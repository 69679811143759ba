// SPDX-License-Identifier: MIT
//
// What is said about a run of the interpreter: its progress in a line, its end in a summary.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace zephlane::tool {

struct RunCounts {
  std::size_t files = 0;
  std::size_t objects = 0;
  std::size_t references = 0;
};

struct StoreCounts {
  std::size_t hashes = 0;
  std::size_t sets = 0;
  std::size_t lists = 0;
  std::size_t others = 0;
};

enum class RunResult { kInterpreted, kAlreadyInterpreted, kFailed };

struct RunSummary {
  RunResult result = RunResult::kFailed;
  std::string root;
  RunCounts counts;
  std::size_t sets = 0;  // of the objects; the others are hashes
  std::chrono::milliseconds elapsed{0};
  std::optional<StoreCounts> store;  // none when the store could not be read
};

// The hash whose presence says that the schemas are in the store.
inline constexpr char kInterpretedMark[] = "00000000-0000-0000-0001-ffffffffffff";

[[nodiscard]] std::string ProgressText(const RunCounts& counts, std::chrono::milliseconds elapsed);
[[nodiscard]] std::string SummaryText(const RunSummary& summary);

}  // namespace zephlane::tool
