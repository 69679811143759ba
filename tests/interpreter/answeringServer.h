// SPDX-License-Identifier: MIT
//
// A server at the library's fixed address, for functions that open their connection themselves. It
// answers like a Redis server that holds nothing and accepts everything, except where a case says
// otherwise. The real server must be gone first.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace zephlane::test {

class AnsweringServer {
 public:
  // The reply to a command, given as its words in one line. No value: the usual reply; an empty
  // one: the end of the connection.
  using Answer = std::function<std::optional<std::string>(const std::string& command)>;

  explicit AnsweringServer(Answer answer);
  AnsweringServer(const AnsweringServer&) = delete;
  AnsweringServer& operator=(const AnsweringServer&) = delete;
  ~AnsweringServer();

 private:
  void Serve();
  void ServeConnection(int fd);
  bool Reply(int fd, const std::string& command);

  Answer answer_;
  int listener_ = -1;
  std::thread thread_;
};

}  // namespace zephlane::test
