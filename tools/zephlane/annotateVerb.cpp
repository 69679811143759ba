// SPDX-License-Identifier: MIT
//
// annotate: stamps an object, and all that it links to, with the definitions of its schema.
#include <memory>
#include <string>

#include <fmt/format.h>

#include "plainText.h"
#include "schemaNames.h"
#include "session.h"
#include "storeObject.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

struct AnnotateOptions {
  std::string key;
  std::string schema;
  bool id_ref = false;
};

// The ID that is meant: that of a hash, or the title of a schema. Empty when it is neither.
std::string FindSchemaRoot(redisContext* ctx, const std::string& name) {
  return KindOf(ctx, name) == Kind::kHash ? name : FindSchema(ctx, name);
}

int Annotate(Console& console, const AnnotateOptions& options) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  redisContext* ctx = session.get();
  const std::string schema = FindSchemaRoot(ctx, options.schema);
  if (schema.empty()) {
    if (StillConnected(console, ctx)) {
      console.Tell(fmt::format("{} is neither a hash nor the title of a schema.",
                               Printable(options.schema)));
    }
    return kExitFailed;
  }
  const int result =
      zephlaneInsertTypeID(ctx, options.key.c_str(), schema.c_str(), options.id_ref ? 1 : 0);
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  if (result != 0) {
    console.Tell(
        fmt::format("{} could not be stamped whole; stamps already written stay.\n"
                    "  A property that links to an object, but that the definition does not name, "
                    "stops the walk.",
                    Printable(options.key)));
    return kExitFailed;
  }
  const std::string type = ReadField(ctx, options.key, "typeID");
  console.Out(
      fmt::format("{} {}\n", Printable(type), Printable(SchemaName(ReadSchemaNames(ctx), type))));
  return kExitDone;
}

}  // namespace

void AddAnnotate(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand("annotate", "Stamp an object with the schema that it follows");
  sub->footer(
      "Writes the field typeID into the object and into all that it links to, and prints that of\n"
      "the object and its name. An object that has one is left as it is.\n\n"
      "Example:\n"
      "  zephlane annotate 10000000-0000-0000-0000-000000000001 Chassis.1.0.0");
  const auto options = std::make_shared<AnnotateOptions>();
  sub->add_option("KEY", options->key, "Key of the object, a hash")->required();
  sub->add_option("SCHEMA", options->schema, "Title of the schema, or the ID of its root hash")
      ->required();
  sub->add_flag("--id-ref", options->id_ref,
                "Where a property offers alternatives, take the link type, not the first other");
  sub->callback([&run, options] {
    run = [options](Console& console) { return Annotate(console, *options); };
  });
}

}  // namespace zephlane::tool
