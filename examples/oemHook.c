/* SPDX-License-Identifier: MIT */
/*
 * Waking another process. The listener registers a hook for a fan and is called for each message;
 * the trigger sends messages to every process that listens. In a service these are two programs;
 * here one starts the other, so that the example runs by itself:
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/oemHook
 */
#define _POSIX_C_SOURCE 200809L

#include <semaphore.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zephlaneAPI.h>

static const char kFan[] = "10000000-0000-0000-0000-000000000007";
static const char kChanged[] = "1f";
static const char kRemoved[] = "2f";

/* The listener */

static sem_t fan_removed;

/* Called in a thread of the library's. The texts are gone when it returns; its result is ignored.
 */
static int OnFanMessage(char* id, char* name, char* property, char* value) {
  if (strcmp(id, kRemoved) == 0) {
    printf("listener: %s was removed\n", name);
    sem_post(&fan_removed);
  } else {
    printf("listener: %s of %s is now %s\n", property, name, value);
  }
  return 0;
}

static int Listen(char** argv, int ready) {
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL) { return EXIT_FAILURE; } /* the library has said why */
  sem_init(&fan_removed, 0, 0);
  const int failed = zephlaneOemHookFunctionRegister(ctx, kFan, argv, OnFanMessage);
  if (!failed && write(ready, "", 1) == 1) {
    while (sem_wait(&fan_removed) != 0) {} /* again when a signal came */
    /* The queue would outlive the process. Unregistering is for the end: the process has no OEM
       queue any more, and cannot get a new one. */
    zephlaneOemHookFunctionUnregister(ctx, kFan, argv);
  }
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

/* The trigger */

/* A queue holds ten messages. A full one refuses the next at once; the caller may try again. */
static int Send(redisContext* ctx, const char* id, const char* property, const char* value) {
  return zephlaneTriggerOemHookFunc(ctx, kFan, id, "Fan 7", property, value);
}

static int Trigger(void) {
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL) { return EXIT_FAILURE; }
  int failed = zephlaneHasOemMessageHandler(ctx, kFan); /* 0 when somebody listens */
  printf("trigger: %s listens\n", failed ? "nobody" : "somebody");
  failed = failed || Send(ctx, kChanged, "Reading", "2400") ||
           Send(ctx, kChanged, "Health", "Warning") || Send(ctx, kRemoved, "", "");
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}

int main(int argc, char** argv) {
  (void)argc; /* argv[0] names the queue: "/oemmq_oemHook" */
  setvbuf(stdout, NULL, _IOLBF, 0);
  int ends[2];
  if (pipe(ends) != 0) { return EXIT_FAILURE; }
  const pid_t listener = fork();
  if (listener == 0) { return Listen(argv, ends[1]); }
  close(ends[1]);
  char ready = 0;
  if (listener < 0 || read(ends[0], &ready, 1) != 1) { return EXIT_FAILURE; }

  const int triggered = Trigger();
  int listened = 0;
  if (waitpid(listener, &listened, 0) != listener) { return EXIT_FAILURE; }
  return listened == 0 ? triggered : EXIT_FAILURE;
}
