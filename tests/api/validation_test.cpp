// SPDX-License-Identifier: MIT
//
// Testing stored instances against their definitions. As for annotation, types have names here that
// can be read.
#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "api/annotationFixture.h"

namespace {

using zephlane::CRecord;
using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::ApiReports;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::kChassis;
using zephlane::test::kFan;
using zephlane::test::kNoPairs;
using zephlane::test::kNothing;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::RegexFault;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

using Texts = std::vector<std::string>;

const std::string kPatternFails =
    ApiReport("error: [validatePatternProperties], Failed to validate pattern");
const std::string kNoMore =
    ApiReport("error: [validateAdditionalProperties], No more additional property allowed");
const std::string kNoRegex = ApiReport("regcomp() error!! \n");

std::string InvalidProperty(const std::string& name) {
  return ApiReport("error: [" + name + "], Invalid property [zephlaneValidateResponseObject]");
}

// A list of unknown properties as a caller holds it.
class PropertyList {
 public:
  PropertyList() = default;
  PropertyList(const PropertyList&) = delete;
  PropertyList& operator=(const PropertyList&) = delete;
  ~PropertyList() {
    CRecord<UnknownProperty> property(head);
    while (property) { property.reset(property->next); }
  }
  [[nodiscard]] Texts Names() const {
    Texts names;
    for (const UnknownProperty* property = head; property; property = property->next) {
      names.emplace_back(property->aName);
    }
    return names;
  }
  UnknownProperty* head = nullptr;
  UnknownProperty* tail = nullptr;
};

class ValidationTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"HSET", "FanType", "Name", "StringType", "Speed", "NumberType"});
    Ask({"HSET", kFan, "typeID", "FanType", "Name", "Fan 1", "Speed", "900"});
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  void WillReply(std::initializer_list<std::string> replies) {
    for (const std::string& reply : replies) { server_.WillReply(reply); }
  }
  void Allow(const std::string& additional) {
    Ask({"HSET", "FanType", "additionalProperties", additional});
  }
  void AllowPattern(const std::string& pattern) {
    Ask({"HSET", "FanType", "patternProperties", "patterns"});
    Ask({"HSET", "patterns", pattern, "StringType"});
  }
  // The result of validating the fan, and what that prints.
  void ExpectFan(int result, const std::string& printed) {
    EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneValidateResponseObject(ctx(), kFan), result); }),
              printed);
  }

  ScriptedServer server_;
};

class ValidateResponse : public ValidationTest {};

TEST_F(ValidateResponse, AcceptsDefinedPropertiesWhereNothingIsRequired) {
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, TakesNoOtherFieldsForUnknownThanThoseOfOurOwn) {
  Ask({"HSET", kFan, "Type", "t", "TtlId", "t", "typeId", "t"});
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, SendsTheseCommands) {
  WillReply({Bulk("FanType"), Bulk("required"), Bulks({"Name"}), Bulk("Fan 1"),
             Bulks({"typeID", "FanType", "Name", "Fan 1", "Colour", "red"}), kNothing,
             Bulk("StringType"), kNothing, Bulk("patterns"), Bulks({"^C", "StringType"})});
  EXPECT_EQ(zephlaneValidateResponseObject(scripted(), kFan), 0);
  const std::string fan = kFan;
  EXPECT_EQ(server_.Commands(),
            "HGET " + fan + " typeID\nHGET FanType required\n" + "SMEMBERS required\nHGET " + fan +
                " Name\nHGETALL " + fan + "\nHGET FanType typeID\nHGET FanType Name\n" +
                "HGET FanType Colour\nHGET FanType patternProperties\n" + "HGETALL patterns\n");
}

TEST_F(ValidateResponse, FailsSilentlyWithoutAnInstance) {
  ExpectEachFails({
      {"instance", [&] { return zephlaneValidateResponseObject(scripted(), nullptr); }, ""},
      {"connection", [] { return zephlaneValidateResponseObject(nullptr, kFan); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ValidateResponse, ReportsAnInstanceThatIsNoLink) {
  ExpectEachFails(
      {{"text", [&] { return zephlaneValidateResponseObject(scripted(), "fan"); },
        ApiReport("error: [zephlaneValidateResponseObject], Invalid request InstanceID")}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ValidateResponse, FindsAnInstanceWithoutTypeInvalidSilently) {
  Ask({"HDEL", kFan, "typeID"});
  ExpectFan(1, "");
}

TEST_F(ValidateResponse, FindsAnInstanceWithoutARequiredPropertyInvalidSilently) {
  Ask({"HSET", "FanType", "required", "required"});
  Ask({"SADD", "required", "Name", "Id"});
  ExpectFan(1, "");
  Ask({"HSET", "FanType", "Id", "StringType"});
  Ask({"HSET", kFan, "Id", "1"});
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, AcceptsAnAdditionalPropertyAfterThePatternStepHasComplained) {
  Allow("true");
  Ask({"HSET", kFan, "Colour", "red"});
  ExpectFan(0, kPatternFails);
}

TEST_F(ValidateResponse, ReportsAnAdditionalPropertyWhereNoneIsAllowed) {
  Allow("false");
  Ask({"HSET", kFan, "Colour", "red"});
  ExpectFan(1, kPatternFails + kNoMore + InvalidProperty("Colour"));
}

TEST_F(ValidateResponse, FindsAnUnknownPropertyInvalidWhereNothingIsSaidOfIt) {
  Ask({"HSET", kFan, "Colour", "red"});
  ExpectFan(1, kPatternFails + InvalidProperty("Colour"));
}

TEST_F(ValidateResponse, AcceptsAPropertyThatMatchesThePatternWhateverElseIsAllowed) {
  Allow("false");
  AllowPattern("^[A-Za-z]+@note$");
  Ask({"HSET", kFan, "Name@note", "matches"});
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, StopsAtTheFirstPropertyThatIsNotAccepted) {
  WillReply({Bulk("FanType"), kNothing, Bulks({"b", "1", "a", "2"}), kNothing, kNothing, kNothing,
             kNothing});
  ExpectEachFails({{"two", [&] { return zephlaneValidateResponseObject(scripted(), kFan); },
                    kPatternFails + InvalidProperty("b")}});
  EXPECT_TRUE(server_.Commands().ends_with(
      "HGET FanType b\nHGET FanType a\nHGET FanType patternProperties\n"
      "HGET FanType additionalProperties\n"));
}

TEST_F(ValidateResponse, LooksAtTheTopLevelOnly) {
  Ask({"HSET", "FanType", "Chassis", "ChassisType"});
  Ask({"HSET", kFan, "Chassis", kChassis});
  Ask({"HSET", kChassis, "Undefined", "text"});
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, FailsWhereTheInstanceCannotBeRead) {
  WillReply({Bulk("FanType"), kNothing});
  server_.WillClose();
  ExpectEachFails({{"lost", [&] { return zephlaneValidateResponseObject(scripted(), kFan); }, ""}});
}

TEST_F(ValidateResponse, NeedsNoMemoryForAPatternToTellALink) {
  const RegexFault fault;
  ExpectFan(0, "");
}

TEST_F(ValidateResponse, MatchesEachUnknownPropertyWithThePatternOfItsOwnReply) {
  const auto unknown = [](const std::string& pattern) {
    return std::vector{Bulk("patterns"), Bulks({pattern, "StringType"})};
  };
  WillReply({Bulk("FanType"), kNothing, Bulks({"Colour", "red", "Paint", "matt", "Cost", "9"}),
             kNothing, kNothing, kNothing});
  // The first pattern is met twice, then another writer has changed it.
  for (const char* pattern : {"^[CP]", "^[CP]", "^X"}) {
    for (const std::string& reply : unknown(pattern)) { server_.WillReply(reply); }
  }
  WillReply({Bulk("true")});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneValidateResponseObject(scripted(), kFan), 0); }),
            ApiReport("error: [validatePatternProperties], Failed to validate pattern"));
}

TEST_F(ValidateResponse, ReportsAPatternThatDoesNotCompileForEachProperty) {
  AllowPattern("^(");
  Allow("true");
  Ask({"HSET", kFan, "Colour", "red", "Paint", "matt"});
  ExpectFan(0, kNoRegex + kNoRegex);
}

class ValidateRequired : public ValidationTest {};

TEST_F(ValidateRequired, IsDoneWhereNothingIsRequired) {
  EXPECT_EQ(validateRequired(ctx(), kFan, "FanType"), 0);
  Ask({"HSET", "FanType", "required", "empty"});
  EXPECT_EQ(validateRequired(ctx(), kFan, "FanType"), 0);
}

TEST_F(ValidateRequired, StopsAtTheFirstPropertyThatIsMissing) {
  WillReply({Bulk("required"), Bulks({"Name", "Id", "Speed"}), Bulk("Fan 1"), kNothing});
  EXPECT_EQ(validateRequired(scripted(), kFan, "FanType"), 1);
  const std::string fan = kFan;
  EXPECT_EQ(server_.Commands(), "HGET FanType required\nSMEMBERS required\nHGET " + fan +
                                    " Name\nHGET " + fan + " Id\n");
}

TEST_F(ValidateRequired, TakesAnEmptyValueForAMissingProperty) {
  Ask({"HSET", "FanType", "required", "required"});
  Ask({"SADD", "required", "Name"});
  Ask({"HSET", kFan, "Name", ""});
  EXPECT_EQ(validateRequired(ctx(), kFan, "FanType"), 1);
}

TEST_F(ValidateRequired, FailsOnNullPointersAndALostConnection) {
  EXPECT_EQ(validateRequired(nullptr, kFan, "FanType"), 1);
  EXPECT_EQ(validateRequired(ctx(), nullptr, "FanType"), 1);
  EXPECT_EQ(validateRequired(ctx(), kFan, nullptr), 1);
  server_.WillReply(Bulk("required"));
  server_.WillClose();
  EXPECT_EQ(validateRequired(scripted(), kFan, "FanType"), 1);
}

class ValidateProperties : public ValidationTest {
 protected:
  PropertyList list_;
};

TEST_F(ValidateProperties, AppendsUnknownOnesInTheOrderOfTheInstance) {
  for (const char* first : {"b", "d"}) {
    WillReply({Bulks({first, "1", "Name", "2", "a", "3"}), kNothing, Bulk("StringType"), kNothing});
    EXPECT_EQ(validateProperties(scripted(), kFan, "FanType", &list_.head, &list_.tail), 0);
  }
  EXPECT_EQ(list_.Names(), (Texts{"b", "a", "d", "a"}));
  EXPECT_STREQ(list_.tail->aName, "a");
  EXPECT_EQ(list_.tail->next, nullptr);
}

TEST_F(ValidateProperties, NeverCountsTheFieldsOfOurOwn) {
  Ask({"HSET", "other", "typeID", "x", "Type", "x", "TtlId", "x", "typeId", "x", "UUID", "x"});
  EXPECT_EQ(validateProperties(ctx(), "other", "FanType", &list_.head, &list_.tail), 0);
  EXPECT_EQ(list_.Names(), (Texts{"UUID"}));
}

TEST_F(ValidateProperties, CutsANameTo1023Characters) {
  for (const std::size_t length : {1023U, 1024U}) {
    Ask({"DEL", "other"});
    Ask({"HSET", "other", std::string(length, 'n'), "x"});
    PropertyList list;
    EXPECT_EQ(validateProperties(ctx(), "other", "FanType", &list.head, &list.tail), 0);
    EXPECT_EQ(list.Names(), (Texts{std::string(1023, 'n')})) << length;
  }
}

TEST_F(ValidateProperties, OfAnInstanceThatCannotBeReadFailSilentlyAndLeaveTheList) {
  Ask({"SADD", "set", "member"});
  server_.WillClose();
  for (redisContext* connection : {ctx(), scripted()}) {
    ExpectEachFails({{"unreadable",
                      [&] {
                        return validateProperties(connection, "set", "FanType", &list_.head,
                                                  &list_.tail);
                      },
                      ""}});
  }
  EXPECT_EQ(list_.head, nullptr);
}

TEST_F(ValidateProperties, FreeTheListWhenMemoryIsOut) {
  Ask({"HSET", "other", "a", "1", "b", "2"});
  const auto validate = [&] {
    EXPECT_EQ(validateProperties(ctx(), "other", "FanType", &list_.head, &list_.tail), 1);
  };
  EXPECT_EQ(PrintedWithoutMemory(1, validate), "");  // the instance's pairs
  for (const int n : {2, 3}) {
    EXPECT_EQ(PrintedWithoutMemory(n, validate),
              ApiReport("error: [validateProperties], Failed to malloc() for properties list"));
    EXPECT_EQ(list_.head, nullptr);
    EXPECT_EQ(list_.tail, nullptr);
  }
}

TEST_F(ValidateProperties, RefuseNullPointersSilently) {
  UnknownProperty** head = &list_.head;
  UnknownProperty** tail = &list_.tail;
  EXPECT_EQ(validateProperties(nullptr, kFan, "FanType", head, tail), 1);
  EXPECT_EQ(validateProperties(scripted(), nullptr, "FanType", head, tail), 1);
  EXPECT_EQ(validateProperties(scripted(), kFan, nullptr, head, tail), 1);
  EXPECT_EQ(validateProperties(scripted(), kFan, "FanType", nullptr, tail), 1);
  EXPECT_EQ(validateProperties(scripted(), kFan, "FanType", head, nullptr), 1);
  EXPECT_EQ(server_.Received(), "");
}

class PatternProperties : public ValidationTest {
 protected:
  void Expect(int result, const std::string& property, const std::string& printed) {
    EXPECT_EQ(PrintedBy([&] {
                EXPECT_EQ(validatePatternProperties(ctx(), "FanType", property.c_str()), result);
              }),
              printed);
  }
};

TEST_F(PatternProperties, UseThePatternAsItIsWritten) {
  AllowPattern("[a-z]+@(note|unit)");
  Expect(0, "9Speed@unit9", "");
  Expect(1, "Speed@UNIT", kPatternFails);
}

TEST_F(PatternProperties, AreAnchoredWhereThePatternIs) {
  AllowPattern("^[A-Z]+$");
  Expect(0, "NOTE", "");
  Expect(1, "aNOTE", kPatternFails);
}

TEST_F(PatternProperties, FailInTheSameWordsWhereThereAreNone) {
  Expect(1, "Name", kPatternFails);
}

TEST_F(PatternProperties, FailForEveryPropertyWhereThereAreTwoPatternsOrNone) {
  const std::string report = ApiReport(
      "error: [validatePatternProperties], "
      "Invalid key-value pair number in patternProperties hash table.");
  AllowPattern("^a$");
  AllowPattern("^b$");
  Expect(1, "a", report);
  Expect(1, "b", report);
  Ask({"DEL", "patterns"});
  Expect(1, "a", report);
}

TEST_F(PatternProperties, ReportAPatternThatDoesNotCompile) {
  AllowPattern("a(b");
  Expect(1, "a(b", kNoRegex);
}

TEST_F(PatternProperties, FailSilentlyWhereTheyCannotBeRead) {
  AllowPattern("^a$");
  EXPECT_EQ(PrintedWithoutMemory(
                1, [&] { EXPECT_EQ(validatePatternProperties(ctx(), "FanType", "a"), 1); }),
            "");
  server_.WillReply(Bulk("patterns"));
  server_.WillClose();
  ExpectEachFails({
      {"lost", [&] { return validatePatternProperties(scripted(), "FanType", "a"); }, ""},
      {"connection", [] { return validatePatternProperties(nullptr, "FanType", "a"); }, ""},
      {"type", [&] { return validatePatternProperties(ctx(), nullptr, "a"); }, ""},
      {"property", [&] { return validatePatternProperties(ctx(), "FanType", nullptr); }, ""},
  });
}

class AdditionalProperties : public ValidationTest {
 protected:
  void SetUp() override {
    ValidationTest::SetUp();
    Allow("AnyType");
  }
  int Validate() {
    return validateAdditionalProperties(ctx(), kFan, "FanType", "Extra");
  }
};

TEST_F(AdditionalProperties, AreAllAllowedOrNone) {
  Allow("true");
  EXPECT_EQ(Validate(), 0);
  Allow("false");
  ExpectEachFails({{"none", [&] { return Validate(); }, kNoMore}});
}

TEST_F(AdditionalProperties, FailSilentlyWhereADefinitionSaysNothingOrAValueIsMissing) {
  const auto validate = [&] { return Validate(); };
  ExpectEachFails({{"no value", validate, ""}});
  Ask({"HSET", kFan, "Extra", "x"});
  ExpectEachFails({{"no type", validate, ""}});
  Ask({"HDEL", "FanType", "additionalProperties"});
  ExpectEachFails({{"no word", validate, ""}});
}

TEST_F(AdditionalProperties, AreReadAsTypeValueAndTypeText) {
  WillReply({Bulk("AnyType"), Bulk("word"), Bulk("string")});
  EXPECT_EQ(validateAdditionalProperties(scripted(), kFan, "FanType", "an extra"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "FanType", "additionalProperties"}) +
                                    Bulks({"HGET", kFan, "an extra"}) +
                                    Bulks({"HGET", "AnyType", "type"}));
}

TEST_F(AdditionalProperties, MustFitOneOfTheNamesInTheTypeText) {
  const struct {
    const char* type;
    const char* value;
    int result;
  } cases[] = {
      {"string", "word!~", 0},     {"string", "two words", 1},   {"string", "caf\xc3\xa9", 1},
      {"stringnull", "word", 0},   {"nullstring", "null", 0},    {"number", "15", 0},
      {"number", "1.5", 1},        {"number", "-1", 1},          {"number", "1e3", 1},
      {"integer", "007", 0},       {"integer", "+7", 1},         {"integernull", "null", 1},
      {"boolean", "true", 0},      {"boolean", "false", 0},      {"boolean", "TRUE", 1},
      {"boolean", "truely", 1},    {"booleannumber", "12", 0},   {"booleaninteger", "true", 0},
      {"integerstring", "1 2", 1}, {"numberstring", "1.5", 0},   {"object", "word", 1},
      {"array", "true", 1},        {"stringboolean", "true", 0}, {"null", "null", 1},
  };
  for (const auto& row : cases) {
    SCOPED_TRACE(std::string(row.type) + " " + row.value);
    Ask({"HSET", "AnyType", "type", row.type});
    Ask({"HSET", kFan, "Extra", row.value});
    const std::string report =
        ApiReport(std::string("error: [validateAdditionalProperties], additionalProperty validate "
                              "fail, request type[") +
                  row.type + "]");
    EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Validate(), row.result); }), row.result == 0 ? "" : report);
  }
}

TEST_F(AdditionalProperties, AreReportedInTheInstanceWithTypeAndProperty) {
  Ask({"HSET", "AnyType", "type", "boolean"});
  Ask({"HSET", kFan, "Extra", "TRUE"});
  ExpectFan(1, kPatternFails +
                   ApiReport("error: [validateAdditionalProperties], additionalProperty validate "
                             "fail, request type[boolean]") +
                   InvalidProperty("Extra"));
}

TEST_F(AdditionalProperties, ReportAnExpressionThatDoesNotCompile) {
  Ask({"HSET", kFan, "Extra", "true"});
  for (const char* type : {"string", "number", "integerboolean"}) {
    Ask({"HSET", "AnyType", "type", type});
    const RegexFault fault;
    ExpectEachFails({{type, [&] { return Validate(); }, kNoRegex}});
  }
}

TEST_F(AdditionalProperties, FailOnNullPointersAndALostConnection) {
  const auto validate = validateAdditionalProperties;
  server_.WillClose();
  ExpectEachFails({
      {"connection", [&] { return validate(nullptr, kFan, "FanType", "Extra"); }, ""},
      {"instance", [&] { return validate(ctx(), nullptr, "FanType", "Extra"); }, ""},
      {"type", [&] { return validate(ctx(), kFan, nullptr, "Extra"); }, ""},
      {"property", [&] { return validate(ctx(), kFan, "FanType", nullptr); }, ""},
      {"lost", [&] { return validate(scripted(), kFan, "FanType", "Extra"); }, ""},
  });
}

}  // namespace
