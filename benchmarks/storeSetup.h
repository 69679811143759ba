// SPDX-License-Identifier: MIT
//
// What the families of pairs share: filling the store, IDs, and freeing results.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <hiredis/hiredis.h>

namespace zephlane::bench {

template <typename... Words>
void Ask(redisContext* ctx, const char* format, Words... words) {
  freeReplyObject(redisCommand(ctx, format, words...));
}

// The n-th of a range of IDs that nothing else in the benchmarks uses.
inline std::string InstanceId(unsigned int range, std::size_t n) {
  char id[64];
  (void)std::snprintf(id, sizeof(id), "4000%04x-0000-0000-0000-%012zx", range, n);
  return id;
}

inline void FreeStrings(char** strings, unsigned int count) {
  for (unsigned int i = 0; strings != nullptr && i < count; ++i) { std::free(strings[i]); }
  std::free(strings);
}

}  // namespace zephlane::bench
