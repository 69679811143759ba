// SPDX-License-Identifier: MIT
//
// The walks over root objects, schema objects and member maps. References have a file of their own.
#include <gtest/gtest.h>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ArrayReport;
using zephlane::test::ExtensionReport;
using zephlane::test::NameTooLongForTheRoute;
using zephlane::test::NoSchemaFile;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::SchemaReport;
using zephlane::test::ScriptedServer;
using zephlane::test::Taken;
using zephlane::test::TooLongPair;
using zephlane::test::TreeReport;
using zephlane::test::WillCreateHash;
using zephlane::test::WillRefusePair;
using zephlane::test::WillWritePair;

const std::string kFullTable = TreeReport("Hash object collection table is out of room !");

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

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
  EXPECT_EQ(outcome.errors, kFullTable + ObjectReport(740, "Failed to creat root object hash !!!"));
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
  EXPECT_EQ(outcome.errors, kFullTable + ObjectReport(406, "Failed to creat root object hash !!!"));
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
  EXPECT_EQ(outcome.errors, kFullTable + ObjectReport(534, "Failed to creat root object hash !!!"));
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
