// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const Words kAskForLength = {"LLEN", "a list"};
const SetData kItems[] = {{"two words"}, {""}};

std::string Range(redisContext* ctx) {
  unsigned int count = 99;
  SetData* items = listRange(ctx, "a list", 0, -1, &count);
  return std::to_string(count) + ": " + Shown(items, count);
}

std::string Length(redisContext* ctx) {
  unsigned int length = 99;
  const int result = listLength(ctx, "a list", &length);
  return Shown(result) + " " + std::to_string(length);
}

std::string PushRight(redisContext* ctx) {
  const Pointers items = {"two words", ""};
  return Shown(redisListRightMultiplePush(ctx, "a list", items.Get(), 2));
}

std::string PushLeft(redisContext* ctx) {
  const Pointers items = {"two words", ""};
  return Shown(redisListLeftPush(ctx, "a list", items.Get(), 2));
}

std::string CreateTable(redisContext* ctx) {
  return Shown(createListTable(ctx, "a list", kItems, 2));
}

std::string BlockingLeftPop(redisContext* ctx) {
  const Pointers keys = {"a list", "another"};
  return Shown(redisListBlockLeftPop(ctx, 1, keys.Get(), 2));
}

std::string BlockingRightPop(redisContext* ctx) {
  const Pointers keys = {"a list", "another"};
  return Shown(redisListBlockRightPop(ctx, 4294967295U, keys.Get(), 2));
}

// The length alone is judged: the text of a status or an error passes for an item.
const std::vector<Verdict> kItemVerdicts = {
    {kOk, "OK"},      {kOkAndMore, "OKAY"}, {kOtherStatus, "QUEUED"}, {kError, "ERR refused"},
    {kText, "value"},
};

const std::vector<Verdict> kPairVerdicts = {{kPair, "a:b"}, {kPairWithNil, "a:"}};

const CommandCase kListCommands[] = {
    {"listRange",
     Range,
     {},
     {{"LRANGE", "a list", "0", "-1"}},
     "99: (null)",
     {{kPair, "2: a b"}, {kOdd, "3: a b c"}, {kPairWithNil, "2: a "}}},
    {"listLength",
     Length,
     {},
     {kAskForLength},
     "1 99",
     {{kZero, "0 0"}, {kOne, "0 1"}, {kSeven, "0 7"}}},
    {"listIndex",
     [](redisContext* ctx) { return Shown(listIndex(ctx, "a list", -3)); },
     {},
     {{"LINDEX", "a list", "-3"}},
     "(null)",
     kItemVerdicts},
    {"listLeftPop",
     [](redisContext* ctx) { return Shown(listLeftPop(ctx, "a list")); },
     {},
     {{"LPOP", "a list"}},
     "(null)",
     kItemVerdicts},
    {"redisListRightPop",
     [](redisContext* ctx) { return Shown(redisListRightPop(ctx, "a list")); },
     {},
     {{"RPOP", "a list"}},
     "(null)",
     kItemVerdicts},
    {"listRightPush",
     [](redisContext* ctx) { return Shown(listRightPush(ctx, "a list", "two words")); },
     {},
     {{"RPUSH", "a list", "two words"}},
     "1",
     {{kOne, "0"}, {kSeven, "0"}}},
    // A list of 5 items that gets 2 more must have 7.
    {"redisListRightMultiplePush",
     PushRight,
     {":5\r\n"},
     {kAskForLength, {"RPUSH", "a list", "two words", ""}},
     "1",
     {{kSeven, "0"}}},
    {"redisListLeftPush",
     PushLeft,
     {":5\r\n"},
     {kAskForLength, {"LPUSH", "a list", "two words", ""}},
     "1",
     {{kSeven, "0"}}},
    {"createListTable",
     CreateTable,
     {":5\r\n"},
     {kAskForLength, {"RPUSH", "a list", "two words", ""}},
     "1",
     // The length is asked for again after any number but 0; nothing is scripted for that.
     {{kMinusTwo, "1", {kAskForLength}},
      {kOne, "1", {kAskForLength}},
      {kSeven, "1", {kAskForLength}}}},
    {"createListTableConfirming",
     CreateTable,
     {":5\r\n", ":1\r\n"},
     {kAskForLength, {"RPUSH", "a list", "two words", ""}, kAskForLength},
     "1",
     {{kSeven, "0"}}},
    {"redisListBlockLeftPop",
     BlockingLeftPop,
     {},
     {{"BLPOP", "a list", "another", "1"}},
     "(null)",
     kPairVerdicts},
    {"redisListBlockRightPop",
     BlockingRightPop,
     {},
     {{"BRPOP", "a list", "another", "4294967295"}},
     "(null)",
     kPairVerdicts},
    {"lremCmd",
     [](redisContext* ctx) { return Shown(lremCmd(ctx, "a list", -2, "two words")); },
     {},
     {{"LREM", "a list", "-2", "two words"}},
     "1",
     {{kMinusTwo, "0"}, {kZero, "0"}, {kOne, "0"}, {kSeven, "0"}}},
    {"listSET",
     [](redisContext* ctx) { return Shown(listSET(ctx, "a list", -1, "two words")); },
     {},
     {{"LSET", "a list", "-1", "two words"}},
     "1",
     {{kOk, "0"}}},
};

class ListCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(ListCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, ListCommandReplies, testing::ValuesIn(kListCommands), CaseName);

// The three pushes first ask for the length: any answer but a length ends them.
class ListPushes : public testing::TestWithParam<Call> {};

TEST_P(ListPushes, PushNothingWithoutTheFormerLength) {
  for (const ReplyKind& reply : {kOk, kError, kNil, kMinusTwo, kText, kEmptyArray, kPair, kLost}) {
    SCOPED_TRACE(reply.name);
    ScriptedServer server;
    reply.raw[0] != '\0' ? server.WillReply(reply.raw) : server.WillClose();
    EXPECT_EQ(GetParam()(server.ctx()), "1");
    EXPECT_EQ(server.Received(), Wire(kAskForLength));
  }
}

INSTANTIATE_TEST_SUITE_P(All, ListPushes, testing::Values(PushRight, PushLeft, CreateTable));

TEST(ListCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  const Pointers texts = {"text"};
  unsigned int count = 99;
  ExpectNullsRefused(listRange, nullptr, "list", 0, -1, &count);
  ExpectNullsRefused(listLength, 1, "list", &count);
  ExpectNullsRefused(listIndex, nullptr, "list", 0);
  ExpectNullsRefused(listLeftPop, nullptr, "list");
  ExpectNullsRefused(redisListRightPop, nullptr, "list");
  ExpectNullsRefused(listRightPush, 1, "list", "item");
  ExpectNullsRefused(redisListRightMultiplePush, 1, "list", texts.Get(), 1);
  ExpectNullsRefused(redisListLeftPush, 1, "list", texts.Get(), 1);
  ExpectNullsRefused(createListTable, 1, "list", kItems, 1);
  ExpectNullsRefused(redisListBlockLeftPop, nullptr, 1, texts.Get(), 1);
  ExpectNullsRefused(redisListBlockRightPop, nullptr, 1, texts.Get(), 1);
  ExpectNullsRefused(lremCmd, 1, "list", 0, "item");
  ExpectNullsRefused(listSET, 1, "list", 0, "item");
  EXPECT_EQ(count, 99U);
}

// Every call that takes an array of strings yields its failure without sending anything.
void ExpectArrayRefused(char* const* texts, unsigned int count) {
  ExpectRefused(
      [=](redisContext* ctx) {
        return Shown(redisListRightMultiplePush(ctx, "list", texts, count));
      },
      "1");
  ExpectRefused(
      [=](redisContext* ctx) { return Shown(redisListLeftPush(ctx, "list", texts, count)); }, "1");
  ExpectRefused(
      [=](redisContext* ctx) { return Shown(redisListBlockLeftPop(ctx, 1, texts, count)); },
      "(null)");
  ExpectRefused(
      [=](redisContext* ctx) { return Shown(redisListBlockRightPop(ctx, 1, texts, count)); },
      "(null)");
}

TEST(ListCommandArguments, CountOfZeroIsRefusedBeforeAnythingIsSent) {
  ExpectArrayRefused(Pointers{"text"}.Get(), 0);
  ExpectRefused([](redisContext* ctx) { return Shown(createListTable(ctx, "list", kItems, 0)); },
                "1");
}

TEST(ListCommandArguments, NullFirstElementIsRefusedBeforeAnythingIsSent) {
  char text[] = "text";
  char* const texts[] = {nullptr, text};
  ExpectArrayRefused(texts, 2);
}

TEST(ListCommandArguments, NullAmongTheElementsIsNeverSent) {
  char text[] = "text";
  char* const texts[] = {text, nullptr};
  ScriptedServer server;
  server.WillReply(":0\r\n");
  EXPECT_EQ(redisListRightMultiplePush(server.ctx(), "list", texts, 2), 1);
  EXPECT_EQ(server.Commands(), "LLEN list\n");
  const auto pop = [&](redisContext* ctx) {
    return Shown(redisListBlockLeftPop(ctx, 1, texts, 2));
  };
  ExpectRefused(pop, "(null)");
}

TEST(ListCommandArguments, NegativeStartOfARangeIsRefusedBeforeAnythingIsSent) {
  const auto range = [](redisContext* ctx) {
    unsigned int count = 99;
    SetData* items = listRange(ctx, "list", -1, -1, &count);
    return std::to_string(count) + ": " + Shown(items, count);
  };
  ExpectRefused(range, "99: (null)");
}

char kKey[] = "a list";
char* const kKeys[] = {kKey};

const MemoryCase kListMemory[] = {
    {"listRange", 1, "99: (null)", {kPair.raw}, Range},
    {"listIndex",
     1,
     "(null)",
     {kText.raw},
     [](redisContext* ctx) { return Shown(listIndex(ctx, "list", 0)); }},
    {"listLeftPop",
     1,
     "(null)",
     {kText.raw},
     [](redisContext* ctx) { return Shown(listLeftPop(ctx, "list")); }},
    {"redisListRightPop",
     1,
     "(null)",
     {kText.raw},
     [](redisContext* ctx) { return Shown(redisListRightPop(ctx, "list")); }},
    {"redisListRightMultiplePush",
     2,
     "1",
     {":6\r\n", ":7\r\n"},
     [](redisContext* ctx) { return Shown(redisListRightMultiplePush(ctx, "list", kKeys, 1)); }},
    {"redisListLeftPush",
     2,
     "1",
     {":6\r\n", ":7\r\n"},
     [](redisContext* ctx) { return Shown(redisListLeftPush(ctx, "list", kKeys, 1)); }},
    {"createListTable", 2, "1", {":5\r\n", ":7\r\n", ":7\r\n"}, CreateTable},
    {"redisListBlockLeftPop",
     5,
     "(null)",
     {kPair.raw},
     [](redisContext* ctx) { return Shown(redisListBlockLeftPop(ctx, 1, kKeys, 1)); }},
    {"redisListBlockRightPop",
     5,
     "(null)",
     {kPair.raw},
     [](redisContext* ctx) { return Shown(redisListBlockRightPop(ctx, 1, kKeys, 1)); }},
};

TEST(ListCommandMemory, EachFailingAllocationIsAFailure) {
  for (const MemoryCase& memory : kListMemory) { ExpectFailureOfEachAllocation(memory); }
}

class ListCommands : public StoreTest {
 protected:
  ScriptedServer server_;
};

TEST_F(ListCommands, RangeYieldsTheItemsBetween) {
  Ask({"RPUSH", "list", "a", "two words", "c", "d"});
  unsigned int count = 0;
  SetData* items = listRange(ctx(), "list", 1, -2, &count);
  EXPECT_EQ(Shown(items, count), "two words c");
  items = listRange(ctx(), "list", 0, 0, &count);
  EXPECT_EQ(Shown(items, count), "a");
}

TEST_F(ListCommands, RangeOfAMissingOrEmptyListKeepsTheCount) {
  Ask({"RPUSH", "list", "a"});
  unsigned int count = 99;
  EXPECT_EQ(listRange(ctx(), "missing", 0, -1, &count), nullptr);
  EXPECT_EQ(listRange(ctx(), "list", 1, -1, &count), nullptr);
  Ask({"LPOP", "list"});
  EXPECT_EQ(listRange(ctx(), "list", 0, -1, &count), nullptr);
  EXPECT_EQ(count, 99U);
}

TEST_F(ListCommands, RangeIsCutAt1023CharactersAndTerminated) {
  for (const std::size_t length : kLengthsAroundTheLimit) {
    SCOPED_TRACE(length);
    const std::string item(length, 'i');
    Ask({"DEL", "list"});
    Ask({"RPUSH", "list", item, "next"});
    unsigned int count = 0;
    SetData* items = listRange(ctx(), "list", 0, -1, &count);
    EXPECT_EQ(Shown(items, count), CutToRecord(item) + " next");
  }
}

TEST_F(ListCommands, LengthOfAMissingListIsZero) {
  unsigned int length = 99;
  EXPECT_EQ(listLength(ctx(), "missing", &length), 0);
  EXPECT_EQ(length, 0U);
}

TEST_F(ListCommands, LengthIsTheNumberOfItems) {
  Ask({"RPUSH", "list", "a", "b"});
  unsigned int length = 0;
  EXPECT_EQ(listLength(ctx(), "list", &length), 0);
  EXPECT_EQ(length, 2U);
}

TEST_F(ListCommands, LengthOfAnotherTypeIsAFailure) {
  Ask({"SET", "text", "value"});
  unsigned int length = 99;
  EXPECT_EQ(listLength(ctx(), "text", &length), 1);
  EXPECT_EQ(length, 99U);
}

TEST_F(ListCommands, LengthKeepsItsLow32Bits) {
  server_.WillReply(":4294967303\r\n");
  unsigned int length = 0;
  EXPECT_EQ(listLength(server_.ctx(), "list", &length), 0);
  EXPECT_EQ(length, 7U);
}

TEST_F(ListCommands, IndexYieldsAnItemOfAnyLength) {
  const std::string item(2000, 'i');
  Ask({"RPUSH", "list", "a", item});
  EXPECT_EQ(Shown(listIndex(ctx(), "list", 0)), "a");
  EXPECT_EQ(Shown(listIndex(ctx(), "list", -1)), item);
}

TEST_F(ListCommands, IndexOfAMissingOrEmptyItemIsNull) {
  Ask({"RPUSH", "list", ""});
  EXPECT_EQ(listIndex(ctx(), "list", 0), nullptr);
  EXPECT_EQ(listIndex(ctx(), "list", 1), nullptr);
  EXPECT_EQ(listIndex(ctx(), "missing", 0), nullptr);
}

TEST_F(ListCommands, PopsTakeFromTheirEnd) {
  const std::string item(2000, 'i');
  Ask({"RPUSH", "list", item, "two words", "c"});
  EXPECT_EQ(Shown(listLeftPop(ctx(), "list")), item);
  EXPECT_EQ(Shown(redisListRightPop(ctx(), "list")), "c");
  EXPECT_EQ(Dump(), "list list\n  two words\n");
}

TEST_F(ListCommands, PopsFromAMissingListAreNull) {
  EXPECT_EQ(listLeftPop(ctx(), "missing"), nullptr);
  EXPECT_EQ(redisListRightPop(ctx(), "missing"), nullptr);
}

TEST_F(ListCommands, PopOfAnEmptyItemIsNullAndTakesIt) {
  Ask({"RPUSH", "list", "", "b"});
  EXPECT_EQ(listLeftPop(ctx(), "list"), nullptr);
  EXPECT_EQ(Dump(), "list list\n  b\n");
}

TEST_F(ListCommands, PopTakesTheTextOfAnErrorForAnItem) {
  Ask({"SET", "text", "value"});
  const std::string refusal = Ask({"LPOP", "text"});
  EXPECT_EQ("(error) " + Shown(listLeftPop(ctx(), "text")), refusal);
}

TEST_F(ListCommands, RightPushAppends) {
  EXPECT_EQ(listRightPush(ctx(), "a list", "two words"), 0);
  EXPECT_EQ(listRightPush(ctx(), "a list", ""), 0);
  EXPECT_EQ(Dump(), "list a list\n  two words\n  \n");
}

TEST_F(ListCommands, RightPushOntoAnotherTypeIsAFailure) {
  Ask({"SET", "text", "value"});
  EXPECT_EQ(listRightPush(ctx(), "text", "item"), 1);
}

TEST_F(ListCommands, MultiplePushAppendsItemsOfAnyLengthInOrder) {
  const std::string item(2000, 'i');
  const Pointers items = {"b", item.c_str()};
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(redisListRightMultiplePush(ctx(), "list", items.Get(), 2), 0);
  EXPECT_EQ(Dump(), "list list\n  a\n  b\n  " + item + "\n");
}

TEST_F(ListCommands, LeftPushLeavesTheLastItemFirst) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(redisListLeftPush(ctx(), "list", Pointers{"b", "c"}.Get(), 2), 0);
  EXPECT_EQ(Dump(), "list list\n  c\n  b\n  a\n");
}

TEST_F(ListCommands, PushFailsWhenTheListGrewByAnotherWriterToo) {
  for (const auto push : {PushRight, PushLeft}) {
    ScriptedServer server;
    server.WillReply(":5\r\n");
    server.WillReply(":8\r\n");
    EXPECT_EQ(push(server.ctx()), "1");
  }
}

TEST_F(ListCommands, TableAppendsEmptySlotsToo) {
  Ask({"RPUSH", "a list", "before"});
  EXPECT_EQ(createListTable(ctx(), "a list", kItems, 2), 0);
  EXPECT_EQ(Dump(), "list a list\n  before\n  two words\n  \n");
}

TEST_F(ListCommands, TableOnAnotherTypeIsAFailure) {
  Ask({"SET", "a list", "value"});
  EXPECT_EQ(createListTable(ctx(), "a list", kItems, 2), 1);
  EXPECT_EQ(Dump(), "string a list\n  value\n");
}

TEST_F(ListCommands, BlockingPopsReturnFromTheSecondKey) {
  Ask({"RPUSH", "second", "a", "two words"});
  const Pointers keys = {"first", "second"};
  EXPECT_EQ(Shown(redisListBlockRightPop(ctx(), 1, keys.Get(), 2)), "second:two words");
  EXPECT_EQ(Shown(redisListBlockLeftPop(ctx(), 1, keys.Get(), 2)), "second:a");
}

TEST_F(ListCommands, BlockingPopsTakeTheFirstKeyFirst) {
  Ask({"RPUSH", "first", "a", "b", "c"});
  Ask({"RPUSH", "second", "d"});
  const Pointers keys = {"first", "second"};
  EXPECT_EQ(Shown(redisListBlockLeftPop(ctx(), 0, keys.Get(), 2)), "first:a");
  EXPECT_EQ(Shown(redisListBlockRightPop(ctx(), 0, keys.Get(), 2)), "first:c");
}

TEST_F(ListCommands, BlockingPopsThatTimeOutAreNull) {
  for (int i = 0; i < 2; ++i) { server_.WillReply("*-1\r\n"); }
  const Pointers keys = {"list"};
  EXPECT_EQ(redisListBlockLeftPop(server_.ctx(), 1, keys.Get(), 1), nullptr);
  EXPECT_EQ(redisListBlockRightPop(server_.ctx(), 1, keys.Get(), 1), nullptr);
}

TEST_F(ListCommands, BlockingPopReturnsItemsOfAnyLength) {
  const std::string item(2000, 'i');
  Ask({"RPUSH", "list", item});
  EXPECT_EQ(Shown(redisListBlockLeftPop(ctx(), 1, Pointers{"list"}.Get(), 1)), "list:" + item);
}

TEST_F(ListCommands, RemovingTakesAsManyAsAsked) {
  Ask({"RPUSH", "list", "a", "b", "a", "c", "a"});
  EXPECT_EQ(lremCmd(ctx(), "list", -1, "a"), 0);
  EXPECT_EQ(Dump(), "list list\n  a\n  b\n  a\n  c\n");
  EXPECT_EQ(lremCmd(ctx(), "list", 1, "a"), 0);
  EXPECT_EQ(Dump(), "list list\n  b\n  a\n  c\n");
  EXPECT_EQ(lremCmd(ctx(), "list", 0, "a"), 0);
  EXPECT_EQ(Dump(), "list list\n  b\n  c\n");
}

TEST_F(ListCommands, RemovingWhatIsNotThereIsDone) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(lremCmd(ctx(), "list", 0, "b"), 0);
  EXPECT_EQ(lremCmd(ctx(), "missing", 0, "b"), 0);
  EXPECT_EQ(Dump(), "list list\n  a\n");
}

TEST_F(ListCommands, RemovingFromAnotherTypeIsAFailure) {
  Ask({"SET", "text", "value"});
  EXPECT_EQ(lremCmd(ctx(), "text", 0, "value"), 1);
}

TEST_F(ListCommands, ItemIsReplacedByIndex) {
  Ask({"RPUSH", "list", "a", "b"});
  EXPECT_EQ(listSET(ctx(), "list", 0, "two words"), 0);
  EXPECT_EQ(listSET(ctx(), "list", -1, ""), 0);
  EXPECT_EQ(Dump(), "list list\n  two words\n  \n");
}

TEST_F(ListCommands, ReplacingAnItemThatIsNotThereIsAFailure) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(listSET(ctx(), "list", 1, "b"), 1);
  EXPECT_EQ(listSET(ctx(), "missing", 0, "b"), 1);
  EXPECT_EQ(Dump(), "list list\n  a\n");
}

}  // namespace
}  // namespace zephlane::test
