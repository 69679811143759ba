// SPDX-License-Identifier: MIT
//
// A pair is a function of the library beside raw hiredis sending the same commands on the same
// connection. Both sides take turns in small batches, so that whatever else the machine does hits
// both alike.
#pragma once

#include <functional>
#include <string>

#include <hiredis/hiredis.h>

namespace zephlane::bench {

using Step = std::function<void(redisContext*)>;

struct Pair {
  std::string family;
  std::string function;
  double allowed;  // highest ratio of the library's time to raw hiredis's
  Step library;
  Step prepare = nullptr;  // runs before each call of either side, its time does not count
  bool pipelined = false;  // raw hiredis sends all commands before it reads the first reply
  bool connects = false;   // the library opens a connection of its own, so raw hiredis does too
};

// Single commands may cost 3 % more than raw hiredis, sequences of commands 5 %. Services do work
// of their own between their commands, such as writing the local time.
inline constexpr double kSingleCommand = 1.03;
inline constexpr double kSequence = 1.05;
inline constexpr double kReader = 1.25;
inline constexpr double kThroughput = 1 / 0.85;
inline constexpr double kService = 1.10;

// One connection for both sides of all pairs, so that neither has a better one.
redisContext* SharedConnection();

void AddPair(Pair pair);

// Each family adds its pairs, and puts what they need into the store before that.
void AddSingleCommandPairs(redisContext* ctx);
void AddReaderPairs(redisContext* ctx);
void AddCreationPairs(redisContext* ctx);
void AddSchemaPairs(redisContext* ctx);
void AddServicePairs(redisContext* ctx);
// Empties the store whenever it runs, so it comes last.
void AddInterpreterPairs();

}  // namespace zephlane::bench
