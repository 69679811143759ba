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
  int count;       /**< number of items; without any, and below 0, the creation fails */
  void* items;     /**< InstanceData records of a hash, SetData records of a set or list */
} ObjectEntry;

/* Trees */

/**
 * Finds the first object of a collection whose field holds a value, in Redis's order of the set.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aObjectID   hash that names the set of members (borrowed)
 * @param aFieldName  field compared (borrowed); a missing one reads as the empty text
 * @param aValue      value looked for (borrowed), compared over at most 1023 characters
 * @param nSetType    1: the set is named by the field that "RuxoMessage" of "defaultSettings"
 *                    names; below 1: by "instanceCollection"
 * @param aOut        receives the ID's characters without a terminator (out, zero-filled by the
 *                    caller); unchanged on failure
 * @return 0; 1 when nothing matches or on failure
 * @note Prints "Argument: NULL pointer", "Argument: redis context", "eSetType input error !", or
 *       what zephlaneLoadConfig() prints. Redis: HGET twice, SMEMBERS twice, HGET per member.
 */
ZEPHLANE_EXPORT int zephlaneFindObjectByField(redisContext* ctx, const char* aObjectID,
                                              const char* aFieldName, const char* aValue,
                                              int nSetType, char* aOut);

/**
 * Deletes an object and all that can be reached from it, children before parents. Children are the
 * values of the named fields of a hash, the members of a set and the items of a list.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aRoot  key of the object, below 1012 characters (borrowed)
 * @param ...    names of the fields that name children (const char*, borrowed), ended by NULL
 * @return 0, also when there is no such object; 1 on failure, with what was not reached yet left
 * @note Prints "Arguments", "Failed to delete tracking table.", and what
 *       deleteAllSpecifiedObjects() prints. Redis: as there, then DEL of the set of visited keys,
 *       aRoot + "-memberSET".
 */
ZEPHLANE_EXPORT int zephlaneDeleteSubTree(redisContext* ctx, const char* aRoot, ...);

/**
 * Deletes a tree as zephlaneDeleteSubTree(), with the field names in an array. No argument is
 * checked first: a NULL one fails in the walk.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aRoot    key of the object (borrowed)
 * @param aFields  nFields names of the fields that name children (borrowed)
 * @param nFields  number of field names; 0 for none
 * @return as zephlaneDeleteSubTree()
 * @note Prints "Failed to delete tracking table.", and what deleteAllSpecifiedObjects() prints.
 *       Redis: as zephlaneDeleteSubTree().
 */
ZEPHLANE_EXPORT int zephlaneDeleteSubTreeV21(redisContext* ctx, const char* aRoot,
                                             const char** aFields, int nFields);

/**
 * Deletes an object and all below it, noting each key in a set. A key that exists and is in the set
 * ends the walk: the tree has a loop, or someone else is deleting it. A child that is gone already
 * does not.
 * @param ctx           connection (borrowed; one thread at a time)
 * @param aKey          key of the object (borrowed)
 * @param aFields       nFields names of the fields that name children (borrowed)
 * @param nFields       number of field names; 0 for none
 * @param aTrackingSet  key of the set of visited keys (borrowed), which the caller deletes
 * @return 0, also when there is no such object; 1 on failure, with what was not reached yet left
 * @note Prints "detected infinite loop! Or other thread/process is trying to delete the same
 *       object." and "\"%s\" repeated again!!" with the key, "SADD failed!!", or what the functions
 *       that it reads with print. Redis, per key: TYPE; SISMEMBER and SADD; HGET per field,
 *       SMEMBERS or LRANGE; DEL.
 */
ZEPHLANE_EXPORT int deleteAllSpecifiedObjects(redisContext* ctx, const char* aKey,
                                              const char** aFields, int nFields,
                                              const char* aTrackingSet);

/* Several objects at once */

/**
 * Creates objects with one round trip; when one of them fails, all are deleted again.
 * @param ctx       connection (borrowed; one thread at a time), with no replies outstanding
 * @param aEntries  nCount objects (borrowed); all are checked before anything is sent
 * @param nCount    number of objects; 0 is a success that sends nothing
 * @return 0; 1 on failure. An object that existed before is gone as well then.
 * @note Prints "Argument is NULL pointer!", "Unknown object type" or "Object UUID: %zu" with the
 *       length of a key; "Failed to create multiple objects!" and "Stop creation and receive
 *       replies of previous send command."; "Something wrong when creating objects" and "Delete
 *       previous created object ..."; "Failed to delete object <%s>". Redis: HMSET, SADD or RPUSH
 *       of each; on failure what zephlaneDeleteHash() sends for each.
 */
ZEPHLANE_EXPORT int zephlaneCreateMultipleObjects(redisContext* ctx, ObjectEntry* aEntries,
                                                  int nCount);

/**
 * Renames an object. An object that has the new ID already is replaced.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aOldID  present ID (borrowed)
 * @param aNewID  new ID (borrowed)
 * @return 0; 1 when there is no such object or on failure
 * @note Prints "Pointer to redis context is NULL!", "Pointer to source object ID is NULL!",
 *       "Pointer to new object ID is NULL!" or "Failed to rename object ID to the new ID". Redis:
 *       RENAME.
 */
ZEPHLANE_EXPORT int zephlaneRenameObjectID(redisContext* ctx, const char* aOldID,
                                           const char* aNewID);

/* Sets */

/**
 * Adds members to a set. Key and members are joined with a blank behind each, to 1017 characters at
 * most; blanks within them separate members. Of a text of 256 characters or more only the first
 * (length modulo 256) are used.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param aMember  first member (borrowed)
 * @param ...      further members (const char*, borrowed), ended by NULL
 * @return 0, whether or not they were members already; 1 on failure, with nothing added
 * @note Prints "Argument: NULL pointer", "Argument: redis context" or "command length overflow".
 *       Redis: SADD.
 */
ZEPHLANE_EXPORT int zephlaneSADD(redisContext* ctx, const char* aSetKey, const char* aMember, ...);

/**
 * Tells whether the first set has members that none of the others has. The keys are joined as for
 * zephlaneSADD(), but to 1016 characters at most.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  key of the first set (borrowed)
 * @param ...      keys of the others (const char*, borrowed), ended by NULL
 * @return 1 when there are such members, 0 when there are none; -1 on failure
 * @note Prints "Argument: NULL pointer" or "command length overflow", and nothing when ctx is NULL.
 *       Redis: SDIFF.
 */
ZEPHLANE_EXPORT int zephlaneSdiffKey(redisContext* ctx, const char* aSetKey, ...);

/**
 * Compares sets as zephlaneSdiffKey(), with the keys in an array.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aSetKeys  nCount keys (borrowed)
 * @param nCount    number of keys; without any the command fails
 * @return as zephlaneSdiffKey()
 * @note Prints "Argument is NULL pointer!", or "command length overflow" and an empty line. Redis:
 *       SDIFF.
 */
ZEPHLANE_EXPORT int zephlaneSdiffKeyV21(redisContext* ctx, const char** aSetKeys, int nCount);

/* Lifetimes */

/**
 * Gives a hash a time-to-live: its field "TtlId" names a companion hash, key + "-TTL", which
 * expires in its place. The hash itself stays.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aHashKey     object key (borrowed)
 * @param nTtlSeconds  time-to-live in seconds, 1 or more
 * @return 0, whatever Redis answers; 1 when an argument is NULL or the time is 0
 * @note Prints nothing. Redis: HSET twice, EXPIRE.
 */
ZEPHLANE_EXPORT int zephlaneHashAppendTTLObject(redisContext* ctx, const char* aHashKey,
                                                unsigned int nTtlSeconds);

/**
 * Tells whether the time-to-live of a hash is over.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key (borrowed)
 * @return 1 when it is over or was never given; 0 otherwise, when an argument is NULL and when no
 *         reply came
 * @note Prints nothing. Redis: HGET.
 */
ZEPHLANE_EXPORT int zephlaneIsHashOverdue(redisContext* ctx, const char* aHashKey);

/* Notices */

/**
 * Publishes "ACTION FIRST SECOND FLAG", cut to 98 characters, on "WebServiceUpdateTree": a
 * collection changed.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param nAction  action code below 2
 * @param aFirst   first text (borrowed); its meaning is the receiver's
 * @param aSecond  second text (borrowed)
 * @param nFlag    0 or 1
 * @return 0; 1 on failure
 * @note Prints "Arguments". Redis: PUBLISH.
 */
ZEPHLANE_EXPORT int zephlaneRenewCollection(redisContext* ctx, int nAction, const char* aFirst,
                                            const char* aSecond, unsigned char nFlag);

/**
 * Publishes "ACTION FIRST SECOND", cut to 98 characters, on "WebServiceUpdateTree": the URI of an
 * object changed.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param nAction  action code, 2 or 3
 * @param aFirst   first text (borrowed); its meaning is the receiver's
 * @param aSecond  second text (borrowed)
 * @return 0; 1 on failure
 * @note Prints "Arguments". Redis: PUBLISH.
 */
ZEPHLANE_EXPORT int zephlaneRenewObjectURI(redisContext* ctx, int nAction, const char* aFirst,
                                           const char* aSecond);

#ifdef __cplusplus
}
#endif

#endif
