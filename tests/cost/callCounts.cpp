// SPDX-License-Identifier: MIT
//
// read(), write(), recv() and send() here stand before those of the C library for hiredis too. The
// linker sends the allocations of the library's objects to the __wrap_ functions.
#include "cost/callCounts.h"

#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <new>

namespace {

struct Running {
  bool counts = false;
  int sent_to = -1;  // the descriptor that something was sent to, with no reply read since
  int round_trips = 0;
  int allocations = 0;
};
thread_local Running running;

void Sent(int fd) {
  if (running.counts) { running.sent_to = fd; }
}

void Receives(int fd) {
  if (!running.counts || running.sent_to != fd) { return; }
  ++running.round_trips;
  running.sent_to = -1;
}

void* Allocated(void* memory) {
  if (running.counts) { ++running.allocations; }
  return memory;
}

}  // namespace

extern "C" {

ssize_t read(int fd, void* buffer, std::size_t size) {
  Receives(fd);
  return syscall(SYS_read, fd, buffer, size);
}

ssize_t write(int fd, const void* buffer, std::size_t size) {
  Sent(fd);
  return syscall(SYS_write, fd, buffer, size);
}

ssize_t recv(int fd, void* buffer, std::size_t size, int flags) {
  Receives(fd);
  return syscall(SYS_recvfrom, fd, buffer, size, flags, nullptr, nullptr);
}

ssize_t send(int fd, const void* buffer, std::size_t size, int flags) {
  Sent(fd);
  return syscall(SYS_sendto, fd, buffer, size, flags, nullptr, 0);
}

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
char* __real_strdup(const char* text);
void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);
char* __wrap_strdup(const char* text);

void* __wrap_malloc(std::size_t size) {
  return Allocated(__real_malloc(size));
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return Allocated(__real_calloc(count, size));
}

void* __wrap_realloc(void* memory, std::size_t size) {
  return Allocated(__real_realloc(memory, size));
}

char* __wrap_strdup(const char* text) {
  return static_cast<char*>(Allocated(__real_strdup(text)));
}

}  // extern "C"

// For the C++ library too, into which parts of std::string and others may be compiled or not.
void* operator new(std::size_t size) {
  void* memory = __wrap_malloc(size);
  if (memory == nullptr) { throw std::bad_alloc(); }
  return memory;
}

void operator delete(void* memory) noexcept {
  std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}

namespace zephlane::cost {

CallCounts::CallCounts() {
  running = Running{true};
}

CallCounts::~CallCounts() {
  running.counts = false;
}

void CallCounts::Stop() {
  running.counts = false;
  round_trips_ = running.round_trips;
  allocations_ = running.allocations;
}

}  // namespace zephlane::cost
