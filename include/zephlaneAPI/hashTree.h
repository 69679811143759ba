/* SPDX-License-Identifier: MIT */
/**
 * @file hashTree.h
 * The hash tree, the form in which the schema interpreter keeps schemas in Redis: each JSON object
 * is a hash, each collection of references a set, and a parent holds a child's ID as the value of
 * a field. Every new hash starts with one pair and every new set with one member, placeholders
 * ("DummyKey" = "DummyValue", "00000000-0000-0000-0000-000000000000") where there is nothing to put
 * in, because Redis keeps nothing empty.
 *
 * Two tables remember what a run created: 6000 objects and 4000 schemas. They and the counters of
 * IDs are globals of the process: one thread of one process interprets at a time. Nothing is rolled
 * back: an object written before a later step failed stays in Redis.
 */
#ifndef ZEPHLANEAPI_HASHTREE_H
#define ZEPHLANEAPI_HASHTREE_H

#include <hiredis/hiredis.h>
#include <jansson.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Beginning and clearing away */

/**
 * Clears the two tables of what a run created, and creates the set "ZephlaneSchemaInstances" anew.
 * The counters of hash and set IDs keep their values.
 * @param ctx  connection (borrowed; one thread at a time)
 * @return 0; 1 on failure, with the tables cleared all the same
 * @note Prints "create Zephlane service instance: %s" with the set and an empty line. Redis: HGET,
 *       DEL, SADD.
 */
ZEPHLANE_EXPORT int hashTreeInit(redisContext* ctx);

/**
 * Replaces a key and its TTL companion by a set that holds the placeholder member alone.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @return 0; 1 on failure
 * @note Prints "---> create set table faile !!!!". Redis: HGET, DEL, SADD.
 */
ZEPHLANE_EXPORT int createZephlaneServiceInstanceSet(redisContext* ctx, const char* aSetKey);

/**
 * Deletes every hash and set that this run recorded, in the order they were recorded.
 * @param ctx  connection (borrowed; one thread at a time)
 * @note Prints nothing of its own; failures are ignored. Redis: HGET, DEL.
 */
ZEPHLANE_EXPORT void deleteAllHashObject(redisContext* ctx);

/**
 * Deletes the root hash of every schema that this run registered.
 * @param ctx  connection (borrowed; one thread at a time)
 * @note Prints nothing of its own; failures are ignored. Redis: HGET, DEL.
 */
ZEPHLANE_EXPORT void deleteTypeSchemaHashObject(redisContext* ctx);

/**
 * Does nothing: the hook of a former debug print, kept for programs that link against it.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void dumpSetTable(void);

/**
 * Does nothing: the hook of a former debug print, kept for programs that link against it.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void dumpRedisObjectCollection(void);

/**
 * Does nothing: the hook of a former debug print, kept for programs that link against it.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void dumpSchemaReferenceTable(void);

/* IDs and what is recorded of them */

/**
 * Returns the ID of the next hash ("00000000-0000-0000-0001-0" and 11 hex digits) or set ("...-1"
 * and 11 hex digits). The counter stays: a failed creation hands its ID to the next one.
 * @param nKind  1 for a hash, 2 for a set
 * @return the ID, empty for any other kind (caller frees with free()); NULL when memory is out
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT char* generateRedisDataObjectID(int nKind);

/**
 * Advances the counter of hash IDs, which counts on over all runs of a process.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void increaseRedisHashIDCounter(void);

/**
 * Advances the counter of set IDs, which counts on over all runs of a process.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void increaseRedisSetIDCounter(void);

/**
 * Records the ID of an object that this run created; there is room for 6000.
 * @param aID  ID of at most 36 characters (borrowed)
 * @return 0; -1 when the table is full or the ID too long
 * @note Prints nothing when the table is full; else "Object ID: %s" and
 *       "is longer than buffer size (%zu)" (37).
 */
ZEPHLANE_EXPORT int recordRedisObjectID(const char* aID);

/**
 * Tells whether this run recorded an ID. Free slots are compared too, so the empty ID is registered
 * while there is one.
 * @param aID  ID (borrowed)
 * @return 1 when it is recorded; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isUUIDRegistered(const char* aID);

/* Hashes and sets */

/**
 * Writes one field of a hash, which is created when there is none.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aValue      value of at most 1023 characters (borrowed); an empty one writes nothing
 * @param aHashKey    key of the hash (borrowed)
 * @return 0; 1 on failure. A refusal by Redis, such as a key of another type, counts as success.
 * @note Prints "NULL pointer", "Redis key or value is out of range!!" or
 *       "<%s : %s> insert pair into hash failed!!". Redis: HMSET.
 */
ZEPHLANE_EXPORT int hashTreeHashAddSinglePair(redisContext* ctx, const char* aFieldName,
                                              const char* aValue, const char* aHashKey);

/**
 * Creates a hash with one pair under the next hash ID, in place of what the key held, and records
 * it.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aValue      value of at most 1023 characters (borrowed)
 * @return its ID (caller frees with free()); NULL on failure, with the ID left to the next creation
 * @note Prints "---> Failed to generate hash ID !!!!", "<%s : %s> insert pair into hash failed!!"
 *       or "Hash object collection table is out of room !" (the hash is written then). Redis: HGET,
 *       DEL, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeCreateNewHash(redisContext* ctx, const char* aFieldName,
                                            const char* aValue);

/**
 * Creates a hash like hashTreeCreateNewHash(), but does not record it: it keeps its placeholder
 * pair and is not deleted with the others.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aValue      value of at most 1023 characters (borrowed)
 * @return its ID (caller frees with free()); NULL on failure
 * @note Prints "---> Failed to generate hash ID !!!" or "<%s : %s> insert pair into hash failed!!".
 *       Redis: HGET, DEL, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeCreateHashWithoutRecordHashID(redisContext* ctx,
                                                            const char* aFieldName,
                                                            const char* aValue);

/**
 * Creates a hash with one pair under a given ID, in place of what the key held, and records it.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aValue      value of at most 1023 characters (borrowed)
 * @param aUuid       the ID (borrowed)
 * @return 0; 1 on failure
 * @note Prints "<%s : %s> insert pair into hash failed!!" or
 *       "Hash object collection table is out of room !" (the hash is written then). Redis: HGET,
 *       DEL, HMSET.
 */
ZEPHLANE_EXPORT int hashTreeCreateNewTypeSchemaHash(redisContext* ctx, const char* aFieldName,
                                                    const char* aValue, const char* aUuid);

/**
 * Creates a set with one member under the next set ID, in place of what the key held, and records
 * it.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aMember  member, cut at 1023 characters (borrowed); NULL for the placeholder member
 * @return its ID (caller frees with free()); NULL on failure, with the ID left to the next creation
 * @note Prints "---> Failed to generate hash ID !!!!", "---> create set table faile !!!!" or
 *       "Hash object collection table is out of room !" (the set is written then). Redis: HGET,
 *       DEL, SADD.
 */
ZEPHLANE_EXPORT char* hashTreeCreateNewSet(redisContext* ctx, const char* aMember);

/**
 * Adds a member to one of the two sets of root objects.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  "ZephlaneSchemaInstances" or "ZephlaneRootServices" (borrowed)
 * @param aMember  member, cut at 37 characters (borrowed)
 * @return 0; 1 on failure
 * @note Prints "---> Unknown target Set ID: %s !!!!" or "Insert entry to \"%s\"  failed !!!!".
 *       Redis: SADD.
 */
ZEPHLANE_EXPORT int hashTreeInstanceSetInsertMember(redisContext* ctx, const char* aSetKey,
                                                    const char* aMember);

/**
 * Writes the names of a "type" list as one value, joined in their order without a separator.
 * Elements that are not strings are skipped.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aTypeArray  list (borrowed)
 * @param aHashKey    key of the hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints "%s: Argument is NULL!", "((((( value object is not array type )))))",
 *       "type field of [%s]: %s" and "String is too long to store in Redis ..." when the text would
 *       reach 1024 characters, or "<%s : %s> insert pair into hash failed!!". Redis: HMSET.
 */
ZEPHLANE_EXPORT int hashAddMultipleTypeString(redisContext* ctx, const char* aFieldName,
                                              const json_t* aTypeArray, const char* aHashKey);

/* Children */

/**
 * Creates a set with the placeholder member as the "items" of a hash.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aParentKey  key of the hash (borrowed)
 * @return the ID of the set (caller frees with free()); NULL on failure, with a set that was
 *         created left in Redis
 * @note Prints "---> failed to create new set !!!!" or "---> failed to add pair !!!!". Redis: HGET,
 *       DEL, SADD, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeParentInsertItemsSet(redisContext* ctx, const char* aParentKey);

/**
 * Creates a hash with one pair as the "items" of another.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aParentKey  key of the parent (borrowed)
 * @param aFieldName  field of at most 1023 characters (borrowed)
 * @param aValue      value of at most 1023 characters (borrowed)
 * @return the ID of the new hash (caller frees with free()); NULL on failure, with a hash that was
 *         created left in Redis
 * @note Prints "---> failed to create new hash !!!!" or "---> failed to add pair !!!!". Redis:
 *       HGET, DEL, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeParentInsertItemsHash(redisContext* ctx, const char* aParentKey,
                                                    const char* aFieldName, const char* aValue);

/**
 * Creates the hash of a property, with its type.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aParentKey     key of the parent (borrowed)
 * @param aPropertyName  field of the parent, of at most 1023 characters (borrowed)
 * @param aTypeValue     value of the property's "type" (borrowed)
 * @return the ID of the new hash (caller frees with free()); NULL on failure, with a hash that was
 *         created left in Redis
 * @note Prints "Create new hash failed !!!" or "<%s : %s> insert pair into hash failed!!". Redis:
 *       HGET, DEL, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeParentInsertPropertyHash(redisContext* ctx, const char* aParentKey,
                                                       const char* aPropertyName,
                                                       const char* aTypeValue);

/**
 * Creates a set with the placeholder member as a property of a hash.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aParentKey     key of the hash (borrowed)
 * @param aPropertyName  its field, of at most 1023 characters (borrowed)
 * @return the ID of the set (caller frees with free()); NULL on failure, with a set that was
 *         created left in Redis
 * @note Prints "Create new hash failed !!!" or "---> failed to add pair !!!!". Redis: HGET, DEL,
 *       SADD, HMSET.
 */
ZEPHLANE_EXPORT char* hashTreeParentInsertPropertySet(redisContext* ctx, const char* aParentKey,
                                                      const char* aPropertyName);

/**
 * Reads one field of a hash.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    key of the hash (borrowed)
 * @param aFieldName  field (borrowed)
 * @param aOut        the value, cut at 1023 characters (out); 1024 bytes
 * @return 0; 1 when it is missing or empty, or on failure, with aOut untouched
 * @note Prints what zephlaneGetHashField() prints. Redis: HGET.
 */
ZEPHLANE_EXPORT int hashTreeGetHashFieldValue(redisContext* ctx, const char* aHashKey,
                                              const char* aFieldName, char* aOut);

/* Schemas by file name and title */

/**
 * Registers the root hash of a schema; there is room for 4000. Ask
 * isReferenceSchemaHasInternalized() first: names that are registered already are not detected.
 * @param aSchemaName  schema file name of at most 1023 characters (borrowed)
 * @param aHashID      root hash ID of at most 36 characters (borrowed)
 * @return 0; 1 on failure
 * @note Prints "%s: argument is NULL", "Schema name: %s or hash id: %s \nis too long..." or, when
 *       the table is full, ">> %s <<" and
 *       ">> There's no free slot to insert schema:uuid mapping into table <<".
 */
ZEPHLANE_EXPORT int schemaReferTableInsertEntry(const char* aSchemaName, const char* aHashID);

/**
 * Looks up the root hash of a registered schema.
 * @param aSchemaName  schema file name (borrowed)
 * @return its ID (borrowed from the table, until the next hashTreeInit()); NULL when it is not
 *         registered
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT char* getSchemaHashID(const char* aSchemaName);

/**
 * Tells whether a schema is registered. Free entries are compared too, so the empty name is
 * registered while there is one.
 * @param aSchemaName  schema file name (borrowed)
 * @return 1 when it is registered; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isReferenceSchemaHasInternalized(const char* aSchemaName);

/**
 * Writes the title index: the hash "ZephlaneSchemaTitleUuidHash" gets the title of each registered
 * schema, cut at 199 characters, with the ID of its root hash. Schemas without a title are left
 * out; of equal titles the one registered last stays, and titles of former runs stay too.
 * @param ctx  connection (borrowed; one thread at a time)
 * @return 0; 1 when the index cannot be written to. Single titles that fail are ignored.
 * @note Prints "Set data to hash %s fail!" with the index and an empty line. Redis: HMSET, HGET.
 */
ZEPHLANE_EXPORT int hashTreeCreateSchemaTitleUUIDMapping(redisContext* ctx);

/* IDs a schema gives itself */

/**
 * Lower-cases a UUID, which is any text of 36 characters with exactly four '-'. Any other text is
 * copied as it is.
 * @param aSource   text (borrowed)
 * @param aOut      copy (out), terminated; untouched on failure
 * @param nOutSize  size of aOut in bytes, which must be above the length of the text
 * @return 0; 1 on failure
 * @note Prints "%s: Argument is NULL !!!" or "Input length: %zu, buffer size: %zu".
 */
ZEPHLANE_EXPORT int toLowerUUID(const char* aSource, char* aOut, size_t nOutSize);

/**
 * Tells whether a schema may use an ID as its own: a lower-case UUID outside the ranges that the
 * interpreter ("00000000-0000-0000-0001") and its tests ("00000000-0000-0000-0000", but for
 * "-fedc") keep for themselves, one of the two fixed IDs of the former, or 36 characters that begin
 * with "ZephlaneRootServices".
 * @param aUuid  ID (borrowed); lower-case it with toLowerUUID() first
 * @return 1 when it may; else 0
 * @note Prints "%s: Argument is NULL !!!", "Invalid UUID length.",
 *       "Given UUID is in the range where can only be used by interpreter!" or
 *       "Given UUID is in the range where can only be used by interpreter unittest!", either with
 *       "UUID: %s", "regcomp() fail" with an empty line, or
 *       "Invalid UUID!\n\nInvalid: %s\nValid pattern: %s" with an empty line.
 */
ZEPHLANE_EXPORT int isSchemaGivenUUIDValid(const char* aUuid);

/* Finishing */

/**
 * Removes the placeholder from every object that this run recorded, and from the set
 * "ZephlaneSchemaInstances". Redis drops what held nothing else.
 * @param ctx  connection (borrowed; one thread at a time)
 * @return 0; 1 at the first object that does not give its placeholder up, with the others left
 *         alone
 * @note Prints "Failed to remove dummy data ..." or "Remove dummy from %s failed !!!". Redis: HGET,
 *       HDEL, SREM.
 */
ZEPHLANE_EXPORT int hashTreeRemoveDummyData(redisContext* ctx);

#ifdef __cplusplus
}
#endif

#endif
