// SPDX-License-Identifier: MIT
#include "api/hookFixture.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <iterator>
#include <optional>
#include <utility>

#include "support/owners.h"
#include "support/process.h"

namespace zephlane::test {

namespace {

// The queues that cases use, which the kernel would keep.
constexpr const char* kQueues[] = {"/mq_listener",  "/oemmq_listener", "/mq_second",
                                   "/oemmq_second", "/mq_third",       "/oemmq_third"};

int calls[2] = {-1, -1};  // a pipe that children inherit: a line for each call

// One write, so that lines of several processes do not mix.
void Tell(std::initializer_list<const char*> texts) {
  std::string line;
  for (const char* text : texts) { line += text; }
  line += '\n';
  (void)!write(calls[1], line.data(), line.size());
}

std::string Fields(
    std::initializer_list<std::pair<const std::string&, std::size_t>> texts_and_sizes) {
  std::string bytes;
  for (const auto& [text, size] : texts_and_sizes) {
    bytes += text.substr(0, size);
    bytes.append(size - std::min(text.size(), size), '\0');
  }
  return bytes;
}

// The line up to the next newline, without it; none at the end.
std::optional<std::string> ReadLine(int fd) {
  std::string line;
  char character = '\0';
  for (;;) {
    const ssize_t length = read(fd, &character, 1);
    if (length < 0 && errno == EINTR) { continue; }
    if (length <= 0) { return std::nullopt; }
    if (character == '\n') { return line; }
    line += character;
  }
}

int Entries(const char* directory) {
  using Iterator = std::filesystem::directory_iterator;
  return static_cast<int>(std::distance(Iterator(directory), Iterator()));
}

class OpenQueue {
 public:
  explicit OpenQueue(const std::string& name)
      : queue_(mq_open(name.c_str(), O_RDWR | O_NONBLOCK)) {}
  OpenQueue(const OpenQueue&) = delete;
  OpenQueue& operator=(const OpenQueue&) = delete;
  ~OpenQueue() {
    if (queue_ >= 0) { (void)mq_close(queue_); }
  }
  [[nodiscard]] mqd_t Get() const {
    return queue_;
  }
  [[nodiscard]] mq_attr Attributes() const {
    mq_attr attributes{};
    (void)mq_getattr(queue_, &attributes);
    return attributes;
  }

 private:
  mqd_t queue_;
};

}  // namespace

int TellPlain(char* id, char* arg1, char* arg2) {
  Tell({"plain ", id, "|", arg1, "|", arg2});
  return -1;
}

int TellOem(char* id, char* arg1, char* arg2, char* arg3) {
  Tell({"oem ", id, "|", arg1, "|", arg2, "|", arg3});
  return -1;
}

std::string PlainBytes(const std::string& uuid, const std::string& id, const std::string& arg1,
                       const std::string& arg2) {
  return Fields({{uuid, 37}, {id, 6}, {arg1, 37}, {arg2, 40}});
}

std::string OemBytes(const std::string& uuid, const std::string& id, const std::string& arg1,
                     const std::string& arg2, const std::string& arg3) {
  return Fields({{uuid, 37}, {id, 6}, {arg1, 37}, {arg2, 37}, {arg3, 40}});
}

void CreateQueue(const std::string& name, long message_size, unsigned int mode) {
  mq_attr attributes{};
  attributes.mq_maxmsg = 5;
  attributes.mq_msgsize = message_size;
  const mqd_t queue = mq_open(name.c_str(), O_RDWR | O_CREAT | O_EXCL, mode, &attributes);
  ASSERT_GE(queue, 0) << name << ": " << std::strerror(errno);
  (void)mq_close(queue);
}

bool QueueExists(const std::string& name) {
  return OpenQueue(name).Get() >= 0;
}

mq_attr QueueAttributes(const std::string& name) {
  return OpenQueue(name).Attributes();
}

void SendTo(const std::string& name, const std::string& bytes) {
  const mqd_t queue = mq_open(name.c_str(), O_WRONLY);
  EXPECT_EQ(mq_send(queue, bytes.data(), bytes.size(), 0), 0) << name << std::strerror(errno);
  (void)mq_close(queue);
}

void Fill(const std::string& name) {
  const OpenQueue queue(name);
  while (mq_send(queue.Get(), "", 0, 0) == 0) {}
  EXPECT_EQ(errno, EAGAIN);
}

std::vector<std::string> TakeAll(const std::string& name) {
  const OpenQueue queue(name);
  std::string bytes(static_cast<std::size_t>(queue.Attributes().mq_msgsize), '\0');
  std::vector<std::string> messages;
  for (;;) {
    const ssize_t length = mq_receive(queue.Get(), bytes.data(), bytes.size(), nullptr);
    if (length < 0) { return messages; }
    messages.push_back(bytes.substr(0, static_cast<std::size_t>(length)));
  }
}

void HookTest::SetUp() {
  StoreTest::SetUp();
  ASSERT_EQ(pipe2(calls, O_CLOEXEC), 0);
}

void HookTest::TearDown() {
  StoreTest::TearDown();
  (void)close(calls[0]);
  (void)close(calls[1]);
  // What this process has opened for sending are queues of this case: the next one has its own.
  while (openedQueueInfoList != nullptr) {
    const CRecord<OpenedQueueInfo> entry(openedQueueInfoList);
    (void)mq_close(entry->mqd);
    openedQueueInfoList = entry->next;
  }
  for (const char* queue : kQueues) { (void)mq_unlink(queue); }
}

void HookTest::InFreshProcess(const std::function<void()>& body) {
  ForkedChild child([&body]() -> std::string {
    body();
    return HasFailure() ? "has failures" : "passed";
  });
  EXPECT_EQ(child.Result(), "passed");
}

std::vector<std::string> HookTest::FirstErrorLines(std::size_t count,
                                                   const std::function<void()>& body) {
  int errors[2];
  (void)!pipe2(errors, O_CLOEXEC);
  Gate body_ended;
  Gate never;
  ForkedChild child([&]() -> std::string {
    (void)dup2(errors[1], STDERR_FILENO);
    body();
    if (HasFailure()) { return ""; }
    body_ended.Open();
    never.Pass();
    return "";
  });
  (void)close(errors[1]);
  std::vector<std::string> lines;
  while (lines.size() < count || !body_ended.IsOpen()) {
    const std::optional<std::string> line = ReadLine(errors[0]);
    if (!line) { break; }
    if (lines.size() < count) { lines.push_back(*line); }
  }
  EXPECT_TRUE(body_ended.IsOpen()) << "the process ended or has failures";
  child.Kill();
  (void)close(errors[0]);
  return lines;
}

std::string HookTest::NextCall() {
  return ReadLine(calls[0]).value_or("no call");
}

int HookTest::Threads() {
  return Entries("/proc/self/task");
}

int HookTest::Descriptors() {
  return Entries("/proc/self/fd");
}

std::ostream& operator<<(std::ostream& out, const HookFamily& family) {
  return out << family.name;
}

std::vector<HookFamily> HookFamilyTest::Both() {
  const HookFamily plain = {
      .name = "Plain",
      .queue_prefix = "/mq_",
      .list_suffix = "-mqList",
      .message_size = 120,
      .oem = 0,
      .initialised = &hookFunctionInitFlag,
      .queue = &mqID,
      .Register =
          [](redisContext* ctx, const char* uuid, char** argv) {
            return zephlaneHookFunctionRegister(ctx, uuid, argv, TellPlain);
          },
      .Bytes = [](const std::string& uuid,
                  const std::string& text) { return PlainBytes(uuid, "1f", text, "second"); },
      .Told = [](const std::string& text) { return "plain 1f|" + text + "|second"; }};
  const HookFamily oem = {
      .name = "Oem",
      .queue_prefix = "/oemmq_",
      .list_suffix = "-oem-mqList",
      .message_size = 157,
      .oem = 1,
      .initialised = &hookOemFunctionInitFlag,
      .queue = &OemMqID,
      .Register =
          [](redisContext* ctx, const char* uuid, char** argv) {
            return zephlaneOemHookFunctionRegister(ctx, uuid, argv, TellOem);
          },
      .Bytes =
          [](const std::string& uuid, const std::string& text) {
            return OemBytes(uuid, "1f", text, "second", "third");
          },
      .Told = [](const std::string& text) { return "oem 1f|" + text + "|second|third"; }};
  return {plain, oem};
}

}  // namespace zephlane::test
