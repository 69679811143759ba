// SPDX-License-Identifier: MIT
//
// Every exported function that talks to Redis when a reply is not what it should be: for each
// command that a call sends, each bad reply in the place of the right one. The call comes to an end
// with a documented result, reads nothing past a reply, and takes every reply that it asked for.
#include <sched.h>
#include <signal.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "faults/everyFunction.h"
#include "faults/faultStage.h"
#include "faults/replies.h"
#include "redis/command.h"
#include "support/callFault.h"
#include "support/output.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

struct Figures {
  int functions = 0;
  int commands = 0;
  int calls = 0;
};
Figures all_figures;

// The first or the last of those that this thread may use.
void UseOneProcessor(bool first) {
  cpu_set_t allowed;
  if (sched_getaffinity(0, sizeof(allowed), &allowed) != 0) { return; }
  int chosen = -1;
  for (int i = 0; i < CPU_SETSIZE; ++i) {
    if (CPU_ISSET(i, &allowed) && !(first && chosen >= 0)) { chosen = i; }
  }
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(chosen, &one);
  (void)sched_setaffinity(0, sizeof(one), &one);
}

// What a test itself sends through hiredis may meet a closed connection; what the library sends
// must not raise the signal.
class IgnoresBrokenPipes {
 public:
  IgnoresBrokenPipes() = default;
  IgnoresBrokenPipes(const IgnoresBrokenPipes&) = delete;
  IgnoresBrokenPipes& operator=(const IgnoresBrokenPipes&) = delete;
  ~IgnoresBrokenPipes() {
    (void)signal(SIGPIPE, before_);
  }

 private:
  void (*before_)(int) = signal(SIGPIPE, SIG_IGN);
};

class ReplyFaults : public testing::TestWithParam<FunctionFamily> {
 protected:
  void SetUp() override {
    // Caller and server take turns: on one processor that costs half as much. The function that
    // takes most of the time leaves the others another one.
    UseOneProcessor(GetParam().name == "driver");
  }
  void TearDown() override {
    (void)std::printf("%-16.*s %4d functions %5d commands %3zu replies: %6d calls\n",
                      static_cast<int>(GetParam().name.size()), GetParam().name.data(),
                      figures_.functions, figures_.commands, BadReplies().size(), figures_.calls);
    all_figures.functions += figures_.functions;
    all_figures.commands += figures_.commands;
    all_figures.calls += figures_.calls;
  }
  // Calls a prepared function with a connection that `handler` serves.
  Outcome Call(const FunctionCase& function, const ServedConnection::Handler& handler,
               void (*prepare)(const FunctionCase& function, Stage& stage)) {
    ServedConnection server(handler);
    Stage stage{server.ctx(), stage_.Get().store};
    prepare(function, stage);
    const bool connects = (function.traits & kConnects) != 0;
    Outcome outcome;
    if (connects) {
      const ConnectResult result(server.Release());
      outcome = function.call(stage);
    } else {
      outcome = function.call(stage);
    }
    const IgnoresBrokenPipes scope;
    is_synchronous_ = connects || AsksInTurn(server.ctx());
    Finish(function, stage);
    return outcome;
  }
  // What the real server answers to a call that succeeds.
  std::vector<Exchange> Record(const FunctionCase& function) {
    std::vector<Exchange> exchanges;
    redisContext* const store = stage_.Get().ctx;
    for (int run = 0; run < 2; ++run) {  // some calls ask something only once in a process
      exchanges.clear();
      const Outcome outcome = Call(function, Recorder(store, &exchanges), Prepare);
      EXPECT_EQ(outcome.result, Result::kSuccess) << Described(outcome);
    }
    // What comes from there on is not the call's.
    const auto end = std::find_if(exchanges.begin(), exchanges.end(), [](const Exchange& exchange) {
      return exchange.word == kSyncWord;
    });
    exchanges.erase(end, exchanges.end());
    return exchanges;
  }
  // Whether the next reply on a connection that still lives belongs to the next command.
  static bool AsksInTurn(redisContext* ctx) {
    if (ctx->err != 0) { return true; }
    // Not with redisCommand(), which raises SIGPIPE where the server has closed the connection.
    const Reply reply = Command(ctx, "%s", kSyncWord);
    return !reply || (reply.Is(REDIS_REPLY_STATUS) && reply.Text() == "synchronous");
  }
  void CallWithBadReply(const FunctionCase& function, const std::vector<Exchange>& exchanges,
                        std::size_t index, const BadReply& bad) {
    Replay replay(exchanges, index, bad);
    Outcome outcome;
    const Output printed =
        Capture([&] { outcome = Call(function, std::ref(replay), PrepareProcess); });
    EXPECT_NE(outcome.result, Result::kUndocumented) << Described(outcome);
    EXPECT_TRUE(replay.WasBad());
    EXPECT_FALSE(replay.WasCutOff());
    EXPECT_TRUE(is_synchronous_);
    EXPECT_EQ(HeldLocks(), "");
    ++figures_.calls;
  }
  Figures figures_;
  bool is_synchronous_ = true;
  FaultStage stage_;
};

TEST_P(ReplyFaults, EndInADocumentedResult) {
  for (const FunctionCase& function : GetParam().cases) {
    if (!MayRepeat(function)) { continue; }
    if ((function.traits & kQueues) != 0) { continue; }
    SCOPED_TRACE(function.name);
    std::vector<Exchange> exchanges;
    const Output printed = Capture([&] { exchanges = Record(function); });
    if (exchanges.empty()) { continue; }
    ++figures_.functions;
    figures_.commands += static_cast<int>(exchanges.size());
    for (std::size_t i = 0; i < exchanges.size(); ++i) {
      SCOPED_TRACE("command " + std::to_string(i) + ": " + exchanges[i].word);
      for (const BadReply& bad : BadReplies()) {
        SCOPED_TRACE(bad.name);
        CallWithBadReply(function, exchanges, i, bad);
      }
    }
    EXPECT_FALSE(HasLeaks());
  }
}

INSTANTIATE_TEST_SUITE_P(Every, ReplyFaults, testing::ValuesIn(FaultFamilies()), FamilyName);

// The sum, when one process runs more than one family.
class Total : public testing::Environment {
 public:
  void TearDown() override {
    (void)std::printf("reply faults: %d functions, %d commands, %zu replies: %d calls\n",
                      all_figures.functions, all_figures.commands, BadReplies().size(),
                      all_figures.calls);
  }
};
testing::Environment* const total = testing::AddGlobalTestEnvironment(new Total);

}  // namespace
}  // namespace zephlane::test
