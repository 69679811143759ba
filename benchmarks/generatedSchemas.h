// SPDX-License-Identifier: MIT
//
// Schema directories of any size whose files are all alike, to see what an object costs.
#pragma once

#include <string>

namespace zephlane::bench {

// The root schema file of a generated directory.
inline constexpr char kGeneratedRoot[] = "Root.v1_0_0.json";

// Fills `folder` with as many schema files as make about `objects` objects in the store.
void GenerateSchemas(const std::string& folder, unsigned int objects);

}  // namespace zephlane::bench
