// SPDX-License-Identifier: MIT
//
// Events: an event object, a set of its records and a hash for each, typed against the schema
// "Event.1.0.0". An event is prepared, then sent or deleted. Nothing written before a failure is
// removed, and nothing expires by itself.
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

#include "api/commonSteps.h"
#include "api/fileLockHold.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/annotation.h>
#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/events.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/objects.h>
#include <zephlaneAPI/tasks.h>
#include <zephlaneAPI/trees.h>

using zephlane::ApiError;
using zephlane::CArray;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kIdSize;
using zephlane::kValueSize;

namespace zephlane {
namespace {

constexpr char kIndexedEvent[] = "Event.1.0.0";
constexpr char kRecordsField[] = "Events";
constexpr char kOemField[] = "Oem";
constexpr char kArgumentsField[] = "MessageArgs";
constexpr char kOriginField[] = "OriginOfCondition";

constexpr std::size_t kEventIdDigits = 8;
constexpr char kLastEventId[] = "ffffffff";

// What the events of a store are typed by, and where they are listed.
struct EventTypes {
  char event[kIdSize];
  char record[kIdSize];
  char collection[kIdSize];
};

// Pairs in the order in which they are written.
class Pairs {
 public:
  explicit Pairs(std::size_t capacity) noexcept : pairs_(ZeroedArray<InstanceData>(capacity)) {}
  explicit operator bool() const noexcept {
    return pairs_ != nullptr;
  }
  void Add(std::string_view field, std::string_view value) noexcept {
    CopyCut(pairs_[count_].aFieldName, field);
    CopyCut(pairs_[count_].aValue, value);
    ++count_;
  }
  [[nodiscard]] int Write(redisContext* ctx, const char* key) const {
    return createHashTable(ctx, key, pairs_.get(), count_);
  }

 private:
  CArray<InstanceData> pairs_;
  unsigned int count_ = 0;
};

// The keys that one record's objects get.
struct RecordIds {
  char record[kIdSize] = "";
  char origin[kIdSize] = "";
  char event[kEventIdDigits + 1] = "";
  char arguments[kIdSize] = "";  // empty: the record has none
};

bool DrawRecordIds(redisContext* ctx, RecordIds* ids) {
  if (zephlaneGenerateUUID(ctx, ids->record) != kDone) {
    ApiError{}("Failed to generate UUID for creating record.\n\n");
    return false;
  }
  if (zephlaneGenerateUUID(ctx, ids->origin) != kDone) {
    ApiError{}("Failed to generate UUID for creating origin.\n\n");
    return false;
  }
  if (generateEventID(ctx, ids->event) != kDone) {
    ApiError{}("Failed to generate event id.\n\n");
    return false;
  }
  return true;
}

// The record's message arguments as a list; without arguments nothing is written.
bool StoreArguments(redisContext* ctx, const EventRecord& record, char* list_id) {
  if (record.MessageArgsCount <= 0 || !record.MessageArgs) { return true; }
  if (zephlaneGenerateUUID(ctx, list_id) != kDone) {
    ApiError{}("Failed to generate UUID for creating message args.\n\n");
    return false;
  }
  for (int i = 0; i < record.MessageArgsCount; ++i) {
    char argument[kValueSize];
    CopyCut(argument, BoundedText(record.MessageArgs[i]));
    if (listRightPush(ctx, list_id, argument) != kDone) {
      ApiError{}("Failed to create message args.\n\n");
      return false;
    }
  }
  return true;
}

bool FillTimestamp(EventRecord* record) {
  if (record->EventTimestamp[0] != '\0') { return true; }
  if (createEventTimeStamp(record->EventTimestamp) == kDone) { return true; }
  ApiError{}("Failed to create timestamp.\n\n");
  return false;
}

bool WriteRecord(redisContext* ctx, const EventRecord& record, const RecordIds& ids,
                 std::string_view origin_id, const char* type_id) {
  Pairs pairs(11);
  if (!pairs) { return false; }
  // The last character of each text is its terminator's, whatever the caller left there.
  const auto text = [](const auto& buffer) {
    return BoundedText(std::span(buffer).first(sizeof(buffer) - 1));
  };
  pairs.Add(kOemField, text(record.Oem));
  pairs.Add("MemberId", text(record.MemberId));
  pairs.Add("EventType", text(record.EventType));
  pairs.Add("EventId", ids.event);
  pairs.Add("EventTimestamp", text(record.EventTimestamp));
  pairs.Add("Severity", text(record.Severity));
  pairs.Add("Message", text(record.Message));
  pairs.Add("MessageId", text(record.MessageId));
  pairs.Add(kArgumentsField, ids.arguments);
  pairs.Add(kOriginField, origin_id);
  pairs.Add(kTypeIdAnnotation, std::string_view(type_id).substr(0, kIdLength));
  return pairs.Write(ctx, ids.record) == kDone;
}

// One record with its argument list and origin; `count` is the number of all records.
int CreateRecord(redisContext* ctx, const char* type_id, const char* set_id, EventRecord* record,
                 int count) {
  RecordIds ids;
  if (!DrawRecordIds(ctx, &ids) || !FillTimestamp(record)) { return kFailed; }
  if (!StoreArguments(ctx, *record, ids.arguments)) { return kFailed; }
  char origin_key[kIdSize];
  CopyCut(origin_key, BoundedText(record->OriginOfCondition));
  // An origin that cannot be told leaves the field empty and is no failure.
  const bool has_origin = createOriginObject(ctx, origin_key, type_id, ids.origin) == kDone;
  if (!WriteRecord(ctx, *record, ids, has_origin ? ids.origin : "", type_id)) {
    ApiError{}("Object ID : %s\n\n", ids.record);
    // The number is that of all records, here and below, not the place of this one.
    ApiError{}("Failed to create event, index = %d.\n\n", count);
    return kFailed;
  }
  (void)zephlaneSADD(ctx, set_id, ids.record, nullptr);
  if (isValidateEventObject(ctx, type_id, ids.record) != kDone) {
    ApiError{}("Object ID : %s\n\n", ids.record);
    ApiError{}("Invalid event record, index = %d.\n\n", count);
    return kFailed;
  }
  return kDone;
}

bool WriteEvent(redisContext* ctx, const char* event_id, const char* record_set_id,
                const char* name, const char* oem, const char* type_id) {
  Pairs pairs(4);
  if (!pairs) { return false; }
  pairs.Add("Name", name ? name : "");
  pairs.Add(kRecordsField, record_set_id);
  pairs.Add(kOemField, std::string_view(oem ? oem : "").substr(0, kIdLength));
  pairs.Add(kTypeIdAnnotation, type_id);
  return pairs.Write(ctx, event_id) == kDone;
}

// Stores an event without sending it; its UUID into `event_id`. False after a report.
bool Prepare(redisContext* ctx, const char* name, const char* oem, EventRecord* records, int count,
             EventTypes* types, char* event_id) {
  if (!ctx || !records || count < 1) {
    ApiError{}("Null input.\n");
    return false;
  }
  if (getEventObjectTypeInfo(ctx, types->event, types->record, types->collection) != kDone) {
    ApiError{}("Failed to get Event schema ID.\n");
    return false;
  }
  if (zephlaneGenerateUUID(ctx, event_id) != kDone) {
    ApiError{}("Failed to generate UUID for creating object.\n");
    return false;
  }
  char record_set_id[kIdSize] = "";
  if (zephlaneGenerateUUID(ctx, record_set_id) != kDone) {
    ApiError{}("Failed to generate UUID for creating array.\n");
    return false;
  }
  if (createEventRecords(ctx, types->record, record_set_id, records, count) != kDone) {
    ApiError{}("Failed to create event records.\n");
    return false;
  }
  if (!WriteEvent(ctx, event_id, record_set_id, name, oem, types->event)) {
    ApiError{}("Failed to create event instance.\n");
    ApiError{}("aEventObjectID = %s\n", event_id);
    return false;
  }
  if (isValidateEventObject(ctx, types->event, event_id) != kDone) {
    ApiError{}("Input event object is invalid.\n");
    ApiError{}("aEventObjectID = %s\n", event_id);
    return false;
  }
  return true;
}

// Lists a prepared event in the collection and announces it.
int Send(redisContext* ctx, const char* collection, const char* event_id) {
  if (listRightPush(ctx, collection, event_id) != kDone) {
    ApiError{}("Failed to add Event object to the collection.\n");
    return kFailed;
  }
  return PublishCut(ctx, kEventOccurredChannel, event_id);
}

// Deletes the object that a field of a record names, if it can be read.
int DeleteNamed(redisContext* ctx, const char* record_id, const char* field) {
  char key[kValueSize] = "";
  return getHashField(ctx, record_id, field, key) == kDone ? deleteKey(ctx, key) : kDone;
}

}  // namespace
}  // namespace zephlane

int zephlaneCreateEventObject(redisContext* ctx, const char* aName, const char* aOem,
                              EventRecord* aRecords, int nCount) {
  zephlane::EventTypes types{};
  char event_id[kIdSize] = "";
  if (!zephlane::Prepare(ctx, aName, aOem, aRecords, nCount, &types, event_id)) { return kFailed; }
  return zephlane::Send(ctx, types.collection, event_id);
}

char* zephlanePrepareEventObject(redisContext* ctx, const char* aName, const char* aOem,
                                 EventRecord* aRecords, int nCount) {
  zephlane::EventTypes types{};
  char event_id[kIdSize] = "";
  if (!zephlane::Prepare(ctx, aName, aOem, aRecords, nCount, &types, event_id)) { return nullptr; }
  zephlane::CArray<char> copy = zephlane::ZeroedArray<char>(kIdSize);
  if (!copy) {
    ApiError{}("malloc\n");
    return nullptr;
  }
  zephlane::CopyCut({copy.get(), kIdSize}, event_id);
  return copy.release();
}

int zephlaneProcessEventObject(redisContext* ctx, const char* aEventID, int nAction) {
  switch (nAction) {
    case 0:
      return sendEventObject(ctx, aEventID);
    case 1:
      return deleteEventObject(ctx, aEventID);
    default:
      ApiError{}("invalid action %d\n", nAction);
      return kFailed;
  }
}

int generateEventID(redisContext* ctx, char* aOut) {
  if (!aOut) { return kFailed; }
  const zephlane::MutexHold threads(zephlaneAutoGenerateEventIDLock);
  zephlane::FileLockHold processes(ZephlaneGenerateEventIDLockFile);
  if (!processes) { return kFailed; }
  // A buffer of its own: a stored value may be longer than the caller's.
  char counter[kValueSize] = "";
  const bool is_missing = getKey(ctx, zephlane::kAutoEventId, counter) != kDone;
  if (is_missing || std::string_view(counter).starts_with(zephlane::kLastEventId)) {
    // The sequence begins again behind 00000000, which is never issued.
    zephlane::CopyCounted(counter, "00000000");
  }
  const unsigned long value = std::strtoul(counter, nullptr, 16) + 1;
  (void)std::snprintf(aOut, zephlane::kEventIdDigits + 1, "%08x", static_cast<unsigned int>(value));
  // The result is not looked at: an ID that could not be stored is issued all the same.
  (void)setKey(ctx, zephlane::kAutoEventId, aOut);
  return processes.Release() ? kDone : kFailed;
}

int createEventRecords(redisContext* ctx, const char* aRecordTypeID, const char* aRecordSetID,
                       EventRecord* aRecords, int nCount) {
  if (!ctx || !aRecordTypeID || !aRecordSetID || !aRecords) { return kFailed; }
  for (int i = 0; i < nCount; ++i) {
    if (zephlane::CreateRecord(ctx, aRecordTypeID, aRecordSetID, &aRecords[i], nCount) != kDone) {
      return kFailed;
    }
  }
  return kDone;
}

int createOriginObject(redisContext* ctx, const char* aOriginKey, const char* aRecordTypeID,
                       const char* aOriginID) {
  char uri[kValueSize] = "";
  char type_id[kValueSize] = "";
  if (getHashField(ctx, zephlane::kWebObjectUriMap, aOriginKey, uri) != kDone ||
      getHashField(ctx, aRecordTypeID, zephlane::kOriginField, type_id) != kDone) {
    return kFailed;
  }
  if (hsetKey(ctx, aOriginID, zephlane::kTypeIdAnnotation, type_id) != kDone) { return kFailed; }
  return hsetKey(ctx, aOriginID, "@odata.id", uri);
}

int getEventObjectTypeInfo(redisContext* ctx, char* aEventTypeID, char* aRecordTypeID,
                           char* aCollection) {
  if (!ctx || !aEventTypeID || !aRecordTypeID || !aCollection) { return kFailed; }
  char schema[kValueSize] = "";
  char collection[kValueSize] = "";
  char definitions[kValueSize] = "";
  char event_type[kValueSize] = "";
  char record_type[kValueSize] = "";
  if (getHashField(ctx, zephlane::kSchemaIndexId, zephlane::kIndexedEvent, schema) != kDone ||
      getHashField(ctx, schema, zephlane::kInstanceCollectionField, collection) != kDone ||
      getHashField(ctx, schema, "definitions", definitions) != kDone ||
      getHashField(ctx, definitions, "Event", event_type) != kDone ||
      getHashField(ctx, definitions, "EventRecord", record_type) != kDone) {
    return kFailed;
  }
  zephlane::CopyCut({aEventTypeID, kIdSize}, event_type);
  zephlane::CopyCut({aRecordTypeID, kIdSize}, record_type);
  zephlane::CopyCut({aCollection, kIdSize}, collection);
  return kDone;
}

int isValidateEventObject(redisContext* ctx, const char* aTypeID, const char* aObjectID) {
  char required[kValueSize] = "";
  if (getHashField(ctx, aTypeID, "required", required) != kDone) { return kFailed; }
  unsigned int count = 0;
  const CArray<SetData> names(zephlaneSMembers(ctx, required, &count));
  if (!names) { return kFailed; }
  for (unsigned int i = 0; i < count; ++i) {
    if (getHashField(ctx, aObjectID, names[i].aObjectID, nullptr) != kDone) { return kFailed; }
  }
  return kDone;
}

int sendEventObject(redisContext* ctx, const char* aEventID) {
  if (isObject(ctx, aEventID) < 1) {
    ApiError{}("Empty object.\n");
    return kFailed;
  }
  zephlane::EventTypes types{};
  if (getEventObjectTypeInfo(ctx, types.event, types.record, types.collection) != kDone) {
    ApiError{}("Failed to get Event schema ID.\n");
    return kFailed;
  }
  return zephlane::Send(ctx, types.collection, aEventID);
}

int deleteEventObject(redisContext* ctx, const char* aEventID) {
  char record_set_id[kValueSize] = "";
  if (getHashField(ctx, aEventID, zephlane::kRecordsField, record_set_id) != kDone) {
    return kFailed;
  }
  unsigned int count = 0;
  const CArray<SetData> records(zephlaneSMembers(ctx, record_set_id, &count));
  if (!records) { return kFailed; }
  // Every deletion is tried; the entry in the collection stays.
  int result = kDone;
  for (unsigned int i = 0; i < count; ++i) {
    const char* record_id = records[i].aObjectID;
    result |= zephlane::DeleteNamed(ctx, record_id, zephlane::kArgumentsField);
    result |= zephlane::DeleteNamed(ctx, record_id, zephlane::kOriginField);
    result |= deleteKey(ctx, record_id);
  }
  result |= deleteKey(ctx, record_set_id);
  result |= deleteKey(ctx, aEventID);
  return result;
}
