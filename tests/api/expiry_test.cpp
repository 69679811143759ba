// SPDX-License-Identifier: MIT
//
// Deadlines on a monotonic clock that the cases set, and the script that turns JSON into objects.
#include <cstdint>
#include <ctime>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/clockFault.h"
#include "api/monotonicDeadline.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::FormatDeadline;
using zephlane::HasDeadlineCome;
using zephlane::Milliseconds;
using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::FakeClocks;
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

constexpr char kTable[] = "keyExpiredTime";

// Arithmetic

TEST(MonotonicDeadline, MillisecondsDropWhatIsLess) {
  EXPECT_EQ(Milliseconds({0, 0}), 0U);
  EXPECT_EQ(Milliseconds({0, 999999}), 0U);
  EXPECT_EQ(Milliseconds({0, 1000000}), 1U);
  EXPECT_EQ(Milliseconds({12, 345678901}), 12345U);
}

TEST(MonotonicDeadline, MillisecondsWrapAfter49Days) {
  EXPECT_EQ(Milliseconds({4294967, 295000000}), UINT32_MAX);
  EXPECT_EQ(Milliseconds({4294967, 296000000}), 0U);
  EXPECT_EQ(Milliseconds({4294968, 0}), 704U);
}

TEST(MonotonicDeadline, TextIsSigned) {
  const std::pair<std::uint32_t, const char*> cases[] = {{0, "0"},
                                                         {12345, "12345"},
                                                         {2147483647, "2147483647"},
                                                         {2147483648, "-2147483648"},
                                                         {UINT32_MAX, "-1"}};
  for (const auto& [deadline, expected] : cases) {
    char text[15] = "";
    FormatDeadline(deadline, text);
    EXPECT_STREQ(text, expected);
  }
}

TEST(MonotonicDeadline, HasComeFromItsMillisecondOn) {
  EXPECT_FALSE(HasDeadlineCome("1000", 999));
  EXPECT_TRUE(HasDeadlineCome("1000", 1000));
  EXPECT_TRUE(HasDeadlineCome("1000", 1001));
}

TEST(MonotonicDeadline, NegativeTextNeverComes) {
  for (const char* text : {"-2147483648", "-1"}) {
    for (const std::uint32_t now : {0U, 2147483647U, 2147483648U, UINT32_MAX}) {
      EXPECT_FALSE(HasDeadlineCome(text, now)) << text << " at " << now;
    }
  }
}

TEST(MonotonicDeadline, TextThatIsNoNumberHasCome) {
  EXPECT_TRUE(HasDeadlineCome("text", 0));
}

// Deadlines

class DeadlineTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    SetClock(100500);
    Ask({"HSET", "object", "field", "value"});
  }
  void SetClock(std::int64_t milliseconds) {
    clocks_.raw_monotonic = {static_cast<std::time_t>(milliseconds / 1000),
                             static_cast<long>(milliseconds % 1000 * 1000000)};
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  std::string Deadline() {
    return Ask({"HGET", kTable, "object"});
  }
  // One key of each type an object can have.
  void StoreObjectOfEachType() {
    Ask({"HSET", "hash", "field", "value"});
    Ask({"SADD", "set", "member"});
    Ask({"RPUSH", "list", "item"});
    Ask({"SET", "string", "text"});
    Ask({"ZADD", "zset", "1", "member"});
  }
  FakeClocks clocks_;
  ScriptedServer server_;
};

class AddMonotonicExpiredTime : public DeadlineTest {};

TEST_F(AddMonotonicExpiredTime, StoresTheClockPlusTheTimeInDecimal) {
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), "object", 5000), 0);
  EXPECT_EQ(Dump(), "hash keyExpiredTime\n  object = 105500\nhash object\n  field = value\n");
}

TEST_F(AddMonotonicExpiredTime, ReplacesAFormerDeadline) {
  Ask({"HSET", kTable, "object", "1"});
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), "object", 1), 0);
  EXPECT_EQ(Deadline(), "100501");
}

TEST_F(AddMonotonicExpiredTime, SendsTheseBytes) {
  server_.WillReply("+string\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(scripted(), "an object", 1), 0);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "an object"}) +
                                    Bulks({"HSET", "keyExpiredTime", "an object", "100501"}));
}

TEST_F(AddMonotonicExpiredTime, AnswersForHashesSetsListsAndStrings) {
  StoreObjectOfEachType();
  for (const char* key : {"hash", "set", "list", "string"}) {
    EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), key, 1), 0);
    EXPECT_EQ(Ask({"HGET", kTable, key}), "100501");
  }
}

TEST_F(AddMonotonicExpiredTime, RefusesWhatIsNoObject) {
  StoreObjectOfEachType();
  server_.WillClose();
  const std::string report = ApiReport("Empty object.");
  ExpectEachFails({
      {"missing", [&] { return zephlaneAddMonotonicExpiredTime(ctx(), "none", 1); }, report},
      {"zset", [&] { return zephlaneAddMonotonicExpiredTime(ctx(), "zset", 1); }, report},
      {"lost", [&] { return zephlaneAddMonotonicExpiredTime(scripted(), "object", 1); }, report},
  });
  EXPECT_EQ(Ask({"EXISTS", kTable}), "0");
}

TEST_F(AddMonotonicExpiredTime, RefusesNullPointersAndNoTime) {
  const std::string report = ApiReport(" invalid input !!");
  ExpectEachFails({
      {"connection", [] { return zephlaneAddMonotonicExpiredTime(nullptr, "object", 1); }, report},
      {"key", [&] { return zephlaneAddMonotonicExpiredTime(scripted(), nullptr, 1); }, report},
      {"0", [&] { return zephlaneAddMonotonicExpiredTime(scripted(), "object", 0); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(AddMonotonicExpiredTime, ClockThatFailsIsReportedAndNothingIsWritten) {
  clocks_.raw_monotonic_fails = true;
  ExpectEachFails({{"clock", [&] { return zephlaneAddMonotonicExpiredTime(ctx(), "object", 1); },
                    ApiReport("Get time failed")}});
  EXPECT_EQ(Ask({"EXISTS", kTable}), "0");
}

TEST_F(AddMonotonicExpiredTime, LosingTheConnectionAtTheWriteIsAFailureWithoutAMessage) {
  server_.WillReply("+hash\r\n");
  server_.WillClose();
  ExpectEachFails(
      {{"lost", [&] { return zephlaneAddMonotonicExpiredTime(scripted(), "object", 1); }, ""}});
}

TEST_F(AddMonotonicExpiredTime, TakesAnErrorReplyToTheWriteAsSuccess) {
  Ask({"SET", kTable, "text"});
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), "object", 1), 0);
}

TEST_F(AddMonotonicExpiredTime, PastTwentyFourDaysADeadlineIsNegativeAndNeverComes) {
  SetClock(2147483647);
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), "object", 1), 0);
  EXPECT_EQ(Deadline(), "-2147483648");
  SetClock(4294967295);
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), "object"), 0);
  EXPECT_EQ(Deadline(), "-2147483648");
}

TEST_F(AddMonotonicExpiredTime, IsCountedFromTheClockOfTheMachine) {
  clocks_.raw_monotonic.reset();
  EXPECT_EQ(zephlaneAddMonotonicExpiredTime(ctx(), "object", 1), 0);
  EXPECT_NE(std::stol(Deadline()), 0);
}

class IsMonotonicTimeExpired : public DeadlineTest {
 protected:
  void SetUp() override {
    DeadlineTest::SetUp();
    Ask({"HSET", kTable, "object", "100501", "other", "1"});
  }
};

TEST_F(IsMonotonicTimeExpired, BeforeTheDeadlineItIsKept) {
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), "object"), 0);
  EXPECT_EQ(Deadline(), "100501");
}

TEST_F(IsMonotonicTimeExpired, DeadlineEqualToNowIsExpired) {
  SetClock(100501);
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), "object"), 1);
}

TEST_F(IsMonotonicTimeExpired, ExpiredDeadlineIsRemovedAndTheObjectStaysAndIsExpiredAgain) {
  SetClock(100502);
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), "object"), 1);
  EXPECT_EQ(Dump(), "hash keyExpiredTime\n  other = 1\nhash object\n  field = value\n");
  SetClock(0);
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), "object"), 1);
}

TEST_F(IsMonotonicTimeExpired, WithoutADeadlineItIsExpiredEveryTime) {
  StoreObjectOfEachType();
  for (const char* key : {"hash", "set", "list", "string", "string"}) {
    EXPECT_EQ(zephlaneIsMonotonicTimeExpired(ctx(), key), 1);
  }
}

TEST_F(IsMonotonicTimeExpired, SendsTheseBytes) {
  server_.WillReply("+list\r\n");
  server_.WillReply(Bulk("100500"));
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(scripted(), "an object"), 1);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "an object"}) +
                                    Bulks({"HGET", "keyExpiredTime", "an object"}) +
                                    Bulks({"HDEL", "keyExpiredTime", "an object"}));
}

TEST_F(IsMonotonicTimeExpired, DeadlineThatCannotBeRemovedIsReportedAndExpired) {
  for (const char* reply : {":0\r\n", "-ERR refused\r\n", ""}) {
    SCOPED_TRACE(reply);
    ScriptedServer server;
    server.WillReply("+hash\r\n");
    server.WillReply(Bulk("100500"));
    *reply != '\0' ? server.WillReply(reply) : server.WillClose();
    int result = -1;
    const auto call = [&] { result = zephlaneIsMonotonicTimeExpired(server.ctx(), "object"); };
    EXPECT_EQ(PrintedBy(call), ApiReport("Delete expired object failed\n"));
    EXPECT_EQ(result, 1);
  }
}

TEST_F(IsMonotonicTimeExpired, RefusesNullPointersWhatIsNoObjectAndAClockThatFails) {
  clocks_.raw_monotonic_fails = true;
  const std::string null = ApiReport(" NULL input !!");
  const std::string empty = ApiReport("Empty object.");
  ExpectEachFails<int>(
      -1, {{"connection", [] { return zephlaneIsMonotonicTimeExpired(nullptr, "object"); }, null},
           {"key", [&] { return zephlaneIsMonotonicTimeExpired(ctx(), nullptr); }, null},
           {"missing", [&] { return zephlaneIsMonotonicTimeExpired(ctx(), "other"); }, empty},
           {"clock", [&] { return zephlaneIsMonotonicTimeExpired(ctx(), "object"); },
            ApiReport("Get time failed")}});
  EXPECT_EQ(Ask({"HGETALL", kTable}), "object\n100501\nother\n1");
}

TEST_F(IsMonotonicTimeExpired, LosingTheConnectionAtTheReadCountsAsNoDeadline) {
  server_.WillReply("+hash\r\n");
  server_.WillClose();
  EXPECT_EQ(zephlaneIsMonotonicTimeExpired(scripted(), "object"), 1);
}

// The script

class ConvertJsonToRedis : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  void Register(const std::string& hash) {
    Ask({"HSET", "redisSHAScripts", "ConvertJsonToRedis", hash});
  }
  ScriptedServer server_;
};

TEST_F(ConvertJsonToRedis, RunsTheLoadedScriptWithTheSourceAndThenTheTarget) {
  Register(Ask({"SCRIPT", "LOAD", "return redis.call('RENAME', KEYS[1], KEYS[2])"}));
  Ask({"SET", "a source", "text"});
  EXPECT_EQ(zephlaneConvertJsonToRedis(ctx(), "a source", "a target"), 0);
  EXPECT_EQ(Ask({"GET", "a target"}), "text");
  EXPECT_EQ(Ask({"EXISTS", "a source"}), "0");
}

TEST_F(ConvertJsonToRedis, SendsTheseBytes) {
  server_.WillReply(Bulk("sha"));
  server_.WillReply("$-1\r\n");
  EXPECT_EQ(zephlaneConvertJsonToRedis(scripted(), "a source", "a target"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "redisSHAScripts", "ConvertJsonToRedis"}) +
                                    Bulks({"evalsha", "sha", "2", "a source", "a target"}));
}

TEST_F(ConvertJsonToRedis, AnyReplyButAnErrorIsSuccess) {
  for (const char* reply : {"$-1\r\n", ":0\r\n", "+STATUS\r\n", "$4\r\ntext\r\n", "*0\r\n"}) {
    SCOPED_TRACE(reply);
    server_.WillReply(Bulk("sha"));
    server_.WillReply(reply);
    EXPECT_EQ(zephlaneConvertJsonToRedis(scripted(), "source", "target"), 0);
  }
}

TEST_F(ConvertJsonToRedis, RefusesNullPointers) {
  const std::string report = ApiReport(" NULL input !!");
  ExpectEachFails({
      {"connection", [] { return zephlaneConvertJsonToRedis(nullptr, "a", "b"); }, report},
      {"source", [&] { return zephlaneConvertJsonToRedis(scripted(), nullptr, "b"); }, report},
      {"target", [&] { return zephlaneConvertJsonToRedis(scripted(), "a", nullptr); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(ConvertJsonToRedis, ScriptThatNobodyLoadedIsReported) {
  ExpectEachFails({{"none", [&] { return zephlaneConvertJsonToRedis(ctx(), "a", "b"); },
                    ApiReport(" Get SHA failed !!")}});
}

TEST_F(ConvertJsonToRedis, LostConnectionIsReported) {
  server_.WillReply(Bulk("sha"));
  server_.WillClose();
  ExpectEachFails({{"lost", [&] { return zephlaneConvertJsonToRedis(scripted(), "a", "b"); },
                    ApiReport(" NULL reply !!")}});
}

TEST_F(ConvertJsonToRedis, ErrorsOfRedisAreReportedInItsWords) {
  Register("0000000000000000000000000000000000000000");
  server_.WillReply(Bulk("sha"));
  server_.WillReply("-ERR 100%s wrong\r\n");
  ExpectEachFails({
      {"unknown", [&] { return zephlaneConvertJsonToRedis(ctx(), "a", "b"); },
       ApiReport(" NOSCRIPT No matching script. Please use EVAL. !!")},
      {"percent", [&] { return zephlaneConvertJsonToRedis(scripted(), "a", "b"); },
       ApiReport(" ERR 100%s wrong !!")},
  });
}

}  // namespace
