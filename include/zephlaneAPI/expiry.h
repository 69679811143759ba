/* SPDX-License-Identifier: MIT */
/**
 * @file expiry.h
 * Deadlines of objects on the raw monotonic clock, independent of Redis's own expiry and of changes
 * of the wall clock; and the server-side script that turns JSON into objects.
 */
#ifndef ZEPHLANEAPI_EXPIRY_H
#define ZEPHLANEAPI_EXPIRY_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

ZEPHLANE_EXPORT int zephlaneAddMonotonicExpiredTime(redisContext* ctx, const char* aKey,
                                                    unsigned int nMilliseconds);
ZEPHLANE_EXPORT int zephlaneIsMonotonicTimeExpired(redisContext* ctx, const char* aKey);
ZEPHLANE_EXPORT int zephlaneConvertJsonToRedis(redisContext* ctx, const char* aSourceKey,
                                               const char* aTargetKey);

#ifdef __cplusplus
}
#endif

#endif
