// SPDX-License-Identifier: MIT
//
// Unregistration of OEM hooks. Each case registers in a process of its own; those whose receiver
// goes in circles afterwards are killed with their output caught.
#include <fcntl.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/hookFixture.h"
#include "support/output.h"
#include "support/scriptedServer.h"

#include <zephlaneAPI.h>

namespace {

using testing::HasSubstr;
using zephlane::test::Capture;
using zephlane::test::CreateQueue;
using zephlane::test::HookTest;
using zephlane::test::kSecondUuid;
using zephlane::test::kThirdUuid;
using zephlane::test::kUuid;
using zephlane::test::OemBytes;
using zephlane::test::Output;
using zephlane::test::Program;
using zephlane::test::QueueExists;
using zephlane::test::ScriptedServer;
using zephlane::test::SendTo;
using zephlane::test::TellOem;

class HookUnregistration : public HookTest {
 protected:
  int Register(const char* uuid, OemHookFunction handler = TellOem) {
    return zephlaneOemHookFunctionRegister(ctx(), uuid, program_.Argv(), handler);
  }
  int Unregister(const char* uuid) {
    return zephlaneOemHookFunctionUnregister(ctx(), uuid, program_.Argv());
  }
  // Without the one that perror() opens for a moment in the receiver.
  static int DescriptorsAtRest() {
    int fewest = Descriptors();
    for (int i = 0; i < 100; ++i) { fewest = std::min(fewest, Descriptors()); }
    return fewest;
  }
  // The UUIDs of the table in order, by the last character of each.
  static std::string Table() {
    std::string uuids;
    for (const auto* entry = zephlaneOemFunctionTable; entry != nullptr; entry = entry->next) {
      uuids += std::string(entry->uuid).back();
    }
    return uuids;
  }
  Program program_{"listener"};
};

TEST_F(HookUnregistration, AnyArgumentNullIsRefused) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(zephlaneOemHookFunctionUnregister(nullptr, kUuid, program_.Argv()), 1);
    EXPECT_EQ(zephlaneOemHookFunctionUnregister(ctx(), nullptr, program_.Argv()), 1);
    EXPECT_EQ(zephlaneOemHookFunctionUnregister(ctx(), kUuid, nullptr), 1);
    EXPECT_EQ(Table(), "a");
  });
  EXPECT_TRUE(QueueExists("/oemmq_listener"));
}

TEST_F(HookUnregistration, DoesNothingInAFamilyThatNeverStarted) {
  EXPECT_EQ(Ask({"SADD", kUuid + std::string("-oem-mqList"), "/oemmq_listener"}), "1");
  CreateQueue("/oemmq_listener", 157);
  EXPECT_EQ(Unregister(kUuid), 0);
  EXPECT_EQ(Ask({"SCARD", kUuid + std::string("-oem-mqList")}), "1");
  EXPECT_TRUE(QueueExists("/oemmq_listener"));
}

TEST_F(HookUnregistration, ClosesAndRemovesTheQueueAndTakesItOffTheList) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), kUuid), 0);
    const mqd_t queue = OemMqID;
    const Output printed = Capture([this] { EXPECT_EQ(Unregister(kUuid), 0); });
    EXPECT_EQ(printed.out + printed.err, "");
    mq_attr attributes{};
    EXPECT_EQ(mq_getattr(queue, &attributes), -1);
    EXPECT_EQ(Table(), "");
    EXPECT_EQ(hookOemFunctionInitFlag, 1);
    EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), kUuid), 1);
  });
  EXPECT_EQ(Dump(), "");
  EXPECT_FALSE(QueueExists("/oemmq_listener"));
}

TEST_F(HookUnregistration, SendsSremAndIgnoresItsResult) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    ScriptedServer server;
    server.WillReply("-ERR no\r\n");
    EXPECT_EQ(zephlaneOemHookFunctionUnregister(server.ctx(), kUuid, program_.Argv()), 0);
    EXPECT_EQ(server.Commands(), std::string("SREM ") + kUuid + "-oem-mqList /oemmq_listener\n");
  });
}

TEST_F(HookUnregistration, FirstAndSecondEntryCanBeRemovedAndAThirdCannot) {
  const std::pair<const char*, const char*> cases[] = {
      {kUuid, "bc"}, {kSecondUuid, "ac"}, {kThirdUuid, "abc"}, {"unknown", "abc"}};
  for (const auto& [uuid, remaining] : cases) {
    SCOPED_TRACE(uuid);
    InFreshProcess([&, uuid = uuid, remaining = remaining] {
      EXPECT_EQ(Register(kUuid), 0);
      EXPECT_EQ(Register(kSecondUuid), 0);
      EXPECT_EQ(Register(kThirdUuid), 0);
      EXPECT_EQ(Unregister(uuid), 0);
      EXPECT_EQ(Table(), remaining);
      EXPECT_FALSE(QueueExists("/oemmq_listener"));
    });
  }
}

TEST_F(HookUnregistration, NextEntryIsAppendedAfterTheLastOneWasRemoved) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(Register(kSecondUuid), 0);
    EXPECT_EQ(Unregister(kSecondUuid), 0);
    EXPECT_EQ(Register(kThirdUuid), 0);
    EXPECT_EQ(Table(), "ac");
    (void)Capture([this] {
      EXPECT_EQ(Unregister(kUuid), 0);
      EXPECT_EQ(Unregister(kThirdUuid), 0);
    });
    EXPECT_EQ(Table(), "");
    EXPECT_EQ(Register(kSecondUuid), 0);
    EXPECT_EQ(Table(), "b");
  });
}

TEST_F(HookUnregistration, SecondOneReportsTheQueueThatIsGone) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(Unregister(kUuid), 0);
    const int descriptors = DescriptorsAtRest();
    const Output printed = Capture([this] { EXPECT_EQ(Unregister(kUuid), 0); });
    // The receiver goes on reporting the queue that is gone, between these lines as well.
    EXPECT_THAT(printed.err, HasSubstr("close queue error:: Bad file descriptor\n"));
    EXPECT_THAT(printed.err, HasSubstr("remove queue error:: No such file or directory\n"));
    EXPECT_EQ(DescriptorsAtRest(), descriptors);
  });
}

TEST_F(HookUnregistration, RemovesTheQueueThatItsProgramNames) {
  CreateQueue("/oemmq_second", 157);
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    Program second("/usr/bin/second");
    EXPECT_EQ(zephlaneOemHookFunctionUnregister(ctx(), kUuid, second.Argv()), 0);
    EXPECT_EQ(OemMqID, -1);
  });
  EXPECT_FALSE(QueueExists("/oemmq_second"));
  EXPECT_TRUE(QueueExists("/oemmq_listener"));
  EXPECT_EQ(Ask({"SCARD", kUuid + std::string("-oem-mqList")}), "1");
}

TEST_F(HookUnregistration, LaterRegistrationStartsNothingAnew) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    const int threads = Threads();
    EXPECT_EQ(Unregister(kUuid), 0);
    EXPECT_EQ(Register(kSecondUuid), 0);
    EXPECT_EQ(Threads(), threads);
    EXPECT_EQ(OemMqID, -1);
    EXPECT_EQ(Table(), "b");
  });
  EXPECT_FALSE(QueueExists("/oemmq_listener"));
  EXPECT_EQ(Ask({"SMEMBERS", kSecondUuid + std::string("-oem-mqList")}), "/oemmq_listener");
}

TEST_F(HookUnregistration, ReceiverRunsOnAndReportsEveryTurn) {
  const std::vector<std::string> errors = FirstErrorLines(1000, [this] {
    EXPECT_EQ(Register(kUuid), 0);
    const mqd_t sender = mq_open("/oemmq_listener", O_WRONLY);
    EXPECT_EQ(Unregister(kUuid), 0);
    // The receiver waits at the queue that is gone until one more message comes.
    const std::string bytes = OemBytes(kUuid, "1f", "dropped", "", "");
    EXPECT_EQ(mq_send(sender, bytes.data(), bytes.size(), 0), 0);
  });
  EXPECT_EQ(errors, std::vector<std::string>(1000, "mq_receive failed: Bad file descriptor"));
}

// The number of the closed queue may come to be another's.
TEST_F(HookUnregistration, ReceiverLeavesOtherQueuesAlone) {
  (void)FirstErrorLines(1, [this] {
    EXPECT_EQ(Register(kUuid), 0);
    const mqd_t sender = mq_open("/oemmq_listener", O_WRONLY);
    const mqd_t closed = OemMqID;
    EXPECT_EQ(Unregister(kUuid), 0);
    CreateQueue("/oemmq_second", 157);
    EXPECT_EQ(mq_open("/oemmq_second", O_RDWR), closed);
    EXPECT_EQ(mq_send(sender, "", 0, 0), 0);
    SendTo("/oemmq_second", "message of another process");
  });
  EXPECT_EQ(zephlane::test::TakeAll("/oemmq_second"),
            std::vector<std::string>{"message of another process"});
}

// A handler that unregisters its own hook.
redisContext* handlers_connection = nullptr;

int UnregisterAndTell(char* id, char* arg1, char* arg2, char* arg3) {
  Program program("listener");
  (void)zephlaneOemHookFunctionUnregister(handlers_connection, kUuid, program.Argv());
  return TellOem(id, arg1, arg2, arg3);
}

TEST_F(HookUnregistration, HandlerMayUnregisterItself) {
  (void)FirstErrorLines(1, [this] {
    handlers_connection = ctx();
    EXPECT_EQ(Register(kUuid, UnregisterAndTell), 0);
    SendTo("/oemmq_listener", OemBytes(kUuid, "1f", "first", "second", "third"));
    EXPECT_EQ(NextCall(), "oem 1f|first|second|third");
    EXPECT_EQ(Table(), "");
  });
  EXPECT_EQ(Dump(), "");
}

}  // namespace
