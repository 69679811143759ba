// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const Words kAskForMember = {"SISMEMBER", "a set", "a member"};

std::string Instances(redisContext* ctx) {
  SetData out[2] = {{"before"}, {""}};
  const int result = getInstance(ctx, "a set", 2, out);
  return Shown(result) + " " + out[0].aObjectID + " " + out[1].aObjectID;
}

const CommandCase kSetCommands[] = {
    {"redisSetCardinality",
     [](redisContext* ctx) { return Shown(redisSetCardinality(ctx, "a set")); },
     {},
     {{"SCARD", "a set"}},
     "-1",
     {{kOne, "1"}, {kSeven, "7"}, {kMinusTwo, "-2"}}},
    {"getInstanceCount",
     [](redisContext* ctx) {
       unsigned int count = 99;
       const int result = getInstanceCount(ctx, "a set", &count);
       return Shown(result) + " " + std::to_string(count);
     },
     {},
     {{"SMEMBERS", "a set"}},
     "1 99",
     {{kEmptyArray, "0 0"}, {kPair, "0 2"}, {kOdd, "0 3"}, {kPairWithNil, "0 2"}}},
    {"getInstance",
     Instances,
     {},
     {{"SMEMBERS", "a set"}},
     "1 before ",
     {{kPair, "0 aefore b"}, {kPairWithNil, "0 aefore "}}},
    {"deleteInstanceInSet",
     [](redisContext* ctx) { return Shown(deleteInstanceInSet(ctx, "a set", "a member")); },
     {},
     {{"SREM", "a set", "a member"}},
     "1",
     {{kOne, "0"}}},
    {"sismember",
     [](redisContext* ctx) { return Shown(sismember(ctx, "a set", "a member")); },
     {},
     {kAskForMember},
     "-1",
     {{kZero, "0"}, {kOne, "1"}, {kSeven, "7"}, {kMinusTwo, "-2"}}},
    {"sdiffKey",
     [](redisContext* ctx) { return Shown(sdiffKey(ctx, "set")); },
     {},
     {{"sdiff", "set"}},
     "-1",
     {{kEmptyArray, "0"}, {kPair, "1"}, {kOdd, "1"}, {kPairWithNil, "1"}}},
    {"saddCmd",
     [](redisContext* ctx) { return Shown(saddCmd(ctx, "set one two")); },
     {},
     {{"SADD", "set", "one", "two"}},
     "1",
     {{kMinusTwo, "0"}, {kZero, "0"}, {kOne, "0"}, {kSeven, "0"}}},
    {"redisSetMultipleAdd",
     [](redisContext* ctx) {
       const Pointers members = {"a member"};
       return Shown(redisSetMultipleAdd(ctx, "a set", members.Get(), 1));
     },
     {},
     {{"SADD", "a set", "a member"}},
     "1",
     {{kOne, "0"},
      {kMinusTwo, "1", {kAskForMember}},
      {kZero, "1", {kAskForMember}},
      {kSeven, "1", {kAskForMember}}}},
    {"createSetTable",
     [](redisContext* ctx) {
       const SetData members[] = {{""}, {"a member"}};
       return Shown(createSetTable(ctx, "a set", members, 2));
     },
     {},
     {{"SADD", "a set", "a member"}},
     "1",
     {{kOne, "0"},
      {kMinusTwo, "1", {{"SISMEMBER", "a set", ""}}},
      {kZero, "1", {{"SISMEMBER", "a set", ""}}},
      {kSeven, "1", {{"SISMEMBER", "a set", ""}}}}},
};

class SetCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(SetCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, SetCommandReplies, testing::ValuesIn(kSetCommands), CaseName);

TEST(SetCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  const Pointers members = {"member"};
  const SetData record = {"member"};
  SetData out = {};
  ExpectNullsRefused(redisSetCardinality, -1, "set");
  ExpectNullsRefused(getInstance, 1, "set", 1, &out);
  ExpectNullsRefused(deleteInstanceInSet, 1, "set", "member");
  ExpectNullsRefused(sismember, -1, "set", "member");
  ExpectNullsRefused(sdiffKey, -1, "set");
  ExpectNullsRefused(saddCmd, 1, "set member");
  ExpectNullsRefused(redisSetMultipleAdd, 1, "set", members.Get(), 1);
  ExpectNullsRefused(createSetTable, 1, "set", &record, 1);
}

TEST(SetCommandArguments, InstanceCountNeedsConnectionAndKeyOnly) {
  ScriptedServer server;
  unsigned int count = 99;
  EXPECT_EQ(getInstanceCount(nullptr, "set", &count), 1);
  EXPECT_EQ(getInstanceCount(server.ctx(), nullptr, &count), 1);
  EXPECT_EQ(count, 99U);
  ExpectNothingSent(server);
  server.WillReply("*0\r\n");
  EXPECT_EQ(getInstanceCount(server.ctx(), "set", nullptr), 0);
}

TEST(SetCommandArguments, CountOfZeroIsRefusedBeforeAnythingIsSent) {
  const auto read = [](redisContext* ctx) {
    SetData out = {};
    return Shown(getInstance(ctx, "set", 0, &out));
  };
  ExpectRefused(read, "1");
  const auto add = [](redisContext* ctx) {
    return Shown(redisSetMultipleAdd(ctx, "set", Pointers{"member"}.Get(), 0));
  };
  ExpectRefused(add, "1");
}

TEST(SetCommandArguments, NullAmongTheMembersIsRefusedBeforeAnythingIsSent) {
  char member[] = "member";
  char* const first_missing[] = {nullptr, member};
  char* const second_missing[] = {member, nullptr};
  for (char* const* members : {first_missing, second_missing}) {
    const auto add = [members](redisContext* ctx) {
      return Shown(redisSetMultipleAdd(ctx, "set", members, 2));
    };
    ExpectRefused(add, "1");
  }
}

const MemoryCase kSetMemory[] = {
    {"sdiffKey",
     2,
     "-1",
     {"*0\r\n"},
     [](redisContext* ctx) { return Shown(sdiffKey(ctx, "set")); }},
    {"saddCmd",
     2,
     "1",
     {":1\r\n"},
     [](redisContext* ctx) { return Shown(saddCmd(ctx, "set member")); }},
    {"redisSetMultipleAdd",
     2,
     "1",
     {":1\r\n"},
     [](redisContext* ctx) {
       char member[] = "member";
       char* const members[] = {member};
       return Shown(redisSetMultipleAdd(ctx, "set", members, 1));
     }},
    {"createSetTable",
     2,
     "1",
     {":1\r\n"},
     [](redisContext* ctx) {
       const SetData member = {"member"};
       return Shown(createSetTable(ctx, "set", &member, 1));
     }},
};

TEST(SetCommandMemory, EachFailingAllocationIsAFailure) {
  for (const MemoryCase& memory : kSetMemory) { ExpectFailureOfEachAllocation(memory); }
}

class SetCommands : public StoreTest {
 protected:
  ScriptedServer server_;
};

TEST_F(SetCommands, CardinalityIsTheNumberOfMembers) {
  Ask({"SADD", "set", "a", "b", "c"});
  EXPECT_EQ(redisSetCardinality(ctx(), "set"), 3);
}

TEST_F(SetCommands, CardinalityOfAnEmptySetIsReportedLikeAFailure) {
  Ask({"SADD", "emptied", "a"});
  Ask({"SREM", "emptied", "a"});
  EXPECT_EQ(redisSetCardinality(ctx(), "emptied"), -1);
  EXPECT_EQ(redisSetCardinality(ctx(), "missing"), -1);
}

TEST_F(SetCommands, CardinalityOfAnotherTypeIsAFailure) {
  Ask({"HSET", "hash", "field", "value"});
  EXPECT_EQ(redisSetCardinality(ctx(), "hash"), -1);
}

TEST_F(SetCommands, InstanceCountOfAMissingSetIsZero) {
  unsigned int count = 99;
  EXPECT_EQ(getInstanceCount(ctx(), "missing", &count), 0);
  EXPECT_EQ(count, 0U);
}

TEST_F(SetCommands, InstancesAreTheMembersInTheOrderOfRedis) {
  Ask({"SADD", "set", "a", "two words", "c"});
  SetData out[3] = {};
  EXPECT_EQ(getInstance(ctx(), "set", 3, out), 0);
  const std::string read =
      std::string(out[0].aObjectID) + "\n" + out[1].aObjectID + "\n" + out[2].aObjectID;
  EXPECT_EQ(read, Ask({"SMEMBERS", "set"}));
}

TEST_F(SetCommands, InstancesOfACountThatDiffersAreRefusedAndNotCopied) {
  Ask({"SADD", "set", "a", "b"});
  for (const unsigned int count : {1U, 3U}) {
    SetData out[3] = {{"before"}, {""}, {""}};
    EXPECT_EQ(getInstance(ctx(), "set", count, out), 1);
    EXPECT_STREQ(out[0].aObjectID, "before");
  }
}

TEST_F(SetCommands, InstancesGetNoTerminator) {
  Ask({"SADD", "set", "abc"});
  SetData out = {"123456"};
  EXPECT_EQ(getInstance(ctx(), "set", 1, &out), 0);
  EXPECT_STREQ(out.aObjectID, "abc456");
}

TEST_F(SetCommands, InstancesAreCutAt1023Characters) {
  for (const std::size_t length : kLengthsAroundTheLimit) {
    SCOPED_TRACE(length);
    const std::string member(length, 'm');
    Ask({"DEL", "set"});
    Ask({"SADD", "set", member});
    SetData out[2] = {{""}, {"next"}};
    EXPECT_EQ(getInstance(ctx(), "set", 1, out), 0);
    EXPECT_EQ(std::string(out[0].aObjectID), CutToRecord(member));
    EXPECT_STREQ(out[1].aObjectID, "next");
  }
}

TEST_F(SetCommands, OnlyAMemberCanBeRemoved) {
  Ask({"SADD", "set", "two words", "b"});
  EXPECT_EQ(deleteInstanceInSet(ctx(), "set", "two words"), 0);
  EXPECT_EQ(deleteInstanceInSet(ctx(), "set", "two words"), 1);
  EXPECT_EQ(deleteInstanceInSet(ctx(), "missing", "b"), 1);
  EXPECT_EQ(Dump(), "set set\n  b\n");
}

TEST_F(SetCommands, MembershipIsTold) {
  Ask({"SADD", "set", "two words"});
  EXPECT_EQ(sismember(ctx(), "set", "two words"), 1);
  EXPECT_EQ(sismember(ctx(), "set", "two"), 0);
  EXPECT_EQ(sismember(ctx(), "missing", "two words"), 0);
}

TEST_F(SetCommands, MembershipInAnotherTypeIsAFailure) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(sismember(ctx(), "list", "a"), -1);
}

TEST_F(SetCommands, SdiffTellsWhetherASetHasMembers) {
  Ask({"SADD", "set", "a"});
  EXPECT_EQ(sdiffKey(ctx(), "set"), 1);
}

TEST_F(SetCommands, SdiffOfAMissingSetIsZero) {
  EXPECT_EQ(sdiffKey(ctx(), "missing"), 0);
}

TEST_F(SetCommands, SdiffSplitsItsTextAtBlanks) {
  Ask({"SADD", "first", "a", "b"});
  Ask({"SADD", "second", "a", "b", "c"});
  EXPECT_EQ(sdiffKey(ctx(), "first second"), 0);
  EXPECT_EQ(sdiffKey(ctx(), "second first"), 1);
}

TEST_F(SetCommands, SaddSplitsItsTextAtBlanks) {
  EXPECT_EQ(saddCmd(ctx(), "set one two"), 0);
  EXPECT_EQ(Dump(), "set set\n  one\n  two\n");
}

TEST_F(SetCommands, JoinedTextsSendTheirWordsAndNoBlanks) {
  for (int i = 0; i < 4; ++i) { server_.WillReply(":0\r\n"); }
  EXPECT_EQ(saddCmd(server_.ctx(), "  set   one two "), 0);
  EXPECT_EQ(saddCmd(server_.ctx(), "set 100%% one"), 0);
  EXPECT_EQ(saddCmd(server_.ctx(), " "), 0);
  EXPECT_EQ(sdiffKey(server_.ctx(), ""), -1);
  const std::vector<Words> commands = {
      {"SADD", "set", "one", "two"}, {"SADD", "set", "100%", "one"}, {"SADD"}, {"sdiff"}};
  EXPECT_EQ(server_.Received(), Wire(commands));
}

TEST_F(SetCommands, SaddOfAMemberIsDone) {
  Ask({"SADD", "set", "one"});
  EXPECT_EQ(saddCmd(ctx(), "set one"), 0);
}

TEST_F(SetCommands, SaddReadsItsTextAsAFormat) {
  EXPECT_EQ(saddCmd(ctx(), "set 100%%"), 0);
  EXPECT_EQ(Dump(), "set set\n  100%\n");
}

TEST_F(SetCommands, SaddTakesATextOfAnyLength) {
  const std::string member(5000, 'm');
  EXPECT_EQ(saddCmd(ctx(), ("set " + member).c_str()), 0);
  EXPECT_EQ(Ask({"SISMEMBER", "set", member}), "1");
}

TEST_F(SetCommands, MultipleAddWritesMembersOfAnyLength) {
  const std::string member(2000, 'm');
  const Pointers members = {"two words", member.c_str(), ""};
  EXPECT_EQ(redisSetMultipleAdd(ctx(), "set", members.Get(), 3), 0);
  EXPECT_EQ(Dump(), "set set\n  \n  " + member + "\n  two words\n");
}

TEST_F(SetCommands, MultipleAddOfMembersAllPresentIsDone) {
  Ask({"SADD", "set", "a", "b"});
  EXPECT_EQ(redisSetMultipleAdd(ctx(), "set", Pointers{"a", "b"}.Get(), 2), 0);
}

TEST_F(SetCommands, MultipleAddOfMembersSomePresentIsDone) {
  Ask({"SADD", "set", "a"});
  EXPECT_EQ(redisSetMultipleAdd(ctx(), "set", Pointers{"a", "b", "b"}.Get(), 3), 0);
  EXPECT_EQ(Dump(), "set set\n  a\n  b\n");
}

TEST_F(SetCommands, MultipleAddToAnotherTypeIsAFailure) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(redisSetMultipleAdd(ctx(), "list", Pointers{"a"}.Get(), 1), 1);
}

TEST_F(SetCommands, MultipleAddAsksForEachMemberUntilOneIsMissing) {
  for (const char* raw : {":1\r\n", ":1\r\n", ":0\r\n"}) { server_.WillReply(raw); }
  EXPECT_EQ(redisSetMultipleAdd(server_.ctx(), "set", Pointers{"a", "b", "c"}.Get(), 3), 1);
  EXPECT_EQ(server_.Commands(), "SADD set a b c\nSISMEMBER set a\nSISMEMBER set b\n");
}

TEST_F(SetCommands, MultipleAddFailsWhenAMemberCannotBeAskedFor) {
  for (const char* raw : {":1\r\n", ":1\r\n"}) { server_.WillReply(raw); }
  server_.WillClose();
  EXPECT_EQ(redisSetMultipleAdd(server_.ctx(), "set", Pointers{"a", "b"}.Get(), 2), 1);
}

TEST_F(SetCommands, TableLeavesEmptySlotsOutOfANewSet) {
  const SetData members[] = {{"a"}, {""}, {"two words"}};
  EXPECT_EQ(createSetTable(ctx(), "set", members, 3), 0);
  EXPECT_EQ(Dump(), "set set\n  a\n  two words\n");
}

TEST_F(SetCommands, TableWithAnEmptySlotFailsWhereSomeWereMembers) {
  Ask({"SADD", "set", "a"});
  const SetData members[] = {{"a"}, {"b"}, {""}};
  EXPECT_EQ(createSetTable(ctx(), "set", members, 3), 1);
  EXPECT_EQ(Dump(), "set set\n  a\n  b\n");
}

TEST_F(SetCommands, TableOfMembersSomePresentIsDone) {
  Ask({"SADD", "set", "a"});
  const SetData members[] = {{"a"}, {"b"}};
  EXPECT_EQ(createSetTable(ctx(), "set", members, 2), 0);
  EXPECT_EQ(Dump(), "set set\n  a\n  b\n");
}

TEST_F(SetCommands, TableWithoutAnyMemberFails) {
  const SetData members[] = {{""}, {""}};
  EXPECT_EQ(createSetTable(ctx(), "set", members, 2), 1);
  EXPECT_EQ(createSetTable(ctx(), "set", members, 0), 1);
  EXPECT_EQ(Dump(), "");
}

TEST_F(SetCommands, TableAsksForEmptySlotsToo) {
  for (const char* raw : {":1\r\n", ":1\r\n", ":0\r\n"}) { server_.WillReply(raw); }
  const SetData members[] = {{"a"}, {""}, {"b"}};
  EXPECT_EQ(createSetTable(server_.ctx(), "set", members, 3), 1);
  EXPECT_EQ(server_.Commands(), "SADD set a b\nSISMEMBER set a\nSISMEMBER set \n");
}

}  // namespace
}  // namespace zephlane::test
