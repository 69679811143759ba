// SPDX-License-Identifier: MIT
//
// validate: whether an object fits its definition, and if not, why.
#include <memory>
#include <string>

#include <fmt/format.h>

#include "complaints.h"
#include "plainText.h"
#include "schemaNames.h"
#include "session.h"
#include "storeObject.h"
#include "verbs.h"

namespace zephlane::tool {

namespace {

// Why the object cannot be tested at all; empty when it can.
std::string Obstacle(redisContext* ctx, const std::string& key) {
  if (KindOf(ctx, key) != Kind::kHash) { return "is no hash"; }
  if (zephlaneIsLink(key.c_str()) == 0) { return "is no UUID, as the keys of objects are"; }
  if (ReadField(ctx, key, "typeID").empty()) {
    return "has no typeID, which names its definition.\n  Write it:     zephlane annotate " +
           Printable(key) + " SCHEMA";
  }
  return "";
}

std::string ReportText(Console& console, redisContext* ctx, const std::string& key, bool is_valid) {
  const std::string type = ReadField(ctx, key, "typeID");
  std::string text =
      fmt::format("Result:      {}\nDefinition:  {}\n", is_valid ? "valid" : "invalid",
                  Printable(SchemaName(ReadSchemaNames(ctx), type)));
  if (is_valid) { return text; }
  for (const Complaint& complaint : FindComplaints(console, ctx, key, type)) {
    text += fmt::format("Property:    {}: {}\n", Printable(complaint.property), complaint.reason);
  }
  return text;
}

int Validate(Console& console, const std::string& key) {
  const Session session = OpenSession(console);
  if (!session) { return kExitFailed; }
  redisContext* ctx = session.get();
  const std::string obstacle = Obstacle(ctx, key);
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  if (!obstacle.empty()) {
    console.Tell(fmt::format("{} {}", Printable(key), obstacle));
    return kExitFailed;
  }
  const bool is_valid = zephlaneValidateResponseObject(ctx, key.c_str()) == 0;
  const std::string text = ReportText(console, ctx, key, is_valid);
  if (!StillConnected(console, ctx)) { return kExitFailed; }
  console.Out(text);
  return is_valid ? kExitDone : kExitFailed;
}

}  // namespace

void AddValidate(CLI::App& app, Verb& run) {
  CLI::App* sub = app.add_subcommand("validate", "Test whether an object fits its definition");
  sub->footer(
      "The object's field typeID names the definition. Prints the result and each property that\n"
      "is missing or not allowed, with the reason; exit code 1 when there is one.\n\n"
      "Example:\n"
      "  zephlane validate 10000000-0000-0000-0000-000000000001");
  const auto key = std::make_shared<std::string>();
  sub->add_option("KEY", *key, "Key of the object, a hash")->required();
  sub->callback([&run, key] { run = [key](Console& console) { return Validate(console, *key); }; });
}

}  // namespace zephlane::tool
