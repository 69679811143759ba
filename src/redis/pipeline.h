// SPDX-License-Identifier: MIT
//
// Writing many objects in one round trip, without a copy of all their commands in memory.
#pragma once

#include "redis/request.h"

namespace zephlane {

// Adds the command that writes one object, as pipelineCreateObject() queues it. False, with nothing
// added, where that fails.
[[nodiscard]] bool AddObject(RequestBatch* batch, const char* key, int kind, const void* data,
                             unsigned int count) noexcept;

}  // namespace zephlane
