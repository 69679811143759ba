/* SPDX-License-Identifier: MIT */
/**
 * @file lists.h
 * Redis lists: queues and ordered collections of object IDs or values; and the entity-tag cache of
 * a web resource. Plain functions use fixed buffers, "V21" functions return heap strings,
 * "Extended" functions take or return arrays of strings of any length.
 */
#ifndef ZEPHLANEAPI_LISTS_H
#define ZEPHLANEAPI_LISTS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

ZEPHLANE_EXPORT int zephlaneCreateListTable(redisContext* ctx, const char* aListKey,
                                            const SetData* aItems, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneCreateExtendedListTable(redisContext* ctx, const char* aListKey,
                                                    char* const* aItems, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneListLeftPush(redisContext* ctx, const char* aListKey,
                                         char* const* aItems, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneListRightPush(redisContext* ctx, const char* aListKey,
                                          const char* aItem);
ZEPHLANE_EXPORT SetData* zephlaneListRange(redisContext* ctx, const char* aListKey, int nStart,
                                           int nStop, unsigned int* nOutCount);
ZEPHLANE_EXPORT char** zephlaneExtendedListRange(redisContext* ctx, const char* aListKey,
                                                 int nStart, int nStop, unsigned int* nOutCount);
ZEPHLANE_EXPORT int zephlaneListLength(redisContext* ctx, const char* aListKey,
                                       unsigned int* nOutLength);
ZEPHLANE_EXPORT int zephlaneListIndex(redisContext* ctx, const char* aListKey, int nIndex,
                                      size_t nCapacity, char* aOut);
ZEPHLANE_EXPORT char* zephlaneListIndexV21(redisContext* ctx, const char* aListKey, int nIndex);
ZEPHLANE_EXPORT int zephlaneListLeftPop(redisContext* ctx, const char* aListKey, size_t nCapacity,
                                        char* aOut);
ZEPHLANE_EXPORT char* zephlaneListLeftPopV21(redisContext* ctx, const char* aListKey);
ZEPHLANE_EXPORT char* zephlaneListRightPop(redisContext* ctx, const char* aListKey);
ZEPHLANE_EXPORT int zephlaneListBlockLeftPop(redisContext* ctx, const char* aListKey,
                                             unsigned int nTimeoutSeconds, size_t nCapacity,
                                             char* aOut);
ZEPHLANE_EXPORT PopResult* zephlaneListBlockLeftPopV21(redisContext* ctx,
                                                       unsigned int nTimeoutSeconds,
                                                       char* const* aListKeys, unsigned int nCount);
ZEPHLANE_EXPORT PopResult* zephlaneListBlockRightPop(redisContext* ctx,
                                                     unsigned int nTimeoutSeconds,
                                                     char* const* aListKeys, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneLREM(redisContext* ctx, const char* aListKey, int nCount,
                                 const char* aItem);
ZEPHLANE_EXPORT int zephlaneReplaceListItemByIndex(redisContext* ctx, const char* aListKey,
                                                   int nIndex, const char* aItem);
ZEPHLANE_EXPORT int zephlaneClearETagCache(redisContext* ctx, const char* aUri);

#ifdef __cplusplus
}
#endif

#endif
