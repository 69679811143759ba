// SPDX-License-Identifier: MIT
#include "storeCount.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include <fmt/format.h>

#include "session.h"

namespace zephlane::tool {

namespace {

constexpr int kSetKind = 2;
constexpr char kSetIdPrefix[] = "00000000-0000-0000-0001-1";
constexpr std::size_t kCounterDigits = 11;
constexpr int kHexadecimal = 16;

std::string TextOf(const redisReply& reply) {
  return reply.str != nullptr ? std::string(reply.str, reply.len) : std::string();
}

// One step of a scan over all keys; false at its end or on a failure, which shows in `cursor`.
bool ScanStep(redisContext* ctx, std::string& cursor, std::vector<std::string>& keys) {
  const Answer answer(
      static_cast<redisReply*>(redisCommand(ctx, "SCAN %s COUNT 1000", cursor.c_str())));
  if (!answer || answer->type != REDIS_REPLY_ARRAY || answer->elements != 2) {
    cursor.clear();
    return false;
  }
  cursor = TextOf(*answer->element[0]);
  const redisReply& found = *answer->element[1];
  for (std::size_t i = 0; i < found.elements; ++i) { keys.push_back(TextOf(*found.element[i])); }
  return cursor != "0";
}

void Count(std::string_view type, StoreCounts& counts) {
  if (type == "hash") {
    ++counts.hashes;
  } else if (type == "set") {
    ++counts.sets;
  } else if (type == "list") {
    ++counts.lists;
  } else if (type != "none") {
    ++counts.others;
  }
}

// Asks for the types in one go: a store has thousands of keys.
bool CountTypes(redisContext* ctx, const std::vector<std::string>& keys, StoreCounts& counts) {
  for (const std::string& key : keys) {
    if (redisAppendCommand(ctx, "TYPE %b", key.data(), key.size()) != REDIS_OK) { return false; }
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    void* raw = nullptr;
    if (redisGetReply(ctx, &raw) != REDIS_OK) { return false; }
    const Answer answer(static_cast<redisReply*>(raw));
    Count(TextOf(*answer), counts);
  }
  return true;
}

}  // namespace

std::optional<StoreCounts> CountStore(redisContext* ctx) {
  StoreCounts counts;
  std::unordered_set<std::string> seen;  // a scan may give a key twice
  std::string cursor = "0";
  for (bool more = true; more;) {
    std::vector<std::string> keys;
    more = ScanStep(ctx, cursor, keys);
    if (cursor.empty()) { return std::nullopt; }
    std::erase_if(keys, [&](const std::string& key) { return !seen.insert(key).second; });
    if (!CountTypes(ctx, keys, counts)) { return std::nullopt; }
  }
  return counts;
}

std::size_t CountRecordedSets() {
  struct Free {
    void operator()(char* text) const noexcept {
      std::free(text);
    }
  };
  const std::unique_ptr<char, Free> next(generateRedisDataObjectID(kSetKind));
  if (!next) { return 0; }
  const std::string_view id(next.get());
  const auto* digits = next.get() + (id.size() - std::min(id.size(), kCounterDigits));
  const unsigned long long issued = std::strtoull(digits, nullptr, kHexadecimal);
  std::size_t recorded = 0;
  for (unsigned long long number = 0; number < issued; ++number) {
    // Numbers that were given to instance collections name no set of the interpreter's.
    const std::string set = fmt::format("{}{:011x}", kSetIdPrefix, number);
    recorded += isUUIDRegistered(set.c_str()) == 1 ? 1U : 0U;
  }
  return recorded;
}

}  // namespace zephlane::tool
