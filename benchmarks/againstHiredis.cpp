// SPDX-License-Identifier: MIT
//
// zephlane-against-hiredis [--docs=FOLDER] [--benchmark_...]
//
// Measures every pair and prints the ratio of the library's time to raw hiredis's as the median
// over repetitions; writes FOLDER/benchmarks.md and .svg too. Exit code 1 when a ratio is above
// what is allowed.
#include <benchmark/benchmark.h>
#include <sys/utsname.h>

#include <cstdio>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "pairs.h"
#include "results.h"

namespace {

using zephlane::bench::Results;

constexpr std::string_view kDocsOption = "--docs=";

std::string ProcessorName() {
  std::ifstream info("/proc/cpuinfo");
  for (std::string line; std::getline(info, line);) {
    if (line.starts_with("model name")) { return line.substr(line.find(':') + 2); }
  }
  utsname names{};
  return uname(&names) == 0 ? names.machine : "an unknown processor";
}

std::string RedisVersion(redisContext* ctx) {
  constexpr std::string_view kLabel = "redis_version:";
  auto* reply = static_cast<redisReply*>(redisCommand(ctx, "INFO server"));
  const std::string text(reply->str, reply->len);
  freeReplyObject(reply);
  const std::size_t begin = text.find(kLabel) + kLabel.size();
  return text.substr(begin, text.find('\r', begin) - begin);
}

std::string Machine(redisContext* ctx) {
  return ProcessorName() + ", one of " + std::to_string(std::thread::hardware_concurrency()) +
         " processors, Redis " + RedisVersion(ctx) + ", hiredis " + std::to_string(HIREDIS_MAJOR) +
         "." + std::to_string(HIREDIS_MINOR) + ", g++ " + std::to_string(__GNUC__);
}

void AddAllPairs(redisContext* ctx) {
  zephlane::bench::AddSingleCommandPairs(ctx);
  zephlane::bench::AddReaderPairs(ctx);
  zephlane::bench::AddCreationPairs(ctx);
  zephlane::bench::AddSchemaPairs(ctx);
  zephlane::bench::AddServicePairs(ctx);
  zephlane::bench::AddInterpreterPairs();
}

bool WriteDocs(const Results& results, const std::string& machine, const std::string& folder) {
  return WriteTable(results, machine, folder + "/benchmarks.md") &&
         WritePlot(results, folder + "/benchmarks.svg");
}

// Takes our own option off the words; the folder it names, empty without it.
std::string TakeDocsFolder(std::vector<std::string>* words) {
  for (auto word = words->begin(); word != words->end(); ++word) {
    if (word->starts_with(kDocsOption)) {
      const std::string folder = word->substr(kDocsOption.size());
      words->erase(word);
      return folder;
    }
  }
  return "";
}

}  // namespace

int main(int argc, char** argv) {
  // Defaults that a command line may override, as the last of two equal options counts.
  std::vector<std::string> words = {argv[0], "--benchmark_repetitions=25",
                                    "--benchmark_min_time=0.02"};
  words.insert(words.end(), argv + 1, argv + argc);
  const std::string docs = TakeDocsFolder(&words);
  std::vector<char*> pointers;
  for (std::string& word : words) { pointers.push_back(word.data()); }
  int count = static_cast<int>(pointers.size());
  benchmark::Initialize(&count, pointers.data());
  if (benchmark::ReportUnrecognizedArguments(count, pointers.data())) { return 2; }
  redisContext* ctx = zephlane::bench::SharedConnection();
  if (ctx == nullptr) { return 2; }
  const std::string machine = Machine(ctx);
  AddAllPairs(ctx);
  zephlane::bench::ResultReporter reporter;
  (void)benchmark::RunSpecifiedBenchmarks(&reporter);
  const Results& results = reporter.Collected();
  if (!docs.empty() && !WriteDocs(results, machine, docs)) {
    (void)std::fprintf(stderr, "cannot write to %s\n", docs.c_str());
    return 2;
  }
  return results.AreWithin() ? 0 : 1;
}
