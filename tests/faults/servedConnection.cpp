// SPDX-License-Identifier: MIT
#include "faults/servedConnection.h"

#include <sys/socket.h>
#include <unistd.h>

#include <utility>

namespace zephlane::test {

namespace {

// Puts the words of the first whole command of `text` from `at` on into `words` and moves `at`
// behind it; false when it is not whole yet.
bool TakeCommand(const std::string& text, std::size_t* at, std::vector<std::string>* words) {
  words->clear();
  std::size_t end = text.find("\r\n", *at);
  if (end == std::string::npos) { return false; }
  const std::size_t count = std::stoul(text.substr(*at + 1, end - *at - 1));
  std::size_t next = end + 2;
  while (words->size() < count) {
    end = text.find("\r\n", next);
    if (end == std::string::npos) { return false; }
    const std::size_t length = std::stoul(text.substr(next + 1, end - next - 1));
    if (text.size() < end + 2 + length + 2) { return false; }
    words->push_back(text.substr(end + 2, length));
    next = end + 2 + length + 2;
  }
  *at = next;
  return true;
}

bool SendAll(int fd, const std::string& raw) {
  std::size_t sent = 0;
  while (sent < raw.size()) {
    const ssize_t part = send(fd, raw.data() + sent, raw.size() - sent, MSG_NOSIGNAL);
    if (part <= 0) { return false; }
    sent += static_cast<std::size_t>(part);
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
  std::size_t at = 0;
  std::vector<std::string> words;
  while (at < pending->size() && TakeCommand(*pending, &at, &words)) {
    const Answer answer = handler_(words);
    if (!SendAll(fd_, answer.raw)) { return false; }
    if (answer.then_close) {
      (void)shutdown(fd_, SHUT_RDWR);
      return false;
    }
  }
  pending->erase(0, at);
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
