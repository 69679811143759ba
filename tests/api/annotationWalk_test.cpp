// SPDX-License-Identifier: MIT
//
// The walk of instance trees: what is followed, what stops it, and what it leaves behind.
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#include "api/annotationFixture.h"

namespace {

namespace fs = std::filesystem;

using zephlane::test::AnnotationTest;
using zephlane::test::ApiReports;
using zephlane::test::Bulks;
using zephlane::test::Capture;
using zephlane::test::ExpectEachFails;
using zephlane::test::kChassis;
using zephlane::test::kFan;
using zephlane::test::kFans;
using zephlane::test::kLinkType;
using zephlane::test::kNothing;
using zephlane::test::kOtherFan;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::StoreTest;

class Walk : public AnnotationTest {
 protected:
  int Annotate(int use_id_ref = 0) {
    return insertTypeID(ctx(), kChassis, "ChassisType", kLinkType, use_id_ref);
  }
};

TEST_F(Walk, LeavesAnInstanceThatHasAStampAsItIsItsChildrenIncluded) {
  Ask({"HSET", kChassis, "typeID", "older", "Fan", kFan, "Undefined", kFan});
  Ask({"HSET", kFan, "Name", "Fan 1"});
  const std::string before = Dump();
  EXPECT_EQ(zephlaneInsertTypeID(ctx(), kChassis, "schema", 0), 0);
  EXPECT_EQ(Dump(), before);
}

TEST_F(Walk, GivesAnInstanceWithoutFieldsNothingButAStamp) {
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Ask({"HGETALL", kChassis}), "typeID\nChassisType");
}

TEST_F(Walk, StampsHashSetAndListAfterTheirChildren) {
  WillReply({kNothing, Bulks({"Name", "A", "Fan", kFan}), "$7\r\nFanType\r\n", "+hash\r\n",
             kNothing, kNothing, kNothing, Bulks({"Name", "B"}), ":1\r\n", ":1\r\n"});
  EXPECT_EQ(insertTypeID(scripted(), kChassis, "ChassisType", kLinkType, 0), 0);
  const std::string chassis = kChassis;
  const std::string fan = kFan;
  EXPECT_EQ(server_.Commands(), "HGET " + chassis + " typeID\nHGETALL " + chassis +
                                    "\nHGET ChassisType Fan\nTYPE " + fan +
                                    "\nHGET FanType oneOf\nHGET FanType anyOf\nHGET " + fan +
                                    " typeID\nHGETALL " + fan + "\nHSET " + fan +
                                    " typeID FanType\nHSET " + chassis + " typeID ChassisType\n");
}

TEST_F(Walk, FollowsLinksToSetsAndLists) {
  Ask({"HSET", "ChassisType", "Spares", "FansType"});
  Ask({"HSET", kChassis, "Fans", kFans, "Spares", "20000000-0000-0000-0000-000000000001"});
  Ask({"SADD", kFans, kFan});
  Ask({"RPUSH", "20000000-0000-0000-0000-000000000001", kOtherFan});
  Ask({"HSET", kFan, "Name", "Fan 1"});
  Ask({"HSET", kOtherFan, "Name", "Fan 2"});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kOtherFan), "FanType");
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(Walk, LeavesLinksToOtherTypesAndToNothingAlone) {
  Ask({"HSET", "ChassisType", "Text", "StringType", "Path", "StringType"});
  Ask({"SET", kFan, "text"});
  Ask({"HSET", kChassis, "Text", kFan, "Fan", kOtherFan, "Path",
       std::string("/fans/") + kFan + "/speed"});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
  EXPECT_EQ(Ask({"GET", kFan}), "text");
  EXPECT_EQ(Ask({"EXISTS", kOtherFan}), "0");
}

TEST_F(Walk, DoesNotFollowTheFieldsThatKeepAnInstancesBooks) {
  Ask({"HSET", kChassis, "typeId", kFan, "TtlId", std::string(kFan) + "-TTL", "UUID", kFan});
  Ask({"HSET", kFan, "Name", "Fan 1"});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
  EXPECT_EQ(Stamp(kFan), "(nil)");
}

TEST_F(Walk, DoesNotNeedADefinitionForAPropertyThatIsNoLink) {
  Ask({"HSET", kChassis, "Undefined", "text"});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(Walk, FailsWithoutAMessageOfItsOwnAtALinkThatTheDefinitionLacks) {
  Ask({"HSET", kChassis, "Undefined", kFan});
  ExpectEachFails({{"walk", [&] { return Annotate(); }, ""}});
  ExpectEachFails(
      {{"entry", [&] { return zephlaneInsertTypeID(ctx(), kChassis, "schema", 0); },
        ApiReports({"Failed to insert type id\n", std::string("aInstanceID = ") + kChassis + "\n",
                    "rootTypeID = ChassisType\n"})}});
  EXPECT_EQ(Stamp(kChassis), "(nil)");
}

TEST_F(Walk, ReportsATrailFromTheFailingChildToTheRoot) {
  Ask({"HSET", kChassis, "Fan", kFan});
  Ask({"HSET", kFan, "Undefined", kOtherFan});
  ExpectEachFails({{"child", [&] { return Annotate(); },
                    ApiReports({"Failed to insert type id\n", "propertyTypeValue = FanType\n",
                                std::string("aInstanceID = ") + kChassis + "\n",
                                "aTypeID = ChassisType\n", "instanceData[0].aFieldName = Fan\n",
                                std::string("instanceData[0].aValue = ") + kFan + "\n"})}});
}

TEST_F(Walk, KeepsTheStampsThatItWroteBeforeItFailed) {
  Ask({"HSET", kChassis, "Fan", kFan, "Undefined", kOtherFan});
  Ask({"HSET", kFan, "Name", "Fan 1"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Annotate(), 1); }), "");
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kChassis), "(nil)");
}

TEST_F(Walk, ReportsATypeCommandThatFailed) {
  WillReply({kNothing, Bulks({"Name", "A", "Fan", kFan}), "$7\r\nFanType\r\n", "-ERR\r\n"});
  ExpectEachFails(
      {{"type", [&] { return insertTypeID(scripted(), kChassis, "ChassisType", kLinkType, 0); },
        ApiReports({"Failed to issue type command\n",
                    std::string("aInstanceID = ") + kChassis + "\n",
                    "instanceData[1].aFieldName = Fan\n", "aTypeID = ChassisType\n"})}});
}

TEST_F(Walk, FailsAndDoesNotStampWhatItCouldNotRead) {
  Ask({"HSET", kChassis, "Fan", kFan});
  EXPECT_EQ(PrintedWithoutMemory(1, [&] { EXPECT_EQ(Annotate(), 1); }), "");
  EXPECT_EQ(Stamp(kChassis), "(nil)");
}

TEST_F(Walk, SucceedsWhenAStampCouldNotBeWritten) {
  for (const bool lost : {false, true}) {
    WillReply({kNothing, "*0\r\n"});
    lost ? server_.WillClose() : server_.WillReply("-READONLY\r\n");
    EXPECT_EQ(insertTypeID(scripted(), kChassis, "ChassisType", kLinkType, 0), 0) << lost;
  }
}

TEST_F(Walk, EndsWhereAChildLinksBackToAnObjectFurtherUp) {
  Ask({"HSET", kChassis, "Fan", kFan});
  Ask({"HSET", kFan, "Chassis", kChassis});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Annotate(), 0); }), "");
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
  EXPECT_EQ(Stamp(kFan), "FanType");
}

TEST_F(Walk, EndsWhereAnObjectLinksToItself) {
  Ask({"HSET", "ChassisType", "Within", "ChassisType"});
  Ask({"HSET", kChassis, "Within", kChassis});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(Walk, EndsWhereACircleRunsThroughASet) {
  Ask({"HSET", kChassis, "Fans", kFans});
  Ask({"SADD", kFans, kFan, kOtherFan});
  Ask({"HSET", kFan, "Chassis", kChassis});
  Ask({"HSET", kOtherFan, "Chassis", kChassis});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kOtherFan), "FanType");
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(Walk, ForgetsAnObjectWhoseWalkFailed) {
  Ask({"HSET", kChassis, "Fan", kFan});
  Ask({"HSET", kFan, "Name", "Fan 1", "Undefined", kOtherFan});
  (void)PrintedBy([&] { EXPECT_EQ(Annotate(), 1); });
  Ask({"HDEL", kFan, "Undefined"});
  EXPECT_EQ(Annotate(), 0);
  EXPECT_EQ(Stamp(kFan), "FanType");
  EXPECT_EQ(Stamp(kChassis), "ChassisType");
}

TEST_F(Walk, VisitsAChildOfTwoParentsOnce) {
  Ask({"HSET", "ChassisType", "Spare", "OtherType"});
  WillReply({kNothing, Bulks({"Fan", kFan, "Spare", kFan}), "$7\r\nFanType\r\n", "+hash\r\n",
             kNothing, kNothing, kNothing, "*0\r\n", ":1\r\n", "$9\r\nOtherType\r\n", "+hash\r\n",
             kNothing, kNothing, "$7\r\nFanType\r\n", ":1\r\n"});
  EXPECT_EQ(insertTypeID(scripted(), kChassis, "ChassisType", kLinkType, 0), 0);
  const std::string fan = kFan;
  EXPECT_TRUE(server_.Commands().ends_with(
      "HSET " + fan + " typeID FanType\nHGET ChassisType Spare\nTYPE " + fan +
      "\nHGET OtherType oneOf\nHGET OtherType anyOf\nHGET " + fan + " typeID\nHSET " + kChassis +
      " typeID ChassisType\n"))
      << server_.Commands();
}

TEST_F(Walk, HandsTheChoiceOfTheLinkTypeToEveryLevel) {
  Offer("AnyChassis", "anyOf", {kLinkType, "ChassisType"});
  Ask({"HSET", "FanType", "Chassis", "AnyChassis"});
  Ask({"HSET", kChassis, "Fans", kFans});
  Ask({"SADD", kFans, kFan});
  Ask({"HSET", kFan, "Chassis", kOtherFan});
  Ask({"HSET", kOtherFan, "Name", "a chassis elsewhere"});
  EXPECT_EQ(Annotate(1), 0);
  EXPECT_EQ(Stamp(kOtherFan), kLinkType);
  EXPECT_EQ(Stamp(kFan), "FanType");
}

// A fan of the sample model, with limits, a sensor, and a link back from what it cools.
class SampleFan : public StoreTest {
 protected:
  static constexpr char kFanSchema[] = "01000000-0000-0000-0000-000000000005";
  static constexpr char kLimits[] = "10000000-0000-0000-0000-000000000011";
  static constexpr char kSensor[] = "10000000-0000-0000-0000-000000000012";
  static constexpr char kLinks[] = "10000000-0000-0000-0000-000000000013";

  void SetUp() override {
    StoreTest::SetUp();
    fs::create_directories("/tmp/etc");
    fs::copy(ZEPHLANE_SOURCE "/schemas", "/tmp/FOSS_schema");
    fs::rename("/tmp/FOSS_schema/SchemaURIConf.json", "/tmp/etc/SchemaURIConf.json");
    int result = -1;
    Capture(
        [&] { result = zephlaneSchemaInterpreter("/tmp/FOSS_schema/ServiceRoot.v1_0_0.json"); });
    ASSERT_EQ(result, 0);
    Ask({"HSET", kFan, "@odata.id", "/fans/1", "@odata.type", "#Fan.Fan", "Id", "1", "Name",
         "Fan 1", "Limits", kLimits, "SpeedSensor", kSensor, "Links", kLinks});
    Ask({"HSET", kLimits, "LowestRpm", "600"});
    Ask({"HSET", kSensor, "@odata.id", "/sensors/1"});
    Ask({"HSET", kLinks, "Chassis", kChassis});
    Ask({"HSET", kChassis, "@odata.id", "/chassis/1"});
  }
  // What the definition `name` of the schema with this index name has for an ID.
  std::string Definition(const std::string& schema, const std::string& name) {
    const std::string root = Ask({"HGET", zephlane::test::kSchemaIndex, schema});
    return Ask({"HGET", Ask({"HGET", root, "definitions"}), name});
  }
  std::string Stamp(const std::string& key) {
    return Ask({"HGET", key, "typeID"});
  }
};

TEST_F(SampleFan, IsAnnotatedAndFoundValidUntilAPropertyIsMissing) {
  ASSERT_EQ(zephlaneInsertTypeID(ctx(), kFan, kFanSchema, 0), 0);
  EXPECT_EQ(Stamp(kFan), Definition("Fan.1.0.0", "Fan"));
  EXPECT_EQ(Stamp(kLimits), Definition("Fan.1.0.0", "SpeedLimits"));
  EXPECT_EQ(Stamp(kSensor), Definition("Sensor.1.0.0", "Sensor"));
  EXPECT_EQ(Stamp(kChassis), Definition("Chassis.1.0.0", "Chassis"));
  EXPECT_EQ(Stamp(kLinks).substr(0, 24), "00000000-0000-0000-0001-");
  EXPECT_EQ(zephlaneValidateResponseObject(ctx(), kFan), 0);
  EXPECT_EQ(zephlaneValidateResponseObject(ctx(), kLimits), 0);
  Ask({"HSET", kFan, "Name@odata.note", "matches the pattern"});
  EXPECT_EQ(zephlaneValidateResponseObject(ctx(), kFan), 0);
  Ask({"HDEL", kFan, "Name"});
  EXPECT_EQ(zephlaneValidateResponseObject(ctx(), kFan), 1);
}

}  // namespace
