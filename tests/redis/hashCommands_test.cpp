// SPDX-License-Identifier: MIT
#include <string>

#include <gtest/gtest.h>

#include "redis/commandCases.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

const InstanceData kPairs[] = {{"a field", "a value"}, {"skipped", ""}, {"second", "2"}};

std::string MultipleGet(redisContext* ctx) {
  const Pointers fields = {"a field", "second"};
  unsigned int count = 99;
  char** texts = redisHashMultipleGet(ctx, "a key", fields.Get(), 2, &count);
  return std::to_string(count) + ": " + Shown(texts, count);
}

std::string FieldInBuffer(redisContext* ctx) {
  char out[1024] = "before";
  const int result = getHashField(ctx, "a key", "a field", out);
  return Shown(result) + " " + out;
}

const CommandCase kHashCommands[] = {
    {"createHashTable",
     [](redisContext* ctx) { return Shown(createHashTable(ctx, "a key", kPairs, 3)); },
     {},
     {{"HMSET", "a key", "a field", "a value", "second", "2"}},
     "0",
     {{kOtherStatus, "1"}, {kBroken, "1"}, {kLost, "1"}}},
    {"redisHashMultipleSet",
     [](redisContext* ctx) {
       const Pointers fields = {"a field", "second"};
       const Pointers values = {"a value", ""};
       return Shown(redisHashMultipleSet(ctx, "a key", fields.Get(), values.Get(), 2));
     },
     {},
     {{"HMSET", "a key", "a field", "a value", "second", ""}},
     "0",
     {{kOkAndMore, "1"}, {kOtherStatus, "1"}, {kBroken, "1"}, {kLost, "1"}}},
    {"copyHash",
     [](redisContext* ctx) { return Shown(copyHash(ctx, "a copy", "a key")); },
     {},
     {{"HGETALL", "a key"}},
     "1",
     // Nothing is scripted for what follows: its error reply counts as success.
     {{kPair, "0", {{"HMSET", "a copy", "a", "b"}}},
      {kOdd, "0", {{"HMSET", "a copy", "a", "b"}}},
      {kPairWithNil, "0", {{"HMSET", "a copy"}}}}},
    {"copyHashWriting",
     [](redisContext* ctx) { return Shown(copyHash(ctx, "a copy", "a key")); },
     {kPair.raw},
     {{"HGETALL", "a key"}, {"HMSET", "a copy", "a", "b"}},
     "0",
     {{kOtherStatus, "1"}, {kBroken, "1"}, {kLost, "1"}}},
    {"redisHashMultipleGet",
     MultipleGet,
     {},
     {{"HMGET", "a key", "a field", "second"}},
     "99: (null)",
     {{kEmptyArray, "0: "}, {kPair, "2: a b"}, {kOdd, "3: a b c"}, {kPairWithNil, "2: a (null)"}}},
    {"getHashField",
     FieldInBuffer,
     {},
     {{"HGET", "a key", "a field"}},
     "1 before",
     {{kOk, "0 OK"},
      {kOkAndMore, "0 OKAY"},
      {kOtherStatus, "0 QUEUED"},
      {kError, "0 ERR refused"},
      {kText, "0 value"}}},
    {"redisHashGet",
     [](redisContext* ctx) { return Shown(redisHashGet(ctx, "a key", "a field")); },
     {},
     {{"HGET", "a key", "a field"}},
     "(null)",
     {{kOk, "OK"},
      {kOkAndMore, "OKAY"},
      {kOtherStatus, "QUEUED"},
      {kError, "ERR refused"},
      {kText, "value"}}},
    {"isFieldMatched",
     [](redisContext* ctx) { return Shown(isFieldMatched(ctx, "a key", "a field", "value")); },
     {},
     {{"HGET", "a key", "a field"}},
     "0",
     {{kText, "1"}}},
    {"removeFieldFromHash",
     [](redisContext* ctx) { return Shown(removeFieldFromHash(ctx, "a key", "a field")); },
     {},
     {{"HDEL", "a key", "a field"}},
     "1",
     {{kOne, "0"}}},
    {"hsetKey",
     [](redisContext* ctx) { return Shown(hsetKey(ctx, "a key", "a field", "a value")); },
     {},
     {{"HSET", "a key", "a field", "a value"}},
     "0",
     {{kBroken, "1"}, {kLost, "1"}}},
};

class HashCommandReplies : public testing::TestWithParam<CommandCase> {};

TEST_P(HashCommandReplies, AreJudgedByTheirKind) {
  ExpectVerdicts(GetParam());
}

INSTANTIATE_TEST_SUITE_P(All, HashCommandReplies, testing::ValuesIn(kHashCommands), CaseName);

TEST(HashCommandArguments, NullIsRefusedBeforeAnythingIsSent) {
  const Pointers texts = {"text"};
  unsigned int count = 99;
  ExpectNullsRefused(createHashTable, 1, "key", kPairs, 1);
  ExpectNullsRefused(redisHashMultipleSet, 1, "key", texts.Get(), texts.Get(), 1);
  ExpectNullsRefused(copyHash, 1, "copy", "key");
  ExpectNullsRefused(redisHashMultipleGet, nullptr, "key", texts.Get(), 1, &count);
  ExpectNullsRefused(redisHashGet, nullptr, "key", "field");
  ExpectNullsRefused(isFieldMatched, 0, "key", "field", "expected");
  ExpectNullsRefused(removeFieldFromHash, 1, "key", "field");
  ExpectNullsRefused(hsetKey, 1, "key", "field", "value");
  EXPECT_EQ(count, 99U);
}

TEST(HashCommandArguments, FieldNeedsConnectionKeyAndNameOnly) {
  ScriptedServer server;
  char out[1024] = "before";
  EXPECT_EQ(getHashField(nullptr, "key", "field", out), 1);
  EXPECT_EQ(getHashField(server.ctx(), nullptr, "field", out), 1);
  EXPECT_EQ(getHashField(server.ctx(), "key", nullptr, out), 1);
  EXPECT_STREQ(out, "before");
  ExpectNothingSent(server);
  server.WillReply("$5\r\nvalue\r\n");
  EXPECT_EQ(getHashField(server.ctx(), "key", "field", nullptr), 0);
}

TEST(HashCommandArguments, MultipleSetRefusesACountOfZero) {
  const auto set = [](redisContext* ctx) {
    const Pointers texts = {"text"};
    return Shown(redisHashMultipleSet(ctx, "key", texts.Get(), texts.Get(), 0));
  };
  ExpectRefused(set, "1");
}

TEST(HashCommandArguments, NullAmongFieldsOrValuesIsRefusedBeforeAnythingIsSent) {
  char text[] = "text";
  char* const whole[] = {text, text};
  char* const first_missing[] = {nullptr, text};
  char* const second_missing[] = {text, nullptr};
  for (char* const* missing : {first_missing, second_missing}) {
    const auto set_fields = [&](redisContext* ctx) {
      return Shown(redisHashMultipleSet(ctx, "key", missing, whole, 2));
    };
    ExpectRefused(set_fields, "1");
    const auto set_values = [&](redisContext* ctx) {
      return Shown(redisHashMultipleSet(ctx, "key", whole, missing, 2));
    };
    ExpectRefused(set_values, "1");
    const auto get = [&](redisContext* ctx) {
      unsigned int count = 0;
      return Shown(redisHashMultipleGet(ctx, "key", missing, 2, &count) == nullptr);
    };
    ExpectRefused(get, "1");
  }
}

std::string SetTwoFields(redisContext* ctx) {
  char text[] = "text";
  char* const texts[] = {text, text};
  return Shown(redisHashMultipleSet(ctx, "key", texts, texts, 2));
}

std::string GetTwoFields(redisContext* ctx) {
  char text[] = "text";
  char* const texts[] = {text, text};
  unsigned int count = 0;
  char** values = redisHashMultipleGet(ctx, "key", texts, 2, &count);
  return Shown(values, count);
}

const MemoryCase kHashMemory[] = {
    {"createHashTable",
     2,
     "1",
     {kOk.raw},
     [](redisContext* ctx) { return Shown(createHashTable(ctx, "key", kPairs, 3)); }},
    {"redisHashMultipleSet", 2, "1", {kOk.raw}, SetTwoFields},
    {"copyHash",
     3,
     "1",
     {kPair.raw, kOk.raw},
     [](redisContext* ctx) { return Shown(copyHash(ctx, "copy", "key")); }},
    {"redisHashMultipleGet", 5, "(null)", {kPair.raw}, GetTwoFields},
    {"redisHashGet",
     1,
     "(null)",
     {kText.raw},
     [](redisContext* ctx) { return Shown(redisHashGet(ctx, "key", "field")); }},
};

TEST(HashCommandMemory, EachFailingAllocationIsAFailure) {
  for (const MemoryCase& memory : kHashMemory) { ExpectFailureOfEachAllocation(memory); }
}

TEST(HashCommandMemory, MultipleGetKeepsItsOutputOnFailure) {
  ScriptedServer server;
  server.WillReply(kPair.raw);
  const Pointers fields = {"a", "b"};
  unsigned int count = 99;
  AllocationFault fault(5);
  EXPECT_EQ(redisHashMultipleGet(server.ctx(), "key", fields.Get(), 2, &count), nullptr);
  EXPECT_EQ(count, 99U);
}

class HashCommands : public StoreTest {
 protected:
  ScriptedServer server_;
};

TEST_F(HashCommands, CreateWritesPairsIntoTheHash) {
  EXPECT_EQ(createHashTable(ctx(), "key", kPairs, 3), 0);
  EXPECT_EQ(Dump(), "hash key\n  a field = a value\n  second = 2\n");
}

TEST_F(HashCommands, CreateWithCountZeroIsSuccessAndWritesNothing) {
  EXPECT_EQ(createHashTable(ctx(), "key", kPairs, 0), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(HashCommands, CreateWithOnlyEmptyValuesIsSuccessAndWritesNothing) {
  const InstanceData pairs[] = {{"first", ""}, {"second", ""}};
  EXPECT_EQ(createHashTable(ctx(), "key", pairs, 2), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(HashCommands, CreateCannotSetAFieldToTheEmptyText) {
  Ask({"HSET", "key", "field", "value"});
  const InstanceData pair = {"field", ""};
  EXPECT_EQ(createHashTable(ctx(), "key", &pair, 1), 0);
  EXPECT_EQ(Dump(), "hash key\n  field = value\n");
}

TEST_F(HashCommands, CreateTakesErrorReplyAsSuccess) {
  Ask({"RPUSH", "key", "item"});
  EXPECT_EQ(createHashTable(ctx(), "key", kPairs, 3), 0);
  EXPECT_EQ(Dump(), "list key\n  item\n");
}

TEST_F(HashCommands, MultipleSetTakesErrorReplyAsSuccess) {
  Ask({"RPUSH", "key", "item"});
  const Pointers texts = {"text"};
  EXPECT_EQ(redisHashMultipleSet(ctx(), "key", texts.Get(), texts.Get(), 1), 0);
  EXPECT_EQ(Dump(), "list key\n  item\n");
}

TEST_F(HashCommands, MultipleSetWritesValuesOfAnyLengthAndEmptyOnes) {
  const std::string value(2000, 'v');
  const Pointers fields = {"empty", "long"};
  const Pointers values = {"", value.c_str()};
  EXPECT_EQ(redisHashMultipleSet(ctx(), "key", fields.Get(), values.Get(), 2), 0);
  EXPECT_EQ(Dump(), "hash key\n  empty = \n  long = " + value + "\n");
}

TEST_F(HashCommands, CopyWritesAllFieldsAndKeepsThoseOfTheDestination) {
  Ask({"HSET", "key", "shared", "new value", "own", "1"});
  Ask({"HSET", "copy", "shared", "old", "other", "2"});
  EXPECT_EQ(copyHash(ctx(), "copy", "key"), 0);
  EXPECT_EQ(Dump(),
            "hash copy\n  other = 2\n  own = 1\n  shared = new value\n"
            "hash key\n  own = 1\n  shared = new value\n");
}

TEST_F(HashCommands, CopySkipsEmptyValues) {
  Ask({"HSET", "key", "empty", "", "full", "1"});
  EXPECT_EQ(copyHash(ctx(), "copy", "key"), 0);
  EXPECT_EQ(Ask({"HGETALL", "copy"}), "full\n1");
}

TEST_F(HashCommands, CopyFromAMissingSourceFailsAndCreatesNothing) {
  EXPECT_EQ(copyHash(ctx(), "copy", "missing"), 1);
  EXPECT_EQ(Dump(), "");
}

TEST_F(HashCommands, CopyFromAnotherTypeFailsAndCreatesNothing) {
  Ask({"RPUSH", "list", "item"});
  EXPECT_EQ(copyHash(ctx(), "copy", "list"), 1);
  EXPECT_EQ(Dump(), "list list\n  item\n");
}

TEST_F(HashCommands, CopyCutsNamesAndValuesAt1023Characters) {
  for (const std::size_t length : kLengthsAroundTheLimit) {
    SCOPED_TRACE(length);
    const std::string name(length, 'n');
    const std::string value(length, 'v');
    Ask({"DEL", "key", "copy"});
    Ask({"HSET", "key", name, value});
    EXPECT_EQ(copyHash(ctx(), "copy", "key"), 0);
    EXPECT_EQ(Ask({"HGETALL", "copy"}), CutToRecord(name) + "\n" + CutToRecord(value));
  }
}

TEST_F(HashCommands, MultipleGetYieldsNullForAMissingField) {
  const std::string value(2000, 'v');
  Ask({"HSET", "key", "long", value, "empty", ""});
  const Pointers fields = {"long", "missing", "empty"};
  unsigned int count = 0;
  char** texts = redisHashMultipleGet(ctx(), "key", fields.Get(), 3, &count);
  ASSERT_EQ(count, 3U);
  EXPECT_EQ(Shown(texts, count), value + " (null) ");
}

TEST_F(HashCommands, MultipleGetOfACountOfZeroFails) {
  const Pointers fields = {"field"};
  unsigned int count = 99;
  EXPECT_EQ(redisHashMultipleGet(ctx(), "key", fields.Get(), 0, &count), nullptr);
  EXPECT_EQ(count, 99U);
}

TEST_F(HashCommands, FieldThatIsMissingOrEmptyIsAFailure) {
  Ask({"HSET", "key", "empty", ""});
  char out[1024] = "before";
  EXPECT_EQ(getHashField(ctx(), "key", "empty", out), 1);
  EXPECT_EQ(getHashField(ctx(), "key", "missing", out), 1);
  EXPECT_EQ(getHashField(ctx(), "missing", "field", out), 1);
  EXPECT_STREQ(out, "before");
}

TEST_F(HashCommands, FieldIsCutAt1023CharactersAndTerminated) {
  for (const std::size_t length : kLengthsAroundTheLimit) {
    SCOPED_TRACE(length);
    const std::string value(length, 'v');
    Ask({"HSET", "key", "field", value});
    std::string out(1024 + 1, '#');
    EXPECT_EQ(getHashField(ctx(), "key", "field", out.data()), 0);
    EXPECT_EQ(out, CutToRecord(value) + '\0' + "#");
  }
}

TEST_F(HashCommands, FieldShorterThanTheBufferIsTerminatedAfterIt) {
  Ask({"HSET", "key", "field", "abc"});
  char out[1024] = "123456";
  EXPECT_EQ(getHashField(ctx(), "key", "field", out), 0);
  EXPECT_EQ(std::string(out, 6), std::string("abc\0"
                                             "56",
                                             6));
}

TEST_F(HashCommands, HeapFieldHasAnyLength) {
  const std::string value(2000, 'v');
  Ask({"HSET", "key", "field", value, "empty", ""});
  EXPECT_EQ(Shown(redisHashGet(ctx(), "key", "field")), value);
  EXPECT_EQ(redisHashGet(ctx(), "key", "empty"), nullptr);
  EXPECT_EQ(redisHashGet(ctx(), "key", "missing"), nullptr);
}

TEST_F(HashCommands, MissingFieldMatchesTheEmptyTextOnly) {
  EXPECT_EQ(isFieldMatched(ctx(), "key", "missing", ""), 1);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "missing", "value"), 0);
}

TEST_F(HashCommands, FailedReadMatchesTheEmptyText) {
  server_.WillClose();
  EXPECT_EQ(isFieldMatched(server_.ctx(), "key", "field", ""), 1);
}

TEST_F(HashCommands, FieldMatchesWhenEqual) {
  Ask({"HSET", "key", "field", "two words"});
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", "two words"), 1);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", "two"), 0);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", "two words more"), 0);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", ""), 0);
}

TEST_F(HashCommands, FieldMatchesOver1023CharactersAtMost) {
  const std::string start(1023, 'v');
  Ask({"HSET", "key", "field", start + "stored"});
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", (start + "expected").c_str()), 1);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", start.c_str()), 1);
  EXPECT_EQ(isFieldMatched(ctx(), "key", "field", start.substr(1).c_str()), 0);
}

TEST_F(HashCommands, RemovingAMissingFieldIsAFailure) {
  Ask({"HSET", "key", "a field", "1", "other", "2"});
  EXPECT_EQ(removeFieldFromHash(ctx(), "key", "a field"), 0);
  EXPECT_EQ(removeFieldFromHash(ctx(), "key", "a field"), 1);
  EXPECT_EQ(Dump(), "hash key\n  other = 2\n");
}

TEST_F(HashCommands, SettingOneFieldTakesTheEmptyText) {
  EXPECT_EQ(hsetKey(ctx(), "key", "field", ""), 0);
  EXPECT_EQ(hsetKey(ctx(), "key", "other", "two words"), 0);
  EXPECT_EQ(Dump(), "hash key\n  field = \n  other = two words\n");
}

TEST_F(HashCommands, SettingOneFieldTakesErrorReplyAsSuccess) {
  Ask({"RPUSH", "key", "item"});
  EXPECT_EQ(hsetKey(ctx(), "key", "field", "value"), 0);
}

}  // namespace
}  // namespace zephlane::test
