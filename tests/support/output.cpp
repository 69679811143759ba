// SPDX-License-Identifier: MIT
#include "support/output.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <string_view>

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

constexpr std::string_view kApiPrefix = "[ERROR]      zephlaneAPI.cpp:";
constexpr std::string_view kInterpreterPrefix = "[ERROR] ";
constexpr std::string_view kDigits = "0123456789";

// Where the line number begins, and the columns it has at least; no columns when there is none.
struct NumberPlace {
  std::size_t begin = 0;
  std::size_t width = 0;
};

NumberPlace FindNumber(std::string_view line) {
  if (line.starts_with(kApiPrefix)) { return {kApiPrefix.size(), 3}; }
  const std::size_t colon = line.find(':');
  const bool is_report = line.starts_with(kInterpreterPrefix) && colon != std::string_view::npos &&
                         line.substr(0, colon).ends_with(".cpp") &&
                         line.find(' ', kInterpreterPrefix.size()) > colon;
  return is_report ? NumberPlace{colon + 1, 4} : NumberPlace{};
}

std::string MaskedLine(std::string_view line) {
  const NumberPlace place = FindNumber(line);
  const std::string_view rest = line.substr(place.begin);
  const std::size_t blanks = std::min(rest.find_first_not_of(' '), rest.size());
  const std::size_t length = std::min(rest.find_first_not_of(kDigits, blanks), rest.size());
  // A number that is longer than its columns takes what it needs.
  const bool in_width = length == place.width || (blanks == 0 && length > place.width);
  const bool is_number = place.width > 0 && length > blanks && rest.substr(length, 2) == ": ";
  if (!in_width || !is_number) { return std::string(line); }
  return std::string(line.substr(0, place.begin)) + "###" + std::string(rest.substr(length));
}

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
  std::string masked;
  for (std::size_t begin = 0; begin < printed.size();) {
    const std::size_t end = std::min(printed.find('\n', begin), printed.size() - 1) + 1;
    masked += MaskedLine(std::string_view(printed).substr(begin, end - begin));
    begin = end;
  }
  return masked;
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
