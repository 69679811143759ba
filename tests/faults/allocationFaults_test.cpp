// SPDX-License-Identifier: MIT
//
// Every exported function when memory runs out: its n-th allocation fails, for n = 1, 2, ... until
// the call makes no n-th one, and then again with all later ones failing too. Each time it gives
// its documented failure or its success, leaves nothing behind that it does not promise, and the
// connection and the locks can be used afterwards.
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "faults/everyFunction.h"
#include "faults/faultStage.h"
#include "support/allocationFault.h"
#include "support/output.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

constexpr int kMaximumPoints = 10000;

struct Figures {
  int functions = 0;
  int points = 0;
};
Figures all_figures;

// What one point gave.
struct Point {
  Outcome outcome;
  bool happened = false;
  std::string before;  // the store's content
  std::string after;
  long descriptors = 0;  // left open
};

class AllocationFaults : public testing::TestWithParam<FunctionFamily> {
 protected:
  void TearDown() override {
    if (figures_.functions == 0) { return; }
    (void)std::printf("%-16.*s %4d functions %6d points\n",
                      static_cast<int>(GetParam().name.size()), GetParam().name.data(),
                      figures_.functions, figures_.points);
    all_figures.functions += figures_.functions;
    all_figures.points += figures_.points;
  }
  // With n 0 nothing fails.
  Point Run(const FunctionCase& function, int n, bool and_all_after) {
    Point point;
    point.descriptors = -OpenDescriptors();
    const Output printed = Capture([&] {
      Prepare(function, stage_.Get());
      point.before = stage_.Content();
      AllocationFault fault(n, and_all_after);
      point.outcome = function.call(stage_.Get());
      fault.Disarm();
      point.happened = fault.Happened();
      point.after = stage_.Content();
      Finish(function, stage_.Get());
    });
    point.descriptors += OpenDescriptors();
    return point;
  }
  // False when something is not as it must be.
  bool Check(const FunctionCase& function, const Point& point) {
    const int failures_before = Failures();
    const Result result = point.outcome.result;
    if (point.happened) {
      EXPECT_TRUE(result == Result::kSuccess || result == Result::kFailure)
          << Described(point.outcome);
    } else {
      EXPECT_EQ(result, Result::kSuccess) << Described(point.outcome);
    }
    const bool may_leave = (function.traits & kLeavesParts) != 0;
    if (result == Result::kFailure && !may_leave) { EXPECT_EQ(point.after, point.before); }
    if ((function.traits & kLeavesThread) == 0) { EXPECT_EQ(point.descriptors, 0); }
    EXPECT_TRUE(stage_.AnswersRight());
    EXPECT_EQ(HeldLocks(), "");
    return Failures() == failures_before;
  }
  static int Failures() {
    return testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
  }
  void RunAll(const FunctionCase& function, bool and_all_after) {
    SCOPED_TRACE(and_all_after ? "and all later ones" : "alone");
    for (int n = 1; n < kMaximumPoints; ++n) {
      SCOPED_TRACE("allocation " + std::to_string(n));
      const Point point = Run(function, n, and_all_after);
      if (!Check(function, point) || !point.happened) { return; }
      ++figures_.points;
    }
    ADD_FAILURE() << "no end of allocations";
  }
  Figures figures_;
  FaultStage stage_;
};

TEST_P(AllocationFaults, EndInTheDocumentedFailureOrInSuccess) {
  for (const FunctionCase& function : GetParam().cases) {
    if (!MayRepeat(function)) { continue; }
    SCOPED_TRACE(function.name);
    ++figures_.functions;
    (void)Run(function, 0, false);  // what the process opens once is open then
    RunAll(function, false);
    RunAll(function, true);
    EXPECT_FALSE(HasLeaks());
  }
}

// Compiling a regular expression allocates as well, in the C library.
TEST_P(AllocationFaults, OfRegularExpressionsEndSo) {
  for (const FunctionCase& function : GetParam().cases) {
    if (!MayRepeat(function)) { continue; }
    SCOPED_TRACE(function.name);
    Outcome outcome;
    const Output printed = Capture([&] {
      Prepare(function, stage_.Get());
      {
        const RegexFault fault;
        outcome = function.call(stage_.Get());
      }
      Finish(function, stage_.Get());
    });
    EXPECT_TRUE(outcome.result == Result::kSuccess || outcome.result == Result::kFailure)
        << Described(outcome);
    EXPECT_TRUE(stage_.AnswersRight());
    EXPECT_EQ(HeldLocks(), "");
  }
  EXPECT_FALSE(HasLeaks());
}

INSTANTIATE_TEST_SUITE_P(Every, AllocationFaults, testing::ValuesIn(FaultFamilies()), FamilyName);

// The sum, when one process runs more than one family.
class Total : public testing::Environment {
 public:
  void TearDown() override {
    (void)std::printf("allocation faults: %d functions, %d points\n", all_figures.functions,
                      all_figures.points);
  }
};
testing::Environment* const total = testing::AddGlobalTestEnvironment(new Total);

}  // namespace
}  // namespace zephlane::test
