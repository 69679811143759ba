// SPDX-License-Identifier: MIT
//
// watch, started before anything is announced.
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tools/eventSchema.h"
#include "tools/toolRun.h"

#include <zephlaneAPI.h>

namespace {

using testing::StartsWith;
using zephlane::test::StartedTool;
using zephlane::test::ToolRun;

constexpr char kTask[] = "10000000-0000-0000-0000-000000000009";

class ToolWatch : public zephlane::test::EventSchemaTest {
 protected:
  // Returns once the tool has subscribed, or has ended for a reason that the case will see.
  void AwaitSubscription(const StartedTool& tool) {
    while (
        !tool.HasEnded() &&
        Ask({"PUBSUB", "NUMSUB", "EVENT_OCCURRED", "TASK_STATE_CHANGE", "WebServiceUpdateTree"}) !=
            "EVENT_OCCURRED\n1\nTASK_STATE_CHANGE\n1\nWebServiceUpdateTree\n1") {}
  }
  static void ExpectData(const ToolRun& run, const std::string& data) {
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, data);
    EXPECT_EQ(run.err, "");
  }
};

TEST_F(ToolWatch, PrintsALineWithTheFieldsForEachOfTheThreeChannels) {
  StartedTool tool({"watch", "--count", "3"});
  AwaitSubscription(tool);
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, "Running"), 0);
  Ask({"HSET", "fans", "Name", "Fans"});
  EXPECT_EQ(zephlaneRenewCollection(ctx(), 1, "fans", "gone", 0), 0);
  Ask({"HSET", "event", "Name", "Hot", "Events", "records"});
  Ask({"SADD", "records", "record"});
  Ask({"HSET", "record", "MessageArgs", "arguments"});
  Ask({"RPUSH", "arguments", "left", "90"});
  EXPECT_EQ(sendEventObject(ctx(), "event"), 0);
  ExpectData(tool.Finish(),
             std::string("TASK_STATE_CHANGE ") + kTask +
                 ": TaskState = Running\n"
                 "WebServiceUpdateTree 1 fans gone 0: fans = {Name = Fans}\n"
                 "EVENT_OCCURRED event: Events = [{MessageArgs = [left, 90]}], Name = Hot\n");
}

TEST_F(ToolWatch, JsonIsAnObjectForEachLineWithEverythingEscaped) {
  StartedTool tool({"watch", "--json", "--count", "3"});
  AwaitSubscription(tool);
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), "t\"1", "two\nlines \\ \x01 \xff"), 0);
  EXPECT_EQ(zephlaneRenewObjectURI(ctx(), 2, "a", "b"), 0);
  Ask({"HSET", "event", "Name", "Hei\xc3\x9f", "Events", "records"});
  EXPECT_EQ(sendEventObject(ctx(), "event"), 0);
  ExpectData(tool.Finish(),
             "{\"channel\":\"TASK_STATE_CHANGE\",\"message\":\"t\\\"1\",\"object\":"
             "{\"TaskState\":\"two\\nlines \\\\ \\u0001 \xef\xbf\xbd\"}}\n"
             "{\"channel\":\"WebServiceUpdateTree\",\"message\":\"2 a b\",\"objects\":{}}\n"
             "{\"channel\":\"EVENT_OCCURRED\",\"message\":\"event\",\"object\":"
             "{\"Events\":\"records\",\"Name\":\"Hei\xc3\x9f\"}}\n");
}

TEST_F(ToolWatch, ObjectThatIsGoneIsSaid) {
  StartedTool tool({"watch", "--count", "1"});
  AwaitSubscription(tool);
  EXPECT_EQ(zephlanePublishToChannel(ctx(), "EVENT_OCCURRED", "a\nb"), 0);
  ExpectData(tool.Finish(), "EVENT_OCCURRED a\\nb: (no such object)\n");
}

TEST_F(ToolWatch, ManyAnnouncementsArriveInOrder) {
  constexpr int kMany = 500;
  StartedTool tool({"watch", "--count", std::to_string(kMany)});
  AwaitSubscription(tool);
  std::string expected;
  for (int i = 0; i < kMany; ++i) {
    const std::string number = std::to_string(i);
    EXPECT_EQ(zephlaneRenewCollection(ctx(), 0, number.c_str(), "x", 1), 0);
    expected += "WebServiceUpdateTree 0 " + number + " x 1\n";
  }
  ExpectData(tool.Finish(), expected);
}

TEST_F(ToolWatch, InterruptionEndsItWell) {
  StartedTool tool({"watch"});
  AwaitSubscription(tool);
  tool.Interrupt();
  ExpectData(tool.Finish(), "");
}

TEST_F(ToolWatch, LostConnectionIsAFailure) {
  StartedTool tool({"watch"});
  AwaitSubscription(tool);
  Ask({"CLIENT", "KILL", "TYPE", "pubsub"});
  const ToolRun run = tool.Finish();
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, StartsWith("zephlane: The connection to the Redis server was lost: "));
}

}  // namespace
