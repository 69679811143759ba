// SPDX-License-Identifier: MIT
//
// A command on its way to the server and its reply on the way back. Redis may have gone: writing to
// a closed connection raises no SIGPIPE here, since the signal would end a caller that never asked
// for it.
#pragma once

#include <cstdarg>
#include <cstddef>

#include "redis/reply.h"

namespace zephlane {

// The words of a command, borrowed: parallel arrays, as hiredis takes them.
struct RequestWords {
  const char* const* texts;
  const std::size_t* lengths;
  std::size_t count;
};

// Sends the words as one command and waits for its reply.
[[nodiscard]] Reply Exchange(redisContext* ctx, const RequestWords& words) noexcept;

// The same for a printf-style command as hiredis itself reads it.
[[nodiscard]] Reply ExchangeFormatted(redisContext* ctx, const char* format,
                                      std::va_list arguments) noexcept;

// Queues the words as one command. False when memory is out.
[[nodiscard]] bool Queue(redisContext* ctx, const RequestWords& words) noexcept;

// Commands that go out together, in as few pieces as a small buffer allows, so that the server
// works on the first while the last are still being made. The replies are the caller's to read, one
// for each command; a lost connection shows there.
class RequestBatch {
 public:
  explicit RequestBatch(redisContext* ctx) noexcept : ctx_(ctx) {}
  // Adds the words as one command. False when memory is out: what was added before still goes out.
  [[nodiscard]] bool Add(const RequestWords& words) noexcept;
  // Sends what has not been sent yet.
  void Send() noexcept;

 private:
  static constexpr std::size_t kBufferSize = 8192;

  redisContext* ctx_;
  std::size_t size_ = 0;
  char buffer_[kBufferSize];
};

// Sends what is queued and waits for the next reply.
[[nodiscard]] Reply NextReply(redisContext* ctx) noexcept;

}  // namespace zephlane
