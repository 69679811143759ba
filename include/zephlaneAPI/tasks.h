/* SPDX-License-Identifier: MIT */
/**
 * @file tasks.h
 * Asynchronous tasks: created with a "Processing" message, moved through their states, announced
 * on the channel "TASK_STATE_CHANGE".
 */
#ifndef ZEPHLANEAPI_TASKS_H
#define ZEPHLANEAPI_TASKS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Creates a task: draws its UUID, leaves a return message "Processing" with the task's UUID and one
 * argument in a new collection, and publishes the UUID of that collection. The task's hash is
 * created by its first state.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aMessageArg  argument of the message (borrowed); NULL for none
 * @param aChannel     channel on which the requester waits for its collection (borrowed)
 * @return the task's UUID, 36 characters (caller frees with free()); NULL on failure
 * @note Prints nothing of its own, only what zephlaneGenerateUUID() and
 *       zephlaneCreateReturnMessage() print. Redis: GET and SET (per UUID), HMSET, RPUSH, SADD,
 *       PUBLISH. After a failure what was written stays.
 */
ZEPHLANE_EXPORT char* zephlaneCreateAsyncTask(redisContext* ctx, const char* aMessageArg,
                                              const char* aChannel);

/**
 * Records a new state of a task and publishes the task's UUID on "TASK_STATE_CHANGE". "Completed",
 * and any text it begins with, adds "EndTime" and "TaskStatus"; the empty text is such a text.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aTaskID  the task's UUID (borrowed); 98 characters of it are published
 * @param aState   state (borrowed); cut to 1023 characters
 * @return 0; 1 on failure
 * @note Prints "Argument: NULL pointer" or " Create Hash \"%s\" Failed !!!"; nothing when the
 *       publishing fails, with the state written. A time that cannot be told leaves "EndTime" out.
 *       Redis: HMSET, HGET and HDEL (the task's entity tags), PUBLISH.
 */
ZEPHLANE_EXPORT int zephlaneUpdateTaskState(redisContext* ctx, const char* aTaskID,
                                            const char* aState);

/**
 * Writes the local time with its zone, such as 2024-03-05T14:07:09+08:00.
 * @param aOut  receives the text (out, 256 characters)
 * @return 0; 1 when aOut is NULL or the time cannot be told, with aOut as it was
 * @note Prints nothing. The zone is that of the TZ variable. Uses localtime(), whose result the
 *       threads of a process share.
 */
ZEPHLANE_EXPORT int createEventTimeStamp(char* aOut);

#ifdef __cplusplus
}
#endif

#endif
