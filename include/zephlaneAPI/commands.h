/* SPDX-License-Identifier: MIT */
/**
 * @file commands.h
 * The command layer: each function issues one Redis command, or a short fixed sequence, and turns
 * the reply into a plain result. Nothing here prints. A failed argument check returns the failure
 * value before anything is sent; a lost connection is a failure like any other, and an output keeps
 * what it held after a failure unless the function says otherwise.
 *
 * Keys, fields, values and members may hold blanks everywhere but in sdiffKey() and saddCmd().
 */
#ifndef ZEPHLANEAPI_COMMANDS_H
#define ZEPHLANEAPI_COMMANDS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Hashes */

/**
 * Writes fields into a hash, which is created when missing. Pairs with an empty value are skipped,
 * so this never sets a field to the empty text.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  hash key (borrowed)
 * @param aPairs    nCount records (borrowed)
 * @param nCount    number of records; 0, or nothing but empty values, writes nothing and is done
 * @return 0 when done, and also when Redis answers with an error; 1 on failure
 * @note Prints nothing. Redis: HMSET.
 */
ZEPHLANE_EXPORT int createHashTable(redisContext* ctx, const char* aHashKey,
                                    const InstanceData* aPairs, unsigned int nCount);

/**
 * Writes fields of any length into a hash, which is created when missing.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  hash key (borrowed)
 * @param aFields   nCount field names (borrowed), none NULL
 * @param aValues   their values (borrowed), none NULL; empty ones are written
 * @param nCount    number of fields, at least 1
 * @return 0 when done, and also when Redis answers with an error; 1 on failure
 * @note Prints nothing. Redis: HMSET.
 */
ZEPHLANE_EXPORT int redisHashMultipleSet(redisContext* ctx, const char* aHashKey,
                                         char* const* aFields, char* const* aValues,
                                         unsigned int nCount);

/**
 * Writes all fields of one hash into another. Names and values are cut to 1023 characters, empty
 * values are skipped, and fields that only the destination has stay.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param aDestinationKey  key of the hash written (borrowed)
 * @param aSourceKey       key of the hash read (borrowed)
 * @return as createHashTable(); 1 also when the source is missing, with nothing created
 * @note Prints nothing. Redis: HGETALL, HMSET.
 */
ZEPHLANE_EXPORT int copyHash(redisContext* ctx, const char* aDestinationKey,
                             const char* aSourceKey);

/**
 * Reads several fields of a hash into new strings of any length.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aHashKey   hash key (borrowed)
 * @param aFields    nCount field names (borrowed), none NULL
 * @param nCount     number of fields
 * @param nOutCount  (out) number of strings; untouched on failure
 * @return the values in the order of the fields, NULL for a missing one (caller frees each, then
 *         the array); NULL on failure
 * @note Prints nothing. Redis: HMGET.
 */
ZEPHLANE_EXPORT char** redisHashMultipleGet(redisContext* ctx, const char* aHashKey,
                                            char* const* aFields, unsigned int nCount,
                                            unsigned int* nOutCount);

/**
 * Reads one field of a hash into a buffer, cut to 1023 characters and terminated.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    hash key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @param aOut        (out) 1024 bytes; untouched on failure. NULL only asks for the result
 * @return 0 when the field has a value; 1 when it is missing or empty, or on failure. The text of
 *         an error that Redis answers with passes for the value
 * @note Prints nothing. Redis: HGET.
 */
ZEPHLANE_EXPORT int getHashField(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                                 char* aOut);

/**
 * Reads one field of a hash into a new string of any length.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    hash key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @return the value (caller frees); NULL when it is missing or empty, or on failure. The text of
 *         an error that Redis answers with passes for the value
 * @note Prints nothing. Redis: HGET.
 */
ZEPHLANE_EXPORT char* redisHashGet(redisContext* ctx, const char* aHashKey, const char* aFieldName);

/**
 * Compares one field of a hash with a text over at most 1023 characters. A missing field, like a
 * failed read, equals the empty text.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    hash key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @param aExpected   text to compare with (borrowed)
 * @return 1 when equal; 0 when not, or when an argument is NULL
 * @note Prints nothing. Redis: HGET.
 */
ZEPHLANE_EXPORT int isFieldMatched(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                                   const char* aExpected);

/**
 * Removes one field from a hash.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    hash key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @return 0 when the field was there and is removed; 1 when it was missing, or on failure
 * @note Prints nothing. Redis: HDEL.
 */
ZEPHLANE_EXPORT int removeFieldFromHash(redisContext* ctx, const char* aHashKey,
                                        const char* aFieldName);

/**
 * Writes one field of a hash, which is created when missing. The value may be empty.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aHashKey    hash key (borrowed)
 * @param aFieldName  field name (borrowed)
 * @param aValue      value of any length (borrowed)
 * @return 0 on any reply, an error included; 1 on failure
 * @note Prints nothing. Redis: HSET.
 */
ZEPHLANE_EXPORT int hsetKey(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                            const char* aValue);

/* Lifetime of hashes and keys */

/**
 * Gives a hash a time-to-live. The hash itself never expires: its field "TtlId" names the companion
 * hash, its key with "-TTL" appended, which holds the seconds in "TtlSec" and carries the expiry.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  hash key (borrowed)
 * @param nSeconds  time-to-live in seconds; not 0
 * @return 0 whatever Redis answers, or when it does not; 1 on a failed argument check
 * @note Prints nothing. Redis: HSET, HSET, EXPIRE.
 */
ZEPHLANE_EXPORT int addTtlToHash(redisContext* ctx, const char* aHashKey, int nSeconds);

/**
 * Tells whether the time-to-live of a hash has run out; one that never had any counts as such.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aHashKey  hash key (borrowed)
 * @return 1 when the companion hash is gone or was never made; 0 when it is there, or on failure
 * @note Prints nothing. Redis: HGET.
 */
ZEPHLANE_EXPORT int isHashTimeOut(redisContext* ctx, const char* aHashKey);

/**
 * Reads the rest of the time-to-live of a hash.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aHashKey     hash key (borrowed)
 * @param nOutSeconds  (out) seconds left; 0 when it has run out or the hash never had any.
 *                     Untouched on failure
 * @return 0; 1 on failure
 * @note Prints nothing. Redis: HGET, TTL.
 */
ZEPHLANE_EXPORT int getRestTtlTimeFromHash(redisContext* ctx, const char* aHashKey,
                                           unsigned int* nOutSeconds);

/**
 * Lets a key of any type expire by itself, without a companion hash.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aKey      key (borrowed)
 * @param nSeconds  time until then in seconds; not 0
 * @return 0; 1 when there is no such key, or on failure
 * @note Prints nothing. Redis: EXISTS, EXPIRE.
 */
ZEPHLANE_EXPORT int setKeyTimeout(redisContext* ctx, const char* aKey, unsigned int nSeconds);

/* Sets */

/**
 * Counts the members of a set.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @return the number of members; -1 on failure, and for an empty or missing set too
 * @note Prints nothing. Redis: SCARD.
 */
ZEPHLANE_EXPORT int redisSetCardinality(redisContext* ctx, const char* aSetKey);

/**
 * Counts the members of a set, telling an empty set from a failure.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aSetKey    set key (borrowed)
 * @param nOutCount  (out) number of members, 0 for a missing set; untouched on failure. May be NULL
 * @return 0; 1 on failure
 * @note Prints nothing. Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT int getInstanceCount(redisContext* ctx, const char* aSetKey,
                                     unsigned int* nOutCount);

/**
 * Reads the members of a set, in the order Redis gives them, cut to 1023 characters.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param nCount   number of members expected, at least 1
 * @param aOut     (out) nCount records that the caller has zero-filled: no terminators are added.
 *                 Untouched on failure
 * @return 0; 1 when the set does not have exactly nCount members, or on failure
 * @note Prints nothing. Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT int getInstance(redisContext* ctx, const char* aSetKey, unsigned int nCount,
                                SetData* aOut);

/**
 * Removes one member from a set.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param aMember  member (borrowed)
 * @return 0 when the member was there and is removed; 1 when it was missing, or on failure
 * @note Prints nothing. Redis: SREM.
 */
ZEPHLANE_EXPORT int deleteInstanceInSet(redisContext* ctx, const char* aSetKey,
                                        const char* aMember);

/**
 * Tells whether a set has a member.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed)
 * @param aMember  member (borrowed)
 * @return 1 for a member, 0 for none; -1 on failure
 * @note Prints nothing. Redis: SISMEMBER.
 */
ZEPHLANE_EXPORT int sismember(redisContext* ctx, const char* aSetKey, const char* aMember);

/**
 * Tells whether a set has any member. Blanks separate several set keys: then it tells whether the
 * first set has members that none of the others has.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aSetKey  set key (borrowed), read as a format: no '%'
 * @return 1 when there are members, 0 when there are none; -1 on failure
 * @note Prints nothing. Redis: SDIFF.
 */
ZEPHLANE_EXPORT int sdiffKey(redisContext* ctx, const char* aSetKey);

/**
 * Adds members to a set that are given together with its key, separated by blanks.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aText  "KEY MEMBER MEMBER ..." (borrowed), read as a format: no '%'
 * @return 0, whether or not they were members already; 1 on failure
 * @note Prints nothing. Redis: SADD.
 */
ZEPHLANE_EXPORT int saddCmd(redisContext* ctx, const char* aText);

/**
 * Adds members of any length to a set, which is created when missing.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aSetKey   set key (borrowed)
 * @param aMembers  nCount members (borrowed), none NULL
 * @param nCount    number of members, at least 1
 * @return 0 when all are members afterwards, whether or not some were before; 1 on failure
 * @note Prints nothing. Redis: SADD, and SISMEMBER for each when fewer were added.
 */
ZEPHLANE_EXPORT int redisSetMultipleAdd(redisContext* ctx, const char* aSetKey,
                                        char* const* aMembers, unsigned int nCount);

/**
 * Adds members to a set, which is created when missing. Empty records are left out; but when some
 * of the others were members before, an empty record makes the call fail, with these added.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aSetKey   set key (borrowed)
 * @param aMembers  nCount records (borrowed)
 * @param nCount    number of records; without any member to add the call fails
 * @return 0 when all are members afterwards; 1 on failure
 * @note Prints nothing. Redis: SADD, and SISMEMBER for each when fewer were added.
 */
ZEPHLANE_EXPORT int createSetTable(redisContext* ctx, const char* aSetKey, const SetData* aMembers,
                                   unsigned int nCount);

/* Lists */

/**
 * Reads a range of a list, each item cut to 1023 characters and terminated.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aListKey   list key (borrowed)
 * @param nStart     first index, counted from 0; not negative
 * @param nStop      last index; negative counts from the end, -1 for the last item
 * @param nOutCount  (out) number of items; untouched when NULL is returned
 * @return the items (caller frees); NULL when there are none, or on failure
 * @note Prints nothing. Redis: LRANGE.
 */
ZEPHLANE_EXPORT SetData* listRange(redisContext* ctx, const char* aListKey, int nStart, int nStop,
                                   unsigned int* nOutCount);

/**
 * Counts the items of a list.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aListKey    list key (borrowed)
 * @param nOutLength  (out) number of items, 0 for a missing list; untouched on failure
 * @return 0; 1 on failure
 * @note Prints nothing. Redis: LLEN.
 */
ZEPHLANE_EXPORT int listLength(redisContext* ctx, const char* aListKey, unsigned int* nOutLength);

/**
 * Reads one item of a list into a new string of any length.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nIndex    index, counted from 0; negative counts from the end
 * @return the item (caller frees); NULL when there is none or it is empty, or on failure. The text
 *         of an error that Redis answers with passes for the item
 * @note Prints nothing. Redis: LINDEX.
 */
ZEPHLANE_EXPORT char* listIndex(redisContext* ctx, const char* aListKey, int nIndex);

/**
 * Takes the first item off a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @return as listIndex(); an item that is empty, or for which memory is out, is taken off too
 * @note Prints nothing. Redis: LPOP.
 */
ZEPHLANE_EXPORT char* listLeftPop(redisContext* ctx, const char* aListKey);

/**
 * Takes the last item off a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @return as listIndex(); an item that is empty, or for which memory is out, is taken off too
 * @note Prints nothing. Redis: RPOP.
 */
ZEPHLANE_EXPORT char* redisListRightPop(redisContext* ctx, const char* aListKey);

/**
 * Appends one item to a list, which is created when missing.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItem     item of any length (borrowed)
 * @return 0; 1 on failure
 * @note Prints nothing. Redis: RPUSH.
 */
ZEPHLANE_EXPORT int listRightPush(redisContext* ctx, const char* aListKey, const char* aItem);

/**
 * Appends items of any length to a list, which is created when missing.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount items (borrowed), none NULL
 * @param nCount    number of items, at least 1
 * @return 0 when the list grew by exactly nCount; 1 on failure, and when another writer changed the
 *         list at the same moment, although the items are in it
 * @note Prints nothing. Redis: LLEN, RPUSH.
 */
ZEPHLANE_EXPORT int redisListRightMultiplePush(redisContext* ctx, const char* aListKey,
                                               char* const* aItems, unsigned int nCount);

/**
 * Puts items of any length before the first of a list, one after the other: the last one given is
 * the first of the list afterwards.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount items (borrowed), none NULL
 * @param nCount    number of items, at least 1
 * @return as redisListRightMultiplePush()
 * @note Prints nothing. Redis: LLEN, LPUSH.
 */
ZEPHLANE_EXPORT int redisListLeftPush(redisContext* ctx, const char* aListKey, char* const* aItems,
                                      unsigned int nCount);

/**
 * Appends records to a list, which is created when missing; empty ones become empty items.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount records (borrowed)
 * @param nCount    number of records, at least 1
 * @return as redisListRightMultiplePush()
 * @note Prints nothing. Redis: LLEN, RPUSH, LLEN.
 */
ZEPHLANE_EXPORT int createListTable(redisContext* ctx, const char* aListKey, const SetData* aItems,
                                    unsigned int nCount);

/**
 * Takes the first item off the first of several lists that has any, waiting for one.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param nTimeoutSeconds  longest wait in seconds; 0 waits for ever
 * @param aListKeys        nCount list keys (borrowed), none NULL
 * @param nCount           number of keys, at least 1
 * @return the list key and the item (caller frees both strings, then the pair); NULL when the time
 *         is up, or on failure, with an item for which memory is out taken off
 * @note Prints nothing. Blocks the calling thread. Redis: BLPOP.
 */
ZEPHLANE_EXPORT PopResult* redisListBlockLeftPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                                 char* const* aListKeys, unsigned int nCount);

/**
 * Takes the last item off the first of several lists that has any, waiting for one.
 * @param ctx              connection (borrowed; one thread at a time)
 * @param nTimeoutSeconds  longest wait in seconds; 0 waits for ever
 * @param aListKeys        nCount list keys (borrowed), none NULL
 * @param nCount           number of keys, at least 1
 * @return as redisListBlockLeftPop()
 * @note Prints nothing. Blocks the calling thread. Redis: BRPOP.
 */
ZEPHLANE_EXPORT PopResult* redisListBlockRightPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                                  char* const* aListKeys, unsigned int nCount);

/**
 * Removes the items of a list that equal a text.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nCount    most to remove: the first ones, for a negative number the last ones, 0 for all
 * @param aItem     text to look for (borrowed)
 * @return 0, whether or not there were any; 1 on failure
 * @note Prints nothing. Redis: LREM.
 */
ZEPHLANE_EXPORT int lremCmd(redisContext* ctx, const char* aListKey, int nCount, const char* aItem);

/**
 * Replaces one item of a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nIndex    index, counted from 0; negative counts from the end
 * @param aItem     new item of any length (borrowed)
 * @return 0; 1 when there is no such item, or on failure
 * @note Prints nothing. Redis: LSET.
 */
ZEPHLANE_EXPORT int listSET(redisContext* ctx, const char* aListKey, int nIndex, const char* aItem);

/* Keys */

/**
 * Deletes a key of any type.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @return 0 whether or not the key was there, and even when no reply came; 1 when an argument is
 *         NULL
 * @note Prints nothing. Redis: DEL.
 */
ZEPHLANE_EXPORT int deleteKey(redisContext* ctx, const char* aKey);

/**
 * Sets a key to a text, whatever it held before.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aKey    key (borrowed)
 * @param aValue  text of any length (borrowed)
 * @return 0 on any reply, an error included; 1 on failure
 * @note Prints nothing. Redis: SET.
 */
ZEPHLANE_EXPORT int setKey(redisContext* ctx, const char* aKey, const char* aValue);

/**
 * Reads the text of a key, cut to 1023 characters.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @param aOut  (out) buffer of 1024 bytes that the caller has zero-filled: no terminator is added.
 *              Untouched on failure
 * @return 0; 1 when there is no such key or it holds no text, or on failure
 * @note Prints nothing. Redis: GET.
 */
ZEPHLANE_EXPORT int getKey(redisContext* ctx, const char* aKey, char* aOut);

/**
 * Adds 1 to the number that a key holds; a missing key counts as 0.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @return 0 on any reply, an error included; 1 on failure
 * @note Prints nothing. Redis: INCR.
 */
ZEPHLANE_EXPORT int incrKey(redisContext* ctx, const char* aKey);

/**
 * Renames a key of any type; a key that had the new name is replaced.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aOldKey  key (borrowed)
 * @param aNewKey  its new name (borrowed)
 * @return 0; 1 when there is no such key, or on failure
 * @note Prints nothing. Redis: RENAME.
 */
ZEPHLANE_EXPORT int renameKey(redisContext* ctx, const char* aOldKey, const char* aNewKey);

/**
 * Reads the type of a key as a word: "string", "list", "set", "zset", "hash" or "none".
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aKey  key (borrowed)
 * @param aOut  (out) buffer of 1024 bytes that the caller has zero-filled: no terminator is added.
 *              Untouched on failure
 * @return 0, for a missing key too; 1 on failure
 * @note Prints nothing. Redis: TYPE.
 */
ZEPHLANE_EXPORT int typeCmd(redisContext* ctx, const char* aKey, char* aOut);

/* Channels */

/**
 * Sends a message to all who have subscribed to a channel.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aChannel  channel (borrowed)
 * @param aMessage  message of any length (borrowed)
 * @return 0 on any reply, whether or not anybody received it, an error included; 1 on failure
 * @note Prints nothing. Redis: PUBLISH.
 */
ZEPHLANE_EXPORT int publishToChannel(redisContext* ctx, const char* aChannel, const char* aMessage);

/**
 * Subscribes to a channel. From then on the connection serves only the reception of messages, with
 * redisGetReply(): use one of its own.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aChannel  channel (borrowed)
 * @return 0 on any reply, an error included; 1 on failure
 * @note Prints nothing. Redis: SUBSCRIBE.
 */
ZEPHLANE_EXPORT int subscribeFromChannel(redisContext* ctx, const char* aChannel);

/* Pipelines */

/**
 * Queues the writing of one object without sending it; pipelineReceiveReply() sends all that is
 * queued. Nothing else may use the connection in between.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aKey    object key (borrowed)
 * @param nKind   ZEPHLANE_TYPE_HASH, ZEPHLANE_TYPE_SET or ZEPHLANE_TYPE_LIST
 * @param aData   nCount InstanceData records for a hash, SetData records else (borrowed); empty
 *                values, members and items are written too
 * @param nCount  number of records
 * @return 0; 1 for another kind, or on failure, with nothing queued
 * @note Prints nothing. Redis: HMSET, SADD or RPUSH, later.
 */
ZEPHLANE_EXPORT int pipelineCreateObject(redisContext* ctx, const char* aKey, int nKind,
                                         const void* aData, unsigned int nCount);

/**
 * Sends what is queued and reads the replies, all of them also when one is a refusal.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param nReplies  number of pipelineCreateObject() calls that succeeded since the last receiving
 * @return 0; 1 when Redis refused an object or a set gained no member, or on failure
 * @note Prints nothing. Redis: what was queued.
 */
ZEPHLANE_EXPORT int pipelineReceiveReply(redisContext* ctx, unsigned int nReplies);

#ifdef __cplusplus
}
#endif

#endif
