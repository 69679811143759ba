// SPDX-License-Identifier: MIT
//
// What the cases of the hash tree share. Its counters and tables live as long as the process, so
// these cases run in one each: the first hash is always kHash0, the first set kSet0.
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include <gtest/gtest.h>

#include "support/output.h"
#include "support/owners.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {

inline constexpr char kHash0[] = "00000000-0000-0000-0001-000000000000";
inline constexpr char kHash1[] = "00000000-0000-0000-0001-000000000001";
inline constexpr char kHash2[] = "00000000-0000-0000-0001-000000000002";
inline constexpr char kSet0[] = "00000000-0000-0000-0001-100000000000";
inline constexpr char kSet1[] = "00000000-0000-0000-0001-100000000001";
inline constexpr char kDummy[] = "00000000-0000-0000-0000-000000000000";

// The reports of hashTreeOperation.cpp, one for each text.
inline std::string TreeReports(std::initializer_list<std::string> texts) {
  std::string lines;
  for (const std::string& text : texts) {
    lines += InterpreterReport("hashTreeOperation.cpp", text);
  }
  return lines;
}

// What `body` prints on standard error.
inline std::string ErrorsOf(const std::function<void()>& body) {
  return Masked(Capture(body).err);
}

// The text of an ID that a function made; "NULL" when it made none.
inline std::string TextOf(char* id) {
  const CString owner(id);
  return owner ? owner.get() : "NULL";
}

class HashTreeTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"HSET", "parent", "title", "T"});
  }
  // Replies that let a key be deleted that does not exist and has no companion.
  void WillDelete() {
    server_.WillReply("$-1\r\n");
    server_.WillReply(":0\r\n");
  }
  // Whether the store holds `text`, such as a key or a line of it.
  bool Stored(const std::string& text) {
    return Dump().find(text) != std::string::npos;
  }

  ScriptedServer server_;
};

}  // namespace zephlane::test
