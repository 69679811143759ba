/* SPDX-License-Identifier: MIT */
#include "variadicCalls.h"

#include <stddef.h>

#include <zephlaneAPI.h>

int deleteSubTreeWithoutFields(redisContext* ctx, const char* root) {
  return zephlaneDeleteSubTree(ctx, root, NULL);
}

int deleteSubTreeByTwoFields(redisContext* ctx, const char* root, const char* first,
                             const char* second) {
  return zephlaneDeleteSubTree(ctx, root, first, second, NULL);
}

int addNoMember(redisContext* ctx, const char* key) {
  return zephlaneSADD(ctx, key, NULL);
}

int addOneMember(redisContext* ctx, const char* key, const char* member) {
  return zephlaneSADD(ctx, key, member, NULL);
}

int addThreeMembers(redisContext* ctx, const char* key, const char* const members[3]) {
  return zephlaneSADD(ctx, key, members[0], members[1], members[2], NULL);
}

int differenceOfOneKey(redisContext* ctx, const char* key) {
  return zephlaneSdiffKey(ctx, key, NULL);
}

int differenceOfThreeKeys(redisContext* ctx, const char* const keys[3]) {
  return zephlaneSdiffKey(ctx, keys[0], keys[1], keys[2], NULL);
}

int leaveMessageWithoutArguments(redisContext* ctx, const char* collection, const char* id) {
  return zephlaneCreateReturnMessage(ctx, collection, id, NULL);
}

int leaveMessageWithTwoArguments(redisContext* ctx, const char* collection, const char* id,
                                 const char* first, const char* second) {
  return zephlaneCreateReturnMessage(ctx, collection, id, first, second, NULL);
}
