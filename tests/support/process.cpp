// SPDX-License-Identifier: MIT
#include "support/process.h"

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <utility>

#include "support/output.h"

// Writes what the program has counted so far. Only coverage builds have it.
extern "C" [[gnu::weak]] void __gcov_dump();

namespace zephlane::test {

namespace {

int WaitFor(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {}
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

std::string ReadToEnd(int fd) {
  std::string text;
  char part[4096];
  for (;;) {
    const ssize_t length = read(fd, part, sizeof(part));
    if (length < 0 && errno == EINTR) { continue; }
    if (length <= 0) { return text; }
    text.append(part, static_cast<std::size_t>(length));
  }
}

void WriteAll(int fd, const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t part = write(fd, text.data() + written, text.size() - written);
    if (part <= 0) { return; }
    written += static_cast<std::size_t>(part);
  }
}

// A line of the kernel's lock table, such as "1: -> POSIX  ADVISORY  WRITE 4711 fe:00:12 0 EOF",
// has an arrow when the process in it waits.
bool IsInLockTableAsWaiting(pid_t pid) {
  const std::string process = " " + std::to_string(pid) + " ";
  std::ifstream locks("/proc/locks");
  for (std::string line; std::getline(locks, line);) {
    if (line.find("->") != std::string::npos && line.find(process) != std::string::npos) {
      return true;
    }
  }
  return false;
}

// Whether a signal that was sent has not been taken yet.
bool IsPending(pid_t pid, int signal_number) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (!line.starts_with("SigPnd:") && !line.starts_with("ShdPnd:")) { continue; }
    const unsigned long long signals = std::stoull(line.substr(sizeof("SigPnd:")), nullptr, 16);
    if ((signals >> (signal_number - 1) & 1) != 0) { return true; }
  }
  return false;
}

bool HasEnded(pid_t pid) {
  siginfo_t info{};
  (void)waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOHANG | WNOWAIT);
  return info.si_pid == pid;
}

}  // namespace

EndedProgram RunProgramToEnd(const std::vector<std::string>& words) {
  std::vector<char*> arguments;
  for (const std::string& word : words) { arguments.push_back(const_cast<char*>(word.c_str())); }
  arguments.push_back(nullptr);
  EndedProgram ended;
  Output output = Capture([&] {
    pid_t pid = -1;
    const bool started =
        posix_spawnp(&pid, arguments[0], nullptr, nullptr, arguments.data(), environ) == 0;
    ended.status = started ? WaitFor(pid) : 127;
  });
  ended.out = std::move(output.out);
  ended.err = std::move(output.err);
  return ended;
}

Gate::Gate() {
  (void)!pipe2(ends_, O_CLOEXEC);
}

Gate::~Gate() {
  (void)close(ends_[0]);
  (void)close(ends_[1]);
}

void Gate::Open(int passes) {
  for (; passes > 0; --passes) { (void)!write(ends_[1], "", 1); }
}

void Gate::Pass() {
  char pass = 0;
  while (read(ends_[0], &pass, 1) < 0 && errno == EINTR) {}
}

bool Gate::IsOpen() const {
  pollfd end = {ends_[0], POLLIN, 0};
  return poll(&end, 1, 0) == 1;
}

ForkedChild::ForkedChild(const std::function<std::string()>& body) {
  (void)std::fflush(nullptr);
  int ends[2];
  (void)!pipe2(ends, O_CLOEXEC);
  pid_ = fork();
  if (pid_ == 0) {
    (void)close(ends[0]);
    WriteAll(ends[1], body());
    if (__gcov_dump != nullptr) { __gcov_dump(); }
    _exit(0);
  }
  (void)close(ends[1]);
  result_ = ends[0];
}

ForkedChild::~ForkedChild() {
  Kill();
  (void)close(result_);
}

std::string ForkedChild::Result() {
  const std::string result = ReadToEnd(result_);
  const int status = WaitFor(std::exchange(pid_, -1));
  return status == 0 ? result : "ended with status " + std::to_string(status);
}

void ForkedChild::Kill() {
  if (pid_ <= 0) { return; }
  (void)kill(pid_, SIGKILL);
  (void)WaitFor(std::exchange(pid_, -1));
}

bool ForkedChild::Deliver(int signal_number) const {
  if (kill(pid_, signal_number) != 0) { return false; }
  while (IsPending(pid_, signal_number)) { (void)sched_yield(); }
  return !HasEnded(pid_);
}

bool ForkedChild::WaitsForLock() const {
  while (!IsInLockTableAsWaiting(pid_)) {
    if (HasEnded(pid_)) { return false; }
    (void)sched_yield();
  }
  return true;
}

}  // namespace zephlane::test
