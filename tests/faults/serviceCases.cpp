// SPDX-License-Identifier: MIT
//
// Return messages, tasks, and expiry.
#include <string>

#include "faults/outcomes.h"

#include <zephlaneAPI/expiry.h>
#include <zephlaneAPI/messages.h>
#include <zephlaneAPI/tasks.h>

namespace zephlane::test {

namespace {

const char* message_arguments[] = {"one", "two"};
constexpr const char* kEnd = nullptr;

// The script that turns JSON into objects; what it does is its own matter.
void LoadScript(Stage& stage) {
  const char* words[] = {"SCRIPT", "LOAD", "return 1"};
  auto* const hash = static_cast<redisReply*>(redisCommandArgv(stage.store, 3, words, nullptr));
  freeReplyObject(
      redisCommand(stage.store, "HSET redisSHAScripts ConvertJsonToRedis %s", hash->str));
  freeReplyObject(hash);
}

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneCreateReturnMessage",
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateReturnMessage(s.ctx, "box", "id", "one", "two", kEnd));
         }},
    {.name = "zephlaneCreateReturnMsgV21",
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateReturnMsgV21(s.ctx, "box", "id", message_arguments, 2));
         }},
    {.name = "zephlaneCreateAsyncTask",
     .call =
         [](Stage& s) {
           return HeapText(zephlaneCreateAsyncTask(s.ctx, "argument", "channel"), "");
         }},
    {.name = "zephlaneUpdateTaskState",
     .content = "HSET WEB-OBJ-URI-MAP task cache\nHSET cache ETagStrong a ETagWeak b",
     .call = [](Stage& s) { return Status(zephlaneUpdateTaskState(s.ctx, "task", "Completed")); }},
    {.name = "createEventTimeStamp",
     .call =
         [](Stage&) {
           TextOut<256> out;
           return StatusAndText(createEventTimeStamp(out.Get()), out, "");
         }},
    {.name = "zephlaneAddMonotonicExpiredTime",
     .call = [](Stage& s) { return Status(zephlaneAddMonotonicExpiredTime(s.ctx, "hash", 1000)); }},
    {.name = "zephlaneIsMonotonicTimeExpired",
     .content = "HSET keyExpiredTime hash 1",
     .call =
         [](Stage& s) { return Answer(zephlaneIsMonotonicTimeExpired(s.ctx, "hash"), 1, 0, -1); }},
    {.name = "zephlaneConvertJsonToRedis",
     .prepare = LoadScript,
     .call =
         [](Stage& s) { return Status(zephlaneConvertJsonToRedis(s.ctx, "source", "target")); }},
};

}  // namespace

std::span<const FunctionCase> ServiceCases() {
  return kCases;
}

}  // namespace zephlane::test
