// SPDX-License-Identifier: MIT
//
// Lists and the entity-tag cache.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/lists.h>

namespace zephlane::test {

namespace {

constexpr std::size_t kRoom = ZEPHLANE_VALUE_SIZE;

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneCreateListTable",
     .call = [](Stage& s) { return Status(zephlaneCreateListTable(s.ctx, "list", kItems, 2)); }},
    {.name = "zephlaneCreateExtendedListTable",
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateExtendedListTable(s.ctx, "list", Words(kListItems), 2));
         }},
    {.name = "zephlaneListLeftPush",
     .call =
         [](Stage& s) {
           return Status(zephlaneListLeftPush(s.ctx, "list", Words(kListItems), 2));
         }},
    {.name = "zephlaneListRightPush",
     .call = [](Stage& s) { return Status(zephlaneListRightPush(s.ctx, "list", "third")); }},
    {.name = "zephlaneListRange",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           SetData* items = zephlaneListRange(s.ctx, "list", 0, -1, &count);
           return HeapRecords(items, count, {kListItems, 2});
         }},
    {.name = "zephlaneExtendedListRange",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           char** items = zephlaneExtendedListRange(s.ctx, "list", 0, -1, &count);
           return HeapTexts(items, count, {kListItems, 2}, CountAfterFailure::kAnything);
         }},
    {.name = "zephlaneListLength",
     .call =
         [](Stage& s) {
           unsigned int length = kCountBefore;
           const int status = zephlaneListLength(s.ctx, "list", &length);
           return StatusAndNumber(status, length, kCountBefore, 2U);
         }},
    {.name = "zephlaneListIndex",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneListIndex(s.ctx, "list", 0, kRoom, out.Get()), out,
                                "first");
         }},
    {.name = "zephlaneListIndexV21",
     .call = [](Stage& s) { return HeapText(zephlaneListIndexV21(s.ctx, "list", 0), "first"); }},
    {.name = "zephlaneListLeftPop",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneListLeftPop(s.ctx, "list", kRoom, out.Get()), out, "first");
         }},
    {.name = "zephlaneListLeftPopV21",
     .call = [](Stage& s) { return HeapText(zephlaneListLeftPopV21(s.ctx, "list"), "first"); }},
    {.name = "zephlaneListRightPop",
     .call = [](Stage& s) { return HeapText(zephlaneListRightPop(s.ctx, "list"), "second"); }},
    {.name = "zephlaneListBlockLeftPop",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneListBlockLeftPop(s.ctx, "list", 1, kRoom, out.Get()), out,
                                "first");
         }},
    {.name = "zephlaneListBlockLeftPopV21",
     .call =
         [](Stage& s) {
           PopResult* popped = zephlaneListBlockLeftPopV21(s.ctx, 1, Words(kListKeys), 2);
           return HeapPop(popped, "list", "first");
         }},
    {.name = "zephlaneListBlockRightPop",
     .call =
         [](Stage& s) {
           PopResult* popped = zephlaneListBlockRightPop(s.ctx, 1, Words(kListKeys), 2);
           return HeapPop(popped, "list", "second");
         }},
    {.name = "zephlaneLREM",
     .call = [](Stage& s) { return Status(zephlaneLREM(s.ctx, "list", 0, "first")); }},
    {.name = "zephlaneReplaceListItemByIndex",
     .call =
         [](Stage& s) { return Status(zephlaneReplaceListItemByIndex(s.ctx, "list", 0, "new")); }},
    {.name = "zephlaneClearETagCache",
     .content = "HSET WEB-OBJ-URI-MAP /uri cache\nHSET cache ETagStrong a ETagWeak b",
     .call = [](Stage& s) { return Status(zephlaneClearETagCache(s.ctx, "/uri")); }},
};

}  // namespace

std::span<const FunctionCase> ListCases() {
  return kCases;
}

}  // namespace zephlane::test
