// SPDX-License-Identifier: MIT
//
// Clocks of the library's own objects in the hands of a case, so that none has to wait and failures
// can be had. A program that uses it is linked with zephlane_fake_clocks().
#pragma once

#include <ctime>
#include <optional>

namespace zephlane::test {

// What the clocks give while this lives. A clock that is not set goes on as usual.
class FakeClocks {
 public:
  FakeClocks();
  FakeClocks(const FakeClocks&) = delete;
  FakeClocks& operator=(const FakeClocks&) = delete;
  ~FakeClocks();

  std::optional<std::time_t> time;             // -1: time() fails
  std::optional<std::timespec> raw_monotonic;  // of CLOCK_MONOTONIC_RAW only
  bool local_time_fails = false;
  bool raw_monotonic_fails = false;
};

}  // namespace zephlane::test
