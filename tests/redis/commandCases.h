// SPDX-License-Identifier: MIT
//
// What the cases of the command layer share: every kind of reply a server can give, the bytes of a
// command, results as text, and the checks that run one call against all replies, with each
// argument missing, or with each allocation failing.
#pragma once

#include <cstdlib>
#include <functional>
#include <ostream>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/allocationFault.h"
#include "support/output.h"
#include "support/scriptedServer.h"

#include <zephlaneAPI.h>

namespace zephlane::test {

// A reply as raw bytes; none of them: the connection is lost instead.
struct ReplyKind {
  const char* name;
  const char* raw;
};

inline constexpr ReplyKind kOk = {"OK", "+OK\r\n"};
inline constexpr ReplyKind kOkAndMore = {"a status that begins with OK", "+OKAY\r\n"};
inline constexpr ReplyKind kOtherStatus = {"another status", "+QUEUED\r\n"};
inline constexpr ReplyKind kError = {"an error", "-ERR refused\r\n"};
inline constexpr ReplyKind kNil = {"nil", "$-1\r\n"};
inline constexpr ReplyKind kMinusTwo = {"-2", ":-2\r\n"};
inline constexpr ReplyKind kZero = {"0", ":0\r\n"};
inline constexpr ReplyKind kOne = {"1", ":1\r\n"};
inline constexpr ReplyKind kSeven = {"7", ":7\r\n"};
inline constexpr ReplyKind kText = {"a text", "$5\r\nvalue\r\n"};
inline constexpr ReplyKind kEmptyText = {"an empty text", "$0\r\n\r\n"};
inline constexpr ReplyKind kEmptyArray = {"an empty array", "*0\r\n"};
inline constexpr ReplyKind kPair = {"two elements", "*2\r\n$1\r\na\r\n$1\r\nb\r\n"};
inline constexpr ReplyKind kOdd = {"three elements", "*3\r\n$1\r\na\r\n$1\r\nb\r\n$1\r\nc\r\n"};
inline constexpr ReplyKind kPairWithNil = {"two elements, one nil", "*2\r\n$1\r\na\r\n$-1\r\n"};
inline constexpr ReplyKind kBroken = {"what is no reply", "?\r\n"};
inline constexpr ReplyKind kLost = {"the loss of the connection", ""};

inline constexpr ReplyKind kEveryReply[] = {
    kOk,   kOkAndMore, kOtherStatus, kError, kNil, kMinusTwo,    kZero,   kOne,  kSeven,
    kText, kEmptyText, kEmptyArray,  kPair,  kOdd, kPairWithNil, kBroken, kLost,
};

// The bytes of one command.
using Words = std::vector<std::string>;

inline std::string Wire(const Words& words) {
  std::string bytes = "*" + std::to_string(words.size()) + "\r\n";
  for (const std::string& word : words) {
    bytes += "$" + std::to_string(word.size()) + "\r\n" + word + "\r\n";
  }
  return bytes;
}

inline std::string Wire(const std::vector<Words>& commands) {
  std::string bytes;
  for (const Words& words : commands) { bytes += Wire(words); }
  return bytes;
}

// Around the 1023 characters that a record can hold.
inline constexpr std::size_t kLengthsAroundTheLimit[] = {1023, 1024, 2000};

inline std::string CutToRecord(const std::string& text) {
  return text.substr(0, 1023);
}

// One text as a server sends it.
inline std::string BulkReply(const std::string& text) {
  return "$" + std::to_string(text.size()) + "\r\n" + text + "\r\n";
}

// Results as text. What is in heap memory is freed; a missing result is "(null)".
inline std::string Shown(int result) {
  return std::to_string(result);
}

inline std::string Shown(char* text) {
  std::string shown = text != nullptr ? text : "(null)";
  std::free(text);
  return shown;
}

inline std::string Shown(char** texts, unsigned int count) {
  if (texts == nullptr) { return "(null)"; }
  std::string shown;
  for (unsigned int i = 0; i < count; ++i) { shown += (i == 0 ? "" : " ") + Shown(texts[i]); }
  std::free(texts);
  return shown;
}

inline std::string Shown(SetData* items, unsigned int count) {
  if (items == nullptr) { return "(null)"; }
  std::string shown;
  for (unsigned int i = 0; i < count; ++i) {
    shown += (i == 0 ? "" : " ") + std::string(items[i].aObjectID);
  }
  std::free(items);
  return shown;
}

inline std::string Shown(PopResult* pair) {
  if (pair == nullptr) { return "(null)"; }
  std::string shown = Shown(pair->aListKey);
  shown += ":" + Shown(pair->aItem);
  std::free(pair);
  return shown;
}

// A call of one function whose result is shown as text.
using Call = std::function<std::string(redisContext*)>;

// What a call makes of one kind of reply, and what it sends because of it.
struct Verdict {
  ReplyKind reply;
  std::string result;
  std::vector<Words> then_sent = {};
};

// A call, what it sends until the reply that is judged, and the verdicts on every kind of reply.
struct CommandCase {
  std::string name;
  Call call;
  std::vector<std::string> replies_before;
  std::vector<Words> sent;
  std::string otherwise;  // the result for each reply without a verdict of its own
  std::vector<Verdict> verdicts;
};

inline void PrintTo(const CommandCase& command, std::ostream* out) {
  *out << command.name;
}

inline std::string CaseName(const testing::TestParamInfo<CommandCase>& info) {
  return info.param.name;
}

inline Verdict VerdictOn(const CommandCase& command, const ReplyKind& reply) {
  for (const Verdict& verdict : command.verdicts) {
    if (verdict.reply.name == std::string(reply.name)) { return verdict; }
  }
  return {reply, command.otherwise};
}

// Gives the call each kind of reply; result, bytes and silence must be as the case says.
inline void ExpectVerdicts(const CommandCase& command) {
  for (const ReplyKind& reply : kEveryReply) {
    SCOPED_TRACE("the reply is " + std::string(reply.name));
    ScriptedServer server;
    for (const std::string& raw : command.replies_before) { server.WillReply(raw); }
    reply.raw[0] != '\0' ? server.WillReply(reply.raw) : server.WillClose();
    const Verdict verdict = VerdictOn(command, reply);
    std::string result;
    const Output printed = Capture([&] { result = command.call(server.ctx()); });
    EXPECT_EQ(result, verdict.result);
    EXPECT_EQ(server.Received(), Wire(command.sent) + Wire(verdict.then_sent));
    EXPECT_EQ(printed.out + printed.err, "");
  }
}

// Nothing has been sent over the connection, nor is anything queued to go out with the next
// command.
inline void ExpectNothingSent(ScriptedServer& server) {
  server.WillReply("+PONG\r\n");
  freeReplyObject(redisCommand(server.ctx(), "PING"));
  EXPECT_EQ(server.Received(), Wire(Words{"PING"}));
}

// The call yields `failure` without sending anything.
inline void ExpectRefused(const Call& call, const std::string& failure) {
  ScriptedServer server;
  EXPECT_EQ(call(server.ctx()), failure);
  ExpectNothingSent(server);
}

template <std::size_t kIndex, typename Result, typename... Parameters>
void ExpectNullRefused(Result (*function)(Parameters...), Result failure,
                       std::tuple<Parameters...> arguments) {
  using Argument = std::tuple_element_t<kIndex, std::tuple<Parameters...>>;
  if constexpr (std::is_pointer_v<Argument>) {
    SCOPED_TRACE("argument " + std::to_string(kIndex) + " is NULL");
    ScriptedServer server;
    std::get<0>(arguments) = server.ctx();
    std::get<kIndex>(arguments) = nullptr;
    EXPECT_EQ(std::apply(function, arguments), failure);
    ExpectNothingSent(server);
  }
}

// With NULL in the place of each pointer in turn, the connection included, the function yields
// `failure` without sending anything. `valid` are its arguments after the connection.
template <typename Result, typename... Parameters>
void ExpectNullsRefused(Result (*function)(redisContext*, Parameters...),
                        std::type_identity_t<Result> failure,
                        std::type_identity_t<Parameters>... valid) {
  const std::tuple<redisContext*, Parameters...> arguments(nullptr, valid...);
  [&]<std::size_t... kIndexes>(std::index_sequence<kIndexes...>) {
    (ExpectNullRefused<kIndexes>(function, failure, arguments), ...);
  }
  (std::make_index_sequence<1 + sizeof...(Parameters)>());
}

// A call that allocates so many times before it succeeds with these replies.
struct MemoryCase {
  std::string name;
  int allocations;
  std::string failure;
  std::vector<std::string> replies;
  Call call;
};

inline void ExpectResultWithFault(const MemoryCase& memory, int failing_allocation) {
  SCOPED_TRACE("allocation " + std::to_string(failing_allocation) + " fails");
  ScriptedServer server;
  for (const std::string& raw : memory.replies) { server.WillReply(raw); }
  AllocationFault fault(failing_allocation);
  const std::string result = memory.call(server.ctx());
  fault.Disarm();
  EXPECT_EQ(fault.Happened(), failing_allocation <= memory.allocations);
  EXPECT_EQ(result == memory.failure, fault.Happened()) << result;
}

// Each allocation of the call failing makes it fail; with none failing it succeeds. That nothing
// leaks is for the build with sanitizers to see.
inline void ExpectFailureOfEachAllocation(const MemoryCase& memory) {
  SCOPED_TRACE(memory.name);
  for (int n = 1; n <= memory.allocations + 1; ++n) { ExpectResultWithFault(memory, n); }
}

}  // namespace zephlane::test
