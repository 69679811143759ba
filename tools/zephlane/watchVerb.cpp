// SPDX-License-Identifier: MIT
//
// watch: prints what is announced, until it is interrupted. One connection receives, a second one
// reads the objects.
#include <poll.h>
#include <signal.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "details.h"
#include "plainText.h"
#include "session.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr char kEvents[] = "EVENT_OCCURRED";
constexpr char kTasks[] = "TASK_STATE_CHANGE";
constexpr char kTrees[] = "WebServiceUpdateTree";

struct WatchOptions {
  bool json = false;
  unsigned count = 0;  // announcements after which it ends; 0 for none
};

// SIGINT as something that can be waited for together with a connection.
class Interrupt {
 public:
  Interrupt() {
    sigset_t interrupt;
    (void)sigemptyset(&interrupt);
    (void)sigaddset(&interrupt, SIGINT);
    (void)sigprocmask(SIG_BLOCK, &interrupt, &before_);
    fd_ = signalfd(-1, &interrupt, SFD_CLOEXEC);
  }
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;
  ~Interrupt() {
    signalfd_siginfo taken{};
    pollfd input{fd_, POLLIN, 0};
    if (poll(&input, 1, 0) > 0) { (void)!read(fd_, &taken, sizeof(taken)); }
    (void)close(fd_);
    (void)sigprocmask(SIG_SETMASK, &before_, nullptr);
  }
  [[nodiscard]] int Get() const {
    return fd_;
  }

 private:
  int fd_;
  sigset_t before_;
};

struct Announcement {
  std::string channel;
  std::string message;
};

// The objects that the notice of a tree change names, by their keys.
Json ReadNamedObjects(redisContext* ctx, const std::string& notice) {
  Json objects(json_object());
  std::istringstream words(notice);
  std::string word;
  (void)(words >> word);  // the action
  while (words >> word) {
    Json details = ReadDetails(ctx, word);
    if (!json_is_null(details.get())) { SetMember(objects.get(), word, std::move(details)); }
  }
  return objects;
}

Json ReadObjects(redisContext* ctx, const Announcement& announcement) {
  if (announcement.channel == kEvents) { return ReadEventDetails(ctx, announcement.message); }
  if (announcement.channel == kTasks) { return ReadDetails(ctx, announcement.message); }
  return ReadNamedObjects(ctx, announcement.message);
}

std::string AnnouncementText(const Announcement& announcement, Json objects, bool json) {
  if (!json) {
    const std::string text = InlineText(objects.get());
    return fmt::format("{} {}{}{}\n", Printable(announcement.channel),
                       Printable(announcement.message), text.empty() ? "" : ": ", text);
  }
  const Json line(json_object());
  SetMember(line.get(), "channel", JsonText(announcement.channel));
  SetMember(line.get(), "message", JsonText(announcement.message));
  const char* name = announcement.channel == kTrees ? "objects" : "object";
  SetMember(line.get(), name, std::move(objects));
  return JsonLine(line.get()) + "\n";
}

class Watch {
 public:
  Watch(Console& console, const WatchOptions& options) : console_(console), options_(options) {}

  int Run() {
    receiving_ = OpenSession(console_);
    if (!receiving_) { return kExitFailed; }
    reading_ = OpenSession(console_);
    if (!reading_) { return kExitFailed; }
    // All in one command: an announcement between two could be taken for the second one's reply.
    (void)redisAppendCommand(receiving_.get(), "SUBSCRIBE %s %s %s", kEvents, kTasks, kTrees);
    if (!Flush()) { return kExitFailed; }
    while (Wait()) {
      if (redisBufferRead(receiving_.get()) != REDIS_OK || !TakeReceived()) { break; }
    }
    const bool connected =
        StillConnected(console_, receiving_.get()) && StillConnected(console_, reading_.get());
    return connected && !console_.OutFailed() ? kExitDone : kExitFailed;
  }

 private:
  bool Flush() {
    int done = 0;
    while (done == 0 && redisBufferWrite(receiving_.get(), &done) == REDIS_OK) {}
    return StillConnected(console_, receiving_.get());
  }

  // Whether something was received, or else an interruption.
  [[nodiscard]] bool Wait() const {
    std::array<pollfd, 2> inputs = {{{interrupt_.Get(), POLLIN, 0}, {receiving_->fd, POLLIN, 0}}};
    while (poll(inputs.data(), inputs.size(), -1) < 0 && errno == EINTR) {}
    return inputs[0].revents == 0;
  }

  // Whether to go on.
  bool TakeReceived() {
    for (;;) {
      void* reply = nullptr;
      if (redisGetReplyFromReader(receiving_.get(), &reply) != REDIS_OK) { return false; }
      if (reply == nullptr) { return true; }
      const Answer answer(static_cast<redisReply*>(reply));
      if (IsAnnouncement(*answer) && !Show(*answer)) { return false; }
    }
  }

  static bool IsAnnouncement(const redisReply& reply) {
    return reply.type == REDIS_REPLY_ARRAY && reply.elements == 3 &&
           reply.element[2]->type == REDIS_REPLY_STRING &&
           std::strcmp(reply.element[0]->str, "message") == 0;
  }

  bool Show(const redisReply& reply) {
    const Announcement announcement = {reply.element[1]->str, reply.element[2]->str};
    Json objects = ReadObjects(reading_.get(), announcement);
    if (reading_->err != 0) { return false; }
    console_.Out(AnnouncementText(announcement, std::move(objects), options_.json));
    ++shown_;
    return !console_.OutFailed() && (options_.count == 0 || shown_ < options_.count);
  }

  Console& console_;
  const WatchOptions& options_;
  Interrupt interrupt_;
  Session receiving_;
  Session reading_;
  unsigned shown_ = 0;
};

}  // namespace

void AddWatch(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand("watch", "Print what is announced, a line for each");
  sub->footer(
      "Listens for events, task states and tree changes, and prints channel, message and the\n"
      "fields of the objects that the message names. An interruption (Ctrl-C) ends it well.\n\n"
      "Examples:\n"
      "  zephlane watch\n"
      "  zephlane watch --json --count 1");
  const auto options = std::make_shared<WatchOptions>();
  sub->add_flag("--json", options->json, "Print a JSON object for each");
  sub->add_option("--count", options->count, "End after so many announcements")
      ->check(CLI::PositiveNumber)
      ->type_name("N");
  sub->callback([&run, options] {
    run = [options](Console& console) { return Watch(console, *options).Run(); };
  });
}

}  // namespace zephlane::tool
