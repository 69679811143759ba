// SPDX-License-Identifier: MIT
//
// Calls of exported functions as cases see them: what they return, what they print, what they send.
#pragma once

#include <functional>
#include <initializer_list>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <hiredis/hiredis.h>

#include "support/allocationFault.h"
#include "support/output.h"
#include "support/owners.h"

namespace zephlane::test {

// Standard output of `call`, lines of reports masked. Nothing may go to standard error.
inline std::string PrintedBy(const std::function<void()>& call) {
  const Output output = Capture(call);
  EXPECT_EQ(output.err, "");
  return Masked(output.out);
}

template <typename Result>
struct FailingCall {
  const char* what;
  std::function<Result()> call;
  std::string printed;
};

// Each call returns `failure` and prints its text.
template <typename Result>
void ExpectEachFails(Result failure, const std::vector<FailingCall<Result>>& calls) {
  for (const FailingCall<Result>& failing : calls) {
    SCOPED_TRACE(failing.what);
    Result result{};
    EXPECT_EQ(PrintedBy([&] { result = failing.call(); }), failing.printed);
    EXPECT_EQ(result, failure);
  }
}

using FailingStatus = FailingCall<int>;
using FailingPointer = FailingCall<void*>;

inline void ExpectEachFails(const std::vector<FailingStatus>& calls) {
  ExpectEachFails<int>(1, calls);
}

inline void ExpectEachGivesNull(const std::vector<FailingPointer>& calls) {
  ExpectEachFails<void*>(nullptr, calls);
}

// What `call` prints while its n-th allocation fails, which it must reach.
inline std::string PrintedWithoutMemory(int n, const std::function<void()>& call) {
  return PrintedBy([&] {
    AllocationFault fault(n);
    call();
    fault.Disarm();
    EXPECT_TRUE(fault.Happened());
  });
}

// A text as a Redis server sends it.
inline std::string Bulk(const std::string& text) {
  return "$" + std::to_string(text.size()) + "\r\n" + text + "\r\n";
}

// The bytes of an array of texts: a command, or a reply.
inline std::string Bulks(std::initializer_list<std::string> texts) {
  std::string bytes = "*" + std::to_string(texts.size()) + "\r\n";
  for (const std::string& text : texts) { bytes += Bulk(text); }
  return bytes;
}

// From now on each number this connection receives claims to have an element, as no server makes
// it: the only way to a reply that is no array and not without elements either.
inline void GiveNumbersElements(redisContext* ctx) {
  static redisReplyObjectFunctions usual;
  static redisReplyObjectFunctions odd;
  usual = *ctx->reader->fn;
  odd = usual;
  odd.createInteger = [](const redisReadTask* task, long long value) {
    void* reply = usual.createInteger(task, value);
    static_cast<redisReply*>(reply)->elements = 1;
    return reply;
  };
  ctx->reader->fn = &odd;
}

// The strings of an array that its caller frees, each and then the array.
inline std::vector<std::string> Taken(char** strings, unsigned int count) {
  const CArray<char*> array(strings);
  std::vector<std::string> texts;
  for (unsigned int i = 0; array && i < count; ++i) {
    const CString text(array[i]);
    texts.emplace_back(text ? text.get() : "(null)");
  }
  return texts;
}

// A string that its caller frees; "(null)" for none.
inline std::string Taken(char* string) {
  const CString text(string);
  return text ? text.get() : "(null)";
}

}  // namespace zephlane::test
