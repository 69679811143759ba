/* SPDX-License-Identifier: MIT */
/**
 * @file messages.h
 * Return messages: the short-lived answers that a service leaves in the store for a requester.
 * A message is a hash under a new UUID: "MsgId" holds its message ID, "Params" the UUID of a list
 * of its arguments. The requester finds it as a member of a set that both agreed on.
 */
#ifndef ZEPHLANEAPI_MESSAGES_H
#define ZEPHLANEAPI_MESSAGES_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Leaves a message that stays until somebody deletes it. "Params" is written even when no arguments
 * are given: then it names a list that does not exist.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aCollection  key of the set that the requester reads (borrowed), without blanks
 * @param aMsgId       message ID of at most 1023 characters (borrowed); an empty one is not written
 * @param ...          message arguments (const char*, borrowed), ended by NULL
 * @return 0, also when the message could not be added to the set; 1 on failure, with message and
 *         arguments deleted again
 * @note Prints "Argument: NULL pointer", "Return MessageId is too long", "Failed to delete message
 *       object!", "Failed to delete parameter object!", and what zephlaneGenerateUUID() and
 *       zephlaneSADD() print. Redis: those of two UUIDs; HMSET, RPUSH per argument, SADD; DEL twice
 *       when an argument is not pushed.
 */
ZEPHLANE_EXPORT int zephlaneCreateReturnMessage(redisContext* ctx, const char* aCollection,
                                                const char* aMsgId, ...);

/**
 * Leaves a message of which nothing is left 30 seconds later; the set lives 30 seconds from the
 * last message that was added to it.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aCollection  key of the set that the requester reads (borrowed)
 * @param aMsgId       message ID of any length (borrowed)
 * @param aParams      nParams message arguments of any length (borrowed), none NULL; NULL for none
 * @param nParams      number of arguments; without any there are neither "Params" nor a list
 * @return 0; 1 on failure. Then message and arguments are deleted again, not so a membership; what
 *         was pushed before the list had its lifetime stays.
 * @note Prints "Argument: NULL pointer", "Failed to push param string to list!", "calloc!", "Failed
 *       to set expiration time for ..." (param array, message object, ReturnMessage collection),
 *       "Failed to stores property: ..." (param list uuid, message id), "Failed to create return
 *       message!", "Failed to delete parameter object!", "Failed to delete message object!", and
 *       what zephlaneGenerateUUID() prints. Redis: those of each UUID; LLEN, RPUSH, EXISTS, EXPIRE
 *       and HMSET with arguments; HMSET, EXISTS, EXPIRE, SADD, EXISTS, EXPIRE; on failure DEL.
 */
ZEPHLANE_EXPORT int zephlaneCreateReturnMsgV21(redisContext* ctx, const char* aCollection,
                                               const char* aMsgId, const char** aParams,
                                               int nParams);

#ifdef __cplusplus
}
#endif

#endif
