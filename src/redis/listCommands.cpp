// SPDX-License-Identifier: MIT
//
// List commands. A push counts as done only when the list grew by exactly what was pushed: a list
// that another writer changed at the same moment is reported as a failure, although the items are
// in it.
#include <cstdio>

#include "redis/command.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>

namespace zephlane {
namespace {

// A heap copy of the reply's text; null when there is none. The length alone is judged: the text
// of an ERROR reply passes for an item.
char* CopyOfText(const Reply& reply) {
  if (!reply || reply.Text().empty()) { return nullptr; }
  return Duplicate(reply.Text()).release();
}

// Pushes an array of strings with `word` and judges the reply by the list's former length.
int PushAll(redisContext* ctx, const char* word, const char* key, char* const* items,
            unsigned int count) {
  if (!ctx || !key || !items || count == 0 || !items[0]) { return kFailed; }
  unsigned int former_length = 0;
  if (listLength(ctx, key, &former_length) != kDone) { return kFailed; }
  ArgumentVector arguments(word, key, 1, count);
  arguments.AddAll(items, count);
  const Reply reply = std::move(arguments).Send(ctx);
  return reply.IsInteger(static_cast<long long>(former_length) + count) ? kDone : kFailed;
}

PopResult* CopyOfPair(const Reply& reply) {
  if (!reply.Is(REDIS_REPLY_ARRAY) || reply.ElementCount() != 2) { return nullptr; }
  CRecord<PopResult> pair = ZeroedRecord<PopResult>();
  CString key = Duplicate(reply.ElementText(0));
  CString item = Duplicate(reply.ElementText(1));
  if (!pair || !key || !item) { return nullptr; }
  pair->aListKey = key.release();
  pair->aItem = item.release();
  return pair.release();
}

PopResult* BlockingPop(redisContext* ctx, const char* word, unsigned int timeout_seconds,
                       char* const* keys, unsigned int count) {
  if (!ctx || !keys || count == 0 || !keys[0]) { return nullptr; }
  char timeout[64] = "";
  (void)std::snprintf(timeout, sizeof(timeout), "%u", timeout_seconds);
  ArgumentVector arguments(word, keys[0], 1, count);
  arguments.AddAll(keys + 1, count - 1);
  arguments.Add(timeout);
  return CopyOfPair(std::move(arguments).Send(ctx));
}

}  // namespace
}  // namespace zephlane

using zephlane::ArgumentVector;
using zephlane::Command;
using zephlane::CopyOfText;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::Reply;

SetData* listRange(redisContext* ctx, const char* aListKey, int nStart, int nStop,
                   unsigned int* nOutCount) {
  if (!ctx || !aListKey || nStart < 0 || !nOutCount) { return nullptr; }
  const Reply reply = Command(ctx, "LRANGE %s %d %d", aListKey, nStart, nStop);
  if (!reply || reply.ElementCount() == 0) { return nullptr; }
  const std::size_t count = reply.ElementCount();
  zephlane::CArray<SetData> items = zephlane::UnfilledArray<SetData>(count);
  if (!items) { return nullptr; }
  for (std::size_t i = 0; i < count; ++i) {
    zephlane::CopyCut(items[i].aObjectID, reply.ElementText(i));
  }
  *nOutCount = static_cast<unsigned int>(count);
  return items.release();
}

int listLength(redisContext* ctx, const char* aListKey, unsigned int* nOutLength) {
  if (!ctx || !aListKey || !nOutLength) { return kFailed; }
  const Reply reply = Command(ctx, "LLEN %s", aListKey);
  if (!reply.Is(REDIS_REPLY_INTEGER) || reply.Integer() < 0) { return kFailed; }
  *nOutLength = static_cast<unsigned int>(reply.Integer());
  return kDone;
}

char* listIndex(redisContext* ctx, const char* aListKey, int nIndex) {
  if (!ctx || !aListKey) { return nullptr; }
  return CopyOfText(Command(ctx, "%s %s %d", "LINDEX", aListKey, nIndex));
}

char* listLeftPop(redisContext* ctx, const char* aListKey) {
  if (!ctx || !aListKey) { return nullptr; }
  return CopyOfText(Command(ctx, "%s %s", "LPOP", aListKey));
}

char* redisListRightPop(redisContext* ctx, const char* aListKey) {
  if (!ctx || !aListKey) { return nullptr; }
  return CopyOfText(Command(ctx, "%s %s", "RPOP", aListKey));
}

int listRightPush(redisContext* ctx, const char* aListKey, const char* aItem) {
  if (!ctx || !aListKey || !aItem) { return kFailed; }
  const Reply reply = Command(ctx, "RPUSH %s %s", aListKey, aItem);
  return reply.Is(REDIS_REPLY_INTEGER) && reply.Integer() >= 1 ? kDone : kFailed;
}

int redisListRightMultiplePush(redisContext* ctx, const char* aListKey, char* const* aItems,
                               unsigned int nCount) {
  return zephlane::PushAll(ctx, "RPUSH", aListKey, aItems, nCount);
}

int redisListLeftPush(redisContext* ctx, const char* aListKey, char* const* aItems,
                      unsigned int nCount) {
  return zephlane::PushAll(ctx, "LPUSH", aListKey, aItems, nCount);
}

int createListTable(redisContext* ctx, const char* aListKey, const SetData* aItems,
                    unsigned int nCount) {
  if (!ctx || !aListKey || !aItems || nCount == 0) { return kFailed; }
  unsigned int former_length = 0;
  if (listLength(ctx, aListKey, &former_length) != kDone) { return kFailed; }
  ArgumentVector arguments("RPUSH", aListKey, 1, nCount);
  arguments.AddAll(aItems, nCount);
  {
    const Reply reply = std::move(arguments).Send(ctx);
    if (!reply || reply.Integer() == 0) { return kFailed; }
  }
  // The length is asked for again instead of believing the reply's number.
  unsigned int length = 0;
  if (listLength(ctx, aListKey, &length) != kDone) { return kFailed; }
  return length == former_length + nCount ? kDone : kFailed;
}

PopResult* redisListBlockLeftPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                 char* const* aListKeys, unsigned int nCount) {
  return zephlane::BlockingPop(ctx, "BLPOP", nTimeoutSeconds, aListKeys, nCount);
}

PopResult* redisListBlockRightPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                  char* const* aListKeys, unsigned int nCount) {
  return zephlane::BlockingPop(ctx, "BRPOP", nTimeoutSeconds, aListKeys, nCount);
}

int lremCmd(redisContext* ctx, const char* aListKey, int nCount, const char* aItem) {
  if (!ctx || !aListKey || !aItem) { return kFailed; }
  const Reply reply = Command(ctx, "LREM %s %d %s", aListKey, nCount, aItem);
  return reply.Is(REDIS_REPLY_INTEGER) ? kDone : kFailed;
}

int listSET(redisContext* ctx, const char* aListKey, int nIndex, const char* aItem) {
  if (!ctx || !aListKey || !aItem) { return kFailed; }
  const Reply reply = Command(ctx, "%s %s %d %s", "LSET", aListKey, nIndex, aItem);
  return reply.Is(REDIS_REPLY_STATUS) && reply.Text() == "OK" ? kDone : kFailed;
}
