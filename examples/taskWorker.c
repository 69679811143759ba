/* SPDX-License-Identifier: MIT */
/*
 * An asynchronous task: a worker takes it from "Processing" to "Completed", and a watcher prints
 * each state. In a service these are two programs; here one starts the other, and the worker waits
 * until each state is printed, so that the next one does not replace it before:
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/taskWorker
 */
#define _POSIX_C_SOURCE 200809L

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zephlaneAPI.h>

static const char kRequests[] = "firmware-requests"; /* the channel of new tasks */
static const char kStates[] = "TASK_STATE_CHANGE";

/* The watcher */

/* A new task is announced by the collection of its return message. */
static void PrintNewTask(redisContext* ctx, const char* collection) {
  char id[ZEPHLANE_VALUE_SIZE] = "";
  char arguments[ZEPHLANE_VALUE_SIZE] = "";
  unsigned int count = 0;
  SetData* messages = zephlaneSMembers(ctx, collection, &count);
  if (messages != NULL && count == 1) {
    zephlaneGetHashField(ctx, messages[0].aObjectID, "MsgId", id);
    zephlaneGetHashField(ctx, messages[0].aObjectID, "Params", arguments);
  }
  free(messages);
  /* The first argument is the task's UUID, the second the worker's text. */
  SetData* texts = zephlaneListRange(ctx, arguments, 0, -1, &count);
  printf("new task: %s, %s\n", id, texts != NULL && count == 2 ? texts[1].aObjectID : "?");
  free(texts);
}

static int PrintState(redisContext* ctx, const char* task) {
  char state[ZEPHLANE_VALUE_SIZE] = "";
  zephlaneGetHashField(ctx, task, "TaskState", state);
  printf("state: %s\n", state);
  if (strcmp(state, "Completed") != 0) { return 0; }
  char status[ZEPHLANE_VALUE_SIZE] = "";
  char end[ZEPHLANE_VALUE_SIZE] = "";
  zephlaneGetHashField(ctx, task, "TaskStatus", status);
  zephlaneGetHashField(ctx, task, "EndTime", end);
  printf("status: %s, end time %s\n", status, end[0] != '\0' ? "recorded" : "missing");
  return 1;
}

/* Tells the worker after each message that it may go on. */
static int Watch(int go_on) {
  redisContext* channels =
      zephlaneRedisConnect(); /* serves nothing but the reception of messages */
  redisContext* ctx = zephlaneRedisConnect();
  if (channels == NULL || ctx == NULL) { return EXIT_FAILURE; } /* the library has said why */
  int failed = subscribeFromChannel(channels, kRequests) || subscribeFromChannel(channels, kStates);
  for (int completed = 0; !failed && !completed;) {
    void* reply = NULL;
    failed = write(go_on, "", 1) != 1 || redisGetReply(channels, &reply) != REDIS_OK;
    if (failed) { break; }
    const redisReply* message = reply; /* "message", the channel, the text */
    const char* text = message->element[2]->str;
    if (strcmp(message->element[1]->str, kRequests) == 0) {
      PrintNewTask(ctx, text);
    } else {
      completed = PrintState(ctx, text);
    }
    freeReplyObject(reply);
  }
  zephlaneRedisDisconnect(ctx);
  zephlaneRedisDisconnect(channels);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

/* The worker */

static int MayGoOn(int go_on) {
  char byte = 0;
  return read(go_on, &byte, 1) == 1;
}

static int Work(int go_on) {
  static const char* const states[] = {"Running", "Verifying", "Completed"};
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL || !MayGoOn(go_on)) { return EXIT_FAILURE; }
  char* task = zephlaneCreateAsyncTask(ctx, "update of fan 7", kRequests);
  int failed = task == NULL;
  for (size_t i = 0; !failed && i < sizeof(states) / sizeof(states[0]); ++i) {
    failed = !MayGoOn(go_on) || zephlaneUpdateTaskState(ctx, task, states[i]) != 0;
  }
  free(task);
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

int main(void) {
  int ends[2];
  if (pipe(ends) != 0) { return EXIT_FAILURE; }
  const pid_t watcher = fork();
  if (watcher == 0) { return Watch(ends[1]); }
  close(ends[1]);
  if (watcher < 0) { return EXIT_FAILURE; }
  const int worked = Work(ends[0]);
  int watched = 0;
  if (worked != 0 || waitpid(watcher, &watched, 0) != watcher) { return EXIT_FAILURE; }
  return watched == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
