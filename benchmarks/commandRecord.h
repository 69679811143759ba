// SPDX-License-Identifier: MIT
//
// The exact commands a run sends, taken from the server itself, and sent again with raw hiredis.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <hiredis/hiredis.h>

namespace zephlane::bench {

using CommandWords = std::vector<std::string>;

// The commands that reach the server while `run` runs; AUTH is not among them.
std::vector<CommandWords> RecordCommands(const std::function<void()>& run);

void Replay(redisContext* ctx, const std::vector<CommandWords>& commands);

}  // namespace zephlane::bench
