// SPDX-License-Identifier: MIT
//
// One owner type for each kind of C handle. free(), fclose(), close(), json_decref(), regfree() and
// pthread_mutex_unlock() are called here and nowhere else.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include <jansson.h>
#include <pthread.h>
#include <regex.h>
#include <unistd.h>

namespace zephlane {

struct Free {
  void operator()(void* memory) const noexcept {
    std::free(memory);
  }
};

// Memory of the malloc family, so that what is released to a C caller can be freed by it.
using CString = std::unique_ptr<char, Free>;
template <typename Record>
using CRecord = std::unique_ptr<Record, Free>;
template <typename Item>
using CArray = std::unique_ptr<Item[], Free>;

// `count` zeroed items; null when memory is out. Never null for a count of 0, as callers tell an
// empty result from a failure by it.
template <typename Item>
[[nodiscard]] CArray<Item> ZeroedArray(std::size_t count) noexcept {
  return CArray<Item>(static_cast<Item*>(std::calloc(count == 0 ? 1 : count, sizeof(Item))));
}

// The same, left as malloc gives it: for items that are written whole.
template <typename Item>
[[nodiscard]] CArray<Item> UnfilledArray(std::size_t count) noexcept {
  std::size_t size = 0;
  if (__builtin_mul_overflow(count == 0 ? 1 : count, sizeof(Item), &size)) { return nullptr; }
  return CArray<Item>(static_cast<Item*>(std::malloc(size)));
}

template <typename Record>
[[nodiscard]] CRecord<Record> ZeroedRecord() noexcept {
  return CRecord<Record>(static_cast<Record*>(std::calloc(1, sizeof(Record))));
}

[[nodiscard]] inline CString Duplicate(std::string_view text) noexcept {  // null when memory is out
  CString copy(static_cast<char*>(std::calloc(text.size() + 1, 1)));
  if (copy && !text.empty()) { std::memcpy(copy.get(), text.data(), text.size()); }
  return copy;
}

// An array of owned strings in the form C callers take over: each string freed, then the array.
class CStringArray {
 public:
  explicit CStringArray(std::size_t count) noexcept
      : count_(count),
        items_(static_cast<char**>(std::calloc(count == 0 ? 1 : count, sizeof(char*)))) {}
  CStringArray(const CStringArray&) = delete;
  CStringArray& operator=(const CStringArray&) = delete;
  ~CStringArray() {
    for (std::size_t i = 0; items_ != nullptr && i < count_; ++i) { std::free(items_[i]); }
    std::free(items_);
  }
  explicit operator bool() const noexcept {
    return items_ != nullptr;
  }
  void Set(std::size_t index, CString text) noexcept {
    items_[index] = text.release();
  }
  [[nodiscard]] char** Release() noexcept {
    return std::exchange(items_, nullptr);
  }

 private:
  std::size_t count_;
  char** items_;
};

struct CloseFile {
  void operator()(std::FILE* file) const noexcept {
    (void)std::fclose(file);
  }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

struct ReleaseJson {
  void operator()(json_t* value) const noexcept {
    json_decref(value);
  }
};
using Json = std::unique_ptr<json_t, ReleaseJson>;

class Descriptor {
 public:
  explicit Descriptor(int fd) noexcept : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) { (void)::close(fd_); }
  }
  explicit operator bool() const noexcept {
    return fd_ >= 0;
  }
  [[nodiscard]] int Get() const noexcept {
    return fd_;
  }
  [[nodiscard]] int Release() noexcept {
    return std::exchange(fd_, -1);
  }

 private:
  int fd_;
};

class Regex {
 public:
  Regex(const char* pattern, int flags) noexcept
      : compiled_(regcomp(&expression_, pattern, flags) == 0) {}
  Regex(const Regex&) = delete;
  Regex& operator=(const Regex&) = delete;
  ~Regex() {
    if (compiled_) { regfree(&expression_); }
  }
  explicit operator bool() const noexcept {
    return compiled_;
  }
  [[nodiscard]] const regex_t* Get() const noexcept {
    return &expression_;
  }

 private:
  regex_t expression_{};
  bool compiled_;
};

class MutexHold {
 public:
  explicit MutexHold(pthread_mutex_t& mutex) noexcept : mutex_(mutex) {
    (void)pthread_mutex_lock(&mutex_);
  }
  MutexHold(const MutexHold&) = delete;
  MutexHold& operator=(const MutexHold&) = delete;
  ~MutexHold() {
    (void)pthread_mutex_unlock(&mutex_);
  }

 private:
  pthread_mutex_t& mutex_;
};

}  // namespace zephlane
