// SPDX-License-Identifier: MIT
#include "commandRecord.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>
#include <utility>

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kEndMark[] = "end-of-recording";
constexpr char kUuidCounter[] = "autoUUID";
constexpr char kEventCounter[] = "autoEventID";
constexpr int kNoLock = -1;

char Unescaped(char letter) {
  switch (letter) {
    case 'n':
      return '\n';
    case 'r':
      return '\r';
    case 't':
      return '\t';
    case 'a':
      return '\a';
    case 'b':
      return '\b';
    default:
      return letter;
  }
}

// Takes one quoted word, as MONITOR writes it, off the front of `line`.
std::string TakeWord(std::string_view* line) {
  std::string word;
  std::size_t i = line->find('"') + 1;
  for (; (*line)[i] != '"'; ++i) {
    if ((*line)[i] != '\\') {
      word += (*line)[i];
    } else if ((*line)[++i] == 'x') {
      const std::string digits(line->substr(i + 1, 2));
      word += static_cast<char>(std::strtol(digits.c_str(), nullptr, 16));
      i += 2;
    } else {
      word += Unescaped((*line)[i]);
    }
  }
  line->remove_prefix(i + 1);
  return word;
}

// "1700000000.000000 [0 127.0.0.1:40000] "HGET" "key" "field""
CommandWords WordsOf(std::string_view line) {
  CommandWords words;
  line.remove_prefix(line.find(']') + 1);
  while (line.find('"') != std::string_view::npos) { words.push_back(TakeWord(&line)); }
  return words;
}

const char* LockFileOf(const std::string& counter) {
  return counter == kUuidCounter ? ZephlaneGenerateUUIDLockFile : ZephlaneGenerateEventIDLockFile;
}

int TakeLock(const char* path) {
  const int fd = open(path, O_RDWR | O_CREAT, 0644);
  struct flock lock {};
  lock.l_type = F_WRLCK;
  (void)fcntl(fd, F_SETLKW, &lock);
  return fd;
}

void GiveLock(int fd) {
  struct flock lock {};
  lock.l_type = F_UNLCK;
  (void)fcntl(fd, F_SETLK, &lock);
  (void)close(fd);
}

}  // namespace

std::vector<CommandWords> RecordCommands(const std::function<void()>& run) {
  redisContext* monitor = zephlaneRedisConnect();
  freeReplyObject(redisCommand(monitor, "MONITOR"));
  run();
  redisContext* marker = zephlaneRedisConnect();
  freeReplyObject(redisCommand(marker, "ECHO %s", kEndMark));
  (void)zephlaneRedisDisconnect(marker);
  std::vector<CommandWords> commands;
  for (;;) {
    void* raw = nullptr;
    if (redisGetReply(monitor, &raw) != REDIS_OK) { break; }
    const auto* reply = static_cast<redisReply*>(raw);
    CommandWords words = WordsOf({reply->str, reply->len});
    freeReplyObject(raw);
    if (words.back() == kEndMark) { break; }
    if (words.front() != "AUTH") { commands.push_back(std::move(words)); }
  }
  (void)zephlaneRedisDisconnect(monitor);
  return commands;
}

PreparedCommands::PreparedCommands(std::vector<CommandWords> commands)
    : texts_(std::move(commands)) {
  for (const CommandWords& text : texts_) {
    Prepared command;
    for (const std::string& word : text) {
      command.words.push_back(word.data());
      command.lengths.push_back(word.size());
    }
    const bool is_counter =
        text.size() > 1 && (text[1] == kUuidCounter || text[1] == kEventCounter);
    if (is_counter && text[0] == "GET") { command.lock_before = LockFileOf(text[1]); }
    command.unlock_after = is_counter && text[0] == "SET";
    commands_.push_back(std::move(command));
  }
}

void PreparedCommands::Replay(redisContext* ctx) {
  int lock = kNoLock;
  for (Prepared& command : commands_) {
    if (command.lock_before != nullptr) { lock = TakeLock(command.lock_before); }
    freeReplyObject(redisCommandArgv(ctx, static_cast<int>(command.words.size()),
                                     command.words.data(), command.lengths.data()));
    if (command.unlock_after) { GiveLock(lock); }
  }
}

void PreparedCommands::ReplayPipelined(redisContext* ctx) {
  for (Prepared& command : commands_) {
    (void)redisAppendCommandArgv(ctx, static_cast<int>(command.words.size()), command.words.data(),
                                 command.lengths.data());
  }
  for (std::size_t i = 0; i < commands_.size(); ++i) {
    void* reply = nullptr;
    (void)redisGetReply(ctx, &reply);
    freeReplyObject(reply);
  }
}

}  // namespace zephlane::bench
