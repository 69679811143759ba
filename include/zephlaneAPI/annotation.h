/* SPDX-License-Identifier: MIT */
/**
 * @file annotation.h
 * Stamping the objects of an instance tree with the hash-tree ID of the schema definition that
 * describes each, so that readers go from any object straight to its schema node. The stamp is the
 * field "typeID" of a hash. An object is stamped after its children and only once: one that has a
 * stamp is left as it is, its children included, and a child that links back to an object further
 * up ends there.
 *
 * Status functions return 0 on success and 1 on failure. Stamps already written stay; an object
 * whose walk failed has none. Whether a stamp could be written is not reported. What a value links
 * to is decided by zephlaneIsLink().
 */
#ifndef ZEPHLANEAPI_ANNOTATION_H
#define ZEPHLANEAPI_ANNOTATION_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Stamps an instance tree, from its root down.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aInstanceID  root of the instance tree, a hash (borrowed)
 * @param aSchemaID    root hash of the schema (borrowed); its "$ref" names the root's definition
 * @param nUseIdRef    where a property offers alternatives ("oneOf", "anyOf"): non-zero takes the
 *                     odata link type, 0 the first other alternative
 * @return 0; 1 on failure, also when an object has a link that its definition does not name
 * @note Prints "NULL input", "aInstanceID is not a hash", "Failed to get root type id", "Failed to
 *       get odata id type id", or "Failed to insert type id" with both IDs after what the walk
 *       printed, each with an empty line. Redis: TYPE, HGET per step to the two types, then
 *       insertTypeID().
 */
ZEPHLANE_EXPORT int zephlaneInsertTypeID(redisContext* ctx, const char* aInstanceID,
                                         const char* aSchemaID, int nUseIdRef);

/**
 * Reads the schema type ID of a collection's members from a table that other programs write.
 * @param ctx             connection (borrowed; one thread at a time)
 * @param aCollectionKey  key of the collection (borrowed)
 * @return the ID in a buffer of 1024 bytes (caller frees with free()); NULL when missing or empty,
 *         or on failure
 * @note Prints "Argument is NULL pointer" or "Failed to allocate memory". Redis: HGET of
 *       "schemaTypeIdMembersMapping".
 */
ZEPHLANE_EXPORT char* zephlaneGetCollectionSchemaTypeId(redisContext* ctx,
                                                        const char* aCollectionKey);

/* The steps of the walk */

/**
 * Finds the definition that a schema's "$ref", such as #/definitions/Chassis, names: each piece
 * between slashes is a field to follow, beginning at the schema's root hash.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aSchemaID    root hash of the schema (borrowed)
 * @param aRootTypeID  the definition's ID (out, 1024 bytes); untouched on failure
 * @return 0; 1 when a step is missing or on failure
 * @note Prints nothing. Redis: HGET of "$ref" and per piece.
 */
ZEPHLANE_EXPORT int getRootTypeIdFromRef(redisContext* ctx, const char* aSchemaID,
                                         char* aRootTypeID);

/**
 * Finds the odata link type, which describes objects that only point at another resource.
 * @param ctx           connection (borrowed; one thread at a time)
 * @param aIdRefTypeID  the type's ID (out, 1024 bytes); untouched on failure
 * @return 0; 1 when a step is missing or on failure
 * @note Prints nothing. Redis: HGET of "odata.4.0.0" in the schema index, of "definitions" and of
 *       "idRef".
 */
ZEPHLANE_EXPORT int getOdataIDRefTypeId(redisContext* ctx, char* aIdRefTypeID);

/**
 * Says whether a key holds an object of the resource model.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @return 1 for a hash, set or list; 0 for a string; -1 for a missing key, another type or a
 *         failure
 * @note Prints nothing. Redis: TYPE.
 */
ZEPHLANE_EXPORT int isObject(redisContext* ctx, const char* aKey);

/**
 * Stamps one instance, after the children that its links lead to.
 * @param ctx           connection (borrowed; one thread at a time)
 * @param aInstanceID   instance hash (borrowed)
 * @param aTypeID       ID of its definition (borrowed), with one field per property
 * @param aIdRefTypeID  the odata link type (borrowed)
 * @param nUseIdRef     as for zephlaneInsertTypeID()
 * @return 0, also when the instance has a stamp; 1 on failure, silently when the definition lacks a
 *         property that is a link
 * @note Prints "Failed to issue type command" or what the child's walk printed, and then the
 *       instance, definition, field and value. Redis: HGET, HGETALL; HGET and TYPE per link; HSET.
 */
ZEPHLANE_EXPORT int insertTypeID(redisContext* ctx, const char* aInstanceID, const char* aTypeID,
                                 const char* aIdRefTypeID, int nUseIdRef);

/**
 * Stamps a linked hash: walks it by the property's own type or, where that offers alternatives,
 * writes the chosen one over any stamp, without a walk.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param aObjectID        linked hash (borrowed)
 * @param aPropertyTypeID  type of the property that holds the link (borrowed)
 * @param aIdRefTypeID     the odata link type (borrowed)
 * @param nUseIdRef        as for zephlaneInsertTypeID()
 * @return 0; 1 on failure, silently when there is no alternative to choose
 * @note Prints "Failed to insert type id" and the property's type. Redis: HGET of "oneOf" and
 *       "anyOf", then insertTypeID(), or SMEMBERS of the alternatives and HSET.
 */
ZEPHLANE_EXPORT int addTypeIdfForHash(redisContext* ctx, const char* aObjectID,
                                      const char* aPropertyTypeID, const char* aIdRefTypeID,
                                      int nUseIdRef);

/**
 * Stamps the members of a linked set by the type of the property's "items". Where that offers
 * alternatives in "oneOf", every member, whatever its type, gets the chosen one without a walk.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param aSetID           linked set (borrowed)
 * @param aPropertyTypeID  type of the property that holds the link (borrowed)
 * @param aIdRefTypeID     the odata link type (borrowed)
 * @param nUseIdRef        as for zephlaneInsertTypeID()
 * @return 0, also when a member that is no object ended the walk; 1 on failure
 * @note Prints "Failed to insert type id in a set" and the member and types, each with an empty
 *       line. Redis: HGET of "items" and "oneOf", SMEMBERS; TYPE and insertTypeID(), or HSET, per
 *       member.
 */
ZEPHLANE_EXPORT int addTypeIdfForSet(redisContext* ctx, const char* aSetID,
                                     const char* aPropertyTypeID, const char* aIdRefTypeID,
                                     int nUseIdRef);

/**
 * Stamps the elements of a linked list by the type of the property's "items", as the members of a
 * set without alternatives.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param aListID          linked list (borrowed)
 * @param aPropertyTypeID  type of the property that holds the link (borrowed)
 * @param aIdRefTypeID     the odata link type (borrowed)
 * @param nUseIdRef        as for zephlaneInsertTypeID()
 * @return 0, also when an element that is no object ended the walk; 1 on failure
 * @note Prints "Failed to insert type id in a set" (for lists too) and the element and types, each
 *       with an empty line. Redis: HGET of "items", LRANGE; TYPE and insertTypeID() per element.
 */
ZEPHLANE_EXPORT int addTypeIdfForList(redisContext* ctx, const char* aListID,
                                      const char* aPropertyTypeID, const char* aIdRefTypeID,
                                      int nUseIdRef);

#ifdef __cplusplus
}
#endif

#endif
