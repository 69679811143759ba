// SPDX-License-Identifier: MIT
//
// Many object writes in one round trip: queue them, then read as many replies as were queued.
#include "redis/pipeline.h"

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

// The queue of these is a connection or a batch.
template <typename Queue>
int AppendHash(Queue* queue, const char* key, const InstanceData* pairs, unsigned int count) {
  ArgumentVector arguments("HMSET", key, 2, count);
  for (unsigned int i = 0; i < count; ++i) {
    // Empty values go out too, unlike when a hash is created by itself.
    arguments.Add(pairs[i].aFieldName);
    arguments.Add(pairs[i].aValue);
  }
  return std::move(arguments).Append(queue) ? kDone : kFailed;
}

template <typename Queue>
int AppendItems(Queue* queue, const char* word, const char* key, const SetData* items,
                unsigned int count) {
  ArgumentVector arguments(word, key, 1, count);
  arguments.AddAll(items, count);
  return std::move(arguments).Append(queue) ? kDone : kFailed;
}

template <typename Queue>
int AppendObject(Queue* queue, const char* key, int kind, const void* data, unsigned int count) {
  if (!queue || !key || !data) { return kFailed; }
  switch (kind) {
    case ZEPHLANE_TYPE_HASH:
      return AppendHash(queue, key, static_cast<const InstanceData*>(data), count);
    case ZEPHLANE_TYPE_SET:
      return AppendItems(queue, "SADD", key, static_cast<const SetData*>(data), count);
    case ZEPHLANE_TYPE_LIST:
      return AppendItems(queue, "RPUSH", key, static_cast<const SetData*>(data), count);
    default:
      return kFailed;
  }
}

bool IsRefusal(const Reply& reply) {
  if (reply.Is(REDIS_REPLY_STATUS)) { return !reply.Text().starts_with("OK"); }
  return reply.IsInteger(0) || reply.Is(REDIS_REPLY_ERROR);
}

}  // namespace

int pipelineCreateObject(redisContext* ctx, const char* aKey, int nKind, const void* aData,
                         unsigned int nCount) {
  return AppendObject(ctx, aKey, nKind, aData, nCount);
}

bool zephlane::AddObject(RequestBatch* batch, const char* key, int kind, const void* data,
                         unsigned int count) noexcept {
  return AppendObject(batch, key, kind, data, count) == kDone;
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
