// SPDX-License-Identifier: MIT
//
// Set commands. The order of members is Redis's own.
#include <cstdio>
#include <cstring>

#include "redis/command.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>

using zephlane::ArgumentVector;
using zephlane::Command;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kNoCount;
using zephlane::Reply;

namespace {

int IntegerOrNoCount(const Reply& reply) {
  return reply.Is(REDIS_REPLY_INTEGER) ? static_cast<int>(reply.Integer()) : kNoCount;
}

// `member_at` yields the i-th given member.
template <typename MemberAt>
bool AreAllMembers(redisContext* ctx, const char* key, unsigned int count, MemberAt member_at) {
  for (unsigned int i = 0; i < count; ++i) {
    if (sismember(ctx, key, member_at(i)) != 1) { return false; }
  }
  return true;
}

std::size_t CountWords(std::string_view text) {
  zephlane::Tokenizer words(text);
  std::size_t count = 0;
  while (!words.Next(" ").empty()) { ++count; }
  return count;
}

// The same without a format: the words of the text are borrowed where they stand.
Reply CommandOfPlainText(redisContext* ctx, std::string_view word, std::string_view text) {
  const std::size_t capacity = 1 + CountWords(text);
  const auto texts = zephlane::UnfilledArray<const char*>(capacity);
  const auto lengths = zephlane::UnfilledArray<std::size_t>(capacity);
  if (!texts || !lengths) { return Reply(nullptr); }
  zephlane::Tokenizer rest(text);
  for (std::size_t i = 0; i < capacity; ++i, word = rest.Next(" ")) {
    texts[i] = word.data();
    lengths[i] = word.size();
  }
  return zephlane::Exchange(ctx, {texts.get(), lengths.get(), capacity});
}

// Sends a command word and a text whose blanks separate further words.
Reply CommandOfWordAndText(redisContext* ctx, const char* word, const char* text) {
  if (!zephlane::Contains(text, "%")) { return CommandOfPlainText(ctx, word, text); }
  const std::size_t size = std::strlen(word) + 1 + std::strlen(text) + 1;
  const auto command = zephlane::UnfilledArray<char>(size);
  if (!command) { return Reply(nullptr); }
  (void)std::snprintf(command.get(), size, "%s %s", word, text);
  return zephlane::CommandOfText(ctx, command.get());
}

}  // namespace

int redisSetCardinality(redisContext* ctx, const char* aSetKey) {
  if (!ctx || !aSetKey) { return kNoCount; }
  const int count = IntegerOrNoCount(Command(ctx, "%s %s", "SCARD", aSetKey));
  // An empty or missing set is reported exactly like a failure.
  return count == 0 ? kNoCount : count;
}

int getInstanceCount(redisContext* ctx, const char* aSetKey, unsigned int* nOutCount) {
  if (!ctx || !aSetKey) { return kFailed; }
  const Reply reply = Command(ctx, "SMEMBERS %s", aSetKey);
  if (!reply.Is(REDIS_REPLY_ARRAY)) { return kFailed; }
  if (nOutCount) { *nOutCount = static_cast<unsigned int>(reply.ElementCount()); }
  return kDone;
}

int getInstance(redisContext* ctx, const char* aSetKey, unsigned int nCount, SetData* aOut) {
  if (!ctx || !aSetKey || nCount == 0 || !aOut) { return kFailed; }
  const Reply reply = Command(ctx, "SMEMBERS %s", aSetKey);
  if (!reply || reply.ElementCount() != nCount) { return kFailed; }
  for (unsigned int i = 0; i < nCount; ++i) {
    // No terminator: callers zero-fill the slots.
    zephlane::CopyCounted(aOut[i].aObjectID,
                          reply.ElementText(i).substr(0, zephlane::kValueSize - 1));
  }
  return kDone;
}

int deleteInstanceInSet(redisContext* ctx, const char* aSetKey, const char* aMember) {
  if (!ctx || !aSetKey || !aMember) { return kFailed; }
  return Command(ctx, "SREM %s %s", aSetKey, aMember).IsInteger(1) ? kDone : kFailed;
}

int sismember(redisContext* ctx, const char* aSetKey, const char* aMember) {
  if (!ctx || !aSetKey || !aMember) { return kNoCount; }
  return IntegerOrNoCount(Command(ctx, "SISMEMBER %s %s", aSetKey, aMember));
}

int sdiffKey(redisContext* ctx, const char* aSetKey) {
  if (!ctx || !aSetKey) { return kNoCount; }
  // The difference of a single set is the set itself.
  const Reply reply = CommandOfWordAndText(ctx, "sdiff", aSetKey);
  if (!reply.Is(REDIS_REPLY_ARRAY)) { return kNoCount; }
  return reply.ElementCount() > 0 ? 1 : 0;
}

int saddCmd(redisContext* ctx, const char* aText) {
  if (!ctx || !aText) { return kFailed; }
  const Reply reply = CommandOfWordAndText(ctx, "SADD", aText);
  return reply.Is(REDIS_REPLY_INTEGER) ? kDone : kFailed;
}

int redisSetMultipleAdd(redisContext* ctx, const char* aSetKey, char* const* aMembers,
                        unsigned int nCount) {
  if (!ctx || !aSetKey || !aMembers || nCount == 0 || !aMembers[0]) { return kFailed; }
  ArgumentVector arguments("SADD", aSetKey, 1, nCount);
  arguments.AddAll(aMembers, nCount);
  const Reply reply = std::move(arguments).Send(ctx);
  if (!reply.Is(REDIS_REPLY_INTEGER)) { return kFailed; }
  if (reply.IsInteger(nCount)) { return kDone; }
  // Some were members already, or were given twice: each is asked for.
  const auto member_at = [&](unsigned int i) { return aMembers[i]; };
  return AreAllMembers(ctx, aSetKey, nCount, member_at) ? kDone : kFailed;
}

int createSetTable(redisContext* ctx, const char* aSetKey, const SetData* aMembers,
                   unsigned int nCount) {
  if (!ctx || !aSetKey || !aMembers) { return kFailed; }
  ArgumentVector arguments("SADD", aSetKey, 1, nCount);
  unsigned int sent = 0;
  for (unsigned int i = 0; i < nCount; ++i) {
    if (aMembers[i].aObjectID[0] == '\0') { continue; }
    arguments.Add(aMembers[i].aObjectID);
    ++sent;
  }
  const Reply reply = std::move(arguments).Send(ctx);
  if (!reply.Is(REDIS_REPLY_INTEGER)) { return kFailed; }
  if (reply.IsInteger(sent)) { return kDone; }
  // Empty slots are not sent but asked for all the same, so that one of them makes the call fail
  // where some of the members were in the set already.
  const auto member_at = [&](unsigned int i) { return aMembers[i].aObjectID; };
  return AreAllMembers(ctx, aSetKey, nCount, member_at) ? kDone : kFailed;
}
