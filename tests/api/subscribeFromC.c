/* SPDX-License-Identifier: MIT */
#include "api/subscribeFromC.h"

int SubscribeWithNothingMore(redisContext* ctx, const char* channel) {
  return zephlaneSubscribeFromChannel(ctx, channel);
}

int SubscribeWithMore(redisContext* ctx, const char* channel) {
  return zephlaneSubscribeFromChannel(ctx, channel, "another channel", 42, 4.2, (const char*)0);
}
