// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;

class HashCommands : public StoreTest {
 protected:
  ScriptedServer server_;
};

TEST_F(HashCommands, CreateTakesErrorReplyAsSuccess) {
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  const InstanceData pair = {"field", "two words"};
  EXPECT_EQ(createHashTable(server_.ctx(), "key", &pair, 1), 0);
  EXPECT_EQ(server_.Received(),
            "*4\r\n$5\r\nHMSET\r\n$3\r\nkey\r\n$5\r\nfield\r\n$9\r\ntwo words\r\n");
}

TEST_F(HashCommands, CreateWithCountZeroIsSuccessAndWritesNothing) {
  const InstanceData pair = {"field", "value"};
  EXPECT_EQ(createHashTable(ctx(), "key", &pair, 0), 0);
  EXPECT_EQ(Dump(), "");
}

}  // namespace
