// SPDX-License-Identifier: MIT
//
// Hash commands and lifetimes of the command layer.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/commands.h>

namespace zephlane::test {

namespace {

constexpr FunctionCase kCases[] = {
    {.name = "createHashTable",
     .call = [](Stage& s) { return Status(createHashTable(s.ctx, "new", kPairs, 2)); }},
    {.name = "redisHashMultipleSet",
     .call =
         [](Stage& s) {
           return Status(redisHashMultipleSet(s.ctx, "new", Words(kFields), Words(kFields), 2));
         }},
    {.name = "copyHash", .call = [](Stage& s) { return Status(copyHash(s.ctx, "new", "hash")); }},
    {.name = "redisHashMultipleGet",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           char** values = redisHashMultipleGet(s.ctx, "hash", Words(kFields), 3, &count);
           return HeapTexts(values, count, {kFieldValues, 3}, CountAfterFailure::kUntouched);
         }},
    {.name = "getHashField",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(getHashField(s.ctx, "hash", "name", out.Get()), out, "value");
         }},
    {.name = "redisHashGet",
     .call = [](Stage& s) { return HeapText(redisHashGet(s.ctx, "hash", "name"), "value"); }},
    {.name = "isFieldMatched",
     .call = [](Stage& s) { return Status(isFieldMatched(s.ctx, "hash", "name", "value"), 1, 0); }},
    {.name = "removeFieldFromHash",
     .call = [](Stage& s) { return Status(removeFieldFromHash(s.ctx, "hash", "name")); }},
    {.name = "hsetKey",
     .call = [](Stage& s) { return Status(hsetKey(s.ctx, "new", "name", "value")); }},
    {.name = "addTtlToHash",
     .call = [](Stage& s) { return Status(addTtlToHash(s.ctx, "hash", 100)); }},
    {.name = "isHashTimeOut",
     .call = [](Stage& s) { return Status(isHashTimeOut(s.ctx, "hash"), 1, 0); }},
    {.name = "getRestTtlTimeFromHash",
     .content = "HSET hash-TTL TtlSec 100\nEXPIRE hash-TTL 100",
     .call =
         [](Stage& s) {
           unsigned int seconds = kCountBefore;
           const int status = getRestTtlTimeFromHash(s.ctx, "hash", &seconds);
           return StatusAndNumber(status, seconds, kCountBefore, 100U);
         }},
    {.name = "setKeyTimeout",
     .call = [](Stage& s) { return Status(setKeyTimeout(s.ctx, "hash", 100)); }},
};

}  // namespace

std::span<const FunctionCase> HashCommandCases() {
  return kCases;
}

}  // namespace zephlane::test
