// SPDX-License-Identifier: MIT
//
// Lists, and the entity tags a web resource caches. A popped item that does not fit the caller's
// buffer is lost: it is not pushed back. Type tests and pushes are separate commands, not atomic.
#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/lists.h>
#include <zephlaneAPI/objects.h>

using zephlane::ApiError;
using zephlane::ArgumentsGiven;
using zephlane::CArray;
using zephlane::Command;
using zephlane::CopyWhole;
using zephlane::CString;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kValueSize;
using zephlane::Reply;

int zephlaneCreateListTable(redisContext* ctx, const char* aListKey, const SetData* aItems,
                            unsigned int nCount) {
  if (!aListKey || !ctx || !aItems) {
    ApiError{}("Argument: null pointer\n");
    return kFailed;
  }
  const int type = zephlaneRedisType(ctx, aListKey);
  if (type != ZEPHLANE_TYPE_OTHER && type != ZEPHLANE_TYPE_LIST) {
    ApiError{}("Key is existed and it's not list type!\n");
    ApiError{}("Please double check the key.\n");
    return kFailed;
  }
  if (createListTable(ctx, aListKey, aItems, nCount) == kDone) { return kDone; }
  if (type == ZEPHLANE_TYPE_LIST) {
    ApiError{}("Failed to append value to list.\n");
  } else {
    ApiError{}("Failed to create list.\n");
  }
  return kFailed;
}

int zephlaneCreateExtendedListTable(redisContext* ctx, const char* aListKey, char* const* aItems,
                                    unsigned int nCount) {
  if (!aListKey || !ctx || !aItems) {
    ApiError{}("Argument: NULL pointer!\n");
    return kFailed;
  }
  const CArray<char*> items = zephlane::CopyOfPointers(aItems, nCount);
  if (!items) { return kFailed; }
  if (redisListRightMultiplePush(ctx, aListKey, items.get(), nCount) != kDone) {
    // The wording says hash for lists too: readers of the logs know it so.
    ApiError{}("Failed to create extended hash table.\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneListLeftPush(redisContext* ctx, const char* aListKey, char* const* aItems,
                         unsigned int nCount) {
  if (!ctx || !aItems || !aListKey) {
    ApiError{}("Argument is NULL pointer!\n");
    return kFailed;
  }
  if (nCount == 0) { return kFailed; }
  const int type = zephlaneRedisType(ctx, aListKey);
  if (type == ZEPHLANE_TYPE_HASH || type == ZEPHLANE_TYPE_SET) {
    ApiError{}("Not redis list type\n");
    return kFailed;
  }
  if (redisListLeftPush(ctx, aListKey, aItems, nCount) != kDone) {
    ApiError{}("Failed to create extended list table.\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneListRightPush(redisContext* ctx, const char* aListKey, const char* aItem) {
  if (!ctx || !aListKey || !aItem) { return kFailed; }
  if (listRightPush(ctx, aListKey, aItem) != kDone) {
    ApiError{}("RPUSH fail!\n");
    return kFailed;
  }
  return kDone;
}

SetData* zephlaneListRange(redisContext* ctx, const char* aListKey, int nStart, int nStop,
                           unsigned int* nOutCount) {
  return listRange(ctx, aListKey, nStart, nStop, nOutCount);
}

char** zephlaneExtendedListRange(redisContext* ctx, const char* aListKey, int nStart, int nStop,
                                 unsigned int* nOutCount) {
  if (!aListKey || !ctx) {
    ApiError{}("Argument: NULL pointer!\n");
    return nullptr;
  }
  const Reply reply = Command(ctx, "%s %s %d %d", "LRANGE", aListKey, nStart, nStop);
  return reply ? zephlane::CopyOfStrings(reply, nOutCount) : nullptr;
}

int zephlaneListLength(redisContext* ctx, const char* aListKey, unsigned int* nOutLength) {
  if (!aListKey || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  return listLength(ctx, aListKey, nOutLength);
}

int zephlaneListIndex(redisContext* ctx, const char* aListKey, int nIndex, size_t nCapacity,
                      char* aOut) {
  if (!ctx || !aOut || !aListKey) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  if (nCapacity == 0) {
    ApiError{}("Buffer size is 0.\n");
    return kFailed;
  }
  const CString item(listIndex(ctx, aListKey, nIndex));
  if (!item) { return kFailed; }
  if (!CopyWhole({aOut, nCapacity}, item.get())) {
    ApiError{}("Need more buffer size for value\n");
    return kFailed;
  }
  return kDone;
}

char* zephlaneListIndexV21(redisContext* ctx, const char* aListKey, int nIndex) {
  if (!aListKey || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return nullptr;
  }
  return listIndex(ctx, aListKey, nIndex);
}

int zephlaneListLeftPop(redisContext* ctx, const char* aListKey, size_t nCapacity, char* aOut) {
  if (!aListKey || !ctx || !aOut) {
    ApiError{}("Argument is NULL pointer!\n");
    return kFailed;
  }
  if (nCapacity == 0) { return kFailed; }
  const CString item(listLeftPop(ctx, aListKey));
  if (!item) { return kFailed; }
  if (!CopyWhole({aOut, nCapacity}, item.get())) {
    ApiError{}("Need more buffer size for value\n");
    return kFailed;
  }
  return kDone;
}

char* zephlaneListLeftPopV21(redisContext* ctx, const char* aListKey) {
  if (!aListKey || !ctx) {
    ApiError{}("Argument is NULL pointer!\n");
    return nullptr;
  }
  return listLeftPop(ctx, aListKey);
}

char* zephlaneListRightPop(redisContext* ctx, const char* aListKey) {
  if (!aListKey || !ctx) {
    ApiError{}("Argument is NULL pointer!\n");
    return nullptr;
  }
  return redisListRightPop(ctx, aListKey);
}

int zephlaneListBlockLeftPop(redisContext* ctx, const char* aListKey, unsigned int nTimeoutSeconds,
                             size_t nCapacity, char* aOut) {
  if (!aListKey || !ctx || !aOut) {
    ApiError{}("Argument is NULL pointer!\n");
    return kFailed;
  }
  char* const keys[] = {const_cast<char*>(aListKey)};  // read only, whatever the type says
  const zephlane::CRecord<PopResult> pair(redisListBlockLeftPop(ctx, nTimeoutSeconds, keys, 1));
  if (!pair) { return kFailed; }
  const CString key(pair->aListKey);
  const CString item(pair->aItem);
  if (!CopyWhole({aOut, nCapacity}, item.get())) {
    ApiError{}("Buffer size.\n");
    return kFailed;
  }
  return kDone;
}

PopResult* zephlaneListBlockLeftPopV21(redisContext* ctx, unsigned int nTimeoutSeconds,
                                       char* const* aListKeys, unsigned int nCount) {
  if (!aListKeys || !ctx) {
    ApiError{}("Argument is NULL pointer!\n");
    return nullptr;
  }
  return redisListBlockLeftPop(ctx, nTimeoutSeconds, aListKeys, nCount);
}

PopResult* zephlaneListBlockRightPop(redisContext* ctx, unsigned int nTimeoutSeconds,
                                     char* const* aListKeys, unsigned int nCount) {
  if (!aListKeys || !ctx) {
    ApiError{}("Argument is NULL pointer!\n");
    return nullptr;
  }
  return redisListBlockRightPop(ctx, nTimeoutSeconds, aListKeys, nCount);
}

int zephlaneLREM(redisContext* ctx, const char* aListKey, int nCount, const char* aItem) {
  if (!ArgumentsGiven(ctx, {aItem, aListKey})) { return kFailed; }
  return lremCmd(ctx, aListKey, nCount, aItem);
}

int zephlaneReplaceListItemByIndex(redisContext* ctx, const char* aListKey, int nIndex,
                                   const char* aItem) {
  if (!aListKey || !ctx || !aItem) {
    ApiError{}("Argument: null pointer\n");
    return kFailed;
  }
  char current[kValueSize] = "";
  if (zephlaneListIndex(ctx, aListKey, nIndex, sizeof(current), current) != kDone) {
    // Said of an empty item and of one too long to read, too.
    ApiError{}("Index: %d is out of range.\n", nIndex);
    return kFailed;
  }
  if (listSET(ctx, aListKey, nIndex, aItem) != kDone) {
    ApiError{}("Failed to replace value at index: %d\n", nIndex);
    return kFailed;
  }
  return kDone;
}

int zephlaneClearETagCache(redisContext* ctx, const char* aUri) {
  if (!aUri || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  char cache_id[kValueSize] = "";
  if (getHashField(ctx, zephlane::kWebObjectUriMap, aUri, cache_id) != kDone) { return kFailed; }
  // A tag that is not there is as gone as one that was removed.
  (void)removeFieldFromHash(ctx, cache_id, zephlane::kStrongETagField);
  (void)removeFieldFromHash(ctx, cache_id, zephlane::kWeakETagField);
  return kDone;
}
