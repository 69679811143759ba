// SPDX-License-Identifier: MIT
//
// Sending: the only place that calls redisvCommand, redisCommandArgv and redisAppendCommandArgv.
#include "redis/command.h"

#include <climits>
#include <cstdarg>
#include <cstring>

namespace zephlane {

Reply Command(redisContext* ctx, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  Reply reply(redisvCommand(ctx, format, arguments));
  va_end(arguments);
  return reply;
}

Reply CommandOfText(redisContext* ctx, const char* text, ...) {
  std::va_list none;
  va_start(none, text);
  Reply reply(redisvCommand(ctx, text, none));
  va_end(none);
  return reply;
}

namespace {

// Words of a command with a word and a key of its own; 0 when no command can have so many, so that
// not even the first word finds room.
std::size_t WordCount(std::size_t per_item, std::size_t count) noexcept {
  std::size_t words = 0;
  const bool overflow = __builtin_mul_overflow(per_item, count, &words) ||
                        __builtin_add_overflow(words, 2, &words) || words > INT_MAX;
  return overflow ? 0 : words;
}

}  // namespace

ArgumentVector::ArgumentVector(const char* word, const char* key, std::size_t per_item,
                               std::size_t count) noexcept
    : capacity_(WordCount(per_item, count)),
      words_(ZeroedArray<const char*>(capacity_)),
      lengths_(words_ ? ZeroedArray<std::size_t>(capacity_) : nullptr) {
  Add(word);
  Add(key);
}

void ArgumentVector::Add(const char* word) noexcept {
  if (!words_ || !lengths_ || word == nullptr || size_ == capacity_) {
    whole_ = false;
    return;
  }
  words_[size_] = word;
  lengths_[size_] = std::strlen(word);
  ++size_;
}

void ArgumentVector::AddAll(char* const* words, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) { Add(words[i]); }
}

void ArgumentVector::AddAll(const SetData* items, std::size_t count) noexcept {
  for (std::size_t i = 0; i < count; ++i) { Add(items[i].aObjectID); }
}

Reply ArgumentVector::Send(redisContext* ctx) && noexcept {
  if (!*this) { return Reply(nullptr); }
  Reply reply(redisCommandArgv(ctx, static_cast<int>(size_), words_.get(), lengths_.get()));
  words_.reset();
  lengths_.reset();
  return reply;
}

bool ArgumentVector::Append(redisContext* ctx) && noexcept {
  if (!*this) { return false; }
  const int status =
      redisAppendCommandArgv(ctx, static_cast<int>(size_), words_.get(), lengths_.get());
  words_.reset();
  lengths_.reset();
  return status == REDIS_OK;
}

}  // namespace zephlane
