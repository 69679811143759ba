/* SPDX-License-Identifier: MIT */
/**
 * @file validation.h
 * Testing a stored instance, stamped with its "typeID", against the definition of its schema:
 * required properties, patterns and additional properties of the top level. Objects that it links
 * to are not looked at.
 *
 * Functions return 0 for valid and 1 for invalid or not checkable; the reports tell them apart
 * where there are any. A required property with an empty value counts as missing.
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

/**
 * Tests whether an instance fits its definition: every required property is there, and each that
 * the definition does not name matches its pattern or is allowed as an additional one.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aInstanceID  instance hash with the field "typeID" (borrowed)
 * @return 0; 1 when invalid or not checkable, silently for NULL, for an instance without "typeID"
 *         and for a missing required property
 * @note Prints "error: [%s], Invalid request InstanceID" when the ID is no link and, after what the
 *       steps print, "error: [%s], Invalid property [%s]" with the property first and the
 *       function's name second. Redis: HGET, then the commands of the steps.
 */
ZEPHLANE_EXPORT int zephlaneValidateResponseObject(redisContext* ctx, const char* aInstanceID);

/* The steps of the test */

/**
 * Tests whether an instance has every property that its definition requires.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aInstanceID  instance hash (borrowed)
 * @param aTypeID      ID of its definition (borrowed)
 * @return 0, also when nothing is required or that cannot be read; 1 when a property is missing
 *         or on failure
 * @note Prints nothing. Redis: HGET of "required", SMEMBERS, HGET per member up to the first that
 *       is missing.
 */
ZEPHLANE_EXPORT int validateRequired(redisContext* ctx, const char* aInstanceID,
                                     const char* aTypeID);

/**
 * Collects the properties of an instance that its definition does not name, in Redis's order.
 * "typeID", "Type", "TtlId" and "typeId" never count.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aInstanceID  instance hash (borrowed)
 * @param aTypeID      ID of its definition (borrowed)
 * @param aHead        first node of a list, or NULL (in/out; caller frees each node with free())
 * @param aTail        last node of the list (in/out), set with aHead
 * @return 0; 1 on failure, with the list as it was or, when memory is out, freed and NULL
 * @note Prints "error: [validateProperties], Failed to malloc() for properties list".
 *       Redis: HGETALL, HGET per field.
 */
ZEPHLANE_EXPORT int validateProperties(redisContext* ctx, const char* aInstanceID,
                                       const char* aTypeID, UnknownProperty** aHead,
                                       UnknownProperty** aTail);

/**
 * Tests whether a property's name matches the pattern of a definition, a POSIX extended regular
 * expression used as written: anchored only where it anchors itself.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aTypeID        ID of the definition (borrowed)
 * @param aPropertyName  property (borrowed)
 * @return 0 when it matches; 1 when it does not, when there is not exactly one pattern, or on
 *         failure
 * @note Prints "error: [validatePatternProperties], " and "Failed to validate pattern" (also when
 *       there is none) or "Invalid key-value pair number in patternProperties hash table."; or
 *       "regcomp() error!! " and an empty line. Redis: HGET, HGETALL.
 */
ZEPHLANE_EXPORT int validatePatternProperties(redisContext* ctx, const char* aTypeID,
                                              const char* aPropertyName);

/**
 * Tests whether a definition allows a property as an additional one: any, none, or those whose
 * value fits a type. Type names are looked for within the type's text, so each of several joined
 * names will do: "string" takes printable ASCII without blanks, "number" and "integer" digits only,
 * "boolean" true and false.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aInstanceID    instance hash (borrowed)
 * @param aTypeID        ID of its definition (borrowed)
 * @param aPropertyName  property (borrowed)
 * @return 0 when allowed; 1 when not or on failure, silently when the definition does not say
 * @note Prints "error: [validateAdditionalProperties], " and "No more additional property allowed"
 *       or "additionalProperty validate fail, request type[%s]"; or "regcomp() error!! " and an
 *       empty line. Redis: HGET of "additionalProperties", of the value and of "type".
 */
ZEPHLANE_EXPORT int validateAdditionalProperties(redisContext* ctx, const char* aInstanceID,
                                                 const char* aTypeID, const char* aPropertyName);

#ifdef __cplusplus
}
#endif

#endif
