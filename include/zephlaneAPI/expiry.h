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

/**
 * Sets the deadline of an object, in the hash "keyExpiredTime". It counts from boot in 32 bits and
 * does not survive a reboot; one set past 24 days of uptime never comes.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aKey           key of a hash, set, list or string (borrowed)
 * @param nMilliseconds  time from now, 1 or more
 * @return 0; 1 on failure, with the former deadline in place
 * @note Prints " invalid input !!", "Empty object." or "Get time failed"; nothing when the writing
 *       fails. Redis: TYPE, HSET.
 */
ZEPHLANE_EXPORT int zephlaneAddMonotonicExpiredTime(redisContext* ctx, const char* aKey,
                                                    unsigned int nMilliseconds);

/**
 * Tests the deadline of an object, and removes one that has come. An object without a deadline has
 * expired. The object itself is left alone: what expiry means is the caller's matter.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key of a hash, set, list or string (borrowed)
 * @return 1 when expired, 0 when not yet; -1 on failure
 * @note Prints " NULL input !!", "Empty object.", "Get time failed", or "Delete expired object
 *       failed", which leaves the result 1. Redis: TYPE, HGET, HDEL. A deadline that another caller
 *       sets between the last two is removed.
 */
ZEPHLANE_EXPORT int zephlaneIsMonotonicTimeExpired(redisContext* ctx, const char* aKey);

/**
 * Runs the script "ConvertJsonToRedis", whose SHA1 the process that loaded it has put into the hash
 * "redisSHAScripts". What the keys mean is the script's matter.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aSourceKey  first key of the script (borrowed)
 * @param aTargetKey  second key of the script (borrowed)
 * @return 0; 1 on failure
 * @note Prints " NULL input !!", " Get SHA failed !!", " NULL reply !!" or, with the text of an
 *       error reply, " %s !!". Redis: HGET, EVALSHA.
 */
ZEPHLANE_EXPORT int zephlaneConvertJsonToRedis(redisContext* ctx, const char* aSourceKey,
                                               const char* aTargetKey);

#ifdef __cplusplus
}
#endif

#endif
