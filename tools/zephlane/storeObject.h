// SPDX-License-Identifier: MIT
//
// Objects of the store, read through the library, whole: values of any length.
#pragma once

#include <string>
#include <vector>

#include <zephlaneAPI.h>

#include "treeModel.h"

namespace zephlane::tool {

// The key's type in Redis' own word, such as "hash" or "string"; "none" when there is no such key.
[[nodiscard]] std::string TypeWord(redisContext* ctx, const std::string& key);

[[nodiscard]] Kind KindOf(redisContext* ctx, const std::string& key);

// One field, member or item. Members and items have no name.
struct Pair {
  std::string name;
  std::string value;
};

// A hash by field name, a set by member, a list in its order; empty for anything else.
[[nodiscard]] std::vector<Pair> ReadObject(redisContext* ctx, const std::string& key, Kind kind);

// An object in lines: "field = value", members or items.
[[nodiscard]] std::string ObjectText(redisContext* ctx, const std::string& key, Kind kind);

// A string key's value; empty when it is none.
[[nodiscard]] std::string ReadString(redisContext* ctx, const std::string& key);

// One field of a hash; empty when there is none.
[[nodiscard]] std::string ReadField(redisContext* ctx, const std::string& key, const char* field);

}  // namespace zephlane::tool
