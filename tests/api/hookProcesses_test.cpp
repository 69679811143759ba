// SPDX-License-Identifier: MIT
//
// OEM hooks between processes. This program has one thread, so that it may fork: its children
// listen, and it triggers itself.
#include <sched.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "api/hookFixture.h"
#include "support/output.h"
#include "support/process.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::ConnectToStore;
using zephlane::test::ForkedChild;
using zephlane::test::Gate;
using zephlane::test::HookTest;
using zephlane::test::kSecondUuid;
using zephlane::test::kUuid;
using zephlane::test::Output;
using zephlane::test::Program;
using zephlane::test::TellOem;

class HookProcesses : public HookTest {
 protected:
  // A process named `program` that registers TellOem for the UUIDs and then listens until killed.
  class Listener {
   public:
    Listener(const std::string& program, const std::vector<std::string>& uuids)
        : child_([&] { return Listen(program, uuids); }) {
      listens_.Pass();
    }
    void Kill() {
      child_.Kill();
    }

   private:
    std::string Listen(const std::string& name, const std::vector<std::string>& uuids) {
      redisContext* own = ConnectToStore();
      Program program(name);
      for (const std::string& uuid : uuids) {
        EXPECT_EQ(zephlaneOemHookFunctionRegister(own, uuid.c_str(), program.Argv(), TellOem), 0);
      }
      listens_.Open();
      Gate().Pass();  // for ever
      return "";
    }
    Gate listens_;
    ForkedChild child_;
  };
  int Trigger(const char* uuid, const char* text) {
    return zephlaneTriggerOemHookFunc(ctx(), uuid, "1f", text, "second", "third");
  }
  std::string Listed(const std::string& uuid) {
    return Ask({"SORT", uuid + "-oem-mqList", "ALPHA"});
  }
};

TEST_F(HookProcesses, ListenerIsWokenByAnotherProcess) {
  const Listener listener("listener", {kUuid});
  EXPECT_EQ(zephlaneHasOemMessageHandler(ctx(), kUuid), 0);
  EXPECT_EQ(Trigger(kUuid, "first"), 0);
  EXPECT_EQ(NextCall(), "oem 1f|first|second|third");
}

TEST_F(HookProcesses, EveryListenerOfAUuidIsWoken) {
  const Listener first("listener", {kUuid});
  const Listener second("second", {kSecondUuid, kUuid});
  EXPECT_EQ(Listed(kUuid), "/oemmq_listener\n/oemmq_second");
  EXPECT_EQ(Trigger(kUuid, "both"), 0);
  EXPECT_EQ(NextCall(), "oem 1f|both|second|third");
  EXPECT_EQ(NextCall(), "oem 1f|both|second|third");
  EXPECT_EQ(Trigger(kSecondUuid, "one"), 0);
  EXPECT_EQ(NextCall(), "oem 1f|one|second|third");
}

// The first registration of a process clears the list, whoever is in it.
TEST_F(HookProcesses, SecondListenerOfItsFirstUuidTakesTheFirstOneOffTheList) {
  const Listener first("listener", {kUuid});
  const Listener second("second", {kUuid});
  EXPECT_EQ(Listed(kUuid), "/oemmq_second");
}

TEST_F(HookProcesses, RestartedListenerReceivesFromTheQueueThatIsOpenAlready) {
  Listener listener("listener", {kUuid});
  EXPECT_EQ(Trigger(kUuid, "first"), 0);
  EXPECT_EQ(NextCall(), "oem 1f|first|second|third");
  listener.Kill();
  const Listener restarted("listener", {kUuid});
  EXPECT_EQ(Trigger(kUuid, "second"), 0);
  EXPECT_EQ(NextCall(), "oem 1f|second|second|third");
}

TEST_F(HookProcesses, MessagesForAListenerThatIsGoneStayUntilItsQueueIsFull) {
  Listener listener("listener", {kUuid});
  listener.Kill();
  for (int i = 0; i < 10; ++i) { EXPECT_EQ(Trigger(kUuid, "kept"), 0); }
  const Output printed = Capture([this] { EXPECT_EQ(Trigger(kUuid, "refused"), 1); });
  EXPECT_EQ(printed.err, "queue send failed: Connection timed out\n");
  EXPECT_EQ(zephlane::test::TakeAll("/oemmq_listener").size(), 10U);
}

// Many messages

constexpr int kMessages = 10000;

// State of the listening process: its receiver thread writes until it opens all_received.
Gate* queue_was_full = nullptr;
Gate* all_received = nullptr;
int received_in_order = 0;
int received_otherwise = 0;

int Count(char* /*id*/, char* number, char* /*arg2*/, char* /*arg3*/) {
  const int at = std::atoi(number);
  if (at == 0) { queue_was_full->Pass(); }
  ++(at == received_in_order ? received_in_order : received_otherwise);
  if (at == kMessages - 1) { all_received->Open(); }
  return 0;
}

std::string ListenAndCount(Gate& listens) {
  redisContext* own = ConnectToStore();
  Program program("listener");
  if (zephlaneOemHookFunctionRegister(own, kUuid, program.Argv(), Count) != 0) { return "failed"; }
  listens.Open();
  all_received->Pass();
  return std::to_string(received_in_order) + " in order, " + std::to_string(received_otherwise) +
         " otherwise";
}

TEST_F(HookProcesses, ManyMessagesArriveInOrderAndNoneIsLostWhenRefusedOnesAreRepeated) {
  Gate listens;
  Gate was_full;
  Gate received;
  queue_was_full = &was_full;
  all_received = &received;
  ForkedChild listener([&listens] { return ListenAndCount(listens); });
  listens.Pass();
  int refused = 0;
  (void)Capture([&] {
    for (int i = 0; i < kMessages; ++i) {
      while (Trigger(kUuid, std::to_string(i).c_str()) != 0) {
        if (++refused == 1) { was_full.Open(); }
        (void)sched_yield();
      }
    }
  });
  EXPECT_EQ(listener.Result(), "10000 in order, 0 otherwise");
  EXPECT_GT(refused, 0);
}

}  // namespace
