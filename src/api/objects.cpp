// SPDX-License-Identifier: MIT
//
// Creating, copying and deleting objects, and the small tables of fixed name. Each function checks
// its arguments, reports what is wrong and leaves the work to the command layer. Nothing is rolled
// back on failure.
#include <cstdio>
#include <cstring>
#include <string_view>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/objects.h>

namespace zephlane {
namespace {

constexpr std::string_view kCompanionSuffix = "-TTL";

// A longer key is refused where its companion would be deleted with it.
constexpr std::size_t kMaximumHashKeyLength = kValueSize - kCompanionSuffix.size();

// Deletes the companion hash that gives `key` its time-to-live, if there is one.
// Precondition: `key` is shorter than kValueSize.
void DeleteCompanion(redisContext* ctx, std::string_view key) {
  char companion[kValueSize + kCompanionSuffix.size()];
  CopyCounted(companion, key);
  CopyCut(std::span(companion).subspan(key.size()), kCompanionSuffix);
  if (getHashField(ctx, companion, kTtlSecondsField, nullptr) == kDone) {
    (void)deleteKey(ctx, companion);
  }
}

}  // namespace
}  // namespace zephlane

using zephlane::ApiError;
using zephlane::ArgumentsGiven;
using zephlane::CArray;
using zephlane::CopyCut;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kValueSize;

int zephlaneCreateUriUuidMap(redisContext* ctx, const char* aUri, const char* aUuid) {
  if (!ArgumentsGiven(ctx, {aUri, aUuid})) { return kFailed; }
  const std::string_view uri(aUri);
  const std::string_view uuid(aUuid);
  if (uri.size() >= kValueSize) {
    ApiError{}("URI length is too long\n");
    return kFailed;
  }
  if (uuid.size() >= kValueSize) {
    ApiError{}("UUID length is too long\n");
    return kFailed;
  }
  InstanceData pair{};
  CopyCut(pair.aFieldName, uri);
  // A UUID longer than its URI is stored cut to the URI's length: readers of the map rely on it.
  CopyCut(pair.aValue, uuid.substr(0, uri.size()));
  if (createHashTable(ctx, zephlane::kUriUuidMap, &pair, 1) != kDone) {
    (void)std::puts(" Create URI & UUID mapping table Failed !!!");
    return kFailed;
  }
  return kDone;
}

int zephlaneCreateHashTable(redisContext* ctx, const char* aHashKey, const InstanceData* aPairs,
                            unsigned int nCount) {
  if (!ArgumentsGiven(ctx, {aHashKey, aPairs})) { return kFailed; }
  if (createHashTable(ctx, aHashKey, aPairs, nCount) != kDone) {
    ApiError{}("%s: failed to create/add !!!\n\n", aHashKey);
    return kFailed;
  }
  return kDone;
}

int zephlaneCreateExtendedHashTable(redisContext* ctx, const char* aHashKey,
                                    const ExtendedPair* aPairs, unsigned int nCount) {
  if (!aHashKey || !ctx || !aPairs) {
    ApiError{}("Argument: NULL pointer!\n");
    return kFailed;
  }
  const CArray<char*> fields = zephlane::ZeroedArray<char*>(nCount);
  const CArray<char*> values = zephlane::ZeroedArray<char*>(nCount);
  if (!fields || !values) {
    ApiError{}("malloc\n");
    return kFailed;
  }
  for (unsigned int i = 0; i < nCount; ++i) {
    fields[i] = aPairs[i].aFieldName;
    values[i] = aPairs[i].aValue;
  }
  if (redisHashMultipleSet(ctx, aHashKey, fields.get(), values.get(), nCount) != kDone) {
    ApiError{}("Failed to create extended hash table.\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneCreateSetTable(redisContext* ctx, const char* aSetKey, const SetData* aMembers,
                           unsigned int nCount) {
  if (!ArgumentsGiven(ctx, {aSetKey, aMembers})) { return kFailed; }
  if (createSetTable(ctx, aSetKey, aMembers, nCount) != kDone) {
    (void)std::printf(" Create Set \"%s\" Failed !!!\n", aSetKey);
    return kFailed;
  }
  return kDone;
}

int zephlaneCreateExtendedSetTable(redisContext* ctx, const char* aSetKey, char* const* aMembers,
                                   unsigned int nCount) {
  if (!aSetKey || !ctx || !aMembers) {
    ApiError{}("Argument: NULL pointer!\n");
    return kFailed;
  }
  const CArray<char*> members = zephlane::CopyOfPointers(aMembers, nCount);
  if (!members) { return kFailed; }
  if (redisSetMultipleAdd(ctx, aSetKey, members.get(), nCount) != kDone) {
    // The wording says hash for sets too: readers of the logs know it so.
    ApiError{}("Failed to create extended hash table.\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneCopyHash(redisContext* ctx, const char* aDestinationKey, const char* aSourceKey,
                     int nTtlSeconds) {
  if (!ArgumentsGiven(ctx, {aSourceKey, aDestinationKey})) { return kFailed; }
  if (copyHash(ctx, aDestinationKey, aSourceKey) != kDone) {
    ApiError{}("Copy Hash\n");
    return kFailed;
  }
  if (nTtlSeconds != 0 && addTtlToHash(ctx, aDestinationKey, nTtlSeconds) != kDone) {
    ApiError{}("Append TTL object\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneDeleteKey(redisContext* ctx, const char* aKey) {
  if (!aKey || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  return deleteKey(ctx, aKey);
}

int zephlaneDeleteHash(redisContext* ctx, const char* aHashKey) {
  if (!ArgumentsGiven(ctx, {aHashKey})) { return kFailed; }
  if (std::strlen(aHashKey) > zephlane::kMaximumHashKeyLength) {
    // The number is the limit of the companion's name, not the key's own.
    ApiError{}("Invalid hash key. Key length is too long, valid length is %d\n\n",
               static_cast<int>(kValueSize));
    return kFailed;
  }
  zephlane::DeleteCompanion(ctx, aHashKey);
  return deleteKey(ctx, aHashKey);
}

int zephlaneRemoveInstanceFromSet(redisContext* ctx, const char* aSetKey, const char* aMember) {
  if (!aSetKey || !aMember || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  return deleteInstanceInSet(ctx, aSetKey, aMember);
}

int zephlaneRemoveFieldFromHash(redisContext* ctx, const char* aHashKey, const char* aFieldName) {
  if (!aHashKey || !aFieldName || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  return removeFieldFromHash(ctx, aHashKey, aFieldName);
}

int zephlaneDeleteHashByField(redisContext* ctx, const char* aCollectionKey, const char* aFieldName,
                              const char* aValue) {
  if (!ArgumentsGiven(ctx, {aCollectionKey, aValue, aFieldName})) { return kFailed; }
  char set_key[kValueSize] = "";
  if (getHashField(ctx, aCollectionKey, zephlane::kInstanceCollectionField, set_key) != kDone) {
    return kFailed;
  }
  unsigned int count = 0;
  const CArray<SetData> members = zephlane::ReadMembers(ctx, set_key, &count);
  if (!members) { return kFailed; }
  const SetData* match = zephlane::FirstMatch(ctx, members.get(), count, aFieldName, aValue);
  if (!match) { return kFailed; }
  zephlane::DeleteCompanion(ctx, match->aObjectID);
  (void)deleteKey(ctx, match->aObjectID);
  // When this fails the object is gone but still listed: nothing is rolled back.
  return deleteInstanceInSet(ctx, set_key, match->aObjectID);
}

int zephlaneVariableSetStr(redisContext* ctx, const char* aName, const char* aValue) {
  if (!aName || !aValue || !ctx) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  InstanceData pair{};
  CopyCut(pair.aFieldName, aName);
  // An empty value writes nothing and is a success: a variable cannot be cleared this way.
  CopyCut(pair.aValue, aValue);
  if (createHashTable(ctx, zephlane::kVariables, &pair, 1) != kDone) {
    ApiError{}("Set Zephlane Variable \"%s\" : \"%s\" Failed !\n", aName, aValue);
    return kFailed;
  }
  return kDone;
}
