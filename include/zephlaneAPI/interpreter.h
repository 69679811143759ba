/* SPDX-License-Identifier: MIT */
/**
 * @file interpreter.h
 * The schema interpreter: internalises a directory of JSON Schema files into Redis as a tree of
 * hashes and sets, once per Redis lifetime. zephlaneSchemaInterpreter() does all of it; the other
 * functions are its stages. Tables and counters are globals of the process: one thread of one
 * process interprets at a time.
 */
#ifndef ZEPHLANEAPI_INTERPRETER_H
#define ZEPHLANEAPI_INTERPRETER_H

#include <hiredis/hiredis.h>
#include <jansson.h>

#include <zephlaneAPI/hashTree.h>
#include <zephlaneAPI/types.h>

#ifdef __cplusplus
extern "C" {
#endif

#define ZEPHLANE_SCHEMA_URI_ENTRIES 16
#define ZEPHLANE_SPECIAL_SCHEMA_FILES 16

/** One configured schema location. */
typedef struct SchemaUriInfo {
  char uri[256];       /**< accepted URL prefix, compared whole with a reference's prefix */
  char directory[256]; /**< directory name that goes with it; never read by the library */
} SchemaUriInfo;

/** A reference or file path, split into its parts; parts that do not occur stay empty. */
typedef struct ResourcePath {
  char path[2200];        /**< the whole input */
  char prefix[2000];      /**< everything before the schema file name, ending with '/' */
  char schemaName[200];   /**< the schema file name, or the name of a meta-schema */
  char propertyPath[200]; /**< from the last '#' to the end */
} ResourcePath;

/** One step of the path from a document's root to the node being parsed. */
typedef struct RouteSpot {
  char name[100];         /**< keyword or member; the first spot of a route is "#" */
  struct RouteSpot* next; /**< the step below it; NULL at the node being parsed */
} RouteSpot;

/** What travels through the parsers: one record for each schema being parsed. */
typedef struct ParseContext {
  redisContext* connection;          /**< borrowed */
  char rootHashID[ZEPHLANE_ID_SIZE]; /**< ID of the schema's root hash */
  unsigned int reserved;             /**< zero */
  json_t* document;                  /**< the schema's document (borrowed) */
  ResourcePath resourcePath; /**< where the document was loaded from, and under which name */
  RouteSpot* routeMap;       /**< first spot of the route; the record's maker frees it */
} ParseContext;

/** How far the interpreter run of this process has come. */
typedef struct InterpreterProgress {
  unsigned int nFiles;      /**< schema files registered so far */
  unsigned int nObjects;    /**< hashes and sets recorded so far */
  unsigned int nReferences; /**< references recorded so far */
} InterpreterProgress;

/*
 * What every stage reads. The interpreting thread fills the tables at the start of a run and nobody
 * clears them after it: no other thread may touch them while a run is under way.
 */

/**
 * Accepted schema locations; entry 0 is the published one, the others are OEM locations. Each
 * loadSchemaURIConf() starts from an empty table.
 */
ZEPHLANE_EXPORT extern SchemaUriInfo G_aSchemaUriInfoTable[ZEPHLANE_SCHEMA_URI_ENTRIES];
/** Number of valid entries of G_aSchemaUriInfoTable; -1 until the first load. */
ZEPHLANE_EXPORT extern int G_nSchemaURICount;
/** Meta-schema names that a reference may use without a file extension. */
ZEPHLANE_EXPORT extern const char* G_aSpecialSchemaFileTable[ZEPHLANE_SPECIAL_SCHEMA_FILES];
/** Number of used entries of G_aSpecialSchemaFileTable. */
ZEPHLANE_EXPORT extern int G_nSpecialSchemaFileCount;
/** Name of the message property, and so the last schema keyword; empty until the first run. */
ZEPHLANE_EXPORT extern char propertyRuxoMessage[1025];

/* Driver (zephlaneSchemaInterpreter) */

/**
 * Internalises the schemas below a root schema file into Redis. Does nothing when they are there
 * already, which the hash "00000000-0000-0000-0001-ffffffffffff" tells. Opens a connection of its
 * own and closes it again.
 * @param aRootSchemaPath  path of the root schema file, normally below /tmp/FOSS_schema/
 *                         (borrowed); referenced files are read from the same directory
 * @return 0 when the schemas are in Redis; 1 on failure, with what was written before left in place
 * @note Reads /tmp/etc/SchemaURIConf.json. Prints the root hash on standard output. Prints
 *       "Failed to load SchemaURI.conf", "Path prefix is out of range !!!",
 *       "Failed to load zephlane configuration.", "Failed to get Schema ROOT hash !!!",
 *       "Root hash ID length is longer than (%zu) ...", "Failed to parse root object !!!",
 *       "Internalize schema data into Redis cache failed !!!",
 *       "Something wrong with removing dummy data ...", "Resource reference linking fail !!!",
 *       "hashTreeCreateSchemaTitleUUIDMapping fail !!!" or "malloc failed !!!"; without the prefix
 *       of reports "Failed to open schema file at %s !!!", "Zephlane Redis connect failed !!!" or
 *       "Hash tree table init failed !!!" (the run goes on after this one); and what its stages
 *       print. Redis: AUTH, HGET, HGETALL, HMSET, HDEL, SADD, SREM, DEL, TYPE.
 */
ZEPHLANE_EXPORT int zephlaneSchemaInterpreter(const char* aRootSchemaPath);

/**
 * Tells how far the interpreter run of this process has come, or how far the last one came. Any
 * thread may ask while a run is under way.
 * @param aOut  record to fill (out)
 * @note Prints nothing; does nothing when aOut is NULL.
 */
ZEPHLANE_EXPORT void zephlaneSchemaInterpreterProgress(InterpreterProgress* aOut);

/**
 * Internalises one referenced schema file and, before it is done, every file it names itself. The
 * schema is registered before its body is parsed, so that references back to it find it.
 * @param ctx          connection (borrowed; one thread at a time)
 * @param aSchemaName  file name of at most 199 characters, below the directory of the run's root
 *                     schema (borrowed)
 * @return the ID of its root hash (caller frees with free()); NULL on failure
 * @note Prints "Argument is NULL pointer !!!", "Length of schema name !!!",
 *       "Failed to get Schema ROOT hash !!!", "Error while Parsing ...", "malloc failed !!!",
 *       "Schemas are nested too deeply for the stack !!!" or, without the prefix of reports,
 *       "Failed to open schema file at %s !!!"; and what its stages print. Redis: the commands of
 *       the hash tree.
 */
ZEPHLANE_EXPORT char* parseReferenceSchemaFile(redisContext* ctx, const char* aSchemaName);

/**
 * Creates the root hash of a schema, with the placeholder pair in it: under the schema's own
 * "typeId", lower-cased, or under the next number when it has none or an empty one.
 * @param ctx        connection (borrowed; one thread at a time)
 * @param aDocument  the schema's document (borrowed)
 * @return the ID of the hash (caller frees with free()); NULL on failure
 * @note Prints "%s: argument is NULL!", "Value of typeId field is not string!", "Invalid typeId!"
 *       (not 36 characters), "Invalid typeId" (an ID that a schema must not use),
 *       "Oops! This typeId has been used.", "Create type schema hash failed" or
 *       "Failed to creat root object hash !!!". Redis: HGET, DEL, HMSET.
 */
ZEPHLANE_EXPORT char* generateSchemaRootHash(redisContext* ctx, json_t* aDocument);

/* Schema files, keywords, route map and JSON values (zephlaneSchemaInterpreter) */

/**
 * Loads a JSON document from a file.
 * @param aFileName  path of the file (borrowed)
 * @return the document (caller releases with json_decref()); NULL on failure
 * @note Prints "%s: not such schema file" or, without the prefix of reports,
 *       "error: on line %d: %s" with Jansson's line and text.
 */
ZEPHLANE_EXPORT json_t* loadZephlaneSchemaFile(const char* aFileName);

/**
 * Tells whether the schemas are in Redis, which the root hash of the root service schema stands
 * for.
 * @param ctx  connection (borrowed; one thread at a time)
 * @return 1 when the hash "00000000-0000-0000-0001-ffffffffffff" has a field; 0 when not, or on
 *         failure
 * @note Prints "Argument: redis context" when ctx is NULL. Redis: HGETALL.
 */
ZEPHLANE_EXPORT int isSchemaInterpreted(redisContext* ctx);

/**
 * Tells whether a name is one of the meta-schemas that need no file extension.
 * @param aName  name (borrowed)
 * @return 1 when it is one of the used entries of G_aSpecialSchemaFileTable; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isSpecialSchemaFile(const char* aName);

/**
 * Tells whether a member of a schema object is a keyword that is stored; every other member is an
 * annotation. The content of propertyRuxoMessage is a keyword too, the empty text before a run.
 * @param aName  member name, compared with case (borrowed)
 * @return 1 for a keyword; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isTypeSchemaEssentialField(const char* aName);

/**
 * Makes a spot of the route map that is linked to no other.
 * @param aSpotName  name of at most 99 characters (borrowed)
 * @return the spot (caller frees with parserRouteFreeRouteMap()); NULL on failure
 * @note Prints "create node: spotName" when aSpotName is NULL, "malloc: parser tracking spot", and
 *       nothing when the name is too long.
 */
ZEPHLANE_EXPORT RouteSpot* parserRouteCreateNode(const char* aSpotName);

/**
 * Appends a spot to a route map.
 * @param aHead      first spot (borrowed)
 * @param aSpotName  name of the new spot, of at most 99 characters (borrowed)
 * @return 0; -1 on failure
 * @note Prints nothing when aHead is NULL, "NULL" when aSpotName is NULL, or
 *       "Failed to create node for route map!".
 */
ZEPHLANE_EXPORT int parserRouteInsertEnd(RouteSpot* aHead, const char* aSpotName);

/**
 * Removes the last spot of a route map when it has a given name.
 * @param aHead      address of the first spot (in and out); what it holds becomes NULL when the
 *                   only spot is removed
 * @param aSpotName  expected name (borrowed)
 * @return 0 when it was removed, or when aHead is NULL; -1 when the name differs, with the spot
 *         kept
 * @note Prints "Value pointer is null" when aSpotName is NULL, or "Spot name not match!!".
 */
ZEPHLANE_EXPORT int parserRouteDeleteEnd(RouteSpot** aHead, const char* aSpotName);

/**
 * Writes a route as text: the schema name, '#', and '/' with the name of each spot. Spots that
 * begin with '#' and spots whose name is a leading part of "properties" are left out.
 * @param aHead        first spot (borrowed)
 * @param aSchemaName  schema file name (borrowed)
 * @param aOut         text (out); untouched when there is no spot
 * @param nOutSize     bounds the schema name and its '#' only: give room for the whole route
 * @note Prints "EMPTY!!" when aHead is NULL.
 */
ZEPHLANE_EXPORT void parserRouteConcatRoute(const RouteSpot* aHead, const char* aSchemaName,
                                            char* aOut, size_t nOutSize);

/**
 * Frees every spot of a route map.
 * @param aHead  first spot (taken); may be NULL
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void parserRouteFreeRouteMap(RouteSpot* aHead);

/**
 * Does nothing: the hook of a former debug print, kept for programs that link against it.
 * @param aHead  first spot (borrowed)
 * @return aHead
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT RouteSpot* parserRouteDisplayRoute(RouteSpot* aHead);

/**
 * Tells whether a value is stored as a text of its own: a string, an integer, true or false.
 * @param aValue  value (borrowed)
 * @return 1 for these; 0 for an object, an array, a real, null, and when aValue is NULL
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isJsonSimpleType(const json_t* aValue);

/**
 * Returns the text that stands for a simple value: a string itself, an integer in decimal as a
 * signed number of 32 bits (larger ones wrap), "true" or "false".
 * @param aValue  value (borrowed)
 * @return the text (caller frees with free()); NULL when the value is not simple or memory is out
 * @note Prints "Input is not JSON simple Type !!!!".
 */
ZEPHLANE_EXPORT char* getJsonSimpleTypeStr(const json_t* aValue);

/**
 * Writes an integer in decimal as a signed number of 32 bits; larger ones wrap.
 * @param aValue   value (borrowed); 0 is written for any other type
 * @param aBuffer  text (out), zero-filled behind it
 * @param nSize    size of aBuffer in bytes
 * @return the length of the text
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int getJsonIntegerString(const json_t* aValue, char* aBuffer, size_t nSize);

/**
 * Writes "true" or "false".
 * @param aValue   value (borrowed)
 * @param aBuffer  text (out), zero-filled behind it; empty for any other type
 * @param nSize    size of aBuffer in bytes
 * @return the length of the text; 0 for any other type
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int getJsonBooleanString(const json_t* aValue, char* aBuffer, size_t nSize);

/**
 * Joins the names of a "type" list in their order, without a separator: "string" and "null" give
 * "stringnull". Elements that are not strings are skipped.
 * @param aTypeArray  list (borrowed)
 * @return the text (caller frees with free()); NULL when it would reach 1024 characters or memory
 *         is out
 * @note Prints "type field: %s" with the offending name, and
 *       "String is too long to store in Redis ...".
 */
ZEPHLANE_EXPORT char* parseMultipleTypeField(const json_t* aTypeArray);

/**
 * Writes the joined names of a "type" list as the field "type" of a hash.
 * @param ctx         connection (borrowed; one thread at a time)
 * @param aTypeArray  list (borrowed)
 * @param aHashKey    key of the hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints what parseMultipleTypeField() prints, or
 *       "Filed name: <type> insert pair into hash failed!!". Redis: HMSET.
 */
ZEPHLANE_EXPORT int parseMultipleTypeFieldAdd(redisContext* ctx, const json_t* aTypeArray,
                                              const char* aHashKey);

/* Schema locations and references (resourcePathParser) */

/**
 * Fills the table of accepted schema locations from its configuration file: a JSON object with the
 * text "DmtfSchemaUri" (entry 0) and, optionally, "OemSchemaUris", an array of at most 14 objects
 * with the texts "Uri" and "Directory". An OEM entry counts only when both are good.
 * @param aFileName  path of the file (borrowed)
 * @return 0; 1 on failure, with an empty table or, when "OemSchemaUris" is wrong, with entry 0
 *         alone
 * @note Prints "Failed to open configure file %s !!!" and "Get field %s fail !!!" (each with an
 *       empty line), "%s is not array type.",
 *       "Too many elements in %s. \nMax allowable number is %d" (15, entry 0 counted in),
 *       "%s[%d] is not object type. ignore this element", and what loadZephlaneSchemaFile() and
 *       saveSchemaURIEntry() print.
 */
ZEPHLANE_EXPORT int loadSchemaURIConf(const char* aFileName);

/**
 * Copies a text member of an object into an entry of the table of schema locations.
 * @param aObject     object (borrowed)
 * @param aTagName    member name (borrowed); its text has at most 255 characters
 * @param nIndex      entry, from 0 to 15
 * @param nElementId  1 for the entry's uri, 2 for its directory
 * @return 0; 1 on failure, with the entry untouched
 * @note Prints "nIndex=[%d] out of boundary 0~%d" (16), "tagName is NULL", "Gets %s fail.",
 *       "Gets %s fail. not a string", "String %s is too long, longer then %d." (256) or
 *       "Unsupported element ID: %d.".
 */
ZEPHLANE_EXPORT int saveSchemaURIEntry(const json_t* aObject, const char* aTagName, int nIndex,
                                       int nElementId);

/**
 * Does nothing: the hook of a former debug print, kept for programs that link against it.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void dumpSchemaURITable(void);

/**
 * Tells whether a prefix is one of the accepted schema locations, compared whole.
 * @param aPrefix  prefix (borrowed)
 * @return 1 when it equals the uri of a valid entry; else 0, so always 0 before the first load
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isValidDmtfURL(const char* aPrefix);

/**
 * Splits a reference, or the path of a schema file, into its parts. Accepted are a file with or
 * without '#', a pointer into the document in hand, and a file with a pointer ("#/..."). The prefix
 * of a file must be an accepted location; "/tmp/FOSS_schema/" is one for a path without '#'.
 * @param aInput         reference of at most 2199 characters (borrowed)
 * @param aResourcePath  record (out), zeroed by the caller; what was split before a failure stays
 *                       in it
 * @return 0; 1 on failure
 * @note Prints "Input argument is NULL", "extract schema name from [%s] fail", "Resource: %s",
 *       "It sould be a .json/.JSON/.Json file!",
 *       "Source path is out of range. Acceptable length is (%zu) !!!",
 *       "Failed to extract resource prefix", "Failed to extract resource prefix: %s",
 *       "Resource prefix is invalid [%s]", "Failed to extract schema name",
 *       "Failed to extract schema name: %s", "Failed to extract property path: %s",
 *       "Reference to specific property should add '/' right after '#' symbol !!!",
 *       "Reference path: %s", "Reference path length is too long ......... !!!",
 *       "Something wrong with reference path !!!", "Reference former is out of range !!!",
 *       "--> %s", "%s: argument is null !", "Extract path token error !!!", "Argument is null!!!",
 *       "strrchr", "Length of schema name is out of buffer size",
 *       "Failed to extract resource schema name!!", "Length of path prefix is out of range !!!" or
 *       "Length of path to destination proertyis out of buffer size !!!".
 */
ZEPHLANE_EXPORT int parseResourcePath(const char* aInput, ResourcePath* aResourcePath);

/* Object parser (schemaObjectParser) */

/**
 * Interprets the top level of a schema document into its root hash: keywords become fields, nested
 * objects hashes, arrays sets, annotations nothing. The extension keywords follow, and at last the
 * root hash joins the set "ZephlaneSchemaInstances".
 * @param aContext  the schema in hand, with its root hash and route map (borrowed)
 * @param aRoot     its document (borrowed)
 * @return 0; non-zero on failure, with what was written left in Redis
 * @note Prints "Get JSON simple string fail", "Redis hash add pair", "Zephlane extensions!", and
 *       what the parsers below it print. Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseRootObject(ParseContext* aContext, json_t* aRoot);

/**
 * Interprets a keyword or property whose value is an object into a hash of its own, linked from the
 * parent. A member map goes to parseFieldWithNonKeywordObject(), an object with a "$ref" to
 * parseObjectWithRefField(): its other members are ignored. An object with "anyOf", "oneOf" or
 * "allOf" gets the type "array".
 * @param aContext       the schema in hand (borrowed)
 * @param aFieldName     field of the parent (borrowed)
 * @param aObject        the object (borrowed)
 * @param aParentHashID  ID of the parent's hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints "NULL pointer !!!", "$ref string is NULL !!!",
 *       "Failed to creat root object hash !!!", "Failed to insert <%s, %s> to hash %s !!!",
 *       "RuxoMessage", "Redis hash add pair", "---> parseObjectElements fail !!!!" or
 *       "Schemas are nested too deeply for the stack !!!". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseObject(ParseContext* aContext, const char* aFieldName, json_t* aObject,
                                const char* aParentHashID);

/**
 * Writes the keywords of a schema object into its hash.
 * @param aContext  the schema in hand (borrowed)
 * @param aHashID   ID of the object's hash (borrowed)
 * @param aObject   the object (borrowed)
 * @return 0; 1 on failure
 * @note Prints "Get JSON simple string fail", "Redis hash add pair" or, for a real or null that is
 *       left out, "((((( Field name: %s )))))". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseObjectElements(ParseContext* aContext, const char* aHashID,
                                        json_t* aObject);

/**
 * Interprets a member map, such as "definitions", into a hash of its own. The members of
 * "properties" become fields of the parent's hash instead, except in a meta-schema.
 * @param aContext       the schema in hand (borrowed)
 * @param aObject        the map (borrowed)
 * @param aParentHashID  ID of the parent's hash (borrowed)
 * @param aFieldName     field of the parent (borrowed)
 * @return 0; 1 on failure
 * @note Prints "Failed to creat root object hash !!!", "Redis hash add pair" or
 *       "Something wrong in '%s' field ...". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseFieldWithNonKeywordObject(ParseContext* aContext, json_t* aObject,
                                                   const char* aParentHashID,
                                                   const char* aFieldName);

/**
 * Writes the members of a member map into a hash, whatever their names. A real or null is left out,
 * but fails the map when nothing was written before it.
 * @param aContext  the schema in hand (borrowed)
 * @param aObject   the map (borrowed)
 * @param aHashID   ID of the hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints "%s: argument is NULL!", "Get JSON simple string fail", "Redis hash add pair" or
 *       "Error at << %s: %s >>" with the schema and the member. Redis: the commands of the hash
 *       tree.
 */
ZEPHLANE_EXPORT int parseNonKeywordObjectElements(ParseContext* aContext, json_t* aObject,
                                                  const char* aHashID);

/**
 * Interprets an object that is an element of an array: its hash, or what it refers to, becomes a
 * member of the array's set.
 * @param aContext      the schema in hand (borrowed)
 * @param nIndex        position in the array; not used
 * @param aObject       the object (borrowed)
 * @param aParentSetID  ID of the set (borrowed)
 * @return 0; 1 on failure
 * @note Prints "---> getSchemaHashID(%s) fail !!!!", "---> create set table failed !!!!",
 *       "---> parses $ref field failed !!!!", "Failed to creat root object hash !!!",
 *       "---> parseObjectElements !!!!" or "Schemas are nested too deeply for the stack !!!".
 *       Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseObjectWithoutFieldName(ParseContext* aContext, size_t nIndex,
                                                json_t* aObject, const char* aParentSetID);

/**
 * Stores a reference: "#" as the schema's own root hash, a whole file as its root hash,
 * interpreting the file when that has not been done, and a pointer as its text, recorded for
 * linking.
 * @param aContext    the schema in hand (borrowed)
 * @param aRouteText  route to the reference (borrowed)
 * @param aFieldName  field of the parent (borrowed); NULL when the parent is a set
 * @param aReference  the reference, a string (borrowed)
 * @param aParentID   ID of the parent hash or set (borrowed)
 * @return 0; 1 on failure
 * @note Prints "NULL pointer !!!", "Reference should be string",
 *       "---> getSchemaHashID(%s) fail !!!!", "Failed to insert <%s, %s> to hash %s !!!",
 *       "Schema name: %s\n is greater than string buffer ...",
 *       "Failed to insert entry into Schema Reference List !!!",
 *       "<%s : %s> insert pair into hash failed!!", "---> create set table failed !!!!" or
 *       "Failed to parse reference schema !". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseObjectWithRefField(ParseContext* aContext, const char* aRouteText,
                                            const char* aFieldName, json_t* aReference,
                                            const char* aParentID);

/* Array parser (schemaArrayParser) */

/**
 * Interprets an array into a set of its own, linked from the parent. The list of a "type" becomes
 * one text instead.
 * @param aContext       the schema in hand (borrowed)
 * @param aFieldName     field of the parent (borrowed)
 * @param aArray         the array (borrowed)
 * @param aParentHashID  ID of the parent's hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints "Arguement is NULL pointer", "Input argument is not json array type!",
 *       "parsing field: %s failed !!!", "Failed to create new set!!!", "Redis hash add pair" or
 *       "parseArrayElements fail". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseArray(ParseContext* aContext, const char* aFieldName, json_t* aArray,
                               const char* aParentHashID);

/**
 * Adds the elements of an array to a set: simple values as their text of at most 1023 characters,
 * objects as the ID of their hash. A broken object does not fail the array; arrays, reals and nulls
 * are left out.
 * @param aContext    the schema in hand (borrowed)
 * @param aFieldName  field of the array (borrowed)
 * @param aArray      the array (borrowed)
 * @param aSetID      ID of the set (borrowed)
 * @return 0; 1 on failure
 * @note Prints "EXCEPTION!!!", "EXCEPTION!!! Array contains element array is not supportted",
 *       "Get JSON simple string fail" or "---> create set table faile !!!!". Redis: the commands of
 *       the hash tree.
 */
ZEPHLANE_EXPORT int parseArrayElements(ParseContext* aContext, const char* aFieldName,
                                       json_t* aArray, const char* aSetID);

/**
 * Adds the elements of an array that must all be objects to a set; the library does not call it.
 * @param aContext      the schema in hand (borrowed)
 * @param aFieldName    field of the array (borrowed)
 * @param aArray        the array, not empty (borrowed)
 * @param aParentSetID  ID of the set (borrowed)
 * @return 0; 1 on failure. Elements that are no objects are left out.
 * @note Prints "[%s] field should be array type! [%s]", "NO ELEMENTS in array ..." or
 *       "((((( element is not object of %s array !!! )))))". Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseSomeOfArrayField(ParseContext* aContext, const char* aFieldName,
                                          json_t* aArray, const char* aParentSetID);

/* Extension keywords (zephlaneExtensionParser) */

/**
 * Tells whether a root member configures how instances of the schema are kept: "typeId",
 * "instanceCollection", "ttl", or the message property.
 * @param aName  member name (borrowed)
 * @return 1 for these; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isZephlaneExtension(const char* aName);

/**
 * Tells whether an object is a map of names that the schema's author chose: "definitions",
 * "dependencies", "RefSchema", "patternProperties" or "properties".
 * @param aName  member name (borrowed)
 * @return 1 for these; else 0
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int isNonKeywordProperty(const char* aName);

/**
 * Writes the extension keywords of a schema into its root hash: "typeId", "instanceCollection"
 * (given, or the next set ID), "ttl" and the message property.
 * @param aContext     the schema in hand, with its document (borrowed)
 * @param aRootHashID  ID of its root hash (borrowed)
 * @return 0; 1 on failure
 * @note Prints "%s: Argument is NULL !!!", "---> failed to add < %s: %s > !!!",
 *       "---> failed to add < %s: %s > !!!!", "Oops! UUID of instanceCollection has been used.",
 *       "Failed to get new UUID for instanceCollection!", "TTL is not integer type.", and for the
 *       keyword that failed "typeId", "instanceCollection", "ttl" or "RuxoMessage". Redis: HMSET,
 *       and the commands of parseRuxoMessageField().
 */
ZEPHLANE_EXPORT int parseZephlaneExtension(ParseContext* aContext, const char* aRootHashID);

/**
 * Writes a message property: the field that propertyRuxoMessage names gets a set, whose members are
 * the hashes of the messages ("id", "MsgType" and the type of each "Param" path).
 * @param aContext       the schema in hand (borrowed)
 * @param aMessage       the property's value (borrowed)
 * @param aParentHashID  ID of the parent's hash (borrowed)
 * @return 0, also when "values" is no array and nothing is written; 1 on failure
 * @note Prints "%s: Argument is NULL !!!", "Object has no type!",
 *       "RuxoMessage type does not present as STRING type !!!",
 *       "Ruxo Message without message body.", "create new set table faile !!!!",
 *       "Failed to add pair !!!!", "Parsing RuxoMessage field failed !!!!",
 *       "Message body is not object type", "Wrong type: RuxoMessage -> id",
 *       "<%s : %s> insert pair into hash failed!!", "RuxoMessage -> Param: errors !!!",
 *       "---> create set table failed !!!!", "Member of Param array is not string type !",
 *       "param[%d]=%s format error, should contain #/ !!!!",
 *       "Failed to insert entry into Schema Reference List [%d][%d] !!!", and notices of types that
 *       are not found. Redis: the commands of the hash tree.
 */
ZEPHLANE_EXPORT int parseRuxoMessageField(ParseContext* aContext, json_t* aMessage,
                                          const char* aParentHashID);

/* Reference list and linking (referenceLinking) */

/**
 * Empties the list of references that wait for linking: 3600 of schemas and 400 of message
 * parameters.
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT void schemaReferenceListInit(void);

/**
 * Finds the first free slot of a range of the reference list.
 * @param nFirstSlot  first slot of the range
 * @param nSlotLimit  slot behind the range, at most 4000
 * @return the slot; -1 when there is none, or the range is empty or reaches beyond the list
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int schemaRefListGetFreeSpace(int nFirstSlot, int nSlotLimit);

/**
 * Records a reference for linking in the first free slot of a range.
 * @param aDestinationID  ID of at most 36 characters of the hash or set that holds it (borrowed)
 * @param aSchemaName     schema file that holds it, of at most 199 characters (borrowed)
 * @param aRouteText      route to it, of at most 1023 characters (borrowed)
 * @param aFieldName      its field, of at most 1023 characters (borrowed); NULL in a set
 * @param aReferenceText  its text, of at most 1023 characters (borrowed)
 * @param aResourcePath   its parts (borrowed)
 * @param nFirstSlot      first slot of the range
 * @param nSlotLimit      slot behind the range, at most 4000
 * @return 0; -1 on failure
 * @note Prints "NULL pointer !!!", "listSlotIdx == -1", "PropLocation buffer size!" or
 *       "referPath buffer size!".
 */
ZEPHLANE_EXPORT int schemaRefListInsertEntry(const char* aDestinationID, const char* aSchemaName,
                                             const char* aRouteText, const char* aFieldName,
                                             const char* aReferenceText,
                                             const ResourcePath* aResourcePath, int nFirstSlot,
                                             int nSlotLimit);

/**
 * Finds a reference of a schema by its route.
 * @param aRouteText  route, compared whole (borrowed)
 * @return the first slot that holds it; -1 when there is none
 * @note Prints nothing.
 */
ZEPHLANE_EXPORT int schemaRefListSearchEntry(const char* aRouteText);

/**
 * Replaces the text of every recorded reference by the ID it leads to. A reference that leads
 * nowhere is reported and keeps what it holds; the others are linked all the same.
 * @param aContext  its connection is used (borrowed)
 * @return 0; 1 when aContext is NULL
 * @note Prints "%s: argument is NULL !", "%s might not been internalized!!!",
 *       "Get schema hash ID failed !!!", "malloc failed: destination hash ID !!!",
 *       "referPath buffer size!", "Can't get replace information ..... ", "malloc failed !!!",
 *       "schema hash id length is too long !!!", "malloc failed: pathForExtract !!!",
 *       "PropPath error !!!", "Path token length is too long !!!", "replaceInfo buffer size!",
 *       "Something wrong while getting replace data from reference path", "Reference path: %s",
 *       "Schema name: %s", "Dest property: %s", "Remove entry <%s> from set <%s>  failed !!!!",
 *       "Insert entry to \"%s\"  failed !!!!" or "FAILED!!!". Redis: HGET, TYPE, HMSET, SREM, SADD.
 */
ZEPHLANE_EXPORT int resourceReferenceLinking(ParseContext* aContext);

#ifdef __cplusplus
}
#endif

#endif
