// SPDX-License-Identifier: MIT
//
// UUIDs and configuration in one process, whose maximum is the default. What needs a process of its
// own is in identityProcesses_test.cpp.
#include <fcntl.h>
#include <pthread.h>
#include <regex.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "support/callFault.h"
#include "support/output.h"
#include "support/owners.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::FcntlFault;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

constexpr char kFirst[] = "10000000-0000-0000-0000-000000000001";
constexpr char kSecond[] = "10000000-0000-0000-0000-000000000002";
constexpr char kMaximum[] = "7fffffff-ffff-ffff-ffff-ffffffffffff";

// Exactly the room the caller promises, and what lies behind it.
struct UuidBuffer {
  char uuid[ZEPHLANE_ID_SIZE] = "";
  char behind[64] = "untouched";
};

int LowestFreeDescriptor() {
  const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  (void)close(fd);
  return fd;
}

bool MutexIsFree() {
  if (pthread_mutex_trylock(&zephlaneAutoGenerateUUIDLock) != 0) { return false; }
  return pthread_mutex_unlock(&zephlaneAutoGenerateUUIDLock) == 0;
}

class GenerateUuid : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    UuidBuffer first;
    ASSERT_EQ(zephlaneGenerateUUID(ctx(), first.uuid), 0);  // from here on the maximum is known
    ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
    errno = 0;
    free_descriptor_ = LowestFreeDescriptor();
  }
  // Whatever the outcome, both locks are free afterwards.
  void TearDown() override {
    EXPECT_TRUE(MutexIsFree());
    EXPECT_EQ(LowestFreeDescriptor(), free_descriptor_);
    StoreTest::TearDown();
  }
  int Generate(redisContext* connection) {
    int result = -1;
    printed_ = Capture([&] { result = zephlaneGenerateUUID(connection, buffer_.uuid); });
    EXPECT_STREQ(buffer_.behind, "untouched");
    EXPECT_EQ(printed_.err, "");
    return result;
  }
  // What comes after the stored value `counter`.
  std::string After(const std::string& counter) {
    EXPECT_EQ(Ask({"SET", "autoUUID", counter}), "OK");
    EXPECT_EQ(Generate(ctx()), 0);
    EXPECT_EQ(Ask({"GET", "autoUUID"}), buffer_.uuid);
    EXPECT_EQ(printed_.out, "");
    return buffer_.uuid;
  }

  UuidBuffer buffer_;
  Output printed_;

 private:
  int free_descriptor_ = -1;
};

TEST_F(GenerateUuid, EmptyStoreGivesTheFirstAndThenTheSecond) {
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_STREQ(buffer_.uuid, kFirst);
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kFirst + "\n");
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_STREQ(buffer_.uuid, kSecond);
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kSecond + "\n");
}

TEST_F(GenerateUuid, CounterGoesOnWithCarry) {
  const std::pair<const char*, const char*> cases[] = {
      {"1000000a-0000-0000-0000-00000000ffff", "1000000a-0000-0000-0000-000000010000"},
      {"10000000-0000-0000-0000-ffffffffffff", "10000000-0000-0000-0001-000000000000"},
      {"10000000-0000-0000-ffff-ffffffffffff", "10000000-0000-0001-0000-000000000000"},
      {"10000000-0000-ffff-ffff-ffffffffffff", "10000000-0001-0000-0000-000000000000"},
      {"10000000-ffff-ffff-ffff-ffffffffffff", "10000001-0000-0000-0000-000000000000"},
      {"1000ffff-ffff-ffff-ffff-ffffffffffff", "10010000-0000-0000-0000-000000000000"},
      {"12345678-9abc-def0-1234-56789abcdef0", "12345678-9abc-def0-1234-56789abcdef1"},
      {"6fffffff-ffff-ffff-ffff-ffffffffffff", "70000000-0000-0000-0000-000000000000"}};
  for (const auto& [counter, next] : cases) {
    SCOPED_TRACE(counter);
    EXPECT_EQ(After(counter), next);
  }
}

TEST_F(GenerateUuid, UpperCaseCounterIsRewrittenInLowerCase) {
  EXPECT_EQ(After("1ABCDEF0-AAAA-BBBB-CCCC-DDDDEEEEFFFE"), "1abcdef0-aaaa-bbbb-cccc-ddddeeeeffff");
}

TEST_F(GenerateUuid, CounterReachesTheMaximumAndStopsThere) {
  EXPECT_EQ(After("7fffffff-ffff-ffff-ffff-fffffffffffe"), kMaximum);
  for (int i = 0; i < 3; ++i) {
    buffer_ = UuidBuffer();
    EXPECT_EQ(Generate(ctx()), 1);
    EXPECT_STREQ(buffer_.uuid, kMaximum);
    EXPECT_EQ(printed_.out, "");
    EXPECT_EQ(Ask({"GET", "autoUUID"}), kMaximum);
  }
}

TEST_F(GenerateUuid, CounterAboveTheMaximumGoesOn) {
  EXPECT_EQ(After("80000000-0000-0000-0000-000000000000"), "80000000-0000-0000-0000-000000000001");
  EXPECT_EQ(After("8fffffff-ffff-ffff-ffff-ffffffffffff"), "90000000-0000-0000-0000-000000000000");
}

TEST_F(GenerateUuid, AllOnesWrapToZeros) {
  EXPECT_EQ(After("ffffffff-ffff-ffff-ffff-ffffffffffff"), "00000000-0000-0000-0000-000000000000");
}

TEST_F(GenerateUuid, OnlyTheExactTextOfTheMaximumStopsTheCounter) {
  const std::string past = "80000000-0000-0000-0000-000000000000";
  EXPECT_EQ(After("7FFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"), past);
  EXPECT_EQ(After(std::string(kMaximum) + "0"), past);
}

TEST_F(GenerateUuid, CounterOfAnyLengthStaysWithinTheCallersBuffer) {
  for (const std::size_t extra : {1, 64, 986, 987, 988, 5000}) {
    SCOPED_TRACE(extra);
    EXPECT_EQ(After(kFirst + std::string(extra, 'x')), kSecond);
  }
}

TEST_F(GenerateUuid, CounterThatIsNoUuidIsReadAtTheSamePositions) {
  const std::pair<const char*, const char*> cases[] = {
      {"", "00000000-0000-0000-0000-000000000001"},
      {"no digits", "00000000-0000-0000-0000-000000000001"},
      {"12", "00120000-0000-0000-0000-000000000001"},
      {"12345678", "12345678-0000-0000-0000-000000000001"},
      {"-001-002x-003x-004x-005x-006-007-008", "fffffffe-fffd-fffc-fffb-fffafff9fff9"}};
  for (const auto& [counter, next] : cases) {
    SCOPED_TRACE(counter);
    EXPECT_EQ(After(counter), next);
  }
}

TEST_F(GenerateUuid, CounterOfAnotherTypeIsOverwrittenFromTheStart) {
  EXPECT_EQ(Ask({"HSET", "autoUUID", "field", "value"}), "1");
  EXPECT_EQ(Generate(ctx()), 0);
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kFirst + "\n");
}

TEST_F(GenerateUuid, LaterChangeOfTheMaximumHasNoEffect) {
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "maximumUUID", "2"}), "1");
  EXPECT_EQ(After("2fffffff-ffff-ffff-ffff-ffffffffffff"), "30000000-0000-0000-0000-000000000000");
}

TEST_F(GenerateUuid, ReadsAndWritesTheCounterInTwoCommands) {
  ScriptedServer server;
  server.WillReply(std::string("$36\r\n") + kFirst + "\r\n");
  server.WillReply("+OK\r\n");
  EXPECT_EQ(Generate(server.ctx()), 0);
  EXPECT_EQ(server.Received(), std::string("*2\r\n$3\r\nGET\r\n$8\r\nautoUUID\r\n"
                                           "*3\r\n$3\r\nSET\r\n$8\r\nautoUUID\r\n$36\r\n") +
                                   kSecond + "\r\n");
}

TEST_F(GenerateUuid, AtTheMaximumNothingIsWritten) {
  ScriptedServer server;
  server.WillReply(std::string("$36\r\n") + kMaximum + "\r\n");
  EXPECT_EQ(Generate(server.ctx()), 1);
  EXPECT_EQ(server.Commands(), "GET autoUUID\n");
}

TEST_F(GenerateUuid, UnstoredUuidIsIssuedAllTheSame) {
  ScriptedServer refusing;
  refusing.WillReply(std::string("$36\r\n") + kFirst + "\r\n");
  refusing.WillReply("-READONLY You can't write against a read only replica.\r\n");
  EXPECT_EQ(Generate(refusing.ctx()), 0);
  EXPECT_STREQ(buffer_.uuid, kSecond);
  ScriptedServer lost;
  lost.WillReply(std::string("$36\r\n") + kSecond + "\r\n");
  lost.WillClose();
  EXPECT_EQ(Generate(lost.ctx()), 0);
  EXPECT_STREQ(buffer_.uuid, "10000000-0000-0000-0000-000000000003");
}

TEST_F(GenerateUuid, UnreadableCounterStartsAnew) {
  ScriptedServer lost;
  lost.WillClose();
  EXPECT_EQ(Generate(lost.ctx()), 0);
  EXPECT_STREQ(buffer_.uuid, kFirst);
  EXPECT_EQ(Generate(nullptr), 0);
  EXPECT_STREQ(buffer_.uuid, kFirst);
  EXPECT_EQ(printed_.out, "");
}

TEST_F(GenerateUuid, NullBufferIsFailureBeforeAnyLock) {
  (void)std::filesystem::remove(ZephlaneGenerateUUIDLockFile);
  int result = 0;
  printed_ = Capture([&] { result = zephlaneGenerateUUID(ctx(), nullptr); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(printed_.out + printed_.err, "");
  EXPECT_FALSE(std::filesystem::exists(ZephlaneGenerateUUIDLockFile));
  EXPECT_EQ(Dump(), "");
}

TEST_F(GenerateUuid, LockFileThatCannotBeOpenedIsFailure) {
  (void)std::filesystem::remove(ZephlaneGenerateUUIDLockFile);
  (void)std::filesystem::create_directory(ZephlaneGenerateUUIDLockFile);
  EXPECT_EQ(Generate(ctx()), 1);
  (void)std::filesystem::remove(ZephlaneGenerateUUIDLockFile);
  EXPECT_EQ(Masked(printed_.out), ApiReport("open lock file failed"));
  EXPECT_STREQ(buffer_.uuid, "");
  EXPECT_EQ(Dump(), "");
}

TEST_F(GenerateUuid, LockThatIsNotGotIsFailure) {
  const FcntlFault fault(F_SETLKW, ENOLCK);
  EXPECT_EQ(Generate(ctx()), 1);
  EXPECT_EQ(Masked(printed_.out),
            ApiReport("errno = " + std::to_string(ENOLCK)) + ApiReport("lock failed"));
  EXPECT_STREQ(buffer_.uuid, "");
  EXPECT_EQ(Dump(), "");
}

TEST_F(GenerateUuid, StaleDeadlockErrnoIsFailure) {
  const Output printed = Capture([&] {
    errno = EDEADLK;
    EXPECT_EQ(zephlaneGenerateUUID(ctx(), buffer_.uuid), 1);
  });
  EXPECT_EQ(Masked(printed.out), ApiReport("File lock deadlock happen") + ApiReport("lock failed"));
  EXPECT_EQ(Dump(), "");
}

TEST_F(GenerateUuid, FailedUnlockAfterStoringIsFailureWithTheNewUuid) {
  const FcntlFault fault(F_SETLK, EIO);
  EXPECT_EQ(Generate(ctx()), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("unlock failed"));
  EXPECT_STREQ(buffer_.uuid, kFirst);
  EXPECT_EQ(Ask({"GET", "autoUUID"}), kFirst);
}

TEST_F(GenerateUuid, FailedUnlockAtTheMaximumIsReportedTwice) {
  EXPECT_EQ(Ask({"SET", "autoUUID", kMaximum}), "OK");
  const FcntlFault fault(F_SETLK, EIO);
  EXPECT_EQ(Generate(ctx()), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("unlock failed") + ApiReport("unlock failed"));
  EXPECT_STREQ(buffer_.uuid, kMaximum);
  EXPECT_EQ(Ask({"GET", "autoUUID"}), kMaximum);
}

// Splitting, counting and checking

constexpr std::size_t kGroupsSize = 40;

// The groups with a dot for each byte that is zero.
std::string Split(const char* source) {
  char groups[kGroupsSize] = "";
  EXPECT_EQ(splitUUID(source, groups), groups + 35);
  for (char& character : groups) { character = character == '\0' ? '.' : character; }
  return {groups, sizeof(groups)};
}

TEST(SplitUuid, GroupsComeLeastSignificantFirst) {
  EXPECT_EQ(Split("01234567-89ab-cdef-ghij-klmnopqrstuv"),
            "stuv.opqr.klmn.ghij.cdef.89ab.4567.0123.");
}

TEST(SplitUuid, WritesNoTerminators) {
  char groups[kGroupsSize];
  std::memset(groups, '#', sizeof(groups));
  EXPECT_EQ(splitUUID(kMaximum, groups), groups + 35);
  EXPECT_EQ(std::string(groups, sizeof(groups)), "ffff#ffff#ffff#ffff#ffff#ffff#ffff#7fff#");
}

TEST(SplitUuid, LongTextIsReadUpToItsThirtySixthCharacter) {
  EXPECT_EQ(Split("01234567-89ab-cdef-ghij-klmnopqrstuvwxyz"),
            "stuv.opqr.klmn.ghij.cdef.89ab.4567.0123.");
}

TEST(SplitUuid, NothingIsReadPastTheEndOfAShortText) {
  const zephlane::CString text = zephlane::Duplicate("0123456");  // no byte of room behind it
  EXPECT_EQ(Split(text.get()), std::string(30, '.') + "456..0123.");
  EXPECT_EQ(Split(""), std::string(kGroupsSize, '.'));
}

TEST(SplitUuid, NullIsTolerated) {
  char groups[kGroupsSize] = "";
  EXPECT_EQ(splitUUID(nullptr, groups), nullptr);
  EXPECT_EQ(splitUUID(kMaximum, nullptr), nullptr);
}

using Words = std::array<unsigned int, 8>;

Words Incremented(Words words, unsigned int index) {
  incrementUUID(words.data(), index);
  return words;
}

TEST(IncrementUuid, AddsOneToTheWordOfTheIndex) {
  EXPECT_EQ(Incremented({0, 0, 0, 0, 0, 0, 0, 0}, 0), (Words{1, 0, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Incremented({0xfffe, 9, 0, 0, 0, 0, 0, 0}, 0), (Words{0xffff, 9, 0, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Incremented({1, 2, 3, 4, 5, 6, 7, 8}, 3), (Words{1, 2, 3, 5, 5, 6, 7, 8}));
}

TEST(IncrementUuid, CarriesIntoHigherWords) {
  EXPECT_EQ(Incremented({0xffff, 1, 2, 0, 0, 0, 0, 0}, 0), (Words{0, 2, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(Incremented({7, 0xffff, 0xffff, 0xffff, 0, 0, 0, 0}, 1),
            (Words{7, 0, 0, 0, 1, 0, 0, 0}));
}

TEST(IncrementUuid, CarryOutOfTheTopWordIsDropped) {
  constexpr unsigned int kOnes = 0xffff;
  EXPECT_EQ(Incremented({kOnes, kOnes, kOnes, kOnes, kOnes, kOnes, kOnes, kOnes}, 0), Words{});
  EXPECT_EQ(Incremented({1, 0, 0, 0, 0, 0, 0, kOnes}, 7), (Words{1, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(IncrementUuid, IndexPastTheTopWordDoesNothing) {
  const Words words = {1, 2, 3, 4, 5, 6, 7, 8};
  for (const unsigned int index : {8U, 9U, 0xffffffffU}) {
    EXPECT_EQ(Incremented(words, index), words);
  }
  incrementUUID(nullptr, 0);
}

// The pattern the schema interpreter compiles: lower case, not anchored.
class IsInvalidUuid : public testing::Test {
 protected:
  zephlane::Regex pattern_{"[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}",
                           REG_EXTENDED};
};

TEST_F(IsInvalidUuid, AcceptsWhatThePatternMatchesAtFullLength) {
  EXPECT_EQ(isInvalidUUID(pattern_.Get(), kMaximum), 0);
  EXPECT_EQ(isInvalidUUID(pattern_.Get(), "01234567-89ab-cdef-0123-456789abcdef"), 0);
}

TEST_F(IsInvalidUuid, RefusesEverythingElse) {
  for (const char* text :
       {"", "7fffffff-ffff-ffff-ffff-fffffffffff", "7FFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF",
        "7fffffffffffff-ffff-ffff-ffffffffffff", "7fffffff-ffff-ffff-ffff-fffffffffffg",
        "thirty-six characters but no UUID xx"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(isInvalidUUID(pattern_.Get(), text), 1);
  }
}

TEST_F(IsInvalidUuid, RefusesLongerTextThatContainsAUuid) {
  EXPECT_EQ(isInvalidUUID(pattern_.Get(), "7fffffff-ffff-ffff-ffff-ffffffffffff0"), 1);
  EXPECT_EQ(isInvalidUUID(pattern_.Get(), "x7fffffff-ffff-ffff-ffff-ffffffffffff"), 1);
}

TEST_F(IsInvalidUuid, RefusesNull) {
  EXPECT_EQ(isInvalidUUID(pattern_.Get(), nullptr), 1);
  EXPECT_EQ(isInvalidUUID(nullptr, kMaximum), 1);
}

// Configuration

class LoadConfig : public StoreTest {
 protected:
  // The result of reading `key` into a buffer that is said to have `size` characters.
  int Load(const char* key, std::size_t size) {
    std::memset(out_, '#', sizeof(out_));
    return LoadFrom(ctx(), key, size);
  }
  int LoadFrom(redisContext* connection, const char* key, std::size_t size) {
    int result = -1;
    printed_ = Capture([&] { result = zephlaneLoadConfig(connection, key, out_, size); });
    EXPECT_EQ(printed_.err, "");
    return result;
  }
  std::string OutBytes(std::size_t count) {
    return {out_, count};
  }

  char out_[2048] = "";
  Output printed_;
};

TEST_F(LoadConfig, ReadsAFieldOfTheDefaultSettings) {
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "field", "two words"}), "1");
  EXPECT_EQ(Load("field", sizeof(out_)), 0);
  EXPECT_EQ(OutBytes(11), std::string("two words\0#", 11));
  EXPECT_EQ(printed_.out, "");
}

TEST_F(LoadConfig, SendsOneCommand) {
  ScriptedServer server;
  server.WillReply("$5\r\nvalue\r\n");
  EXPECT_EQ(LoadFrom(server.ctx(), "field", sizeof(out_)), 0);
  EXPECT_STREQ(out_, "value");
  EXPECT_EQ(server.Received(), "*3\r\n$4\r\nHGET\r\n$15\r\ndefaultSettings\r\n$5\r\nfield\r\n");
}

TEST_F(LoadConfig, MissingFieldIsTheEmptyText) {
  EXPECT_EQ(Load("field", 1), 0);
  EXPECT_EQ(OutBytes(2), std::string("\0#", 2));
  EXPECT_EQ(printed_.out, "");
}

TEST_F(LoadConfig, MissingMessagePropertyIsRuxoMessage) {
  EXPECT_EQ(Load("RuxoMessage", 12), 0);
  EXPECT_STREQ(out_, "RuxoMessage");
  EXPECT_EQ(printed_.out, "");
}

TEST_F(LoadConfig, ConfiguredMessagePropertyIsTaken) {
  EXPECT_EQ(Ask({"HSET", "defaultSettings", "RuxoMessage", "OtherMessage"}), "1");
  EXPECT_EQ(Load("RuxoMessage", sizeof(out_)), 0);
  EXPECT_STREQ(out_, "OtherMessage");
}

TEST_F(LoadConfig, ValueMustBeShorterThanTheBuffer) {
  for (const std::size_t size : {0, 1, 11}) {
    SCOPED_TRACE(size);
    EXPECT_EQ(Load("RuxoMessage", size), 1);
    EXPECT_EQ(Masked(printed_.out), ApiReport("Input buffer size"));
    EXPECT_EQ(OutBytes(sizeof(out_)), std::string(sizeof(out_), '#'));
  }
}

TEST_F(LoadConfig, EmptyValueNeedsRoomForItsTerminator) {
  EXPECT_EQ(Load("field", 0), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("Input buffer size"));
}

TEST_F(LoadConfig, LongValueIsCutAt1023Characters) {
  for (const std::size_t length : {1022, 1023, 1024, 1500}) {
    SCOPED_TRACE(length);
    (void)Ask({"HSET", "defaultSettings", "field", std::string(length, 'v')});
    EXPECT_EQ(Load("field", 1024), 0);
    EXPECT_EQ(std::string(out_), std::string(std::min<std::size_t>(length, 1023), 'v'));
  }
  EXPECT_EQ(Load("field", 1023), 1);
}

TEST_F(LoadConfig, FailedReadIsReportedAndTakenAsMissing) {
  EXPECT_EQ(LoadFrom(nullptr, "RuxoMessage", sizeof(out_)), 0);
  EXPECT_STREQ(out_, "RuxoMessage");
  EXPECT_EQ(Masked(printed_.out), ApiReport(" Need connect to Redis Server first !"));
  EXPECT_EQ(LoadFrom(ctx(), nullptr, sizeof(out_)), 0);
  EXPECT_STREQ(out_, "");
  EXPECT_EQ(Masked(printed_.out), ApiReport("aFieldName is NULL, failed!"));
}

TEST_F(LoadConfig, LostConnectionIsTakenAsMissing) {
  ScriptedServer lost;
  lost.WillClose();
  EXPECT_EQ(LoadFrom(lost.ctx(), "RuxoMessage", sizeof(out_)), 0);
  EXPECT_STREQ(out_, "RuxoMessage");
  EXPECT_EQ(printed_.out, "");
}

TEST_F(LoadConfig, NullBufferHasNoRoom) {
  int result = 0;
  printed_ = Capture([&] { result = zephlaneLoadConfig(ctx(), "field", nullptr, 1024); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("Input buffer size"));
}

class GetLinksObject : public StoreTest {
 protected:
  int Get(redisContext* connection) {
    int result = -1;
    std::memset(out_, '#', sizeof(out_));
    printed_ = Capture([&] { result = zephlaneGetLinksObject(connection, out_); });
    EXPECT_EQ(printed_.err, "");
    return result;
  }
  std::string OutBytes() {
    return {out_, sizeof(out_)};
  }

  char out_[40] = "";
  Output printed_;
};

TEST_F(GetLinksObject, CopiesTheMemberWithoutTerminator) {
  EXPECT_EQ(Ask({"SADD", "ZephlaneRootServices", kFirst}), "1");
  EXPECT_EQ(Get(ctx()), 0);
  EXPECT_EQ(OutBytes(), std::string(kFirst) + "####");
  EXPECT_EQ(printed_.out, "");
}

TEST_F(GetLinksObject, TakesTheFirstOfSeveralMembers) {
  ScriptedServer server;
  server.WillReply("*2\r\n$5\r\nfirst\r\n$6\r\nsecond\r\n");
  EXPECT_EQ(Get(server.ctx()), 0);
  EXPECT_EQ(OutBytes(), "first" + std::string(35, '#'));
  EXPECT_EQ(server.Received(), "*2\r\n$8\r\nSMEMBERS\r\n$20\r\nZephlaneRootServices\r\n");
}

TEST_F(GetLinksObject, NullBufferIsReportedBeforeAnythingIsSent) {
  ScriptedServer server;
  int result = 0;
  printed_ = Capture([&] { result = zephlaneGetLinksObject(server.ctx(), nullptr); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("Argument: NULL pointer"));
  EXPECT_EQ(server.Received(), "");
}

TEST_F(GetLinksObject, MissingSetIsAnEmptyServiceRoot) {
  EXPECT_EQ(Get(ctx()), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("empty service root"));
  EXPECT_EQ(OutBytes(), std::string(sizeof(out_), '#'));
}

TEST_F(GetLinksObject, KeyOfAnotherTypeIsAnEmptyServiceRoot) {
  EXPECT_EQ(Ask({"SET", "ZephlaneRootServices", "text"}), "OK");
  EXPECT_EQ(Get(ctx()), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("empty service root"));
}

TEST_F(GetLinksObject, LostConnectionIsAnEmptyServiceRoot) {
  ScriptedServer lost;
  lost.WillClose();
  EXPECT_EQ(Get(lost.ctx()), 1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("empty service root"));
}

TEST_F(GetLinksObject, NullConnectionIsReportedByTheReaderFirst) {
  EXPECT_EQ(Get(nullptr), 1);
  EXPECT_EQ(Masked(printed_.out),
            ApiReport("Argument: redis context!") + ApiReport("empty service root"));
}

}  // namespace
