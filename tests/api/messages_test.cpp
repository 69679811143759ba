// SPDX-License-Identifier: MIT
//
// Return messages in both forms: what they leave in the store, for how long, and what is left after
// each failure.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/variadicCalls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

bool deletion_fails = false;

}  // namespace

// The linker sends the library's calls of deleteKey() here: it cannot fail by itself once its
// arguments are checked.
extern "C" int __real_deleteKey(redisContext* ctx, const char* key);
extern "C" int __wrap_deleteKey(redisContext* ctx, const char* key);
extern "C" int __wrap_deleteKey(redisContext* ctx, const char* key) {
  return deletion_fails ? 1 : __real_deleteKey(ctx, key);
}

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

// The first two UUIDs of an empty store: of a message, and of its list of arguments.
const std::string kMessage = "10000000-0000-0000-0000-000000000001";
const std::string kList = "10000000-0000-0000-0000-000000000002";
const std::string kStart = "10000000-0000-0000-0000-000000000000";
constexpr char kLastButOne[] = "7fffffff-ffff-ffff-ffff-fffffffffffe";
constexpr char kLast[] = "7fffffff-ffff-ffff-ffff-ffffffffffff";

const std::string kDrawMessage = "GET autoUUID\nSET autoUUID " + kMessage + "\n";
const std::string kDrawList = "GET autoUUID\nSET autoUUID " + kList + "\n";

const char* params[] = {"one", "two words"};

const std::string kMessageNotDeleted = ApiReport("Failed to delete message object!");
const std::string kListNotDeleted = ApiReport("Failed to delete parameter object!");

class MessageTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    // The maximum is read once per process; here, so that no case sends that command.
    char uuid[ZEPHLANE_ID_SIZE] = "";
    ASSERT_EQ(zephlaneGenerateUUID(ctx(), uuid), 0);
    Ask({"DEL", "autoUUID"});
  }
  void TearDown() override {
    deletion_fails = false;
    StoreTest::TearDown();
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  void Script(const std::vector<std::string>& replies) {
    for (const std::string& raw : replies) { server_.WillReply(raw); }
  }
  // Draws of the message's and of the list's UUID.
  void ScriptDraws() {
    Script({Bulk(kStart), "+OK\r\n", Bulk(kMessage), "+OK\r\n"});
  }
  // The store besides the counter.
  std::string Objects() {
    Ask({"DEL", "autoUUID"});
    return Dump();
  }
  ScriptedServer server_;
};

class CreateReturnMessage : public MessageTest {
 protected:
  int Create(redisContext* ctx) {
    return leaveMessageWithTwoArguments(ctx, "coll", "Base.1.0.Done", "one", "two words");
  }
};

TEST_F(CreateReturnMessage, LeavesHashListAndMembership) {
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(ctx()), 0); }), "");
  EXPECT_EQ(Objects(), "hash " + kMessage + "\n  MsgId = Base.1.0.Done\n  Params = " + kList +
                           "\nlist " + kList + "\n  one\n  two words\nset coll\n  " + kMessage +
                           "\n");
}

TEST_F(CreateReturnMessage, WithoutArgumentsNamesAListThatDoesNotExist) {
  EXPECT_EQ(leaveMessageWithoutArguments(ctx(), "coll", "Base.1.0.Done"), 0);
  EXPECT_EQ(Objects(), "hash " + kMessage + "\n  MsgId = Base.1.0.Done\n  Params = " + kList +
                           "\nset coll\n  " + kMessage + "\n");
}

TEST_F(CreateReturnMessage, GivesNothingALifetime) {
  EXPECT_EQ(Create(ctx()), 0);
  for (const std::string& key : {kMessage, kList, std::string("coll")}) {
    EXPECT_EQ(Ask({"TTL", key}), "-1") << key;
  }
}

TEST_F(CreateReturnMessage, SendsOneCommandPerStep) {
  ScriptDraws();
  Script({"+OK\r\n", ":1\r\n", ":2\r\n", ":1\r\n"});
  EXPECT_EQ(Create(scripted()), 0);
  EXPECT_EQ(server_.Received(),
            Bulks({"GET", "autoUUID"}) + Bulks({"SET", "autoUUID", kMessage}) +
                Bulks({"GET", "autoUUID"}) + Bulks({"SET", "autoUUID", kList}) +
                Bulks({"HMSET", kMessage, "MsgId", "Base.1.0.Done", "Params", kList}) +
                Bulks({"RPUSH", kList, "one"}) + Bulks({"RPUSH", kList, "two words"}) +
                Bulks({"SADD", "coll", kMessage}));
}

TEST_F(CreateReturnMessage, TakesPercentSignsAsTheyAre) {
  EXPECT_EQ(leaveMessageWithTwoArguments(ctx(), "my%scoll", "%d", "%s", "%%"), 0);
  EXPECT_EQ(Objects(), "hash " + kMessage + "\n  MsgId = %d\n  Params = " + kList + "\nlist " +
                           kList + "\n  %s\n  %%\nset my%scoll\n  " + kMessage + "\n");
}

TEST_F(CreateReturnMessage, SplitsACollectionKeyAtBlanks) {
  EXPECT_EQ(leaveMessageWithoutArguments(ctx(), "two words", "id"), 0);
  EXPECT_EQ(Ask({"TYPE", "two words"}), "none");
  EXPECT_EQ(Ask({"SISMEMBER", "two", "words"}), "1");
  EXPECT_EQ(Ask({"SISMEMBER", "two", kMessage}), "1");
}

TEST_F(CreateReturnMessage, TakesAMessageIdOf1023Characters) {
  const std::string id(1023, 'm');
  EXPECT_EQ(leaveMessageWithoutArguments(ctx(), "coll", id.c_str()), 0);
  EXPECT_EQ(Ask({"HGET", kMessage, "MsgId"}), id);
}

TEST_F(CreateReturnMessage, RefusesAMessageIdOf1024Characters) {
  const std::string id(1024, 'm');
  ExpectEachFails({{"1024", [&] { return leaveMessageWithoutArguments(ctx(), "coll", id.c_str()); },
                    ApiReport("Return MessageId is too long")}});
  EXPECT_EQ(Dump(), "string autoUUID\n  " + kMessage + "\n");  // one UUID is drawn before
}

TEST_F(CreateReturnMessage, DoesNotWriteAnEmptyMessageId) {
  EXPECT_EQ(leaveMessageWithoutArguments(ctx(), "coll", ""), 0);
  EXPECT_EQ(Objects(),
            "hash " + kMessage + "\n  Params = " + kList + "\nset coll\n  " + kMessage + "\n");
}

TEST_F(CreateReturnMessage, CountsAsCreatedWhenNoCollectionListsIt) {
  Ask({"SET", "coll", "in the way"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(ctx()), 0); }), "");
  EXPECT_EQ(Ask({"EXISTS", kMessage, kList}), "2");
}

TEST_F(CreateReturnMessage, FailsSilentlyWhenNoUuidIsLeft) {
  Ask({"SET", "autoUUID", kLast});
  ExpectEachFails({{"message", [&] { return Create(ctx()); }, ""}});
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kLast + "\n");
  Ask({"SET", "autoUUID", kLastButOne});
  ExpectEachFails({{"list", [&] { return Create(ctx()); }, ""}});
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kLast + "\n");
}

TEST_F(CreateReturnMessage, HasNothingToUndoWhenTheHashIsNotWritten) {
  ScriptDraws();
  Script({"+QUEUED\r\n"});
  ExpectEachFails({{"refused", [&] { return Create(scripted()); }, ""}});
  EXPECT_EQ(server_.Commands(), kDrawMessage + kDrawList + "HMSET " + kMessage +
                                    " MsgId Base.1.0.Done Params " + kList + "\n");
}

TEST_F(CreateReturnMessage, DeletesMessageAndListWhenAnArgumentIsNotPushed) {
  Ask({"SET", kList, "in the way"});
  ExpectEachFails({{"type", [&] { return Create(ctx()); }, ""}});
  EXPECT_EQ(Objects(), "");
}

TEST_F(CreateReturnMessage, DeletesTheMessageBeforeTheListAndPushesNothingMore) {
  ScriptDraws();
  Script({"+OK\r\n", "-ERR no\r\n", ":1\r\n", ":0\r\n"});
  ExpectEachFails({{"refused", [&] { return Create(scripted()); }, ""}});
  EXPECT_TRUE(server_.Commands().ends_with("RPUSH " + kList + " one\nDEL " + kMessage + "\nDEL " +
                                           kList + "\n"));
}

TEST_F(CreateReturnMessage, ReportsWhatCannotBeDeleted) {
  Ask({"SET", kList, "in the way"});
  deletion_fails = true;
  ExpectEachFails(
      {{"deletion", [&] { return Create(ctx()); }, kMessageNotDeleted + kListNotDeleted}});
}

TEST_F(CreateReturnMessage, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"connection", [] { return leaveMessageWithoutArguments(nullptr, "coll", "id"); }, report},
      {"collection", [&] { return leaveMessageWithoutArguments(scripted(), nullptr, "id"); },
       report},
      {"message ID", [&] { return leaveMessageWithoutArguments(scripted(), "coll", nullptr); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateReturnMsgV21 : public MessageTest {
 protected:
  int Create(redisContext* ctx) {
    return zephlaneCreateReturnMsgV21(ctx, "my coll", "Base.1.0.Done", params, 2);
  }
  int CreateWithoutArguments(redisContext* ctx) {
    return zephlaneCreateReturnMsgV21(ctx, "my coll", "Base.1.0.Done", nullptr, 0);
  }
  // As if that time had passed: every deadline comes so much nearer.
  void LetPass(long long milliseconds) {
    for (const std::string& key : {kMessage, kList, std::string("my coll")}) {
      const long long deadline = std::stoll(Ask({"PEXPIRETIME", key}));
      if (deadline > 0) { Ask({"PEXPIREAT", key, std::to_string(deadline - milliseconds)}); }
    }
  }
};

TEST_F(CreateReturnMsgV21, LeavesHashListAndMembership) {
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(ctx()), 0); }), "");
  EXPECT_EQ(Objects(), "hash " + kMessage + "\n  MsgId = Base.1.0.Done\n  Params = " + kList +
                           "\nlist " + kList + "\n  one\n  two words\nset my coll\n  " + kMessage +
                           "\n");
}

TEST_F(CreateReturnMsgV21, WithoutArgumentsWritesNoParamsAndNoList) {
  const std::string objects =
      "hash " + kMessage + "\n  MsgId = Base.1.0.Done\nset my coll\n  " + kMessage + "\n";
  EXPECT_EQ(zephlaneCreateReturnMsgV21(ctx(), "my coll", "Base.1.0.Done", params, 0), 0);
  EXPECT_EQ(Objects(), objects);
  EXPECT_EQ(zephlaneCreateReturnMsgV21(ctx(), "my coll", "Base.1.0.Done", nullptr, 2), 0);
  EXPECT_EQ(Objects(), objects);
}

TEST_F(CreateReturnMsgV21, TakesTextsOfAnyLength) {
  const std::string id(1024, 'm');
  const std::string text(5000, 'p');
  const char* texts[] = {text.c_str(), "", "100%s"};
  EXPECT_EQ(zephlaneCreateReturnMsgV21(ctx(), "my coll", id.c_str(), texts, 3), 0);
  EXPECT_EQ(Ask({"HGET", kMessage, "MsgId"}), id);
  EXPECT_EQ(Ask({"LRANGE", kList, "0", "-1"}), text + "\n\n100%s");
}

TEST_F(CreateReturnMsgV21, IsGoneWithItsCollection31SecondsLater) {
  EXPECT_EQ(Create(ctx()), 0);
  LetPass(31000);
  EXPECT_EQ(Objects(), "");
}

TEST_F(CreateReturnMsgV21, RenewsTheLifetimeOfTheCollection) {
  EXPECT_EQ(CreateWithoutArguments(ctx()), 0);
  LetPass(20000);
  EXPECT_EQ(CreateWithoutArguments(ctx()), 0);
  LetPass(11000);
  EXPECT_EQ(Ask({"EXISTS", kMessage}), "0");
  EXPECT_EQ(Objects(), "hash " + kList + "\n  MsgId = Base.1.0.Done\nset my coll\n  " + kMessage +
                           "\n  " + kList + "\n");
}

// The steps of a message with two arguments, with a reply that lets each succeed and one that makes
// it fail, and what is reported then.
struct Step {
  std::string command;
  std::string success;
  std::string refusal;
  std::string printed;
};

const Step kDrawingSteps[] = {
    {"GET autoUUID", Bulk(kStart), Bulk(kLast), ""},
    {"SET autoUUID " + kMessage, "+OK\r\n", "", ""},
};

const Step kArgumentSteps[] = {
    {"GET autoUUID", Bulk(kMessage), Bulk(kLast), ""},
    {"SET autoUUID " + kList, "+OK\r\n", "", ""},
    {"LLEN " + kList, ":0\r\n", "-ERR no\r\n", "Failed to push param string to list!"},
    {"RPUSH " + kList + " one two words", ":2\r\n", ":3\r\n",
     "Failed to push param string to list!"},
    {"EXISTS " + kList, ":1\r\n", ":0\r\n", "Failed to set expiration time for param array!"},
    {"EXPIRE " + kList + " 30", ":1\r\n", "-ERR no\r\n",
     "Failed to set expiration time for param array!"},
    {"HMSET " + kMessage + " Params " + kList, "+OK\r\n", "+QUEUED\r\n",
     "Failed to stores property: param list uuid"},
};

const Step kMessageSteps[] = {
    {"HMSET " + kMessage + " MsgId Base.1.0.Done", "+OK\r\n", "+QUEUED\r\n",
     "Failed to stores property: message id"},
    {"EXISTS " + kMessage, ":1\r\n", ":0\r\n", "Failed to set expiration time for message object!"},
    {"EXPIRE " + kMessage + " 30", ":1\r\n", "-ERR no\r\n",
     "Failed to set expiration time for message object!"},
    {"SADD my coll " + kMessage, ":1\r\n", "-ERR no\r\n", "Failed to create return message!"},
    {"EXISTS my coll", ":1\r\n", ":0\r\n",
     "Failed to set expiration time for ReturnMessage collection!"},
    {"EXPIRE my coll 30", ":1\r\n", "-ERR no\r\n",
     "Failed to set expiration time for ReturnMessage collection!"},
};

std::vector<Step> Steps(bool with_arguments) {
  std::vector<Step> steps(std::begin(kDrawingSteps), std::end(kDrawingSteps));
  if (with_arguments) {
    steps.insert(steps.end(), std::begin(kArgumentSteps), std::end(kArgumentSteps));
  }
  steps.insert(steps.end(), std::begin(kMessageSteps), std::end(kMessageSteps));
  return steps;
}

// The step `failing` is refused. Returns what the server was sent.
std::string SentUntil(const std::vector<Step>& steps, std::size_t failing,
                      const std::function<int(redisContext*)>& create) {
  ScriptedServer server;
  for (std::size_t i = 0; i < failing; ++i) { server.WillReply(steps[i].success); }
  const Step* const step = failing < steps.size() ? &steps[failing] : nullptr;
  if (step != nullptr) { server.WillReply(step->refusal); }
  const std::string report =
      step != nullptr && !step->printed.empty() ? ApiReport(step->printed) : "";
  int result = -1;
  EXPECT_EQ(PrintedBy([&] { result = create(server.ctx()); }), report);
  EXPECT_EQ(result, step != nullptr ? 1 : 0);
  return server.Commands();
}

std::string CommandsOf(const std::vector<Step>& steps, std::size_t count) {
  std::string commands;
  for (std::size_t i = 0; i < count; ++i) { commands += steps[i].command + "\n"; }
  return commands;
}

const std::string kDeleteList = "DEL " + kList + "\n";
const std::string kDeleteMessage = "DEL " + kMessage + "\n";

TEST_F(CreateReturnMsgV21, SendsOneCommandPerStepAndUndoesFromTheHashOn) {
  const std::vector<Step> steps = Steps(true);
  constexpr std::size_t kFirstUndone = 8;  // the field "Params" of the message
  for (std::size_t failing = 0; failing <= steps.size(); ++failing) {
    if (failing < steps.size() && steps[failing].refusal.empty()) { continue; }
    SCOPED_TRACE(failing < steps.size() ? steps[failing].command : "no step fails");
    const bool undone = failing >= kFirstUndone && failing < steps.size();
    EXPECT_EQ(SentUntil(steps, failing, [&](redisContext* ctx) { return Create(ctx); }),
              CommandsOf(steps, std::min(failing + 1, steps.size())) +
                  (undone ? kDeleteList + kDeleteMessage : ""));
  }
}

TEST_F(CreateReturnMsgV21, WithoutArgumentsUndoesTheHashOnly) {
  const std::vector<Step> steps = Steps(false);
  for (std::size_t failing = 2; failing <= steps.size(); ++failing) {
    SCOPED_TRACE(failing < steps.size() ? steps[failing].command : "no step fails");
    const auto create = [&](redisContext* ctx) { return CreateWithoutArguments(ctx); };
    EXPECT_EQ(SentUntil(steps, failing, create),
              CommandsOf(steps, std::min(failing + 1, steps.size())) +
                  (failing < steps.size() ? kDeleteMessage : ""));
  }
}

TEST_F(CreateReturnMsgV21, KeepsWordsWithBlanksTogether) {
  ScriptDraws();
  Script({":0\r\n", ":2\r\n", ":1\r\n", ":1\r\n", "+OK\r\n", "+OK\r\n", ":1\r\n", ":1\r\n",
          ":1\r\n", ":1\r\n", ":1\r\n"});
  EXPECT_EQ(Create(scripted()), 0);
  EXPECT_TRUE(server_.Received().find(Bulks({"RPUSH", kList, "one", "two words"})) !=
              std::string::npos);
  EXPECT_TRUE(server_.Received().ends_with(Bulks({"SADD", "my coll", kMessage}) +
                                           Bulks({"EXISTS", "my coll"}) +
                                           Bulks({"EXPIRE", "my coll", "30"})));
}

TEST_F(CreateReturnMsgV21, LeavesNothingWhenTheCollectionIsNoSet) {
  Ask({"SET", "my coll", "in the way"});
  ExpectEachFails(
      {{"type", [&] { return Create(ctx()); }, ApiReport("Failed to create return message!")}});
  EXPECT_EQ(Objects(), "string my coll\n  in the way\n");
}

TEST_F(CreateReturnMsgV21, LeavesAMembershipThatWasAddedAlready) {
  ScriptDraws();
  Script({":0\r\n", ":2\r\n", ":1\r\n", ":1\r\n", "+OK\r\n", "+OK\r\n", ":1\r\n", ":1\r\n",
          ":1\r\n", ":0\r\n"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(scripted()), 1); }),
            ApiReport("Failed to set expiration time for ReturnMessage collection!"));
  EXPECT_EQ(server_.Commands().find("SREM"), std::string::npos);
}

TEST_F(CreateReturnMsgV21, FailsAtTheListWithoutDeletingWhatIsInTheWay) {
  Ask({"SET", kList, "in the way"});
  ExpectEachFails(
      {{"type", [&] { return Create(ctx()); }, ApiReport("Failed to push param string to list!")}});
  EXPECT_EQ(Objects(), "string " + kList + "\n  in the way\n");
}

TEST_F(CreateReturnMsgV21, RefusesANullArgumentAndACountBelowZeroAtTheList) {
  const char* with_null[] = {"one", nullptr};
  const auto create = [&](const char** texts, int count) {
    return [=, this] { return zephlaneCreateReturnMsgV21(ctx(), "my coll", "id", texts, count); };
  };
  const std::string report = ApiReport("Failed to push param string to list!");
  ExpectEachFails({
      {"first", create(with_null + 1, 1), report},
      {"second", create(with_null, 2), report},
      {"count", create(params, -1), report},
  });
  EXPECT_EQ(Objects(), "");
}

TEST_F(CreateReturnMsgV21, FailsSilentlyWhenNoUuidIsLeft) {
  Ask({"SET", "autoUUID", kLastButOne});
  ExpectEachFails({{"list", [&] { return Create(ctx()); }, ""}});
  ExpectEachFails({{"message", [&] { return Create(ctx()); }, ""}});
  EXPECT_EQ(Dump(), std::string("string autoUUID\n  ") + kLast + "\n");
}

TEST_F(CreateReturnMsgV21, LeavesNothingWhenMemoryIsOut) {
  // Two allocations in each of these.
  const char* const printed[] = {
      "Failed to push param string to list!",       "calloc!",
      "Failed to stores property: param list uuid", "calloc!",
      "Failed to stores property: message id",      "Failed to create return message!"};
  for (int n = 0; n < 12; ++n) {
    SCOPED_TRACE(n);
    int result = 0;
    EXPECT_EQ(PrintedWithoutMemory(n + 1, [&] { result = Create(ctx()); }),
              ApiReport(printed[n / 2]));
    EXPECT_EQ(result, 1);
    EXPECT_EQ(Objects(), "");
  }
}

TEST_F(CreateReturnMsgV21, ReportsWhatCannotBeDeleted) {
  Ask({"SET", "my coll", "in the way"});
  deletion_fails = true;
  const std::string report = ApiReport("Failed to create return message!");
  ExpectEachFails({
      {"both", [&] { return Create(ctx()); }, report + kListNotDeleted + kMessageNotDeleted},
      {"message", [&] { return CreateWithoutArguments(ctx()); }, report + kMessageNotDeleted},
  });
}

TEST_F(CreateReturnMsgV21, FailsOnALostConnection) {
  Script({Bulk(kStart), "+OK\r\n"});
  server_.WillClose();
  ExpectEachFails({{"lost", [&] { return CreateWithoutArguments(scripted()); },
                    ApiReport("Failed to stores property: message id")}});
}

TEST_F(CreateReturnMsgV21, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  const auto create = [](redisContext* ctx, const char* collection, const char* id) {
    return [=] { return zephlaneCreateReturnMsgV21(ctx, collection, id, params, 2); };
  };
  ExpectEachFails({
      {"connection", create(nullptr, "coll", "id"), report},
      {"collection", create(scripted(), nullptr, "id"), report},
      {"message ID", create(scripted(), "coll", nullptr), report},
  });
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
