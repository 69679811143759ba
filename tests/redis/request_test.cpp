// SPDX-License-Identifier: MIT
#include "redis/request.h"

#include <fcntl.h>
#include <csignal>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "redis/command.h"
#include "redis/commandCases.h"
#include "support/allocationFault.h"
#include "support/store.h"

namespace zephlane::test {
namespace {

// The signal with its usual fatal effect, but held back, so that a test sees it instead of ending.
class HeldBrokenPipe {
 public:
  HeldBrokenPipe() {
    handler_ = signal(SIGPIPE, SIG_DFL);
    (void)sigemptyset(&pipe_);
    (void)sigaddset(&pipe_, SIGPIPE);
    (void)pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  HeldBrokenPipe(const HeldBrokenPipe&) = delete;
  HeldBrokenPipe& operator=(const HeldBrokenPipe&) = delete;
  ~HeldBrokenPipe() {
    (void)Taken();
    (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    (void)signal(SIGPIPE, handler_);
  }
  // Whether one was raised since the last call.
  [[nodiscard]] bool Taken() {
    const timespec at_once{};
    return sigtimedwait(&pipe_, nullptr, &at_once) == SIGPIPE;
  }

 private:
  void (*handler_)(int);
  sigset_t pipe_{};
  sigset_t before_{};
};

bool SignalsAreUnblocked() {
  sigset_t blocked;
  (void)pthread_sigmask(SIG_BLOCK, nullptr, &blocked);
  return sigismember(&blocked, SIGPIPE) == 0;
}

class Requests : public StoreTest {
 protected:
  // A connection whose other end is closed: the first write to it is answered by a reset.
  redisContext* Closed() {
    server_.WillClose();
    EXPECT_FALSE(Command(server_.ctx(), "PING"));
    server_.ctx()->err = 0;  // so that the next command is written, as after a silent loss
    return server_.ctx();
  }
  ScriptedServer server_;
};

TEST_F(Requests, OfAMebibyteIsSentWhole) {
  const std::string value(std::size_t{1} << 20, 'v');
  EXPECT_TRUE(Command(ctx(), "SET key %s", value.c_str()));
  EXPECT_TRUE(Command(ctx(), "STRLEN key").IsInteger(1 << 20));
}

TEST_F(Requests, AroundTheSizeOfTheBufferAreSentWhole) {
  for (std::size_t size = 1900; size < 2100; ++size) {
    const std::string value(size, 'v');
    EXPECT_TRUE(Command(ctx(), "SET key %s", value.c_str()));
    EXPECT_TRUE(Command(ctx(), "STRLEN key").IsInteger(static_cast<long long>(size)));
  }
}

TEST_F(Requests, LargeOnesWithoutMemoryAreNotSent) {
  const std::string value(4000, 'v');
  AllocationFault fault(1);
  const Reply reply = Command(server_.ctx(), "SET key %s", value.c_str());
  fault.Disarm();
  EXPECT_FALSE(reply);
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(Requests, GoOutBehindWhatTheCallerHasQueued) {
  server_.WillReply(":1\r\n");
  server_.WillReply(":2\r\n");
  ASSERT_EQ(redisAppendCommand(server_.ctx(), "QUEUED"), REDIS_OK);
  EXPECT_TRUE(Command(server_.ctx(), "DIRECT").IsInteger(1));
  EXPECT_TRUE(NextReply(server_.ctx()).IsInteger(2));
  EXPECT_EQ(server_.Commands(), "QUEUED\nDIRECT\n");
}

TEST_F(Requests, OfAConnectionThatDoesNotBlockAreQueued) {
  server_.ctx()->flags &= ~REDIS_BLOCK;
  EXPECT_FALSE(Command(server_.ctx(), "PING"));
  server_.ctx()->flags |= REDIS_BLOCK;
  server_.WillReply("+PONG\r\n");
  EXPECT_EQ(NextReply(server_.ctx()).Text(), "PONG");
}

TEST_F(Requests, OfAFailedConnectionAreNotSent) {
  server_.WillClose();
  EXPECT_FALSE(Command(server_.ctx(), "PING"));
  const std::string received = server_.Received();
  EXPECT_EQ(server_.ctx()->err, REDIS_ERR_EOF);
  EXPECT_FALSE(Command(server_.ctx(), "PING"));
  EXPECT_FALSE(CommandOfText(server_.ctx(), "SADD set %%"));
  EXPECT_STREQ(server_.ctx()->obuf, "");
  EXPECT_EQ(server_.Received(), received);
}

TEST_F(Requests, ToAClosedConnectionFailWithoutASignal) {
  HeldBrokenPipe signal;
  redisContext* closed = Closed();
  EXPECT_FALSE(Command(closed, "PING"));
  closed->err = 0;
  EXPECT_FALSE(Command(closed, "PING"));
  EXPECT_EQ(closed->err, REDIS_ERR_IO);
  EXPECT_STREQ(closed->errstr, "Broken pipe");
  EXPECT_FALSE(signal.Taken());
}

TEST_F(Requests, QueuedForAClosedConnectionFailWithoutASignal) {
  HeldBrokenPipe signal;
  redisContext* closed = Closed();
  EXPECT_FALSE(Command(closed, "PING"));
  closed->err = 0;
  ASSERT_EQ(redisAppendCommand(closed, "QUEUED"), REDIS_OK);
  EXPECT_FALSE(NextReply(closed));
  EXPECT_EQ(closed->err, REDIS_ERR_IO);
  EXPECT_FALSE(signal.Taken());
}

TEST_F(Requests, LeaveASignalThatWasPendingAndTheMask) {
  {
    HeldBrokenPipe signal;
    (void)pthread_kill(pthread_self(), SIGPIPE);
    server_.WillReply("+PONG\r\n");
    ASSERT_EQ(redisAppendCommand(server_.ctx(), "PING"), REDIS_OK);
    EXPECT_TRUE(NextReply(server_.ctx()));
    EXPECT_TRUE(signal.Taken());
  }
  server_.WillReply("+PONG\r\n");
  ASSERT_EQ(redisAppendCommand(server_.ctx(), "PING"), REDIS_OK);
  EXPECT_TRUE(NextReply(server_.ctx()));
  EXPECT_TRUE(SignalsAreUnblocked());
}

class RequestBatches : public Requests {
 protected:
  // Adds a command of `words`.
  static bool Add(RequestBatch* batch, const std::vector<std::string>& words) {
    std::vector<const char*> texts;
    std::vector<std::size_t> lengths;
    for (const std::string& word : words) {
      texts.push_back(word.data());
      lengths.push_back(word.size());
    }
    return batch->Add({texts.data(), lengths.data(), texts.size()});
  }
};

TEST_F(RequestBatches, SendNothingBeforeTheyHaveToOrAreTold) {
  RequestBatch batch(server_.ctx());
  EXPECT_TRUE(Add(&batch, {"PING"}));
  server_.WillReply("+DIRECT\r\n");
  EXPECT_EQ(Command(server_.ctx(), "DIRECT").Text(), "DIRECT");
  server_.WillReply("+PONG\r\n");
  batch.Send();
  EXPECT_EQ(NextReply(server_.ctx()).Text(), "PONG");
  EXPECT_EQ(server_.Commands(), "DIRECT\nPING\n");
}

TEST_F(RequestBatches, LargerThanTheirBufferAreSentWholeAndInOrder) {
  RequestBatch batch(ctx());
  std::string expected;
  for (int i = 0; i < 300; ++i) {
    // Around the buffer's size and above it, between small ones.
    const std::string item(i % 50 == 0 ? 8000 + static_cast<std::size_t>(i) : 40, 'a' + i % 26);
    EXPECT_TRUE(Add(&batch, {"APPEND", "all", item}));
    expected += item;
  }
  batch.Send();
  for (int i = 0; i < 300; ++i) { EXPECT_TRUE(NextReply(ctx()).Is(REDIS_REPLY_INTEGER)); }
  EXPECT_EQ(Ask({"GET", "all"}), expected);
}

TEST_F(RequestBatches, GoOutBehindWhatTheCallerHasQueued) {
  server_.WillReply(":1\r\n");
  server_.WillReply(":2\r\n");
  ASSERT_EQ(redisAppendCommand(server_.ctx(), "QUEUED"), REDIS_OK);
  RequestBatch batch(server_.ctx());
  EXPECT_TRUE(Add(&batch, {"DIRECT"}));
  batch.Send();
  EXPECT_TRUE(NextReply(server_.ctx()).IsInteger(1));
  EXPECT_TRUE(NextReply(server_.ctx()).IsInteger(2));
  EXPECT_EQ(server_.Commands(), "QUEUED\nDIRECT\n");
}

TEST_F(RequestBatches, OfAConnectionThatDoesNotBlockAreQueued) {
  server_.ctx()->flags &= ~REDIS_BLOCK;
  RequestBatch batch(server_.ctx());
  EXPECT_TRUE(Add(&batch, {"PING"}));
  server_.ctx()->flags |= REDIS_BLOCK;
  server_.WillReply("+PONG\r\n");
  EXPECT_EQ(NextReply(server_.ctx()).Text(), "PONG");
}

TEST_F(RequestBatches, ForAClosedConnectionFailAtTheReadingWithoutASignal) {
  HeldBrokenPipe signal;
  redisContext* closed = Closed();
  EXPECT_FALSE(Command(closed, "PING"));
  closed->err = 0;
  RequestBatch batch(closed);
  EXPECT_TRUE(Add(&batch, {"PING"}));
  batch.Send();
  EXPECT_FALSE(NextReply(closed));
  EXPECT_FALSE(signal.Taken());
}

TEST_F(RequestBatches, LoseOnlyTheCommandThereIsNoMemoryFor) {
  server_.WillReply("+PONG\r\n");
  RequestBatch batch(server_.ctx());
  EXPECT_TRUE(Add(&batch, {"PING"}));
  const std::string value(4000, 'v');
  const char* texts[] = {"SET", "key", value.c_str()};
  const std::size_t lengths[] = {3, 3, value.size()};
  AllocationFault fault(1);
  EXPECT_FALSE(batch.Add({texts, lengths, 3}));
  fault.Disarm();
  batch.Send();
  EXPECT_EQ(NextReply(server_.ctx()).Text(), "PONG");
  EXPECT_EQ(server_.Commands(), "PING\n");
}

}  // namespace
}  // namespace zephlane::test
