// SPDX-License-Identifier: MIT
//
// The sets of the store that list the queues of a UUID.
#include <string>

#include <gtest/gtest.h>

#include "support/output.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::ScriptedServer;

using HookLists = zephlane::test::StoreTest;

TEST_F(HookLists, OneSelectsTheOemListAndAnyOtherValueThePlainOne) {
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/oem", 1), 0);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/plain", 0), 0);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/other", 2), 0);
  EXPECT_EQ(Dump(), "set u-mqList\n  /other\n  /plain\nset u-oem-mqList\n  /oem\n");
}

TEST_F(HookLists, QueueIsAddedByOneCommand) {
  ScriptedServer server;
  server.WillReply(":1\r\n");
  EXPECT_EQ(mappingMsgQueueToUUID(server.ctx(), "u", "/mq two", 1), 0);
  EXPECT_EQ(server.Received(), "*3\r\n$4\r\nSADD\r\n$12\r\nu-oem-mqList\r\n$7\r\n/mq two\r\n");
}

TEST_F(HookLists, QueueThatIsListedAlreadyIsASuccess) {
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/mq", 0), 0);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/mq", 0), 0);
}

TEST_F(HookLists, QueueNameIsCutTo1023Characters) {
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", std::string(1023, 'q').c_str(), 0), 0);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "v", std::string(1024, 'q').c_str(), 0), 0);
  EXPECT_EQ(Ask({"SMEMBERS", "u-mqList"}), std::string(1023, 'q'));
  EXPECT_EQ(Ask({"SMEMBERS", "v-mqList"}), std::string(1023, 'q'));
}

TEST_F(HookLists, KeyIsCutTo254Characters) {
  const std::string uuid(246, 'u');  // with "-oem-mqList" 257 characters
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), uuid.c_str(), "/mq", 1), 0);
  EXPECT_EQ(Dump(), "set " + uuid + "-oem-mqL\n  /mq\n");
}

TEST_F(HookLists, MissingArgumentsAreRefused) {
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), nullptr, "/mq", 0), 1);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", nullptr, 0), 1);
  const Output printed =
      Capture([] { EXPECT_EQ(mappingMsgQueueToUUID(nullptr, "u", "/mq", 0), 1); });
  EXPECT_EQ(Masked(printed.out), ApiReport("Argument: redis context"));
  EXPECT_EQ(Dump(), "");
}

TEST_F(HookLists, KeyOfAnotherTypeIsAFailure) {
  EXPECT_EQ(Ask({"SET", "u-oem-mqList", "text"}), "OK");
  const Output printed =
      Capture([this] { EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/mq", 1), 1); });
  EXPECT_EQ(printed.out, " Create Set \"u-oem-mqList\" Failed !!!\n");
}

TEST_F(HookLists, UuidHasAMessageHandlerWhenAQueueIsListed) {
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), "u"), 1);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/plain", 0), 0);
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), "u"), 1);
  EXPECT_EQ(mappingMsgQueueToUUID(ctx(), "u", "/oem", 1), 0);
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), "u"), 0);
}

TEST_F(HookLists, MessageHandlerIsLookedForByOneCommand) {
  ScriptedServer server;
  server.WillReply("*1\r\n$3\r\n/mq\r\n");
  EXPECT_EQ(zephlaneHasOemMessageHandler(server.ctx(), "u"), 0);
  EXPECT_EQ(server.Received(), "*2\r\n$8\r\nSMEMBERS\r\n$12\r\nu-oem-mqList\r\n");
}

TEST_F(HookLists, NoMessageHandlerWhenTheListCannotBeReadOrAnArgumentIsNull) {
  EXPECT_EQ(Ask({"SET", "u-oem-mqList", "text"}), "OK");
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), "u"), 1);
  EXPECT_EQ(zephlaneHasOemMessageHandler(nullptr, "u"), 1);
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), nullptr), 1);
  ScriptedServer server;
  server.WillClose();
  EXPECT_EQ(zephlaneHasOemMessageHandler(server.ctx(), "u"), 1);
}

}  // namespace
