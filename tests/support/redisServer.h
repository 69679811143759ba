// SPDX-License-Identifier: MIT
//
// A redis-server child at the library's fixed address, ready when the constructor returns.
#pragma once

#include <sys/types.h>

#include <string>

namespace zephlane::test {

class RedisServer {
 public:
  // Starts the server with a password that it also writes to the library's password file.
  RedisServer();
  RedisServer(const RedisServer&) = delete;
  RedisServer& operator=(const RedisServer&) = delete;
  ~RedisServer();
  // Empty when the server is ready; otherwise why it is not.
  [[nodiscard]] const std::string& Problem() const {
    return problem_;
  }

 private:
  std::string directory_;
  std::string problem_;
  pid_t pid_ = -1;
};

}  // namespace zephlane::test
