// SPDX-License-Identifier: MIT
//
// Functions that issue a single command, each against hiredis with the same words.
#include <array>
#include <cstdlib>
#include <cstring>

#include "pairs.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr double kAllowed = 1.05;
constexpr char kHash[] = "bench-hash";
constexpr char kSet[] = "bench-set";
constexpr char kList[] = "bench-list";
constexpr char kString[] = "bench-string";

void Discard(void* reply) {
  freeReplyObject(reply);
}

template <std::size_t N>
void DiscardVector(redisContext* ctx, const std::array<const char*, N>& words) {
  std::array<std::size_t, N> lengths;
  for (std::size_t i = 0; i < N; ++i) { lengths[i] = std::strlen(words[i]); }
  auto pointers = words;
  Discard(redisCommandArgv(ctx, static_cast<int>(N), pointers.data(), lengths.data()));
}

void AddHashPairs() {
  static char value[1024];
  static const InstanceData pairs[] = {{"Name", "Fan 1"}, {"Reading", "4200"}, {"Units", "RPM"}};
  AddPair(
      "zephlaneCreateHashTable", kAllowed,
      [](redisContext* ctx) { (void)zephlaneCreateHashTable(ctx, kHash, pairs, 3); },
      [](redisContext* ctx) {
        DiscardVector<8>(ctx, {"HMSET", kHash, "Name", "Fan 1", "Reading", "4200", "Units", "RPM"});
      });
  AddPair(
      "zephlaneGetHashField", kAllowed,
      [](redisContext* ctx) { (void)zephlaneGetHashField(ctx, kHash, "Name", value); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "HGET %s %s", kHash, "Name")); });
  AddPair(
      "zephlaneGetHashFieldV21", kAllowed,
      [](redisContext* ctx) { std::free(zephlaneGetHashFieldV21(ctx, kHash, "Name")); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "HGET %s %s", kHash, "Name")); });
  AddPair(
      "zephlaneHashGetAll", kAllowed,
      [](redisContext* ctx) {
        unsigned int count = 0;
        std::free(zephlaneHashGetAll(ctx, kHash, &count));
      },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "HGETALL %s", kHash)); });
}

void AddSetPairs() {
  static const SetData member = {"10000000-0000-0000-0000-000000000001"};
  AddPair(
      "zephlaneIsMember", kAllowed,
      [](redisContext* ctx) { (void)zephlaneIsMember(ctx, kSet, member.aObjectID); },
      [](redisContext* ctx) {
        Discard(redisCommand(ctx, "SISMEMBER %s %s", kSet, member.aObjectID));
      });
  AddPair(
      "zephlaneSMembers", kAllowed,
      [](redisContext* ctx) {
        unsigned int count = 0;
        std::free(zephlaneSMembers(ctx, kSet, &count));
      },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "SMEMBERS %s", kSet)); });
}

void AddListAndKeyPairs() {
  static char text[1024];
  AddPair(
      "zephlaneListIndexV21", kAllowed,
      [](redisContext* ctx) { std::free(zephlaneListIndexV21(ctx, kList, 0)); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "%s %s %d", "LINDEX", kList, 0)); });
  AddPair(
      "zephlaneListLength", kAllowed,
      [](redisContext* ctx) {
        unsigned int length = 0;
        (void)zephlaneListLength(ctx, kList, &length);
      },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "LLEN %s", kList)); });
  AddPair(
      "zephlaneRedisType", kAllowed, [](redisContext* ctx) { (void)zephlaneRedisType(ctx, kHash); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "TYPE %s", kHash)); });
  AddPair(
      "setKey", kAllowed, [](redisContext* ctx) { (void)setKey(ctx, kString, "value"); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "SET %s %s", kString, "value")); });
  AddPair(
      "getKey", kAllowed, [](redisContext* ctx) { (void)getKey(ctx, kString, text); },
      [](redisContext* ctx) { Discard(redisCommand(ctx, "GET %s", kString)); });
}

}  // namespace

void AddSingleCommandPairs() {
  AddHashPairs();
  AddSetPairs();
  AddListAndKeyPairs();
}

void FillStore(redisContext* ctx) {
  Discard(redisCommand(ctx, "HMSET %s Name Fan Reading 4200 Units RPM", kHash));
  Discard(redisCommand(ctx, "SADD %s 10000000-0000-0000-0000-000000000001 second third", kSet));
  Discard(redisCommand(ctx, "DEL %s", kList));
  Discard(redisCommand(ctx, "RPUSH %s first second", kList));
  Discard(redisCommand(ctx, "SET %s value", kString));
}

}  // namespace zephlane::bench
