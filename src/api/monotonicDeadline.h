// SPDX-License-Identifier: MIT
//
// The arithmetic of deadlines, apart from the clock so that it can be tested past 24 days of
// uptime.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace zephlane {

// Milliseconds since boot in 32 bits: they wrap around after 49 days.
[[nodiscard]] inline std::uint32_t Milliseconds(const std::timespec& time) noexcept {
  return static_cast<std::uint32_t>(time.tv_sec) * 1000U +
         static_cast<std::uint32_t>(time.tv_nsec / 1000000);
}

// A deadline's stored text. It is signed: past 24 days of uptime a deadline is written negative.
inline void FormatDeadline(std::uint32_t deadline, char (&text)[15]) noexcept {
  (void)std::snprintf(text, sizeof(text), "%d", static_cast<std::int32_t>(deadline));
}

// Whether a stored deadline has come. Read back unsigned: a negative text is a very large number,
// so it never comes. 64 bits wide everywhere, so that 32-bit processes agree.
[[nodiscard]] inline bool HasDeadlineCome(const char* text, std::uint32_t now) noexcept {
  return std::strtoull(text, nullptr, 10) <= now;
}

}  // namespace zephlane
