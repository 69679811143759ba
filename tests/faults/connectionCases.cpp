// SPDX-License-Identifier: MIT
//
// Connecting, locks, UUIDs and configuration.
#include <fcntl.h>
#include <regex.h>
#include <unistd.h>

#include <utility>

#include "faults/arguments.h"
#include "faults/outcomes.h"

#include <zephlaneAPI/connection.h>
#include <zephlaneAPI/identity.h>

namespace zephlane::test {

namespace {

constexpr char kLockFile[] = "/tmp/everyFunction.lock";

int lock_file = -1;
regex_t expression{};
redisContext* closed_by_call = nullptr;

void OpenLockFile(Stage& /*stage*/) {
  lock_file = open(kLockFile, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
}

void CloseLockFile(Stage& /*stage*/) {
  if (lock_file >= 0) { (void)close(std::exchange(lock_file, -1)); }
  (void)unlink(kLockFile);
}

void CompileUuid(Stage& /*stage*/) {
  (void)regcomp(&expression, "[0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{4}-[0-9a-f]{12}",
                REG_EXTENDED | REG_NOSUB);
}

void FreeExpression(Stage& /*stage*/) {
  regfree(&expression);
}

Outcome Connected(redisContext* connection) {
  if (!connection) { return kFails; }
  const bool is_usable = connection->err == 0;
  redisFree(connection);
  return is_usable ? kAsDocumented : Undocumented("an unusable connection");
}

Outcome GenerateUuid(Stage& stage) {
  IdOut out;
  const int status = zephlaneGenerateUUID(stage.ctx, out.Get());
  // Where the counter stands at its maximum, that is in the output after the failure.
  return StatusAndText(status, out, "", AfterFailure::kAnything);
}

Outcome SplitUuid(Stage& /*stage*/) {
  TextOut<41> out;
  const char* last = splitUUID(kUuid, out.Get());
  if (!last) { return kFails; }
  return last == out.Get() + 35 && out.IsWhole() ? kAsDocumented : Undocumented("another place");
}

Outcome IncrementUuid(Stage& /*stage*/) {
  unsigned int words[8] = {0xffff, 1};
  incrementUUID(words, 0);
  return Success(words[0] == 0 && words[1] == 2);
}

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneRedisConnect",
     .call = [](Stage&) { return Connected(zephlaneRedisConnect()); },
     .traits = kConnects},
    {.name = "zephlaneRedisConnectWithIP",
     .call = [](Stage&) { return Connected(zephlaneRedisConnectWithIP("127.0.0.1", 6379)); },
     .traits = kConnects},
    {.name = "zephlaneRedisDisconnect",
     .prepare = [](Stage&) { closed_by_call = redisConnect("127.0.0.1", 6379); },
     .call = [](Stage&) { return Status(zephlaneRedisDisconnect(closed_by_call)); }},
    {.name = "fileLock",
     .prepare = OpenLockFile,
     .call = [](Stage&) { return Status(fileLock(lock_file, F_SETLK, F_WRLCK), 0, -1); },
     .cleanup = CloseLockFile},
    {.name = "processLock",
     .call =
         [](Stage&) {
           lock_file = processLock(kLockFile);
           return lock_file >= 0 ? kAsDocumented : kFails;
         },
     .cleanup = CloseLockFile},
    {.name = "processUnlock",
     .prepare = [](Stage&) { lock_file = processLock(kLockFile); },
     .call = [](Stage&) { return Status(processUnlock(std::exchange(lock_file, -1)), 0, -1); },
     .cleanup = CloseLockFile},
    {.name = "zephlaneGenerateUUID", .call = GenerateUuid},
    {.name = "splitUUID", .call = SplitUuid},
    {.name = "incrementUUID", .call = IncrementUuid},
    {.name = "isInvalidUUID",
     .prepare = CompileUuid,
     .call = [](Stage&) { return Status(isInvalidUUID(&expression, kUuid), 0, 1); },
     .cleanup = FreeExpression},
    {.name = "zephlaneLoadConfig",
     .content = "HSET defaultSettings name value",
     .call =
         [](Stage& s) {
           ValueOut out;
           const int status = zephlaneLoadConfig(s.ctx, "name", out.Get(), ZEPHLANE_VALUE_SIZE);
           return StatusAndText(status, out, "value");
         }},
    {.name = "zephlaneGetLinksObject",
     .content = "SADD ZephlaneRootServices root",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(zephlaneGetLinksObject(s.ctx, out.Get()), out, "root");
         }},
};

}  // namespace

std::span<const FunctionCase> ConnectionCases() {
  return kCases;
}

}  // namespace zephlane::test
