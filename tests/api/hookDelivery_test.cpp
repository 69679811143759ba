// SPDX-License-Identifier: MIT
//
// What receivers do with messages. Each case receives in a process of its own; handlers tell of
// their calls through a pipe, which cases wait for.
#include <fcntl.h>

#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "api/hookFixture.h"
#include "support/output.h"
#include "support/scriptedServer.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::CreateQueue;
using zephlane::test::HookFamilyTest;
using zephlane::test::HookTest;
using zephlane::test::kSecondUuid;
using zephlane::test::kThirdUuid;
using zephlane::test::kUuid;
using zephlane::test::OemBytes;
using zephlane::test::Output;
using zephlane::test::PlainBytes;
using zephlane::test::Program;
using zephlane::test::QueueExists;
using zephlane::test::ScriptedServer;
using zephlane::test::SendTo;
using zephlane::test::TellOem;
using zephlane::test::TellPlain;

// Both families

class HookDelivery : public HookFamilyTest {
 public:
  using HookFamilyTest::Both;

 protected:
  // Sends a message with `text` as first argument.
  static void Send(const std::string& uuid, const std::string& text) {
    SendTo(QueueOf("listener"), GetParam().Bytes(uuid, text));
  }
  static std::string Told(const std::string& text) {
    return GetParam().Told(text);
  }
};

INSTANTIATE_TEST_SUITE_P(Families, HookDelivery, testing::ValuesIn(HookDelivery::Both()),
                         testing::PrintToStringParamName());

TEST_P(HookDelivery, MessageCallsTheHandlerOfItsUuidWithItsTexts) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    Send(kUuid, "first");
    EXPECT_EQ(NextCall(), Told("first"));
  });
}

TEST_P(HookDelivery, ResultOfAHandlerIsIgnored) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    for (const char* text : {"a", "b", "c"}) { Send(kUuid, text); }
    for (const char* text : {"a", "b", "c"}) { EXPECT_EQ(NextCall(), Told(text)); }
  });
}

TEST_P(HookDelivery, MessageForAnUnknownUuidCallsNothing) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(Register(kSecondUuid), 0);
    Send(kThirdUuid, "unknown");
    Send("", "without UUID");
    Send(kSecondUuid, "known");
    EXPECT_EQ(NextCall(), Told("known"));
  });
}

TEST_P(HookDelivery, MessageThatArrivesWhileTheTableIsEmptyIsDropped) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(std::string(37, 'u').c_str()), 1);  // starts the receiver all the same
    Send(kUuid, "early");
    EXPECT_EQ(Register(kSecondUuid), 0);
    Send(kSecondUuid, "known");
    EXPECT_EQ(NextCall(), Told("known"));
  });
}

TEST_P(HookDelivery, The37thByteOfTheUuidCounts) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    Send(std::string(kUuid) + "a", "longer");
    Send(kUuid, "equal");
    EXPECT_EQ(NextCall(), Told("equal"));
  });
}

TEST_P(HookDelivery, TextsOfShortMessagesEndAfterLongOnesToo) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    Send(kUuid, std::string(36, 'x'));
    EXPECT_EQ(NextCall(), Told(std::string(36, 'x')));
    SendTo(QueueOf("listener"), GetParam().Bytes(kUuid, "short").substr(0, 43 + 5));
    const std::string all_told = Told("short");
    EXPECT_EQ(NextCall(),
              all_told.substr(0, all_told.find("second")) + (GetParam().oem == 1 ? "|" : ""));
  });
}

TEST_P(HookDelivery, QueueWithLargerMessagesDelivers) {
  CreateQueue(QueueOf("listener"), 1000);
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    SendTo(QueueOf("listener"), GetParam().Bytes(kUuid, "first") + std::string(800, 'x'));
    EXPECT_EQ(NextCall(), Told("first"));
    Send(kUuid, "second");
    EXPECT_EQ(NextCall(), Told("second"));
  });
}

TEST_P(HookDelivery, QueueWithSmallerMessagesDeliversTheirTexts) {
  CreateQueue(QueueOf("listener"), 43 + 5);
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    SendTo(QueueOf("listener"), GetParam().Bytes(kUuid, "first").substr(0, 43 + 5));
    EXPECT_EQ(NextCall(), GetParam().oem == 1 ? "oem 1f|first||" : "plain 1f|first|");
  });
}

TEST_P(HookDelivery, HandlersMayBeAddedWhileMessagesArrive) {
  constexpr int kHandlers = 200;
  InFreshProcess([this] {
    EXPECT_EQ(Register("0"), 0);
    for (int i = 1; i < kHandlers; ++i) {
      const std::string uuid = std::to_string(i);
      Send(uuid, "perhaps too early");
      EXPECT_EQ(zephlaneUpdateFuncInfo(uuid.c_str(), nullptr, GetParam().oem), 0);
    }
    EXPECT_EQ(Register(kUuid), 0);
    Send(kUuid, "last");
    EXPECT_EQ(NextCall(), Told("last"));
  });
}

TEST_P(HookDelivery, EntryWithoutAHandlerDropsItsMessages) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(zephlaneUpdateFuncInfo(kSecondUuid, nullptr, GetParam().oem), 0);
    Send(kSecondUuid, "dropped");
    Send(kUuid, "told");
    EXPECT_EQ(NextCall(), Told("told"));
  });
}

TEST_P(HookDelivery, ReceiverUsesNoConnection) {
  InFreshProcess([this] {
    {
      ScriptedServer server;
      server.WillReply(":0\r\n");
      server.WillReply(":1\r\n");
      EXPECT_EQ(Register(server.ctx(), kUuid, &program_), 0);
    }
    Send(kUuid, "first");
    EXPECT_EQ(NextCall(), Told("first"));
  });
}

// Details of one family

class Hooks : public HookTest {
 protected:
  int RegisterPlain(const char* uuid, HookFunction handler = TellPlain) {
    return zephlaneHookFunctionRegister(ctx(), uuid, program_.Argv(), handler);
  }
  int RegisterOem(const char* uuid) {
    return zephlaneOemHookFunctionRegister(ctx(), uuid, program_.Argv(), TellOem);
  }
  Program program_{"listener"};
};

TEST_F(Hooks, FamiliesOfAProcessAreIndependent) {
  InFreshProcess([this] {
    EXPECT_EQ(RegisterPlain(kUuid), 0);
    EXPECT_EQ(hookOemFunctionInitFlag, 0);
    EXPECT_EQ(RegisterOem(kUuid), 0);
    SendTo("/mq_listener", PlainBytes(kUuid, "1", "a", "b"));
    EXPECT_EQ(NextCall(), "plain 1|a|b");
    SendTo("/oemmq_listener", OemBytes(kUuid, "2", "a", "b", "c"));
    EXPECT_EQ(NextCall(), "oem 2|a|b|c");
  });
}

TEST_F(Hooks, FieldsOfAMessageLieWhereTheirOffsetsSay) {
  InFreshProcess([this] {
    EXPECT_EQ(RegisterPlain(kUuid), 0);
    EXPECT_EQ(RegisterOem(kUuid), 0);
    std::string bytes(157, '\0');
    const auto put = [&bytes](std::size_t offset, const std::string& text) {
      bytes.replace(offset, text.size(), text);
    };
    put(0, kUuid);
    put(37, "12345");
    put(43, std::string(36, 'a'));
    put(80, std::string(36, 'b'));
    put(117, std::string(39, 'c'));
    SendTo("/oemmq_listener", bytes);
    EXPECT_EQ(NextCall(), "oem 12345|" + std::string(36, 'a') + "|" + std::string(36, 'b') + "|" +
                              std::string(39, 'c'));
    put(80, std::string(39, 'd') + '\0');
    SendTo("/mq_listener", bytes.substr(0, 120));
    EXPECT_EQ(NextCall(), "plain 12345|" + std::string(36, 'a') + "|" + std::string(39, 'd'));
  });
}

TEST_F(Hooks, FullLastFieldEndsAtTheEndOfTheMessage) {
  InFreshProcess([this] {
    EXPECT_EQ(RegisterOem(kUuid), 0);
    SendTo("/oemmq_listener", OemBytes(kUuid, "1", "a", "b", std::string(40, 'c')));
    EXPECT_EQ(NextCall(), "oem 1|a|b|" + std::string(40, 'c'));
  });
}

TEST_F(Hooks, PlainHookWithoutAHandlerIsTakenAndItsMessagesDropped) {
  InFreshProcess([this] {
    EXPECT_EQ(RegisterPlain(kUuid, nullptr), 0);
    EXPECT_EQ(RegisterPlain(kSecondUuid), 0);
    SendTo("/mq_listener", PlainBytes(kUuid, "1", "dropped", ""));
    SendTo("/mq_listener", PlainBytes(kSecondUuid, "2", "told", ""));
    EXPECT_EQ(NextCall(), "plain 2|told|");
  });
}

// A NULL UUID is refused only after the family has started.
TEST_F(Hooks, PlainHookWithoutAUuidIsRefusedOnceTheQueueIsThere) {
  InFreshProcess([this] {
    EXPECT_EQ(RegisterPlain(nullptr), 1);
    EXPECT_EQ(hookFunctionInitFlag, 1);
    EXPECT_EQ(zephlaneFunctionTable, nullptr);
  });
  EXPECT_EQ(Dump(), "");
  EXPECT_TRUE(QueueExists("/mq_listener"));
}

TEST_F(Hooks, PlainHookWithoutAConnectionIsRefused) {
  InFreshProcess([this] {
    const Output printed = Capture([this] {
      EXPECT_EQ(zephlaneHookFunctionRegister(nullptr, kUuid, program_.Argv(), TellPlain), 1);
    });
    EXPECT_EQ(zephlane::test::Masked(printed.out),
              zephlane::test::ApiReport("Argument: redis context"));
    EXPECT_EQ(zephlaneFunctionTable, nullptr);
  });
}

TEST_F(Hooks, OemHookWithAnyArgumentNullIsRefusedWithNothingDone) {
  char** argv = program_.Argv();
  const Output printed = Capture([&] {
    EXPECT_EQ(zephlaneOemHookFunctionRegister(nullptr, kUuid, argv, TellOem), 1);
    EXPECT_EQ(zephlaneOemHookFunctionRegister(ctx(), nullptr, argv, TellOem), 1);
    EXPECT_EQ(zephlaneOemHookFunctionRegister(ctx(), kUuid, nullptr, TellOem), 1);
    EXPECT_EQ(zephlaneOemHookFunctionRegister(ctx(), kUuid, argv, nullptr), 1);
  });
  EXPECT_EQ(printed.out + printed.err, "");
  EXPECT_EQ(hookOemFunctionInitFlag, 0);
  EXPECT_FALSE(QueueExists("/oemmq_listener"));
  EXPECT_EQ(Dump(), "");
}

}  // namespace
