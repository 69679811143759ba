// SPDX-License-Identifier: MIT
#include "support/output.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>
#include <regex>

namespace zephlane::test {

namespace {

// Sends one descriptor into a file in memory until it is taken back.
class Redirection {
 public:
  explicit Redirection(int fd)
      : fd_(fd), saved_(fcntl(fd, F_DUPFD_CLOEXEC, 3)), file_(memfd_create("output", MFD_CLOEXEC)) {
    (void)dup2(file_, fd_);
  }
  Redirection(const Redirection&) = delete;
  Redirection& operator=(const Redirection&) = delete;
  ~Redirection() {
    (void)close(saved_);
    (void)close(file_);
  }
  std::string TakeBack() {
    (void)dup2(saved_, fd_);
    std::string text(static_cast<std::size_t>(lseek(file_, 0, SEEK_END)), '\0');
    (void)!pread(file_, text.data(), text.size(), 0);
    return text;
  }

 private:
  int fd_;
  int saved_;
  int file_;
};

}  // namespace

Output Capture(const std::function<void()>& body) {
  (void)std::fflush(nullptr);
  Redirection out(STDOUT_FILENO);
  Redirection err(STDERR_FILENO);
  body();
  (void)std::fflush(nullptr);
  return {out.TakeBack(), err.TakeBack()};
}

std::string Masked(const std::string& printed) {
  // Three columns for the API, four for the interpreter; a longer number takes what it needs.
  static const std::regex api(R"((^|\n)(\[ERROR\]      zephlaneAPI\.cpp:)(  \d| \d\d|\d{3,})(: ))");
  static const std::regex interpreter(
      R"((^|\n)(\[ERROR\] [A-Za-z]+\.cpp:)(   \d|  \d\d| \d\d\d|\d{4,})(: ))");
  const std::string masked = std::regex_replace(printed, api, "$1$2###$4");
  return std::regex_replace(masked, interpreter, "$1$2###$4");
}

std::string ApiReport(const std::string& text) {
  return "[ERROR]      zephlaneAPI.cpp:###: " + text + "\n";
}

std::string InterpreterReport(const std::string& source, const std::string& text) {
  return "[ERROR] " + source + ":###: " + text + "\n";
}

std::string InterpreterReport(const std::string& source, int line, const std::string& text) {
  char number[16];
  (void)std::snprintf(number, sizeof(number), "%4d", line);
  return "[ERROR] " + source + ":" + number + ": " + text + "\n";
}

}  // namespace zephlane::test
