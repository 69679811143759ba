// SPDX-License-Identifier: MIT
//
// Connections against the real server, and against listening sockets of the test's own that record
// what was sent and answer as told.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/callFault.h"
#include "support/fixedNames.h"
#include "support/localListener.h"
#include "support/output.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::ConnectFault;
using zephlane::test::kPasswordFile;
using zephlane::test::LocalListener;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::StoreTest;

// Listens on a port of its own, answers the first bytes of one connection with `reply`, and records
// what came until the other side closes. An empty reply closes the connection instead.
class ListeningServer {
 public:
  explicit ListeningServer(std::string reply) : reply_(std::move(reply)) {
    thread_ = std::thread([this] { Serve(); });
  }
  ListeningServer(const ListeningServer&) = delete;
  ListeningServer& operator=(const ListeningServer&) = delete;
  ~ListeningServer() {
    // A case that did not connect, or holds its connection longer, must not keep us waiting.
    listener_.Stop();
    if (thread_.joinable()) {
      (void)shutdown(connection_, SHUT_RDWR);
      thread_.join();
    }
    (void)close(connection_);
  }
  [[nodiscard]] int Port() const {
    return listener_.Port();
  }
  // All that came. It returns only when the other side has closed its connection.
  std::string ReceivedUntilClosed() {
    thread_.join();
    return received_;
  }

 private:
  void Serve() {
    const int fd = listener_.Accept();
    connection_ = fd;
    char part[4096];
    ssize_t length = 0;
    while ((length = recv(fd, part, sizeof(part), 0)) > 0) {
      if (received_.empty() && send(fd, reply_.data(), reply_.size(), MSG_NOSIGNAL) <= 0) { break; }
      received_.append(part, static_cast<std::size_t>(length));
    }
    (void)shutdown(fd, SHUT_RDWR);
  }

  std::string reply_;
  std::string received_;
  LocalListener listener_;
  std::atomic<int> connection_ = -1;
  std::thread thread_;
};

class Connection : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    std::ifstream file(kPasswordFile);
    password_.assign(std::istreambuf_iterator<char>(file), {});
  }
  void TearDown() override {
    (void)zephlaneRedisDisconnect(connection_);
    (void)std::filesystem::remove(kPasswordFile);
    WritePasswordFile(password_);
    StoreTest::TearDown();
  }
  static void WritePasswordFile(const std::string& content) {
    std::ofstream(kPasswordFile) << content;
  }
  // What connecting prints; the result is kept in connection_ and closed after the case.
  Output ConnectTo(const char* ip, int port) {
    return Capture([&] { connection_ = zephlaneRedisConnectWithIP(ip, port); });
  }
  // A port that nothing listens on: one that was given to a socket and is closed again.
  static int RefusedPort() {
    ListeningServer server("");
    const int port = server.Port();
    redisFree(redisConnect("127.0.0.1", port));
    return port;
  }

  std::string password_;
  redisContext* connection_ = nullptr;
};

constexpr char kLocalhost[] = "127.0.0.1";

TEST_F(Connection, ConnectReachesTheFixedAddressAuthenticated) {
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  ASSERT_NE(connection_, nullptr);
  EXPECT_EQ(zephlane::test::Ask(connection_, {"SET", "key", "value"}), "OK");
  EXPECT_EQ(Dump(), "string key\n  value\n");
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Connection, ConnectWithIPReachesTheGivenAddressAuthenticated) {
  const Output printed = ConnectTo(kLocalhost, zephlane::test::kRedisPort);
  ASSERT_NE(connection_, nullptr);
  EXPECT_EQ(zephlane::test::Ask(connection_, {"PING"}), "PONG");
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Connection, NullAddressIsReportedBeforeAnythingElse) {
  (void)std::filesystem::remove(kPasswordFile);  // which would be reported next
  const Output printed = ConnectTo(nullptr, zephlane::test::kRedisPort);
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Target IP address is NULL"));
  EXPECT_EQ(printed.err, "");
}

TEST_F(Connection, WrongPasswordIsFailure) {
  WritePasswordFile("not-" + password_);
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Failed to redis authentication!"));
  EXPECT_EQ(printed.err, "");
}

TEST_F(Connection, EmptyPasswordFileYieldsOpenUnauthenticatedConnection) {
  WritePasswordFile("");
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  ASSERT_NE(connection_, nullptr);
  EXPECT_EQ(zephlane::test::Ask(connection_, {"GET", "key"}).substr(0, 14), "(error) NOAUTH");
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Connection, UnreadablePasswordFileIsTakenAsEmpty) {
  (void)std::filesystem::remove(kPasswordFile);
  (void)std::filesystem::create_directory(kPasswordFile);  // opens, and fails to be read
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  EXPECT_NE(connection_, nullptr);
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Connection, MissingPasswordFileIsFailureThoughTheServerWasReached) {
  (void)std::filesystem::remove(kPasswordFile);
  ListeningServer server("+OK\r\n");
  const Output printed = ConnectTo(kLocalhost, server.Port());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Failed to open /tmp/redis.requirepass"));
  EXPECT_EQ(printed.err, "fopen: No such file or directory\n");
  EXPECT_EQ(server.ReceivedUntilClosed(), "");
}

TEST_F(Connection, PasswordGoesOutAsOneArgumentExactlyAsRead) {
  for (const std::string password : {"secret", "two words", "100%s", " blank ends "}) {
    SCOPED_TRACE(password);
    WritePasswordFile(password);
    ListeningServer server("+OK\r\n");
    redisContext* connection = zephlaneRedisConnectWithIP(kLocalhost, server.Port());
    EXPECT_EQ(zephlaneRedisDisconnect(connection), 0);
    EXPECT_EQ(
        server.ReceivedUntilClosed(),
        "*2\r\n$4\r\nAUTH\r\n$" + std::to_string(password.size()) + "\r\n" + password + "\r\n");
  }
}

TEST_F(Connection, NewlineThatEndsThePasswordIsSentWithIt) {
  WritePasswordFile("secret\nsecond line\n");
  ListeningServer server("+OK\r\n");
  redisContext* connection = zephlaneRedisConnectWithIP(kLocalhost, server.Port());
  EXPECT_EQ(zephlaneRedisDisconnect(connection), 0);
  EXPECT_EQ(server.ReceivedUntilClosed(), "*2\r\n$4\r\nAUTH\r\n$7\r\nsecret\n\r\n");
}

TEST_F(Connection, NewlineAfterTheRightPasswordIsRefusedByTheRealServer) {
  WritePasswordFile(password_ + "\n");
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Failed to redis authentication!"));
}

TEST_F(Connection, PasswordIsCutAt1023Characters) {
  for (const std::size_t length : {1022, 1023, 1024, 3000}) {
    SCOPED_TRACE(length);
    WritePasswordFile(std::string(length, 'p'));
    ListeningServer server("+OK\r\n");
    redisContext* connection = zephlaneRedisConnectWithIP(kLocalhost, server.Port());
    EXPECT_EQ(zephlaneRedisDisconnect(connection), 0);
    const std::string sent(std::min<std::size_t>(length, 1023), 'p');
    EXPECT_EQ(server.ReceivedUntilClosed(),
              "*2\r\n$4\r\nAUTH\r\n$" + std::to_string(sent.size()) + "\r\n" + sent + "\r\n");
  }
}

TEST_F(Connection, RefusedPortIsReportedOnceAndAuthenticationNotTried) {
  const Output printed = ConnectTo(kLocalhost, RefusedPort());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Connection error: Connection refused"));
  EXPECT_EQ(printed.err, "");
}

TEST_F(Connection, RefusedPortWithEmptyPasswordFileIsFailureToo) {
  WritePasswordFile("");
  const Output printed = ConnectTo(kLocalhost, RefusedPort());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Connection error: Connection refused"));
}

TEST_F(Connection, RefusedPortAndMissingPasswordFileAreBothReported) {
  (void)std::filesystem::remove(kPasswordFile);
  const Output printed = ConnectTo(kLocalhost, RefusedPort());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Connection error: Connection refused") +
                                     ApiReport("Failed to open /tmp/redis.requirepass"));
  EXPECT_EQ(printed.err, "fopen: No such file or directory\n");
}

TEST_F(Connection, NoContextAtAllIsReportedOnceAndAuthenticationNotTried) {
  const ConnectFault fault;
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Connection error: can't allocate redis context"));
  EXPECT_EQ(printed.err, "");
}

TEST_F(Connection, NoContextAtAllAndMissingPasswordFileAreBothReported) {
  (void)std::filesystem::remove(kPasswordFile);
  const ConnectFault fault;
  const Output printed = Capture([&] { connection_ = zephlaneRedisConnect(); });
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Connection error: can't allocate redis context") +
                                     ApiReport("Failed to open /tmp/redis.requirepass"));
}

TEST_F(Connection, RefusedAuthenticationClosesTheConnection) {
  ListeningServer server("-ERR invalid password\r\n");
  const Output printed = ConnectTo(kLocalhost, server.Port());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Failed to redis authentication!"));
  EXPECT_NE(server.ReceivedUntilClosed(), "");
}

TEST_F(Connection, ConnectionLostDuringAuthenticationIsFailure) {
  ListeningServer server("");
  const Output printed = ConnectTo(kLocalhost, server.Port());
  EXPECT_EQ(connection_, nullptr);
  EXPECT_EQ(Masked(printed.out), ApiReport("Failed to redis authentication!"));
}

TEST_F(Connection, AnyReplyButAnErrorAuthenticates) {
  for (const char* reply : {"+OK\r\n", "+anything\r\n", ":0\r\n", "$-1\r\n", "*0\r\n"}) {
    SCOPED_TRACE(reply);
    ListeningServer server(reply);
    redisContext* connection = zephlaneRedisConnectWithIP(kLocalhost, server.Port());
    EXPECT_NE(connection, nullptr);
    EXPECT_EQ(zephlaneRedisDisconnect(connection), 0);
  }
}

TEST_F(Connection, DisconnectOfNullIsFailureAndPrintsNothing) {
  int result = 0;
  const Output printed = Capture([&] { result = zephlaneRedisDisconnect(nullptr); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(Connection, DisconnectReleasesTheConnection) {
  ListeningServer server("+OK\r\n");
  redisContext* connection = zephlaneRedisConnectWithIP(kLocalhost, server.Port());
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(zephlaneRedisDisconnect(connection), 0);
  EXPECT_NE(server.ReceivedUntilClosed(), "");
}

TEST_F(Connection, PublishedTimeoutIsOneAndAHalfSeconds) {
  EXPECT_EQ(G_sTimeout.tv_sec, 1);
  EXPECT_EQ(G_sTimeout.tv_usec, 500000);
}

}  // namespace
