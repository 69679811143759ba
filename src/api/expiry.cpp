// SPDX-License-Identifier: MIT
//
// Deadlines of objects, kept in one hash for all; and the script, loaded into Redis by others, that
// turns JSON into objects. An object whose deadline has come is not deleted here: its owner
// decides.
#include <ctime>
#include <string_view>

#include "api/commonSteps.h"
#include "api/monotonicDeadline.h"
#include "redis/command.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/annotation.h>
#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/expiry.h>

using zephlane::ApiError;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kValueSize;

namespace zephlane {
namespace {

constexpr int kDeadlineUnknown = -1;
constexpr char kConvertScript[] = "ConvertJsonToRedis";

// The raw monotonic clock: neither changes of the wall clock nor its slewing move it.
bool Now(std::uint32_t* milliseconds, int line = __builtin_LINE()) {
  std::timespec time{};
  if (clock_gettime(CLOCK_MONOTONIC_RAW, &time) != 0) {
    ApiError{line}("Get time failed\n");
    return false;
  }
  *milliseconds = Milliseconds(time);
  return true;
}

// Strings count as objects here.
bool Exists(redisContext* ctx, const char* key, int line = __builtin_LINE()) {
  if (isObject(ctx, key) >= 0) { return true; }
  ApiError{line}("Empty object.\n");
  return false;
}

}  // namespace
}  // namespace zephlane

int zephlaneAddMonotonicExpiredTime(redisContext* ctx, const char* aKey,
                                    unsigned int nMilliseconds) {
  if (!ctx || !aKey || nMilliseconds == 0) {
    ApiError{}(" invalid input !!\n");
    return kFailed;
  }
  if (!zephlane::Exists(ctx, aKey)) { return kFailed; }
  std::uint32_t now = 0;
  if (!zephlane::Now(&now)) { return kFailed; }
  char deadline[15] = "";
  zephlane::FormatDeadline(now + nMilliseconds, deadline);
  return hsetKey(ctx, zephlane::kExpiredTimes, aKey, deadline);
}

int zephlaneIsMonotonicTimeExpired(redisContext* ctx, const char* aKey) {
  if (!ctx || !aKey) {
    ApiError{}(" NULL input !!\n");
    return zephlane::kDeadlineUnknown;
  }
  if (!zephlane::Exists(ctx, aKey)) { return zephlane::kDeadlineUnknown; }
  char deadline[kValueSize] = "";
  // No deadline means expired.
  if (getHashField(ctx, zephlane::kExpiredTimes, aKey, deadline) != kDone) { return 1; }
  std::uint32_t now = 0;
  if (!zephlane::Now(&now)) { return zephlane::kDeadlineUnknown; }
  if (!zephlane::HasDeadlineCome(deadline, now)) { return 0; }
  if (removeFieldFromHash(ctx, zephlane::kExpiredTimes, aKey) != kDone) {
    ApiError{}("Delete expired object failed\n\n");
  }
  return 1;
}

int zephlaneConvertJsonToRedis(redisContext* ctx, const char* aSourceKey, const char* aTargetKey) {
  if (!ctx || !aSourceKey || !aTargetKey) {
    ApiError{}(" NULL input !!\n");
    return kFailed;
  }
  char script_hash[kValueSize] = "";
  if (getHashField(ctx, zephlane::kScriptHashes, zephlane::kConvertScript, script_hash) != kDone) {
    ApiError{}(" Get SHA failed !!\n");
    return kFailed;
  }
  const zephlane::Reply reply =
      zephlane::Command(ctx, "evalsha %s 2 %s %s", script_hash, aSourceKey, aTargetKey);
  if (!reply) {
    ApiError{}(" NULL reply !!\n");
    return kFailed;
  }
  if (reply.Is(REDIS_REPLY_ERROR)) {
    const std::string_view text = reply.Text();
    ApiError{}(" %.*s !!\n", static_cast<int>(text.size()), text.data());
    return kFailed;
  }
  return kDone;
}
