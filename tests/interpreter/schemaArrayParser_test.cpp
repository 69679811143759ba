// SPDX-License-Identifier: MIT
//
// Arrays as sets of the tree.
#include <gtest/gtest.h>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ArrayReport;
using zephlane::test::FullTable;
using zephlane::test::NoSchemaFile;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::Quoted;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::SchemaReport;
using zephlane::test::ScriptedServer;
using zephlane::test::TooLongPair;
using zephlane::test::WillAddMember;
using zephlane::test::WillCreateSet;
using zephlane::test::WillWritePair;

const std::string kNestedArray =
    ArrayReport(454, "EXCEPTION!!! Array contains element array is not supportted");

class SchemaArray : public ParserTest {
 protected:
  Outcome Parse(const std::string& name, const std::string& text) {
    json_t* const array = Value(text);
    return Observe([&] { return parseArray(context(), name.c_str(), array, Root()); });
  }
  std::string Members(const std::string& set) {
    return Short(Dump()).substr(Short(Dump()).find("set " + set));
  }
};

TEST_F(SchemaArray, BecomesASetThatItsParentNames) {
  const Outcome outcome = Parse("required", R"(["Name", "Id"])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  required = S0
set S0
  (dummy)
  Id
  Name
)");
}

TEST_F(SchemaArray, SendsTheCommandsOfASetThenOfItsMembers) {
  ScriptedServer server;
  WillCreateSet(server);
  WillWritePair(server);
  WillAddMember(server);
  WillAddMember(server);
  context()->connection = server.ctx();
  EXPECT_EQ(Parse("required", R"(["Id", "two words"])").result, 0);
  EXPECT_EQ(Short(server.Commands()),
            "HGET S0-TTL TtlSec\n"
            "DEL S0\n"
            "SADD S0 (dummy)\n"
            "HMSET H0 required S0\n"
            "SADD S0 Id\n"
            "SADD S0 two words\n");
}

TEST_F(SchemaArray, WithoutElementsIsASetOfTheDummyMember) {
  EXPECT_EQ(Parse("links", "[]").result, 0);
  EXPECT_EQ(Field("H0", "links"), "S0");
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n");
}

TEST_F(SchemaArray, StoresSimpleElementsAndSkipsRealsAndNullsSilently) {
  const Outcome outcome = Parse("enum", R"([1, 2.5, null, "x", true, false, -7])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Members("S0"), "set S0\n  -7\n  (dummy)\n  1\n  false\n  true\n  x\n");
}

TEST_F(SchemaArray, MayHoldNothingButRealsAndNulls) {
  EXPECT_EQ(Parse("enum", "[2.5, null]").result, 0);
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n");
}

TEST_F(SchemaArray, IntegersKeepTheirLow32Bits) {
  EXPECT_EQ(Parse("enum", "[4294967303, -2147483649]").result, 0);
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  2147483647\n  7\n");
}

TEST_F(SchemaArray, DuplicatesCollapse) {
  EXPECT_EQ(Parse("enum", R"(["x", "x", 1, "1", 4294967297])").result, 0);
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  1\n  x\n");
}

TEST_F(SchemaArray, ObjectsBecomeHashesAndReferencesPlaceholders) {
  EXPECT_EQ(
      Parse("anyOf", R"([{"$ref": "#/definitions/A"}, {"type": "null"}, {"$ref": "#"}])").result,
      0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  anyOf = S0
hash H1
  DummyKey = DummyValue
  type = null
set S0
  #/definitions/A
  (dummy)
  H0
  H1
)");
}

TEST_F(SchemaArray, ElementsStandOnTheRouteByTheirIndex) {
  EXPECT_EQ(Parse("items", R"(["x", {"$ref": "#/definitions/A"},
                               {"not": {"$ref": "#/definitions/B"}}])")
                .result,
            0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/INDEX_1"), 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/INDEX_2/not"), 1);
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(SchemaArray, BrokenObjectIsReportedAndDoesNotFailTheArray) {
  const Outcome outcome = Parse("anyOf", R"([{"$ref": "bad"}, {"type": "null"}])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors,
            NoSchemaFile("bad") + ObjectReport(518, "---> parses $ref field failed !!!!"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  H1\n");
}

TEST_F(SchemaArray, BrokenFieldOfAnObjectDoesNotFailTheArray) {
  const std::string text(1024, 't');
  const Outcome outcome = Parse("anyOf", "[{\"title\": " + Quoted(text) + R"(}, "x"])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, TooLongPair("title", text) + ObjectReport(651, "Redis hash add pair") +
                                ObjectReport(552, "---> parseObjectElements !!!!"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  H1\n  x\n");
}

TEST_F(SchemaArray, BrokenObjectThatLeftTheRouteDeeperFailsTheArray) {
  const Outcome outcome = Parse("anyOf", R"([{"not": {"$ref": 5}}, "x"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!") +
                                ObjectReport(552, "---> parseObjectElements !!!!") +
                                SchemaReport("Spot name not match!!") +
                                ArrayReport(562, "parseArrayElements fail"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  H1\n");
}

TEST_F(SchemaArray, NestedArrayIsReportedAndSkipped) {
  const Outcome outcome = Parse("items", R"([["x", ["y"]], "z", []])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, kNestedArray + kNestedArray);
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  z\n");
}

TEST_F(SchemaArray, TextOf1023CharactersIsTheLongest) {
  const std::string text(1023, 't');
  EXPECT_EQ(Parse("enum", "[" + Quoted(text) + "]").result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", Long("S0"), text}), "1");
}

TEST_F(SchemaArray, TextOf1024CharactersFailsTheArray) {
  const Outcome outcome = Parse("enum", R"(["x", )" + Quoted(std::string(1024, 't')) + R"(, "y"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(462, "Get JSON simple string fail") +
                                ArrayReport(562, "parseArrayElements fail"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  x\n");
  EXPECT_EQ(Route(), "Thing.json#/INDEX_1");
}

TEST_F(SchemaArray, EmptyTextCannotBeAMember) {
  const Outcome outcome = Parse("enum", R"(["x", "", "y"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!") +
                                ArrayReport(562, "parseArrayElements fail"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n  x\n");
}

TEST_F(SchemaArray, ReportsTextThatMemoryIsOutFor) {
  json_t* const array = Value(R"(["x"])");
  const std::string set = NewSet();
  const std::string reports = ReportsOfAllocationFaults(
      [&] { (void)parseArrayElements(context(), "enum", array, set.c_str()); });
  EXPECT_NE(reports.find(ArrayReport(462, "Get JSON simple string fail")), std::string::npos);
}

TEST_F(SchemaArray, TypeListIsOneFieldAndNoSet) {
  EXPECT_EQ(Parse("type", R"(["string", 5, {}, "null", null])").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n  type = stringnull\n");
}

TEST_F(SchemaArray, EmptyTypeListWritesNothing) {
  EXPECT_EQ(Parse("type", "[]").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n");
}

TEST_F(SchemaArray, TypeListOf1023CharactersIsTheLongest) {
  const std::string half(512, 't');
  const std::string rest(511, 'u');
  EXPECT_EQ(Parse("type", "[" + Quoted(half) + ", " + Quoted(rest) + "]").result, 0);
  EXPECT_EQ(Field("H0", "type"), half + rest);
  const Outcome outcome = Parse("type", "[" + Quoted(half) + ", " + Quoted(half) + "]");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SchemaReport("type field: " + half) +
                                SchemaReport("String is too long to store in Redis ...") +
                                ArrayReport(532, "parsing field: type failed !!!"));
}

TEST_F(SchemaArray, NullArgumentsAreReported) {
  json_t* const array = Value("[]");
  const std::string report = ArrayReport(513, "Arguement is NULL pointer");
  EXPECT_EQ(Observe([&] { return parseArray(nullptr, "enum", array, Root()); }).errors, report);
  EXPECT_EQ(Observe([&] { return parseArray(context(), nullptr, array, Root()); }).errors, report);
  EXPECT_EQ(Observe([&] { return parseArray(context(), "enum", nullptr, Root()); }).errors, report);
  const Outcome outcome = Observe([&] { return parseArray(context(), "enum", array, nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(SchemaArray, MustBeAnArray) {
  for (const char* name : {"enum", "type"}) {
    for (const char* value : {"{}", "\"x\"", "1", "null"}) {
      SCOPED_TRACE(value);
      const Outcome outcome = Parse(name, value);
      EXPECT_EQ(outcome.result, 1);
      EXPECT_EQ(outcome.errors, ArrayReport(519, "Input argument is not json array type!"));
    }
  }
}

TEST_F(SchemaArray, FailsWhenNoSetCanBeMade) {
  FillObjectTable();
  const Outcome outcome = Parse("enum", "[]");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, FullTable() + ArrayReport(543, "Failed to create new set!!!"));
}

TEST_F(SchemaArray, FailsWhenItsParentCannotNameIt) {
  const std::string name(1024, 'n');
  const Outcome outcome = Parse(name, R"(["x"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TooLongPair(name, Long("S0")) + ArrayReport(552, "Redis hash add pair"));
  EXPECT_EQ(Members("S0"), "set S0\n  (dummy)\n");
}

TEST_F(SchemaArray, FailsWhenTheConnectionIsLost) {
  ScriptedServer server;
  WillCreateSet(server);
  WillWritePair(server);
  WillAddMember(server);
  server.WillClose();
  context()->connection = server.ctx();
  const Outcome outcome = Parse("enum", R"(["x", "y", "z"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!") +
                                ArrayReport(562, "parseArrayElements fail"));
}

TEST_F(SchemaArray, ObjectWithoutASetIsReportedAndSkipped) {
  json_t* const array = Value(R"([{}, ["x"], null])");
  const Outcome outcome =
      Observe([&] { return parseArrayElements(context(), "enum", array, nullptr); });
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, ArrayReport(449, "EXCEPTION!!!") + kNestedArray);
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(SchemaArray, SimpleElementWithoutASetFails) {
  json_t* const array = Value(R"(["x"])");
  const Outcome outcome =
      Observe([&] { return parseArrayElements(context(), "enum", array, nullptr); });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!"));
}

// ---- The variant for arrays of objects

class ArrayOfObjects : public ParserTest {
 protected:
  Outcome Parse(const std::string& text) {
    json_t* const array = Value(text);
    const std::string set = NewSet();
    return Observe([&] { return parseSomeOfArrayField(context(), "anyOf", array, set.c_str()); });
  }
};

TEST_F(ArrayOfObjects, PutsThemIntoTheGivenSet) {
  EXPECT_EQ(Parse(R"([{"type": "null"}, {"$ref": "#/definitions/A"}])").result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
hash H1
  DummyKey = DummyValue
  type = null
set S0
  #/definitions/A
  (dummy)
  H1
)");
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/INDEX_1"), 0);
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(ArrayOfObjects, ReportsAndSkipsOtherElements) {
  const std::string report =
      ArrayReport(389, "((((( element is not object of anyOf array !!! )))))");
  const Outcome outcome = Parse(R"(["x", {}, 5, [], null, 1.5, true])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, report + report + report + report + report + report);
  EXPECT_EQ(Ask({"SCARD", Long("S0")}), "2");
}

TEST_F(ArrayOfObjects, BrokenObjectDoesNotFailTheArray) {
  const Outcome outcome = Parse(R"([{"$ref": "bad"}, {}])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", Long("S0"), Long("H1")}), "1");
}

TEST_F(ArrayOfObjects, BrokenObjectThatLeftTheRouteDeeperFailsTheArray) {
  const Outcome outcome = Parse(R"([{"not": {"$ref": 5}}, {}])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_TRUE(outcome.errors.ends_with(SchemaReport("Spot name not match!!")));
}

TEST_F(ArrayOfObjects, MustNotBeEmpty) {
  const Outcome outcome = Parse("[]");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(380, "NO ELEMENTS in array ..."));
}

TEST_F(ArrayOfObjects, MustBeAnArray) {
  json_t* const object = Value("{}");
  const std::string report = ArrayReport(374, "[anyOf] field should be array type! [set]");
  EXPECT_EQ(
      Observe([&] { return parseSomeOfArrayField(context(), "anyOf", object, "set"); }).errors,
      report);
  const Outcome outcome =
      Observe([&] { return parseSomeOfArrayField(context(), "anyOf", nullptr, "set"); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

}  // namespace
