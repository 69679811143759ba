// SPDX-License-Identifier: MIT
//
// Judging results: what a call gave becomes an outcome, and what it gave the caller is freed. Every
// byte that is promised is looked at, so that a checker of memory sees what is not there.
#pragma once

#include <cstddef>
#include <cstring>
#include <string_view>

#include "faults/everyFunction.h"

#include <zephlaneAPI/types.h>

namespace zephlane::test {

inline constexpr Outcome kAsDocumented{Result::kSuccess};
inline constexpr Outcome kOtherContent{Result::kOther};
inline constexpr Outcome kFails{Result::kFailure};

inline Outcome Undocumented(const char* remark) {
  return {Result::kUndocumented, remark};
}

inline Outcome Success(bool as_expected) {
  return as_expected ? kAsDocumented : kOtherContent;
}

// A status, or the answer to a question: `success` is what the prepared store gives.
inline Outcome Status(int result, int success = 0, int failure = 1) {
  if (result == success) { return kAsDocumented; }
  return result == failure ? kFails : Undocumented("another status");
}

// A question with a failure value of its own.
inline Outcome Answer(int result, int expected, int other, int failure) {
  if (result == other) { return kOtherContent; }
  return Status(result, expected, failure);
}

inline Outcome Count(int result, int expected) {
  return result == -1 ? kFails : Success(result == expected);
}

// A buffer for an output, filled so that a write that is not promised is seen.
template <std::size_t size>
class TextOut {
 public:
  TextOut() {
    text_[0] = kBefore;
    std::memset(behind_, kBehind, sizeof(behind_));
  }
  char* Get() {
    return text_;
  }
  std::string_view Text() const {
    return {text_, strnlen(text_, size)};
  }
  bool IsUntouched() const {
    for (std::size_t i = 1; i < size; ++i) {
      if (text_[i] != '\0') { return false; }
    }
    return text_[0] == kBefore;
  }
  bool IsWhole() const {  // ended within its size, with nothing written behind it
    for (const char character : behind_) {
      if (character != kBehind) { return false; }
    }
    return Text().size() < size;
  }

 private:
  static constexpr char kBefore = '~';
  static constexpr char kBehind = 0x5a;
  char text_[size] = "";
  char behind_[64];
};

using ValueOut = TextOut<ZEPHLANE_VALUE_SIZE>;
using IdOut = TextOut<ZEPHLANE_ID_SIZE>;

enum class AfterFailure { kUntouched, kAnything };

// A status with a text; an empty `expected` stands for any text that is not empty.
template <std::size_t size>
Outcome StatusAndText(int status, const TextOut<size>& out, std::string_view expected,
                      AfterFailure after = AfterFailure::kUntouched) {
  if (!out.IsWhole()) { return Undocumented("text not ended within its buffer"); }
  if (status == 1 && after == AfterFailure::kUntouched && !out.IsUntouched()) {
    return Undocumented("output touched by a failure");
  }
  if (status != 0) { return Status(status); }
  return Success(expected.empty() ? !out.Text().empty() : out.Text() == expected);
}

// `out` is looked at after the call that gives the status, also when both are in one expression.
template <typename Number>
Outcome StatusAndNumber(int status, const Number& out, Number before, Number expected) {
  if (status == 1 && out != before) { return Undocumented("output touched by a failure"); }
  return status == 0 ? Success(out == expected) : Status(status);
}

// What the caller frees. A null pointer is the failure; an empty `expected` stands for any text.
Outcome HeapText(char* text, std::string_view expected);
// `expected` holds `count` texts, null for none.
struct ExpectedTexts {
  const char* const* texts;
  unsigned int count;
};
inline constexpr unsigned int kCountBefore = 77;
enum class CountAfterFailure { kUntouched, kZeroed, kAnything };
Outcome HeapTexts(char** texts, unsigned int count, ExpectedTexts expected,
                  CountAfterFailure after);
Outcome HeapPairs(ExtendedPair* pairs, unsigned int count, unsigned int expected,
                  CountAfterFailure after);
Outcome HeapRecords(SetData* records, unsigned int count, ExpectedTexts expected);
Outcome HeapRecords(InstanceData* records, unsigned int count, unsigned int expected);
Outcome HeapPop(PopResult* popped, std::string_view key, std::string_view item);

}  // namespace zephlane::test
