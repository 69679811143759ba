// SPDX-License-Identifier: MIT
//
// The names the library fixes on a machine: what a private namespace hides, and what must not exist
// where there is none.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zephlane::test {

inline constexpr int kRedisPort = 6379;
inline constexpr char kPasswordFile[] = "/tmp/redis.requirepass";

// Whether `path` is one of the files or directories the library fixes.
bool IsFixedPath(std::string_view path);

// What of the machine stands in the way of using the fixed names, one line each; empty when free.
// Message queues can be seen, and removed, only where their file system is mounted.
std::vector<std::string> FixedNamesInUse();

// Removes the fixed files, directories and message queues. Only for a process that found them free.
void RemoveFixedNames();

}  // namespace zephlane::test
