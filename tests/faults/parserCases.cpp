// SPDX-License-Identifier: MIT
//
// The parsers, reference linking and the driver of the schema interpreter.
#include "faults/outcomes.h"
#include "faults/schemaInHand.h"

namespace zephlane::test {

namespace {

constexpr int kReferences = 3600;
constexpr char kRoute[] = "Thing.json#/definitions/Link";

constexpr char kDocument[] = R"({
  "title": "Thing",
  "ttl": 60,
  "properties": {
    "Id": { "type": ["string", "null"] },
    "Link": { "$ref": "#/definitions/Link" },
    "Status": { "$ref": "http://schemas.example.com/v1/Resource.json#/definitions/Status" },
    "Chassis": { "$ref": "Chassis.json" }
  },
  "required": ["Id"],
  "definitions": { "Link": { "type": "string" } },
  "Messages": {
    "type": "object",
    "values": [{ "id": "1", "MsgType": "Warning", "Param": ["#/properties/Id/type"] }]
  }
})";

constexpr char kObject[] = R"({
  "type": "object",
  "enum": ["a", "b"],
  "anyOf": [{ "$ref": "#/definitions/Link" }, { "type": "null" }, { "$ref": "#" }],
  "items": { "$ref": "#" }
})";

constexpr char kMembers[] = R"({
  "One": { "type": "string" },
  "Two": { "$ref": "Resource.json" },
  "Three": ["a"],
  "Four": 4
})";

constexpr char kElements[] = R"([
  { "$ref": "#/definitions/Link" },
  { "type": "null", "items": { "type": "string" } },
  { "$ref": "Chassis.json" }
])";

constexpr char kMessages[] = R"({
  "type": "object",
  "values": [
    { "id": "1", "MsgType": "Warning", "Param": ["#/properties/Id/type"] },
    { "id": "2" }
  ]
})";

constexpr char kReference[] =
    R"("http://schemas.example.com/v1/Resource.json#/definitions/Status")";

template <const char* document>
void Hold(Stage& stage) {
  HoldSchema(stage, document);
}

constexpr char kEmpty[] = "{}";

constexpr char kWithTypeId[] = R"({"typeId": "20000000-0000-0000-0000-0000000000AB"})";

ResourcePath reference_path;

int RecordReference() {
  return schemaRefListInsertEntry(HeldRoot(), "Thing.json", kRoute, "Link", "#/definitions/Link",
                                  &reference_path, 0, kReferences);
}

void HoldReference(Stage& stage) {
  HoldSchema(stage, kEmpty);
  reference_path = ResourcePath{};
  (void)parseResourcePath("Thing.json#/definitions/Link", &reference_path);
}

// A reference that leads from the root hash over "definitions" to a type.
void HoldRecordedReference(Stage& stage) {
  HoldReference(stage);
  (void)RecordReference();
  FreeText(hashTreeParentInsertPropertyHash(stage.store, "definitions", "Link", "string"));
  (void)hashTreeHashAddSinglePair(stage.store, "definitions", "definitions", HeldRoot());
}

constexpr FunctionCase kCases[] = {
    {.name = "parseReferenceSchemaFile",
     .prepare = Hold<kEmpty>,
     .call = [](Stage& s) { return HeapText(parseReferenceSchemaFile(s.ctx, "Chassis.json"), ""); },
     .cleanup = ReleaseSchema},
    {.name = "generateSchemaRootHash",
     .prepare = Hold<kWithTypeId>,
     .call =
         [](Stage& s) {
           return HeapText(generateSchemaRootHash(s.ctx, HeldValue()),
                           "20000000-0000-0000-0000-0000000000ab");
         },
     .cleanup = ReleaseSchema},
    {.name = "parseRootObject",
     .prepare = Hold<kDocument>,
     .call = [](Stage&) { return Status(parseRootObject(HeldSchema(), HeldValue())); },
     .cleanup = ReleaseSchema},
    {.name = "parseObject",
     .prepare = Hold<kObject>,
     .call =
         [](Stage&) { return Status(parseObject(HeldSchema(), "items", HeldValue(), HeldRoot())); },
     .cleanup = ReleaseSchema},
    {.name = "parseObjectElements",
     .prepare = Hold<kObject>,
     .call =
         [](Stage&) { return Status(parseObjectElements(HeldSchema(), HeldRoot(), HeldValue())); },
     .cleanup = ReleaseSchema},
    {.name = "parseFieldWithNonKeywordObject",
     .prepare = Hold<kMembers>,
     .call =
         [](Stage&) {
           return Status(parseFieldWithNonKeywordObject(HeldSchema(), HeldValue(), HeldRoot(),
                                                        "definitions"));
         },
     .cleanup = ReleaseSchema},
    {.name = "parseNonKeywordObjectElements",
     .prepare = Hold<kMembers>,
     .call =
         [](Stage&) {
           return Status(parseNonKeywordObjectElements(HeldSchema(), HeldValue(), HeldRoot()));
         },
     .cleanup = ReleaseSchema},
    {.name = "parseObjectWithoutFieldName",
     .prepare = Hold<kObject>,
     .call =
         [](Stage&) {
           return Status(parseObjectWithoutFieldName(HeldSchema(), 0, HeldValue(), "elements"));
         },
     .cleanup = ReleaseSchema},
    {.name = "parseObjectWithRefField",
     .prepare = Hold<kReference>,
     .call =
         [](Stage&) {
           return Status(
               parseObjectWithRefField(HeldSchema(), kRoute, "Status", HeldValue(), HeldRoot()));
         },
     .cleanup = ReleaseSchema},
    {.name = "parseArray",
     .prepare = Hold<kElements>,
     .call =
         [](Stage&) { return Status(parseArray(HeldSchema(), "anyOf", HeldValue(), HeldRoot())); },
     .cleanup = ReleaseSchema},
    {.name = "parseArrayElements",
     .prepare = Hold<kElements>,
     .call =
         [](Stage&) {
           return Status(parseArrayElements(HeldSchema(), "anyOf", HeldValue(), "elements"));
         },
     .cleanup = ReleaseSchema},
    {.name = "parseSomeOfArrayField",
     .prepare = Hold<kElements>,
     .call =
         [](Stage&) {
           return Status(parseSomeOfArrayField(HeldSchema(), "anyOf", HeldValue(), "elements"));
         },
     .cleanup = ReleaseSchema},
    {.name = "isZephlaneExtension",
     .call = [](Stage&) { return Status(isZephlaneExtension("ttl"), 1, 0); }},
    {.name = "isNonKeywordProperty",
     .call = [](Stage&) { return Status(isNonKeywordProperty("definitions"), 1, 0); }},
    {.name = "parseZephlaneExtension",
     .prepare = Hold<kDocument>,
     .call = [](Stage&) { return Status(parseZephlaneExtension(HeldSchema(), HeldRoot())); },
     .cleanup = ReleaseSchema},
    {.name = "parseRuxoMessageField",
     .prepare = Hold<kMessages>,
     .call =
         [](Stage&) {
           return Status(parseRuxoMessageField(HeldSchema(), HeldValue(), HeldRoot()));
         },
     .cleanup = ReleaseSchema},
    {.name = "schemaReferenceListInit",
     .prepare = HoldRecordedReference,
     .call =
         [](Stage&) {
           schemaReferenceListInit();
           return kAsDocumented;
         },
     .cleanup = ReleaseSchema},
    {.name = "schemaRefListGetFreeSpace",
     .prepare = HoldRecordedReference,
     .call = [](Stage&) { return Status(schemaRefListGetFreeSpace(0, kReferences), 1, -1); },
     .cleanup = ReleaseSchema},
    {.name = "schemaRefListInsertEntry",
     .prepare = HoldReference,
     .call = [](Stage&) { return Status(RecordReference(), 0, -1); },
     .cleanup = ReleaseSchema},
    {.name = "schemaRefListSearchEntry",
     .prepare = HoldRecordedReference,
     .call = [](Stage&) { return Status(schemaRefListSearchEntry(kRoute), 0, -1); },
     .cleanup = ReleaseSchema},
    {.name = "resourceReferenceLinking",
     .prepare = HoldRecordedReference,
     .call = [](Stage&) { return Status(resourceReferenceLinking(HeldSchema())); },
     .cleanup = ReleaseSchema},
    {.name = "zephlaneSchemaInterpreter",
     .content = "HSET defaultSettings RuxoMessage Messages",
     .prepare = [](Stage&) { WriteSchemaFiles(); },
     .call = [](Stage&) { return Status(zephlaneSchemaInterpreter(kRootFile)); },
     .cleanup = ReleaseSchema,
     .traits = kConnects},
    {.name = "zephlaneSchemaInterpreterProgress",
     .prepare = HoldRecordedReference,
     .call =
         [](Stage&) {
           InterpreterProgress progress{};
           zephlaneSchemaInterpreterProgress(&progress);
           return Success(progress.nFiles == 1 && progress.nReferences == 1);
         },
     .cleanup = ReleaseSchema},
};

}  // namespace

std::span<const FunctionCase> ParserCases() {
  return kCases;
}

}  // namespace zephlane::test
