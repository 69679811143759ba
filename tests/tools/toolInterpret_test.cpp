// SPDX-License-Identifier: MIT
//
// interpret, over a small model of two files.
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::AnyOf;
using testing::ContainsRegex;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using zephlane::test::RunTool;
using zephlane::test::RunToolOnTerminals;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;
using zephlane::test::WriteFile;

constexpr char kRoot[] = "/tmp/FOSS_schema/Root.json";
constexpr char kConfiguration[] = "/tmp/etc/SchemaURIConf.json";

constexpr char kRootSchema[] = R"({
  "title": "Root.1.0.0",
  "typeId": "00000000-0000-0000-0001-ffffffffffff",
  "$ref": "#/definitions/Root",
  "definitions": {
    "Root": {
      "type": "object",
      "properties": {
        "Fan": {"$ref": "Fan.json#/definitions/Fan"},
        "Mode": {"type": "string", "enum": ["Quiet", "Fast"]},
        "Part": {"$ref": "#/definitions/Part"}
      },
      "required": ["Mode"]
    },
    "Part": {"type": ["string", "null"]}
  }
})";
constexpr char kFanSchema[] = R"({
  "title": "Fan.1.0.0",
  "definitions": {"Fan": {"type": "object", "properties": {"Speed": {"type": "integer"}}}}
})";

class ToolInterpret : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    std::filesystem::create_directories("/tmp/FOSS_schema");
    std::filesystem::create_directories("/tmp/etc");
    WriteFile(kConfiguration, R"({"DmtfSchemaUri": "http://schemas.example.com/"})");
    WriteFile(kRoot, kRootSchema);
    WriteFile("/tmp/FOSS_schema/Fan.json", kFanSchema);
  }
  void TearDown() override {
    std::filesystem::remove_all("/tmp/FOSS_schema");
    std::filesystem::remove_all("/tmp/etc");
    StoreTest::TearDown();
  }
};

// `text` with its times replaced.
std::string WithoutTimes(const std::string& text) {
  return std::regex_replace(text, std::regex(R"(\d+\.\d\d s\b)"), "#.## s");
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) { lines.push_back(line); }
  return lines;
}

constexpr char kLastProgress[] = "Interpreting: 2 files, 11 objects, 2 references, #.## s";

TEST_F(ToolInterpret, SummaryIsAllThatIsOnStandardOutput) {
  const ToolRun run = RunTool({"interpret", kRoot});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(WithoutTimes(run.out),
            "Result:      interpreted\n"
            "Root:        /tmp/FOSS_schema/Root.json\n"
            "Files:       2\n"
            "Objects:     11 (9 hashes, 2 sets)\n"
            "References:  2\n"
            "Elapsed:     #.## s\n"
            "In store:    13 keys (10 hashes, 3 sets, 0 lists, 0 others)\n");
}

TEST_F(ToolInterpret, StandardErrorIsProgressAndWhatTheLibraryPrintsInWholeLines) {
  const std::vector<std::string> lines = Lines(WithoutTimes(RunTool({"interpret", kRoot}).err));
  ASSERT_GE(lines.size(), 3U);
  EXPECT_THAT(lines.back(), kLastProgress);
  std::size_t progress = 0;
  for (const std::string& line : lines) {
    EXPECT_THAT(line, AnyOf(ContainsRegex("^Interpreting: [0-9]+ files?, [0-9]+ objects?, "
                                          "[0-9]+ references?, #.## s$"),
                            ContainsRegex("^[0-9]+\\) [^)]*$")));
    progress += line.starts_with("Interpreting") ? 1U : 0U;
  }
  EXPECT_GE(progress, 2U);
  EXPECT_LT(progress, lines.size());
}

TEST_F(ToolInterpret, ProgressOnATerminalIsOneLineRewrittenInPlace) {
  const ToolRun run = RunToolOnTerminals({"interpret", kRoot});
  EXPECT_EQ(run.status, 0);
  const std::string err = WithoutTimes(run.err);
  EXPECT_THAT(err, StartsWith("\r\x1b[KInterpreting: "));
  EXPECT_THAT(err, EndsWith(std::string("\r\x1b[K") + kLastProgress + "\r\n"));
  // What the library prints stands in lines of its own, where the progress was cleared.
  EXPECT_THAT(err, HasSubstr("\r\x1b[K0) title\r\n"));
  EXPECT_FALSE(std::regex_search(err, std::regex("[^K\n](Interpreting|[0-9]\\) )")));
}

TEST_F(ToolInterpret, SecondRunSaysWhatToDeleteAndWritesNothing) {
  EXPECT_EQ(RunTool({"interpret", kRoot}).status, 0);
  const std::string before = Dump();
  const ToolRun run = RunTool({"interpret", kRoot});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out,
            "Result:      already interpreted; nothing was written\n"
            "Root:        /tmp/FOSS_schema/Root.json\n"
            "In store:    13 keys (10 hashes, 3 sets, 0 lists, 0 others)\n"
            "\n"
            "To interpret anew, delete the hash 00000000-0000-0000-0001-ffffffffffff and run this "
            "again:\n"
            "  REDISCLI_AUTH=\"$(cat /tmp/redis.requirepass)\" redis-cli DEL "
            "00000000-0000-0000-0001-ffffffffffff\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(Dump(), before);
}

TEST_F(ToolInterpret, RunsAnewAfterTheDeletionItAdvises) {
  EXPECT_EQ(RunTool({"interpret", kRoot}).status, 0);
  Ask({"DEL", "00000000-0000-0000-0001-ffffffffffff"});
  EXPECT_THAT(RunTool({"interpret", kRoot}).out, StartsWith("Result:      interpreted\n"));
}

TEST_F(ToolInterpret, StoreLineCountsEverythingByType) {
  Ask({"RPUSH", "list", "item"});
  Ask({"SET", "string", "value"});
  Ask({"ZADD", "zset", "1", "member"});
  EXPECT_THAT(RunTool({"interpret", kRoot}).out,
              HasSubstr("In store:    16 keys (10 hashes, 3 sets, 1 list, 2 others)\n"));
}

TEST_F(ToolInterpret, ManyKeysAreCountedEachOnce) {
  for (int i = 0; i < 3000; ++i) { Ask({"SET", "key" + std::to_string(i), "value"}); }
  EXPECT_THAT(RunTool({"interpret", kRoot}).out, HasSubstr("0 lists, 3000 others)\n"));
}

TEST_F(ToolInterpret, FailedRunIsAFailureWithTheLibrarysReports) {
  WriteFile(kRoot, "{\"definitions\": ");
  const ToolRun run = RunTool({"interpret", kRoot});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out,
              StartsWith("Result:      failed; what was written before stays in the store\n"));
  EXPECT_THAT(run.err, HasSubstr("error: on line 1: "));
  EXPECT_THAT(run.err, HasSubstr("Failed to open schema file at /tmp/FOSS_schema/Root.json !!!\n"));
}

TEST_F(ToolInterpret, PartialRunSaysHowFarItCame) {
  WriteFile("/tmp/FOSS_schema/Fan.json", "not JSON");
  const ToolRun run = RunTool({"interpret", kRoot});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, HasSubstr("Files:       1\n"));
  EXPECT_THAT(run.err, HasSubstr("[ERROR] zephlaneSchemaInterpreter.cpp:"));
}

TEST_F(ToolInterpret, RootElsewhereIsRefusedWithTheReason) {
  std::filesystem::create_directories("/tmp/FOSS_schema/more");
  WriteFile("/tmp/FOSS_schema/more/Root.json", kRootSchema);
  const ToolRun run = RunTool({"interpret", "/tmp/FOSS_schema/more/Root.json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr("Resource prefix is invalid [/tmp/FOSS_schema/more/]\n"));
  EXPECT_THAT(run.err,
              EndsWith("zephlane: The root schema file may lie in /tmp/FOSS_schema/, or in the "
                       "working directory and be given by its name alone, but not in "
                       "/tmp/FOSS_schema/more/.\n"));
}

TEST_F(ToolInterpret, MissingFilesAreSaidBeforeAnythingRuns) {
  std::filesystem::remove(kRoot);
  std::filesystem::remove(kConfiguration);
  const ToolRun run = RunTool({"interpret", kRoot});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "zephlane: The root schema file /tmp/FOSS_schema/Root.json cannot be read: "
            "No such file or directory.\n"
            "zephlane: The schema locations in /tmp/etc/SchemaURIConf.json cannot be read: "
            "No such file or directory.\n"
            "  Write them:   mkdir -p /tmp/etc\n"
            "                echo '{\"DmtfSchemaUri\": \"http://schemas.example.com/\"}' > "
            "/tmp/etc/SchemaURIConf.json\n");
  EXPECT_EQ(Dump(), "");
}

TEST_F(ToolInterpret, DirectoryIsNoRoot) {
  const ToolRun run = RunTool({"interpret", "/tmp/FOSS_schema"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err,
            "zephlane: The root schema file /tmp/FOSS_schema cannot be read: Is a directory.\n");
}

TEST_F(ToolInterpret, TreeOfTheResultReadsLikeTheSchema) {
  EXPECT_EQ(RunTool({"interpret", kRoot}).status, 0);
  const ToolRun run = RunTool({"tree", "Root.1.0.0"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(run.out, Not(HasSubstr("Dummy")));
  EXPECT_THAT(run.out, EndsWith("└─ definitions: hash\n"
                                "   ├─ Part: string | null\n"
                                "   └─ Root: object\n"
                                "      ├─ Fan → Fan.1.0.0/Fan\n"
                                "      ├─ Mode: string (enum {Fast, Quiet})\n"
                                "      ├─ Part → Part  ^ see above\n"
                                "      └─ required: set {Mode}\n"));
}

}  // namespace
