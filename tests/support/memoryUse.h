// SPDX-License-Identifier: MIT
//
// What a piece of a program takes of the machine's memory and of its thread's stack.
#pragma once

#include <cstddef>
#include <functional>

namespace zephlane::test {

// Pages that the process holds in memory. In an emulated process those of the program alone, not
// the emulator's. 0 when the system does not tell.
long ResidentKilobytes();

// Runs `body` in a thread of its own and returns how many bytes of the stack it used at its
// deepest, from the thread's first frame on.
std::size_t DeepestStackUse(const std::function<void()>& body);

}  // namespace zephlane::test
