// SPDX-License-Identifier: MIT
//
// Reading several fields, whole hashes and whole sets.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::CArray;
using zephlane::test::ApiReport;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachGivesNull;
using zephlane::test::GiveNumbersElements;
using zephlane::test::Pointers;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;
using zephlane::test::Taken;

using Texts = std::vector<std::string>;

constexpr char kWrongType[] = "-WRONGTYPE Operation against a key\r\n";
constexpr char kNoElements[] = "*0\r\n";

class ArrayReaderTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
  unsigned int count_ = 77;
};

// Fields and values in turn, of records or pairs.
Texts Flat(const InstanceData* pairs, unsigned int count) {
  Texts texts;
  for (unsigned int i = 0; i < count; ++i) {
    texts.insert(texts.end(), {pairs[i].aFieldName, pairs[i].aValue});
  }
  return texts;
}

Texts Taken(ExtendedPair* taken, unsigned int count) {
  const CArray<ExtendedPair> pairs(taken);
  Texts texts;
  for (unsigned int i = 0; pairs && i < count; ++i) {
    texts.push_back(Taken(pairs[i].aFieldName));
    texts.push_back(Taken(pairs[i].aValue));
  }
  return texts;
}

class GetHashMultipleFieldV21 : public ArrayReaderTest {
 protected:
  const Pointers fields_{"b", "no such", "a a"};
};

TEST_F(GetHashMultipleFieldV21, GivesOneEntryForEachFieldInOrder) {
  const std::string value(1500, 'v');
  Ask({"HSET", "object", "a a", "two words", "b", value});
  char** values = zephlaneGetHashMultipleFieldV21(ctx(), "object", fields_.Get(), 3, &count_);
  EXPECT_EQ(count_, 3U);
  EXPECT_EQ(Taken(values, count_), (Texts{value, "(null)", "two words"}));
}

TEST_F(GetHashMultipleFieldV21, SendsOneCommandAndGivesNullWhenItFails) {
  server_.WillReply(kWrongType);
  server_.WillClose();
  const auto read = [&] {
    return zephlaneGetHashMultipleFieldV21(scripted(), "a key", fields_.Get(), 3, &count_);
  };
  ExpectEachGivesNull({{"wrong type", read, ""}, {"lost", read, ""}});
  const std::string command = Bulks({"HMGET", "a key", "b", "no such", "a a"});
  EXPECT_EQ(server_.Received(), command + command);
  EXPECT_EQ(count_, 77U);
}

TEST_F(GetHashMultipleFieldV21, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  const auto read = [&](redisContext* ctx, const char* key, char* const* fields,
                        unsigned int* count) {
    return zephlaneGetHashMultipleFieldV21(ctx, key, fields, 3, count);
  };
  ExpectEachGivesNull({
      {"key", [&] { return read(scripted(), nullptr, fields_.Get(), &count_); }, report},
      {"connection", [&] { return read(nullptr, "key", fields_.Get(), &count_); }, report},
      {"count", [&] { return read(scripted(), "key", fields_.Get(), nullptr); }, report},
      {"fields", [&] { return read(scripted(), "key", nullptr, &count_); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class SMembers : public ArrayReaderTest {};

TEST_F(SMembers, CutsEachMemberTo1023CharactersAndTerminatesIt) {
  server_.WillReply(Bulks({"two words", std::string(1023, 'm'), std::string(1500, 'n'), ""}));
  const CArray<SetData> members(zephlaneSMembers(scripted(), "a set", &count_));
  ASSERT_EQ(count_, 4U);
  EXPECT_STREQ(members[0].aObjectID, "two words");
  EXPECT_EQ(members[1].aObjectID, std::string(1023, 'm'));
  EXPECT_EQ(members[2].aObjectID, std::string(1023, 'n'));
  EXPECT_STREQ(members[3].aObjectID, "");
  EXPECT_EQ(server_.Received(), Bulks({"SMEMBERS", "a set"}));
}

TEST_F(SMembers, OfAMissingSetIsAnArrayOfNoMembers) {
  const CArray<SetData> members(zephlaneSMembers(ctx(), "none", &count_));
  EXPECT_NE(members, nullptr);
  EXPECT_EQ(count_, 0U);
}

TEST_F(SMembers, OfAnotherTypeIsAnArrayOfNoMembers) {
  Ask({"HSET", "hash", "field", "value"});
  const CArray<SetData> members(zephlaneSMembers(ctx(), "hash", &count_));
  EXPECT_NE(members, nullptr);
  EXPECT_EQ(count_, 0U);
}

TEST_F(SMembers, DoesWithoutACount) {
  Ask({"SADD", "set", "member"});
  const CArray<SetData> members(zephlaneSMembers(ctx(), "set", nullptr));
  ASSERT_NE(members, nullptr);
  EXPECT_STREQ(members[0].aObjectID, "member");
}

TEST_F(SMembers, OnALostConnectionOrWithoutMemoryLeavesTheCount) {
  server_.WillClose();
  ExpectEachGivesNull({{"lost", [&] { return zephlaneSMembers(scripted(), "set", &count_); }, ""}});
  Ask({"SADD", "set", "member"});
  EXPECT_EQ(
      PrintedWithoutMemory(1, [&] { EXPECT_EQ(zephlaneSMembers(ctx(), "set", &count_), nullptr); }),
      "");
  EXPECT_EQ(count_, 77U);
}

TEST_F(SMembers, RefusesANullSetBeforeANullConnection) {
  ExpectEachGivesNull({
      {"set", [&] { return zephlaneSMembers(scripted(), nullptr, &count_); },
       ApiReport("aSetKey is NULL")},
      {"both", [&] { return zephlaneSMembers(nullptr, nullptr, &count_); },
       ApiReport("aSetKey is NULL")},
      {"connection", [&] { return zephlaneSMembers(nullptr, "set", &count_); },
       ApiReport("Argument: redis context!")},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

class ExtendedSMembers : public ArrayReaderTest {};

TEST_F(ExtendedSMembers, GivesMembersOfAnyLength) {
  const std::string member(1500, 'm');
  server_.WillReply(Bulks({"two words", member, ""}));
  char** members = zephlaneExtendedSMembers(scripted(), "a set", &count_);
  EXPECT_EQ(count_, 3U);
  EXPECT_EQ(Taken(members, count_), (Texts{"two words", member, ""}));
  EXPECT_EQ(server_.Received(), Bulks({"SMEMBERS", "a set"}));
}

TEST_F(ExtendedSMembers, OfAMissingSetIsNullWithTheCountZero) {
  ExpectEachGivesNull(
      {{"missing", [&] { return zephlaneExtendedSMembers(ctx(), "none", &count_); }, ""}});
  EXPECT_EQ(count_, 0U);
}

TEST_F(ExtendedSMembers, OfAnotherTypeIsNullWithTheCountZero) {
  Ask({"HSET", "hash", "field", "value"});
  ExpectEachGivesNull(
      {{"hash", [&] { return zephlaneExtendedSMembers(ctx(), "hash", &count_); }, ""}});
  EXPECT_EQ(count_, 0U);
}

TEST_F(ExtendedSMembers, ReportsElementsOfWhatIsNoArray) {
  GiveNumbersElements(scripted());
  server_.WillReply(":1\r\n");
  ExpectEachGivesNull(
      {{"number", [&] { return zephlaneExtendedSMembers(scripted(), "s", &count_); },
        ApiReport("Wrong reply!")}});
  EXPECT_EQ(count_, 0U);
}

TEST_F(ExtendedSMembers, ReportsThatMemoryIsOutForTheArrayAndEachCopy) {
  Ask({"SADD", "set", "a", "b"});
  for (const int n : {1, 2, 3}) {
    EXPECT_EQ(PrintedWithoutMemory(
                  n, [&] { EXPECT_EQ(zephlaneExtendedSMembers(ctx(), "set", &count_), nullptr); }),
              ApiReport("malloc"))
        << n;
  }
}

TEST_F(ExtendedSMembers, OnALostConnectionLeavesTheCount) {
  server_.WillClose();
  ExpectEachGivesNull(
      {{"lost", [&] { return zephlaneExtendedSMembers(scripted(), "set", &count_); }, ""}});
  EXPECT_EQ(count_, 77U);
}

TEST_F(ExtendedSMembers, DoesWithoutACount) {
  Ask({"SADD", "set", "member"});
  EXPECT_EQ(Taken(zephlaneExtendedSMembers(ctx(), "set", nullptr), 1), Texts{"member"});
}

TEST_F(ExtendedSMembers, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachGivesNull({
      {"set", [&] { return zephlaneExtendedSMembers(scripted(), nullptr, &count_); }, report},
      {"connection", [&] { return zephlaneExtendedSMembers(nullptr, "set", &count_); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

class HashGetAll : public ArrayReaderTest {};

TEST_F(HashGetAll, CutsFieldsAndValuesTo1023Characters) {
  server_.WillReply(Bulks({"Name", "two words", std::string(1500, 'f'), std::string(1024, 'v')}));
  count_ = 0;
  const CArray<InstanceData> pairs(zephlaneHashGetAll(scripted(), "a key", &count_));
  ASSERT_EQ(count_, 2U);
  EXPECT_EQ(Flat(pairs.get(), 2),
            (Texts{"Name", "two words", std::string(1023, 'f'), std::string(1023, 'v')}));
  EXPECT_EQ(server_.Received(), Bulks({"HGETALL", "a key"}));
}

TEST_F(HashGetAll, AddsToTheCounterOfItsCaller) {
  Ask({"HSET", "one", "a", "1"});
  Ask({"HSET", "two", "b", "2", "c", "3"});
  count_ = 0;
  const CArray<InstanceData> one(zephlaneHashGetAll(ctx(), "one", &count_));
  const CArray<InstanceData> two(zephlaneHashGetAll(ctx(), "two", &count_));
  EXPECT_EQ(count_, 3U);
}

TEST_F(HashGetAll, OfAMissingHashIsAnArrayOfNoPairs) {
  const CArray<InstanceData> pairs(zephlaneHashGetAll(ctx(), "none", &count_));
  EXPECT_NE(pairs, nullptr);
  EXPECT_EQ(count_, 77U);
}

TEST_F(HashGetAll, DoesWithoutACounter) {
  Ask({"HSET", "object", "a", "1"});
  const CArray<InstanceData> pairs(zephlaneHashGetAll(ctx(), "object", nullptr));
  ASSERT_NE(pairs, nullptr);
  EXPECT_EQ(Flat(pairs.get(), 1), (Texts{"a", "1"}));
}

TEST_F(HashGetAll, GivesNullSilentlyAndLeavesTheCounterWhenItFails) {
  Ask({"SADD", "set", "member"});
  Ask({"HSET", "object", "a", "1"});
  server_.WillClose();
  ExpectEachGivesNull({
      {"wrong type", [&] { return zephlaneHashGetAll(ctx(), "set", &count_); }, ""},
      {"lost", [&] { return zephlaneHashGetAll(scripted(), "key", &count_); }, ""},
  });
  EXPECT_EQ(PrintedWithoutMemory(
                1, [&] { EXPECT_EQ(zephlaneHashGetAll(ctx(), "object", &count_), nullptr); }),
            "");
  EXPECT_EQ(count_, 77U);
}

TEST_F(HashGetAll, RefusesANullKeyBeforeANullConnection) {
  ExpectEachGivesNull({
      {"key", [&] { return zephlaneHashGetAll(scripted(), nullptr, &count_); },
       ApiReport("aHashKey is NULL!")},
      {"both", [&] { return zephlaneHashGetAll(nullptr, nullptr, &count_); },
       ApiReport("aHashKey is NULL!")},
      {"connection", [&] { return zephlaneHashGetAll(nullptr, "key", &count_); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

class ExtendedHashGetAll : public ArrayReaderTest {};

TEST_F(ExtendedHashGetAll, GivesFieldsAndValuesOfAnyLength) {
  const std::string text(1500, 't');
  server_.WillReply(Bulks({"Name", "two words", text, text, "Empty", ""}));
  ExtendedPair* pairs = zephlaneExtendedHashGetAll(scripted(), "a key", &count_);
  EXPECT_EQ(count_, 3U);
  EXPECT_EQ(Taken(pairs, count_), (Texts{"Name", "two words", text, text, "Empty", ""}));
  EXPECT_EQ(server_.Received(), Bulks({"HGETALL", "a key"}));
}

TEST_F(ExtendedHashGetAll, SetsTheCountToZeroWithoutPairs) {
  server_.WillReply(kNoElements);
  server_.WillReply(kWrongType);
  for (const char* what : {"missing", "wrong type"}) {
    count_ = 77;
    ExpectEachGivesNull(
        {{what, [&] { return zephlaneExtendedHashGetAll(scripted(), "key", &count_); }, ""}});
    EXPECT_EQ(count_, 0U) << what;
  }
}

TEST_F(ExtendedHashGetAll, ReportsElementsOfWhatIsNoArray) {
  GiveNumbersElements(scripted());
  server_.WillReply(":1\r\n");
  ExpectEachGivesNull(
      {{"number", [&] { return zephlaneExtendedHashGetAll(scripted(), "key", &count_); },
        ApiReport("Wrong reply!")}});
  EXPECT_EQ(count_, 0U);
}

TEST_F(ExtendedHashGetAll, ReportsALostConnectionAndLeavesTheCount) {
  server_.WillClose();
  ExpectEachGivesNull(
      {{"lost", [&] { return zephlaneExtendedHashGetAll(scripted(), "key", &count_); },
        ApiReport("HGETALL failed!")}});
  EXPECT_EQ(count_, 77U);
}

TEST_F(ExtendedHashGetAll, ReportsThatMemoryIsOutForEachCopyButNotForTheArray) {
  Ask({"HSET", "object", "a", "1", "b", "2"});
  const auto read = [&] {
    EXPECT_EQ(zephlaneExtendedHashGetAll(ctx(), "object", &count_), nullptr);
  };
  EXPECT_EQ(PrintedWithoutMemory(1, read), "");
  for (const int n : {2, 3, 4, 5}) {
    EXPECT_EQ(PrintedWithoutMemory(n, read), ApiReport("malloc")) << n;
  }
}

TEST_F(ExtendedHashGetAll, DoesWithoutACount) {
  Ask({"HSET", "object", "a", "1"});
  EXPECT_EQ(Taken(zephlaneExtendedHashGetAll(ctx(), "object", nullptr), 1), (Texts{"a", "1"}));
}

TEST_F(ExtendedHashGetAll, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachGivesNull({
      {"key", [&] { return zephlaneExtendedHashGetAll(scripted(), nullptr, &count_); }, report},
      {"connection", [&] { return zephlaneExtendedHashGetAll(nullptr, "key", &count_); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

}  // namespace
