// SPDX-License-Identifier: MIT
//
// Reading lists by range and index, and popping, blocking and not.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::CArray;
using zephlane::CRecord;
using zephlane::test::ApiReport;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::ExpectEachGivesNull;
using zephlane::test::GiveNumbersElements;
using zephlane::test::Pointers;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;
using zephlane::test::Taken;

using Texts = std::vector<std::string>;

// A pair that its caller frees, as "key: item".
std::string TakenPair(PopResult* taken) {
  const CRecord<PopResult> pair(taken);
  if (!pair) { return "(null)"; }
  const std::string key = Taken(pair->aListKey);
  return key + ": " + Taken(pair->aItem);
}

class ListReaderTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  // A buffer that holds no zero, so that every byte a call writes is seen.
  void SetUp() override {
    StoreTest::SetUp();
    std::fill(std::begin(out_), std::end(out_), 'x');
  }
  [[nodiscard]] std::string Buffer(std::size_t size) const {
    return {out_, size};
  }
  ScriptedServer server_;
  unsigned int count_ = 77;
  char out_[16];
};

class ListRange : public ListReaderTest {};

TEST_F(ListRange, GivesTheItemsFromStartToStop) {
  Ask({"RPUSH", "list", "a", "two words", "c", "d"});
  const CArray<SetData> items(zephlaneListRange(ctx(), "list", 1, -2, &count_));
  ASSERT_EQ(count_, 2U);
  EXPECT_STREQ(items[0].aObjectID, "two words");
  EXPECT_STREQ(items[1].aObjectID, "c");
}

TEST_F(ListRange, CutsItemsTo1023Characters) {
  server_.WillReply(Bulks({std::string(1023, 'a'), std::string(1024, 'b')}));
  const CArray<SetData> items(zephlaneListRange(scripted(), "a list", 0, -1, &count_));
  ASSERT_EQ(count_, 2U);
  EXPECT_EQ(items[0].aObjectID, std::string(1023, 'a'));
  EXPECT_EQ(items[1].aObjectID, std::string(1023, 'b'));
  EXPECT_EQ(server_.Received(), Bulks({"LRANGE", "a list", "0", "-1"}));
}

TEST_F(ListRange, GivesNullSilentlyWithoutItemsAndLeavesTheCount) {
  Ask({"SET", "string", "text"});
  server_.WillClose();
  ExpectEachGivesNull({
      {"missing", [&] { return zephlaneListRange(ctx(), "none", 0, -1, &count_); }, ""},
      {"wrong type", [&] { return zephlaneListRange(ctx(), "string", 0, -1, &count_); }, ""},
      {"lost", [&] { return zephlaneListRange(scripted(), "list", 0, -1, &count_); }, ""},
  });
  EXPECT_EQ(count_, 77U);
}

TEST_F(ListRange, RefusesANegativeStartAndNullPointersSilently) {
  ExpectEachGivesNull({
      {"start", [&] { return zephlaneListRange(scripted(), "list", -1, -1, &count_); }, ""},
      {"key", [&] { return zephlaneListRange(scripted(), nullptr, 0, -1, &count_); }, ""},
      {"connection", [&] { return zephlaneListRange(nullptr, "list", 0, -1, &count_); }, ""},
      {"count", [&] { return zephlaneListRange(scripted(), "list", 0, -1, nullptr); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

class ExtendedListRange : public ListReaderTest {
 protected:
  char** Read(redisContext* ctx, const char* key) {
    return zephlaneExtendedListRange(ctx, key, 0, -1, &count_);
  }
};

TEST_F(ExtendedListRange, TakesANegativeStart) {
  Ask({"RPUSH", "list", "a", "two words", ""});
  char** items = zephlaneExtendedListRange(ctx(), "list", -2, -1, &count_);
  EXPECT_EQ(count_, 2U);
  EXPECT_EQ(Taken(items, count_), (Texts{"two words", ""}));
}

TEST_F(ExtendedListRange, GivesItemsOfAnyLength) {
  const std::string item(1500, 'i');
  server_.WillReply(Bulks({item}));
  char** items = zephlaneExtendedListRange(scripted(), "a list", -3, 7, &count_);
  EXPECT_EQ(Taken(items, count_), Texts{item});
  EXPECT_EQ(server_.Received(), Bulks({"LRANGE", "a list", "-3", "7"}));
}

TEST_F(ExtendedListRange, SetsTheCountToZeroWithoutItems) {
  Ask({"SET", "string", "text"});
  for (const char* key : {"none", "string"}) {
    count_ = 77;
    ExpectEachGivesNull({{key, [&] { return Read(ctx(), key); }, ""}});
    EXPECT_EQ(count_, 0U) << key;
  }
}

TEST_F(ExtendedListRange, ReportsElementsOfWhatIsNoArray) {
  GiveNumbersElements(scripted());
  server_.WillReply(":1\r\n");
  ExpectEachGivesNull(
      {{"number", [&] { return Read(scripted(), "list"); }, ApiReport("Wrong reply!")}});
  EXPECT_EQ(count_, 0U);
}

TEST_F(ExtendedListRange, ReportsThatMemoryIsOutForTheArrayAndEachCopy) {
  Ask({"RPUSH", "list", "a", "b"});
  const auto read = [&] { EXPECT_EQ(Read(ctx(), "list"), nullptr); };
  for (const int n : {1, 2, 3}) {
    EXPECT_EQ(PrintedWithoutMemory(n, read), ApiReport("malloc")) << n;
  }
}

TEST_F(ExtendedListRange, OnALostConnectionLeavesTheCount) {
  server_.WillClose();
  ExpectEachGivesNull({{"lost", [&] { return Read(scripted(), "list"); }, ""}});
  EXPECT_EQ(count_, 77U);
}

TEST_F(ExtendedListRange, DoesWithoutACount) {
  Ask({"RPUSH", "list", "a"});
  EXPECT_EQ(Taken(zephlaneExtendedListRange(ctx(), "list", 0, -1, nullptr), 1), Texts{"a"});
}

TEST_F(ExtendedListRange, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachGivesNull({
      {"key", [&] { return Read(scripted(), nullptr); }, report},
      {"connection", [&] { return Read(nullptr, "list"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
  EXPECT_EQ(count_, 77U);
}

class ListLength : public ListReaderTest {};

TEST_F(ListLength, OfAListIsTheNumberOfItsItemsAndZeroWhenItIsMissing) {
  Ask({"RPUSH", "list", "a", "b"});
  EXPECT_EQ(zephlaneListLength(ctx(), "list", &count_), 0);
  EXPECT_EQ(count_, 2U);
  EXPECT_EQ(zephlaneListLength(ctx(), "none", &count_), 0);
  EXPECT_EQ(count_, 0U);
}

TEST_F(ListLength, FailsSilentlyAndLeavesTheNumber) {
  Ask({"SET", "string", "text"});
  server_.WillClose();
  ExpectEachFails({
      {"wrong type", [&] { return zephlaneListLength(ctx(), "string", &count_); }, ""},
      {"lost", [&] { return zephlaneListLength(scripted(), "a list", &count_); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"LLEN", "a list"}));
  EXPECT_EQ(count_, 77U);
}

TEST_F(ListLength, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"key", [&] { return zephlaneListLength(scripted(), nullptr, &count_); }, report},
      {"connection", [&] { return zephlaneListLength(nullptr, "list", &count_); }, report},
      {"number", [&] { return zephlaneListLength(scripted(), "list", nullptr); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ListIndex : public ListReaderTest {};

TEST_F(ListIndex, CopiesAnItemThatIsShorterThanTheCapacityAndZeroFillsTheRest) {
  Ask({"RPUSH", "list", "9 letters", "b"});
  EXPECT_EQ(zephlaneListIndex(ctx(), "list", 0, 10, out_), 0);
  EXPECT_EQ(Buffer(11), std::string("9 letters\0x", 11));
  EXPECT_EQ(zephlaneListIndex(ctx(), "list", -1, 10, out_), 0);
  EXPECT_EQ(Buffer(11), std::string("b\0\0\0\0\0\0\0\0\0x", 11));
}

TEST_F(ListIndex, RefusesAnItemAsLongAsTheCapacityAndLeavesTheBuffer) {
  Ask({"RPUSH", "list", "10 letters"});
  ExpectEachFails({{"10", [&] { return zephlaneListIndex(ctx(), "list", 0, 10, out_); },
                    ApiReport("Need more buffer size for value")}});
  EXPECT_EQ(Buffer(16), std::string(16, 'x'));
}

TEST_F(ListIndex, SendsOneCommandAndFailsSilentlyWithoutAnItem) {
  Ask({"RPUSH", "list", ""});
  server_.WillClose();
  ExpectEachFails({
      {"out of range", [&] { return zephlaneListIndex(ctx(), "list", 1, 10, out_); }, ""},
      {"empty item", [&] { return zephlaneListIndex(ctx(), "list", 0, 10, out_); }, ""},
      {"lost", [&] { return zephlaneListIndex(scripted(), "a list", -4, 10, out_); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"LINDEX", "a list", "-4"}));
  EXPECT_EQ(Buffer(16), std::string(16, 'x'));
}

TEST_F(ListIndex, RefusesNullPointersBeforeACapacityOfZero) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"connection", [&] { return zephlaneListIndex(nullptr, "list", 0, 0, out_); }, report},
      {"buffer", [&] { return zephlaneListIndex(scripted(), "list", 0, 0, nullptr); }, report},
      {"key", [&] { return zephlaneListIndex(scripted(), nullptr, 0, 0, out_); }, report},
      {"capacity", [&] { return zephlaneListIndex(scripted(), "list", 0, 0, out_); },
       ApiReport("Buffer size is 0.")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ListIndexV21 : public ListReaderTest {};

TEST_F(ListIndexV21, GivesAnItemOfAnyLength) {
  const std::string item(1500, 'i');
  Ask({"RPUSH", "list", "a", item});
  EXPECT_EQ(Taken(zephlaneListIndexV21(ctx(), "list", -1)), item);
}

TEST_F(ListIndexV21, SendsOneCommandAndGivesNullWithoutAnItem) {
  server_.WillClose();
  ExpectEachGivesNull({
      {"missing", [&] { return zephlaneListIndexV21(ctx(), "none", 0); }, ""},
      {"lost", [&] { return zephlaneListIndexV21(scripted(), "a list", 3); }, ""},
      {"key", [&] { return zephlaneListIndexV21(scripted(), nullptr, 0); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneListIndexV21(nullptr, "list", 0); },
       ApiReport("Argument: NULL pointer")},
  });
  EXPECT_EQ(server_.Received(), Bulks({"LINDEX", "a list", "3"}));
}

class ListLeftPop : public ListReaderTest {};

TEST_F(ListLeftPop, TakesTheFirstItemAndZeroFillsTheRestOfTheBuffer) {
  Ask({"RPUSH", "list", "9 letters", "b"});
  EXPECT_EQ(zephlaneListLeftPop(ctx(), "list", 12, out_), 0);
  EXPECT_EQ(Buffer(13), std::string("9 letters\0\0\0x", 13));
  EXPECT_EQ(Dump(), "list list\n  b\n");
}

TEST_F(ListLeftPop, LosesAnItemAsLongAsTheCapacity) {
  Ask({"RPUSH", "list", "10 letters", "b"});
  ExpectEachFails({{"10", [&] { return zephlaneListLeftPop(ctx(), "list", 10, out_); },
                    ApiReport("Need more buffer size for value")}});
  EXPECT_EQ(Dump(), "list list\n  b\n");
  EXPECT_EQ(Buffer(16), std::string(16, 'x'));
}

TEST_F(ListLeftPop, SendsOneCommandAndFailsSilentlyWithoutAnItem) {
  server_.WillClose();
  ExpectEachFails({
      {"missing", [&] { return zephlaneListLeftPop(ctx(), "none", 10, out_); }, ""},
      {"lost", [&] { return zephlaneListLeftPop(scripted(), "a list", 10, out_); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"LPOP", "a list"}));
}

TEST_F(ListLeftPop, WithCapacityZeroFailsSilentlyAndTakesNothing) {
  ExpectEachFails({{"0", [&] { return zephlaneListLeftPop(scripted(), "list", 0, out_); }, ""}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ListLeftPop, RefusesNullPointersBeforeACapacityOfZero) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachFails({
      {"key", [&] { return zephlaneListLeftPop(scripted(), nullptr, 0, out_); }, report},
      {"connection", [&] { return zephlaneListLeftPop(nullptr, "list", 0, out_); }, report},
      {"buffer", [&] { return zephlaneListLeftPop(scripted(), "list", 10, nullptr); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class HeapPops : public ListReaderTest {};

TEST_F(HeapPops, TakeAnItemOfAnyLengthFromTheirEnd) {
  const std::string item(1500, 'i');
  Ask({"RPUSH", "list", item + "first", "middle", item + "last"});
  EXPECT_EQ(Taken(zephlaneListLeftPopV21(ctx(), "list")), item + "first");
  EXPECT_EQ(Taken(zephlaneListRightPop(ctx(), "list")), item + "last");
  EXPECT_EQ(Dump(), "list list\n  middle\n");
}

TEST_F(HeapPops, SendOneCommandAndGiveNullSilentlyWithoutAnItem) {
  server_.WillReply("$-1\r\n");
  server_.WillClose();
  ExpectEachGivesNull({
      {"left", [&] { return zephlaneListLeftPopV21(scripted(), "a list"); }, ""},
      {"right, lost", [&] { return zephlaneListRightPop(scripted(), "a list"); }, ""},
      {"left, lost", [&] { return zephlaneListLeftPopV21(scripted(), "a list"); }, ""},
      {"right", [&] { return zephlaneListRightPop(ctx(), "none"); }, ""},
  });
  EXPECT_TRUE(
      server_.Received().starts_with(Bulks({"LPOP", "a list"}) + Bulks({"RPOP", "a list"})));
}

TEST_F(HeapPops, RefuseNullPointers) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachGivesNull({
      {"left key", [&] { return zephlaneListLeftPopV21(scripted(), nullptr); }, report},
      {"left connection", [] { return zephlaneListLeftPopV21(nullptr, "list"); }, report},
      {"right key", [&] { return zephlaneListRightPop(scripted(), nullptr); }, report},
      {"right connection", [] { return zephlaneListRightPop(nullptr, "list"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class ListBlockLeftPop : public ListReaderTest {};

TEST_F(ListBlockLeftPop, TakesTheFirstItemAndZeroFillsTheRestOfTheBuffer) {
  Ask({"RPUSH", "list", "9 letters", "b"});
  EXPECT_EQ(zephlaneListBlockLeftPop(ctx(), "list", 0, 10, out_), 0);
  EXPECT_EQ(Buffer(11), std::string("9 letters\0x", 11));
  EXPECT_EQ(Dump(), "list list\n  b\n");
}

TEST_F(ListBlockLeftPop, LosesAnItemAsLongAsTheCapacity) {
  Ask({"RPUSH", "list", "10 letters", "b", "c"});
  ExpectEachFails({
      {"10", [&] { return zephlaneListBlockLeftPop(ctx(), "list", 0, 10, out_); },
       ApiReport("Buffer size.")},
      {"0", [&] { return zephlaneListBlockLeftPop(ctx(), "list", 0, 0, out_); },
       ApiReport("Buffer size.")},
  });
  EXPECT_EQ(Dump(), "list list\n  c\n");
  EXPECT_EQ(Buffer(16), std::string(16, 'x'));
}

TEST_F(ListBlockLeftPop, FailsSilentlyWhenTheTimePassesOrTheReplyIsWrong) {
  Ask({"SET", "string", "text"});
  server_.WillReply("*-1\r\n");
  server_.WillClose();
  ExpectEachFails({
      {"time",
       [&] { return zephlaneListBlockLeftPop(scripted(), "a list", 4000000000U, 10, out_); }, ""},
      {"wrong type", [&] { return zephlaneListBlockLeftPop(ctx(), "string", 1, 10, out_); }, ""},
      {"lost", [&] { return zephlaneListBlockLeftPop(scripted(), "list", 1, 10, out_); }, ""},
  });
  EXPECT_EQ(server_.Received(),
            Bulks({"BLPOP", "a list", "4000000000"}) + Bulks({"BLPOP", "list", "1"}));
}

TEST_F(ListBlockLeftPop, RefusesNullPointers) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  ExpectEachFails({
      {"key", [&] { return zephlaneListBlockLeftPop(scripted(), nullptr, 1, 10, out_); }, report},
      {"connection", [&] { return zephlaneListBlockLeftPop(nullptr, "list", 1, 10, out_); },
       report},
      {"buffer", [&] { return zephlaneListBlockLeftPop(scripted(), "list", 1, 10, nullptr); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

// The two pops over several lists, which differ in the end they take from.
struct BlockingPop {
  const char* name;
  PopResult* (*pop)(redisContext*, unsigned int, char* const*, unsigned int);
  const char* command;
  const char* item;
};

void PrintTo(const BlockingPop& pop, std::ostream* stream) {
  *stream << pop.name;
}

class BlockingPops : public ListReaderTest, public testing::WithParamInterface<BlockingPop> {
 protected:
  const Pointers keys_{"empty", "a list", "other"};
};

TEST_P(BlockingPops, ServeTheFirstListWithItemsInTheOrderOfTheKeys) {
  Ask({"RPUSH", "other", "x"});
  Ask({"RPUSH", "a list", "first", "last"});
  EXPECT_EQ(TakenPair(GetParam().pop(ctx(), 0, keys_.Get(), 3)),
            std::string("a list: ") + GetParam().item);
}

TEST_P(BlockingPops, SendOneCommandAndGiveItemsOfAnyLength) {
  const std::string item(1500, 'i');
  server_.WillReply(Bulks({"other", item}));
  EXPECT_EQ(TakenPair(GetParam().pop(scripted(), 4294967295U, keys_.Get(), 3)), "other: " + item);
  EXPECT_EQ(server_.Received(),
            Bulks({GetParam().command, "empty", "a list", "other", "4294967295"}));
}

TEST_P(BlockingPops, GiveNullSilentlyWhenTheTimePassesOrTheReplyIsWrong) {
  server_.WillReply("*-1\r\n");
  server_.WillReply(Bulks({"one element"}));
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  server_.WillClose();
  const auto pop = [&] { return GetParam().pop(scripted(), 1, keys_.Get(), 3); };
  ExpectEachGivesNull(
      {{"time", pop, ""}, {"one", pop, ""}, {"wrong type", pop, ""}, {"lost", pop, ""}});
}

TEST_P(BlockingPops, RefuseNullPointersAndSilentlyHavingNoKey) {
  const std::string report = ApiReport("Argument is NULL pointer!");
  char* const none[] = {nullptr};
  const auto pop = GetParam().pop;
  ExpectEachGivesNull({
      {"keys", [&] { return pop(scripted(), 1, nullptr, 1); }, report},
      {"connection", [&] { return pop(nullptr, 1, keys_.Get(), 1); }, report},
      {"count 0", [&] { return pop(scripted(), 1, keys_.Get(), 0); }, ""},
      {"NULL first key", [&] { return pop(scripted(), 1, none, 1); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

INSTANTIATE_TEST_SUITE_P(
    Each, BlockingPops,
    testing::Values(BlockingPop{"Left", zephlaneListBlockLeftPopV21, "BLPOP", "first"},
                    BlockingPop{"Right", zephlaneListBlockRightPop, "BRPOP", "last"}),
    [](const auto& instance) { return instance.param.name; });

}  // namespace
