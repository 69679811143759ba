// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "redis/reply.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const CommandCase kChannelCommands[] = {
    {"publishToChannel",
     [](redisContext* ctx) { return Shown(publishToChannel(ctx, "a channel", "a message")); },
     {},
     {{"PUBLISH", "a channel", "a message"}},
     "0",
     {{kBroken, "1"}, {kLost, "1"}}},
    {"subscribeFromChannel",
     [](redisContext* ctx) { return Shown(subscribeFromChannel(ctx, "a channel")); },
     {},
     {{"SUBSCRIBE", "a channel"}},
     "0",
     {{kBroken, "1"}, {kLost, "1"}}},
};

class ChannelCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(ChannelCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, ChannelCommandReplies, testing::ValuesIn(kChannelCommands), CaseName);

TEST(ChannelCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  ExpectNullsRefused(publishToChannel, 1, "channel", "message");
  ExpectNullsRefused(subscribeFromChannel, 1, "channel");
}

class ChannelCommands : public StoreTest {
 protected:
  // The next message of the subscribed connection, element by element.
  std::string NextMessage() {
    void* raw = nullptr;
    if (redisGetReply(ctx(), &raw) != REDIS_OK) { return "(no message)"; }
    const Reply message(raw);
    std::string text;
    for (std::size_t i = 0; i < message.ElementCount(); ++i) {
      text += (i == 0 ? "" : "|") + std::string(message.ElementText(i));
    }
    return text;
  }
};

TEST_F(ChannelCommands, SubscriberReceivesWhatIsPublished) {
  redisContext* publisher = ConnectToStore();
  EXPECT_EQ(subscribeFromChannel(ctx(), "a channel"), 0);
  EXPECT_EQ(publishToChannel(publisher, "a channel", "a message"), 0);
  EXPECT_EQ(NextMessage(), "message|a channel|a message");
  redisFree(publisher);
}

TEST_F(ChannelCommands, PublishingWithoutSubscribersIsDone) {
  EXPECT_EQ(publishToChannel(ctx(), "a channel", "a message"), 0);
}

TEST_F(ChannelCommands, PublishingTakesErrorReplyAsSuccess) {
  ASSERT_EQ(subscribeFromChannel(ctx(), "a channel"), 0);
  // A subscriber may not publish: the server refuses.
  EXPECT_EQ(publishToChannel(ctx(), "a channel", "a message"), 0);
}

}  // namespace
}  // namespace zephlane::test
