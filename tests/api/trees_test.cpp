// SPDX-License-Identifier: MIT
//
// Finding and renaming objects, set commands of joined words, lifetimes and the notices of tree
// changes. Deleting trees and creating several objects have files of their own.
#include <cstddef>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/variadicCalls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::FailingStatus;
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

// Callers on 64-bit and 32-bit machines fill these records themselves.
static_assert(offsetof(ObjectEntry, key) == 0);
static_assert(offsetof(ObjectEntry, type) == sizeof(void*));
static_assert(sizeof(ObjectEntry::type) == 1);
static_assert(offsetof(ObjectEntry, count) == sizeof(void*) + 4);
static_assert(sizeof(ObjectEntry::count) == 4);
static_assert(offsetof(ObjectEntry, items) == sizeof(void*) + 8);
static_assert(sizeof(ObjectEntry) == (sizeof(void*) == 8 ? 24 : 16));

class TreeTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
};

class FindObjectByField : public TreeTest {
 protected:
  void SetUp() override {
    TreeTest::SetUp();
    Ask({"HSET", "chassis", "instanceCollection", "fans", "RuxoMessage", "defaults", "Note",
         "notes"});
    GiveMember("fans", "fan-1", "one");
    GiveMember("defaults", "default-1", "one");
    GiveMember("notes", "note-1", "one");
  }
  void GiveMember(const std::string& set, const std::string& id, const std::string& name) {
    Ask({"SADD", set, id});
    Ask({"HSET", id, "Name", name});
  }
  // What is found: the status, then what the zero-filled buffer holds.
  std::string Found(const char* value, int set_type, const char* field = "Name") {
    char out[1024] = "";
    const int result = zephlaneFindObjectByField(ctx(), "chassis", field, value, set_type, out);
    return std::to_string(result) + " " + out;
  }
};

TEST_F(FindObjectByField, FindsTheMemberOfTheInstanceCollection) {
  GiveMember("fans", "fan-2", "two words");
  EXPECT_EQ(Found("two words", 0), "0 fan-2");
  EXPECT_EQ(Found("one", 0), "0 fan-1");
}

TEST_F(FindObjectByField, OfSetType1ReadsTheSetOfTheMessageProperty) {
  EXPECT_EQ(Found("one", 1), "0 default-1");
  Ask({"HSET", "defaultSettings", "RuxoMessage", "Note"});
  EXPECT_EQ(Found("one", 1), "0 note-1");
}

TEST_F(FindObjectByField, TakesANegativeSetTypeForTheInstanceCollection) {
  EXPECT_EQ(Found("one", -1), "0 fan-1");
}

TEST_F(FindObjectByField, TakesAMissingFieldForTheEmptyValue) {
  EXPECT_EQ(Found("", 0, "NoSuchField"), "0 fan-1");
}

TEST_F(FindObjectByField, ComparesTheFirst1023Characters) {
  const std::string value(1023, 'v');
  GiveMember("fans", "long", value + "a");
  EXPECT_EQ(Found((value + "b").c_str(), 0), "0 long");
  EXPECT_EQ(Found(value.substr(1).c_str(), 0), "1 ");
}

TEST_F(FindObjectByField, AddsNoTerminatorToTheIdFound) {
  char out[] = "xxxxxxxx";
  EXPECT_EQ(zephlaneFindObjectByField(ctx(), "chassis", "Name", "one", 0, out), 0);
  EXPECT_STREQ(out, "fan-1xxx");
}

TEST_F(FindObjectByField, CopiesALongMemberCutTo1023Characters) {
  const std::string id(1100, 'i');
  Ask({"DEL", "fans"});
  Ask({"SADD", "fans", id});
  Ask({"HSET", id.substr(0, 1023), "Name", "long"});
  EXPECT_EQ(Found("long", 0), "0 " + id.substr(0, 1023));
}

TEST_F(FindObjectByField, SendsOneCommandPerStepAndStopsAtTheFirstMatch) {
  server_.WillReply("$-1\r\n");
  server_.WillReply(Bulk("my fans"));
  server_.WillReply(Bulks({"a", "b b", "c"}));
  server_.WillReply(Bulks({"a", "b b", "c"}));
  server_.WillReply(Bulk("y"));
  server_.WillReply(Bulk("x"));
  char out[1024] = "";
  EXPECT_EQ(zephlaneFindObjectByField(scripted(), "my id", "my field", "x", 0, out), 0);
  EXPECT_STREQ(out, "b b");
  EXPECT_EQ(server_.Received(),
            Bulks({"HGET", "defaultSettings", "RuxoMessage"}) +
                Bulks({"HGET", "my id", "instanceCollection"}) + Bulks({"SMEMBERS", "my fans"}) +
                Bulks({"SMEMBERS", "my fans"}) + Bulks({"HGET", "a", "my field"}) +
                Bulks({"HGET", "b b", "my field"}));
}

TEST_F(FindObjectByField, FailsSilentlyWhereNothingIsFound) {
  char out[1024] = "before";
  const auto find = [&](const char* id, const char* value) {
    return zephlaneFindObjectByField(ctx(), id, "Name", value, 0, out);
  };
  Ask({"HSET", "unnamed", "field", "value"});
  Ask({"HSET", "empty", "instanceCollection", "nothing"});
  Ask({"HSET", "wrong", "instanceCollection", "chassis"});
  ExpectEachFails({
      {"no match", [&] { return find("chassis", "two"); }, ""},
      {"no object", [&] { return find("missing", "one"); }, ""},
      {"no collection named", [&] { return find("unnamed", "one"); }, ""},
      {"an empty collection", [&] { return find("empty", ""); }, ""},
      {"a collection that is no set", [&] { return find("wrong", "one"); }, ""},
  });
  EXPECT_STREQ(out, "before");
}

TEST_F(FindObjectByField, FailsWhenTheSetChangesWhileItIsRead) {
  server_.WillReply("$-1\r\n");
  server_.WillReply(Bulk("fans"));
  server_.WillReply(Bulks({"a", "b"}));
  server_.WillReply(Bulks({"a"}));
  EXPECT_EQ(zephlaneFindObjectByField(scripted(), "id", "f", "", 0, nullptr), 1);
}

TEST_F(FindObjectByField, FailsWhenTheConnectionIsLostOrMemoryIsOut) {
  AllocationFault fault(1);
  const int without_memory = zephlaneFindObjectByField(ctx(), "chassis", "Name", "one", 0, nullptr);
  fault.Disarm();
  EXPECT_TRUE(fault.Happened());
  EXPECT_EQ(without_memory, 1);
  server_.WillClose();
  EXPECT_EQ(zephlaneFindObjectByField(scripted(), "id", "f", "", 0, nullptr), 1);
}

TEST_F(FindObjectByField, RefusesNullPointersThenANullConnectionThenTheSetType) {
  const auto find = [&](redisContext* ctx, const char* id, const char* field, const char* value,
                        int set_type) {
    return [=] { return zephlaneFindObjectByField(ctx, id, field, value, set_type, nullptr); };
  };
  const std::string null_pointer = ApiReport("Argument: NULL pointer");
  const std::string set_type = ApiReport("eSetType input error !");
  ExpectEachFails({
      {"object", find(scripted(), nullptr, "f", "v", 0), null_pointer},
      {"field", find(scripted(), "o", nullptr, "v", 0), null_pointer},
      {"value", find(scripted(), "o", "f", nullptr, 0), null_pointer},
      {"value and connection", find(nullptr, "o", "f", nullptr, 2), null_pointer},
      {"connection", find(nullptr, "o", "f", "v", 2), ApiReport("Argument: redis context")},
      {"set type 2", find(scripted(), "o", "f", "v", 2), set_type},
      {"set type 4", find(scripted(), "o", "f", "v", 4), set_type},
  });
  EXPECT_EQ(server_.Received(), "");
}

class RenameObjectID : public TreeTest {};

TEST_F(RenameObjectID, MovesTheObject) {
  Ask({"HSET", "old name", "f", "v"});
  EXPECT_EQ(zephlaneRenameObjectID(ctx(), "old name", "new name"), 0);
  EXPECT_EQ(Dump(), "hash new name\n  f = v\n");
}

TEST_F(RenameObjectID, SendsOneCommand) {
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(zephlaneRenameObjectID(scripted(), "old name", "new"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"RENAME", "old name", "new"}));
}

TEST_F(RenameObjectID, ReportsAMissingObjectAndALostConnection) {
  const std::string report = ApiReport("Failed to rename object ID to the new ID");
  server_.WillClose();
  ExpectEachFails({
      {"missing", [&] { return zephlaneRenameObjectID(ctx(), "missing", "new"); }, report},
      {"lost", [&] { return zephlaneRenameObjectID(scripted(), "old", "new"); }, report},
  });
}

TEST_F(RenameObjectID, RefusesANullConnectionThenTheSourceThenTheNewId) {
  ExpectEachFails({
      {"all", [] { return zephlaneRenameObjectID(nullptr, nullptr, nullptr); },
       ApiReport("Pointer to redis context is NULL!")},
      {"both", [&] { return zephlaneRenameObjectID(scripted(), nullptr, nullptr); },
       ApiReport("Pointer to source object ID is NULL!")},
      {"new", [&] { return zephlaneRenameObjectID(scripted(), "old", nullptr); },
       ApiReport("Pointer to new object ID is NULL!")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class SetAdd : public TreeTest {};

TEST_F(SetAdd, CalledFromCAddsTheMembersUpToNull) {
  const char* const members[] = {"b", "c", "d"};
  EXPECT_EQ(addOneMember(ctx(), "set", "a"), 0);
  EXPECT_EQ(addThreeMembers(ctx(), "set", members), 0);
  EXPECT_EQ(Dump(), "set set\n  a\n  b\n  c\n  d\n");
}

TEST_F(SetAdd, SendsOneCommand) {
  server_.WillReply(":2\r\n");
  EXPECT_EQ(zephlaneSADD(scripted(), "key", "a", "b", nullptr), 0);
  EXPECT_EQ(server_.Received(), Bulks({"SADD", "key", "a", "b"}));
}

TEST_F(SetAdd, OfAMemberThatIsThereIsSuccess) {
  Ask({"SADD", "set", "a"});
  EXPECT_EQ(zephlaneSADD(ctx(), "set", "a", nullptr), 0);
}

TEST_F(SetAdd, SplitsMembersAtBlanks) {
  EXPECT_EQ(zephlaneSADD(ctx(), "set", "two words", nullptr), 0);
  EXPECT_EQ(Dump(), "set set\n  two\n  words\n");
}

TEST_F(SetAdd, TakesPercentSignsAsTheyAre) {
  EXPECT_EQ(zephlaneSADD(ctx(), "50%s", "%", "%%", "%d%n", "100%", nullptr), 0);
  EXPECT_EQ(Dump(), "set 50%s\n  %\n  %%\n  %d%n\n  100%\n");
}

TEST_F(SetAdd, CutsTextsToTheirLengthModulo256) {
  const std::string long_text = "ab" + std::string(256, 'x');
  EXPECT_EQ(zephlaneSADD(ctx(), "set", std::string(255, 'y').c_str(), long_text.c_str(), nullptr),
            0);
  EXPECT_EQ(Dump(), "set set\n  ab\n  " + std::string(255, 'y') + "\n");
}

TEST_F(SetAdd, TakesAMemberOf256CharactersForNone) {
  EXPECT_EQ(zephlaneSADD(ctx(), "set", std::string(256, 'x').c_str(), nullptr), 1);
  EXPECT_EQ(Dump(), "");
}

// Key, two members and a last one of `last_length` characters that make up 768 of the joined text
// and the rest of it.
int AddJoined(redisContext* ctx, std::size_t last_length) {
  const std::string key(255, 'k');
  const std::string a(255, 'a');
  const std::string b(255, 'b');
  const std::string last(last_length, 'c');
  return zephlaneSADD(ctx, key.c_str(), a.c_str(), b.c_str(), last.c_str(), nullptr);
}

TEST_F(SetAdd, TakesAJoinedTextOf1017Characters) {
  EXPECT_EQ(AddJoined(ctx(), 248), 0);
  EXPECT_EQ(Ask({"SCARD", std::string(255, 'k')}), "3");
}

TEST_F(SetAdd, RefusesAJoinedTextOf1018Characters) {
  ExpectEachFails(
      {{"1018", [&] { return AddJoined(scripted(), 249); }, ApiReport("command length overflow")}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(SetAdd, FailsSilentlyWhenRedisDoesNotAdd) {
  Ask({"HSET", "hash", "f", "v"});
  server_.WillClose();
  ExpectEachFails({
      {"no member", [&] { return addNoMember(ctx(), "set"); }, ""},
      {"wrong type", [&] { return addOneMember(ctx(), "hash", "a"); }, ""},
      {"lost", [&] { return addOneMember(scripted(), "set", "a"); }, ""},
  });
}

TEST_F(SetAdd, FailsWhenMemoryIsOut) {
  AllocationFault fault(1, true);
  const int result = zephlaneSADD(ctx(), "set", "member", nullptr);
  fault.Disarm();
  EXPECT_TRUE(fault.Happened());
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Dump(), "");
}

TEST_F(SetAdd, RefusesANullKeyBeforeANullConnection) {
  ExpectEachFails({
      {"key", [&] { return addOneMember(scripted(), nullptr, "a"); },
       ApiReport("Argument: NULL pointer")},
      {"both", [] { return addOneMember(nullptr, nullptr, "a"); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return addOneMember(nullptr, "set", "a"); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

// The same difference asked for in both ways; the array's count is `keys`'.
struct DifferenceCase {
  const char* what;
  std::vector<std::string> keys;
  int result;
};

int DifferenceOf(redisContext* ctx, const std::vector<std::string>& keys) {
  std::vector<const char*> texts;
  for (const std::string& key : keys) { texts.push_back(key.c_str()); }
  return zephlaneSdiffKeyV21(ctx, texts.data(), static_cast<int>(texts.size()));
}

class SetDifference : public TreeTest {
 protected:
  void SetUp() override {
    TreeTest::SetUp();
    Ask({"SADD", "ab", "a", "b"});
    Ask({"SADD", "a", "a"});
    Ask({"SADD", "b", "b"});
    Ask({"SADD", "100%s", "p"});
    Ask({"SADD", std::string(44, 'l'), "l"});
  }
  // Keys that make up 768 characters of the joined text, and one of `last_length` more.
  static std::vector<std::string> Keys(std::size_t last_length) {
    return {std::string(255, 'k'), std::string(255, 'l'), std::string(255, 'm'),
            std::string(last_length, 'n')};
  }
};

TEST_F(SetDifference, TellsWhetherTheFirstSetHasMembersOfItsOwn) {
  const DifferenceCase cases[] = {
      {"one set", {"ab"}, 1},
      {"a missing set", {"none"}, 0},
      {"more than the other", {"ab", "a"}, 1},
      {"all in the others", {"ab", "a", "b"}, 0},
      {"a percent sign", {"100%s"}, 1},
      {"a percent sign among others", {"b", "100%s", "b"}, 0},
      {"a key of 300 characters, cut to 44", {std::string(300, 'l')}, 1},
      {"a key of 256 characters, which is none", {"ab", std::string(256, 'l')}, 1},
  };
  for (const DifferenceCase& difference : cases) {
    SCOPED_TRACE(difference.what);
    const auto key = [&](std::size_t i) {
      return i < difference.keys.size() ? difference.keys[i].c_str() : nullptr;
    };
    EXPECT_EQ(DifferenceOf(ctx(), difference.keys), difference.result);
    EXPECT_EQ(zephlaneSdiffKey(ctx(), key(0), key(1), key(2), nullptr), difference.result);
  }
}

TEST_F(SetDifference, CalledFromCTakesTheKeysUpToNull) {
  const char* const keys[] = {"ab", "a", "b"};
  EXPECT_EQ(differenceOfOneKey(ctx(), "ab"), 1);
  EXPECT_EQ(differenceOfThreeKeys(ctx(), keys), 0);
}

TEST_F(SetDifference, SendsOneCommand) {
  server_.WillReply("*0\r\n");
  server_.WillReply("*0\r\n");
  EXPECT_EQ(zephlaneSdiffKey(scripted(), "x", "50%d", nullptr), 0);
  EXPECT_EQ(DifferenceOf(scripted(), {"x", "50%d"}), 0);
  const std::string command = Bulks({"sdiff", "x", "50%d"});
  EXPECT_EQ(server_.Received(), command + command);
}

TEST_F(SetDifference, TakesKeysThatMakeUp1016Characters) {
  const std::vector<std::string> keys = Keys(247);
  EXPECT_EQ(DifferenceOf(ctx(), keys), 0);
  EXPECT_EQ(zephlaneSdiffKey(ctx(), keys[0].c_str(), keys[1].c_str(), keys[2].c_str(),
                             keys[3].c_str(), nullptr),
            0);
}

TEST_F(SetDifference, RefusesKeysThatMakeUp1017Characters) {
  const std::vector<std::string> keys = Keys(248);
  ExpectEachFails<int>(-1, {{"variadic",
                             [&] {
                               return zephlaneSdiffKey(scripted(), keys[0].c_str(), keys[1].c_str(),
                                                       keys[2].c_str(), keys[3].c_str(), nullptr);
                             },
                             ApiReport("command length overflow")},
                            {"array", [&] { return DifferenceOf(scripted(), keys); },
                             ApiReport("command length overflow\n")}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(SetDifference, OfNoKeysSendsTheWordAlone) {
  const char* keys[] = {nullptr};
  server_.WillReply("-ERR wrong number of arguments\r\n");
  EXPECT_EQ(zephlaneSdiffKeyV21(scripted(), keys, 0), -1);
  EXPECT_EQ(server_.Received(), Bulks({"sdiff"}));
}

TEST_F(SetDifference, FailsSilentlyWhenRedisDoesNotAnswer) {
  Ask({"HSET", "hash", "f", "v"});
  server_.WillClose();
  ExpectEachFails<int>(-1,
                       {
                           {"type", [&] { return differenceOfOneKey(ctx(), "hash"); }, ""},
                           {"type in an array", [&] { return DifferenceOf(ctx(), {"hash"}); }, ""},
                           {"lost", [&] { return differenceOfOneKey(scripted(), "a"); }, ""},
                           {"lost too", [&] { return DifferenceOf(scripted(), {"a"}); }, ""},
                       });
}

TEST_F(SetDifference, FailsWhenMemoryIsOut) {
  const char* keys[] = {"ab"};
  AllocationFault fault(1, true);
  const int variadic = zephlaneSdiffKey(ctx(), "ab", nullptr);
  const int array = zephlaneSdiffKeyV21(ctx(), keys, 1);
  fault.Disarm();
  EXPECT_EQ(variadic, -1);
  EXPECT_EQ(array, -1);
}

TEST_F(SetDifference, RefusesNullPointersAndIsSilentAboutTheConnection) {
  const char* keys[] = {"a", nullptr};
  const std::string array_report = ApiReport("Argument is NULL pointer!");
  ExpectEachFails<int>(
      -1, {
              {"key", [&] { return differenceOfOneKey(scripted(), nullptr); },
               ApiReport("Argument: NULL pointer")},
              {"both", [] { return differenceOfOneKey(nullptr, nullptr); },
               ApiReport("Argument: NULL pointer")},
              {"connection", [] { return differenceOfOneKey(nullptr, "a"); }, ""},
              {"array", [&] { return zephlaneSdiffKeyV21(scripted(), nullptr, 1); }, array_report},
              {"connection of an array", [&] { return zephlaneSdiffKeyV21(nullptr, keys, 1); },
               array_report},
              {"key in an array", [&] { return zephlaneSdiffKeyV21(scripted(), keys, 2); },
               array_report},
          });
  EXPECT_EQ(server_.Received(), "");
}

class HashLifetime : public TreeTest {};

TEST_F(HashLifetime, IsKeptInACompanion) {
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneHashAppendTTLObject(scripted(), "a hash", 20), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HSET", "a hash", "TtlId", "a hash-TTL"}) +
                                    Bulks({"HSET", "a hash-TTL", "TtlSec", "20"}) +
                                    Bulks({"EXPIRE", "a hash-TTL", "20"}));
}

TEST_F(HashLifetime, EndsWithTheCompanionWhileTheHashStays) {
  Ask({"HSET", "hash", "f", "v"});
  EXPECT_EQ(zephlaneHashAppendTTLObject(ctx(), "hash", 1000), 0);
  EXPECT_EQ(zephlaneIsHashOverdue(ctx(), "hash"), 0);
  Ask({"PEXPIREAT", "hash-TTL", "1"});
  EXPECT_EQ(zephlaneIsHashOverdue(ctx(), "hash"), 1);
  EXPECT_EQ(Dump(), "hash hash\n  TtlId = hash-TTL\n  f = v\n");
}

TEST_F(HashLifetime, IsGivenWhateverRedisAnswers) {
  server_.WillClose();
  EXPECT_EQ(zephlaneHashAppendTTLObject(scripted(), "hash", 20), 0);
}

TEST_F(HashLifetime, RefusesNullPointersAndNoTimeSilently) {
  ExpectEachFails({
      {"connection", [] { return zephlaneHashAppendTTLObject(nullptr, "hash", 20); }, ""},
      {"key", [&] { return zephlaneHashAppendTTLObject(scripted(), nullptr, 20); }, ""},
      {"time", [&] { return zephlaneHashAppendTTLObject(scripted(), "hash", 0); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(HashLifetime, ThatWasNeverGivenIsOver) {
  EXPECT_EQ(zephlaneIsHashOverdue(ctx(), "missing"), 1);
}

TEST_F(HashLifetime, IsNotOverWithoutConnectionKeyOrReply) {
  server_.WillClose();
  ExpectEachFails<int>(0,
                       {
                           {"connection", [] { return zephlaneIsHashOverdue(nullptr, "k"); }, ""},
                           {"key", [&] { return zephlaneIsHashOverdue(scripted(), nullptr); }, ""},
                           {"reply", [&] { return zephlaneIsHashOverdue(scripted(), "k"); }, ""},
                       });
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "k-TTL", "TtlSec"}));
}

class TreeNotice : public TreeTest {
 protected:
  // What `call` publishes; one reply is given.
  std::string Published(const std::function<int(redisContext*)>& call) {
    ScriptedServer server;
    server.WillReply(":0\r\n");
    EXPECT_EQ(call(server.ctx()), 0);
    return server.Received();
  }
};

TEST_F(TreeNotice, OfACollectionHasActionTextsAndFlag) {
  EXPECT_EQ(Published([](redisContext* ctx) {
              return zephlaneRenewCollection(ctx, 0, "first", "two words", 1);
            }),
            Bulks({"PUBLISH", "WebServiceUpdateTree", "0 first two words 1"}));
  EXPECT_EQ(
      Published([](redisContext* ctx) { return zephlaneRenewCollection(ctx, 1, "a", "", 0); }),
      Bulks({"PUBLISH", "WebServiceUpdateTree", "1 a  0"}));
}

TEST_F(TreeNotice, OfAnObjectUriHasActionAndTexts) {
  EXPECT_EQ(Published([](redisContext* ctx) { return zephlaneRenewObjectURI(ctx, 2, "a%", "/b"); }),
            Bulks({"PUBLISH", "WebServiceUpdateTree", "2 a% /b"}));
  EXPECT_EQ(Published([](redisContext* ctx) { return zephlaneRenewObjectURI(ctx, 3, "a", "/b"); }),
            Bulks({"PUBLISH", "WebServiceUpdateTree", "3 a /b"}));
}

TEST_F(TreeNotice, OfACollectionTakesANegativeAction) {
  EXPECT_EQ(
      Published([](redisContext* ctx) { return zephlaneRenewCollection(ctx, -1, "a", "b", 0); }),
      Bulks({"PUBLISH", "WebServiceUpdateTree", "-1 a b 0"}));
}

TEST_F(TreeNotice, IsCutTo98Characters) {
  for (const std::size_t length : {91, 92, 93, 200}) {
    SCOPED_TRACE(length);
    const std::string text(length, 't');
    EXPECT_EQ(Published([&](redisContext* ctx) {
                return zephlaneRenewCollection(ctx, 0, text.c_str(), "ab", 1);
              }),
              Bulks({"PUBLISH", "WebServiceUpdateTree", ("0 " + text + " ab 1").substr(0, 98)}));
    EXPECT_EQ(Published([&](redisContext* ctx) {
                return zephlaneRenewObjectURI(ctx, 2, "abcd", text.c_str());
              }),
              Bulks({"PUBLISH", "WebServiceUpdateTree", ("2 abcd " + text).substr(0, 98)}));
  }
}

TEST_F(TreeNotice, FailsSilentlyOnALostConnection) {
  server_.WillClose();
  ExpectEachFails({
      {"collection", [&] { return zephlaneRenewCollection(scripted(), 0, "a", "b", 0); }, ""},
      {"URI", [&] { return zephlaneRenewObjectURI(scripted(), 2, "a", "b"); }, ""},
  });
}

TEST_F(TreeNotice, OfACollectionRefusesBadArguments) {
  const auto renew = [&](redisContext* ctx, int action, const char* a, const char* b,
                         unsigned char flag) {
    return [=] { return zephlaneRenewCollection(ctx, action, a, b, flag); };
  };
  const std::string report = ApiReport("Arguments");
  ExpectEachFails({
      {"connection", renew(nullptr, 0, "a", "b", 0), report},
      {"first text", renew(scripted(), 0, nullptr, "b", 0), report},
      {"second text", renew(scripted(), 0, "a", nullptr, 0), report},
      {"action 2", renew(scripted(), 2, "a", "b", 0), report},
      {"flag 2", renew(scripted(), 0, "a", "b", 2), report},
      {"flag 255", renew(scripted(), 0, "a", "b", 255), report},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(TreeNotice, OfAnObjectUriRefusesBadArguments) {
  const auto renew = [&](redisContext* ctx, int action, const char* a, const char* b) {
    return [=] { return zephlaneRenewObjectURI(ctx, action, a, b); };
  };
  const std::string report = ApiReport("Arguments");
  ExpectEachFails({
      {"connection", renew(nullptr, 2, "a", "b"), report},
      {"first text", renew(scripted(), 2, nullptr, "b"), report},
      {"second text", renew(scripted(), 2, "a", nullptr), report},
      {"action 1", renew(scripted(), 1, "a", "b"), report},
      {"action 4", renew(scripted(), 4, "a", "b"), report},
      {"action -1", renew(scripted(), -1, "a", "b"), report},
  });
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
