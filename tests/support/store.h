// SPDX-License-Identifier: MIT
//
// The private Redis store seen directly, past the library: fixture, raw commands, whole content.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <hiredis/hiredis.h>

namespace zephlane::test {

// An authenticated connection made without the library.
redisContext* ConnectToStore();

// The reply to one command as text: a string or status as it is, a number in decimal, "(nil)",
// "(error) ..." or the elements of an array in lines.
std::string Ask(redisContext* ctx, const std::vector<std::string>& words);

// The whole content, sorted: a line "TYPE KEY", then two blanks and "FIELD = VALUE", member, item
// or value for each. Sets and hashes are sorted, lists in order.
std::string Dump(redisContext* ctx);

// The strings as the array of pointers that C callers pass; borrowed, so keep it alive.
class Pointers {
 public:
  Pointers(std::initializer_list<const char*> texts);
  [[nodiscard]] char* const* Get() const {
    return pointers_.data();
  }

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

// A case against the real server, which starts empty.
class StoreTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  [[nodiscard]] redisContext* ctx() {
    return ctx_;
  }
  std::string Ask(const std::vector<std::string>& words) {
    return test::Ask(own_, words);
  }
  std::string Dump() {
    return test::Dump(own_);
  }

 private:
  redisContext* ctx_ = nullptr;  // for the function under test
  redisContext* own_ = nullptr;  // for looking behind it
};

}  // namespace zephlane::test
