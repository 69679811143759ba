/* SPDX-License-Identifier: MIT */
/**
 * @file hooks.h
 * Waking handlers in other processes: hook functions registered under a resource's UUID and called
 * from a receiver thread, the queues and wire layouts behind them, and Redis channels.
 */
#ifndef ZEPHLANEAPI_HOOKS_H
#define ZEPHLANEAPI_HOOKS_H

#include <hiredis/hiredis.h>
#include <mqueue.h>
#include <pthread.h>
#include <regex.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** A plain hook: called with message ID, first and second argument; its result is ignored. */
typedef int (*HookFunction)(char* aMsgId, char* aArg1, char* aArg2);
/** An OEM hook: called with message ID, first, second and third argument; result ignored. */
typedef int (*OemHookFunction)(char* aMsgId, char* aArg1, char* aArg2, char* aArg3);

/** One registered plain hook. */
typedef struct HookFunctionEntry {
  char uuid[ZEPHLANE_ID_SIZE];
  HookFunction handler;
  struct HookFunctionEntry* next;
} HookFunctionEntry;

/** One registered OEM hook. */
typedef struct OemHookFunctionEntry {
  char uuid[ZEPHLANE_ID_SIZE];
  OemHookFunction handler;
  struct OemHookFunctionEntry* next;
} OemHookFunctionEntry;

/** One queue that this process has opened for sending. */
typedef struct OpenedQueueInfo {
  mqd_t mqd;
  char name[256];
  struct OpenedQueueInfo* next;
} OpenedQueueInfo;

/** The message of 120 bytes that a plain receiver takes; every field is zero-padded text. */
typedef struct HookMessage {
  char uuid[37];
  char msgId[6];
  char arg1[37];
  char arg2[40];
} HookMessage;

/** The message of 157 bytes that an OEM receiver takes; every field is zero-padded text. */
typedef struct OemHookMessage {
  char uuid[37];
  char msgId[6];
  char arg1[37];
  char arg2[37];
  char arg3[40];
} OemHookMessage;

ZEPHLANE_EXPORT extern HookFunctionEntry* zephlaneFunctionTable;
ZEPHLANE_EXPORT extern OemHookFunctionEntry* zephlaneOemFunctionTable;
ZEPHLANE_EXPORT extern OpenedQueueInfo* openedQueueInfoList;
ZEPHLANE_EXPORT extern mqd_t mqID;
ZEPHLANE_EXPORT extern mqd_t OemMqID;
ZEPHLANE_EXPORT extern int hookFunctionInitFlag;
ZEPHLANE_EXPORT extern int hookOemFunctionInitFlag;
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneHookFuncInitLock;
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneOemHookFuncInitLock;
ZEPHLANE_EXPORT extern pthread_mutex_t updateMsgQueueLock;

ZEPHLANE_EXPORT int zephlaneHookFunctionRegister(redisContext* ctx, const char* aUuid, char** argv,
                                                 HookFunction handler);
ZEPHLANE_EXPORT int zephlaneOemHookFunctionRegister(redisContext* ctx, const char* aUuid,
                                                    char** argv, OemHookFunction handler);
ZEPHLANE_EXPORT int zephlaneOemHookFunctionUnregister(redisContext* ctx, const char* aUuid,
                                                      char** argv);
ZEPHLANE_EXPORT int zephlaneOemMessageHandler(redisContext* ctx, const char* aUuid,
                                              const char* aMsgId, const char* aArg1,
                                              const char* aArg2, const char* aArg3);
ZEPHLANE_EXPORT int zephlaneTriggerOemHookFunc(redisContext* ctx, const char* aUuid,
                                               const char* aMsgId, const char* aArg1,
                                               const char* aArg2, const char* aArg3);
ZEPHLANE_EXPORT int zephlaneHasOemMessageHandler(redisContext* ctx, const char* aUuid);
ZEPHLANE_EXPORT int zephlanePublishToChannel(redisContext* ctx, const char* aChannel,
                                             const char* aMessage);
ZEPHLANE_EXPORT int zephlaneSubscribeFromChannel(redisContext* ctx, const char* aChannel, ...);
ZEPHLANE_EXPORT int mappingMsgQueueToUUID(redisContext* ctx, const char* aUuid,
                                          const char* aQueueName, int nOem);
ZEPHLANE_EXPORT int zephlaneUpdateFuncInfo(const char* aUuid, HookFunction handler, int nOem);
ZEPHLANE_EXPORT int isUUIDExist(const char* aUuid, int nOem);
ZEPHLANE_EXPORT int getOpenedQueueID(const char* aName);
ZEPHLANE_EXPORT int updateOpenedMsgQueueTable(mqd_t mqd, const char* aName);
ZEPHLANE_EXPORT int isInvalidReturnChannel(const regex_t* preg, const char* aText);
ZEPHLANE_EXPORT int isInvalidMsgID(const char* aText);

#ifdef __cplusplus
}
#endif

#endif
