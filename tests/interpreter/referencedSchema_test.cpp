// SPDX-License-Identifier: MIT
//
// Root hashes, and the interpretation of a schema file that a reference names.
#include <gtest/gtest.h>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::FullTable;
using zephlane::test::ObjectReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::SchemaReport;
using zephlane::test::ScriptedServer;
using zephlane::test::Taken;
using zephlane::test::TreeReport;

constexpr char kUuid[] = "1c9d2e3f-aaaa-bbbb-cccc-0123456789ab";

class SchemaRootHash : public ParserTest {
 protected:
  // The ID, or "(null)".
  std::string Generate(const std::string& document, std::string* errors = nullptr) {
    json_t* const value = Value(document);
    std::string id;
    const Outcome outcome = Observe([&] {
      id = Taken(generateSchemaRootHash(ctx(), value));
      return 0;
    });
    EXPECT_TRUE(errors != nullptr || outcome.errors.empty()) << outcome.errors;
    if (errors != nullptr) { *errors = outcome.errors; }
    return id;
  }
};

TEST_F(SchemaRootHash, IsTheNextHashWhenTheSchemaGivesNone) {
  EXPECT_EQ(Short(Generate("{}")), "H1");
  EXPECT_EQ(Short(Generate(R"({"title": "x"})")), "H2");
  EXPECT_EQ(Ask({"HGETALL", Long("H1")}), "DummyKey\nDummyValue");
}

TEST_F(SchemaRootHash, IsTheNextHashWhenTheGivenOneIsEmpty) {
  EXPECT_EQ(Short(Generate(R"({"typeId": ""})")), "H1");
}

TEST_F(SchemaRootHash, IsTheGivenOneInLowerCase) {
  EXPECT_EQ(Generate(R"({"typeId": "1C9D2E3F-AAAA-bbbb-CCCC-0123456789AB"})"), kUuid);
  EXPECT_EQ(Ask({"HGETALL", kUuid}), "DummyKey\nDummyValue");
  EXPECT_EQ(isUUIDRegistered(kUuid), 1);
  EXPECT_EQ(Short(Generate("{}")), "H1");
}

TEST_F(SchemaRootHash, ReplacesWhatTheGivenKeyHeld) {
  ASSERT_EQ(Ask({"HSET", kUuid, "old", "x"}), "1");
  EXPECT_EQ(Generate("{\"typeId\": \"" + std::string(kUuid) + "\"}"), kUuid);
  EXPECT_EQ(Ask({"HGETALL", kUuid}), "DummyKey\nDummyValue");
}

TEST_F(SchemaRootHash, MayBeAFixedId) {
  for (const char* id :
       {"00000000-0000-0000-0001-ffffffffffff", "00000000-0000-0000-0001-eeeeeeeeeeee",
        "00000000-0000-0000-0000-fedc00000001", "ZephlaneRootServices-123456789012345"}) {
    EXPECT_EQ(Generate("{\"typeId\": \"" + std::string(id) + "\"}"), id);
  }
}

TEST_F(SchemaRootHash, GivenAsSomethingElseThanTextFails) {
  for (const char* value : {"5", "null", "{}", "[]", "false", "1.5"}) {
    SCOPED_TRACE(value);
    std::string errors;
    EXPECT_EQ(Generate(std::string("{\"typeId\": ") + value + "}", &errors), "(null)");
    EXPECT_EQ(errors, SchemaReport("Value of typeId field is not string!"));
  }
}

TEST_F(SchemaRootHash, GivenWithAnotherLengthFails) {
  const std::string uuid = kUuid;
  for (const std::string& id : {uuid.substr(1), uuid + "0", std::string("x")}) {
    SCOPED_TRACE(id);
    std::string errors;
    EXPECT_EQ(Generate("{\"typeId\": \"" + id + "\"}", &errors), "(null)");
    EXPECT_EQ(errors, SchemaReport("Invalid typeId!"));
  }
}

TEST_F(SchemaRootHash, GivenInTheRangeOfGeneratedOnesFails) {
  std::string errors;
  EXPECT_EQ(Generate(R"({"typeId": "00000000-0000-0000-0001-000000000005"})", &errors), "(null)");
  EXPECT_TRUE(errors.ends_with(SchemaReport("Invalid typeId"))) << errors;
}

TEST_F(SchemaRootHash, GivenAsNoUuidFails) {
  std::string errors;
  EXPECT_EQ(Generate("{\"typeId\": \"" + std::string(36, 'z') + "\"}", &errors), "(null)");
  EXPECT_TRUE(errors.ends_with("\n\n" + SchemaReport("Invalid typeId"))) << errors;
}

TEST_F(SchemaRootHash, GivenTwiceFails) {
  EXPECT_EQ(Generate("{\"typeId\": \"" + std::string(kUuid) + "\"}"), kUuid);
  std::string errors;
  EXPECT_EQ(Generate(R"({"typeId": "1C9D2E3F-AAAA-BBBB-CCCC-0123456789AB"})", &errors), "(null)");
  EXPECT_EQ(errors, SchemaReport("Oops! This typeId has been used."));
}

TEST_F(SchemaRootHash, FailsWhenNoHashCanBeMade) {
  FillObjectTable();
  std::string errors;
  EXPECT_EQ(Generate("{}", &errors), "(null)");
  EXPECT_EQ(errors, FullTable() + SchemaReport("Failed to creat root object hash !!!"));
  EXPECT_EQ(Generate("{\"typeId\": \"" + std::string(kUuid) + "\"}", &errors), "(null)");
  EXPECT_EQ(errors, FullTable() + SchemaReport("Create type schema hash failed"));
}

TEST_F(SchemaRootHash, NullArgumentsAreReported) {
  json_t* const document = Value("{}");
  const std::string report = SchemaReport("generateSchemaRootHash: argument is NULL!");
  EXPECT_EQ(Observe([&] { return generateSchemaRootHash(nullptr, document) != nullptr; }).errors,
            report);
  const Outcome outcome =
      Observe([&] { return generateSchemaRootHash(ctx(), nullptr) != nullptr; });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 0);
}

class ReferencedSchema : public ParserTest {
 protected:
  std::string Interpret(const std::string& name, std::string* errors = nullptr) {
    std::string id;
    const Outcome outcome = Observe([&] {
      id = Taken(parseReferenceSchemaFile(ctx(), name.c_str()));
      return 0;
    });
    EXPECT_TRUE(errors != nullptr || outcome.errors.empty()) << outcome.errors;
    if (errors != nullptr) { *errors = outcome.errors; }
    return id;
  }
};

TEST_F(ReferencedSchema, IsInterpretedAndRegistered) {
  WriteSchema("Other.json", R"({"title": "Other", "properties": {"Id": {"type": "string"}}})");
  const std::string id = Interpret("Other.json");
  EXPECT_EQ(Short(id), "H1");
  EXPECT_EQ(getSchemaHashID("Other.json"), id);
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
hash H1
  DummyKey = DummyValue
  Id = H2
  instanceCollection = S0
  title = Other
  typeId = H1
hash H2
  DummyKey = DummyValue
  type = string
set ZephlaneSchemaInstances
  H1
)");
}

TEST_F(ReferencedSchema, KeepsTheIdItGives) {
  WriteSchema("Other.json", "{\"typeId\": \"" + std::string(kUuid) + "\"}");
  EXPECT_EQ(Interpret("Other.json"), kUuid);
  EXPECT_EQ(Ask({"HGET", kUuid, "typeId"}), kUuid);
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneSchemaInstances"}), kUuid);
}

TEST_F(ReferencedSchema, IsRegisteredBeforeItIsParsed) {
  WriteSchema("Other.json", R"({"not": {"$ref": "Other.json"}})");
  EXPECT_EQ(Short(Interpret("Other.json")), "H1");
  EXPECT_EQ(Field("H1", "not"), "H1");
}

TEST_F(ReferencedSchema, MayBeADocumentWithoutMembers) {
  WriteSchema("List.json", "[1, 2]");
  EXPECT_EQ(Short(Interpret("List.json")), "H1");
  EXPECT_EQ(Field("H1", "typeId"), "H1");
}

TEST_F(ReferencedSchema, NullArgumentsAreReported) {
  const std::string report = SchemaReport("Argument is NULL pointer !!!");
  EXPECT_EQ(
      Observe([] { return parseReferenceSchemaFile(nullptr, "Other.json") != nullptr; }).errors,
      report);
  const Outcome outcome =
      Observe([&] { return parseReferenceSchemaFile(ctx(), nullptr) != nullptr; });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 0);
}

TEST_F(ReferencedSchema, NameOf199CharactersIsTheLongest) {
  const std::string longest = std::string(194, 'n') + ".json";
  WriteSchema(longest, "{}");
  EXPECT_EQ(Short(Interpret(longest)), "H1");
  WriteSchema("n" + longest, "{}");
  std::string errors;
  EXPECT_EQ(Interpret("n" + longest, &errors), "(null)");
  EXPECT_EQ(errors, SchemaReport("Length of schema name !!!"));
}

TEST_F(ReferencedSchema, MissingFileFails) {
  std::string errors;
  EXPECT_EQ(Interpret("Missing.json", &errors), "(null)");
  EXPECT_EQ(errors, SchemaReport("Missing.json: not such schema file") +
                        "Failed to open schema file at Missing.json !!!\n");
  EXPECT_EQ(isReferenceSchemaHasInternalized("Missing.json"), 0);
}

TEST_F(ReferencedSchema, FileThatIsNoJsonFails) {
  WriteSchema("Bad.json", "{\n\n\"title\"}");
  json_error_t error;
  ASSERT_EQ(json_load_file("Bad.json", 0, &error), nullptr);
  std::string errors;
  EXPECT_EQ(Interpret("Bad.json", &errors), "(null)");
  EXPECT_EQ(errors, "error: on line 3: " + std::string(error.text) +
                        "\nFailed to open schema file at Bad.json !!!\n");
}

TEST_F(ReferencedSchema, FailsWithoutARootHash) {
  WriteSchema("Other.json", R"({"typeId": 5})");
  std::string errors;
  EXPECT_EQ(Interpret("Other.json", &errors), "(null)");
  EXPECT_EQ(errors, SchemaReport("Value of typeId field is not string!") +
                        SchemaReport("Failed to get Schema ROOT hash !!!"));
  EXPECT_EQ(isReferenceSchemaHasInternalized("Other.json"), 0);
}

TEST_F(ReferencedSchema, FailsWhenItCannotBeRegistered) {
  for (int i = 1; i < 4000; ++i) { ASSERT_EQ(schemaReferTableInsertEntry("taken", "id"), 0); }
  WriteSchema("Other.json", R"({"title": "Other"})");
  std::string errors;
  EXPECT_EQ(Interpret("Other.json", &errors), "(null)");
  EXPECT_EQ(errors,
            TreeReport(">> Other.json <<") +
                TreeReport(">> There's no free slot to insert schema:uuid mapping into table <<"));
  EXPECT_EQ(Ask({"HGETALL", Long("H1")}), "DummyKey\nDummyValue");
}

TEST_F(ReferencedSchema, FailsWithItsDocumentAndStaysRegistered) {
  WriteSchema("Other.json", R"({"title": "Other", "not": {"$ref": 5}})");
  std::string errors;
  EXPECT_EQ(Interpret("Other.json", &errors), "(null)");
  EXPECT_EQ(errors,
            ObjectReport(721, "$ref string is NULL !!!") + SchemaReport("Error while Parsing ..."));
  EXPECT_EQ(isReferenceSchemaHasInternalized("Other.json"), 1);
  EXPECT_EQ(Field("H1", "title"), "Other");
}

TEST_F(ReferencedSchema, FailsCleanlyWhereverMemoryRunsOut) {
  WriteSchema("Other.json", R"({"not": {"enum": ["x"], "items": {"$ref": "#/definitions/A"}}})");
  const std::string reports = ReportsOfAllocationFaults([this] {
    zephlane::CString(parseReferenceSchemaFile(ctx(), "Other.json")).reset();
    (void)hashTreeInit(ctx());
  });
  EXPECT_NE(reports.find(SchemaReport("malloc: parser tracking spot")), std::string::npos);
}

TEST_F(ReferencedSchema, FailsWhenTheConnectionIsLost) {
  WriteSchema("Other.json", R"({"not": {}})");
  ScriptedServer server;
  server.WillClose();
  Outcome outcome = Observe(
      [&] { return parseReferenceSchemaFile(server.ctx(), "Other.json") == nullptr ? 1 : 0; });
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TreeReport("<DummyKey : DummyValue> insert pair into hash failed!!") +
                                SchemaReport("Failed to creat root object hash !!!") +
                                SchemaReport("Failed to get Schema ROOT hash !!!"));
}

}  // namespace
