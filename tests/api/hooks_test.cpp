// SPDX-License-Identifier: MIT
//
// Registration of hooks, the same for both families. This program has one thread, so that it may
// fork: a family starts once in a process, so that each case registers in a process of its own.
#include <linux/capability.h>
#include <pthread.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <barrier>
#include <cstdint>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "api/hookFixture.h"
#include "support/allocationFault.h"
#include "support/output.h"
#include "support/scriptedServer.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::Capture;
using zephlane::test::CreateQueue;
using zephlane::test::HookFamilyTest;
using zephlane::test::kSecondUuid;
using zephlane::test::kUuid;
using zephlane::test::Output;
using zephlane::test::Program;
using zephlane::test::QueueAttributes;
using zephlane::test::QueueExists;
using zephlane::test::ScriptedServer;

class HookRegistration : public HookFamilyTest {
 public:
  using HookFamilyTest::Both;
};

INSTANTIATE_TEST_SUITE_P(Families, HookRegistration, testing::ValuesIn(HookRegistration::Both()),
                         testing::PrintToStringParamName());

// Without privileges a queue follows its mode.
void DropPrivileges() {
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct none[2] = {};
  EXPECT_EQ(syscall(SYS_capset, &header, none), 0);
}

// The queue

TEST_P(HookRegistration, FirstOpensABlockingQueueOfTenMessages) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_TRUE(IsInitialised());
    mq_attr attributes{};
    ASSERT_EQ(mq_getattr(*GetParam().queue, &attributes), 0);
    EXPECT_EQ(attributes.mq_maxmsg, 10);
    EXPECT_EQ(attributes.mq_msgsize, GetParam().message_size);
    EXPECT_EQ(attributes.mq_flags, 0);
  });
  EXPECT_EQ(QueueAttributes(QueueOf("listener")).mq_msgsize, GetParam().message_size);
}

TEST_P(HookRegistration, QueueHasMode0770) {
  InFreshProcess([this] {
    (void)umask(0);
    EXPECT_EQ(Register(kUuid), 0);
    struct stat status {};
    ASSERT_EQ(fstat(*GetParam().queue, &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0770U);
  });
}

TEST_P(HookRegistration, QueueIsNamedAfterTheBaseNameOfTheProgram) {
  for (const char* path : {"listener", "./listener", "/usr/sbin/listener", "/sbin/listener//"}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(Ask({"FLUSHALL"}), "OK");
    InFreshProcess([&] {
      Program program(path);
      EXPECT_EQ(Register(ctx(), kUuid, &program), 0);
      EXPECT_EQ(program.Name(), path);  // not cut by the making of the base name
    });
    EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
    EXPECT_EQ(mq_unlink(QueueOf("listener").c_str()), 0);
  }
}

TEST_P(HookRegistration, ProgramWithoutANameIsADot) {
  char empty[] = "";
  for (char* name : {empty, static_cast<char*>(nullptr)}) {
    char* argv[] = {name, nullptr};
    InFreshProcess([&] { EXPECT_EQ(GetParam().Register(ctx(), kUuid, argv), 0); });
    EXPECT_EQ(Listed(kUuid), QueueOf("."));
    EXPECT_EQ(mq_unlink(QueueOf(".").c_str()), 0);
  }
}

TEST_P(HookRegistration, QueueNameIsCutTo255Characters) {
  const std::string name = QueueOf(std::string(300, 'n')).substr(0, 255);
  InFreshProcess([this] {
    Program program("/usr/sbin/" + std::string(300, 'n'));
    EXPECT_EQ(Register(ctx(), kUuid, &program), 0);
  });
  EXPECT_EQ(Listed(kUuid), name);
  EXPECT_EQ(mq_unlink(name.c_str()), 0);
}

TEST_P(HookRegistration, QueueOfAnEarlierRunIsReusedWithItsAttributes) {
  for (const long size : {40L, 1000L}) {
    CreateQueue(QueueOf("listener"), size);
    InFreshProcess([this] { EXPECT_EQ(Register(kUuid), 0); });
    EXPECT_EQ(QueueAttributes(QueueOf("listener")).mq_maxmsg, 5);
    EXPECT_EQ(QueueAttributes(QueueOf("listener")).mq_msgsize, size);
    EXPECT_EQ(mq_unlink(QueueOf("listener").c_str()), 0);
  }
}

// Whether the queue of an earlier run can be opened is not looked at: its receiver goes in circles.
TEST_P(HookRegistration, QueueOfAnEarlierRunThatCannotBeOpenedIsNotRefused) {
  CreateQueue(QueueOf("listener"), 40, 0);
  const std::vector<std::string> errors = FirstErrorLines(3, [this] {
    DropPrivileges();
    if (Register(kUuid) != 0) { (void)std::fputs("refused\n", stderr); }
  });
  EXPECT_EQ(errors, std::vector<std::string>(3, "mq_receive failed: Bad file descriptor"));
  EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
}

TEST_P(HookRegistration, QueueThatCannotBeOpenedIsReportedAndRefused) {
  InFreshProcess([this] {
    Program no_name("/");  // its base name is a slash, which no queue's name has inside
    const Output printed = Capture([&] { EXPECT_EQ(Register(ctx(), kUuid, &no_name), 1); });
    EXPECT_EQ(printed.err, "open queue error:: Permission denied\n");
    EXPECT_EQ(printed.out, "");
    EXPECT_FALSE(IsInitialised());
    EXPECT_EQ(*GetParam().queue, -1);
    EXPECT_FALSE(Exists(kUuid));
    EXPECT_EQ(Dump(), "");
    EXPECT_EQ(Register(kUuid), 0);
  });
  EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
}

// The thread

TEST_P(HookRegistration, TwoUuidsShareOneQueueAndOneThread) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    const int threads = Threads();
    const mqd_t queue = *GetParam().queue;
    Program other("other");
    EXPECT_EQ(Register(ctx(), kSecondUuid, &other), 0);
    EXPECT_EQ(Threads(), threads);
    EXPECT_EQ(*GetParam().queue, queue);
  });
  EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
  EXPECT_EQ(Listed(kSecondUuid), QueueOf("listener"));
  EXPECT_FALSE(QueueExists(QueueOf("other")));
}

TEST_P(HookRegistration, ThreadsThatRegisterAtOnceStartOneReceiver) {
  constexpr int kThreads = 8;
  InFreshProcess([this] {
    std::barrier step(kThreads + 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
      threads.emplace_back([&step, i, this] {
        redisContext* own = zephlane::test::ConnectToStore();
        step.arrive_and_wait();
        EXPECT_EQ(Register(own, std::to_string(i).c_str(), &program_), 0);
        step.arrive_and_wait();
        step.arrive_and_wait();
        redisFree(own);
      });
    }
    const int before = Threads();
    step.arrive_and_wait();
    step.arrive_and_wait();
    EXPECT_EQ(Threads(), before + 1);
    step.arrive_and_wait();
    for (std::thread& thread : threads) { thread.join(); }
    for (int i = 0; i < kThreads; ++i) { EXPECT_TRUE(Exists(std::to_string(i))); }
  });
}

TEST_P(HookRegistration, ThreadThatCannotBeStartedIsAFailureThatCanBeRepeated) {
  InFreshProcess([this] {
    pthread_attr_t usual;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    pthread_attr_t huge = usual;
    ASSERT_EQ(pthread_attr_setstacksize(&huge, SIZE_MAX / 8 * 7), 0);
    ASSERT_EQ(pthread_setattr_default_np(&huge), 0);
    const int descriptors = Descriptors();
    EXPECT_EQ(Register(kUuid), 1);
    EXPECT_EQ(Descriptors(), descriptors);
    EXPECT_FALSE(IsInitialised());
    EXPECT_EQ(*GetParam().queue, -1);
    EXPECT_EQ(Dump(), "");
    ASSERT_EQ(pthread_setattr_default_np(&usual), 0);
    EXPECT_EQ(Register(kUuid), 0);
  });
}

// UUIDs and arguments

TEST_P(HookRegistration, SameUuidTwiceIsRefused) {
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(Register(kUuid), 1);
    EXPECT_EQ(Register(kSecondUuid), 0);
  });
  EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
}

TEST_P(HookRegistration, UuidOf36CharactersIsTakenAndOneOf37Refused) {
  const std::string longest(36, 'u');
  InFreshProcess([&] {
    EXPECT_EQ(Register(longest.c_str()), 0);
    EXPECT_EQ(Register((longest + "u").c_str()), 1);
    EXPECT_TRUE(Exists(longest));
    EXPECT_FALSE(Exists(longest + "u"));
  });
  EXPECT_EQ(Dump(), "set " + ListOf(longest) + "\n  " + QueueOf("listener") + "\n");
}

TEST_P(HookRegistration, RefusedUuidHasOpenedTheQueueAllTheSame) {
  const std::string too_long(37, 'u');
  InFreshProcess([&] {
    ScriptedServer server;
    EXPECT_EQ(Register(server.ctx(), too_long.c_str(), &program_), 1);
    EXPECT_EQ(server.Commands(), "DEL " + ListOf(too_long) + "\n");
    EXPECT_TRUE(IsInitialised());
  });
  EXPECT_TRUE(QueueExists(QueueOf("listener")));
}

TEST_P(HookRegistration, KeyOfTheListIsCutTo254Characters) {
  const std::string long_uuid(300, 'u');
  InFreshProcess([&] {
    ScriptedServer server;
    EXPECT_EQ(Register(server.ctx(), long_uuid.c_str(), &program_), 1);
    EXPECT_EQ(server.Commands(), "DEL " + std::string(254, 'u') + "\n");
  });
}

TEST_P(HookRegistration, ProgramThatIsNullIsRefused) {
  InFreshProcess([this] {
    EXPECT_EQ(GetParam().Register(ctx(), kUuid, nullptr), 1);
    EXPECT_FALSE(IsInitialised());
    EXPECT_EQ(Dump(), "");
  });
}

// The store

TEST_P(HookRegistration, FirstClearsTheListOfItsUuidAndLaterOnesOnlyAdd) {
  InFreshProcess([this] {
    ScriptedServer server;
    for (const char* reply : {":1\r\n", ":1\r\n", ":1\r\n"}) { server.WillReply(reply); }
    EXPECT_EQ(Register(server.ctx(), kUuid, &program_), 0);
    EXPECT_EQ(Register(server.ctx(), kSecondUuid, &program_), 0);
    const std::string queue = QueueOf("listener");
    EXPECT_EQ(server.Commands(), "DEL " + ListOf(kUuid) + "\nSADD " + ListOf(kUuid) + " " + queue +
                                     "\nSADD " + ListOf(kSecondUuid) + " " + queue + "\n");
  });
}

TEST_P(HookRegistration, NamesOfEarlierRunsStayListedUnderLaterUuids) {
  EXPECT_EQ(Ask({"SADD", ListOf(kUuid), "/old"}), "1");
  EXPECT_EQ(Ask({"SADD", ListOf(kSecondUuid), "/old"}), "1");
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    EXPECT_EQ(Register(kSecondUuid), 0);
  });
  EXPECT_EQ(Dump(), "set " + ListOf(kUuid) + "\n  " + QueueOf("listener") + "\nset " +
                        ListOf(kSecondUuid) + "\n  " + QueueOf("listener") + "\n  /old\n");
}

TEST_P(HookRegistration, ResultOfClearingTheListIsIgnored) {
  InFreshProcess([this] {
    ScriptedServer server;
    server.WillReply("-ERR no\r\n");
    server.WillReply(":1\r\n");
    EXPECT_EQ(Register(server.ctx(), kUuid, &program_), 0);
  });
}

TEST_P(HookRegistration, UuidThatCannotBeListedIsNotEntered) {
  EXPECT_EQ(Ask({"SET", ListOf(kSecondUuid), "text"}), "OK");
  InFreshProcess([this] {
    EXPECT_EQ(Register(kUuid), 0);
    const Output printed = Capture([&] { EXPECT_EQ(Register(kSecondUuid), 1); });
    EXPECT_EQ(printed.out, " Create Set \"" + ListOf(kSecondUuid) + "\" Failed !!!\n");
    EXPECT_FALSE(Exists(kSecondUuid));
  });
}

TEST_P(HookRegistration, LostConnectionIsAFailure) {
  InFreshProcess([this] {
    ScriptedServer server;
    server.WillClose();
    (void)Capture([&] { EXPECT_EQ(Register(server.ctx(), kUuid, &program_), 1); });
    EXPECT_FALSE(Exists(kUuid));
    EXPECT_TRUE(IsInitialised());
  });
}

// Memory

// A registration whose n-th allocation fails.
class HookMemory : public HookRegistration {
 protected:
  void RegisterWithFault(int n) {
    const Output printed = Capture([&] {
      AllocationFault fault(n);
      const int result = Register(kUuid);
      fault.Disarm();
      EXPECT_TRUE(fault.Happened());
      EXPECT_EQ(result, 1);
    });
    EXPECT_EQ(printed.err, "");
    EXPECT_FALSE(Exists(kUuid));
  }
};

INSTANTIATE_TEST_SUITE_P(Families, HookMemory, testing::ValuesIn(HookRegistration::Both()),
                         testing::PrintToStringParamName());

TEST_P(HookMemory, RunningOutBeforeTheThreadStartsLeavesTheFamilyUninitialised) {
  for (const int n : {1, 2}) {  // the base name, the receiver's buffer
    EXPECT_EQ(Ask({"FLUSHALL"}), "OK");
    InFreshProcess([&] {
      const int descriptors = Descriptors();
      RegisterWithFault(n);
      EXPECT_EQ(Descriptors(), descriptors);
      EXPECT_FALSE(IsInitialised());
      EXPECT_EQ(Dump(), "");
      EXPECT_EQ(Register(kUuid), 0);
    });
  }
}

TEST_P(HookMemory, RunningOutAtTheEntryLeavesTheQueueListed) {
  InFreshProcess([this] {
    RegisterWithFault(5);
    EXPECT_TRUE(IsInitialised());
    EXPECT_EQ(Listed(kUuid), QueueOf("listener"));
    EXPECT_EQ(Register(kUuid), 0);
  });
}

}  // namespace
