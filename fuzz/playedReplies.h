// SPDX-License-Identifier: MIT
//
// A connection on which all replies have come already, and then its end. What is sent to it is not
// read by anybody, so a call must not send more than the kernel keeps.
#pragma once

#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <string_view>

#include <hiredis/hiredis.h>

#include "fuzz/fuzzInput.h"

namespace zephlane::fuzz {

class PlayedReplies {
 public:
  explicit PlayedReplies(std::string_view replies) {
    int ends[2];
    Require(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) == 0, "sockets are to be had");
    other_end_ = ends[0];
    Require(send(other_end_, replies.data(), replies.size(), MSG_DONTWAIT) ==
                static_cast<ssize_t>(replies.size()),
            "the replies fit into a socket");
    (void)shutdown(other_end_, SHUT_WR);
    ctx_ = redisConnectFd(ends[1]);
    ctx_->flags |= REDIS_BLOCK;
    // For calls that send too much all the same.
    const timeval at_once = {0, 1000};
    (void)setsockopt(ends[1], SOL_SOCKET, SO_SNDTIMEO, &at_once, sizeof(at_once));
  }
  PlayedReplies(const PlayedReplies&) = delete;
  PlayedReplies& operator=(const PlayedReplies&) = delete;
  ~PlayedReplies() {
    redisFree(ctx_);
    (void)close(other_end_);
  }
  [[nodiscard]] redisContext* ctx() {
    return ctx_;
  }

 private:
  int other_end_ = -1;
  redisContext* ctx_ = nullptr;
};

}  // namespace zephlane::fuzz
