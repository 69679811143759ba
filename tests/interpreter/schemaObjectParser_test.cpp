// SPDX-License-Identifier: MIT
//
// The walks over root objects and schema objects. Member maps and references have files of their
// own.
#include <gtest/gtest.h>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ArrayReport;
using zephlane::test::ExtensionReport;
using zephlane::test::FullTable;
using zephlane::test::NameTooLongForTheRoute;
using zephlane::test::NoSchemaFile;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::Quoted;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::ScriptedServer;
using zephlane::test::Taken;
using zephlane::test::TooLongPair;
using zephlane::test::TreeReport;
using zephlane::test::WillCreateHash;
using zephlane::test::WillRefusePair;
using zephlane::test::WillWritePair;

// ---- Root object

class RootObject : public ParserTest {};

TEST_F(RootObject, EmptySchemaHoldsOnlyTheExtensionsAndJoinsTheInstances) {
  const Outcome outcome = ParseRoot("{}");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  instanceCollection = S0
  typeId = H0
set ZephlaneSchemaInstances
  H0
)");
}

TEST_F(RootObject, StoresKeywordsAndLeavesAnnotationsOut) {
  EXPECT_EQ(ParseRoot(R"({"$schema": "draft-04", "title": "Thing", "type": "object",
                          "description": "d", "longDescription": "l", "copyright": ["c"],
                          "additionalProperties": false, "minimum": -3, "Title": "t"})")
                .errors,
            "");
  EXPECT_EQ(Tree(), R"(hash H0
  $schema = draft-04
  DummyKey = DummyValue
  additionalProperties = false
  instanceCollection = S0
  minimum = -3
  title = Thing
  type = object
  typeId = H0
set ZephlaneSchemaInstances
  H0
)");
}

TEST_F(RootObject, GrowsATreeOfHashesAndSets) {
  EXPECT_EQ(ParseRoot(R"({"title": "Thing", "type": "object",
                          "properties": {"Id": {"type": "string"},
                                         "Status": {"$ref": "#/definitions/Status"}},
                          "required": ["Id"],
                          "definitions": {"Status": {"type": ["string", "null"]}}})")
                .result,
            0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  Id = H1
  Status = H0
  definitions = H2
  instanceCollection = S1
  required = S0
  title = Thing
  type = object
  typeId = H0
hash H1
  DummyKey = DummyValue
  type = string
hash H2
  DummyKey = DummyValue
  Status = H3
hash H3
  DummyKey = DummyValue
  type = stringnull
set S0
  (dummy)
  Id
set ZephlaneSchemaInstances
  H0
)");
}

TEST_F(RootObject, SkipsRealsAndNullsSilently) {
  EXPECT_EQ(ParseRoot(R"({"title": null, "maximum": 1.5, "type": "object"})").errors, "");
  EXPECT_EQ(Field("H0", "title"), "(nil)");
  EXPECT_EQ(Field("H0", "maximum"), "(nil)");
  EXPECT_EQ(Field("H0", "type"), "object");
}

TEST_F(RootObject, LeavesExtensionKeywordsToTheExtensionParser) {
  const Outcome outcome =
      ParseRoot(R"({"typeId": {"type": "string"}, "instanceCollection": ["x"], "ttl": 60})");
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  instanceCollection = S0
  ttl = 60
  typeId = H0
set ZephlaneSchemaInstances
  H0
)");
}

TEST_F(RootObject, ReferenceAtTheTopStaysAsText) {
  EXPECT_EQ(ParseRoot(R"({"$ref": "#/definitions/Thing"})").result, 0);
  EXPECT_EQ(Field("H0", "$ref"), "#/definitions/Thing");
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 0);
}

TEST_F(RootObject, EmptyTextIsNotWritten) {
  EXPECT_EQ(ParseRoot(R"({"title": "", "type": "object"})").result, 0);
  EXPECT_EQ(Field("H0", "title"), "(nil)");
  EXPECT_EQ(Field("H0", "type"), "object");
}

TEST_F(RootObject, TextOf1023CharactersIsTheLongest) {
  const std::string text(1023, 't');
  EXPECT_EQ(ParseRoot("{\"title\": " + Quoted(text) + "}").result, 0);
  EXPECT_EQ(Field("H0", "title"), text);
}

TEST_F(RootObject, LongerTextFailsBeforeTheSchemaJoinsTheInstances) {
  const std::string text(1024, 't');
  const Outcome outcome = ParseRoot("{\"title\": " + Quoted(text) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair("title", text) + ObjectReport(903, "Redis hash add pair"));
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n");
}

TEST_F(RootObject, ReportsTextThatMemoryIsOutFor) {
  context()->document = Value(R"({"title": "Thing"})");
  const std::string reports =
      ReportsOfAllocationFaults([this] { (void)parseRootObject(context(), context()->document); });
  EXPECT_NE(reports.find(ObjectReport(894, "Get JSON simple string fail")), std::string::npos);
}

TEST_F(RootObject, FailedChildLeavesTheRouteWhereItFailed) {
  const Outcome outcome = ParseRoot(R"({"not": {"$ref": 5}, "title": "Thing"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!"));
  EXPECT_EQ(Route(), "Thing.json#/not");
  EXPECT_EQ(Field("H0", "title"), "(nil)");
}

TEST_F(RootObject, FailedArrayFails) {
  const Outcome outcome = ParseRoot(R"({"enum": [""], "title": "Thing"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!") +
                                ArrayReport(562, "parseArrayElements fail"));
}

TEST_F(RootObject, FailedExtensionFailsBeforeTheSchemaJoinsTheInstances) {
  const Outcome outcome = ParseRoot(R"({"ttl": "60"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(638, "TTL is not integer type.") +
                                ExtensionReport(821, "ttl") +
                                ObjectReport(921, "Zephlane extensions!"));
  EXPECT_EQ(Ask({"EXISTS", "ZephlaneSchemaInstances"}), "0");
}

TEST_F(RootObject, FailsWhenTheSchemaCannotJoinTheInstances) {
  ASSERT_EQ(Ask({"SET", "ZephlaneSchemaInstances", "text"}), "OK");
  const Outcome outcome = ParseRoot("{}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TreeReport("Insert entry to \"ZephlaneSchemaInstances\"  failed !!!!"));
  EXPECT_EQ(Field("H0", "typeId"), "H0");
}

TEST_F(RootObject, RouteIsBackAtTheRootAfterwards) {
  EXPECT_EQ(ParseRoot(R"({"not": {"items": {"enum": ["x", {}]}}, "links": [{}]})").result, 0);
  EXPECT_EQ(Route(), "Thing.json#");
}

TEST_F(RootObject, MessagePropertyIsLeftToTheExtensionParser) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  EXPECT_EQ(ParseRoot(R"({"Messages": {"type": "object", "values": []}})").result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  Messages = S1
  instanceCollection = S0
  typeId = H0
set S1
  (dummy)
set ZephlaneSchemaInstances
  H0
)");
}

// ---- A keyword or property whose value is an object

class SchemaObject : public ParserTest {};

TEST_F(SchemaObject, BecomesAHashThatItsParentNames) {
  const Outcome outcome =
      ParseMember("not", R"({"type": "string", "maxLength": 5, "readonly": true, "text": "x"})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  not = H1
hash H1
  DummyKey = DummyValue
  maxLength = 5
  readonly = true
  type = string
)");
}

TEST_F(SchemaObject, SendsTheCommandsOfAHashThenOfItsFields) {
  ScriptedServer server;
  WillCreateHash(server);
  WillWritePair(server);
  WillWritePair(server);
  WillWritePair(server);
  context()->connection = server.ctx();
  EXPECT_EQ(ParseMember("not", R"({"oneOf": true, "type": "string"})").result, 0);
  EXPECT_EQ(Short(server.Commands()),
            "HGET H1-TTL TtlSec\n"
            "DEL H1\n"
            "HMSET H1 DummyKey DummyValue\n"
            "HMSET H1 type array\n"
            "HMSET H0 not H1\n"
            "HMSET H1 oneOf true\n"
            "HMSET H1 type string\n");
}

TEST_F(SchemaObject, EmptyObjectIsAHashWithTheDummyPair) {
  EXPECT_EQ(ParseMember("items", "{}").result, 0);
  EXPECT_EQ(Tree(),
            "hash H0\n  DummyKey = DummyValue\n  items = H1\nhash H1\n  DummyKey = DummyValue\n");
}

TEST_F(SchemaObject, StoresExtensionKeywordsBelowTheRootLikeOthers) {
  EXPECT_EQ(ParseMember("not", R"({"typeId": "a", "instanceCollection": "b", "ttl": 60})").result,
            0);
  EXPECT_EQ(Field("H1", "typeId"), "a");
  EXPECT_EQ(Field("H1", "instanceCollection"), "b");
  EXPECT_EQ(Field("H1", "ttl"), "60");
}

TEST_F(SchemaObject, RealOrNullIsANoticeAndNotStored) {
  const Outcome outcome =
      ParseMember("not", R"({"maximum": 1.5, "default": null, "type": "number"})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, ObjectReport(660, "((((( Field name: maximum )))))") +
                                ObjectReport(660, "((((( Field name: default )))))"));
  EXPECT_EQ(Ask({"HLEN", Long("H1")}), "2");
  EXPECT_EQ(Field("H1", "type"), "number");
}

TEST_F(SchemaObject, RealAnnotationIsNotEvenANotice) {
  EXPECT_EQ(ParseMember("not", R"({"weight": 1.5, "comment": null})").errors, "");
}

TEST_F(SchemaObject, IntegersKeepTheirLow32Bits) {
  EXPECT_EQ(ParseMember("not", R"({"maximum": 4294967297, "minimum": -2147483649,
                                   "maxLength": 2147483648, "minLength": 2147483647,
                                   "ttl": -9223372036854775808})")
                .result,
            0);
  EXPECT_EQ(Field("H1", "maximum"), "1");
  EXPECT_EQ(Field("H1", "minimum"), "2147483647");
  EXPECT_EQ(Field("H1", "maxLength"), "-2147483648");
  EXPECT_EQ(Field("H1", "minLength"), "2147483647");
  EXPECT_EQ(Field("H1", "ttl"), "0");
}

TEST_F(SchemaObject, BooleansAreStoredAsWords) {
  EXPECT_EQ(ParseMember("not", R"({"readonly": true, "uniqueItems": false})").result, 0);
  EXPECT_EQ(Field("H1", "readonly"), "true");
  EXPECT_EQ(Field("H1", "uniqueItems"), "false");
}

TEST_F(SchemaObject, TypeListIsJoined) {
  EXPECT_EQ(ParseMember("not", R"({"type": ["string", 5, "null"]})").result, 0);
  EXPECT_EQ(Field("H1", "type"), "stringnull");
}

TEST_F(SchemaObject, MemberWithoutANameIsAKeywordWhileNoMessagePropertyIsConfigured) {
  EXPECT_EQ(ParseMember("not", R"({"": "text"})").result, 0);
  EXPECT_EQ(Field("H1", ""), "text");
}

TEST_F(SchemaObject, ConfiguredMessagePropertyIsAKeyword) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  EXPECT_EQ(ParseMember("not", R"({"Messages": {"type": "object"}, "": "text"})").result, 0);
  EXPECT_EQ(Field("H1", "Messages"), "H2");
  EXPECT_EQ(Field("H1", ""), "(nil)");
}

TEST_F(SchemaObject, CombinatorTypesItAsAnArray) {
  for (const char* combinator : {"anyOf", "oneOf", "allOf"}) {
    SCOPED_TRACE(combinator);
    json_t* const object = Value("{" + Quoted(combinator) + R"(: [{"type": "null"}]})");
    const std::string id = Taken(generateRedisDataObjectID(1));
    EXPECT_EQ(Observe([&] { return parseObject(context(), "not", object, Root()); }).result, 0);
    EXPECT_EQ(Ask({"HGET", id, "type"}), "array");
    EXPECT_EQ(Ask({"TYPE", Ask({"HGET", id, combinator})}), "set");
  }
}

TEST_F(SchemaObject, CombinatorOfAnyKindTypesItAsAnArray) {
  EXPECT_EQ(ParseMember("not", R"({"allOf": null})").result, 0);
  EXPECT_EQ(Field("H1", "type"), "array");
}

TEST_F(SchemaObject, OwnTypeReplacesTheOneOfTheCombinator) {
  EXPECT_EQ(ParseMember("not", R"({"type": "object", "oneOf": []})").result, 0);
  EXPECT_EQ(Field("H1", "type"), "object");
}

TEST_F(SchemaObject, AlternativesBecomeASet) {
  EXPECT_EQ(
      ParseMember("items", R"({"anyOf": [{"$ref": "#/definitions/A"}, {"type": "null"}]})").result,
      0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  items = H1
hash H1
  DummyKey = DummyValue
  anyOf = S0
  type = array
hash H2
  DummyKey = DummyValue
  type = null
set S0
  #/definitions/A
  (dummy)
  H2
)");
}

TEST_F(SchemaObject, ReferenceLosesTheOtherMembers) {
  EXPECT_EQ(ParseMember("items", R"({"type": "object", "$ref": "#", "oneOf": [{}], "title": "x"})")
                .result,
            0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n  items = H0\n");
}

TEST_F(SchemaObject, ReferenceThatIsNoTextFails) {
  for (const char* reference : {"5", "1.5", "null", "true", "{}", "[]"}) {
    SCOPED_TRACE(reference);
    const Outcome outcome = ParseMember("items", std::string("{\"$ref\": ") + reference + "}");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ObjectReport(721, "$ref string is NULL !!!"));
  }
}

TEST_F(SchemaObject, ReferenceIsRecordedUnderItsRoute) {
  EXPECT_EQ(ParseRoot(R"({"properties": {"Links": {"properties": {"Oem":
                          {"items": {"$ref": "#/definitions/Oem"}}}}}})")
                .result,
            0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/Links/Oem/items"), 0);
}

TEST_F(SchemaObject, NullArgumentsAreReported) {
  json_t* const object = Value("{}");
  const std::string report = ObjectReport(697, "NULL pointer !!!");
  EXPECT_EQ(Observe([&] { return parseObject(nullptr, "not", object, Root()); }).errors, report);
  EXPECT_EQ(Observe([&] { return parseObject(context(), nullptr, object, Root()); }).errors,
            report);
  const Outcome outcome = Observe([&] { return parseObject(context(), "not", nullptr, Root()); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(SchemaObject, FailsWhenNoHashCanBeMade) {
  FillObjectTable();
  const Outcome outcome = ParseMember("not", "{}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            FullTable() + ObjectReport(740, "Failed to creat root object hash !!!"));
  EXPECT_EQ(Field("H0", "not"), "(nil)");
}

TEST_F(SchemaObject, FailsWhenTheTypeOfACombinatorIsNotWritten) {
  ScriptedServer server;
  WillCreateHash(server);
  WillRefusePair(server);
  context()->connection = server.ctx();
  const Outcome outcome = ParseMember("not", R"({"anyOf": []})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ObjectReport(753, "Failed to insert <type, array> to hash " + Long("H1") + " !!!"));
}

TEST_F(SchemaObject, FailsWhenItsParentCannotNameIt) {
  const std::string name(1024, 'n');
  const Outcome outcome = ParseMember(name, R"({"type": "string"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TooLongPair(name, Long("H1")) + ObjectReport(781, "Redis hash add pair"));
  EXPECT_EQ(Field("H1", "type"), "(nil)");
}

TEST_F(SchemaObject, TextOf1024CharactersFailsWithATrail) {
  const std::string text(1024, 't');
  const Outcome outcome = ParseMember("not", "{\"title\": " + Quoted(text) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair("title", text) + ObjectReport(651, "Redis hash add pair") +
                                ObjectReport(793, "---> parseObjectElements fail !!!!"));
  EXPECT_EQ(Field("H0", "not"), "H1");
}

TEST_F(SchemaObject, ReportsTextThatMemoryIsOutFor) {
  json_t* const object = Value(R"({"title": "Thing"})");
  const std::string reports =
      ReportsOfAllocationFaults([&] { (void)parseObjectElements(context(), Root(), object); });
  EXPECT_NE(reports.find(ObjectReport(644, "Get JSON simple string fail")), std::string::npos);
}

TEST_F(SchemaObject, FailedArrayFailsAndLeavesTheRoute) {
  const Outcome outcome = ParseMember("not", R"({"enum": [""], "title": "x"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ArrayReport(474, "---> create set table faile !!!!") +
                                ArrayReport(562, "parseArrayElements fail") +
                                ObjectReport(793, "---> parseObjectElements fail !!!!"));
  EXPECT_EQ(Route(), "Thing.json#/enum/INDEX_0");
  EXPECT_EQ(Field("H1", "title"), "(nil)");
}

TEST_F(SchemaObject, FailurePrintsATrailFromLeafToRoot) {
  const Outcome outcome = ParseMember("not", R"({"items": {"not": {"$ref": "bad"}}})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, NoSchemaFile("bad") +
                                ObjectReport(793, "---> parseObjectElements fail !!!!") +
                                ObjectReport(793, "---> parseObjectElements fail !!!!"));
}

TEST_F(SchemaObject, NameOf100CharactersFailsWhenItIsTakenOffTheRoute) {
  const std::string name(100, 'm');
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "%s", name.c_str());
  for (const char* value : {"{}", "[]"}) {
    SCOPED_TRACE(value);
    const Outcome outcome = ParseMember("not", "{" + Quoted(name) + ": " + value + "}");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors,
              NameTooLongForTheRoute() + ObjectReport(793, "---> parseObjectElements fail !!!!"));
  }
  EXPECT_EQ(Field("H1", name), "H2");
}

TEST_F(SchemaObject, DeepNestingBecomesAChainOfHashes) {
  std::string text = R"({"type": "string"})";
  for (int i = 0; i < 300; ++i) { text = "{\"not\": " + text + "}"; }
  EXPECT_EQ(ParseMember("not", text).result, 0);
  EXPECT_EQ(Field("H300", "not"), "H301");
  EXPECT_EQ(Field("H301", "type"), "string");
  EXPECT_EQ(Route(), "Thing.json#");
}

// ---- The message property below the root

class NestedMessages : public ParserTest {
 protected:
  void SetUp() override {
    ParserTest::SetUp();
    (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "RuxoMessage");
  }
};

TEST_F(NestedMessages, LeaveTheirOwnHashUnlinked) {
  EXPECT_EQ(ParseMember("RuxoMessage", R"({"type": "object", "values": []})").result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  RuxoMessage = S0
hash H1
  DummyKey = DummyValue
set S0
  (dummy)
)");
}

TEST_F(NestedMessages, AreNamedAsConfiguredWhateverNameLedThere) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  const Outcome outcome =
      ParseMember("properties", R"({"RuxoMessage": {"type": "object", "values": []}})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(Field("H0", "Messages"), "S0");
  EXPECT_EQ(Field("H0", "RuxoMessage"), "(nil)");
}

TEST_F(NestedMessages, AreOrdinaryUnderAnotherConfiguredName) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  EXPECT_EQ(ParseMember("Messages", R"({"type": "object", "values": []})").result, 0);
  EXPECT_EQ(Field("H0", "Messages"), "H1");
  EXPECT_EQ(Field("H1", "type"), "object");
}

TEST_F(NestedMessages, FailureAddsALine) {
  const Outcome outcome = ParseMember("RuxoMessage", R"({"values": []})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(562, "Object has no type!") + ObjectReport(767, "RuxoMessage"));
}

TEST_F(NestedMessages, AReferenceComesBeforeTheMessages) {
  EXPECT_EQ(ParseMember("RuxoMessage", R"({"$ref": "#"})").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n  RuxoMessage = H0\n");
}

}  // namespace
