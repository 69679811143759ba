// SPDX-License-Identifier: MIT
//
// Reading single fields, types and memberships, and waiting; what returns arrays is in
// objectReadersArrays_test.cpp.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

std::vector<unsigned int> sleeps;

}  // namespace

// Takes the C library's place in this program, so that nothing waits.
extern "C" unsigned int sleep(unsigned int seconds) {
  sleeps.push_back(seconds);
  return 0;
}

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::Capture;
using zephlane::test::ExpectEachFails;
using zephlane::test::ExpectEachGivesNull;
using zephlane::test::Masked;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::RegexFault;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;
using zephlane::test::Taken;

class ReaderTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
  char out_[1024] = "";
};

// The four readers of one field into a buffer, each with the key and field it asks for.
struct BufferReader {
  const char* name;
  std::function<int(redisContext*, char*)> read;
  std::string key;
  std::string field;
};

void PrintTo(const BufferReader& reader, std::ostream* stream) {
  *stream << reader.name;
}

class BufferReaders : public ReaderTest, public testing::WithParamInterface<BufferReader> {};

TEST_P(BufferReaders, FindAFieldAndTerminateIt) {
  const BufferReader& reader = GetParam();
  Ask({"HSET", reader.key, reader.field, "two words"});
  std::fill(std::begin(out_), std::end(out_), 'x');
  EXPECT_EQ(reader.read(ctx(), out_), 0);
  EXPECT_STREQ(out_, "two words");
}

TEST_P(BufferReaders, SendOneCommand) {
  const BufferReader& reader = GetParam();
  server_.WillReply(Bulk("value"));
  EXPECT_EQ(reader.read(scripted(), out_), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", reader.key, reader.field}));
}

TEST_P(BufferReaders, CutAValueTo1023Characters) {
  const BufferReader& reader = GetParam();
  for (const std::size_t length : {1023U, 1024U, 1500U}) {
    Ask({"HSET", reader.key, reader.field, std::string(length, 'v')});
    EXPECT_EQ(reader.read(ctx(), out_), 0);
    EXPECT_EQ(out_, std::string(1023, 'v')) << length;
  }
}

TEST_P(BufferReaders, FailSilentlyWithoutAValueAndLeaveTheBuffer) {
  const BufferReader& reader = GetParam();
  std::snprintf(out_, sizeof(out_), "before");
  server_.WillReply(Bulk(""));
  server_.WillClose();
  ExpectEachFails({
      {"no key", [&] { return reader.read(ctx(), out_); }, ""},
      {"empty value", [&] { return reader.read(scripted(), out_); }, ""},
      {"lost connection", [&] { return reader.read(scripted(), out_); }, ""},
  });
  EXPECT_STREQ(out_, "before");
}

INSTANTIATE_TEST_SUITE_P(
    Each, BufferReaders,
    testing::Values(BufferReader{"Variable",
                                 [](redisContext* ctx, char* out) {
                                   return zephlaneVariableGetStr(ctx, "my name", out);
                                 },
                                 "zephlaneVariable", "my name"},
                    BufferReader{"Uuid",
                                 [](redisContext* ctx, char* out) {
                                   return zephlaneGetUuid(ctx, "/uri", out);
                                 },
                                 "UriUuidMap", "/uri"},
                    BufferReader{"HashField",
                                 [](redisContext* ctx, char* out) {
                                   return zephlaneGetHashField(ctx, "a key", "a field", out);
                                 },
                                 "a key", "a field"},
                    BufferReader{"SchemaTitle",
                                 [](redisContext* ctx, char* out) {
                                   return zephlaneGetSchemaTypeIdByTitle(ctx, "a title", out);
                                 },
                                 "ZephlaneSchemaTitleUuidHash", "a title"}),
    [](const auto& instance) { return instance.param.name; });

TEST_F(ReaderTest, ABufferReaderRefusesNullPointers) {
  const std::string pointer = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"variable name", [&] { return zephlaneVariableGetStr(scripted(), nullptr, out_); }, pointer},
      {"variable connection", [&] { return zephlaneVariableGetStr(nullptr, "x", out_); }, pointer},
      {"URI", [&] { return zephlaneGetUuid(scripted(), nullptr, out_); }, pointer},
      {"URI and connection", [&] { return zephlaneGetUuid(nullptr, nullptr, out_); }, pointer},
      {"UUID connection", [&] { return zephlaneGetUuid(nullptr, "/uri", out_); },
       ApiReport("Argument: redis context")},
      {"title", [&] { return zephlaneGetSchemaTypeIdByTitle(scripted(), nullptr, out_); }, pointer},
      {"title connection", [&] { return zephlaneGetSchemaTypeIdByTitle(nullptr, "t", out_); },
       pointer},
      {"title buffer", [&] { return zephlaneGetSchemaTypeIdByTitle(scripted(), "t", nullptr); },
       pointer},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ReaderTest, GetHashFieldNamesTheFirstArgumentThatIsNull) {
  ExpectEachFails({
      {"all", [&] { return zephlaneGetHashField(nullptr, nullptr, nullptr, out_); },
       ApiReport("aHashKey is NULL, failed!")},
      {"field and connection", [&] { return zephlaneGetHashField(nullptr, "key", nullptr, out_); },
       ApiReport("aFieldName is NULL, failed!")},
      {"connection", [&] { return zephlaneGetHashField(nullptr, "key", "field", out_); },
       ApiReport(" Need connect to Redis Server first !")},
  });
}

TEST_F(ReaderTest, ASharedCheckReportsTheLineOfTheFunctionThatFailed) {
  const std::string in_get_uuid = Capture([&] { zephlaneGetUuid(ctx(), nullptr, out_); }).out;
  const std::string in_dump = Capture([&] { zephlaneDumpHash(ctx(), nullptr); }).out;
  EXPECT_NE(in_get_uuid, in_dump);
  EXPECT_EQ(Masked(in_get_uuid), Masked(in_dump));
}

class GetHashFieldV21 : public ReaderTest {};

TEST_F(GetHashFieldV21, ReturnsAValueOfAnyLength) {
  const std::string value(1500, 'v');
  Ask({"HSET", "object", "field", value});
  EXPECT_EQ(Taken(zephlaneGetHashFieldV21(ctx(), "object", "field")), value);
}

TEST_F(GetHashFieldV21, SendsOneCommandAndGivesNullSilentlyWithoutAValue) {
  server_.WillReply(Bulk(""));
  server_.WillClose();
  ExpectEachGivesNull({
      {"missing", [&] { return zephlaneGetHashFieldV21(ctx(), "object", "field"); }, ""},
      {"empty", [&] { return zephlaneGetHashFieldV21(scripted(), "a key", "a field"); }, ""},
      {"lost", [&] { return zephlaneGetHashFieldV21(scripted(), "key", "field"); }, ""},
  });
  EXPECT_EQ(server_.Received(),
            Bulks({"HGET", "a key", "a field"}) + Bulks({"HGET", "key", "field"}));
}

TEST_F(GetHashFieldV21, RefusesNullPointers) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachGivesNull({
      {"key", [&] { return zephlaneGetHashFieldV21(scripted(), nullptr, "field"); }, report},
      {"field", [&] { return zephlaneGetHashFieldV21(scripted(), "key", nullptr); }, report},
      {"connection", [] { return zephlaneGetHashFieldV21(nullptr, "key", "field"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class SchemaTypeIdByField : public ReaderTest {
 protected:
  int Find(redisContext* ctx, const char* value) {
    return zephlaneGetSchemaTypeIdByField(ctx, "Name", value, "members", out_);
  }
};

TEST_F(SchemaTypeIdByField, FindsTheMemberWhoseFieldHoldsTheValue) {
  Ask({"SADD", "members", "a", "b"});
  Ask({"HSET", "a", "Name", "one"});
  Ask({"HSET", "b", "Name", "two words"});
  EXPECT_EQ(Find(ctx(), "two words"), 0);
  EXPECT_STREQ(out_, "b");
}

TEST_F(SchemaTypeIdByField, TakesTheFirstMatchInTheOrderOfTheSet) {
  for (int i = 0; i < 2; ++i) { server_.WillReply(Bulks({"c", "a", "b"})); }
  server_.WillReply(Bulk("y"));
  server_.WillReply(Bulk("x"));
  EXPECT_EQ(Find(scripted(), "x"), 0);
  EXPECT_STREQ(out_, "a");
  EXPECT_EQ(server_.Commands(), "SMEMBERS members\nSMEMBERS members\nHGET c Name\nHGET a Name\n");
}

TEST_F(SchemaTypeIdByField, WritesTheIdWithoutATerminator) {
  Ask({"SADD", "members", "a"});
  std::snprintf(out_, sizeof(out_), "xyz");
  EXPECT_EQ(Find(ctx(), ""), 0);  // a missing field reads as the empty text
  EXPECT_STREQ(out_, "ayz");
}

TEST_F(SchemaTypeIdByField, FailsSilentlyWithoutAMatchAndLeavesTheBuffer) {
  Ask({"SADD", "members", "a"});
  Ask({"HSET", "hash", "field", "value"});
  std::snprintf(out_, sizeof(out_), "before");
  const auto find = [&](const char* set) {
    return zephlaneGetSchemaTypeIdByField(ctx(), "Name", "x", set, out_);
  };
  ExpectEachFails({
      {"no match", [&] { return find("members"); }, ""},
      {"missing set", [&] { return find("none"); }, ""},
      {"no set", [&] { return find("hash"); }, ""},
      {"NULL set", [&] { return find(nullptr); }, ""},
  });
  EXPECT_STREQ(out_, "before");
}

TEST_F(SchemaTypeIdByField, FailsWhenTheSetChangesWhileItIsReadOrTheConnectionIsLost) {
  server_.WillReply(Bulks({"a", "b"}));
  server_.WillReply(Bulks({"a"}));
  server_.WillClose();
  EXPECT_EQ(Find(scripted(), "x"), 1);
  EXPECT_EQ(Find(scripted(), "x"), 1);
}

TEST_F(SchemaTypeIdByField, SaysWithoutPrefixThatMemoryIsOut) {
  Ask({"SADD", "members", "a"});
  EXPECT_EQ(PrintedWithoutMemory(1, [&] { EXPECT_EQ(Find(ctx(), "x"), 1); }),
            "\nmembers is not a SET or empty\n");
}

TEST_F(SchemaTypeIdByField, RefusesNullPointersBeforeANullConnection) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"value", [&] { return Find(scripted(), nullptr); }, report},
      {"field",
       [&] { return zephlaneGetSchemaTypeIdByField(scripted(), nullptr, "v", "set", out_); },
       report},
      {"value and connection", [&] { return Find(nullptr, nullptr); }, report},
      {"connection", [&] { return Find(nullptr, "x"); }, ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class IsFieldMatched : public ReaderTest {};

TEST_F(IsFieldMatched, ComparesUpTo1023Characters) {
  const std::string common(1023, 'v');
  Ask({"HSET", "object", "Name", "two words", "Long", common + "A"});
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "object", "Name", "two words"), 1);
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "object", "Name", "two"), 0);
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "object", "Name", ""), 0);
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "object", "Long", (common + "B").c_str()), 1);
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "object", "Long", common.substr(1).c_str()), 0);
}

TEST_F(IsFieldMatched, TakesAMissingFieldForTheEmptyText) {
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "none", "Name", ""), 1);
  EXPECT_EQ(zephlaneIsFieldMatched(ctx(), "none", "Name", "x"), 0);
}

TEST_F(IsFieldMatched, SendsOneCommand) {
  server_.WillReply(Bulk("1 2"));
  EXPECT_EQ(zephlaneIsFieldMatched(scripted(), "a key", "a field", "1 2"), 1);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "a key", "a field"}));
}

TEST_F(IsFieldMatched, RefusesNullPointersBeforeANullConnection) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails<int>(
      0,
      {
          {"key", [&] { return zephlaneIsFieldMatched(scripted(), nullptr, "f", ""); }, report},
          {"field", [&] { return zephlaneIsFieldMatched(scripted(), "k", nullptr, ""); }, report},
          {"key and connection", [] { return zephlaneIsFieldMatched(nullptr, nullptr, "f", ""); },
           report},
          {"connection", [] { return zephlaneIsFieldMatched(nullptr, "k", "f", ""); },
           ApiReport("Argument: redis context")},
          {"value", [&] { return zephlaneIsFieldMatched(scripted(), "k", "f", nullptr); }, ""},
      });
  EXPECT_EQ(server_.Received(), "");
}

struct LinkText {
  const char* text;
  int is_link;
};

TEST(IsLink, HoldsForATextWithAUuidAnywhere) {
  const LinkText texts[] = {
      {"1c9d2e3f-aaaa-bbbb-cccc-0123456789ab", 1},
      {"/objects/1c9d2e3f-aaaa-BBBB-cccc-0123456789ab/y", 1},
      {"XX1C9D2E3F-AAAA-BBBB-CCCC-0123456789ABCDEF", 1},
      {"line\n1c9d2e3f-aaaa-bbbb-cccc-0123456789ab", 1},
      {"1c9d2e3f-aaaa", 0},
      {"1c9d2e3f-aaaa-bbbb-cccc-0123456789a", 0},
      {"1c9d2e3g-aaaa-bbbb-cccc-0123456789ab", 0},
      {"1c9d2e3faaaabbbbcccc0123456789ab", 0},
      {"", 0},
  };
  for (const LinkText& link : texts) {
    EXPECT_EQ(zephlaneIsLink(link.text), link.is_link) << link.text;
  }
}

TEST(IsLink, RefusesANullText) {
  ExpectEachFails<int>(
      0, {{"NULL", [] { return zephlaneIsLink(nullptr); }, ApiReport("Argument: NULL pointer")}});
}

TEST(IsLink, ReportsAPatternThatCannotBeCompiledWithAnEmptyLine) {
  const RegexFault fault;
  ExpectEachFails<int>(
      0, {{"regcomp", [] { return zephlaneIsLink("1c9d2e3f-aaaa-bbbb-cccc-0123456789ab"); },
           ApiReport("regcomp() error!! \n")}});
}

class DumpHash : public ReaderTest {};

TEST_F(DumpHash, PrintsFieldsAndValuesInTurnNumberedFromZero) {
  server_.WillReply(Bulks({"Name", "two words", "Percent", "100%s"}));
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneDumpHash(scripted(), "a key"), 0); }),
            "0) Name\n1) two words\n2) Percent\n3) 100%s\n");
  EXPECT_EQ(server_.Received(), Bulks({"HGETALL", "a key"}));
}

TEST_F(DumpHash, OfAMissingKeyOrAnotherTypePrintsNothing) {
  Ask({"SADD", "set", "member"});
  EXPECT_EQ(PrintedBy([&] {
              EXPECT_EQ(zephlaneDumpHash(ctx(), "none"), 0);
              EXPECT_EQ(zephlaneDumpHash(ctx(), "set"), 0);
            }),
            "");
}

TEST_F(DumpHash, RefusesNullPointersAndFailsOnALostConnection) {
  server_.WillClose();
  ExpectEachFails({
      {"key", [&] { return zephlaneDumpHash(ctx(), nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"both", [] { return zephlaneDumpHash(nullptr, nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneDumpHash(nullptr, "key"); },
       ApiReport("Argument: redis context")},
      {"lost", [&] { return zephlaneDumpHash(scripted(), "key"); }, ""},
  });
}

class CheckTtl : public ReaderTest {
 protected:
  void SetUp() override {
    ReaderTest::SetUp();
    sleeps.clear();
  }
};

TEST_F(CheckTtl, AsksForTheRestAndWaitsOneSecondEachTime) {
  for (int i = 0; i < 2; ++i) {
    server_.WillReply(Bulk("10"));
    server_.WillReply(":9\r\n");
  }
  EXPECT_EQ(zephlaneCheckTTL(scripted(), "a key", 2), 0);
  const std::string poll = Bulks({"HGET", "a key-TTL", "TtlSec"}) + Bulks({"TTL", "a key-TTL"});
  EXPECT_EQ(server_.Received(), poll + poll);
  EXPECT_EQ(sleeps, (std::vector<unsigned int>{1, 1}));
}

TEST_F(CheckTtl, WaitsAllTheSameWithoutACompanionOrAConnection) {
  server_.WillClose();
  EXPECT_EQ(zephlaneCheckTTL(ctx(), "none", 3), 0);
  EXPECT_EQ(zephlaneCheckTTL(scripted(), "key", 2), 0);
  EXPECT_EQ(sleeps.size(), 5U);
}

TEST_F(CheckTtl, WithZeroOrNegativeRepetitionsDoesNothing) {
  EXPECT_EQ(zephlaneCheckTTL(scripted(), "key", 0), 0);
  EXPECT_EQ(zephlaneCheckTTL(scripted(), "key", -1), 0);
  EXPECT_EQ(server_.Received(), "");
  EXPECT_TRUE(sleeps.empty());
}

TEST_F(CheckTtl, RefusesANullKeyBeforeANullConnection) {
  ExpectEachFails({
      {"both", [] { return zephlaneCheckTTL(nullptr, nullptr, 1); },
       ApiReport("aHashKey is NULL, failed!")},
      {"connection", [] { return zephlaneCheckTTL(nullptr, "key", 1); },
       ApiReport(" Need connect to Redis Server first !")},
  });
  EXPECT_TRUE(sleeps.empty());
}

class SetKeyTimeout : public ReaderTest {};

TEST_F(SetKeyTimeout, MakesAKeyOfAnyTypeExpireWithoutACompanion) {
  Ask({"RPUSH", "list", "item"});
  EXPECT_EQ(zephlaneSetKeyTimeout(ctx(), "list", 100), 0);
  EXPECT_GT(std::stoi(Ask({"TTL", "list"})), 0);
  EXPECT_EQ(Dump(), "list list\n  item\n");
}

TEST_F(SetKeyTimeout, SendsTheTimeUnsigned) {
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneSetKeyTimeout(scripted(), "a key", 4294967295U), 0);
  EXPECT_EQ(server_.Received(),
            Bulks({"EXISTS", "a key"}) + Bulks({"EXPIRE", "a key", "4294967295"}));
}

TEST_F(SetKeyTimeout, ReportsAMissingKeyARefusalAndALostConnection) {
  server_.WillReply(":1\r\n");
  server_.WillReply("-ERR no\r\n");
  server_.WillClose();
  const std::string report = ApiReport("Failed to Set Key Expiration!");
  ExpectEachFails({
      {"missing", [&] { return zephlaneSetKeyTimeout(ctx(), "none", 10); }, report},
      {"refused", [&] { return zephlaneSetKeyTimeout(scripted(), "key", 10); }, report},
      {"lost", [&] { return zephlaneSetKeyTimeout(scripted(), "key", 10); }, report},
  });
}

TEST_F(SetKeyTimeout, RefusesNullPointersAndZeroSeconds) {
  const std::string report = ApiReport("Input paramter!");
  ExpectEachFails({
      {"key", [&] { return zephlaneSetKeyTimeout(scripted(), nullptr, 10); }, report},
      {"connection", [] { return zephlaneSetKeyTimeout(nullptr, "key", 10); }, report},
      {"seconds", [&] { return zephlaneSetKeyTimeout(scripted(), "key", 0); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class IsMember : public ReaderTest {};

TEST_F(IsMember, HoldsForAMemberOnly) {
  Ask({"SADD", "set", "two words"});
  EXPECT_EQ(zephlaneIsMember(ctx(), "set", "two words"), 1);
  EXPECT_EQ(zephlaneIsMember(ctx(), "set", "two"), 0);
  EXPECT_EQ(zephlaneIsMember(ctx(), "none", "two words"), 0);
}

TEST_F(IsMember, TakesAQueryThatFailsForMember) {
  Ask({"HSET", "hash", "field", "value"});
  EXPECT_EQ(zephlaneIsMember(ctx(), "hash", "field"), 1);
  server_.WillClose();
  EXPECT_EQ(zephlaneIsMember(scripted(), "a set", "a b"), 1);
  EXPECT_EQ(server_.Received(), Bulks({"SISMEMBER", "a set", "a b"}));
}

TEST_F(IsMember, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails<int>(
      -1, {
              {"set", [&] { return zephlaneIsMember(scripted(), nullptr, "a"); }, report},
              {"member", [&] { return zephlaneIsMember(scripted(), "set", nullptr); }, report},
              {"connection", [] { return zephlaneIsMember(nullptr, "set", "a"); }, report},
          });
  EXPECT_EQ(server_.Received(), "");
}

class RedisType : public ReaderTest {};

TEST_F(RedisType, IsTheCodeOfHashSetOrListAndZeroForTheRest) {
  Ask({"HSET", "hash", "field", "value"});
  Ask({"SADD", "set", "member"});
  Ask({"RPUSH", "list", "item"});
  Ask({"SET", "string", "value"});
  Ask({"ZADD", "sorted", "1", "member"});
  EXPECT_EQ(zephlaneRedisType(ctx(), "hash"), 1);
  EXPECT_EQ(zephlaneRedisType(ctx(), "set"), 2);
  EXPECT_EQ(zephlaneRedisType(ctx(), "list"), 4);
  for (const char* key : {"string", "sorted", "none"}) {
    EXPECT_EQ(zephlaneRedisType(ctx(), key), 0) << key;
  }
}

TEST_F(RedisType, IsZeroForAnyOtherReply) {
  for (const char* reply : {"+zset\r\n", "+settings\r\n", "-set\r\n", ":1\r\n"}) {
    server_.WillReply(reply);
    EXPECT_EQ(zephlaneRedisType(scripted(), "a key"), 0) << reply;
  }
  server_.WillClose();
  EXPECT_EQ(zephlaneRedisType(scripted(), "key"), 0);
  EXPECT_TRUE(server_.Received().starts_with(Bulks({"TYPE", "a key"})));
}

TEST_F(RedisType, RefusesANullKeyBeforeANullConnection) {
  ExpectEachFails<int>(0, {
                              {"key", [&] { return zephlaneRedisType(scripted(), nullptr); },
                               ApiReport("Argument: NULL pointer")},
                              {"both", [] { return zephlaneRedisType(nullptr, nullptr); },
                               ApiReport("Argument: NULL pointer")},
                              {"connection", [] { return zephlaneRedisType(nullptr, "key"); },
                               ApiReport("Argument: redis context")},
                          });
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
