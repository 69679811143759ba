// SPDX-License-Identifier: MIT
//
// A socket that listens on 127.0.0.1 at a port of its own, for cases that play a server themselves.
// Connections to it are complete as soon as they are waiting to be accepted.
#pragma once

namespace zephlane::test {

class LocalListener {
 public:
  LocalListener();
  LocalListener(const LocalListener&) = delete;
  LocalListener& operator=(const LocalListener&) = delete;
  ~LocalListener();

  [[nodiscard]] int Port() const {
    return port_;
  }
  // The other end of the next connection, which the caller closes; negative after Stop().
  [[nodiscard]] int Accept() const;
  // Ends an Accept() that waits.
  void Stop() const;

 private:
  int socket_;
  int port_ = 0;
};

}  // namespace zephlane::test
