// SPDX-License-Identifier: MIT
//
// Schema locations, schema files, the route map and values of JSON.
#include "faults/outcomes.h"
#include "faults/schemaInHand.h"

#include "support/owners.h"

namespace zephlane::test {

namespace {

constexpr char kReference[] = "http://schemas.example.com/v1/Resource.json#/definitions/Status";

void HoldEmptySchema(Stage& stage) {
  HoldSchema(stage, "{}");
}

void WriteFiles(Stage& /*stage*/) {
  WriteSchemaFiles();
}

ResourcePath resource_path;

Outcome SplitReference(Stage& /*stage*/) {
  resource_path = ResourcePath{};
  const int status = parseResourcePath(kReference, &resource_path);
  return status == 0 ? Success(std::string_view(resource_path.schemaName) == "Resource.json")
                     : Status(status);
}

Outcome LoadFile(Stage& /*stage*/) {
  const Json document(loadZephlaneSchemaFile(kRootFile));
  return document ? kAsDocumented : kFails;
}

Outcome CreateSpot(Stage& /*stage*/) {
  RouteSpot* spot = parserRouteCreateNode("spot");
  const bool is_whole = spot && std::string_view(spot->name) == "spot" && !spot->next;
  if (spot && !is_whole) { return Undocumented("half a spot"); }
  parserRouteFreeRouteMap(spot);
  return spot ? kAsDocumented : kFails;
}

Outcome ConcatRoute(Stage& /*stage*/) {
  TextOut<256> out;
  parserRouteConcatRoute(HeldSchema()->routeMap, "Thing.json", out.Get(), 256);
  return StatusAndText(0, out, "Thing.json#/spot");
}

void HoldRoute(Stage& stage) {
  HoldEmptySchema(stage);
  (void)parserRouteInsertEnd(HeldSchema()->routeMap, "spot");
}

constexpr FunctionCase kCases[] = {
    {.name = "loadSchemaURIConf",
     .prepare = WriteFiles,
     .call = [](Stage&) { return Status(loadSchemaURIConf(kConfigurationFile)); },
     .cleanup = ReleaseSchema},
    {.name = "saveSchemaURIEntry",
     .prepare = [](Stage& s) { HoldValue(s, R"({"Uri": "http://oem.example.com/"})"); },
     .call = [](Stage&) { return Status(saveSchemaURIEntry(HeldValue(), "Uri", 1, 1)); },
     .cleanup = ReleaseSchema},
    {.name = "dumpSchemaURITable",
     .call =
         [](Stage&) {
           dumpSchemaURITable();
           return kAsDocumented;
         }},
    {.name = "isValidDmtfURL",
     .prepare = HoldEmptySchema,
     .call = [](Stage&) { return Status(isValidDmtfURL(kLocation), 1, 0); },
     .cleanup = ReleaseSchema},
    {.name = "parseResourcePath",
     .prepare = HoldEmptySchema,
     .call = SplitReference,
     .cleanup = ReleaseSchema},
    {.name = "loadZephlaneSchemaFile", .prepare = WriteFiles, .call = LoadFile},
    {.name = "isSchemaInterpreted",
     .content = "HSET 00000000-0000-0000-0001-ffffffffffff title Root",
     .call = [](Stage& s) { return Status(isSchemaInterpreted(s.ctx), 1, 0); }},
    {.name = "isSpecialSchemaFile",
     .call = [](Stage&) { return Status(isSpecialSchemaFile("schema"), 1, 0); }},
    {.name = "isTypeSchemaEssentialField",
     .call = [](Stage&) { return Status(isTypeSchemaEssentialField("title"), 1, 0); }},
    {.name = "parserRouteCreateNode", .call = CreateSpot},
    {.name = "parserRouteInsertEnd",
     .prepare = HoldEmptySchema,
     .call =
         [](Stage&) { return Status(parserRouteInsertEnd(HeldSchema()->routeMap, "spot"), 0, -1); },
     .cleanup = ReleaseSchema},
    {.name = "parserRouteDeleteEnd",
     .prepare = HoldRoute,
     .call =
         [](Stage&) {
           return Status(parserRouteDeleteEnd(&HeldSchema()->routeMap, "spot"), 0, -1);
         },
     .cleanup = ReleaseSchema},
    {.name = "parserRouteConcatRoute",
     .prepare = HoldRoute,
     .call = ConcatRoute,
     .cleanup = ReleaseSchema},
    {.name = "parserRouteFreeRouteMap",
     .prepare = HoldRoute,
     .call =
         [](Stage&) {
           parserRouteFreeRouteMap(HeldSchema()->routeMap);
           HeldSchema()->routeMap = nullptr;
           return kAsDocumented;
         },
     .cleanup = ReleaseSchema},
    {.name = "parserRouteDisplayRoute",
     .prepare = HoldRoute,
     .call =
         [](Stage&) {
           RouteSpot* head = HeldSchema()->routeMap;
           return parserRouteDisplayRoute(head) == head ? kAsDocumented : kFails;
         },
     .cleanup = ReleaseSchema},
    {.name = "isJsonSimpleType",
     .prepare = [](Stage& s) { HoldValue(s, "5"); },
     .call = [](Stage&) { return Status(isJsonSimpleType(HeldValue()), 1, 0); },
     .cleanup = ReleaseSchema},
    {.name = "getJsonSimpleTypeStr",
     .prepare = [](Stage& s) { HoldValue(s, "5"); },
     .call = [](Stage&) { return HeapText(getJsonSimpleTypeStr(HeldValue()), "5"); },
     .cleanup = ReleaseSchema},
    {.name = "getJsonIntegerString",
     .prepare = [](Stage& s) { HoldValue(s, "5"); },
     .call =
         [](Stage&) {
           TextOut<16> out;
           return Status(getJsonIntegerString(HeldValue(), out.Get(), 16), 1, 0);
         },
     .cleanup = ReleaseSchema},
    {.name = "getJsonBooleanString",
     .prepare = [](Stage& s) { HoldValue(s, "true"); },
     .call =
         [](Stage&) {
           TextOut<16> out;
           return Status(getJsonBooleanString(HeldValue(), out.Get(), 16), 4, 0);
         },
     .cleanup = ReleaseSchema},
    {.name = "parseMultipleTypeField",
     .prepare = [](Stage& s) { HoldValue(s, R"(["string", "null"])"); },
     .call = [](Stage&) { return HeapText(parseMultipleTypeField(HeldValue()), "stringnull"); },
     .cleanup = ReleaseSchema},
    {.name = "parseMultipleTypeFieldAdd",
     .prepare = [](Stage& s) { HoldValue(s, R"(["string", "null"])"); },
     .call =
         [](Stage& s) { return Status(parseMultipleTypeFieldAdd(s.ctx, HeldValue(), "parent")); },
     .cleanup = ReleaseSchema},
};

}  // namespace

std::span<const FunctionCase> SchemaFileCases() {
  return kCases;
}

}  // namespace zephlane::test
