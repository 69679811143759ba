// SPDX-License-Identifier: MIT
//
// hook trigger and hook list.
#include <memory>
#include <string>
#include <utility>

#include <fmt/format.h>

#include "plainText.h"
#include "session.h"
#include "storeObject.h"
#include "textLimit.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr std::size_t kLongestUuid = sizeof(OemHookMessage::uuid) - 1;
constexpr std::size_t kLongestFirst = sizeof(OemHookMessage::arg1) - 1;
constexpr std::size_t kLongestSecond = sizeof(OemHookMessage::arg2) - 1;
constexpr std::size_t kLongestThird = sizeof(OemHookMessage::arg3) - 1;

struct TriggerOptions {
  std::string uuid;
  std::string message_id;
  std::string first;
  std::string second;
  std::string third;
};

std::string CheckMessageId(const std::string& text) {
  return isInvalidMsgID(text.c_str()) == 0
             ? ""
             : "A message ID has at most 5 characters, from 0 to f in code order";
}

int Trigger(Console& console, const TriggerOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  redisContext* ctx = session.get();
  const bool is_heard = zephlaneHasOemMessageHandler(ctx, options.uuid.c_str()) == 0;
  const bool is_sent =
      is_heard && zephlaneTriggerOemHookFunc(ctx, options.uuid.c_str(), options.message_id.c_str(),
                                             options.first.c_str(), options.second.c_str(),
                                             options.third.c_str()) == 0;
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  if (is_sent) { return kExitDone; }
  const std::string uuid = Printable(options.uuid);
  console.Tell(is_heard
                   ? fmt::format("Not every process that takes OEM messages for {} got it.", uuid)
                   : fmt::format("No process takes OEM messages for {}.", uuid));
  return kExitFailed;
}

int List(Console& console, const std::string& uuid) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  std::string text;
  for (const auto& [family, suffix] :
       {std::pair("plain", "-mqList"), std::pair("oem", "-oem-mqList")}) {
    for (const Pair& queue : ReadObject(session.get(), uuid + suffix, Kind::kSet)) {
      text += fmt::format("{} {}\n", family, Printable(queue.value));
    }
  }
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  console.Out(text);
  return kExitDone;
}

void AddTrigger(CLI::App& hooks, Verb& run) {
  CLI::App* sub = hooks.add_subcommand("trigger", "Send an OEM message to all who take it");
  sub->footer(
      "Example:\n"
      "  zephlane hook trigger 10000000-0000-0000-0000-000000000001 00001 on left 7");
  const auto options = std::make_shared<TriggerOptions>();
  sub->add_option("UUID", options->uuid, "Resource that the message is for")
      ->required()
      ->check(AtMost(kLongestUuid));
  sub->add_option("MSGID", options->message_id, "Message ID")
      ->required()
      ->check(CLI::Validator(CheckMessageId, ""));
  sub->add_option("A1", options->first, "First argument")->required()->check(AtMost(kLongestFirst));
  sub->add_option("A2", options->second, "Second argument")
      ->required()
      ->check(AtMost(kLongestSecond));
  sub->add_option("A3", options->third, "Third argument")->required()->check(AtMost(kLongestThird));
  sub->callback([&run, options] {
    run = [options](Console& console) { return Trigger(console, *options); };
  });
}

void AddList(CLI::App& hooks, Verb& run) {
  CLI::App* sub = hooks.add_subcommand("list", "Print the queues of those who listen");
  sub->footer(
      "Prints \"plain\" or \"oem\" and the queue's name, one for each line.\n\n"
      "Example:\n"
      "  zephlane hook list 10000000-0000-0000-0000-000000000001");
  const auto uuid = std::make_shared<std::string>();
  sub->add_option("UUID", *uuid, "Resource")->required();
  sub->callback([&run, uuid] { run = [uuid](Console& console) { return List(console, *uuid); }; });
}

}  // namespace

void AddHook(CLI::App& app, Verb& run) {
  CLI::App* hooks = app.add_subcommand("hook", "Send to hook functions, or list who has them");
  hooks->require_subcommand(1);
  hooks->footer(
      "Example:\n"
      "  zephlane hook list 10000000-0000-0000-0000-000000000001");
  AddTrigger(*hooks, run);
  AddList(*hooks, run);
}

}  // namespace zephlane::tool
