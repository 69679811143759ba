/* SPDX-License-Identifier: MIT */
/**
 * @file connection.h
 * Opening, authenticating and closing the connection that every other function borrows.
 * The password is the first line of /tmp/redis.requirepass, sent exactly as read: a trailing
 * newline travels with it. An empty file reaches a server that asks for no password.
 */
#ifndef ZEPHLANEAPI_CONNECTION_H
#define ZEPHLANEAPI_CONNECTION_H

#include <hiredis/hiredis.h>
#include <sys/time.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/**
 * A time-out of 1.5 seconds for callers that open connections of their own: any connection of
 * hiredis serves every function of the library. One made with redisConnectWithTimeout() and given
 * to redisSetTimeout(), both with this value, makes a call that gets no answer for so long return
 * its failure. Such a caller sends AUTH itself. After a time-out the connection is of no use: close
 * it and make a new one. The time-out must be longer than that of a blocking pop. The library
 * itself never reads it.
 */
ZEPHLANE_EXPORT extern const struct timeval G_sTimeout;

/**
 * Connects to the Redis server at 127.0.0.1:6379 and authenticates. Neither this nor any call on
 * the connection has a time-out: a server that accepts and does not answer is waited for until the
 * connection ends. G_sTimeout says how to get one.
 * @return the connection (caller closes it with zephlaneRedisDisconnect()); NULL on failure
 * @note Prints "Connection error: can't allocate redis context", "Connection error: %s",
 *       "Failed to open %s" (and the cause through perror) or "Failed to redis authentication!".
 *       An empty password file yields an unauthenticated connection. Redis: AUTH.
 */
ZEPHLANE_EXPORT redisContext* zephlaneRedisConnect(void);

/**
 * Connects to the Redis server at an address of the caller's and authenticates.
 * @param ip    host address (borrowed)
 * @param port  TCP port
 * @return as zephlaneRedisConnect(); NULL when ip is NULL
 * @note Prints "Target IP address is NULL", and what zephlaneRedisConnect() prints. Redis: AUTH.
 */
ZEPHLANE_EXPORT redisContext* zephlaneRedisConnectWithIP(const char* ip, int port);

/**
 * Closes a connection.
 * @param ctx  connection (taken)
 * @return 0; 1 when ctx is NULL
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int zephlaneRedisDisconnect(redisContext* ctx);

#ifdef __cplusplus
}
#endif

#endif
