// SPDX-License-Identifier: MIT
//
// Connecting. What fails does not stop the steps that follow at once: the password file is looked
// at even when the server was not reached, so that one attempt reports both.
#include <cerrno>
#include <cstdio>
#include <memory>

#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/text.h"

#include <zephlaneAPI/connection.h>

namespace zephlane {
namespace {

constexpr char kServerAddress[] = "127.0.0.1";
constexpr int kServerPort = 6379;
constexpr char kPasswordFile[] = "/tmp/redis.requirepass";

struct CloseConnection {
  void operator()(redisContext* ctx) const noexcept {
    redisFree(ctx);
  }
};
using Connection = std::unique_ptr<redisContext, CloseConnection>;

// Null when the server was not reached.
Connection Reach(const char* ip, int port) {
  Connection connection(redisConnect(ip, port));
  if (!connection) {
    ApiError{}("Connection error: can't allocate redis context\n");
  } else if (connection->err != 0) {
    ApiError{}("Connection error: %s\n", connection->errstr);
    connection.reset();
  }
  return connection;
}

redisContext* Connect(const char* ip, int port) {
  Connection connection = Reach(ip, port);
  const File file(std::fopen(kPasswordFile, "r"));
  if (!file) {
    const int cause = errno;
    ApiError{}("Failed to open %s\n", kPasswordFile);
    errno = cause;  // what the report's output did to it is not the cause
    std::perror("fopen");
    return nullptr;
  }
  char password[kValueSize] = "";
  // An empty file stands for a server without a password.
  if (!std::fgets(password, sizeof(password), file.get())) { return connection.release(); }
  if (!connection) { return nullptr; }
  // A newline that ends the line is sent with it: the password is the line exactly as read.
  const Reply reply = Command(connection.get(), "AUTH %s", password);
  if (!reply || reply.Is(REDIS_REPLY_ERROR)) {
    ApiError{}("Failed to redis authentication!\n");
    return nullptr;
  }
  return connection.release();
}

}  // namespace
}  // namespace zephlane

const struct timeval G_sTimeout = {1, 500000};

redisContext* zephlaneRedisConnect(void) {
  return zephlane::Connect(zephlane::kServerAddress, zephlane::kServerPort);
}

redisContext* zephlaneRedisConnectWithIP(const char* ip, int port) {
  if (!ip) {
    zephlane::ApiError{}("Target IP address is NULL\n");
    return nullptr;
  }
  return zephlane::Connect(ip, port);
}

int zephlaneRedisDisconnect(redisContext* ctx) {
  if (!ctx) { return zephlane::kFailed; }
  redisFree(ctx);
  return zephlane::kDone;
}
