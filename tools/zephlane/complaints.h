// SPDX-License-Identifier: MIT
//
// What is wrong with an object, by its definition, in plain words: the library says only whether it
// is valid, and stops at the first property that is not.
#pragma once

#include <string>
#include <vector>

#include <zephlaneAPI.h>

#include "console.h"

namespace zephlane::tool {

struct Complaint {
  std::string property;
  std::string reason;
};

// What the library prints while it is asked about single properties is dropped.
[[nodiscard]] std::vector<Complaint> FindComplaints(Console& console, redisContext* ctx,
                                                    const std::string& key,
                                                    const std::string& type);

}  // namespace zephlane::tool
