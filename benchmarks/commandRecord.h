// SPDX-License-Identifier: MIT
//
// The exact commands a call sends, taken from the server itself, and sent again with raw hiredis.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include <hiredis/hiredis.h>

namespace zephlane::bench {

using CommandWords = std::vector<std::string>;

// The commands that reach the server while `run` runs; AUTH is not among them.
std::vector<CommandWords> RecordCommands(const std::function<void()>& run);

// Commands whose argument vectors are laid out beforehand, so that sending them costs what hiredis
// costs and nothing else. Where the library draws a name under its record lock, so does the replay.
class PreparedCommands {
 public:
  explicit PreparedCommands(std::vector<CommandWords> commands);
  PreparedCommands(PreparedCommands&&) = default;
  PreparedCommands& operator=(PreparedCommands&&) = default;

  [[nodiscard]] std::size_t Count() const noexcept {
    return commands_.size();
  }
  // One after the other, each reply awaited and freed.
  void Replay(redisContext* ctx);
  // All sent at once, then as many replies read and freed.
  void ReplayPipelined(redisContext* ctx);

 private:
  struct Prepared {
    std::vector<const char*> words;
    std::vector<std::size_t> lengths;
    const char* lock_before = nullptr;
    bool unlock_after = false;
  };

  std::vector<CommandWords> texts_;
  std::vector<Prepared> commands_;
};

}  // namespace zephlane::bench
