// SPDX-License-Identifier: MIT
//
// Readers of sets and lists with 1,000 members that are object IDs.
#include <cstdlib>
#include <utility>

#include "pairs.h"
#include "storeSetup.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kFamily[] = "1,000 members";
constexpr char kSet[] = "bench-thousand-set";
constexpr char kList[] = "bench-thousand-list";
constexpr std::size_t kMembers = 1000;
constexpr unsigned int kIdRange = 1;

void Add(const char* function, Step library) {
  AddPair(
      {.family = kFamily, .function = function, .allowed = kReader, .library = std::move(library)});
}

}  // namespace

void AddReaderPairs(redisContext* ctx) {
  for (std::size_t i = 0; i < kMembers; ++i) {
    const std::string id = InstanceId(kIdRange, i);
    Ask(ctx, "SADD %s %s", kSet, id.c_str());
    Ask(ctx, "RPUSH %s %s", kList, id.c_str());
  }
  Add("zephlaneSMembers", [](redisContext* connection) {
    unsigned int count = 0;
    std::free(zephlaneSMembers(connection, kSet, &count));
  });
  Add("zephlaneExtendedSMembers", [](redisContext* connection) {
    unsigned int count = 0;
    char** members = zephlaneExtendedSMembers(connection, kSet, &count);
    FreeStrings(members, count);
  });
  Add("zephlaneListRange", [](redisContext* connection) {
    unsigned int count = 0;
    std::free(zephlaneListRange(connection, kList, 0, -1, &count));
  });
  Add("zephlaneExtendedListRange", [](redisContext* connection) {
    unsigned int count = 0;
    char** items = zephlaneExtendedListRange(connection, kList, 0, -1, &count);
    FreeStrings(items, count);
  });
}

}  // namespace zephlane::bench
