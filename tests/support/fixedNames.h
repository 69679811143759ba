// SPDX-License-Identifier: MIT
//
// The names the library fixes on a machine: what a private namespace hides, and what must not exist
// where there is none.
#pragma once

#include <string>
#include <vector>

namespace zephlane::test {

inline constexpr int kRedisPort = 6379;
inline constexpr char kPasswordFile[] = "/tmp/redis.requirepass";

// What of the machine stands in the way of using the fixed names, one line each; empty when free.
std::vector<std::string> FixedNamesInUse();

// Removes the fixed files, directories and message queues. Only for a process that found them free.
void RemoveFixedNames();

}  // namespace zephlane::test
