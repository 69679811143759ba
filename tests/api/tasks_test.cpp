// SPDX-License-Identifier: MIT
//
// Asynchronous tasks and the timestamps that events use too.
#include <cstdlib>
#include <ctime>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/clockFault.h"
#include "redis/reply.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using testing::MatchesRegex;
using zephlane::Reply;
using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ConnectToStore;
using zephlane::test::ExpectEachFails;
using zephlane::test::FakeClocks;
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;
using zephlane::test::Taken;

// The counter's first values
constexpr char kTask[] = "10000000-0000-0000-0000-000000000001";
constexpr char kCollection[] = "10000000-0000-0000-0000-000000000002";
constexpr char kMessage[] = "10000000-0000-0000-0000-000000000003";
constexpr char kArguments[] = "10000000-0000-0000-0000-000000000004";
constexpr char kMaximum[] = "7fffffff-ffff-ffff-ffff-ffffffffffff";

constexpr std::time_t kSomeTime = 1709618829;  // 2024-03-05T06:07:09Z

class TaskTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    UseZone("UTC0");
    char uuid[ZEPHLANE_ID_SIZE] = "";
    ASSERT_EQ(zephlaneGenerateUUID(ctx(), uuid), 0);  // from here on the maximum is known
    ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
    subscriber_ = ConnectToStore();
  }
  void TearDown() override {
    redisFree(subscriber_);
    StoreTest::TearDown();
  }
  static void UseZone(const char* zone) {
    ASSERT_EQ(setenv("TZ", zone, 1), 0);
    tzset();
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  // The server gives the UUIDs that follow the counter's value `former`.
  void WillDrawAfter(const std::string& former) {
    server_.WillReply(former.empty() ? "$-1\r\n" : Bulk(former));
    server_.WillReply("+OK\r\n");
  }
  void Subscribe(const char* channel) {
    ASSERT_EQ(subscribeFromChannel(subscriber_, channel), 0);
  }
  // The text of the next message.
  std::string NextMessage() {
    void* raw = nullptr;
    if (redisGetReply(subscriber_, &raw) != REDIS_OK) { return "(no message)"; }
    return std::string(Reply(raw).ElementText(2));
  }

  ScriptedServer server_;

 private:
  redisContext* subscriber_ = nullptr;
};

// Creating

class CreateAsyncTask : public TaskTest {};

TEST_F(CreateAsyncTask, LeavesAProcessingMessageWithTheTaskAndTheArgument) {
  EXPECT_EQ(Taken(zephlaneCreateAsyncTask(ctx(), "an argument", "requests")), kTask);
  EXPECT_EQ(Ask({"DEL", "autoUUID"}), "1");
  EXPECT_EQ(Dump(), std::string("set ") + kCollection + "\n  " + kMessage + "\n" +  //
                        "hash " + kMessage + "\n  MsgId = Processing\n  Params = " + kArguments +
                        "\nlist " + kArguments + "\n  " + kTask + "\n  an argument\n");
}

TEST_F(CreateAsyncTask, AnnouncesTheCollectionOnTheCallersChannel) {
  Subscribe("a channel");
  EXPECT_EQ(Taken(zephlaneCreateAsyncTask(ctx(), "argument", "a channel")), kTask);
  EXPECT_EQ(NextMessage(), kCollection);
}

TEST_F(CreateAsyncTask, TaskIs36CharactersAndDrawsFourUuidsInARow) {
  Ask({"SET", "autoUUID", "1000000a-0000-0000-0000-00000000fffe"});
  EXPECT_EQ(Taken(zephlaneCreateAsyncTask(ctx(), "argument", "channel")),
            "1000000a-0000-0000-0000-00000000ffff");
  EXPECT_EQ(Ask({"SMEMBERS", "1000000a-0000-0000-0000-000000010000"}),
            "1000000a-0000-0000-0000-000000010001");
  EXPECT_EQ(Ask({"HGET", "1000000a-0000-0000-0000-000000010001", "Params"}),
            "1000000a-0000-0000-0000-000000010002");
  EXPECT_EQ(Ask({"GET", "autoUUID"}), "1000000a-0000-0000-0000-000000010002");
}

TEST_F(CreateAsyncTask, WithoutAnArgumentTheMessageHasTheTaskOnly) {
  EXPECT_EQ(Taken(zephlaneCreateAsyncTask(ctx(), nullptr, "channel")), kTask);
  EXPECT_EQ(Ask({"LRANGE", kArguments, "0", "-1"}), kTask);
}

TEST_F(CreateAsyncTask, SendsTheseCommands) {
  for (const char* former : {"", kTask, kCollection, kMessage}) { WillDrawAfter(former); }
  for (const char* reply : {"+OK\r\n", ":1\r\n", ":2\r\n", ":1\r\n", ":0\r\n"}) {
    server_.WillReply(reply);
  }
  EXPECT_EQ(Taken(zephlaneCreateAsyncTask(scripted(), "argument", "channel")), kTask);
  std::string expected;
  for (const char* uuid : {kTask, kCollection, kMessage, kArguments}) {
    expected += std::string("GET autoUUID\nSET autoUUID ") + uuid + "\n";
  }
  const std::string arguments = kArguments;
  expected += std::string("HMSET ") + kMessage + " MsgId Processing Params " + arguments + "\n" +
              "RPUSH " + arguments + " " + kTask + "\nRPUSH " + arguments + " argument\n" +
              "SADD " + kCollection + " " + kMessage + "\nPUBLISH channel " + kCollection + "\n";
  EXPECT_EQ(server_.Commands(), expected);
}

TEST_F(CreateAsyncTask, WithoutConnectionOrChannelIsNullWithoutAMessage) {
  char* task = nullptr;
  EXPECT_EQ(PrintedBy([&] { task = zephlaneCreateAsyncTask(nullptr, "argument", "channel"); }), "");
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(PrintedBy([&] { task = zephlaneCreateAsyncTask(scripted(), "argument", nullptr); }),
            "");
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateAsyncTask, WithoutAnyOfItsUuidsIsNullWithoutAMessage) {
  std::string counter = kMaximum;
  for (const char last : {'f', 'e', 'd', 'c'}) {
    SCOPED_TRACE(last);
    counter.back() = last;
    Ask({"FLUSHALL"});
    Ask({"SET", "autoUUID", counter});
    const char* task = nullptr;
    EXPECT_EQ(PrintedBy([&] { task = zephlaneCreateAsyncTask(ctx(), "argument", "channel"); }), "");
    EXPECT_EQ(task, nullptr);
    // The advance of the counter is not undone.
    EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kMaximum + "\n");
  }
}

TEST_F(CreateAsyncTask, LosingTheConnectionAtThePublishUndoesNothing) {
  for (const char* former : {"", kTask, kCollection, kMessage}) { WillDrawAfter(former); }
  for (const char* reply : {"+OK\r\n", ":1\r\n", ":2\r\n", ":1\r\n"}) { server_.WillReply(reply); }
  server_.WillClose();
  const char* task = nullptr;
  EXPECT_EQ(PrintedBy([&] { task = zephlaneCreateAsyncTask(scripted(), "argument", "channel"); }),
            "");
  EXPECT_EQ(task, nullptr);
  EXPECT_THAT(server_.Commands(),
              testing::EndsWith(std::string("PUBLISH channel ") + kCollection + "\n"));
}

TEST_F(CreateAsyncTask, MessageThatCannotBeStoredMakesItNull) {
  Ask({"SET", kArguments, "a text in the list's place"});
  EXPECT_EQ(zephlaneCreateAsyncTask(ctx(), "argument", "channel"), nullptr);
  EXPECT_EQ(Ask({"EXISTS", kCollection, kMessage}), "0");
}

TEST_F(CreateAsyncTask, OutOfMemoryForTheUuidSendsNothing) {
  AllocationFault fault(1);
  const char* task = zephlaneCreateAsyncTask(scripted(), "argument", "channel");
  fault.Disarm();
  EXPECT_EQ(task, nullptr);
  EXPECT_EQ(server_.Received(), "");
}

// States

class UpdateTaskState : public TaskTest {
 protected:
  void SetUp() override {
    TaskTest::SetUp();
    clocks_.time = kSomeTime;
  }
  FakeClocks clocks_;
};

constexpr char kCompletedHash[] =
    "  EndTime = 2024-03-05T06:07:09+00:00\n  TaskState = Completed\n  TaskStatus = OK\n";

TEST_F(UpdateTaskState, CompletedWritesThreeFieldsAndAnnouncesTheTask) {
  Subscribe("TASK_STATE_CHANGE");
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, "Completed"), 0);
  EXPECT_EQ(Dump(), std::string("hash ") + kTask + "\n" + kCompletedHash);
  EXPECT_EQ(NextMessage(), kTask);
}

TEST_F(UpdateTaskState, AnyOtherStateWritesOnlyTheState) {
  for (const char* state :
       {"Processing", "completed", "Completed ", "CompletedX", "ompleted", " "}) {
    SCOPED_TRACE(state);
    Ask({"FLUSHALL"});
    EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, state), 0);
    EXPECT_EQ(Dump(), std::string("hash ") + kTask + "\n  TaskState = " + state + "\n");
  }
}

TEST_F(UpdateTaskState, LeadingPartsOfCompletedCountAsCompleted) {
  for (const char* state : {"C", "Comp", "Complete"}) {
    SCOPED_TRACE(state);
    EXPECT_EQ(zephlaneUpdateTaskState(ctx(), state, state), 0);
    EXPECT_EQ(Ask({"HGET", state, "TaskState"}), state);
    EXPECT_EQ(Ask({"HGET", state, "TaskStatus"}), "OK");
  }
}

TEST_F(UpdateTaskState, EmptyStateCountsAsCompletedAndLeavesTheStateAsItWas) {
  Ask({"HSET", kTask, "TaskState", "Processing"});
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, ""), 0);
  EXPECT_EQ(Dump(), std::string("hash ") + kTask + "\n  EndTime = 2024-03-05T06:07:09+00:00\n" +
                        "  TaskState = Processing\n  TaskStatus = OK\n");
}

TEST_F(UpdateTaskState, StateIsCutTo1023Characters) {
  for (const std::size_t length : {1023, 1024, 5000}) {
    SCOPED_TRACE(length);
    const std::string state(length, 's');
    EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, state.c_str()), 0);
    EXPECT_EQ(Ask({"HGET", kTask, "TaskState"}), std::string(1023, 's'));
  }
}

TEST_F(UpdateTaskState, AnnouncesAtMost98CharactersOfTheTask) {
  Subscribe("TASK_STATE_CHANGE");
  for (const std::size_t length : {98, 99, 2000}) {
    SCOPED_TRACE(length);
    const std::string task(length, 't');
    EXPECT_EQ(zephlaneUpdateTaskState(ctx(), task.c_str(), "Processing"), 0);
    EXPECT_EQ(NextMessage(), std::string(98, 't'));
    EXPECT_EQ(Ask({"HGET", task, "TaskState"}), "Processing");
  }
}

TEST_F(UpdateTaskState, SendsTheseBytesForACompletedTask) {
  for (const char* reply : {"+OK\r\n", "$-1\r\n", ":0\r\n"}) { server_.WillReply(reply); }
  EXPECT_EQ(zephlaneUpdateTaskState(scripted(), "a task", "Completed"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", "a task", "TaskState", "Completed", "EndTime",
                                       "2024-03-05T06:07:09+00:00", "TaskStatus", "OK"}) +
                                    Bulks({"HGET", "WEB-OBJ-URI-MAP", "a task"}) +
                                    Bulks({"PUBLISH", "TASK_STATE_CHANGE", "a task"}));
}

TEST_F(UpdateTaskState, ForgetsTheEntityTagsOfTheTask) {
  Ask({"HSET", "WEB-OBJ-URI-MAP", kTask, "cache"});
  Ask({"HSET", "cache", "ETagStrong", "a", "ETagWeak", "b", "Other", "c"});
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, "Processing"), 0);
  EXPECT_EQ(Ask({"HGETALL", "cache"}), "Other\nc");
}

TEST_F(UpdateTaskState, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"connection", [&] { return zephlaneUpdateTaskState(nullptr, kTask, "state"); }, report},
      {"task", [&] { return zephlaneUpdateTaskState(scripted(), nullptr, "state"); }, report},
      {"state", [&] { return zephlaneUpdateTaskState(scripted(), kTask, nullptr); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(UpdateTaskState, HashThatCannotBeWrittenIsReportedAndNotAnnounced) {
  server_.WillReply("+QUEUED\r\n");
  server_.WillClose();
  const std::string report = ApiReport(" Create Hash \"a task\" Failed !!!");
  ExpectEachFails({
      {"status", [&] { return zephlaneUpdateTaskState(scripted(), "a task", "state"); }, report},
      {"lost", [&] { return zephlaneUpdateTaskState(scripted(), "a task", "state"); }, report},
  });
  const std::string write = "HMSET a task TaskState state\n";
  EXPECT_EQ(server_.Commands(), write + write);
}

TEST_F(UpdateTaskState, TakesAnErrorReplyToTheWriteAsSuccess) {
  Ask({"SET", kTask, "text"});
  Subscribe("TASK_STATE_CHANGE");
  EXPECT_EQ(zephlaneUpdateTaskState(ctx(), kTask, "Processing"), 0);
  EXPECT_EQ(NextMessage(), kTask);
  EXPECT_EQ(Ask({"GET", kTask}), "text");
}

TEST_F(UpdateTaskState, LosingTheConnectionAtThePublishIsAFailureWithoutAMessage) {
  server_.WillReply("+OK\r\n");
  server_.WillReply("$-1\r\n");
  server_.WillClose();
  ExpectEachFails(
      {{"lost", [&] { return zephlaneUpdateTaskState(scripted(), kTask, "state"); }, ""}});
}

TEST_F(UpdateTaskState, TimeThatCannotBeToldLeavesTheEndTimeOut) {
  clocks_.time = -1;
  int result = -1;
  EXPECT_EQ(PrintedBy([&] { result = zephlaneUpdateTaskState(ctx(), kTask, "Completed"); }), "");
  EXPECT_EQ(result, 0);
  EXPECT_EQ(Dump(),
            std::string("hash ") + kTask + "\n  TaskState = Completed\n  TaskStatus = OK\n");
}

// Timestamps

class CreateEventTimeStamp : public TaskTest {
 protected:
  std::string Timestamp() {
    char text[256] = "";
    EXPECT_EQ(createEventTimeStamp(text), 0);
    return text;
  }
  FakeClocks clocks_;
};

TEST_F(CreateEventTimeStamp, IsLocalTimeWithTheOffsetOfTheZone) {
  const std::pair<const char*, const char*> zones[] = {
      {"CST-8", "2024-03-05T14:07:09+08:00"},     {"EST5", "2024-03-05T01:07:09-05:00"},
      {"UTC0", "2024-03-05T06:07:09+00:00"},      {"IST-5:30", "2024-03-05T11:37:09+05:30"},
      {"NST3:30", "2024-03-05T02:37:09-03:30"},   {"LINT-14", "2024-03-05T20:07:09+14:00"},
      {"AAA-23:59", "2024-03-06T06:06:09+23:59"}, {"BBB23:59", "2024-03-04T06:08:09-23:59"}};
  clocks_.time = kSomeTime;
  for (const auto& [zone, expected] : zones) {
    SCOPED_TRACE(zone);
    UseZone(zone);
    EXPECT_EQ(Timestamp(), expected);
  }
}

TEST_F(CreateEventTimeStamp, FollowsDaylightSavingTime) {
  UseZone("EST5EDT,M3.2.0,M11.1.0");
  clocks_.time = kSomeTime;
  EXPECT_EQ(Timestamp(), "2024-03-05T01:07:09-05:00");
  clocks_.time = kSomeTime + 120 * 24 * 3600;
  EXPECT_EQ(Timestamp(), "2024-07-03T02:07:09-04:00");
}

TEST_F(CreateEventTimeStamp, TellsTheTimeOfTheClock) {
  EXPECT_THAT(Timestamp(),
              MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\+00:00"));
}

TEST_F(CreateEventTimeStamp, FailsWithoutAPlaceToWriteTo) {
  EXPECT_EQ(createEventTimeStamp(nullptr), 1);
}

TEST_F(CreateEventTimeStamp, ClockOrConversionThatFailsLeavesTheOutputAsItWas) {
  char text[256] = "as it was";
  clocks_.time = -1;
  ExpectEachFails({{"clock", [&] { return createEventTimeStamp(text); }, ""}});
  clocks_.time = kSomeTime;
  clocks_.local_time_fails = true;
  ExpectEachFails({{"conversion", [&] { return createEventTimeStamp(text); }, ""}});
  EXPECT_STREQ(text, "as it was");
}

}  // namespace
