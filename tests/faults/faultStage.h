// SPDX-License-Identifier: MIT
//
// What the fault tests share: connections for one point after the other, the store as text, and
// what must hold after every call, whatever failed in it.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "faults/everyFunction.h"

namespace zephlane::test {

// Connections to the real store. The one for calls can be opened anew.
class FaultStage {
 public:
  FaultStage();
  FaultStage(const FaultStage&) = delete;
  FaultStage& operator=(const FaultStage&) = delete;
  ~FaultStage();
  [[nodiscard]] Stage& Get() {
    return stage_;
  }
  // Whether the connection for calls gives the right answer to what is asked next.
  [[nodiscard]] bool AnswersRight();
  // The whole content as text, without the counters of IDs: a number that was drawn is gone.
  [[nodiscard]] std::string Content();

 private:
  Stage stage_;
};

// Locks that a call left held, as a list of names.
std::string HeldLocks();

// How many files and connections this process has open.
long OpenDescriptors();

// Memory that is lost, when a checker watches; nothing is said without one.
bool HasLeaks();

// What names a point in messages.
std::string Described(const Outcome& outcome);

// The families as cases of a test: a whole interpreter run, which takes longer than anything else,
// is one of its own, "driver".
std::vector<FunctionFamily> FaultFamilies();

// The names of cases of a test that is instantiated with the families.
std::string FamilyName(const testing::TestParamInfo<FunctionFamily>& info);

}  // namespace zephlane::test
