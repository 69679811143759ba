/* SPDX-License-Identifier: MIT */
/* Subscriptions as C callers write them, where further arguments are passed in C's own way. */
#ifndef ZEPHLANE_TESTS_SUBSCRIBE_FROM_C_H
#define ZEPHLANE_TESTS_SUBSCRIBE_FROM_C_H

#include <zephlaneAPI/hooks.h>

#ifdef __cplusplus
extern "C" {
#endif

int SubscribeWithNothingMore(redisContext* ctx, const char* channel);
int SubscribeWithMore(redisContext* ctx, const char* channel);

#ifdef __cplusplus
}
#endif

#endif
