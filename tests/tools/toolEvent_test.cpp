// SPDX-License-Identifier: MIT
//
// event send and event show.
#include <regex>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/eventSchema.h"
#include "tools/toolRun.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using zephlane::test::RunTool;
using zephlane::test::ToolRun;

constexpr char kEvent[] = "10000000-0000-0000-0000-000000000001";
const std::vector<std::string> kSend = {"event",        "send",    "--name",    "Overheat",
                                        "--oem",        "vendor",  "--type",    "Alert",
                                        "--severity",   "Warning", "--message", "Too hot",
                                        "--message-id", "1.0.Hot", "--origin",  "fan",
                                        "--arg",        "left",    "--arg",     "90"};

using ToolEvent = zephlane::test::EventSchemaTest;

// `text` with its times replaced.
std::string WithoutTimes(const std::string& text) {
  return std::regex_replace(text, std::regex(R"(\d{4}-\d\d-\d\dT[0-9:+-]+)"), "TIME");
}

TEST_F(ToolEvent, SendPrintsTheUuidAndAddsTheEventToTheCollection) {
  const ToolRun run = RunTool(kSend);
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, std::string(kEvent) + "\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(Ask({"LRANGE", "collection", "0", "-1"}), kEvent);
}

TEST_F(ToolEvent, ShowPrintsTheEventWithItsRecordItsArgumentsAndItsOrigin) {
  EXPECT_EQ(RunTool(kSend).status, 0);
  const ToolRun run = RunTool({"event", "show", kEvent});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(WithoutTimes(run.out),
            "Events:\n"
            "- EventId = 00000001\n"
            "  EventTimestamp = TIME\n"
            "  EventType = Alert\n"
            "  MemberId = 0\n"
            "  Message = Too hot\n"
            "  MessageArgs:\n"
            "  - left\n"
            "  - 90\n"
            "  MessageId = 1.0.Hot\n"
            "  OriginOfCondition:\n"
            "    @odata.id = /chassis/fan\n"
            "    typeID = originType\n"
            "  Severity = Warning\n"
            "  typeID = recordType\n"
            "Name = Overheat\n"
            "Oem = vendor\n"
            "typeID = eventType\n");
}

TEST_F(ToolEvent, MissingRequiredPropertyIsAFailureWithTheLibrarysReports) {
  const ToolRun run = RunTool({"event", "send", "--name", "Overheat", "--type", "Alert"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr(": Failed to create event records.\n"));
  EXPECT_THAT(run.err, EndsWith("all properties that this requires.\n"));
  EXPECT_EQ(Ask({"EXISTS", "collection"}), "0");
}

TEST_F(ToolEvent, MissingSchemaIsAFailureWithTheReason) {
  Ask({"FLUSHALL"});
  const ToolRun run = RunTool(kSend);
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr(": Failed to get Event schema ID.\n"));
  EXPECT_THAT(run.err, HasSubstr("needs the schema Event.1.0.0 in the store"));
}

TEST_F(ToolEvent, ShowOfWhatIsNoEventIsAFailure) {
  const ToolRun run = RunTool({"event", "show", "schema"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "zephlane: schema is no event: it has no records.\n");
}

}  // namespace
