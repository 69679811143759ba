// SPDX-License-Identifier: MIT
//
// The linker sends the calls of the objects in a test program to the __wrap_ functions here.
#include "support/allocationFault.h"

#include <regex.h>

#include <cerrno>
#include <cstddef>
#include <new>

namespace {

thread_local int calls_until_failure = 0;  // 0: not armed; counts down to the failing call
thread_local bool all_after = false;
thread_local bool failed = false;
thread_local bool regex_fails = false;

bool FailsNow() {
  if (calls_until_failure == 0) { return false; }
  if (calls_until_failure > 1) {
    --calls_until_failure;
    return false;
  }
  failed = true;
  errno = ENOMEM;
  if (!all_after) { calls_until_failure = 0; }
  return true;
}

}  // namespace

extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* memory, std::size_t size);
char* __real_strdup(const char* text);
char* __real_strndup(const char* text, std::size_t size);
int __real_regcomp(regex_t* expression, const char* pattern, int flags);

void* __wrap_malloc(std::size_t size);
void* __wrap_calloc(std::size_t count, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size);
char* __wrap_strdup(const char* text);
char* __wrap_strndup(const char* text, std::size_t size);
int __wrap_regcomp(regex_t* expression, const char* pattern, int flags);

void* __wrap_malloc(std::size_t size) {
  return FailsNow() ? nullptr : __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  return FailsNow() ? nullptr : __real_calloc(count, size);
}

void* __wrap_realloc(void* memory, std::size_t size) {
  return FailsNow() ? nullptr : __real_realloc(memory, size);
}

char* __wrap_strdup(const char* text) {
  return FailsNow() ? nullptr : __real_strdup(text);
}

char* __wrap_strndup(const char* text, std::size_t size) {
  return FailsNow() ? nullptr : __real_strndup(text, size);
}

int __wrap_regcomp(regex_t* expression, const char* pattern, int flags) {
  return regex_fails ? REG_ESPACE : __real_regcomp(expression, pattern, flags);
}

// operator new and new[], whose parameter is spelled differently on 32-bit and 64-bit machines.
#if __SIZEOF_SIZE_T__ == 8
#define ZEPHLANE_NEW(prefix) prefix##_Znwm
#define ZEPHLANE_NEW_ARRAY(prefix) prefix##_Znam
#else
#define ZEPHLANE_NEW(prefix) prefix##_Znwj
#define ZEPHLANE_NEW_ARRAY(prefix) prefix##_Znaj
#endif

void* ZEPHLANE_NEW(__real_)(std::size_t size);
void* ZEPHLANE_NEW(__wrap_)(std::size_t size);
void* ZEPHLANE_NEW(__wrap_)(std::size_t size) {
  if (FailsNow()) { throw std::bad_alloc(); }
  return ZEPHLANE_NEW(__real_)(size);
}

void* ZEPHLANE_NEW_ARRAY(__real_)(std::size_t size);
void* ZEPHLANE_NEW_ARRAY(__wrap_)(std::size_t size);
void* ZEPHLANE_NEW_ARRAY(__wrap_)(std::size_t size) {
  if (FailsNow()) { throw std::bad_alloc(); }
  return ZEPHLANE_NEW_ARRAY(__real_)(size);
}

}  // extern "C"

namespace zephlane::test {

AllocationFault::AllocationFault(int n, bool and_all_after) {
  failed = false;
  all_after = and_all_after;
  calls_until_failure = n;
}

AllocationFault::~AllocationFault() {
  Disarm();
}

bool AllocationFault::Happened() const {
  return happened_ || failed;
}

void AllocationFault::Disarm() {
  happened_ = Happened();
  calls_until_failure = 0;
}

RegexFault::RegexFault() {
  regex_fails = true;
}

RegexFault::~RegexFault() {
  regex_fails = false;
}

}  // namespace zephlane::test
