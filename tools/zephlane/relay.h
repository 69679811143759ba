// SPDX-License-Identifier: MIT
//
// While a Relay lives, what the library prints on either descriptor goes through a pipe, and one
// thread brings it to standard error in whole lines, with a status below them: rewritten in place
// on a terminal, as a line now and then elsewhere. Only that thread writes, so nothing mixes.
#pragma once

#include <functional>
#include <string>
#include <thread>

#include "console.h"

namespace zephlane::tool {

class Relay {
 public:
  using Status = std::function<std::string()>;  // called by the relay's thread

  Relay(Console& console, Status status);
  Relay(const Relay&) = delete;
  Relay& operator=(const Relay&) = delete;
  // Brings out what is left, then the status once more.
  ~Relay();

 private:
  void Run();
  void TakeIn(std::string_view printed);
  void ShowStatus();
  void ClearStatus();

  Console& console_;
  Status status_;
  bool in_place_;
  int read_end_ = -1;
  std::string unfinished_;  // of the line being printed
  bool status_stands_ = false;
  std::thread thread_;
};

}  // namespace zephlane::tool
