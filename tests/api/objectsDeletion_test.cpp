// SPDX-License-Identifier: MIT
//
// Deleting objects, members and fields.
#include <gtest/gtest.h>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::ApiReport;
using zephlane::test::Bulk;
using zephlane::test::Bulks;
using zephlane::test::ExpectEachFails;
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

class DeletionTest : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  ScriptedServer server_;
};

class DeleteKey : public DeletionTest {};

TEST_F(DeleteKey, DeletesAKeyOfAnyType) {
  Ask({"SET", "text", "value"});
  Ask({"HSET", "hash", "field", "value"});
  Ask({"SADD", "set", "member"});
  Ask({"RPUSH", "list", "item"});
  for (const char* key : {"text", "hash", "set", "list"}) {
    EXPECT_EQ(zephlaneDeleteKey(ctx(), key), 0) << key;
  }
  EXPECT_EQ(Dump(), "");
}

TEST_F(DeleteKey, LeavesTheCompanionOfAHash) {
  Ask({"HSET", "hash", "TtlId", "hash-TTL"});
  Ask({"HSET", "hash-TTL", "TtlSec", "10"});
  EXPECT_EQ(zephlaneDeleteKey(ctx(), "hash"), 0);
  EXPECT_EQ(Dump(), "hash hash-TTL\n  TtlSec = 10\n");
}

TEST_F(DeleteKey, SucceedsWhateverRedisAnswers) {
  EXPECT_EQ(zephlaneDeleteKey(ctx(), "missing"), 0);
  server_.WillReply("-ERR no\r\n");
  server_.WillClose();
  EXPECT_EQ(zephlaneDeleteKey(scripted(), "a key"), 0);
  EXPECT_EQ(zephlaneDeleteKey(scripted(), "a key"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"DEL", "a key"}) + Bulks({"DEL", "a key"}));
}

TEST_F(DeleteKey, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"key", [&] { return zephlaneDeleteKey(scripted(), nullptr); }, report},
      {"connection", [] { return zephlaneDeleteKey(nullptr, "key"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class DeleteHash : public DeletionTest {
 protected:
  // A hash with a companion that holds its time-to-live.
  void GiveHash(const std::string& key) {
    Ask({"HSET", key, "TtlId", key + "-TTL"});
    Ask({"HSET", key + "-TTL", "TtlSec", "10"});
  }
};

TEST_F(DeleteHash, DeletesItsCompanionToo) {
  GiveHash("object");
  GiveHash("other");
  EXPECT_EQ(zephlaneDeleteHash(ctx(), "object"), 0);
  EXPECT_EQ(Dump(), "hash other\n  TtlId = other-TTL\nhash other-TTL\n  TtlSec = 10\n");
}

TEST_F(DeleteHash, LeavesACompanionThatHoldsNoTimeToLive) {
  Ask({"HSET", "object", "field", "value"});
  Ask({"HSET", "object-TTL", "field", "value"});
  EXPECT_EQ(zephlaneDeleteHash(ctx(), "object"), 0);
  EXPECT_EQ(Dump(), "hash object-TTL\n  field = value\n");
}

TEST_F(DeleteHash, OfAMissingKeyIsSuccess) {
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(zephlaneDeleteHash(ctx(), "missing"), 0); }), "");
}

TEST_F(DeleteHash, DeletesTheCompanionFirst) {
  server_.WillReply(Bulk("10"));
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneDeleteHash(scripted(), "a key"), 0);
  EXPECT_EQ(server_.Received(), Bulks({"HGET", "a key-TTL", "TtlSec"}) +
                                    Bulks({"DEL", "a key-TTL"}) + Bulks({"DEL", "a key"}));
}

TEST_F(DeleteHash, WithoutACompanionSendsOneDeletion) {
  server_.WillReply("$-1\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneDeleteHash(scripted(), "key"), 0);
  EXPECT_EQ(server_.Commands(), "HGET key-TTL TtlSec\nDEL key\n");
}

TEST_F(DeleteHash, WithAKeyOf1020CharactersDeletesItsCompanionToo) {
  const std::string key(1020, 'k');
  GiveHash(key);
  EXPECT_EQ(zephlaneDeleteHash(ctx(), key.c_str()), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(DeleteHash, RefusesAKeyOf1021Characters) {
  const std::string key(1021, 'k');
  ExpectEachFails(
      {{"1021", [&] { return zephlaneDeleteHash(scripted(), key.c_str()); },
        ApiReport("Invalid hash key. Key length is too long, valid length is 1024\n")}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(DeleteHash, OnALostConnectionIsSuccess) {
  server_.WillClose();
  EXPECT_EQ(zephlaneDeleteHash(scripted(), "key"), 0);
}

TEST_F(DeleteHash, RefusesANullKeyBeforeANullConnection) {
  ExpectEachFails({
      {"key", [&] { return zephlaneDeleteHash(scripted(), nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"both", [] { return zephlaneDeleteHash(nullptr, nullptr); },
       ApiReport("Argument: NULL pointer")},
      {"connection", [] { return zephlaneDeleteHash(nullptr, "key"); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

class RemoveInstanceFromSet : public DeletionTest {};

TEST_F(RemoveInstanceFromSet, RemovesOneMember) {
  Ask({"SADD", "set", "two words", "b"});
  EXPECT_EQ(zephlaneRemoveInstanceFromSet(ctx(), "set", "two words"), 0);
  EXPECT_EQ(Dump(), "set set\n  b\n");
}

TEST_F(RemoveInstanceFromSet, FailsSilentlyWhenNothingWasRemoved) {
  Ask({"HSET", "hash", "field", "value"});
  server_.WillClose();
  ExpectEachFails({
      {"missing", [&] { return zephlaneRemoveInstanceFromSet(ctx(), "none", "a"); }, ""},
      {"wrong type", [&] { return zephlaneRemoveInstanceFromSet(ctx(), "hash", "field"); }, ""},
      {"lost", [&] { return zephlaneRemoveInstanceFromSet(scripted(), "my set", "a b"); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"SREM", "my set", "a b"}));
}

TEST_F(RemoveInstanceFromSet, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"set", [&] { return zephlaneRemoveInstanceFromSet(scripted(), nullptr, "a"); }, report},
      {"member", [&] { return zephlaneRemoveInstanceFromSet(scripted(), "set", nullptr); }, report},
      {"connection", [] { return zephlaneRemoveInstanceFromSet(nullptr, "set", "a"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class RemoveFieldFromHash : public DeletionTest {};

TEST_F(RemoveFieldFromHash, RemovesOneField) {
  Ask({"HSET", "hash", "two words", "1", "b", "2"});
  EXPECT_EQ(zephlaneRemoveFieldFromHash(ctx(), "hash", "two words"), 0);
  EXPECT_EQ(Dump(), "hash hash\n  b = 2\n");
}

TEST_F(RemoveFieldFromHash, FailsSilentlyWhenNothingWasRemoved) {
  Ask({"SADD", "set", "member"});
  server_.WillClose();
  ExpectEachFails({
      {"missing", [&] { return zephlaneRemoveFieldFromHash(ctx(), "none", "a"); }, ""},
      {"wrong type", [&] { return zephlaneRemoveFieldFromHash(ctx(), "set", "member"); }, ""},
      {"lost", [&] { return zephlaneRemoveFieldFromHash(scripted(), "my hash", "a b"); }, ""},
  });
  EXPECT_EQ(server_.Received(), Bulks({"HDEL", "my hash", "a b"}));
}

TEST_F(RemoveFieldFromHash, RefusesNullPointers) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"hash", [&] { return zephlaneRemoveFieldFromHash(scripted(), nullptr, "a"); }, report},
      {"field", [&] { return zephlaneRemoveFieldFromHash(scripted(), "hash", nullptr); }, report},
      {"connection", [] { return zephlaneRemoveFieldFromHash(nullptr, "hash", "a"); }, report},
  });
  EXPECT_EQ(server_.Received(), "");
}

class DeleteHashByField : public DeletionTest {
 protected:
  void SetUp() override {
    DeletionTest::SetUp();
    Ask({"HSET", "collection", "instanceCollection", "members"});
  }
  void GiveMember(const std::string& id, const std::string& name) {
    Ask({"SADD", "members", id});
    Ask({"HSET", id, "Name", name});
  }
  // A scripted collection whose set is "members", with members "a" and "b" in this order.
  void ScriptCollection() {
    server_.WillReply(Bulk("members"));
    server_.WillReply(Bulks({"a", "b"}));
    server_.WillReply(Bulks({"a", "b"}));
  }
  const std::string collection_ = "hash collection\n  instanceCollection = members\n";
};

TEST_F(DeleteHashByField, DeletesTheObjectItsCompanionAndItsMembership) {
  GiveMember("a", "one");
  GiveMember("b", "two words");
  Ask({"HSET", "b-TTL", "TtlSec", "10"});
  EXPECT_EQ(zephlaneDeleteHashByField(ctx(), "collection", "Name", "two words"), 0);
  EXPECT_EQ(Dump(), "hash a\n  Name = one\n" + collection_ + "set members\n  a\n");
}

TEST_F(DeleteHashByField, DeletesOnlyTheFirstMatchInTheOrderOfTheSet) {
  ScriptCollection();
  server_.WillReply(Bulk("x"));  // a matches, and b is not asked for
  server_.WillReply("$-1\r\n");  // no companion
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  EXPECT_EQ(zephlaneDeleteHashByField(scripted(), "collection", "Name", "x"), 0);
  EXPECT_EQ(server_.Commands(),
            "HGET collection instanceCollection\nSMEMBERS members\nSMEMBERS members\n"
            "HGET a Name\nHGET a-TTL TtlSec\nDEL a\nSREM members a\n");
}

TEST_F(DeleteHashByField, LeavesASecondObjectWithTheValue) {
  GiveMember("a", "same");
  GiveMember("b", "same");
  EXPECT_EQ(zephlaneDeleteHashByField(ctx(), "collection", "Name", "same"), 0);
  EXPECT_EQ(Ask({"SCARD", "members"}), "1");
  EXPECT_EQ(Ask({"EXISTS", "a", "b"}), "1");
}

TEST_F(DeleteHashByField, TakesAMissingFieldForTheEmptyValue) {
  GiveMember("a", "one");
  EXPECT_EQ(zephlaneDeleteHashByField(ctx(), "collection", "NoSuchField", ""), 0);
  EXPECT_EQ(Dump(), collection_);
}

TEST_F(DeleteHashByField, FailsSilentlyWhereThereIsNothingToDelete) {
  Ask({"HSET", "unnamed", "field", "value"});
  ExpectEachFails({
      {"no collection", [&] { return zephlaneDeleteHashByField(ctx(), "none", "Name", "x"); }, ""},
      {"no set named", [&] { return zephlaneDeleteHashByField(ctx(), "unnamed", "Name", "x"); },
       ""},
      {"empty set", [&] { return zephlaneDeleteHashByField(ctx(), "collection", "Name", ""); }, ""},
  });
  GiveMember("a", "one");
  const std::string before = Dump();
  ExpectEachFails(
      {{"no match", [&] { return zephlaneDeleteHashByField(ctx(), "collection", "Name", "x"); },
        ""}});
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeleteHashByField, FailsWhereTheSetIsAnotherType) {
  Ask({"RPUSH", "members", "a"});
  ExpectEachFails(
      {{"list", [&] { return zephlaneDeleteHashByField(ctx(), "collection", "Name", "x"); }, ""}});
}

TEST_F(DeleteHashByField, WhereMembershipStaysTheObjectIsGoneAllTheSame) {
  ScriptCollection();
  server_.WillReply(Bulk("x"));
  server_.WillReply(Bulk("10"));
  server_.WillReply(":1\r\n");
  server_.WillReply(":1\r\n");
  server_.WillReply(":0\r\n");  // someone else took it out of the set
  EXPECT_EQ(zephlaneDeleteHashByField(scripted(), "collection", "Name", "x"), 1);
  EXPECT_TRUE(server_.Commands().ends_with("DEL a-TTL\nDEL a\nSREM members a\n"));
}

TEST_F(DeleteHashByField, FailsWhenTheSetChangesWhileItIsRead) {
  server_.WillReply(Bulk("members"));
  server_.WillReply(Bulks({"a", "b"}));
  server_.WillReply(Bulks({"a"}));
  EXPECT_EQ(zephlaneDeleteHashByField(scripted(), "collection", "Name", "x"), 1);
}

TEST_F(DeleteHashByField, FindsTheCompanionOfTheLongestMemberId) {
  const std::string id(1023, 'i');
  GiveMember(id, "long");
  Ask({"HSET", id + "-TTL", "TtlSec", "10"});
  EXPECT_EQ(zephlaneDeleteHashByField(ctx(), "collection", "Name", "long"), 0);
  EXPECT_EQ(Dump(), collection_);
}

TEST_F(DeleteHashByField, FailsWhenMemoryIsOut) {
  GiveMember("a", "one");
  const std::string before = Dump();
  AllocationFault fault(1);
  const int result = zephlaneDeleteHashByField(ctx(), "collection", "Name", "one");
  fault.Disarm();
  EXPECT_TRUE(fault.Happened());
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Dump(), before);
}

TEST_F(DeleteHashByField, FailsOnALostConnection) {
  server_.WillReply(Bulk("members"));
  server_.WillClose();
  EXPECT_EQ(zephlaneDeleteHashByField(scripted(), "collection", "Name", "x"), 1);
}

TEST_F(DeleteHashByField, RefusesNullPointersBeforeANullConnection) {
  const std::string report = ApiReport("Argument: NULL pointer");
  ExpectEachFails({
      {"collection", [&] { return zephlaneDeleteHashByField(scripted(), nullptr, "f", "v"); },
       report},
      {"field", [&] { return zephlaneDeleteHashByField(scripted(), "c", nullptr, "v"); }, report},
      {"value", [&] { return zephlaneDeleteHashByField(scripted(), "c", "f", nullptr); }, report},
      {"field and connection", [] { return zephlaneDeleteHashByField(nullptr, "c", nullptr, "v"); },
       report},
      {"connection", [] { return zephlaneDeleteHashByField(nullptr, "c", "f", "v"); },
       ApiReport("Argument: redis context")},
  });
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
