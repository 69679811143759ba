// SPDX-License-Identifier: MIT
//
// Runs a program against a Redis server of its own that nothing else on the machine can see. Where
// the machine grants no namespace, it uses the fixed address and names themselves, one run at a
// time and only while all of them are free, and removes what it made.
#pragma once

#include <string>
#include <vector>

namespace zephlane::test {

// Set for the program that runs, so that it does not ask for a second server. The value says
// whether it has a namespace or the machine's own names.
inline constexpr char kPrivateRedisMark[] = "ZEPHLANE_PRIVATE_REDIS_RUNNING";
inline constexpr char kInNamespace[] = "in a namespace";
inline constexpr char kOnTheMachine[] = "on the machine";
// Set by a user to do without namespaces.
inline constexpr char kNoNamespace[] = "ZEPHLANE_NO_NAMESPACE";

struct PrivateRedisOptions {
  bool with_server = true;     // false: the namespace only
  bool with_namespace = true;  // false: as on a machine that grants none
};

// The program's exit status; 128 and the signal's number when a signal ended it; 125 when something
// stands in the way, which is said on standard error.
int RunInPrivateRedis(const PrivateRedisOptions& options, const std::vector<std::string>& program);

}  // namespace zephlane::test
