// SPDX-License-Identifier: MIT
//
// Creating, pushing, replacing and removing list items, and the entity-tag cache; reading and
// popping are in listsReading_test.cpp.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"
#include "support/text.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::Pointers;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

SetData Item(std::string_view text) {
  SetData item{};
  zephlane::CopyCut(item.aObjectID, text);
  return item;
}

class ListTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
};

class CreateListTable : public ListTest {
 protected:
  const SetData items_[3] = {Item("two words"), Item(""), Item("c")};
};

TEST_F(CreateListTable, PushesAllItemsInOrderEmptyOnesToo) {
  EXPECT_EQ(zephlaneCreateListTable(ctx(), "list", items_, 3), 0);
  EXPECT_EQ(Dump(), "list list\n  two words\n  \n  c\n");
}

TEST_F(CreateListTable, AppendsToAListThatExists) {
  Ask({"RPUSH", "list", "first"});
  EXPECT_EQ(zephlaneCreateListTable(ctx(), "list", items_, 1), 0);
  EXPECT_EQ(Dump(), "list list\n  first\n  two words\n");
}

TEST_F(CreateListTable, TestsTheTypeThenPushesThenConfirmsByTheLength) {
  server_.WillReply("+none\r\n");
  server_.WillReply(":0\r\n");
  server_.WillReply(":3\r\n");
  server_.WillReply(":3\r\n");
  EXPECT_EQ(zephlaneCreateListTable(scripted(), "a list", items_, 3), 0);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "a list"}) + Bulks({"LLEN", "a list"}) +
                                    Bulks({"RPUSH", "a list", "two words", "", "c"}) +
                                    Bulks({"LLEN", "a list"}));
}

TEST_F(CreateListTable, OnAHashOrSetPrintsTwoReportsAndSendsNothingMore) {
  for (const char* type : {"+hash\r\n", "+set\r\n"}) {
    server_.WillReply(type);
    ExpectEachFails({{type, [&] { return zephlaneCreateListTable(scripted(), "key", items_, 3); },
                      ApiReport("Key is existed and it's not list type!") +
                          ApiReport("Please double check the key.")}});
  }
  EXPECT_EQ(server_.Commands(), "TYPE key\nTYPE key\n");
}

TEST_F(CreateListTable, OnAStringTriesThePushThatRedisRefuses) {
  Ask({"SET", "key", "text"});
  ExpectEachFails({{"string", [&] { return zephlaneCreateListTable(ctx(), "key", items_, 3); },
                    ApiReport("Failed to create list.")}});
  EXPECT_EQ(Dump(), "string key\n  text\n");
}

TEST_F(CreateListTable, ReportsWhetherItFailedToCreateOrToAppend) {
  Ask({"RPUSH", "list", "first"});
  server_.WillReply("+list\r\n");
  server_.WillReply(":1\r\n");
  server_.WillClose();
  ExpectEachFails({
      {"create", [&] { return zephlaneCreateListTable(ctx(), "none", items_, 0); },
       ApiReport("Failed to create list.")},
      {"append", [&] { return zephlaneCreateListTable(ctx(), "list", items_, 0); },
       ApiReport("Failed to append value to list.")},
      {"append, lost", [&] { return zephlaneCreateListTable(scripted(), "list", items_, 3); },
       ApiReport("Failed to append value to list.")},
      {"create, lost", [&] { return zephlaneCreateListTable(scripted(), "list", items_, 3); },
       ApiReport("Failed to create list.")},
  });
}

TEST_F(CreateListTable, RefusesNullPointersInLowerCase) {
  const std::string report = ApiReport("Argument: null pointer");
  ExpectEachFails({
      {"key", [&] { return zephlaneCreateListTable(scripted(), nullptr, items_, 1); }, report},
      {"connection", [&] { return zephlaneCreateListTable(nullptr, "list", items_, 1); }, report},
      {"items", [&] { return zephlaneCreateListTable(scripted(), "list", nullptr, 1); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateExtendedListTable : public ListTest {
 protected:
  int Create(redisContext* ctx, unsigned int count = 2) {
    return zephlaneCreateExtendedListTable(ctx, "list", items_.Get(), count);
  }
  const Pointers items_{"two words", ""};
};

TEST_F(CreateExtendedListTable, AppendsItemsOfAnyLength) {
  Ask({"RPUSH", "list", "first"});
  const std::string item(3000, 'i');
  const Pointers items{"", item.c_str()};
  EXPECT_EQ(zephlaneCreateExtendedListTable(ctx(), "list", items.Get(), 2), 0);
  EXPECT_EQ(Dump(), "list list\n  first\n  \n  " + item + "\n");
}

TEST_F(CreateExtendedListTable, AsksForTheLengthAndPushesWithoutATypeTest) {
  server_.WillReply(":5\r\n");
  server_.WillReply(":7\r\n");
  EXPECT_EQ(Create(scripted()), 0);
  EXPECT_EQ(server_.Received(),
            Bulks({"LLEN", "list"}) + Bulks({"RPUSH", "list", "two words", ""}));
}

TEST_F(CreateExtendedListTable, ReportsAFailureInTheWordingOfHashes) {
  Ask({"HSET", "list", "field", "value"});
  server_.WillReply(":5\r\n");
  server_.WillReply(":8\r\n");
  server_.WillClose();
  char* const none[] = {nullptr};
  const std::string report = ApiReport("Failed to create extended hash table.");
  ExpectEachFails({
      {"hash", [&] { return Create(ctx()); }, report},
      {"another writer", [&] { return Create(scripted()); }, report},
      {"lost", [&] { return Create(scripted()); }, report},
      {"count 0", [&] { return Create(ctx(), 0); }, report},
      {"NULL item", [&] { return zephlaneCreateExtendedListTable(ctx(), "new", none, 1); }, report},
  });
  EXPECT_EQ(Dump(), "hash list\n  field = value\n");
}

TEST_F(CreateExtendedListTable, ReportsThatMemoryIsOut) {
  EXPECT_EQ(PrintedWithoutMemory(1, [&] { EXPECT_EQ(Create(scripted()), 1); }),
            ApiReport("malloc"));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateExtendedListTable, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachFails({
      {"key", [&] { return zephlaneCreateExtendedListTable(scripted(), nullptr, items_.Get(), 1); },
       report},
      {"connection", [&] { return Create(nullptr); }, report},
      {"items", [&] { return zephlaneCreateExtendedListTable(scripted(), "list", nullptr, 1); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ListLeftPush : public ListTest {
 protected:
  int Push(redisContext* ctx, const char* key, unsigned int count = 3) {
    return zephlaneListLeftPush(ctx, key, items_.Get(), count);
  }
  const Pointers items_{"a", "b", "two words"};
};

TEST_F(ListLeftPush, PutsTheLastItemFirst) {
  EXPECT_EQ(Push(ctx(), "list"), 0);
  EXPECT_EQ(Dump(), "list list\n  two words\n  b\n  a\n");
}

TEST_F(ListLeftPush, TestsTheTypeWithOneCommandThenPushes) {
  server_.WillReply("+list\r\n");
  server_.WillReply(":5\r\n");
  server_.WillReply(":8\r\n");
  EXPECT_EQ(Push(scripted(), "a list"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "a list"}) + Bulks({"LLEN", "a list"}) +
                                    Bulks({"LPUSH", "a list", "a", "b", "two words"}));
}

TEST_F(ListLeftPush, RefusesAHashOrSet) {
  for (const char* type : {"+hash\r\n", "+set\r\n"}) {
    server_.WillReply(type);
    ExpectEachFails(
        {{type, [&] { return Push(scripted(), "key"); }, ApiReport("Not redis list type")}});
  }
  EXPECT_EQ(server_.Commands(), "TYPE key\nTYPE key\n");
}

TEST_F(ListLeftPush, ReportsWhatTheCommandLayerRefuses) {
  Ask({"SET", "string", "text"});
  server_.WillReply("+list\r\n");
  server_.WillReply(":5\r\n");
  server_.WillClose();
  char* const none[] = {nullptr};
  const std::string report = ApiReport("Failed to create extended list table.");
  ExpectEachFails({
      {"string", [&] { return Push(ctx(), "string"); }, report},
      {"lost", [&] { return Push(scripted(), "list"); }, report},
      {"NULL item", [&] { return zephlaneListLeftPush(ctx(), "new", none, 1); }, report},
  });
  EXPECT_EQ(Dump(), "string string\n  text\n");
}

TEST_F(ListLeftPush, WithCountZeroFailsWithoutAMessageOrACommand) {
  ExpectEachFails({{"count 0", [&] { return Push(scripted(), "list", 0); }, ""}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ListLeftPush, RefusesNullPointersBeforeACountOfZero) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachFails({
      {"key", [&] { return Push(scripted(), nullptr, 0); }, report},
      {"connection", [&] { return Push(nullptr, "list", 0); }, report},
      {"items", [&] { return zephlaneListLeftPush(scripted(), "list", nullptr, 0); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ListRightPush : public ListTest {};

TEST_F(ListRightPush, AppendsOneItem) {
  EXPECT_EQ(zephlaneListRightPush(ctx(), "list", "first"), 0);
  EXPECT_EQ(zephlaneListRightPush(ctx(), "list", "two words"), 0);
  EXPECT_EQ(Dump(), "list list\n  first\n  two words\n");
}

TEST_F(ListRightPush, SendsOneCommandAndReportsItsFailure) {
  Ask({"SET", "string", "text"});
  server_.WillClose();
  const std::string report = ApiReport("RPUSH fail!");
  ExpectEachFails({
      {"wrong type", [&] { return zephlaneListRightPush(ctx(), "string", "item"); }, report},
      {"lost", [&] { return zephlaneListRightPush(scripted(), "a list", "an item"); }, report},
  });
  EXPECT_EQ(server_.Received(), Bulks({"RPUSH", "a list", "an item"}));
}

TEST_F(ListRightPush, FailsSilentlyForNullPointers) {
  ExpectEachFails({
      {"key", [&] { return zephlaneListRightPush(scripted(), nullptr, "item"); }, ""},
      {"item", [&] { return zephlaneListRightPush(scripted(), "list", nullptr); }, ""},
      {"connection", [] { return zephlaneListRightPush(nullptr, "list", "item"); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

class RemoveItems : public ListTest {
 protected:
  void SetUp() override {
    ListTest::SetUp();
    Ask({"RPUSH", "list", "x", "1", "x", "2", "x"});
  }
};

TEST_F(RemoveItems, WithACountAboveZeroGoesFromTheHead) {
  EXPECT_EQ(zephlaneLREM(ctx(), "list", 2, "x"), 0);
  EXPECT_EQ(Dump(), "list list\n  1\n  2\n  x\n");
}

TEST_F(RemoveItems, WithACountBelowZeroGoesFromTheTail) {
  EXPECT_EQ(zephlaneLREM(ctx(), "list", -2, "x"), 0);
  EXPECT_EQ(Dump(), "list list\n  x\n  1\n  2\n");
}

TEST_F(RemoveItems, WithCountZeroTakesThemAll) {
  EXPECT_EQ(zephlaneLREM(ctx(), "list", 0, "x"), 0);
  EXPECT_EQ(Dump(), "list list\n  1\n  2\n");
}

TEST_F(RemoveItems, IsSuccessWhenNothingWasThere) {
  EXPECT_EQ(zephlaneLREM(ctx(), "list", 0, "y"), 0);
  EXPECT_EQ(zephlaneLREM(ctx(), "none", 0, "x"), 0);
}

TEST_F(RemoveItems, FailsSilentlyOnAnotherTypeOrALostConnection) {
  Ask({"SET", "string", "text"});
  server_.WillClose();
  ExpectEachFails({
      {"wrong type", [&] { return zephlaneLREM(ctx(), "string", 0, "x"); }, ""},
      {"lost", [&] { return zephlaneLREM(scripted(), "a list", -3, "an item"); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"LREM", "a list", "-3", "an item"}));
}

TEST_F(RemoveItems, RefusesNullPointersBeforeANullConnection) {
  ExpectEachFails({
      {"item", [&] { return zephlaneLREM(scripted(), "list", 0, nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"key", [&] { return zephlaneLREM(scripted(), nullptr, 0, "x"); },
       ApiReport("Argument: NULL pointer")},
      {"item and connection", [] { return zephlaneLREM(nullptr, "list", 0, nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneLREM(nullptr, "list", 0, "x"); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ReplaceItem : public ListTest {};

TEST_F(ReplaceItem, CountsNegativeIndexesFromTheTail) {
  Ask({"RPUSH", "list", "a", "b", "c"});
  EXPECT_EQ(zephlaneReplaceListItemByIndex(ctx(), "list", -1, "two words"), 0);
  EXPECT_EQ(zephlaneReplaceListItemByIndex(ctx(), "list", 0, "A"), 0);
  EXPECT_EQ(Dump(), "list list\n  A\n  b\n  two words\n");
}

TEST_F(ReplaceItem, TakesANewItemOfAnyLength) {
  Ask({"RPUSH", "list", std::string(1023, 'a')});
  const std::string item(3000, 'i');
  EXPECT_EQ(zephlaneReplaceListItemByIndex(ctx(), "list", 0, item.c_str()), 0);
  EXPECT_EQ(Dump(), "list list\n  " + item + "\n");
}

TEST_F(ReplaceItem, ReadsTheItemThenSetsIt) {
  server_.WillReply(Bulk("old"));
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(zephlaneReplaceListItemByIndex(scripted(), "a list", -2, "an item"), 0);
  EXPECT_EQ(server_.Received(),
            Bulks({"LINDEX", "a list", "-2"}) + Bulks({"LSET", "a list", "-2", "an item"}));
}

TEST_F(ReplaceItem, TakesAnIndexWithoutAnItemOrWithAnEmptyOneForOutOfRange) {
  Ask({"RPUSH", "list", "a", ""});
  const std::string before = Dump();
  ExpectEachFails({
      {"above", [&] { return zephlaneReplaceListItemByIndex(ctx(), "list", 2, "x"); },
       ApiReport("Index: 2 is out of range.")},
      {"below", [&] { return zephlaneReplaceListItemByIndex(ctx(), "list", -3, "x"); },
       ApiReport("Index: -3 is out of range.")},
      {"empty item", [&] { return zephlaneReplaceListItemByIndex(ctx(), "list", 1, "x"); },
       ApiReport("Index: 1 is out of range.")},
      {"missing list", [&] { return zephlaneReplaceListItemByIndex(ctx(), "none", 0, "x"); },
       ApiReport("Index: 0 is out of range.")},
  });
  EXPECT_EQ(Dump(), before);
}

TEST_F(ReplaceItem, LeavesAPresentItemOf1024Characters) {
  Ask({"RPUSH", "list", std::string(1024, 'a')});
  ExpectEachFails(
      {{"1024", [&] { return zephlaneReplaceListItemByIndex(ctx(), "list", 0, "x"); },
        ApiReport("Need more buffer size for value") + ApiReport("Index: 0 is out of range.")}});
  EXPECT_EQ(Ask({"LINDEX", "list", "0"}), std::string(1024, 'a'));
}

TEST_F(ReplaceItem, ReportsAnItemThatRedisWillNotSet) {
  server_.WillReply(Bulk("old"));
  server_.WillReply("-ERR index out of range\r\n");
  server_.WillReply(Bulk("old"));
  server_.WillClose();
  const auto replace = [&] { return zephlaneReplaceListItemByIndex(scripted(), "list", -1, "x"); };
  const std::string report = ApiReport("Failed to replace value at index: -1");
  ExpectEachFails({{"refused", replace, report}, {"lost", replace, report}});
}

TEST_F(ReplaceItem, RefusesNullPointersInLowerCase) {
  const std::string report = ApiReport("Argument: null pointer");
  ExpectEachFails({
      {"key", [&] { return zephlaneReplaceListItemByIndex(scripted(), nullptr, 0, "x"); }, report},
      {"connection", [] { return zephlaneReplaceListItemByIndex(nullptr, "list", 0, "x"); },
       report},
      {"item", [&] { return zephlaneReplaceListItemByIndex(scripted(), "list", 0, nullptr); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ETagCache : public ListTest {
 protected:
  const std::string map_ = "hash WEB-OBJ-URI-MAP\n  /uri = cache\n";
};

TEST_F(ETagCache, LosesBothTagsAndKeepsTheRest) {
  Ask({"HSET", "WEB-OBJ-URI-MAP", "/uri", "cache"});
  Ask({"HSET", "cache", "ETagStrong", "s", "ETagWeak", "w", "Body", "stays"});
  EXPECT_EQ(zephlaneClearETagCache(ctx(), "/uri"), 0);
  EXPECT_EQ(Dump(), map_ + "hash cache\n  Body = stays\n");
}

TEST_F(ETagCache, WithoutTagsIsClearedSuccessfully) {
  Ask({"HSET", "WEB-OBJ-URI-MAP", "/uri", "cache"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneClearETagCache(ctx(), "/uri"), 0); }), "");
  EXPECT_EQ(Dump(), map_);
}

TEST_F(ETagCache, OfAUriWithoutAnEntryFailsSilentlyAndChangesNothing) {
  Ask({"HSET", "WEB-OBJ-URI-MAP", "/uri", "cache"});
  Ask({"HSET", "cache", "ETagWeak", "w"});
  const std::string before = Dump();
  ExpectEachFails({{"no entry", [&] { return zephlaneClearETagCache(ctx(), "/other"); }, ""}});
  EXPECT_EQ(Dump(), before);
}

TEST_F(ETagCache, LosesTheStrongTagFirstWhateverRedisAnswers) {
  server_.WillReply(Bulk("the cache"));
  server_.WillReply("-ERR no\r\n");
  server_.WillClose();
  EXPECT_EQ(zephlaneClearETagCache(scripted(), "/a uri"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "WEB-OBJ-URI-MAP", "/a uri"}) +
                                    Bulks({"HDEL", "the cache", "ETagStrong"}) +
                                    Bulks({"HDEL", "the cache", "ETagWeak"}));
}

TEST_F(ETagCache, RefusesNullPointersAndFailsOnALostConnection) {
  server_.WillClose();
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"URI", [&] { return zephlaneClearETagCache(ctx(), nullptr); }, report},
      {"connection", [] { return zephlaneClearETagCache(nullptr, "/uri"); }, report},
      {"lost", [&] { return zephlaneClearETagCache(scripted(), "/uri"); }, ""},
  });
}

}  // namespace
