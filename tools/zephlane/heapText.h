// SPDX-License-Identifier: MIT
//
// The owner of what C functions allocate.
#pragma once

#include <cstdlib>
#include <memory>

namespace zephlane::tool {

struct Free {
  void operator()(void* memory) const noexcept {
    std::free(memory);
  }
};
using HeapText = std::unique_ptr<char, Free>;

}  // namespace zephlane::tool
