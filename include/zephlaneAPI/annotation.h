/* SPDX-License-Identifier: MIT */
/**
 * @file annotation.h
 * Stamping the objects of an instance tree with the hash-tree ID of the schema definition that
 * describes each, so that readers go from any object straight to its schema node.
 */
#ifndef ZEPHLANEAPI_ANNOTATION_H
#define ZEPHLANEAPI_ANNOTATION_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

ZEPHLANE_EXPORT int zephlaneInsertTypeID(redisContext* ctx, const char* aInstanceID,
                                         const char* aSchemaID, int nUseIdRef);
ZEPHLANE_EXPORT char* zephlaneGetCollectionSchemaTypeId(redisContext* ctx,
                                                        const char* aCollectionKey);
ZEPHLANE_EXPORT int getRootTypeIdFromRef(redisContext* ctx, const char* aSchemaID,
                                         char* aRootTypeID);
ZEPHLANE_EXPORT int getOdataIDRefTypeId(redisContext* ctx, char* aIdRefTypeID);
ZEPHLANE_EXPORT int isObject(redisContext* ctx, const char* aKey);
ZEPHLANE_EXPORT int insertTypeID(redisContext* ctx, const char* aInstanceID, const char* aTypeID,
                                 const char* aIdRefTypeID, int nUseIdRef);
ZEPHLANE_EXPORT int addTypeIdfForHash(redisContext* ctx, const char* aObjectID,
                                      const char* aPropertyTypeID, const char* aIdRefTypeID,
                                      int nUseIdRef);
ZEPHLANE_EXPORT int addTypeIdfForSet(redisContext* ctx, const char* aSetID,
                                     const char* aPropertyTypeID, const char* aIdRefTypeID,
                                     int nUseIdRef);
ZEPHLANE_EXPORT int addTypeIdfForList(redisContext* ctx, const char* aListID,
                                      const char* aPropertyTypeID, const char* aIdRefTypeID,
                                      int nUseIdRef);

#ifdef __cplusplus
}
#endif

#endif
