// SPDX-License-Identifier: MIT
//
// The parsers call themselves for nested objects and for the schema files that references name. A
// chain of thousands of files, each nested deeply, would run over any stack: the parsers ask here
// before they descend, and fail instead.
#include "interpreter/stackRoom.h"

#include <pthread.h>

#include <cstdint>

#include "support/report.h"

namespace zephlane {
namespace {

// Enough for the deepest store call and the report of a failure.
constexpr std::uintptr_t kReserve = std::uintptr_t{48} * 1024;

// The lowest address of the calling thread's stack; 0 when the system does not tell.
std::uintptr_t StackEnd() noexcept {
  pthread_attr_t attributes;
  if (pthread_getattr_np(pthread_self(), &attributes) != 0) { return 0; }
  void* lowest = nullptr;
  std::size_t size = 0;
  (void)pthread_attr_getstack(&attributes, &lowest, &size);
  (void)pthread_attr_destroy(&attributes);
  return reinterpret_cast<std::uintptr_t>(lowest);
}

}  // namespace

bool StackIsUsedUp(const char* source) {
  // Asking the system reads a file for a process's first thread, so each thread asks once.
  static thread_local const std::uintptr_t stack_end = StackEnd();
  const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  if (here - stack_end > kReserve) { return false; }
  InterpreterError{source}("Schemas are nested too deeply for the stack !!!\n");
  return true;
}

}  // namespace zephlane
