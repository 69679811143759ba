// SPDX-License-Identifier: MIT
//
// Hash commands, and the companion hash that gives a hash object its time-to-live: hash K names
// "K-TTL" in its field "TtlId"; the companion holds the seconds in "TtlSec" and carries the Redis
// expiry, so K itself never expires.
#include <cstring>

#include "redis/command.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>

namespace zephlane {
namespace {

bool IsEmpty(const char* text) {
  return text[0] == '\0';
}

// A STATUS reply that does not begin with "OK" is the only refusal.
// An ERROR reply counts as success: callers rely on it.
int JudgePrefixedStatus(const Reply& reply) {
  if (!reply) { return kFailed; }
  const bool refused = reply.Is(REDIS_REPLY_STATUS) && !reply.Text().starts_with("OK");
  return refused ? kFailed : kDone;
}

void CopyPairs(const Reply& reply, InstanceData* pairs, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    CopyCut(pairs[i].aFieldName, reply.ElementText(2 * i));
    CopyCut(pairs[i].aValue, reply.ElementText(2 * i + 1));
  }
}

// One heap copy per element that has a text, NULL for the others.
char** CopyElements(const Reply& reply) {
  CStringArray texts(reply.ElementCount());
  if (!texts) { return nullptr; }
  for (std::size_t i = 0; i < reply.ElementCount(); ++i) {
    if (!reply.ElementHasText(i)) { continue; }
    CString copy = Duplicate(reply.ElementText(i));
    if (!copy) { return nullptr; }
    texts.Set(i, std::move(copy));
  }
  return texts.Release();
}

}  // namespace
}  // namespace zephlane

using zephlane::ArgumentVector;
using zephlane::Command;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::Reply;

int createHashTable(redisContext* ctx, const char* aHashKey, const InstanceData* aPairs,
                    unsigned int nCount) {
  if (!ctx || !aHashKey || !aPairs) { return kFailed; }
  ArgumentVector arguments("HMSET", aHashKey, 2, nCount);
  for (unsigned int i = 0; i < nCount; ++i) {
    if (zephlane::IsEmpty(aPairs[i].aValue)) { continue; }
    arguments.Add(aPairs[i].aFieldName);
    arguments.Add(aPairs[i].aValue);
  }
  // Without any pair the command still goes out: Redis refuses it, which counts as success.
  return zephlane::JudgePrefixedStatus(std::move(arguments).Send(ctx));
}

int redisHashMultipleSet(redisContext* ctx, const char* aHashKey, char* const* aFields,
                         char* const* aValues, unsigned int nCount) {
  if (!ctx || !aHashKey || !aFields || !aValues || nCount == 0) { return kFailed; }
  if (!aFields[0] || !aValues[0]) { return kFailed; }
  ArgumentVector arguments("HMSET", aHashKey, 2, nCount);
  for (unsigned int i = 0; i < nCount; ++i) {
    arguments.Add(aFields[i]);
    arguments.Add(aValues[i]);
  }
  const Reply reply = std::move(arguments).Send(ctx);
  if (!reply) { return kFailed; }
  // An ERROR reply counts as success here too.
  return reply.Is(REDIS_REPLY_STATUS) && reply.Text() != "OK" ? kFailed : kDone;
}

int copyHash(redisContext* ctx, const char* aDestinationKey, const char* aSourceKey) {
  if (!ctx || !aDestinationKey || !aSourceKey) { return kFailed; }
  zephlane::CArray<InstanceData> pairs;
  std::size_t count = 0;
  {
    const Reply reply = Command(ctx, "HGETALL %s ", aSourceKey);
    if (!reply) { return kFailed; }
    count = reply.ElementCount() / 2;
    if (count == 0) { return kFailed; }
    pairs = zephlane::ZeroedArray<InstanceData>(count);
    if (!pairs) { return kFailed; }
    zephlane::CopyPairs(reply, pairs.get(), count);
  }
  // The destination is not cleared first: its other fields stay.
  return createHashTable(ctx, aDestinationKey, pairs.get(), static_cast<unsigned int>(count));
}

char** redisHashMultipleGet(redisContext* ctx, const char* aHashKey, char* const* aFields,
                            unsigned int nCount, unsigned int* nOutCount) {
  if (!ctx || !aHashKey || !aFields || !nOutCount) { return nullptr; }
  ArgumentVector arguments("HMGET", aHashKey, 1, nCount);
  arguments.AddAll(aFields, nCount);
  const Reply reply = std::move(arguments).Send(ctx);
  if (!reply.Is(REDIS_REPLY_ARRAY)) { return nullptr; }
  char** texts = zephlane::CopyElements(reply);
  if (texts) { *nOutCount = static_cast<unsigned int>(reply.ElementCount()); }
  return texts;
}

int getHashField(redisContext* ctx, const char* aHashKey, const char* aFieldName, char* aOut) {
  if (!ctx || !aHashKey || !aFieldName) { return kFailed; }
  const Reply reply = Command(ctx, "HGET %s %s", aHashKey, aFieldName);
  // The length alone is judged: the text of an ERROR reply passes for a value.
  if (!reply || reply.Text().empty()) { return kFailed; }
  if (aOut) { zephlane::CopyCut({aOut, zephlane::kValueSize}, reply.Text()); }
  return kDone;
}

char* redisHashGet(redisContext* ctx, const char* aHashKey, const char* aFieldName) {
  if (!ctx || !aHashKey || !aFieldName) { return nullptr; }
  const Reply reply = Command(ctx, "%s %s %s", "HGET", aHashKey, aFieldName);
  // The length alone is judged: the text of an ERROR reply passes for a value.
  if (!reply || reply.Text().empty()) { return nullptr; }
  return zephlane::Duplicate(reply.Text()).release();
}

int isFieldMatched(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                   const char* aExpected) {
  if (!ctx || !aHashKey || !aFieldName || !aExpected) { return 0; }
  char value[zephlane::kValueSize] = "";
  // A missing field reads as the empty text, so it matches an empty expected value.
  (void)getHashField(ctx, aHashKey, aFieldName, value);
  return std::strncmp(aExpected, value, zephlane::kValueSize - 1) == 0 ? 1 : 0;
}

int removeFieldFromHash(redisContext* ctx, const char* aHashKey, const char* aFieldName) {
  if (!ctx || !aHashKey || !aFieldName) { return kFailed; }
  return Command(ctx, "HDEL %s %s", aHashKey, aFieldName).IsInteger(1) ? kDone : kFailed;
}

int hsetKey(redisContext* ctx, const char* aHashKey, const char* aFieldName, const char* aValue) {
  if (!ctx || !aHashKey || !aFieldName || !aValue) { return kFailed; }
  // Any reply counts as success, an ERROR too.
  return Command(ctx, "HSET %s %s %s", aHashKey, aFieldName, aValue) ? kDone : kFailed;
}

int addTtlToHash(redisContext* ctx, const char* aHashKey, int nSeconds) {
  if (!ctx || !aHashKey || nSeconds == 0) { return kFailed; }
  // The replies are ignored: the result is 0 whatever Redis answers.
  (void)Command(ctx, "HSET %s %s %s-TTL", aHashKey, zephlane::kTtlIdField, aHashKey);
  (void)Command(ctx, "HSET %s-TTL %s %d", aHashKey, zephlane::kTtlSecondsField, nSeconds);
  (void)Command(ctx, "EXPIRE %s-TTL %d", aHashKey, nSeconds);
  return kDone;
}

int isHashTimeOut(redisContext* ctx, const char* aHashKey) {
  if (!ctx || !aHashKey) { return 0; }
  const Reply reply = Command(ctx, "HGET %s-TTL %s", aHashKey, zephlane::kTtlSecondsField);
  // Without a reply the hash counts as not timed out.
  return reply && reply.Text().empty() ? 1 : 0;
}

int getRestTtlTimeFromHash(redisContext* ctx, const char* aHashKey, unsigned int* nOutSeconds) {
  if (!ctx || !aHashKey || !nOutSeconds) { return kFailed; }
  if (isHashTimeOut(ctx, aHashKey)) {
    *nOutSeconds = 0;
    return kDone;
  }
  const Reply reply = Command(ctx, "TTL %s-TTL", aHashKey);
  if (!reply) { return kFailed; }
  *nOutSeconds = reply.Integer() < 0 ? 0 : static_cast<unsigned int>(reply.Integer());
  return kDone;
}
