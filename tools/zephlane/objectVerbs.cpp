// SPDX-License-Identifier: MIT
//
// get and type: one object as it is stored.
#include <memory>
#include <string>

#include <fmt/format.h>

#include "plainText.h"
#include "session.h"
#include "storeObject.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

constexpr char kNone[] = "none";
constexpr char kString[] = "string";

int Get(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const Kind kind = KindOf(session.get(), key);
  const std::string type = kind == Kind::kOther ? TypeWord(session.get(), key) : "";
  if (type == kNone) { return FailForMissing(console, session, key); }
  if (!type.empty() && type != kString) {
    console.Tell(fmt::format("{} is a {}; only hashes, sets, lists and strings can be shown.",
                             Printable(key), type));
    return kExitFailed;
  }
  const std::string text = type == kString ? ReadString(session.get(), key) + "\n"
                                           : ObjectText(session.get(), key, kind);
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  console.Out(text);
  return kExitDone;
}

int Type(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const std::string word = TypeWord(session.get(), key);
  if (word == kNone) { return FailForMissing(console, session, key); }
  console.Out(word + "\n");
  return kExitDone;
}

void AddKeyVerb(CLI::App& app, Verb& run, int (*verb)(Console&, const std::string&),
                const std::string& name, const std::string& description,
                const std::string& footer) {
  CLI::App* sub = app.add_subcommand(name, description);
  sub->footer(footer);
  const auto key = std::make_shared<std::string>();
  sub->add_option("KEY", *key, "Key of the object")->required();
  sub->callback(
      [&run, verb, key] { run = [verb, key](Console& console) { return verb(console, *key); }; });
}

}  // namespace

void AddGet(CLI::App& app, Verb& run) {
  AddKeyVerb(
      app, run, Get, "get", "Print one object as it is stored",
      "Prints the fields of a hash as \"field = value\" and the members of a set, both sorted,\n"
      "the items of a list in their order, or the value of a string.\n\n"
      "Example:\n"
      "  zephlane get ZephlaneSchemaTitleUuidHash");
}

void AddType(CLI::App& app, Verb& run) {
  AddKeyVerb(
      app, run, Type, "type", "Print the type of a key",
      "Prints hash, set, list or another of Redis' words, such as string. It fails when there\n"
      "is no such key.\n\n"
      "Example:\n"
      "  zephlane type ZephlaneSchemaInstances");
}

}  // namespace zephlane::tool
