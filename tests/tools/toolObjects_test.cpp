// SPDX-License-Identifier: MIT
//
// get, type and uuid.
#include <filesystem>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using zephlane::test::RunTool;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;

class ToolGet : public StoreTest {
 protected:
  // Checks that the verb succeeds, quietly, with this data.
  static void ExpectData(const std::vector<std::string>& arguments, const std::string& data) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, data);
    EXPECT_EQ(run.err, "");
  }
  static void ExpectFailure(const std::vector<std::string>& arguments, const std::string& message) {
    const ToolRun run = RunTool(arguments);
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, message);
  }
};

TEST_F(ToolGet, PrintsFieldsOfAHashSorted) {
  Ask({"HSET", "fan", "Speed", "1200", "Name", "Fan 1", "Empty", ""});
  ExpectData({"get", "fan"}, "Empty = \nName = Fan 1\nSpeed = 1200\n");
}

TEST_F(ToolGet, PrintsMembersOfASetSorted) {
  Ask({"SADD", "set", "c", "a", "b"});
  ExpectData({"get", "set"}, "a\nb\nc\n");
}

TEST_F(ToolGet, PrintsItemsOfAListInOrder) {
  Ask({"RPUSH", "list", "c", "a", "b", "a"});
  ExpectData({"get", "list"}, "c\na\nb\na\n");
}

TEST_F(ToolGet, PrintsValueOfAStringAsItIs) {
  Ask({"SET", "string", "two\nlines \x1b[1m"});
  ExpectData({"get", "string"}, "two\nlines \x1b[1m\n");
}

TEST_F(ToolGet, PrintsLongValuesWhole) {
  const std::string value(5000, 'x');
  Ask({"HSET", "hash", "field", value});
  Ask({"SET", "string", value});
  ExpectData({"get", "hash"}, "field = " + value + "\n");
  ExpectData({"get", "string"}, value + "\n");
}

TEST_F(ToolGet, KeepsEveryValueInItsLine) {
  Ask({"HSET", "hash", "a\nfield", "tab\there", "b", "\x1b]0;title\x07"});
  ExpectData({"get", "hash"}, "a\\nfield = tab\\there\nb = \\x1b]0;title\\x07\n");
}

TEST_F(ToolGet, TakesKeysWithBlanksAndPercentSigns) {
  Ask({"SET", "100 %s %n", "value"});
  ExpectData({"get", "100 %s %n"}, "value\n");
}

TEST_F(ToolGet, MissingKeyIsAFailure) {
  ExpectFailure({"get", "no such\nkey"}, "zephlane: There is no key no such\\nkey in the store.\n");
}

TEST_F(ToolGet, OtherTypesAreAFailure) {
  Ask({"ZADD", "zset", "1", "member"});
  ExpectFailure({"get", "zset"},
                "zephlane: zset is a zset; only hashes, sets, lists and strings can be shown.\n");
}

using ToolType = ToolGet;

TEST_F(ToolType, PrintsTheTypesWord) {
  Ask({"HSET", "h", "f", "v"});
  Ask({"SADD", "s", "m"});
  Ask({"RPUSH", "l", "i"});
  Ask({"SET", "t", "v"});
  Ask({"ZADD", "z", "1", "m"});
  ExpectData({"type", "h"}, "hash\n");
  ExpectData({"type", "s"}, "set\n");
  ExpectData({"type", "l"}, "list\n");
  ExpectData({"type", "t"}, "string\n");
  ExpectData({"type", "z"}, "zset\n");
}

TEST_F(ToolType, MissingKeyIsAFailure) {
  ExpectFailure({"type", "nothing"}, "zephlane: There is no key nothing in the store.\n");
}

class ToolUuid : public ToolGet {
 protected:
  void TearDown() override {
    std::filesystem::remove_all("/tmp/uuidLock.dat");
    StoreTest::TearDown();
  }
};

TEST_F(ToolUuid, DrawsTheFirstOfAnEmptyStore) {
  ExpectData({"uuid"}, "10000000-0000-0000-0000-000000000001\n");
  EXPECT_EQ(Ask({"GET", "autoUUID"}), "10000000-0000-0000-0000-000000000001");
}

TEST_F(ToolUuid, DrawsAsManyAsAskedForInLinesOfTheirOwn) {
  Ask({"SET", "autoUUID", "10000000-0000-0000-0000-00000000fffe"});
  ExpectData({"uuid", "-n", "3"},
             "10000000-0000-0000-0000-00000000ffff\n"
             "10000000-0000-0000-0000-000000010000\n"
             "10000000-0000-0000-0000-000000010001\n");
}

TEST_F(ToolUuid, StopsAtTheMaximumAfterThoseThatWereLeft) {
  Ask({"HSET", "defaultSettings", "maximumUUID", "B"});
  Ask({"SET", "autoUUID", "bfffffff-ffff-ffff-ffff-fffffffffffe"});
  const ToolRun run = RunTool({"uuid", "--count", "2"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "bfffffff-ffff-ffff-ffff-ffffffffffff\n");
  EXPECT_EQ(run.err,
            "zephlane: No UUID is left: the counter autoUUID has reached "
            "bfffffff-ffff-ffff-ffff-ffffffffffff.\n"
            "  Field maximumUUID of defaultSettings raises the maximum.\n");
}

TEST_F(ToolUuid, LockThatCannotBeTakenIsAFailureWithTheLibrarysReportBeforeIt) {
  std::filesystem::remove_all("/tmp/uuidLock.dat");
  std::filesystem::create_directory("/tmp/uuidLock.dat");
  const ToolRun run = RunTool({"uuid"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("[ERROR]      zephlaneAPI.cpp:"));
  EXPECT_THAT(
      run.err,
      EndsWith("\nzephlane: No UUID could be drawn: /tmp/uuidLock.dat cannot be locked.\n"));
}

}  // namespace
