// SPDX-License-Identifier: MIT
//
// Creating and deleting objects.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/objects.h>

namespace zephlane::test {

namespace {

char name_text[] = "name";
char value_text[] = "value";
const ExtendedPair extended_pairs[] = {{name_text, value_text}, {value_text, name_text}};

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneCreateUriUuidMap",
     .call = [](Stage& s) { return Status(zephlaneCreateUriUuidMap(s.ctx, "/uri", "uuid")); }},
    {.name = "zephlaneCreateHashTable",
     .call = [](Stage& s) { return Status(zephlaneCreateHashTable(s.ctx, "new", kPairs, 2)); }},
    {.name = "zephlaneCreateExtendedHashTable",
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateExtendedHashTable(s.ctx, "new", extended_pairs, 2));
         }},
    {.name = "zephlaneCreateSetTable",
     .call = [](Stage& s) { return Status(zephlaneCreateSetTable(s.ctx, "set", kMembers, 2)); }},
    {.name = "zephlaneCreateExtendedSetTable",
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateExtendedSetTable(s.ctx, "set", Words(kMemberTexts), 2));
         }},
    {.name = "zephlaneCopyHash",
     .call = [](Stage& s) { return Status(zephlaneCopyHash(s.ctx, "new", "hash", 100)); }},
    {.name = "zephlaneDeleteKey",
     .call = [](Stage& s) { return Status(zephlaneDeleteKey(s.ctx, "hash")); }},
    {.name = "zephlaneDeleteHash",
     .content = "HSET hash-TTL TtlSec 100",
     .call = [](Stage& s) { return Status(zephlaneDeleteHash(s.ctx, "hash")); }},
    {.name = "zephlaneRemoveInstanceFromSet",
     .call =
         [](Stage& s) { return Status(zephlaneRemoveInstanceFromSet(s.ctx, "set", "member")); }},
    {.name = "zephlaneRemoveFieldFromHash",
     .call = [](Stage& s) { return Status(zephlaneRemoveFieldFromHash(s.ctx, "hash", "name")); }},
    {.name = "zephlaneDeleteHashByField",
     .content = "HSET collection instanceCollection ids\nSADD ids hash\nHSET hash-TTL TtlSec 100",
     .call =
         [](Stage& s) {
           return Status(zephlaneDeleteHashByField(s.ctx, "collection", "name", "value"));
         }},
    {.name = "zephlaneVariableSetStr",
     .call = [](Stage& s) { return Status(zephlaneVariableSetStr(s.ctx, "name", "value")); }},
    {.name = "zephlaneSetKeyTimeout",
     .call = [](Stage& s) { return Status(zephlaneSetKeyTimeout(s.ctx, "hash", 100)); }},
};

}  // namespace

std::span<const FunctionCase> ObjectCases() {
  return kCases;
}

}  // namespace zephlane::test
