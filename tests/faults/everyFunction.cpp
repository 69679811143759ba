// SPDX-License-Identifier: MIT
#include "faults/everyFunction.h"

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace zephlane::test {

namespace {

void SendWords(redisContext* ctx, std::string_view line) {
  std::vector<const char*> words;
  std::vector<std::size_t> lengths;
  while (!line.empty()) {
    const std::size_t length = std::min(line.find(' '), line.size());
    words.push_back(line.data());
    lengths.push_back(length);
    line.remove_prefix(std::min(length + 1, line.size()));
  }
  freeReplyObject(
      redisCommandArgv(ctx, static_cast<int>(words.size()), words.data(), lengths.data()));
}

void SendLines(redisContext* ctx, std::string_view lines) {
  while (!lines.empty()) {
    const std::size_t length = std::min(lines.find('\n'), lines.size());
    SendWords(ctx, lines.substr(0, length));
    lines.remove_prefix(std::min(length + 1, lines.size()));
  }
}

}  // namespace

std::span<const FunctionFamily> EveryFunction() {
  static const std::array families = {
      FunctionFamily{"connection", ConnectionCases()},
      FunctionFamily{"hashCommands", HashCommandCases()},
      FunctionFamily{"setCommands", SetCommandCases()},
      FunctionFamily{"listCommands", ListCommandCases()},
      FunctionFamily{"objects", ObjectCases()},
      FunctionFamily{"readers", ReaderCases()},
      FunctionFamily{"lists", ListCases()},
      FunctionFamily{"annotation", AnnotationCases()},
      FunctionFamily{"hooks", HookCases()},
      FunctionFamily{"trees", TreeCases()},
      FunctionFamily{"services", ServiceCases()},
      FunctionFamily{"events", EventCases()},
      FunctionFamily{"hashTree", HashTreeCases()},
      FunctionFamily{"schemaFiles", SchemaFileCases()},
      FunctionFamily{"parsers", ParserCases()},
  };
  return families;
}

bool MayRepeat(const FunctionCase& function) {
#ifdef __SANITIZE_THREAD__
  return (function.traits & kLeavesThread) == 0;
#else
  (void)function;
  return true;
#endif
}

void Prepare(const FunctionCase& function, Stage& stage) {
  SendLines(stage.store, "FLUSHALL");
  SendLines(stage.store, kCommonContent);
  SendLines(stage.store, function.content);
  PrepareProcess(function, stage);
}

void PrepareProcess(const FunctionCase& function, Stage& stage) {
  if (function.prepare) { function.prepare(stage); }
}

void Finish(const FunctionCase& function, Stage& stage) {
  if (function.cleanup) { function.cleanup(stage); }
}

}  // namespace zephlane::test
