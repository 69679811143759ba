/* SPDX-License-Identifier: MIT */
/**
 * @file lists.h
 * Redis lists: queues and ordered collections of object IDs or values; and the entity-tag cache of
 * a web resource. Plain functions use fixed buffers, "V21" functions return heap strings,
 * "Extended" functions take or return arrays of strings of any length.
 *
 * Status functions return 0 on success and 1 on failure. Indexes count from 0, negative ones from
 * the tail: -1 is the last item. An empty item reads as no item. A popped item that does not fit
 * the caller's buffer, or for which memory is out, is lost. A push that another writer overlaps may
 * report a failure although the items are in the list.
 */
#ifndef ZEPHLANEAPI_LISTS_H
#define ZEPHLANEAPI_LISTS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Creating and pushing */

/**
 * Appends items to the tail of a list, in order, creating it where there is none.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount items (borrowed); empty ones are pushed too
 * @param nCount    number of items, 1 or more
 * @return 0; 1 on failure, with nothing pushed to a key of another type
 * @note Prints "Argument: null pointer", "Failed to create list.", "Failed to append value to
 *       list." or, for a hash or set, "Key is existed and it's not list type!" and "Please double
 *       check the key.". Redis: TYPE, LLEN, RPUSH, LLEN.
 */
ZEPHLANE_EXPORT int zephlaneCreateListTable(redisContext* ctx, const char* aListKey,
                                            const SetData* aItems, unsigned int nCount);

/**
 * Appends items of any length to the tail of a list, in order, creating it where there is none.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount items (borrowed), none of them NULL
 * @param nCount    number of items, 1 or more
 * @return 0; 1 on failure
 * @note Prints "Argument: NULL pointer!", "malloc" or "Failed to create extended hash table." (for
 *       lists too). Redis: LLEN, RPUSH.
 */
ZEPHLANE_EXPORT int zephlaneCreateExtendedListTable(redisContext* ctx, const char* aListKey,
                                                    char* const* aItems, unsigned int nCount);

/**
 * Pushes items of any length to the head of a list one after the other: the last one ends up first.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItems    nCount items (borrowed), none of them NULL
 * @param nCount    number of items; 0 is a failure without a message
 * @return 0; 1 on failure
 * @note Prints "Argument is NULL pointer!", "Not redis list type" for a hash or set, or
 *       "Failed to create extended list table.". Redis: TYPE, LLEN, LPUSH.
 */
ZEPHLANE_EXPORT int zephlaneListLeftPush(redisContext* ctx, const char* aListKey,
                                         char* const* aItems, unsigned int nCount);

/**
 * Pushes one item to the tail of a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param aItem     item (borrowed)
 * @return 0; 1 on failure or, without a message, when an argument is NULL
 * @note Prints "RPUSH fail!". Redis: RPUSH.
 */
ZEPHLANE_EXPORT int zephlaneListRightPush(redisContext* ctx, const char* aListKey,
                                          const char* aItem);

/* Reading */

/**
 * Reads a range of a list, each item cut to 1023 characters.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aListKey   list key (borrowed)
 * @param nStart     index of the first item, 0 or more
 * @param nStop      index of the last item; negative ones count from the tail
 * @param nOutCount  number of items (out); unchanged on failure
 * @return the items (caller frees with free()); NULL when there is none, nStart is negative or on
 *         failure
 * @note Prints nothing. Redis: LRANGE.
 */
ZEPHLANE_EXPORT SetData* zephlaneListRange(redisContext* ctx, const char* aListKey, int nStart,
                                           int nStop, unsigned int* nOutCount);

/**
 * Reads a range of a list, items of any length.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aListKey   list key (borrowed)
 * @param nStart     index of the first item; negative ones count from the tail
 * @param nStop      index of the last item; negative ones count from the tail
 * @param nOutCount  number of items (out); 0 when there is none; without meaning when memory
 *                   is out; unchanged when no reply came
 * @return the items (caller frees each, then the array); NULL when there is none or on failure
 * @note Prints "Argument: NULL pointer!", "Wrong reply!" or "malloc". Redis: LRANGE.
 */
ZEPHLANE_EXPORT char** zephlaneExtendedListRange(redisContext* ctx, const char* aListKey,
                                                 int nStart, int nStop, unsigned int* nOutCount);

/**
 * Reads the length of a list.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aListKey    list key (borrowed)
 * @param nOutLength  number of items (out), 0 for a missing list; unchanged on failure
 * @return 0; 1 on failure
 * @note Prints "Argument: NULL pointer" when the key or connection is NULL. Redis: LLEN.
 */
ZEPHLANE_EXPORT int zephlaneListLength(redisContext* ctx, const char* aListKey,
                                       unsigned int* nOutLength);

/**
 * Reads one item into a buffer and zero-fills the rest of it.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aListKey   list key (borrowed)
 * @param nIndex     index; negative ones count from the tail
 * @param nCapacity  size of the buffer: one more than the longest item it takes
 * @param aOut       the item (out); unchanged on failure
 * @return 0; 1 when there is no item or it does not fit, or on failure
 * @note Prints "Argument: NULL pointer", "Buffer size is 0." or "Need more buffer size for value".
 *       Redis: LINDEX.
 */
ZEPHLANE_EXPORT int zephlaneListIndex(redisContext* ctx, const char* aListKey, int nIndex,
                                      size_t nCapacity, char* aOut);

/**
 * Reads one item into a new string of any length.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nIndex    index; negative ones count from the tail
 * @return the item (caller frees with free()); NULL when there is none or on failure
 * @note Prints "Argument: NULL pointer" when the key or connection is NULL. Redis: LINDEX.
 */
ZEPHLANE_EXPORT char* zephlaneListIndexV21(redisContext* ctx, const char* aListKey, int nIndex);

/* Popping */

/**
 * Takes the first item off a list into a buffer and zero-fills the rest of it.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aListKey   list key (borrowed)
 * @param nCapacity  size of the buffer; 0 is a failure without a message that takes nothing off
 * @param aOut       the item (out); unchanged on failure
 * @return 0; 1 when the list is empty or on failure. An item that does not fit is lost.
 * @note Prints "Argument is NULL pointer!" or "Need more buffer size for value". Redis: LPOP.
 */
ZEPHLANE_EXPORT int zephlaneListLeftPop(redisContext* ctx, const char* aListKey, size_t nCapacity,
                                        char* aOut);

/**
 * Takes the first item off a list into a new string of any length.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @return the item (caller frees with free()); NULL when the list is empty or on failure
 * @note Prints "Argument is NULL pointer!" when an argument is NULL. Redis: LPOP.
 */
ZEPHLANE_EXPORT char* zephlaneListLeftPopV21(redisContext* ctx, const char* aListKey);

/**
 * Takes the last item off a list into a new string of any length.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @return the item (caller frees with free()); NULL when the list is empty or on failure
 * @note Prints "Argument is NULL pointer!" when an argument is NULL. Redis: RPOP.
 */
ZEPHLANE_EXPORT char* zephlaneListRightPop(redisContext* ctx, const char* aListKey);

/**
 * Takes the first item off a list into a buffer, waiting for one, and zero-fills the rest of it.
 * @param ctx              connection (borrowed; one thread at a time), blocked meanwhile
 * @param aListKey         list key (borrowed)
 * @param nTimeoutSeconds  longest wait in seconds; 0 waits for ever
 * @param nCapacity        size of the buffer
 * @param aOut             the item (out); unchanged on failure
 * @return 0; 1 when the time passed or on failure. An item that does not fit is lost.
 * @note Prints "Argument is NULL pointer!" or "Buffer size." for an item that does not fit.
 *       Redis: BLPOP.
 */
ZEPHLANE_EXPORT int zephlaneListBlockLeftPop(redisContext* ctx, const char* aListKey,
                                             unsigned int nTimeoutSeconds, size_t nCapacity,
                                             char* aOut);

/**
 * Takes the first item off the first list that has one, in the order of the keys, waiting for one.
 * @param ctx              connection (borrowed; one thread at a time), blocked meanwhile
 * @param nTimeoutSeconds  longest wait in seconds; 0 waits for ever
 * @param aListKeys        nCount list keys (borrowed), none of them NULL
 * @param nCount           number of list keys; 0 is a failure without a message
 * @return the list key and the item (caller frees both, then the pair); NULL when the time passed
 *         or on failure
 * @note Prints "Argument is NULL pointer!" when the keys or the connection are NULL. Redis: BLPOP.
 */
ZEPHLANE_EXPORT PopResult* zephlaneListBlockLeftPopV21(redisContext* ctx,
                                                       unsigned int nTimeoutSeconds,
                                                       char* const* aListKeys, unsigned int nCount);

/**
 * Takes the last item off the first list that has one, in the order of the keys, waiting for one.
 * @param ctx              connection (borrowed; one thread at a time), blocked meanwhile
 * @param nTimeoutSeconds  longest wait in seconds; 0 waits for ever
 * @param aListKeys        nCount list keys (borrowed), none of them NULL
 * @param nCount           number of list keys; 0 is a failure without a message
 * @return the list key and the item (caller frees both, then the pair); NULL when the time passed
 *         or on failure
 * @note Prints "Argument is NULL pointer!" when the keys or the connection are NULL. Redis: BRPOP.
 */
ZEPHLANE_EXPORT PopResult* zephlaneListBlockRightPop(redisContext* ctx,
                                                     unsigned int nTimeoutSeconds,
                                                     char* const* aListKeys, unsigned int nCount);

/* Replacing and removing */

/**
 * Removes items equal to a text from a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nCount    how many at most: above 0 from the head, below 0 from the tail, 0 for all
 * @param aItem     item (borrowed)
 * @return 0, also when none was there; 1 on failure
 * @note Prints "Argument: NULL pointer" or "Argument: redis context". Redis: LREM.
 */
ZEPHLANE_EXPORT int zephlaneLREM(redisContext* ctx, const char* aListKey, int nCount,
                                 const char* aItem);

/**
 * Replaces one item of a list.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aListKey  list key (borrowed)
 * @param nIndex    index; negative ones count from the tail
 * @param aItem     new item of any length (borrowed)
 * @return 0; 1 when there is no item, the present one is empty or has 1024 characters or more, or
 *         on failure, with the list as it was
 * @note Prints "Argument: null pointer", "Index: %d is out of range." (after what
 *       zephlaneListIndex() prints) or "Failed to replace value at index: %d". Redis: LINDEX, LSET.
 */
ZEPHLANE_EXPORT int zephlaneReplaceListItemByIndex(redisContext* ctx, const char* aListKey,
                                                   int nIndex, const char* aItem);

/* Entity tags */

/**
 * Drops the cached entity tags of a web resource.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aUri  URI of the resource (borrowed)
 * @return 0, also when it has no tags; 1 when the resource has no cache object or on failure
 * @note Prints "Argument: NULL pointer" when an argument is NULL. Redis: HGET of
 *       "WEB-OBJ-URI-MAP", HDEL of "ETagStrong" and of "ETagWeak" on the object it names.
 */
ZEPHLANE_EXPORT int zephlaneClearETagCache(redisContext* ctx, const char* aUri);

#ifdef __cplusplus
}
#endif

#endif
