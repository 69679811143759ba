// SPDX-License-Identifier: MIT
//
// A server that plays raw replies, one for each command it receives, for what a real server will
// not give on demand. It records the exact bytes sent to it.
#pragma once

#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include <hiredis/hiredis.h>

namespace zephlane::test {

class ScriptedServer {
 public:
  ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;
  ~ScriptedServer();

  [[nodiscard]] redisContext* ctx() {
    return ctx_;
  }
  // Takes the connection out of the server's hands, for functions that close it themselves.
  [[nodiscard]] redisContext* Release();
  // The next command without a scripted reply of its own gets these bytes. A command that nothing
  // is scripted for gets an error reply.
  void WillReply(std::string raw);
  // The next command gets these bytes, perhaps none, and then the end of the connection.
  void WillClose(std::string raw_before = "");
  // All bytes received so far.
  [[nodiscard]] std::string Received();
  // The commands received so far as words in one line each, for sequences that are long.
  [[nodiscard]] std::string Commands();

 private:
  struct Step {
    std::string raw;
    bool close_after = false;
  };
  void Serve();
  bool Answer(const std::string& command);

  std::mutex mutex_;
  std::deque<Step> script_;
  std::string received_;
  int fd_ = -1;
  redisContext* ctx_ = nullptr;
  std::thread thread_;
};

}  // namespace zephlane::test
