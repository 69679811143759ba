// SPDX-License-Identifier: MIT
//
// Reading objects.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/objects.h>

namespace zephlane::test {

namespace {

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneVariableGetStr",
     .content = "HSET zephlaneVariable name value",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneVariableGetStr(s.ctx, "name", out.Get()), out, "value");
         }},
    {.name = "zephlaneGetUuid",
     .content = "HSET UriUuidMap /uri uuid",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneGetUuid(s.ctx, "/uri", out.Get()), out, "uuid");
         }},
    {.name = "zephlaneGetHashField",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneGetHashField(s.ctx, "hash", "name", out.Get()), out,
                                "value");
         }},
    {.name = "zephlaneGetHashFieldV21",
     .call =
         [](Stage& s) {
           return HeapText(zephlaneGetHashFieldV21(s.ctx, "hash", "name"), "value");
         }},
    {.name = "zephlaneGetHashMultipleFieldV21",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           char** values =
               zephlaneGetHashMultipleFieldV21(s.ctx, "hash", Words(kFields), 3, &count);
           return HeapTexts(values, count, {kFieldValues, 3}, CountAfterFailure::kUntouched);
         }},
    {.name = "zephlaneGetSchemaTypeIdByField",
     .content = "SADD ids hash",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(
               zephlaneGetSchemaTypeIdByField(s.ctx, "name", "value", "ids", out.Get()), out,
               "hash");
         }},
    {.name = "zephlaneGetSchemaTypeIdByTitle",
     .content = "HSET ZephlaneSchemaTitleUuidHash title id",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneGetSchemaTypeIdByTitle(s.ctx, "title", out.Get()), out,
                                "id");
         }},
    {.name = "zephlaneIsFieldMatched",
     .call =
         [](Stage& s) {
           return Status(zephlaneIsFieldMatched(s.ctx, "hash", "name", "value"), 1, 0);
         }},
    {.name = "zephlaneIsLink", .call = [](Stage&) { return Status(zephlaneIsLink(kUuid), 1, 0); }},
    {.name = "zephlaneDumpHash",
     .call = [](Stage& s) { return Status(zephlaneDumpHash(s.ctx, "hash")); }},
    {.name = "zephlaneCheckTTL",
     .content = "HSET hash-TTL TtlSec 100\nEXPIRE hash-TTL 100",
     .call = [](Stage& s) { return Status(zephlaneCheckTTL(s.ctx, "hash", 1)); },
     .traits = kSleeps},
    {.name = "zephlaneIsMember",
     .call = [](Stage& s) { return Answer(zephlaneIsMember(s.ctx, "set", "member"), 1, 0, -1); }},
    {.name = "zephlaneSMembers",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           SetData* members = zephlaneSMembers(s.ctx, "set", &count);
           return HeapRecords(members, count, {kOneMember, 1});
         }},
    {.name = "zephlaneExtendedSMembers",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           char** members = zephlaneExtendedSMembers(s.ctx, "set", &count);
           return HeapTexts(members, count, {kOneMember, 1}, CountAfterFailure::kAnything);
         }},
    {.name = "zephlaneHashGetAll",
     .call =
         [](Stage& s) {
           unsigned int count = 0;
           InstanceData* pairs = zephlaneHashGetAll(s.ctx, "hash", &count);
           return HeapRecords(pairs, count, 2);
         }},
    {.name = "zephlaneExtendedHashGetAll",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           ExtendedPair* pairs = zephlaneExtendedHashGetAll(s.ctx, "hash", &count);
           return HeapPairs(pairs, count, 2, CountAfterFailure::kAnything);
         }},
    {.name = "zephlaneRedisType",
     .call =
         [](Stage& s) {
           const int type = zephlaneRedisType(s.ctx, "hash");
           const bool is_other = type == ZEPHLANE_TYPE_SET || type == ZEPHLANE_TYPE_LIST;
           return is_other ? kOtherContent : Status(type, ZEPHLANE_TYPE_HASH, ZEPHLANE_TYPE_OTHER);
         }},
};

}  // namespace

std::span<const FunctionCase> ReaderCases() {
  return kCases;
}

}  // namespace zephlane::test
