// SPDX-License-Identifier: MIT
//
// The driver of an interpreter run, and what every stage shares: schema files, keywords, the route
// map and the text forms of JSON values. A run keeps its schema directory and tables in the
// process: one thread of one process interprets at a time.
#include "interpreter/zephlaneSchemaInterpreter.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "interpreter/hashTreeOperation.h"
#include "interpreter/referenceLinking.h"
#include "interpreter/stackRoom.h"
#include "interpreter/typeNames.h"
#include "support/guard.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/connection.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/objects.h>

const char* G_aSpecialSchemaFileTable[ZEPHLANE_SPECIAL_SCHEMA_FILES] = {
    "schema", "schema#", "hyper-schema", "hyper-schema#"};
int G_nSpecialSchemaFileCount = 4;
char propertyRuxoMessage[1025] = "";

namespace zephlane {
namespace {

constexpr char kSource[] = "zephlaneSchemaInterpreter.cpp";
constexpr char kUriConfigurationFile[] = "/tmp/etc/SchemaURIConf.json";
constexpr char kRootSpot[] = "#";

// The keywords that are stored, and with them the configured message property, whatever its name.
// Every other member of a schema object is an annotation.
constexpr std::string_view kEssentialFields[] = {"title",
                                                 "$schema",
                                                 "type",
                                                 "required",
                                                 "properties",
                                                 "patternProperties",
                                                 "items",
                                                 "$ref",
                                                 "definitions",
                                                 "oneOf",
                                                 "anyOf",
                                                 "allOf",
                                                 "enum",
                                                 "maximum",
                                                 "minimum",
                                                 "pattern",
                                                 "readonly",
                                                 "format",
                                                 "additionalProperties",
                                                 "additionalItems",
                                                 "uniqueItems",
                                                 "maxLength",
                                                 "minLength",
                                                 "maxItems",
                                                 "minItems",
                                                 "maxProperties",
                                                 "minProperties",
                                                 "default",
                                                 "not",
                                                 "dependencies",
                                                 "requiredOnCreate",
                                                 "links",
                                                 "href",
                                                 "rel",
                                                 "typeId",
                                                 "instanceCollection",
                                                 "ttl",
                                                 "RefSchema"};

// Where the schema files lie: the prefix of the root schema's path. Set by the driver.
char schema_directory[sizeof(ResourcePath::prefix)] = "";

struct Disconnect {
  void operator()(redisContext* ctx) const noexcept {
    (void)zephlaneRedisDisconnect(ctx);
  }
};
using Connection = std::unique_ptr<redisContext, Disconnect>;

// The route map of one schema parse: begins with the document's root, freed at the end.
class RouteMapHold {
 public:
  explicit RouteMapHold(ParseContext& context) noexcept : context_(context) {
    context_.routeMap = parserRouteCreateNode(kRootSpot);
    context_.routeMap = parserRouteDisplayRoute(context_.routeMap);
  }
  RouteMapHold(const RouteMapHold&) = delete;
  RouteMapHold& operator=(const RouteMapHold&) = delete;
  ~RouteMapHold() {
    parserRouteFreeRouteMap(context_.routeMap);
    context_.routeMap = nullptr;
  }
  explicit operator bool() const noexcept {
    return context_.routeMap != nullptr;
  }

 private:
  ParseContext& context_;
};

// A spot leaves no trace in the route when it is the root, or when its name is a leading part of
// "properties", the whole word included: members of "properties" lie in the enclosing hash.
bool IsSilentSpot(const RouteSpot& spot) {
  return spot.name[0] == '#' || std::string_view("properties").starts_with(spot.name);
}

Json LoadDocument(const char* path) {
  Json document(loadZephlaneSchemaFile(path));
  if (!document) { (void)std::fprintf(stderr, "Failed to open schema file at %s !!!\n", path); }
  return document;
}

char* NewRootHash(redisContext* ctx) {
  char* id = hashTreeCreateNewHash(ctx, kDummyField, kDummyValue);
  if (!id) { InterpreterError{kSource}("Failed to creat root object hash !!!\n"); }
  return id;
}

// The root hash of a schema that names its own ID.
char* NewGivenRootHash(redisContext* ctx, const char* given_id) {
  char id[kIdSize];
  if (toLowerUUID(given_id, id, sizeof(id)) != 0) { return nullptr; }
  if (!isSchemaGivenUUIDValid(id)) {
    InterpreterError{kSource}("Invalid typeId\n");
    return nullptr;
  }
  if (isUUIDRegistered(id)) {
    InterpreterError{kSource}("Oops! This typeId has been used.\n");
    return nullptr;
  }
  if (hashTreeCreateNewTypeSchemaHash(ctx, kDummyField, kDummyValue, id) != 0) {
    InterpreterError{kSource}("Create type schema hash failed\n");
    return nullptr;
  }
  return Duplicate(id).release();
}

// Parses a referenced document below a root hash that is registered already, so that references
// back to it find it.
bool ParseReferencedDocument(ParseContext& context) {
  const RouteMapHold route(context);
  if (!route) { return false; }
  if (parseRootObject(&context, context.document) == 0) { return true; }
  InterpreterError{kSource}("Error while Parsing ...\n");
  return false;
}

// Steps of a run; each reports its own failure and returns false.

bool LocateRootSchema(const char* root_schema_path, ResourcePath* resource_path) {
  if (loadSchemaURIConf(kUriConfigurationFile) != 0) {
    InterpreterError{kSource}("Failed to load SchemaURI.conf\n");
    return false;
  }
  if (parseResourcePath(root_schema_path, resource_path) != 0) { return false; }
  if (!CopyWhole(schema_directory, BoundedText(resource_path->prefix))) {
    InterpreterError{kSource}("Path prefix is out of range !!!\n");
    return false;
  }
  return true;
}

Connection Connect() {
  Connection connection(zephlaneRedisConnect());
  if (!connection) { (void)std::fputs("Zephlane Redis connect failed !!!\n", stderr); }
  return connection;
}

bool LoadMessageProperty(redisContext* ctx) {
  if (zephlaneLoadConfig(ctx, kMessagePropertyField, propertyRuxoMessage,
                         sizeof(propertyRuxoMessage)) == 0) {
    return true;
  }
  InterpreterError{kSource}("Failed to load zephlane configuration.\n");
  return false;
}

bool CreateRootHash(ParseContext& context) {
  const CString id(generateSchemaRootHash(context.connection, context.document));
  if (!id) {
    InterpreterError{kSource}("Failed to get Schema ROOT hash !!!\n");
    return false;
  }
  (void)schemaReferTableInsertEntry(context.resourcePath.schemaName, id.get());
  if (!CopyWhole(context.rootHashID, id.get())) {
    InterpreterError{kSource}("Root hash ID length is longer than (%zu) ...\n", kIdSize);
    return false;
  }
  return true;
}

bool ParseRootDocument(ParseContext& context) {
  const RouteMapHold route(context);
  if (!route) { return false; }
  if (parseRootObject(&context, context.document) == 0) { return true; }
  InterpreterError{kSource}("Failed to parse root object !!!\n");
  return false;
}

bool LinkAndIndex(ParseContext& context) {
  if (resourceReferenceLinking(&context) != 0) {
    InterpreterError{kSource}("Resource reference linking fail !!!\n");
    return false;
  }
  if (hashTreeCreateSchemaTitleUUIDMapping(context.connection) != 0) {
    InterpreterError{kSource}("hashTreeCreateSchemaTitleUUIDMapping fail !!!\n");
    return false;
  }
  return true;
}

bool Internalize(ParseContext& context, Json document) {
  // A failed initialisation does not stop the run.
  if (hashTreeInit(context.connection) != 0) {
    (void)std::fputs("Hash tree table init failed !!!\n", stderr);
  }
  context.document = document.get();
  if (!CreateRootHash(context) || !ParseRootDocument(context)) {
    InterpreterError{kSource}("Internalize schema data into Redis cache failed !!!\n");
    return false;
  }
  if (hashTreeRemoveDummyData(context.connection) != 0) {
    InterpreterError{kSource}("Something wrong with removing dummy data ...\n");
  }
  (void)zephlaneDumpHash(context.connection, context.rootHashID);
  document.reset();
  context.document = nullptr;
  return LinkAndIndex(context);
}

bool Interpret(const char* root_schema_path) {
  const CRecord<ParseContext> context = ZeroedRecord<ParseContext>();
  if (!context) {
    InterpreterError{kSource}("malloc failed !!!\n");
    return false;
  }
  schema_directory[0] = '\0';
  schemaReferenceListInit();
  if (!LocateRootSchema(root_schema_path, &context->resourcePath)) { return false; }
  Json document = LoadDocument(context->resourcePath.path);
  if (!document) { return false; }
  const Connection connection = Connect();
  if (!connection) { return false; }
  context->connection = connection.get();
  if (!LoadMessageProperty(connection.get())) { return false; }
  // Once per Redis lifetime: what is there already stays untouched.
  if (isSchemaInterpreted(connection.get())) { return true; }
  return Internalize(*context, std::move(document));
}

}  // namespace

CString RouteText(const ParseContext& context) {
  const char* schema_name = context.resourcePath.schemaName;
  std::size_t size = std::strlen(schema_name) + 2;
  for (const RouteSpot* spot = context.routeMap; spot != nullptr; spot = spot->next) {
    size += std::strlen(spot->name) + 1;
  }
  CArray<char> text = ZeroedArray<char>(size);
  if (!text) {
    InterpreterError{kSource}("malloc failed !!!\n");
    return nullptr;
  }
  parserRouteConcatRoute(context.routeMap, schema_name, text.get(), size);
  return CString(text.release());
}

}  // namespace zephlane

using zephlane::InterpreterError;
using zephlane::kSource;

int zephlaneSchemaInterpreter(const char* aRootSchemaPath) {
  return zephlane::Guarded(1, [&] { return zephlane::Interpret(aRootSchemaPath) ? 0 : 1; });
}

void zephlaneSchemaInterpreterProgress(InterpreterProgress* aOut) {
  if (!aOut) { return; }
  aOut->nFiles = zephlane::RegisteredSchemaCount();
  aOut->nObjects = zephlane::RecordedObjectCount();
  aOut->nReferences = zephlane::RecordedReferenceCount();
}

char* parseReferenceSchemaFile(redisContext* ctx, const char* aSchemaName) {
  if (!ctx || !aSchemaName) {
    InterpreterError{kSource}("Argument is NULL pointer !!!\n");
    return nullptr;
  }
  // On the heap: files that name each other are interpreted within each other.
  const auto context = zephlane::ZeroedRecord<ParseContext>();
  if (!context) {
    InterpreterError{kSource}("malloc failed !!!\n");
    return nullptr;
  }
  context->connection = ctx;
  (void)std::snprintf(context->resourcePath.path, sizeof(context->resourcePath.path), "%s%s",
                      zephlane::schema_directory, aSchemaName);
  if (!zephlane::CopyWhole(context->resourcePath.schemaName, aSchemaName)) {
    InterpreterError{kSource}("Length of schema name !!!\n");
    return nullptr;
  }
  if (zephlane::StackIsUsedUp(kSource)) { return nullptr; }
  const zephlane::Json document = zephlane::LoadDocument(context->resourcePath.path);
  if (!document) { return nullptr; }
  context->document = document.get();
  zephlane::CString id(generateSchemaRootHash(ctx, document.get()));
  if (!id) {
    InterpreterError{kSource}("Failed to get Schema ROOT hash !!!\n");
    return nullptr;
  }
  if (schemaReferTableInsertEntry(aSchemaName, id.get()) != 0) { return nullptr; }
  zephlane::CopyCut(context->rootHashID, id.get());
  return zephlane::ParseReferencedDocument(*context) ? id.release() : nullptr;
}

char* generateSchemaRootHash(redisContext* ctx, json_t* aDocument) {
  if (!ctx || !aDocument) {
    InterpreterError{kSource}("%s: argument is NULL!\n", "generateSchemaRootHash");
    return nullptr;
  }
  const json_t* given = json_object_get(aDocument, "typeId");
  if (!given) { return zephlane::NewRootHash(ctx); }
  if (!json_is_string(given)) {
    InterpreterError{kSource}("Value of typeId field is not string!\n");
    return nullptr;
  }
  const std::size_t length = json_string_length(given);
  if (length == 0) { return zephlane::NewRootHash(ctx); }
  if (length != zephlane::kIdLength) {
    InterpreterError{kSource}("Invalid typeId!\n");
    return nullptr;
  }
  return zephlane::NewGivenRootHash(ctx, json_string_value(given));
}

json_t* loadZephlaneSchemaFile(const char* aFileName) {
  if (!aFileName || access(aFileName, F_OK) != 0) {
    InterpreterError{kSource}("%s: not such schema file\n", zephlane::Shown(aFileName));
    return nullptr;
  }
  json_error_t error;
  json_t* document = json_load_file(aFileName, 0, &error);
  if (!document) { (void)std::fprintf(stderr, "error: on line %d: %s\n", error.line, error.text); }
  return document;
}

int isSchemaInterpreted(redisContext* ctx) {
  unsigned int count = 0;
  const zephlane::CArray<InstanceData> pairs(
      zephlaneHashGetAll(ctx, zephlane::kRootServiceId, &count));
  return pairs && count > 0 ? 1 : 0;
}

int isSpecialSchemaFile(const char* aName) {
  for (int i = 0; aName && i < G_nSpecialSchemaFileCount; ++i) {
    if (std::strcmp(aName, G_aSpecialSchemaFileTable[i]) == 0) { return 1; }
  }
  return 0;
}

int isTypeSchemaEssentialField(const char* aName) {
  if (!aName) { return 0; }
  const std::string_view name = aName;
  const auto& fields = zephlane::kEssentialFields;
  const bool is_keyword = std::find(std::begin(fields), std::end(fields), name) != std::end(fields);
  return is_keyword || name == propertyRuxoMessage ? 1 : 0;
}

RouteSpot* parserRouteCreateNode(const char* aSpotName) {
  if (!aSpotName) {
    InterpreterError{kSource}("create node: spotName\n");
    return nullptr;
  }
  auto spot = zephlane::ZeroedRecord<RouteSpot>();
  if (!spot) {
    InterpreterError{kSource}("malloc: parser tracking spot\n");
    return nullptr;
  }
  return zephlane::CopyWhole(spot->name, aSpotName) ? spot.release() : nullptr;
}

int parserRouteInsertEnd(RouteSpot* aHead, const char* aSpotName) {
  if (!aHead) { return -1; }
  if (!aSpotName) {
    InterpreterError{kSource}("NULL\n");
    return -1;
  }
  RouteSpot* spot = parserRouteCreateNode(aSpotName);
  if (!spot) {
    InterpreterError{kSource}("Failed to create node for route map!\n");
    return -1;
  }
  RouteSpot* tail = aHead;
  while (tail->next) { tail = tail->next; }
  tail->next = spot;
  return 0;
}

int parserRouteDeleteEnd(RouteSpot** aHead, const char* aSpotName) {
  if (!aHead) { return 0; }
  if (!aSpotName) {
    InterpreterError{kSource}("Value pointer is null\n");
    return -1;
  }
  RouteSpot** tail = aHead;
  while (*tail && (*tail)->next) { tail = &(*tail)->next; }
  if (!*tail || std::strcmp((*tail)->name, aSpotName) != 0) {
    InterpreterError{kSource}("Spot name not match!!\n");
    return -1;
  }
  const zephlane::CRecord<RouteSpot> removed(std::exchange(*tail, nullptr));
  return 0;
}

void parserRouteConcatRoute(const RouteSpot* aHead, const char* aSchemaName, char* aOut,
                            size_t nOutSize) {
  if (!aHead) {
    InterpreterError{kSource}("EMPTY!!\n");
    return;
  }
  if (!aSchemaName || !aOut || nOutSize == 0) { return; }
  // The start is cut at nOutSize. What follows it is not bounded: callers give room for the route
  // they have.
  const std::size_t name_length = std::min(std::strlen(aSchemaName), nOutSize - 1);
  zephlane::CopyCounted(aOut, {aSchemaName, name_length});
  char* end = aOut + name_length;
  if (name_length + 1 < nOutSize) { *end++ = '#'; }
  *end = '\0';
  for (const RouteSpot* spot = aHead; spot; spot = spot->next) {
    if (zephlane::IsSilentSpot(*spot)) { continue; }
    const std::string_view name = spot->name;
    *end++ = '/';
    zephlane::CopyCounted(end, name);
    end += name.size();
    *end = '\0';
  }
}

void parserRouteFreeRouteMap(RouteSpot* aHead) {
  zephlane::CRecord<RouteSpot> spot(aHead);
  while (spot) { spot.reset(spot->next); }
}

// A hook of a former debug print: it does nothing, and stays because programs link against it.
RouteSpot* parserRouteDisplayRoute(RouteSpot* aHead) {
  return aHead;
}

int isJsonSimpleType(const json_t* aValue) {
  return json_is_string(aValue) || json_is_integer(aValue) || json_is_boolean(aValue) ? 1 : 0;
}

char* getJsonSimpleTypeStr(const json_t* aValue) {
  if (json_is_string(aValue)) { return zephlane::Duplicate(json_string_value(aValue)).release(); }
  char text[16];
  if (json_is_integer(aValue)) {
    (void)getJsonIntegerString(aValue, text, sizeof(text));
    return zephlane::Duplicate(text).release();
  }
  if (json_is_boolean(aValue)) {
    (void)getJsonBooleanString(aValue, text, sizeof(text));
    return zephlane::Duplicate(text).release();
  }
  InterpreterError{kSource}("Input is not JSON simple Type !!!!\n");
  return nullptr;
}

int getJsonIntegerString(const json_t* aValue, char* aBuffer, size_t nSize) {
  if (!aBuffer) { return 0; }
  std::memset(aBuffer, 0, nSize);
  // 32 bits, whatever Jansson holds: the store has always had the lower half of larger numbers.
  return std::snprintf(aBuffer, nSize, "%d", static_cast<int>(json_integer_value(aValue)));
}

int getJsonBooleanString(const json_t* aValue, char* aBuffer, size_t nSize) {
  if (!aBuffer) { return 0; }
  std::memset(aBuffer, 0, nSize);
  if (!json_is_boolean(aValue)) { return 0; }
  return std::snprintf(aBuffer, nSize, "%s", json_is_true(aValue) ? "true" : "false");
}

char* parseMultipleTypeField(const json_t* aTypeArray) {
  char joined[zephlane::kValueSize];
  if (const char* element = zephlane::JoinTypeNames(aTypeArray, joined)) {
    InterpreterError{kSource}("type field: %s\n", element);
    InterpreterError{kSource}("String is too long to store in Redis ...\n");
    return nullptr;
  }
  return zephlane::Duplicate(joined).release();
}

int parseMultipleTypeFieldAdd(redisContext* ctx, const json_t* aTypeArray, const char* aHashKey) {
  const zephlane::CString joined(parseMultipleTypeField(aTypeArray));
  if (!joined) { return 1; }
  if (hashTreeHashAddSinglePair(ctx, "type", joined.get(), aHashKey) != 0) {
    InterpreterError{kSource}("Filed name: <%s> insert pair into hash failed!!\n", "type");
    return 1;
  }
  return 0;
}
