// SPDX-License-Identifier: MIT
//
// The linker sends the calls of the objects in a test program to the __wrap_ functions here.
#include "api/clockFault.h"

namespace {

thread_local const zephlane::test::FakeClocks* fake = nullptr;

}  // namespace

extern "C" {

int __real_clock_gettime(clockid_t clock, std::timespec* out);
std::time_t __real_time(std::time_t* out);
std::tm* __real_localtime(const std::time_t* time);

int __wrap_clock_gettime(clockid_t clock, std::timespec* out);
std::time_t __wrap_time(std::time_t* out);
std::tm* __wrap_localtime(const std::time_t* time);

int __wrap_clock_gettime(clockid_t clock, std::timespec* out) {
  if (fake == nullptr || clock != CLOCK_MONOTONIC_RAW) { return __real_clock_gettime(clock, out); }
  if (fake->raw_monotonic_fails) { return -1; }
  if (!fake->raw_monotonic) { return __real_clock_gettime(clock, out); }
  *out = *fake->raw_monotonic;
  return 0;
}

std::time_t __wrap_time(std::time_t* out) {
  if (fake == nullptr || !fake->time) { return __real_time(out); }
  if (out != nullptr) { *out = *fake->time; }
  return *fake->time;
}

std::tm* __wrap_localtime(const std::time_t* time) {
  return fake != nullptr && fake->local_time_fails ? nullptr : __real_localtime(time);
}

}  // extern "C"

namespace zephlane::test {

FakeClocks::FakeClocks() {
  fake = this;
}

FakeClocks::~FakeClocks() {
  fake = nullptr;
}

}  // namespace zephlane::test
