// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const InstanceData kPairs[] = {{"a field", "two words"}, {"empty", ""}};
const SetData kItems[] = {{"two words"}, {""}};
const SetData kItem = {"a"};

// Queues one set and receives its reply: the reply is judged, not what was queued.
const CommandCase kPipelineCommands[] = {
    {"pipelineReceiveReply",
     [](redisContext* ctx) {
       const int queued = pipelineCreateObject(ctx, "a set", ZEPHLANE_TYPE_SET, &kItem, 1);
       return Shown(queued) + " " + Shown(pipelineReceiveReply(ctx, 1));
     },
     {},
     {{"SADD", "a set", "a"}},
     "0 0",
     {{kOtherStatus, "0 1"}, {kError, "0 1"}, {kZero, "0 1"}, {kBroken, "0 1"}, {kLost, "0 1"}}},
};

class PipelineCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(PipelineCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, PipelineCommandReplies, testing::ValuesIn(kPipelineCommands),
                         CaseName);

TEST(PipelineCommandArguments, NullIsRefusedBeforeAnythingIsQueued) {
  for (const int kind : {ZEPHLANE_TYPE_HASH, ZEPHLANE_TYPE_SET, ZEPHLANE_TYPE_LIST}) {
    ExpectNullsRefused(pipelineCreateObject, 1, "key", kind, &kPairs, 1);
  }
  ExpectNullsRefused(pipelineReceiveReply, 1, 1);
}

TEST(PipelineCommandArguments, KindsButHashSetAndListAreRefused) {
  for (const int kind : {3, 0, -1, 5, 8}) {
    SCOPED_TRACE(kind);
    const auto create = [kind](redisContext* ctx) {
      return Shown(pipelineCreateObject(ctx, "key", kind, kPairs, 1));
    };
    ExpectRefused(create, "1");
  }
}

TEST(PipelineCommandArguments, ReceivingNoReplyIsDoneAndSendsNothing) {
  ExpectRefused([](redisContext* ctx) { return Shown(pipelineReceiveReply(ctx, 0)); }, "0");
}

std::string Queued(redisContext* ctx, int kind, const void* data) {
  return Shown(pipelineCreateObject(ctx, "key", kind, data, 1));
}

const MemoryCase kPipelineMemory[] = {
    {"hash", 2, "1", {}, [](redisContext* ctx) { return Queued(ctx, ZEPHLANE_TYPE_HASH, kPairs); }},
    {"set", 2, "1", {}, [](redisContext* ctx) { return Queued(ctx, ZEPHLANE_TYPE_SET, kItems); }},
    {"list", 2, "1", {}, [](redisContext* ctx) { return Queued(ctx, ZEPHLANE_TYPE_LIST, kItems); }},
};

TEST(PipelineCommandMemory, EachFailingAllocationIsAFailure) {
  for (const MemoryCase& memory : kPipelineMemory) { ExpectFailureOfEachAllocation(memory); }
}

TEST(PipelineCommandMemory, FailedCreationQueuesNothing) {
  ScriptedServer server;
  AllocationFault fault(1);
  EXPECT_EQ(Queued(server.ctx(), ZEPHLANE_TYPE_HASH, kPairs), "1");
  fault.Disarm();
  ExpectNothingSent(server);
}

class PipelineCommands : public StoreTest {
 protected:
  // Queues one member of a set, as often as asked.
  static void QueueMembers(redisContext* ctx, int count) {
    for (int i = 0; i < count; ++i) {
      ASSERT_EQ(pipelineCreateObject(ctx, "set", ZEPHLANE_TYPE_SET, &kItem, 1), 0);
    }
  }
  ScriptedServer server_;
};

TEST_F(PipelineCommands, CreationSendsNothing) {
  QueueMembers(ctx(), 1);
  EXPECT_EQ(Dump(), "");
}

TEST_F(PipelineCommands, EachKindSendsItsCommandWithEmptyTextsToo) {
  for (const char* raw : {"+OK\r\n", ":2\r\n", ":2\r\n"}) { server_.WillReply(raw); }
  EXPECT_EQ(pipelineCreateObject(server_.ctx(), "a hash", ZEPHLANE_TYPE_HASH, kPairs, 2), 0);
  EXPECT_EQ(pipelineCreateObject(server_.ctx(), "a set", ZEPHLANE_TYPE_SET, kItems, 2), 0);
  EXPECT_EQ(pipelineCreateObject(server_.ctx(), "a list", ZEPHLANE_TYPE_LIST, kItems, 2), 0);
  EXPECT_EQ(pipelineReceiveReply(server_.ctx(), 3), 0);
  const std::vector<Words> commands = {{"HMSET", "a hash", "a field", "two words", "empty", ""},
                                       {"SADD", "a set", "two words", ""},
                                       {"RPUSH", "a list", "two words", ""}};
  EXPECT_EQ(server_.Received(), Wire(commands));
}

TEST_F(PipelineCommands, ReceivingWritesAllThatIsQueued) {
  EXPECT_EQ(pipelineCreateObject(ctx(), "a hash", ZEPHLANE_TYPE_HASH, kPairs, 2), 0);
  EXPECT_EQ(pipelineCreateObject(ctx(), "a set", ZEPHLANE_TYPE_SET, kItems, 2), 0);
  EXPECT_EQ(pipelineCreateObject(ctx(), "a list", ZEPHLANE_TYPE_LIST, kItems, 2), 0);
  EXPECT_EQ(pipelineReceiveReply(ctx(), 3), 0);
  EXPECT_EQ(Dump(),
            "hash a hash\n  a field = two words\n  empty = \n"
            "list a list\n  two words\n  \n"
            "set a set\n  \n  two words\n");
}

TEST_F(PipelineCommands, CountOfZeroIsQueuedAndThenRefusedByTheServer) {
  EXPECT_EQ(pipelineCreateObject(ctx(), "hash", ZEPHLANE_TYPE_HASH, kPairs, 0), 0);
  EXPECT_EQ(pipelineReceiveReply(ctx(), 1), 1);
  EXPECT_EQ(Dump(), "");
}

TEST_F(PipelineCommands, SetThatGainedNothingFailsTheBatchYetAllRepliesAreRead) {
  Ask({"SADD", "set", "a"});
  QueueMembers(ctx(), 1);
  EXPECT_EQ(pipelineCreateObject(ctx(), "list", ZEPHLANE_TYPE_LIST, kItems, 2), 0);
  EXPECT_EQ(pipelineReceiveReply(ctx(), 2), 1);
  EXPECT_EQ(Dump(), "list list\n  two words\n  \nset set\n  a\n");
  // The next reply is that of the next command.
  EXPECT_EQ(sismember(ctx(), "set", "a"), 1);
}

TEST_F(PipelineCommands, RefusedObjectFailsTheBatchYetAllRepliesAreRead) {
  Ask({"SET", "set", "text"});
  QueueMembers(ctx(), 2);
  EXPECT_EQ(pipelineCreateObject(ctx(), "hash", ZEPHLANE_TYPE_HASH, kPairs, 1), 0);
  EXPECT_EQ(pipelineReceiveReply(ctx(), 3), 1);
  EXPECT_EQ(Dump(), "hash hash\n  a field = two words\nstring set\n  text\n");
  EXPECT_EQ(redisSetCardinality(ctx(), "set"), -1);
}

TEST_F(PipelineCommands, ReceivingFromADeadConnectionEndsAsAFailure) {
  server_.WillClose();
  QueueMembers(server_.ctx(), 3);
  EXPECT_EQ(pipelineReceiveReply(server_.ctx(), 3), 1);
  EXPECT_EQ(pipelineReceiveReply(server_.ctx(), 1000), 1);
}

TEST_F(PipelineCommands, ConnectionLostBetweenRepliesIsAFailure) {
  server_.WillReply(":1\r\n");
  server_.WillClose(":1\r\n");
  QueueMembers(server_.ctx(), 3);
  EXPECT_EQ(pipelineReceiveReply(server_.ctx(), 3), 1);
}

TEST_F(PipelineCommands, NonBlockingConnectionWithoutReplyIsAFailure) {
  server_.ctx()->flags &= ~REDIS_BLOCK;
  EXPECT_EQ(pipelineReceiveReply(server_.ctx(), 1), 1);
}

TEST_F(PipelineCommands, ManyObjectsTakeOneRoundTrip) {
  for (int i = 0; i < 500; ++i) {
    const std::string key = "hash " + std::to_string(i);
    ASSERT_EQ(pipelineCreateObject(ctx(), key.c_str(), ZEPHLANE_TYPE_HASH, kPairs, 2), 0);
  }
  EXPECT_EQ(pipelineReceiveReply(ctx(), 500), 0);
  EXPECT_EQ(Ask({"DBSIZE"}), "500");
}

}  // namespace
}  // namespace zephlane::test
