// SPDX-License-Identifier: MIT
//
// Publish and subscribe. A connection that has subscribed serves only the reception of messages.
#include "redis/command.h"

#include <zephlaneAPI/commands.h>

using zephlane::Command;
using zephlane::kDone;
using zephlane::kFailed;

int publishToChannel(redisContext* ctx, const char* aChannel, const char* aMessage) {
  if (!ctx || !aChannel || !aMessage) { return kFailed; }
  // Any reply counts as success, an ERROR too.
  return Command(ctx, "PUBLISH %s %s", aChannel, aMessage) ? kDone : kFailed;
}

int subscribeFromChannel(redisContext* ctx, const char* aChannel) {
  if (!ctx || !aChannel) { return kFailed; }
  // Any reply counts as success, an ERROR too.
  return Command(ctx, "SUBSCRIBE %s", aChannel) ? kDone : kFailed;
}
