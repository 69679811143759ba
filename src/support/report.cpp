// SPDX-License-Identifier: MIT
//
// Prefix and text of a report go out under one hold of the stream, so that reports of several
// threads never mix within a line.
#include "support/report.h"

#include <cstdarg>
#include <cstdio>

namespace zephlane {

namespace {

class StreamHold {
 public:
  explicit StreamHold(std::FILE* stream) noexcept : stream_(stream) {
    flockfile(stream_);
  }
  StreamHold(const StreamHold&) = delete;
  StreamHold& operator=(const StreamHold&) = delete;
  ~StreamHold() {
    funlockfile(stream_);
  }

 private:
  std::FILE* stream_;
};

}  // namespace

void ApiError::operator()(const char* format, ...) const {
  const StreamHold hold(stdout);
  // One name for every source of the API module: it is what readers of the logs know.
  (void)std::printf("[ERROR] %20s:%3d: ", "zephlaneAPI.cpp", line_);
  std::va_list arguments;
  va_start(arguments, format);
  (void)std::vprintf(format, arguments);
  va_end(arguments);
}

void InterpreterError::operator()(const char* format, ...) const {
  const StreamHold hold(stderr);
  (void)std::fprintf(stderr, "[ERROR] %s:%4d: ", source_, line_);
  std::va_list arguments;
  va_start(arguments, format);
  (void)std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

}  // namespace zephlane
