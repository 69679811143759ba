// SPDX-License-Identifier: MIT
//
// Event IDs: the counter, its locks, and many producers at once. This program has one thread where
// it forks.
#include <fcntl.h>
#include <pthread.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <deque>
#include <filesystem>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/eventModel.h"
#include "support/callFault.h"
#include "support/process.h"

namespace zephlane::test {
namespace {

namespace fs = std::filesystem;

// Exactly the room the caller promises, and what lies behind it.
struct EventIdBuffer {
  char id[9] = "";
  char behind[64] = "untouched";
};

bool MutexIsFree() {
  if (pthread_mutex_trylock(&zephlaneAutoGenerateEventIDLock) != 0) { return false; }
  return pthread_mutex_unlock(&zephlaneAutoGenerateEventIDLock) == 0;
}

class GenerateEventId : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    errno = 0;
  }
  // Whatever the outcome, both locks are free afterwards.
  void TearDown() override {
    EXPECT_TRUE(MutexIsFree());
    const int lock = processLock(ZephlaneGenerateEventIDLockFile);
    EXPECT_EQ(processUnlock(lock), 0);
    StoreTest::TearDown();
  }
  int Generate(redisContext* connection) {
    int result = -1;
    printed_ = PrintedBy([&] { result = generateEventID(connection, buffer_.id); });
    EXPECT_STREQ(buffer_.behind, "untouched");
    return result;
  }
  // What comes after the stored value `counter`.
  std::string After(const std::string& counter) {
    Ask({"SET", "autoEventID", counter});
    EXPECT_EQ(Generate(ctx()), 0);
    EXPECT_EQ(printed_, "");
    EXPECT_EQ(Ask({"GET", "autoEventID"}), buffer_.id);
    return buffer_.id;
  }
  EventIdBuffer buffer_;
  std::string printed_;
  ScriptedServer server_;
};

TEST_F(GenerateEventId, EmptyStoreGivesTheFirstAndThenTheSecond) {
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_STREQ(buffer_.id, "00000001");
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_STREQ(buffer_.id, "00000002");
  EXPECT_EQ(Dump(), "string autoEventID\n  00000002\n");
}

TEST_F(GenerateEventId, CountsInEightLowerCaseHexadecimalDigits) {
  const std::pair<const char*, const char*> cases[] = {
      {"00000009", "0000000a"}, {"0000000f", "00000010"}, {"0fffffff", "10000000"},
      {"7fffffff", "80000000"}, {"fffffffe", "ffffffff"}, {"0000ABCE", "0000abcf"},
      {"12", "00000013"},       {"", "00000001"}};
  for (const auto& [counter, next] : cases) {
    SCOPED_TRACE(counter);
    EXPECT_EQ(After(counter), next);
  }
}

TEST_F(GenerateEventId, LastIdIsFollowedByTheFirstAndNeverByZero) {
  EXPECT_EQ(After("ffffffff"), "00000001");
}

TEST_F(GenerateEventId, TextBehindTheLastIdsDigitsIsStillPartOfTheNumber) {
  EXPECT_EQ(After("ffffffff "), "00000001");
  EXPECT_EQ(After("ffffffff2"), "00000003");
}

TEST_F(GenerateEventId, StoredTextOfAnyLengthFitsTheCallersBuffer) {
  EXPECT_EQ(After("0000000a and more than nine characters"), "0000000b");
  EXPECT_EQ(After("no number at all"), "00000001");
  EXPECT_EQ(After(std::string(5000, '0')), "00000001");
}

TEST_F(GenerateEventId, KeyOfAnotherTypeCountsAsAbsent) {
  Ask({"RPUSH", "autoEventID", "item"});
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_STREQ(buffer_.id, "00000001");
  EXPECT_EQ(Ask({"TYPE", "autoEventID"}), "string");
}

TEST_F(GenerateEventId, SendsTheseBytes) {
  server_.WillReply(Bulk("0000002f"));
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(Generate(server_.ctx()), 0);
  EXPECT_EQ(server_.Received(),
            Bulks({"GET", "autoEventID"}) + Bulks({"SET", "autoEventID", "00000030"}));
}

TEST_F(GenerateEventId, IdThatCannotBeStoredIsIssuedAllTheSame) {
  server_.WillReply(Bulk("0000002f"));
  server_.WillClose();
  EXPECT_EQ(Generate(server_.ctx()), 0);
  EXPECT_STREQ(buffer_.id, "00000030");
  EXPECT_EQ(printed_, "");
}

TEST_F(GenerateEventId, CounterThatCannotBeReadStartsAnew) {
  server_.WillClose();
  EXPECT_EQ(Generate(server_.ctx()), 0);
  EXPECT_STREQ(buffer_.id, "00000001");
  EXPECT_EQ(Generate(nullptr), 0);
  EXPECT_STREQ(buffer_.id, "00000001");
}

TEST_F(GenerateEventId, WithoutAPlaceToWriteToNothingIsLockedOrSent) {
  fs::remove(ZephlaneGenerateEventIDLockFile);
  EXPECT_EQ(generateEventID(server_.ctx(), nullptr), 1);
  EXPECT_FALSE(fs::exists(ZephlaneGenerateEventIDLockFile));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(GenerateEventId, LockFileThatCannotBeOpenedIsAFailureBeforeAnythingIsSent) {
  fs::remove(ZephlaneGenerateEventIDLockFile);
  fs::create_directory(ZephlaneGenerateEventIDLockFile);
  EXPECT_EQ(Generate(server_.ctx()), 1);
  fs::remove(ZephlaneGenerateEventIDLockFile);
  EXPECT_EQ(printed_, ApiReport("open lock file failed"));
  EXPECT_STREQ(buffer_.id, "");
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(GenerateEventId, LockThatIsNotGotIsAFailureBeforeAnythingIsSent) {
  const FcntlFault fault(F_SETLKW, ENOLCK);
  EXPECT_EQ(Generate(server_.ctx()), 1);
  EXPECT_EQ(printed_, ApiReport("errno = " + std::to_string(ENOLCK)) + ApiReport("lock failed"));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(GenerateEventId, LockThatCannotBeReleasedIsAFailureAfterTheIdIsStored) {
  const FcntlFault fault(F_SETLK, ENOLCK);
  EXPECT_EQ(Generate(ctx()), 1);
  EXPECT_EQ(printed_, ApiReport("unlock failed"));
  EXPECT_STREQ(buffer_.id, "00000001");
  EXPECT_EQ(Ask({"GET", "autoEventID"}), "00000001");
}

// Many processes of many threads at once

constexpr int kProcesses = 4;
constexpr int kThreads = 4;
constexpr int kDraws = 250;

std::set<std::string> Lines(const std::string& text) {
  std::set<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    lines.insert(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

// The first `count` IDs of a store.
std::set<std::string> FirstEventIds(int count) {
  std::set<std::string> ids;
  for (int i = 1; i <= count; ++i) {
    char id[9] = "";
    (void)std::snprintf(id, sizeof(id), "%08x", static_cast<unsigned int>(i));
    ids.insert(id);
  }
  return ids;
}

void DrawMany(std::string* drawn) {
  redisContext* ctx = ConnectToStore();
  for (int i = 0; i < kDraws; ++i) {
    char id[9] = "";
    *drawn += generateEventID(ctx, id) == 0 ? id : "failed";
    *drawn += '\n';
  }
  redisFree(ctx);
}

std::string DrawManyInThreads(Gate& start) {
  start.Pass();
  std::string drawn[kThreads];
  std::vector<std::thread> threads;
  for (std::string& lines : drawn) { threads.emplace_back(DrawMany, &lines); }
  for (std::thread& thread : threads) { thread.join(); }
  std::string all;
  for (const std::string& lines : drawn) { all += lines; }
  return all;
}

class EventProcesses : public StoreTest {};

TEST_F(EventProcesses, ThreadsOfManyProcessesDrawDistinctAndContiguousIds) {
  Gate start;
  std::deque<ForkedChild> children;
  for (int i = 0; i < kProcesses; ++i) {
    children.emplace_back([&start] { return DrawManyInThreads(start); });
  }
  start.Open(kProcesses);
  std::string drawn;
  for (ForkedChild& child : children) { drawn += child.Result(); }
  EXPECT_EQ(Lines(drawn), FirstEventIds(kProcesses * kThreads * kDraws));
  EXPECT_EQ(Ask({"GET", "autoEventID"}), "00000fa0");
}

// Many producers and a subscriber

constexpr int kEventsOfAProducer = 250;
constexpr int kRecords = 4;
constexpr char kProducerIsDone[] = "done";

// Creates its events; the last message on the channel says that the producer is done, so that the
// subscriber waits for no more than what comes. Returns how many events failed.
std::string Produce(Gate& start) {
  redisContext* ctx = ConnectToStore();
  start.Pass();
  int failures = 0;
  for (int i = 0; i < kEventsOfAProducer; ++i) {
    EventRecord records[kRecords] = {Record("1"), Record("2"), Record("3"), Record("4")};
    CopyCut(records[0].OriginOfCondition, kFan);
    failures += zephlaneCreateEventObject(ctx, "Load", "", records, kRecords);
  }
  failures += publishToChannel(ctx, "EVENT_OCCURRED", kProducerIsDone);
  redisFree(ctx);
  return std::to_string(failures);
}

class EventProducers : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    StoreEventModel(ctx());
    subscriber_ = ConnectToStore();
    ASSERT_EQ(subscribeFromChannel(subscriber_, "EVENT_OCCURRED"), 0);
  }
  void TearDown() override {
    redisFree(subscriber_);
    StoreTest::TearDown();
  }
  // The events announced until all producers are done, sorted.
  std::vector<std::string> ReceiveAll() {
    std::vector<std::string> events;
    for (int running = kProcesses; running > 0;) {
      void* raw = nullptr;
      if (redisGetReply(subscriber_, &raw) != REDIS_OK) { break; }
      const Reply message(raw);
      const std::string text(message.ElementText(2));
      text == kProducerIsDone ? static_cast<void>(--running) : events.push_back(text);
    }
    std::sort(events.begin(), events.end());
    return events;
  }
  // The collection as it stands, sorted.
  std::vector<std::string> Collected() {
    unsigned int count = 0;
    const CArray<SetData> items(listRange(ctx(), kEventCollection, 0, -1, &count));
    std::vector<std::string> events;
    for (unsigned int i = 0; i < count; ++i) { events.emplace_back(items[i].aObjectID); }
    std::sort(events.begin(), events.end());
    return events;
  }
  // The event IDs of an event's records.
  std::vector<std::string> EventIdsOf(const std::string& event) {
    unsigned int count = 0;
    const std::string set = Ask({"HGET", event, "Events"});
    const CArray<SetData> records(zephlaneSMembers(ctx(), set.c_str(), &count));
    std::vector<std::string> ids;
    for (unsigned int i = 0; i < count; ++i) {
      ids.push_back(Ask({"HGET", records[i].aObjectID, "EventId"}));
    }
    return ids;
  }

 private:
  redisContext* subscriber_ = nullptr;
};

TEST_F(EventProducers, ThousandEventsOfFourProcessesArriveCompleteWithDistinctEventIds) {
  Gate start;
  std::deque<ForkedChild> producers;
  for (int i = 0; i < kProcesses; ++i) {
    producers.emplace_back([&start] { return Produce(start); });
  }
  start.Open(kProcesses);
  const std::vector<std::string> received = ReceiveAll();
  for (ForkedChild& producer : producers) { EXPECT_EQ(producer.Result(), "0"); }
  EXPECT_EQ(received.size(), 1000U);
  EXPECT_EQ(std::set(received.begin(), received.end()).size(), 1000U);
  EXPECT_EQ(Collected(), received);
  std::set<std::string> ids;
  for (const std::string& event : received) {
    const std::vector<std::string> ids_of_event = EventIdsOf(event);
    EXPECT_EQ(ids_of_event.size(), static_cast<std::size_t>(kRecords));
    ids.insert(ids_of_event.begin(), ids_of_event.end());
  }
  EXPECT_EQ(ids, FirstEventIds(1000 * kRecords));
}

}  // namespace
}  // namespace zephlane::test
