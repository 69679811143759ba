// SPDX-License-Identifier: MIT
//
// What a run may be told from outside.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>

namespace zephlane::test {

// The number that an environment variable gives, or else the usual one.
inline long Setting(const char* variable, long usual) {
  const char* given = std::getenv(variable);
  return given != nullptr ? std::stol(given) : usual;
}

// Where random moments come from. It is printed, so that a run can be repeated.
inline unsigned int RandomSeed() {
  const auto seed =
      static_cast<unsigned int>(Setting("ZEPHLANE_TEST_SEED", std::random_device{}()));
  std::printf("ZEPHLANE_TEST_SEED=%u repeats this run\n", seed);
  return seed;
}

}  // namespace zephlane::test
