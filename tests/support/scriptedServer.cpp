// SPDX-License-Identifier: MIT
#include "support/scriptedServer.h"

#include <sys/socket.h>
#include <unistd.h>

#include <utility>
#include <vector>

namespace zephlane::test {

namespace {

// The length of the first whole command of `text`, with its words put into `words`; 0 when the
// command is not complete yet.
std::size_t FirstCommand(const std::string& text, std::vector<std::string>* words) {
  std::size_t at = text.find("\r\n");
  if (text.empty() || text[0] != '*' || at == std::string::npos) { return 0; }
  std::size_t count = std::stoul(text.substr(1, at - 1));
  at += 2;
  for (; count > 0; --count) {
    const std::size_t end = text.find("\r\n", at);
    if (end == std::string::npos) { return 0; }
    const std::size_t length = std::stoul(text.substr(at + 1, end - at - 1));
    if (text.size() < end + 2 + length + 2) { return 0; }
    if (words != nullptr) { words->push_back(text.substr(end + 2, length)); }
    at = end + 2 + length + 2;
  }
  return at;
}

void SendAll(int fd, const std::string& raw) {
  std::size_t sent = 0;
  while (sent < raw.size()) {
    const ssize_t part = send(fd, raw.data() + sent, raw.size() - sent, MSG_NOSIGNAL);
    if (part <= 0) { return; }
    sent += static_cast<std::size_t>(part);
  }
}

}  // namespace

ScriptedServer::ScriptedServer() {
  int ends[2];
  (void)!socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
  fd_ = ends[0];
  ctx_ = redisConnectFd(ends[1]);
  // As connections that redisConnect() makes: blocking, with replies waited for.
  ctx_->flags |= REDIS_BLOCK;
  thread_ = std::thread([this] { Serve(); });
}

ScriptedServer::~ScriptedServer() {
  (void)shutdown(fd_, SHUT_RDWR);
  thread_.join();
  if (ctx_ != nullptr) { redisFree(ctx_); }
  (void)close(fd_);
}

redisContext* ScriptedServer::Release() {
  return std::exchange(ctx_, nullptr);
}

void ScriptedServer::WillReply(std::string raw) {
  const std::lock_guard lock(mutex_);
  script_.push_back({std::move(raw), false});
}

void ScriptedServer::WillClose(std::string raw_before) {
  const std::lock_guard lock(mutex_);
  script_.push_back({std::move(raw_before), true});
}

std::string ScriptedServer::Received() {
  const std::lock_guard lock(mutex_);
  return received_;
}

std::string ScriptedServer::Commands() {
  std::string rest = Received();
  std::string lines;
  for (;;) {
    std::vector<std::string> words;
    const std::size_t length = FirstCommand(rest, &words);
    if (length == 0) { return lines; }
    for (std::size_t i = 0; i < words.size(); ++i) { lines += (i == 0 ? "" : " ") + words[i]; }
    lines += "\n";
    rest.erase(0, length);
  }
}

bool ScriptedServer::Answer(const std::string& command) {
  Step step{"-ERR nothing is scripted for this command\r\n", false};
  {
    const std::lock_guard lock(mutex_);
    received_ += command;
    if (!script_.empty()) {
      step = std::move(script_.front());
      script_.pop_front();
    }
  }
  SendAll(fd_, step.raw);
  if (step.close_after) { (void)shutdown(fd_, SHUT_RDWR); }
  return !step.close_after;
}

void ScriptedServer::Serve() {
  std::string pending;
  char part[4096];
  for (;;) {
    const ssize_t length = recv(fd_, part, sizeof(part), 0);
    if (length <= 0) { return; }
    pending.append(part, static_cast<std::size_t>(length));
    while (const std::size_t whole = FirstCommand(pending, nullptr)) {
      const std::string command = pending.substr(0, whole);
      pending.erase(0, whole);
      if (!Answer(command)) { return; }
    }
  }
}

}  // namespace zephlane::test
