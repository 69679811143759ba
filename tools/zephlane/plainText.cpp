// SPDX-License-Identifier: MIT
#include "plainText.h"

#include <algorithm>

#include <fmt/format.h>

namespace zephlane::tool {

namespace {

constexpr unsigned char kDelete = 0x7f;

bool IsControl(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < ' ' || byte == kDelete;
}

}  // namespace

std::string Printable(std::string_view text) {
  std::string shown;
  for (const char character : text) {
    if (!IsControl(character)) {
      shown += character;
    } else if (character == '\n') {
      shown += "\\n";
    } else if (character == '\t') {
      shown += "\\t";
    } else {
      shown += fmt::format("\\x{:02x}", static_cast<unsigned char>(character));
    }
  }
  return shown;
}

std::size_t Columns(std::string_view text) {
  constexpr unsigned char kContinuationMask = 0xc0;
  constexpr unsigned char kContinuation = 0x80;
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char character) {
    return (static_cast<unsigned char>(character) & kContinuationMask) != kContinuation;
  }));
}

std::string Counted(std::size_t count, std::string_view singular, std::string_view plural) {
  return fmt::format("{} {}", count, count == 1 ? singular : plural);
}

}  // namespace zephlane::tool
