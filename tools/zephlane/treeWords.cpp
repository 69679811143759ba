// SPDX-License-Identifier: MIT
#include "treeWords.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include <fmt/format.h>

#include "plainText.h"

namespace zephlane::tool {

namespace {

constexpr char kTypeField[] = "type";
constexpr std::array<std::string_view, 5> kNameFields = {"title", "Name", "name", "Id", "id"};
constexpr std::array<std::string_view, 7> kSchemaTypes = {"array",  "boolean", "integer", "null",
                                                          "number", "object",  "string"};

const TreeEntry* FindPlain(const TreeObject& object, std::string_view field) {
  for (const TreeEntry& entry : object.entries) {
    if (entry.shown == Shown::kPlain && entry.name == field) { return &entry; }
  }
  return nullptr;
}

}  // namespace

std::string OwnName(const TreeObject& object) {
  for (const std::string_view field : kNameFields) {
    const TreeEntry* entry = FindPlain(object, field);
    if (entry != nullptr && !entry->value.empty()) { return entry->value; }
  }
  return "";
}

std::string ShortKey(const std::string& key) {
  constexpr std::size_t kLeast = 4;
  const std::size_t hyphen = key.rfind('-');
  const std::size_t length = hyphen == std::string::npos ? 0 : key.size() - hyphen - 1;
  if (length < kLeast) { return key; }
  const std::size_t digit = std::min(key.find_first_not_of('0', hyphen + 1), key.size() - kLeast);
  return "…" + key.substr(digit);
}

std::string TypeText(const TreeObject& object) {
  const TreeEntry* type = object.is_schema_node ? FindPlain(object, kTypeField) : nullptr;
  if (type != nullptr) { return SchemaTypeText(type->value); }
  switch (object.kind) {
    case Kind::kHash:
      return "hash";
    case Kind::kSet:
      return "set";
    case Kind::kList:
      return "list";
    case Kind::kOther:
      break;
  }
  return "other";
}

bool IsShownType(const TreeObject& object, const TreeEntry& entry) {
  return object.is_schema_node && entry.shown == Shown::kPlain && entry.name == kTypeField;
}

std::string HiddenCount(const TreeObject& object) {
  const auto hidden = static_cast<std::size_t>(
      std::count_if(object.entries.begin(), object.entries.end(),
                    [&](const TreeEntry& entry) { return !IsShownType(object, entry); }));
  if (hidden == 0) { return ""; }
  const std::string count = object.kind == Kind::kHash  ? Counted(hidden, "field", "fields")
                            : object.kind == Kind::kSet ? Counted(hidden, "member", "members")
                                                        : Counted(hidden, "item", "items");
  return fmt::format(" (+{})", count);
}

std::string ItemsText(const TreeObject& object) {
  std::string items;
  for (const TreeEntry& entry : object.entries) {
    items += (items.empty() ? "" : ", ") + Printable(entry.value);
  }
  return object.kind == Kind::kSet ? "{" + items + "}" : "[" + items + "]";
}

std::string SchemaTypeText(const std::string& stored) {
  std::string types;
  std::string_view rest = stored;
  while (!rest.empty()) {
    const auto* name = std::find_if(kSchemaTypes.begin(), kSchemaTypes.end(),
                                    [&](std::string_view type) { return rest.starts_with(type); });
    if (name == kSchemaTypes.end()) { return stored; }
    types += (types.empty() ? "" : " | ") + std::string(*name);
    rest.remove_prefix(name->size());
  }
  return types;
}

}  // namespace zephlane::tool
