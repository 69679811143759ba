// SPDX-License-Identifier: MIT
//
// Creating the objects of the hash tree, linking them to their parents, and deleting them.
#include <string>

#include <gtest/gtest.h>
#include <jansson.h>

#include "interpreter/hashTreeFixture.h"
#include "support/allocationFault.h"

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::Capture;
using zephlane::test::ErrorsOf;
using zephlane::test::HashTreeTest;
using zephlane::test::kDummy;
using zephlane::test::kHash0;
using zephlane::test::kHash1;
using zephlane::test::kSet0;
using zephlane::test::kSet1;
using zephlane::test::Output;
using zephlane::test::TextOf;
using zephlane::test::TreeReports;

const std::string kTooLong(1024, 'x');

using HashTreeSetup = HashTreeTest;

TEST_F(HashTreeSetup, InitCreatesTheInstanceSetWithItsDummy) {
  EXPECT_EQ(ErrorsOf([&] { EXPECT_EQ(hashTreeInit(ctx()), 0); }), "");
  EXPECT_TRUE(Stored("set ZephlaneSchemaInstances\n  " + std::string(kDummy) + "\n"));
}

TEST_F(HashTreeSetup, InitClearsBothTables) {
  EXPECT_EQ(recordRedisObjectID(kHash0), 0);
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", kHash0), 0);
  EXPECT_EQ(hashTreeInit(ctx()), 0);
  EXPECT_EQ(isUUIDRegistered(kHash0), 0);
  EXPECT_EQ(isReferenceSchemaHasInternalized("A.json"), 0);
  EXPECT_EQ(getSchemaHashID("A.json"), nullptr);
}

// A second run in a process goes on numbering where the first stopped.
TEST_F(HashTreeSetup, InitKeepsTheCounters) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
  EXPECT_EQ(hashTreeInit(ctx()), 0);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash1);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet1);
}

TEST_F(HashTreeSetup, InitClearsTheTablesEvenWhenItFails) {
  EXPECT_EQ(recordRedisObjectID(kHash0), 0);
  const std::string errors = ErrorsOf([&] { EXPECT_EQ(hashTreeInit(server_.ctx()), 1); });
  EXPECT_EQ(errors, TreeReports({"---> create set table faile !!!!",
                                 "create Zephlane service instance: ZephlaneSchemaInstances\n"}));
  EXPECT_EQ(isUUIDRegistered(kHash0), 0);
}

TEST_F(HashTreeSetup, InstanceSetReplacesAnObjectOfAnyTypeAndItsCompanion) {
  Ask({"HSET", "instances", "TtlId", "instances-TTL"});
  Ask({"HSET", "instances-TTL", "TtlSec", "60"});
  EXPECT_EQ(createZephlaneServiceInstanceSet(ctx(), "instances"), 0);
  EXPECT_EQ(Ask({"SMEMBERS", "instances"}), kDummy);
  EXPECT_EQ(Ask({"EXISTS", "instances-TTL"}), "0");
}

TEST_F(HashTreeSetup, InstanceSetSendsADeletionAndOneMember) {
  WillDelete();
  server_.WillReply(":1\r\n");
  EXPECT_EQ(createZephlaneServiceInstanceSet(server_.ctx(), "S"), 0);
  EXPECT_EQ(server_.Commands(), "HGET S-TTL TtlSec\nDEL S\nSADD S " + std::string(kDummy) + "\n");
}

TEST_F(HashTreeSetup, InstanceSetReportsAFailedCreation) {
  WillDelete();
  server_.WillReply("-ERR\r\n");
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(createZephlaneServiceInstanceSet(server_.ctx(), "S"), 1); });
  EXPECT_EQ(errors, TreeReports({"---> create set table faile !!!!"}));
}

TEST_F(HashTreeSetup, InstanceSetNeedsAKeyAndAConnection) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(createZephlaneServiceInstanceSet(ctx(), nullptr), 1);
    EXPECT_EQ(createZephlaneServiceInstanceSet(nullptr, "S"), 1);
  });
  EXPECT_EQ(errors,
            TreeReports({"---> create set table faile !!!!", "---> create set table faile !!!!"}));
}

TEST_F(HashTreeSetup, RecordedObjectsAreDeletedTogether) {
  Ask({"HSET", "other", "a", "b"});
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), "member")), kSet0);
  EXPECT_EQ(TextOf(hashTreeCreateHashWithoutRecordHashID(ctx(), "a", "b")), kHash1);
  deleteAllHashObject(ctx());
  EXPECT_EQ(Dump(), "hash " + std::string(kHash1) +
                        "\n  a = b\nhash other\n  a = b\nhash parent\n  title = T\n");
}

TEST_F(HashTreeSetup, ObjectsAreDeletedInSlotOrder) {
  EXPECT_EQ(recordRedisObjectID("b"), 0);
  EXPECT_EQ(recordRedisObjectID("a"), 0);
  for (int i = 0; i < 2; ++i) { WillDelete(); }
  deleteAllHashObject(server_.ctx());
  EXPECT_EQ(server_.Commands(), "HGET b-TTL TtlSec\nDEL b\nHGET a-TTL TtlSec\nDEL a\n");
}

TEST_F(HashTreeSetup, SchemaRootsAreDeletedTogether) {
  Ask({"HSET", "root-a", "a", "b"});
  Ask({"HSET", "root-b", "a", "b"});
  EXPECT_EQ(schemaReferTableInsertEntry("A.json", "root-a"), 0);
  EXPECT_EQ(schemaReferTableInsertEntry("B.json", "root-b"), 0);
  deleteTypeSchemaHashObject(ctx());
  EXPECT_EQ(Dump(), "hash parent\n  title = T\n");
}

TEST_F(HashTreeSetup, DumpsPrintNothing) {
  const Output printed = Capture([] {
    dumpSetTable();
    dumpRedisObjectCollection();
    dumpSchemaReferenceTable();
  });
  EXPECT_EQ(printed.out + printed.err, "");
}

using HashTreePairs = HashTreeTest;

TEST_F(HashTreePairs, PairIsOneCommand) {
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(hashTreeHashAddSinglePair(server_.ctx(), "field", "two words", "key"), 0);
  EXPECT_EQ(server_.Received(),
            "*4\r\n$5\r\nHMSET\r\n$3\r\nkey\r\n$5\r\nfield\r\n$9\r\ntwo words\r\n");
}

TEST_F(HashTreePairs, PairCreatesOrExtendsTheHash) {
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "a", "1", "key"), 0);
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "b", "2", "key"), 0);
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "a", "3", "key"), 0);
  EXPECT_TRUE(Stored("hash key\n  a = 3\n  b = 2\n"));
}

// A pair with an empty value is skipped when a hash is written, and that is no failure.
TEST_F(HashTreePairs, EmptyValueIsSuccessAndWritesNothing) {
  EXPECT_EQ(ErrorsOf([&] { EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "a", "", "key"), 0); }), "");
  EXPECT_FALSE(Stored("key"));
}

TEST_F(HashTreePairs, NullFieldValueOrKeyIsRefused) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), nullptr, "value", "key"), 1);
    EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "field", nullptr, "key"), 1);
    EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "field", "value", nullptr), 1);
  });
  EXPECT_EQ(errors, TreeReports({"NULL pointer", "NULL pointer", "NULL pointer"}));
}

TEST_F(HashTreePairs, FieldOrValueOf1024CharactersIsRefused) {
  const std::string longest(1023, 'x');
  const std::string range = "Redis key or value is out of range!!";
  EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), longest.c_str(), longest.c_str(), "key"), 0);
  EXPECT_EQ(Ask({"HGET", "key", longest}), longest);
  std::string errors = ErrorsOf(
      [&] { EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), kTooLong.c_str(), "value", "other"), 1); });
  EXPECT_EQ(errors,
            TreeReports({range, "<" + kTooLong + " : value> insert pair into hash failed!!"}));
  errors = ErrorsOf(
      [&] { EXPECT_EQ(hashTreeHashAddSinglePair(ctx(), "field", kTooLong.c_str(), "other"), 1); });
  EXPECT_EQ(errors,
            TreeReports({range, "<field : " + kTooLong + "> insert pair into hash failed!!"}));
  EXPECT_FALSE(Stored("other"));
}

TEST_F(HashTreePairs, LostConnectionIsAFailureWithoutAReportOfItsOwn) {
  server_.WillClose();
  const std::string errors = ErrorsOf(
      [&] { EXPECT_EQ(hashTreeHashAddSinglePair(server_.ctx(), "field", "value", "key"), 1); });
  EXPECT_EQ(errors, "");
}

TEST_F(HashTreePairs, MissingConnectionIsAFailure) {
  (void)Capture([] { EXPECT_EQ(hashTreeHashAddSinglePair(nullptr, "a", "b", "key"), 1); });
}

TEST_F(HashTreePairs, FieldIsReadBack) {
  char value[1024] = "";
  EXPECT_EQ(hashTreeGetHashFieldValue(ctx(), "parent", "title", value), 0);
  EXPECT_STREQ(value, "T");
  EXPECT_EQ(hashTreeGetHashFieldValue(ctx(), "parent", "none", value), 1);
  EXPECT_EQ(hashTreeGetHashFieldValue(ctx(), "none", "title", value), 1);
}

TEST_F(HashTreePairs, ReadingNeedsAKeyAFieldAndAConnection) {
  char value[1024] = "before";
  (void)Capture([&] {
    EXPECT_EQ(hashTreeGetHashFieldValue(ctx(), nullptr, "title", value), 1);
    EXPECT_EQ(hashTreeGetHashFieldValue(ctx(), "parent", nullptr, value), 1);
    EXPECT_EQ(hashTreeGetHashFieldValue(nullptr, "parent", "title", value), 1);
  });
  EXPECT_STREQ(value, "before");
}

using NewHashes = HashTreeTest;

TEST_F(NewHashes, AreNumberedRecordedAndHoldTheirFirstPair) {
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue")), kHash0);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "type", "string")), kHash1);
  EXPECT_EQ(isUUIDRegistered(kHash0), 1);
  EXPECT_EQ(isUUIDRegistered(kHash1), 1);
  EXPECT_TRUE(Stored("hash " + std::string(kHash0) + "\n  DummyKey = DummyValue\nhash " + kHash1 +
                     "\n  type = string\n"));
}

TEST_F(NewHashes, DeleteTheirKeyFirst) {
  WillDelete();
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(server_.ctx(), "a", "b")), kHash0);
  const std::string id = kHash0;
  EXPECT_EQ(server_.Commands(),
            "HGET " + id + "-TTL TtlSec\nDEL " + id + "\nHMSET " + id + " a b\n");
}

TEST_F(NewHashes, ReplaceWhatAFormerRunLeft) {
  Ask({"SADD", kHash0, "left over"});
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash0);
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "a\nb");
}

TEST_F(NewHashes, FailedPairHandsTheIdToTheNext) {
  const std::string errors = ErrorsOf(
      [&] { EXPECT_EQ(hashTreeCreateNewHash(ctx(), "field", kTooLong.c_str()), nullptr); });
  const std::string pair = "<field : " + kTooLong + "> insert pair into hash failed!!";
  EXPECT_EQ(errors, TreeReports({"Redis key or value is out of range!!", pair, pair}));
  EXPECT_EQ(isUUIDRegistered(kHash0), 0);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash0);
}

TEST_F(NewHashes, LostConnectionIsReportedWithThePair) {
  server_.WillClose();
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewHash(server_.ctx(), "a", "b"), nullptr); });
  EXPECT_EQ(errors, TreeReports({"<a : b> insert pair into hash failed!!"}));
}

TEST_F(NewHashes, ExhaustedMemoryIsReported) {
  const std::string errors = ErrorsOf([&] {
    AllocationFault fault(1);
    char* const id = hashTreeCreateNewHash(ctx(), "a", "b");
    fault.Disarm();
    EXPECT_EQ(id, nullptr);
  });
  EXPECT_EQ(errors, TreeReports({"---> Failed to generate hash ID !!!!"}));
}

TEST_F(NewHashes, WithoutRecordAreNotInTheCollection) {
  EXPECT_EQ(TextOf(hashTreeCreateHashWithoutRecordHashID(ctx(), "a", "b")), kHash0);
  EXPECT_EQ(isUUIDRegistered(kHash0), 0);
  EXPECT_EQ(TextOf(hashTreeCreateHashWithoutRecordHashID(ctx(), "a", "b")), kHash1);
  EXPECT_EQ(Ask({"HGETALL", kHash1}), "a\nb");
}

TEST_F(NewHashes, WithoutRecordReportAFailedPair) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeCreateHashWithoutRecordHashID(ctx(), "field", kTooLong.c_str()), nullptr);
  });
  const std::string pair = "<field : " + kTooLong + "> insert pair into hash failed!!";
  EXPECT_EQ(errors, TreeReports({"Redis key or value is out of range!!", pair, pair}));
}

// Three marks where the recording creator prints four.
TEST_F(NewHashes, WithoutRecordReportExhaustedMemoryWithThreeMarks) {
  const std::string errors = ErrorsOf([&] {
    AllocationFault fault(1);
    char* const id = hashTreeCreateHashWithoutRecordHashID(ctx(), "a", "b");
    fault.Disarm();
    EXPECT_EQ(id, nullptr);
  });
  EXPECT_EQ(errors, TreeReports({"---> Failed to generate hash ID !!!"}));
}

constexpr char kTypeId[] = "00000000-0000-0000-0001-ffffffffffff";

TEST_F(NewHashes, WithATypeIdAreRecordedAndTakeNoNumber) {
  Ask({"SADD", kTypeId, "left over"});
  EXPECT_EQ(hashTreeCreateNewTypeSchemaHash(ctx(), "a", "b", kTypeId), 0);
  EXPECT_EQ(Ask({"HGETALL", kTypeId}), "a\nb");
  EXPECT_EQ(isUUIDRegistered(kTypeId), 1);
  EXPECT_EQ(TextOf(generateRedisDataObjectID(1)), kHash0);
}

TEST_F(NewHashes, WithATypeIdReportAFailedPair) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeCreateNewTypeSchemaHash(ctx(), "field", kTooLong.c_str(), kTypeId), 1);
  });
  const std::string pair = "<field : " + kTooLong + "> insert pair into hash failed!!";
  EXPECT_EQ(errors, TreeReports({"Redis key or value is out of range!!", pair, pair}));
  EXPECT_EQ(isUUIDRegistered(kTypeId), 0);
}

TEST_F(NewHashes, WithATypeIdBeyond36CharactersAreWrittenButNotRecorded) {
  const std::string id(37, 'i');
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewTypeSchemaHash(ctx(), "a", "b", id.c_str()), 1); });
  EXPECT_EQ(errors, TreeReports({"Object ID: " + id, "is longer than buffer size (37)",
                                 "Hash object collection table is out of room !"}));
  EXPECT_EQ(Ask({"HGETALL", id}), "a\nb");
}

using NewSets = HashTreeTest;

TEST_F(NewSets, HoldTheDummyWhenNoMemberIsGiven) {
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
  EXPECT_EQ(isUUIDRegistered(kSet0), 1);
}

TEST_F(NewSets, HoldTheGivenMemberAlone) {
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), "two words")), kSet0);
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), "two words");
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet1);
}

TEST_F(NewSets, DeleteTheirKeyFirst) {
  WillDelete();
  server_.WillReply(":1\r\n");
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(server_.ctx(), "m")), kSet0);
  const std::string id = kSet0;
  EXPECT_EQ(server_.Commands(), "HGET " + id + "-TTL TtlSec\nDEL " + id + "\nSADD " + id + " m\n");
}

TEST_F(NewSets, CutAMemberAt1023Characters) {
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), std::string(1500, 'm').c_str())), kSet0);
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), std::string(1023, 'm'));
}

TEST_F(NewSets, FailedCreationHandsTheIdToTheNext) {
  WillDelete();
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeCreateNewSet(server_.ctx(), nullptr), nullptr); });
  EXPECT_EQ(errors, TreeReports({"---> create set table faile !!!!"}));
  EXPECT_EQ(isUUIDRegistered(kSet0), 0);
  EXPECT_EQ(TextOf(hashTreeCreateNewSet(ctx(), nullptr)), kSet0);
}

TEST_F(NewSets, ExhaustedMemoryIsReported) {
  const std::string errors = ErrorsOf([&] {
    AllocationFault fault(1);
    char* const id = hashTreeCreateNewSet(ctx(), nullptr);
    fault.Disarm();
    EXPECT_EQ(id, nullptr);
  });
  EXPECT_EQ(errors, TreeReports({"---> Failed to generate hash ID !!!!"}));
}

using InstanceSets = HashTreeTest;

TEST_F(InstanceSets, TakeMembersUnderTheirTwoKeys) {
  EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneSchemaInstances", kHash0), 0);
  EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneRootServices", kHash1), 0);
  EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneRootServices", kHash1), 0);
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneSchemaInstances"}), kHash0);
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneRootServices"}), kHash1);
}

TEST_F(InstanceSets, CutMembersAt37Characters) {
  const std::string member = std::string(36, 'm') + "1234";
  EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneRootServices", member.c_str()), 0);
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneRootServices"}), member.substr(0, 37));
}

TEST_F(InstanceSets, RefuseAnyOtherKey) {
  const std::string errors = ErrorsOf(
      [&] { EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneSchemas", kHash0), 1); });
  EXPECT_EQ(errors, TreeReports({"---> Unknown target Set ID: ZephlaneSchemas !!!!"}));
  EXPECT_FALSE(Stored("ZephlaneSchemas"));
}

TEST_F(InstanceSets, RefuseAMissingKeyOrMember) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), nullptr, kHash0), 1);
    EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneRootServices", nullptr), 1);
  });
  EXPECT_EQ(errors, TreeReports({"---> Unknown target Set ID: (null) !!!!",
                                 "Insert entry to \"ZephlaneRootServices\"  failed !!!!"}));
}

TEST_F(InstanceSets, ReportAKeyOfAnotherType) {
  Ask({"HSET", "ZephlaneRootServices", "a", "b"});
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeInstanceSetInsertMember(ctx(), "ZephlaneRootServices", kHash0), 1);
  });
  EXPECT_EQ(errors, TreeReports({"Insert entry to \"ZephlaneRootServices\"  failed !!!!"}));
}

// Joining the type names of a list into one value.
class TypeLists : public HashTreeTest {
 protected:
  int Add(const char* list, const char* field = "type", const char* key = "key") {
    const zephlane::Json array(json_loads(list, JSON_DECODE_ANY, nullptr));
    int result = -1;
    errors_ = ErrorsOf([&] { result = hashAddMultipleTypeString(ctx(), field, array.get(), key); });
    return result;
  }
  std::string errors_;
};

TEST_F(TypeLists, AreJoinedWithoutSeparatorAndWithoutOtherElements) {
  EXPECT_EQ(Add(R"(["string", 5, "null", true, {"a": "b"}, ["c"], 1.5, null])"), 0);
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(Ask({"HGETALL", "key"}), "type\nstringnull");
}

TEST_F(TypeLists, WithoutAnyNameWriteNothing) {
  EXPECT_EQ(Add("[]"), 0);
  EXPECT_EQ(Add("[1, 2]"), 0);
  EXPECT_FALSE(Stored("key"));
}

TEST_F(TypeLists, OfAnotherTypeAreRefused) {
  for (const char* value : {"{}", "\"string\"", "1", "null"}) {
    SCOPED_TRACE(value);
    EXPECT_EQ(Add(value), 1);
    EXPECT_EQ(errors_, TreeReports({"((((( value object is not array type )))))"}));
  }
}

TEST_F(TypeLists, NeedEveryArgument) {
  const zephlane::Json list(json_pack("[s]", "string"));
  const std::string report = TreeReports({"hashAddMultipleTypeString: Argument is NULL!"});
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashAddMultipleTypeString(nullptr, "type", list.get(), "key"), 1);
    EXPECT_EQ(hashAddMultipleTypeString(ctx(), nullptr, list.get(), "key"), 1);
    EXPECT_EQ(hashAddMultipleTypeString(ctx(), "type", nullptr, "key"), 1);
    EXPECT_EQ(hashAddMultipleTypeString(ctx(), "type", list.get(), nullptr), 1);
  });
  EXPECT_EQ(errors, report + report + report + report);
}

TEST_F(TypeLists, OfJoinedLength1024AreRefused) {
  const std::string most(1000, 'a');
  const std::string rest(23, 'b');
  EXPECT_EQ(Add(("[\"" + most + "\", \"" + rest + "\"]").c_str()), 0);
  EXPECT_EQ(Ask({"HGET", "key", "type"}), most + rest);

  const std::string longer = rest + "b";
  EXPECT_EQ(Add(("[\"" + most + "\", \"" + longer + "\"]").c_str(), "kinds", "other"), 1);
  EXPECT_EQ(errors_, TreeReports({"type field of [kinds]: " + longer,
                                  "String is too long to store in Redis ..."}));
  EXPECT_FALSE(Stored("other"));
}

TEST_F(TypeLists, ReportAFailedPair) {
  EXPECT_EQ(Add(R"(["a"])", kTooLong.c_str()), 1);
  const std::string pair = "<" + kTooLong + " : a> insert pair into hash failed!!";
  EXPECT_EQ(errors_, TreeReports({"Redis key or value is out of range!!", pair, pair}));
}

using ParentLinks = HashTreeTest;

TEST_F(ParentLinks, ItemsSetIsNewAndNamedItems) {
  EXPECT_EQ(TextOf(hashTreeParentInsertItemsSet(ctx(), "parent")), kSet0);
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
  EXPECT_EQ(Ask({"HGETALL", "parent"}), "title\nT\nitems\n" + std::string(kSet0));
}

TEST_F(ParentLinks, ItemsHashIsNewAndNamedItems) {
  EXPECT_EQ(TextOf(hashTreeParentInsertItemsHash(ctx(), "parent", "a", "b")), kHash0);
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "a\nb");
  EXPECT_EQ(Ask({"HGET", "parent", "items"}), kHash0);
}

TEST_F(ParentLinks, PropertyHashHoldsItsType) {
  EXPECT_EQ(TextOf(hashTreeParentInsertPropertyHash(ctx(), "parent", "Name", "string")), kHash0);
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "type\nstring");
  EXPECT_EQ(Ask({"HGET", "parent", "Name"}), kHash0);
}

TEST_F(ParentLinks, PropertySetHoldsItsDummy) {
  EXPECT_EQ(TextOf(hashTreeParentInsertPropertySet(ctx(), "parent", "Names")), kSet0);
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
  EXPECT_EQ(Ask({"HGET", "parent", "Names"}), kSet0);
}

TEST_F(ParentLinks, ItemsSetReportsAFailedChild) {
  WillDelete();
  const std::string errors =
      ErrorsOf([&] { EXPECT_EQ(hashTreeParentInsertItemsSet(server_.ctx(), "parent"), nullptr); });
  EXPECT_EQ(errors, TreeReports({"---> create set table faile !!!!",
                                 "---> failed to create new set !!!!"}));
}

TEST_F(ParentLinks, ItemsHashReportsAFailedChild) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeParentInsertItemsHash(ctx(), "parent", "a", kTooLong.c_str()), nullptr);
  });
  const std::string pair = "<a : " + kTooLong + "> insert pair into hash failed!!";
  EXPECT_EQ(errors, TreeReports({"Redis key or value is out of range!!", pair, pair,
                                 "---> failed to create new hash !!!!"}));
}

TEST_F(ParentLinks, PropertyHashReportsAFailedChild) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeParentInsertPropertyHash(ctx(), "parent", "Name", kTooLong.c_str()), nullptr);
  });
  const std::string pair = "<type : " + kTooLong + "> insert pair into hash failed!!";
  EXPECT_EQ(errors, TreeReports({"Redis key or value is out of range!!", pair, pair,
                                 "Create new hash failed !!!"}));
}

// The text speaks of a hash where a set could not be made.
TEST_F(ParentLinks, PropertySetReportsAFailedChildAsAHash) {
  WillDelete();
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeParentInsertPropertySet(server_.ctx(), "parent", "Names"), nullptr);
  });
  EXPECT_EQ(errors,
            TreeReports({"---> create set table faile !!!!", "Create new hash failed !!!"}));
}

TEST_F(ParentLinks, ItemsChildStaysWhenThePairFails) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeParentInsertItemsSet(ctx(), nullptr), nullptr);
    EXPECT_EQ(hashTreeParentInsertItemsHash(ctx(), nullptr, "a", "b"), nullptr);
  });
  EXPECT_EQ(errors, TreeReports({"NULL pointer", "---> failed to add pair !!!!", "NULL pointer",
                                 "---> failed to add pair !!!!"}));
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "a\nb");
}

TEST_F(ParentLinks, PropertyChildStaysWhenThePairFails) {
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(hashTreeParentInsertPropertyHash(ctx(), nullptr, "Name", "string"), nullptr);
    EXPECT_EQ(hashTreeParentInsertPropertySet(ctx(), nullptr, "Names"), nullptr);
  });
  EXPECT_EQ(errors,
            TreeReports({"NULL pointer",
                         "<Name : " + std::string(kHash0) + "> insert pair into hash failed!!",
                         "NULL pointer", "---> failed to add pair !!!!"}));
  EXPECT_EQ(Ask({"HGETALL", kHash0}), "type\nstring");
  EXPECT_EQ(Ask({"SMEMBERS", kSet0}), kDummy);
}

// The child was created and recorded, so the next one has the next number.
TEST_F(ParentLinks, NumberOfAnUnlinkedChildIsUsedUp) {
  (void)Capture([&] {
    EXPECT_EQ(hashTreeParentInsertPropertyHash(ctx(), "parent", kTooLong.c_str(), "string"),
              nullptr);
  });
  EXPECT_EQ(isUUIDRegistered(kHash0), 1);
  EXPECT_EQ(TextOf(hashTreeCreateNewHash(ctx(), "a", "b")), kHash1);
}

}  // namespace
