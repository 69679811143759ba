/* SPDX-License-Identifier: MIT */
/**
 * @file objects.h
 * Creating, copying, reading and deleting stored objects. Plain functions take and fill fixed
 * records of 1024-character texts; "V21" functions return heap strings of exactly the needed size;
 * "Extended" functions take or return arrays of strings of any length.
 */
#ifndef ZEPHLANEAPI_OBJECTS_H
#define ZEPHLANEAPI_OBJECTS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Creating and deleting */

ZEPHLANE_EXPORT int zephlaneCreateUriUuidMap(redisContext* ctx, const char* aUri,
                                             const char* aUuid);
ZEPHLANE_EXPORT int zephlaneCreateHashTable(redisContext* ctx, const char* aHashKey,
                                            const InstanceData* aPairs, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneCreateExtendedHashTable(redisContext* ctx, const char* aHashKey,
                                                    const ExtendedPair* aPairs,
                                                    unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneCreateSetTable(redisContext* ctx, const char* aSetKey,
                                           const SetData* aMembers, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneCreateExtendedSetTable(redisContext* ctx, const char* aSetKey,
                                                   char* const* aMembers, unsigned int nCount);
ZEPHLANE_EXPORT int zephlaneCopyHash(redisContext* ctx, const char* aDestinationKey,
                                     const char* aSourceKey, int nTtlSeconds);
ZEPHLANE_EXPORT int zephlaneDeleteKey(redisContext* ctx, const char* aKey);
ZEPHLANE_EXPORT int zephlaneDeleteHash(redisContext* ctx, const char* aHashKey);
ZEPHLANE_EXPORT int zephlaneRemoveInstanceFromSet(redisContext* ctx, const char* aSetKey,
                                                  const char* aMember);
ZEPHLANE_EXPORT int zephlaneRemoveFieldFromHash(redisContext* ctx, const char* aHashKey,
                                                const char* aFieldName);
ZEPHLANE_EXPORT int zephlaneDeleteHashByField(redisContext* ctx, const char* aCollectionKey,
                                              const char* aFieldName, const char* aValue);
ZEPHLANE_EXPORT int zephlaneVariableSetStr(redisContext* ctx, const char* aName,
                                           const char* aValue);

/* Reading */

ZEPHLANE_EXPORT int zephlaneVariableGetStr(redisContext* ctx, const char* aName, char* aOut);
ZEPHLANE_EXPORT int zephlaneGetUuid(redisContext* ctx, const char* aUri, char* aOut);
ZEPHLANE_EXPORT int zephlaneGetHashField(redisContext* ctx, const char* aHashKey,
                                         const char* aFieldName, char* aOut);
ZEPHLANE_EXPORT char* zephlaneGetHashFieldV21(redisContext* ctx, const char* aHashKey,
                                              const char* aFieldName);
ZEPHLANE_EXPORT char** zephlaneGetHashMultipleFieldV21(redisContext* ctx, const char* aHashKey,
                                                       char* const* aFields, unsigned int nCount,
                                                       unsigned int* nOutCount);
ZEPHLANE_EXPORT int zephlaneGetSchemaTypeIdByField(redisContext* ctx, const char* aFieldName,
                                                   const char* aValue, const char* aSetKey,
                                                   char* aOut);
ZEPHLANE_EXPORT int zephlaneGetSchemaTypeIdByTitle(redisContext* ctx, const char* aTitle,
                                                   char* aOut);
ZEPHLANE_EXPORT int zephlaneIsFieldMatched(redisContext* ctx, const char* aHashKey,
                                           const char* aFieldName, const char* aValue);
ZEPHLANE_EXPORT int zephlaneIsLink(const char* aText);
ZEPHLANE_EXPORT int zephlaneDumpHash(redisContext* ctx, const char* aHashKey);
ZEPHLANE_EXPORT int zephlaneCheckTTL(redisContext* ctx, const char* aHashKey, int nRepetitions);
ZEPHLANE_EXPORT int zephlaneSetKeyTimeout(redisContext* ctx, const char* aKey,
                                          unsigned int nSeconds);
ZEPHLANE_EXPORT int zephlaneIsMember(redisContext* ctx, const char* aSetKey, const char* aMember);
ZEPHLANE_EXPORT SetData* zephlaneSMembers(redisContext* ctx, const char* aSetKey,
                                          unsigned int* nOutCount);
ZEPHLANE_EXPORT char** zephlaneExtendedSMembers(redisContext* ctx, const char* aSetKey,
                                                unsigned int* nOutCount);
ZEPHLANE_EXPORT InstanceData* zephlaneHashGetAll(redisContext* ctx, const char* aHashKey,
                                                 unsigned int* nCount);
ZEPHLANE_EXPORT ExtendedPair* zephlaneExtendedHashGetAll(redisContext* ctx, const char* aHashKey,
                                                         unsigned int* nOutCount);
ZEPHLANE_EXPORT int zephlaneRedisType(redisContext* ctx, const char* aKey);

#ifdef __cplusplus
}
#endif

#endif
