// SPDX-License-Identifier: MIT
//
// What the receiving and the sending side of the hooks share: the owner of a message queue's
// descriptor, the names of queues, and the sets of the store that list them.
#pragma once

#include <mqueue.h>

#include <array>
#include <cstddef>
#include <utility>

namespace zephlane {

inline constexpr mqd_t kNoQueue = -1;

// Selects the OEM family in the functions that serve both; any other value is the plain one.
inline constexpr int kOem = 1;
inline constexpr int kPlain = 0;

class MessageQueue {
 public:
  explicit MessageQueue(mqd_t descriptor) noexcept : descriptor_(descriptor) {}
  MessageQueue(const MessageQueue&) = delete;
  MessageQueue& operator=(const MessageQueue&) = delete;
  ~MessageQueue() {
    if (descriptor_ != kNoQueue) { (void)mq_close(descriptor_); }
  }
  explicit operator bool() const noexcept {
    return descriptor_ != kNoQueue;
  }
  [[nodiscard]] mqd_t Get() const noexcept {
    return descriptor_;
  }
  [[nodiscard]] mqd_t Release() noexcept {
    return std::exchange(descriptor_, kNoQueue);
  }

 private:
  mqd_t descriptor_;
};

inline constexpr std::size_t kQueueNameSize = 256;

// The key of the set that lists the queues of a UUID, cut to 254 characters.
using QueueListKey = std::array<char, 255>;
[[nodiscard]] QueueListKey QueueListKeyOf(const char* uuid, int oem) noexcept;

// Calls the handler that is registered for a received message, if there is one. At least as many
// bytes as a message of the family has, and a zero behind all that was received.
void DeliverPlain(char* bytes);
void DeliverOem(char* bytes);

}  // namespace zephlane
