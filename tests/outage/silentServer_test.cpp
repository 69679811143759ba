// SPDX-License-Identifier: MIT
//
// A server that accepts connections and never answers. Calls wait for it as long as the connection
// lets them: without limit on one of the library's own, for its time-out on one of the caller's.
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include <gtest/gtest.h>

#include "outage/storeCalls.h"
#include "support/localListener.h"
#include "support/output.h"
#include "support/process.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::ForkedChild;
using zephlane::test::LocalListener;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::StoreCall;
using zephlane::test::StoreCalls;

constexpr timeval kShortTime = {0, 5000};

// A connection of the caller's own, as one that wants a time-out makes it.
redisContext* ConnectWithTimeOut(const LocalListener& server, timeval time_out) {
  redisContext* ctx = redisConnectWithTimeout("127.0.0.1", server.Port(), time_out);
  EXPECT_EQ(ctx->err, 0) << ctx->errstr;
  EXPECT_EQ(redisSetTimeout(ctx, time_out), REDIS_OK);
  return ctx;
}

TEST(SilentServer, TimeOutForCallersIsOneAndAHalfSeconds) {
  EXPECT_EQ(G_sTimeout.tv_sec, 1);
  EXPECT_EQ(G_sTimeout.tv_usec, 500000);
}

TEST(SilentServer, EveryCallGivesItsFailureWhenTheCallersTimeOutIsOver) {
  for (const StoreCall& call : StoreCalls()) {
    const LocalListener server;
    redisContext* ctx = ConnectWithTimeOut(server, kShortTime);
    std::string result;
    (void)Capture([&] { result = call.call(ctx); });
    EXPECT_EQ(result, call.without_answer) << call.name;
    redisFree(ctx);
  }
}

TEST(SilentServer, CallThatCannotSendAllOfItGivesItsFailureWhenTheTimeOutIsOver) {
  const LocalListener server;
  redisContext* ctx = ConnectWithTimeOut(server, kShortTime);
  const std::string large(std::size_t{64} << 20, 'x');
  EXPECT_EQ(setKey(ctx, "key", large.c_str()), 1);
  EXPECT_EQ(ctx->err, REDIS_ERR_IO);
  redisFree(ctx);
}

// An answer that comes late must not be taken for that of the next command.
TEST(SilentServer, ConnectionIsOfNoUseAfterATimeOut) {
  const LocalListener server;
  redisContext* ctx = ConnectWithTimeOut(server, kShortTime);
  const int other_end = server.Accept();
  char value[ZEPHLANE_VALUE_SIZE] = "";
  EXPECT_EQ(getKey(ctx, "first", value), 1);
  EXPECT_EQ(ctx->err, REDIS_ERR_IO);
  EXPECT_EQ(send(other_end, "$4\r\nlate\r\n", 10, 0), 10);
  EXPECT_EQ(getKey(ctx, "second", value), 1);
  EXPECT_STREQ(value, "");
  (void)close(other_end);
  redisFree(ctx);
}

TEST(SilentServer, LibrarysOwnConnectionWaitsForTheAnswerToAuthUntilTheServerIsGone) {
  const LocalListener server;
  ForkedChild connecting([&server] {
    bool connected = true;
    const Output printed = Capture(
        [&] { connected = zephlaneRedisConnectWithIP("127.0.0.1", server.Port()) != nullptr; });
    return (connected ? "connected\n" : "not connected\n") + Masked(printed.out);
  });
  const int other_end = server.Accept();
  char auth[256];
  EXPECT_GT(recv(other_end, auth, sizeof(auth), 0), 0);
  EXPECT_TRUE(connecting.Deliver(SIGCONT)) << "it did not wait";
  (void)close(other_end);
  EXPECT_EQ(connecting.Result(), "not connected\n" + ApiReport("Failed to redis authentication!"));
}

}  // namespace
