/* SPDX-License-Identifier: MIT */
/**
 * @file identity.h
 * Names that are unique across processes, the locks behind them, and the store-wide configuration.
 * Lock order everywhere: the process-local mutex first, then the file lock; released in reverse.
 */
#ifndef ZEPHLANEAPI_IDENTITY_H
#define ZEPHLANEAPI_IDENTITY_H

#include <hiredis/hiredis.h>
#include <pthread.h>
#include <regex.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Lock file that orders the processes drawing UUIDs: "/tmp/uuidLock.dat". */
ZEPHLANE_EXPORT extern const char ZephlaneGenerateUUIDLockFile[18];
/** Lock file that orders the processes drawing event IDs: "/tmp/eventIDLock.dat". */
ZEPHLANE_EXPORT extern const char ZephlaneGenerateEventIDLockFile[21];
/** Orders the threads of one process in zephlaneGenerateUUID(). Never destroyed. */
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneAutoGenerateUUIDLock;
/** Orders the threads of one process that draw event IDs. Never destroyed. */
ZEPHLANE_EXPORT extern pthread_mutex_t zephlaneAutoGenerateEventIDLock;

ZEPHLANE_EXPORT int fileLock(int fd, int cmd, short type);
ZEPHLANE_EXPORT int processLock(const char* path);
ZEPHLANE_EXPORT int processUnlock(int fd);

ZEPHLANE_EXPORT int zephlaneGenerateUUID(redisContext* ctx, char* aUuid);
ZEPHLANE_EXPORT char* splitUUID(const char* aSource, char* aOut);
ZEPHLANE_EXPORT void incrementUUID(unsigned int* nWords, unsigned int nIndex);
ZEPHLANE_EXPORT int isInvalidUUID(const regex_t* preg, const char* aText);
ZEPHLANE_EXPORT int zephlaneLoadConfig(redisContext* ctx, const char* aKey, char* aOut,
                                       size_t nOutSize);
ZEPHLANE_EXPORT int zephlaneGetLinksObject(redisContext* ctx, char* aOut);

#ifdef __cplusplus
}
#endif

#endif
