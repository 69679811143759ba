// SPDX-License-Identifier: MIT
//
// Creating and copying objects; deleting them is in objectsDeletion_test.cpp.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"
#include "support/text.h"

#include <zephlaneAPI.h>

namespace {

bool ttl_fails = false;

}  // namespace

// The linker sends the library's calls of addTtlToHash() here: it cannot fail by itself once the
// arguments are checked.
extern "C" int __real_addTtlToHash(redisContext* ctx, const char* key, int seconds);
extern "C" int __wrap_addTtlToHash(redisContext* ctx, const char* key, int seconds);
extern "C" int __wrap_addTtlToHash(redisContext* ctx, const char* key, int seconds) {
  return ttl_fails ? 1 : __real_addTtlToHash(ctx, key, seconds);
}

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::Pointers;
using zephlane::test::PrintedBy;
using zephlane::test::PrintedWithoutMemory;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

constexpr char kUuid[] = "1c9d2e3f-aaaa-bbbb-cccc-0123456789ab";

// Replies that make a write fail: an ERROR would count as success.
constexpr char kRefusal[] = "+QUEUED\r\n";

SetData Member(std::string_view text) {
  SetData member{};
  zephlane::CopyCut(member.aObjectID, text);
  return member;
}

// The pairs as C callers pass them; the texts outlive the call.
ExtendedPair Pair(const char* field, const char* value) {
  return {const_cast<char*>(field), const_cast<char*>(value)};
}

class ObjectTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
};

class UriUuidMap : public ObjectTest {};

TEST_F(UriUuidMap, HoldsTheUuidOfAUriThatIsLongerThanIt) {
  const std::string uri = "/objects/systems/a-system-of-some-length/parts";
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), uri.c_str(), kUuid), 0);
  EXPECT_EQ(Dump(), "hash UriUuidMap\n  " + uri + " = " + kUuid + "\n");
}

TEST_F(UriUuidMap, CutsAUuidToTheLengthOfAShorterUri) {
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), "/a", kUuid), 0);
  EXPECT_EQ(Dump(), "hash UriUuidMap\n  /a = 1c\n");
}

TEST_F(UriUuidMap, OverwritesAnEarlierMapping) {
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), "/abc", "old"), 0);
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), "/abc", "new"), 0);
  EXPECT_EQ(Dump(), "hash UriUuidMap\n  /abc = new\n");
}

TEST_F(UriUuidMap, OfAnEmptyUriStoresNothingAndIsSuccess) {
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), "", kUuid), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(UriUuidMap, AcceptsTextsOf1023Characters) {
  const std::string uri(1023, 'u');
  const std::string uuid(1023, 'v');
  EXPECT_EQ(zephlaneCreateUriUuidMap(ctx(), uri.c_str(), uuid.c_str()), 0);
  EXPECT_EQ(Dump(), "hash UriUuidMap\n  " + uri + " = " + uuid + "\n");
}

TEST_F(UriUuidMap, RefusesTextsOf1024CharactersTheUriFirst) {
  const std::string text(1024, 'x');
  ExpectEachFails({
      {"URI", [&] { return zephlaneCreateUriUuidMap(ctx(), text.c_str(), "uuid"); },
       ApiReport("URI length is too long")},
      {"UUID", [&] { return zephlaneCreateUriUuidMap(ctx(), "/uri", text.c_str()); },
       ApiReport("UUID length is too long")},
      {"both", [&] { return zephlaneCreateUriUuidMap(ctx(), text.c_str(), text.c_str()); },
       ApiReport("URI length is too long")},
  });
  EXPECT_EQ(Dump(), "");
}

TEST_F(UriUuidMap, SendsOnePairAndSaysWithoutPrefixThatItFailed) {
  server_.WillReply(kRefusal);
  ExpectEachFails({{"refused", [&] { return zephlaneCreateUriUuidMap(scripted(), "/a b", "1 2"); },
                    " Create URI & UUID mapping table Failed !!!\n"}});
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", "UriUuidMap", "/a b", "1 2"}));
}

TEST_F(UriUuidMap, RefusesNullPointersBeforeANullConnection) {
  ExpectEachFails({
      {"URI", [&] { return zephlaneCreateUriUuidMap(scripted(), nullptr, "uuid"); },
       ApiReport("Argument: NULL pointer")},
      {"UUID", [&] { return zephlaneCreateUriUuidMap(scripted(), "/uri", nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"UUID and connection", [] { return zephlaneCreateUriUuidMap(nullptr, "/uri", nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneCreateUriUuidMap(nullptr, "/uri", "uuid"); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateHashTable : public ObjectTest {
 protected:
  const InstanceData pairs_[3] = {{"Name", "two words"}, {"Empty", ""}, {"State", "on"}};
};

TEST_F(CreateHashTable, WritesThePairsWhoseValueIsNotEmpty) {
  EXPECT_EQ(zephlaneCreateHashTable(ctx(), "object", pairs_, 3), 0);
  EXPECT_EQ(Dump(), "hash object\n  Name = two words\n  State = on\n");
}

TEST_F(CreateHashTable, WithCountZeroIsSuccessAndWritesNothing) {
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneCreateHashTable(ctx(), "object", pairs_, 0), 0); }),
            "");
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateHashTable, OnAKeyOfAnotherTypeIsSuccessAndChangesNothing) {
  Ask({"SADD", "object", "member"});
  EXPECT_EQ(zephlaneCreateHashTable(ctx(), "object", pairs_, 3), 0);
  EXPECT_EQ(Dump(), "set object\n  member\n");
}

TEST_F(CreateHashTable, SendsOneCommandAndReportsItsKeyWithAnEmptyLineWhenItFails) {
  server_.WillReply(kRefusal);
  ExpectEachFails(
      {{"refused", [&] { return zephlaneCreateHashTable(scripted(), "object", pairs_, 3); },
        ApiReport("object: failed to create/add !!!\n")}});
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", "object", "Name", "two words", "State", "on"}));
}

TEST_F(CreateHashTable, RefusesNullPointersBeforeANullConnection) {
  ExpectEachFails({
      {"key", [&] { return zephlaneCreateHashTable(scripted(), nullptr, pairs_, 1); },
       ApiReport("Argument: NULL pointer")},
      {"pairs", [&] { return zephlaneCreateHashTable(scripted(), "object", nullptr, 1); },
       ApiReport("Argument: NULL pointer")},
      {"pairs and connection", [] { return zephlaneCreateHashTable(nullptr, "o", nullptr, 1); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [&] { return zephlaneCreateHashTable(nullptr, "object", pairs_, 1); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateExtendedHashTable : public ObjectTest {
 protected:
  const ExtendedPair pairs_[2] = {Pair("Name", "two words"), Pair("Empty", "")};
};

TEST_F(CreateExtendedHashTable, WritesValuesOfAnyLengthAndEmptyOnesToo) {
  const std::string field(1500, 'f');
  const std::string value(3000, 'v');
  const ExtendedPair pairs[] = {Pair("Empty", ""), Pair(field.c_str(), value.c_str())};
  EXPECT_EQ(zephlaneCreateExtendedHashTable(ctx(), "object", pairs, 2), 0);
  EXPECT_EQ(Dump(), "hash object\n  Empty = \n  " + field + " = " + value + "\n");
}

TEST_F(CreateExtendedHashTable, SendsOneCommandAndTakesAnErrorReplyAsSuccess) {
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  EXPECT_EQ(zephlaneCreateExtendedHashTable(scripted(), "object", pairs_, 2), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", "object", "Name", "two words", "Empty", ""}));
}

TEST_F(CreateExtendedHashTable, ReportsWhatTheCommandLayerRefuses) {
  server_.WillReply(kRefusal);
  const ExtendedPair no_value[] = {Pair("Name", "value"), Pair("None", nullptr)};
  const ExtendedPair no_field[] = {Pair(nullptr, "value")};
  const std::string report = ApiReport("Failed to create extended hash table.");
  ExpectEachFails({
      {"by Redis", [&] { return zephlaneCreateExtendedHashTable(scripted(), "object", pairs_, 2); },
       report},
      {"count 0", [&] { return zephlaneCreateExtendedHashTable(ctx(), "object", pairs_, 0); },
       report},
      {"NULL value", [&] { return zephlaneCreateExtendedHashTable(ctx(), "object", no_value, 2); },
       report},
      {"NULL field", [&] { return zephlaneCreateExtendedHashTable(ctx(), "object", no_field, 1); },
       report},
  });
  EXPECT_EQ(Dump(), "");
}

TEST_F(CreateExtendedHashTable, ReportsThatMemoryIsOutForEachOfItsTwoArrays) {
  const auto create = [&] {
    EXPECT_EQ(zephlaneCreateExtendedHashTable(scripted(), "object", pairs_, 2), 1);
  };
  EXPECT_EQ(PrintedWithoutMemory(1, create), ApiReport("malloc"));
  EXPECT_EQ(PrintedWithoutMemory(2, create), ApiReport("malloc"));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateExtendedHashTable, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachFails({
      {"key", [&] { return zephlaneCreateExtendedHashTable(scripted(), nullptr, pairs_, 1); },
       report},
      {"connection", [&] { return zephlaneCreateExtendedHashTable(nullptr, "object", pairs_, 1); },
       report},
      {"pairs", [&] { return zephlaneCreateExtendedHashTable(scripted(), "object", nullptr, 1); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateSetTable : public ObjectTest {
 protected:
  const SetData members_[2] = {Member("two words"), Member("b")};
};

TEST_F(CreateSetTable, AddsTheMembers) {
  EXPECT_EQ(zephlaneCreateSetTable(ctx(), "set", members_, 2), 0);
  EXPECT_EQ(Dump(), "set set\n  b\n  two words\n");
}

TEST_F(CreateSetTable, OfMembersThatArePresentIsSuccess) {
  Ask({"SADD", "set", "b", "c"});
  EXPECT_EQ(zephlaneCreateSetTable(ctx(), "set", members_, 2), 0);
  EXPECT_EQ(Dump(), "set set\n  b\n  c\n  two words\n");
}

TEST_F(CreateSetTable, LeavesAnEmptyMemberOut) {
  const SetData members[] = {Member("a"), Member("")};
  EXPECT_EQ(zephlaneCreateSetTable(ctx(), "set", members, 2), 0);
  EXPECT_EQ(Dump(), "set set\n  a\n");
}

TEST_F(CreateSetTable, FailsForAnEmptyMemberWhereSomeMembersArePresent) {
  Ask({"SADD", "set", "a"});
  const SetData members[] = {Member("a"), Member(""), Member("b")};
  ExpectEachFails(
      {{"empty member", [&] { return zephlaneCreateSetTable(ctx(), "set", members, 3); },
        " Create Set \"set\" Failed !!!\n"}});
  EXPECT_EQ(Dump(), "set set\n  a\n  b\n");
}

TEST_F(CreateSetTable, SendsOneCommandAndSaysWithoutPrefixThatItFailed) {
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  ExpectEachFails(
      {{"refused", [&] { return zephlaneCreateSetTable(scripted(), "my set", members_, 2); },
        " Create Set \"my set\" Failed !!!\n"}});
  EXPECT_EQ(server_.Received(), Bulks({"SADD", "my set", "two words", "b"}));
}

TEST_F(CreateSetTable, RefusesNullPointersBeforeANullConnection) {
  ExpectEachFails({
      {"key", [&] { return zephlaneCreateSetTable(scripted(), nullptr, members_, 1); },
       ApiReport("Argument: NULL pointer")},
      {"members", [&] { return zephlaneCreateSetTable(scripted(), "set", nullptr, 1); },
       ApiReport("Argument: NULL pointer")},
      {"members and connection", [] { return zephlaneCreateSetTable(nullptr, "s", nullptr, 1); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [&] { return zephlaneCreateSetTable(nullptr, "set", members_, 1); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateExtendedSetTable : public ObjectTest {
 protected:
  const Pointers members_{"two words", "b"};
};

TEST_F(CreateExtendedSetTable, AddsMembersOfAnyLengthAndEmptyOnesToo) {
  const std::string member(3000, 'm');
  const Pointers members{"", member.c_str()};
  EXPECT_EQ(zephlaneCreateExtendedSetTable(ctx(), "set", members.Get(), 2), 0);
  EXPECT_EQ(Dump(), "set set\n  \n  " + member + "\n");
}

TEST_F(CreateExtendedSetTable, OfMembersThatArePresentIsSuccess) {
  Ask({"SADD", "set", "b", "two words"});
  EXPECT_EQ(zephlaneCreateExtendedSetTable(ctx(), "set", members_.Get(), 2), 0);
  EXPECT_EQ(Dump(), "set set\n  b\n  two words\n");
}

TEST_F(CreateExtendedSetTable, ReportsAFailureInTheWordingOfHashes) {
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  char* const none[] = {nullptr};
  const std::string report = ApiReport("Failed to create extended hash table.");
  ExpectEachFails({
      {"by Redis",
       [&] { return zephlaneCreateExtendedSetTable(scripted(), "set", members_.Get(), 2); },
       report},
      {"count 0",
       [&] { return zephlaneCreateExtendedSetTable(scripted(), "set", members_.Get(), 0); },
       report},
      {"NULL member", [&] { return zephlaneCreateExtendedSetTable(scripted(), "set", none, 1); },
       report},
  });
  EXPECT_EQ(server_.Received(), Bulks({"SADD", "set", "two words", "b"}));
}

TEST_F(CreateExtendedSetTable, ReportsThatMemoryIsOut) {
  const auto create = [&] {
    EXPECT_EQ(zephlaneCreateExtendedSetTable(scripted(), "set", members_.Get(), 2), 1);
  };
  EXPECT_EQ(PrintedWithoutMemory(1, create), ApiReport("malloc"));
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateExtendedSetTable, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer!");
  ExpectEachFails({
      {"key",
       [&] { return zephlaneCreateExtendedSetTable(scripted(), nullptr, members_.Get(), 1); },
       report},
      {"connection",
       [&] { return zephlaneCreateExtendedSetTable(nullptr, "set", members_.Get(), 1); }, report},
      {"members", [&] { return zephlaneCreateExtendedSetTable(scripted(), "set", nullptr, 1); },
       report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CopyHash : public ObjectTest {
 protected:
  void SetUp() override {
    ObjectTest::SetUp();
    Ask({"HSET", "source", "Name", "two words", "State", "on"});
  }
  const std::string source_ = "hash source\n  Name = two words\n  State = on\n";
};

TEST_F(CopyHash, LeavesFurtherFieldsOfTheDestination) {
  Ask({"HSET", "copy", "State", "off", "Own", "stays"});
  EXPECT_EQ(zephlaneCopyHash(ctx(), "copy", "source", 0), 0);
  EXPECT_EQ(Dump(), "hash copy\n  Name = two words\n  Own = stays\n  State = on\n" + source_);
}

TEST_F(CopyHash, WithATimeToLiveGivesTheCopyACompanionThatExpires) {
  EXPECT_EQ(zephlaneCopyHash(ctx(), "copy", "source", 100), 0);
  EXPECT_EQ(Dump(),
            "hash copy\n  Name = two words\n  State = on\n  TtlId = copy-TTL\n"
            "hash copy-TTL\n  TtlSec = 100\n" +
                source_);
  EXPECT_GT(std::stoi(Ask({"TTL", "copy-TTL"})), 0);
  EXPECT_EQ(Ask({"TTL", "copy"}), "-1");
  EXPECT_EQ(Ask({"TTL", "source"}), "-1");
}

TEST_F(CopyHash, SendsItsCommandsInOrder) {
  server_.WillReply(Bulks({"Name", "on"}));
  server_.WillReply("+OK\r\n");
  EXPECT_EQ(zephlaneCopyHash(scripted(), "copy", "source", -5), 0);
  EXPECT_EQ(server_.Commands(),
            "HGETALL source\n"
            "HMSET copy Name on\n"
            "HSET copy TtlId copy-TTL\n"
            "HSET copy-TTL TtlSec -5\n"
            "EXPIRE copy-TTL -5\n");
}

TEST_F(CopyHash, OfAMissingSourceFailsAndCreatesNothing) {
  ExpectEachFails({{"missing", [&] { return zephlaneCopyHash(ctx(), "copy", "none", 100); },
                    ApiReport("Copy Hash")}});
  EXPECT_EQ(Dump(), source_);
}

TEST_F(CopyHash, ReportsATimeToLiveThatCannotBeGiven) {
  ttl_fails = true;
  ExpectEachFails({{"time-to-live", [&] { return zephlaneCopyHash(ctx(), "copy", "source", 100); },
                    ApiReport("Append TTL object")}});
  EXPECT_EQ(zephlaneCopyHash(ctx(), "copy", "source", 0), 0);
  ttl_fails = false;
}

TEST_F(CopyHash, RefusesNullPointersBeforeANullConnection) {
  ExpectEachFails({
      {"source", [&] { return zephlaneCopyHash(scripted(), "copy", nullptr, 0); },
       ApiReport("Argument: NULL pointer")},
      {"destination", [&] { return zephlaneCopyHash(scripted(), nullptr, "source", 0); },
       ApiReport("Argument: NULL pointer")},
      {"source and connection", [] { return zephlaneCopyHash(nullptr, "copy", nullptr, 0); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneCopyHash(nullptr, "copy", "source", 0); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class SetVariable : public ObjectTest {};

TEST_F(SetVariable, WritesItsText) {
  EXPECT_EQ(zephlaneVariableSetStr(ctx(), "my name", "two words"), 0);
  EXPECT_EQ(zephlaneVariableSetStr(ctx(), "other", "text"), 0);
  EXPECT_EQ(Dump(), "hash zephlaneVariable\n  my name = two words\n  other = text\n");
}

TEST_F(SetVariable, ToAnEmptyTextIsSuccessAndLeavesItAsItWas) {
  Ask({"HSET", "zephlaneVariable", "x", "before"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneVariableSetStr(ctx(), "x", ""), 0); }), "");
  EXPECT_EQ(Dump(), "hash zephlaneVariable\n  x = before\n");
}

TEST_F(SetVariable, CutsNameAndTextTo1023Characters) {
  const std::string text(1024, 't');
  EXPECT_EQ(zephlaneVariableSetStr(ctx(), text.c_str(), text.c_str()), 0);
  const std::string cut(1023, 't');
  EXPECT_EQ(Dump(), "hash zephlaneVariable\n  " + cut + " = " + cut + "\n");
}

TEST_F(SetVariable, SendsOnePairAndReportsNameAndTextWhenItFails) {
  server_.WillReply(kRefusal);
  ExpectEachFails({{"refused", [&] { return zephlaneVariableSetStr(scripted(), "x", "a b"); },
                    ApiReport("Set Zephlane Variable \"x\" : \"a b\" Failed !")}});
  EXPECT_EQ(server_.Received(), Bulks({"HMSET", "zephlaneVariable", "x", "a b"}));
}

TEST_F(SetVariable, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"name", [&] { return zephlaneVariableSetStr(scripted(), nullptr, "text"); }, report},
      {"text", [&] { return zephlaneVariableSetStr(scripted(), "x", nullptr); }, report},
      {"connection", [] { return zephlaneVariableSetStr(nullptr, "x", "text"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class CreateOnALostConnection : public ObjectTest {
 protected:
  void SetUp() override {
    ObjectTest::SetUp();
    server_.WillClose();
  }
};

TEST_F(CreateOnALostConnection, FailsForAHashAndWhatIsStoredInOne) {
  const InstanceData pair = {"field", "value"};
  const ExtendedPair extended = Pair("field", "value");
  ExpectEachFails({
      {"map", [&] { return zephlaneCreateUriUuidMap(scripted(), "/uri", "uuid"); },
       " Create URI & UUID mapping table Failed !!!\n"},
      {"hash", [&] { return zephlaneCreateHashTable(scripted(), "key", &pair, 1); },
       ApiReport("key: failed to create/add !!!\n")},
      {"extended hash",
       [&] { return zephlaneCreateExtendedHashTable(scripted(), "key", &extended, 1); },
       ApiReport("Failed to create extended hash table.")},
      {"copy", [&] { return zephlaneCopyHash(scripted(), "copy", "key", 0); },
       ApiReport("Copy Hash")},
      {"variable", [&] { return zephlaneVariableSetStr(scripted(), "x", "y"); },
       ApiReport("Set Zephlane Variable \"x\" : \"y\" Failed !")},
  });
}

TEST_F(CreateOnALostConnection, FailsForASet) {
  const SetData member = Member("member");
  const Pointers members{"member"};
  ExpectEachFails({
      {"set", [&] { return zephlaneCreateSetTable(scripted(), "key", &member, 1); },
       " Create Set \"key\" Failed !!!\n"},
      {"extended set",
       [&] { return zephlaneCreateExtendedSetTable(scripted(), "key", members.Get(), 1); },
       ApiReport("Failed to create extended hash table.")},
  });
}

}  // namespace
