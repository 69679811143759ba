// SPDX-License-Identifier: MIT
//
// Makes calls of the library's own objects fail: malloc, calloc, realloc, strdup, strndup, operator
// new and new[] of this thread, or regcomp. Calls that other libraries make are not touched.
#pragma once

namespace zephlane::test {

// The n-th allocation from now on fails, n counted from 1; with `and_all_after`, those after it
// too.
class AllocationFault {
 public:
  explicit AllocationFault(int n, bool and_all_after = false);
  AllocationFault(const AllocationFault&) = delete;
  AllocationFault& operator=(const AllocationFault&) = delete;
  ~AllocationFault();
  // Whether the n-th allocation was reached. It may be asked after the fault is disarmed too.
  [[nodiscard]] bool Happened() const;
  // Ends the fault before the end of the scope, so that what follows may allocate.
  void Disarm();

 private:
  bool happened_ = false;
};

// Every regcomp of the library fails while this lives.
class RegexFault {
 public:
  RegexFault();
  RegexFault(const RegexFault&) = delete;
  RegexFault& operator=(const RegexFault&) = delete;
  ~RegexFault();
};

}  // namespace zephlane::test
