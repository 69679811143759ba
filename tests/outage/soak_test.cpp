// SPDX-License-Identifier: MIT
//
// A long life in short: calls of every family mixed at random in one process, whose memory and
// descriptors must not grow once it has warmed up. ZEPHLANE_TEST_CALLS says how many.
#include <malloc.h>
#include <mqueue.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "api/eventModel.h"
#include "outage/setting.h"
#include "support/owners.h"
#include "support/store.h"
#include "support/text.h"

#include <zephlaneAPI.h>

namespace {

namespace fs = std::filesystem;

using zephlane::CString;
using zephlane::test::RandomSeed;
using zephlane::test::Setting;
using zephlane::test::StoreTest;

constexpr char kRootSchema[] = "/tmp/FOSS_schema/ServiceRoot.v1_0_0.json";
constexpr char kHash[] = "10000000-0000-0000-0000-aaaaaaaaaaaa";
constexpr char kOtherHash[] = "10000000-0000-0000-0000-bbbbbbbbbbbb";
constexpr char kSet[] = "10000000-0000-0000-0000-cccccccccccc";
constexpr char kList[] = "10000000-0000-0000-0000-dddddddddddd";
constexpr char kReplies[] = "10000000-0000-0000-0000-eeeeeeeeeeee";

constexpr int kCallsBetweenInterpreterRuns = 50000;

// What the process holds.
struct Holding {
  long kilobytes = 0;  // resident
  long heap_bytes = 0;
  long descriptors = 0;
};

Holding HeldNow() {
  Holding held;
  std::ifstream stream("/proc/self/status");
  for (std::string word; stream >> word;) {
    if (word == "VmRSS:") { stream >> held.kilobytes; }
  }
  held.heap_bytes = static_cast<long>(mallinfo2().uordblks);
  held.descriptors =
      std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator{});
  return held;
}

void FreeAll(char** texts, unsigned int count) {
  for (unsigned int i = 0; texts != nullptr && i < count; ++i) { std::free(texts[i]); }
  std::free(texts);
}

void FreePairs(ExtendedPair* pairs, unsigned int count) {
  for (unsigned int i = 0; pairs != nullptr && i < count; ++i) {
    std::free(pairs[i].aFieldName);
    std::free(pairs[i].aValue);
  }
  std::free(pairs);
}

void FreePop(PopResult* result) {
  if (result == nullptr) { return; }
  std::free(result->aListKey);
  std::free(result->aItem);
  std::free(result);
}

int Ignore(char* /*id*/, char* /*arg1*/, char* /*arg2*/, char* /*arg3*/) {
  return 0;
}

class Soak : public StoreTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  void OneCall();
  void InterpretAnew();

  int calls_ = 0;

 private:
  void WriteCall(int kind);
  void ReadCall(int kind);
  void ListCall(int kind);
  void ServiceCall(int kind);
  void WholeCall(int kind);
  int Random(int limit) {
    return std::uniform_int_distribution(0, limit - 1)(random_);
  }
  // A text of any length up to past the limit of a plain value.
  const char* RandomText() {
    text_.assign(static_cast<std::size_t>(Random(1200)), 'x');
    return text_.c_str();
  }

  std::mt19937 random_;
  std::string text_;
  std::string program_ = "outageSoak";
};

void Soak::SetUp() {
  StoreTest::SetUp();
  random_.seed(RandomSeed());
  fs::create_directories("/tmp/etc");
  fs::remove_all("/tmp/FOSS_schema");
  fs::copy(ZEPHLANE_SOURCE "/schemas", "/tmp/FOSS_schema");
  fs::rename("/tmp/FOSS_schema/SchemaURIConf.json", "/tmp/etc/SchemaURIConf.json");
  // What the library says would be most of the output, and is written all the same.
  ASSERT_NE(std::freopen("/dev/null", "w", stderr), nullptr);
}

void Soak::TearDown() {
  (void)mq_unlink("/oemmq_outageSoak");
  StoreTest::TearDown();
}

void Soak::InterpretAnew() {
  ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
  ASSERT_EQ(zephlaneSchemaInterpreter(kRootSchema), 0);
  zephlane::test::StoreEventModel(ctx());
  char* argv[] = {program_.data(), nullptr};
  (void)zephlaneOemHookFunctionRegister(ctx(), kHash, argv, Ignore);
  (void)mappingMsgQueueToUUID(ctx(), kHash, "/oemmq_outageSoak", 1);
  ++calls_;
}

void Soak::WriteCall(int kind) {
  InstanceData pairs[3] = {{"Name", "Fan"}, {"Status", ""}, {"Long", ""}};
  zephlane::CopyCut(pairs[1].aValue, kOtherHash);
  zephlane::CopyCut(pairs[2].aValue, RandomText());
  SetData member{};
  zephlane::CopyCut(member.aObjectID, kHash);
  char name[] = "Extended";
  const ExtendedPair extended[] = {{name, text_.data()}};
  char* const texts[] = {text_.data()};
  switch (kind) {
    case 0:
      return (void)zephlaneCreateHashTable(ctx(), kHash, pairs, 3);
    case 1:
      return (void)zephlaneCreateExtendedHashTable(ctx(), kOtherHash, extended, 1);
    case 2:
      return (void)zephlaneCreateSetTable(ctx(), kSet, &member, 1);
    case 3:
      return (void)zephlaneCreateExtendedSetTable(ctx(), kSet, texts, 1);
    case 4:
      return (void)zephlaneCopyHash(ctx(), kOtherHash, kHash, 60);
    case 5:
      return (void)zephlaneRemoveFieldFromHash(ctx(), kHash, "Name");
    case 6:
      return (void)zephlaneDeleteHash(ctx(), Random(2) == 0 ? kHash : kSet);
    case 7:
      return (void)zephlaneSADD(ctx(), kSet, kHash, kOtherHash, nullptr);
    case 8:
      return (void)zephlaneVariableSetStr(ctx(), "variable", RandomText());
    default:
      return (void)zephlaneCreateUriUuidMap(ctx(), "/fans/7", kHash);
  }
}

void Soak::ReadCall(int kind) {
  char out[ZEPHLANE_VALUE_SIZE] = "";
  char name[] = "Name";
  char* const fields[] = {name};
  unsigned int count = 0;
  switch (kind) {
    case 0:
      return (void)zephlaneGetHashField(ctx(), kHash, "Name", out);
    case 1:
      return std::free(zephlaneGetHashFieldV21(ctx(), kHash, "Long"));
    case 2: {
      char** const values = zephlaneGetHashMultipleFieldV21(ctx(), kHash, fields, 1, &count);
      return FreeAll(values, count);
    }
    case 3:
      return std::free(zephlaneHashGetAll(ctx(), kHash, &count));
    case 4: {
      ExtendedPair* const pairs = zephlaneExtendedHashGetAll(ctx(), kOtherHash, &count);
      return FreePairs(pairs, count);
    }
    case 5:
      return std::free(zephlaneSMembers(ctx(), kSet, &count));
    case 6: {
      char** const members = zephlaneExtendedSMembers(ctx(), kSet, &count);
      return FreeAll(members, count);
    }
    case 7:
      return (void)zephlaneRedisType(ctx(), kSet);
    case 8:
      return (void)zephlaneGetUuid(ctx(), "/fans/7", out);
    default:
      return (void)zephlaneVariableGetStr(ctx(), "variable", out);
  }
}

void Soak::ListCall(int kind) {
  char out[ZEPHLANE_VALUE_SIZE] = "";
  std::string key = kList;
  char* const keys[] = {key.data()};
  unsigned int count = 0;
  switch (kind) {
    case 0:
    case 1:
      return (void)zephlaneListRightPush(ctx(), kList, RandomText());
    case 2:
      return std::free(zephlaneListRange(ctx(), kList, 0, -1, &count));
    case 3: {
      char** const items = zephlaneExtendedListRange(ctx(), kList, 0, -1, &count);
      return FreeAll(items, count);
    }
    case 4:
      return (void)zephlaneListIndex(ctx(), kList, 0, sizeof(out), out);
    case 5:
      return std::free(zephlaneListLeftPopV21(ctx(), kList));
    case 6:
      return (void)zephlaneListLeftPop(ctx(), kList, sizeof(out), out);
    case 7:
      return (void)zephlaneReplaceListItemByIndex(ctx(), kList, 0, "replaced");
    case 8:
      return std::free(zephlaneListRightPop(ctx(), kList));
    default:  // only where it need not wait
      if (zephlaneListLength(ctx(), kList, &count) != 0 || count == 0) { return; }
      ++calls_;
      return FreePop(zephlaneListBlockLeftPopV21(ctx(), 1, keys, 1));
  }
}

void Soak::ServiceCall(int kind) {
  char id[ZEPHLANE_ID_SIZE] = "";
  const char* arguments[] = {"first", "second"};
  EventRecord record = zephlane::test::Record("1");
  switch (kind) {
    case 0:
      return (void)zephlaneGenerateUUID(ctx(), id);
    case 1:
      return (void)generateEventID(ctx(), id);
    case 2: {
      const CString task(zephlaneCreateAsyncTask(ctx(), "argument", "channel"));
      (void)zephlaneUpdateTaskState(ctx(), task.get(), "Completed");
      (void)zephlaneDeleteHash(ctx(), task.get());
      calls_ += 2;
      return;
    }
    case 3: {
      const CString event(zephlanePrepareEventObject(ctx(), "Hot", nullptr, &record, 1));
      (void)zephlaneProcessEventObject(ctx(), event.get(), 1);
      ++calls_;
      return;
    }
    case 4:
      (void)zephlaneCreateReturnMsgV21(ctx(), kReplies, "Base.1.0.Success", arguments, 2);
      return (void)zephlaneDeleteKey(ctx(), kReplies);
    case 5:
      return (void)zephlaneAddMonotonicExpiredTime(ctx(), kHash, 1000);
    case 6:
      return (void)zephlaneIsMonotonicTimeExpired(ctx(), kHash);
    case 7:
      return (void)zephlanePublishToChannel(ctx(), "channel", "message");
    case 8:
      return (void)zephlaneTriggerOemHookFunc(ctx(), kHash, "1f", "first", "second", "third");
    default:
      return (void)zephlaneHasOemMessageHandler(ctx(), kHash);
  }
}

void Soak::WholeCall(int kind) {
  const char* fields[] = {"Status"};
  InstanceData pairs[] = {{"Name", "Fan"}};
  ObjectEntry entries[] = {{kHash, ZEPHLANE_TYPE_HASH, 1, pairs},
                           {kOtherHash, ZEPHLANE_TYPE_HASH, 1, pairs}};
  switch (kind) {
    case 0:
      return (void)zephlaneDeleteSubTreeV21(ctx(), kHash, fields, 1);
    case 1:
      return (void)zephlaneCreateMultipleObjects(ctx(), entries, 2);
    case 2:
      return (void)zephlaneInsertTypeID(ctx(), kHash, "Fan.1.0.0", 0);
    case 3:
      return (void)zephlaneValidateResponseObject(ctx(), kHash);
    case 4:
      return (void)zephlaneSchemaInterpreter(kRootSchema);  // which finds its work done
    case 5: {
      redisContext* own = zephlaneRedisConnect();
      (void)zephlaneRedisDisconnect(own);
      ++calls_;
      return;
    }
    case 6:
      return (void)zephlaneConvertJsonToRedis(ctx(), kHash, kOtherHash);
    case 7:
      return (void)zephlaneRenewCollection(ctx(), 0, "first", "second", 1);
    case 8:
      return (void)zephlaneDumpHash(ctx(), kHash);
    default:
      return (void)zephlaneRenameObjectID(ctx(), kOtherHash, kHash);
  }
}

void Soak::OneCall() {
  const int kind = Random(10);
  ++calls_;
  switch (Random(20)) {
    case 0:
      return WholeCall(kind);
    case 1:
    case 2:
      return ServiceCall(kind);
    case 3:
    case 4:
    case 5:
    case 6:
      return ListCall(kind);
    case 7:
    case 8:
    case 9:
    case 10:
    case 11:
      return WriteCall(kind);
    default:
      return ReadCall(kind);
  }
}

// Standard output without the library's reports.
class QuietOutput {
 public:
  QuietOutput() : own_(dup(STDOUT_FILENO)) {
    (void)std::fflush(stdout);
    (void)!std::freopen("/dev/null", "w", stdout);
  }
  QuietOutput(const QuietOutput&) = delete;
  QuietOutput& operator=(const QuietOutput&) = delete;
  ~QuietOutput() {
    (void)std::fflush(stdout);
    (void)dup2(own_, STDOUT_FILENO);
    (void)close(own_);
  }
  void Print(const std::string& line) const {
    (void)!write(own_, line.data(), line.size());
  }

 private:
  int own_;
};

TEST_F(Soak, MemoryAndDescriptorsStayFlatAfterTheWarmUp) {
  const int total = static_cast<int>(Setting("ZEPHLANE_TEST_CALLS", 20000));
  const int warm_up = total / 5;
  const QuietOutput quiet;
  Holding warm;
  int next_report = warm_up;
  int next_run = 0;
  while (calls_ < total) {
    if (calls_ >= next_run) {
      InterpretAnew();
      next_run += kCallsBetweenInterpreterRuns;
    }
    OneCall();
    if (calls_ < next_report) { continue; }
    const Holding held = HeldNow();
    if (warm.descriptors == 0) { warm = held; }
    quiet.Print(std::to_string(calls_) + " calls: " + std::to_string(held.kilobytes) +
                " kB resident, " + std::to_string(held.heap_bytes / 1024) + " kB allocated, " +
                std::to_string(held.descriptors) + " descriptors\n");
    next_report += warm_up;
  }
  const Holding end = HeldNow();
  EXPECT_EQ(end.descriptors, warm.descriptors);
#ifndef ZEPHLANE_SANITIZED  // what they keep of freed memory is counted too
  EXPECT_LE(end.kilobytes, warm.kilobytes + 256);
  // The buffers of the connections vary with what they held last.
  EXPECT_LE(end.heap_bytes, warm.heap_bytes + 64 * 1024);
#endif
}

}  // namespace
