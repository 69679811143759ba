/* SPDX-License-Identifier: MIT */
/* Calls of the variadic functions from C, where NULL ends the arguments as C has it. */
#ifndef ZEPHLANE_TESTS_API_VARIADIC_CALLS_H
#define ZEPHLANE_TESTS_API_VARIADIC_CALLS_H

#include <hiredis/hiredis.h>

#ifdef __cplusplus
extern "C" {
#endif

int deleteSubTreeWithoutFields(redisContext* ctx, const char* root);
int deleteSubTreeByTwoFields(redisContext* ctx, const char* root, const char* first,
                             const char* second);
int addNoMember(redisContext* ctx, const char* key);
int addOneMember(redisContext* ctx, const char* key, const char* member);
int addThreeMembers(redisContext* ctx, const char* key, const char* const members[3]);
int differenceOfOneKey(redisContext* ctx, const char* key);
int differenceOfThreeKeys(redisContext* ctx, const char* const keys[3]);
int leaveMessageWithoutArguments(redisContext* ctx, const char* collection, const char* id);
int leaveMessageWithTwoArguments(redisContext* ctx, const char* collection, const char* id,
                                 const char* first, const char* second);

#ifdef __cplusplus
}
#endif

#endif
