// SPDX-License-Identifier: MIT
//
// What a tree shows: the objects below a root, each expanded at one place.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace zephlane::tool {

enum class Kind { kOther, kHash, kSet, kList };

// How a value of an object is shown.
enum class Shown {
  kPlain,      // as text: it names no object, or is never followed
  kNamed,      // as the name of an object that has its place in another tree
  kExpanded,   // as the object it names, here
  kElsewhere,  // as a mark: the object it names is expanded at another place of this tree
};

struct TreeEntry {
  std::string name;  // field name; empty for members and items
  std::string value;
  Shown shown = Shown::kPlain;
};

struct TreeObject {
  Kind kind = Kind::kOther;
  std::vector<TreeEntry> entries;  // plain ones first
  std::string placed_as;           // the field name it is expanded under
  bool is_schema_node = false;     // part of an interpreted schema
  bool is_cut = false;             // its entries lie deeper than was asked for
};

struct TreeModel {
  std::string root;
  std::map<std::string, TreeObject> objects;  // by key; those that are expanded
  std::map<std::string, std::string> names;   // by key; of schemas and their definitions
};

}  // namespace zephlane::tool
