// SPDX-License-Identifier: MIT
#include "commandRecord.h"

#include <cstdlib>
#include <string_view>

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kEndMark[] = "end-of-recording";

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

void Replay(redisContext* ctx, const std::vector<CommandWords>& commands) {
  std::vector<const char*> words;
  std::vector<std::size_t> lengths;
  for (const CommandWords& command : commands) {
    words.clear();
    lengths.clear();
    for (const std::string& word : command) {
      words.push_back(word.data());
      lengths.push_back(word.size());
    }
    freeReplyObject(
        redisCommandArgv(ctx, static_cast<int>(words.size()), words.data(), lengths.data()));
  }
}

}  // namespace zephlane::bench
