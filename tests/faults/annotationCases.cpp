// SPDX-License-Identifier: MIT
//
// Stamping instances with their types and testing them against these.
#include <utility>

#include "faults/outcomes.h"
#include "support/owners.h"

#include <zephlaneAPI/annotation.h>
#include <zephlaneAPI/validation.h>

namespace zephlane::test {

namespace {

constexpr char kInstance[] = "10000000-0000-0000-0000-000000000001";
constexpr char kChild[] = "10000000-0000-0000-0000-000000000002";
constexpr char kSetOfChildren[] = "10000000-0000-0000-0000-000000000003";
constexpr char kListOfChildren[] = "10000000-0000-0000-0000-000000000005";

// A hash with a child of each kind, and a schema that defines all of it.
constexpr char kTree[] =
    "HSET 10000000-0000-0000-0000-000000000001 Name root"
    " Child 10000000-0000-0000-0000-000000000002"
    " Members 10000000-0000-0000-0000-000000000003"
    " Ordered 10000000-0000-0000-0000-000000000005"
    " Either 10000000-0000-0000-0000-000000000007\n"
    "HSET 10000000-0000-0000-0000-000000000002 Name child\n"
    "SADD 10000000-0000-0000-0000-000000000003 10000000-0000-0000-0000-000000000004\n"
    "HSET 10000000-0000-0000-0000-000000000004 Name member\n"
    "RPUSH 10000000-0000-0000-0000-000000000005 10000000-0000-0000-0000-000000000006\n"
    "HSET 10000000-0000-0000-0000-000000000006 Name item\n"
    "HSET 10000000-0000-0000-0000-000000000007 Name either\n"
    "HSET schema $ref #/definitions/Root definitions definitions\n"
    "HSET definitions Root rootType\n"
    "HSET rootType Child childType Members setType Ordered listType Either eitherType\n"
    "HSET setType items itemType\n"
    "HSET listType items itemType\n"
    "HSET eitherType oneOf alternatives\n"
    "SADD alternatives idRefType otherType\n"
    "HSET 00000000-0000-0000-0001-eeeeeeeeeeee odata.4.0.0 odata\n"
    "HSET odata definitions odataDefinitions\n"
    "HSET odataDefinitions idRef idRefType\n"
    "HSET schemaTypeIdMembersMapping collection memberType\n";

// An instance with a property that its definition requires, one that a pattern allows and one that
// is an additional integer.
constexpr char kTested[] =
    "HSET 10000000-0000-0000-0000-000000000001 typeID rootType Known here XName 1 Number 5\n"
    "HSET rootType required needed Known knownType patternProperties patterns"
    " additionalProperties numberType\n"
    "SADD needed Known\n"
    "HSET patterns ^X anything\n"
    "HSET numberType type integer\n";

Outcome UnknownProperties(Stage& stage) {
  UnknownProperty* head = nullptr;
  UnknownProperty* tail = nullptr;
  const int status = validateProperties(stage.ctx, kInstance, "rootType", &head, &tail);
  int count = 0;
  for (CRecord<UnknownProperty> property(head); property; property.reset(property->next)) {
    if (strnlen(property->aName, sizeof(property->aName)) == sizeof(property->aName)) {
      return Undocumented("name not ended");
    }
    ++count;
  }
  if (status == 1 && count != 0) { return Undocumented("a list after a failure"); }
  return status == 0 ? Success(count == 2) : Status(status);
}

constexpr FunctionCase kCases[] = {
    {.name = "zephlaneInsertTypeID",
     .content = kTree,
     .call = [](Stage& s) { return Status(zephlaneInsertTypeID(s.ctx, kInstance, "schema", 0)); }},
    {.name = "zephlaneGetCollectionSchemaTypeId",
     .content = kTree,
     .call =
         [](Stage& s) {
           return HeapText(zephlaneGetCollectionSchemaTypeId(s.ctx, "collection"), "memberType");
         }},
    {.name = "getRootTypeIdFromRef",
     .content = kTree,
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(getRootTypeIdFromRef(s.ctx, "schema", out.Get()), out, "rootType");
         }},
    {.name = "getOdataIDRefTypeId",
     .content = kTree,
     .call =
         [](Stage& s) {
           ValueOut out;
           return StatusAndText(getOdataIDRefTypeId(s.ctx, out.Get()), out, "idRefType");
         }},
    {.name = "isObject",
     .call = [](Stage& s) { return Answer(isObject(s.ctx, "hash"), 1, 0, -1); }},
    {.name = "insertTypeID",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(insertTypeID(s.ctx, kInstance, "rootType", "idRefType", 0));
         }},
    {.name = "addTypeIdfForHash",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(addTypeIdfForHash(s.ctx, kChild, "eitherType", "idRefType", 0));
         }},
    {.name = "addTypeIdfForSet",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(addTypeIdfForSet(s.ctx, kSetOfChildren, "setType", "idRefType", 0));
         }},
    {.name = "addTypeIdfForList",
     .content = kTree,
     .call =
         [](Stage& s) {
           return Status(addTypeIdfForList(s.ctx, kListOfChildren, "listType", "idRefType", 0));
         }},
    {.name = "zephlaneValidateResponseObject",
     .content = kTested,
     .call = [](Stage& s) { return Status(zephlaneValidateResponseObject(s.ctx, kInstance)); }},
    {.name = "validateRequired",
     .content = kTested,
     .call = [](Stage& s) { return Status(validateRequired(s.ctx, kInstance, "rootType")); }},
    {.name = "validateProperties", .content = kTested, .call = UnknownProperties},
    {.name = "validatePatternProperties",
     .content = kTested,
     .call =
         [](Stage& s) { return Status(validatePatternProperties(s.ctx, "rootType", "XName")); }},
    {.name = "validateAdditionalProperties",
     .content = kTested,
     .call =
         [](Stage& s) {
           return Status(validateAdditionalProperties(s.ctx, kInstance, "rootType", "Number"));
         }},
};

}  // namespace

std::span<const FunctionCase> AnnotationCases() {
  return kCases;
}

}  // namespace zephlane::test
