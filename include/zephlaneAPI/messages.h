/* SPDX-License-Identifier: MIT */
/**
 * @file messages.h
 * Return messages: the short-lived answers that a service leaves in the store for a requester.
 */
#ifndef ZEPHLANEAPI_MESSAGES_H
#define ZEPHLANEAPI_MESSAGES_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

ZEPHLANE_EXPORT int zephlaneCreateReturnMessage(redisContext* ctx, const char* aCollection,
                                                const char* aMsgId, ...);
ZEPHLANE_EXPORT int zephlaneCreateReturnMsgV21(redisContext* ctx, const char* aCollection,
                                               const char* aMsgId, const char** aParams,
                                               int nParams);

#ifdef __cplusplus
}
#endif

#endif
