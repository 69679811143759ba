// SPDX-License-Identifier: MIT
#include "schemaNames.h"

#include "storeObject.h"

namespace zephlane::tool {

namespace {

constexpr char kSchemaRoots[] = "ZephlaneSchemaInstances";
constexpr char kSchemaNodePrefix[] = "00000000-0000-0000-0001-";

void AddSchema(redisContext* ctx, const std::string& root, SchemaNames& names) {
  std::string title = ReadField(ctx, root, "title");
  if (title.empty()) { title = root; }
  names.insert_or_assign(root, SchemaPlace{root, title, ""});
  for (const Pair& definition : ReadObject(ctx, ReadField(ctx, root, "definitions"), Kind::kHash)) {
    // A definition may be nothing but a reference to another schema's: the first to hold it, or the
    // schema it is the root of, names it.
    names.try_emplace(definition.value, SchemaPlace{root, title, definition.name});
  }
}

}  // namespace

SchemaNames ReadSchemaNames(redisContext* ctx) {
  SchemaNames names;
  for (const Pair& root : ReadObject(ctx, kSchemaRoots, Kind::kSet)) {
    AddSchema(ctx, root.value, names);
  }
  return names;
}

bool IsSchemaNodeId(const std::string& id) {
  return id.starts_with(kSchemaNodePrefix);
}

}  // namespace zephlane::tool
