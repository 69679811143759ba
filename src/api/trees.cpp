// SPDX-License-Identifier: MIT
//
// Operations on trees of objects and on several objects at once. Children are deleted before their
// parents; a set in Redis holds the keys a deletion has visited, so that a loop, or another process
// deleting the same tree, ends the walk. Only a multiple creation undoes what it wrote.
#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "redis/pipeline.h"
#include "support/guard.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/lists.h>
#include <zephlaneAPI/objects.h>
#include <zephlaneAPI/trees.h>

using zephlane::ApiError;
using zephlane::ArgumentsGiven;
using zephlane::CArray;
using zephlane::Guarded;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kNoCount;
using zephlane::kValueSize;

namespace zephlane {
namespace {

constexpr std::size_t kMaximumJoined = 1017;
constexpr std::size_t kMaximumRootLength = 1012;
constexpr std::size_t kLengthModulus = 256;

// Keys and members joined with a blank behind each.
class JoinedWords {
 public:
  // Appends a word; of one of 256 characters or more only the length's low 8 bits count.
  void Add(const char* word) noexcept {
    const std::size_t length = std::strlen(word) % kLengthModulus;
    if (length_ + length + 1 <= kMaximumJoined) {
      CopyCounted(text_ + length_, {word, length});
      text_[length_ + length] = ' ';
    }
    length_ += length + 1;
  }
  [[nodiscard]] std::size_t Length() const noexcept {
    return length_;
  }
  // Passes the text to a command that reads it as a format: a '%' in a word must stay one.
  // Precondition: the length is at most kMaximumJoined.
  [[nodiscard]] int PassTo(int (*command)(redisContext*, const char*), redisContext* ctx) {
    text_[length_] = '\0';
    const std::string_view text(text_, length_);
    if (!Contains(text, "%")) { return command(ctx, text_); }
    std::string format;
    for (const char c : text) { format.append(c == '%' ? 2 : 1, c); }
    return command(ctx, format.c_str());
  }

 private:
  char text_[kMaximumJoined + 1];
  std::size_t length_ = 0;
};

// The variable arguments up to the NULL that ends them.
template <typename Take>
void ForEachArgument(std::va_list arguments, Take take) {
  for (const char* word = va_arg(arguments, const char*); word != nullptr;
       word = va_arg(arguments, const char*)) {
    take(word);
  }
}

int AddJoined(redisContext* ctx, JoinedWords& words) {
  if (words.Length() > kMaximumJoined) {
    ApiError{}("command length overflow\n");
    return kFailed;
  }
  return words.PassTo(saddCmd, ctx);
}

// What a walk of a deletion has in common.
struct Deletion {
  redisContext* ctx;
  const char** fields;
  int field_count;
  const char* tracking_set;
};

// An object whose children are being deleted.
struct Parent {
  const char* key;
  const Parent* above;
};

int DeleteTree(const Deletion& deletion, const char* key, const Parent* above);

int DeleteNamedChildren(const Deletion& deletion, const Parent& parent) {
  for (int i = 0; deletion.fields && i < deletion.field_count; ++i) {
    char child[kValueSize] = "";
    if (zephlaneGetHashField(deletion.ctx, parent.key, deletion.fields[i], child) != kDone) {
      continue;
    }
    if (DeleteTree(deletion, child, &parent) != kDone) { return kFailed; }
  }
  return kDone;
}

int DeleteChildren(const Deletion& deletion, const Parent& parent, int type) {
  if (type == ZEPHLANE_TYPE_HASH) { return DeleteNamedChildren(deletion, parent); }
  unsigned int count = 0;
  const CArray<SetData> children(type == ZEPHLANE_TYPE_SET
                                     ? zephlaneSMembers(deletion.ctx, parent.key, &count)
                                     : zephlaneListRange(deletion.ctx, parent.key, 0, -1, &count));
  for (unsigned int i = 0; children && i < count; ++i) {
    if (DeleteTree(deletion, children[i].aObjectID, &parent) != kDone) { return kFailed; }
  }
  return kDone;
}

// Whether the walk has come to the key before. The tracking set knows no key with blanks or of 256
// characters or more, as adding splits or cuts it: of these at least a loop is seen.
bool IsRepeated(const Deletion& deletion, const char* key, const Parent* above) {
  if (sismember(deletion.ctx, deletion.tracking_set, key) == 1) { return true; }
  for (; above != nullptr; above = above->above) {
    if (std::strcmp(above->key, key) == 0) { return true; }
  }
  return false;
}

int DeleteTree(const Deletion& deletion, const char* key, const Parent* above) {
  const int type = zephlaneRedisType(deletion.ctx, key);
  // A key that is gone already, perhaps through another parent, has no type and is no loop.
  if (type == ZEPHLANE_TYPE_OTHER) { return deleteKey(deletion.ctx, key); }
  if (IsRepeated(deletion, key, above)) {
    ApiError{}(
        "detected infinite loop! Or other thread/process is trying to delete the same object.\n");
    ApiError{}("\"%s\" repeated again!!\n", key);
    return kFailed;
  }
  if (zephlaneSADD(deletion.ctx, deletion.tracking_set, key, nullptr) != kDone) {
    ApiError{}("SADD failed!!\n");
    return kFailed;
  }
  if (DeleteChildren(deletion, {key, above}, type) != kDone) { return kFailed; }
  return deleteKey(deletion.ctx, key);
}

void DeleteCreated(redisContext* ctx, const ObjectEntry* entries, int count) {
  for (int i = 0; i < count; ++i) {
    if (zephlaneDeleteHash(ctx, entries[i].key) != kDone) {
      ApiError{}("Failed to delete object <%s>\n", entries[i].key);
    }
  }
}

bool AreCreatable(const ObjectEntry* entries, int count) {
  for (int i = 0; i < count; ++i) {
    const int type = entries[i].type;
    if (type != ZEPHLANE_TYPE_HASH && type != ZEPHLANE_TYPE_SET && type != ZEPHLANE_TYPE_LIST) {
      ApiError{}("Unknown object type\n");
      return false;
    }
    const std::size_t length = entries[i].key ? std::strlen(entries[i].key) : 0;
    if (length != kIdLength) {
      ApiError{}("Object UUID: %zu\n", length);
      return false;
    }
  }
  return true;
}

// Asks for the texts of an entry before they are needed. Each begins a buffer of its own, so none
// is in a cache line with another, and waiting for one after the other takes longer than encoding.
void Prefetch(const ObjectEntry& entry) {
  constexpr int kMaximumPrefetched = 64;
  const auto* buffers = static_cast<const SetData*>(entry.items);
  const int count = std::min(entry.count, kMaximumPrefetched);
  for (int i = 0; buffers && i < (entry.type == ZEPHLANE_TYPE_HASH ? 2 * count : count); ++i) {
    __builtin_prefetch(buffers + i);
  }
}

// Sends all entries; on a failure ends with what was queued gone again.
bool SendObjects(redisContext* ctx, const ObjectEntry* entries, int count) {
  RequestBatch batch(ctx);
  for (int i = 0; i < count; ++i) {
    const ObjectEntry& entry = entries[i];
    if (i + 1 < count) { Prefetch(entries[i + 1]); }
    if (entry.count >= 0 && AddObject(&batch, entry.key, entry.type, entry.items,
                                      static_cast<unsigned int>(entry.count))) {
      continue;
    }
    batch.Send();
    ApiError{}("Failed to create multiple objects!\n");
    ApiError{}("Stop creation and receive replies of previous send command.\n");
    (void)pipelineReceiveReply(ctx, static_cast<unsigned int>(i));
    DeleteCreated(ctx, entries, i);
    return false;
  }
  batch.Send();
  return true;
}

}  // namespace
}  // namespace zephlane

using zephlane::JoinedWords;

int zephlaneFindObjectByField(redisContext* ctx, const char* aObjectID, const char* aFieldName,
                              const char* aValue, int nSetType, char* aOut) {
  if (!ArgumentsGiven(ctx, {aObjectID, aValue, aFieldName})) { return kFailed; }
  if (nSetType >= 2) {
    ApiError{}("eSetType input error !\n");
    return kFailed;
  }
  char message_property[kValueSize] = "";
  if (zephlaneLoadConfig(ctx, zephlane::kMessagePropertyField, message_property,
                         sizeof(message_property)) != kDone) {
    return kFailed;
  }
  const char* field = nSetType == 1 ? message_property : zephlane::kInstanceCollectionField;
  char set_key[kValueSize] = "";
  if (getHashField(ctx, aObjectID, field, set_key) != kDone) { return kFailed; }
  unsigned int count = 0;
  const CArray<SetData> members = zephlane::ReadMembers(ctx, set_key, &count);
  if (!members) { return kFailed; }
  const SetData* match = zephlane::FirstMatch(ctx, members.get(), count, aFieldName, aValue);
  if (!match) { return kFailed; }
  // No terminator: callers zero-fill their buffer.
  if (aOut) { zephlane::CopyCounted(aOut, match->aObjectID); }
  return kDone;
}

int zephlaneDeleteSubTree(redisContext* ctx, const char* aRoot, ...) {
  if (!aRoot || !ctx || std::strlen(aRoot) >= zephlane::kMaximumRootLength) {
    ApiError{}("Arguments\n");
    return kFailed;
  }
  std::va_list arguments;
  va_start(arguments, aRoot);
  const int result = Guarded(kFailed, [&] {
    std::vector<const char*> fields;
    zephlane::ForEachArgument(arguments, [&](const char* word) { fields.push_back(word); });
    return zephlaneDeleteSubTreeV21(ctx, aRoot, fields.data(), static_cast<int>(fields.size()));
  });
  va_end(arguments);
  return result;
}

int zephlaneDeleteSubTreeV21(redisContext* ctx, const char* aRoot, const char** aFields,
                             int nFields) {
  char tracking_set[kValueSize];
  (void)std::snprintf(tracking_set, sizeof(tracking_set), "%s-memberSET", zephlane::Shown(aRoot));
  const int result = deleteAllSpecifiedObjects(ctx, aRoot, aFields, nFields, tracking_set);
  if (deleteKey(ctx, tracking_set) == kFailed) { ApiError{}("Failed to delete tracking table.\n"); }
  return result;
}

int deleteAllSpecifiedObjects(redisContext* ctx, const char* aKey, const char** aFields,
                              int nFields, const char* aTrackingSet) {
  return zephlane::DeleteTree({ctx, aFields, nFields, aTrackingSet}, aKey, nullptr);
}

int zephlaneCreateMultipleObjects(redisContext* ctx, ObjectEntry* aEntries, int nCount) {
  if (!aEntries || !ctx) {
    ApiError{}("Argument is NULL pointer!\n");
    return kFailed;
  }
  if (!zephlane::AreCreatable(aEntries, nCount)) { return kFailed; }
  if (!zephlane::SendObjects(ctx, aEntries, nCount)) { return kFailed; }
  const unsigned int queued = nCount > 0 ? static_cast<unsigned int>(nCount) : 0;
  if (pipelineReceiveReply(ctx, queued) == kDone) { return kDone; }
  ApiError{}("Something wrong when creating objects\n");
  ApiError{}("Delete previous created object ...\n");
  zephlane::DeleteCreated(ctx, aEntries, nCount);
  return kFailed;
}

int zephlaneRenameObjectID(redisContext* ctx, const char* aOldID, const char* aNewID) {
  if (!ctx) {
    ApiError{}("Pointer to redis context is NULL!\n");
    return kFailed;
  }
  if (!aOldID) {
    ApiError{}("Pointer to source object ID is NULL!\n");
    return kFailed;
  }
  if (!aNewID) {
    ApiError{}("Pointer to new object ID is NULL!\n");
    return kFailed;
  }
  if (renameKey(ctx, aOldID, aNewID) != kDone) {
    ApiError{}("Failed to rename object ID to the new ID\n");
    return kFailed;
  }
  return kDone;
}

int zephlaneSADD(redisContext* ctx, const char* aSetKey, const char* aMember, ...) {
  if (!ArgumentsGiven(ctx, {aSetKey})) { return kFailed; }
  std::va_list arguments;
  va_start(arguments, aMember);
  const int result = Guarded(kFailed, [&] {
    JoinedWords words;
    words.Add(aSetKey);
    if (aMember) {
      words.Add(aMember);
      zephlane::ForEachArgument(arguments, [&](const char* word) { words.Add(word); });
    }
    return zephlane::AddJoined(ctx, words);
  });
  va_end(arguments);
  return result;
}

int zephlaneSdiffKey(redisContext* ctx, const char* aSetKey, ...) {
  if (!aSetKey) {
    ApiError{}("Argument: NULL pointer\n");
    return kNoCount;
  }
  if (!ctx) { return kNoCount; }
  std::va_list arguments;
  va_start(arguments, aSetKey);
  const int result = Guarded(kNoCount, [&] {
    JoinedWords words;
    words.Add(aSetKey);
    zephlane::ForEachArgument(arguments, [&](const char* word) { words.Add(word); });
    // One character less than for adding.
    if (words.Length() >= zephlane::kMaximumJoined) {
      ApiError{}("command length overflow\n");
      return kNoCount;
    }
    return words.PassTo(sdiffKey, ctx);
  });
  va_end(arguments);
  return result;
}

int zephlaneSdiffKeyV21(redisContext* ctx, const char** aSetKeys, int nCount) {
  if (!ctx || !aSetKeys) {
    ApiError{}("Argument is NULL pointer!\n");
    return kNoCount;
  }
  return Guarded(kNoCount, [&] {
    JoinedWords words;
    for (int i = 0; i < nCount; ++i) {
      if (!aSetKeys[i]) {
        ApiError{}("Argument is NULL pointer!\n");
        return kNoCount;
      }
      words.Add(aSetKeys[i]);
    }
    if (words.Length() >= zephlane::kMaximumJoined) {
      ApiError{}("command length overflow\n\n");
      return kNoCount;
    }
    return words.PassTo(sdiffKey, ctx);
  });
}

int zephlaneHashAppendTTLObject(redisContext* ctx, const char* aHashKey, unsigned int nTtlSeconds) {
  return addTtlToHash(ctx, aHashKey, static_cast<int>(nTtlSeconds)) == kDone ? kDone : kFailed;
}

int zephlaneIsHashOverdue(redisContext* ctx, const char* aHashKey) {
  return isHashTimeOut(ctx, aHashKey) == 1 ? 1 : 0;
}

int zephlaneRenewCollection(redisContext* ctx, int nAction, const char* aFirst, const char* aSecond,
                            unsigned char nFlag) {
  if (!ctx || !aFirst || !aSecond || nAction >= 2 || nFlag >= 2) {
    ApiError{}("Arguments\n");
    return kFailed;
  }
  char notice[zephlane::kChannelTextSize];
  (void)std::snprintf(notice, sizeof(notice), "%d %s %s %d", nAction, aFirst, aSecond, nFlag);
  return publishToChannel(ctx, zephlane::kTreeUpdateChannel, notice) == kFailed ? kFailed : kDone;
}

int zephlaneRenewObjectURI(redisContext* ctx, int nAction, const char* aFirst,
                           const char* aSecond) {
  if (!ctx || !aFirst || !aSecond || (nAction != 2 && nAction != 3)) {
    ApiError{}("Arguments\n");
    return kFailed;
  }
  char notice[zephlane::kChannelTextSize];
  (void)std::snprintf(notice, sizeof(notice), "%d %s %s", nAction, aFirst, aSecond);
  return publishToChannel(ctx, zephlane::kTreeUpdateChannel, notice) == kFailed ? kFailed : kDone;
}
