// SPDX-License-Identifier: MIT
//
// One call of every exported function that takes a connection, with arguments that get it as far as
// the store, and what it gives when no answer comes.
#pragma once

#include <span>
#include <string>

#include <hiredis/hiredis.h>

namespace zephlane::test {

struct StoreCall {
  const char* name;
  std::string (*call)(redisContext* ctx);  // its result; outputs and heap results are let go
  const char* without_answer;              // that result when the connection is lost
};

// Without zephlaneRedisDisconnect(), which takes the connection, and the registration of hooks,
// which starts a thread for good.
std::span<const StoreCall> StoreCalls();

}  // namespace zephlane::test
