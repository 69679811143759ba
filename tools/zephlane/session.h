// SPDX-License-Identifier: MIT
//
// The connection a verb works on; without one, what is missing and how to get it.
#pragma once

#include <memory>
#include <string>

#include <zephlaneAPI.h>

#include "console.h"

namespace zephlane::tool {

struct Disconnect {
  void operator()(redisContext* ctx) const noexcept {
    (void)zephlaneRedisDisconnect(ctx);
  }
};
using Session = std::unique_ptr<redisContext, Disconnect>;

struct ReleaseReply {
  void operator()(redisReply* reply) const noexcept {
    freeReplyObject(reply);
  }
};
using Answer = std::unique_ptr<redisReply, ReleaseReply>;

// An authenticated connection that answers; null after telling the user what is in the way.
[[nodiscard]] Session OpenSession(Console& console);

// Whether the connection still stands; tells the user when it was lost.
[[nodiscard]] bool StillConnected(Console& console, const redisContext* ctx);

// Tells the user that there is no such key, or that the connection was lost; kExitFailed.
int FailForMissing(Console& console, const Session& session, const std::string& key);

}  // namespace zephlane::tool
