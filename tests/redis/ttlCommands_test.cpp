// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const Words kAskForSeconds = {"HGET", "a key-TTL", "TtlSec"};

std::string RestTime(redisContext* ctx) {
  unsigned int seconds = 99;
  const int result = getRestTtlTimeFromHash(ctx, "a key", &seconds);
  return Shown(result) + " " + std::to_string(seconds);
}

const CommandCase kTtlCommands[] = {
    // The length alone is judged: whatever has a text is a companion that is there.
    {"isHashTimeOut",
     [](redisContext* ctx) { return Shown(isHashTimeOut(ctx, "a key")); },
     {},
     {kAskForSeconds},
     "1",
     {{kOk, "0"},
      {kOkAndMore, "0"},
      {kOtherStatus, "0"},
      {kError, "0"},
      {kText, "0"},
      {kBroken, "0"},
      {kLost, "0"}}},
    {"getRestTtlTimeFromHash",
     RestTime,
     {kText.raw},
     {kAskForSeconds, {"TTL", "a key-TTL"}},
     "0 0",
     {{kOne, "0 1"}, {kSeven, "0 7"}, {kBroken, "1 99"}, {kLost, "1 99"}}},
    {"setKeyTimeoutAsking",
     [](redisContext* ctx) { return Shown(setKeyTimeout(ctx, "a key", 60)); },
     {},
     {{"EXISTS", "a key"}},
     "1",
     {{kOne, "1", {{"EXPIRE", "a key", "60"}}}}},
    {"setKeyTimeout",
     [](redisContext* ctx) { return Shown(setKeyTimeout(ctx, "a key", 4294967295U)); },
     {kOne.raw},
     {{"EXISTS", "a key"}, {"EXPIRE", "a key", "4294967295"}},
     "0",
     {{kError, "1"}, {kBroken, "1"}, {kLost, "1"}}},
};

class TtlCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(TtlCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, TtlCommandReplies, testing::ValuesIn(kTtlCommands), CaseName);

TEST(TtlCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  unsigned int seconds = 99;
  ExpectNullsRefused(addTtlToHash, 1, "key", 60);
  ExpectNullsRefused(isHashTimeOut, 0, "key");
  ExpectNullsRefused(getRestTtlTimeFromHash, 1, "key", &seconds);
  ExpectNullsRefused(setKeyTimeout, 1, "key", 60);
  EXPECT_EQ(seconds, 99U);
}

TEST(TtlCommandArguments, ZeroSecondsAreRefusedBeforeAnythingIsSent) {
  ExpectRefused([](redisContext* ctx) { return Shown(addTtlToHash(ctx, "key", 0)); }, "1");
  ExpectRefused([](redisContext* ctx) { return Shown(setKeyTimeout(ctx, "key", 0)); }, "1");
}

class TtlCommands : public StoreTest {
 protected:
  // That a key expires after 1 to 1000 seconds, however slow the machine is.
  void ExpectExpiryWithinThousandSeconds(const std::string& key) {
    const int seconds = std::stoi(Ask({"TTL", key}));
    EXPECT_GT(seconds, 0);
    EXPECT_LE(seconds, 1000);
  }
  ScriptedServer server_;
};

TEST_F(TtlCommands, AddingSendsFieldCompanionAndExpiry) {
  for (const char* raw : {":1\r\n", ":1\r\n", ":1\r\n"}) { server_.WillReply(raw); }
  EXPECT_EQ(addTtlToHash(server_.ctx(), "a key", 60), 0);
  const std::vector<Words> commands = {{"HSET", "a key", "TtlId", "a key-TTL"},
                                       {"HSET", "a key-TTL", "TtlSec", "60"},
                                       {"EXPIRE", "a key-TTL", "60"}};
  EXPECT_EQ(server_.Received(), Wire(commands));
}

TEST_F(TtlCommands, AddingIgnoresEveryReply) {
  for (const ReplyKind& reply : kEveryReply) {
    SCOPED_TRACE(reply.name);
    ScriptedServer server;
    reply.raw[0] != '\0' ? server.WillReply(reply.raw) : server.WillClose();
    EXPECT_EQ(addTtlToHash(server.ctx(), "key", 60), 0);
  }
}

TEST_F(TtlCommands, AddingLeavesTheExpiryToTheCompanion) {
  Ask({"HSET", "key", "field", "value"});
  EXPECT_EQ(addTtlToHash(ctx(), "key", 1000), 0);
  EXPECT_EQ(Dump(),
            "hash key\n  TtlId = key-TTL\n  field = value\n"
            "hash key-TTL\n  TtlSec = 1000\n");
  EXPECT_EQ(Ask({"TTL", "key"}), "-1");
  ExpectExpiryWithinThousandSeconds("key-TTL");
}

TEST_F(TtlCommands, AddingNegativeSecondsLeavesAHashTimedOut) {
  EXPECT_EQ(addTtlToHash(ctx(), "key", -1), 0);
  EXPECT_EQ(Dump(), "hash key\n  TtlId = key-TTL\n");
  EXPECT_EQ(isHashTimeOut(ctx(), "key"), 1);
}

TEST_F(TtlCommands, HashIsTimedOutWhenItsCompanionIsGone) {
  EXPECT_EQ(addTtlToHash(ctx(), "key", 1000), 0);
  EXPECT_EQ(isHashTimeOut(ctx(), "key"), 0);
  Ask({"DEL", "key-TTL"});
  EXPECT_EQ(isHashTimeOut(ctx(), "key"), 1);
}

TEST_F(TtlCommands, HashThatNeverHadACompanionIsTimedOut) {
  Ask({"HSET", "key", "field", "value"});
  EXPECT_EQ(isHashTimeOut(ctx(), "key"), 1);
}

TEST_F(TtlCommands, RestTimeWithoutCompanionIsZero) {
  Ask({"HSET", "key", "field", "value"});
  unsigned int seconds = 99;
  EXPECT_EQ(getRestTtlTimeFromHash(ctx(), "key", &seconds), 0);
  EXPECT_EQ(seconds, 0U);
}

TEST_F(TtlCommands, RestTimeIsWhatTheCompanionHasLeft) {
  EXPECT_EQ(addTtlToHash(ctx(), "key", 1000), 0);
  unsigned int seconds = 0;
  EXPECT_EQ(getRestTtlTimeFromHash(ctx(), "key", &seconds), 0);
  EXPECT_GT(seconds, 0U);
  EXPECT_LE(seconds, 1000U);
}

TEST_F(TtlCommands, RestTimeOfACompanionWithoutExpiryIsZero) {
  Ask({"HSET", "key-TTL", "TtlSec", "60"});
  unsigned int seconds = 99;
  EXPECT_EQ(getRestTtlTimeFromHash(ctx(), "key", &seconds), 0);
  EXPECT_EQ(seconds, 0U);
}

TEST_F(TtlCommands, RestTimeOfALostConnectionIsAFailure) {
  server_.WillClose();
  unsigned int seconds = 99;
  EXPECT_EQ(getRestTtlTimeFromHash(server_.ctx(), "key", &seconds), 1);
  EXPECT_EQ(seconds, 99U);
}

TEST_F(TtlCommands, TimeoutNeedsNoCompanion) {
  Ask({"SET", "text", "value"});
  EXPECT_EQ(setKeyTimeout(ctx(), "text", 1000), 0);
  ExpectExpiryWithinThousandSeconds("text");
  EXPECT_EQ(Dump(), "string text\n  value\n");
}

TEST_F(TtlCommands, TimeoutOfAMissingKeyIsAFailure) {
  EXPECT_EQ(setKeyTimeout(ctx(), "missing", 60), 1);
  EXPECT_EQ(Dump(), "");
}

}  // namespace
}  // namespace zephlane::test
