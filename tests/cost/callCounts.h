// SPDX-License-Identifier: MIT
//
// Counts what the calling thread does while a count lives: turns of its conversation with servers,
// and allocations by the library's own objects.
#pragma once

namespace zephlane::cost {

class CallCounts {
 public:
  CallCounts();
  CallCounts(const CallCounts&) = delete;
  CallCounts& operator=(const CallCounts&) = delete;
  ~CallCounts();
  // Ends the count; the figures stay.
  void Stop();
  // Times that something was sent and a reply then waited for. What is sent in one go, however many
  // commands that are, is one.
  [[nodiscard]] int RoundTrips() const {
    return round_trips_;
  }
  // malloc, calloc, realloc and operator new, not those of hiredis and other libraries.
  [[nodiscard]] int Allocations() const {
    return allocations_;
  }

 private:
  int round_trips_ = 0;
  int allocations_ = 0;
};

}  // namespace zephlane::cost
