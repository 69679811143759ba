// SPDX-License-Identifier: MIT
//
// OEM messages sent to queues whose receiver the test is itself.
#include <fcntl.h>
#include <time.h>

#include <cerrno>
#include <initializer_list>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "api/hookFixture.h"
#include "support/allocationFault.h"
#include "support/output.h"
#include "support/scriptedServer.h"

#include <zephlaneAPI.h>

namespace {

bool clock_fails = false;

}  // namespace

// The linker sends the library's calls here.
extern "C" {

int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now);

int __wrap_clock_gettime(clockid_t clock, timespec* now) {
  if (!clock_fails) { return __real_clock_gettime(clock, now); }
  errno = EINVAL;
  return -1;
}

}  // extern "C"

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::Capture;
using zephlane::test::ConnectToStore;
using zephlane::test::CreateQueue;
using zephlane::test::Fill;
using zephlane::test::HookTest;
using zephlane::test::kUuid;
using zephlane::test::OemBytes;
using zephlane::test::Output;
using zephlane::test::ScriptedServer;
using zephlane::test::TakeAll;

constexpr long kOemSize = 157;
constexpr char kFirst[] = "/oemmq_listener";
constexpr char kSecond[] = "/oemmq_second";
constexpr char kThird[] = "/oemmq_third";
const std::string kList = std::string(kUuid) + "-oem-mqList";
const std::string kMessage = OemBytes(kUuid, "1f", "first", "second", "third");
const std::vector<std::string> kOneMessage = {kMessage};

class HookTrigger : public HookTest {
 protected:
  // Queues of our own message size, listed for kUuid.
  void ListQueues(std::initializer_list<const char*> names) {
    for (const char* name : names) {
      CreateQueue(name, kOemSize);
      ListName(name);
    }
  }
  void ListName(const std::string& name) {
    EXPECT_EQ(Ask({"SADD", kList, name}), "1");
  }
  static int Trigger(redisContext* ctx) {
    return zephlaneTriggerOemHookFunc(ctx, kUuid, "1f", "first", "second", "third");
  }
  // What a call prints that is expected to fail.
  std::string FailingTrigger() {
    const Output printed = Capture([this] { EXPECT_EQ(Trigger(ctx()), 1); });
    EXPECT_EQ(printed.out, "");
    return printed.err;
  }
  // The names of the queues opened for sending, in order, a blank after each.
  static std::string Opened() {
    std::string names;
    for (const auto* entry = openedQueueInfoList; entry != nullptr; entry = entry->next) {
      names += std::string(entry->name) + " ";
    }
    return names;
  }
};

// Arguments

TEST_F(HookTrigger, AnyArgumentNullIsRefusedAndSendsNothing) {
  ListQueues({kFirst});
  for (const auto function : {zephlaneTriggerOemHookFunc, zephlaneOemMessageHandler}) {
    EXPECT_EQ(function(nullptr, kUuid, "1", "a", "b", "c"), 1);
    EXPECT_EQ(function(ctx(), nullptr, "1", "a", "b", "c"), 1);
    EXPECT_EQ(function(ctx(), kUuid, nullptr, "a", "b", "c"), 1);
    EXPECT_EQ(function(ctx(), kUuid, "1", nullptr, "b", "c"), 1);
    EXPECT_EQ(function(ctx(), kUuid, "1", "a", nullptr, "c"), 1);
    EXPECT_EQ(function(ctx(), kUuid, "1", "a", "b", nullptr), 1);
  }
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
}

TEST_F(HookTrigger, MessageHandlerIsTheSameByAnotherName) {
  ListQueues({kFirst});
  EXPECT_EQ(zephlaneOemMessageHandler(ctx(), kUuid, "1f", "first", "second", "third"), 0);
  EXPECT_EQ(TakeAll(kFirst), kOneMessage);
  EXPECT_EQ(zephlaneOemMessageHandler(ctx(), "unknown", "1f", "first", "second", "third"), 1);
}

// The message

TEST_F(HookTrigger, EveryListedQueueGetsTheMessage) {
  ListQueues({kFirst, kSecond, kThird});
  const Output printed = Capture([this] { EXPECT_EQ(Trigger(ctx()), 0); });
  EXPECT_EQ(printed.out + printed.err, "");
  for (const char* queue : {kFirst, kSecond, kThird}) { EXPECT_EQ(TakeAll(queue), kOneMessage); }
}

TEST_F(HookTrigger, MessageHasItsFieldsAtTheirOffsetsAndIsZeroPadded) {
  ListQueues({kFirst});
  EXPECT_EQ(Trigger(ctx()), 0);
  std::string bytes(157, '\0');
  bytes.replace(0, 36, kUuid);
  bytes.replace(37, 2, "1f");
  bytes.replace(43, 5, "first");
  bytes.replace(80, 6, "second");
  bytes.replace(117, 5, "third");
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>{bytes});
}

TEST_F(HookTrigger, EveryTextIsCutToItsField) {
  ListQueues({kFirst});
  EXPECT_EQ(Ask({"RENAME", kList, std::string(40, 'u') + "-oem-mqList"}), "OK");
  const auto text = [](std::size_t length, char character) {
    return std::string(length, character);
  };
  EXPECT_EQ(zephlaneTriggerOemHookFunc(ctx(), text(40, 'u').c_str(), text(6, 'i').c_str(),
                                       text(37, 'a').c_str(), text(37, 'b').c_str(),
                                       text(40, 'c').c_str()),
            0);
  EXPECT_EQ(TakeAll(kFirst),
            std::vector<std::string>{OemBytes(text(36, 'u'), text(5, 'i'), text(36, 'a'),
                                              text(36, 'b'), text(39, 'c'))});
}

TEST_F(HookTrigger, TextsThatJustFitAreSentWhole) {
  ListQueues({kFirst});
  const std::string id(5, 'i');
  const std::string arg(36, 'a');
  const std::string arg3(39, 'c');
  EXPECT_EQ(
      zephlaneTriggerOemHookFunc(ctx(), kUuid, id.c_str(), arg.c_str(), arg.c_str(), arg3.c_str()),
      0);
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>{OemBytes(kUuid, id, arg, arg, arg3)});
}

TEST_F(HookTrigger, EmptyTextsAreSent) {
  ListQueues({kFirst});
  EXPECT_EQ(zephlaneTriggerOemHookFunc(ctx(), kUuid, "", "", "", ""), 0);
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>{OemBytes(kUuid, "", "", "", "")});
}

TEST_F(HookTrigger, PriorityIsZero) {
  ListQueues({kFirst});
  EXPECT_EQ(Trigger(ctx()), 0);
  const mqd_t queue = mq_open(kFirst, O_RDONLY);
  char bytes[kOemSize];
  unsigned int priority = 99;
  EXPECT_EQ(mq_receive(queue, bytes, sizeof(bytes), &priority), kOemSize);
  EXPECT_EQ(priority, 0U);
  (void)mq_close(queue);
}

TEST_F(HookTrigger, QueueWithLargerMessagesGetsZerosBehindOurs) {
  CreateQueue(kFirst, 1000);
  ListName(kFirst);
  EXPECT_EQ(Trigger(ctx()), 0);
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>{kMessage + std::string(1000 - 157, '\0')});
}

TEST_F(HookTrigger, QueueWithSmallerMessagesGetsTheFirstBytesOfOurs) {
  CreateQueue(kFirst, 100);
  ListName(kFirst);
  EXPECT_EQ(Trigger(ctx()), 0);
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>{kMessage.substr(0, 100)});
}

// The list

TEST_F(HookTrigger, ListIsReadTwiceAndServedFromItsEnd) {
  ListQueues({kFirst, kSecond, kThird});
  ScriptedServer server;
  const std::string members =
      "*3\r\n$15\r\n/oemmq_listener\r\n$13\r\n/oemmq_second\r\n$12\r\n/oemmq_third\r\n";
  server.WillReply(members);
  server.WillReply(members);
  EXPECT_EQ(Trigger(server.ctx()), 0);
  EXPECT_EQ(server.Commands(), "SMEMBERS " + kList + "\nSMEMBERS " + kList + "\n");
  EXPECT_EQ(Opened(), "/oemmq_third /oemmq_second /oemmq_listener ");
}

TEST_F(HookTrigger, UuidWithoutQueuesIsAFailureThatSendsNothing) {
  CreateQueue(kFirst, kOemSize);
  EXPECT_EQ(FailingTrigger(), "");
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
}

TEST_F(HookTrigger, PlainListIsNotLookedAt) {
  CreateQueue(kFirst, kOemSize);
  EXPECT_EQ(Ask({"SADD", std::string(kUuid) + "-mqList", kFirst}), "1");
  EXPECT_EQ(FailingTrigger(), "");
}

TEST_F(HookTrigger, ListThatCannotBeReadIsAFailure) {
  EXPECT_EQ(Ask({"SET", kList, "text"}), "OK");
  EXPECT_EQ(FailingTrigger(), "");
}

TEST_F(HookTrigger, ListThatChangesWhileItIsReadIsAFailure) {
  ScriptedServer server;
  server.WillReply("*1\r\n$15\r\n/oemmq_listener\r\n");
  server.WillReply("*2\r\n$15\r\n/oemmq_listener\r\n$13\r\n/oemmq_second\r\n");
  EXPECT_EQ(Trigger(server.ctx()), 1);
  EXPECT_EQ(openedQueueInfoList, nullptr);
}

TEST_F(HookTrigger, ConnectionLostBetweenTheReadsIsAFailure) {
  ScriptedServer server;
  server.WillReply("*1\r\n$15\r\n/oemmq_listener\r\n");
  server.WillClose();
  EXPECT_EQ(Trigger(server.ctx()), 1);
}

// Queues

TEST_F(HookTrigger, QueueIsOpenedOnceAndStaysOpen) {
  ListQueues({kFirst});
  EXPECT_EQ(Trigger(ctx()), 0);
  const mqd_t opened = getOpenedQueueID(kFirst);
  EXPECT_GE(opened, 0);
  EXPECT_EQ(Trigger(ctx()), 0);
  EXPECT_EQ(Opened(), std::string(kFirst) + " ");
  EXPECT_EQ(getOpenedQueueID(kFirst), opened);
  EXPECT_EQ(TakeAll(kFirst), (std::vector<std::string>{kMessage, kMessage}));
}

TEST_F(HookTrigger, FullQueueRefusesAtOnceAndTheOthersGetTheMessage) {
  ListQueues({kFirst, kSecond, kThird});
  Fill(kSecond);
  EXPECT_EQ(FailingTrigger(), "queue send failed: Connection timed out\n");
  EXPECT_EQ(TakeAll(kFirst), kOneMessage);
  EXPECT_EQ(TakeAll(kSecond), std::vector<std::string>(5, ""));
  EXPECT_EQ(TakeAll(kThird), kOneMessage);
}

TEST_F(HookTrigger, QueueThatCannotBeOpenedFailsAndTheOthersGetTheMessage) {
  ListQueues({kFirst, kThird});
  ListName(kSecond);
  EXPECT_EQ(FailingTrigger(), "open queue failed: No such file or directory\n");
  EXPECT_EQ(TakeAll(kFirst), kOneMessage);
  EXPECT_EQ(TakeAll(kThird), kOneMessage);
  EXPECT_EQ(getOpenedQueueID(kSecond), -1);
}

TEST_F(HookTrigger, NameThatNoQueueCanHaveFails) {
  for (const std::string& name : {std::string(1100, '/'), std::string("none"), std::string()}) {
    EXPECT_EQ(Ask({"DEL", kList}), name.size() == 1100 ? "0" : "1");
    ListName(name);
    EXPECT_TRUE(FailingTrigger().starts_with("open queue failed: "));
  }
}

TEST_F(HookTrigger, RecordedDescriptorThatIsNotOpenFails) {
  ListQueues({kFirst, kSecond});
  EXPECT_EQ(updateOpenedMsgQueueTable(1000, kFirst), 0);
  EXPECT_EQ(FailingTrigger(), "queue send failed: Bad file descriptor\n");
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
  EXPECT_EQ(TakeAll(kSecond), kOneMessage);
}

TEST_F(HookTrigger, ClockThatCannotBeReadIsAFailureThatSendsNothing) {
  ListQueues({kFirst});
  clock_fails = true;
  const std::string printed = FailingTrigger();
  clock_fails = false;
  EXPECT_EQ(printed, "");
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
}

TEST_F(HookTrigger, ThreadsMayTriggerTheSameQueueAtOnce) {
  ListQueues({kFirst});
  const auto trigger_twice = [] {
    redisContext* own = ConnectToStore();
    EXPECT_EQ(Trigger(own), 0);
    EXPECT_EQ(Trigger(own), 0);
    redisFree(own);
  };
  std::thread first(trigger_twice);
  std::thread second(trigger_twice);
  first.join();
  second.join();
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>(4, kMessage));
}

// Memory

class HookTriggerMemory : public HookTrigger {
 protected:
  // What a call prints whose n-th allocation fails.
  std::string TriggerWithFault(int n) {
    const Output printed = Capture([&] {
      AllocationFault fault(n);
      const int result = Trigger(ctx());
      fault.Disarm();
      EXPECT_TRUE(fault.Happened());
      EXPECT_EQ(result, 1);
    });
    return printed.err;
  }
};

TEST_F(HookTriggerMemory, RunningOutAtTheListSendsNothing) {
  ListQueues({kFirst});
  EXPECT_EQ(TriggerWithFault(1), "");
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
}

TEST_F(HookTriggerMemory, QueueThatCannotBeRecordedIsClosedAndTheOthersGetTheMessage) {
  ListQueues({kFirst, kSecond});
  const int descriptors = Descriptors();
  EXPECT_EQ(TriggerWithFault(2), "");
  const bool first_failed = Opened() == std::string(kSecond) + " ";
  EXPECT_EQ(TakeAll(first_failed ? kSecond : kFirst), kOneMessage);
  EXPECT_EQ(TakeAll(first_failed ? kFirst : kSecond), std::vector<std::string>());
  ASSERT_NE(openedQueueInfoList, nullptr);
  EXPECT_EQ(openedQueueInfoList->next, nullptr);
  EXPECT_EQ(Descriptors(), descriptors + 1);
}

TEST_F(HookTriggerMemory, MessageThatCannotBePaddedFails) {
  CreateQueue(kFirst, 1000);
  ListName(kFirst);
  EXPECT_TRUE(TriggerWithFault(3).starts_with("queue send failed: "));
  EXPECT_EQ(TakeAll(kFirst), std::vector<std::string>());
}

}  // namespace
