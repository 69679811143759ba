/* SPDX-License-Identifier: MIT */
/**
 * @file events.h
 * Events: records typed against the "Event.1.0.0" schema, numbered across processes, kept in the
 * event collection and announced on the channel "EVENT_OCCURRED".
 */
#ifndef ZEPHLANEAPI_EVENTS_H
#define ZEPHLANEAPI_EVENTS_H

#include <hiredis/hiredis.h>

#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/** Size of an event text: 255 characters and the terminator. */
#define ZEPHLANE_EVENT_TEXT_SIZE 256

/** One record of an event, filled by the producer. */
typedef struct EventRecord {
  char MemberId[ZEPHLANE_EVENT_TEXT_SIZE];
  char EventType[ZEPHLANE_EVENT_TEXT_SIZE];
  char EventTimestamp[ZEPHLANE_EVENT_TEXT_SIZE]; /**< filled by the library when empty */
  char Severity[ZEPHLANE_EVENT_TEXT_SIZE];
  char Message[ZEPHLANE_EVENT_TEXT_SIZE];
  char MessageId[ZEPHLANE_EVENT_TEXT_SIZE];
  int MessageArgsCount;
  char (*MessageArgs)[ZEPHLANE_VALUE_SIZE]; /**< borrowed; may be NULL */
  char OriginOfCondition[ZEPHLANE_ID_SIZE]; /**< key in "WEB-OBJ-URI-MAP" */
  char Oem[ZEPHLANE_ID_SIZE];
} EventRecord;

ZEPHLANE_EXPORT int zephlaneCreateEventObject(redisContext* ctx, const char* aName,
                                              const char* aOem, EventRecord* aRecords, int nCount);
ZEPHLANE_EXPORT char* zephlanePrepareEventObject(redisContext* ctx, const char* aName,
                                                 const char* aOem, EventRecord* aRecords,
                                                 int nCount);
ZEPHLANE_EXPORT int zephlaneProcessEventObject(redisContext* ctx, const char* aEventID,
                                               int nAction);
ZEPHLANE_EXPORT int generateEventID(redisContext* ctx, char* aOut);
ZEPHLANE_EXPORT int createEventRecords(redisContext* ctx, const char* aRecordTypeID,
                                       const char* aRecordSetID, EventRecord* aRecords, int nCount);
ZEPHLANE_EXPORT int createOriginObject(redisContext* ctx, const char* aOriginKey,
                                       const char* aRecordTypeID, const char* aOriginID);
ZEPHLANE_EXPORT int getEventObjectTypeInfo(redisContext* ctx, char* aEventTypeID,
                                           char* aRecordTypeID, char* aCollection);
ZEPHLANE_EXPORT int isValidateEventObject(redisContext* ctx, const char* aTypeID,
                                          const char* aObjectID);
ZEPHLANE_EXPORT int sendEventObject(redisContext* ctx, const char* aEventID);
ZEPHLANE_EXPORT int deleteEventObject(redisContext* ctx, const char* aEventID);

#ifdef __cplusplus
}
#endif

#endif
