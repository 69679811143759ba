// SPDX-License-Identifier: MIT
//
// What the tests of hooks share: processes in which no hook was ever registered, handlers that tell
// of their calls across processes, and message queues seen past the library.
#pragma once

#include <mqueue.h>

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "support/store.h"

#include <zephlaneAPI/hooks.h>

namespace zephlane::test {

inline constexpr char kUuid[] = "10000000-0000-0000-0000-00000000000a";
inline constexpr char kSecondUuid[] = "10000000-0000-0000-0000-00000000000b";
inline constexpr char kThirdUuid[] = "10000000-0000-0000-0000-00000000000c";

// The arguments of a program, as its main() gets them.
class Program {
 public:
  explicit Program(std::string name) : name_(std::move(name)), argv_{name_.data(), nullptr} {}
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;
  [[nodiscard]] char** Argv() {
    return argv_;
  }
  [[nodiscard]] const std::string& Name() const {
    return name_;
  }

 private:
  std::string name_;
  char* argv_[2];
};

// Handlers. Each call is a line for HookTest::NextCall(): "plain ID|ARG1|ARG2" or
// "oem ID|ARG1|ARG2|ARG3". Their result is none that the library could like.
int TellPlain(char* id, char* arg1, char* arg2);
int TellOem(char* id, char* arg1, char* arg2, char* arg3);

// A message as it goes through a queue: each text in its field, cut to the field without a
// terminator when it is longer.
std::string PlainBytes(const std::string& uuid, const std::string& id, const std::string& arg1,
                       const std::string& arg2);
std::string OemBytes(const std::string& uuid, const std::string& id, const std::string& arg1,
                     const std::string& arg2, const std::string& arg3);

// Queues
void CreateQueue(const std::string& name, long message_size, unsigned int mode = 0600);
bool QueueExists(const std::string& name);
mq_attr QueueAttributes(const std::string& name);
void SendTo(const std::string& name, const std::string& bytes);
void Fill(const std::string& name);  // until it takes no more
std::vector<std::string> TakeAll(const std::string& name);

class HookTest : public StoreTest {
 protected:
  void SetUp() override;
  void TearDown() override;
  // Runs `body` in a process of its own; what fails there fails the case.
  static void InFreshProcess(const std::function<void()>& body);
  // The first lines that a fresh process prints on standard error, which runs `body` to its end and
  // is then killed.
  static std::vector<std::string> FirstErrorLines(std::size_t count,
                                                  const std::function<void()>& body);
  // The next call of a handler, in whatever process; waits for it.
  static std::string NextCall();
  // Threads of this process. One that was joined may still be counted for a moment.
  static int Threads();
  // Descriptors that this process has open.
  static int Descriptors();
};

// What tells one family from the other.
struct HookFamily {
  const char* name;
  std::string queue_prefix;
  std::string list_suffix;
  long message_size;
  int oem;
  const int* initialised;
  const mqd_t* queue;
  // Registers TellPlain or TellOem.
  int (*Register)(redisContext* ctx, const char* uuid, char** argv);
  // A message, and how the call is told that it makes.
  std::string (*Bytes)(const std::string& uuid, const std::string& text);
  std::string (*Told)(const std::string& text);
};

std::ostream& operator<<(std::ostream& out, const HookFamily& family);

// A case that holds for both families, with the program "/usr/sbin/listener".
class HookFamilyTest : public HookTest, public testing::WithParamInterface<HookFamily> {
 protected:
  static std::vector<HookFamily> Both();
  int Register(const char* uuid) {
    return Register(ctx(), uuid, &program_);
  }
  static int Register(redisContext* ctx, const char* uuid, Program* program) {
    return GetParam().Register(ctx, uuid, program->Argv());
  }
  static std::string QueueOf(const std::string& base_name) {
    return GetParam().queue_prefix + base_name;
  }
  static std::string ListOf(const std::string& uuid) {
    return uuid + GetParam().list_suffix;
  }
  std::string Listed(const std::string& uuid) {
    return Ask({"SMEMBERS", ListOf(uuid)});
  }
  static bool IsInitialised() {
    return *GetParam().initialised == 1;
  }
  static bool Exists(const std::string& uuid) {
    return isUUIDExist(uuid.c_str(), GetParam().oem) == 1;
  }
  Program program_{"/usr/sbin/listener"};
};

}  // namespace zephlane::test
