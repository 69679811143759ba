// SPDX-License-Identifier: MIT
//
// The library reports that connecting failed; here the cause is looked for again, step by step, so
// that the user learns what to do about it.
#include "session.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>

#include "plainText.h"

namespace zephlane::tool {

namespace {

constexpr char kHost[] = "127.0.0.1";
constexpr int kPort = 6379;
constexpr char kPasswordFile[] = "/tmp/redis.requirepass";
constexpr char kWritePassword[] = "printf %s PASSWORD > /tmp/redis.requirepass";

struct CloseFile {
  void operator()(std::FILE* file) const noexcept {
    (void)std::fclose(file);
  }
};

struct PasswordFile {
  std::string problem;  // why it cannot be opened; empty when it can
  bool is_missing = false;
  bool ends_in_newline = false;
};

PasswordFile LookAtPasswordFile() {
  PasswordFile seen;
  const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(kPasswordFile, "r"));
  if (!file) {
    seen.problem = std::strerror(errno);
    seen.is_missing = errno == ENOENT;
    return seen;
  }
  char line[1024] = "";
  seen.ends_in_newline =
      std::fgets(line, sizeof(line), file.get()) != nullptr && std::strchr(line, '\n') != nullptr;
  return seen;
}

std::string ServerName() {
  return fmt::format("The Redis server at {}:{}", kHost, kPort);
}

// The error text of the server's answer to PING; empty when it answers well, none when not at all.
std::optional<std::string> PingProblem(redisContext* ctx) {
  const Answer answer(static_cast<redisReply*>(redisCommand(ctx, "PING")));
  if (!answer) { return std::nullopt; }
  return answer->type == REDIS_REPLY_ERROR ? std::string(answer->str, answer->len) : "";
}

void TellNoServer(Console& console, const char* cause) {
  console.Tell(
      fmt::format("No Redis server answers at {}:{}: {}.\n"
                  "  Start one:    redis-server --bind {} --port {} --requirepass PASSWORD "
                  "--daemonize yes\n"
                  "  It comes with the Debian package redis-server.",
                  kHost, kPort, cause, kHost, kPort));
}

void TellNoPasswordFile(Console& console, const PasswordFile& file) {
  const std::string state = file.is_missing ? "is missing" : "cannot be read: " + file.problem;
  console.Tell(
      fmt::format("{} {}; it holds the password of the Redis server.\n"
                  "  Write it:     {}\n"
                  "  For a server without a password it is an empty file.",
                  kPasswordFile, state, kWritePassword));
}

void TellRefused(Console& console, const PasswordFile& file, bool password_wanted) {
  if (!password_wanted) {
    console.Tell(
        fmt::format("{} asks for no password, but {} holds one.\n"
                    "  Empty it:     : > {}",
                    ServerName(), kPasswordFile, kPasswordFile));
    return;
  }
  console.Tell(fmt::format(
      "{} refuses the password in {}.\n"
      "  Correct it:   {}{}",
      ServerName(), kPasswordFile, kWritePassword,
      file.ends_in_newline
          ? "\n  Its first line ends in a newline, which is sent as part of the password."
          : ""));
}

// Called after the library gave no connection.
void TellWhatIsMissing(Console& console) {
  const PasswordFile file = LookAtPasswordFile();
  const Session probe(redisConnectWithTimeout(kHost, kPort, G_sTimeout));
  const bool connected = probe && probe->err == 0;
  const std::optional<std::string> problem = connected ? PingProblem(probe.get()) : std::nullopt;
  if (!problem) { TellNoServer(console, probe ? probe->errstr : "out of memory"); }
  if (!file.problem.empty()) { TellNoPasswordFile(console, file); }
  if (problem && file.problem.empty()) { TellRefused(console, file, !problem->empty()); }
}

}  // namespace

Session OpenSession(Console& console) {
  Session session(zephlaneRedisConnect());
  if (!session) {
    TellWhatIsMissing(console);
    return nullptr;
  }
  const std::optional<std::string> problem = PingProblem(session.get());
  if (problem && problem->empty()) { return session; }
  if (!problem) {
    TellNoServer(console, session->errstr);
  } else if (problem->starts_with("NOAUTH")) {
    console.Tell(
        fmt::format("{} asks for a password, but {} is empty.\n"
                    "  Write it:     {}",
                    ServerName(), kPasswordFile, kWritePassword));
  } else {
    console.Tell(fmt::format("{} does not serve: {}", ServerName(), *problem));
  }
  return nullptr;
}

bool StillConnected(Console& console, const redisContext* ctx) {
  if (ctx->err == 0) { return true; }
  console.Tell(fmt::format("The connection to the Redis server was lost: {}", ctx->errstr));
  return false;
}

int FailForMissing(Console& console, const Session& session, const std::string& key) {
  if (StillConnected(console, session.get())) {
    console.Tell(fmt::format("There is no key {} in the store.", Printable(key)));
  }
  return kExitFailed;
}

}  // namespace zephlane::tool
