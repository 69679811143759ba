// SPDX-License-Identifier: MIT
#include "support/privateRedis.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "support/fixedNames.h"
#include "support/privateNamespace.h"
#include "support/redisServer.h"

namespace zephlane::test {

namespace {

constexpr int kInTheWay = 125;

volatile pid_t running_program = 0;

void ForwardSignal(int signal_number) {
  if (running_program > 0) { (void)kill(running_program, signal_number); }
}

// An interrupted run must still remove what it made: the signal ends the program, then us.
void ForwardEndingSignals() {
  struct sigaction action {};
  action.sa_handler = ForwardSignal;
  for (const int signal_number : {SIGINT, SIGTERM, SIGHUP}) {
    (void)sigaction(signal_number, &action, nullptr);
  }
}

[[noreturn]] void ExecProgram(const std::vector<std::string>& program) {
  (void)prctl(PR_SET_PDEATHSIG, SIGTERM);
  (void)setenv(kPrivateRedisMark, "1", 1);
  std::vector<char*> words;
  for (const std::string& word : program) { words.push_back(const_cast<char*>(word.c_str())); }
  words.push_back(nullptr);
  (void)execvp(words[0], words.data());
  std::perror(words[0]);
  _exit(127);
}

int RunProgram(const std::vector<std::string>& program) {
  ForwardEndingSignals();
  (void)std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) { ExecProgram(program); }
  running_program = child;
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
  running_program = 0;
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

int RunWithServer(const PrivateRedisOptions& options, const std::vector<std::string>& program) {
  if (!options.with_server) { return RunProgram(program); }
  const RedisServer server;
  if (!server.Problem().empty()) {
    (void)std::fprintf(stderr, "private Redis: %s\n", server.Problem().c_str());
    return kInTheWay;
  }
  return RunProgram(program);
}

// Holds the launcher's own file locked: runs without a namespace wait for each other.
void WaitForTurn() {
  const int fd = open("/proc/self/exe", O_RDONLY | O_CLOEXEC);
  while (flock(fd, LOCK_EX) != 0 && errno == EINTR) {}
}

int RunOnTheMachine(const PrivateRedisOptions& options, const std::string& refusal,
                    const std::vector<std::string>& program) {
  WaitForTurn();
  const std::vector<std::string> in_use = FixedNamesInUse();
  if (!in_use.empty()) {
    (void)std::fprintf(stderr,
                       "private Redis: this machine grants no private namespace (%s), and its own "
                       "names are not free:\n",
                       refusal.c_str());
    for (const std::string& line : in_use) { (void)std::fprintf(stderr, "  %s\n", line.c_str()); }
    return kInTheWay;
  }
  const int status = RunWithServer(options, program);
  RemoveFixedNames();
  return status;
}

std::vector<std::string> PathsToKeep(const std::vector<std::string>& program) {
  std::vector<std::string> keep = {std::filesystem::current_path().string(),
                                   std::filesystem::read_symlink("/proc/self/exe").string()};
  keep.insert(keep.end(), program.begin(), program.end());
  return keep;
}

}  // namespace

int RunInPrivateRedis(const PrivateRedisOptions& options, const std::vector<std::string>& program) {
  const bool may_enter = options.with_namespace && std::getenv(kNoNamespace) == nullptr;
  const std::string refusal =
      may_enter ? EnterPrivateNamespace(PathsToKeep(program)) : "none was asked for";
  return refusal.empty() ? RunWithServer(options, program)
                         : RunOnTheMachine(options, refusal, program);
}

}  // namespace zephlane::test
