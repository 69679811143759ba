// SPDX-License-Identifier: MIT
//
// What the other interpreter modules share of the hash tree beyond its published functions.
#pragma once

#include <string_view>

#include <hiredis/hiredis.h>

namespace zephlane {

// Adds one member, cut to 1023 characters, to a set: 0 or 1, as zephlaneCreateSetTable() judges.
[[nodiscard]] int AddSetMember(redisContext* ctx, const char* set_key, std::string_view member);

// How much this run has recorded so far; may be asked by any thread.
[[nodiscard]] unsigned int RecordedObjectCount() noexcept;
[[nodiscard]] unsigned int RegisteredSchemaCount() noexcept;

}  // namespace zephlane
