/* SPDX-License-Identifier: MIT */
/*
 * A connection with a time-out. The library's own connections wait for an answer as long as it
 * takes; a caller that must go on opens one itself and hands it to the library. Here a listening
 * socket that nobody serves plays a server that hangs.
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/timeOut
 */
#define _POSIX_C_SOURCE 200809L

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <zephlaneAPI.h>

static const char kFan[] = "10000000-0000-0000-0000-000000000007";
static const int kRedisPort = 6379;

/* A connection on which nothing waits longer than G_sTimeout; NULL when there is none to be had. */
static redisContext* ConnectWithTimeOut(int port) {
  redisContext* ctx = redisConnectWithTimeout("127.0.0.1", port, G_sTimeout);
  if (ctx != NULL && ctx->err == 0 && redisSetTimeout(ctx, G_sTimeout) == REDIS_OK) { return ctx; }
  printf("cannot connect: %s\n", ctx != NULL ? ctx->errstr : "out of memory");
  if (ctx != NULL) { redisFree(ctx); }
  return NULL;
}

/* What zephlaneRedisConnect() would do with the password; 0 when the server takes it. */
static int Authenticate(redisContext* ctx) {
  char password[1024] = "";
  FILE* file = fopen("/tmp/redis.requirepass", "r");
  if (file == NULL) { return 1; }
  const int has_password = fgets(password, sizeof(password), file) != NULL;
  fclose(file);
  if (!has_password) { return 0; }
  redisReply* reply = redisCommand(ctx, "AUTH %s", password);
  const int failed = reply == NULL || reply->type == REDIS_REPLY_ERROR;
  if (reply != NULL) { freeReplyObject(reply); }
  return failed;
}

/* Writes and reads one field; every function of the library takes such a connection. */
static void UseStore(redisContext* ctx) {
  const InstanceData fan[] = {{"Reading", "2400"}};
  char reading[ZEPHLANE_VALUE_SIZE] = "";
  if (createHashTable(ctx, kFan, fan, 1) != 0 || getHashField(ctx, kFan, "Reading", reading) != 0) {
    /* Whatever the reason was, a connection with an error stays as it is: it only can be closed. */
    printf("no answer within %ld.%ld s\n", (long)G_sTimeout.tv_sec,
           (long)G_sTimeout.tv_usec / 100000);
    return;
  }
  printf("the fan turns at %s rpm\n", reading);
}

/* A socket whose connections the kernel accepts and nobody answers; its port through `port`. */
static int ListenAndHang(int* port) {
  struct sockaddr_in address;
  socklen_t size = sizeof(address);
  memset(&address, 0, sizeof(address));
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int listener = socket(AF_INET, SOCK_STREAM, 0);
  if (listener < 0 || bind(listener, (const struct sockaddr*)&address, size) != 0 ||
      listen(listener, 1) != 0 || getsockname(listener, (struct sockaddr*)&address, &size) != 0) {
    return -1;
  }
  *port = ntohs(address.sin_port);
  return listener;
}

int main(void) {
  setvbuf(stdout, NULL, _IOLBF, 0);
  int port = 0;
  const int hanging = ListenAndHang(&port);
  redisContext* ctx = hanging < 0 ? NULL : ConnectWithTimeOut(port);
  if (ctx == NULL) { return EXIT_FAILURE; }
  printf("a server that hangs: ");
  UseStore(ctx);
  zephlaneRedisDisconnect(ctx);
  close(hanging);

  ctx = ConnectWithTimeOut(kRedisPort);
  if (ctx == NULL) { return EXIT_FAILURE; }
  const int failed = Authenticate(ctx);
  printf("a server that works: ");
  if (failed) { printf("wrong password\n"); }
  if (!failed) { UseStore(ctx); }
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
