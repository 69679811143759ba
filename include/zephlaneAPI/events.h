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

/** One record of an event, filled by the producer; empty texts are not stored. */
typedef struct EventRecord {
  char MemberId[ZEPHLANE_EVENT_TEXT_SIZE];
  char EventType[ZEPHLANE_EVENT_TEXT_SIZE];
  char EventTimestamp[ZEPHLANE_EVENT_TEXT_SIZE]; /**< filled by the library when empty */
  char Severity[ZEPHLANE_EVENT_TEXT_SIZE];
  char Message[ZEPHLANE_EVENT_TEXT_SIZE];
  char MessageId[ZEPHLANE_EVENT_TEXT_SIZE];
  int MessageArgsCount;
  char (*MessageArgs)[ZEPHLANE_VALUE_SIZE]; /**< borrowed; may be NULL */
  char OriginOfCondition[ZEPHLANE_ID_SIZE]; /**< key in "WEB-OBJ-URI-MAP" of what caused it */
  char Oem[ZEPHLANE_ID_SIZE];
} EventRecord;

/* Creating, sending and deleting */

/**
 * Stores an event and its records, checks them, adds the event to the collection and publishes its
 * UUID on "EVENT_OCCURRED".
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aName     the event's name (borrowed); cut to 1023 characters, not stored when NULL or
 * empty
 * @param aOem      OEM text (borrowed); cut to 36 characters, not stored when NULL or empty
 * @param aRecords  nCount records (borrowed); empty timestamps in them are filled
 * @param nCount    number of records, 1 or more
 * @return 0; 1 on failure, with what was written before it in place
 * @note Prints what zephlanePrepareEventObject() prints for an event that cannot be stored, or
 *       "Failed to add Event object to the collection."; nothing when the publishing fails.
 *       Redis: those of zephlanePrepareEventObject(), RPUSH, PUBLISH.
 */
ZEPHLANE_EXPORT int zephlaneCreateEventObject(redisContext* ctx, const char* aName,
                                              const char* aOem, EventRecord* aRecords, int nCount);

/**
 * Stores and checks an event without sending it; arguments as for zephlaneCreateEventObject().
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aName     the event's name (borrowed)
 * @param aOem      OEM text (borrowed)
 * @param aRecords  nCount records (borrowed); empty timestamps in them are filled
 * @param nCount    number of records, 1 or more
 * @return the event's UUID (caller frees with free()); NULL on failure, with what was written
 * before it in place
 * @note Prints "Null input.", "Failed to get Event schema ID." (before any UUID is drawn), "Failed
 * to generate UUID for creating object." or "... array.", "Failed to create event records.",
 *       "Failed to create event instance." or "Input event object is invalid.", both followed by
 *       "aEventObjectID = %s", "malloc", and what the steps print. Redis: HGET (schema), GET and
 * SET (per UUID), those of createEventRecords(), HMSET, and those of isValidateEventObject().
 */
ZEPHLANE_EXPORT char* zephlanePrepareEventObject(redisContext* ctx, const char* aName,
                                                 const char* aOem, EventRecord* aRecords,
                                                 int nCount);

/**
 * Sends or deletes a prepared event.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aEventID  the event's UUID (borrowed)
 * @param nAction   0 for sendEventObject(), 1 for deleteEventObject()
 * @return 0; 1 on failure
 * @note Prints "invalid action %d" for any other action. Redis: those of the action.
 */
ZEPHLANE_EXPORT int zephlaneProcessEventObject(redisContext* ctx, const char* aEventID,
                                               int nAction);

/* Steps */

/**
 * Draws the next event ID of the store-wide counter "autoEventID", safely across threads and
 * processes: 00000001 to ffffffff in lower case, then 00000001 again.
 * @param ctx   connection (borrowed; one thread at a time)
 * @param aOut  receives the ID (out, 9 characters)
 * @return 0; 1 when aOut is NULL, the lock is not got or unlocking fails
 * @note Prints what processLock() and processUnlock() print. Redis: GET, SET. After failure aOut
 *       holds the new ID when unlocking failed, else what it held. A counter that cannot be read
 *       starts anew; one that cannot be stored is no failure.
 */
ZEPHLANE_EXPORT int generateEventID(redisContext* ctx, char* aOut);

/**
 * Stores the records of an event, each with its argument list and origin object, and checks them.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aRecordTypeID  type of the records (borrowed); holds their required properties
 * @param aRecordSetID   key of the set that they are added to (borrowed)
 * @param aRecords       nCount records (borrowed); empty timestamps in them are filled
 * @param nCount         number of records
 * @return 0; 1 at the first failure, with what was written before it in place
 * @note Prints "Failed to generate UUID for creating record.", "... origin." or "... message
 * args.", "Failed to generate event id.", "Failed to create timestamp.", "Failed to create message
 *       args.", or "Object ID : %s" with "Failed to create event, index = %d." or "Invalid event
 *       record, index = %d.", where the number is nCount; each followed by an empty line. Redis,
 * per record: GET and SET (per ID), RPUSH (per argument), those of createOriginObject(), HMSET,
 *       SADD, and those of isValidateEventObject().
 */
ZEPHLANE_EXPORT int createEventRecords(redisContext* ctx, const char* aRecordTypeID,
                                       const char* aRecordSetID, EventRecord* aRecords, int nCount);

/**
 * Stores the link object of what caused an event: its type and its URI.
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aOriginKey     field of "WEB-OBJ-URI-MAP" that holds the URI (borrowed)
 * @param aRecordTypeID  type of event records (borrowed); its "OriginOfCondition" is the link's
 * type
 * @param aOriginID      key of the new object (borrowed)
 * @return 0; 1 at the first read or write that fails
 * @note Prints nothing. Redis: HGET (URI), HGET (type), HSET "typeID", HSET "@odata.id".
 */
ZEPHLANE_EXPORT int createOriginObject(redisContext* ctx, const char* aOriginKey,
                                       const char* aRecordTypeID, const char* aOriginID);

/**
 * Looks up what events are typed by and where they are listed, in the schema "Event.1.0.0".
 * @param ctx            connection (borrowed; one thread at a time)
 * @param aEventTypeID   receives the type of events (out, ZEPHLANE_ID_SIZE characters)
 * @param aRecordTypeID  receives the type of event records (out, ZEPHLANE_ID_SIZE characters)
 * @param aCollection    receives the key of the event collection (out, ZEPHLANE_ID_SIZE characters)
 * @return 0; 1 when the schema is not there whole or an argument is NULL, with the outputs as they
 *         were
 * @note Prints nothing. Redis: HGET (index), HGET "instanceCollection", HGET "definitions", HGET
 *       "Event", HGET "EventRecord".
 */
ZEPHLANE_EXPORT int getEventObjectTypeInfo(redisContext* ctx, char* aEventTypeID,
                                           char* aRecordTypeID, char* aCollection);

/**
 * Checks that an object has the properties its type requires.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aTypeID    type whose field "required" names the set of required names (borrowed)
 * @param aObjectID  object to check (borrowed)
 * @return 0 when all are there, or the set is empty; 1 when one is missing or empty, the type has
 *         no field "required", or on failure
 * @note Prints what zephlaneSMembers() prints. Redis: HGET, SMEMBERS, HGET (per name, until one is
 *       missing).
 */
ZEPHLANE_EXPORT int isValidateEventObject(redisContext* ctx, const char* aTypeID,
                                          const char* aObjectID);

/**
 * Adds a prepared event to the collection and publishes its UUID on "EVENT_OCCURRED".
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aEventID  the event's UUID (borrowed); 98 characters of it are published
 * @return 0; 1 on failure
 * @note Prints "Empty object.", "Failed to get Event schema ID." or "Failed to add Event object to
 *       the collection."; nothing when the publishing fails. Redis: TYPE, those of
 *       getEventObjectTypeInfo(), RPUSH, PUBLISH.
 */
ZEPHLANE_EXPORT int sendEventObject(redisContext* ctx, const char* aEventID);

/**
 * Deletes an event with its records, their argument lists and origin objects. Its entry in the
 * collection, when it was sent, stays.
 * @param ctx       connection (borrowed; one thread at a time)
 * @param aEventID  the event's UUID (borrowed)
 * @return 0; 1 when it has no field "Events", the records cannot be read or a deletion fails
 * @note Prints nothing. Redis: HGET "Events", SMEMBERS, for each record HGET and DEL of
 * "MessageArgs" and of "OriginOfCondition" and DEL, then DEL of the record set and of the event.
 */
ZEPHLANE_EXPORT int deleteEventObject(redisContext* ctx, const char* aEventID);

#ifdef __cplusplus
}
#endif

#endif
