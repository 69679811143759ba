// SPDX-License-Identifier: MIT
#include "schemaNames.h"

#include "storeObject.h"

namespace zephlane::tool {

namespace {

constexpr char kSchemaRoots[] = "ZephlaneSchemaInstances";
constexpr char kSchemaNodePrefix[] = "00000000-0000-0000-0001-";

SchemaPlace ReadRoot(redisContext* ctx, const std::string& root) {
  SchemaPlace place = {root, ReadField(ctx, root, "title"), ReadField(ctx, root, "definitions"),
                       ""};
  if (place.title.empty()) { place.title = root; }
  return place;
}

// A definition may be nothing but a reference to one of another schema, and so be held by several.
// Its own schema is the one whose definitions were begun last before it: IDs are given in order.
bool IsNearer(const SchemaPlace& place, const SchemaPlace& other, const std::string& id) {
  return place.definitions < id &&
         (other.definitions > id || place.definitions > other.definitions);
}

void AddDefinitions(redisContext* ctx, const SchemaPlace& root, SchemaNames& names) {
  for (const Pair& pair : ReadObject(ctx, root.definitions, Kind::kHash)) {
    SchemaPlace place = root;
    place.definition = pair.name;
    const auto [at, is_new] = names.try_emplace(pair.value, place);
    const bool is_root = at->second.definition.empty();
    if (!is_new && !is_root && IsNearer(place, at->second, pair.value)) { at->second = place; }
  }
}

}  // namespace

SchemaNames ReadSchemaNames(redisContext* ctx) {
  SchemaNames names;
  for (const Pair& root : ReadObject(ctx, kSchemaRoots, Kind::kSet)) {
    names.emplace(root.value, ReadRoot(ctx, root.value));
  }
  const SchemaNames roots = names;
  for (const auto& [id, root] : roots) { AddDefinitions(ctx, root, names); }
  return names;
}

std::string FindSchema(redisContext* ctx, const std::string& title) {
  char id[ZEPHLANE_VALUE_SIZE] = "";
  return zephlaneGetSchemaTypeIdByTitle(ctx, title.c_str(), id) == 0 ? id : "";
}

std::string SchemaName(const SchemaNames& names, const std::string& id) {
  const auto place = names.find(id);
  if (place == names.end()) { return id; }
  const auto& [root, title, definitions, definition] = place->second;
  return definition.empty() ? title : title + "/" + definition;
}

bool IsSchemaNodeId(const std::string& id) {
  return id.starts_with(kSchemaNodePrefix);
}

}  // namespace zephlane::tool
