// SPDX-License-Identifier: MIT
//
// rm: deletes a key, or an object with all below it.
#include <memory>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "plainText.h"
#include "session.h"
#include "storeObject.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

struct RmOptions {
  std::string key;
  bool tree = false;
  std::vector<std::string> fields;
};

int DeleteTree(redisContext* ctx, const RmOptions& options) {
  std::vector<const char*> fields;
  for (const std::string& field : options.fields) { fields.push_back(field.c_str()); }
  return zephlaneDeleteSubTreeV21(ctx, options.key.c_str(), fields.data(),
                                  static_cast<int>(fields.size()));
}

int Delete(redisContext* ctx, const RmOptions& options) {
  if (options.tree) { return DeleteTree(ctx, options); }
  return KindOf(ctx, options.key) == Kind::kHash ? zephlaneDeleteHash(ctx, options.key.c_str())
                                                 : zephlaneDeleteKey(ctx, options.key.c_str());
}

int Rm(Console& console, const RmOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  redisContext* ctx = session.get();
  if (TypeWord(ctx, options.key) == "none") {
    return FailForMissing(console, session, options.key);
  }
  const bool deleted = Delete(ctx, options) == 0;
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  if (deleted) { return kExitDone; }
  console.Tell(
      fmt::format("{} could not be deleted{}.", Printable(options.key),
                  options.tree ? " with all below it; what was not reached yet is left" : ""));
  return kExitFailed;
}

}  // namespace

void AddRm(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand("rm", "Delete a key, or an object with all below it");
  sub->footer(
      "A hash goes with its companion, which holds its time-to-live. Children are the members of\n"
      "a set, the items of a list, and what the named fields of a hash name; they are deleted\n"
      "before their parents.\n\n"
      "Examples:\n"
      "  zephlane rm 10000000-0000-0000-0000-000000000001\n"
      "  zephlane rm --tree 10000000-0000-0000-0000-000000000001 --field Fans Status");
  const auto options = std::make_shared<RmOptions>();
  sub->add_option("KEY", options->key, "Key of any type")->required();
  CLI::Option* tree = sub->add_flag("--tree", options->tree, "Delete all below it too");
  sub->add_option("--field", options->fields, "Fields of hashes that name children")
      ->needs(tree)
      ->type_name("NAME");
  sub->callback(
      [&run, options] { run = [options](Console& console) { return Rm(console, *options); }; });
}

}  // namespace zephlane::tool
