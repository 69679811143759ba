// SPDX-License-Identifier: MIT
//
// Schema documents through the whole interpreter. An input is the root document and up to two that
// it may refer to, Second.json and Third.json, each behind a line "---". The store is the one at
// the library's fixed address, as are the directory of the files and the configuration: run this
// below zephlane-private-redis.
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz/fuzzInput.h"

#include <zephlaneAPI.h>

namespace {

namespace fs = std::filesystem;

using zephlane::fuzz::Require;

constexpr char kDirectory[] = "/tmp/FOSS_schema/";
constexpr char kRoot[] = "/tmp/FOSS_schema/Root.json";
constexpr const char* kNames[] = {"Root.json", "Second.json", "Third.json"};
constexpr char kConfiguration[] = R"({"DmtfSchemaUri": "http://schemas.example.com/v1/"})";
constexpr std::string_view kSeparator = "\n---\n";

// The connection by which the store is emptied, made once.
redisContext* Prepare() {
  fs::create_directories(kDirectory);
  fs::create_directories("/tmp/etc");
  std::ofstream("/tmp/etc/SchemaURIConf.json") << kConfiguration;
  redisContext* ctx = zephlaneRedisConnect();
  Require(ctx != nullptr, "a server runs: start this below zephlane-private-redis");
  return ctx;
}

void EmptyStore(redisContext* ctx) {
  void* const reply = redisCommand(ctx, "FLUSHALL");
  Require(reply != nullptr, "the server answers");
  freeReplyObject(reply);
}

void WriteDocuments(std::string_view input) {
  for (const char* name : kNames) {
    const std::size_t end = input.find(kSeparator);
    const std::string path = std::string(kDirectory) + name;
    if (input.empty()) {
      fs::remove(path);
      continue;
    }
    const std::string_view document = input.substr(0, end);
    std::ofstream(path, std::ios::binary)
        .write(document.data(), static_cast<long>(document.size()));
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + kSeparator.size());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static redisContext* const ctx = Prepare();
  EmptyStore(ctx);
  WriteDocuments(zephlane::fuzz::TextOf(data, size));
  const int result = zephlaneSchemaInterpreter(kRoot);
  Require(result == 0 || result == 1, "the result is one of two");
  return 0;
}
