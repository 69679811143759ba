// SPDX-License-Identifier: MIT
//
// A tree as text with box-drawing lines.
#pragma once

#include <cstddef>
#include <string>

#include "treeModel.h"

namespace zephlane::tool {

struct TreeStyle {
  bool colours = false;
  bool whole_keys = false;    // print the whole key of every object
  std::size_t columns = 100;  // what is simple stays in one line up to this width
};

[[nodiscard]] std::string TreeText(const TreeModel& model, const TreeStyle& style);

}  // namespace zephlane::tool
