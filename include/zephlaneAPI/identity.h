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

/* Locks */

/**
 * Applies a record lock over the whole of an open file. With F_SETLKW it waits, over signals too;
 * any other command is one fcntl() whose result is returned unchanged.
 * @param fd    descriptor of the file (borrowed; open for writing when type is F_WRLCK)
 * @param cmd   F_SETLKW, F_SETLK or F_GETLK
 * @param type  F_WRLCK, F_RDLCK or F_UNLCK
 * @return the result of fcntl(), 0 or more; -1 on failure, with errno as fcntl() left it
 * @note With F_SETLKW, prints "errno = %d", or "File lock deadlock happen" when errno is EDEADLK
 *       before an attempt: a stale one, of whatever call before this, fails the lock at once.
 *       Otherwise prints nothing.
 */
ZEPHLANE_EXPORT int fileLock(int fd, int cmd, short type);

/**
 * Opens a lock file, created with mode 0644 when missing, and waits for an exclusive lock on it. It
 * keeps processes apart; the threads of one process need a mutex held around it.
 * @param path  lock file (borrowed)
 * @return the descriptor that holds the lock (caller ends it with processUnlock()); -1 on failure,
 *         with nothing left open
 * @note Prints "open lock file failed", or what fileLock() prints and then "lock failed".
 */
ZEPHLANE_EXPORT int processLock(const char* path);

/**
 * Releases the lock of processLock() and closes the descriptor. The file stays in place.
 * @param fd  descriptor (taken, on failure too)
 * @return 0, also when no lock was held; -1 when unlocking failed
 * @note Prints "unlock failed".
 */
ZEPHLANE_EXPORT int processUnlock(int fd);

/* UUIDs */

/**
 * Draws the next UUID of the store-wide counter, safely across threads and processes. The first of
 * a store is 10000000-0000-0000-0000-000000000001; the maximum follows the digit in "maximumUUID"
 * of "defaultSettings", read once per process.
 * @param ctx    connection (borrowed; one thread at a time)
 * @param aUuid  receives the UUID in lower case (out, ZEPHLANE_ID_SIZE characters)
 * @return 0; 1 when aUuid is NULL, the lock is not got, the counter is at its maximum or unlocking
 *         fails
 * @note Prints what processLock() and processUnlock() print, and at the maximum "unlock failed"
 *       once more. Redis: HGET (once per process), GET, SET. After failure aUuid holds the maximum
 *       when the counter stands there, the new UUID when unlocking failed, else what it held. A
 *       counter that cannot be read starts anew; one that cannot be stored is no failure.
 */
ZEPHLANE_EXPORT int zephlaneGenerateUUID(redisContext* ctx, char* aUuid);

/**
 * Splits a UUID into its eight groups of four digits, the least significant first.
 * @param aSource  UUID text (borrowed)
 * @param aOut     receives group k at aOut + 5 * k without a terminator (out, at least 40
 *                 characters, zero-filled by the caller)
 * @return aOut + 35, the most significant group; NULL when an argument is NULL
 * @note Prints nothing. Positions are fixed and not checked: hyphens are where a UUID has them.
 */
ZEPHLANE_EXPORT char* splitUUID(const char* aSource, char* aOut);

/**
 * Adds one to a 16-bit word, with carry into the higher words; the carry out of word 7 is dropped.
 * @param nWords  eight words from 0 to 0xffff, the least significant first (in and out)
 * @param nIndex  word to add to, 0 for the whole number; above 7 nothing is done
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void incrementUUID(unsigned int* nWords, unsigned int nIndex);

/**
 * Checks that a text is 36 characters long and that a pattern occurs in it.
 * @param preg   compiled pattern (borrowed); it need not be anchored
 * @param aText  text to check (borrowed)
 * @return 1 when it is invalid or an argument is NULL; 0 when it is a UUID
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isInvalidUUID(const regex_t* preg, const char* aText);

/* Configuration */

/**
 * Reads one field of the store-wide settings, the hash "defaultSettings". A missing field is the
 * empty text, except that "RuxoMessage" then is "RuxoMessage".
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aKey      field name (borrowed)
 * @param aOut      receives the value, cut to 1023 characters, terminated (out)
 * @param nOutSize  size of aOut in characters; the value must be shorter
 * @return 0; 1 when the value does not fit, with aOut as it was
 * @note Prints "Input buffer size", and what zephlaneGetHashField() prints. Redis: HGET.
 */
ZEPHLANE_EXPORT int zephlaneLoadConfig(redisContext* ctx, const char* aKey, char* aOut,
                                       size_t nOutSize);

/**
 * Reads the UUID of the service root, the first member of the set "ZephlaneRootServices".
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aOut  receives the characters without a terminator (out, zero-filled by the caller)
 * @return 0; 1 when aOut is NULL or there is no service root, with aOut as it was
 * @note Prints "Argument: NULL pointer" or "empty service root", and what zephlaneSMembers()
 *       prints. Redis: SMEMBERS.
 */
ZEPHLANE_EXPORT int zephlaneGetLinksObject(redisContext* ctx, char* aOut);

#ifdef __cplusplus
}
#endif

#endif
