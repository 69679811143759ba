// SPDX-License-Identifier: MIT
//
// tree: an object with all that it leads to.
#include <cstdlib>
#include <memory>
#include <string>

#include <fmt/format.h>

#include "plainText.h"
#include "schemaNames.h"
#include "session.h"
#include "storeObject.h"
#include "treeLoader.h"
#include "treeText.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

struct TreeOptions {
  std::string key;
  TreeRange range;
  bool whole_keys = false;
};

constexpr char kFooter[] =
    "Values that name a hash, a set or a list are followed. Each object is expanded once, at the\n"
    "place nearest to the root; other places, cycles among them, say \"see above\" or \"see "
    "below\".\n"
    "What belongs to another schema is named (→) and not expanded, unless --all is given.\n\n"
    "Examples:\n"
    "  zephlane tree 00000000-0000-0000-0001-ffffffffffff --depth 2\n"
    "  zephlane tree Chassis.1.0.0\n"
    "  zephlane tree Resource.1.0.0/Status";

bool WantsColours(const Console& console) {
  const char* refusal = std::getenv("NO_COLOR");
  return console.OutIsTerminal() && (refusal == nullptr || *refusal == '\0');
}

// A definition by the name that trees give it: the schema's title, a slash and its own name.
std::string FindDefinition(redisContext* ctx, const std::string& name) {
  const std::size_t slash = name.rfind('/');
  if (slash == std::string::npos) { return ""; }
  const std::string schema = FindSchema(ctx, name.substr(0, slash));
  const std::string definitions = ReadField(ctx, schema, "definitions");
  return ReadField(ctx, definitions, name.c_str() + slash + 1);
}

// The object that is meant: a key, or else the schema or definition of that name. Empty when there
// is none.
std::string FindRoot(redisContext* ctx, const std::string& name) {
  for (const std::string& key : {name, FindSchema(ctx, name), FindDefinition(ctx, name)}) {
    if (KindOf(ctx, key) != Kind::kOther) { return key; }
  }
  return "";
}

int Tree(Console& console, const TreeOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  const std::string root = FindRoot(session.get(), options.key);
  if (root.empty()) {
    if (StillConnected(console, session.get())) {
      console.Tell(
          fmt::format("{} is neither a hash, a set or a list nor the title of a schema or the name "
                      "of a definition.",
                      Printable(options.key)));
    }
    return kExitFailed;
  }
  const TreeModel model = LoadTree(session.get(), root, options.range);
  if (!StillConnected(console, session.get())) { return kExitFailed; }
  console.Out(TreeText(model, {WantsColours(console), options.whole_keys}));
  return kExitDone;
}

}  // namespace

void AddTree(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand("tree", "Print an object and all that it leads to");
  sub->footer(kFooter);
  const auto options = std::make_shared<TreeOptions>();
  sub->add_option("KEY", options->key, "Key of the object, title of a schema, or title/definition")
      ->required();
  sub->add_option("--depth", options->range.depth, "Levels to show below the object (all)")
      ->check(CLI::Range(0U, kDeepestTree))
      ->type_name("N");
  sub->add_flag("--all", options->range.all, "Expand what belongs to other schemas too");
  sub->add_flag("--keys", options->whole_keys, "Print the whole key of every object");
  sub->callback(
      [&run, options] { run = [options](Console& console) { return Tree(console, *options); }; });
}

}  // namespace zephlane::tool
