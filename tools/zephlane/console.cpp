// SPDX-License-Identifier: MIT
#include "console.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <fmt/format.h>

namespace zephlane::tool {

namespace {

constexpr unsigned kUsualColumns = 80;

// A descriptor that the caller closed is opened on nothing, so that no connection takes its number.
void OpenIfClosed(int fd, int flags) {
  if (fcntl(fd, F_GETFD) < 0) { (void)open("/dev/null", flags); }
}

// A terminal that can rewrite a line and show colours.
bool IsTerminal(int fd) {
  const char* name = std::getenv("TERM");
  return isatty(fd) == 1 && name != nullptr && std::strcmp(name, "dumb") != 0;
}

bool WriteAll(int fd, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(fd, text.data(), text.size());
    if (written < 0 && errno == EINTR) { continue; }
    if (written < 0) { return false; }
    text.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

}  // namespace

Console::Console() {
  OpenIfClosed(STDIN_FILENO, O_RDONLY);
  OpenIfClosed(STDOUT_FILENO, O_RDONLY);  // writing fails, and is said to
  OpenIfClosed(STDERR_FILENO, O_WRONLY);
  out_ = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  err_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  out_is_terminal_ = IsTerminal(out_);
  err_is_terminal_ = IsTerminal(err_);
  (void)std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  TakeBackPrinting();
}

Console::~Console() {
  (void)std::fflush(nullptr);
  (void)dup2(out_, STDOUT_FILENO);
  (void)close(out_);
  (void)close(err_);
}

void Console::Out(std::string_view data) {
  if (out_failed_ || WriteAll(out_, data)) { return; }
  out_failed_ = true;
  // A reader that has seen enough, such as head, closes the pipe: nothing to say about that.
  if (errno != EPIPE) {
    Tell(fmt::format("Cannot write to standard output: {}", std::strerror(errno)));
  }
}

void Console::Tell(std::string_view message) {
  // What the library printed before comes first.
  (void)std::fflush(stdout);
  Err(fmt::format("zephlane: {}\n", message));
}

void Console::Err(std::string_view text) {
  (void)WriteAll(err_, text);
}

unsigned Console::ErrColumns() const {
  winsize size{};
  return ioctl(err_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsualColumns;
}

void Console::DivertPrinting(int fd) {
  (void)std::fflush(nullptr);
  (void)dup2(fd, STDOUT_FILENO);
  (void)dup2(fd, STDERR_FILENO);
}

void Console::TakeBackPrinting() {
  DivertPrinting(err_);
}

}  // namespace zephlane::tool
