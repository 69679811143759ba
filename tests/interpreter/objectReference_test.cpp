// SPDX-License-Identifier: MIT
//
// What a reference stores at once, what it records for linking, and which files it interprets.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ExtensionReport;
using zephlane::test::LinkingReport;
using zephlane::test::NoSchemaFile;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::PathReport;
using zephlane::test::SchemaReport;
using zephlane::test::ScriptedServer;
using zephlane::test::TooLongPair;
using zephlane::test::WillAddMember;
using zephlane::test::WillRefusePair;
using zephlane::test::WillWritePair;

constexpr char kRoute[] = "Thing.json#/A";

std::string Placeholder(int line, const std::string& field, const std::string& value) {
  return ObjectReport(line, "<" + field + " : " + value + "> insert pair into hash failed!!");
}

std::string SetFailed(int line) {
  return ObjectReport(line, "---> create set table failed !!!!");
}

// A reference of `length` characters whose pointer is short: only what follows the last '#' counts.
std::string ReferenceOfLength(std::size_t length) {
  const std::string begin = "Thing.json#/";
  const std::string end = "#/b";
  return begin + std::string(length - begin.size() - end.size(), 'a') + end;
}

class ObjectReference : public ParserTest {
 protected:
  Outcome StoreAsField(const std::string& reference, const std::string& field = "A") {
    json_t* const text = Text(reference);
    return Observe(
        [&] { return parseObjectWithRefField(context(), kRoute, field.c_str(), text, Root()); });
  }
  Outcome StoreAsMember(const std::string& reference, const std::string& set) {
    json_t* const text = Text(reference);
    return Observe(
        [&] { return parseObjectWithRefField(context(), kRoute, nullptr, text, set.c_str()); });
  }
  static bool IsRecorded() {
    return schemaRefListSearchEntry(kRoute) == 0;
  }
};

TEST_F(ObjectReference, NullArgumentsAreReported) {
  json_t* const text = Text("#");
  const std::string report = ObjectReport(53, "NULL pointer !!!");
  EXPECT_EQ(
      Observe([&] { return parseObjectWithRefField(nullptr, kRoute, "A", text, Root()); }).errors,
      report);
  const Outcome outcome =
      Observe([&] { return parseObjectWithRefField(context(), kRoute, "A", nullptr, Root()); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(ObjectReference, MustBeText) {
  for (const char* value : {"5", "1.5", "null", "true", "{}", "[]"}) {
    SCOPED_TRACE(value);
    json_t* const reference = Value(value);
    const Outcome outcome =
        Observe([&] { return parseObjectWithRefField(context(), kRoute, "A", reference, Root()); });
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ObjectReport(115, "Reference should be string"));
  }
}

TEST_F(ObjectReference, ThatCannotBeSplitFailsWithTheReportsOfTheSplit) {
  const Outcome outcome = StoreAsField("Thing.txt");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, NoSchemaFile("Thing.txt"));
  EXPECT_FALSE(IsRecorded());
  EXPECT_EQ(Field("H0", "A"), "(nil)");
}

// ---- To the schema itself

TEST_F(ObjectReference, ToTheWholeSchemaIsItsRootHashAndNotRecorded) {
  EXPECT_EQ(StoreAsField("#").result, 0);
  EXPECT_EQ(Field("H0", "A"), "H0");
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, ToTheWholeSchemaAsAMemberIsItsRootHash) {
  const std::string set = NewSet();
  EXPECT_EQ(StoreAsMember("#", set).result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", set, Root()}), "1");
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, ToTheWholeSchemaFailsWhenItIsNotRegistered) {
  NameSchema("Other.json");
  const Outcome outcome = StoreAsField("#");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(73, "---> getSchemaHashID(Other.json) fail !!!!"));
}

TEST_F(ObjectReference, ToTheWholeSchemaFailsWhenTheFieldIsNotWritten) {
  const std::string field(1024, 'f');
  const Outcome outcome = StoreAsField("#", field);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair(field, Root()) +
                                ObjectReport(96, "Failed to insert <" + field + ", " + Root() +
                                                     "> to hash " + Root() + " !!!"));
}

TEST_F(ObjectReference, ToTheWholeSchemaFailsWhenTheSetTakesNoMember) {
  const Outcome outcome = StoreAsMember("#", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SetFailed(85));
}

TEST_F(ObjectReference, ToItsOwnFileNameIsTheRootHashToo) {
  for (const char* reference : {"Thing.json", "Thing.json#"}) {
    SCOPED_TRACE(reference);
    ASSERT_EQ(Ask({"HSET", Root(), "A", ""}), std::strchr(reference, '#') ? "0" : "1");
    EXPECT_EQ(StoreAsField(reference).result, 0);
    EXPECT_EQ(Field("H0", "A"), "H0");
  }
  EXPECT_FALSE(IsRecorded());
}

// ---- To a definition

TEST_F(ObjectReference, ToALocalDefinitionIsTheTextAndThenTheRootHashUntilLinking) {
  ScriptedServer server;
  WillWritePair(server);
  WillWritePair(server);
  context()->connection = server.ctx();
  EXPECT_EQ(StoreAsField("#/definitions/B").result, 0);
  EXPECT_EQ(Short(server.Commands()), "HMSET H0 A #/definitions/B\nHMSET H0 A H0\n");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, ToALocalDefinitionAsAMemberIsTheText) {
  ScriptedServer server;
  WillAddMember(server);
  context()->connection = server.ctx();
  EXPECT_EQ(StoreAsMember("#/definitions/B", "set").result, 0);
  EXPECT_EQ(server.Commands(), "SADD set #/definitions/B\n");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, ToADefinitionOfAnotherFileInterpretsThatFile) {
  WriteSchema("Other.json", R"({"title": "Other"})");
  EXPECT_EQ(StoreAsField("Other.json#/definitions/B").result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  A = H1
  DummyKey = DummyValue
hash H1
  DummyKey = DummyValue
  instanceCollection = S0
  title = Other
  typeId = H1
set ZephlaneSchemaInstances
  H1
)");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, ToADefinitionOfAnotherFileAsAMemberDoesNotInterpretThatFile) {
  WriteSchema("Other.json", "{}");
  EXPECT_EQ(StoreAsMember("Other.json#/definitions/B", NewSet()).result, 0);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
set S0
  (dummy)
  Other.json#/definitions/B
)");
  EXPECT_EQ(isReferenceSchemaHasInternalized("Other.json"), 0);
}

TEST_F(ObjectReference, ToADefinitionOfAMissingFileFailsAndKeepsTheText) {
  const Outcome outcome = StoreAsField("Missing.json#/definitions/B");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SchemaReport("Missing.json: not such schema file") +
                                "Failed to open schema file at Missing.json !!!\n" +
                                ObjectReport(192, "Failed to parse reference schema !"));
  EXPECT_EQ(Field("H0", "A"), "Missing.json#/definitions/B");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, WithoutASchemaNameOnEitherSideKeepsTheText) {
  NameSchema("");
  EXPECT_EQ(StoreAsField("#/definitions/B").result, 0);
  EXPECT_EQ(Field("H0", "A"), "#/definitions/B");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, WhosePartBeforeThePointerNamesNoFileIsLocal) {
  EXPECT_EQ(StoreAsField("other#/definitions/B.json").result, 0);
  EXPECT_EQ(Field("H0", "A"), "H0");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, WithoutANameAndWithoutAPointerStoresNothing) {
  const Outcome outcome = StoreAsField("other#/B.json#C");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Field("H0", "A"), "(nil)");
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, WhosePointerHasNoSlashIsToTheWholeFile) {
  EXPECT_EQ(StoreAsField("Thing.json#/definitions#B").result, 0);
  EXPECT_EQ(Field("H0", "A"), "H0");
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, FromASchemaWhoseNameFillsItsBufferFails) {
  std::memset(context()->resourcePath.schemaName, 's', sizeof(ResourcePath::schemaName));
  const Outcome outcome = StoreAsField("#/definitions/B");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ObjectReport(131, "Schema name: " + std::string(200, 's') +
                                                  "\n is greater than string buffer ..."));
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, FromASchemaNameOf199CharactersIsRecorded) {
  NameSchema(std::string(194, 's') + ".json");
  ASSERT_EQ(schemaReferTableInsertEntry(context()->resourcePath.schemaName, Root()), 0);
  EXPECT_EQ(StoreAsField("#/definitions/B").result, 0);
  EXPECT_EQ(Field("H0", "A"), "H0");
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, ThePlaceholderOfAFieldThatIsNotWrittenFails) {
  ScriptedServer server;
  WillRefusePair(server);
  context()->connection = server.ctx();
  const Outcome outcome = StoreAsField("#/definitions/B");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, Placeholder(153, "A", "#/definitions/B"));
  EXPECT_TRUE(IsRecorded());
}

TEST_F(ObjectReference, ThePlaceholderOfASetThatTakesNoMemberFails) {
  const Outcome outcome = StoreAsMember("#/definitions/B", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SetFailed(165));
}

// ---- Limits of the reference list

TEST_F(ObjectReference, Number3600IsTheLast) {
  FillReferences(0, 3600, 3599);
  EXPECT_EQ(StoreAsField("#/definitions/B").result, 0);
  EXPECT_EQ(schemaRefListSearchEntry(kRoute), 3599);
  const Outcome outcome = StoreAsField("#/definitions/C", "C");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(744, "listSlotIdx == -1") +
                ObjectReport(145, "Failed to insert entry into Schema Reference List !!!"));
  EXPECT_EQ(Field("H0", "C"), "(nil)");
}

TEST_F(ObjectReference, ToWholeFilesNeedsNoRoomInTheList) {
  FillReferences(0, 3600, 3600);
  EXPECT_EQ(StoreAsField("Thing.json").result, 0);
  EXPECT_EQ(StoreAsField("#").result, 0);
}

TEST_F(ObjectReference, TextOf1023CharactersIsTheLongest) {
  const std::string longest = ReferenceOfLength(1023);
  const std::string set = NewSet();
  EXPECT_EQ(StoreAsMember(longest, set).result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", set, longest}), "1");
  const Outcome outcome = StoreAsMember(ReferenceOfLength(1024), set);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(765, "referPath buffer size!") +
                ObjectReport(145, "Failed to insert entry into Schema Reference List !!!"));
}

TEST_F(ObjectReference, FieldNameOf1023CharactersIsTheLongest) {
  const std::string longest(1023, 'f');
  EXPECT_EQ(StoreAsField("#/definitions/B", longest).result, 0);
  EXPECT_EQ(Field("H0", longest), "H0");
  const Outcome outcome = StoreAsField("#/definitions/B", longest + "f");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(755, "PropLocation buffer size!") +
                ObjectReport(145, "Failed to insert entry into Schema Reference List !!!"));
}

TEST_F(ObjectReference, RouteOf1023CharactersIsTheLongest) {
  json_t* const text = Text("#/definitions/B");
  const std::string longest(1023, 'r');
  EXPECT_EQ(parseObjectWithRefField(context(), longest.c_str(), "A", text, Root()), 0);
  EXPECT_EQ(schemaRefListSearchEntry(longest.c_str()), 0);
  const Outcome outcome = Observe([&] {
    return parseObjectWithRefField(context(), (longest + "r").c_str(), "A", text, Root());
  });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(765, "referPath buffer size!") +
                ObjectReport(145, "Failed to insert entry into Schema Reference List !!!"));
}

// ---- To another file

TEST_F(ObjectReference, ToAnotherFileIsItsRootHashAndNotRecorded) {
  WriteSchema("Other.json", R"({"title": "Other"})");
  EXPECT_EQ(StoreAsField("Other.json").result, 0);
  EXPECT_EQ(Field("H0", "A"), "H1");
  EXPECT_EQ(Field("H1", "title"), "Other");
  EXPECT_FALSE(IsRecorded());
}

TEST_F(ObjectReference, ToAnotherFileAsAMemberIsItsRootHash) {
  WriteSchema("Other.json", "{}");
  const std::string set = NewSet();
  EXPECT_EQ(StoreAsMember("Other.json#", set).result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", set, Long("H1")}), "1");
}

TEST_F(ObjectReference, ToAFileThatIsInterpretedAlreadyDoesNotReadItAgain) {
  ASSERT_EQ(schemaReferTableInsertEntry("Gone.json", "its root"), 0);
  EXPECT_EQ(StoreAsField("Gone.json").result, 0);
  EXPECT_EQ(Field("H0", "A"), "its root");
  const std::string set = NewSet();
  EXPECT_EQ(StoreAsMember("Gone.json", set).result, 0);
  EXPECT_EQ(Ask({"SISMEMBER", set, "its root"}), "1");
}

TEST_F(ObjectReference, ToAMetaSchemaReadsTheFileOfThatName) {
  WriteSchema("hyper-schema", R"({"title": "meta"})");
  EXPECT_EQ(StoreAsField("hyper-schema#").result, 0);
  EXPECT_EQ(Field(Field("H0", "A"), "title"), "meta");
}

TEST_F(ObjectReference, ToAUrlOfAConfiguredLocationReadsTheFileInTheSchemaDirectory) {
  (void)std::snprintf(G_aSchemaUriInfoTable[0].uri, sizeof(SchemaUriInfo::uri), "http://a.b/c/");
  G_nSchemaURICount = 1;
  WriteSchema("Other.json", R"({"title": "Other"})");
  EXPECT_EQ(StoreAsField("http://a.b/c/Other.json#/definitions/B").result, 0);
  EXPECT_EQ(Field("H1", "title"), "Other");
  EXPECT_EQ(isReferenceSchemaHasInternalized("Other.json"), 1);
}

TEST_F(ObjectReference, ToAUrlOfAnotherLocationFails) {
  const Outcome outcome = StoreAsField("http://a.b/c/Other.json");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, PathReport("Resource prefix is invalid [http://a.b/c/]"));
}

TEST_F(ObjectReference, ToAMissingFileFails) {
  const Outcome outcome = StoreAsField("Missing.json");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SchemaReport("Missing.json: not such schema file") +
                                "Failed to open schema file at Missing.json !!!\n" +
                                ObjectReport(192, "Failed to parse reference schema !"));
  EXPECT_EQ(Field("H0", "A"), "(nil)");
}

TEST_F(ObjectReference, ToABrokenFileFails) {
  WriteSchema("Broken.json", R"({"ttl": true})");
  const Outcome outcome = StoreAsField("Broken.json");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(638, "TTL is not integer type.") +
                                ExtensionReport(821, "ttl") +
                                ObjectReport(921, "Zephlane extensions!") +
                                SchemaReport("Error while Parsing ...") +
                                ObjectReport(192, "Failed to parse reference schema !"));
}

TEST_F(ObjectReference, ToABrokenFileForTheSecondTimeFindsItsRootHash) {
  WriteSchema("Broken.json", R"({"ttl": true})");
  EXPECT_EQ(StoreAsField("Broken.json").result, 1);
  const Outcome outcome = StoreAsField("Broken.json");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Field("H0", "A"), "H1");
}

TEST_F(ObjectReference, ToANewFileFailsWhenTheFieldIsNotWritten) {
  WriteSchema("Other.json", "{}");
  const std::string field(1024, 'f');
  const Outcome outcome = StoreAsField("Other.json", field);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair(field, Long("H1")) + Placeholder(201, field, Long("H1")));
}

TEST_F(ObjectReference, ToANewFileFailsWhenTheSetTakesNoMember) {
  WriteSchema("Other.json", "{}");
  const Outcome outcome = StoreAsMember("Other.json", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SetFailed(213));
}

TEST_F(ObjectReference, ToAnInterpretedFileFailsWhenTheFieldIsNotWritten) {
  const std::string field(1024, 'f');
  const Outcome outcome = StoreAsField("Thing.json", field);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair(field, Root()) + Placeholder(241, field, Root()));
}

TEST_F(ObjectReference, ToAnInterpretedFileFailsWhenTheSetTakesNoMember) {
  const Outcome outcome = StoreAsMember("Thing.json", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SetFailed(254));
}

// ---- Between files

class ReferencesBetweenFiles : public ParserTest {};

TEST_F(ReferencesBetweenFiles, InterpretAFileInTheMiddleOfTheOneThatNamesIt) {
  WriteSchema("Other.json", R"({"title": "Other", "not": {}})");
  EXPECT_EQ(ParseRoot(R"({"properties": {"A": {}, "B": {"$ref": "Other.json"}, "C": {}}})").result,
            0);
  EXPECT_EQ(Field("H0", "A"), "H1");
  EXPECT_EQ(Field("H0", "B"), "H2");
  EXPECT_EQ(Field("H2", "not"), "H3");
  EXPECT_EQ(Field("H0", "C"), "H4");
}

TEST_F(ReferencesBetweenFiles, ThatNameEachOtherAreInterpretedOnce) {
  WriteSchema("Other.json", R"({"properties": {"Back": {"$ref": "Thing.json"},
                                               "Self": {"$ref": "Other.json"},
                                               "Same": {"$ref": "#"}}})");
  EXPECT_EQ(ParseRoot(R"({"properties": {"A": {"$ref": "Other.json"},
                                         "B": {"$ref": "Other.json"}}})")
                .result,
            0);
  EXPECT_EQ(Field("H0", "A"), "H1");
  EXPECT_EQ(Field("H0", "B"), "H1");
  EXPECT_EQ(Field("H1", "Back"), "H0");
  EXPECT_EQ(Field("H1", "Self"), "H1");
  EXPECT_EQ(Field("H1", "Same"), "H1");
  EXPECT_EQ(Ask({"SCARD", "ZephlaneSchemaInstances"}), "2");
}

TEST_F(ReferencesBetweenFiles, RecordRoutesUnderTheFileTheyStandIn) {
  WriteSchema("Other.json", R"({"items": {"$ref": "#/definitions/C"}})");
  EXPECT_EQ(ParseRoot(R"({"not": {"$ref": "Other.json"}})").result, 0);
  EXPECT_EQ(schemaRefListSearchEntry("Other.json#/items"), 0);
}

TEST_F(ReferencesBetweenFiles, ToAMissingFileFailTheWholeChain) {
  WriteSchema("Other.json", R"({"not": {"$ref": "Missing.json"}})");
  const Outcome outcome = ParseRoot(R"({"not": {"$ref": "Other.json"}})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, SchemaReport("Missing.json: not such schema file") +
                                "Failed to open schema file at Missing.json !!!\n" +
                                ObjectReport(192, "Failed to parse reference schema !") +
                                SchemaReport("Error while Parsing ...") +
                                ObjectReport(192, "Failed to parse reference schema !"));
  EXPECT_EQ(Ask({"EXISTS", "ZephlaneSchemaInstances"}), "0");
}

TEST_F(ReferencesBetweenFiles, ReachThroughAChainOfFiles) {
  for (int i = 0; i < 40; ++i) {
    WriteSchema("F" + std::to_string(i) + ".json",
                "{\"not\": {\"$ref\": \"F" + std::to_string(i + 1) + ".json\"}}");
  }
  WriteSchema("F40.json", R"({"title": "last"})");
  EXPECT_EQ(ParseRoot(R"({"not": {"$ref": "F0.json"}})").result, 0);
  EXPECT_EQ(Field("H41", "title"), "last");
  EXPECT_EQ(Ask({"SCARD", "ZephlaneSchemaInstances"}), "42");
}

// A route grows with every level, and a reference below too long a route is not recorded.
TEST_F(ReferencesBetweenFiles, BelowARouteOf1024CharactersFail) {
  std::string text = R"({"$ref": "#/definitions/A"})";
  for (int i = 0; i < 11; ++i) {
    text = "{\"definitions\": {\"" + std::string(90, 'm') + "\": " + text + "}}";
  }
  const Outcome outcome = ParseRoot(text);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_TRUE(outcome.errors.starts_with(
      LinkingReport(765, "referPath buffer size!") +
      ObjectReport(145, "Failed to insert entry into Schema Reference List !!!")));
}

}  // namespace
