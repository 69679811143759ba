// SPDX-License-Identifier: MIT
//
// A table of every exported function: a sensible call of each, what the store must hold for it and
// what its result says. Programs that look at all functions alike (what they do when something
// fails, what they cost) run over it; it needs no test framework.
#pragma once

#include <span>
#include <string_view>

#include <hiredis/hiredis.h>

namespace zephlane::test {

enum class Result {
  kSuccess,      // the documented success, with what the prepared store implies
  kOther,        // a documented success with other content, as after a reply that says otherwise
  kFailure,      // the documented failure, with the outputs as documented after it
  kUndocumented  // anything else
};

struct Outcome {
  Result result = Result::kUndocumented;
  const char* remark = "";  // what is wrong with an undocumented one
};

// What a case works with.
struct Stage {
  redisContext* ctx = nullptr;    // the connection that the call is given
  redisContext* store = nullptr;  // another one, to the real store, for the preparation
};

// What a program must know before it makes a call.
enum Trait : unsigned {
  kNoTrait = 0,
  kConnects = 1U << 0,      // opens a connection of its own; the stage's is not used
  kSubscribes = 1U << 1,    // the connection receives messages only afterwards, until the cleanup
  kSleeps = 1U << 2,        // waits a second
  kLeavesThread = 1U << 3,  // a thread that waits for messages stays behind
  kLeavesParts = 1U << 4,   // a failure leaves in the store what was written before it
  kQueues = 1U << 5,        // what it sends goes out with a later call
};

struct FunctionCase {
  const char* name;
  // Commands that fill the store, one in a line, words separated by blanks. Every store holds what
  // kCommonContent says as well.
  const char* content = "";
  // Further state of the process or the connections. Nothing here is counted.
  void (*prepare)(Stage& stage) = nullptr;
  // Makes the call and judges and frees what it gave. It allocates nothing itself.
  Outcome (*call)(Stage& stage);
  // Takes back what prepare and call left in the process; the store is emptied anyway.
  void (*cleanup)(Stage& stage) = nullptr;
  unsigned traits = kNoTrait;
};

inline constexpr char kCommonContent[] =
    "HSET hash name value size 3\n"
    "SADD set member\n"
    "RPUSH list first second\n"
    "SET text value\n";

// One family of functions.
struct FunctionFamily {
  std::string_view name;
  std::span<const FunctionCase> cases;
};

std::span<const FunctionFamily> EveryFunction();

// False under the thread sanitizer for a call that leaves a thread: each preparation of it forgets
// that a receiver of a former call still waits, and sets what that one reads.
bool MayRepeat(const FunctionCase& function);

// Empties the store, fills it and prepares the process; Finish takes the process's state back.
void Prepare(const FunctionCase& function, Stage& stage);
// The part of it that concerns the process, for calls whose connection does not lead to the store.
void PrepareProcess(const FunctionCase& function, Stage& stage);
void Finish(const FunctionCase& function, Stage& stage);

// The families, one source each.
std::span<const FunctionCase> AnnotationCases();
std::span<const FunctionCase> ConnectionCases();
std::span<const FunctionCase> EventCases();
std::span<const FunctionCase> HashCommandCases();
std::span<const FunctionCase> HashTreeCases();
std::span<const FunctionCase> HookCases();
std::span<const FunctionCase> ListCases();
std::span<const FunctionCase> ListCommandCases();
std::span<const FunctionCase> ObjectCases();
std::span<const FunctionCase> ParserCases();
std::span<const FunctionCase> ReaderCases();
std::span<const FunctionCase> SchemaFileCases();
std::span<const FunctionCase> ServiceCases();
std::span<const FunctionCase> SetCommandCases();
std::span<const FunctionCase> TreeCases();

}  // namespace zephlane::test
