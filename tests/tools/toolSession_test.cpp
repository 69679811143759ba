// SPDX-License-Identifier: MIT
//
// What the tool says when it gets no connection, or loses it.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/fixedNames.h"
#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using zephlane::test::kPasswordFile;
using zephlane::test::kRedisPort;
using zephlane::test::RunTool;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;
using zephlane::test::WriteFile;

constexpr char kNoServer[] =
    "zephlane: No Redis server answers at 127.0.0.1:6379: Connection refused.\n"
    "  Start one:    redis-server --bind 127.0.0.1 --port 6379 --requirepass PASSWORD "
    "--daemonize yes\n"
    "  It comes with the Debian package redis-server.\n";
constexpr char kNoPasswordFile[] =
    "zephlane: /tmp/redis.requirepass is missing; it holds the password of the Redis server.\n"
    "  Write it:     printf %s PASSWORD > /tmp/redis.requirepass\n"
    "  For a server without a password it is an empty file.\n";
constexpr char kRefused[] =
    "zephlane: The Redis server at 127.0.0.1:6379 refuses the password in "
    "/tmp/redis.requirepass.\n"
    "  Correct it:   printf %s PASSWORD > /tmp/redis.requirepass\n";

class ToolSession : public StoreTest {
 protected:
  // Ends the server; its port is free when this returns.
  void StopServer() {
    Ask({"SHUTDOWN", "NOSAVE"});
  }
  // Checks that a verb fails without data and that its last words are these.
  static ToolRun ExpectLastWords(const std::string& message) {
    ToolRun run = RunTool({"get", "key"});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, EndsWith(message));
    return run;
  }
};

// A server that answers one command after the other with these bytes and then hangs up; each
// connection starts anew.
class HangingUpServer {
 public:
  explicit HangingUpServer(std::vector<std::string> replies)
      : replies_(std::move(replies)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    const int reuse = 1;
    (void)setsockopt(listener_, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(kRedisPort);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(bind(listener_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    (void)listen(listener_, 5);
    thread_ = std::thread([this] { Serve(); });
  }
  HangingUpServer(const HangingUpServer&) = delete;
  HangingUpServer& operator=(const HangingUpServer&) = delete;
  ~HangingUpServer() {
    (void)shutdown(listener_, SHUT_RDWR);
    thread_.join();
    (void)close(listener_);
  }

 private:
  void Serve() {
    for (;;) {
      const int connection = accept(listener_, nullptr, nullptr);
      if (connection < 0) { return; }
      char command[1024];
      for (const std::string& reply : replies_) {
        if (recv(connection, command, sizeof(command), 0) <= 0) { break; }
        (void)send(connection, reply.data(), reply.size(), MSG_NOSIGNAL);
      }
      (void)recv(connection, command, sizeof(command), 0);
      (void)close(connection);
    }
  }
  std::vector<std::string> replies_;
  int listener_;
  std::thread thread_;
};

TEST_F(ToolSession, WithoutServerItSaysHowToStartOne) {
  StopServer();
  const ToolRun run = ExpectLastWords(kNoServer);
  EXPECT_THAT(run.err, HasSubstr("Connection error: Connection refused\n"));
}

TEST_F(ToolSession, WithoutPasswordFileItSaysWhatToWriteIntoIt) {
  std::filesystem::remove(kPasswordFile);
  const ToolRun run = ExpectLastWords(kNoPasswordFile);
  EXPECT_THAT(run.err, HasSubstr("Failed to open /tmp/redis.requirepass\n"));
}

TEST_F(ToolSession, WithoutBothItSaysBoth) {
  StopServer();
  std::filesystem::remove(kPasswordFile);
  ExpectLastWords(std::string(kNoServer) + kNoPasswordFile);
}

TEST_F(ToolSession, WrongPasswordIsSaid) {
  WriteFile(kPasswordFile, "wrong");
  const ToolRun run = ExpectLastWords(kRefused);
  EXPECT_THAT(run.err, HasSubstr("Failed to redis authentication!\n"));
}

TEST_F(ToolSession, NewlineAfterThePasswordIsPointedAt) {
  WriteFile(kPasswordFile, "zephlane-private\n");
  ExpectLastWords(std::string(kRefused) +
                  "  Its first line ends in a newline, which is sent as part of the password.\n");
}

TEST_F(ToolSession, EmptyPasswordFileForAServerWithAPasswordIsSaid) {
  WriteFile(kPasswordFile, "");
  ExpectLastWords(
      "zephlane: The Redis server at 127.0.0.1:6379 asks for a password, but "
      "/tmp/redis.requirepass is empty.\n"
      "  Write it:     printf %s PASSWORD > /tmp/redis.requirepass\n");
}

TEST_F(ToolSession, PasswordForAServerWithoutOneIsSaid) {
  Ask({"CONFIG", "SET", "requirepass", ""});
  ExpectLastWords(
      "zephlane: The Redis server at 127.0.0.1:6379 asks for no password, but "
      "/tmp/redis.requirepass holds one.\n"
      "  Empty it:     : > /tmp/redis.requirepass\n");
}

TEST_F(ToolSession, EmptyPasswordFileForAServerWithoutAPasswordWorks) {
  Ask({"CONFIG", "SET", "requirepass", ""});
  WriteFile(kPasswordFile, "");
  Ask({"SET", "key", "value"});
  const ToolRun run = RunTool({"get", "key"});
  EXPECT_EQ(run.status, 0);
  EXPECT_EQ(run.out, "value\n");
  EXPECT_EQ(run.err, "");
}

TEST_F(ToolSession, ServerThatDoesNotServeYetIsQuoted) {
  StopServer();
  const HangingUpServer server({"+OK\r\n", "-LOADING Redis is loading the dataset in memory\r\n"});
  ExpectLastWords(
      "zephlane: The Redis server at 127.0.0.1:6379 does not serve: LOADING Redis is loading the "
      "dataset in memory\n");
}

TEST_F(ToolSession, ConnectionLostOnTheWayIsSaidForEveryVerb) {
  StopServer();
  const HangingUpServer server({"+OK\r\n", "+PONG\r\n"});
  const std::vector<std::vector<std::string>> verbs = {
      {"get", "key"}, {"type", "key"}, {"tree", "key"}, {"uuid"}};
  for (const std::vector<std::string>& verb : verbs) {
    SCOPED_TRACE(verb[0]);
    const ToolRun run = RunTool(verb);
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, EndsWith("zephlane: The connection to the Redis server was lost: "
                                  "Server closed the connection\n"));
  }
}

TEST_F(ToolSession, InterpretThatLosesItsConnectionsFailsWithASummaryOfWhatIsKnown) {
  StopServer();
  const HangingUpServer server({"+OK\r\n", "+PONG\r\n"});
  std::filesystem::create_directories("/tmp/etc");
  std::filesystem::create_directories("/tmp/FOSS_schema");
  WriteFile("/tmp/etc/SchemaURIConf.json", R"({"DmtfSchemaUri": "http://schemas.example.com/"})");
  WriteFile("/tmp/FOSS_schema/Root.json", R"({"title": "Root.1.0.0"})");
  const ToolRun run = RunTool({"interpret", "/tmp/FOSS_schema/Root.json"});
  EXPECT_EQ(run.status, 1);
  EXPECT_THAT(run.out, StartsWith("Result:      failed; "));
  EXPECT_THAT(run.out, EndsWith("\nIn store:    unknown\n"));
}

TEST_F(ToolSession, EveryVerbNeedsTheServer) {
  StopServer();
  std::filesystem::create_directories("/tmp/etc");
  WriteFile("/tmp/etc/SchemaURIConf.json", "{}");
  const std::vector<std::vector<std::string>> verbs = {
      {"get", "key"},
      {"type", "key"},
      {"tree", "key"},
      {"uuid"},
      {"interpret", "/tmp/etc/SchemaURIConf.json"}};
  for (const std::vector<std::string>& verb : verbs) {
    SCOPED_TRACE(verb[0]);
    const ToolRun run = RunTool(verb);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, EndsWith(kNoServer));
  }
}

}  // namespace
