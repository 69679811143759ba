// SPDX-License-Identifier: MIT
//
// Stored text as it can be shown in a line.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zephlane::tool {

// `text` with its control characters written as \n, \t or \x1b, so that a value stays in its line
// and cannot drive a terminal.
[[nodiscard]] std::string Printable(std::string_view text);

// The columns that UTF-8 text takes, counted as one for each character.
[[nodiscard]] std::size_t Columns(std::string_view text);

// "1 file", "2 files".
[[nodiscard]] std::string Counted(std::size_t count, std::string_view singular,
                                  std::string_view plural);

}  // namespace zephlane::tool
