// SPDX-License-Identifier: MIT
//
// The parts of the tool that make its output, without a process around them.
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <string_view>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console.h"
#include "line.h"
#include "plainText.h"
#include "relay.h"
#include "runText.h"
#include "support/output.h"
#include "treeText.h"
#include "treeWords.h"

namespace {

using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using zephlane::test::Capture;
using zephlane::test::Output;
using zephlane::tool::Colour;
using zephlane::tool::Columns;
using zephlane::tool::Console;
using zephlane::tool::Counted;
using zephlane::tool::Kind;
using zephlane::tool::Line;
using zephlane::tool::Printable;
using zephlane::tool::ProgressText;
using zephlane::tool::Relay;
using zephlane::tool::RunResult;
using zephlane::tool::RunSummary;
using zephlane::tool::SchemaTypeText;
using zephlane::tool::ShortKey;
using zephlane::tool::Shown;
using zephlane::tool::SummaryText;
using zephlane::tool::TreeModel;
using zephlane::tool::TreeObject;
using zephlane::tool::TreeText;

TEST(PlainText, ControlCharactersAreWrittenOut) {
  EXPECT_EQ(Printable("a\nb\tc\x1b[m\x7f\r"), "a\\nb\\tc\\x1b[m\\x7f\\x0d");
}

TEST(PlainText, OtherCharactersStay) {
  EXPECT_EQ(Printable("^[ -~]*\\$ Grüße …"), "^[ -~]*\\$ Grüße …");
}

TEST(PlainText, ColumnsAreCharacters) {
  EXPECT_EQ(Columns("├─ x"), 4U);
}

TEST(PlainText, CountsAgreeWithTheirNoun) {
  EXPECT_EQ(Counted(0, "hash", "hashes"), "0 hashes");
  EXPECT_EQ(Counted(1, "hash", "hashes"), "1 hash");
}

TEST(LineOfOutput, ColoursTakeNoWidth) {
  Line line(true);
  line.Add("│ ");
  line.Add("type", Colour::kType);
  line.Add("", Colour::kFaint);
  EXPECT_EQ(line.Width(), 6U);
  EXPECT_EQ(line.Text(), "│ \x1b[36mtype\x1b[0m");
}

TEST(TreeWords, ListsOfSchemaTypesAreTakenApart) {
  EXPECT_EQ(SchemaTypeText("string"), "string");
  EXPECT_EQ(SchemaTypeText("stringnull"), "string | null");
  EXPECT_EQ(SchemaTypeText("arraybooleanintegernumbernullobjectstring"),
            "array | boolean | integer | number | null | object | string");
}

TEST(TreeWords, UnknownTypesStayAsTheyAre) {
  EXPECT_EQ(SchemaTypeText("stringfan"), "stringfan");
  EXPECT_EQ(SchemaTypeText(""), "");
}

TEST(TreeWords, ShortKeysKeepWhatDiffers) {
  EXPECT_EQ(ShortKey("10000000-0000-0000-0000-000000000000"), "…0000");
  EXPECT_EQ(ShortKey("10000000-0000-0000-0000-00000000002a"), "…002a");
  EXPECT_EQ(ShortKey("10000000-0000-0000-0000-0000000abcde"), "…abcde");
  EXPECT_EQ(ShortKey("1c9d2e3f-aaaa-bbbb-cccc-0123456789ab"), "…123456789ab");
  EXPECT_EQ(ShortKey("fan-1"), "fan-1");
  EXPECT_EQ(ShortKey("fans"), "fans");
}

TreeObject Object(Kind kind, std::vector<zephlane::tool::TreeEntry> entries) {
  TreeObject object;
  object.kind = kind;
  object.entries = std::move(entries);
  return object;
}

TEST(TreeOfAModel, MarksSayWhereTheObjectIsExpanded) {
  TreeModel model;
  model.root = "root";
  model.objects["root"] = Object(Kind::kHash, {{"A", "one", Shown::kElsewhere},
                                               {"B", "two", Shown::kExpanded},
                                               {"C", "root", Shown::kElsewhere}});
  model.objects["two"] = Object(Kind::kHash, {{"D", "one", Shown::kExpanded}});
  model.objects["one"] = Object(Kind::kHash, {{"E", "e", Shown::kPlain}});
  EXPECT_EQ(TreeText(model, {}),
            "root: hash\n"
            "├─ A → one  v see below\n"
            "├─ B: hash two\n"
            "│  └─ D: hash one\n"
            "│     └─ E = e\n"
            "└─ C → root  ^ see above (cycle)\n");
}

TEST(TreeOfAModel, WhatDoesNotFitIntoTheLineGoesBelowIt) {
  TreeModel model;
  model.root = "root";
  model.objects["root"] = Object(Kind::kHash, {{"S", "set", Shown::kExpanded}});
  model.objects["set"] = Object(Kind::kSet, {{"", "aa", Shown::kPlain}, {"", "b", Shown::kPlain}});
  EXPECT_EQ(TreeText(model, {.columns = 21}), "root: hash\n└─ S: set set {aa, b}\n");
  EXPECT_EQ(TreeText(model, {.columns = 20}), "root: hash\n└─ S: set set\n   ├─ aa\n   └─ b\n");
}

TEST(RunText, ProgressIsOneLine) {
  EXPECT_EQ(ProgressText({12, 340, 1}, 1234ms),
            "Interpreting: 12 files, 340 objects, 1 reference, 1.23 s");
}

TEST(RunText, SummaryOfARun) {
  RunSummary summary;
  summary.result = RunResult::kInterpreted;
  summary.root = "/tmp/FOSS_schema/Root.json";
  summary.counts = {83, 1373, 837};
  summary.sets = 324;
  summary.elapsed = 1260ms;
  summary.store = {1050, 325, 0, 1};
  EXPECT_EQ(SummaryText(summary),
            "Result:      interpreted\n"
            "Root:        /tmp/FOSS_schema/Root.json\n"
            "Files:       83\n"
            "Objects:     1373 (1049 hashes, 324 sets)\n"
            "References:  837\n"
            "Elapsed:     1.26 s\n"
            "In store:    1376 keys (1050 hashes, 325 sets, 0 lists, 1 other)\n");
}

TEST(RunText, SummaryOfAStoreThatCannotBeRead) {
  RunSummary summary;
  summary.root = "Root.json";
  EXPECT_EQ(SummaryText(summary),
            "Result:      failed; what was written before stays in the store\n"
            "Root:        Root.json\n"
            "Files:       0\n"
            "Objects:     0 (0 hashes, 0 sets)\n"
            "References:  0\n"
            "Elapsed:     0.00 s\n"
            "In store:    unknown\n");
}

TEST(ConsoleOutput, WhatIsPrintedGoesToStandardErrorInOrder) {
  const Output output = Capture([] {
    Console console;
    (void)std::printf("printed\n");
    console.Out("data\n");
    console.Tell("message");
  });
  EXPECT_EQ(output.out, "data\n");
  EXPECT_EQ(output.err, "printed\nzephlane: message\n");
}

TEST(ConsoleOutput, StandardOutputIsGivenBackAtTheEnd) {
  const Output output = Capture([] {
    { const Console console; }
    (void)std::printf("printed\n");
  });
  EXPECT_EQ(output.out, "printed\n");
}

TEST(RelayOfPrinting, BringsBothStreamsToStandardErrorWithStatusFirstAndLast) {
  const Output output = Capture([] {
    Console console;
    {
      const Relay relay(console, [] { return std::string("status"); });
      (void)std::fprintf(stderr, "one\n");
      (void)std::printf("two\n");
    }
    console.Out("data\n");
  });
  EXPECT_EQ(output.out, "data\n");
  EXPECT_THAT(output.err, StartsWith("status\n"));
  EXPECT_THAT(output.err, HasSubstr("\none\ntwo\n"));
  EXPECT_THAT(output.err, EndsWith("\nstatus\n"));
}

TEST(RelayOfPrinting, FinishesALineThatWasNotFinished) {
  const Output output = Capture([] {
    Console console;
    const Relay relay(console, [] { return std::string("status"); });
    (void)std::printf("unfinished");
  });
  EXPECT_THAT(output.err, EndsWith("unfinished\nstatus\n"));
}

TEST(RelayOfPrinting, LosesNothingOfMoreThanAPipeHolds) {
  constexpr int kLines = 20'000;
  const Output output = Capture([] {
    Console console;
    const Relay relay(console, [] { return std::string("status"); });
    for (int i = 0; i < kLines; ++i) { (void)std::printf("line %d\n", i); }
  });
  std::string expected;
  for (int i = 0; i < kLines; ++i) { expected += "line " + std::to_string(i) + "\n"; }
  std::string printed = output.err;
  for (std::size_t at = printed.find("status\n"); at != std::string::npos;
       at = printed.find("status\n")) {
    printed.erase(at, std::string_view("status\n").size());
  }
  EXPECT_EQ(printed, expected);
}

}  // namespace
