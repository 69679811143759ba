// SPDX-License-Identifier: MIT
//
// Singly linked lists that other threads walk while they grow. An entry is complete before the link
// to it is stored with release; who walks loads links with acquire. The links are plain pointers,
// because the heads are exported to C callers. Appending and removing take turns under a lock of
// the list's owner; freeing an entry that another thread walks is not guarded.
#pragma once

#include <atomic>

#include "support/owners.h"

namespace zephlane {

template <typename Entry>
[[nodiscard]] Entry* Follow(Entry*& link) noexcept {
  return std::atomic_ref<Entry*>(link).load(std::memory_order_acquire);
}

template <typename Entry>
void Publish(Entry*& link, Entry* entry) noexcept {
  std::atomic_ref<Entry*>(link).store(entry, std::memory_order_release);
}

// The first entry that `matches`; null when none does.
template <typename Entry, typename Predicate>
[[nodiscard]] Entry* FindEntry(Entry*& head, Predicate matches) noexcept {
  Entry* entry = Follow(head);
  while (entry != nullptr && !matches(*entry)) { entry = Follow(entry->next); }
  return entry;
}

// Takes `entry`, whose `next` is null, to the end of the list. There is no pointer to the last
// entry that a removal could leave behind.
template <typename Entry>
void AppendEntry(Entry*& head, CRecord<Entry> entry) noexcept {
  Entry** link = &head;
  while (*link != nullptr) { link = &(*link)->next; }
  Publish(*link, entry.release());
}

}  // namespace zephlane
