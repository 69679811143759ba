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

// The end of the range in a line such as "7f12a0000000-7f12a0021000 rw-p 00000000 00:00 0 /a/file";
// 0 for another line.
std::uint64_t RangeEnd(const std::string& line) {
  std::uint64_t end = 0;
  return std::sscanf(line.c_str(), "%*[0-9a-f]-%" SCNx64 " ", &end) == 1 ? end : 0;
}

// An emulated program of 32 bits lies at the low end of the memory, its emulator far above.
constexpr std::uint64_t kEndOfMemory =
    sizeof(void*) == 4 ? (std::uint64_t{1} << 32) : std::uint64_t{UINT64_MAX};

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
  long sum = 0;
  std::uint64_t end = 0;
  std::ifstream stream("/proc/self/smaps");
  for (std::string line; std::getline(stream, line);) {
    if (const std::uint64_t next = RangeEnd(line); next != 0) { end = next; }
    long kilobytes = 0;
    const bool is_resident = std::sscanf(line.c_str(), "Rss: %ld kB", &kilobytes) == 1;
    if (is_resident && end <= kEndOfMemory) { sum += kilobytes; }
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
