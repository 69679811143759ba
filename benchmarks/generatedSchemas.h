// SPDX-License-Identifier: MIT
//
// Sets of schema files of any size whose files are all alike, to see what an object costs.
#pragma once

#include <string>

namespace zephlane::bench {

// Writes as many schema files as make about `objects` objects in the store into `folder`. Their
// names say the number, so that several sets lie side by side. The root schema's file name.
std::string GenerateSchemas(const std::string& folder, unsigned int objects);

}  // namespace zephlane::bench
