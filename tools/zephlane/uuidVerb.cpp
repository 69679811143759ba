// SPDX-License-Identifier: MIT
//
// uuid: draws names from the store's counter.
#include <memory>
#include <string>

#include <fmt/format.h>

#include "session.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr unsigned kMostUuids = 1'000'000;

void TellNoUuid(Console& console, const std::string& reached) {
  // The buffer holds the maximum when the counter has come to it, and nothing when a lock failed.
  console.Tell(reached.empty()
                   ? std::string("No UUID could be drawn: /tmp/uuidLock.dat cannot be locked.")
                   : fmt::format("No UUID is left: the counter autoUUID has reached {}.\n"
                                 "  Field maximumUUID of defaultSettings raises the maximum.",
                                 reached));
}

int Uuid(Console& console, unsigned count) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  for (unsigned i = 0; i < count && !console.OutFailed(); ++i) {
    char uuid[ZEPHLANE_ID_SIZE] = "";
    const bool drawn = zephlaneGenerateUUID(session.get(), uuid) == 0;
    // A UUID that could not be stored counts as drawn, but is not kept from others.
    if (!StillConnected(console, session.get())) { return kExitFailed; }
    if (!drawn) {
      TellNoUuid(console, uuid);
      return kExitFailed;
    }
    console.Out(fmt::format("{}\n", uuid));
  }
  return kExitDone;
}

}  // namespace

void AddUuid(CLI::App& app, Verb& run) {
  CLI::App* sub =
      app.add_subcommand("uuid", "Draw UUIDs that no other process gets, one for each line");
  sub->footer(
      "Example:\n"
      "  zephlane uuid -n 3");
  const auto count = std::make_shared<unsigned>(1);
  sub->add_option("-n,--count", *count, "How many (1)")
      ->check(CLI::Range(1U, kMostUuids))
      ->type_name("COUNT");
  sub->callback(
      [&run, count] { run = [count](Console& console) { return Uuid(console, *count); }; });
}

}  // namespace zephlane::tool
