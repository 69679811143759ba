// SPDX-License-Identifier: MIT
//
// The process's standard output and standard error, kept apart: standard output carries what was
// asked for and nothing else; the tool's messages and all that the library prints go to standard
// error.
#pragma once

#include <string>
#include <string_view>

namespace zephlane::tool {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitBadUsage = 2;

class Console {
 public:
  // From here on, what is printed on the descriptor of standard output goes to standard error.
  Console();
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;
  ~Console();

  // Data. The first failure is said on standard error; what follows it is dropped.
  void Out(std::string_view data);
  // A message to the user: "zephlane: " and the text, with lines of advice below it.
  void Tell(std::string_view message);
  // Text as it is on standard error.
  void Err(std::string_view text);

  [[nodiscard]] bool OutFailed() const {
    return out_failed_;
  }
  [[nodiscard]] bool OutIsTerminal() const {
    return out_is_terminal_;
  }
  [[nodiscard]] bool ErrIsTerminal() const {
    return err_is_terminal_;
  }
  // Width of the terminal on standard error.
  [[nodiscard]] unsigned ErrColumns() const;

  // Gives both descriptors to `fd` for what the library prints, and takes them back.
  void DivertPrinting(int fd);
  void TakeBackPrinting();

 private:
  int out_;
  int err_;
  bool out_is_terminal_;
  bool err_is_terminal_;
  bool out_failed_ = false;
};

}  // namespace zephlane::tool
