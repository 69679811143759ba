// SPDX-License-Identifier: MIT
//
// The linker sends the calls of the objects in a test program to the __wrap_ functions here.
#include "support/callFault.h"

#include <fcntl.h>
#include <hiredis/hiredis.h>

#include <cerrno>
#include <cstdarg>
#include <utility>

namespace {

thread_local int failing_command = -1;  // -1: not armed
thread_local int failing_error = 0;
thread_local int failures_left = 0;
thread_local int calls = 0;
thread_local bool connect_fails = false;
thread_local redisContext* connect_result = nullptr;

bool FailsNow(int cmd) {
  if (cmd != failing_command) { return false; }
  ++calls;
  if (failures_left == 0) { return false; }
  --failures_left;
  errno = failing_error;
  return true;
}

}  // namespace

extern "C" {

// fcntl() of objects that are built with 64-bit file offsets has the second name.
int __real_fcntl(int fd, int cmd, ...);
int __real_fcntl64(int fd, int cmd, ...);
redisContext* __real_redisConnect(const char* ip, int port);

int __wrap_fcntl(int fd, int cmd, ...);
int __wrap_fcntl64(int fd, int cmd, ...);
redisContext* __wrap_redisConnect(const char* ip, int port);

// Commands with a number take it from a register or slot of a pointer's size too.
int __wrap_fcntl(int fd, int cmd, ...) {
  std::va_list arguments;
  va_start(arguments, cmd);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  return FailsNow(cmd) ? -1 : __real_fcntl(fd, cmd, argument);
}

int __wrap_fcntl64(int fd, int cmd, ...) {
  std::va_list arguments;
  va_start(arguments, cmd);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  return FailsNow(cmd) ? -1 : __real_fcntl64(fd, cmd, argument);
}

redisContext* __wrap_redisConnect(const char* ip, int port) {
  if (connect_fails) { return std::exchange(connect_result, nullptr); }
  return __real_redisConnect(ip, port);
}

}  // extern "C"

namespace zephlane::test {

FcntlFault::FcntlFault(int cmd, int error, int times) {
  failing_command = cmd;
  failing_error = error;
  failures_left = times;
  calls = 0;
}

FcntlFault::~FcntlFault() {
  failing_command = -1;
}

int FcntlFault::Calls() const {
  return calls;
}

ConnectFault::ConnectFault() {
  connect_fails = true;
}

ConnectFault::~ConnectFault() {
  connect_fails = false;
}

ConnectResult::ConnectResult(redisContext* connection) {
  connect_fails = true;
  connect_result = connection;
}

ConnectResult::~ConnectResult() {
  connect_fails = false;
  if (connect_result != nullptr) { redisFree(std::exchange(connect_result, nullptr)); }
}

}  // namespace zephlane::test
