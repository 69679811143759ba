// SPDX-License-Identifier: MIT
//
// Events, against an event schema of the smallest size that names everything.
#include <cstdio>
#include <cstring>

#include "faults/outcomes.h"

#include <zephlaneAPI/events.h>

namespace zephlane::test {

namespace {

constexpr char kSchema[] =
    "HSET 00000000-0000-0000-0001-eeeeeeeeeeee Event.1.0.0 schema\n"
    "HSET schema instanceCollection collection definitions definitions\n"
    "HSET definitions Event eventType EventRecord recordType\n"
    "HSET eventType required eventNeeds\n"
    "HSET recordType required recordNeeds OriginOfCondition originType\n"
    "SADD eventNeeds Name Events\n"
    "SADD recordNeeds EventType EventId EventTimestamp MessageId\n"
    "HSET WEB-OBJ-URI-MAP fan /chassis/fan\n"
    // One event that is stored already.
    "HSET event Name name Events records\n"
    "SADD records record\n"
    "HSET record MessageArgs arguments OriginOfCondition origin EventType type EventId 1"
    " EventTimestamp now MessageId id\n"
    "RPUSH arguments one two\n"
    "HSET origin typeID originType\n";

template <std::size_t size>
void Fill(char (&text)[size], const char* content) {
  (void)std::snprintf(text, size, "%s", content);
}

char arguments[2][ZEPHLANE_VALUE_SIZE] = {"one", "two"};
EventRecord records[2];

// Calls fill in the timestamps.
void FillRecords(Stage& /*stage*/) {
  for (EventRecord& record : records) {
    std::memset(&record, 0, sizeof(record));
    Fill(record.EventType, "Alert");
    Fill(record.MessageId, "Fan.1");
    Fill(record.OriginOfCondition, "fan");
    record.MessageArgsCount = 2;
    record.MessageArgs = arguments;
  }
}

Outcome EventId(Stage& stage) {
  TextOut<9> out;
  const int status = generateEventID(stage.ctx, out.Get());
  return StatusAndText(status, out, "00000001", AfterFailure::kAnything);
}

Outcome TypeInfo(Stage& stage) {
  IdOut event;
  IdOut record;
  IdOut collection;
  const int status = getEventObjectTypeInfo(stage.ctx, event.Get(), record.Get(), collection.Get());
  if (!record.IsWhole() || !collection.IsWhole()) { return Undocumented("ID not ended"); }
  if (status == 1 && !(record.IsUntouched() && collection.IsUntouched())) {
    return Undocumented("output touched by a failure");
  }
  return StatusAndText(status, event, "eventType");
}

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneCreateEventObject",
     .content = kSchema,
     .prepare = FillRecords,
     .call =
         [](Stage& s) {
           return Status(zephlaneCreateEventObject(s.ctx, "name", "oem", records, 2));
         }},
    {.name = "zephlanePrepareEventObject",
     .content = kSchema,
     .prepare = FillRecords,
     .call =
         [](Stage& s) {
           return HeapText(zephlanePrepareEventObject(s.ctx, "name", "oem", records, 2), "");
         }},
    {.name = "zephlaneProcessEventObject",
     .content = kSchema,
     .call = [](Stage& s) { return Status(zephlaneProcessEventObject(s.ctx, "event", 0)); }},
    {.name = "generateEventID", .call = EventId},
    {.name = "createEventRecords",
     .content = kSchema,
     .prepare = FillRecords,
     .call =
         [](Stage& s) {
           return Status(createEventRecords(s.ctx, "recordType", "newRecords", records, 2));
         }},
    {.name = "createOriginObject",
     .content = kSchema,
     .call =
         [](Stage& s) {
           return Status(createOriginObject(s.ctx, "fan", "recordType", "newOrigin"));
         }},
    {.name = "getEventObjectTypeInfo", .content = kSchema, .call = TypeInfo},
    {.name = "isValidateEventObject",
     .content = kSchema,
     .call = [](Stage& s) { return Status(isValidateEventObject(s.ctx, "recordType", "record")); }},
    {.name = "sendEventObject",
     .content = kSchema,
     .call = [](Stage& s) { return Status(sendEventObject(s.ctx, "event")); }},
    {.name = "deleteEventObject",
     .content = kSchema,
     .call = [](Stage& s) { return Status(deleteEventObject(s.ctx, "event")); }},
};

}  // namespace

std::span<const FunctionCase> EventCases() {
  return kCases;
}

}  // namespace zephlane::test
