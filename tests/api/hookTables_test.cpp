// SPDX-License-Identifier: MIT
//
// The tables behind the hooks and the checks of texts, which need neither queue nor thread.
#include <pthread.h>
#include <regex.h>

#include <cerrno>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/allocationFault.h"
#include "support/owners.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::AllocationFault;

constexpr char kUuid[] = "10000000-0000-0000-0000-00000000000a";
constexpr char kSecondUuid[] = "10000000-0000-0000-0000-00000000000b";
constexpr char kThirdUuid[] = "10000000-0000-0000-0000-00000000000c";

int PlainHandler(char*, char*, char*) {
  return 0;
}

int OtherPlainHandler(char*, char*, char*) {
  return 1;
}

int OemHandler(char*, char*, char*, char*) {
  return 0;
}

// Handlers of both families pass through one function type.
HookFunction AsHookFunction(OemHookFunction handler) {
  return reinterpret_cast<HookFunction>(reinterpret_cast<void (*)()>(handler));
}

template <typename Entry>
void FreeList(Entry*& head) {
  while (head != nullptr) { head = zephlane::CRecord<Entry>(head)->next; }
}

// The UUIDs or names of a list in order, each followed by a blank.
template <typename Entry>
std::string Listed(const Entry* entry) {
  std::string names;
  for (; entry != nullptr; entry = entry->next) {
    if constexpr (requires { entry->uuid; }) {
      names += entry->uuid;
    } else {
      names += entry->name;
    }
    names += ' ';
  }
  return names;
}

class HookTables : public testing::Test {
 protected:
  void TearDown() override {
    FreeList(zephlaneFunctionTable);
    FreeList(zephlaneOemFunctionTable);
    FreeList(openedQueueInfoList);
  }
};

TEST_F(HookTables, StartEmptyAndWithoutQueues) {
  EXPECT_EQ(zephlaneFunctionTable, nullptr);
  EXPECT_EQ(zephlaneOemFunctionTable, nullptr);
  EXPECT_EQ(openedQueueInfoList, nullptr);
  EXPECT_EQ(hookFunctionInitFlag, 0);
  EXPECT_EQ(hookOemFunctionInitFlag, 0);
  EXPECT_EQ(mqID, -1);
  EXPECT_EQ(OemMqID, -1);
}

TEST_F(HookTables, MutexesAreFreeAndNotRecursive) {
  for (pthread_mutex_t* mutex :
       {&zephlaneHookFuncInitLock, &zephlaneOemHookFuncInitLock, &updateMsgQueueLock}) {
    EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
    EXPECT_EQ(pthread_mutex_trylock(mutex), EBUSY);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
  }
}

// Handlers

TEST_F(HookTables, FirstHandlerBecomesTheHead) {
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, PlainHandler, 0), 0);
  ASSERT_NE(zephlaneFunctionTable, nullptr);
  EXPECT_STREQ(zephlaneFunctionTable->uuid, kUuid);
  EXPECT_EQ(zephlaneFunctionTable->handler, PlainHandler);
  EXPECT_EQ(zephlaneFunctionTable->next, nullptr);
}

TEST_F(HookTables, FurtherHandlersAreAppended) {
  for (const char* uuid : {kThirdUuid, kUuid, kSecondUuid}) {
    EXPECT_EQ(zephlaneUpdateFuncInfo(uuid, PlainHandler, 0), 0);
  }
  EXPECT_EQ(Listed(zephlaneFunctionTable),
            std::string(kThirdUuid) + " " + kUuid + " " + kSecondUuid + " ");
}

TEST_F(HookTables, SameUuidTwiceIsRefusedAndKeepsTheFirstHandler) {
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, PlainHandler, 0), 0);
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, OtherPlainHandler, 0), 1);
  EXPECT_EQ(zephlaneFunctionTable->handler, PlainHandler);
  EXPECT_EQ(zephlaneFunctionTable->next, nullptr);
}

TEST_F(HookTables, OneSelectsTheOemTableAndAnyOtherValueThePlainOne) {
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, AsHookFunction(OemHandler), 1), 0);
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, PlainHandler, 2), 0);
  EXPECT_EQ(zephlaneUpdateFuncInfo(kSecondUuid, PlainHandler, -1), 0);
  EXPECT_EQ(Listed(zephlaneOemFunctionTable), std::string(kUuid) + " ");
  EXPECT_EQ(zephlaneOemFunctionTable->handler, OemHandler);
  EXPECT_EQ(Listed(zephlaneFunctionTable), std::string(kUuid) + " " + kSecondUuid + " ");
}

TEST_F(HookTables, UuidIsCutTo36CharactersAndComparedOver37) {
  const std::string longer = std::string(kUuid) + "0";
  EXPECT_EQ(zephlaneUpdateFuncInfo(longer.c_str(), PlainHandler, 0), 0);
  EXPECT_STREQ(zephlaneFunctionTable->uuid, kUuid);
  EXPECT_EQ(isUUIDExist(longer.c_str(), 0), 0);
  EXPECT_EQ(isUUIDExist(kUuid, 0), 1);
}

TEST_F(HookTables, NullUuidIsRefused) {
  EXPECT_EQ(zephlaneUpdateFuncInfo(nullptr, PlainHandler, 0), 1);
  EXPECT_EQ(zephlaneUpdateFuncInfo(nullptr, PlainHandler, 1), 1);
  EXPECT_EQ(zephlaneFunctionTable, nullptr);
  EXPECT_EQ(zephlaneOemFunctionTable, nullptr);
}

TEST_F(HookTables, RunningOutOfMemoryLeavesTheTableAsItWas) {
  for (const char* uuid : {kUuid, kSecondUuid}) {
    for (const int oem : {0, 1}) {
      const std::string before = Listed(zephlaneFunctionTable) + Listed(zephlaneOemFunctionTable);
      AllocationFault fault(1);
      const int result = zephlaneUpdateFuncInfo(uuid, PlainHandler, oem);
      fault.Disarm();
      EXPECT_EQ(result, 1);
      EXPECT_EQ(Listed(zephlaneFunctionTable) + Listed(zephlaneOemFunctionTable), before);
      EXPECT_EQ(zephlaneUpdateFuncInfo(uuid, PlainHandler, oem), 0);
    }
  }
}

TEST_F(HookTables, UuidExistsInItsOwnTableOnly) {
  EXPECT_EQ(isUUIDExist(kUuid, 0), 0);
  EXPECT_EQ(zephlaneUpdateFuncInfo(kUuid, PlainHandler, 0), 0);
  EXPECT_EQ(zephlaneUpdateFuncInfo(kSecondUuid, PlainHandler, 0), 0);
  EXPECT_EQ(isUUIDExist(kUuid, 0), 1);
  EXPECT_EQ(isUUIDExist(kSecondUuid, 0), 1);
  EXPECT_EQ(isUUIDExist(kThirdUuid, 0), 0);
  EXPECT_EQ(isUUIDExist(kUuid, 1), 0);
  EXPECT_EQ(isUUIDExist("10000000-0000-0000-0000-00000000000", 0), 0);
  EXPECT_EQ(isUUIDExist("", 0), 0);
  EXPECT_EQ(isUUIDExist(nullptr, 0), 0);
}

// Queues opened for sending

TEST_F(HookTables, OpenedQueueIsFoundByItsName) {
  EXPECT_EQ(getOpenedQueueID("/oemmq_a"), -1);
  EXPECT_EQ(updateOpenedMsgQueueTable(41, "/oemmq_a"), 0);
  EXPECT_EQ(updateOpenedMsgQueueTable(42, "/oemmq_b"), 0);
  EXPECT_EQ(getOpenedQueueID("/oemmq_a"), 41);
  EXPECT_EQ(getOpenedQueueID("/oemmq_b"), 42);
  EXPECT_EQ(getOpenedQueueID("/oemmq_"), -1);
  EXPECT_EQ(getOpenedQueueID("/oemmq_ab"), -1);
}

TEST_F(HookTables, FirstOfTwoRecordsOfAQueueIsFound) {
  EXPECT_EQ(updateOpenedMsgQueueTable(41, "/oemmq_a"), 0);
  EXPECT_EQ(updateOpenedMsgQueueTable(42, "/oemmq_a"), 0);
  EXPECT_EQ(getOpenedQueueID("/oemmq_a"), 41);
  EXPECT_EQ(Listed(openedQueueInfoList), "/oemmq_a /oemmq_a ");
}

TEST_F(HookTables, QueueNameIsCutTo255CharactersAndZeroPadded) {
  const std::string name(255, 'n');
  EXPECT_EQ(updateOpenedMsgQueueTable(41, (name + "n").c_str()), 0);
  EXPECT_EQ(std::string_view(openedQueueInfoList->name, 256), name + '\0');
  EXPECT_EQ(getOpenedQueueID(name.c_str()), 41);
  EXPECT_EQ(getOpenedQueueID((name + "n").c_str()), -1);
  EXPECT_EQ(updateOpenedMsgQueueTable(42, "n"), 0);
  EXPECT_EQ(std::string_view(openedQueueInfoList->next->name, 256), "n" + std::string(255, '\0'));
}

TEST_F(HookTables, QueueWithoutANameIsRefused) {
  EXPECT_EQ(getOpenedQueueID(nullptr), -1);
  EXPECT_EQ(updateOpenedMsgQueueTable(41, nullptr), 1);
  EXPECT_EQ(openedQueueInfoList, nullptr);
}

TEST_F(HookTables, QueueIsNotRecordedWhenMemoryIsOut) {
  AllocationFault fault(1);
  EXPECT_EQ(updateOpenedMsgQueueTable(41, "/oemmq_a"), 1);
  EXPECT_TRUE(fault.Happened());
  EXPECT_EQ(openedQueueInfoList, nullptr);
}

// Checks of texts

constexpr char kUuidPattern[] = "[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}";

TEST(HookTexts, ReturnChannelIsAUuidAHyphenAndTwoLowerCaseDigits) {
  const zephlane::Regex pattern(kUuidPattern, REG_EXTENDED | REG_NOSUB);
  const std::string uuid = kUuid;
  for (const char* end : {"-00", "-09", "-9a", "-af", "-ff"}) {
    EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), (uuid + end).c_str()), 0) << end;
  }
  for (const char* end : {"", "-", "-0", "-000", "+00", "-0g", "-g0", "-0A", "-A0", "-0/",
                          "-0:", "-0`", "- 0", "00-", "-0\xe4"}) {
    EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), (uuid + end).c_str()), 1) << end;
  }
}

TEST(HookTexts, ReturnChannelMustMatchThePattern) {
  const zephlane::Regex pattern(kUuidPattern, REG_EXTENDED);
  EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), "10000000-0000-0000-0000-00000000000x-00"), 1);
  EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), "10000000-0000-0000-0000-00000000000A-00"), 1);
  EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), ""), 1);
}

TEST(HookTexts, ReturnChannelOrPatternThatIsNullIsInvalid) {
  const zephlane::Regex pattern(kUuidPattern, REG_EXTENDED);
  EXPECT_EQ(isInvalidReturnChannel(nullptr, "10000000-0000-0000-0000-00000000000a-00"), 1);
  EXPECT_EQ(isInvalidReturnChannel(pattern.Get(), nullptr), 1);
}

TEST(HookTexts, MessageIdHasAtMostFiveCharactersFrom0ToF) {
  for (const char* id : {"", "0", "f", "00000", "12abf", "fffff"}) {
    EXPECT_EQ(isInvalidMsgID(id), 0) << id;
  }
  for (const char* id : {"000000", "/", "g", "0000g", "-", " ", "1 ", "12/4", "\xe4", "\x7f"}) {
    EXPECT_EQ(isInvalidMsgID(id), 1) << id;
  }
  EXPECT_EQ(isInvalidMsgID(nullptr), 1);
}

TEST(HookTexts, MessageIdIsJudgedByCodeOrderSoUpperCaseAndPunctuationPass) {
  for (const char* id : {":", ";<=>?", "@", "A", "FZ", "[\\]^_", "`"}) {
    EXPECT_EQ(isInvalidMsgID(id), 0) << id;
  }
}

}  // namespace
