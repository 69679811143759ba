// SPDX-License-Identifier: MIT
//
// Runs the zephlane tool as a process of its own and takes what it prints.
#pragma once

#include <string>
#include <vector>

namespace zephlane::test {

struct ToolRun {
  int status = -1;  // exit status; 128 and the signal's number when a signal ended it
  std::string out;
  std::string err;
};

ToolRun RunTool(const std::vector<std::string>& arguments);

// A tool that runs beside the case; one that was not waited for is interrupted and waited for.
class StartedTool {
 public:
  explicit StartedTool(const std::vector<std::string>& arguments);
  StartedTool(const StartedTool&) = delete;
  StartedTool& operator=(const StartedTool&) = delete;
  ~StartedTool();
  [[nodiscard]] bool HasEnded() const;
  void Interrupt();
  // Waits for its end.
  ToolRun Finish();

 private:
  int out_;
  int err_;
  int child_;
};

// With standard output on a file of the caller's choice, such as "/dev/full".
ToolRun RunToolInto(const std::string& out_path, const std::vector<std::string>& arguments);

// With standard output on a pipe that nobody reads.
ToolRun RunToolUnread(const std::vector<std::string>& arguments);

// With standard output and standard error on terminals of 80 columns each; lines end in "\r\n".
ToolRun RunToolOnTerminals(const std::vector<std::string>& arguments);

// Sets a variable of the environment for tools run meanwhile.
class EnvironmentVariable {
 public:
  EnvironmentVariable(const char* name, const char* value);
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
  ~EnvironmentVariable();

 private:
  const char* name_;
};

void WriteFile(const std::string& path, const std::string& text);

}  // namespace zephlane::test
