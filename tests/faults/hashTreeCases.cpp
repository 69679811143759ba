// SPDX-License-Identifier: MIT
//
// The hash tree.
#include <jansson.h>

#include "faults/arguments.h"
#include "faults/outcomes.h"
#include "faults/schemaInHand.h"

#include <zephlaneAPI/hashTree.h>

namespace zephlane::test {

namespace {

constexpr char kSchemaId[] = "20000000-0000-0000-0000-000000000001";

// A hash, a set and a schema that this run made.
void RecordObjects(Stage& stage) {
  StartTree(stage);
  FreeText(hashTreeCreateNewHash(stage.store, "DummyKey", "DummyValue"));
  FreeText(hashTreeCreateNewSet(stage.store, nullptr));
  (void)hashTreeCreateNewTypeSchemaHash(stage.store, "title", "Thing", kSchemaId);
  (void)schemaReferTableInsertEntry("Thing.json", kSchemaId);
}

constexpr FunctionCase kCases[] = {
    {.name = "hashTreeInit", .call = [](Stage& s) { return Status(hashTreeInit(s.ctx)); }},
    {.name = "createZephlaneServiceInstanceSet",
     .call =
         [](Stage& s) {
           return Status(createZephlaneServiceInstanceSet(s.ctx, "ZephlaneSchemaInstances"));
         }},
    {.name = "deleteAllHashObject",
     .prepare = RecordObjects,
     .call =
         [](Stage& s) {
           deleteAllHashObject(s.ctx);
           return kAsDocumented;
         }},
    {.name = "deleteTypeSchemaHashObject",
     .prepare = RecordObjects,
     .call =
         [](Stage& s) {
           deleteTypeSchemaHashObject(s.ctx);
           return kAsDocumented;
         }},
    {.name = "dumpSetTable",
     .call =
         [](Stage&) {
           dumpSetTable();
           return kAsDocumented;
         }},
    {.name = "dumpRedisObjectCollection",
     .call =
         [](Stage&) {
           dumpRedisObjectCollection();
           return kAsDocumented;
         }},
    {.name = "dumpSchemaReferenceTable",
     .call =
         [](Stage&) {
           dumpSchemaReferenceTable();
           return kAsDocumented;
         }},
    {.name = "generateRedisDataObjectID",
     .call = [](Stage&) { return HeapText(generateRedisDataObjectID(1), ""); }},
    {.name = "increaseRedisHashIDCounter",
     .call =
         [](Stage&) {
           increaseRedisHashIDCounter();
           return kAsDocumented;
         }},
    {.name = "increaseRedisSetIDCounter",
     .call =
         [](Stage&) {
           increaseRedisSetIDCounter();
           return kAsDocumented;
         }},
    {.name = "recordRedisObjectID",
     .prepare = StartTree,
     .call = [](Stage&) { return Status(recordRedisObjectID(kUuid), 0, -1); }},
    {.name = "isUUIDRegistered",
     .prepare = RecordObjects,
     .call = [](Stage&) { return Status(isUUIDRegistered(kSchemaId), 1, 0); }},
    {.name = "hashTreeHashAddSinglePair",
     .call =
         [](Stage& s) {
           return Status(hashTreeHashAddSinglePair(s.ctx, "field", "value", "parent"));
         }},
    {.name = "hashTreeCreateNewHash",
     .prepare = StartTree,
     .call = [](Stage& s) { return HeapText(hashTreeCreateNewHash(s.ctx, "field", "value"), ""); }},
    {.name = "hashTreeCreateHashWithoutRecordHashID",
     .prepare = StartTree,
     .call =
         [](Stage& s) {
           return HeapText(hashTreeCreateHashWithoutRecordHashID(s.ctx, "field", "value"), "");
         }},
    {.name = "hashTreeCreateNewTypeSchemaHash",
     .prepare = StartTree,
     .call =
         [](Stage& s) {
           return Status(hashTreeCreateNewTypeSchemaHash(s.ctx, "field", "value", kSchemaId));
         }},
    {.name = "hashTreeCreateNewSet",
     .prepare = StartTree,
     .call = [](Stage& s) { return HeapText(hashTreeCreateNewSet(s.ctx, nullptr), ""); }},
    {.name = "hashTreeInstanceSetInsertMember",
     .call =
         [](Stage& s) {
           return Status(hashTreeInstanceSetInsertMember(s.ctx, "ZephlaneSchemaInstances", kUuid));
         }},
    {.name = "hashAddMultipleTypeString",
     .prepare = [](Stage& s) { HoldValue(s, R"(["string", "null"])"); },
     .call =
         [](Stage& s) {
           return Status(hashAddMultipleTypeString(s.ctx, "type", HeldValue(), "parent"));
         },
     .cleanup = ReleaseSchema},
    {.name = "hashTreeParentInsertItemsSet",
     .prepare = StartTree,
     .call = [](Stage& s) { return HeapText(hashTreeParentInsertItemsSet(s.ctx, "parent"), ""); }},
    {.name = "hashTreeParentInsertItemsHash",
     .prepare = StartTree,
     .call =
         [](Stage& s) {
           return HeapText(hashTreeParentInsertItemsHash(s.ctx, "parent", "type", "string"), "");
         }},
    {.name = "hashTreeParentInsertPropertyHash",
     .prepare = StartTree,
     .call =
         [](Stage& s) {
           return HeapText(hashTreeParentInsertPropertyHash(s.ctx, "parent", "Id", "string"), "");
         }},
    {.name = "hashTreeParentInsertPropertySet",
     .prepare = StartTree,
     .call =
         [](Stage& s) {
           return HeapText(hashTreeParentInsertPropertySet(s.ctx, "parent", "enum"), "");
         }},
    {.name = "hashTreeGetHashFieldValue",
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(hashTreeGetHashFieldValue(s.ctx, "hash", "name", out.Get()), out,
                                "value");
         }},
    {.name = "schemaReferTableInsertEntry",
     .prepare = StartTree,
     .call = [](Stage&) { return Status(schemaReferTableInsertEntry("Thing.json", kSchemaId)); }},
    {.name = "getSchemaHashID",
     .prepare = RecordObjects,
     .call = [](Stage&) { return getSchemaHashID("Thing.json") ? kAsDocumented : kFails; }},
    {.name = "isReferenceSchemaHasInternalized",
     .prepare = RecordObjects,
     .call = [](Stage&) { return Status(isReferenceSchemaHasInternalized("Thing.json"), 1, 0); }},
    {.name = "hashTreeCreateSchemaTitleUUIDMapping",
     .prepare = RecordObjects,
     .call = [](Stage& s) { return Status(hashTreeCreateSchemaTitleUUIDMapping(s.ctx)); }},
    {.name = "toLowerUUID",
     .call =
         [](Stage&) {
           IdOut out;
           return StatusAndText(toLowerUUID(kUuid, out.Get(), ZEPHLANE_ID_SIZE), out, kUuid);
         }},
    {.name = "isSchemaGivenUUIDValid",
     .call = [](Stage&) { return Status(isSchemaGivenUUIDValid(kSchemaId), 1, 0); }},
    {.name = "hashTreeRemoveDummyData",
     .prepare = RecordObjects,
     .call = [](Stage& s) { return Status(hashTreeRemoveDummyData(s.ctx)); }},
};

}  // namespace

std::span<const FunctionCase> HashTreeCases() {
  return kCases;
}

}  // namespace zephlane::test
