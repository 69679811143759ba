// SPDX-License-Identifier: MIT
//
// An object with what belongs to it, as a JSON value: fields of a hash as members of an object,
// members of a set and items of a list as elements of an array. Bytes that are no UTF-8 are
// replaced.
#pragma once

#include <memory>
#include <string>

#include <jansson.h>
#include <zephlaneAPI.h>

namespace zephlane::tool {

struct DropJson {
  void operator()(json_t* value) const noexcept {
    json_decref(value);
  }
};
using Json = std::unique_ptr<json_t, DropJson>;

[[nodiscard]] Json JsonText(const std::string& text);

// Puts `value` into `object` as its member `name`.
void SetMember(json_t* object, const std::string& name, Json value);

// A hash, set or list; JSON's null for anything else.
[[nodiscard]] Json ReadDetails(redisContext* ctx, const std::string& key);

// An event with its records, and these with their arguments and origins.
[[nodiscard]] Json ReadEventDetails(redisContext* ctx, const std::string& key);

// "a = b, c = [d, e]"; what is below the top is in brackets.
[[nodiscard]] std::string InlineText(const json_t* details);

// Lines "a = b", with what is below them indented.
[[nodiscard]] std::string IndentedText(const json_t* details);

// JSON in one line, without a newline.
[[nodiscard]] std::string JsonLine(const json_t* value);

}  // namespace zephlane::tool
