// SPDX-License-Identifier: MIT
//
// The one text in which a "type" list is stored: its names joined without a separator.
#pragma once

#include <cstring>
#include <span>

#include <jansson.h>

#include "support/text.h"

namespace zephlane {

// Joins the string elements in array order; other elements are skipped. Returns null, or the
// element with which the text would no longer fit: `out` then holds what came before it.
[[nodiscard]] inline const char* JoinTypeNames(const json_t* names,
                                               std::span<char, kValueSize> out) noexcept {
  std::size_t length = 0;
  out[0] = '\0';
  for (std::size_t i = 0; i < json_array_size(names); ++i) {
    const json_t* name = json_array_get(names, i);
    if (name == nullptr) { break; }
    if (!json_is_string(name)) { continue; }
    const char* text = json_string_value(name);
    if (!CopyWhole(out.subspan(length), text)) { return text; }
    length += std::strlen(text);
  }
  return nullptr;
}

}  // namespace zephlane
