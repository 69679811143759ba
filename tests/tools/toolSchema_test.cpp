// SPDX-License-Identifier: MIT
//
// annotate and validate, over a schema of two definitions.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using zephlane::test::RunTool;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;

constexpr char kIndex[] = "00000000-0000-0000-0001-eeeeeeeeeeee";
constexpr char kFan[] = "10000000-0000-0000-0000-000000000001";
constexpr char kStatus[] = "10000000-0000-0000-0000-000000000002";

// Fan.1.0.0: a fan has a required Name, a Speed and a Status, which has a State.
class ToolSchema : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"SADD", "ZephlaneSchemaInstances", Id(1)});
    Ask({"HSET", "ZephlaneSchemaTitleUuidHash", "Fan.1.0.0", Id(1)});
    Ask({"HSET", Id(1), "title", "Fan.1.0.0", "$ref", "#/definitions/Fan", "definitions", Id(2)});
    Ask({"HSET", Id(2), "Fan", Id(3), "Status", Id(4)});
    Ask({"HSET", Id(3), "type", "object", "required", Id(5), "Name", Id(6), "Speed", Id(6),
         "Status", Id(4)});
    Ask({"HSET", Id(4), "type", "object", "State", Id(6)});
    Ask({"SADD", Id(5), "Name", "Speed"});
    Ask({"HSET", kIndex, "odata.4.0.0", Id(0xa)});
    Ask({"HSET", Id(0xa), "definitions", Id(0xb)});
    Ask({"HSET", Id(0xb), "idRef", Id(0xc)});
    Ask({"HSET", kFan, "Name", "Front", "Speed", "1200", "Status", kStatus});
    Ask({"HSET", kStatus, "State", "Enabled"});
  }
  static std::string Id(unsigned number) {
    char id[37];
    (void)std::snprintf(id, sizeof(id), "00000000-0000-0000-0001-%012x", number);
    return id;
  }
  static void ExpectFailure(const std::vector<std::string>& arguments, const std::string& message) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, EndsWith(message));
  }
};

using ToolAnnotate = ToolSchema;

TEST_F(ToolAnnotate, StampsTheObjectAndWhatItLinksTo) {
  const ToolRun run = RunTool({"annotate", kFan, "Fan.1.0.0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, Id(3) + " Fan.1.0.0/Fan\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(Ask({"HGET", kFan, "typeID"}), Id(3));
  EXPECT_EQ(Ask({"HGET", kStatus, "typeID"}), Id(4));
}

TEST_F(ToolAnnotate, TakesTheIdOfTheSchema) {
  EXPECT_EQ(RunTool({"annotate", kFan, Id(1)}).out, Id(3) + " Fan.1.0.0/Fan\n");
}

TEST_F(ToolAnnotate, TakesTheFirstAlternativeOrTheLinkType) {
  Ask({"HSET", Id(4), "anyOf", Id(7)});
  Ask({"SADD", Id(7), Id(0xc), Id(8)});
  EXPECT_EQ(RunTool({"annotate", kFan, "Fan.1.0.0"}).status, 0);
  EXPECT_EQ(Ask({"HGET", kStatus, "typeID"}), Id(8));
  Ask({"HDEL", kFan, "typeID"});
  EXPECT_EQ(RunTool({"annotate", "--id-ref", kFan, "Fan.1.0.0"}).status, 0);
  EXPECT_EQ(Ask({"HGET", kStatus, "typeID"}), Id(0xc));
}

TEST_F(ToolAnnotate, UnknownSchemaIsAFailure) {
  ExpectFailure({"annotate", kFan, "Pump.1.0.0"},
                "zephlane: Pump.1.0.0 is neither a hash nor the title of a schema.\n");
}

TEST_F(ToolAnnotate, LinkThatTheDefinitionDoesNotNameIsAFailureWithTheLibrarysReports) {
  Ask({"HSET", kFan, "Other", kStatus});
  const ToolRun run = RunTool({"annotate", kFan, "Fan.1.0.0"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr(": Failed to insert type id\n"));
  EXPECT_THAT(run.err, HasSubstr(std::string("zephlane: ") + kFan +
                                 " could not be stamped whole; stamps already written stay.\n"));
}

TEST_F(ToolAnnotate, MissingObjectIsAFailure) {
  const ToolRun run = RunTool({"annotate", "nothing", "Fan.1.0.0"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr(": aInstanceID is not a hash\n"));
}

class ToolValidate : public ToolSchema {
 protected:
  void SetUp() override {
    ToolSchema::SetUp();
    Ask({"HSET", kFan, "typeID", Id(3)});
  }
  // Checks that the object is invalid for just this reason.
  static void ExpectInvalid(const std::string& complaints) {
    const ToolRun run = RunTool({"validate", kFan});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "Result:      invalid\nDefinition:  Fan.1.0.0/Fan\n" + complaints);
  }
  void ForbidAdditional() {
    Ask({"HSET", Id(3), "additionalProperties", "false"});
  }
};

TEST_F(ToolValidate, ObjectThatFitsIsValid) {
  const ToolRun run = RunTool({"validate", kFan});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "Result:      valid\nDefinition:  Fan.1.0.0/Fan\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(ToolValidate, NamesEveryRequiredPropertyThatIsMissing) {
  Ask({"HDEL", kFan, "Name"});
  Ask({"HSET", kFan, "Speed", ""});
  ExpectInvalid(
      "Property:    Name: required, but missing or empty\n"
      "Property:    Speed: required, but missing or empty\n");
}

TEST_F(ToolValidate, SaysThatNothingAllowsTheProperty) {
  Ask({"HSET", kFan, "Colour", "red"});
  ExpectInvalid(
      "Property:    Colour: not defined; there is no pattern that it could match; "
      "the definition does not say that it allows additional ones\n");
}

TEST_F(ToolValidate, SaysWhichPatternIsNotMatched) {
  Ask({"HSET", kFan, "Colour", "red", "x-Mode", "any"});
  Ask({"HSET", Id(3), "patternProperties", Id(7)});
  Ask({"HSET", Id(7), "^x-", Id(6)});
  ForbidAdditional();
  ExpectInvalid(
      "Property:    Colour: not defined; it does not match the pattern ^x-; "
      "additional properties are not allowed\n");
}

TEST_F(ToolValidate, SaysThatThePatternIsNoExpression) {
  Ask({"HSET", kFan, "Colour", "red"});
  Ask({"HSET", Id(3), "patternProperties", Id(7)});
  Ask({"HSET", Id(7), "^(C", Id(6)});
  ForbidAdditional();
  ExpectInvalid(
      "Property:    Colour: not defined; the pattern ^(C is no regular expression; "
      "additional properties are not allowed\n");
}

TEST_F(ToolValidate, SaysThatOneOfSeveralPatternsIsNeverUsed) {
  Ask({"HSET", kFan, "Colour", "red"});
  Ask({"HSET", Id(3), "patternProperties", Id(7)});
  Ask({"HSET", Id(7), "^C", Id(6), "^x-", Id(6)});
  ForbidAdditional();
  ExpectInvalid(
      "Property:    Colour: not defined; there are 2 patterns, of which none is used; "
      "additional properties are not allowed\n");
}

TEST_F(ToolValidate, SaysWhichValuesAdditionalPropertiesHave) {
  Ask({"HSET", kFan, "Count", "-1"});
  Ask({"HSET", Id(3), "additionalProperties", Id(7)});
  Ask({"HSET", Id(7), "type", "integernull"});
  ExpectInvalid(
      "Property:    Count: not defined; there is no pattern that it could match; its value -1 is "
      "not of the type of additional properties, integer | null (digits only)\n");
  Ask({"HSET", kFan, "Count", "1"});
  EXPECT_EQ(RunTool({"validate", kFan}).status, 0);
}

TEST_F(ToolValidate, NamesEveryPropertyAndPrintsTheLibrarysReportsOnce) {
  Ask({"HSET", kFan, "Colour", "red", "Mode", "any"});
  ForbidAdditional();
  const ToolRun run = RunTool({"validate", kFan});
  EXPECT_THAT(run.out, HasSubstr("\nProperty:    Colour: "));
  EXPECT_THAT(run.out, HasSubstr("\nProperty:    Mode: "));
  const std::string report = "error: [Colour], Invalid property [zephlaneValidateResponseObject]\n";
  EXPECT_THAT(run.err, EndsWith(report));
  EXPECT_EQ(run.err.find(report), run.err.rfind(report));
}

TEST_F(ToolValidate, ObjectWithoutTypeIsAFailureWithTheRemedy) {
  Ask({"HDEL", kFan, "typeID"});
  ExpectFailure({"validate", kFan}, std::string("zephlane: ") + kFan +
                                        " has no typeID, which names its definition.\n"
                                        "  Write it:     zephlane annotate " +
                                        kFan + " SCHEMA\n");
}

TEST_F(ToolValidate, WhatIsNoObjectIsAFailure) {
  ExpectFailure({"validate", "nothing"}, "zephlane: nothing is no hash\n");
  ExpectFailure({"validate", "ZephlaneSchemaTitleUuidHash"},
                "zephlane: ZephlaneSchemaTitleUuidHash is no UUID, as the keys of objects are\n");
}

}  // namespace
