// SPDX-License-Identifier: MIT
#include "faults/servedConnection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <charconv>
#include <utility>

namespace zephlane::test {

namespace {

// The number behind the type character of a line that begins at `*at`, which is moved behind the
// line; false when the line is not whole yet.
bool TakeNumber(std::string_view text, std::size_t* at, std::size_t* number) {
  const std::size_t end = text.find('\n', *at);
  if (end == std::string_view::npos) { return false; }
  (void)std::from_chars(text.data() + *at + 1, text.data() + end, *number);
  *at = end + 1;
  return true;
}

// The first command of `text`, which is taken off it; false when it is not whole yet.
bool TakeCommand(std::string_view* text, ServedConnection::Command* command) {
  std::size_t at = 0;
  std::size_t count = 0;
  if (text->empty() || !TakeNumber(*text, &at, &count)) { return false; }
  for (std::size_t i = 0; i < count; ++i) {
    std::size_t length = 0;
    if (!TakeNumber(*text, &at, &length) || text->size() < at + length + 2) { return false; }
    if (i == 0) { command->word = text->substr(at, length); }
    at += length + 2;
  }
  command->raw = text->substr(0, at);
  text->remove_prefix(at);
  return true;
}

bool SendAll(int fd, std::string_view raw) {
  while (!raw.empty()) {
    const ssize_t part = send(fd, raw.data(), raw.size(), MSG_NOSIGNAL);
    if (part <= 0) { return false; }
    raw.remove_prefix(static_cast<std::size_t>(part));
  }
  return true;
}

}  // namespace

ServedConnection::ServedConnection(Handler handler) : handler_(std::move(handler)) {
  int ends[2];
  (void)!socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
  fd_ = ends[0];
  ctx_ = redisConnectFd(ends[1]);
  ctx_->flags |= REDIS_BLOCK;  // as connections that redisConnect() makes
  thread_ = std::thread([this] { Serve(); });
}

ServedConnection::~ServedConnection() {
  End();
  if (ctx_ != nullptr) { redisFree(ctx_); }
  (void)close(fd_);
}

redisContext* ServedConnection::Release() {
  return std::exchange(ctx_, nullptr);
}

void ServedConnection::End() {
  (void)shutdown(fd_, SHUT_RDWR);
  if (thread_.joinable()) { thread_.join(); }
}

bool ServedConnection::ServeCommands(std::string* pending) {
  std::string_view rest = *pending;
  Command command;
  while (TakeCommand(&rest, &command)) {
    const Answer answer = handler_(command);
    if (!SendAll(fd_, answer.raw)) { return false; }
    if (answer.then_close) {
      (void)shutdown(fd_, SHUT_RDWR);
      return false;
    }
  }
  pending->erase(0, pending->size() - rest.size());
  return true;
}

void ServedConnection::Serve() {
  std::string pending;
  char part[16384];
  for (;;) {
    const ssize_t length = recv(fd_, part, sizeof(part), 0);
    if (length <= 0) { return; }
    pending.append(part, static_cast<std::size_t>(length));
    if (!ServeCommands(&pending)) { return; }
  }
}

}  // namespace zephlane::test
