// SPDX-License-Identifier: MIT
#include "relay.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

namespace zephlane::tool {

namespace {

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds kPeriodInPlace{100};
constexpr std::chrono::milliseconds kPeriodOfLines{1000};
constexpr char kClearLine[] = "\r\x1b[K";

}  // namespace

Relay::Relay(Console& console, Status status)
    : console_(console), status_(std::move(status)), in_place_(console.ErrIsTerminal()) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) {
    throw std::system_error(errno, std::generic_category(), "Cannot make a pipe");
  }
  read_end_ = ends[0];
  thread_ = std::thread([this] { Run(); });
  console_.DivertPrinting(ends[1]);
  (void)close(ends[1]);
}

Relay::~Relay() {
  // The descriptors were the pipe's only writing ends: the thread reads on to the end and stops.
  console_.TakeBackPrinting();
  thread_.join();
  (void)close(read_end_);
}

void Relay::Run() {
  const auto period = in_place_ ? kPeriodInPlace : kPeriodOfLines;
  ShowStatus();
  auto due = Clock::now() + period;
  for (;;) {
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(due - Clock::now());
    pollfd input{read_end_, POLLIN, 0};
    const int ready = poll(&input, 1, static_cast<int>(std::max<long long>(wait.count(), 0)));
    if (ready > 0) {
      char part[4096];
      const ssize_t length = read(read_end_, part, sizeof(part));
      if (length == 0) { break; }
      if (length > 0) { TakeIn({part, static_cast<std::size_t>(length)}); }
    }
    if (Clock::now() >= due) {
      ShowStatus();
      due = Clock::now() + period;
    }
  }
  if (!unfinished_.empty()) { TakeIn("\n"); }
  ShowStatus();
  if (in_place_) { console_.Err("\n"); }
}

void Relay::TakeIn(std::string_view printed) {
  unfinished_ += printed;
  const std::size_t end = unfinished_.rfind('\n');
  if (end == std::string::npos) { return; }
  const bool stood = status_stands_;
  ClearStatus();
  console_.Err(std::string_view(unfinished_).substr(0, end + 1));
  unfinished_.erase(0, end + 1);
  if (stood) { ShowStatus(); }
}

void Relay::ShowStatus() {
  std::string status = status_();
  if (!in_place_) {
    console_.Err(status + "\n");
    return;
  }
  // A line that wraps could not be rewritten.
  status.resize(std::min<std::size_t>(status.size(), console_.ErrColumns() - 1));
  console_.Err(kClearLine + status);
  status_stands_ = true;
}

void Relay::ClearStatus() {
  if (status_stands_) { console_.Err(kClearLine); }
  status_stands_ = false;
}

}  // namespace zephlane::tool
