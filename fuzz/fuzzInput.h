// SPDX-License-Identifier: MIT
//
// What the targets share: the entry that a fuzzer or a test calls with each input, input as text,
// and the end of the process where a promise is broken.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace zephlane::fuzz {

inline std::string_view TextOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

inline void Require(bool holds, const char* promise) {
  if (holds) { return; }
  (void)std::fprintf(stderr, "broken: %s\n", promise);
  std::abort();
}

}  // namespace zephlane::fuzz
