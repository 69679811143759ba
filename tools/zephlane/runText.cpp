// SPDX-License-Identifier: MIT
#include "runText.h"

#include <fmt/format.h>

#include "plainText.h"

namespace zephlane::tool {

namespace {

std::string Seconds(std::chrono::milliseconds elapsed) {
  return fmt::format("{:.2f} s", std::chrono::duration<double>(elapsed).count());
}

const char* ResultText(RunResult result) {
  switch (result) {
    case RunResult::kInterpreted:
      return "interpreted";
    case RunResult::kAlreadyInterpreted:
      return "already interpreted; nothing was written";
    case RunResult::kFailed:
      break;
  }
  return "failed; what was written before stays in the store";
}

std::string RunLines(const RunSummary& summary) {
  const RunCounts& counts = summary.counts;
  return fmt::format(
      "Files:       {}\n"
      "Objects:     {} ({}, {})\n"
      "References:  {}\n"
      "Elapsed:     {}\n",
      counts.files, counts.objects, Counted(counts.objects - summary.sets, "hash", "hashes"),
      Counted(summary.sets, "set", "sets"), counts.references, Seconds(summary.elapsed));
}

std::string StoreLine(const std::optional<StoreCounts>& store) {
  if (!store) { return "In store:    unknown\n"; }
  return fmt::format(
      "In store:    {} ({}, {}, {}, {})\n",
      Counted(store->hashes + store->sets + store->lists + store->others, "key", "keys"),
      Counted(store->hashes, "hash", "hashes"), Counted(store->sets, "set", "sets"),
      Counted(store->lists, "list", "lists"), Counted(store->others, "other", "others"));
}

}  // namespace

std::string ProgressText(const RunCounts& counts, std::chrono::milliseconds elapsed) {
  return fmt::format("Interpreting: {}, {}, {}, {}", Counted(counts.files, "file", "files"),
                     Counted(counts.objects, "object", "objects"),
                     Counted(counts.references, "reference", "references"), Seconds(elapsed));
}

std::string SummaryText(const RunSummary& summary) {
  std::string text = fmt::format("Result:      {}\nRoot:        {}\n", ResultText(summary.result),
                                 Printable(summary.root));
  const bool ran = summary.result != RunResult::kAlreadyInterpreted;
  if (ran) { text += RunLines(summary); }
  text += StoreLine(summary.store);
  if (!ran) {
    text += fmt::format(
        "\nTo interpret anew, delete the hash {} and run this again:\n"
        "  REDISCLI_AUTH=\"$(cat /tmp/redis.requirepass)\" redis-cli DEL {}\n",
        kInterpretedMark, kInterpretedMark);
  }
  return text;
}

}  // namespace zephlane::tool
