// SPDX-License-Identifier: MIT
//
// Commands on keys of any type. getKey and typeCmd copy the bytes of the reply and add no
// terminator: callers zero-fill their buffer of 1024 bytes first.
#include "redis/command.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>

using zephlane::Command;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::Reply;

namespace {

// The characters of the reply, cut to what a zero-filled buffer of 1024 bytes can hold.
void CopyReplyText(char* out, const Reply& reply) {
  zephlane::CopyCounted(out, reply.Text().substr(0, zephlane::kValueSize - 1));
}

}  // namespace

int deleteKey(redisContext* ctx, const char* aKey) {
  if (!ctx || !aKey) { return kFailed; }
  // The reply is ignored: a key that was not there is as gone as one that was deleted.
  (void)Command(ctx, "%s %s", "DEL", aKey);
  return kDone;
}

int setKey(redisContext* ctx, const char* aKey, const char* aValue) {
  if (!ctx || !aKey || !aValue) { return kFailed; }
  // Any reply counts as success, an ERROR too.
  return Command(ctx, "SET %s %s", aKey, aValue) ? kDone : kFailed;
}

int getKey(redisContext* ctx, const char* aKey, char* aOut) {
  if (!ctx || !aKey || !aOut) { return kFailed; }
  const Reply reply = Command(ctx, "GET %s", aKey);
  if (!reply.Is(REDIS_REPLY_STRING)) { return kFailed; }
  CopyReplyText(aOut, reply);
  return kDone;
}

int incrKey(redisContext* ctx, const char* aKey) {
  if (!ctx || !aKey) { return kFailed; }
  // Any reply counts as success, an ERROR too.
  return Command(ctx, "INCR %s", aKey) ? kDone : kFailed;
}

int renameKey(redisContext* ctx, const char* aOldKey, const char* aNewKey) {
  if (!ctx || !aOldKey || !aNewKey) { return kFailed; }
  const Reply reply = Command(ctx, "RENAME %s %s", aOldKey, aNewKey);
  return !reply || reply.Is(REDIS_REPLY_ERROR) ? kFailed : kDone;
}

int typeCmd(redisContext* ctx, const char* aKey, char* aOut) {
  if (!ctx || !aKey || !aOut) { return kFailed; }
  const Reply reply = Command(ctx, "TYPE %s", aKey);
  if (!reply.Is(REDIS_REPLY_STATUS)) { return kFailed; }
  CopyReplyText(aOut, reply);
  return kDone;
}

int setKeyTimeout(redisContext* ctx, const char* aKey, unsigned int nSeconds) {
  if (!ctx || !aKey || nSeconds == 0) { return kFailed; }
  if (!Command(ctx, "EXISTS %s", aKey).IsInteger(1)) { return kFailed; }
  const Reply reply = Command(ctx, "EXPIRE %s %u", aKey, nSeconds);
  return !reply || reply.Is(REDIS_REPLY_ERROR) ? kFailed : kDone;
}
