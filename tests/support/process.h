// SPDX-License-Identifier: MIT
//
// Second processes: programs run to their end, and forked children of a test that has one thread.
// Children and parent wait for each other by what the kernel shows, never by time.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

namespace zephlane::test {

struct EndedProgram {
  int status = 0;  // its exit status; 128 and the signal's number when a signal ended it
  std::string out;
  std::string err;
};

// Runs a program, found as the shell finds it, until it ends.
EndedProgram RunProgramToEnd(const std::vector<std::string>& words);

// A gate that each passer waits at until it is opened for one more. Processes share it over a fork.
class Gate {
 public:
  Gate();
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;
  ~Gate();
  void Open(int passes = 1);
  void Pass();
  // Whether someone could pass without waiting.
  [[nodiscard]] bool IsOpen() const;

 private:
  int ends_[2];
};

// Runs `body` in a forked child, which ends without running what its parent has at exit. A child
// that still runs at the end of the scope is killed.
class ForkedChild {
 public:
  explicit ForkedChild(const std::function<std::string()>& body);
  ForkedChild(const ForkedChild&) = delete;
  ForkedChild& operator=(const ForkedChild&) = delete;
  ~ForkedChild();

  // Waits for the end of the child: what `body` returned, or which signal ended it.
  std::string Result();
  // Ends the child with SIGKILL and waits until it is gone.
  void Kill();
  // Sends a signal and returns when the child has taken it, so that a wait of the child in the
  // kernel is over or begun anew; false when the child ended.
  [[nodiscard]] bool Deliver(int signal_number) const;
  // Returns when the child waits for a record lock; false when it ended without.
  [[nodiscard]] bool WaitsForLock() const;

 private:
  pid_t pid_ = -1;
  int result_ = -1;
};

}  // namespace zephlane::test
