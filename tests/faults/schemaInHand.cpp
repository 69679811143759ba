// SPDX-License-Identifier: MIT
#include "faults/schemaInHand.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>

#include "support/owners.h"

namespace zephlane::test {

namespace {

constexpr char kSchemaName[] = "Thing.json";

ParseContext context{};
json_t* value = nullptr;

constexpr char kConfiguration[] = R"({
  "DmtfSchemaUri": "http://schemas.example.com/v1/",
  "OemSchemaUris": [{ "Uri": "http://oem.example.com/v1/", "Directory": "oem" }]
})";

// Keywords of every kind, references of every kind and the extension keywords.
constexpr char kRoot[] = R"({
  "$schema": "http://schemas.example.com/draft-04#",
  "title": "Root",
  "type": "object",
  "typeId": "00000000-0000-0000-0001-ffffffffffff",
  "instanceCollection": "20000000-0000-0000-0000-0000000000AA",
  "ttl": 60,
  "description": "Not stored",
  "properties": {
    "Id": { "type": ["string", "null"], "readonly": true },
    "Status": { "$ref": "http://schemas.example.com/v1/Resource.json#/definitions/Status" },
    "Self": { "$ref": "#" },
    "Chassis": { "$ref": "Chassis.json" },
    "Links": { "type": "array", "items": { "$ref": "#/definitions/Link" }, "uniqueItems": true },
    "Either": { "anyOf": [{ "$ref": "#/definitions/Link" }, { "type": "null" }, { "$ref": "#" }] }
  },
  "required": ["Id"],
  "patternProperties": { "^X": { "type": "integer", "minimum": 1 } },
  "additionalProperties": false,
  "definitions": { "Link": { "type": "string", "enum": ["a", "b"] } },
  "Messages": {
    "type": "object",
    "values": [
      {
        "id": "Fan.1",
        "MsgType": "Warning",
        "Param": ["#/properties/Id/type", "#/definitions/Link/type"]
      }
    ]
  }
})";

constexpr char kChassis[] = R"({
  "title": "Chassis",
  "properties": {
    "Root": { "$ref": "Root.json" },
    "Resource": { "$ref": "Resource.json" }
  }
})";

constexpr char kResource[] = R"({
  "title": "Resource",
  "definitions": {
    "Status": { "type": "object", "properties": { "State": { "enum": ["On", "Off"] } } }
  }
})";

void WriteFile(const std::string& path, const char* text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path) << text;
}

}  // namespace

void StartTree(Stage& stage) {
  (void)hashTreeInit(stage.store);
}

void HoldValue(Stage& /*stage*/, const char* text) {
  value = json_loads(text, JSON_DECODE_ANY, nullptr);
}

json_t* HeldValue() {
  return value;
}

ParseContext* HeldSchema() {
  return &context;
}

const char* HeldRoot() {
  return context.rootHashID;
}

void WriteSchemaFiles() {
  static bool are_written = false;
  if (std::exchange(are_written, true)) { return; }
  WriteFile(kConfigurationFile, kConfiguration);
  WriteFile(kRootFile, kRoot);
  WriteFile(std::string(kSchemaFiles) + "/Chassis.json", kChassis);
  WriteFile(std::string(kSchemaFiles) + "/Resource.json", kResource);
  // Until a run has set the directory of schema files, they are looked for in the present one.
  std::filesystem::current_path(kSchemaFiles);
}

void HoldSchema(Stage& stage, const char* document) {
  WriteSchemaFiles();
  (void)loadSchemaURIConf(kConfigurationFile);
  schemaReferenceListInit();
  StartTree(stage);
  HoldValue(stage, document);
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "Messages");
  context = ParseContext{};
  context.connection = stage.ctx;
  context.document = value;
  context.routeMap = parserRouteCreateNode("#");
  (void)std::snprintf(context.resourcePath.schemaName, sizeof(context.resourcePath.schemaName),
                      "%s", kSchemaName);
  const CString root(hashTreeCreateNewHash(stage.store, "DummyKey", "DummyValue"));
  (void)std::snprintf(context.rootHashID, sizeof(context.rootHashID), "%s", root.get());
  (void)schemaReferTableInsertEntry(kSchemaName, context.rootHashID);
}

void ReleaseSchema(Stage& /*stage*/) {
  parserRouteFreeRouteMap(context.routeMap);
  context.routeMap = nullptr;
  json_decref(value);
  value = nullptr;
  G_nSchemaURICount = -1;
  propertyRuxoMessage[0] = '\0';
}

void FreeText(char* text) {
  const CString owner(text);
}

}  // namespace zephlane::test
