// SPDX-License-Identifier: MIT
//
// Finding the types of an instance tree, and stamping what one link leads to; the walk of whole
// trees is in annotationWalk_test.cpp.
#include <gtest/gtest.h>

#include "api/annotationFixture.h"

namespace {

using zephlane::test::AnnotationTest;
using zephlane::test::ApiReport;
using zephlane::test::ApiReports;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::ExpectEachGivesNull;
using zephlane::test::kChassis;
using zephlane::test::kFan;
using zephlane::test::kFans;
using zephlane::test::kLinkType;
using zephlane::test::kNoPairs;
using zephlane::test::kNothing;
using zephlane::test::kOne;
using zephlane::test::kOtherFan;
using zephlane::test::kSchemaIndex;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::Taken;

class InsertTypeIdEntry : public AnnotationTest {};

TEST_F(InsertTypeIdEntry, StampsTheRootWithTheDefinitionThatTheSchemaNames) {
  Ask({"HSET", kChassis, "Name", "Chassis 1"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneInsertTypeID(ctx(), kChassis, "schema", 0), 0); }),
            "");
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(InsertTypeIdEntry, SendsTheseCommands) {
  WillReply({"+hash\r\n", Bulk("#/definitions/Chassis"), Bulk("definitions"), Bulk("ChassisType"),
             Bulk("odata"), Bulk("odataDefinitions"), Bulk(kLinkType), kNothing, kNoPairs, kOne});
  EXPECT_EQ(zephlaneInsertTypeID(scripted(), kChassis, "schema", 0), 0);
  const std::string instance = kChassis;
  EXPECT_EQ(server_.Commands(),
            "TYPE " + instance +
                "\nHGET schema $ref\nHGET schema definitions\nHGET definitions Chassis\nHGET " +
                kSchemaIndex +
                " odata.4.0.0\nHGET odata definitions\nHGET odataDefinitions idRef\nHGET " +
                instance + " typeID\nHGETALL " + instance + "\nHSET " + instance +
                " typeID ChassisType\n");
}

TEST_F(InsertTypeIdEntry, RefusesNullPointersBeforeItSendsAnything) {
  const std::string report = ApiReport("NULL input\n");
  ExpectEachFails({
      {"instance", [&] { return zephlaneInsertTypeID(scripted(), nullptr, "schema", 0); }, report},
      {"schema", [&] { return zephlaneInsertTypeID(scripted(), kChassis, nullptr, 0); }, report},
      {"both", [] { return zephlaneInsertTypeID(nullptr, nullptr, nullptr, 0); }, report},
      {"connection", [] { return zephlaneInsertTypeID(nullptr, kChassis, "schema", 0); },
       ApiReports({"Argument: redis context", "aInstanceID is not a hash\n"})},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(InsertTypeIdEntry, ReportsAnInstanceThatIsNoHash) {
  Ask({"SADD", kFans, kFan});
  Ask({"SET", kFan, "text"});
  const std::string report = ApiReport("aInstanceID is not a hash\n");
  ExpectEachFails({
      {"set", [&] { return zephlaneInsertTypeID(ctx(), kFans, "schema", 0); }, report},
      {"string", [&] { return zephlaneInsertTypeID(ctx(), kFan, "schema", 0); }, report},
      {"missing", [&] { return zephlaneInsertTypeID(ctx(), kChassis, "schema", 0); }, report},
  });
}

TEST_F(InsertTypeIdEntry, ReportsTheTypeThatIsMissing) {
  Ask({"HSET", kChassis, "Name", "Chassis 1"});
  const auto insert = [&] { return zephlaneInsertTypeID(ctx(), kChassis, "schema", 0); };
  Ask({"HDEL", "odataDefinitions", "idRef"});
  ExpectEachFails({{"link type", insert, ApiReport("Failed to get odata id type id\n")}});
  Ask({"HDEL", "definitions", "Chassis"});
  ExpectEachFails({{"root type", insert, ApiReport("Failed to get root type id\n")}});
  EXPECT_EQ(Stamp(kChassis), "(nil)");
}

class RootType : public AnnotationTest {
 protected:
  // What a schema with this reference gives: a result and the type.
  std::string Of(const std::string& reference) {
    Ask({"HSET", "schema", "$ref", reference});
    char type[1024] = "untouched";
    const int result = getRootTypeIdFromRef(ctx(), "schema", type);
    return std::to_string(result) + " " + type;
  }
};

TEST_F(RootType, FollowsEachPieceOfTheReferenceButTheHash) {
  Ask({"HSET", "definitions", "#Reset", "ResetType"});
  Ask({"HSET", "ChassisType", "#", "never followed"});
  EXPECT_EQ(Of("#/definitions/Chassis"), "0 ChassisType");
  EXPECT_EQ(Of("definitions/Chassis"), "0 ChassisType");
  EXPECT_EQ(Of("#//definitions//Chassis/#/"), "0 ChassisType");
  EXPECT_EQ(Of("#/definitions/#Reset"), "0 ResetType");
  EXPECT_EQ(Of("#/definitions/Chassis/Fan/Name"), "0 StringType");
}

TEST_F(RootType, OfAReferenceWithoutPiecesIsTheSchemaItself) {
  EXPECT_EQ(Of("#"), "0 schema");
  EXPECT_EQ(Of("#/"), "0 schema");
}

TEST_F(RootType, FailsAtAMissingStepAndLeavesTheOutput) {
  EXPECT_EQ(Of("#/definitions/Rack"), "1 untouched");
  EXPECT_EQ(Of("#/properties/Chassis"), "1 untouched");
  EXPECT_EQ(Of("#/definitions/Chassis/Name/type"), "1 untouched");
  EXPECT_EQ(Of(""), "1 untouched");
}

TEST_F(RootType, TakesAReferenceOf1023CharactersWhole) {
  const std::string piece(1000, 'p');
  Ask({"HSET", "definitions", piece, "LongType"});
  EXPECT_EQ(Of("#/definitions/" + piece), "0 LongType");
}

TEST_F(RootType, FailsOnNullPointersAndALostConnection) {
  char type[1024] = "";
  EXPECT_EQ(getRootTypeIdFromRef(nullptr, "schema", type), 1);
  EXPECT_EQ(getRootTypeIdFromRef(ctx(), nullptr, type), 1);
  EXPECT_EQ(getRootTypeIdFromRef(ctx(), "schema", nullptr), 1);
  server_.WillClose();
  EXPECT_EQ(getRootTypeIdFromRef(scripted(), "schema", type), 1);
}

class OdataLinkType : public AnnotationTest {};

TEST_F(OdataLinkType, IsReadThroughTheSchemaIndex) {
  char type[1024] = "";
  EXPECT_EQ(getOdataIDRefTypeId(ctx(), type), 0);
  EXPECT_STREQ(type, kLinkType);
}

TEST_F(OdataLinkType, FailsSilentlyAtAnyMissingStep) {
  char type[1024] = "untouched";
  for (const char* key : {"odataDefinitions", "odata", kSchemaIndex}) {
    Ask({"DEL", key});
    ExpectEachFails({{key, [&] { return getOdataIDRefTypeId(ctx(), type); }, ""}});
  }
  EXPECT_EQ(getOdataIDRefTypeId(nullptr, type), 1);
  EXPECT_EQ(getOdataIDRefTypeId(ctx(), nullptr), 1);
  EXPECT_STREQ(type, "untouched");
}

class IsObject : public AnnotationTest {};

TEST_F(IsObject, TellsObjectsFromStringsAndTheRest) {
  Ask({"HSET", "hash", "field", "value"});
  Ask({"SADD", "set", "member"});
  Ask({"RPUSH", "list", "item"});
  Ask({"SET", "string", "value"});
  Ask({"ZADD", "sorted", "1", "member"});
  for (const char* key : {"hash", "set", "list"}) { EXPECT_EQ(isObject(ctx(), key), 1) << key; }
  EXPECT_EQ(isObject(ctx(), "string"), 0);
  EXPECT_EQ(isObject(ctx(), "sorted"), -1);
  EXPECT_EQ(isObject(ctx(), "none"), -1);
}

TEST_F(IsObject, IsMinusOneWhenTheQueryFails) {
  server_.WillReply("-ERR\r\n");
  EXPECT_EQ(isObject(scripted(), "a key"), -1);
  server_.WillClose();
  EXPECT_EQ(isObject(scripted(), "key"), -1);
  EXPECT_EQ(isObject(ctx(), nullptr), -1);
  EXPECT_EQ(isObject(nullptr, "key"), -1);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "a key"}) + Bulks({"TYPE", "key"}));
}

class CollectionSchemaType : public AnnotationTest {};

TEST_F(CollectionSchemaType, IsReadFromTheMapping) {
  server_.WillReply(Bulk("FanType"));
  EXPECT_EQ(Taken(zephlaneGetCollectionSchemaTypeId(scripted(), "a collection")), "FanType");
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "schemaTypeIdMembersMapping", "a collection"}));
}

TEST_F(CollectionSchemaType, IsCutTo1023Characters) {
  Ask({"HSET", "schemaTypeIdMembersMapping", "long", std::string(1500, 't')});
  EXPECT_EQ(Taken(zephlaneGetCollectionSchemaTypeId(ctx(), "long")), std::string(1023, 't'));
}

TEST_F(CollectionSchemaType, OfAnUnknownCollectionIsNullSilently) {
  server_.WillClose();
  ExpectEachGivesNull({
      {"missing", [&] { return zephlaneGetCollectionSchemaTypeId(ctx(), "none"); }, ""},
      {"lost", [&] { return zephlaneGetCollectionSchemaTypeId(scripted(), "key"); }, ""},
  });
}

TEST_F(CollectionSchemaType, ReportsNullPointersAndThatMemoryIsOut) {
  const std::string report = ApiReport("Argument is NULL pointer");
  ExpectEachGivesNull({
      {"connection", [] { return zephlaneGetCollectionSchemaTypeId(nullptr, "key"); }, report},
      {"key", [&] { return zephlaneGetCollectionSchemaTypeId(scripted(), nullptr); }, report},
  });
  EXPECT_EQ(PrintedWithoutMemory(
                1, [&] { EXPECT_EQ(zephlaneGetCollectionSchemaTypeId(ctx(), "key"), nullptr); }),
            ApiReport("Failed to allocate memory"));
  EXPECT_EQ(server_.Received(), "");
}

class LinkedHash : public AnnotationTest {
 protected:
  void SetUp() override {
    AnnotationTest::SetUp();
    Ask({"HSET", kFan, "Name", "Fan 1", "Chassis", kOtherFan});
    Ask({"HSET", kOtherFan, "Name", "Fan 2"});
  }
};

TEST_F(LinkedHash, WithoutAlternativesIsWalkedByThePropertysType) {
  EXPECT_EQ(addTypeIdfForHash(ctx(), kFan, "FanType", kLinkType, 0), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kOtherFan), "ChassisType");
}

TEST_F(LinkedHash, WithAlternativesGetsTheFirstThatIsNoLinkTypeWithoutAWalk) {
  for (const char* keyword : {"oneOf", "anyOf"}) {
    Ask({"DEL", "Property", "PropertyAlternatives"});
    Offer("Property", keyword, {kLinkType, "FanType"});
    Ask({"HDEL", kFan, "typeID"});
    EXPECT_EQ(addTypeIdfForHash(ctx(), kFan, "Property", kLinkType, 0), 0);
    EXPECT_EQ(Stamp(kFan), "FanType") << keyword;
    EXPECT_EQ(Stamp(kOtherFan), "(nil)") << keyword;
  }
}

TEST_F(LinkedHash, WithAlternativesGetsTheLinkTypeWhereAskedFor) {
  Offer("Property", "anyOf", {kLinkType, "FanType"});
  Ask({"HSET", kFan, "typeID", "an older stamp"});
  EXPECT_EQ(addTypeIdfForHash(ctx(), kFan, "Property", kLinkType, 1), 0);
  EXPECT_EQ(Stamp(kFan), kLinkType);
  EXPECT_EQ(Stamp(kOtherFan), "(nil)");
}

TEST_F(LinkedHash, TakesTheAlternativesInRedissOrderAndOneOfBeforeAnyOf) {
  WillReply({Bulk("alternatives"), Bulks({kLinkType, "Second", "First"}), kOne});
  EXPECT_EQ(addTypeIdfForHash(scripted(), kFan, "Property", kLinkType, 0), 0);
  EXPECT_EQ(server_.Commands(), std::string("HGET Property oneOf\nSMEMBERS alternatives\nHSET ") +
                                    kFan + " typeID Second\n");
}

TEST_F(LinkedHash, FailsSilentlyWithoutAnAlternativeToChoose) {
  Offer("OnlyLinks", "oneOf", {kLinkType});
  Offer("Empty", "oneOf", {});
  for (const char* type : {"OnlyLinks", "Empty"}) {
    ExpectEachFails(
        {{type, [&] { return addTypeIdfForHash(ctx(), kFan, type, kLinkType, 0); }, ""}});
  }
  EXPECT_EQ(Stamp(kFan), "(nil)");
}

TEST_F(LinkedHash, ReportsAWalkThatFailed) {
  Ask({"HSET", kFan, "Undefined", kOtherFan});
  ExpectEachFails(
      {{"undefined", [&] { return addTypeIdfForHash(ctx(), kFan, "FanType", kLinkType, 0); },
        ApiReports({"Failed to insert type id\n", "propertyTypeValue = FanType\n"})}});
}

class LinkedSet : public AnnotationTest {
 protected:
  void SetUp() override {
    AnnotationTest::SetUp();
    Ask({"HSET", kFan, "Name", "Fan 1"});
    Ask({"HSET", kOtherFan, "Name", "Fan 2"});
    Ask({"SADD", kFans, kFan, kOtherFan});
  }
  int Annotate(int use_id_ref) {
    return addTypeIdfForSet(ctx(), kFans, "FansType", kLinkType, use_id_ref);
  }
};

TEST_F(LinkedSet, HasEachMemberWalkedByTheTypeOfTheItems) {
  EXPECT_EQ(Annotate(0), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kOtherFan), "FanType");
}

TEST_F(LinkedSet, OfReferencesGetsTheOtherTypeOnEveryMember) {
  Offer("FanType", "oneOf", {kLinkType, "X"});
  EXPECT_EQ(Annotate(0), 0);
  EXPECT_EQ(Stamp(kFan), "X");
  EXPECT_EQ(Stamp(kOtherFan), "X");
}

TEST_F(LinkedSet, OfReferencesGetsTheLinkTypeOnEveryMemberWhereAskedFor) {
  Offer("FanType", "oneOf", {kLinkType, "X"});
  EXPECT_EQ(Annotate(1), 0);
  EXPECT_EQ(Stamp(kFan), kLinkType);
  EXPECT_EQ(Stamp(kOtherFan), kLinkType);
}

TEST_F(LinkedSet, OfReferencesIsStampedWithoutLookingAtTheMembers) {
  WillReply({Bulk("FanType"), Bulk("alternatives"), Bulks({kLinkType, "X"}),
             Bulks({"text", kFan, "none"}), "-WRONGTYPE\r\n", kOne, kOne});
  EXPECT_EQ(addTypeIdfForSet(scripted(), "set", "FansType", kLinkType, 0), 0);
  EXPECT_EQ(server_.Commands(),
            std::string("HGET FansType items\nHGET FanType oneOf\nSMEMBERS alternatives\n"
                        "SMEMBERS set\nHSET text typeID X\nHSET ") +
                kFan + " typeID X\nHSET none typeID X\n");
}

TEST_F(LinkedSet, OffersNothingThroughAnyOf) {
  Offer("FanType", "anyOf", {kLinkType, "X"});
  EXPECT_EQ(Annotate(1), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
}

TEST_F(LinkedSet, StopsWithSuccessAtTheFirstMemberThatIsNoObject) {
  for (const char* type : {"+string\r\n", "+none\r\n", "+zset\r\n", "-ERR\r\n"}) {
    WillReply({Bulk("FanType"), kNothing, Bulks({"first", "second"}), type});
    EXPECT_EQ(addTypeIdfForSet(scripted(), "set", "FansType", kLinkType, 0), 0) << type;
    EXPECT_TRUE(server_.Commands().ends_with("SMEMBERS set\nTYPE first\n")) << type;
  }
}

TEST_F(LinkedSet, PassesOverAMemberThatIsASetItself) {
  Ask({"DEL", kFans});
  Ask({"SADD", kFans, "nested"});
  Ask({"SADD", "nested", kFan});
  EXPECT_EQ(Annotate(0), 0);
  EXPECT_EQ(Stamp(kFan), "(nil)");
}

TEST_F(LinkedSet, WithoutMembersIsDone) {
  Ask({"DEL", kFans});
  EXPECT_EQ(Annotate(0), 0);
}

TEST_F(LinkedSet, FailsSilentlyWithoutATypeToGive) {
  const auto annotate = [&] { return Annotate(0); };
  Offer("FanType", "oneOf", {kLinkType});
  ExpectEachFails({{"only links", annotate, ""}});
  Ask({"DEL", "FanTypeAlternatives"});
  ExpectEachFails({{"no alternatives", annotate, ""}});
  Ask({"HDEL", "FansType", "items"});
  ExpectEachFails({{"no items", annotate, ""}});
}

TEST_F(LinkedSet, ReportsTheMemberWhoseWalkFailed) {
  WillReply({Bulk("FanType"), kNothing, Bulks({kFan, kOtherFan}), "+hash\r\n", Bulk("stamped"),
             "+hash\r\n", kNothing, Bulks({"Undefined", kFan}), kNothing});
  ExpectEachFails(
      {{"undefined", [&] { return addTypeIdfForSet(scripted(), "set", "FansType", kLinkType, 0); },
        ApiReports({"Failed to insert type id in a set\n",
                    std::string("setData[1].aObjectID = ") + kOtherFan + "\n",
                    "propertyTypeValue = FansType\n", "itemValue = FanType\n"})}});
}

class LinkedList : public AnnotationTest {};

TEST_F(LinkedList, HasEachElementWalkedInOrder) {
  WillReply({Bulk("FanType"), Bulks({kFan, kOtherFan}), "+hash\r\n", kNothing, kNoPairs, kOne,
             "+hash\r\n", Bulk("stamped")});
  EXPECT_EQ(addTypeIdfForList(scripted(), "list", "FansType", kLinkType, 0), 0);
  const std::string first = kFan;
  const std::string second = kOtherFan;
  EXPECT_EQ(server_.Commands(), "HGET FansType items\nLRANGE list 0 -1\nTYPE " + first + "\nHGET " +
                                    first + " typeID\nHGETALL " + first + "\nHSET " + first +
                                    " typeID FanType\nTYPE " + second + "\nHGET " + second +
                                    " typeID\n");
}

TEST_F(LinkedList, HasNoAlternatives) {
  Offer("FanType", "oneOf", {kLinkType, "X"});
  Ask({"HSET", kFan, "Name", "Fan 1"});
  Ask({"RPUSH", kFans, kFan});
  EXPECT_EQ(addTypeIdfForList(ctx(), kFans, "FansType", kLinkType, 1), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
}

TEST_F(LinkedList, StopsWithSuccessAtTheFirstElementThatIsNoObject) {
  Ask({"HSET", kFan, "Name", "Fan 1"});
  Ask({"HSET", kOtherFan, "Name", "Fan 2"});
  Ask({"RPUSH", kFans, kFan, "text", kOtherFan});
  EXPECT_EQ(addTypeIdfForList(ctx(), kFans, "FansType", kLinkType, 0), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kOtherFan), "(nil)");
}

TEST_F(LinkedList, WithoutElementsIsDoneAndWithoutItemsFails) {
  EXPECT_EQ(addTypeIdfForList(ctx(), kFans, "FansType", kLinkType, 0), 0);
  ExpectEachFails(
      {{"items", [&] { return addTypeIdfForList(ctx(), kFans, "FanType", kLinkType, 0); }, ""}});
}

TEST_F(LinkedList, ReportsTheElementWhoseWalkFailedInTheWordsOfASet) {
  Ask({"HSET", kFan, "Undefined", kOtherFan});
  Ask({"RPUSH", kFans, kFan});
  ExpectEachFails(
      {{"undefined", [&] { return addTypeIdfForList(ctx(), kFans, "FansType", kLinkType, 0); },
        ApiReports({"Failed to insert type id in a set\n",
                    std::string("setData[0].aObjectID = ") + kFan + "\n",
                    "propertyTypeValue = FansType\n", "itemValue = FanType\n"})}});
}

TEST_F(AnnotationTest, StepsOfTheWalkRefuseNullPointersSilently) {
  for (const auto step : {insertTypeID, addTypeIdfForHash, addTypeIdfForSet, addTypeIdfForList}) {
    ExpectEachFails({
        {"connection", [&] { return step(nullptr, kFan, "FanType", kLinkType, 0); }, ""},
        {"object", [&] { return step(scripted(), nullptr, "FanType", kLinkType, 0); }, ""},
        {"type", [&] { return step(scripted(), kFan, nullptr, kLinkType, 0); }, ""},
        {"link type", [&] { return step(scripted(), kFan, "FanType", nullptr, 0); }, ""},
    });
  }
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(AnnotationTest, StepsOfTheWalkFailWhenTheConnectionIsLost) {
  server_.WillClose();
  const auto scripted_step = [&](auto step) {
    return [this, step] { return step(scripted(), kFan, "FanType", kLinkType, 0); };
  };
  ExpectEachFails({
      {"instance", scripted_step(insertTypeID), ""},
      {"hash", scripted_step(addTypeIdfForHash),
       ApiReports({"Failed to insert type id\n", "propertyTypeValue = FanType\n"})},
      {"set", scripted_step(addTypeIdfForSet), ""},
      {"list", scripted_step(addTypeIdfForList), ""},
  });
}

}  // namespace
