/* SPDX-License-Identifier: MIT */
/**
 * @file commands.h
 * The command layer: each function issues one Redis command, or a short fixed sequence, and turns
 * the reply into a plain result. Nothing here prints. A failed argument check returns the failure
 * value before anything is sent; a lost connection is a failure like any other.
 */
#ifndef ZEPHLANEAPI_COMMANDS_H
#define ZEPHLANEAPI_COMMANDS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Hashes */

ZEPHLANE_EXPORT int createHashTable(redisContext* ctx, const char* aHashKey,
                                    const InstanceData* aPairs, unsigned int nCount);
ZEPHLANE_EXPORT int redisHashMultipleSet(redisContext* ctx, const char* aHashKey,
                                         char* const* aFields, char* const* aValues,
                                         unsigned int nCount);
ZEPHLANE_EXPORT int copyHash(redisContext* ctx, const char* aDestinationKey,
                             const char* aSourceKey);
ZEPHLANE_EXPORT char** redisHashMultipleGet(redisContext* ctx, const char* aHashKey,
                                            char* const* aFields, unsigned int nCount,
                                            unsigned int* nOutCount);
ZEPHLANE_EXPORT int getHashField(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                                 char* aOut);
ZEPHLANE_EXPORT char* redisHashGet(redisContext* ctx, const char* aHashKey, const char* aFieldName);
ZEPHLANE_EXPORT int isFieldMatched(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                                   const char* aExpected);
ZEPHLANE_EXPORT int removeFieldFromHash(redisContext* ctx, const char* aHashKey,
                                        const char* aFieldName);
ZEPHLANE_EXPORT int hsetKey(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                            const char* aValue);

/* Lifetime of hashes and keys */

ZEPHLANE_EXPORT int addTtlToHash(redisContext* ctx, const char* aHashKey, int nSeconds);
ZEPHLANE_EXPORT int isHashTimeOut(redisContext* ctx, const char* aHashKey);
ZEPHLANE_EXPORT int getRestTtlTimeFromHash(redisContext* ctx, const char* aHashKey,
                                           unsigned int* nOutSeconds);
ZEPHLANE_EXPORT int setKeyTimeout(redisContext* ctx, const char* aKey, unsigned int nSeconds);

/* Sets */

ZEPHLANE_EXPORT int redisSetCardinality(redisContext* ctx, const char* aSetKey);
ZEPHLANE_EXPORT int getInstanceCount(redisContext* ctx, const char* aSetKey,
                                     unsigned int* nOutCount);
ZEPHLANE_EXPORT int getInstance(redisContext* ctx, const char* aSetKey, unsigned int nCount,
                                SetData* aOut);
ZEPHLANE_EXPORT int deleteInstanceInSet(redisContext* ctx, const char* aSetKey,
                                        const char* aMember);
ZEPHLANE_EXPORT int sismember(redisContext* ctx, const char* aSetKey, const char* aMember);
ZEPHLANE_EXPORT int sdiffKey(redisContext* ctx, const char* aSetKey);
ZEPHLANE_EXPORT int saddCmd(redisContext* ctx, const char* aText);
ZEPHLANE_EXPORT int redisSetMultipleAdd(redisContext* ctx, const char* aSetKey,
                                        char* const* aMembers, unsigned int nCount);
ZEPHLANE_EXPORT int createSetTable(redisContext* ctx, const char* aSetKey, const SetData* aMembers,
                                   unsigned int nCount);

/* Lists */

ZEPHLANE_EXPORT SetData* listRange(redisContext* ctx, const char* aListKey, int nStart, int nStop,
                                   unsigned int* nOutCount);
ZEPHLANE_EXPORT int listLength(redisContext* ctx, const char* aListKey, unsigned int* nOutLength);
ZEPHLANE_EXPORT char* listIndex(redisContext* ctx, const char* aListKey, int nIndex);
ZEPHLANE_EXPORT char* listLeftPop(redisContext* ctx, const char* aListKey);
ZEPHLANE_EXPORT char* redisListRightPop(redisContext* ctx, const char* aListKey);
ZEPHLANE_EXPORT int listRightPush(redisContext* ctx, const char* aListKey, const char* aItem);
ZEPHLANE_EXPORT int redisListRightMultiplePush(redisContext* ctx, const char* aListKey,
                                               char* const* aItems, unsigned int nCount);
ZEPHLANE_EXPORT int redisListLeftPush(redisContext* ctx, const char* aListKey, char* const* aItems,
                                      unsigned int nCount);
ZEPHLANE_EXPORT int createListTable(redisContext* ctx, const char* aListKey, const SetData* aItems,
                                    unsigned int nCount);
ZEPHLANE_EXPORT PopResult* redisListBlockLeftPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                                 char* const* aListKeys, unsigned int nCount);
ZEPHLANE_EXPORT PopResult* redisListBlockRightPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                                  char* const* aListKeys, unsigned int nCount);
ZEPHLANE_EXPORT int lremCmd(redisContext* ctx, const char* aListKey, int nCount, const char* aItem);
ZEPHLANE_EXPORT int listSET(redisContext* ctx, const char* aListKey, int nIndex, const char* aItem);

/* Keys */

ZEPHLANE_EXPORT int deleteKey(redisContext* ctx, const char* aKey);
ZEPHLANE_EXPORT int setKey(redisContext* ctx, const char* aKey, const char* aValue);
ZEPHLANE_EXPORT int getKey(redisContext* ctx, const char* aKey, char* aOut);
ZEPHLANE_EXPORT int incrKey(redisContext* ctx, const char* aKey);
ZEPHLANE_EXPORT int renameKey(redisContext* ctx, const char* aOldKey, const char* aNewKey);
ZEPHLANE_EXPORT int typeCmd(redisContext* ctx, const char* aKey, char* aOut);

/* Channels */

ZEPHLANE_EXPORT int publishToChannel(redisContext* ctx, const char* aChannel, const char* aMessage);
ZEPHLANE_EXPORT int subscribeFromChannel(redisContext* ctx, const char* aChannel);

/* Pipelines */

ZEPHLANE_EXPORT int pipelineCreateObject(redisContext* ctx, const char* aKey, int nKind,
                                         const void* aData, unsigned int nCount);
ZEPHLANE_EXPORT int pipelineReceiveReply(redisContext* ctx, unsigned int nReplies);

#ifdef __cplusplus
}
#endif

#endif
