/* SPDX-License-Identifier: MIT */
/**
 * @file objects.h
 * Creating, copying, reading and deleting stored objects. Plain functions take and fill fixed
 * records of 1024-character texts; "V21" functions return heap strings of exactly the needed size;
 * "Extended" functions take or return arrays of strings of any length.
 *
 * Status functions return 0 on success and 1 on failure. No operation of several commands is
 * atomic, and nothing is rolled back.
 */
#ifndef ZEPHLANEAPI_OBJECTS_H
#define ZEPHLANEAPI_OBJECTS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Creating and deleting */

/**
 * Maps a URI to the UUID of the object that serves it, in place of an earlier mapping.
 * A UUID longer than its URI is stored cut to the URI's length.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aUri   URI of at most 1023 characters (borrowed)
 * @param aUuid  UUID of at most 1023 characters (borrowed)
 * @return 0; 1 on failure, with nothing written
 * @note Prints "Argument: NULL pointer", "Argument: redis context", "URI length is too long",
 *       "UUID length is too long" or, without the prefix of reports,
 *       " Create URI & UUID mapping table Failed !!!". Redis: HMSET of "UriUuidMap".
 */
ZEPHLANE_EXPORT int zephlaneCreateUriUuidMap(redisContext* ctx, const char* aUri,
                                             const char* aUuid);

/**
 * Writes fields into a hash; fields it holds already and that are not given stay.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key (borrowed)
 * @param aPairs    nCount fields and values (borrowed); a pair with an empty value is skipped
 * @param nCount    number of pairs; 0 is a success that writes nothing
 * @return 0; 1 on failure. A refusal by Redis, such as a key of another type, counts as success.
 * @note Prints "Argument: NULL pointer", "Argument: redis context" or
 *       "%s: failed to create/add !!!" with the key and an empty line. Redis: HMSET.
 */
ZEPHLANE_EXPORT int zephlaneCreateHashTable(redisContext* ctx, const char* aHashKey,
                                            const InstanceData* aPairs, unsigned int nCount);

/**
 * Writes fields of any length into a hash; fields it holds already and that are not given stay.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key (borrowed)
 * @param aPairs    nCount fields and values (borrowed), none of them NULL; empty values are written
 * @param nCount    number of pairs, 1 or more
 * @return 0; 1 on failure. A refusal by Redis, such as a key of another type, counts as success.
 * @note Prints "Argument: NULL pointer!", "malloc" or "Failed to create extended hash table.".
 *       Redis: HMSET.
 */
ZEPHLANE_EXPORT int zephlaneCreateExtendedHashTable(redisContext* ctx, const char* aHashKey,
                                                    const ExtendedPair* aPairs,
                                                    unsigned int nCount);

/**
 * Adds members to a set.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aSetKey   set key (borrowed)
 * @param aMembers  nCount members (borrowed); an empty one is left out, but makes the call fail
 *                  where some of the others were members already
 * @param nCount    number of members; without any to add the call fails
 * @return 0 when every given member is in the set; 1 on failure
 * @note Prints "Argument: NULL pointer", "Argument: redis context" or, without the prefix of
 *       reports, " Create Set \"%s\" Failed !!!" with the key. Redis: SADD, and SISMEMBER of each
 *       when some were members already.
 */
ZEPHLANE_EXPORT int zephlaneCreateSetTable(redisContext* ctx, const char* aSetKey,
                                           const SetData* aMembers, unsigned int nCount);

/**
 * Adds members of any length to a set.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aSetKey   set key (borrowed)
 * @param aMembers  nCount members (borrowed), none of them NULL
 * @param nCount    number of members, 1 or more
 * @return 0 when every given member is in the set; 1 on failure
 * @note Prints "Argument: NULL pointer!", "malloc" or "Failed to create extended hash table." (for
 *       sets too). Redis: SADD, and SISMEMBER of each when some were members already.
 */
ZEPHLANE_EXPORT int zephlaneCreateExtendedSetTable(redisContext* ctx, const char* aSetKey,
                                                   char* const* aMembers, unsigned int nCount);

/**
 * Copies the fields of a hash, cut to 1023 characters each, into another, which keeps its own
 * further fields.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param aDestinationKey  key of the hash written (borrowed)
 * @param aSourceKey       key of the hash read (borrowed)
 * @param nTtlSeconds      time-to-live given to the destination in seconds; 0 for none
 * @return 0; 1 when the source is missing or on failure
 * @note Prints "Argument: NULL pointer", "Argument: redis context", "Copy Hash" or
 *       "Append TTL object". Redis: HGETALL, HMSET; with a time-to-live HSET twice and EXPIRE.
 */
ZEPHLANE_EXPORT int zephlaneCopyHash(redisContext* ctx, const char* aDestinationKey,
                                     const char* aSourceKey, int nTtlSeconds);

/**
 * Deletes a key of any type.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @return 0, also when there was no such key or no reply came; 1 when an argument is NULL
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: DEL.
 */
ZEPHLANE_EXPORT int zephlaneDeleteKey(redisContext* ctx, const char* aKey);

/**
 * Deletes a hash and, before it, the companion hash that holds its time-to-live.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key of at most 1020 characters (borrowed)
 * @return 0, also when there was no such hash; 1 when an argument is NULL or the key is too long
 * @note Prints "Argument: NULL pointer", "Argument: redis context" or "Invalid hash key. Key length
 *       is too long, valid length is 1024" and an empty line. Redis: HGET of the companion's
 *       "TtlSec", DEL of the companion if it has one, DEL.
 */
ZEPHLANE_EXPORT int zephlaneDeleteHash(redisContext* ctx, const char* aHashKey);

/**
 * Removes one member from a set.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param aMember  member (borrowed)
 * @return 0 when it was removed; 1 when it was not there or on failure
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: SREM.
 */
ZEPHLANE_EXPORT int zephlaneRemoveInstanceFromSet(redisContext* ctx, const char* aSetKey,
                                                  const char* aMember);

/**
 * Removes one field from a hash.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    object key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @return 0 when it was removed; 1 when it was not there or on failure
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: HDEL.
 */
ZEPHLANE_EXPORT int zephlaneRemoveFieldFromHash(redisContext* ctx, const char* aHashKey,
                                                const char* aFieldName);

/**
 * Deletes the first object of a collection whose field holds a value, with its companion hash, and
 * takes it out of the collection. Further objects with the value stay.
 * @param ctx             connection (borrowed; one thread at a time)
 * @param aCollectionKey  hash whose field "instanceCollection" names the set of members (borrowed)
 * @param aFieldName      field compared (borrowed); a missing one reads as the empty text
 * @param aValue          value looked for (borrowed), compared over at most 1023 characters
 * @return 0; 1 when nothing matches or on failure. An object that could not be taken out of the set
 *         is deleted all the same.
 * @note Prints "Argument: NULL pointer" or "Argument: redis context". Redis: HGET, SMEMBERS twice,
 *       HGET per member; then HGET and DEL of the companion, DEL, SREM.
 */
ZEPHLANE_EXPORT int zephlaneDeleteHashByField(redisContext* ctx, const char* aCollectionKey,
                                              const char* aFieldName, const char* aValue);

/**
 * Sets a named variable to a text. The name and the text are cut to 1023 characters.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aName   name (borrowed)
 * @param aValue  text (borrowed); an empty one is a success that leaves the variable as it was
 * @return 0; 1 on failure
 * @note Prints "Argument: NULL pointer" or "Set Zephlane Variable \"%s\" : \"%s\" Failed !" with
 *       both texts. Redis: HMSET of "zephlaneVariable".
 */
ZEPHLANE_EXPORT int zephlaneVariableSetStr(redisContext* ctx, const char* aName,
                                           const char* aValue);

/* Reading */

/**
 * Reads a named variable.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aName  name (borrowed)
 * @param aOut   1024 bytes (out): the text, cut to 1023 characters; unchanged on failure
 * @return 0; 1 when the variable is missing or empty, or on failure
 * @note Prints "Argument: NULL pointer" when the name or connection is NULL. Redis: HGET of
 *       "zephlaneVariable".
 */
ZEPHLANE_EXPORT int zephlaneVariableGetStr(redisContext* ctx, const char* aName, char* aOut);

/**
 * Reads the UUID of the object that serves a URI.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aUri  URI (borrowed)
 * @param aOut  1024 bytes (out): the UUID; unchanged on failure
 * @return 0; 1 when the URI is not mapped or on failure
 * @note Prints "Argument: NULL pointer" or "Argument: redis context". Redis: HGET of "UriUuidMap".
 */
ZEPHLANE_EXPORT int zephlaneGetUuid(redisContext* ctx, const char* aUri, char* aOut);

/**
 * Reads one field of a hash into a fixed buffer.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    object key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @param aOut        1024 bytes (out): the value, cut to 1023 characters; unchanged on failure
 * @return 0; 1 when the field is missing or empty, or on failure
 * @note Prints "aHashKey is NULL, failed!", "aFieldName is NULL, failed!" or
 *       " Need connect to Redis Server first !". Redis: HGET.
 */
ZEPHLANE_EXPORT int zephlaneGetHashField(redisContext* ctx, const char* aHashKey,
                                         const char* aFieldName, char* aOut);

/**
 * Reads one field of a hash into a new string of any length.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    object key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @return the value (caller frees with free()); NULL when missing or empty, or on failure
 * @note Prints "Argument is NULL pointer!" when an argument is NULL. Redis: HGET.
 */
ZEPHLANE_EXPORT char* zephlaneGetHashFieldV21(redisContext* ctx, const char* aHashKey,
                                              const char* aFieldName);

/**
 * Reads several fields of a hash, of any length, with one command.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aHashKey   object key (borrowed)
 * @param aFields    nCount field names (borrowed)
 * @param nCount     number of field names, 1 or more
 * @param nOutCount  number of entries (out), as many as were asked for; unchanged on failure
 * @return the values in the order asked for, NULL for a missing field (caller frees each, then the
 *         array); NULL on failure
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: HMGET.
 */
ZEPHLANE_EXPORT char** zephlaneGetHashMultipleFieldV21(redisContext* ctx, const char* aHashKey,
                                                       char* const* aFields, unsigned int nCount,
                                                       unsigned int* nOutCount);

/**
 * Finds the first object of a set whose field holds a value.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aFieldName  field compared (borrowed); a missing one reads as the empty text
 * @param aValue      value looked for (borrowed), compared over at most 1023 characters
 * @param aSetKey     set of object IDs (borrowed)
 * @param aOut        zero-filled buffer (out) for the ID, to which no terminator is added;
 *                    unchanged on failure
 * @return 0; 1 when nothing matches or on failure
 * @note Prints "Argument: NULL pointer", "Argument: redis context" or, without the prefix of
 *       reports and after an empty line, "%s is not a SET or empty" when memory is out.
 *       Redis: SMEMBERS twice, HGET per member.
 */
ZEPHLANE_EXPORT int zephlaneGetSchemaTypeIdByField(redisContext* ctx, const char* aFieldName,
                                                   const char* aValue, const char* aSetKey,
                                                   char* aOut);

/**
 * Reads the root ID of the hash tree of the schema with a title.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aTitle  schema title (borrowed)
 * @param aOut    1024 bytes (out): the ID; unchanged on failure
 * @return 0; 1 when no schema has the title or on failure
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: HGET of
 *       "ZephlaneSchemaTitleUuidHash".
 */
ZEPHLANE_EXPORT int zephlaneGetSchemaTypeIdByTitle(redisContext* ctx, const char* aTitle,
                                                   char* aOut);

/**
 * Tells whether a field of a hash holds a value, compared over at most 1023 characters.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    object key (borrowed)
 * @param aFieldName  field name (borrowed); a missing field equals the empty text
 * @param aValue      value compared with (borrowed)
 * @return 1 when equal; 0 when not or on failure
 * @note Prints "Argument: NULL pointer" or "Argument: redis context". Redis: HGET.
 */
ZEPHLANE_EXPORT int zephlaneIsFieldMatched(redisContext* ctx, const char* aHashKey,
                                           const char* aFieldName, const char* aValue);

/**
 * Tells whether a text holds a UUID, anywhere and in letters of either case.
 * @param aText  text (borrowed)
 * @return 1 when it does; 0 when not or on failure
 * @note Prints "Argument: NULL pointer", or "regcomp() error!! " and an empty line when memory is
 *       out. Redis: none.
 */
ZEPHLANE_EXPORT int zephlaneIsLink(const char* aText);

/**
 * Prints a hash on standard output: a line "%u) %s" for each field and each value in turn, numbered
 * from 0.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key (borrowed)
 * @return 0, also when there is nothing to print; 1 on failure
 * @note Prints "Argument: NULL pointer" or "Argument: redis context", too. Redis: HGETALL.
 */
ZEPHLANE_EXPORT int zephlaneDumpHash(redisContext* ctx, const char* aHashKey);

/**
 * Waits one second at a time, asking for the rest of a hash's time-to-live before each.
 * @param ctx           connection (borrowed; one thread at a time)
 * @param aHashKey      object key (borrowed)
 * @param nRepetitions  number of seconds the calling thread waits; none when 0 or negative
 * @return 0; 1 when an argument is NULL
 * @note Prints "aHashKey is NULL, failed!" or " Need connect to Redis Server first !".
 *       Redis: HGET and TTL of the companion, each time.
 */
ZEPHLANE_EXPORT int zephlaneCheckTTL(redisContext* ctx, const char* aHashKey, int nRepetitions);

/**
 * Makes Redis delete a key, of any type, after a time. It takes no companion hash.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aKey      key (borrowed)
 * @param nSeconds  time in seconds, 1 or more
 * @return 0; 1 when there is no such key or on failure
 * @note Prints "Input paramter!" when an argument is NULL or 0, or
 *       "Failed to Set Key Expiration!". Redis: EXISTS, EXPIRE.
 */
ZEPHLANE_EXPORT int zephlaneSetKeyTimeout(redisContext* ctx, const char* aKey,
                                          unsigned int nSeconds);

/**
 * Tells whether a set has a member.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param aMember  member (borrowed)
 * @return 0 when Redis says that it has not; -1 when an argument is NULL; 1 otherwise, so a query
 *         that fails reads as member
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: SISMEMBER.
 */
ZEPHLANE_EXPORT int zephlaneIsMember(redisContext* ctx, const char* aSetKey, const char* aMember);

/**
 * Reads the members of a set, each cut to 1023 characters.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aSetKey    set key (borrowed)
 * @param nOutCount  number of members (out); unchanged on failure
 * @return the members in Redis's order (caller frees with free()), not NULL for an empty or missing
 *         set; NULL on failure
 * @note Prints "aSetKey is NULL" or "Argument: redis context!". Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT SetData* zephlaneSMembers(redisContext* ctx, const char* aSetKey,
                                          unsigned int* nOutCount);

/**
 * Reads the members of a set, of any length.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aSetKey    set key (borrowed)
 * @param nOutCount  number of members (out); 0 when there is none; without meaning when memory
 *                   is out; unchanged when no reply came
 * @return the members in Redis's order (caller frees each, then the array); NULL for an empty or
 *         missing set or on failure
 * @note Prints "Argument: NULL pointer!", "Wrong reply!" or "malloc". Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT char** zephlaneExtendedSMembers(redisContext* ctx, const char* aSetKey,
                                                unsigned int* nOutCount);

/**
 * Reads a whole hash, fields and values cut to 1023 characters each.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  object key (borrowed)
 * @param nCount    counter of pairs (in and out): the number read is added to it, so set it to 0
 *                  first; unchanged on failure
 * @return the pairs in Redis's order (caller frees with free()), not NULL for an empty or missing
 *         hash; NULL on failure
 * @note Prints "aHashKey is NULL!" or "Argument: redis context". Redis: HGETALL.
 */
ZEPHLANE_EXPORT InstanceData* zephlaneHashGetAll(redisContext* ctx, const char* aHashKey,
                                                 unsigned int* nCount);

/**
 * Reads a whole hash, fields and values of any length.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aHashKey   object key (borrowed)
 * @param nOutCount  number of pairs (out); 0 when there is none; without meaning when memory
 *                   is out; unchanged when no reply came
 * @return the pairs in Redis's order (caller frees each field and value, then the array); NULL for
 *         an empty or missing hash or on failure
 * @note Prints "Argument: NULL pointer!", "HGETALL failed!", "Wrong reply!" or "malloc".
 *       Redis: HGETALL.
 */
ZEPHLANE_EXPORT ExtendedPair* zephlaneExtendedHashGetAll(redisContext* ctx, const char* aHashKey,
                                                         unsigned int* nOutCount);

/**
 * Tells the type of a key.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @return ZEPHLANE_TYPE_HASH, ZEPHLANE_TYPE_SET or ZEPHLANE_TYPE_LIST; ZEPHLANE_TYPE_OTHER for any
 *         other type, a missing key or on failure
 * @note Prints "Argument: NULL pointer" or "Argument: redis context". Redis: TYPE.
 */
ZEPHLANE_EXPORT int zephlaneRedisType(redisContext* ctx, const char* aKey);

#ifdef __cplusplus
}
#endif

#endif
