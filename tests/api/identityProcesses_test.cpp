// SPDX-License-Identifier: MIT
//
// UUIDs across processes: the counter under load, a holder of the lock that dies, and the maximum,
// which a process computes once. This program has one thread, so that it may fork; only its
// children draw UUIDs, each as a process that never did.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <deque>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/output.h"
#include "support/process.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ConnectToStore;
using zephlane::test::ForkedChild;
using zephlane::test::Gate;
using zephlane::test::StoreTest;

constexpr char kFirst[] = "10000000-0000-0000-0000-000000000001";

// The result of one call on a connection of its own, then the UUID.
std::string Draw() {
  redisContext* ctx = ConnectToStore();
  char uuid[ZEPHLANE_ID_SIZE] = "";
  const int result = zephlaneGenerateUUID(ctx, uuid);
  redisFree(ctx);
  return std::to_string(result) + " " + uuid;
}

class UuidProcesses : public StoreTest {
 protected:
  // What a fresh process draws after the stored value `counter`.
  std::string DrawAfter(const std::string& counter) {
    EXPECT_EQ(Ask({"SET", "autoUUID", counter}), "OK");
    return ForkedChild(Draw).Result();
  }
};

// Many processes of many threads at once

constexpr int kProcesses = 8;
constexpr int kThreads = 4;
constexpr int kDraws = 500;

void DrawMany(std::string* drawn) {
  redisContext* ctx = ConnectToStore();
  for (int i = 0; i < kDraws; ++i) {
    char uuid[ZEPHLANE_ID_SIZE] = "";
    *drawn += (zephlaneGenerateUUID(ctx, uuid) == 0 ? uuid : "failed");
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

std::vector<std::string> SortedLines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = text.find('\n', begin);
    lines.push_back(text.substr(begin, end - begin));
    begin = end + 1;
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

// The first `count` UUIDs of a store, which sort as they count.
std::vector<std::string> FirstUuids(int count) {
  std::vector<std::string> uuids;
  for (int i = 1; i <= count; ++i) {
    char uuid[ZEPHLANE_ID_SIZE] = "";
    (void)std::snprintf(uuid, sizeof(uuid), "10000000-0000-0000-0000-%012x", i);
    uuids.emplace_back(uuid);
  }
  return uuids;
}

TEST_F(UuidProcesses, ThreadsOfManyProcessesDrawDistinctAndContiguousUuids) {
  Gate start;
  std::deque<ForkedChild> children;
  for (int i = 0; i < kProcesses; ++i) {
    children.emplace_back([&start] { return DrawManyInThreads(start); });
  }
  start.Open(kProcesses);
  std::string drawn;
  for (ForkedChild& child : children) { drawn += child.Result(); }
  EXPECT_EQ(SortedLines(drawn), FirstUuids(kProcesses * kThreads * kDraws));
  EXPECT_EQ(Ask({"GET", "autoUUID"}), "10000000-0000-0000-0000-000000003e80");
}

// A holder of the lock that is stopped between reading and writing the counter

// A connection whose other end the test plays itself, so that it knows how far the child has come.
class PlayedConnection {
 public:
  PlayedConnection() {
    EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_), 0);
  }
  PlayedConnection(const PlayedConnection&) = delete;
  PlayedConnection& operator=(const PlayedConnection&) = delete;
  ~PlayedConnection() {
    (void)close(ends_[0]);
    (void)close(ends_[1]);
  }
  // In the child: the connection.
  [[nodiscard]] redisContext* Context() const {
    redisContext* ctx = redisConnectFd(ends_[1]);
    ctx->flags |= REDIS_BLOCK;
    return ctx;
  }
  // In the test: the next command, for which it waits.
  [[nodiscard]] std::string NextCommand() const {
    char command[256];
    const ssize_t length = recv(ends_[0], command, sizeof(command), 0);
    return {command, static_cast<std::size_t>(std::max<ssize_t>(length, 0))};
  }
  void Reply(const std::string& raw) const {
    EXPECT_EQ(send(ends_[0], raw.data(), raw.size(), 0), static_cast<ssize_t>(raw.size()));
  }

 private:
  int ends_[2] = {-1, -1};
};

constexpr char kReadMaximum[] =
    "*3\r\n$4\r\nHGET\r\n$15\r\ndefaultSettings\r\n$11\r\nmaximumUUID\r\n";
constexpr char kReadCounter[] = "*2\r\n$3\r\nGET\r\n$8\r\nautoUUID\r\n";

std::string DrawOn(const PlayedConnection& connection) {
  char uuid[ZEPHLANE_ID_SIZE] = "";
  const int result = zephlaneGenerateUUID(connection.Context(), uuid);
  return std::to_string(result) + " " + uuid;
}

TEST_F(UuidProcesses, HolderKilledBetweenReadAndWriteDoesNotStopTheOthers) {
  PlayedConnection connection;
  ForkedChild holder([&connection] { return DrawOn(connection); });
  EXPECT_EQ(connection.NextCommand(), kReadMaximum);
  connection.Reply("$-1\r\n");
  EXPECT_EQ(connection.NextCommand(), kReadCounter);
  ForkedChild waiter(Draw);
  ASSERT_TRUE(waiter.WaitsForLock());
  holder.Kill();
  EXPECT_EQ(waiter.Result(), std::string("0 ") + kFirst);
  EXPECT_EQ(Ask({"GET", "autoUUID"}), kFirst);
}

TEST_F(UuidProcesses, OthersWaitUntilTheCounterIsWritten) {
  PlayedConnection connection;
  ForkedChild holder([&connection] { return DrawOn(connection); });
  EXPECT_EQ(connection.NextCommand(), kReadMaximum);
  connection.Reply("$-1\r\n");
  EXPECT_EQ(connection.NextCommand(), kReadCounter);
  connection.Reply("$-1\r\n");
  EXPECT_NE(connection.NextCommand().find(kFirst), std::string::npos);
  ForkedChild waiter(Draw);
  ASSERT_TRUE(waiter.WaitsForLock());
  EXPECT_EQ(Ask({"SET", "autoUUID", kFirst}), "OK");
  connection.Reply("+OK\r\n");
  EXPECT_EQ(holder.Result(), std::string("0 ") + kFirst);
  EXPECT_EQ(waiter.Result(), "0 10000000-0000-0000-0000-000000000002");
}

// The maximum

TEST_F(UuidProcesses, MaximumFollowsTheConfiguredDigit) {
  const std::pair<const char*, char> cases[] = {
      {"2", '2'}, {"3", '3'}, {"4", '4'}, {"5", '5'}, {"6", '6'}, {"7", '7'}, {"8", '8'},
      {"9", '9'}, {"a", 'a'}, {"b", 'b'}, {"c", 'c'}, {"d", 'd'}, {"e", 'e'}, {"f", 'f'},
      {"A", 'a'}, {"B", 'b'}, {"C", 'c'}, {"D", 'd'}, {"E", 'e'}, {"F", 'f'}};
  for (const auto& [setting, digit] : cases) {
    SCOPED_TRACE(setting);
    (void)Ask({"HSET", "defaultSettings", "maximumUUID", setting});
    const std::string maximum = digit + std::string("fffffff-ffff-ffff-ffff-ffffffffffff");
    EXPECT_EQ(DrawAfter(maximum), "1 " + maximum);
    EXPECT_EQ(Ask({"GET", "autoUUID"}), maximum);
  }
}

TEST_F(UuidProcesses, ConfiguredMaximumReplacesTheDefault) {
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "maximumUUID", "B"}), "1");
  EXPECT_EQ(DrawAfter("7fffffff-ffff-ffff-ffff-ffffffffffff"),
            "0 80000000-0000-0000-0000-000000000000");
}

TEST_F(UuidProcesses, AnyOtherSettingMeansTheDefault) {
  const std::string maximum = "7fffffff-ffff-ffff-ffff-ffffffffffff";
  for (const char* setting : {"", "0", "1", "10", "ff", "x", "g", "G", "@", "`", " ", "-", ":"}) {
    SCOPED_TRACE(setting);
    (void)Ask({"HSET", "defaultSettings", "maximumUUID", setting});
    EXPECT_EQ(DrawAfter(maximum), "1 " + maximum);
  }
}

TEST_F(UuidProcesses, MissingOrUnreadableSettingMeansTheDefault) {
  const std::string maximum = "7fffffff-ffff-ffff-ffff-ffffffffffff";
  EXPECT_EQ(DrawAfter(maximum), "1 " + maximum);
  EXPECT_EQ(Ask({"SET", "defaultSettings", "text"}), "OK");
  EXPECT_EQ(DrawAfter(maximum), "1 " + maximum);
}

TEST_F(UuidProcesses, MaximumIsReadOnceByAProcess) {
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "maximumUUID", "2"}), "1");
  Gate changed;
  Gate drawn;
  ForkedChild child([&changed, &drawn] {
    std::string results = Draw();
    drawn.Open();
    changed.Pass();
    return results + ", " + Draw();
  });
  drawn.Pass();
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "maximumUUID", "3"}), "0");
  EXPECT_EQ(Ask({"SET", "autoUUID", "2fffffff-ffff-ffff-ffff-ffffffffffff"}), "OK");
  changed.Open();
  EXPECT_EQ(child.Result(),
            std::string("0 ") + kFirst + ", 1 2fffffff-ffff-ffff-ffff-ffffffffffff");
  EXPECT_EQ(ForkedChild(Draw).Result(), "0 30000000-0000-0000-0000-000000000000");
}

}  // namespace
