// SPDX-License-Identifier: MIT
//
// task create, task update and task show.
#include <memory>
#include <string>

#include <fmt/format.h>

#include "heapText.h"
#include "plainText.h"
#include "session.h"
#include "storeObject.h"
#include "textLimit.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr std::size_t kLongestState = ZEPHLANE_VALUE_SIZE - 1;

struct CreateOptions {
  std::string channel;
  std::string argument;
  bool has_argument = false;
};

struct UpdateOptions {
  std::string key;
  std::string state;
};

int CreateTask(Console& console, const CreateOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const HeapText task(zephlaneCreateAsyncTask(
      session.get(), options.has_argument ? options.argument.c_str() : nullptr,
      options.channel.c_str()));
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  if (!task) {
    console.Tell("The task could not be created.");
    return kExitFailed;
  }
  console.Out(fmt::format("{}\n", task.get()));
  return kExitDone;
}

int UpdateTask(Console& console, const UpdateOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const int result =
      zephlaneUpdateTaskState(session.get(), options.key.c_str(), options.state.c_str());
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  if (result == 0) { return kExitDone; }
  console.Tell(fmt::format("The state of {} could not be recorded.", Printable(options.key)));
  return kExitFailed;
}

int ShowTask(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  redisContext* ctx = session.get();
  const bool is_task = !ReadField(ctx, key, "TaskState").empty();
  if (!is_task && StillConnected(console, ctx)) {
    console.Tell(fmt::format("{} is no task that has a state; the first update gives it one.",
                             Printable(key)));
  }
  if (!is_task) { return kExitFailed; }
  const std::string text = ObjectText(ctx, key, Kind::kHash);
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  console.Out(text);
  return kExitDone;
}

void AddCreate(CLI::App& tasks, Verb& run) {
  CLI::App* sub = tasks.add_subcommand("create", "Create a task and print its UUID");
  sub->footer(
      "Leaves a return message \"Processing\" for the requester and publishes where it is on the\n"
      "requester's channel.\n\n"
      "Example:\n"
      "  zephlane task create --channel firmware-updates --arg image-7");
  const auto options = std::make_shared<CreateOptions>();
  sub->add_option("--channel", options->channel, "Channel on which the requester waits")
      ->required()
      ->type_name("C");
  CLI::Option* argument =
      sub->add_option("--arg", options->argument, "Argument of the message")->type_name("A");
  sub->callback([&run, options, argument] {
    options->has_argument = argument->count() > 0;
    run = [options](Console& console) { return CreateTask(console, *options); };
  });
}

void AddUpdate(CLI::App& tasks, Verb& run) {
  CLI::App* sub = tasks.add_subcommand("update", "Record a new state of a task and announce it");
  sub->footer(
      "The state Completed adds the end time and the status OK.\n\n"
      "Example:\n"
      "  zephlane task update 10000000-0000-0000-0000-000000000001 Completed");
  const auto options = std::make_shared<UpdateOptions>();
  sub->add_option("KEY", options->key, "UUID of the task")->required();
  sub->add_option("STATE", options->state, "New state")->required()->check(AtMost(kLongestState));
  sub->callback([&run, options] {
    run = [options](Console& console) { return UpdateTask(console, *options); };
  });
}

void AddShow(CLI::App& tasks, Verb& run) {
  CLI::App* sub = tasks.add_subcommand("show", "Print the fields of a task");
  sub->footer(
      "Example:\n"
      "  zephlane task show 10000000-0000-0000-0000-000000000001");
  const auto key = std::make_shared<std::string>();
  sub->add_option("KEY", *key, "UUID of the task")->required();
  sub->callback([&run, key] { run = [key](Console& console) { return ShowTask(console, *key); }; });
}

}  // namespace

void AddTask(CLI::App& app, Verb& run) {
  CLI::App* tasks = app.add_subcommand("task", "Create, update or show an asynchronous task");
  tasks->require_subcommand(1);
  tasks->footer(
      "Example:\n"
      "  zephlane task update 10000000-0000-0000-0000-000000000001 Completed");
  AddCreate(*tasks, run);
  AddUpdate(*tasks, run);
  AddShow(*tasks, run);
}

}  // namespace zephlane::tool
