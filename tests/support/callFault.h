// SPDX-License-Identifier: MIT
//
// Makes calls that the library's own objects make to the system or to hiredis fail, for failures
// that no real file or server gives on demand. Calls that other libraries make are not touched.
#pragma once

#include <hiredis/hiredis.h>

namespace zephlane::test {

// fcntl() with the command `cmd` fails with `error` while this lives, for the first `times` calls.
class FcntlFault {
 public:
  FcntlFault(int cmd, int error, int times = 1);
  FcntlFault(const FcntlFault&) = delete;
  FcntlFault& operator=(const FcntlFault&) = delete;
  ~FcntlFault();
  // Calls of fcntl() with that command since then, failed or not.
  [[nodiscard]] int Calls() const;
};

// redisConnect() returns NULL, as when memory is out, while this lives.
class ConnectFault {
 public:
  ConnectFault();
  ConnectFault(const ConnectFault&) = delete;
  ConnectFault& operator=(const ConnectFault&) = delete;
  ~ConnectFault();
};

// redisConnect() returns this connection, once, instead of making one while this lives; then NULL.
class ConnectResult {
 public:
  explicit ConnectResult(redisContext* connection);
  ConnectResult(const ConnectResult&) = delete;
  ConnectResult& operator=(const ConnectResult&) = delete;
  // Frees the connection when nobody has asked for it.
  ~ConnectResult();
};

}  // namespace zephlane::test
