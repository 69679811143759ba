// SPDX-License-Identifier: MIT
//
// What an object of a tree is called.
#pragma once

#include <string>

#include "treeModel.h"

namespace zephlane::tool {

// The name that an object gives itself in one of its fields; empty when there is none.
[[nodiscard]] std::string OwnName(const TreeObject& object);

// Enough of a key to tell generated ones apart: they differ in their last group.
[[nodiscard]] std::string ShortKey(const std::string& key);

// A schema node's "type" where it has one, otherwise "hash", "set" or "list".
[[nodiscard]] std::string TypeText(const TreeObject& object);

// Whether the entry is the type that TypeText() gives already.
[[nodiscard]] bool IsShownType(const TreeObject& object, const TreeEntry& entry);

// " (+3 fields)" for what lies deeper than is shown.
[[nodiscard]] std::string HiddenCount(const TreeObject& object);

// The members of a set as {a, b}, the items of a list as [a, b].
[[nodiscard]] std::string ItemsText(const TreeObject& object);

// The type of a schema node as its file gives it: stored lists of types have no separator.
[[nodiscard]] std::string SchemaTypeText(const std::string& stored);

}  // namespace zephlane::tool
