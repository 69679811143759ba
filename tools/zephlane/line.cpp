// SPDX-License-Identifier: MIT
#include "line.h"

#include <fmt/format.h>

#include "plainText.h"

namespace zephlane::tool {

namespace {

int TerminalCode(Colour colour) {
  constexpr int kDim = 2;
  constexpr int kGreen = 32;
  constexpr int kCyan = 36;
  switch (colour) {
    case Colour::kType:
      return kCyan;
    case Colour::kValue:
      return kGreen;
    default:
      return kDim;
  }
}

}  // namespace

void Line::Add(std::string_view text, Colour colour) {
  width_ += Columns(text);
  if (colours_ && colour != Colour::kNone && !text.empty()) {
    text_ += fmt::format("\x1b[{}m{}\x1b[0m", TerminalCode(colour), text);
  } else {
    text_ += text;
  }
}

}  // namespace zephlane::tool
