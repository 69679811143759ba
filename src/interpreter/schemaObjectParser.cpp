// SPDX-License-Identifier: MIT
//
// Walks the JSON objects of a schema and writes them as hashes: a field for each keyword, a child
// hash for each nested object, linked from its parent by its ID. References are resolved at once
// where they name a whole schema, and otherwise stand as placeholders until linking.
// A report's number is the message's own. Nothing written before a failure is undone.
#include <cstring>

#include "interpreter/hashTreeOperation.h"
#include "interpreter/resourcePathParser.h"
#include "interpreter/stackRoom.h"
#include "interpreter/zephlaneSchemaInterpreter.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/interpreter.h>

namespace zephlane {
namespace {

constexpr char kSource[] = "schemaObjectParser.cpp";
constexpr int kFirstReferenceSlot = 0;
constexpr int kReferenceSlotLimit = 3600;

// What a stored value's failures are reported as: each place has numbers of its own.
struct StoreLines {
  int hash;
  int set;
};

// A reference being stored: where it stands, and in which field; no field means in a set.
struct ReferencePlace {
  ParseContext* context;
  const char* field;
  const char* parent_id;
};

enum class PairMessage { kFailedToInsert, kPairFailed };

bool StoreReferenceValue(const ReferencePlace& place, const char* value, StoreLines lines,
                         PairMessage message) {
  redisContext* ctx = place.context->connection;
  if (!place.field) {
    if (AddSetMember(ctx, place.parent_id, value) == 0) { return true; }
    InterpreterError{kSource, lines.set}("---> create set table failed !!!!\n");
    return false;
  }
  if (hashTreeHashAddSinglePair(ctx, place.field, value, place.parent_id) == 0) { return true; }
  if (message == PairMessage::kFailedToInsert) {
    InterpreterError{kSource, lines.hash}("Failed to insert <%s, %s> to hash %s !!!\n", place.field,
                                          value, Shown(place.parent_id));
  } else {
    InterpreterError{kSource, lines.hash}("<%s : %s> insert pair into hash failed!!\n", place.field,
                                          value);
  }
  return false;
}

const char* CurrentSchema(const ParseContext* context) {
  return context->resourcePath.schemaName;
}

// The hash ID of the schema in hand; null after a report.
const char* OwnHashId(const ParseContext* context, int line) {
  const char* id = getSchemaHashID(CurrentSchema(context));
  if (!id) {
    InterpreterError{kSource, line}("---> getSchemaHashID(%s) fail !!!!\n", CurrentSchema(context));
  }
  return id;
}

// Records a reference into a definition and writes its text as placeholder.
bool StorePlaceholder(const ReferencePlace& place, const char* route_text, const char* text,
                      ResourcePath* path) {
  const ParseContext* context = place.context;
  if (path->schemaName[0] == '\0' &&
      !CopyWhole(path->schemaName, BoundedText(context->resourcePath.schemaName))) {
    InterpreterError{kSource, 131}("Schema name: %.*s\n is greater than string buffer ...\n",
                                   static_cast<int>(sizeof(path->schemaName)),
                                   CurrentSchema(context));
    return false;
  }
  if (schemaRefListInsertEntry(place.parent_id, CurrentSchema(context), route_text, place.field,
                               text, path, kFirstReferenceSlot, kReferenceSlotLimit) != 0) {
    InterpreterError{kSource, 145}("Failed to insert entry into Schema Reference List !!!\n");
    return false;
  }
  return StoreReferenceValue(place, path->path, {153, 165}, PairMessage::kPairFailed);
}

// Stores the root hash of a whole schema, which is interpreted now unless it has been already.
bool StoreSchemaReference(const ReferencePlace& place, const char* schema_name) {
  if (isReferenceSchemaHasInternalized(schema_name)) {
    const char* id = getSchemaHashID(schema_name);
    // A name without an ID stores nothing and is no failure.
    return !id || StoreReferenceValue(place, id, {241, 254}, PairMessage::kPairFailed);
  }
  const CString id(parseReferenceSchemaFile(place.context->connection, schema_name));
  if (!id) {
    InterpreterError{kSource, 192}("Failed to parse reference schema !\n");
    return false;
  }
  return StoreReferenceValue(place, id.get(), {201, 213}, PairMessage::kPairFailed);
}

bool StoreSplitReference(const ReferencePlace& place, const char* route_text, const char* text) {
  // On the heap: the interpretation of the schema it names goes on below this frame.
  const auto path = ZeroedRecord<ResourcePath>();
  if (!path) {
    InterpreterError{kSource}("malloc failed !!!\n");
    return false;
  }
  if (parseResourcePath(text, path.get()) != 0) { return false; }
  if (IsPointerPath(*path)) {
    if (!StorePlaceholder(place, route_text, text, path.get())) { return false; }
    // In a set the placeholder waits for linking. A field gets the referenced schema's root hash
    // until then, so that the schema is interpreted in any case.
    if (!place.field || path->schemaName[0] == '\0') { return true; }
  }
  return StoreSchemaReference(place, path->schemaName);
}

// Writes a simple value's text; each caller reports with numbers of its own.
struct SimpleLines {
  int text;
  int pair;
};

bool StoreSimpleValue(const ParseContext* context, const char* field, const json_t* value,
                      const char* hash_id, SimpleLines lines) {
  const CString text(getJsonSimpleTypeStr(value));
  if (!text) {
    InterpreterError{kSource, lines.text}("Get JSON simple string fail\n");
    return false;
  }
  if (hashTreeHashAddSinglePair(context->connection, field, text.get(), hash_id) != 0) {
    InterpreterError{kSource, lines.pair}("Redis hash add pair\n");
    return false;
  }
  return true;
}

// An object or array member, with its name on the route meanwhile. After a failure the name stays
// there: the route is reset for each file.
bool ParseNestedMember(ParseContext* context, const char* name, json_t* value,
                       const char* hash_id) {
  PushRoute(context, name);
  const int result = json_is_object(value) ? parseObject(context, name, value, hash_id)
                                           : parseArray(context, name, value, hash_id);
  return result == 0 && PopRoute(context, name);
}

bool IsNested(const json_t* value) {
  return json_is_object(value) || json_is_array(value);
}

bool HasCombinator(const json_t* object) {
  return json_object_get(object, "anyOf") || json_object_get(object, "oneOf") ||
         json_object_get(object, "allOf");
}

CString NewObjectHash(const ParseContext* context, int line) {
  CString id(hashTreeCreateNewHash(context->connection, kDummyField, kDummyValue));
  if (!id) { InterpreterError{kSource, line}("Failed to creat root object hash !!!\n"); }
  return id;
}

// A member that holds "$ref": every other member of it is ignored.
int ParseReferenceMember(ParseContext* context, const char* field, json_t* reference,
                         const char* parent_id) {
  if (!json_is_string(reference)) {
    InterpreterError{kSource, 721}("$ref string is NULL !!!\n");
    return 1;
  }
  const CString route = RouteText(*context);
  if (!route) { return 1; }
  return parseObjectWithRefField(context, route.get(), field, reference, parent_id) == 0 ? 0 : 1;
}

// Fills the new hash of a schema object and links it into its parent.
int ParseNewObject(ParseContext* context, const char* field, json_t* object,
                   const char* parent_id) {
  const CString id = NewObjectHash(context, 740);
  if (!id) { return 1; }
  redisContext* ctx = context->connection;
  // A combinator schema is typed as an array: of its alternatives.
  if (HasCombinator(object) && hashTreeHashAddSinglePair(ctx, "type", "array", id.get()) != 0) {
    InterpreterError{kSource, 753}("Failed to insert <%s, %s> to hash %s !!!\n", "type", "array",
                                   id.get());
    return 1;
  }
  if (std::strcmp(field, kMessagePropertyField) == 0) {
    // The messages go into the parent; the new hash stays unlinked.
    if (parseRuxoMessageField(context, object, parent_id) == 0) { return 0; }
    InterpreterError{kSource, 767}("RuxoMessage\n");
    return 1;
  }
  if (hashTreeHashAddSinglePair(ctx, field, id.get(), parent_id) != 0) {
    InterpreterError{kSource, 781}("Redis hash add pair\n");
    return 1;
  }
  if (parseObjectElements(context, id.get(), object) == 1) {
    InterpreterError{kSource, 793}("---> parseObjectElements fail !!!!\n");
    return 1;
  }
  return 0;
}

// An alternative that is nothing but a reference to the schema in hand.
int AddOwnHashToSet(ParseContext* context, const char* set_id) {
  const char* id = OwnHashId(context, 496);
  if (!id) { return 1; }
  if (AddSetMember(context->connection, set_id, id) == 1) {
    InterpreterError{kSource, 505}("---> create set table failed !!!!\n");
    return 1;
  }
  return 0;
}

int AddReferenceToSet(ParseContext* context, json_t* reference, const char* set_id) {
  const CString route = RouteText(*context);
  if (!route) { return 1; }
  if (std::strcmp(json_string_value(reference), "#") == 0) {
    return AddOwnHashToSet(context, set_id);
  }
  if (parseObjectWithRefField(context, route.get(), nullptr, reference, set_id) == 1) {
    InterpreterError{kSource, 518}("---> parses $ref field failed !!!!\n");
    return 1;
  }
  return 0;
}

// What became of one member of a member map.
enum class MemberResult { kStored, kSkipped, kBroken, kFatal };

// A reference as a member named "$ref" of a member map.
MemberResult ParseReferenceInMap(ParseContext* context, json_t* reference, const char* hash_id) {
  const CString route = RouteText(*context);
  if (!route) { return MemberResult::kFatal; }
  const int result = parseObjectWithRefField(context, route.get(), "$ref", reference, hash_id);
  return result == 1 ? MemberResult::kFatal : MemberResult::kStored;
}

MemberResult ParseMapMember(ParseContext* context, const char* name, json_t* value,
                            const char* hash_id) {
  if (json_is_object(value)) {
    return parseObject(context, name, value, hash_id) == 1 ? MemberResult::kBroken
                                                           : MemberResult::kStored;
  }
  if (json_is_array(value)) {
    return parseArray(context, name, value, hash_id) == 1 ? MemberResult::kBroken
                                                          : MemberResult::kStored;
  }
  if (!isJsonSimpleType(value)) { return MemberResult::kSkipped; }
  return StoreSimpleValue(context, name, value, hash_id, {336, 344}) ? MemberResult::kStored
                                                                     : MemberResult::kFatal;
}

}  // namespace
}  // namespace zephlane

using zephlane::CString;
using zephlane::InterpreterError;
using zephlane::kSource;
using zephlane::MemberResult;

int parseRootObject(ParseContext* aContext, json_t* aRoot) {
  if (!aContext || !aRoot) { return 1; }
  const char* key = nullptr;
  json_t* value = nullptr;
  json_object_foreach(aRoot, key, value) {
    if (!isTypeSchemaEssentialField(key) || isZephlaneExtension(key)) { continue; }
    if (zephlane::IsNested(value)) {
      if (!zephlane::ParseNestedMember(aContext, key, value, aContext->rootHashID)) { return 1; }
    } else if (isJsonSimpleType(value)) {
      if (!zephlane::StoreSimpleValue(aContext, key, value, aContext->rootHashID, {894, 903})) {
        return 1;
      }
    }
    // Reals and nulls are skipped silently here.
  }
  if (parseZephlaneExtension(aContext, aContext->rootHashID) != 0) {
    InterpreterError{kSource, 921}("Zephlane extensions!\n");
    return 1;
  }
  return hashTreeInstanceSetInsertMember(aContext->connection, zephlane::kSchemaInstances,
                                         aContext->rootHashID);
}

int parseObjectElements(ParseContext* aContext, const char* aHashID, json_t* aObject) {
  if (!aContext) { return 1; }
  const char* key = nullptr;
  json_t* value = nullptr;
  json_object_foreach(aObject, key, value) {
    // Extension keywords are stored like any other inside nested objects.
    if (!isTypeSchemaEssentialField(key)) { continue; }
    if (zephlane::IsNested(value)) {
      if (!zephlane::ParseNestedMember(aContext, key, value, aHashID)) { return 1; }
    } else if (isJsonSimpleType(value)) {
      if (!zephlane::StoreSimpleValue(aContext, key, value, aHashID, {644, 651})) { return 1; }
    } else {
      // A notice, no failure: the walk goes on.
      InterpreterError{kSource, 660}("((((( Field name: %s )))))\n", key);
    }
  }
  return 0;
}

int parseObject(ParseContext* aContext, const char* aFieldName, json_t* aObject,
                const char* aParentHashID) {
  if (!aContext || !aFieldName || !aObject) {
    InterpreterError{kSource, 697}("NULL pointer !!!\n");
    return 1;
  }
  if (zephlane::StackIsUsedUp(kSource)) { return 1; }
  if (isNonKeywordProperty(aFieldName)) {
    return parseFieldWithNonKeywordObject(aContext, aObject, aParentHashID, aFieldName) == 0 ? 0
                                                                                             : 1;
  }
  if (json_t* reference = json_object_get(aObject, "$ref")) {
    return zephlane::ParseReferenceMember(aContext, aFieldName, reference, aParentHashID);
  }
  return zephlane::ParseNewObject(aContext, aFieldName, aObject, aParentHashID);
}

int parseFieldWithNonKeywordObject(ParseContext* aContext, json_t* aObject,
                                   const char* aParentHashID, const char* aFieldName) {
  if (!aContext || !aFieldName) { return 1; }
  // Members of "properties" become fields of the enclosing hash, except in a meta-schema.
  const bool is_flattened = std::strcmp(aFieldName, "properties") == 0 &&
                            !isSpecialSchemaFile(zephlane::CurrentSchema(aContext));
  CString id;
  if (!is_flattened) {
    id = zephlane::NewObjectHash(aContext, 406);
    if (!id) { return 1; }
    if (hashTreeHashAddSinglePair(aContext->connection, aFieldName, id.get(), aParentHashID) != 0) {
      InterpreterError{kSource, 413}("Redis hash add pair\n");
      return 1;
    }
  }
  const char* target = is_flattened ? aParentHashID : id.get();
  if (parseNonKeywordObjectElements(aContext, aObject, target) != 0) {
    InterpreterError{kSource, 421}("Something wrong in '%s' field ...\n", aFieldName);
    return 1;
  }
  return 0;
}

int parseNonKeywordObjectElements(ParseContext* aContext, json_t* aObject, const char* aHashID) {
  if (!aContext || !aObject || !aHashID) {
    InterpreterError{kSource, 298}("%s: argument is NULL!\n", "parseNonKeywordObjectElements");
    return 1;
  }
  // A skipped member leaves this as it was: a real or null that comes first fails the map, the same
  // member after a stored one is passed over.
  bool is_broken = true;
  const char* name = nullptr;
  json_t* value = nullptr;
  json_object_foreach(aObject, name, value) {
    zephlane::PushRoute(aContext, name);
    const bool is_reference = std::strcmp(name, "$ref") == 0 && json_is_string(value);
    const MemberResult result = is_reference
                                    ? zephlane::ParseReferenceInMap(aContext, value, aHashID)
                                    : zephlane::ParseMapMember(aContext, name, value, aHashID);
    if (result == MemberResult::kFatal) { return 1; }
    if (!zephlane::PopRoute(aContext, name)) { return 1; }
    if (is_reference) { continue; }
    if (result != MemberResult::kSkipped) { is_broken = result == MemberResult::kBroken; }
    if (is_broken) {
      InterpreterError{kSource, 361}("Error at << %s: %s >>\n", zephlane::CurrentSchema(aContext),
                                     name);
      return 1;
    }
  }
  return 0;
}

int parseObjectWithoutFieldName(ParseContext* aContext, size_t /*nIndex*/, json_t* aObject,
                                const char* aParentSetID) {
  if (!aContext || zephlane::StackIsUsedUp(kSource)) { return 1; }
  json_t* reference = json_object_get(aObject, "$ref");
  if (json_is_string(reference)) {
    return zephlane::AddReferenceToSet(aContext, reference, aParentSetID);
  }
  const CString id = zephlane::NewObjectHash(aContext, 534);
  if (!id) { return 1; }
  if (zephlane::AddSetMember(aContext->connection, aParentSetID, id.get()) != 0) {
    InterpreterError{kSource, 543}("---> create set table failed !!!!\n");
    return 1;
  }
  if (parseObjectElements(aContext, id.get(), aObject) == 1) {
    InterpreterError{kSource, 552}("---> parseObjectElements !!!!\n");
    return 1;
  }
  return 0;
}

int parseObjectWithRefField(ParseContext* aContext, const char* aRouteText, const char* aFieldName,
                            json_t* aReference, const char* aParentID) {
  if (!aContext || !aReference) {
    InterpreterError{kSource, 53}("NULL pointer !!!\n");
    return 1;
  }
  const char* text = json_string_value(aReference);
  if (!text) {
    InterpreterError{kSource, 115}("Reference should be string\n");
    return 1;
  }
  const zephlane::ReferencePlace place{aContext, aFieldName, aParentID};
  if (std::strcmp(text, "#") == 0) {
    const char* id = zephlane::OwnHashId(aContext, 73);
    return id && zephlane::StoreReferenceValue(place, id, {96, 85},
                                               zephlane::PairMessage::kFailedToInsert)
               ? 0
               : 1;
  }
  return zephlane::StoreSplitReference(place, aRouteText, text) ? 0 : 1;
}
