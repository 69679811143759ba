// SPDX-License-Identifier: MIT
//
// Bounded text: one named helper for each contract a copy can have, and the splitting of paths.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <string_view>

#include <zephlaneAPI/types.h>

namespace zephlane {

inline constexpr std::size_t kValueSize = ZEPHLANE_VALUE_SIZE;
inline constexpr std::size_t kIdSize = ZEPHLANE_ID_SIZE;
inline constexpr std::size_t kIdLength = kIdSize - 1;

// Copies what fits and terminates: at most out.size() - 1 characters.
void CopyCut(std::span<char> out, std::string_view text) noexcept;

// Copies the characters of `text` and adds no terminator: callers of the published functions
// zero-fill their buffers, and may have room for the characters only.
void CopyCounted(char* out, std::string_view text) noexcept;

// Copies `text`, terminated. False, with `out` untouched, when it is too long.
[[nodiscard]] bool CopyTerminated(std::span<char> out, std::string_view text) noexcept;

// Copies `text`, terminated, and zero-fills the rest. False, with `out` untouched, when it is too
// long.
[[nodiscard]] bool CopyWhole(std::span<char> out, std::string_view text) noexcept;

// The text of a fixed buffer that may lack its terminator.
[[nodiscard]] std::string_view BoundedText(std::span<const char> buffer) noexcept;

[[nodiscard]] inline bool Contains(std::string_view text, std::string_view part) noexcept {
  return text.find(part) != std::string_view::npos;
}

// Whether a UUID lies anywhere in the text: 8, 4, 4, 4 and 12 hexadecimal digits of either case.
[[nodiscard]] bool ContainsUuid(std::string_view text) noexcept;

// What a report shows for a text that may be missing.
[[nodiscard]] inline const char* Shown(const char* text) noexcept {
  return text != nullptr ? text : "(null)";
}

// Takes tokens off the front of a text as strtok() does, without writing to it: leading delimiters
// are skipped, the delimiter that ends a token is consumed, and each call may name other ones.
class Tokenizer {
 public:
  explicit Tokenizer(std::string_view text) noexcept : rest_(text) {}
  // The next token; empty when there is none.
  [[nodiscard]] std::string_view Next(std::string_view delimiters) noexcept;

 private:
  std::string_view rest_;
};

}  // namespace zephlane
