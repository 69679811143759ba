// SPDX-License-Identifier: MIT
#include "support/redisServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "support/fixedNames.h"

namespace zephlane::test {

namespace {

constexpr char kPassword[] = "zephlane-private";
constexpr char kReadyWords[] = "Ready to accept connections";

[[noreturn]] void ExecServer(const std::string& directory, int log) {
  (void)prctl(PR_SET_PDEATHSIG, SIGKILL);
  (void)dup2(log, STDOUT_FILENO);
  (void)dup2(log, STDERR_FILENO);
  const std::string port = std::to_string(kRedisPort);
  (void)execlp("redis-server", "redis-server", "--port", port.c_str(), "--bind", "127.0.0.1",
               "--requirepass", kPassword, "--save", "", "--appendonly", "no", "--dir",
               directory.c_str(), static_cast<char*>(nullptr));
  _exit(127);
}

// Reads the server's log up to the line that says it is ready; what was read otherwise.
std::string WaitUntilReady(int log) {
  std::string text;
  char part[512];
  for (;;) {
    const ssize_t length = read(log, part, sizeof(part));
    if (length <= 0) { return text.empty() ? "nothing was printed" : text; }
    text.append(part, static_cast<std::size_t>(length));
    if (text.find(kReadyWords) != std::string::npos) { return ""; }
  }
}

}  // namespace

RedisServer::RedisServer() {
  char directory[] = "/tmp/zephlane-redis-XXXXXX";
  if (mkdtemp(directory) == nullptr) {
    problem_ = "cannot make a directory below /tmp";
    return;
  }
  directory_ = directory;
  std::ofstream(kPasswordFile) << kPassword;
  int log[2];
  if (pipe2(log, O_CLOEXEC) != 0) {
    problem_ = "cannot make a pipe";
    return;
  }
  pid_ = fork();
  if (pid_ == 0) { ExecServer(directory_, log[1]); }
  (void)close(log[1]);
  const std::string printed = WaitUntilReady(log[0]);
  if (!printed.empty()) {
    problem_ = "redis-server did not start (is the package redis-server installed?): " + printed;
  }
  // The server writes on to the closed pipe only at its end, and ignores SIGPIPE.
  (void)close(log[0]);
}

RedisServer::~RedisServer() {
  if (pid_ > 0) {
    (void)kill(pid_, SIGKILL);
    (void)waitpid(pid_, nullptr, 0);
  }
  std::error_code error;
  if (!directory_.empty()) { (void)std::filesystem::remove_all(directory_, error); }
}

}  // namespace zephlane::test
