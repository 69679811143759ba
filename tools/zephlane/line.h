// SPDX-License-Identifier: MIT
//
// A line of output whose width is known although it holds colours.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlane::tool {

enum class Colour { kNone, kType, kValue, kFaint };

class Line {
 public:
  explicit Line(bool colours) : colours_(colours) {}
  void Add(std::string_view text, Colour colour = Colour::kNone);
  [[nodiscard]] std::size_t Width() const {
    return width_;
  }
  [[nodiscard]] const std::string& Text() const {
    return text_;
  }

 private:
  bool colours_;
  std::size_t width_ = 0;
  std::string text_;
};

}  // namespace zephlane::tool
