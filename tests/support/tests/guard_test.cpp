// SPDX-License-Identifier: MIT
#include "support/guard.h"

#include <pthread.h>

#include <new>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "support/allocationFault.h"

namespace {

using zephlane::Guarded;
using zephlane::test::AllocationFault;

TEST(Guard, PassesTheResultOn) {
  EXPECT_EQ(Guarded(1, [] { return 0; }), 0);
  EXPECT_STREQ(Guarded<const char*>(nullptr, [] { return "text"; }), "text");
}

TEST(Guard, AnyExceptionIsTheFailure) {
  EXPECT_EQ(Guarded(1, []() -> int { throw std::bad_alloc(); }), 1);
  EXPECT_EQ(Guarded(-1, []() -> int { throw std::runtime_error("text"); }), -1);
  EXPECT_EQ(Guarded<char*>(nullptr, []() -> char* { throw 7; }), nullptr);
}

TEST(Guard, RunningOutOfMemoryIsTheFailure) {
  constexpr std::size_t kLength = 1000;
  const AllocationFault fault(1);
  EXPECT_EQ(Guarded(1, [] { return std::string(kLength, 'x').size() == kLength ? 0 : 2; }), 1);
  EXPECT_TRUE(fault.Happened());
}

// What a thread left behind that ended itself within a guard.
struct Trail {
  bool unwound = false;
  bool returned = false;
};

struct Unwinding {
  Trail& trail;
  ~Unwinding() {
    trail.unwound = true;
  }
};

void* ExitWithinGuard(void* raw) {
  Trail& trail = *static_cast<Trail*>(raw);
  (void)Guarded(1, [&trail]() -> int {
    const Unwinding unwinding{trail};
    pthread_exit(&trail);
  });
  trail.returned = true;
  return nullptr;
}

TEST(Guard, EndOfTheThreadPassesThrough) {
#ifdef ZEPHLANE_SANITIZED
  GTEST_SKIP() << "the null check takes the exception of a forced unwinding, which has no object, "
                  "for a reference to nothing";
#endif
  Trail trail;
  pthread_t thread{};
  void* result = nullptr;
  ASSERT_EQ(pthread_create(&thread, nullptr, ExitWithinGuard, &trail), 0);
  ASSERT_EQ(pthread_join(thread, &result), 0);
  EXPECT_EQ(result, &trail);
  EXPECT_TRUE(trail.unwound);
  EXPECT_FALSE(trail.returned);
}

}  // namespace
