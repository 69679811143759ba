// SPDX-License-Identifier: MIT
//
// Redis channels, with subscriptions made from C too.
#include <string>

#include <gtest/gtest.h>

#include "api/subscribeFromC.h"
#include "support/output.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::ConnectToStore;
using zephlane::test::Output;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

class Channels : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    subscriber_ = ConnectToStore();
  }
  void TearDown() override {
    redisFree(subscriber_);
    StoreTest::TearDown();
  }
  // The words of the next message that the subscriber gets, a blank after each.
  std::string NextMessage() {
    void* raw = nullptr;
    EXPECT_EQ(redisGetReply(subscriber_, &raw), REDIS_OK);
    auto* const reply = static_cast<redisReply*>(raw);
    std::string words;
    for (std::size_t i = 0; i < reply->elements; ++i) {
      words += std::string(reply->element[i]->str, reply->element[i]->len) + " ";
    }
    freeReplyObject(reply);
    return words;
  }
  redisContext* subscriber_ = nullptr;
};

TEST_F(Channels, SubscriberGetsWhatIsPublished) {
  EXPECT_EQ(zephlaneSubscribeFromChannel(subscriber_, "a channel"), 0);
  EXPECT_EQ(zephlanePublishToChannel(ctx(), "a channel", "a message"), 0);
  EXPECT_EQ(NextMessage(), "message a channel a message ");
}

TEST_F(Channels, PublishingToNobodyIsASuccess) {
  EXPECT_EQ(zephlanePublishToChannel(ctx(), "channel", "message"), 0);
}

TEST_F(Channels, FurtherArgumentsOfASubscriptionAreIgnored) {
  EXPECT_EQ(SubscribeWithMore(subscriber_, "channel"), 0);
  EXPECT_EQ(Ask({"PUBSUB", "CHANNELS"}), "channel");
  EXPECT_EQ(zephlanePublishToChannel(ctx(), "channel", "message"), 0);
  EXPECT_EQ(NextMessage(), "message channel message ");
}

TEST_F(Channels, CommandsArePublishAndSubscribe) {
  ScriptedServer server;
  server.WillReply(":1\r\n");
  server.WillReply("*3\r\n$9\r\nsubscribe\r\n$9\r\na channel\r\n:1\r\n");
  server.WillReply("*3\r\n$9\r\nsubscribe\r\n$5\r\nother\r\n:2\r\n");
  EXPECT_EQ(zephlanePublishToChannel(server.ctx(), "a channel", "a message"), 0);
  EXPECT_EQ(SubscribeWithMore(server.ctx(), "a channel"), 0);
  EXPECT_EQ(SubscribeWithNothingMore(server.ctx(), "other"), 0);
  EXPECT_EQ(server.Received(),
            "*3\r\n$7\r\nPUBLISH\r\n$9\r\na channel\r\n$9\r\na message\r\n"
            "*2\r\n$9\r\nSUBSCRIBE\r\n$9\r\na channel\r\n"
            "*2\r\n$9\r\nSUBSCRIBE\r\n$5\r\nother\r\n");
}

TEST_F(Channels, ErrorReplyIsASuccess) {
  ScriptedServer server;
  server.WillReply("-ERR no\r\n");
  server.WillReply("-ERR no\r\n");
  EXPECT_EQ(zephlanePublishToChannel(server.ctx(), "channel", "message"), 0);
  EXPECT_EQ(zephlaneSubscribeFromChannel(server.ctx(), "channel"), 0);
}

TEST_F(Channels, MissingArgumentOrReplyIsAFailureThatPrintsNothing) {
  const Output printed = Capture([this] {
    EXPECT_EQ(zephlanePublishToChannel(nullptr, "channel", "message"), 1);
    EXPECT_EQ(zephlanePublishToChannel(ctx(), nullptr, "message"), 1);
    EXPECT_EQ(zephlanePublishToChannel(ctx(), "channel", nullptr), 1);
    EXPECT_EQ(zephlaneSubscribeFromChannel(nullptr, "channel"), 1);
    EXPECT_EQ(zephlaneSubscribeFromChannel(ctx(), nullptr), 1);
    EXPECT_EQ(SubscribeWithMore(nullptr, "channel"), 1);
    ScriptedServer server;
    server.WillClose();
    EXPECT_EQ(zephlanePublishToChannel(server.ctx(), "channel", "message"), 1);
    EXPECT_EQ(zephlaneSubscribeFromChannel(server.ctx(), "channel"), 1);
  });
  EXPECT_EQ(printed.out + printed.err, "");
}

}  // namespace
