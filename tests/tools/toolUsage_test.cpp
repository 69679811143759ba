// SPDX-License-Identifier: MIT
//
// Options, help and exit codes.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::StartsWith;
using zephlane::test::RunTool;
using zephlane::test::RunToolInto;
using zephlane::test::RunToolUnread;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;

class ToolUsage : public StoreTest {};

TEST_F(ToolUsage, HelpNamesEveryVerbAndTheExitCodes) {
  const ToolRun run = RunTool({"--help"});
  EXPECT_EQ(run.status, 0);
  for (const char* verb : {"interpret", "tree", "get", "type", "uuid", "annotate", "validate", "rm",
                           "task", "hook", "event", "watch"}) {
    EXPECT_THAT(run.out, HasSubstr(std::string("\n  ") + verb + " "));
  }
  EXPECT_THAT(run.out, HasSubstr("Exit code: 0 done, 1 failed, 2 bad usage."));
  EXPECT_EQ(run.err, "");
}

struct VerbHelp {
  const char* verb;
  const char* usage;
  const char* example;
};

class ToolVerbHelp : public testing::TestWithParam<VerbHelp> {};

TEST_P(ToolVerbHelp, ShowsUsageAndAnExample) {
  const ToolRun run = RunTool({GetParam().verb, "--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, HasSubstr(std::string("Usage: zephlane ") + GetParam().usage + "\n"));
  EXPECT_THAT(run.out, HasSubstr(std::string("\n  zephlane ") + GetParam().example + "\n"));
  EXPECT_EQ(run.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    AllVerbs, ToolVerbHelp,
    testing::Values(VerbHelp{"interpret", "interpret [OPTIONS] ROOT",
                             "interpret /tmp/FOSS_schema/ServiceRoot.v1_0_0.json"},
                    VerbHelp{"tree", "tree [OPTIONS] KEY",
                             "tree 00000000-0000-0000-0001-ffffffffffff --depth 2"},
                    VerbHelp{"get", "get [OPTIONS] KEY", "get ZephlaneSchemaTitleUuidHash"},
                    VerbHelp{"type", "type [OPTIONS] KEY", "type ZephlaneSchemaInstances"},
                    VerbHelp{"uuid", "uuid [OPTIONS]", "uuid -n 3"},
                    VerbHelp{"annotate", "annotate [OPTIONS] KEY SCHEMA",
                             "annotate 10000000-0000-0000-0000-000000000001 Chassis.1.0.0"},
                    VerbHelp{"validate", "validate [OPTIONS] KEY",
                             "validate 10000000-0000-0000-0000-000000000001"},
                    VerbHelp{"watch", "watch [OPTIONS]", "watch --json --count 1"},
                    VerbHelp{"rm", "rm [OPTIONS] KEY",
                             "rm --tree 10000000-0000-0000-0000-000000000001 --field Fans "
                             "Status"}),
    [](const auto& test) { return std::string(test.param.verb); });

struct NestedHelp {
  const char* verb;
  const char* nested;
  const char* usage;
  const char* example;
};

class ToolNestedHelp : public testing::TestWithParam<NestedHelp> {};

TEST_P(ToolNestedHelp, ShowsUsageAndAnExample) {
  const auto& [verb, nested, usage, example] = GetParam();
  const std::string name = std::string(verb) + " " + nested;
  const ToolRun run = RunTool({verb, nested, "--help"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, HasSubstr("Usage: zephlane " + name + " [OPTIONS]" + usage + "\n"));
  EXPECT_THAT(run.out, HasSubstr("\n  zephlane " + name + " " + example + "\n"));
  EXPECT_EQ(run.err, "");
}

INSTANTIATE_TEST_SUITE_P(
    AllVerbs, ToolNestedHelp,
    testing::Values(NestedHelp{"task", "create", "", "--channel firmware-updates --arg image-7"},
                    NestedHelp{"task", "update", " KEY STATE",
                               "10000000-0000-0000-0000-000000000001 Completed"},
                    NestedHelp{"task", "show", " KEY", "10000000-0000-0000-0000-000000000001"},
                    NestedHelp{"hook", "trigger", " UUID MSGID A1 A2 A3",
                               "10000000-0000-0000-0000-000000000001 00001 on left 7"},
                    NestedHelp{"event", "send", "",
                               "--name Overheat --type Alert --message-id 1.0.Hot --arg left "
                               "--arg 90"},
                    NestedHelp{"event", "show", " KEY", "10000000-0000-0000-0000-000000000001"},
                    NestedHelp{"hook", "list", " UUID", "10000000-0000-0000-0000-000000000001"}),
    [](const auto& test) { return std::string(test.param.verb) + "_" + test.param.nested; });

TEST_F(ToolUsage, VersionIsData) {
  const ToolRun run = RunTool({"--version"});
  EXPECT_EQ(run.status, 0);
  EXPECT_THAT(run.out, MatchesRegex("zephlane [0-9]+[.][0-9]+[.][0-9]+\n"));
  EXPECT_EQ(run.err, "");
}

class ToolBadUsage : public testing::TestWithParam<std::vector<std::string>> {};

TEST_P(ToolBadUsage, IsExitCodeTwoWithAMessageAndNoData) {
  const ToolRun run = RunTool(GetParam());
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, StartsWith("zephlane: "));
  EXPECT_THAT(run.err, HasSubstr("--help"));
}

INSTANTIATE_TEST_SUITE_P(
    Arguments, ToolBadUsage,
    testing::Values(
        std::vector<std::string>{}, std::vector<std::string>{"paint"},
        std::vector<std::string>{"--paint"}, std::vector<std::string>{"interpret"},
        std::vector<std::string>{"get"}, std::vector<std::string>{"get", "a", "b"},
        std::vector<std::string>{"type"}, std::vector<std::string>{"tree"},
        std::vector<std::string>{"tree", "key", "--depth"},
        std::vector<std::string>{"tree", "key", "--depth", "deep"},
        std::vector<std::string>{"tree", "key", "--depth", "-1"},
        std::vector<std::string>{"tree", "key", "--depth", "1001"},
        std::vector<std::string>{"uuid", "-n", "0"},
        std::vector<std::string>{"uuid", "-n", "1000001"},
        std::vector<std::string>{"uuid", "-n", "many"}, std::vector<std::string>{"uuid", "3"},
        std::vector<std::string>{"get", "a", "type", "a"},
        std::vector<std::string>{"annotate", "key"}, std::vector<std::string>{"validate"},
        std::vector<std::string>{"rm"}, std::vector<std::string>{"rm", "key", "--field", "Fans"},
        std::vector<std::string>{"task"}, std::vector<std::string>{"task", "create"},
        std::vector<std::string>{"task", "update", "key"},
        std::vector<std::string>{"task", "update", "key", std::string(1024, 'x')},
        std::vector<std::string>{"task", "show"}, std::vector<std::string>{"event", "watch"},
        std::vector<std::string>{"event", "show"},
        std::vector<std::string>{"event", "send", "--type", std::string(256, 'x')},
        std::vector<std::string>{"event", "send", "--oem", std::string(37, 'x')},
        std::vector<std::string>{"hook", "event", "watch"},
        std::vector<std::string>{"hook", "list"},
        std::vector<std::string>{"hook", "trigger", "uuid", "1", "a", "b"},
        std::vector<std::string>{"hook", "trigger", "uuid", "000001", "a", "b", "c"},
        std::vector<std::string>{"hook", "trigger", std::string(37, 'u'), "1", "a", "b", "c"},
        std::vector<std::string>{"hook", "trigger", "uuid", "1", "a", "b", std::string(40, 'c')}));

TEST_F(ToolUsage, MessageNamesTheHelpOfTheVerb) {
  EXPECT_EQ(RunTool({}).err, "zephlane: A verb is required\nRun zephlane --help for more.\n");
  EXPECT_EQ(RunTool({"get"}).err, "zephlane: KEY is required\nRun zephlane get --help for more.\n");
  EXPECT_EQ(RunTool({"task"}).err,
            "zephlane: A verb is required\nRun zephlane task --help for more.\n");
  EXPECT_EQ(RunTool({"task", "show"}).err,
            "zephlane: KEY is required\nRun zephlane task show --help for more.\n");
}

TEST_F(ToolUsage, OutputThatCannotBeWrittenIsAFailure) {
  Ask({"SET", "name", "value"});
  const ToolRun run = RunToolInto("/dev/full", {"get", "name"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.err, "zephlane: Cannot write to standard output: No space left on device\n");
}

TEST_F(ToolUsage, ReaderThatStoppedReadingIsAQuietFailure) {
  const ToolRun run = RunToolUnread({"uuid", "-n", "1000"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, IsEmpty());
  EXPECT_EQ(Ask({"GET", "autoUUID"}), "10000000-0000-0000-0000-000000000001");
}

}  // namespace
