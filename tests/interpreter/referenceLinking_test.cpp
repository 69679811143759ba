// SPDX-License-Identifier: MIT
//
// Placeholders replaced by what their references lead to. Any key serves as a hash of the tree
// here: linking follows values, whatever they look like.
#include "interpreter/referenceLinking.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "interpreter/parserTest.h"

namespace {

using zephlane::PlaceholderLocation;
using zephlane::ReferenceTarget;
using zephlane::Replacement;
using zephlane::test::ExtensionReport;
using zephlane::test::LinkingReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::ScriptedServer;

const std::string kSkipped = LinkingReport(894, "Can't get replace information ..... ");

std::string NotLinked(const std::string& path, const std::string& schema,
                      const std::string& pointer) {
  return LinkingReport(904, "Something wrong while getting replace data from reference path") +
         LinkingReport(905, "Reference path: " + path) +
         LinkingReport(906, "Schema name: " + schema) +
         LinkingReport(907, "Dest property: " + pointer);
}

class Linking : public ParserTest {
 protected:
  void Set(const std::string& hash, const std::string& field, const std::string& value) {
    ASSERT_EQ(Ask({"HSET", hash, field, value}), "1");
  }
  // The parts of a reference that stands in Thing.json.
  static ResourcePath Split(const std::string& reference) {
    ResourcePath path{};
    EXPECT_EQ(parseResourcePath(reference.c_str(), &path), 0);
    if (path.schemaName[0] == '\0') {
      (void)std::snprintf(path.schemaName, sizeof(path.schemaName), "Thing.json");
    }
    return path;
  }
  static void RecordSplit(const ResourcePath& path, const std::string& destination,
                          const char* field, const std::string& schema = "Thing.json") {
    ASSERT_EQ(schemaRefListInsertEntry(destination.c_str(), schema.c_str(), "route", field,
                                       path.path, &path, 0, 3600),
              0);
  }
  // Records a reference and stores its placeholder: in a field, or without one as a member.
  void RecordField(const std::string& reference, const std::string& hash,
                   const std::string& field) {
    RecordSplit(Split(reference), hash, field.c_str());
    Set(hash, field, reference);
  }
  void RecordMember(const std::string& reference, const std::string& set) {
    RecordSplit(Split(reference), set, nullptr);
    ASSERT_EQ(Ask({"SADD", set, reference}), "1");
  }
  Outcome Link() {
    return Observe([&] { return resourceReferenceLinking(context()); });
  }
  void ExpectLinksSilently() {
    const Outcome outcome = Link();
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.errors, "");
  }
  // Links one reference that is recorded for field "items" of hash "place".
  std::string Linked(const std::string& reference) {
    schemaReferenceListInit();
    (void)Ask({"DEL", "place"});
    RecordField(reference, "place", "items");
    errors_ = Link().errors;
    return Ask({"HGET", "place", "items"});
  }
  std::string errors_;
};

TEST_F(Linking, ReplacesTheValueOfAField) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", "hash A");
  RecordField("#/definitions/A", "place", "items");
  Set("place", "type", "array");
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"HGETALL", "place"}), "items\nhash A\ntype\narray");
}

TEST_F(Linking, ReplacesAMemberAndKeepsTheOthers) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", "hash A");
  ASSERT_EQ(Ask({"SADD", "place", "other"}), "1");
  RecordMember("#/definitions/A", "place");
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"SCARD", "place"}), "2");
  EXPECT_EQ(Ask({"SISMEMBER", "place", "hash A"}), "1");
  EXPECT_EQ(Ask({"SISMEMBER", "place", "other"}), "1");
}

TEST_F(Linking, SendsTheCommandsOfTheWalkThenOfTheReplacement) {
  RecordSplit(Split("#/definitions/A"), "place", "items");
  ScriptedServer server;
  server.WillReply("$4\r\ndefs\r\n");
  server.WillReply("$6\r\nhash A\r\n");
  server.WillReply("+hash\r\n");
  server.WillReply("+OK\r\n");
  context()->connection = server.ctx();
  ExpectLinksSilently();
  EXPECT_EQ(Short(server.Commands()),
            "HGET H0 definitions\n"
            "HGET defs A\n"
            "TYPE place\n"
            "HMSET place items hash A\n");
}

TEST_F(Linking, OfAMemberTakesThePlaceholderOutFirst) {
  RecordSplit(Split("#/A"), "place", nullptr);
  ScriptedServer server;
  server.WillReply("$6\r\nhash A\r\n");
  server.WillReply("+set\r\n");
  server.WillReply(":1\r\n");
  server.WillReply(":1\r\n");
  context()->connection = server.ctx();
  ExpectLinksSilently();
  EXPECT_EQ(Short(server.Commands()),
            "HGET H0 A\n"
            "TYPE place\n"
            "SREM place #/A\n"
            "SADD place hash A\n");
}

TEST_F(Linking, WithoutReferencesSendsNothing) {
  ScriptedServer server;
  context()->connection = server.ctx();
  ExpectLinksSilently();
  EXPECT_EQ(server.Received(), "");
}

TEST_F(Linking, UsesNothingOfTheContextButTheConnection) {
  Set(Root(), "A", "hash A");
  RecordField("#/A", "place", "items");
  ParseContext bare{};
  bare.connection = ctx();
  EXPECT_EQ(resourceReferenceLinking(&bare), 0);
  EXPECT_EQ(Ask({"HGET", "place", "items"}), "hash A");
}

TEST_F(Linking, WithoutAContextFails) {
  const Outcome outcome = Observe([] { return resourceReferenceLinking(nullptr); });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, LinkingReport(874, "resourceReferenceLinking: argument is NULL !"));
}

TEST_F(Linking, WithoutAConnectionSkipsEveryReference) {
  RecordSplit(Split("#/A"), "place", "A");
  RecordSplit(Split("#/B"), "place", "B");
  context()->connection = nullptr;
  const Outcome outcome = Link();
  const std::string skipped =
      LinkingReport(502, "getPropLocationReplaceData: argument is NULL !") + kSkipped;
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, skipped + skipped);
}

TEST_F(Linking, GoesOnAfterAReferenceThatCannotBeLinked) {
  Set(Root(), "B", "hash B");
  RecordField("#/A", "place", "A");
  RecordField("#/B", "place", "B");
  const Outcome outcome = Link();
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, NotLinked("#/A", "Thing.json", "#/A"));
  EXPECT_EQ(Ask({"HGETALL", "place"}), "A\n#/A\nB\nhash B");
}

TEST_F(Linking, LeavesTheReferencesInTheList) {
  Set(Root(), "A", "hash A");
  RecordMember("#/A", "place");
  ExpectLinksSilently();
  EXPECT_EQ(schemaRefListSearchEntry("route"), 0);
  EXPECT_EQ(Link().errors, LinkingReport(820, "Remove entry <#/A> from set <place>  failed !!!!"));
}

// ---- Where the placeholder stands

TEST_F(Linking, NeedsTheSchemaTheReferenceStandsIn) {
  Set(Root(), "A", "hash A");
  RecordSplit(Split("#/A"), "place", "items", "Gone.json");
  const Outcome outcome = Link();
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors,
            LinkingReport(509, "Gone.json might not been internalized!!!") + kSkipped);
  EXPECT_EQ(Ask({"EXISTS", "place"}), "0");
}

TEST_F(Linking, NeedsTheHashOfTheSchemaTheReferenceStandsIn) {
  RecordSplit(Split("#/A"), "place", "items", "");
  EXPECT_EQ(Link().errors, LinkingReport(516, "Get schema hash ID failed !!!") + kSkipped);
}

TEST_F(Linking, ReachesFieldNamesOf199Characters) {
  Set(Root(), "A", "hash A");
  const std::string longest(199, 'f');
  RecordField("#/A", "place", longest);
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"HGET", "place", longest}), "hash A");
}

TEST_F(Linking, DoesNotReachFieldNamesOf200Characters) {
  Set(Root(), "A", "hash A");
  const std::string field(200, 'f');
  RecordField("#/A", "place", field);
  EXPECT_EQ(Link().errors, LinkingReport(544, "referPath buffer size!") + kSkipped);
  EXPECT_EQ(Ask({"HGET", "place", field}), "#/A");
}

// What follows the last '#' is the pointer, so the text can be longer than the pointer may be.
TEST_F(Linking, ReachesReferenceTextsOf199Characters) {
  Set(Root(), "b", "hash b");
  const std::string longest = "Thing.json#/" + std::string(184, 'a') + "#/b";
  ASSERT_EQ(longest.size(), 199U);
  EXPECT_EQ(Linked(longest), "hash b");
  EXPECT_EQ(errors_, "");
  const std::string longer = "Thing.json#/" + std::string(185, 'a') + "#/b";
  EXPECT_EQ(Linked(longer), longer);
  EXPECT_EQ(errors_, LinkingReport(544, "referPath buffer size!") + kSkipped);
}

TEST_F(Linking, CreatesTheDestinationHashWhenItIsGone) {
  Set(Root(), "A", "hash A");
  RecordSplit(Split("#/A"), "place", "items");
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"HGETALL", "place"}), "items\nhash A");
}

TEST_F(Linking, GoesByTheTypeOfTheDestination) {
  Set(Root(), "A", "hash A");
  RecordSplit(Split("#/A"), "place", "items");
  ASSERT_EQ(Ask({"SADD", "place", "#/A"}), "1");
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"SMEMBERS", "place"}), "hash A");
}

// ---- Where the reference leads

TEST_F(Linking, NeedsTheSchemaTheReferenceNames) {
  EXPECT_EQ(Linked("Gone.json#/definitions/A"), "Gone.json#/definitions/A");
  EXPECT_EQ(errors_, LinkingReport(181, "Gone.json might not been internalized!!!") +
                         NotLinked("Gone.json#/definitions/A", "Gone.json", "#/definitions/A"));
}

TEST_F(Linking, NeedsTheHashOfTheSchemaTheReferenceNames) {
  ResourcePath path = Split("#/A");
  path.schemaName[0] = '\0';
  RecordSplit(path, "place", "items");
  EXPECT_EQ(Link().errors,
            LinkingReport(188, "Get schema hash ID failed !!!") + NotLinked("#/A", "", "#/A"));
}

TEST_F(Linking, LeadsIntoAnotherSchema) {
  ASSERT_EQ(schemaReferTableInsertEntry("Other.json", "other root"), 0);
  Set("other root", "A", "hash A");
  EXPECT_EQ(Linked("Other.json#/A"), "hash A");
}

TEST_F(Linking, WithoutAPointerIsTheRootHash) {
  EXPECT_EQ(Linked("Thing.json"), Root());
  EXPECT_EQ(Linked("Thing.json#"), Root());
  EXPECT_EQ(errors_, "");
}

TEST_F(Linking, WithAPointerThatHasNoStepsFails) {
  EXPECT_EQ(Linked("#/"), "#/");
  EXPECT_EQ(errors_,
            LinkingReport(248, "PropPath error !!!") + NotLinked("#/", "Thing.json", "#/"));
}

TEST_F(Linking, FollowsTheStepsOfThePointer) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", "hash A");
  Set("hash A", "B", "hash B");
  Set("hash B", "type", "string");
  EXPECT_EQ(Linked("#/definitions/A/B"), "hash B");
  EXPECT_EQ(Linked("#/definitions/A/B/type"), "string");
  EXPECT_EQ(Linked("#//definitions//A/"), "hash A");
}

TEST_F(Linking, FollowsTheFirst36CharactersOfAValue) {
  const std::string id(36, 'd');
  Set(Root(), "definitions", id + " and more");
  Set(id, "A", "hash A");
  EXPECT_EQ(Linked("#/definitions/A"), "hash A");
}

TEST_F(Linking, SkipsStepsThatBeginPropertiesOneOfAndAnyOf) {
  Set(Root(), "A", "hash A");
  for (const char* step : {"p", "pro", "prop", "propertie", "properties", "o", "one", "oneOf", "a",
                           "an", "any", "anyOf"}) {
    EXPECT_EQ(Linked(std::string("#/") + step + "/A"), "hash A") << step;
    EXPECT_EQ(errors_, "");
  }
}

TEST_F(Linking, SkipsThemEvenWhereAFieldHasThatName) {
  Set(Root(), "prop", "another");
  Set("another", "A", "wrong");
  Set(Root(), "A", "hash A");
  EXPECT_EQ(Linked("#/prop/A"), "hash A");
}

TEST_F(Linking, SkipsNoOtherSteps) {
  Set(Root(), "A", "hash A");
  for (const char* step : {"propertiesX", "Properties", "roperties", "oneof", "anyOf0", "allOf"}) {
    const std::string reference = std::string("#/") + step + "/A";
    EXPECT_EQ(Linked(reference), reference);
    EXPECT_EQ(errors_, NotLinked(reference, "Thing.json", reference));
  }
}

TEST_F(Linking, ToAPathThatEndsInASkippedStepLeavesAFieldAsItIs) {
  Set(Root(), "definitions", "defs");
  for (const char* reference : {"#/definitions/properties", "#/properties", "#/oneOf/anyOf"}) {
    EXPECT_EQ(Linked(reference), reference);
    EXPECT_EQ(errors_, "");
  }
}

TEST_F(Linking, ToAPathThatEndsInASkippedStepTakesTheMemberOutOnly) {
  ASSERT_EQ(Ask({"SADD", "place", "other"}), "1");
  RecordMember("#/properties", "place");
  EXPECT_EQ(Link().errors, LinkingReport(829, "Insert entry to \"place\"  failed !!!!"));
  EXPECT_EQ(Ask({"SMEMBERS", "place"}), "other");
}

// ---- The way through "definitions" and "items"

TEST_F(Linking, LooksInTheDefinitionsOfAHashThatLacksAStep) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", "hash A");
  Set("hash A", "definitions", "inner defs");
  Set("inner defs", "B", "hash B");
  EXPECT_EQ(Linked("#/definitions/A/properties/B"), "hash B");
}

TEST_F(Linking, LooksInTheItemsOfAHashWithoutDefinitions) {
  Set(Root(), "A", "hash A");
  Set("hash A", "items", "elements");
  Set("elements", "B", "hash B");
  EXPECT_EQ(Linked("#/A/B"), "hash B");
}

TEST_F(Linking, LooksInDefinitionsRatherThanItems) {
  Set(Root(), "definitions", "defs");
  Set(Root(), "items", "elements");
  Set("defs", "type", "object");
  Set("elements", "B", "hash B");
  EXPECT_EQ(Linked("#/B"), "#/B");
  EXPECT_EQ(errors_, NotLinked("#/B", "Thing.json", "#/B"));
}

TEST_F(Linking, LooksThroughSeveralLevels) {
  Set(Root(), "definitions", "level 1");
  Set("level 1", "items", "level 2");
  Set("level 2", "definitions", "level 3");
  Set("level 3", "B", "hash B");
  EXPECT_EQ(Linked("#/B"), "hash B");
}

TEST_F(Linking, LooksForTheNextStepFromWhereTheLastWasFound) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", "hash A");
  Set("hash A", "type", "object");
  EXPECT_EQ(Linked("#/A/type"), "object");
}

TEST_F(Linking, GivesUpWhereAHashLeadsBackToItself) {
  Set(Root(), "definitions", Root());
  EXPECT_EQ(Linked("#/B"), "#/B");
  EXPECT_EQ(errors_, NotLinked("#/B", "Thing.json", "#/B"));
}

TEST_F(Linking, GivesUpWhereHashesLeadInACircle) {
  Set(Root(), "definitions", "defs");
  Set("defs", "items", "elements");
  Set("elements", "definitions", Root());
  EXPECT_EQ(Linked("#/B"), "#/B");
  EXPECT_EQ(errors_, NotLinked("#/B", "Thing.json", "#/B"));
}

TEST_F(Linking, MayPassAHashAgainForAnotherStep) {
  Set(Root(), "definitions", "defs");
  Set("defs", "A", Root());
  Set("defs", "B", "hash B");
  EXPECT_EQ(Linked("#/A/B"), "hash B");
}

TEST_F(Linking, KeepsThePlaceholderWhenTheConnectionIsLost) {
  RecordSplit(Split("#/A"), "place", "items");
  ScriptedServer server;
  server.WillClose();
  context()->connection = server.ctx();
  const Outcome outcome = Link();
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, NotLinked("#/A", "Thing.json", "#/A"));
}

// ---- Limits of the walk

TEST_F(Linking, TakesValuesOf199Characters) {
  const std::string longest(199, 'v');
  Set(Root(), "A", longest);
  EXPECT_EQ(Linked("#/A"), longest);
  Set(Root(), "B", longest + "v");
  EXPECT_EQ(Linked("#/B"), "#/B");
  EXPECT_EQ(errors_,
            LinkingReport(325, "replaceInfo buffer size!") + NotLinked("#/B", "Thing.json", "#/B"));
}

TEST_F(Linking, PutsAtMost37CharactersIntoASet) {
  Set(Root(), "A", std::string(50, 'v'));
  RecordMember("#/A", "place");
  ExpectLinksSilently();
  EXPECT_EQ(Ask({"SMEMBERS", "place"}), std::string(37, 'v'));
}

class ReferencePath : public ParserTest {
 protected:
  // A pointer into Thing.json.
  static ReferenceTarget Pointer(const std::string& property_path) {
    return {"", "", "Thing.json", property_path.c_str()};
  }
  Outcome Resolve(const ReferenceTarget* target, Replacement* out = nullptr) {
    return Observe([&] {
      const auto replacement = zephlane::getReferencePathReplaceData(ctx(), target);
      if (replacement && out != nullptr) { *out = *replacement; }
      return replacement ? 0 : 1;
    });
  }
};

TEST_F(ReferencePath, YieldsTheLastStepItsHashAndItsValue) {
  ASSERT_EQ(Ask({"HSET", Root(), "definitions", "defs"}), "1");
  ASSERT_EQ(Ask({"HSET", "defs", "A", "hash A"}), "1");
  const std::string path = "#/definitions/A";
  const ReferenceTarget target = Pointer(path);
  Replacement replacement{};
  EXPECT_EQ(Resolve(&target, &replacement).result, 0);
  EXPECT_STREQ(replacement.lastToken, "A");
  EXPECT_STREQ(replacement.hashID, "defs");
  EXPECT_STREQ(replacement.value, "hash A");
}

TEST_F(ReferencePath, StepOf199CharactersIsTheLongest) {
  const std::string longest(199, 'x');
  const std::string too_long(200, 'x');
  ASSERT_EQ(Ask({"HSET", Root(), longest, "value"}), "1");
  ReferenceTarget target = Pointer(longest);
  EXPECT_EQ(Resolve(&target).result, 0);
  target = Pointer(too_long);
  const Outcome outcome = Resolve(&target);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, LinkingReport(275, "Path token length is too long !!!"));
}

TEST_F(ReferencePath, NullArgumentsAreReported) {
  const ReferenceTarget target = Pointer("");
  const std::string report = LinkingReport(174, "getReferencePathReplaceData: argument is NULL !");
  EXPECT_EQ(Resolve(nullptr).errors, report);
  EXPECT_EQ(Observe([&] {
              return zephlane::getReferencePathReplaceData(nullptr, &target) ? 1 : 0;
            }).errors,
            report);
}

// ---- The replacement

class ValueReplacement : public ParserTest {
 protected:
  void SetUp() override {
    ParserTest::SetUp();
    (void)std::snprintf(replacement_.value, sizeof(replacement_.value), "hash A");
    (void)std::snprintf(destination_.destinationID, sizeof(destination_.destinationID), "place");
    (void)std::snprintf(destination_.fieldName, sizeof(destination_.fieldName), "items");
    (void)std::snprintf(destination_.referenceText, sizeof(destination_.referenceText), "#/A");
  }
  Outcome Replace(redisContext* connection) {
    return Observe([&] {
      return zephlane::referenceValueReplacement(connection, &replacement_, &destination_);
    });
  }
  Replacement replacement_{};
  PlaceholderLocation destination_{};
};

TEST_F(ValueReplacement, NullArgumentsAreReported) {
  const auto replace = [](redisContext* connection, const Replacement* replacement,
                          const PlaceholderLocation* destination) {
    const Outcome outcome = Observe(
        [&] { return zephlane::referenceValueReplacement(connection, replacement, destination); });
    EXPECT_EQ(outcome.result, -1);
    return outcome.errors;
  };
  const std::string report = LinkingReport(808, "referenceValueReplacement: argument is NULL !");
  EXPECT_EQ(replace(nullptr, &replacement_, &destination_), report);
  EXPECT_EQ(replace(ctx(), nullptr, &destination_), report);
  EXPECT_EQ(replace(ctx(), &replacement_, nullptr), report);
}

TEST_F(ValueReplacement, OfAMemberThatIsNotThereAddsNothing) {
  ASSERT_EQ(Ask({"SADD", "place", "other"}), "1");
  const Outcome outcome = Replace(ctx());
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.errors, LinkingReport(820, "Remove entry <#/A> from set <place>  failed !!!!"));
  EXPECT_EQ(Ask({"SMEMBERS", "place"}), "other");
}

TEST_F(ValueReplacement, OfAMemberThatIsNotAddedFails) {
  ScriptedServer server;
  server.WillReply("+set\r\n");
  server.WillReply(":1\r\n");
  server.WillReply("-ERR\r\n");
  const Outcome outcome = Replace(server.ctx());
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.errors, LinkingReport(829, "Insert entry to \"place\"  failed !!!!"));
}

TEST_F(ValueReplacement, OfAFieldThatIsNotWrittenFails) {
  ScriptedServer server;
  server.WillReply("+hash\r\n");
  server.WillReply("+NO\r\n");
  const Outcome outcome = Replace(server.ctx());
  EXPECT_EQ(outcome.result, -1);
  EXPECT_EQ(outcome.errors, LinkingReport(841, "FAILED!!!"));
}

TEST_F(ValueReplacement, TakesADestinationWhoseTypeIsUnknownAsAHash) {
  ScriptedServer server;
  server.WillReply("-ERR\r\n");
  server.WillReply("+OK\r\n");
  EXPECT_EQ(Replace(server.ctx()).result, 0);
  EXPECT_EQ(server.Commands(), "TYPE place\nHMSET place items hash A\n");
}

// ---- After parsing

class LinkingAfterParsing : public ParserTest {
 protected:
  Outcome ParseAndLink(const std::string& text) {
    const Outcome parsed = ParseRoot(text);
    EXPECT_EQ(parsed.result, 0) << parsed.errors;
    parse_errors_ = parsed.errors;
    return Observe([&] { return resourceReferenceLinking(context()); });
  }
  std::string parse_errors_;
};

TEST_F(LinkingAfterParsing, FieldsAndMembersNameTheirDefinitions) {
  EXPECT_EQ(ParseAndLink(R"({"properties": {"Status": {"$ref": "#/definitions/Status"},
                                            "Links": {"anyOf": [{"$ref": "#/definitions/Status"},
                                                                {"type": "null"}]}},
                             "definitions": {"Status": {"type": "string"}}})")
                .errors,
            "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  Links = H1
  Status = H4
  definitions = H3
  instanceCollection = S1
  typeId = H0
hash H1
  DummyKey = DummyValue
  anyOf = S0
  type = array
hash H2
  DummyKey = DummyValue
  type = null
hash H3
  DummyKey = DummyValue
  Status = H4
hash H4
  DummyKey = DummyValue
  type = string
set S0
  (dummy)
  H2
  H4
set ZephlaneSchemaInstances
  H0
)");
}

TEST_F(LinkingAfterParsing, DefinitionsOfOtherFilesAreFoundThere) {
  WriteSchema("Other.json", R"({"definitions": {"A": {"type": "string"},
                                                "B": {"$ref": "Thing.json#/definitions/C"}}})");
  EXPECT_EQ(ParseAndLink(R"({"items": {"$ref": "Other.json#/definitions/A"},
                             "definitions": {"C": {"type": "number"}}})")
                .errors,
            "");
  EXPECT_EQ(Field(Field("H0", "items"), "type"), "string");
  const std::string definitions = Ask({"HGET", getSchemaHashID("Other.json"), "definitions"});
  EXPECT_EQ(Ask({"HGET", Ask({"HGET", definitions, "B"}), "type"}), "number");
}

TEST_F(LinkingAfterParsing, MemberThatNamesAFileNothingElseNamesKeepsItsPlaceholder) {
  WriteSchema("Other.json", R"({"definitions": {"A": {}}})");
  const Outcome outcome = ParseAndLink(R"({"links": [{"$ref": "Other.json#/definitions/A"}]})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(
      outcome.errors,
      LinkingReport(181, "Other.json might not been internalized!!!") +
          LinkingReport(904, "Something wrong while getting replace data from reference path") +
          LinkingReport(905, "Reference path: Other.json#/definitions/A") +
          LinkingReport(906, "Schema name: Other.json") +
          LinkingReport(907, "Dest property: #/definitions/A"));
  EXPECT_EQ(Ask({"SISMEMBER", Long("S0"), "Other.json#/definitions/A"}), "1");
}

TEST_F(LinkingAfterParsing, FieldThatLeadsNowhereKeepsTheRootHash) {
  const Outcome outcome = ParseAndLink(R"({"items": {"$ref": "#/definitions/Gone"}})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_TRUE(outcome.errors.ends_with(LinkingReport(907, "Dest property: #/definitions/Gone")));
  EXPECT_EQ(Field("H0", "items"), "H0");
}

TEST_F(LinkingAfterParsing, EqualReferencesOfOneSetAreLinkedOnceAndTheSecondReported) {
  const Outcome outcome =
      ParseAndLink(R"({"links": [{"$ref": "#/definitions/A"}, {"$ref": "#/definitions/A"}],
                       "definitions": {"A": {}}})");
  EXPECT_EQ(outcome.errors, LinkingReport(820, "Remove entry <#/definitions/A> from set <" +
                                                   Long("S0") + ">  failed !!!!"));
  EXPECT_EQ(Ask({"SISMEMBER", Long("S0"), Long("H2")}), "1");
  EXPECT_EQ(Ask({"SCARD", Long("S0")}), "2");
}

TEST_F(LinkingAfterParsing, ReferencesToReferencesTakeWhatStandsThereAtTheirTurn) {
  EXPECT_EQ(ParseAndLink(R"({"definitions": {"A": {"$ref": "#/definitions/B"},
                                             "B": {"$ref": "#/definitions/C"}, "C": {}}})")
                .errors,
            "");
  // A was linked while B still held the root hash.
  EXPECT_EQ(Field("H1", "A"), "H0");
  EXPECT_EQ(Field("H1", "B"), "H2");
}

TEST_F(LinkingAfterParsing, MessageParametersAreFoundThroughFlattenedProperties) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  const Outcome outcome = ParseAndLink(
      R"({"properties": {"Reading": {"type": "number"}},
          "Messages": {"type": "object",
                       "values": [{"id": "1", "Param": ["#/properties/Reading/type"]}]}})");
  EXPECT_EQ(parse_errors_,
            ExtensionReport(247,
                            "[Warning] Type information from "
                            "<Thing.json#/properties/Reading/type> not found while parsing"));
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Ask({"HGETALL", Long("H2")}), "id\n1\n#/properties/Reading/type\nnumber");
}

TEST_F(LinkingAfterParsing, ReportsWhatMemoryIsOutFor) {
  EXPECT_EQ(
      ParseAndLink(R"({"items": {"$ref": "#/definitions/A"}, "definitions": {"A": {}}})").errors,
      "");
  const std::string reports =
      ReportsOfAllocationFaults([this] { (void)resourceReferenceLinking(context()); });
  for (const std::string& report :
       {LinkingReport(534, "malloc failed: destination hash ID !!!") + kSkipped,
        LinkingReport(210, "malloc failed !!!"),
        LinkingReport(237, "malloc failed: pathForExtract !!!")}) {
    EXPECT_NE(reports.find(report), std::string::npos) << report;
  }
}

}  // namespace
