// SPDX-License-Identifier: MIT
#include "support/memoryUse.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <span>
#include <string>

namespace zephlane::test {

namespace {

struct Range {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
};

// A line such as "7f12a0000000-7f12a0021000 rw-p 00000000 00:00 0 /some/file"; empty for another.
Range RangeOf(const std::string& line) {
  Range range;
  const int fields =
      std::sscanf(line.c_str(), "%" SCNx64 "-%" SCNx64 " ", &range.begin, &range.end);
  return fields == 2 ? range : Range{};
}

// The first range of a table of mappings that is of a file.
Range FirstOfFile(const char* table) {
  std::ifstream stream(table);
  for (std::string line; std::getline(stream, line);) {
    if (RangeOf(line).end != 0 && line.find('/') != std::string::npos) { return RangeOf(line); }
  }
  return {};
}

// Where the emulator keeps the program's memory. It shows the program's own addresses in the one
// table and those of the machine in the other.
Range ProgramMemory() {
  if constexpr (sizeof(void*) == 8) { return {0, UINT64_MAX}; }
  constexpr std::uint64_t kWhole = std::uint64_t{1} << 32;
  const Range own = FirstOfFile("/proc/self/maps");
  std::ifstream stream("/proc/self/smaps");
  for (std::string line; std::getline(stream, line);) {
    const Range range = RangeOf(line);
    if (range.end - range.begin == own.end - own.begin && range.begin % kWhole == own.begin) {
      return {range.begin - own.begin, range.begin - own.begin + kWhole};
    }
  }
  return {};
}

constexpr std::size_t kStackSize = std::size_t{1} << 20;
constexpr std::uint64_t kPaint = 0x5a17c0de5a17c0de;

struct PaintedRun {
  const std::function<void()>* body;
  std::span<std::uint64_t> stack;
  std::size_t used;
};

void* RunOnPaint(void* argument) {
  auto* const run = static_cast<PaintedRun*>(argument);
  (*run->body)();
  const auto touched = std::ranges::find_if(run->stack, [](auto word) { return word != kPaint; });
  const auto first_frame = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
  run->used = first_frame - reinterpret_cast<std::uintptr_t>(&*touched);
  return nullptr;
}

}  // namespace

long ResidentKilobytes() {
  const Range memory = ProgramMemory();
  long sum = -1;
  Range range;
  std::ifstream stream("/proc/self/smaps");
  for (std::string line; std::getline(stream, line);) {
    if (const Range next = RangeOf(line); next.end != 0) { range = next; }
    long kilobytes = 0;
    const bool is_resident = std::sscanf(line.c_str(), "Rss: %ld kB", &kilobytes) == 1;
    if (is_resident && range.begin >= memory.begin && range.end <= memory.end) {
      sum = std::max(sum, 0L) + kilobytes;
    }
  }
  return sum;
}

std::size_t DeepestStackUse(const std::function<void()>& body) {
  void* memory = mmap(nullptr, kStackSize, PROT_READ | PROT_WRITE,
                      MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (memory == MAP_FAILED) { return 0; }
  PaintedRun run{&body, {static_cast<std::uint64_t*>(memory), kStackSize / sizeof(kPaint)}, 0};
  std::ranges::fill(run.stack, kPaint);
  pthread_attr_t attributes;
  (void)pthread_attr_init(&attributes);
  (void)pthread_attr_setstack(&attributes, memory, kStackSize);
  pthread_t thread{};
  if (pthread_create(&thread, &attributes, RunOnPaint, &run) == 0) {
    (void)pthread_join(thread, nullptr);
  }
  (void)pthread_attr_destroy(&attributes);
  (void)munmap(memory, kStackSize);
  return run.used;
}

}  // namespace zephlane::test
