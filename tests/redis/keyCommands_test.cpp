// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

// What getKey() or typeCmd() answers, and the buffer afterwards.
std::string Read(int (*function)(redisContext*, const char*, char*), redisContext* ctx) {
  char out[1024] = "before";
  const int result = function(ctx, "a key", out);
  return Shown(result) + " " + out;
}

const CommandCase kKeyCommands[] = {
    {"deleteKey",
     [](redisContext* ctx) { return Shown(deleteKey(ctx, "a key")); },
     {},
     {{"DEL", "a key"}},
     "0",
     {}},
    {"setKey",
     [](redisContext* ctx) { return Shown(setKey(ctx, "a key", "a value")); },
     {},
     {{"SET", "a key", "a value"}},
     "0",
     {{kBroken, "1"}, {kLost, "1"}}},
    {"getKey",
     [](redisContext* ctx) { return Read(getKey, ctx); },
     {},
     {{"GET", "a key"}},
     "1 before",
     {{kText, "0 valuee"}, {kEmptyText, "0 before"}}},
    {"incrKey",
     [](redisContext* ctx) { return Shown(incrKey(ctx, "a key")); },
     {},
     {{"INCR", "a key"}},
     "0",
     {{kBroken, "1"}, {kLost, "1"}}},
    {"renameKey",
     [](redisContext* ctx) { return Shown(renameKey(ctx, "a key", "a name")); },
     {},
     {{"RENAME", "a key", "a name"}},
     "0",
     {{kError, "1"}, {kBroken, "1"}, {kLost, "1"}}},
    {"typeCmd",
     [](redisContext* ctx) { return Read(typeCmd, ctx); },
     {},
     {{"TYPE", "a key"}},
     "1 before",
     {{kOk, "0 OKfore"}, {kOkAndMore, "0 OKAYre"}, {kOtherStatus, "0 QUEUED"}}},
};

class KeyCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(KeyCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, KeyCommandReplies, testing::ValuesIn(kKeyCommands), CaseName);

TEST(KeyCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  char out[1024] = "before";
  ExpectNullsRefused(deleteKey, 1, "key");
  ExpectNullsRefused(setKey, 1, "key", "value");
  ExpectNullsRefused(getKey, 1, "key", out);
  ExpectNullsRefused(incrKey, 1, "key");
  ExpectNullsRefused(renameKey, 1, "key", "name");
  ExpectNullsRefused(typeCmd, 1, "key", out);
  EXPECT_STREQ(out, "before");
}

class KeyCommands : public StoreTest {};

TEST_F(KeyCommands, DeletingRemovesAKeyOfAnyType) {
  Ask({"SET", "text", "value"});
  Ask({"HSET", "a hash", "field", "value"});
  EXPECT_EQ(deleteKey(ctx(), "text"), 0);
  EXPECT_EQ(deleteKey(ctx(), "a hash"), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(KeyCommands, DeletingAMissingKeyIsDone) {
  EXPECT_EQ(deleteKey(ctx(), "missing"), 0);
}

TEST_F(KeyCommands, SettingReplacesWhateverTheKeyHeld) {
  Ask({"RPUSH", "a key", "item"});
  EXPECT_EQ(setKey(ctx(), "a key", "two words"), 0);
  EXPECT_EQ(Dump(), "string a key\n  two words\n");
}

TEST_F(KeyCommands, SettingTakesErrorReplyAsSuccess) {
  ScriptedServer server;
  server.WillReply("-OOM command not allowed\r\n");
  EXPECT_EQ(setKey(server.ctx(), "key", "value"), 0);
}

TEST_F(KeyCommands, ReadingAMissingKeyIsAFailure) {
  char out[1024] = "before";
  EXPECT_EQ(getKey(ctx(), "missing", out), 1);
  EXPECT_STREQ(out, "before");
}

TEST_F(KeyCommands, ReadingAnotherTypeIsAFailure) {
  Ask({"RPUSH", "list", "item"});
  char out[1024] = "before";
  EXPECT_EQ(getKey(ctx(), "list", out), 1);
  EXPECT_STREQ(out, "before");
}

TEST_F(KeyCommands, ReadingAddsNoTerminator) {
  Ask({"SET", "key", "abc"});
  char out[] = {'1', '2', '3', '4', '\0'};
  EXPECT_EQ(getKey(ctx(), "key", out), 0);
  EXPECT_STREQ(out, "abc4");
}

TEST_F(KeyCommands, ReadingIsCutAt1023Characters) {
  for (const std::size_t length : kLengthsAroundTheLimit) {
    SCOPED_TRACE(length);
    const std::string value(length, 'v');
    Ask({"SET", "key", value});
    std::string out(1024, '#');
    EXPECT_EQ(getKey(ctx(), "key", out.data()), 0);
    EXPECT_EQ(out, CutToRecord(value) + "#");
  }
}

TEST_F(KeyCommands, IncrementingCountsAMissingKeyAsZero) {
  EXPECT_EQ(incrKey(ctx(), "a key"), 0);
  EXPECT_EQ(incrKey(ctx(), "a key"), 0);
  EXPECT_EQ(Dump(), "string a key\n  2\n");
}

TEST_F(KeyCommands, IncrementingTakesErrorReplyAsSuccess) {
  Ask({"SET", "key", "no number"});
  EXPECT_EQ(incrKey(ctx(), "key"), 0);
  EXPECT_EQ(Dump(), "string key\n  no number\n");
}

TEST_F(KeyCommands, RenamingReplacesAKeyThatHadTheName) {
  Ask({"SET", "old name", "kept"});
  Ask({"SET", "new name", "replaced"});
  EXPECT_EQ(renameKey(ctx(), "old name", "new name"), 0);
  EXPECT_EQ(Dump(), "string new name\n  kept\n");
}

TEST_F(KeyCommands, RenamingAMissingKeyIsAFailure) {
  Ask({"SET", "new name", "kept"});
  EXPECT_EQ(renameKey(ctx(), "missing", "new name"), 1);
  EXPECT_EQ(Dump(), "string new name\n  kept\n");
}

TEST_F(KeyCommands, TypeIsAWord) {
  Ask({"SET", "string", "value"});
  Ask({"RPUSH", "list", "item"});
  Ask({"SADD", "set", "member"});
  Ask({"ZADD", "zset", "1", "member"});
  Ask({"HSET", "hash", "field", "value"});
  for (const char* type : {"string", "list", "set", "zset", "hash", "none"}) {
    char out[1024] = "";
    EXPECT_EQ(typeCmd(ctx(), type, out), 0);
    EXPECT_STREQ(out, type);
  }
}

TEST_F(KeyCommands, TypeGetsNoTerminator) {
  char out[1024] = "12345";
  EXPECT_EQ(typeCmd(ctx(), "missing", out), 0);
  EXPECT_STREQ(out, "none5");
}

TEST_F(KeyCommands, TypeIsCutAt1023Characters) {
  ScriptedServer server;
  server.WillReply("+" + std::string(1024, 't') + "\r\n");
  std::string out(1024, '#');
  EXPECT_EQ(typeCmd(server.ctx(), "key", out.data()), 0);
  EXPECT_EQ(out, std::string(1023, 't') + "#");
}

}  // namespace
}  // namespace zephlane::test
