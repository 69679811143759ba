/* SPDX-License-Identifier: MIT */
/**
 * @file zephlaneAPI.h
 * libzephlaneAPI keeps the resource model of a management service in a local Redis server: every
 * resource is an object named by a UUID and stored as a Redis hash, set or list.
 *
 * Conventions of the whole library:
 * - Connection. Every function takes the caller's hiredis connection first; one thread at a time
 *   uses it. The library keeps no connection between calls.
 * - Results. Status functions return 0 on success and 1 on failure, predicates 1 for true and 0
 *   for false; counts and membership tests of the command layer return -1 on failure. Functions
 *   that return data return a heap pointer or NULL.
 * - Ownership. "borrowed": the library reads it during the call only. "caller frees": free() each
 *   string, then the array. "taken": the library keeps it. Heap results come from malloc.
 * - Outputs. A buffer of 1024 bytes takes one value, cut to 1023 characters. Zero-fill buffers
 *   first: some functions copy the bytes of a text and add no terminator, as their notes say.
 * - Reports. A failure prints one line where it is seen: "[ERROR]      zephlaneAPI.cpp:<line>: "
 *   and the message on standard output for the API, "[ERROR] <module>.cpp:<line>: " on standard
 *   error for the schema interpreter. The Redis command layer prints nothing.
 * - Nothing written to Redis is rolled back on failure unless the function says so.
 */
#ifndef ZEPHLANEAPI_H
#define ZEPHLANEAPI_H

#include <zephlaneAPI/annotation.h>
#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/connection.h>
#include <zephlaneAPI/events.h>
#include <zephlaneAPI/expiry.h>
#include <zephlaneAPI/hashTree.h>
#include <zephlaneAPI/hooks.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/interpreter.h>
#include <zephlaneAPI/lists.h>
#include <zephlaneAPI/messages.h>
#include <zephlaneAPI/objects.h>
#include <zephlaneAPI/tasks.h>
#include <zephlaneAPI/trees.h>
#include <zephlaneAPI/types.h>
#include <zephlaneAPI/validation.h>

#endif
