// SPDX-License-Identifier: MIT
//
// The hash tree: how a parsed schema lies in Redis. Each JSON object is a hash, each collection a
// set, and a parent holds a child's ID as the value of a field. This module owns the IDs of those
// objects and the two tables of what a run created. Nothing is rolled back: an object written
// before a later step failed stays in Redis, and its ID is given out again.
#include "interpreter/hashTreeOperation.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <optional>

#include "interpreter/typeNames.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/interpreter.h>
#include <zephlaneAPI/objects.h>

namespace zephlane {
namespace {

constexpr char kSource[] = "hashTreeOperation.cpp";
constexpr std::size_t kMaximumObjects = 6000;
constexpr std::size_t kMaximumSchemas = 4000;
constexpr std::size_t kMaximumTitleSize = 200;
constexpr int kHashKind = 1;
constexpr int kSetKind = 2;

constexpr std::string_view kInterpreterRange = "00000000-0000-0000-0001";
constexpr std::string_view kTestRange = "00000000-0000-0000-0000";
constexpr std::string_view kOpenTestRange = "00000000-0000-0000-0000-fedc";
constexpr char kUuidPattern[] = "[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}";

struct SchemaReferenceEntry {
  char schemaName[kValueSize];
  char hashID[kIdSize];
  char used;
};

// Numbers of the next hash and set. They count on over the runs of a process, and only after the
// object with the current number was written.
std::uint32_t G_nRedisHashIDCounter = 0;
std::uint32_t G_nRedisSetIDCounter = 0;

// Every hash and set ID that this run created, and every schema that it registered. Both tables
// fill from the front, so scans end at the count and pages behind it are never touched. The
// interpreting thread writes them; the counts may be read by others.
char G_aRedisObjectCollection[kMaximumObjects][kIdSize];
SchemaReferenceEntry G_aSchemaReferenceTable[kMaximumSchemas];
std::size_t schema_name_digests[kMaximumSchemas];
std::atomic<unsigned int> recorded_objects = 0;
std::atomic<unsigned int> registered_schemas = 0;

using ObjectId = char[kIdSize];

std::span<const ObjectId> Objects() {
  return {G_aRedisObjectCollection, recorded_objects.load(std::memory_order_relaxed)};
}

std::span<const SchemaReferenceEntry> Schemas() {
  return {G_aSchemaReferenceTable, registered_schemas.load(std::memory_order_relaxed)};
}

// Writes the first pair of a hash whose key is cleared of what a former run left there.
bool WriteFreshHash(redisContext* ctx, const char* field, const char* value, const char* key) {
  (void)zephlaneDeleteHash(ctx, key);
  if (hashTreeHashAddSinglePair(ctx, field, value, key) == 0) { return true; }
  InterpreterError{kSource}("<%s : %s> insert pair into hash failed!!\n", Shown(field),
                            Shown(value));
  return false;
}

bool Record(const char* id) {
  if (recordRedisObjectID(id) == 0) { return true; }
  InterpreterError{kSource}("Hash object collection table is out of room !\n");
  return false;
}

// The first entry of that name. A scan over the digests touches one entry instead of all.
const SchemaReferenceEntry* FindSchema(std::string_view name) {
  const std::size_t digest = std::hash<std::string_view>{}(name);
  const auto schemas = Schemas();
  for (std::size_t i = 0; i < schemas.size(); ++i) {
    if (schema_name_digests[i] == digest && name == schemas[i].schemaName) { return &schemas[i]; }
  }
  return nullptr;
}

bool RemoveDummyMember(redisContext* ctx, const char* set_key) {
  return zephlaneRemoveInstanceFromSet(ctx, set_key, kDummyMember) == 0;
}

bool RemoveDummyPair(redisContext* ctx, const char* hash_key) {
  if (!zephlaneIsFieldMatched(ctx, hash_key, kDummyField, kDummyValue)) { return true; }
  return zephlaneRemoveFieldFromHash(ctx, hash_key, kDummyField) == 0;
}

bool LooksLikeUuid(std::string_view text) {
  return text.size() == kIdLength && std::count(text.begin(), text.end(), '-') == 4;
}

// The ranges are tested in this order: the fixed IDs lie inside the interpreter's range.
bool IsFixedId(std::string_view uuid) {
  return uuid.starts_with(kRootServices) || uuid == kRootServiceId || uuid == kSchemaIndexId;
}

// The prefix and eleven hexadecimal digits, which fill the room of an ID.
void WriteObjectId(char* out, std::string_view prefix, std::uint32_t counter) {
  static_assert(sizeof(kHashIdPrefix) == sizeof(kSetIdPrefix) &&
                sizeof(kHashIdPrefix) + 11 == kIdSize);
  CopyCounted(out, prefix);
  for (std::size_t place = kIdLength; place > prefix.size(); --place, counter >>= 4) {
    out[place - 1] = "0123456789abcdef"[counter & 0xf];
  }
}

// The pattern of given IDs, compiled at its first use; null when that failed: the next use tries
// again. Compiling it costs as much as a round trip, and a run checks many IDs.
const regex_t* UuidExpression() {
  static pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  static std::optional<Regex> expression;
  const MutexHold hold(mutex);
  if (!expression || !*expression) { expression.emplace(kUuidPattern, REG_EXTENDED | REG_NOSUB); }
  return *expression ? expression->Get() : nullptr;
}

bool IsUuidText(const char* uuid) {
  const regex_t* expression = UuidExpression();
  if (!expression) {
    InterpreterError{kSource}("regcomp() fail\n\n");
    return false;
  }
  if (isInvalidUUID(expression, uuid)) {
    InterpreterError{kSource}("Invalid UUID!\n\nInvalid: %s\nValid pattern: %s\n\n", uuid,
                              kUuidPattern);
    return false;
  }
  return true;
}

}  // namespace

int AddSetMember(redisContext* ctx, const char* set_key, std::string_view member) {
  SetData row;
  CopyCut(row.aObjectID, member);
  return zephlaneCreateSetTable(ctx, set_key, &row, 1);
}

unsigned int RecordedObjectCount() noexcept {
  return recorded_objects.load(std::memory_order_relaxed);
}

unsigned int RegisteredSchemaCount() noexcept {
  return registered_schemas.load(std::memory_order_relaxed);
}

}  // namespace zephlane

using zephlane::CString;
using zephlane::InterpreterError;
using zephlane::kSource;
using zephlane::Shown;

int hashTreeInit(redisContext* ctx) {
  std::memset(zephlane::G_aSchemaReferenceTable, 0, zephlane::Schemas().size_bytes());
  std::memset(zephlane::G_aRedisObjectCollection, 0, zephlane::Objects().size_bytes());
  zephlane::registered_schemas = 0;
  zephlane::recorded_objects = 0;
  if (createZephlaneServiceInstanceSet(ctx, zephlane::kSchemaInstances) != 0) {
    InterpreterError{kSource}("create Zephlane service instance: %s\n\n",
                              zephlane::kSchemaInstances);
    return 1;
  }
  return 0;
}

int createZephlaneServiceInstanceSet(redisContext* ctx, const char* aSetKey) {
  (void)zephlaneDeleteHash(ctx, aSetKey);
  if (zephlane::AddSetMember(ctx, aSetKey, zephlane::kDummyMember) != 0) {
    InterpreterError{kSource}("---> create set table faile !!!!\n");
    return 1;
  }
  return 0;
}

void deleteAllHashObject(redisContext* ctx) {
  for (const auto& id : zephlane::Objects()) { (void)zephlaneDeleteHash(ctx, id); }
}

void deleteTypeSchemaHashObject(redisContext* ctx) {
  for (const auto& entry : zephlane::Schemas()) { (void)zephlaneDeleteHash(ctx, entry.hashID); }
}

// Hooks of former debug prints: they do nothing, and stay because programs link against them.
void dumpSetTable(void) {}
void dumpRedisObjectCollection(void) {}
void dumpSchemaReferenceTable(void) {}

char* generateRedisDataObjectID(int nKind) {
  zephlane::CArray<char> id = zephlane::ZeroedArray<char>(zephlane::kIdSize);
  if (!id) { return nullptr; }
  if (nKind == zephlane::kHashKind) {
    zephlane::WriteObjectId(id.get(), zephlane::kHashIdPrefix, zephlane::G_nRedisHashIDCounter);
  } else if (nKind == zephlane::kSetKind) {
    zephlane::WriteObjectId(id.get(), zephlane::kSetIdPrefix, zephlane::G_nRedisSetIDCounter);
  }
  return id.release();
}

void increaseRedisHashIDCounter(void) {
  ++zephlane::G_nRedisHashIDCounter;
}

void increaseRedisSetIDCounter(void) {
  ++zephlane::G_nRedisSetIDCounter;
}

int recordRedisObjectID(const char* aID) {
  const std::size_t count = zephlane::Objects().size();
  if (!aID || count == zephlane::kMaximumObjects) { return -1; }
  if (!zephlane::CopyWhole(zephlane::G_aRedisObjectCollection[count], aID)) {
    InterpreterError{kSource}("Object ID: %s\n", aID);
    InterpreterError{kSource}("is longer than buffer size (%zu)\n", zephlane::kIdSize);
    return -1;
  }
  // An empty ID leaves its slot free.
  if (aID[0] != '\0') { ++zephlane::recorded_objects; }
  return 0;
}

int isUUIDRegistered(const char* aID) {
  if (!aID) { return 0; }
  const auto objects = zephlane::Objects();
  // Free slots count as well: the empty ID is registered as long as there is one.
  if (aID[0] == '\0') { return objects.size() < zephlane::kMaximumObjects ? 1 : 0; }
  for (const auto& id : objects) {
    if (std::strcmp(id, aID) == 0) { return 1; }
  }
  return 0;
}

int hashTreeHashAddSinglePair(redisContext* ctx, const char* aFieldName, const char* aValue,
                              const char* aHashKey) {
  if (!aFieldName || !aValue || !aHashKey) {
    InterpreterError{kSource}("NULL pointer\n");
    return 1;
  }
  if (std::strlen(aFieldName) >= zephlane::kValueSize ||
      std::strlen(aValue) >= zephlane::kValueSize) {
    InterpreterError{kSource}("Redis key or value is out of range!!\n");
    InterpreterError{kSource}("<%s : %s> insert pair into hash failed!!\n", aFieldName, aValue);
    return 1;
  }
  InstanceData pair;  // not zeroed: this runs for every field of every schema
  zephlane::CopyCut(pair.aFieldName, aFieldName);
  zephlane::CopyCut(pair.aValue, aValue);
  return zephlaneCreateHashTable(ctx, aHashKey, &pair, 1) == 0 ? 0 : 1;
}

char* hashTreeCreateNewHash(redisContext* ctx, const char* aFieldName, const char* aValue) {
  CString id(generateRedisDataObjectID(zephlane::kHashKind));
  if (!id) {
    InterpreterError{kSource}("---> Failed to generate hash ID !!!!\n");
    return nullptr;
  }
  if (!zephlane::WriteFreshHash(ctx, aFieldName, aValue, id.get())) { return nullptr; }
  if (!zephlane::Record(id.get())) { return nullptr; }
  increaseRedisHashIDCounter();
  return id.release();
}

char* hashTreeCreateHashWithoutRecordHashID(redisContext* ctx, const char* aFieldName,
                                            const char* aValue) {
  CString id(generateRedisDataObjectID(zephlane::kHashKind));
  if (!id) {
    InterpreterError{kSource}("---> Failed to generate hash ID !!!\n");
    return nullptr;
  }
  if (!zephlane::WriteFreshHash(ctx, aFieldName, aValue, id.get())) { return nullptr; }
  increaseRedisHashIDCounter();
  return id.release();
}

int hashTreeCreateNewTypeSchemaHash(redisContext* ctx, const char* aFieldName, const char* aValue,
                                    const char* aUuid) {
  if (!zephlane::WriteFreshHash(ctx, aFieldName, aValue, aUuid)) { return 1; }
  return zephlane::Record(aUuid) ? 0 : 1;
}

char* hashTreeCreateNewSet(redisContext* ctx, const char* aMember) {
  CString id(generateRedisDataObjectID(zephlane::kSetKind));
  if (!id) {
    InterpreterError{kSource}("---> Failed to generate hash ID !!!!\n");
    return nullptr;
  }
  (void)zephlaneDeleteHash(ctx, id.get());
  if (zephlane::AddSetMember(ctx, id.get(), aMember ? aMember : zephlane::kDummyMember) != 0) {
    InterpreterError{kSource}("---> create set table faile !!!!\n");
    return nullptr;
  }
  if (!zephlane::Record(id.get())) { return nullptr; }
  increaseRedisSetIDCounter();
  return id.release();
}

int hashTreeInstanceSetInsertMember(redisContext* ctx, const char* aSetKey, const char* aMember) {
  const std::string_view key = aSetKey ? aSetKey : "";
  if (key != zephlane::kSchemaInstances && key != zephlane::kRootServices) {
    InterpreterError{kSource}("---> Unknown target Set ID: %s !!!!\n", Shown(aSetKey));
    return 1;
  }
  const std::string_view member = aMember ? aMember : "";
  if (zephlane::AddSetMember(ctx, aSetKey, member.substr(0, zephlane::kIdSize)) != 0) {
    InterpreterError{kSource}("Insert entry to \"%s\"  failed !!!!\n", aSetKey);
    return 1;
  }
  return 0;
}

int hashAddMultipleTypeString(redisContext* ctx, const char* aFieldName, const json_t* aTypeArray,
                              const char* aHashKey) {
  if (!ctx || !aFieldName || !aTypeArray || !aHashKey) {
    InterpreterError{kSource}("%s: Argument is NULL!\n", "hashAddMultipleTypeString");
    return 1;
  }
  if (!json_is_array(aTypeArray)) {
    InterpreterError{kSource}("((((( value object is not array type )))))\n");
    return 1;
  }
  char joined[zephlane::kValueSize];
  if (const char* element = zephlane::JoinTypeNames(aTypeArray, joined)) {
    InterpreterError{kSource}("type field of [%s]: %s\n", aFieldName, element);
    InterpreterError{kSource}("String is too long to store in Redis ...\n");
    return 1;
  }
  if (hashTreeHashAddSinglePair(ctx, aFieldName, joined, aHashKey) != 0) {
    InterpreterError{kSource}("<%s : %s> insert pair into hash failed!!\n", aFieldName, joined);
    return 1;
  }
  return 0;
}

char* hashTreeParentInsertItemsSet(redisContext* ctx, const char* aParentKey) {
  CString child(hashTreeCreateNewSet(ctx, nullptr));
  if (!child) {
    InterpreterError{kSource}("---> failed to create new set !!!!\n");
    return nullptr;
  }
  if (hashTreeHashAddSinglePair(ctx, "items", child.get(), aParentKey) != 0) {
    InterpreterError{kSource}("---> failed to add pair !!!!\n");
    return nullptr;
  }
  return child.release();
}

char* hashTreeParentInsertItemsHash(redisContext* ctx, const char* aParentKey,
                                    const char* aFieldName, const char* aValue) {
  CString child(hashTreeCreateNewHash(ctx, aFieldName, aValue));
  if (!child) {
    InterpreterError{kSource}("---> failed to create new hash !!!!\n");
    return nullptr;
  }
  if (hashTreeHashAddSinglePair(ctx, "items", child.get(), aParentKey) != 0) {
    InterpreterError{kSource}("---> failed to add pair !!!!\n");
    return nullptr;
  }
  return child.release();
}

char* hashTreeParentInsertPropertyHash(redisContext* ctx, const char* aParentKey,
                                       const char* aPropertyName, const char* aTypeValue) {
  CString child(hashTreeCreateNewHash(ctx, "type", aTypeValue));
  if (!child) {
    InterpreterError{kSource}("Create new hash failed !!!\n");
    return nullptr;
  }
  if (hashTreeHashAddSinglePair(ctx, aPropertyName, child.get(), aParentKey) != 0) {
    InterpreterError{kSource}("<%s : %s> insert pair into hash failed!!\n", Shown(aPropertyName),
                              child.get());
    return nullptr;
  }
  return child.release();
}

char* hashTreeParentInsertPropertySet(redisContext* ctx, const char* aParentKey,
                                      const char* aPropertyName) {
  CString child(hashTreeCreateNewSet(ctx, nullptr));
  if (!child) {
    // The words of the hash form are kept for sets too.
    InterpreterError{kSource}("Create new hash failed !!!\n");
    return nullptr;
  }
  if (hashTreeHashAddSinglePair(ctx, aPropertyName, child.get(), aParentKey) != 0) {
    InterpreterError{kSource}("---> failed to add pair !!!!\n");
    return nullptr;
  }
  return child.release();
}

int hashTreeGetHashFieldValue(redisContext* ctx, const char* aHashKey, const char* aFieldName,
                              char* aOut) {
  return zephlaneGetHashField(ctx, aHashKey, aFieldName, aOut) == 0 ? 0 : 1;
}

int schemaReferTableInsertEntry(const char* aSchemaName, const char* aHashID) {
  if (!aSchemaName || !aHashID) {
    InterpreterError{kSource}("%s: argument is NULL\n", "schemaReferTableInsertEntry");
    return 1;
  }
  const std::size_t count = zephlane::Schemas().size();
  if (count == zephlane::kMaximumSchemas) {
    InterpreterError{kSource}(">> %s <<\n", aSchemaName);
    InterpreterError{kSource}(
        ">> There's no free slot to insert schema:uuid mapping into table <<\n");
    return 1;
  }
  if (std::strlen(aSchemaName) >= zephlane::kValueSize ||
      std::strlen(aHashID) > zephlane::kIdLength) {
    InterpreterError{kSource}("Schema name: %s or hash id: %s \nis too long...\n", aSchemaName,
                              aHashID);
    return 1;
  }
  zephlane::SchemaReferenceEntry& entry = zephlane::G_aSchemaReferenceTable[count];
  zephlane::CopyCut(entry.schemaName, aSchemaName);
  zephlane::CopyCut(entry.hashID, aHashID);
  entry.used = 1;
  zephlane::schema_name_digests[count] = std::hash<std::string_view>{}(aSchemaName);
  ++zephlane::registered_schemas;
  return 0;
}

char* getSchemaHashID(const char* aSchemaName) {
  if (!aSchemaName) { return nullptr; }
  const zephlane::SchemaReferenceEntry* entry = zephlane::FindSchema(aSchemaName);
  return entry ? const_cast<char*>(entry->hashID) : nullptr;
}

int isReferenceSchemaHasInternalized(const char* aSchemaName) {
  if (!aSchemaName) { return 0; }
  // Free entries are compared as well: the empty name is there as long as one is free.
  const bool is_free_name =
      aSchemaName[0] == '\0' && zephlane::Schemas().size() < zephlane::kMaximumSchemas;
  return is_free_name || zephlane::FindSchema(aSchemaName) ? 1 : 0;
}

int hashTreeCreateSchemaTitleUUIDMapping(redisContext* ctx) {
  const InstanceData empty_pair{};
  if (zephlaneCreateHashTable(ctx, zephlane::kSchemaTitles, &empty_pair, 1) != 0) {
    InterpreterError{kSource}("Set data to hash %s fail!\n\n", zephlane::kSchemaTitles);
    return 1;
  }
  for (const auto& entry : zephlane::Schemas()) {
    char value[zephlane::kValueSize] = "";
    if (zephlaneGetHashField(ctx, entry.hashID, "title", value) != 0) { continue; }
    char title[zephlane::kMaximumTitleSize];
    zephlane::CopyCut(title, value);
    // Of two schemas with the same title the later one wins.
    (void)hashTreeHashAddSinglePair(ctx, title, entry.hashID, zephlane::kSchemaTitles);
  }
  return 0;
}

int toLowerUUID(const char* aSource, char* aOut, size_t nOutSize) {
  if (!aSource || !aOut) {
    InterpreterError{kSource}("%s: Argument is NULL !!!\n", "toLowerUUID");
    return 1;
  }
  const std::string_view source = aSource;
  if (source.size() >= nOutSize) {
    InterpreterError{kSource}("Input length: %zu, buffer size: %zu\n", source.size(), nOutSize);
    return 1;
  }
  zephlane::CopyCut({aOut, nOutSize}, source);
  // Only what has the shape of a UUID is folded; any other text is copied as it is.
  if (zephlane::LooksLikeUuid(source)) {
    for (char* c = aOut; *c != '\0'; ++c) {
      *c = static_cast<char>(std::tolower(static_cast<unsigned char>(*c)));
    }
  }
  return 0;
}

int isSchemaGivenUUIDValid(const char* aUuid) {
  if (!aUuid) {
    InterpreterError{kSource}("%s: Argument is NULL !!!\n", "isSchemaGivenUUIDValid");
    return 0;
  }
  const std::string_view uuid = aUuid;
  if (uuid.size() != zephlane::kIdLength) {
    InterpreterError{kSource}("Invalid UUID length.\n");
    return 0;
  }
  if (zephlane::IsFixedId(uuid)) { return 1; }
  if (uuid.starts_with(zephlane::kInterpreterRange)) {
    InterpreterError{kSource}(
        "Given UUID is in the range where can only be used by interpreter!\n");
    InterpreterError{kSource}("UUID: %s\n", aUuid);
    return 0;
  }
  if (uuid.starts_with(zephlane::kTestRange) && !uuid.starts_with(zephlane::kOpenTestRange)) {
    InterpreterError{kSource}(
        "Given UUID is in the range where can only be used by interpreter unittest!\n");
    InterpreterError{kSource}("UUID: %s\n", aUuid);
    return 0;
  }
  return zephlane::IsUuidText(aUuid) ? 1 : 0;
}

int hashTreeRemoveDummyData(redisContext* ctx) {
  for (const auto& id : zephlane::Objects()) {
    const bool is_set = zephlane::Contains(id, zephlane::kSetIdPrefix);
    const bool removed =
        is_set ? zephlane::RemoveDummyMember(ctx, id) : zephlane::RemoveDummyPair(ctx, id);
    if (!removed) {
      InterpreterError{kSource}("Failed to remove dummy data ...\n");
      return 1;
    }
  }
  if (!zephlane::RemoveDummyMember(ctx, zephlane::kSchemaInstances)) {
    InterpreterError{kSource}("Remove dummy from %s failed !!!\n", zephlane::kSchemaInstances);
    return 1;
  }
  return 0;
}
