// SPDX-License-Identifier: MIT
//
// The extension keywords at a schema's root: "typeId", "instanceCollection", "ttl" and the message
// property, whose name is configured. A message's parameters are stored with the type that the hash
// tree holds at their path; a type that cannot be found is no failure.
// A report's number is the message's own. Nothing written before a failure is undone.
#include "interpreter/zephlaneExtensionParser.h"

#include <cstdio>
#include <cstring>

#include "interpreter/hashTreeOperation.h"
#include "interpreter/resourcePathParser.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/objects.h>

namespace zephlane {
namespace {

constexpr char kSource[] = "zephlaneExtensionParser.cpp";
constexpr char kTypeIdField[] = "typeId";
constexpr char kTtlField[] = "ttl";
constexpr char kTypeNotFound[] = "Type Not Found";
constexpr std::size_t kRouteSize = 2400;
constexpr int kFirstParamSlot = 3600;
constexpr int kParamSlotLimit = 4000;
constexpr int kSetKind = 2;

int ReportNullArgument(const char* function, int line) {
  InterpreterError{kSource, line}("%s: Argument is NULL !!!\n", function);
  return 1;
}

// A collection named by the schema itself.
int StoreGivenCollection(redisContext* ctx, const json_t* given, const char* root_hash_id) {
  char id[kValueSize] = "";
  if (toLowerUUID(json_string_value(given), id, sizeof(id)) != 0) { return 1; }
  if (!isSchemaGivenUUIDValid(id)) { return 1; }
  if (isUUIDRegistered(id)) {
    InterpreterError{kSource, 736}("Oops! UUID of instanceCollection has been used.\n");
    return 1;
  }
  if (hashTreeHashAddSinglePair(ctx, kInstanceCollectionField, id, root_hash_id) != 0) {
    InterpreterError{kSource, 743}("---> failed to add < %s: %s > !!!!\n", kInstanceCollectionField,
                                   id);
    return 1;
  }
  return 0;
}

int StoreNewCollection(redisContext* ctx, const char* root_hash_id) {
  const CString id(generateRedisDataObjectID(kSetKind));
  if (!id) {
    InterpreterError{kSource, 754}("Failed to get new UUID for instanceCollection!\n");
    return 1;
  }
  if (hashTreeHashAddSinglePair(ctx, kInstanceCollectionField, id.get(), root_hash_id) != 0) {
    InterpreterError{kSource, 761}("---> failed to add < %s: %s > !!!!\n", kInstanceCollectionField,
                                   id.get());
    return 1;
  }
  increaseRedisSetIDCounter();
  return 0;
}

int StoreTypeId(const ParseContext* context, const char* root_hash_id) {
  const char* id = context->rootHashID;
  if (hashTreeHashAddSinglePair(context->connection, kTypeIdField, id, root_hash_id) == 0) {
    return 0;
  }
  InterpreterError{kSource, 678}("---> failed to add < %s: %s > !!!\n", kTypeIdField, id);
  return 1;
}

// Without a configured name no member is the message property, not even one with the empty name.
json_t* MessageProperty(const json_t* schema) {
  return propertyRuxoMessage[0] == '\0' ? nullptr : json_object_get(schema, propertyRuxoMessage);
}

// "MsgType" of a message.
bool StoreMessageType(redisContext* ctx, const json_t* value, const char* message_id) {
  const char* text = json_string_value(value);
  if (!text) {
    InterpreterError{kSource, 502}("---> NULL pointer: json_string_value !!!!\n");
    return false;
  }
  if (hashTreeHashAddSinglePair(ctx, "MsgType", text, message_id) != 0) {
    InterpreterError{kSource, 509}("<%s : %s> insert pair into hash failed!!\n", "MsgType", text);
    return false;
  }
  return true;
}

// All members but "Param" and "MsgType" are ignored, and so are those of another JSON type.
bool StoreMessageMembers(ParseContext* context, json_t* message, const char* message_id) {
  const char* key = nullptr;
  json_t* value = nullptr;
  json_object_foreach(message, key, value) {
    if (std::strcmp(key, "Param") == 0 && json_is_array(value)) {
      if (retrieveRuxoMsgParamArray(context, value, message_id) != 0) {
        InterpreterError{kSource, 493}("RuxoMessage -> Param: errors !!!\n");
        return false;
      }
    } else if (std::strcmp(key, "MsgType") == 0 && json_is_string(value)) {
      if (!StoreMessageType(context->connection, value, message_id)) { return false; }
    }
  }
  return true;
}

int StoreMessage(ParseContext* context, json_t* message, const char* set_id) {
  if (!json_is_object(message)) {
    InterpreterError{kSource, 460}("Message body is not object type\n");
    return 1;
  }
  const json_t* id = json_object_get(message, "id");
  if (!json_is_string(id)) {
    InterpreterError{kSource, 468}("Wrong type: RuxoMessage -> id\n");
    return 1;
  }
  const char* id_text = json_string_value(id);
  if (!id_text) {
    InterpreterError{kSource, 475}("---> NULL pointer: json_string_value !!!!\n");
    return 1;
  }
  const CString message_id(hashTreeCreateNewHash(context->connection, "id", id_text));
  if (!message_id) {
    InterpreterError{kSource, 482}("<%s : %s> insert pair into hash failed!!\n", "id", id_text);
    return 1;
  }
  if (!StoreMessageMembers(context, message, message_id.get())) { return 1; }
  const std::string_view member = message_id.get();
  if (AddSetMember(context->connection, set_id, member.substr(0, kIdSize)) == 1) {
    InterpreterError{kSource, 521}("---> create set table failed !!!!\n");
    return 1;
  }
  return 0;
}

// The text of a parameter; null after a report.
const char* ParamText(const json_t* param, std::size_t index) {
  if (!json_is_string(param)) {
    InterpreterError{kSource, 306}("Member of Param array is not string type !\n");
    return nullptr;
  }
  const char* text = json_string_value(param);
  if (!text) {
    InterpreterError{kSource, 312}("NULL pointer: json_string_value !!!!\n");
    return nullptr;
  }
  if (!std::strstr(text, "#/")) {
    InterpreterError{kSource, 321}("param[%d]=%s format error, should contain #/ !!!!\n",
                                   static_cast<int>(index), text);
    return nullptr;
  }
  return text;
}

// Where a parameter leads: in the schema in hand unless it names another.
CString ParamRoute(const ParseContext* context, const char* param) {
  const bool is_local = std::string_view(param).starts_with("#/");
  const char* schema_name = is_local ? context->resourcePath.schemaName : "";
  const std::size_t size = std::strlen(schema_name) + std::strlen(param) + 1;
  CArray<char> route = ZeroedArray<char>(size);
  if (!route) {
    InterpreterError{kSource}("malloc failed !!!\n");
    return nullptr;
  }
  (void)std::snprintf(route.get(), size, "%s%s", schema_name, param);
  return CString(route.release());
}

bool SplitParam(const ParseContext* context, const char* param, ResourcePath* path) {
  if (parseResourcePath(param, path) != 0) { return false; }
  if (IsPointerPath(*path) && path->schemaName[0] == '\0' &&
      !CopyWhole(path->schemaName, BoundedText(context->resourcePath.schemaName))) {
    InterpreterError{kSource, 370}("Schema name: %.*s\n is greater than string buffer ...\n",
                                   static_cast<int>(sizeof(path->schemaName)),
                                   context->resourcePath.schemaName);
    return false;
  }
  return true;
}

bool StoreParam(ParseContext* context, const char* param, const char* message_id) {
  const CString route = ParamRoute(context, param);
  const auto path = ZeroedRecord<ResourcePath>();
  if (!route || !path || !SplitParam(context, param, path.get())) { return false; }
  if (schemaRefListInsertEntry(message_id, context->resourcePath.schemaName, route.get(), param,
                               param, path.get(), kFirstParamSlot, kParamSlotLimit) != 0) {
    InterpreterError{kSource, 386}(
        "Failed to insert entry into Schema Reference List [%d][%d] !!!\n", kFirstParamSlot,
        kParamSlotLimit);
    return false;
  }
  char type[kValueSize];
  getParamMemberType(context, route.get(), type);
  return hashTreeHashAddSinglePair(context->connection, param, type, message_id) == 0;
}

// The hash at which the walk along a route starts; empty after a report, or silently when the
// route names a schema that was not interpreted.
std::string_view StartHash(const ParseContext* context, const char* route_text,
                           std::string_view first_token) {
  if (std::string_view(route_text).starts_with("#/")) { return context->rootHashID; }
  char schema_name[kRouteSize];
  CopyCut(schema_name, first_token);
  if (!isReferenceSchemaHasInternalized(schema_name)) { return {}; }
  const char* id = getSchemaHashID(schema_name);
  if (!id) {
    InterpreterError{kSource, 166}("Get schema hash ID [%s] failed !!!\n", schema_name);
    return {};
  }
  if (std::strlen(id) > kIdLength) {
    InterpreterError{kSource, 174}("Schema hash ID length is too long !!!\n");
    return {};
  }
  return id;
}

bool IsStorable(const char* route_text, std::span<const char> value) {
  if (BoundedText(value).size() < kValueSize) { return true; }
  InterpreterError{kSource, 237}(
      "Length is too long to store in Redis!!!\nParam member: <%s>\nAcceptable length is: %zu\n",
      route_text, kValueSize);
  return false;
}

// Follows the rest of a route from a hash; false after a report.
bool FollowRoute(const ParseContext* context, const char* route_text, std::string_view start,
                 Tokenizer tokens, std::span<char, kValueSize> value) {
  char hash_id[kIdSize];
  CopyCut(hash_id, start);
  std::string_view token = tokens.Next("/");
  if (token.empty()) {
    InterpreterError{kSource, 189}("strtok\n");
    return false;
  }
  for (;;) {
    char field[kRouteSize];
    CopyCut(field, token);
    if (zephlaneGetHashField(context->connection, hash_id, field, value.data()) != 0) {
      InterpreterError{kSource, 247}(
          "[Warning] Type information from <%s> not found while parsing\n", route_text);
      return false;
    }
    token = tokens.Next("/");
    if (token.empty()) { return IsStorable(route_text, value); }
    if (!Contains(value.data(), kHashIdPrefix)) {
      InterpreterError{kSource, 227}("Value is not hash ID while property has sub-property !!!\n");
      return false;
    }
    if (!CopyWhole(hash_id, value.data())) {
      InterpreterError{kSource, 219}("Length of hash ID is incorrect !!!\n");
      return false;
    }
  }
}

void ReportRouteLength(const char* route_text, int line) {
  InterpreterError{kSource, line}(
      "Length is too long to extract!!!\nParam member: <%s>\nAcceptable length is: %zu\n",
      route_text, kRouteSize);
}

bool FindParamType(const ParseContext* context, const char* route_text,
                   std::span<char, kValueSize> value) {
  if (!context) {
    InterpreterError{kSource, 115}("%s: argument is NULL !!!\n", "getParamMemberType");
    return false;
  }
  if (std::strlen(route_text) >= kRouteSize) {
    ReportRouteLength(route_text, 125);
    return false;
  }
  if (BoundedText(context->rootHashID).size() >= kIdSize) {
    ReportRouteLength(route_text, 132);
    return false;
  }
  Tokenizer tokens(route_text);
  // With a route that begins with "#/" this takes the first step of the path, which is then never
  // looked up: the walk goes on with the second.
  const std::string_view first = tokens.Next("#/");
  if (first.empty()) {
    InterpreterError{kSource, 143}("strtok\n");
    return false;
  }
  const std::string_view start = StartHash(context, route_text, first);
  return !start.empty() && FollowRoute(context, route_text, start, tokens, value);
}

}  // namespace

int parseInstanceCollectionField(redisContext* ctx, const json_t* schema,
                                 const char* root_hash_id) {
  if (!ctx || !schema || !root_hash_id) {
    return ReportNullArgument("parseInstanceCollectionField", 709);
  }
  const json_t* given = json_object_get(schema, kInstanceCollectionField);
  return json_is_string(given) ? StoreGivenCollection(ctx, given, root_hash_id)
                               : StoreNewCollection(ctx, root_hash_id);
}

int parseTTLField(redisContext* ctx, const json_t* ttl, const char* root_hash_id) {
  if (!ctx || !ttl || !root_hash_id) { return ReportNullArgument("parseTTLField", 632); }
  if (!json_is_integer(ttl)) {
    InterpreterError{kSource, 638}("TTL is not integer type.\n");
    return 1;
  }
  char text[kValueSize] = "";
  (void)std::snprintf(text, sizeof(text), "%lld", static_cast<long long>(json_integer_value(ttl)));
  if (hashTreeHashAddSinglePair(ctx, kTtlField, text, root_hash_id) != 0) {
    InterpreterError{kSource, 647}("---> failed to add < %s: %s > !!!\n", kTtlField, text);
    return 1;
  }
  return 0;
}

int parseRuxoMsgValue(ParseContext* context, const json_t* values, const char* set_id) {
  if (!context || !values || !set_id) { return ReportNullArgument("parseRuxoMsgValue", 444); }
  for (std::size_t i = 0; i < json_array_size(values); ++i) {
    json_t* message = json_array_get(values, i);
    if (!message) { return 0; }
    if (StoreMessage(context, message, set_id) != 0) { return 1; }
  }
  return 0;
}

int retrieveRuxoMsgParamArray(ParseContext* context, const json_t* params,
                              const char* message_hash_id) {
  if (!context || !params || !message_hash_id) {
    return ReportNullArgument("retrieveRuxoMsgParamArray", 286);
  }
  for (std::size_t i = 0; i < json_array_size(params); ++i) {
    const char* param = ParamText(json_array_get(params, i), i);
    if (!param || !StoreParam(context, param, message_hash_id)) { return 1; }
  }
  return 0;
}

void getParamMemberType(const ParseContext* context, const char* route_text, char* out) {
  const std::span<char, kValueSize> value(out, kValueSize);
  if (!FindParamType(context, route_text, value)) { CopyCut(value, kTypeNotFound); }
}

}  // namespace zephlane

using zephlane::CString;
using zephlane::InterpreterError;
using zephlane::kSource;

int isZephlaneExtension(const char* aName) {
  if (!aName) { return 0; }
  const char* const extensions[] = {propertyRuxoMessage, zephlane::kTtlField,
                                    zephlane::kInstanceCollectionField, zephlane::kTypeIdField};
  for (const char* extension : extensions) {
    if (std::strcmp(aName, extension) == 0) { return 1; }
  }
  return 0;
}

int isNonKeywordProperty(const char* aName) {
  if (!aName) { return 0; }
  for (const char* name :
       {"definitions", "dependencies", "RefSchema", "patternProperties", "properties"}) {
    if (std::strcmp(aName, name) == 0) { return 1; }
  }
  return 0;
}

int parseZephlaneExtension(ParseContext* aContext, const char* aRootHashID) {
  if (!aContext || !aRootHashID) {
    return zephlane::ReportNullArgument("parseZephlaneExtension", 797);
  }
  redisContext* ctx = aContext->connection;
  const json_t* schema = aContext->document;
  if (zephlane::StoreTypeId(aContext, aRootHashID) != 0) {
    InterpreterError{kSource, 804}("typeId\n");
    return 1;
  }
  if (zephlane::parseInstanceCollectionField(ctx, schema, aRootHashID) != 0) {
    InterpreterError{kSource, 812}("instanceCollection\n");
    return 1;
  }
  const json_t* ttl = json_object_get(schema, zephlane::kTtlField);
  if (ttl && zephlane::parseTTLField(ctx, ttl, aRootHashID) != 0) {
    InterpreterError{kSource, 821}("ttl\n");
    return 1;
  }
  json_t* message = zephlane::MessageProperty(schema);
  if (message && parseRuxoMessageField(aContext, message, aRootHashID) != 0) {
    InterpreterError{kSource, 831}("RuxoMessage\n");
    return 1;
  }
  return 0;
}

int parseRuxoMessageField(ParseContext* aContext, json_t* aMessage, const char* aParentHashID) {
  if (!aContext || !aMessage || !aParentHashID) {
    return zephlane::ReportNullArgument("parseRuxoMessageField", 556);
  }
  const json_t* type = json_object_get(aMessage, "type");
  if (!type) {
    InterpreterError{kSource, 562}("Object has no type!\n");
    return 1;
  }
  // Any other type is only worth a notice.
  if (!json_is_string(type)) {
    InterpreterError{kSource, 568}("RuxoMessage type does not present as STRING type !!!\n");
  }
  const json_t* values = json_object_get(aMessage, "values");
  if (!values) {
    InterpreterError{kSource, 573}("Ruxo Message without message body.\n");
    return 1;
  }
  if (!json_is_array(values)) { return 0; }
  const CString set_id(hashTreeCreateNewSet(aContext->connection, nullptr));
  if (!set_id) {
    InterpreterError{kSource, 581}("create new set table faile !!!!\n");
    return 1;
  }
  // The field has the configured name, whatever name the object was found under.
  if (hashTreeHashAddSinglePair(aContext->connection, propertyRuxoMessage, set_id.get(),
                                aParentHashID) == 1) {
    InterpreterError{kSource, 589}("Failed to add pair !!!!\n");
    return 1;
  }
  if (zephlane::parseRuxoMsgValue(aContext, values, set_id.get()) != 0) {
    InterpreterError{kSource, 596}("Parsing RuxoMessage field failed !!!!\n");
    return 1;
  }
  return 0;
}
