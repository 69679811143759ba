// SPDX-License-Identifier: MIT
//
// Deleting trees of objects.
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
using zephlane::test::PrintedBy;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

const char* fields[] = {"child", "children"};

std::string LoopReport(const std::string& key) {
  return ApiReport(
             "detected infinite loop! Or other thread/process is trying to delete the same "
             "object.") +
         ApiReport("\"" + key + "\" repeated again!!");
}

class DeleteSubTree : public StoreTest {
 protected:
  redisContext* scripted() {
    return server_.ctx();
  }
  void Script(std::initializer_list<const char*> replies) {
    for (const char* raw : replies) { server_.WillReply(raw); }
  }
  int Delete(const char* root) {
    return zephlaneDeleteSubTreeV21(ctx(), root, fields, 2);
  }
  // The deletion stops at `key`.
  void ExpectLoop(const char* root, const std::string& key) {
    ExpectEachFails({{root, [&] { return Delete(root); }, LoopReport(key)}});
  }
  ScriptedServer server_;
};

TEST_F(DeleteSubTree, DeletesWhatNamedFieldsSetsAndListsReach) {
  Ask({"HSET", "root", "child", "hash", "children", "set", "other", "kept"});
  Ask({"HSET", "hash", "children", "list"});
  Ask({"RPUSH", "list", "item-1", "item-2", "missing"});
  Ask({"SADD", "set", "member"});
  for (const char* leaf : {"item-1", "item-2", "member", "kept"}) { Ask({"HSET", leaf, "f", "v"}); }
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Delete("root"), 0); }), "");
  EXPECT_EQ(Dump(), "hash kept\n  f = v\n");
}

TEST_F(DeleteSubTree, CalledFromCTakesTheFieldNamesUpToNull) {
  Ask({"HSET", "root", "a", "first", "b", "second", "c", "third"});
  for (const char* leaf : {"first", "second", "third"}) { Ask({"HSET", leaf, "f", "v"}); }
  EXPECT_EQ(deleteSubTreeByTwoFields(ctx(), "root", "a", "b"), 0);
  EXPECT_EQ(Dump(), "hash third\n  f = v\n");
  Ask({"HSET", "root", "c", "third"});
  EXPECT_EQ(deleteSubTreeWithoutFields(ctx(), "root"), 0);
  EXPECT_EQ(Dump(), "hash third\n  f = v\n");
}

TEST_F(DeleteSubTree, DeletesChildrenBeforeTheirParent) {
  Script({"+hash\r\n", ":0\r\n", ":1\r\n", "$3\r\nkid\r\n"});        // root and its first field
  Script({"+set\r\n", ":0\r\n", ":1\r\n", "*1\r\n$4\r\nleaf\r\n"});  // kid
  Script({"+list\r\n", ":0\r\n", ":1\r\n", "*0\r\n", ":1\r\n"});     // leaf
  Script({":1\r\n", "$-1\r\n", ":1\r\n", ":1\r\n"});
  EXPECT_EQ(zephlaneDeleteSubTreeV21(scripted(), "root", fields, 2), 0);
  EXPECT_EQ(server_.Commands(),
            "TYPE root\nSISMEMBER root-memberSET root\nSADD root-memberSET root\nHGET root child\n"
            "TYPE kid\nSISMEMBER root-memberSET kid\nSADD root-memberSET kid\nSMEMBERS kid\n"
            "TYPE leaf\nSISMEMBER root-memberSET leaf\nSADD root-memberSET leaf\n"
            "LRANGE leaf 0 -1\nDEL leaf\n"
            "DEL kid\nHGET root children\nDEL root\nDEL root-memberSET\n");
}

TEST_F(DeleteSubTree, OfAMissingKeyDeletesNothingAndSucceeds) {
  Ask({"HSET", "other", "f", "v"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Delete("missing"), 0); }), "");
  EXPECT_EQ(Dump(), "hash other\n  f = v\n");
  Script({"+none\r\n", ":0\r\n", ":0\r\n"});
  EXPECT_EQ(zephlaneDeleteSubTree(scripted(), "missing", "child", nullptr), 0);
  EXPECT_EQ(server_.Received(), Bulks({"TYPE", "missing"}) + Bulks({"DEL", "missing"}) +
                                    Bulks({"DEL", "missing-memberSET"}));
}

TEST_F(DeleteSubTree, DeletesAChildOfAnyOtherTypeToo) {
  Ask({"HSET", "root", "child", "text", "children", "scores"});
  Ask({"SET", "text", "value"});
  Ask({"ZADD", "scores", "1", "member"});
  EXPECT_EQ(Delete("root"), 0);
  EXPECT_EQ(Dump(), "");
}

TEST_F(DeleteSubTree, SkipsAFieldThatIsMissingOrEmpty) {
  Ask({"HSET", "root", "child", "", "children", "kid"});
  Ask({"HSET", "kid", "f", "v"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Delete("root"), 0); }), "");
  EXPECT_EQ(Dump(), "");
}

TEST_F(DeleteSubTree, StopsAtAChildThatNamesItsParent) {
  Ask({"HSET", "root", "child", "kid", "children", "later"});
  Ask({"HSET", "kid", "child", "root"});
  Ask({"HSET", "later", "f", "v"});
  const std::string before = Dump();
  ExpectLoop("root", "root");
  EXPECT_EQ(Dump(), before);  // nothing more is deleted, and no tracking set is left
}

TEST_F(DeleteSubTree, StopsAtAnObjectThatNamesItself) {
  Ask({"SADD", "root", "root"});
  ExpectLoop("root", "root");
  EXPECT_EQ(Dump(), "set root\n  root\n");
}

TEST_F(DeleteSubTree, LeavesWhatItDidNotReachBeforeALoop) {
  Ask({"RPUSH", "root", "first", "kid", "last"});
  Ask({"HSET", "first", "f", "v"});
  Ask({"HSET", "kid", "child", "kid"});
  Ask({"HSET", "last", "f", "v"});
  ExpectLoop("root", "kid");
  EXPECT_EQ(Dump(),
            "hash kid\n  child = kid\nhash last\n  f = v\nlist root\n  first\n  kid\n  last\n");
}

TEST_F(DeleteSubTree, StopsWhereAnotherProcessIsDeletingTheSameTree) {
  Ask({"HSET", "root", "child", "kid"});
  Ask({"HSET", "kid", "f", "v"});
  Ask({"SADD", "root-memberSET", "kid"});
  ExpectLoop("root", "kid");
  EXPECT_EQ(Dump(), "hash kid\n  f = v\nhash root\n  child = kid\n");
}

// Adding to the tracking set splits or cuts these keys, so that it never knows them.
TEST_F(DeleteSubTree, StopsInALoopOfKeysThatTheTrackingSetCannotHold) {
  for (const std::string& key : {std::string("two words"), std::string(300, 'k')}) {
    SCOPED_TRACE(key);
    Ask({"FLUSHALL"});
    Ask({"HSET", "root", "child", key});
    Ask({"HSET", key, "child", "list"});
    Ask({"RPUSH", "list", key});
    ExpectLoop("root", key);
    EXPECT_EQ(Ask({"EXISTS", "root", key, "list", "root-memberSET"}), "3");
  }
}

TEST_F(DeleteSubTree, TakesASharedChildThatIsGoneAlreadyForNoLoop) {
  Ask({"HSET", "root", "child", "kid", "children", "list"});
  Ask({"RPUSH", "list", "kid", "kid"});
  Ask({"HSET", "kid", "f", "v"});
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Delete("root"), 0); }), "");
  EXPECT_EQ(Dump(), "");
}

TEST_F(DeleteSubTree, FailsWhenAKeyCannotBeTracked) {
  Ask({"HSET", "root", "child", "kid"});
  Ask({"SET", "root-memberSET", "in the way"});
  ExpectEachFails({{"type", [&] { return Delete("root"); }, ApiReport("SADD failed!!")}});
  EXPECT_EQ(Dump(), "hash root\n  child = kid\n");
}

TEST_F(DeleteSubTree, DeletesAnObjectWhoseMembersCannotBeRead) {
  Script({"+set\r\n", ":0\r\n", ":1\r\n", "-ERR no\r\n", ":1\r\n", ":1\r\n"});
  EXPECT_EQ(zephlaneDeleteSubTreeV21(scripted(), "root", fields, 2), 0);
  EXPECT_TRUE(server_.Commands().ends_with("SMEMBERS root\nDEL root\nDEL root-memberSET\n"));
}

TEST_F(DeleteSubTree, OnALostConnectionTakesTheObjectForMissing) {
  server_.WillClose();
  EXPECT_EQ(
      PrintedBy([&] { EXPECT_EQ(zephlaneDeleteSubTree(scripted(), "root", "child", nullptr), 0); }),
      "");
}

TEST_F(DeleteSubTree, TakesARootOf1011CharactersAndRefusesOneOf1012) {
  EXPECT_EQ(deleteSubTreeWithoutFields(ctx(), std::string(1011, 'r').c_str()), 0);
  const std::string root(1012, 'r');
  ExpectEachFails({{"1012", [&] { return deleteSubTreeWithoutFields(scripted(), root.c_str()); },
                    ApiReport("Arguments")}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(DeleteSubTree, RefusesNullPointers) {
  ExpectEachFails({
      {"root", [&] { return deleteSubTreeWithoutFields(scripted(), nullptr); },
       ApiReport("Arguments")},
      {"connection", [] { return deleteSubTreeWithoutFields(nullptr, "root"); },
       ApiReport("Arguments")},
  });
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(DeleteSubTree, FailsWhenMemoryIsOut) {
  Ask({"HSET", "root", "f", "v"});
  AllocationFault fault(1);
  const int result = zephlaneDeleteSubTree(ctx(), "root", "child", nullptr);
  fault.Disarm();
  EXPECT_TRUE(fault.Happened());
  EXPECT_EQ(result, 1);
  EXPECT_EQ(Dump(), "hash root\n  f = v\n");
}

TEST_F(DeleteSubTree, WithAnArrayChecksNoArgumentItself) {
  ExpectEachFails({
      {"connection", [] { return zephlaneDeleteSubTreeV21(nullptr, "root", fields, 2); },
       ApiReport("Argument: redis context") + ApiReport("Failed to delete tracking table.")},
      {"root", [&] { return zephlaneDeleteSubTreeV21(ctx(), nullptr, fields, 2); },
       ApiReport("Argument: NULL pointer")},
  });
}

TEST_F(DeleteSubTree, WithoutAnArrayHasNoFields) {
  Ask({"HSET", "root", "child", "kid"});
  Ask({"HSET", "kid", "f", "v"});
  EXPECT_EQ(zephlaneDeleteSubTreeV21(ctx(), "root", nullptr, 2), 0);
  EXPECT_EQ(Dump(), "hash kid\n  f = v\n");
}

TEST_F(DeleteSubTree, WithAnArrayTakesARootOfAnyLength) {
  const std::string root(2000, 'r');
  Ask({"SET", root, "value"});
  EXPECT_EQ(Delete(root.c_str()), 0);
  EXPECT_EQ(Dump(), "");
}

class DeleteAllSpecifiedObjects : public DeleteSubTree {};

TEST_F(DeleteAllSpecifiedObjects, LeavesTheVisitedKeysInTheTrackingSet) {
  Ask({"HSET", "root", "child", "kid"});
  Ask({"HSET", "kid", "f", "v"});
  EXPECT_EQ(deleteAllSpecifiedObjects(ctx(), "root", fields, 2, "visited"), 0);
  EXPECT_EQ(Dump(), "set visited\n  kid\n  root\n");
}

TEST_F(DeleteAllSpecifiedObjects, StopsAtAKeyOfTheTrackingSet) {
  Ask({"HSET", "root", "f", "v"});
  Ask({"SADD", "visited", "root"});
  ExpectEachFails(
      {{"visited", [&] { return deleteAllSpecifiedObjects(ctx(), "root", fields, 2, "visited"); },
        LoopReport("root")}});
  EXPECT_EQ(Dump(), "hash root\n  f = v\nset visited\n  root\n");
}

TEST_F(DeleteAllSpecifiedObjects, FailsWithoutConnectionKeyOrTrackingSet) {
  Ask({"HSET", "root", "f", "v"});
  const auto walk = [](redisContext* ctx, const char* key, const char* tracking_set) {
    return [=] { return deleteAllSpecifiedObjects(ctx, key, fields, 2, tracking_set); };
  };
  ExpectEachFails({
      {"connection", walk(nullptr, "root", "set"), ApiReport("Argument: redis context")},
      {"key", walk(ctx(), nullptr, "set"), ApiReport("Argument: NULL pointer")},
      {"tracking set", walk(ctx(), "root", nullptr),
       ApiReport("Argument: NULL pointer") + ApiReport("SADD failed!!")},
  });
  EXPECT_EQ(Dump(), "hash root\n  f = v\n");
}

}  // namespace
