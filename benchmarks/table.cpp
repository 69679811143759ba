// SPDX-License-Identifier: MIT
//
// The results as a document in Markdown.
#include <cstdio>
#include <memory>
#include <string>

#include "results.h"

namespace zephlane::bench {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const noexcept {
    (void)std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

void WriteIntroduction(std::FILE* out, const std::string& machine) {
  (void)std::fprintf(
      out,
      "# Benchmarks\n\n"
      "What the library costs over raw hiredis. Each function runs beside raw hiredis, which sends "
      "the very same commands on the same connection from argument vectors laid out beforehand, "
      "and frees the replies unread. Both take turns in small batches in one run. A ratio is the "
      "library's time divided by raw hiredis's, each the median of its batches; shown is the "
      "median over the repetitions, with the quartiles around it. Where names are drawn under a "
      "lock, raw hiredis takes the same lock.\n\n"
      "Written by `./bench`, which repeats all of it. Measured on: %s.\n\n"
      "![ratios by function](benchmarks.svg)\n\n",
      machine.c_str());
}

void WritePairs(std::FILE* out, const Results& results) {
  (void)std::fputs(
      "| family | function | commands | library | raw hiredis | ratio | quartiles | allowed | "
      "within |\n|---|---|--:|--:|--:|--:|---|--:|---|\n",
      out);
  for (const PairResult& pair : results.pairs) {
    (void)std::fprintf(
        out, "| %s | %s | %.0f | %.1f us | %.1f us | **%.3f** | %.3f to %.3f | %.2f | %s |\n",
        pair.family.c_str(), pair.function.c_str(), pair.commands,
        1e6 * Quantile(pair.library_seconds, 0.5), 1e6 * Quantile(pair.raw_seconds, 0.5),
        pair.Ratio(), Quantile(pair.ratios, 0.25), Quantile(pair.ratios, 0.75), pair.allowed,
        pair.IsWithin() ? "yes" : "no");
  }
  (void)std::fputs(
      "\n`zephlaneCreateMultipleObjects` is measured against the same commands in one raw "
      "pipeline; "
      "its limit stands for 0.85 of that throughput.\n",
      out);
}

void WriteSizes(std::FILE* out, const Results& results) {
  if (results.sizes.empty()) { return; }
  (void)std::fputs(
      "\n## Cost per object\n\n"
      "What an object costs in an interpreter run, over generated schema directories whose files "
      "are all alike; each repetition goes over all sizes.\n\n"
      "| objects recorded | time per object |\n|--:|--:|\n",
      out);
  for (const SizeResult& size : results.sizes) {
    (void)std::fprintf(out, "| %.0f | %.2f us |\n", size.objects, size.Microseconds());
  }
  (void)std::fprintf(
      out,
      "\nThe dearest is %.3f of the cheapest (allowed: %.2f). From the smallest directory to the "
      "largest the cost per object changes by %+.1f %% along the line that fits best.\n",
      results.CostSpread(), kAllowedCostSpread, 100 * results.CostSlope());
}

}  // namespace

bool WriteTable(const Results& results, const std::string& machine, const std::string& path) {
  const File out(std::fopen(path.c_str(), "w"));
  if (!out) { return false; }
  WriteIntroduction(out.get(), machine);
  WritePairs(out.get(), results);
  WriteSizes(out.get(), results);
  return std::ferror(out.get()) == 0;
}

}  // namespace zephlane::bench
