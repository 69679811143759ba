// SPDX-License-Identifier: MIT
//
// rm, task and hook.
#include <fcntl.h>
#include <mqueue.h>

#include <cstring>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

#include <zephlaneAPI.h>

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;
using zephlane::test::RunTool;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;

constexpr char kRoot[] = "10000000-0000-0000-0000-00000000000a";
constexpr char kFirst[] = "10000000-0000-0000-0000-000000000001";

class ToolServices : public StoreTest {
 protected:
  static void ExpectQuietSuccess(const std::vector<std::string>& arguments) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "");
  }
  static void ExpectFailure(const std::vector<std::string>& arguments, const std::string& message) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, EndsWith(message));
  }
};

using ToolRm = ToolServices;

TEST_F(ToolRm, DeletesAHashWithItsCompanion) {
  Ask({"HSET", "hash", "a", "b"});
  ASSERT_EQ(zephlaneHashAppendTTLObject(ctx(), "hash", 100), 0);
  ExpectQuietSuccess({"rm", "hash"});
  EXPECT_EQ(Dump(), "");
}

TEST_F(ToolRm, DeletesAKeyOfAnyOtherType) {
  Ask({"SADD", "set", "m"});
  Ask({"RPUSH", "list", "i"});
  Ask({"SET", "string", "v"});
  for (const char* key : {"set", "list", "string"}) { ExpectQuietSuccess({"rm", key}); }
  EXPECT_EQ(Dump(), "");
}

TEST_F(ToolRm, LeavesWhatTheObjectNames) {
  Ask({"HSET", kRoot, "Fan", kFirst});
  Ask({"HSET", kFirst, "Speed", "1"});
  ExpectQuietSuccess({"rm", kRoot});
  EXPECT_EQ(Ask({"KEYS", "*"}), kFirst);
}

TEST_F(ToolRm, TreeDeletesWhatTheFieldsName) {
  Ask({"HSET", kRoot, "Fans", "set", "Status", "status", "Other", "other"});
  Ask({"SADD", "set", kFirst});
  Ask({"HSET", kFirst, "Speed", "1"});
  Ask({"HSET", "status", "State", "Enabled"});
  Ask({"SET", "other", "stays"});
  ExpectQuietSuccess({"rm", "--tree", kRoot, "--field", "Fans", "Status"});
  EXPECT_EQ(Ask({"KEYS", "*"}), "other");
}

TEST_F(ToolRm, TreeOfASetNeedsNoFields) {
  Ask({"SADD", "set", kFirst});
  Ask({"HSET", kFirst, "Speed", "1"});
  ExpectQuietSuccess({"rm", "--tree", "set"});
  EXPECT_EQ(Dump(), "");
}

TEST_F(ToolRm, TreeWithALoopIsAFailureWithTheLibrarysReports) {
  Ask({"HSET", kRoot, "Up", kRoot});
  const ToolRun run = RunTool({"rm", "--tree", kRoot, "--field", "Up"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, HasSubstr(" repeated again!!\n"));
  EXPECT_THAT(run.err, EndsWith(std::string("zephlane: ") + kRoot +
                                " could not be deleted with all below it; what was not reached "
                                "yet is left.\n"));
}

TEST_F(ToolRm, MissingKeyIsAFailure) {
  ExpectFailure({"rm", "nothing"}, "zephlane: There is no key nothing in the store.\n");
}

using ToolTask = ToolServices;

TEST_F(ToolTask, CreatePrintsTheUuidAndLeavesTheMessageWithTheArgument) {
  const ToolRun run = RunTool({"task", "create", "--channel", "c", "--arg", "image 7"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, std::string(kFirst) + "\n");
  EXPECT_EQ(run.err, "");
  EXPECT_THAT(Dump(), HasSubstr("  MsgId = Processing\n"));
  EXPECT_EQ(Ask({"LRANGE", "10000000-0000-0000-0000-000000000004", "0", "-1"}),
            std::string(kFirst) + "\nimage 7");
}

TEST_F(ToolTask, CreateWithoutArgumentLeavesOnlyTheTasksUuid) {
  EXPECT_EQ(RunTool({"task", "create", "--channel", "c"}).status, 0);
  EXPECT_EQ(Ask({"LRANGE", "10000000-0000-0000-0000-000000000004", "0", "-1"}), kFirst);
}

TEST_F(ToolTask, UpdateRecordsTheStateAndShowPrintsIt) {
  ExpectQuietSuccess({"task", "update", kFirst, "Running"});
  EXPECT_EQ(RunTool({"task", "show", kFirst}).out, "TaskState = Running\n");
  ExpectQuietSuccess({"task", "update", kFirst, "Completed"});
  EXPECT_THAT(RunTool({"task", "show", kFirst}).out,
              MatchesRegex("EndTime = [0-9T:+-]+\nTaskState = Completed\nTaskStatus = OK\n"));
}

TEST_F(ToolTask, ShowOfATaskWithoutStateIsAFailure) {
  ExpectFailure({"task", "show", kFirst},
                std::string("zephlane: ") + kFirst +
                    " is no task that has a state; the first update gives it one.\n");
}

// The queue of a process that takes OEM messages.
class ToolHook : public ToolServices {
 protected:
  void SetUp() override {
    ToolServices::SetUp();
    mq_attr attributes{};
    attributes.mq_maxmsg = 1;
    attributes.mq_msgsize = sizeof(OemHookMessage);
    queue_ = mq_open(kQueue, O_CREAT | O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0600, &attributes);
    ASSERT_GE(queue_, 0);
  }
  void TearDown() override {
    (void)mq_close(queue_);
    (void)mq_unlink(kQueue);
    ToolServices::TearDown();
  }
  void Listen() {
    ASSERT_EQ(mappingMsgQueueToUUID(ctx(), kFirst, kQueue, 1), 0);
  }
  static constexpr char kQueue[] = "/oemmq_toolServices_test";
  mqd_t queue_ = -1;
};

TEST_F(ToolHook, TriggerSendsTheMessage) {
  Listen();
  ExpectQuietSuccess({"hook", "trigger", kFirst, "00001", "on", "left", "7"});
  OemHookMessage message{};
  ASSERT_EQ(mq_receive(queue_, reinterpret_cast<char*>(&message), sizeof(message), nullptr),
            static_cast<ssize_t>(sizeof(message)));
  EXPECT_STREQ(message.uuid, kFirst);
  EXPECT_STREQ(message.msgId, "00001");
  EXPECT_STREQ(message.arg1, "on");
  EXPECT_STREQ(message.arg2, "left");
  EXPECT_STREQ(message.arg3, "7");
}

TEST_F(ToolHook, TriggerForNobodyIsAFailure) {
  ExpectFailure({"hook", "trigger", kFirst, "1", "a", "b", "c"},
                std::string("zephlane: No process takes OEM messages for ") + kFirst + ".\n");
}

TEST_F(ToolHook, TriggerIntoAFullQueueIsAFailureWithTheLibrarysReport) {
  Listen();
  ExpectQuietSuccess({"hook", "trigger", kFirst, "1", "a", "b", "c"});
  const ToolRun run = RunTool({"hook", "trigger", kFirst, "1", "a", "b", "c"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.err, StartsWith("queue send failed: "));
  EXPECT_THAT(run.err,
              EndsWith(std::string("\nzephlane: Not every process that takes OEM messages for ") +
                       kFirst + " got it.\n"));
}

TEST_F(ToolHook, ListPrintsTheQueuesOfBothFamilies) {
  Listen();
  ASSERT_EQ(mappingMsgQueueToUUID(ctx(), kFirst, "/mq_b", 0), 0);
  ASSERT_EQ(mappingMsgQueueToUUID(ctx(), kFirst, "/mq_a", 0), 0);
  const ToolRun run = RunTool({"hook", "list", kFirst});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "plain /mq_a\nplain /mq_b\noem /oemmq_toolServices_test\n");
}

TEST_F(ToolHook, ListOfAResourceNobodyListensForIsEmpty) {
  ExpectQuietSuccess({"hook", "list", kFirst});
}

}  // namespace
