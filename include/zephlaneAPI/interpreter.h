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
  char schemaName[200];   /**< the schema file name */
  char propertyPath[200]; /**< from the last '#' to the end */
} ResourcePath;

/** One step of the path from a document's root to the node being parsed. */
typedef struct RouteSpot {
  char name[100];
  struct RouteSpot* next;
} RouteSpot;

/** What travels through the parsers: one record for each schema being parsed. */
typedef struct ParseContext {
  redisContext* connection; /**< borrowed */
  char rootHashID[ZEPHLANE_ID_SIZE];
  unsigned int reserved; /**< zero */
  json_t* document;      /**< borrowed */
  ResourcePath resourcePath;
  RouteSpot* routeMap;
} ParseContext;

/** How far the interpreter run of this process has come. */
typedef struct InterpreterProgress {
  unsigned int nFiles;      /**< schema files registered so far */
  unsigned int nObjects;    /**< hashes and sets recorded so far */
  unsigned int nReferences; /**< references recorded so far */
} InterpreterProgress;

/** Accepted schema locations; entry 0 is the published one, the others are OEM locations. */
ZEPHLANE_EXPORT extern SchemaUriInfo G_aSchemaUriInfoTable[ZEPHLANE_SCHEMA_URI_ENTRIES];
/** Number of valid entries of G_aSchemaUriInfoTable; -1 until the first load. */
ZEPHLANE_EXPORT extern int G_nSchemaURICount;
/** Meta-schema names that a reference may use without a file extension. */
ZEPHLANE_EXPORT extern const char* G_aSpecialSchemaFileTable[ZEPHLANE_SPECIAL_SCHEMA_FILES];
/** Number of used entries of G_aSpecialSchemaFileTable. */
ZEPHLANE_EXPORT extern int G_nSpecialSchemaFileCount;
/** Name of the message property; the last schema keyword. Filled at the start of a run. */
ZEPHLANE_EXPORT extern char propertyRuxoMessage[1025];

/* Driver (zephlaneSchemaInterpreter) */

ZEPHLANE_EXPORT int zephlaneSchemaInterpreter(const char* aRootSchemaPath);
ZEPHLANE_EXPORT void zephlaneSchemaInterpreterProgress(InterpreterProgress* aOut);
ZEPHLANE_EXPORT char* parseReferenceSchemaFile(redisContext* ctx, const char* aSchemaName);
ZEPHLANE_EXPORT char* generateSchemaRootHash(redisContext* ctx, json_t* aDocument);

/* Schema files, keywords, route map and JSON values (zephlaneSchemaInterpreter) */

ZEPHLANE_EXPORT json_t* loadZephlaneSchemaFile(const char* aFileName);
ZEPHLANE_EXPORT int isSchemaInterpreted(redisContext* ctx);
ZEPHLANE_EXPORT int isSpecialSchemaFile(const char* aName);
ZEPHLANE_EXPORT int isTypeSchemaEssentialField(const char* aName);
ZEPHLANE_EXPORT RouteSpot* parserRouteCreateNode(const char* aSpotName);
ZEPHLANE_EXPORT int parserRouteInsertEnd(RouteSpot* aHead, const char* aSpotName);
ZEPHLANE_EXPORT int parserRouteDeleteEnd(RouteSpot** aHead, const char* aSpotName);
ZEPHLANE_EXPORT void parserRouteConcatRoute(const RouteSpot* aHead, const char* aSchemaName,
                                            char* aOut, size_t nOutSize);
ZEPHLANE_EXPORT void parserRouteFreeRouteMap(RouteSpot* aHead);
ZEPHLANE_EXPORT RouteSpot* parserRouteDisplayRoute(RouteSpot* aHead);
ZEPHLANE_EXPORT int isJsonSimpleType(const json_t* aValue);
ZEPHLANE_EXPORT char* getJsonSimpleTypeStr(const json_t* aValue);
ZEPHLANE_EXPORT int getJsonIntegerString(const json_t* aValue, char* aBuffer, size_t nSize);
ZEPHLANE_EXPORT int getJsonBooleanString(const json_t* aValue, char* aBuffer, size_t nSize);
ZEPHLANE_EXPORT char* parseMultipleTypeField(const json_t* aTypeArray);
ZEPHLANE_EXPORT int parseMultipleTypeFieldAdd(redisContext* ctx, const json_t* aTypeArray,
                                              const char* aHashKey);

/* Schema locations and references (resourcePathParser) */

ZEPHLANE_EXPORT int loadSchemaURIConf(const char* aFileName);
ZEPHLANE_EXPORT int saveSchemaURIEntry(const json_t* aObject, const char* aTagName, int nIndex,
                                       int nElementId);
ZEPHLANE_EXPORT void dumpSchemaURITable(void);
ZEPHLANE_EXPORT int isValidDmtfURL(const char* aPrefix);
ZEPHLANE_EXPORT int parseResourcePath(const char* aInput, ResourcePath* aResourcePath);

/* Hash tree (hashTreeOperation) */

ZEPHLANE_EXPORT int hashTreeInit(redisContext* ctx);
ZEPHLANE_EXPORT int createZephlaneServiceInstanceSet(redisContext* ctx, const char* aSetKey);
ZEPHLANE_EXPORT void deleteAllHashObject(redisContext* ctx);
ZEPHLANE_EXPORT void deleteTypeSchemaHashObject(redisContext* ctx);
ZEPHLANE_EXPORT void dumpSetTable(void);
ZEPHLANE_EXPORT void dumpRedisObjectCollection(void);
ZEPHLANE_EXPORT void dumpSchemaReferenceTable(void);
ZEPHLANE_EXPORT char* generateRedisDataObjectID(int nKind);
ZEPHLANE_EXPORT void increaseRedisHashIDCounter(void);
ZEPHLANE_EXPORT void increaseRedisSetIDCounter(void);
ZEPHLANE_EXPORT int recordRedisObjectID(const char* aID);
ZEPHLANE_EXPORT int isUUIDRegistered(const char* aID);
ZEPHLANE_EXPORT int hashTreeHashAddSinglePair(redisContext* ctx, const char* aFieldName,
                                              const char* aValue, const char* aHashKey);
ZEPHLANE_EXPORT char* hashTreeCreateNewHash(redisContext* ctx, const char* aFieldName,
                                            const char* aValue);
ZEPHLANE_EXPORT char* hashTreeCreateHashWithoutRecordHashID(redisContext* ctx,
                                                            const char* aFieldName,
                                                            const char* aValue);
ZEPHLANE_EXPORT int hashTreeCreateNewTypeSchemaHash(redisContext* ctx, const char* aFieldName,
                                                    const char* aValue, const char* aUuid);
ZEPHLANE_EXPORT char* hashTreeCreateNewSet(redisContext* ctx, const char* aMember);
ZEPHLANE_EXPORT int hashTreeInstanceSetInsertMember(redisContext* ctx, const char* aSetKey,
                                                    const char* aMember);
ZEPHLANE_EXPORT int hashAddMultipleTypeString(redisContext* ctx, const char* aFieldName,
                                              const json_t* aTypeArray, const char* aHashKey);
ZEPHLANE_EXPORT char* hashTreeParentInsertItemsSet(redisContext* ctx, const char* aParentKey);
ZEPHLANE_EXPORT char* hashTreeParentInsertItemsHash(redisContext* ctx, const char* aParentKey,
                                                    const char* aFieldName, const char* aValue);
ZEPHLANE_EXPORT char* hashTreeParentInsertPropertyHash(redisContext* ctx, const char* aParentKey,
                                                       const char* aPropertyName,
                                                       const char* aTypeValue);
ZEPHLANE_EXPORT char* hashTreeParentInsertPropertySet(redisContext* ctx, const char* aParentKey,
                                                      const char* aPropertyName);
ZEPHLANE_EXPORT int hashTreeGetHashFieldValue(redisContext* ctx, const char* aHashKey,
                                              const char* aFieldName, char* aOut);
ZEPHLANE_EXPORT int schemaReferTableInsertEntry(const char* aSchemaName, const char* aHashID);
ZEPHLANE_EXPORT char* getSchemaHashID(const char* aSchemaName);
ZEPHLANE_EXPORT int isReferenceSchemaHasInternalized(const char* aSchemaName);
ZEPHLANE_EXPORT int hashTreeCreateSchemaTitleUUIDMapping(redisContext* ctx);
ZEPHLANE_EXPORT int toLowerUUID(const char* aSource, char* aOut, size_t nOutSize);
ZEPHLANE_EXPORT int isSchemaGivenUUIDValid(const char* aUuid);
ZEPHLANE_EXPORT int hashTreeRemoveDummyData(redisContext* ctx);

/* Object parser (schemaObjectParser) */

ZEPHLANE_EXPORT int parseRootObject(ParseContext* aContext, json_t* aRoot);
ZEPHLANE_EXPORT int parseObject(ParseContext* aContext, const char* aFieldName, json_t* aObject,
                                const char* aParentHashID);
ZEPHLANE_EXPORT int parseObjectElements(ParseContext* aContext, const char* aHashID,
                                        json_t* aObject);
ZEPHLANE_EXPORT int parseFieldWithNonKeywordObject(ParseContext* aContext, json_t* aObject,
                                                   const char* aParentHashID,
                                                   const char* aFieldName);
ZEPHLANE_EXPORT int parseNonKeywordObjectElements(ParseContext* aContext, json_t* aObject,
                                                  const char* aHashID);
ZEPHLANE_EXPORT int parseObjectWithoutFieldName(ParseContext* aContext, size_t nIndex,
                                                json_t* aObject, const char* aParentSetID);
ZEPHLANE_EXPORT int parseObjectWithRefField(ParseContext* aContext, const char* aRouteText,
                                            const char* aFieldName, json_t* aReference,
                                            const char* aParentID);

/* Array parser (schemaArrayParser) */

ZEPHLANE_EXPORT int parseArray(ParseContext* aContext, const char* aFieldName, json_t* aArray,
                               const char* aParentHashID);
ZEPHLANE_EXPORT int parseArrayElements(ParseContext* aContext, const char* aFieldName,
                                       json_t* aArray, const char* aSetID);
ZEPHLANE_EXPORT int parseSomeOfArrayField(ParseContext* aContext, const char* aFieldName,
                                          json_t* aArray, const char* aParentSetID);

/* Extension keywords (zephlaneExtensionParser) */

ZEPHLANE_EXPORT int isZephlaneExtension(const char* aName);
ZEPHLANE_EXPORT int isNonKeywordProperty(const char* aName);
ZEPHLANE_EXPORT int parseZephlaneExtension(ParseContext* aContext, const char* aRootHashID);
ZEPHLANE_EXPORT int parseRuxoMessageField(ParseContext* aContext, json_t* aMessage,
                                          const char* aParentHashID);

/* Reference list and linking (referenceLinking) */

ZEPHLANE_EXPORT void schemaReferenceListInit(void);
ZEPHLANE_EXPORT int schemaRefListGetFreeSpace(int nFirstSlot, int nSlotLimit);
ZEPHLANE_EXPORT int schemaRefListInsertEntry(const char* aDestinationID, const char* aSchemaName,
                                             const char* aRouteText, const char* aFieldName,
                                             const char* aReferenceText,
                                             const ResourcePath* aResourcePath, int nFirstSlot,
                                             int nSlotLimit);
ZEPHLANE_EXPORT int schemaRefListSearchEntry(const char* aRouteText);
ZEPHLANE_EXPORT int resourceReferenceLinking(ParseContext* aContext);

#ifdef __cplusplus
}
#endif

#endif
