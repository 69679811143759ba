// SPDX-License-Identifier: MIT
//
// List commands of the command layer.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/commands.h>

namespace zephlane::test {

namespace {

constexpr FunctionCase kCases[] = {
    {.name = "listRange",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           SetData* items = listRange(s.ctx, "list", 0, -1, &count);
           return HeapRecords(items, count, {kListItems, 2});
         }},
    {.name = "listLength",
     .call =
         [](Stage& s) {
           unsigned int length = kCountBefore;
           return StatusAndNumber(listLength(s.ctx, "list", &length), length, kCountBefore, 2U);
         }},
    {.name = "listIndex",
     .call = [](Stage& s) { return HeapText(listIndex(s.ctx, "list", 0), "first"); }},
    {.name = "listLeftPop",
     .call = [](Stage& s) { return HeapText(listLeftPop(s.ctx, "list"), "first"); }},
    {.name = "redisListRightPop",
     .call = [](Stage& s) { return HeapText(redisListRightPop(s.ctx, "list"), "second"); }},
    {.name = "listRightPush",
     .call = [](Stage& s) { return Status(listRightPush(s.ctx, "list", "third")); }},
    {.name = "redisListRightMultiplePush",
     .call =
         [](Stage& s) {
           return Status(redisListRightMultiplePush(s.ctx, "list", Words(kListItems), 2));
         }},
    {.name = "redisListLeftPush",
     .call =
         [](Stage& s) { return Status(redisListLeftPush(s.ctx, "list", Words(kListItems), 2)); }},
    {.name = "createListTable",
     .call = [](Stage& s) { return Status(createListTable(s.ctx, "list", kItems, 2)); }},
    {.name = "redisListBlockLeftPop",
     .call =
         [](Stage& s) {
           return HeapPop(redisListBlockLeftPop(s.ctx, 1, Words(kListKeys), 2), "list", "first");
         }},
    {.name = "redisListBlockRightPop",
     .call =
         [](Stage& s) {
           return HeapPop(redisListBlockRightPop(s.ctx, 1, Words(kListKeys), 2), "list", "second");
         }},
    {.name = "lremCmd",
     .call = [](Stage& s) { return Status(lremCmd(s.ctx, "list", 0, "first")); }},
    {.name = "listSET", .call = [](Stage& s) { return Status(listSET(s.ctx, "list", 0, "new")); }},
};

}  // namespace

std::span<const FunctionCase> ListCommandCases() {
  return kCases;
}

}  // namespace zephlane::test
