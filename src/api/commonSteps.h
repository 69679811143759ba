// SPDX-License-Identifier: MIT
//
// Steps that several families of the API share. What they report carries the line of their caller,
// so that a message still names the function that failed.
#pragma once

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <string_view>
#include <utility>

#include <hiredis/hiredis.h>

#include "redis/reply.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/types.h>

namespace zephlane {

// Whether every pointer and the connection are given. Reports the first kind that is missing,
// pointers before the connection.
[[nodiscard]] inline bool ArgumentsGiven(const redisContext* ctx,
                                         std::initializer_list<const void*> pointers,
                                         int line = __builtin_LINE()) {
  if (std::find(pointers.begin(), pointers.end(), nullptr) != pointers.end()) {
    ApiError{line}("Argument: NULL pointer\n");
    return false;
  }
  if (!ctx) {
    ApiError{line}("Argument: redis context\n");
    return false;
  }
  return true;
}

// The caller's pointers in an array of our own; null, after a report, when memory is out.
[[nodiscard]] inline CArray<char*> CopyOfPointers(char* const* pointers, std::size_t count,
                                                  int line = __builtin_LINE()) {
  CArray<char*> copy = ZeroedArray<char*>(count);
  if (!copy) {
    ApiError{line}("malloc\n");
    return nullptr;
  }
  std::copy_n(pointers, count, copy.get());
  return copy;
}

// The number of elements of an array; 0 for any other reply. Precondition: a reply came.
[[nodiscard]] inline std::size_t ArrayLength(const Reply& reply, int line = __builtin_LINE()) {
  if (reply.Is(REDIS_REPLY_ARRAY)) { return reply.ElementCount(); }
  if (reply.ElementCount() > 0) { ApiError{line}("Wrong reply!\n"); }
  return 0;
}

// A heap copy of each element, for the caller of the API to free; null when there is none, or,
// after a report, when memory is out. `out_count` (may be null) counts the copies as they are made.
// Precondition: a reply came.
[[nodiscard]] inline char** CopyOfStrings(const Reply& reply, unsigned int* out_count,
                                          int line = __builtin_LINE()) {
  unsigned int unwanted = 0;
  unsigned int& count = out_count ? *out_count : unwanted;
  count = 0;
  const std::size_t length = ArrayLength(reply, line);
  if (length == 0) { return nullptr; }
  CStringArray strings(length);
  for (std::size_t i = 0; strings && i < length; ++i) {
    CString copy = Duplicate(reply.ElementText(i));
    if (!copy) { break; }
    strings.Set(i, std::move(copy));
    ++count;
  }
  if (count < length) {
    ApiError{line}("malloc\n");
    return nullptr;
  }
  return strings.Release();
}

// The members of a set in Redis's order, counted first and then read; null when there are none, or
// when the set changed in between.
[[nodiscard]] inline CArray<SetData> ReadMembers(redisContext* ctx, const char* set_key,
                                                 unsigned int* out_count) {
  if (getInstanceCount(ctx, set_key, out_count) != 0) { return nullptr; }
  CArray<SetData> members = ZeroedArray<SetData>(*out_count);
  if (!members || getInstance(ctx, set_key, *out_count, members.get()) != 0) { return nullptr; }
  return members;
}

// Room for what is published on the fixed channels: 98 characters.
inline constexpr std::size_t kChannelTextSize = 99;

// Publishes a text cut to 98 characters: what subscribers of the fixed channels have room for.
[[nodiscard]] inline int PublishCut(redisContext* ctx, const char* channel, std::string_view text) {
  char message[kChannelTextSize];
  CopyCut(message, text);
  return publishToChannel(ctx, channel, message);
}

// The first of `count` object IDs whose hash holds `value` in `field`; null when none does.
[[nodiscard]] inline const SetData* FirstMatch(redisContext* ctx, const SetData* ids,
                                               unsigned int count, const char* field,
                                               const char* value) {
  const SetData* const match = std::find_if(ids, ids + count, [&](const SetData& id) {
    return isFieldMatched(ctx, id.aObjectID, field, value) == 1;
  });
  return match == ids + count ? nullptr : match;
}

}  // namespace zephlane
