// SPDX-License-Identifier: MIT
//
// Member maps, such as "properties", and objects that are elements of an array.
#include <gtest/gtest.h>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ArrayReport;
using zephlane::test::FullTable;
using zephlane::test::NameTooLongForTheRoute;
using zephlane::test::NoSchemaFile;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::Quoted;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::SchemaReport;
using zephlane::test::Taken;
using zephlane::test::TooLongPair;

// ---- Member maps

class MemberMap : public ParserTest {};

TEST_F(MemberMap, PropertiesAreFieldsOfTheEnclosingHash) {
  EXPECT_EQ(ParseMember("properties", R"({"Id": {"type": "string"}, "description": {}})").result,
            0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  Id = H1
  description = H2
hash H1
  DummyKey = DummyValue
  type = string
hash H2
  DummyKey = DummyValue
)");
}

TEST_F(MemberMap, PropertiesOfAMetaSchemaHaveAHashOfTheirOwn) {
  for (const char* name : {"schema", "schema#", "hyper-schema", "hyper-schema#"}) {
    SCOPED_TRACE(name);
    NameSchema(name);
    const std::string id = Taken(generateRedisDataObjectID(1));
    EXPECT_EQ(ParseMember("properties", R"({"Id": {"type": "string"}})").result, 0);
    EXPECT_EQ(Ask({"HGET", Root(), "properties"}), id);
    EXPECT_EQ(Ask({"HGET", Ask({"HGET", id, "Id"}), "type"}), "string");
  }
}

TEST_F(MemberMap, EveryOtherMapHasAHashOfItsOwn) {
  for (const char* name : {"definitions", "dependencies", "RefSchema", "patternProperties"}) {
    SCOPED_TRACE(name);
    const std::string id = Taken(generateRedisDataObjectID(1));
    EXPECT_EQ(ParseMember(name, R"({"A": "text"})").result, 0);
    EXPECT_EQ(Ask({"HGET", Root(), name}), id);
    EXPECT_EQ(Ask({"HGETALL", id}), "DummyKey\nDummyValue\nA\ntext");
  }
  EXPECT_EQ(Field("H0", "A"), "(nil)");
}

TEST_F(MemberMap, ExactlyFiveNamesAreMaps) {
  for (const char* name :
       {"definitions", "dependencies", "RefSchema", "patternProperties", "properties"}) {
    EXPECT_EQ(isNonKeywordProperty(name), 1) << name;
  }
  for (const char* name : {"", "items", "Properties", "propertie", "properties ", "required"}) {
    EXPECT_EQ(isNonKeywordProperty(name), 0) << name;
  }
}

TEST_F(MemberMap, EmptyMapIsSuccess) {
  EXPECT_EQ(ParseMember("properties", "{}").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n");
  EXPECT_EQ(ParseMember("definitions", "{}").result, 0);
  EXPECT_EQ(Field("H0", "definitions"), "H1");
  EXPECT_EQ(Ask({"HGETALL", Long("H1")}), "DummyKey\nDummyValue");
}

TEST_F(MemberMap, HoldsMembersOfEveryKind) {
  const Outcome outcome = ParseMember(
      "properties", R"({"A": "text", "B": 7, "C": true, "D": ["x"], "E": {}, "F": false})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  A = text
  B = 7
  C = true
  D = S0
  DummyKey = DummyValue
  E = H1
  F = false
hash H1
  DummyKey = DummyValue
set S0
  (dummy)
  x
)");
}

TEST_F(MemberMap, RealOrNullThatComesFirstFails) {
  for (const char* value : {"null", "1.5"}) {
    SCOPED_TRACE(value);
    const Outcome outcome =
        ParseMember("properties", std::string("{\"A\": ") + value + R"(, "B": {}})");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ObjectReport(361, "Error at << Thing.json: A >>") +
                                  ObjectReport(421, "Something wrong in 'properties' field ..."));
  }
  EXPECT_EQ(Field("H0", "B"), "(nil)");
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(MemberMap, RealOrNullAfterASuccessfulMemberIsSkippedSilently) {
  const Outcome outcome =
      ParseMember("properties", R"({"A": "text", "B": null, "C": 1.5, "D": {}, "E": null})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Ask({"HKEYS", Root()}), "DummyKey\nA\nD");
}

// Only members that are stored by their kind clear the way for a real or null, a reference does
// not.
TEST_F(MemberMap, NullAfterNothingButAReferenceFails) {
  const Outcome outcome = ParseMember("properties", R"({"$ref": "#", "A": null})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(361, "Error at << Thing.json: A >>") +
                                ObjectReport(421, "Something wrong in 'properties' field ..."));
}

TEST_F(MemberMap, MapWithinAMapLiesInTheSameHash) {
  EXPECT_EQ(ParseMember("properties", R"({"properties": {"A": "text"}})").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  A = text\n  DummyKey = DummyValue\n");
}

TEST_F(MemberMap, PropertyCalledLikeAMapIsAMap) {
  EXPECT_EQ(ParseMember("properties", R"({"definitions": {"type": {"type": "string"}}})").result,
            0);
  EXPECT_EQ(Field("H0", "definitions"), "H1");
  EXPECT_EQ(Field("H1", "type"), "H2");
  EXPECT_EQ(Field("H2", "type"), "string");
}

TEST_F(MemberMap, ReferenceIsAMemberBesideTheOthers) {
  EXPECT_EQ(ParseMember("properties", R"({"$ref": "#", "A": {}})").result, 0);
  EXPECT_EQ(Field("H0", "$ref"), "H0");
  EXPECT_EQ(Field("H0", "A"), "H1");
}

TEST_F(MemberMap, ReferenceIsRecordedUnderTheRouteOfItsName) {
  EXPECT_EQ(ParseMember("definitions", R"({"$ref": "#/definitions/A"})").result, 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/$ref"), 0);
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(MemberMap, FailedReferenceFailsWithoutALineOfItsOwn) {
  const Outcome outcome = ParseMember("properties", R"({"A": {}, "$ref": "bad"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            NoSchemaFile("bad") + ObjectReport(421, "Something wrong in 'properties' field ..."));
}

TEST_F(MemberMap, ReferenceThatIsNoTextIsAMemberLikeOthers) {
  EXPECT_EQ(ParseMember("properties", R"({"$ref": {"type": "string"}})").result, 0);
  EXPECT_EQ(Field("H0", "$ref"), "H1");
  EXPECT_EQ(ParseMember("properties", R"({"$ref": 5})").result, 0);
  EXPECT_EQ(Field("H0", "$ref"), "5");
}

TEST_F(MemberMap, FailedMemberIsNamed) {
  const Outcome outcome = ParseMember("properties", R"({"A": {}, "B": {"$ref": 5}, "C": {}})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!") +
                                ObjectReport(361, "Error at << Thing.json: B >>") +
                                ObjectReport(421, "Something wrong in 'properties' field ..."));
  EXPECT_EQ(Field("H0", "A"), "H1");
  EXPECT_EQ(Field("H0", "C"), "(nil)");
}

TEST_F(MemberMap, FailedArrayMemberIsNotNamedSinceTheRouteStandsDeeper) {
  const Outcome outcome = ParseMember("properties", R"({"A": [""]})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!") +
                                ArrayReport(562, "parseArrayElements fail") +
                                SchemaReport("Spot name not match!!") +
                                ObjectReport(421, "Something wrong in 'properties' field ..."));
}

TEST_F(MemberMap, MemberThatLeftTheRouteDeeperIsNotNamed) {
  const Outcome outcome = ParseMember("properties", R"({"A": {"not": {"$ref": 5}}})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!") +
                                ObjectReport(793, "---> parseObjectElements fail !!!!") +
                                SchemaReport("Spot name not match!!") +
                                ObjectReport(421, "Something wrong in 'properties' field ..."));
  EXPECT_EQ(Route(), "Thing.json#/A/not");
}

TEST_F(MemberMap, NameOf99CharactersIsTheLongest) {
  const std::string name(99, 'm');
  const Outcome outcome =
      ParseMember("properties", "{" + Quoted(name) + R"(: {"$ref": "#/definitions/A"}})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(schemaRefListSearchEntry(("Thing.json#/" + name).c_str()), 0);
}

TEST_F(MemberMap, NameOf100CharactersFailsAfterItsMemberIsStored) {
  const std::string name(100, 'm');
  for (const char* value : {"{}", "[]", "\"text\""}) {
    SCOPED_TRACE(value);
    ASSERT_NE(Ask({"HSET", Root(), name, ""}), "");
    const Outcome outcome = ParseMember("properties", "{" + Quoted(name) + ": " + value + "}");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, NameTooLongForTheRoute() +
                                  ObjectReport(421, "Something wrong in 'properties' field ..."));
    EXPECT_NE(Field("H0", name), "");
  }
}

TEST_F(MemberMap, TextOf1024CharactersFails) {
  const std::string text(1024, 't');
  const Outcome outcome = ParseMember("properties", "{\"A\": " + Quoted(text) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair("A", text) + ObjectReport(344, "Redis hash add pair") +
                                ObjectReport(421, "Something wrong in 'properties' field ..."));
}

TEST_F(MemberMap, ReportsTextThatMemoryIsOutFor) {
  json_t* const map = Value(R"({"A": "text"})");
  const std::string reports = ReportsOfAllocationFaults(
      [&] { (void)parseNonKeywordObjectElements(context(), map, Root()); });
  EXPECT_NE(reports.find(ObjectReport(336, "Get JSON simple string fail")), std::string::npos);
}

TEST_F(MemberMap, NullArgumentsAreReported) {
  json_t* const map = Value("{}");
  const std::string report = ObjectReport(298, "parseNonKeywordObjectElements: argument is NULL!");
  EXPECT_EQ(Observe([&] { return parseNonKeywordObjectElements(nullptr, map, Root()); }).errors,
            report);
  EXPECT_EQ(
      Observe([&] { return parseNonKeywordObjectElements(context(), nullptr, Root()); }).errors,
      report);
  const Outcome outcome =
      Observe([&] { return parseNonKeywordObjectElements(context(), map, nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(MemberMap, FailsWhenNoHashCanBeMade) {
  FillObjectTable();
  const Outcome outcome = ParseMember("definitions", "{}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            FullTable() + ObjectReport(406, "Failed to creat root object hash !!!"));
}

TEST_F(MemberMap, FailsWhenItsParentCannotNameIt) {
  const std::string name(1024, 'n');
  json_t* const map = Value("{}");
  const Outcome outcome =
      Observe([&] { return parseFieldWithNonKeywordObject(context(), map, Root(), name.c_str()); });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TooLongPair(name, Long("H1")) + ObjectReport(413, "Redis hash add pair"));
}

TEST_F(MemberMap, AnyNameButPropertiesHasAHashOfItsOwn) {
  json_t* const map = Value(R"({"A": "text"})");
  EXPECT_EQ(Observe([&] {
              return parseFieldWithNonKeywordObject(context(), map, Root(), "other");
            }).result,
            0);
  EXPECT_EQ(Field("H0", "other"), "H1");
  EXPECT_EQ(Field("H1", "A"), "text");
}

// ---- Objects that are elements of an array

class ElementObject : public ParserTest {
 protected:
  Outcome ParseElement(const std::string& text, const std::string& set) {
    json_t* const object = Value(text);
    return Observe([&] { return parseObjectWithoutFieldName(context(), 7, object, set.c_str()); });
  }
};

TEST_F(ElementObject, BecomesAHashInTheSet) {
  EXPECT_EQ(ParseElement(R"({"type": "string"})", NewSet()).result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
hash H1
  DummyKey = DummyValue
  type = string
set S0
  (dummy)
  H1
)");
}

TEST_F(ElementObject, CombinatorDoesNotTypeIt) {
  EXPECT_EQ(ParseElement(R"({"oneOf": []})", NewSet()).result, 0);
  EXPECT_EQ(Field("H1", "type"), "(nil)");
}

TEST_F(ElementObject, ReferenceToTheWholeSchemaIsItsRootHash) {
  EXPECT_EQ(ParseElement(R"({"$ref": "#", "type": "string"})", NewSet()).result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\nset S0\n  (dummy)\n  H0\n");
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 0);
}

TEST_F(ElementObject, ReferenceToTheWholeSchemaFailsWhenItIsNotRegistered) {
  NameSchema("Other.json");
  const Outcome outcome = ParseElement(R"({"$ref": "#"})", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(496, "---> getSchemaHashID(Other.json) fail !!!!"));
}

TEST_F(ElementObject, ReferenceToTheWholeSchemaFailsWhenTheSetTakesNoMember) {
  const Outcome outcome = ParseElement(R"({"$ref": "#"})", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(505, "---> create set table failed !!!!"));
}

TEST_F(ElementObject, OtherReferenceIsAPlaceholderInTheSet) {
  EXPECT_EQ(ParseElement(R"({"$ref": "#/definitions/A", "type": "string"})", NewSet()).result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\nset S0\n  #/definitions/A\n  (dummy)\n");
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#"), 0);
}

TEST_F(ElementObject, FailedReferenceAddsALine) {
  const Outcome outcome = ParseElement(R"({"$ref": "bad"})", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            NoSchemaFile("bad") + ObjectReport(518, "---> parses $ref field failed !!!!"));
}

TEST_F(ElementObject, ReferenceThatIsNoTextIsAFieldOfItsHash) {
  EXPECT_EQ(ParseElement(R"({"$ref": 5, "type": "string"})", NewSet()).result, 0);
  EXPECT_EQ(Field("H1", "$ref"), "5");
  EXPECT_EQ(Field("H1", "type"), "string");
}

TEST_F(ElementObject, FailsWhenNoHashCanBeMade) {
  const std::string set = NewSet();
  FillObjectTable();
  const Outcome outcome = ParseElement("{}", set);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            FullTable() + ObjectReport(534, "Failed to creat root object hash !!!"));
}

TEST_F(ElementObject, FailsWhenTheSetTakesNoMember) {
  const Outcome outcome = ParseElement(R"({"type": "string"})", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(543, "---> create set table failed !!!!"));
  EXPECT_EQ(Field("H1", "type"), "(nil)");
}

TEST_F(ElementObject, FailedElementsAddALine) {
  const Outcome outcome = ParseElement(R"({"not": {"$ref": 5}})", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!") +
                                ObjectReport(552, "---> parseObjectElements !!!!"));
  EXPECT_EQ(Ask({"SISMEMBER", Long("S0"), Long("H1")}), "1");
}

}  // namespace
