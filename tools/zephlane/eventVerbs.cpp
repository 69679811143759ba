// SPDX-License-Identifier: MIT
//
// event send and event show.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "details.h"
#include "heapText.h"
#include "plainText.h"
#include "session.h"
#include "storeObject.h"
#include "textLimit.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr std::size_t kLongestName = ZEPHLANE_VALUE_SIZE - 1;
constexpr std::size_t kLongestArgument = ZEPHLANE_VALUE_SIZE - 1;
constexpr std::size_t kLongestText = ZEPHLANE_EVENT_TEXT_SIZE - 1;
constexpr std::size_t kLongestId = ZEPHLANE_ID_SIZE - 1;
constexpr char kOnlyMember[] = "0";
constexpr int kSend = 0;

struct EventOptions {
  std::string name;
  std::string oem;
  std::string type;
  std::string severity;
  std::string message;
  std::string message_id;
  std::vector<std::string> arguments;
  std::string origin;
};

// Precondition: the text fits, which the options' checks see to.
template <std::size_t kSize>
void Copy(char (&out)[kSize], const std::string& text) {
  text.copy(out, kSize - 1);
}

using Argument = std::array<char, ZEPHLANE_VALUE_SIZE>;
static_assert(sizeof(Argument) == sizeof(*EventRecord::MessageArgs));

std::vector<Argument> Arguments(const std::vector<std::string>& texts) {
  std::vector<Argument> arguments(texts.size());
  for (std::size_t i = 0; i < texts.size(); ++i) {
    texts[i].copy(arguments[i].data(), kLongestArgument);
  }
  return arguments;
}

// Writes the event with its record; the UUID, or null when it could not be stored.
HeapText Prepare(redisContext* ctx, const EventOptions& options) {
  std::vector<Argument> arguments = Arguments(options.arguments);
  const auto record = std::make_unique<EventRecord>();
  Copy(record->MemberId, kOnlyMember);
  Copy(record->EventType, options.type);
  Copy(record->Severity, options.severity);
  Copy(record->Message, options.message);
  Copy(record->MessageId, options.message_id);
  Copy(record->OriginOfCondition, options.origin);
  record->MessageArgsCount = static_cast<int>(arguments.size());
  record->MessageArgs = reinterpret_cast<char(*)[ZEPHLANE_VALUE_SIZE]>(arguments.data());
  return HeapText(
      zephlanePrepareEventObject(ctx, options.name.c_str(), options.oem.c_str(), record.get(), 1));
}

int SendEvent(Console& console, const EventOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const auto event = Prepare(session.get(), options);
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  if (!event) {
    console.Tell(
        "The event could not be stored; what was written before stays.\n"
        "  It needs the schema Event.1.0.0 in the store, and all properties that this requires.");
    return kExitFailed;
  }
  const bool sent = zephlaneProcessEventObject(session.get(), event.get(), kSend) == 0;
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  if (!sent) {
    console.Tell(fmt::format("The event {} is stored, but could not be sent.", event.get()));
    return kExitFailed;
  }
  console.Out(fmt::format("{}\n", event.get()));
  return kExitDone;
}

int ShowEvent(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const bool is_event = !ReadField(session.get(), key, "Events").empty();
  const Json event = ReadEventDetails(session.get(), key);
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  if (!is_event) {
    console.Tell(fmt::format("{} is no event: it has no records.", Printable(key)));
    return kExitFailed;
  }
  console.Out(IndentedText(event.get()));
  return kExitDone;
}

void AddSend(CLI::App& events, Verb& run) {
  CLI::App* sub =
      events.add_subcommand("send", "Store an event of one record, announce it, print its UUID");
  sub->footer(
      "Example:\n"
      "  zephlane event send --name Overheat --type Alert --message-id 1.0.Hot --arg left --arg "
      "90");
  const auto options = std::make_shared<EventOptions>();
  const auto add = [sub](const char* name, std::string& text, const char* help,
                         std::size_t longest) {
    return sub->add_option(name, text, help)->check(AtMost(longest))->type_name("TEXT");
  };
  add("--name", options->name, "Name of the event", kLongestName);
  add("--oem", options->oem, "OEM text of the event", kLongestId);
  add("--type", options->type, "Type, such as Alert", kLongestText);
  add("--severity", options->severity, "Severity, such as Warning", kLongestText);
  add("--message", options->message, "Message for people", kLongestText);
  add("--message-id", options->message_id, "Key of the message in its registry", kLongestText);
  sub->add_option("--arg", options->arguments, "Arguments of the message, in their order")
      ->check(AtMost(kLongestArgument))
      ->type_name("TEXT");
  add("--origin", options->origin, "Key in WEB-OBJ-URI-MAP of what caused it", kLongestId);
  sub->callback([&run, options] {
    run = [options](Console& console) { return SendEvent(console, *options); };
  });
}

void AddShow(CLI::App& events, Verb& run) {
  CLI::App* sub = events.add_subcommand("show", "Print an event with its records");
  sub->footer(
      "Example:\n"
      "  zephlane event show 10000000-0000-0000-0000-000000000001");
  const auto key = std::make_shared<std::string>();
  sub->add_option("KEY", *key, "UUID of the event")->required();
  sub->callback(
      [&run, key] { run = [key](Console& console) { return ShowEvent(console, *key); }; });
}

}  // namespace

void AddEvent(CLI::App& app, Verb& run) {
  CLI::App* events = app.add_subcommand("event", "Send or show an event");
  events->require_subcommand(1);
  events->footer(
      "Example:\n"
      "  zephlane event show 10000000-0000-0000-0000-000000000001");
  AddSend(*events, run);
  AddShow(*events, run);
}

}  // namespace zephlane::tool
