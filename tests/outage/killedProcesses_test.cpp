// SPDX-License-Identifier: MIT
//
// Processes that are killed at any moment while they draw UUIDs and event IDs, make and delete
// trees, and send messages to hooks. What they have drawn is marked in memory that they share with
// this program, which has one thread, so that it may fork. ZEPHLANE_TEST_SECONDS says how long.
#include <fcntl.h>
#include <mqueue.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "outage/setting.h"
#include "outage/tree.h"
#include "support/process.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ConnectToStore;
using zephlane::test::ForkedChild;
using zephlane::test::Gate;
using zephlane::test::RandomSeed;
using zephlane::test::Setting;
using zephlane::test::StoreTest;

constexpr int kWorkers = 8;
constexpr int kListeners = 2;
constexpr std::size_t kMaximumDrawn = std::size_t{1} << 25;

constexpr char kFan[] = "10000000-0000-0000-0000-0000000000fa";
constexpr char kFirstDigits[] = "10000000-0000-0000-0000-";
constexpr const char* kPrograms[kListeners] = {"outageFirst", "outageSecond"};

// IDs that were drawn, by their number. A page of it takes memory only once it is written to.
struct Drawn {
  std::atomic<bool> seen[kMaximumDrawn];
  std::atomic<unsigned int> count;
  std::atomic<unsigned int> duplicates;
  std::atomic<unsigned int> malformed;

  void Mark(const char* digits) {
    char* end = nullptr;
    const unsigned long number = std::strtoul(digits, &end, 16);
    ++(*end != '\0' || number >= kMaximumDrawn ? malformed : count);
    if (number < kMaximumDrawn && seen[number].exchange(true)) { ++duplicates; }
  }
};

struct Shared {
  Drawn uuids;
  Drawn event_ids;
  std::atomic<unsigned int> sent;
  std::atomic<unsigned int> received[kListeners];
  std::atomic<unsigned int> garbled;
  std::atomic<unsigned int> failures;
};

Shared* shared = nullptr;
int listener_here = 0;  // which one this process is

Shared* NewShared() {
  void* const memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE,
                            MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
  return memory == MAP_FAILED ? nullptr : new (memory) Shared;
}

std::string Silenced() {
  const int nowhere = open("/dev/null", O_WRONLY);
  (void)dup2(nowhere, STDOUT_FILENO);
  (void)dup2(nowhere, STDERR_FILENO);
  return "";
}

// Works until it is killed.
std::string Work() {
  (void)Silenced();
  redisContext* ctx = zephlaneRedisConnect();
  for (;;) {
    char uuid[ZEPHLANE_ID_SIZE] = "";
    if (zephlaneGenerateUUID(ctx, uuid) != 0) { ++shared->failures; }
    const bool in_range = std::string_view(uuid).starts_with(kFirstDigits);
    shared->uuids.Mark(in_range ? uuid + sizeof(kFirstDigits) - 1 : "none");
    char event_id[9] = "";
    if (generateEventID(ctx, event_id) != 0) { ++shared->failures; }
    shared->event_ids.Mark(event_id);
    if (!zephlane::test::MakeAndDeleteTree(ctx)) { ++shared->failures; }
    // A full queue refuses a message: that is no failure here.
    if (zephlaneTriggerOemHookFunc(ctx, kFan, "1f", event_id, uuid, uuid) == 0) { ++shared->sent; }
  }
}

int Receive(char* id, char* event_id, char* uuid, char* same_uuid) {
  const bool is_whole = std::strcmp(id, "1f") == 0 && std::strlen(event_id) == 8 &&
                        std::strlen(uuid) == 36 && std::strcmp(uuid, same_uuid) == 0;
  ++(is_whole ? shared->received[listener_here] : shared->garbled);
  return 0;
}

// Receives until it is killed.
std::string Listen(int listener, Gate& listens) {
  (void)Silenced();
  listener_here = listener;
  redisContext* ctx = zephlaneRedisConnect();
  std::string program = kPrograms[listener];
  char* argv[] = {program.data(), nullptr};
  if (zephlaneOemHookFunctionRegister(ctx, kFan, argv, Receive) != 0) { ++shared->failures; }
  // The first registration of a process takes the names of others off the list.
  for (const char* other : kPrograms) {
    const std::string queue = std::string("/oemmq_") + other;
    (void)mappingMsgQueueToUUID(ctx, kFan, queue.c_str(), 1);
  }
  listens.Open();
  for (;;) { (void)pause(); }
}

class KilledProcesses : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    shared = NewShared();
    ASSERT_NE(shared, nullptr);
    for (int i = 0; i < kListeners; ++i) { Start(i); }
    for (int i = kListeners; i < kListeners + kWorkers; ++i) { Start(i); }
  }
  void TearDown() override {
    for (const char* program : kPrograms) {
      (void)mq_unlink((std::string("/oemmq_") + program).c_str());
    }
    (void)munmap(shared, sizeof(Shared));
    StoreTest::TearDown();
  }
  // Kills what runs at this place, and starts it anew.
  void Start(int place) {
    processes_[place].reset();
    if (place >= kListeners) {
      processes_[place] = std::make_unique<ForkedChild>(Work);
      return;
    }
    Gate listens;
    processes_[place] =
        std::make_unique<ForkedChild>([place, &listens] { return Listen(place, listens); });
    listens.Pass();
  }
  int KillAtRandomMoments(std::chrono::seconds duration) {
    std::mt19937 random(RandomSeed());
    std::uniform_int_distribution place(0, kListeners + kWorkers - 1);
    std::uniform_int_distribution microseconds(0, 5000);
    const auto end = std::chrono::steady_clock::now() + duration;
    int killed = 0;
    for (; std::chrono::steady_clock::now() < end; ++killed) {
      std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
      Start(place(random));
    }
    return killed;
  }
  void KillAll() {
    for (auto& process : processes_) { process.reset(); }
  }

 private:
  std::array<std::unique_ptr<ForkedChild>, kListeners + kWorkers> processes_;
};

bool IsFree(const char* lock_file) {
  const int fd = open(lock_file, O_RDWR);
  const bool is_free = fileLock(fd, F_SETLK, F_WRLCK) == 0;
  (void)close(fd);
  return is_free;
}

TEST_F(KilledProcesses, LeaveNoDuplicateNoHeldLockAndUsableQueues) {
  const std::chrono::seconds duration(Setting("ZEPHLANE_TEST_SECONDS", 2));
  const int killed = KillAtRandomMoments(duration);
  KillAll();
  std::printf("%d processes killed; %u UUIDs and %u event IDs drawn, %u messages sent\n", killed,
              shared->uuids.count.load(), shared->event_ids.count.load(), shared->sent.load());

  EXPECT_GT(shared->uuids.count, 0U);
  EXPECT_EQ(shared->uuids.duplicates, 0U);
  EXPECT_EQ(shared->uuids.malformed, 0U);
  EXPECT_GT(shared->event_ids.count, 0U);
  EXPECT_EQ(shared->event_ids.duplicates, 0U);
  EXPECT_EQ(shared->event_ids.malformed, 0U);
  EXPECT_GT(shared->sent, 0U);
  EXPECT_EQ(shared->garbled, 0U);
  EXPECT_EQ(shared->failures, 0U);

  EXPECT_TRUE(IsFree(ZephlaneGenerateUUIDLockFile));
  EXPECT_TRUE(IsFree(ZephlaneGenerateEventIDLockFile));
  EXPECT_TRUE(zephlane::test::MakeAndDeleteTree(ctx()));

  // Restarted listeners take what was left for them and what is sent now.
  for (int i = 0; i < kListeners; ++i) { Start(i); }
  const unsigned int before[] = {shared->received[0], shared->received[1]};
  const std::string uuid(36, '1');
  while (zephlaneTriggerOemHookFunc(ctx(), kFan, "1f", "00000001", uuid.c_str(), uuid.c_str()) !=
         0) {}
  while (shared->received[0] == before[0] || shared->received[1] == before[1]) {}
  EXPECT_EQ(shared->garbled, 0U);
  KillAll();
}

}  // namespace
