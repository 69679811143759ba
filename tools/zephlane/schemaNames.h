// SPDX-License-Identifier: MIT
//
// The schemas in the store by the IDs of their root hashes and of their definitions: where a
// reference leads to one of them, its name says more than what lies below it.
#pragma once

#include <map>
#include <string>

#include <zephlaneAPI.h>

namespace zephlane::tool {

struct SchemaPlace {
  std::string root;         // ID of the schema's root hash
  std::string title;        // the schema's title, or its root ID
  std::string definitions;  // ID of the hash that holds the schema's definitions
  std::string definition;   // name of the definition; empty for the root hash itself
};

using SchemaNames = std::map<std::string, SchemaPlace>;  // by ID

[[nodiscard]] SchemaNames ReadSchemaNames(redisContext* ctx);

// ID of the root hash of the schema with this title; empty when there is none.
[[nodiscard]] std::string FindSchema(redisContext* ctx, const std::string& title);

// The name that trees give to what has this ID; the ID itself when it has none.
[[nodiscard]] std::string SchemaName(const SchemaNames& names, const std::string& id);

// Whether the ID is one that interpreting a schema gives to what it stores.
[[nodiscard]] bool IsSchemaNodeId(const std::string& id);

}  // namespace zephlane::tool
