// SPDX-License-Identifier: MIT
//
// How much the tables of the hash tree hold, and what happens to the one too many.
#include <string>

#include <gtest/gtest.h>

#include "interpreter/hashTreeFixture.h"

namespace {

using zephlane::test::ErrorsOf;
using zephlane::test::HashTreeTest;
using zephlane::test::kHash0;
using zephlane::test::kSet0;
using zephlane::test::TextOf;
using zephlane::test::TreeReports;

constexpr int kObjects = 6000;
constexpr int kSchemas = 4000;
constexpr char kFull[] = "Hash object collection table is out of room !";

using ObjectCollection = HashTreeTest;

void FillCollection(int count) {
  for (int i = 0; i < count; ++i) {
    ASSERT_EQ(recordRedisObjectID(("id" + std::to_string(i)).c_str()), 0);
  }
}

TEST_F(ObjectCollection, HoldsSixThousandObjects) {
  FillCollection(kObjects);
  EXPECT_EQ(isUUIDRegistered("id0"), 1);
  EXPECT_EQ(isUUIDRegistered("id5999"), 1);
  EXPECT_EQ(ErrorsOf([] { EXPECT_EQ(recordRedisObjectID("id6000"), -1); }), "");
  EXPECT_EQ(isUUIDRegistered("id6000"), 0);
}

TEST_F(ObjectCollection, EmptyIdIsRegisteredWhileASlotIsFree) {
  EXPECT_EQ(isUUIDRegistered(""), 1);
  FillCollection(kObjects - 1);
  EXPECT_EQ(isUUIDRegistered(""), 1);
  EXPECT_EQ(recordRedisObjectID("last"), 0);
  EXPECT_EQ(isUUIDRegistered(""), 0);
}

TEST_F(ObjectCollection, IdOf36CharactersIsRecordedAnd37Refused) {
  const std::string id(36, 'i');
  EXPECT_EQ(recordRedisObjectID(id.c_str()), 0);
  EXPECT_EQ(isUUIDRegistered(id.c_str()), 1);
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(recordRedisObjectID((id + "i").c_str()), -1); });
  EXPECT_EQ(errors, TreeReports({"Object ID: " + id + "i", "is longer than buffer size (37)"}));
  EXPECT_EQ(isUUIDRegistered((id + "i").c_str()), 0);
}

// The object is written before its ID is recorded, and stays.
TEST_F(ObjectCollection, NewHashBeyondItIsWrittenButNotReturned) {
  FillCollection(kObjects);
  for (int i = 0; i < 2; ++i) {
    const std::string errors =
        ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewHash(ctx(), "a", "b"), nullptr); });
    EXPECT_EQ(errors, TreeReports({kFull}));
  }
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "a\nb");
  EXPECT_EQ(TextOf(generateRedisDataObjectID(1)), kHash0);
}

TEST_F(ObjectCollection, NewSetBeyondItIsWrittenButNotReturned) {
  FillCollection(kObjects);
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewSet(ctx(), "member"), nullptr); });
  EXPECT_EQ(errors, TreeReports({kFull}));
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), "member");
  EXPECT_EQ(TextOf(generateRedisDataObjectID(2)), kSet0);
}

TEST_F(ObjectCollection, TypeSchemaHashBeyondItIsWrittenButFails) {
  FillCollection(kObjects);
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewTypeSchemaHash(ctx(), "a", "b", "id"), 1); });
  EXPECT_EQ(errors, TreeReports({kFull}));
  EXPECT_EQ(Ask({"HGETALL", "id"}), "a\nb");
}

TEST_F(ObjectCollection, HashWithoutRecordNeedsNoRoom) {
  FillCollection(kObjects);
  EXPECT_EQ(TextOf(hashTreeCreateHashWithoutRecordHashID(ctx(), "a", "b")), kHash0);
}

TEST_F(ObjectCollection, IsEmptyAgainAfterInit) {
  FillCollection(kObjects);
  EXPECT_EQ(hashTreeInit(ctx()), 0);
  EXPECT_EQ(isUUIDRegistered("id5999"), 0);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash0);
}

using SchemaTable = HashTreeTest;

TEST_F(SchemaTable, HoldsFourThousandSchemas) {
  for (int i = 0; i < kSchemas; ++i) {
    ASSERT_EQ(schemaReferTableInsertEntry(("S" + std::to_string(i)).c_str(), kHash0), 0);
  }
  EXPECT_EQ(isReferenceSchemaHasInternalized("S3999"), 1);
  EXPECT_EQ(isReferenceSchemaHasInternalized(""), 0);
  const std::string errors =
      ErrorsOf([] { EXPECT_EQ(schemaReferTableInsertEntry("S4000", kHash0), 1); });
  EXPECT_EQ(errors,
            TreeReports({">> S4000 <<",
                         ">> There's no free slot to insert schema:uuid mapping into table <<"}));
  EXPECT_EQ(isReferenceSchemaHasInternalized("S4000"), 0);
}

TEST_F(SchemaTable, NameOf1023CharactersIsTakenAnd1024Refused) {
  const std::string name(1023, 'n');
  EXPECT_EQ(schemaReferTableInsertEntry(name.c_str(), kHash0), 0);
  EXPECT_STREQ(getSchemaHashID(name.c_str()), kHash0);
  const std::string longer = name + "n";
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(schemaReferTableInsertEntry(longer.c_str(), "id"), 1); });
  EXPECT_EQ(errors, TreeReports({"Schema name: " + longer + " or hash id: id \nis too long..."}));
}

TEST_F(SchemaTable, HashIdOf36CharactersIsTakenAnd37Refused) {
  const std::string id(36, 'i');
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", id.c_str()), 0);
  EXPECT_EQ(getSchemaHashID("A.json"), id);
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(schemaReferTableInsertEntry("B.json", (id + "i").c_str()), 1); });
  EXPECT_EQ(errors, TreeReports({"Schema name: B.json or hash id: " + id + "i \nis too long..."}));
  EXPECT_EQ(isReferenceSchemaHasInternalized("B.json"), 0);
}

}  // namespace
