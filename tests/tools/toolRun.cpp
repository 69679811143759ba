// SPDX-License-Identifier: MIT
#include "tools/toolRun.h"

#include <fcntl.h>
#include <pty.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <thread>

namespace zephlane::test {

namespace {

constexpr char kTool[] = ZEPHLANE_TOOL;

[[noreturn]] void ExecTool(const std::vector<std::string>& arguments, int out, int err) {
  std::vector<char*> words = {const_cast<char*>(kTool)};
  for (const std::string& argument : arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  (void)dup2(open("/dev/null", O_RDONLY | O_CLOEXEC), STDIN_FILENO);
  (void)dup2(out, STDOUT_FILENO);
  (void)dup2(err, STDERR_FILENO);
  (void)signal(SIGPIPE, SIG_DFL);
  (void)execv(kTool, words.data());
  _exit(127);
}

pid_t Start(const std::vector<std::string>& arguments, int out, int err) {
  const pid_t child = fork();
  if (child == 0) { ExecTool(arguments, out, err); }
  return child;
}

int WaitFor(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string WholeText(int fd) {
  std::string text(static_cast<std::size_t>(lseek(fd, 0, SEEK_END)), '\0');
  (void)!pread(fd, text.data(), text.size(), 0);
  return text;
}

// A file in memory that takes what a process prints.
class Sink {
 public:
  Sink() : fd_(memfd_create("printed", MFD_CLOEXEC)) {}
  Sink(const Sink&) = delete;
  Sink& operator=(const Sink&) = delete;
  ~Sink() {
    (void)close(fd_);
  }
  [[nodiscard]] int Get() const {
    return fd_;
  }
  [[nodiscard]] std::string Text() const {
    return WholeText(fd_);
  }

 private:
  int fd_;
};

// A terminal that is read to the end of the last process on it.
class Terminal {
 public:
  Terminal() {
    winsize size{};
    size.ws_row = 24;
    size.ws_col = 80;
    (void)openpty(&ends_[0], &ends_[1], nullptr, nullptr, &size);
    for (const int fd : ends_) { (void)fcntl(fd, F_SETFD, FD_CLOEXEC); }
    reader_ = std::thread([this] { Read(); });
  }
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;
  ~Terminal() {
    (void)close(ends_[0]);
  }
  [[nodiscard]] int Get() const {
    return ends_[1];
  }
  std::string TextToTheEnd() {
    (void)close(ends_[1]);
    reader_.join();
    return text_;
  }

 private:
  void Read() {
    char part[4096];
    for (;;) {
      const ssize_t length = read(ends_[0], part, sizeof(part));
      if (length <= 0) { return; }  // EIO: nobody has the other end any more
      text_.append(part, static_cast<std::size_t>(length));
    }
  }
  std::array<int, 2> ends_{-1, -1};
  std::string text_;
  std::thread reader_;
};

ToolRun RunWithOut(int out, const std::vector<std::string>& arguments) {
  const Sink err;
  ToolRun run;
  run.status = WaitFor(Start(arguments, out, err.Get()));
  run.err = err.Text();
  return run;
}

}  // namespace

ToolRun RunTool(const std::vector<std::string>& arguments) {
  const Sink out;
  ToolRun run = RunWithOut(out.Get(), arguments);
  run.out = out.Text();
  return run;
}

StartedTool::StartedTool(const std::vector<std::string>& arguments)
    : out_(memfd_create("out", MFD_CLOEXEC)),
      err_(memfd_create("err", MFD_CLOEXEC)),
      child_(Start(arguments, out_, err_)) {}

StartedTool::~StartedTool() {
  if (child_ > 0) {
    Interrupt();
    (void)Finish();
  }
  (void)close(out_);
  (void)close(err_);
}

bool StartedTool::HasEnded() const {
  siginfo_t info{};
  const auto child = static_cast<id_t>(child_);
  return waitid(P_PID, child, &info, WEXITED | WNOHANG | WNOWAIT) != 0 || info.si_pid != 0;
}

void StartedTool::Interrupt() {
  (void)kill(child_, SIGINT);
}

ToolRun StartedTool::Finish() {
  ToolRun run;
  run.status = WaitFor(child_);
  child_ = -1;
  run.out = WholeText(out_);
  run.err = WholeText(err_);
  return run;
}

ToolRun RunToolInto(const std::string& out_path, const std::vector<std::string>& arguments) {
  const int out = open(out_path.c_str(), O_WRONLY | O_CLOEXEC);
  ToolRun run = RunWithOut(out, arguments);
  (void)close(out);
  return run;
}

ToolRun RunToolUnread(const std::vector<std::string>& arguments) {
  int ends[2];
  (void)!pipe2(ends, O_CLOEXEC);
  (void)close(ends[0]);
  ToolRun run = RunWithOut(ends[1], arguments);
  (void)close(ends[1]);
  return run;
}

ToolRun RunToolOnTerminals(const std::vector<std::string>& arguments) {
  const EnvironmentVariable capable("TERM", "xterm");
  Terminal out;
  Terminal err;
  ToolRun run;
  run.status = WaitFor(Start(arguments, out.Get(), err.Get()));
  run.out = out.TextToTheEnd();
  run.err = err.TextToTheEnd();
  return run;
}

EnvironmentVariable::EnvironmentVariable(const char* name, const char* value) : name_(name) {
  (void)setenv(name, value, 1);
}

EnvironmentVariable::~EnvironmentVariable() {
  (void)unsetenv(name_);
}

void WriteFile(const std::string& path, const std::string& text) {
  std::ofstream(path) << text;
}

}  // namespace zephlane::test
