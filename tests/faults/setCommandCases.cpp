// SPDX-License-Identifier: MIT
//
// Set, key, channel and pipeline commands of the command layer.
#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/commands.h>

namespace zephlane::test {

namespace {

void QueueThree(Stage& stage) {
  (void)pipelineCreateObject(stage.ctx, "one", ZEPHLANE_TYPE_HASH, kPairs, 2);
  (void)pipelineCreateObject(stage.ctx, "two", ZEPHLANE_TYPE_SET, kMembers, 2);
  (void)pipelineCreateObject(stage.ctx, "three", ZEPHLANE_TYPE_LIST, kItems, 2);
}

bool is_queued = false;

Outcome QueueOne(Stage& stage) {
  const int status = pipelineCreateObject(stage.ctx, "one", ZEPHLANE_TYPE_HASH, kPairs, 2);
  is_queued = status == 0;
  return Status(status);
}

void ReceiveQueued(Stage& stage) {
  if (is_queued) { (void)pipelineReceiveReply(stage.ctx, 1); }
}

// A connection that was lost meanwhile gives no reply.
void Unsubscribe(Stage& stage) {
  void* reply = redisCommand(stage.ctx, "UNSUBSCRIBE");
  if (reply != nullptr) { freeReplyObject(reply); }
}

constexpr FunctionCase kCases[] = {
    {.name = "redisSetCardinality",
     .call = [](Stage& s) { return Count(redisSetCardinality(s.ctx, "set"), 1); }},
    {.name = "getInstanceCount",
     .call =
         [](Stage& s) {
           unsigned int count = kCountBefore;
           return StatusAndNumber(getInstanceCount(s.ctx, "set", &count), count, kCountBefore, 1U);
         }},
    {.name = "getInstance",
     .call =
         [](Stage& s) {
           ValueOut out;
           SetData* row = reinterpret_cast<SetData*>(out.Get());
           return StatusAndText(getInstance(s.ctx, "set", 1, row), out, "member");
         }},
    {.name = "deleteInstanceInSet",
     .call = [](Stage& s) { return Status(deleteInstanceInSet(s.ctx, "set", "member")); }},
    {.name = "sismember",
     .call = [](Stage& s) { return Count(sismember(s.ctx, "set", "member"), 1); }},
    {.name = "sdiffKey",
     .call = [](Stage& s) { return Answer(sdiffKey(s.ctx, "set none"), 1, 0, -1); }},
    {.name = "saddCmd",
     .call = [](Stage& s) { return Status(saddCmd(s.ctx, "set newcomer member")); }},
    {.name = "redisSetMultipleAdd",
     .call =
         [](Stage& s) {
           return Status(redisSetMultipleAdd(s.ctx, "set", Words(kMemberTexts), 2));
         }},
    {.name = "createSetTable",
     .call = [](Stage& s) { return Status(createSetTable(s.ctx, "set", kMembers, 2)); }},
    {.name = "deleteKey", .call = [](Stage& s) { return Status(deleteKey(s.ctx, "hash")); }},
    {.name = "setKey", .call = [](Stage& s) { return Status(setKey(s.ctx, "new", "value")); }},
    {.name = "getKey",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(getKey(s.ctx, "text", out.Get()), out, "value");
         }},
    {.name = "incrKey", .call = [](Stage& s) { return Status(incrKey(s.ctx, "number")); }},
    {.name = "renameKey",
     .call = [](Stage& s) { return Status(renameKey(s.ctx, "hash", "renamed")); }},
    {.name = "typeCmd",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(typeCmd(s.ctx, "hash", out.Get()), out, "hash");
         }},
    {.name = "publishToChannel",
     .call = [](Stage& s) { return Status(publishToChannel(s.ctx, "channel", "message")); }},
    {.name = "subscribeFromChannel",
     .call = [](Stage& s) { return Status(subscribeFromChannel(s.ctx, "channel")); },
     .cleanup = Unsubscribe,
     .traits = kSubscribes},
    {.name = "pipelineCreateObject", .call = QueueOne, .cleanup = ReceiveQueued, .traits = kQueues},
    {.name = "pipelineReceiveReply",
     .prepare = QueueThree,
     .call = [](Stage& s) { return Status(pipelineReceiveReply(s.ctx, 3)); }},
};

}  // namespace

std::span<const FunctionCase> SetCommandCases() {
  return kCases;
}

}  // namespace zephlane::test
