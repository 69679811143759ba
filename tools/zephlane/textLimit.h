// SPDX-License-Identifier: MIT
//
// Texts of which the library would use only the beginning are refused instead.
#pragma once

#include <cstddef>
#include <string>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

namespace zephlane::tool {

[[nodiscard]] inline CLI::Validator AtMost(std::size_t characters) {
  return {[characters](const std::string& text) {
            return text.size() <= characters
                       ? std::string()
                       : fmt::format("At most {} characters are allowed", characters);
          },
          ""};
}

}  // namespace zephlane::tool
