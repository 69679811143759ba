// SPDX-License-Identifier: MIT
//
// The server dies and comes back: between calls, while a call waits, and at any moment. What calls
// the library runs in children of this program that leave SIGPIPE as every program has it at its
// start.
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "outage/setting.h"
#include "outage/storeCalls.h"
#include "outage/tree.h"
#include "support/localListener.h"
#include "support/output.h"
#include "support/process.h"
#include "support/redisServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::ConnectToStore;
using zephlane::test::ForkedChild;
using zephlane::test::Gate;
using zephlane::test::LocalListener;
using zephlane::test::RedisServer;
using zephlane::test::StoreCall;
using zephlane::test::StoreCalls;
using zephlane::test::StoreTest;

constexpr char kKey[] = "10000000-0000-0000-0000-00000000000a";

// A connection that its other end has closed: the first write to it already raises SIGPIPE, where
// the sender does not ask for an error alone.
redisContext* ClosedConnection() {
  int ends[2];
  EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
  (void)close(ends[0]);
  redisContext* ctx = redisConnectFd(ends[1]);
  ctx->flags |= REDIS_BLOCK;
  return ctx;
}

// A line for each call that gives something else than it should without an answer.
std::string UnexpectedResults(const std::vector<redisContext*>& connections) {
  std::string unexpected;
  (void)Capture([&] {
    for (std::size_t i = 0; i < connections.size(); ++i) {
      const StoreCall& call = StoreCalls()[i];
      const std::string result = call.call(connections[i]);
      if (result == call.without_answer) { continue; }
      unexpected += std::string(call.name) + " gave " + result + "\n";
    }
  });
  return unexpected;
}

// Runs `body` in a process in which SIGPIPE is what it is at the start of every program.
std::string InPlainProcess(const std::function<std::string()>& body) {
  ForkedChild child([&body] {
    (void)signal(SIGPIPE, SIG_DFL);
    return body();
  });
  return child.Result();
}

// The names of the published functions that take a connection first.
std::set<std::string> PublishedNames() {
  std::set<std::string> names;
  for (const char* header :
       {"annotation", "commands", "connection", "events", "expiry", "hashTree", "hooks", "identity",
        "interpreter", "lists", "messages", "objects", "tasks", "trees", "validation"}) {
    std::ifstream stream(std::string(ZEPHLANE_SOURCE "/include/zephlaneAPI/") + header + ".h");
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    const std::regex function("([A-Za-z0-9]+)\\(redisContext\\* ctx");
    for (std::sregex_iterator at(text.begin(), text.end(), function), end; at != end; ++at) {
      names.insert((*at)[1]);
    }
  }
  return names;
}

TEST(StoreCallsTable, NamesEveryPublishedFunctionOnce) {
  std::set<std::string> names = {"zephlaneRedisDisconnect", "zephlaneHookFunctionRegister",
                                 "zephlaneOemHookFunctionRegister"};
  for (const StoreCall& call : StoreCalls()) {
    EXPECT_TRUE(names.insert(call.name).second) << call.name;
  }
  EXPECT_EQ(names, PublishedNames());
}

class ServerDeath : public StoreTest {
 protected:
  // Puts a server in the place of the first one, that the case can kill.
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"SHUTDOWN", "NOSAVE"});
    Restart();
  }
  void Kill() {
    server_.reset();
  }
  void Restart() {
    server_.emplace();
    ASSERT_EQ(server_->Problem(), "");
  }

 private:
  std::optional<RedisServer> server_;
};

TEST_F(ServerDeath, EveryCallOnADeadConnectionGivesItsFailure) {
  std::vector<redisContext*> connections;
  for (std::size_t i = 0; i < StoreCalls().size(); ++i) { connections.push_back(ConnectToStore()); }
  Kill();
  EXPECT_EQ(InPlainProcess([&] { return UnexpectedResults(connections); }), "");
  for (redisContext* connection : connections) { redisFree(connection); }
}

TEST_F(ServerDeath, EveryCallOnAClosedConnectionGivesItsFailureAndNoSignal) {
  std::vector<redisContext*> connections;
  for (std::size_t i = 0; i < StoreCalls().size(); ++i) {
    connections.push_back(ClosedConnection());
  }
  EXPECT_EQ(InPlainProcess([&] { return UnexpectedResults(connections); }), "");
  for (redisContext* connection : connections) { redisFree(connection); }
}

TEST_F(ServerDeath, DeadConnectionStaysDeadAndANewOneWorks) {
  redisContext* old = zephlaneRedisConnect();
  ASSERT_EQ(setKey(old, kKey, "before"), 0);
  Kill();
  EXPECT_EQ(setKey(old, kKey, "without a server"), 1);
  Restart();
  EXPECT_EQ(setKey(old, kKey, "on the old connection"), 1);
  redisContext* fresh = zephlaneRedisConnect();
  ASSERT_NE(fresh, nullptr);
  EXPECT_EQ(setKey(fresh, kKey, "after"), 0);
  EXPECT_EQ(zephlane::test::Ask(fresh, {"GET", kKey}), "after");
  EXPECT_EQ(zephlaneRedisDisconnect(old), 0);
  EXPECT_EQ(zephlaneRedisDisconnect(fresh), 0);
}

TEST_F(ServerDeath, ConnectingWithoutAServerFailsAndAfterItsRestartWorks) {
  Kill();
  const auto printed = Capture([] { EXPECT_EQ(zephlaneRedisConnect(), nullptr); });
  EXPECT_EQ(zephlane::test::Masked(printed.out),
            zephlane::test::ApiReport("Connection error: Connection refused"));
  Restart();
  redisContext* ctx = zephlaneRedisConnect();
  EXPECT_NE(ctx, nullptr);
  EXPECT_EQ(zephlaneRedisDisconnect(ctx), 0);
}

TEST_F(ServerDeath, CallThatWaitsInTheServerGivesItsFailure) {
  redisContext* watching = ConnectToStore();
  ForkedChild waiter([] {
    (void)signal(SIGPIPE, SIG_DFL);
    redisContext* ctx = ConnectToStore();
    char list[] = "list";
    char* const lists[] = {list};
    PopResult* const item = zephlaneListBlockLeftPopV21(ctx, 0, lists, 1);
    return std::string(item == nullptr ? "nothing" : "an item");
  });
  while (zephlane::test::Ask(watching, {"INFO", "clients"}).find("blocked_clients:1") ==
         std::string::npos) {}
  Kill();
  EXPECT_EQ(waiter.Result(), "nothing");
  redisFree(watching);
}

// Reads the beginning of what the next connection sends and then is gone.
void ReadABeginning(const LocalListener& listener) {
  const int fd = listener.Accept();
  char beginning[4096];
  EXPECT_GT(recv(fd, beginning, sizeof(beginning), MSG_WAITALL), 0);
  (void)shutdown(fd, SHUT_WR);  // makes it a broken pipe, and not a reset, for the other side
  (void)close(fd);              // with what came unread, so that the other side is told to stop
}

TEST_F(ServerDeath, CallInTheMiddleOfSendingGivesItsFailureAndNoSignal) {
  const LocalListener server;
  ForkedChild sender([&server] {
    (void)signal(SIGPIPE, SIG_DFL);
    redisContext* ctx = redisConnect("127.0.0.1", server.Port());
    // More than the kernel takes at once, so that it needs many writes.
    const std::string large(std::size_t{64} << 20, 'x');
    return std::to_string(setKey(ctx, kKey, large.c_str()));
  });
  ReadABeginning(server);
  EXPECT_EQ(sender.Result(), "1");
}

// Any moment

constexpr int kDeaths = 20;
constexpr int kMaximumWrites = 60;

// Works until it may end, with a new connection whenever one was lost; then says how many were, and
// whether the last one works.
std::string WorkThroughDeaths(const Gate& may_end) {
  (void)signal(SIGPIPE, SIG_DFL);
  redisContext* ctx = nullptr;
  int lost = 0;
  (void)Capture([&] {
    while (!may_end.IsOpen() || ctx == nullptr || ctx->err != 0) {
      if (ctx != nullptr && ctx->err == 0) {
        zephlane::test::MakeAndDeleteTree(ctx);
        continue;
      }
      lost += zephlaneRedisDisconnect(ctx) == 0 ? 1 : 0;
      ctx = zephlaneRedisConnect();
    }
  });
  return std::to_string(lost) + " lost, " + (setKey(ctx, kKey, "text") == 0 ? "works" : "fails");
}

// How often the server has stored a drawn UUID since it started.
int UuidsDrawn() {
  redisContext* ctx = ConnectToStore();
  const std::string stats = zephlane::test::Ask(ctx, {"INFO", "commandstats"});
  redisFree(ctx);
  constexpr std::string_view kName = "cmdstat_set:calls=";
  const std::size_t at = stats.find(kName);
  return at == std::string::npos ? 0 : std::stoi(stats.substr(at + kName.size()));
}

TEST_F(ServerDeath, WorkGoesOnAfterDeathsAtAnyMoment) {
  std::mt19937 random(zephlane::test::RandomSeed());
  Gate may_end;
  ForkedChild worker([&may_end] { return WorkThroughDeaths(may_end); });
  for (int i = 0; i < kDeaths; ++i) {
    const int moment = std::uniform_int_distribution(1, kMaximumWrites)(random);
    while (UuidsDrawn() < moment) {}
    Kill();
    Restart();
  }
  may_end.Open();
  EXPECT_EQ(worker.Result(), std::to_string(kDeaths) + " lost, works");
  redisContext* ctx = ConnectToStore();
  EXPECT_EQ(zephlane::test::Ask(ctx, {"GET", kKey}), "text");
  redisFree(ctx);
}

}  // namespace
