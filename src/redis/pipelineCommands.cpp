// SPDX-License-Identifier: MIT
//
// Many object writes in one round trip: queue them, then read as many replies as were queued.
#include "redis/command.h"

#include <zephlaneAPI/commands.h>

using zephlane::ArgumentVector;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::NextReply;
using zephlane::Reply;

namespace {

// A connection that failed stays failed; a few reads more cost nothing and end for certain.
constexpr unsigned int kMaximumFailedReads = 8;

int AppendHash(redisContext* ctx, const char* key, const InstanceData* pairs, unsigned int count) {
  ArgumentVector arguments("HMSET", key, 2, count);
  for (unsigned int i = 0; i < count; ++i) {
    // Empty values go out too, unlike when a hash is created by itself.
    arguments.Add(pairs[i].aFieldName);
    arguments.Add(pairs[i].aValue);
  }
  return std::move(arguments).Append(ctx) ? kDone : kFailed;
}

int AppendItems(redisContext* ctx, const char* word, const char* key, const SetData* items,
                unsigned int count) {
  ArgumentVector arguments(word, key, 1, count);
  arguments.AddAll(items, count);
  return std::move(arguments).Append(ctx) ? kDone : kFailed;
}

bool IsRefusal(const Reply& reply) {
  if (reply.Is(REDIS_REPLY_STATUS)) { return !reply.Text().starts_with("OK"); }
  return reply.IsInteger(0) || reply.Is(REDIS_REPLY_ERROR);
}

}  // namespace

int pipelineCreateObject(redisContext* ctx, const char* aKey, int nKind, const void* aData,
                         unsigned int nCount) {
  if (!ctx || !aKey || !aData) { return kFailed; }
  switch (nKind) {
    case ZEPHLANE_TYPE_HASH:
      return AppendHash(ctx, aKey, static_cast<const InstanceData*>(aData), nCount);
    case ZEPHLANE_TYPE_SET:
      return AppendItems(ctx, "SADD", aKey, static_cast<const SetData*>(aData), nCount);
    case ZEPHLANE_TYPE_LIST:
      return AppendItems(ctx, "RPUSH", aKey, static_cast<const SetData*>(aData), nCount);
    default:
      return kFailed;
  }
}

int pipelineReceiveReply(redisContext* ctx, unsigned int nReplies) {
  if (!ctx) { return kFailed; }
  bool refused = false;
  unsigned int failed_reads = 0;
  // Reading goes on after a refusal, so that every queued reply is consumed.
  for (unsigned int received = 0; received < nReplies;) {
    const Reply reply = NextReply(ctx);
    // A non-blocking connection may have no reply yet: that is a failed read too.
    if (!reply) {
      if (++failed_reads == kMaximumFailedReads) { return kFailed; }
      continue;
    }
    refused = IsRefusal(reply) || refused;
    ++received;
  }
  return refused ? kFailed : kDone;
}
