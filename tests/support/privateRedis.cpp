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
#include <string_view>

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

constexpr int kEndingSignals[] = {SIGINT, SIGTERM, SIGHUP};

// Holds them back with SIG_BLOCK, lets them through with SIG_UNBLOCK.
void LetEndingSignals(int how) {
  sigset_t ending;
  (void)sigemptyset(&ending);
  for (const int signal_number : kEndingSignals) { (void)sigaddset(&ending, signal_number); }
  (void)sigprocmask(how, &ending, nullptr);
}

[[noreturn]] void ExecProgram(const std::vector<std::string>& program) {
  (void)prctl(PR_SET_PDEATHSIG, SIGTERM);
  std::vector<char*> words;
  for (const std::string& word : program) { words.push_back(const_cast<char*>(word.c_str())); }
  words.push_back(nullptr);
  (void)execvp(words[0], words.data());
  std::perror(words[0]);
  _exit(127);
}

// Starts the program in a child. From here on a signal ends the program, whose end then is ours:
// an interrupted run must still remove what it made.
pid_t StartProgram(const std::vector<std::string>& program) {
  (void)std::fflush(nullptr);
  LetEndingSignals(SIG_BLOCK);  // until it is known whom to send them on to
  const pid_t child = fork();
  if (child == 0) {
    LetEndingSignals(SIG_UNBLOCK);
    ExecProgram(program);
  }
  running_program = child;
  struct sigaction action {};
  action.sa_handler = ForwardSignal;
  for (const int signal_number : kEndingSignals) {
    (void)sigaction(signal_number, &action, nullptr);
  }
  return child;
}

int RunProgram(const std::vector<std::string>& program) {
  const pid_t child = StartProgram(program);
  if (child < 0) {
    std::perror("private Redis: fork");
    return kInTheWay;
  }
  LetEndingSignals(SIG_UNBLOCK);
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {}
  LetEndingSignals(SIG_BLOCK);  // what is left is to remove what was made
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
  const char* above = std::getenv(kPrivateRedisMark);
  if (above != nullptr && std::string_view(above) == kOnTheMachine) {
    // It would wait for a turn that ends with ours.
    (void)std::fputs("private Redis: this already runs on the machine's own names\n", stderr);
    return kInTheWay;
  }
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
  (void)setenv(kPrivateRedisMark, kOnTheMachine, 1);
  LetEndingSignals(SIG_BLOCK);  // while the server starts: then the program gets them
  const int status = RunWithServer(options, program);
  RemoveFixedNames();
  return status;
}

std::vector<std::string> PathsToKeep(const std::vector<std::string>& program) {
  std::error_code unknown;  // then there is nothing to keep
  std::vector<std::string> keep = {
      std::filesystem::current_path(unknown).string(),
      std::filesystem::read_symlink("/proc/self/exe", unknown).string()};
  keep.insert(keep.end(), program.begin(), program.end());
  return keep;
}

}  // namespace

int RunInPrivateRedis(const PrivateRedisOptions& options, const std::vector<std::string>& program) {
  const bool may_enter = options.with_namespace && std::getenv(kNoNamespace) == nullptr;
  const std::string refusal =
      may_enter ? EnterPrivateNamespace(PathsToKeep(program)) : "none was asked for";
  if (!refusal.empty()) { return RunOnTheMachine(options, refusal, program); }
  (void)setenv(kPrivateRedisMark, kInNamespace, 1);
  return RunWithServer(options, program);
}

}  // namespace zephlane::test
