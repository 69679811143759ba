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

ZEPHLANE_EXPORT char* zephlaneCreateAsyncTask(redisContext* ctx, const char* aMessageArg,
                                              const char* aChannel);
ZEPHLANE_EXPORT int zephlaneUpdateTaskState(redisContext* ctx, const char* aTaskID,
                                            const char* aState);
ZEPHLANE_EXPORT int createEventTimeStamp(char* aOut);

#ifdef __cplusplus
}
#endif

#endif
