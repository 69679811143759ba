// SPDX-License-Identifier: MIT
//
// How far the parsers may call themselves.
#pragma once

namespace zephlane {

// Whether so little of the thread's stack is left that a parser must not descend further. Says so
// in a report of `source`.
[[nodiscard]] bool StackIsUsedUp(const char* source);

}  // namespace zephlane
