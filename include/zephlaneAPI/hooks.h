/* SPDX-License-Identifier: MIT */
/**
 * @file hooks.h
 * Waking handlers in other processes: hook functions registered under a resource's UUID and called
 * from a receiver thread, the queues and wire layouts behind them, and Redis channels.
 *
 * There are two families of the same shape, plain and OEM hooks. A process has one POSIX message
 * queue for each, "/mq_%s" and "/oemmq_%s" with the program's base name; the sets "%s-mqList" and
 * "%s-oem-mqList" list the queues to which messages for a UUID go (254 characters of a key are
 * used). Each family is received by one thread, which the first registration starts and nothing
 * ends; it makes no Redis calls and prints "mq_receive failed" (through perror) on each turn that
 * fails. Messages for a UUID without a handler are dropped. The library sends OEM messages only: a
 * sender of plain ones fills a HookMessage, priority 0.
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

/**
 * A plain hook: called with message ID, first and second argument; its result is ignored. It runs
 * in the receiver thread; the texts are gone when it returns.
 */
typedef int (*HookFunction)(char* aMsgId, char* aArg1, char* aArg2);
/** An OEM hook: called with message ID, first, second and third argument, else as HookFunction. */
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

/* Process state: for looking at. Only the functions below change it. */

/** First of the registered plain hooks, in the order of their registration; NULL when none is. */
ZEPHLANE_EXPORT extern HookFunctionEntry* zephlaneFunctionTable;
/** First of the registered OEM hooks, in the order of their registration; NULL when none is. */
ZEPHLANE_EXPORT extern OemHookFunctionEntry* zephlaneOemFunctionTable;
/** First of the queues opened for sending, in the order of opening. They are never closed. */
ZEPHLANE_EXPORT extern OpenedQueueInfo* openedQueueInfoList;
/** The queue from which plain messages are received; -1 when there is none. */
ZEPHLANE_EXPORT extern mqd_t mqID;
/** The queue from which OEM messages are received; -1 when there is none, or none any more. */
ZEPHLANE_EXPORT extern mqd_t OemMqID;
/** 1 once the plain family has its queue and receiver thread. Never reset. */
ZEPHLANE_EXPORT extern int hookFunctionInitFlag;
/** 1 once the OEM family has its queue and receiver thread. Never reset. */
ZEPHLANE_EXPORT extern int hookOemFunctionInitFlag;
/** Orders the registrations of plain hooks. Never destroyed. */
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneHookFuncInitLock;
/** Orders the registrations and unregistrations of OEM hooks. Never destroyed. */
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneOemHookFuncInitLock;
/** Orders the threads that add to openedQueueInfoList. Never destroyed. */
ZEPHLANE_EXPORT extern pthread_mutex_t updateMsgQueueLock;

/* Registration */

/**
 * Registers a plain hook. The first registration of the process opens its queue, taking over one
 * of an earlier run, starts the receiver thread and clears the queue list of this UUID.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aUuid    resource, at most 36 characters (borrowed)
 * @param argv     arguments of the program (borrowed; argv[0] names the queue, the first time)
 * @param handler  function to call
 * @return 0; 1 when the UUID is NULL, too long or registered already, or on failure
 * @note Prints "open queue error:" (through perror), and what mappingMsgQueueToUUID() prints.
 *       Redis: DEL (the first time), SADD. A refusal leaves the queue and its thread, once there,
 *       as they are; a failure after SADD leaves the queue's name listed.
 */
ZEPHLANE_EXPORT int zephlaneHookFunctionRegister(redisContext* ctx, const char* aUuid, char** argv,
                                                 HookFunction handler);

/**
 * Registers an OEM hook, as zephlaneHookFunctionRegister() does a plain one.
 * @param ctx      connection (borrowed; one thread at a time)
 * @param aUuid    resource, at most 36 characters (borrowed)
 * @param argv     arguments of the program (borrowed; argv[0] names the queue, the first time)
 * @param handler  function to call
 * @return 0; 1 when an argument is NULL, with nothing done, and as zephlaneHookFunctionRegister()
 * @note Prints what zephlaneHookFunctionRegister() prints. Redis: DEL (the first time), SADD.
 *       After an unregistration the process has no OEM queue any more: a registration then still
 *       succeeds, but its handler is not called.
 */
ZEPHLANE_EXPORT int zephlaneOemHookFunctionRegister(redisContext* ctx, const char* aUuid,
                                                    char** argv, OemHookFunction handler);

/**
 * Removes an OEM hook and, with it, the OEM queue of the whole process: it is closed, and the one
 * that argv[0] names is removed from the system. Offered for the first two of the registered UUIDs:
 * a later one keeps its entry. Plain hooks cannot be unregistered.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aUuid  resource (borrowed)
 * @param argv   arguments of the program (borrowed; argv[0] names the queue)
 * @return 0, also when the process has no OEM hooks; 1 when an argument is NULL or memory runs out
 * @note Prints "close queue error:" and "remove queue error:" (through perror). Redis: SREM. The
 *       receiver thread runs on and prints "mq_receive failed" on every turn. Not to be called
 *       while a message for another UUID may arrive: the thread walks the table without a lock.
 */
ZEPHLANE_EXPORT int zephlaneOemHookFunctionUnregister(redisContext* ctx, const char* aUuid,
                                                      char** argv);

/**
 * Adds a queue to those listed for a UUID.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aUuid       resource (borrowed)
 * @param aQueueName  queue, cut to 1023 characters (borrowed)
 * @param nOem        1 for the OEM list, any other value for the plain one
 * @return 0, also when it was listed already; 1 on failure
 * @note Prints "Argument: redis context" or " Create Set \"%s\" Failed !!!" with the key.
 *       Redis: SADD, and SISMEMBER when it was listed already.
 */
ZEPHLANE_EXPORT int mappingMsgQueueToUUID(redisContext* ctx, const char* aUuid,
                                          const char* aQueueName, int nOem);

/**
 * Adds a handler to the end of a family's table. Receiver threads may be walking it; calls for one
 * family must take turns.
 * @param aUuid    resource, cut to 36 characters (borrowed)
 * @param handler  function to call; an OemHookFunction converted to HookFunction for the OEM table
 * @param nOem     1 for the OEM table, any other value for the plain one
 * @return 0; 1 when the UUID is NULL or registered already, or memory runs out
 * @note Prints nothing. Redis: none.
 */
ZEPHLANE_EXPORT int zephlaneUpdateFuncInfo(const char* aUuid, HookFunction handler, int nOem);

/**
 * Tells whether a UUID has a handler in this process.
 * @param aUuid  resource, of which 37 characters are compared (borrowed)
 * @param nOem   1 for the OEM table, any other value for the plain one
 * @return 1 when it has; 0 when it has none or is NULL
 * @note Prints nothing. Redis: none. It may be called in any thread.
 */
ZEPHLANE_EXPORT int isUUIDExist(const char* aUuid, int nOem);

/* Sending */

/**
 * Sends an OEM message to every queue listed for a UUID, without waiting for a full one. The others
 * get it too when one fails. A queue stays open for later messages as long as the process lives.
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aUuid   resource, cut to 36 characters in the message (borrowed)
 * @param aMsgId  message ID, cut to 5 characters (borrowed)
 * @param aArg1   first argument, cut to 36 characters (borrowed)
 * @param aArg2   second argument, cut to 36 characters (borrowed)
 * @param aArg3   third argument, cut to 39 characters (borrowed)
 * @return 0 when all queues have it; 1 when one has not, none is listed or an argument is NULL
 * @note Prints "open queue failed" or "queue send failed" (through perror) for each queue that
 *       fails. Redis: SMEMBERS twice.
 */
ZEPHLANE_EXPORT int zephlaneTriggerOemHookFunc(redisContext* ctx, const char* aUuid,
                                               const char* aMsgId, const char* aArg1,
                                               const char* aArg2, const char* aArg3);

/**
 * Sends an OEM message: another name of zephlaneTriggerOemHookFunc().
 * @param ctx     connection (borrowed; one thread at a time)
 * @param aUuid   resource, cut to 36 characters in the message (borrowed)
 * @param aMsgId  message ID, cut to 5 characters (borrowed)
 * @param aArg1   first argument, cut to 36 characters (borrowed)
 * @param aArg2   second argument, cut to 36 characters (borrowed)
 * @param aArg3   third argument, cut to 39 characters (borrowed)
 * @return as zephlaneTriggerOemHookFunc()
 * @note Prints what zephlaneTriggerOemHookFunc() prints. Redis: SMEMBERS twice.
 */
ZEPHLANE_EXPORT int zephlaneOemMessageHandler(redisContext* ctx, const char* aUuid,
                                              const char* aMsgId, const char* aArg1,
                                              const char* aArg2, const char* aArg3);

/**
 * Tells whether any process takes OEM messages for a UUID. 0 means yes.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aUuid  resource (borrowed)
 * @return 0 when a queue is listed; 1 when none is, the list cannot be read or an argument is NULL
 * @note Prints nothing. Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT int zephlaneHasOemMessageHandler(redisContext* ctx, const char* aUuid);

/**
 * Looks up a queue that this process has opened for sending.
 * @param aName  queue, of which 256 characters are compared (borrowed)
 * @return its descriptor, of the first entry with that name; -1 when there is none or aName is NULL
 * @note Prints nothing. Redis: none. It may be called in any thread.
 */
ZEPHLANE_EXPORT int getOpenedQueueID(const char* aName);

/**
 * Records a queue as opened for sending. The same name may be recorded more than once.
 * @param mqd    descriptor (taken on success: it stays open as long as the process lives)
 * @param aName  queue, cut to 255 characters (borrowed)
 * @return 0; 1 when aName is NULL or memory runs out
 * @note Prints nothing. Redis: none. It may be called in any thread.
 */
ZEPHLANE_EXPORT int updateOpenedMsgQueueTable(mqd_t mqd, const char* aName);

/* Channels and syntax */

/**
 * Publishes a message on a Redis channel.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aChannel  channel (borrowed)
 * @param aMessage  message (borrowed)
 * @return 0, also when nobody listens; 1 when an argument is NULL or no reply came
 * @note Prints nothing. Redis: PUBLISH.
 */
ZEPHLANE_EXPORT int zephlanePublishToChannel(redisContext* ctx, const char* aChannel,
                                             const char* aMessage);

/**
 * Subscribes a connection to a Redis channel. From then on it serves only to receive messages.
 * @param ctx       connection of its own for this (borrowed; one thread at a time)
 * @param aChannel  channel (borrowed)
 * @param ...       may follow and is ignored
 * @return 0; 1 when ctx or aChannel is NULL or no reply came
 * @note Prints nothing. Redis: SUBSCRIBE.
 */
ZEPHLANE_EXPORT int zephlaneSubscribeFromChannel(redisContext* ctx, const char* aChannel, ...);

/**
 * Checks the name of a return channel: a UUID, "-" and two lower-case hexadecimal digits.
 * @param preg   compiled pattern that must occur in it (borrowed); it need not be anchored
 * @param aText  text to check (borrowed)
 * @return 1 when it is invalid or an argument is NULL; 0 when it is a return channel
 * @note Prints nothing. Redis: none.
 */
ZEPHLANE_EXPORT int isInvalidReturnChannel(const regex_t* preg, const char* aText);

/**
 * Checks a message ID: at most 5 characters from "0" to "f" in code order, which upper-case letters
 * and some punctuation are too.
 * @param aText  text to check (borrowed)
 * @return 1 when it is invalid or NULL; 0 when it is a message ID or empty
 * @note Prints nothing. Redis: none.
 */
ZEPHLANE_EXPORT int isInvalidMsgID(const char* aText);

#ifdef __cplusplus
}
#endif

#endif
