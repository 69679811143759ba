// SPDX-License-Identifier: MIT
//
// The two ways to send a command: printf-style, checked by the compiler, for a fixed number of
// words; and a vector of borrowed words for commands with any number of values.
#pragma once

#include <cstddef>
#include <string>

#include "redis/request.h"
#include "support/owners.h"

#include <zephlaneAPI/types.h>

namespace zephlane {

// Results of the command layer. Status functions return 0 or 1, counts and membership tests -1.
inline constexpr int kDone = 0;
inline constexpr int kFailed = 1;
inline constexpr int kNoCount = -1;

// Sends one command of at most six words and waits for its reply. Blanks in the format separate
// words; blanks in the arguments stay in theirs. A word is a literal, %s, %d, %u, or one %s with a
// literal behind it.
[[nodiscard, gnu::format(printf, 2, 3)]] Reply Command(redisContext* ctx, const char* format, ...);

// Sends a command whose blanks all separate words, those of `text` included: only the two commands
// that are documented so may use it. A '%' in the text is read as a format directive.
[[nodiscard]] Reply CommandOfText(redisContext* ctx, const char* text, ...);

// A command as a vector of borrowed words: each must outlive the sending.
class ArgumentVector {
 public:
  // Begins with the command word and a key, and has room for `per_item` words for each of `count`
  // items.
  ArgumentVector(const char* word, const char* key, std::size_t per_item,
                 std::size_t count) noexcept;
  // False when memory is out, or a NULL word or a word too many was added: sending then fails.
  explicit operator bool() const noexcept {
    return words_ && lengths_ && whole_;
  }
  void Add(const char* word) noexcept;
  void Add(std::string&&) = delete;  // a temporary would be gone at the sending
  void AddAll(char* const* words, std::size_t count) noexcept;
  void AddAll(const SetData* items, std::size_t count) noexcept;
  // Each frees the vector before the reply is looked at.
  [[nodiscard]] Reply Send(redisContext* ctx) && noexcept;
  [[nodiscard]] bool Append(redisContext* ctx) && noexcept;
  [[nodiscard]] bool Append(RequestBatch* batch) && noexcept;

 private:
  std::size_t capacity_;
  CArray<const char*> words_;
  CArray<std::size_t> lengths_;
  std::size_t size_ = 0;
  bool whole_ = true;
};

}  // namespace zephlane
