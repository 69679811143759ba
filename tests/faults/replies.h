// SPDX-License-Identifier: MIT
//
// Replies: what the real server answers to the commands of a call, recorded, and what may come in
// the place of any of them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <hiredis/hiredis.h>

#include "faults/servedConnection.h"

namespace zephlane::test {

// One command, by its first word, and the bytes that answered it.
struct Exchange {
  std::string word;
  std::string raw;
};

// Answers from the real server and notes each exchange.
ServedConnection::Handler Recorder(redisContext* store, std::vector<Exchange>* exchanges);

// A reply that comes instead of the right one.
struct BadReply {
  const char* name;
  // The bytes, made from those of the right reply.
  std::string (*Make)(const std::string& right);
  bool then_close = false;
};
std::span<const BadReply> BadReplies();

// Plays recorded exchanges, one of them answered wrongly. A call that goes on differently after
// that gets a recorded answer to a command with the same first word, or +OK. One that does not come
// to an end is cut off.
class Replay {
 public:
  Replay(const std::vector<Exchange>& exchanges, std::size_t bad_index, const BadReply& bad)
      : exchanges_(exchanges),
        bad_index_(bad_index),
        bad_raw_(bad.Make(exchanges[bad_index].raw)),
        closes_(bad.then_close) {}
  ServedConnection::Answer operator()(const ServedConnection::Command& command);
  [[nodiscard]] bool WasCutOff() const {
    return was_cut_off_;
  }
  [[nodiscard]] bool WasBad() const {
    return next_ > bad_index_;
  }

 private:
  [[nodiscard]] std::string_view Right(std::size_t index, std::string_view word) const;

  const std::vector<Exchange>& exchanges_;
  std::size_t bad_index_;
  std::string bad_raw_;
  bool closes_;
  std::size_t next_ = 0;
  bool was_cut_off_ = false;
};

// A command that asks whether the next reply belongs to it.
inline constexpr char kSyncWord[] = "SYNCHRONOUS?";
inline constexpr char kSyncReply[] = "+synchronous\r\n";

}  // namespace zephlane::test
