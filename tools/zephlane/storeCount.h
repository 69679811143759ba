// SPDX-License-Identifier: MIT
//
// How much is in the store.
#pragma once

#include <optional>

#include <zephlaneAPI.h>

#include "runText.h"

namespace zephlane::tool {

// Keys by type; none when the connection fails.
[[nodiscard]] std::optional<StoreCounts> CountStore(redisContext* ctx);

// How many sets the interpreter recorded in this process.
[[nodiscard]] std::size_t CountRecordedSets();

}  // namespace zephlane::tool
