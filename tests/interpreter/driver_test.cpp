// SPDX-License-Identifier: MIT
//
// Interpreter runs whose cause or effect is not a schema file and not the store: the rest of the
// runs are the folders of cases/.
#include <pthread.h>

#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <gtest/gtest.h>
#include <jansson.h>

#include "interpreter/answeringServer.h"
#include "interpreter/schemaDirectory.h"
#include "support/allocationFault.h"
#include "support/fixedNames.h"
#include "support/output.h"
#include "support/owners.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::CString;
using zephlane::Json;
using zephlane::test::AllocationFault;
using zephlane::test::AnsweringServer;
using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::kPasswordFile;
using zephlane::test::kRootSchema;
using zephlane::test::Masked;
using zephlane::test::OpenDescriptors;
using zephlane::test::Output;
using zephlane::test::StoreTest;
using zephlane::test::WriteFile;
using zephlane::test::WriteSchema;

constexpr char kTitled[] = R"({"title": "Root"})";
constexpr char kConnectFailed[] = "Zephlane Redis connect failed !!!\n";
constexpr char kServiceId[] = "00000000-0000-0000-0001-ffffffffffff";
constexpr char kHash0[] = "00000000-0000-0000-0001-000000000000";
constexpr char kHash1[] = "00000000-0000-0000-0001-000000000001";

std::string Report(const std::string& text) {
  return InterpreterReport("zephlaneSchemaInterpreter.cpp", text);
}

std::string TreeReport(const std::string& text) {
  return InterpreterReport("hashTreeOperation.cpp", text);
}

const std::string kRootHashFailed = Report("Failed to get Schema ROOT hash !!!") +
                                    Report("Internalize schema data into Redis cache failed !!!");
const std::string kRootObjectFailed = Report("Failed to parse root object !!!") +
                                      Report("Internalize schema data into Redis cache failed !!!");

struct Outcome {
  int result = -1;
  std::string out;
  std::string err;
};

Outcome InterpretOnce(const char* root) {
  Outcome run;
  const Output printed = Capture([&] { run.result = zephlaneSchemaInterpreter(root); });
  run.out = Masked(printed.out);
  run.err = Masked(printed.err);
  return run;
}

// One run, which must leave no connection and no file open.
Outcome Interpret(const char* root = kRootSchema) {
  const long open = OpenDescriptors();
  Outcome run = InterpretOnce(root);
  EXPECT_EQ(OpenDescriptors(), open);
  return run;
}

class Driver : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    zephlane::test::StartSchemaDirectory();
    WriteSchema("Root.json", kTitled);
  }
};

TEST_F(Driver, MissingRootPathIsReported) {
  const Outcome run = Interpret(nullptr);
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err, InterpreterReport("resourcePathParser.cpp", "Input argument is NULL"));
}

TEST_F(Driver, MissingServerIsReported) {
  Ask({"SHUTDOWN", "NOSAVE"});
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.out, ApiReport("Connection error: Connection refused"));
  EXPECT_EQ(run.err, kConnectFailed);
}

TEST_F(Driver, WrongPasswordIsReported) {
  WriteFile(kPasswordFile, "wrong");
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.out, ApiReport("Failed to redis authentication!"));
  EXPECT_EQ(run.err, kConnectFailed);
}

TEST_F(Driver, MissingPasswordFileIsReported) {
  std::filesystem::remove(kPasswordFile);
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.out, ApiReport("Failed to open /tmp/redis.requirepass"));
  EXPECT_EQ(run.err, "fopen: No such file or directory\n" + std::string(kConnectFailed));
}

// The document is read before Redis is asked, so a broken one fails without a server too.
TEST_F(Driver, BrokenRootIsReportedBeforeTheConnection) {
  Ask({"SHUTDOWN", "NOSAVE"});
  WriteSchema("Root.json", "{\n  \"title\": \n}\n");
  json_error_t error;
  EXPECT_EQ(json_load_file(kRootSchema, 0, &error), nullptr);
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err, "error: on line 3: " + std::string(error.text) +
                         "\nFailed to open schema file at /tmp/FOSS_schema/Root.json !!!\n");
}

TEST_F(Driver, BrokenReferencedFileFailsTheRun) {
  WriteSchema("Root.json", R"({"items": {"$ref": "A.json"}})");
  WriteSchema("A.json", "text");
  json_error_t error;
  EXPECT_EQ(json_load_file("/tmp/FOSS_schema/A.json", 0, &error), nullptr);
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err,
            "error: on line 1: " + std::string(error.text) +
                "\nFailed to open schema file at /tmp/FOSS_schema/A.json !!!\n" +
                "[ERROR] schemaObjectParser.cpp:###: Failed to parse reference schema !\n" +
                kRootObjectFailed);
}

TEST_F(Driver, SecondRunAfterTheRootServiceWritesNothing) {
  WriteSchema("Root.json", R"({"typeId": "00000000-0000-0000-0001-FFFFFFFFFFFF"})");
  EXPECT_EQ(Interpret().result, 0);
  Ask({"HSET", kServiceId, "mark", "kept"});
  const std::string before = Dump();
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.out + run.err, "");
  EXPECT_EQ(Dump(), before);
}

// Without the root service there is no mark: the schemas are read again, under new numbers.
TEST_F(Driver, SecondRunWithoutTheRootServiceParsesAgain) {
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_EQ(Ask({"HGET", kHash0, "title"}), "Root");
  EXPECT_EQ(Ask({"HGET", kHash1, "title"}), "Root");
  EXPECT_EQ(Ask({"SMEMBERS", "ZephlaneSchemaInstances"}), kHash1);
  EXPECT_EQ(Ask({"HGET", "ZephlaneSchemaTitleUuidHash", "Root"}), kHash1);
}

TEST_F(Driver, NoPlaceholderOutlivesARun) {
  WriteSchema("Root.json", R"({"required": ["x"], "links": [], "not": {}, "properties": {
      "A": {"$ref": "A.json#/definitions/X"}, "B": {"anyOf": [{"$ref": "#/definitions/Y"}]}},
      "definitions": {"Y": {"type": "null"}}})");
  WriteSchema("A.json", R"({"definitions": {"X": {"enum": ["a", 1]}}})");
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.err, "");
  const std::string store = Dump();
  EXPECT_EQ(store.find("DummyKey"), std::string::npos);
  EXPECT_EQ(store.find("00000000-0000-0000-0000-000000000000"), std::string::npos);
}

TEST_F(Driver, RunAfterAFailedOneStartsAfresh) {
  WriteSchema("Root.json", R"({"items": {"$ref": "A.json"}})");
  EXPECT_EQ(Interpret().result, 1);
  WriteSchema("A.json", R"({"title": "A"})");
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_EQ(Ask({"HGET", "ZephlaneSchemaTitleUuidHash", "A"}), getSchemaHashID("A.json"));
}

TEST_F(Driver, MessagePropertyHasItsOwnNameUnlessConfigured) {
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_STREQ(propertyRuxoMessage, "RuxoMessage");
  EXPECT_EQ(isTypeSchemaEssentialField("RuxoMessage"), 1);
  Ask({"HSET", "defaultSettings", "RuxoMessage", "Messages"});
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_STREQ(propertyRuxoMessage, "Messages");
  EXPECT_EQ(isTypeSchemaEssentialField("RuxoMessage"), 0);
}

// The reader cuts a value at 1023 characters, which fits: no name is too long for the run.
TEST_F(Driver, LongMessagePropertyIsCut) {
  Ask({"HSET", "defaultSettings", "RuxoMessage", std::string(2000, 'm')});
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(propertyRuxoMessage, std::string(1023, 'm'));
}

TEST_F(Driver, TablesOutliveTheRun) {
  WriteSchema("Root.json", R"({"items": {"$ref": "A.json"}})");
  WriteSchema("A.json", "{}");
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_STREQ(getSchemaHashID("Root.json"), kHash0);
  EXPECT_STREQ(getSchemaHashID("A.json"), kHash1);
  EXPECT_EQ(isUUIDRegistered(kHash1), 1);
  EXPECT_EQ(G_nSchemaURICount, 1);
  EXPECT_EQ(isValidDmtfURL(zephlane::test::kSchemaLocation), 1);
}

TEST_F(Driver, ProgressCountsWhatTheRunRecorded) {
  InterpreterProgress progress{7, 7, 7};
  zephlaneSchemaInterpreterProgress(&progress);
  EXPECT_EQ(progress.nFiles + progress.nObjects + progress.nReferences, 0u);
  WriteSchema("Root.json", R"({"items": {"$ref": "A.json#/definitions/X"}, "required": ["x"]})");
  WriteSchema("A.json", R"({"definitions": {"X": {"type": "string"}}})");
  EXPECT_EQ(Interpret().result, 0);
  zephlaneSchemaInterpreterProgress(&progress);
  EXPECT_EQ(progress.nFiles, 2u);
  EXPECT_EQ(progress.nObjects, 5u);
  EXPECT_EQ(progress.nReferences, 1u);
  zephlaneSchemaInterpreterProgress(nullptr);
}

// `depth` objects, one in the other.
std::string NestedObjects(int depth) {
  std::string text;
  for (int i = 1; i < depth; ++i) { text += R"({"not": )"; }
  return text + "{}" + std::string(static_cast<std::size_t>(depth - 1), '}');
}

TEST_F(Driver, DeepestDocumentThatLoadsIsInterpreted) {
  WriteSchema("Root.json", NestedObjects(JSON_PARSER_MAX_DEPTH));
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(isUUIDRegistered("00000000-0000-0000-0001-0000000007ff"), 1);
}

TEST_F(Driver, DeeperDocumentDoesNotLoad) {
  WriteSchema("Root.json", NestedObjects(JSON_PARSER_MAX_DEPTH + 1));
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_TRUE(run.err.ends_with("Failed to open schema file at /tmp/FOSS_schema/Root.json !!!\n"));
  EXPECT_EQ(Dump(), "");
}

// A run in a thread with a stack of `size` bytes.
Outcome InterpretOnStack(std::size_t size) {
  Outcome run;
  const Output printed = Capture([&] {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setstacksize(&attributes, size);
    const auto interpret = [](void* result) -> void* {
      *static_cast<int*>(result) = zephlaneSchemaInterpreter(kRootSchema);
      return nullptr;
    };
    pthread_t thread;
    pthread_create(&thread, &attributes, interpret, &run.result);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
  });
  run.err = Masked(printed.err);
  return run;
}

// On a small stack the run fails with a report instead of overrunning it.
TEST_F(Driver, DeepDocumentFailsOnASmallStack) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "the sanitizer sets the size of small stacks, and leaves less than Jansson takes";
#endif
  WriteSchema("Root.json", NestedObjects(JSON_PARSER_MAX_DEPTH));
  const Outcome run = InterpretOnStack(256 * 1024);
  EXPECT_EQ(run.result, 1);
  EXPECT_NE(run.err.find("Schemas are nested too deeply for the stack !!!"), std::string::npos);
}

TEST_F(Driver, SchemaNameOf199CharactersIsFollowedAnd200Refused) {
  const std::string name = std::string(194, 'n') + ".json";
  WriteSchema("Root.json", R"({"items": {"$ref": ")" + name + "\"}}");
  WriteSchema(name, R"({"title": "Long"})");
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_EQ(Ask({"HGET", "ZephlaneSchemaTitleUuidHash", "Long"}), getSchemaHashID(name.c_str()));

  WriteSchema("Root.json", R"({"items": {"$ref": "n)" + name + "\"}}");
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_TRUE(run.err.starts_with(
      InterpreterReport("resourcePathParser.cpp", "Length of schema name is out of buffer size")));
}

TEST_F(Driver, SchemaOfTooManyObjectsFails) {
  std::string members;
  for (int i = 0; i < 6000; ++i) {
    members += std::string(i == 0 ? "" : ", ") + "\"P" + std::to_string(i) + "\": {}";
  }
  WriteSchema("Root.json", "{\"properties\": {" + members + "}}");
  const Outcome run = Interpret();
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err,
            TreeReport("Hash object collection table is out of room !") +
                "[ERROR] schemaObjectParser.cpp:###: Failed to creat root object hash !!!\n"
                "[ERROR] schemaObjectParser.cpp:###: Error at << Root.json: P5999 >>\n"
                "[ERROR] schemaObjectParser.cpp:###: Something wrong in 'properties' field ...\n" +
                kRootObjectFailed);
  EXPECT_EQ(Ask({"HLEN", kHash0}), "6000");
}

// A directory of the caller's own is no accepted location; without one, names are taken as paths.
TEST_F(Driver, RootWithoutDirectoryIsReadFromTheWorkingDirectory) {
  WriteSchema("Root.json", R"({"items": {"$ref": "A.json"}})");
  WriteSchema("A.json", "{}");
  std::filesystem::current_path(zephlane::test::kSchemaDirectory);
  const Outcome run = Interpret("Root.json");
  EXPECT_EQ(run.result, 0);
  EXPECT_STREQ(getSchemaHashID("A.json"), kHash1);
}

// The steps that a run takes for each file, by themselves.
class RootHashes : public Driver {
 protected:
  // The ID and what is printed; "NULL" for no ID.
  std::string Generate(const std::string& document) {
    const Json json(json_loads(document.c_str(), 0, nullptr));
    return WithReports([&] { return generateSchemaRootHash(ctx(), json.get()); });
  }
  std::string ParseFile(const std::string& name) {
    return WithReports([&] { return parseReferenceSchemaFile(ctx(), name.c_str()); });
  }
  template <typename Call>
  std::string WithReports(Call call) {
    CString id;
    const Output printed = Capture([&] { id.reset(call()); });
    return std::string(id ? id.get() : "NULL") + "\n" + Masked(printed.err);
  }
};

TEST_F(RootHashes, NeedBothArguments) {
  const Json document(json_object());
  const std::string expected = "NULL\n" + Report("generateSchemaRootHash: argument is NULL!");
  EXPECT_EQ(WithReports([&] { return generateSchemaRootHash(nullptr, document.get()); }), expected);
  EXPECT_EQ(WithReports([&] { return generateSchemaRootHash(ctx(), nullptr); }), expected);
}

TEST_F(RootHashes, AreNumberedOrGiven) {
  EXPECT_EQ(Generate("{}"), std::string(kHash0) + "\n");
  EXPECT_EQ(Generate(R"({"typeId": ""})"), std::string(kHash1) + "\n");
  EXPECT_EQ(Generate(R"({"typeId": "00000000-0000-0000-0001-FFFFFFFFFFFF"})"),
            std::string(kServiceId) + "\n");
  EXPECT_EQ(Ask({"HGETALL", kServiceId}), "DummyKey\nDummyValue");
  EXPECT_EQ(isUUIDRegistered(kServiceId), 1);
}

TEST_F(RootHashes, AreRefusedOnceTheCollectionIsFull) {
  while (recordRedisObjectID("x") == 0) {}
  const std::string full = TreeReport("Hash object collection table is out of room !");
  EXPECT_EQ(Generate("{}"), "NULL\n" + full + Report("Failed to creat root object hash !!!"));
  EXPECT_EQ(Generate(R"({"typeId": "00000000-0000-0000-0001-ffffffffffff"})"),
            "NULL\n" + full + Report("Create type schema hash failed"));
}

TEST_F(RootHashes, ReferencedFileNeedsBothArguments) {
  const std::string expected = "NULL\n" + Report("Argument is NULL pointer !!!");
  EXPECT_EQ(WithReports([&] { return parseReferenceSchemaFile(nullptr, "A.json"); }), expected);
  EXPECT_EQ(WithReports([&] { return parseReferenceSchemaFile(ctx(), nullptr); }), expected);
}

TEST_F(RootHashes, ReferencedFileIsReadFromTheDirectoryOfTheLastRun) {
  WriteSchema("A.json", R"({"title": "A"})");
  EXPECT_EQ(Interpret().result, 0);
  EXPECT_EQ(ParseFile("A.json"), std::string(kHash1) + "\n");
  EXPECT_STREQ(getSchemaHashID("A.json"), kHash1);
  EXPECT_EQ(Ask({"HGET", kHash1, "title"}), "A");
  EXPECT_EQ(Ask({"SISMEMBER", "ZephlaneSchemaInstances", kHash1}), "1");
}

TEST_F(RootHashes, ReferencedFileIsAPathBeforeAnyRun) {
  EXPECT_EQ(ParseFile("/tmp/none.json"), "NULL\n" + Report("/tmp/none.json: not such schema file") +
                                             "Failed to open schema file at /tmp/none.json !!!\n");
}

TEST_F(RootHashes, ReferencedFileNameOf200CharactersIsRefused) {
  EXPECT_EQ(ParseFile(std::string(200, 'n')), "NULL\n" + Report("Length of schema name !!!"));
}

TEST_F(RootHashes, FullSchemaTableRefusesAReferencedFile) {
  for (int i = 0; i < 4000; ++i) { EXPECT_EQ(schemaReferTableInsertEntry("x", "y"), 0); }
  WriteSchema("A.json", "{}");
  EXPECT_EQ(ParseFile("/tmp/FOSS_schema/A.json"),
            "NULL\n" + TreeReport(">> /tmp/FOSS_schema/A.json <<") +
                TreeReport(">> There's no free slot to insert schema:uuid mapping into table <<"));
}

// Runs against a server that answers as a case needs it. It waits for the end of the connection, so
// a run that left its own open would hang.
class AnsweredDriver : public Driver {
 protected:
  Outcome InterpretAnswered(AnsweringServer::Answer answer) {
    const AnsweringServer server(std::move(answer));
    return InterpretOnce(kRootSchema);
  }
  void SetUp() override {
    Driver::SetUp();
    Ask({"SHUTDOWN", "NOSAVE"});
  }
};

AnsweringServer::Answer AnswerTo(const std::string& command, const std::string& reply) {
  return [=](const std::string& sent) {
    return sent == command ? std::optional(reply) : std::nullopt;
  };
}

TEST_F(AnsweredDriver, FailedRootHashIsReported) {
  const Outcome run = InterpretAnswered(
      AnswerTo("HMSET " + std::string(kHash0) + " DummyKey DummyValue", "+QUEUED\r\n"));
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err, TreeReport("<DummyKey : DummyValue> insert pair into hash failed!!") +
                         Report("Failed to creat root object hash !!!") + kRootHashFailed);
}

TEST_F(AnsweredDriver, FailedHashOfATypeIdIsReported) {
  WriteSchema("Root.json", R"({"typeId": "00000000-0000-0000-0001-ffffffffffff"})");
  const Outcome run = InterpretAnswered(
      AnswerTo("HMSET " + std::string(kServiceId) + " DummyKey DummyValue", "+QUEUED\r\n"));
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err, TreeReport("<DummyKey : DummyValue> insert pair into hash failed!!") +
                         Report("Create type schema hash failed") + kRootHashFailed);
}

TEST_F(AnsweredDriver, FailedTitleIndexIsReported) {
  const Outcome run =
      InterpretAnswered(AnswerTo("HMSET ZephlaneSchemaTitleUuidHash", "+QUEUED\r\n"));
  EXPECT_EQ(run.result, 1);
  EXPECT_EQ(run.err, TreeReport("Set data to hash ZephlaneSchemaTitleUuidHash fail!\n") +
                         Report("hashTreeCreateSchemaTitleUUIDMapping fail !!!"));
}

// A run whose connection ends at the command number `lost`, and how far it came.
struct LostRun {
  int result = -1;
  int sent = 0;
  bool has_index = false;
};

LostRun InterpretLosing(int lost) {
  LostRun run;
  const auto answer = [&](const std::string& command) -> std::optional<std::string> {
    if (++run.sent == lost) { return ""; }
    run.has_index = run.has_index || command == "HMSET ZephlaneSchemaTitleUuidHash";
    return std::nullopt;
  };
  {
    const AnsweringServer server(answer);  // its end is the end of its thread
    run.result = InterpretOnce(kRootSchema).result;
  }
  return run;
}

// Only what follows the first command of the title index may be lost without failing the run.
TEST_F(AnsweredDriver, ConnectionLostAtAnyCommandEndsTheRun) {
  WriteSchema("Root.json", R"({"title": "Root", "required": ["x"], "not": {"type": "null"}})");
  for (int lost = 1; lost < 200; ++lost) {
    SCOPED_TRACE(lost);
    const LostRun run = InterpretLosing(lost);
    EXPECT_EQ(run.result, run.has_index ? 0 : 1);
    if (run.sent < lost) { return; }
  }
  FAIL() << "the run does not end";
}

// A run during which memory is out, and what it prints.
struct StarvedRun {
  int result = -1;
  bool has_happened = true;
  std::string errors;
};

StarvedRun InterpretStarved(int allocation, bool and_all_after) {
  StarvedRun run;
  const long open = OpenDescriptors();
  const Output printed = Capture([&] {
    AllocationFault fault(allocation, and_all_after);
    run.result = zephlaneSchemaInterpreter(kRootSchema);
    run.has_happened = fault.Happened();
  });
  EXPECT_EQ(OpenDescriptors(), open);
  run.errors = Masked(printed.err);
  return run;
}

// Memory runs out at each allocation of a run in turn, for that one call or for all after it too.
class StarvedDriver : public Driver, public testing::WithParamInterface<bool> {};

TEST_P(StarvedDriver, NeverCrashesAndLeavesNothingOpen) {
  WriteSchema("Root.json", R"({"title": "Root", "required": ["x"], "type": ["a", "b"],
      "items": {"$ref": "A.json#/definitions/X"}, "not": {"$ref": "#"}})");
  WriteSchema("A.json", R"({"definitions": {"X": {"anyOf": [{"type": "null"}]}}})");
  StarvedRun run;
  std::string errors;
  for (int allocation = 1; run.has_happened; ++allocation) {
    SCOPED_TRACE(allocation);
    Ask({"FLUSHALL"});
    run = InterpretStarved(allocation, GetParam());
    errors += run.errors;
    EXPECT_TRUE(run.result == 0 || (run.result == 1 && run.has_happened));
    ASSERT_LT(allocation, 2000);
  }
  const std::string route = Report("malloc: parser tracking spot");
  EXPECT_NE(errors.find(route + Report("Internalize schema data into Redis cache failed !!!")),
            std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(AtOneCall, StarvedDriver, testing::Values(false));
INSTANTIATE_TEST_SUITE_P(FromOneCallOn, StarvedDriver, testing::Values(true));

}  // namespace
