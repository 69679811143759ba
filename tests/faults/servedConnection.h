// SPDX-License-Identifier: MIT
//
// A connection whose other end is a function: it is given each command and says what is sent back.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <thread>

#include <hiredis/hiredis.h>

namespace zephlane::test {

class ServedConnection {
 public:
  struct Command {
    std::string_view word;  // its first
    std::string_view raw;   // the whole, as it was sent
  };
  struct Answer {
    std::string_view raw;  // stays valid until the next command
    bool then_close = false;
  };
  // Runs in a thread of its own until the connection ends.
  using Handler = std::function<Answer(const Command& command)>;

  explicit ServedConnection(Handler handler);
  ServedConnection(const ServedConnection&) = delete;
  ServedConnection& operator=(const ServedConnection&) = delete;
  ~ServedConnection();
  [[nodiscard]] redisContext* ctx() {
    return ctx_;
  }
  // Takes the connection out of the hands of this object, for functions that close it.
  [[nodiscard]] redisContext* Release();
  // Ends the connection and waits for the end of the thread.
  void End();

 private:
  void Serve();
  [[nodiscard]] bool ServeCommands(std::string* pending);

  Handler handler_;
  int fd_ = -1;
  redisContext* ctx_ = nullptr;
  std::thread thread_;
};

}  // namespace zephlane::test
