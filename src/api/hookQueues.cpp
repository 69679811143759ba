// SPDX-License-Identifier: MIT
//
// The sending side of the hooks: which queues the store lists for a UUID, the queues this process
// has opened for sending, and the notification of all of them. Beside it the syntax checks and
// channels that go with notifications. Failures of the queue calls go through perror(), all others
// are the result alone.
#include "api/hookQueues.h"

#include <fcntl.h>
#include <pthread.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <span>
#include <string_view>
#include <type_traits>

#include "api/commonSteps.h"
#include "api/publishedList.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/hooks.h>
#include <zephlaneAPI/objects.h>

using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kNoQueue;

// The queues opened for sending, each for the life of the process. Entries are appended under
// updateMsgQueueLock and looked up without it.
OpenedQueueInfo* openedQueueInfoList = nullptr;
pthread_mutex_t updateMsgQueueLock = PTHREAD_MUTEX_INITIALIZER;

namespace zephlane {

QueueListKey QueueListKeyOf(const char* uuid, int oem) noexcept {
  QueueListKey key;
  (void)std::snprintf(key.data(), key.size(), "%s%s", uuid,
                      oem == kOem ? "-oem-mqList" : "-mqList");
  return key;
}

namespace {

static_assert(std::is_same_v<mqd_t, int>);
static_assert(offsetof(OpenedQueueInfo, mqd) == 0 && offsetof(OpenedQueueInfo, name) == 4 &&
              sizeof(OpenedQueueInfo::name) == kQueueNameSize &&
              offsetof(OpenedQueueInfo, next) == (sizeof(void*) == 8 ? 264 : 260));

constexpr unsigned int kSendPriority = 0;

constexpr std::size_t kMessageIdLength = 5;

// A return channel: a UUID, a hyphen and two digits.
constexpr std::size_t kChannelLength = 39;
constexpr std::string_view kChannelDigits = "0123456789abcdef";

// The queues listed for a UUID.
struct QueueList {
  CArray<SetData> names;  // null when there is none or they cannot be read
  unsigned int count = 0;
};

QueueList OemQueuesOf(redisContext* ctx, const char* uuid) {
  const QueueListKey key = QueueListKeyOf(uuid, kOem);
  QueueList queues;
  queues.names = ReadMembers(ctx, key.data(), &queues.count);
  return queues;
}

// The descriptor to send to a queue by; kNoQueue when there is none, or none can be recorded.
mqd_t OpenForSending(const char* name) {
  const mqd_t opened = getOpenedQueueID(name);
  if (opened != kNoQueue) { return opened; }
  MessageQueue queue(mq_open(name, O_RDWR));
  if (!queue) {
    std::perror("open queue failed");
    return kNoQueue;
  }
  return updateOpenedMsgQueueTable(queue.Get(), name) == kDone ? queue.Release() : kNoQueue;
}

// Sends as many bytes as the queue's messages have: the first ones of ours, or ours and zeros.
bool Send(mqd_t queue, const OemHookMessage& message, const timespec& deadline) {
  mq_attr attributes{};
  if (mq_getattr(queue, &attributes) != 0) { return false; }
  const auto size = static_cast<std::size_t>(attributes.mq_msgsize);
  const char* bytes = message.uuid;
  CArray<char> padded;
  if (size > sizeof(message)) {
    padded = ZeroedArray<char>(size);
    if (!padded) { return false; }
    std::memcpy(padded.get(), &message, sizeof(message));
    bytes = padded.get();
  }
  return mq_timedsend(queue, bytes, size, kSendPriority, &deadline) == 0;
}

bool Notify(const char* name, const OemHookMessage& message, const timespec& deadline) {
  const mqd_t queue = OpenForSending(name);
  if (queue == kNoQueue) { return false; }
  if (!Send(queue, message, deadline)) {
    std::perror("queue send failed");
    return false;
  }
  return true;
}

bool AllGiven(std::initializer_list<const void*> pointers) {
  return std::find(pointers.begin(), pointers.end(), nullptr) == pointers.end();
}

}  // namespace
}  // namespace zephlane

int mappingMsgQueueToUUID(redisContext* ctx, const char* aUuid, const char* aQueueName, int nOem) {
  if (!aUuid || !aQueueName) { return kFailed; }
  SetData name{};
  zephlane::CopyCut(name.aObjectID, aQueueName);
  return zephlaneCreateSetTable(ctx, zephlane::QueueListKeyOf(aUuid, nOem).data(), &name, 1);
}

int getOpenedQueueID(const char* aName) {
  if (!aName) { return kNoQueue; }
  const OpenedQueueInfo* const opened =
      zephlane::FindEntry(openedQueueInfoList, [&](const OpenedQueueInfo& entry) {
        return std::strncmp(entry.name, aName, zephlane::kQueueNameSize) == 0;
      });
  return opened ? opened->mqd : kNoQueue;
}

int updateOpenedMsgQueueTable(mqd_t mqd, const char* aName) {
  if (!aName) { return kFailed; }
  zephlane::CRecord<OpenedQueueInfo> entry = zephlane::ZeroedRecord<OpenedQueueInfo>();
  if (!entry) { return kFailed; }
  entry->mqd = mqd;
  zephlane::CopyCut(entry->name, aName);
  const zephlane::MutexHold hold(updateMsgQueueLock);
  zephlane::AppendEntry(openedQueueInfoList, std::move(entry));
  return kDone;
}

int zephlaneOemMessageHandler(redisContext* ctx, const char* aUuid, const char* aMsgId,
                              const char* aArg1, const char* aArg2, const char* aArg3) {
  return zephlaneTriggerOemHookFunc(ctx, aUuid, aMsgId, aArg1, aArg2, aArg3);
}

int zephlaneTriggerOemHookFunc(redisContext* ctx, const char* aUuid, const char* aMsgId,
                               const char* aArg1, const char* aArg2, const char* aArg3) {
  if (!zephlane::AllGiven({ctx, aUuid, aMsgId, aArg1, aArg2, aArg3})) { return kFailed; }
  const zephlane::QueueList queues = zephlane::OemQueuesOf(ctx, aUuid);
  if (!queues.names) { return kFailed; }
  OemHookMessage message{};
  zephlane::CopyCut(message.uuid, aUuid);
  zephlane::CopyCut(message.msgId, aMsgId);
  zephlane::CopyCut(message.arg1, aArg1);
  zephlane::CopyCut(message.arg2, aArg2);
  zephlane::CopyCut(message.arg3, aArg3);
  // The deadline is the present: a full queue refuses the message instead of blocking its sender.
  timespec deadline{};
  if (clock_gettime(CLOCK_REALTIME, &deadline) != 0) { return kFailed; }
  bool all_notified = true;
  for (unsigned int i = queues.count; i > 0; --i) {
    if (!zephlane::Notify(queues.names[i - 1].aObjectID, message, deadline)) {
      all_notified = false;
    }
  }
  return all_notified ? kDone : kFailed;
}

int zephlaneHasOemMessageHandler(redisContext* ctx, const char* aUuid) {
  if (!ctx || !aUuid) { return kFailed; }
  unsigned int count = 0;
  const zephlane::QueueListKey key = zephlane::QueueListKeyOf(aUuid, zephlane::kOem);
  return getInstanceCount(ctx, key.data(), &count) == kDone && count > 0 ? kDone : kFailed;
}

int zephlanePublishToChannel(redisContext* ctx, const char* aChannel, const char* aMessage) {
  return publishToChannel(ctx, aChannel, aMessage);
}

// Further arguments have no meaning and are not looked at.
int zephlaneSubscribeFromChannel(redisContext* ctx, const char* aChannel, ...) {
  return subscribeFromChannel(ctx, aChannel);
}

int isInvalidReturnChannel(const regex_t* preg, const char* aText) {
  if (!preg || !aText) { return 1; }
  const std::string_view text(aText);
  if (text.size() != zephlane::kChannelLength || text[zephlane::kIdLength] != '-') { return 1; }
  const std::string_view digits = text.substr(zephlane::kIdLength + 1);
  if (digits.find_first_not_of(zephlane::kChannelDigits) != std::string_view::npos) { return 1; }
  return regexec(preg, aText, 0, nullptr, 0) == 0 ? 0 : 1;
}

int isInvalidMsgID(const char* aText) {
  if (!aText) { return 1; }
  const std::string_view text(aText);
  // By code order: what lies between the digits and the letters, upper-case ones included, passes.
  const bool valid = text.size() <= zephlane::kMessageIdLength &&
                     std::all_of(text.begin(), text.end(), [](char character) {
                       return character >= '0' && character <= 'f';
                     });
  return valid ? 0 : 1;
}
