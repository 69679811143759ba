// SPDX-License-Identifier: MIT
//
// Asynchronous tasks. The library keeps no task: its life is the states that callers write into its
// hash, which the first update creates. Nothing here deletes one.
#include <cstdio>
#include <cstring>
#include <ctime>
#include <string_view>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/lists.h>
#include <zephlaneAPI/messages.h>
#include <zephlaneAPI/tasks.h>

using zephlane::ApiError;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kIdSize;

namespace zephlane {
namespace {

constexpr std::size_t kTimestampSize = 256;
constexpr char kFirstMessageId[] = "Processing";
constexpr char kCompletedState[] = "Completed";
constexpr std::size_t kMaximumPairs = 3;

void SetPair(InstanceData* pair, std::string_view field, std::string_view value) {
  CopyCut(pair->aFieldName, field);
  CopyCut(pair->aValue, value);
}

// Leading parts of "Completed" count too, the empty text among them.
bool IsCompleted(std::string_view state) {
  return std::string_view(kCompletedState).starts_with(state);
}

// The fields a state change writes; returns how many.
unsigned int StateFields(const char* state, InstanceData* pairs) {
  SetPair(&pairs[0], "TaskState", state);
  if (!IsCompleted(state)) { return 1; }
  char timestamp[kTimestampSize] = "";
  (void)createEventTimeStamp(timestamp);  // empty when the time cannot be told
  SetPair(&pairs[1], "EndTime", timestamp);
  SetPair(&pairs[2], "TaskStatus", "OK");
  return kMaximumPairs;
}

}  // namespace
}  // namespace zephlane

char* zephlaneCreateAsyncTask(redisContext* ctx, const char* aMessageArg, const char* aChannel) {
  if (!aChannel || !ctx) { return nullptr; }
  zephlane::CArray<char> task_id = zephlane::ZeroedArray<char>(kIdSize);
  if (!task_id) { return nullptr; }
  char collection_id[kIdSize] = "";
  // Nothing that was written is undone when a later step fails.
  const bool created =
      zephlaneGenerateUUID(ctx, task_id.get()) == kDone &&
      zephlaneGenerateUUID(ctx, collection_id) == kDone &&
      zephlaneCreateReturnMessage(ctx, collection_id, zephlane::kFirstMessageId, task_id.get(),
                                  aMessageArg, static_cast<const char*>(nullptr)) == kDone &&
      publishToChannel(ctx, aChannel, collection_id) == kDone;
  return created ? task_id.release() : nullptr;
}

int zephlaneUpdateTaskState(redisContext* ctx, const char* aTaskID, const char* aState) {
  if (!ctx || !aState || !aTaskID) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  InstanceData pairs[zephlane::kMaximumPairs];
  const unsigned int count = zephlane::StateFields(aState, pairs);
  if (createHashTable(ctx, aTaskID, pairs, count) != kDone) {
    ApiError{}(" Create Hash \"%s\" Failed !!!\n", aTaskID);
    return kFailed;
  }
  (void)zephlaneClearETagCache(ctx, aTaskID);  // most tasks have none
  return zephlane::PublishCut(ctx, zephlane::kTaskStateChannel, aTaskID);
}

int createEventTimeStamp(char* aOut) {
  if (!aOut) { return kFailed; }
  const std::time_t now = std::time(nullptr);
  if (now == static_cast<std::time_t>(-1)) { return kFailed; }
  const std::tm* local = std::localtime(&now);
  if (!local) { return kFailed; }
  char date[128] = "";
  char zone[6] = "";  // "+0800"
  (void)std::strftime(date, sizeof(date), "%FT%T", local);
  (void)std::strftime(zone, sizeof(zone), "%z", local);
  (void)std::snprintf(aOut, zephlane::kTimestampSize, "%s%c%c%c:%c%c", date, zone[0], zone[1],
                      zone[2], zone[3], zone[4]);
  return kDone;
}
