// SPDX-License-Identifier: MIT
//
// The receiving side of the hooks: tables of handlers, their registration, and one receiver thread
// for each of the two families. The first registration of a family opens its queue and starts its
// thread; both then stay for the life of the process. Nothing here is reported in the log's format:
// failures of the queue calls go through perror(), all others are the result alone.
#include "api/hookQueues.h"

#include <fcntl.h>
#include <libgen.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <span>
#include <utility>

#include "api/publishedList.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/hooks.h>

using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kNoQueue;

// The tables. Changed under the mutex of their family; the receiver thread walks them without it.
HookFunctionEntry* zephlaneFunctionTable = nullptr;
OemHookFunctionEntry* zephlaneOemFunctionTable = nullptr;

// The queue of each family. Set before its receiver thread starts; the OEM one is taken back by
// zephlaneOemHookFunctionUnregister(), under its mutex, while that thread reads it.
mqd_t mqID = kNoQueue;
mqd_t OemMqID = kNoQueue;

// Whether a family has its queue and thread. Never reset. Guarded by the mutex of the family.
int hookFunctionInitFlag = 0;
int hookOemFunctionInitFlag = 0;

// Each guards the table, queue, flag and queue name of one family.
pthread_mutex_t zephlaneHookFuncInitLock = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t zephlaneOemHookFuncInitLock = PTHREAD_MUTEX_INITIALIZER;

namespace zephlane {
namespace {

// Messages go between processes: fields lie back to back, on every machine.
static_assert(offsetof(HookMessage, uuid) == 0 && offsetof(HookMessage, msgId) == 37 &&
              offsetof(HookMessage, arg1) == 43 && offsetof(HookMessage, arg2) == 80 &&
              sizeof(HookMessage) == 120);
static_assert(offsetof(OemHookMessage, uuid) == 0 && offsetof(OemHookMessage, msgId) == 37 &&
              offsetof(OemHookMessage, arg1) == 43 && offsetof(OemHookMessage, arg2) == 80 &&
              offsetof(OemHookMessage, arg3) == 117 && sizeof(OemHookMessage) == 157);
// Entries are reached through exported heads.
static_assert(offsetof(HookFunctionEntry, uuid) == 0 &&
              offsetof(HookFunctionEntry, handler) == 40 &&
              offsetof(HookFunctionEntry, next) == 40 + sizeof(void*));
static_assert(offsetof(OemHookFunctionEntry, uuid) == 0 &&
              offsetof(OemHookFunctionEntry, handler) == 40 &&
              offsetof(OemHookFunctionEntry, next) == 40 + sizeof(void*));

constexpr mode_t kQueueMode = 0770;
constexpr long kQueueLength = 10;

// Entries that an unregistration looks at.
constexpr int kUnregistrationReach = 2;

void* ReceivePlain(void* buffer);
void* ReceiveOem(void* buffer);

// One of the two families. All is guarded by `lock`, but for the two that the receiver thread
// reads: the queue's descriptor, and `receive_size`, which stays as it is once the thread runs.
struct Family {
  pthread_mutex_t& lock;
  int& initialised;
  mqd_t& queue;
  const char* queue_prefix;
  int oem;
  std::size_t message_size;
  void* (*receiver)(void*);
  char queue_name[kQueueNameSize];
  std::size_t receive_size;
};

constinit Family plain_family = {.lock = zephlaneHookFuncInitLock,
                                 .initialised = hookFunctionInitFlag,
                                 .queue = mqID,
                                 .queue_prefix = "/mq_",
                                 .oem = kPlain,
                                 .message_size = sizeof(HookMessage),
                                 .receiver = ReceivePlain,
                                 .queue_name = "",
                                 .receive_size = 0};
constinit Family oem_family = {.lock = zephlaneOemHookFuncInitLock,
                               .initialised = hookOemFunctionInitFlag,
                               .queue = OemMqID,
                               .queue_prefix = "/oemmq_",
                               .oem = kOem,
                               .message_size = sizeof(OemHookMessage),
                               .receiver = ReceiveOem,
                               .queue_name = "",
                               .receive_size = 0};

// Tables

// `uuid` may lack a terminator when it has 37 characters.
template <typename Entry>
Entry* EntryOf(Entry*& table, const char* uuid) {
  return FindEntry(
      table, [&](const Entry& entry) { return std::strncmp(entry.uuid, uuid, kIdSize) == 0; });
}

template <typename Entry, typename Handler>
int AddHandler(Entry*& table, const char* uuid, Handler handler) {
  if (EntryOf(table, uuid)) { return kFailed; }
  CRecord<Entry> entry = ZeroedRecord<Entry>();
  if (!entry) { return kFailed; }
  CopyCut(entry->uuid, uuid);
  entry->handler = handler;
  AppendEntry(table, std::move(entry));
  return kDone;
}

// A third or later entry stays registered: unregistration is offered for the first two only.
template <typename Entry>
void RemoveHandler(Entry*& table, const char* uuid) {
  Entry** link = &table;
  for (int i = 0; i < kUnregistrationReach && *link != nullptr; ++i) {
    Entry* const entry = *link;
    if (std::strncmp(entry->uuid, uuid, kIdSize) == 0) {
      Publish(*link, entry->next);
      const CRecord<Entry> removed(entry);
      return;
    }
    link = &entry->next;
  }
}

// The handlers of both families pass through one function type; each is called as its own.
template <typename To, typename From>
To HandlerCast(From handler) {
  return reinterpret_cast<To>(reinterpret_cast<void (*)()>(handler));
}

// Receiving

void Call(HookFunction handler, HookMessage& message) {
  (void)handler(message.msgId, message.arg1, message.arg2);
}

void Call(OemHookFunction handler, OemHookMessage& message) {
  (void)handler(message.msgId, message.arg1, message.arg2, message.arg3);
}

template <typename Message, typename Entry>
void Deliver(Entry*& table, char* bytes) {
  auto* const message = reinterpret_cast<Message*>(bytes);
  const Entry* const entry = EntryOf(table, message->uuid);
  // The entry is not looked at after the call: the handler may have unregistered itself.
  if (entry && entry->handler) { Call(entry->handler, *message); }
}

[[noreturn]] void Receive(const Family& family, CArray<char> buffer, void (*deliver)(char*)) {
  for (;;) {
    // Zeros end every text, however short the message and however full its fields.
    std::memset(buffer.get(), 0, family.receive_size + 1);
    const mqd_t queue = std::atomic_ref<mqd_t>(family.queue).load(std::memory_order_relaxed);
    if (mq_receive(queue, buffer.get(), family.receive_size, nullptr) < 0) {
      // No pause and no end, not even once the queue is closed: only the process ends its receiver.
      std::perror("mq_receive failed");
      continue;
    }
    deliver(buffer.get());
  }
}

void* ReceivePlain(void* buffer) {
  Receive(plain_family, CArray<char>(static_cast<char*>(buffer)), DeliverPlain);
}

void* ReceiveOem(void* buffer) {
  Receive(oem_family, CArray<char>(static_cast<char*>(buffer)), DeliverOem);
}

// Registering

// The prefix and the base name of the program, cut to what `out` holds. False when memory is out.
[[nodiscard]] bool WriteQueueName(const char* prefix, const char* program, std::span<char> out) {
  // A copy, because the base name is made by cutting its argument.
  const CString path = Duplicate(program ? program : "");
  if (!path) { return false; }
  (void)std::snprintf(out.data(), out.size(), "%s%s", prefix, __xpg_basename(path.get()));
  return true;
}

// False, with errno as the opening left it, when there is no queue and none can be made.
[[nodiscard]] bool OpenQueue(Family& family) {
  mq_attr attributes{};
  attributes.mq_flags = O_NONBLOCK;  // ignored at the creation: the queue blocks its receiver
  attributes.mq_maxmsg = kQueueLength;
  attributes.mq_msgsize = static_cast<long>(family.message_size);
  family.queue = mq_open(family.queue_name, O_RDWR | O_CREAT | O_EXCL, kQueueMode, &attributes);
  if (family.queue != kNoQueue) { return true; }
  if (errno != EEXIST) { return false; }
  // The queue of an earlier run, with the attributes it has. One that cannot be opened is not
  // refused: the receiver reports it on every turn.
  family.queue = mq_open(family.queue_name, O_RDWR);
  return true;
}

// Starts the thread that receives from the family's queue for the life of the process.
[[nodiscard]] bool StartReceiver(Family& family) {
  mq_attr attributes{};  // left as it is when there is no queue
  (void)mq_getattr(family.queue, &attributes);
  // A queue of an earlier run may have messages of another size.
  family.receive_size =
      std::max(static_cast<std::size_t>(attributes.mq_msgsize), family.message_size);
  CArray<char> buffer = UnfilledArray<char>(family.receive_size + 1);
  pthread_t thread{};
  if (!buffer || pthread_create(&thread, nullptr, family.receiver, buffer.get()) != 0) {
    return false;
  }
  (void)buffer.release();  // the thread owns it
  return true;
}

[[nodiscard]] bool Initialise(Family& family, redisContext* ctx, const char* uuid, char** argv) {
  if (!argv || !WriteQueueName(family.queue_prefix, argv[0], family.queue_name)) { return false; }
  if (!OpenQueue(family)) {
    std::perror("open queue error:");
    return false;
  }
  if (!StartReceiver(family)) {
    const MessageQueue unused(std::exchange(family.queue, kNoQueue));  // closes it
    return false;
  }
  // Names that earlier runs left. Those listed under other UUIDs stay.
  if (uuid) { (void)deleteKey(ctx, QueueListKeyOf(uuid, family.oem).data()); }
  family.initialised = 1;
  return true;
}

int Register(Family& family, redisContext* ctx, const char* uuid, char** argv,
             HookFunction handler) {
  const MutexHold hold(family.lock);
  // The queue and its thread are there before the UUID is looked at, and stay when it is refused.
  if (family.initialised == 0 && !Initialise(family, ctx, uuid, argv)) { return kFailed; }
  const bool registered =
      uuid && std::strlen(uuid) < kIdSize &&
      mappingMsgQueueToUUID(ctx, uuid, family.queue_name, family.oem) == kDone &&
      zephlaneUpdateFuncInfo(uuid, handler, family.oem) == kDone;
  return registered ? kDone : kFailed;
}

}  // namespace

void DeliverPlain(char* bytes) {
  Deliver<HookMessage>(zephlaneFunctionTable, bytes);
}

void DeliverOem(char* bytes) {
  Deliver<OemHookMessage>(zephlaneOemFunctionTable, bytes);
}

}  // namespace zephlane

int zephlaneHookFunctionRegister(redisContext* ctx, const char* aUuid, char** argv,
                                 HookFunction handler) {
  return zephlane::Register(zephlane::plain_family, ctx, aUuid, argv, handler);
}

int zephlaneOemHookFunctionRegister(redisContext* ctx, const char* aUuid, char** argv,
                                    OemHookFunction handler) {
  if (!aUuid || !ctx || !argv || !handler) { return kFailed; }
  return zephlane::Register(zephlane::oem_family, ctx, aUuid, argv,
                            zephlane::HandlerCast<HookFunction>(handler));
}

int zephlaneOemHookFunctionUnregister(redisContext* ctx, const char* aUuid, char** argv) {
  if (!ctx || !aUuid || !argv) { return kFailed; }
  const zephlane::MutexHold hold(zephlaneOemHookFuncInitLock);
  if (hookOemFunctionInitFlag == 0) { return kDone; }
  char name[zephlane::kQueueNameSize];
  if (!zephlane::WriteQueueName(zephlane::oem_family.queue_prefix, argv[0], name)) {
    return kFailed;
  }
  (void)deleteInstanceInSet(ctx, zephlane::QueueListKeyOf(aUuid, zephlane::kOem).data(), name);
  zephlane::RemoveHandler(zephlaneOemFunctionTable, aUuid);
  // The flag stays set and the receiver runs on without a queue: the family does not start again in
  // this process. The number is given up, so that what is opened under it next is left alone.
  const mqd_t queue = std::atomic_ref<mqd_t>(OemMqID).exchange(kNoQueue, std::memory_order_relaxed);
  if (mq_close(queue) != 0) { std::perror("close queue error:"); }
  if (mq_unlink(name) != 0) { std::perror("remove queue error:"); }
  return kDone;
}

int zephlaneUpdateFuncInfo(const char* aUuid, HookFunction handler, int nOem) {
  if (!aUuid) { return kFailed; }
  if (nOem != zephlane::kOem) {
    return zephlane::AddHandler(zephlaneFunctionTable, aUuid, handler);
  }
  return zephlane::AddHandler(zephlaneOemFunctionTable, aUuid,
                              zephlane::HandlerCast<OemHookFunction>(handler));
}

int isUUIDExist(const char* aUuid, int nOem) {
  if (!aUuid) { return 0; }
  const bool exists = nOem == zephlane::kOem
                          ? zephlane::EntryOf(zephlaneOemFunctionTable, aUuid) != nullptr
                          : zephlane::EntryOf(zephlaneFunctionTable, aUuid) != nullptr;
  return exists ? 1 : 0;
}
