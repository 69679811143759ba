// SPDX-License-Identifier: MIT
//
// Stamping an instance tree with "typeID": the walk follows the schema's hash tree in parallel with
// the instances. An object is stamped after its children, so one whose walk failed stays without.
// Instance trees contain cycles: an object that is being walked further up counts as done.
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/annotation.h>
#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/lists.h>
#include <zephlaneAPI/objects.h>

using zephlane::ApiError;
using zephlane::CArray;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kValueSize;

namespace zephlane {
namespace {

constexpr char kIndexedOdata[] = "odata.4.0.0";

// What the whole walk of one call has in common.
struct Walk {
  redisContext* ctx;
  const char* id_ref_type;
  int use_id_ref;
};

// The objects this thread is walking, from the innermost up: each lies in its walk's frame.
class WalkedObject {
 public:
  explicit WalkedObject(const char* id) noexcept : id_(id), outer_(innermost_) {
    innermost_ = this;
  }
  WalkedObject(const WalkedObject&) = delete;
  WalkedObject& operator=(const WalkedObject&) = delete;
  ~WalkedObject() {
    innermost_ = outer_;
  }
  [[nodiscard]] static bool IsBeingWalked(const char* id) noexcept {
    for (const WalkedObject* object = innermost_; object != nullptr; object = object->outer_) {
      if (std::strcmp(object->id_, id) == 0) { return true; }
    }
    return false;
  }

 private:
  static thread_local const WalkedObject* innermost_;
  const char* id_;
  const WalkedObject* outer_;
};

thread_local const WalkedObject* WalkedObject::innermost_ = nullptr;

// Fields of an instance that keep its books and never lead to a child.
bool IsBookkeeping(std::string_view field) {
  return field == "typeId" || field == kTtlIdField || field == "UUID";
}

void Stamp(redisContext* ctx, const char* object_id, const char* type_id) {
  (void)hsetKey(ctx, object_id, kTypeIdAnnotation, type_id);
}

// The first alternative that is not the odata link type, into kValueSize characters.
bool FirstOtherType(const Walk& walk, const char* alternatives, char* type_id) {
  unsigned int count = 0;
  const CArray<SetData> members(zephlaneSMembers(walk.ctx, alternatives, &count));
  for (unsigned int i = 0; members && i < count; ++i) {
    if (std::strncmp(members[i].aObjectID, walk.id_ref_type, kValueSize) != 0) {
      CopyCut({type_id, kValueSize}, members[i].aObjectID);
      return true;
    }
  }
  return false;
}

// The type that alternatives stand for, into kValueSize characters.
bool ChooseType(const Walk& walk, const char* alternatives, char* type_id) {
  if (!walk.use_id_ref) { return FirstOtherType(walk, alternatives, type_id); }
  CopyCut({type_id, kValueSize}, walk.id_ref_type);
  return true;
}

// Walks the members of a set or the elements of a list up to the first that is no object.
int WalkMembers(const Walk& walk, const SetData* members, unsigned int count,
                const char* property_type, const char* item_type) {
  for (unsigned int i = 0; i < count; ++i) {
    const char* member = members[i].aObjectID;
    if (isObject(walk.ctx, member) < 1) { return kDone; }
    if (insertTypeID(walk.ctx, member, item_type, walk.id_ref_type, walk.use_id_ref) != kDone) {
      // Said of lists in the same words.
      ApiError{}("Failed to insert type id in a set\n\n");
      ApiError{}("setData[%u].aObjectID = %s\n\n", i, member);
      ApiError{}("propertyTypeValue = %s\n\n", property_type);
      ApiError{}("itemValue = %s\n\n", item_type);
      return kFailed;
    }
  }
  return kDone;
}

int AnnotateChild(const Walk& walk, std::string_view redis_type, const char* child,
                  const char* property_type) {
  if (redis_type == "hash") {
    return addTypeIdfForHash(walk.ctx, child, property_type, walk.id_ref_type, walk.use_id_ref);
  }
  if (redis_type == "set") {
    return addTypeIdfForSet(walk.ctx, child, property_type, walk.id_ref_type, walk.use_id_ref);
  }
  if (redis_type == "list") {
    return addTypeIdfForList(walk.ctx, child, property_type, walk.id_ref_type, walk.use_id_ref);
  }
  return kDone;
}

// One pair of an instance; `index` is its place, for the reports.
int AnnotatePair(const Walk& walk, const char* instance_id, const char* type_id,
                 const InstanceData& pair, unsigned int index) {
  if (IsBookkeeping(pair.aFieldName) || !ContainsUuid(pair.aValue)) { return kDone; }
  char property_type[kValueSize] = "";
  // A link that the schema does not define stops the walk, without a word at this level.
  if (getHashField(walk.ctx, type_id, pair.aFieldName, property_type) != kDone) { return kFailed; }
  char redis_type[kValueSize] = "";
  if (typeCmd(walk.ctx, pair.aValue, redis_type) != kDone) {
    ApiError{}("Failed to issue type command\n\n");
    ApiError{}("aInstanceID = %s\n\n", instance_id);
    ApiError{}("instanceData[%u].aFieldName = %s\n\n", index, pair.aFieldName);
    ApiError{}("aTypeID = %s\n\n", type_id);
    return kFailed;
  }
  if (AnnotateChild(walk, redis_type, pair.aValue, property_type) != kDone) {
    ApiError{}("aInstanceID = %s\n\n", instance_id);
    ApiError{}("aTypeID = %s\n\n", type_id);
    ApiError{}("instanceData[%u].aFieldName = %s\n\n", index, pair.aFieldName);
    ApiError{}("instanceData[%u].aValue = %s\n\n", index, pair.aValue);
    return kFailed;
  }
  return kDone;
}

}  // namespace
}  // namespace zephlane

int zephlaneInsertTypeID(redisContext* ctx, const char* aInstanceID, const char* aSchemaID,
                         int nUseIdRef) {
  if (!aInstanceID || !aSchemaID) {
    ApiError{}("NULL input\n\n");
    return kFailed;
  }
  if (zephlaneRedisType(ctx, aInstanceID) != ZEPHLANE_TYPE_HASH) {
    ApiError{}("aInstanceID is not a hash\n\n");
    return kFailed;
  }
  char root_type[kValueSize] = "";
  if (getRootTypeIdFromRef(ctx, aSchemaID, root_type) != kDone) {
    ApiError{}("Failed to get root type id\n\n");
    return kFailed;
  }
  char id_ref_type[kValueSize] = "";
  if (getOdataIDRefTypeId(ctx, id_ref_type) != kDone) {
    ApiError{}("Failed to get odata id type id\n\n");
    return kFailed;
  }
  if (insertTypeID(ctx, aInstanceID, root_type, id_ref_type, nUseIdRef) != kDone) {
    ApiError{}("Failed to insert type id\n\n");
    ApiError{}("aInstanceID = %s\n\n", aInstanceID);
    ApiError{}("rootTypeID = %s\n\n", root_type);
    return kFailed;
  }
  return kDone;
}

char* zephlaneGetCollectionSchemaTypeId(redisContext* ctx, const char* aCollectionKey) {
  if (!ctx || !aCollectionKey) {
    ApiError{}("Argument is NULL pointer\n");
    return nullptr;
  }
  CArray<char> type_id = zephlane::ZeroedArray<char>(kValueSize);
  if (!type_id) {
    ApiError{}("Failed to allocate memory\n");
    return nullptr;
  }
  if (getHashField(ctx, zephlane::kCollectionMemberTypes, aCollectionKey, type_id.get()) != kDone) {
    return nullptr;
  }
  return type_id.release();
}

int getRootTypeIdFromRef(redisContext* ctx, const char* aSchemaID, char* aRootTypeID) {
  if (!ctx || !aSchemaID || !aRootTypeID) { return kFailed; }
  char reference[kValueSize] = "";
  if (getHashField(ctx, aSchemaID, "$ref", reference) != kDone) { return kFailed; }
  char current[kValueSize] = "";
  zephlane::CopyCut(current, aSchemaID);
  zephlane::Tokenizer pieces(reference);
  for (std::string_view piece = pieces.Next("/"); !piece.empty(); piece = pieces.Next("/")) {
    if (piece == "#") { continue; }
    char field[kValueSize];
    zephlane::CopyCut(field, piece);
    char value[kValueSize] = "";
    if (getHashField(ctx, current, field, value) != kDone) { return kFailed; }
    zephlane::CopyCut(current, value);
  }
  zephlane::CopyCut({aRootTypeID, kValueSize}, current);
  return kDone;
}

int getOdataIDRefTypeId(redisContext* ctx, char* aIdRefTypeID) {
  if (!ctx || !aIdRefTypeID) { return kFailed; }
  char odata[kValueSize] = "";
  char definitions[kValueSize] = "";
  if (getHashField(ctx, zephlane::kSchemaIndexId, zephlane::kIndexedOdata, odata) != kDone ||
      getHashField(ctx, odata, "definitions", definitions) != kDone) {
    return kFailed;
  }
  return getHashField(ctx, definitions, "idRef", aIdRefTypeID);
}

int isObject(redisContext* ctx, const char* aKey) {
  char type[kValueSize] = "";
  if (typeCmd(ctx, aKey, type) != kDone) { return -1; }
  const std::string_view word = type;
  if (word == "hash" || word == "set" || word == "list") { return 1; }
  return word == "string" ? 0 : -1;
}

int insertTypeID(redisContext* ctx, const char* aInstanceID, const char* aTypeID,
                 const char* aIdRefTypeID, int nUseIdRef) {
  if (!ctx || !aInstanceID || !aTypeID || !aIdRefTypeID) { return kFailed; }
  if (zephlane::WalkedObject::IsBeingWalked(aInstanceID)) { return kDone; }
  // A set or list that is a member itself is passed over here: Redis's ERROR reads as a stamp.
  if (getHashField(ctx, aInstanceID, zephlane::kTypeIdAnnotation, nullptr) == kDone) {
    return kDone;
  }
  const zephlane::WalkedObject walked(aInstanceID);
  const zephlane::Walk walk{ctx, aIdRefTypeID, nUseIdRef};
  unsigned int count = 0;
  const CArray<InstanceData> pairs(zephlaneHashGetAll(ctx, aInstanceID, &count));
  if (!pairs) { return kFailed; }  // unread, so not walked: it stays without a stamp
  for (unsigned int i = 0; i < count; ++i) {
    if (zephlane::AnnotatePair(walk, aInstanceID, aTypeID, pairs[i], i) != kDone) {
      return kFailed;
    }
  }
  zephlane::Stamp(ctx, aInstanceID, aTypeID);
  return kDone;
}

int addTypeIdfForHash(redisContext* ctx, const char* aObjectID, const char* aPropertyTypeID,
                      const char* aIdRefTypeID, int nUseIdRef) {
  if (!ctx || !aObjectID || !aPropertyTypeID || !aIdRefTypeID) { return kFailed; }
  char alternatives[kValueSize] = "";
  if (getHashField(ctx, aPropertyTypeID, "oneOf", alternatives) != kDone &&
      getHashField(ctx, aPropertyTypeID, "anyOf", alternatives) != kDone) {
    if (insertTypeID(ctx, aObjectID, aPropertyTypeID, aIdRefTypeID, nUseIdRef) == kDone) {
      return kDone;
    }
    ApiError{}("Failed to insert type id\n\n");
    ApiError{}("propertyTypeValue = %s\n\n", aPropertyTypeID);
    return kFailed;
  }
  // A property with alternatives is typed by one of them; its child is not walked.
  char chosen[kValueSize] = "";
  if (!zephlane::ChooseType({ctx, aIdRefTypeID, nUseIdRef}, alternatives, chosen)) {
    return kFailed;
  }
  zephlane::Stamp(ctx, aObjectID, chosen);
  return kDone;
}

int addTypeIdfForSet(redisContext* ctx, const char* aSetID, const char* aPropertyTypeID,
                     const char* aIdRefTypeID, int nUseIdRef) {
  if (!ctx || !aSetID || !aPropertyTypeID || !aIdRefTypeID) { return kFailed; }
  char item_type[kValueSize] = "";
  if (getHashField(ctx, aPropertyTypeID, "items", item_type) != kDone) { return kFailed; }
  const zephlane::Walk walk{ctx, aIdRefTypeID, nUseIdRef};
  char alternatives[kValueSize] = "";
  const bool has_alternatives = getHashField(ctx, item_type, "oneOf", alternatives) == kDone;
  char chosen[kValueSize] = "";
  if (has_alternatives && !zephlane::ChooseType(walk, alternatives, chosen)) { return kFailed; }
  unsigned int count = 0;
  const CArray<SetData> members(zephlaneSMembers(ctx, aSetID, &count));
  if (!members) { return kFailed; }
  if (!has_alternatives) {
    return zephlane::WalkMembers(walk, members.get(), count, aPropertyTypeID, item_type);
  }
  // Every member is stamped, whatever its type, and none is walked.
  for (unsigned int i = 0; i < count; ++i) { zephlane::Stamp(ctx, members[i].aObjectID, chosen); }
  return kDone;
}

int addTypeIdfForList(redisContext* ctx, const char* aListID, const char* aPropertyTypeID,
                      const char* aIdRefTypeID, int nUseIdRef) {
  if (!ctx || !aListID || !aPropertyTypeID || !aIdRefTypeID) { return kFailed; }
  char item_type[kValueSize] = "";
  if (getHashField(ctx, aPropertyTypeID, "items", item_type) != kDone) { return kFailed; }
  unsigned int count = 0;
  const CArray<SetData> items(zephlaneListRange(ctx, aListID, 0, -1, &count));
  return zephlane::WalkMembers({ctx, aIdRefTypeID, nUseIdRef}, items.get(), count, aPropertyTypeID,
                               item_type);
}
