// SPDX-License-Identifier: MIT
#include "interpreter/answeringServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <utility>

#include "support/fixedNames.h"

namespace zephlane::test {

namespace {

int ListenAtTheFixedAddress() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int reuse = 1;
  (void)setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kRedisPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  (void)!bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address));
  (void)!listen(fd, 1);
  return fd;
}

// Takes the first whole command off `received`, as words in one line; empty when there is none yet.
std::string TakeCommand(std::string* received) {
  std::size_t at = received->find("\r\n");
  if (at == std::string::npos) { return ""; }
  std::string words;
  std::size_t count = std::stoul(received->substr(1, at - 1));
  at += 2;
  for (; count > 0; --count) {
    const std::size_t end = received->find("\r\n", at);
    if (end == std::string::npos) { return ""; }
    const std::size_t length = std::stoul(received->substr(at + 1, end - at - 1));
    if (received->size() < end + 2 + length + 2) { return ""; }
    words += (words.empty() ? "" : " ") + received->substr(end + 2, length);
    at = end + 2 + length + 2;
  }
  received->erase(0, at);
  return words;
}

std::string UsualReply(const std::string& command) {
  const std::string word = command.substr(0, command.find(' '));
  if (word == "HGET") { return "$-1\r\n"; }
  if (word == "HGETALL") { return "*0\r\n"; }
  if (word == "AUTH" || word == "HMSET") { return "+OK\r\n"; }
  return ":1\r\n";
}

}  // namespace

AnsweringServer::AnsweringServer(Answer answer)
    : answer_(std::move(answer)), listener_(ListenAtTheFixedAddress()) {
  thread_ = std::thread([this] { Serve(); });
}

AnsweringServer::~AnsweringServer() {
  (void)shutdown(listener_, SHUT_RDWR);
  thread_.join();
  (void)close(listener_);
}

void AnsweringServer::Serve() {
  for (;;) {
    const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) { return; }
    ServeConnection(fd);
    (void)close(fd);
  }
}

void AnsweringServer::ServeConnection(int fd) {
  std::string received;
  char part[4096];
  for (;;) {
    const ssize_t length = recv(fd, part, sizeof(part), 0);
    if (length <= 0) { return; }
    received.append(part, static_cast<std::size_t>(length));
    for (std::string command; !(command = TakeCommand(&received)).empty();) {
      if (!Reply(fd, command)) { return; }
    }
  }
}

bool AnsweringServer::Reply(int fd, const std::string& command) {
  const std::string reply = answer_(command).value_or(UsualReply(command));
  return !reply.empty() &&
         send(fd, reply.data(), reply.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(reply.size());
}

}  // namespace zephlane::test
