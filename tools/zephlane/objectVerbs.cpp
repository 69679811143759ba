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

int FailForMissing(Console& console, const Session& session, const std::string& key) {
  if (StillConnected(console, session.get())) {
    console.Tell(fmt::format("There is no key {} in the store.", Printable(key)));
  }
  return kFailed;
}

std::string ObjectText(redisContext* ctx, const std::string& key, Kind kind) {
  std::string text;
  for (const Pair& pair : ReadObject(ctx, key, kind)) {
    if (kind == Kind::kHash) { text += Printable(pair.name) + " = "; }
    text += Printable(pair.value) + "\n";
  }
  return text;
}

int Get(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kFailed; }
  const Kind kind = KindOf(session.get(), key);
  const std::string type = kind == Kind::kOther ? TypeWord(session.get(), key) : "";
  if (type == kNone) { return FailForMissing(console, session, key); }
  if (!type.empty() && type != kString) {
    console.Tell(fmt::format("{} is a {}; only hashes, sets, lists and strings can be shown.",
                             Printable(key), type));
    return kFailed;
  }
  const std::string text = type == kString ? ReadString(session.get(), key) + "\n"
                                           : ObjectText(session.get(), key, kind);
  if (!StillConnected(console, session.get())) { return kFailed; }
  console.Out(text);
  return kDone;
}

int Type(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kFailed; }
  const std::string word = TypeWord(session.get(), key);
  if (word == kNone) { return FailForMissing(console, session, key); }
  console.Out(word + "\n");
  return kDone;
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
  AddKeyVerb(app, run, Get, "get",
             "Print one object: the fields of a hash as \"field = value\", the members of a set,\n"
             "the items of a list in their order, the value of a string",
             "Example:\n"
             "  zephlane get zephlaneVariable");
}

void AddType(CLI::App& app, Verb& run) {
  AddKeyVerb(app, run, Type, "type",
             "Print the type of a key: hash, set, list or another of Redis' words",
             "It fails when there is no such key.\n\n"
             "Example:\n"
             "  zephlane type ZephlaneSchemaInstances");
}

}  // namespace zephlane::tool
