// SPDX-License-Identifier: MIT
//
// What completes the hash tree: the table of schemas, the end of the placeholders, and the index of
// titles.
#include <string>

#include <gtest/gtest.h>

#include "interpreter/hashTreeFixture.h"

namespace {

using zephlane::test::ErrorsOf;
using zephlane::test::HashTreeTest;
using zephlane::test::kDummy;
using zephlane::test::kHash0;
using zephlane::test::kHash1;
using zephlane::test::kHash2;
using zephlane::test::kSet0;
using zephlane::test::kSet1;
using zephlane::test::TextOf;
using zephlane::test::TreeReports;

constexpr char kTypeId[] = "00000000-0000-0000-0001-ffffffffffff";

// What each object starts with, taken away once the tree is complete.
class DummyRemoval : public HashTreeTest {
 protected:
  void SetUp() override {
    HashTreeTest::SetUp();
    EXPECT_EQ(hashTreeInit(ctx()), 0);
  }
  int Remove() {
    int result = -1;
    errors_ = ErrorsOf([&] { result = hashTreeRemoveDummyData(ctx()); });
    return result;
  }
  std::string errors_;
};

TEST_F(DummyRemoval, StripsHashesAndSets) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue")), kHash0);
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "type", "object", kHash0), 0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
  Ask({"SADD", kSet0, "member"});
  Ask({"SADD", "ZephlaneSchemaInstances", kHash0});
  EXPECT_EQ(Remove(), 0);
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(Dump(), "hash " + std::string(kHash0) + "\n  type = object\nset " + kSet0 +
                        "\n  member\nset ZephlaneSchemaInstances\n  " + kHash0 +
                        "\nhash parent\n  title = T\n");
}

TEST_F(DummyRemoval, DropsObjectsThatHeldNothingElse) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue")), kHash0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
  EXPECT_EQ(Remove(), 0);
  EXPECT_EQ(Dump(), "hash parent\n  title = T\n");
}

TEST_F(DummyRemoval, KeepsADummyFieldWithAnotherValue) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "mine")), kHash0);
  EXPECT_EQ(Remove(), 0);
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "DummyKey\nmine");
}

TEST_F(DummyRemoval, TakesAnyOtherRecordedIdForAHash) {
  EXPECT_EQ(hashTreeCreateNewTypeSchemaHash(ctx(), "DummyKey", "DummyValue", kTypeId), 0);
  EXPECT_EQ(recordRedisObjectID("no such key"), 0);
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "type", "object", kTypeId), 0);
  EXPECT_EQ(Remove(), 0);
  EXPECT_EQ(Ask({"HGETALL", kTypeId}), "type\nobject");
}

TEST_F(DummyRemoval, StopsAtASetWithoutItsDummy) {
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), "member")), kSet0);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue")), kHash0);
  EXPECT_EQ(Remove(), 1);
  EXPECT_EQ(errors_, TreeReports({"Failed to remove dummy data ..."}));
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "DummyKey\nDummyValue");
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneSchemaInstances"}), kDummy);
}

TEST_F(DummyRemoval, StopsAtAHashThatKeepsItsDummy) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue")), kHash0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
  Ask({"ACL", "SETUSER", "default", "-hdel"});
  EXPECT_EQ(Remove(), 1);
  EXPECT_EQ(errors_, TreeReports({"Failed to remove dummy data ..."}));
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
}

TEST_F(DummyRemoval, ReportsAnInstanceSetWithoutItsDummy) {
  Ask({"DEL", "ZephlaneSchemaInstances"});
  EXPECT_EQ(Remove(), 1);
  EXPECT_EQ(errors_, TreeReports({"Remove dummy from ZephlaneSchemaInstances failed !!!"}));
}

TEST_F(DummyRemoval, SendsTheCommandsOfEachKind) {
  EXPECT_EQ(recordRedisObjectID(kHash2), 0);
  EXPECT_EQ(recordRedisObjectID(kSet1), 0);
  server_.WillReply("$10\r\nDummyValue\r\n");
  for (int i = 0; i < 3; ++i) { server_.WillReply(":1\r\n"); }
  EXPECT_EQ(hashTreeRemoveDummyData(server_.ctx()), 0);
  const std::string dummy = kDummy;
  EXPECT_EQ(server_.Commands(), "HGET " + std::string(kHash2) + " DummyKey\nHDEL " + kHash2 +
                                    " DummyKey\nSREM " + kSet1 + " " + dummy +
                                    "\nSREM ZephlaneSchemaInstances " + dummy + "\n");
}

// The table from schema file names to root hashes.
using SchemaTable = HashTreeTest;

TEST_F(SchemaTable, RemembersTheHashOfEachSchema) {
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", kHash0), 0);
  EXPECT_EQ(schemaReferTableInsertEntry("B.json", kHash1), 0);
  EXPECT_STREQ(getSchemaHashID("A.json"), kHash0);
  EXPECT_STREQ(getSchemaHashID("B.json"), kHash1);
  EXPECT_EQ(isReferenceSchemaHasInternalized("B.json"), 1);
  EXPECT_EQ(getSchemaHashID("C.json"), nullptr);
  EXPECT_EQ(isReferenceSchemaHasInternalized("C.json"), 0);
  EXPECT_EQ(isReferenceSchemaHasInternalized("a.json"), 0);
}

TEST_F(SchemaTable, HandsOutItsOwnText) {
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", kHash0), 0);
  EXPECT_EQ(getSchemaHashID("A.json"), getSchemaHashID("A.json"));
}

TEST_F(SchemaTable, KeepsDuplicatesAndFindsTheFirst) {
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", kHash0), 0);
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", kHash1), 0);
  EXPECT_STREQ(getSchemaHashID("A.json"), kHash0);
}

// The mark of use is not consulted, so a free entry is one without a name.
TEST_F(SchemaTable, EmptyNameCountsAsInternalizedWhileAnEntryIsFree) {
  EXPECT_EQ(isReferenceSchemaHasInternalized(""), 1);
  EXPECT_EQ(getSchemaHashID(""), nullptr);
}

TEST_F(SchemaTable, RefusesNullArguments) {
  const std::string errors = ErrorsOf([] {
    EXPECT_EQ(schemaReferTableInsertEntry(nullptr, kHash0), 1);
    EXPECT_EQ(schemaReferTableInsertEntry("A.json", nullptr), 1);
  });
  const std::string report = "schemaReferTableInsertEntry: argument is NULL";
  EXPECT_EQ(errors, TreeReports({report, report}));
}

TEST_F(SchemaTable, FindsNothingUnderNull) {
  EXPECT_EQ(getSchemaHashID(nullptr), nullptr);
  EXPECT_EQ(isReferenceSchemaHasInternalized(nullptr), 0);
  EXPECT_EQ(recordRedisObjectID(nullptr), -1);
  EXPECT_EQ(isUUIDRegistered(nullptr), 0);
}

class TitleIndex : public HashTreeTest {
 protected:
  void AddSchema(const char* name, const char* id, const std::string& title) {
    EXPECT_EQ(schemaReferTableInsertEntry(name, id), 0);
    if (!title.empty()) { Ask({"HSET", id, "title", title}); }
  }
  std::string Index() {
    return Ask({"HGETALL", "ZephlaneSchemaTitleUuidHash"});
  }
};

TEST_F(TitleIndex, NamesTheRootOfEachSchemaWithATitle) {
  AddSchema("A.json", "a", "#A.A");
  AddSchema("B.json", "b", "");
  AddSchema("C.json", "c", "two words");
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(ctx()), 0);
  EXPECT_EQ(Index(), "#A.A\na\ntwo words\nc");
}

TEST_F(TitleIndex, LaterSchemaWinsATitle) {
  AddSchema("A.json", "a", "T");
  AddSchema("B.json", "b", "T");
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(ctx()), 0);
  EXPECT_EQ(Index(), "T\nb");
}

TEST_F(TitleIndex, KeepsTitlesOfAFormerRun) {
  Ask({"HSET", "ZephlaneSchemaTitleUuidHash", "old", "id"});
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(ctx()), 0);
  EXPECT_EQ(Index(), "old\nid");
}

TEST_F(TitleIndex, CutsTitlesAt199Characters) {
  AddSchema("A.json", "a", std::string(199, 'a'));
  AddSchema("B.json", "b", std::string(300, 'b'));
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(ctx()), 0);
  EXPECT_EQ(Ask({"HGET", "ZephlaneSchemaTitleUuidHash", std::string(199, 'a')}), "a");
  EXPECT_EQ(Ask({"HGET", "ZephlaneSchemaTitleUuidHash", std::string(199, 'b')}), "b");
}

// The empty pair is skipped, so the command that goes out first names no pair.
TEST_F(TitleIndex, BeginsWithAnEmptyPair) {
  AddSchema("A.json", "a", "");
  server_.WillReply("-ERR wrong number of arguments\r\n");
  server_.WillReply("$1\r\nT\r\n");
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(server_.ctx()), 0);
  EXPECT_EQ(server_.Commands(),
            "HMSET ZephlaneSchemaTitleUuidHash\nHGET a title\n"
            "HMSET ZephlaneSchemaTitleUuidHash T a\n");
}

TEST_F(TitleIndex, ReportsAFailedFirstPair) {
  AddSchema("A.json", "a", "T");
  server_.WillReply("+QUEUED\r\n");
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(server_.ctx()), 1); });
  EXPECT_EQ(errors, TreeReports({"Set data to hash ZephlaneSchemaTitleUuidHash fail!\n"}));
  EXPECT_EQ(server_.Commands(), "HMSET ZephlaneSchemaTitleUuidHash\n");
}

TEST_F(TitleIndex, IgnoresAFailedTitle) {
  AddSchema("A.json", "a", "");
  AddSchema("B.json", "b", "");
  server_.WillReply("+OK\r\n");
  for (const char* reply : {"$1\r\nT\r\n", "+QUEUED\r\n", "$1\r\nU\r\n", "+OK\r\n"}) {
    server_.WillReply(reply);
  }
  EXPECT_EQ(hashTreeCreateSchemaTitleUUIDMapping(server_.ctx()), 0);
  EXPECT_TRUE(server_.Commands().ends_with("HMSET ZephlaneSchemaTitleUuidHash U b\n"));
}

}  // namespace
