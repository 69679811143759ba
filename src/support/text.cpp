// SPDX-License-Identifier: MIT
//
// Bounded copies and tokens; the contracts are in the header.
#include "support/text.h"

#include <algorithm>

namespace zephlane {

namespace {

constexpr std::string_view kUuidForm = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";

bool IsHexDigit(char c) noexcept {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

// Precondition: as long as a UUID.
bool HasUuidForm(std::string_view text) noexcept {
  return std::equal(kUuidForm.begin(), kUuidForm.end(), text.begin(),
                    [](char form, char c) { return form == '-' ? c == '-' : IsHexDigit(c); });
}

}  // namespace

void CopyCut(std::span<char> out, std::string_view text) noexcept {
  if (out.empty()) { return; }
  const std::size_t length = std::min(text.size(), out.size() - 1);
  if (length > 0) { std::memcpy(out.data(), text.data(), length); }
  out[length] = '\0';
}

void CopyCounted(char* out, std::string_view text) noexcept {
  if (!text.empty()) { std::memcpy(out, text.data(), text.size()); }
}

bool CopyTerminated(std::span<char> out, std::string_view text) noexcept {
  if (text.size() >= out.size()) { return false; }
  CopyCut(out, text);
  return true;
}

bool CopyWhole(std::span<char> out, std::string_view text) noexcept {
  if (text.size() >= out.size()) { return false; }
  std::fill(std::copy(text.begin(), text.end(), out.begin()), out.end(), '\0');
  return true;
}

std::string_view BoundedText(std::span<const char> buffer) noexcept {
  return {buffer.data(), strnlen(buffer.data(), buffer.size())};
}

bool ContainsUuid(std::string_view text) noexcept {
  constexpr std::size_t kFirstHyphen = kUuidForm.find('-');
  // Each hyphen may be a UUID's first.
  for (std::size_t hyphen = text.find('-', kFirstHyphen); hyphen != std::string_view::npos;
       hyphen = text.find('-', hyphen + 1)) {
    const std::string_view candidate = text.substr(hyphen - kFirstHyphen, kUuidForm.size());
    if (candidate.size() < kUuidForm.size()) { return false; }
    if (HasUuidForm(candidate)) { return true; }
  }
  return false;
}

std::string_view Tokenizer::Next(std::string_view delimiters) noexcept {
  const std::size_t begin = rest_.find_first_not_of(delimiters);
  if (begin == std::string_view::npos) {
    rest_ = {};
    return {};
  }
  rest_.remove_prefix(begin);
  const std::size_t end = std::min(rest_.find_first_of(delimiters), rest_.size());
  const std::string_view token = rest_.substr(0, end);
  rest_.remove_prefix(std::min(end + 1, rest_.size()));
  return token;
}

}  // namespace zephlane
