// SPDX-License-Identifier: MIT
//
// Reads the objects of a tree. An object that several others name is expanded once, at the place
// nearest to the root, so that a limit of depth never hides what could be shown.
#pragma once

#include <string>

#include <zephlaneAPI.h>

#include "treeModel.h"

namespace zephlane::tool {

inline constexpr unsigned kDeepestTree = 1000;

struct TreeRange {
  unsigned depth = kDeepestTree;  // levels below the root
  bool all = false;               // expand what belongs to other schemas too
};

// Precondition: `root` is a hash, a set or a list.
[[nodiscard]] TreeModel LoadTree(redisContext* ctx, const std::string& root,
                                 const TreeRange& range);

}  // namespace zephlane::tool
