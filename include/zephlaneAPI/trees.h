/* SPDX-License-Identifier: MIT */
/**
 * @file trees.h
 * Operations on trees of objects and on several objects at once: finding, deleting, creating in one
 * round trip, renaming, set differences, lifetimes, and the notices that announce tree changes.
 */
#ifndef ZEPHLANEAPI_TREES_H
#define ZEPHLANEAPI_TREES_H

#include <hiredis/hiredis.h>
#include <stdint.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One object of a multiple creation. */
typedef struct ObjectEntry {
  const char* key; /**< a UUID of 36 characters */
  uint8_t type;    /**< a ZephlaneObjectType: hash, set or list */
  int count;       /**< number of items */
  void* items;     /**< InstanceData records of a hash, SetData records of a set or list */
} ObjectEntry;

ZEPHLANE_EXPORT int zephlaneFindObjectByField(redisContext* ctx, const char* aObjectID,
                                              const char* aFieldName, const char* aValue,
                                              int nSetType, char* aOut);
ZEPHLANE_EXPORT int zephlaneDeleteSubTree(redisContext* ctx, const char* aRoot, ...);
ZEPHLANE_EXPORT int zephlaneDeleteSubTreeV21(redisContext* ctx, const char* aRoot,
                                             const char** aFields, int nFields);
ZEPHLANE_EXPORT int deleteAllSpecifiedObjects(redisContext* ctx, const char* aKey,
                                              const char** aFields, int nFields,
                                              const char* aTrackingSet);
ZEPHLANE_EXPORT int zephlaneCreateMultipleObjects(redisContext* ctx, ObjectEntry* aEntries,
                                                  int nCount);
ZEPHLANE_EXPORT int zephlaneRenameObjectID(redisContext* ctx, const char* aOldID,
                                           const char* aNewID);
ZEPHLANE_EXPORT int zephlaneSADD(redisContext* ctx, const char* aSetKey, const char* aMember, ...);
ZEPHLANE_EXPORT int zephlaneSdiffKey(redisContext* ctx, const char* aSetKey, ...);
ZEPHLANE_EXPORT int zephlaneSdiffKeyV21(redisContext* ctx, const char** aSetKeys, int nCount);
ZEPHLANE_EXPORT int zephlaneHashAppendTTLObject(redisContext* ctx, const char* aHashKey,
                                                unsigned int nTtlSeconds);
ZEPHLANE_EXPORT int zephlaneIsHashOverdue(redisContext* ctx, const char* aHashKey);
ZEPHLANE_EXPORT int zephlaneRenewCollection(redisContext* ctx, int nAction, const char* aFirst,
                                            const char* aSecond, unsigned char nFlag);
ZEPHLANE_EXPORT int zephlaneRenewObjectURI(redisContext* ctx, int nAction, const char* aFirst,
                                           const char* aSecond);

#ifdef __cplusplus
}
#endif

#endif
