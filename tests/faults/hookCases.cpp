// SPDX-License-Identifier: MIT
//
// Hooks, their queues and Redis channels. A registration leaves a receiver thread behind, which
// waits in a queue that is no longer named and so for ever.
#include <fcntl.h>
#include <mqueue.h>
#include <regex.h>

#include <utility>

#include "faults/arguments.h"
#include "faults/outcomes.h"
#include "support/owners.h"

#include <zephlaneAPI/hooks.h>

namespace zephlane::test {

namespace {

constexpr char kPlainQueue[] = "/mq_everyFunction";
constexpr char kOemQueue[] = "/oemmq_everyFunction";
constexpr char kListed[] =
    "SADD 10000000-0000-0000-0000-00000000000a-oem-mqList /oemmq_everyFunction\n";

char program[] = "/usr/bin/everyFunction";
char* program_arguments[] = {program, nullptr};

int PlainHandler(char* /*id*/, char* /*arg1*/, char* /*arg2*/) {
  return 0;
}

int OemHandler(char* /*id*/, char* /*arg1*/, char* /*arg2*/, char* /*arg3*/) {
  return 0;
}

template <typename Entry>
void FreeTable(Entry*& table) {
  while (table != nullptr) {
    const CRecord<Entry> entry(table);
    table = entry->next;
  }
}

// The process as it was before its first hook, except that receivers of former calls still wait.
void ForgetHooks(Stage& /*stage*/) {
  FreeTable(zephlaneFunctionTable);
  FreeTable(zephlaneOemFunctionTable);
  hookFunctionInitFlag = 0;
  hookOemFunctionInitFlag = 0;
  (void)mq_unlink(kPlainQueue);
  (void)mq_unlink(kOemQueue);
}

// Messages are longer than ours, so that a sender has to pad them.
mqd_t OpenOemQueue() {
  mq_attr attributes{};
  attributes.mq_maxmsg = 4;
  attributes.mq_msgsize = 200;
  return mq_open(kOemQueue, O_RDWR | O_CREAT | O_CLOEXEC, 0600, &attributes);
}

// An OEM hook with its queue, but without a receiver: one whose queue is closed would run for ever.
void RegisterWithoutReceiver(Stage& stage) {
  ForgetHooks(stage);
  OemMqID = OpenOemQueue();
  hookOemFunctionInitFlag = 1;
  (void)zephlaneUpdateFuncInfo(kUuid, PlainHandler, 1);
}

mqd_t given_queue = -1;

void MakeQueue(Stage& /*stage*/) {
  given_queue = OpenOemQueue();
}

void MakeOpenedQueue(Stage& stage) {
  MakeQueue(stage);
  if (updateOpenedMsgQueueTable(given_queue, kOemQueue) == 0) { given_queue = -1; }
}

void CloseQueues(Stage& stage) {
  while (openedQueueInfoList != nullptr) {
    const CRecord<OpenedQueueInfo> entry(openedQueueInfoList);
    (void)mq_close(entry->mqd);
    openedQueueInfoList = entry->next;
  }
  if (given_queue >= 0) { (void)mq_close(std::exchange(given_queue, -1)); }
  ForgetHooks(stage);
}

regex_t expression{};

void CompileUuid(Stage& /*stage*/) {
  (void)regcomp(&expression, "[0-9a-f]{8}-[0-9a-f]{4}", REG_EXTENDED | REG_NOSUB);
}

void FreeExpression(Stage& /*stage*/) {
  regfree(&expression);
}

void Unsubscribe(Stage& stage) {
  void* reply = redisCommand(stage.ctx, "UNSUBSCRIBE");
  if (reply != nullptr) { freeReplyObject(reply); }
}

Outcome RecordQueue(Stage& /*stage*/) {
  const int status = updateOpenedMsgQueueTable(given_queue, kOemQueue);
  if (status == 0) { given_queue = -1; }  // it is closed with the table
  return Status(status);
}

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneHookFunctionRegister",
     .prepare = ForgetHooks,
     .call =
         [](Stage& s) {
           return Status(
               zephlaneHookFunctionRegister(s.ctx, kUuid, program_arguments, PlainHandler));
         },
     .cleanup = ForgetHooks,
     .traits = kLeavesThread},
    {.name = "zephlaneOemHookFunctionRegister",
     .prepare = ForgetHooks,
     .call =
         [](Stage& s) {
           return Status(
               zephlaneOemHookFunctionRegister(s.ctx, kUuid, program_arguments, OemHandler));
         },
     .cleanup = ForgetHooks,
     .traits = kLeavesThread},
    {.name = "zephlaneOemHookFunctionUnregister",
     .content = kListed,
     .prepare = RegisterWithoutReceiver,
     .call =
         [](Stage& s) {
           return Status(zephlaneOemHookFunctionUnregister(s.ctx, kUuid, program_arguments));
         },
     .cleanup =
         [](Stage& s) {
           if (OemMqID >= 0) { (void)mq_close(std::exchange(OemMqID, -1)); }
           ForgetHooks(s);
         }},
    {.name = "mappingMsgQueueToUUID",
     .content = kListed,
     .call = [](Stage& s) { return Status(mappingMsgQueueToUUID(s.ctx, kUuid, kOemQueue, 1)); }},
    {.name = "zephlaneUpdateFuncInfo",
     .prepare = ForgetHooks,
     .call = [](Stage&) { return Status(zephlaneUpdateFuncInfo(kUuid, PlainHandler, 0)); },
     .cleanup = ForgetHooks},
    {.name = "isUUIDExist",
     .prepare = [](Stage&) { (void)zephlaneUpdateFuncInfo(kUuid, PlainHandler, 0); },
     .call = [](Stage&) { return Status(isUUIDExist(kUuid, 0), 1, 0); },
     .cleanup = ForgetHooks},
    {.name = "zephlaneTriggerOemHookFunc",
     .content = kListed,
     .prepare = MakeQueue,
     .call =
         [](Stage& s) {
           return Status(zephlaneTriggerOemHookFunc(s.ctx, kUuid, "1f", "one", "two", "three"));
         },
     .cleanup = CloseQueues},
    {.name = "zephlaneOemMessageHandler",
     .content = kListed,
     .prepare = MakeQueue,
     .call =
         [](Stage& s) {
           return Status(zephlaneOemMessageHandler(s.ctx, kUuid, "1f", "one", "two", "three"));
         },
     .cleanup = CloseQueues},
    {.name = "zephlaneHasOemMessageHandler",
     .content = kListed,
     .call = [](Stage& s) { return Status(zephlaneHasOemMessageHandler(s.ctx, kUuid)); }},
    {.name = "getOpenedQueueID",
     .prepare = MakeOpenedQueue,
     .call = [](Stage&) { return getOpenedQueueID(kOemQueue) >= 0 ? kAsDocumented : kFails; },
     .cleanup = CloseQueues},
    {.name = "updateOpenedMsgQueueTable",
     .prepare = MakeQueue,
     .call = RecordQueue,
     .cleanup = CloseQueues},
    {.name = "zephlanePublishToChannel",
     .call = [](Stage& s) { return Status(zephlanePublishToChannel(s.ctx, "channel", "text")); }},
    {.name = "zephlaneSubscribeFromChannel",
     .call = [](Stage& s) { return Status(zephlaneSubscribeFromChannel(s.ctx, "channel")); },
     .cleanup = Unsubscribe,
     .traits = kSubscribes},
    {.name = "isInvalidReturnChannel",
     .prepare = CompileUuid,
     .call =
         [](Stage&) {
           return Status(
               isInvalidReturnChannel(&expression, "10000000-0000-0000-0000-00000000000a-1f"), 0,
               1);
         },
     .cleanup = FreeExpression},
    {.name = "isInvalidMsgID", .call = [](Stage&) { return Status(isInvalidMsgID("1f"), 0, 1); }},
};

}  // namespace

std::span<const FunctionCase> HookCases() {
  return kCases;
}

}  // namespace zephlane::test
