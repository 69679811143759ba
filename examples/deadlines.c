/* SPDX-License-Identifier: MIT */
/*
 * Deadlines of objects on the monotonic clock: a change of the wall clock does not move them, and
 * what has expired is left for its owner to delete.
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/deadlines
 */
#include <stdio.h>
#include <stdlib.h>

#include <zephlaneAPI.h>

static const char kSession[] = "10000000-0000-0000-0000-000000000007";

static void PrintSession(redisContext* ctx, const char* when) {
  const int expired = zephlaneIsMonotonicTimeExpired(ctx, kSession);
  const char* answer = expired == 1 ? "expired" : expired == 0 ? "valid" : "unknown";
  printf("%s: %s\n", when, answer);
}

int main(void) {
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL) { return EXIT_FAILURE; } /* the library has said why */

  int failed = hsetKey(ctx, kSession, "UserName", "operator");
  PrintSession(ctx, "without a deadline");

  failed = failed || zephlaneAddMonotonicExpiredTime(ctx, kSession, 60 * 1000);
  PrintSession(ctx, "a minute before its deadline");
  PrintSession(ctx, "asked again");

  /* Deadlines of all objects are in one hash, in milliseconds since boot: this one came in the
     first. It is removed by the test that finds it expired. */
  failed = failed || hsetKey(ctx, "keyExpiredTime", kSession, "1");
  PrintSession(ctx, "after its deadline");
  PrintSession(ctx, "asked again");

  char user[ZEPHLANE_VALUE_SIZE] = "";
  failed = failed || zephlaneGetHashField(ctx, kSession, "UserName", user);
  printf("the session of %s is still there\n", user);
  failed = failed || zephlaneDeleteKey(ctx, kSession);
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
