// SPDX-License-Identifier: MIT
//
// Trees of objects and several objects at once.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/trees.h>

namespace zephlane::test {

namespace {

// A hash that names a hash, a set and a list; the set has a hash as member.
constexpr char kTree[] =
    "HSET tree Child child Members members Ordered ordered\n"
    "HSET child Name child\n"
    "SADD members hash\n"
    "RPUSH ordered text\n";

const char* child_fields[] = {"Child", "Members", "Ordered", "None"};
constexpr int kChildFields = 4;
const char* set_keys[] = {"set", "none"};

// Not written to.
ObjectEntry entries[] = {
    {kUuid, ZEPHLANE_TYPE_HASH, 2, const_cast<InstanceData*>(kPairs)},
    {kSecondUuid, ZEPHLANE_TYPE_SET, 2, const_cast<SetData*>(kMembers)},
    {kThirdUuid, ZEPHLANE_TYPE_LIST, 2, const_cast<SetData*>(kItems)},
};
constexpr const char* kEnd = nullptr;

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneFindObjectByField",
     .content = "HSET collection instanceCollection ids\nSADD ids hash",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(
               zephlaneFindObjectByField(s.ctx, "collection", "name", "value", 0, out.Get()), out,
               "hash");
         }},
    {.name = "zephlaneDeleteSubTree",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(zephlaneDeleteSubTree(s.ctx, "tree", "Child", "Members", "Ordered", kEnd));
         }},
    {.name = "zephlaneDeleteSubTreeV21",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(zephlaneDeleteSubTreeV21(s.ctx, "tree", child_fields, kChildFields));
         }},
    {.name = "deleteAllSpecifiedObjects",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(
               deleteAllSpecifiedObjects(s.ctx, "tree", child_fields, kChildFields, "visited"));
         }},
    {.name = "zephlaneCreateMultipleObjects",
     .call = [](Stage& s) { return Status(zephlaneCreateMultipleObjects(s.ctx, entries, 3)); }},
    {.name = "zephlaneRenameObjectID",
     .call = [](Stage& s) { return Status(zephlaneRenameObjectID(s.ctx, "hash", "renamed")); }},
    {.name = "zephlaneSADD",
     .call = [](Stage& s) { return Status(zephlaneSADD(s.ctx, "set", "one", "two", kEnd)); }},
    {.name = "zephlaneSdiffKey",
     .call =
         [](Stage& s) { return Answer(zephlaneSdiffKey(s.ctx, "set", "none", kEnd), 1, 0, -1); }},
    {.name = "zephlaneSdiffKeyV21",
     .call = [](Stage& s) { return Answer(zephlaneSdiffKeyV21(s.ctx, set_keys, 2), 1, 0, -1); }},
    {.name = "zephlaneHashAppendTTLObject",
     .call = [](Stage& s) { return Status(zephlaneHashAppendTTLObject(s.ctx, "hash", 100)); }},
    {.name = "zephlaneIsHashOverdue",
     .call = [](Stage& s) { return Status(zephlaneIsHashOverdue(s.ctx, "hash"), 1, 0); }},
    {.name = "zephlaneRenewCollection",
     .call = [](Stage& s) { return Status(zephlaneRenewCollection(s.ctx, 1, "one", "two", 1)); }},
    {.name = "zephlaneRenewObjectURI",
     .call = [](Stage& s) { return Status(zephlaneRenewObjectURI(s.ctx, 2, "one", "two")); }},
};

}  // namespace

std::span<const FunctionCase> TreeCases() {
  return kCases;
}

}  // namespace zephlane::test
