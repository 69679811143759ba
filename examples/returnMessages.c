/* SPDX-License-Identifier: MIT */
/*
 * Answers that clean up after themselves. A service leaves return messages in a set that the
 * requester named; the requester picks them up and puts their texts together. What nobody picks up
 * is gone 30 seconds later. Requester and service are two processes as a rule; here they are one
 * program with a connection for each, so that the example runs by itself:
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/returnMessages
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <zephlaneAPI.h>

static const char kReplies[] = "replies-to-session-7";

/* The texts of message IDs, which all know; %1 to %9 stand for the message's arguments. */
static const struct {
  const char* id;
  const char* text;
} kRegistry[] = {
    {"Base.1.0.Success", "The request was carried out"},
    {"Fan.1.0.SpeedChanged", "%1 now turns at %2 rpm"},
};

/* The service */

static int Answer(redisContext* ctx, const char* request) {
  if (strcmp(request, "set the speed") == 0) {
    const char* arguments[] = {"Fan 7", "2400"};
    return zephlaneCreateReturnMsgV21(ctx, kReplies, "Fan.1.0.SpeedChanged", arguments, 2);
  }
  return zephlaneCreateReturnMsgV21(ctx, kReplies, "Base.1.0.Success", NULL, 0);
}

/* The requester */

static const char* TextOf(const char* id) {
  for (size_t i = 0; i < sizeof(kRegistry) / sizeof(kRegistry[0]); ++i) {
    if (strcmp(kRegistry[i].id, id) == 0) { return kRegistry[i].text; }
  }
  return id;
}

static void PrintText(const char* text, char** arguments, unsigned int count) {
  for (; *text != '\0'; ++text) {
    const unsigned int number = text[0] == '%' ? (unsigned int)(text[1] - '0') : 0;
    if (number >= 1 && number <= count) {
      fputs(arguments[number - 1], stdout);
      ++text;
    } else {
      putchar(*text);
    }
  }
}

/* The connection is hiredis's own, so a program can ask what the library has no function for. */
static int VanishesInTime(redisContext* ctx, const char* key) {
  redisReply* reply = redisCommand(ctx, "TTL %s", key);
  const int vanishes = reply != NULL && reply->integer >= 0 && reply->integer <= 30;
  freeReplyObject(reply);
  return vanishes;
}

static void PrintReply(redisContext* ctx, const char* message) {
  char* id = zephlaneGetHashFieldV21(ctx, message, "MsgId");
  char* list = zephlaneGetHashFieldV21(ctx, message, "Params"); /* NULL without arguments */
  unsigned int count = 0;
  char** arguments = list != NULL ? zephlaneExtendedListRange(ctx, list, 0, -1, &count) : NULL;
  if (arguments == NULL) { count = 0; }

  printf("requester: %s: ", id != NULL ? id : "too late");
  PrintText(id != NULL ? TextOf(id) : "", arguments, count);
  const int vanishes = VanishesInTime(ctx, message) && (list == NULL || VanishesInTime(ctx, list));
  printf("\n           gone within 30 seconds: %s\n", vanishes ? "yes" : "no");

  for (unsigned int i = 0; i < count; ++i) { free(arguments[i]); }
  free(arguments);
  free(list);
  free(id);
}

/* Prints the messages of the set and takes them out of it; the rest is left to their lifetime. */
static unsigned int TakeReplies(redisContext* ctx) {
  unsigned int count = 0;
  SetData* messages = zephlaneSMembers(ctx, kReplies, &count);
  for (unsigned int i = 0; messages != NULL && i < count; ++i) {
    PrintReply(ctx, messages[i].aObjectID);
    zephlaneRemoveInstanceFromSet(ctx, kReplies, messages[i].aObjectID);
  }
  free(messages);
  return count;
}

int main(void) {
  redisContext* service = zephlaneRedisConnect();
  redisContext* requester = zephlaneRedisConnect();
  int failed = service == NULL || requester == NULL; /* the library has said why */
  const char* const requests[] = {"set the speed", "blink"};
  for (size_t i = 0; !failed && i < sizeof(requests) / sizeof(requests[0]); ++i) {
    printf("requester asks: %s\n", requests[i]);
    failed = Answer(service, requests[i]) != 0 || TakeReplies(requester) != 1;
  }
  if (!failed) { printf("requester: %u replies left\n", TakeReplies(requester)); }
  zephlaneRedisDisconnect(requester);
  zephlaneRedisDisconnect(service);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
