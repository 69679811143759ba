// SPDX-License-Identifier: MIT
//
// Creating several objects with one round trip, and undoing it.
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

bool deletion_fails = false;

}  // namespace

// The linker sends the library's calls of zephlaneDeleteHash() here: it cannot fail by itself once
// the keys are checked.
extern "C" int __real_zephlaneDeleteHash(redisContext* ctx, const char* key);
extern "C" int __wrap_zephlaneDeleteHash(redisContext* ctx, const char* key);
extern "C" int __wrap_zephlaneDeleteHash(redisContext* ctx, const char* key) {
  return deletion_fails ? 1 : __real_zephlaneDeleteHash(ctx, key);
}

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

constexpr char kFan[] = "10000000-0000-0000-0000-00000000000a";
constexpr char kSet[] = "10000000-0000-0000-0000-00000000000b";
constexpr char kList[] = "10000000-0000-0000-0000-00000000000c";
constexpr char kFourth[] = "10000000-0000-0000-0000-00000000000d";
constexpr char kFifth[] = "10000000-0000-0000-0000-00000000000e";

InstanceData pairs[] = {{"Name", "Fan 1"}, {"Note", ""}};
SetData items[] = {{"b"}, {"two words"}};

const std::string kNotQueued =
    ApiReport("Failed to create multiple objects!") +
    ApiReport("Stop creation and receive replies of previous send command.");
const std::string kRefused = ApiReport("Something wrong when creating objects") +
                             ApiReport("Delete previous created object ...");

std::string NotDeleted(const std::string& key) {
  return ApiReport("Failed to delete object <" + key + ">");
}

class CreateMultipleObjects : public StoreTest {
 protected:
  void TearDown() override {
    deletion_fails = false;
    StoreTest::TearDown();
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  int Create(redisContext* ctx, int count) {
    return zephlaneCreateMultipleObjects(ctx, entries_, count);
  }
  // The first `count` entries are refused with `printed` before anything is sent.
  void ExpectRefused(const char* what, const std::string& printed, int count = 5) {
    ExpectEachFails({{what, [&] { return Create(scripted(), count); }, printed}});
    server_.WillReply("+PONG\r\n");
    freeReplyObject(redisCommand(scripted(), "PING"));
    EXPECT_EQ(server_.Commands(), "PING\n");
  }
  ObjectEntry entries_[5] = {{kFan, ZEPHLANE_TYPE_HASH, 2, pairs},
                             {kSet, ZEPHLANE_TYPE_SET, 2, items},
                             {kList, ZEPHLANE_TYPE_LIST, 2, items},
                             {kFourth, ZEPHLANE_TYPE_SET, 1, items},
                             {kFifth, ZEPHLANE_TYPE_HASH, 1, pairs}};
  ScriptedServer server_;
};

TEST_F(CreateMultipleObjects, WritesHashesSetsAndLists) {
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(ctx(), 3), 0); }), "");
  EXPECT_EQ(Dump(), std::string("hash ") + kFan + "\n  Name = Fan 1\n  Note = \nset " + kSet +
                        "\n  b\n  two words\nlist " + kList + "\n  b\n  two words\n");
}

TEST_F(CreateMultipleObjects, SendsOneCommandForEach) {
  server_.WillReply("+OK\r\n");
  server_.WillReply(":2\r\n");
  server_.WillReply(":2\r\n");
  EXPECT_EQ(Create(scripted(), 3), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", kFan, "Name", "Fan 1", "Note", ""}) +
                                    Bulks({"SADD", kSet, "b", "two words"}) +
                                    Bulks({"RPUSH", kList, "b", "two words"}));
}

TEST_F(CreateMultipleObjects, WritesMoreThanFitsIntoOnePiece) {
  std::vector<std::string> keys;
  std::vector<ObjectEntry> entries;
  for (int i = 0; i < 300; ++i) {
    keys.push_back("10000000-0000-0000-0000-000000000" + std::to_string(100 + i));
  }
  for (const std::string& key : keys) {
    entries.push_back({key.c_str(), ZEPHLANE_TYPE_HASH, 2, pairs});
  }
  EXPECT_EQ(zephlaneCreateMultipleObjects(ctx(), entries.data(), 300), 0);
  EXPECT_EQ(Ask({"DBSIZE"}), "300");
  EXPECT_EQ(Ask({"HGET", keys[299], "Name"}), "Fan 1");
}

TEST_F(CreateMultipleObjects, OfNoneIsSuccessThatSendsNothing) {
  EXPECT_EQ(Create(scripted(), 0), 0);
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateMultipleObjects, RefusesTheWholeBatchForAnUnknownType) {
  for (const int type : {0, 3, 5, 255}) {
    SCOPED_TRACE(type);
    entries_[4].type = static_cast<uint8_t>(type);
    ExpectEachFails({{"type", [&] { return Create(ctx(), 5); }, ApiReport("Unknown object type")}});
  }
  EXPECT_EQ(Dump(), "");
  ExpectRefused("type", ApiReport("Unknown object type"));
}

TEST_F(CreateMultipleObjects, RefusesTheWholeBatchForAKeyThatIsNot36CharactersLong) {
  for (const std::size_t length : {0, 35, 37, 300}) {
    SCOPED_TRACE(length);
    const std::string key(length, 'k');
    entries_[4].key = key.c_str();
    ExpectEachFails({{"key", [&] { return Create(ctx(), 5); },
                      ApiReport("Object UUID: " + std::to_string(length))}});
  }
  EXPECT_EQ(Dump(), "");
  entries_[4].key = nullptr;
  ExpectRefused("no key", ApiReport("Object UUID: 0"));
}

TEST_F(CreateMultipleObjects, ReportsTheFirstBadEntryByItsTypeFirst) {
  entries_[1] = {"short", 3, 0, nullptr};
  entries_[2].key = "shorter";
  ExpectRefused("order", ApiReport("Unknown object type"));
}

TEST_F(CreateMultipleObjects, ChecksOnlyAsManyEntriesAsAreGiven) {
  entries_[1].type = 3;
  EXPECT_EQ(Create(ctx(), 1), 0);
}

TEST_F(CreateMultipleObjects, FailingAtTheThirdOfFiveDeletesTheFirstTwo) {
  entries_[2].items = nullptr;
  ExpectEachFails({{"third", [&] { return Create(ctx(), 5); }, kNotQueued}});
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateMultipleObjects, FailingAtTheThirdOfFiveSendsTheFirstTwoBeforeTheirDeletion) {
  for (const char* raw : {"+OK\r\n", ":2\r\n", "$-1\r\n", ":1\r\n", "$-1\r\n", ":1\r\n"}) {
    server_.WillReply(raw);
  }
  entries_[2].items = nullptr;
  ExpectEachFails({{"third", [&] { return Create(scripted(), 5); }, kNotQueued}});
  const std::string fan = kFan;
  const std::string set = kSet;
  EXPECT_EQ(server_.Commands(), "HMSET " + fan + " Name Fan 1 Note \nSADD " + set +
                                    " b two words\nHGET " + fan + "-TTL TtlSec\nDEL " + fan +
                                    "\nHGET " + set + "-TTL TtlSec\nDEL " + set + "\n");
}

TEST_F(CreateMultipleObjects, FailingAtTheFirstSendsNothing) {
  entries_[0].items = nullptr;
  ExpectRefused("first", kNotQueued);
}

TEST_F(CreateMultipleObjects, TakesACountOfItemsBelowZeroForAFailure) {
  entries_[1].count = -1;
  ExpectEachFails({{"count", [&] { return Create(ctx(), 5); }, kNotQueued}});
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateMultipleObjects, FailingWithoutMemoryDeletesWhatWasQueued) {
  // Two allocations for each entry.
  for (int n = 1; n <= 6; ++n) {
    SCOPED_TRACE(n);
    ExpectEachFails({{"memory",
                      [&] {
                        AllocationFault fault(n);
                        const int result = Create(ctx(), 3);
                        fault.Disarm();
                        EXPECT_TRUE(fault.Happened());
                        return result;
                      },
                      kNotQueued}});
    EXPECT_EQ(Dump(), "");
  }
}

TEST_F(CreateMultipleObjects, DeletesAllWhenRedisRefusesOne) {
  Ask({"SET", kSet, "in the way"});
  ExpectEachFails({{"type", [&] { return Create(ctx(), 5); }, kRefused}});
  EXPECT_EQ(Dump(), "");  // what was in the way is gone as well
}

TEST_F(CreateMultipleObjects, TakesASetThatHasAllMembersForARefusal) {
  Ask({"SADD", kSet, "b", "two words", "more"});
  ExpectEachFails({{"members", [&] { return Create(ctx(), 3); }, kRefused}});
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateMultipleObjects, TakesAnObjectWithoutItemsForARefusal) {
  entries_[2].count = 0;
  ExpectEachFails({{"items", [&] { return Create(ctx(), 5); }, kRefused}});
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateMultipleObjects, DeletesCompanionsToo) {
  Ask({"HSET", std::string(kFan) + "-TTL", "TtlSec", "10"});
  entries_[1].count = 0;
  ExpectEachFails({{"items", [&] { return Create(ctx(), 2); }, kRefused}});
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateMultipleObjects, ReportsEachObjectThatCannotBeDeleted) {
  deletion_fails = true;
  entries_[2].items = nullptr;
  ExpectEachFails({{"not queued", [&] { return Create(ctx(), 5); },
                    kNotQueued + NotDeleted(kFan) + NotDeleted(kSet)}});
  entries_[2].items = items;
  ExpectEachFails({{"refused", [&] { return Create(ctx(), 3); },
                    kRefused + NotDeleted(kFan) + NotDeleted(kSet) + NotDeleted(kList)}});
}

TEST_F(CreateMultipleObjects, FailsOnALostConnection) {
  server_.WillReply("+OK\r\n");
  server_.WillClose();
  ExpectEachFails({{"lost", [&] { return Create(scripted(), 3); }, kRefused}});
}

TEST_F(CreateMultipleObjects, RefusesNullPointers) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachFails({
      {"connection", [&] { return Create(nullptr, 3); }, report},
      {"entries", [&] { return zephlaneCreateMultipleObjects(scripted(), nullptr, 3); }, report},
      {"entries, none", [&] { return zephlaneCreateMultipleObjects(scripted(), nullptr, 0); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
