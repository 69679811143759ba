// SPDX-License-Identifier: MIT
//
// Error reports: one line where the failure is seen, its text as a literal at the call so that grep
// finds it. Usage, with braces because parentheses would parse as a declaration:
//   ApiError{}("Failed to open %s\n", path);
//   InterpreterError{kSource}("tagName is NULL\n");
//   InterpreterError{kSource, 894}("Get JSON simple string fail\n");
// A number given explicitly is the message's own: log filters in the field key on it, so it never
// follows the source line.
#pragma once

namespace zephlane {

// A report of the API module on standard output.
class ApiError {
 public:
  explicit ApiError(int line = __builtin_LINE()) noexcept : line_(line) {}
  [[gnu::format(printf, 2, 3)]] void operator()(const char* format, ...) const;

 private:
  int line_;
};

// A report of an interpreter module on standard error; `source` is the module's own file name.
class InterpreterError {
 public:
  explicit InterpreterError(const char* source, int line = __builtin_LINE()) noexcept
      : source_(source), line_(line) {}
  [[gnu::format(printf, 2, 3)]] void operator()(const char* format, ...) const;

 private:
  const char* source_;
  int line_;
};

}  // namespace zephlane
