// SPDX-License-Identifier: MIT
//
// Functions that send a single command each, by kind of object.
#include <cstdlib>
#include <utility>

#include "pairs.h"
#include "storeSetup.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kHash[] = "bench-hash";
constexpr char kSet[] = "bench-set";
constexpr char kList[] = "bench-list";
constexpr char kString[] = "bench-string";
constexpr char kScratch[] = "bench-scratch";
constexpr char kMember[] = "10000000-0000-0000-0000-000000000001";

char value[ZEPHLANE_VALUE_SIZE];
const InstanceData pairs[] = {{"Name", "Fan 1"}, {"Reading", "4200"}, {"Units", "RPM"}};
const SetData member = {"10000000-0000-0000-0000-000000000001"};
char name_field[] = "Name";
char units_field[] = "Units";
char fan_text[] = "Fan 1";
char rpm_text[] = "RPM";
char* const fields[] = {name_field, units_field};

void Add(const char* family, const char* function, Step library, Step prepare = nullptr) {
  AddPair({.family = family,
           .function = function,
           .allowed = kSingleCommand,
           .library = std::move(library),
           .prepare = std::move(prepare)});
}

void ForgetScratch(redisContext* ctx) {
  Ask(ctx, "DEL %s", kScratch);
}

void AddHashWriters() {
  constexpr char kFamily[] = "hash";
  static const ExtendedPair extended[] = {{name_field, fan_text}, {units_field, rpm_text}};
  Add(kFamily, "zephlaneCreateHashTable",
      [](redisContext* ctx) { (void)zephlaneCreateHashTable(ctx, kHash, pairs, 3); });
  Add(kFamily, "zephlaneCreateExtendedHashTable",
      [](redisContext* ctx) { (void)zephlaneCreateExtendedHashTable(ctx, kHash, extended, 2); });
  Add(kFamily, "zephlaneCreateUriUuidMap",
      [](redisContext* ctx) { (void)zephlaneCreateUriUuidMap(ctx, "/model/v1/Fans/1", kMember); });
  Add(kFamily, "zephlaneVariableSetStr",
      [](redisContext* ctx) { (void)zephlaneVariableSetStr(ctx, "Mode", "quiet"); });
  Add(kFamily, "hsetKey", [](redisContext* ctx) { (void)hsetKey(ctx, kHash, "Reading", "4200"); });
  Add(
      kFamily, "zephlaneRemoveFieldFromHash",
      [](redisContext* ctx) { (void)zephlaneRemoveFieldFromHash(ctx, kHash, "Extra"); },
      [](redisContext* ctx) { Ask(ctx, "HSET %s Extra 1", kHash); });
}

void AddHashReaders() {
  constexpr char kFamily[] = "hash";
  Add(kFamily, "zephlaneGetHashField",
      [](redisContext* ctx) { (void)zephlaneGetHashField(ctx, kHash, "Name", value); });
  Add(kFamily, "zephlaneGetHashFieldV21",
      [](redisContext* ctx) { std::free(zephlaneGetHashFieldV21(ctx, kHash, "Name")); });
  Add(kFamily, "zephlaneGetHashMultipleFieldV21", [](redisContext* ctx) {
    unsigned int count = 0;
    char** texts = zephlaneGetHashMultipleFieldV21(ctx, kHash, fields, 2, &count);
    FreeStrings(texts, count);
  });
  Add(kFamily, "zephlaneHashGetAll", [](redisContext* ctx) {
    unsigned int count = 0;
    std::free(zephlaneHashGetAll(ctx, kHash, &count));
  });
  Add(kFamily, "zephlaneExtendedHashGetAll", [](redisContext* ctx) {
    unsigned int count = 0;
    ExtendedPair* all = zephlaneExtendedHashGetAll(ctx, kHash, &count);
    for (unsigned int i = 0; i < count; ++i) {
      std::free(all[i].aFieldName);
      std::free(all[i].aValue);
    }
    std::free(all);
  });
  Add(kFamily, "zephlaneIsFieldMatched",
      [](redisContext* ctx) { (void)zephlaneIsFieldMatched(ctx, kHash, "Name", "Fan 1"); });
  Add(kFamily, "zephlaneVariableGetStr",
      [](redisContext* ctx) { (void)zephlaneVariableGetStr(ctx, "Mode", value); });
  Add(kFamily, "zephlaneGetUuid",
      [](redisContext* ctx) { (void)zephlaneGetUuid(ctx, "/model/v1/Fans/1", value); });
}

void AddSets() {
  constexpr char kFamily[] = "set";
  Add(
      kFamily, "zephlaneCreateSetTable",
      [](redisContext* ctx) { (void)zephlaneCreateSetTable(ctx, kScratch, &member, 1); },
      ForgetScratch);
  Add(kFamily, "zephlaneSADD",
      [](redisContext* ctx) { (void)zephlaneSADD(ctx, kSet, kMember, nullptr); });
  Add(
      kFamily, "zephlaneRemoveInstanceFromSet",
      [](redisContext* ctx) { (void)zephlaneRemoveInstanceFromSet(ctx, kSet, "extra"); },
      [](redisContext* ctx) { Ask(ctx, "SADD %s extra", kSet); });
  Add(kFamily, "zephlaneIsMember",
      [](redisContext* ctx) { (void)zephlaneIsMember(ctx, kSet, kMember); });
  Add(kFamily, "zephlaneSMembers", [](redisContext* ctx) {
    unsigned int count = 0;
    std::free(zephlaneSMembers(ctx, kSet, &count));
  });
  Add(kFamily, "zephlaneExtendedSMembers", [](redisContext* ctx) {
    unsigned int count = 0;
    char** members = zephlaneExtendedSMembers(ctx, kSet, &count);
    FreeStrings(members, count);
  });
  Add(kFamily, "redisSetCardinality",
      [](redisContext* ctx) { (void)redisSetCardinality(ctx, kSet); });
  Add(kFamily, "zephlaneSdiffKey",
      [](redisContext* ctx) { (void)zephlaneSdiffKey(ctx, kSet, kSet, nullptr); });
}

void AddLists() {
  constexpr char kFamily[] = "list";
  Add(
      kFamily, "zephlaneListRightPush",
      [](redisContext* ctx) { (void)zephlaneListRightPush(ctx, kScratch, kMember); },
      ForgetScratch);
  Add(
      kFamily, "zephlaneListLeftPop",
      [](redisContext* ctx) { (void)zephlaneListLeftPop(ctx, kScratch, sizeof(value), value); },
      [](redisContext* ctx) { Ask(ctx, "RPUSH %s %s", kScratch, kMember); });
  Add(kFamily, "zephlaneListIndex",
      [](redisContext* ctx) { (void)zephlaneListIndex(ctx, kList, 0, sizeof(value), value); });
  Add(kFamily, "zephlaneListIndexV21",
      [](redisContext* ctx) { std::free(zephlaneListIndexV21(ctx, kList, 0)); });
  Add(kFamily, "zephlaneListRange", [](redisContext* ctx) {
    unsigned int count = 0;
    std::free(zephlaneListRange(ctx, kList, 0, -1, &count));
  });
  Add(kFamily, "zephlaneListLength", [](redisContext* ctx) {
    unsigned int length = 0;
    (void)zephlaneListLength(ctx, kList, &length);
  });
  Add(kFamily, "zephlaneLREM",
      [](redisContext* ctx) { (void)zephlaneLREM(ctx, kList, 0, "missing"); });
  Add(kFamily, "listSET", [](redisContext* ctx) { (void)listSET(ctx, kList, 1, "second"); });
}

void AddKeys() {
  constexpr char kFamily[] = "key";
  Add(kFamily, "setKey", [](redisContext* ctx) { (void)setKey(ctx, kString, "value"); });
  Add(kFamily, "getKey", [](redisContext* ctx) { (void)getKey(ctx, kString, value); });
  Add(kFamily, "incrKey", [](redisContext* ctx) { (void)incrKey(ctx, "bench-number"); });
  Add(kFamily, "zephlaneRedisType", [](redisContext* ctx) { (void)zephlaneRedisType(ctx, kHash); });
  Add(kFamily, "zephlaneDeleteKey",
      [](redisContext* ctx) { (void)zephlaneDeleteKey(ctx, "bench-missing"); });
  Add(
      kFamily, "zephlaneRenameObjectID",
      [](redisContext* ctx) { (void)zephlaneRenameObjectID(ctx, "bench-old", "bench-new"); },
      [](redisContext* ctx) { Ask(ctx, "SET bench-old 1"); });
  Add("channel", "publishToChannel",
      [](redisContext* ctx) { (void)publishToChannel(ctx, "bench-channel", kMember); });
}

}  // namespace

void AddSingleCommandPairs(redisContext* ctx) {
  Ask(ctx, "HMSET %s Name Fan Reading 4200 Units RPM", kHash);
  Ask(ctx, "HSET zephlaneVariable Mode quiet");
  Ask(ctx, "HSET UriUuidMap /model/v1/Fans/1 %s", kMember);
  Ask(ctx, "SADD %s %s second third", kSet, kMember);
  Ask(ctx, "RPUSH %s first second", kList);
  Ask(ctx, "SET %s value", kString);
  AddHashWriters();
  AddHashReaders();
  AddSets();
  AddLists();
  AddKeys();
}

}  // namespace zephlane::bench
