/* SPDX-License-Identifier: MIT */
/**
 * @file validation.h
 * Testing a stored instance, stamped with its "typeID", against the definition of its schema:
 * required properties, patterns and additional properties of the top level.
 */
#ifndef ZEPHLANEAPI_VALIDATION_H
#define ZEPHLANEAPI_VALIDATION_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** One property that the definition does not name. */
typedef struct UnknownProperty {
  char aName[ZEPHLANE_VALUE_SIZE];
  struct UnknownProperty* next;
} UnknownProperty;

ZEPHLANE_EXPORT int zephlaneValidateResponseObject(redisContext* ctx, const char* aInstanceID);
ZEPHLANE_EXPORT int validateRequired(redisContext* ctx, const char* aInstanceID,
                                     const char* aTypeID);
ZEPHLANE_EXPORT int validateProperties(redisContext* ctx, const char* aInstanceID,
                                       const char* aTypeID, UnknownProperty** aHead,
                                       UnknownProperty** aTail);
ZEPHLANE_EXPORT int validatePatternProperties(redisContext* ctx, const char* aTypeID,
                                              const char* aPropertyName);
ZEPHLANE_EXPORT int validateAdditionalProperties(redisContext* ctx, const char* aInstanceID,
                                                 const char* aTypeID, const char* aPropertyName);

#ifdef __cplusplus
}
#endif

#endif
