// SPDX-License-Identifier: MIT
#include "redis/command.h"

#include <climits>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

namespace zephlane::test {
namespace {

// The reply of a server that has been given these bytes.
Reply ReplyOf(ScriptedServer& server, const std::string& raw) {
  server.WillReply(raw);
  return Command(server.ctx(), "PING");
}

class Replies : public testing::Test {
 protected:
  ScriptedServer server_;
};

TEST_F(Replies, LostConnectionIsNoReply) {
  server_.WillClose();
  const Reply reply = Command(server_.ctx(), "PING");
  EXPECT_FALSE(reply);
  EXPECT_FALSE(reply.Is(REDIS_REPLY_NIL));
  EXPECT_FALSE(reply.IsInteger(0));
}

TEST_F(Replies, NilHasNoText) {
  const Reply reply = ReplyOf(server_, kNil.raw);
  EXPECT_TRUE(reply.Is(REDIS_REPLY_NIL));
  EXPECT_EQ(reply.Text(), "");
  EXPECT_EQ(reply.ElementCount(), 0U);
}

TEST_F(Replies, TextMayHoldAnyByte) {
  const std::string text("a\0b\r\n", 5);
  const Reply reply = ReplyOf(server_, BulkReply(text));
  EXPECT_TRUE(reply.Is(REDIS_REPLY_STRING));
  EXPECT_EQ(reply.Text(), text);
}

TEST_F(Replies, IntegerIsComparedWithItsType) {
  const Reply number = ReplyOf(server_, ":7\r\n");
  EXPECT_TRUE(number.IsInteger(7));
  EXPECT_FALSE(number.IsInteger(8));
  EXPECT_FALSE(ReplyOf(server_, kOk.raw).IsInteger(0));
}

TEST_F(Replies, ElementsTellNilFromEmpty) {
  const Reply reply = ReplyOf(server_, "*3\r\n$1\r\na\r\n$0\r\n\r\n$-1\r\n");
  ASSERT_EQ(reply.ElementCount(), 3U);
  EXPECT_EQ(reply.ElementText(0), "a");
  EXPECT_EQ(reply.ElementText(2), "");
  EXPECT_TRUE(reply.ElementHasText(1));
  EXPECT_FALSE(reply.ElementHasText(2));
}

class Commands : public testing::Test {
 protected:
  ScriptedServer server_;
};

TEST_F(Commands, BlanksOfArgumentsStayInTheirWord) {
  (void)Command(server_.ctx(), "SET %s-TTL %d %s ", "a key", -7, "");
  EXPECT_EQ(server_.Received(), Wire(Words{"SET", "a key-TTL", "-7", ""}));
}

TEST_F(Commands, NumbersCoverTheirTypes) {
  (void)Command(server_.ctx(), "X %d %d %u %u", INT_MIN, INT_MAX, 0U, UINT_MAX);
  EXPECT_EQ(server_.Received(), Wire(Words{"X", "-2147483648", "2147483647", "0", "4294967295"}));
}

TEST_F(Commands, FormsThatAreNotKnownAreNotSent) {
  EXPECT_FALSE(Command(server_.ctx(), "X %x", 1U));
  EXPECT_FALSE(Command(server_.ctx(), "X a%s", "b"));
  EXPECT_FALSE(Command(server_.ctx(), "X %s%s", "a", "b"));
  EXPECT_FALSE(Command(server_.ctx(), "X %s-A %s-B", "a", "b"));
  EXPECT_FALSE(Command(server_.ctx(), "1 2 3 4 5 6 7"));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(Commands, IsNoReplyWithoutMemoryForAJoinedWord) {
  AllocationFault fault(1);
  const Reply reply = Command(server_.ctx(), "DEL %s-TTL", "key");
  fault.Disarm();
  EXPECT_FALSE(reply);
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(Commands, BlanksOfATextSeparateWords) {
  (void)CommandOfText(server_.ctx(), "SADD  set one two ");
  EXPECT_EQ(server_.Received(), Wire(Words{"SADD", "set", "one", "two"}));
}

class ArgumentVectors : public testing::Test {
 protected:
  ScriptedServer server_;
};

TEST_F(ArgumentVectors, SendTheirWordsInOrder) {
  ArgumentVector arguments("RPUSH", "a key", 1, 3);
  const Pointers words = {"two words", ""};
  arguments.AddAll(words.Get(), 2);
  arguments.Add("100%s");
  EXPECT_TRUE(arguments);
  server_.WillReply(":3\r\n");
  EXPECT_TRUE(std::move(arguments).Send(server_.ctx()).IsInteger(3));
  EXPECT_EQ(server_.Received(), Wire(Words{"RPUSH", "a key", "two words", "", "100%s"}));
}

TEST_F(ArgumentVectors, SendFewerWordsThanTheyHaveRoomFor) {
  ArgumentVector arguments("HMSET", "key", 2, 100);
  (void)std::move(arguments).Send(server_.ctx());
  EXPECT_EQ(server_.Received(), Wire(Words{"HMSET", "key"}));
}

TEST_F(ArgumentVectors, AppendQueuesWithoutSending) {
  ArgumentVector arguments("SADD", "key", 1, 1);
  const SetData item = {"member"};
  arguments.AddAll(&item, 1);
  EXPECT_TRUE(std::move(arguments).Append(server_.ctx()));
  EXPECT_EQ(server_.Received(), "");
  server_.WillReply(":1\r\n");
  void* raw = nullptr;
  ASSERT_EQ(redisGetReply(server_.ctx(), &raw), REDIS_OK);
  EXPECT_TRUE(Reply(raw).IsInteger(1));
  EXPECT_EQ(server_.Received(), Wire(Words{"SADD", "key", "member"}));
}

TEST_F(ArgumentVectors, WithANullWordSendNothing) {
  ArgumentVector arguments("SADD", "key", 1, 1);
  const char* missing = nullptr;
  arguments.Add(missing);
  EXPECT_FALSE(arguments);
  EXPECT_FALSE(std::move(arguments).Send(server_.ctx()));
  ExpectNothingSent(server_);
}

TEST_F(ArgumentVectors, WithAWordTooManySendNothing) {
  ArgumentVector arguments("SADD", "key", 1, 1);
  arguments.Add("member");
  EXPECT_TRUE(arguments);
  arguments.Add("one more");
  EXPECT_FALSE(arguments);
  EXPECT_FALSE(std::move(arguments).Append(server_.ctx()));
  ExpectNothingSent(server_);
}

TEST_F(ArgumentVectors, OfMoreWordsThanACommandCanHaveSendNothing) {
  for (const std::size_t count : {std::size_t{INT_MAX} - 1, SIZE_MAX - 1, SIZE_MAX}) {
    ArgumentVector arguments("HMSET", "key", 2, count);
    EXPECT_FALSE(arguments);
    EXPECT_FALSE(std::move(arguments).Send(server_.ctx()));
  }
  ExpectNothingSent(server_);
}

}  // namespace
}  // namespace zephlane::test
