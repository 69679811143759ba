// SPDX-License-Identifier: MIT
//
// Benchmarks come in pairs named "<pair>/library" and "<pair>/raw"; the report is their ratio.
#pragma once

#include <functional>
#include <string>

#include <hiredis/hiredis.h>

namespace zephlane::bench {

// Registers both sides of a pair; each call of a side is one iteration on the given connection.
void AddPair(const std::string& name, double allowed_ratio,
             const std::function<void(redisContext*)>& library,
             const std::function<void(redisContext*)>& raw);

// As AddPair, for sides that measure themselves: each call returns the seconds that count.
void AddTimedPair(const std::string& name, double allowed_ratio,
                  const std::function<double()>& library, const std::function<double()>& raw);

// Puts in place what the single-command pairs read; the interpreter pair empties the store.
void FillStore(redisContext* ctx);

void AddSingleCommandPairs();
void AddInterpreterPair();

}  // namespace zephlane::bench
