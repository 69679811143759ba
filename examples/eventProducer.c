/* SPDX-License-Identifier: MIT */
/*
 * Events from a producer to a subscriber. In a service these are two programs, and the schema is
 * what the interpreter has read; here one starts the other over a small schema written by hand:
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/eventProducer
 */
#define _POSIX_C_SOURCE 200809L

#include <stdio.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zephlaneAPI.h>

enum { kEvents = 2 };

/* What the library reads of the schema "Event.1.0.0": where events are listed, the types of events
   and records, and which properties each type requires. */
static int StoreSchema(redisContext* ctx) {
  return hsetKey(ctx, "00000000-0000-0000-0001-eeeeeeeeeeee", "Event.1.0.0", "schema") ||
         hsetKey(ctx, "schema", "instanceCollection", "events") ||
         hsetKey(ctx, "schema", "definitions", "definitions") ||
         hsetKey(ctx, "definitions", "Event", "event-type") ||
         hsetKey(ctx, "definitions", "EventRecord", "record-type") ||
         hsetKey(ctx, "event-type", "required", "required-of-events") ||
         hsetKey(ctx, "record-type", "required", "required-of-records") ||
         zephlaneSADD(ctx, "required-of-events", "Name", "Events", NULL) ||
         zephlaneSADD(ctx, "required-of-records", "EventId", "MessageId", NULL);
}

/* The subscriber */

static void PrintField(redisContext* ctx, const char* key, const char* field) {
  char value[ZEPHLANE_VALUE_SIZE] = "";
  zephlaneGetHashField(ctx, key, field, value);
  printf("  %s: %s\n", field, value);
}

static void PrintEvent(redisContext* ctx, const char* event) {
  char key[ZEPHLANE_VALUE_SIZE] = "";
  unsigned int count = 0;
  PrintField(ctx, event, "Name");
  zephlaneGetHashField(ctx, event, "Events", key);
  SetData* records = zephlaneSMembers(ctx, key, &count);
  for (unsigned int i = 0; records != NULL && i < count; ++i) {
    PrintField(ctx, records[i].aObjectID, "EventId");
    PrintField(ctx, records[i].aObjectID, "MessageId");
    PrintField(ctx, records[i].aObjectID, "Message");
  }
  free(records);
}

static int Subscribe(int ready) {
  redisContext* events = zephlaneRedisConnect(); /* serves nothing but the reception of messages */
  redisContext* ctx = zephlaneRedisConnect();
  if (events == NULL || ctx == NULL) { return EXIT_FAILURE; } /* the library has said why */
  int failed = subscribeFromChannel(events, "EVENT_OCCURRED") || write(ready, "", 1) != 1;
  for (int i = 0; !failed && i < kEvents; ++i) {
    void* reply = NULL;
    failed = redisGetReply(events, &reply) != REDIS_OK;
    if (failed) { break; }
    const redisReply* message = reply; /* "message", the channel, the event's UUID */
    printf("event\n");
    PrintEvent(ctx, message->element[2]->str);
    freeReplyObject(reply);
  }
  zephlaneRedisDisconnect(ctx);
  zephlaneRedisDisconnect(events);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

/* The producer */

static int Produce(redisContext* ctx) {
  char arguments[2][ZEPHLANE_VALUE_SIZE] = {"Fan 7", "0 rpm"};
  EventRecord record = {.MemberId = "1", /* without a timestamp: the library fills it */
                        .EventType = "Alert",
                        .Severity = "Warning",
                        .Message = "Fan 7 stopped.",
                        .MessageId = "Fan.1.0.Stopped",
                        .MessageArgsCount = 2,
                        .MessageArgs = arguments};
  if (zephlaneCreateEventObject(ctx, "Fan", NULL, &record, 1) != 0) { return EXIT_FAILURE; }

  /* An event can also be stored first, and sent or deleted later. */
  snprintf(record.Message, sizeof(record.Message), "Fan 7 runs again.");
  snprintf(record.MessageId, sizeof(record.MessageId), "Fan.1.0.Started");
  char* event = zephlanePrepareEventObject(ctx, "Fan", NULL, &record, 1);
  const int failed = event == NULL || zephlaneProcessEventObject(ctx, event, 0) != 0;
  free(event);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

int main(void) {
  redisContext* ctx = zephlaneRedisConnect();
  int ends[2];
  if (ctx == NULL || StoreSchema(ctx) != 0 || pipe(ends) != 0) { return EXIT_FAILURE; }
  const pid_t subscriber = fork();
  if (subscriber == 0) {
    zephlaneRedisDisconnect(ctx); /* the parent's: a connection serves one process */
    return Subscribe(ends[1]);
  }
  close(ends[1]);
  char ready = 0;
  if (subscriber < 0 || read(ends[0], &ready, 1) != 1) { return EXIT_FAILURE; }

  const int produced = Produce(ctx);
  int subscribed = 0;
  if (produced != 0 || waitpid(subscriber, &subscribed, 0) != subscriber) { return EXIT_FAILURE; }
  unsigned int listed = 0;
  free(zephlaneListRange(ctx, "events", 0, -1, &listed));
  printf("%u events in the collection\n", listed);
  zephlaneRedisDisconnect(ctx);
  return subscribed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
