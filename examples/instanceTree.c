/* SPDX-License-Identifier: MIT */
/*
 * An instance tree from its creation to its deletion: an enclosure with a set of fans is written in
 * one round trip, stamped with the types of its objects, found valid, broken, refused, and deleted.
 * The types are those that the schema interpreter makes of schema files; a few, written by hand,
 * will do here. They replace an index that exists, so run it against a store of its own:
 *
 *   build/dev/tests/support/zephlane-private-redis build/dev/examples/instanceTree
 */
#include <stdio.h>
#include <stdlib.h>

#include <zephlaneAPI.h>

#define SCHEMA_INDEX "00000000-0000-0000-0001-eeeeeeeeeeee" /* where look-ups begin */
#define ODATA "30000000-0000-0000-0000-000000000001"
#define ODATA_DEFINITIONS "30000000-0000-0000-0000-000000000002"
#define REFERENCE_TYPE "30000000-0000-0000-0000-000000000003"
#define SCHEMA "30000000-0000-0000-0000-000000000004"
#define DEFINITIONS "30000000-0000-0000-0000-000000000005"
#define CHASSIS_TYPE "30000000-0000-0000-0000-000000000006"
#define FANS_TYPE "30000000-0000-0000-0000-000000000007"
#define FAN_TYPE "30000000-0000-0000-0000-000000000008"
#define FAN_REQUIRED "30000000-0000-0000-0000-000000000009"
#define STRING_TYPE "30000000-0000-0000-0000-00000000000a"

#define CHASSIS "40000000-0000-0000-0000-000000000001"
#define FANS "40000000-0000-0000-0000-000000000002"
#define FAN_1 "40000000-0000-0000-0000-000000000003"
#define FAN_2 "40000000-0000-0000-0000-000000000004"

#define COUNT_OF(array) ((int)(sizeof(array) / sizeof((array)[0])))
#define HASH(key, pairs) \
  { key, ZEPHLANE_TYPE_HASH, COUNT_OF(pairs), pairs }
#define SET(key, members) \
  { key, ZEPHLANE_TYPE_SET, COUNT_OF(members), members }

/* The types: a definition has a field for each property, which holds the type of its values. */

static InstanceData index_fields[] = {{"odata.4.0.0", ODATA}};
static InstanceData odata[] = {{"definitions", ODATA_DEFINITIONS}};
static InstanceData odata_definitions[] = {{"idRef", REFERENCE_TYPE}};
static InstanceData schema[] = {{"$ref", "#/definitions/Chassis"}, {"definitions", DEFINITIONS}};
static InstanceData definitions[] = {{"Chassis", CHASSIS_TYPE}, {"Fan", FAN_TYPE}};
static InstanceData chassis_type[] = {{"Name", STRING_TYPE}, {"Fans", FANS_TYPE}};
static InstanceData fans_type[] = {{"type", "array"}, {"items", FAN_TYPE}};
static InstanceData fan_type[] = {
    {"Name", STRING_TYPE}, {"Chassis", CHASSIS_TYPE}, {"required", FAN_REQUIRED}};
static SetData fan_required[] = {{"Name"}};

static ObjectEntry types[] = {HASH(SCHEMA_INDEX, index_fields),
                              HASH(ODATA, odata),
                              HASH(ODATA_DEFINITIONS, odata_definitions),
                              HASH(SCHEMA, schema),
                              HASH(DEFINITIONS, definitions),
                              HASH(CHASSIS_TYPE, chassis_type),
                              HASH(FANS_TYPE, fans_type),
                              HASH(FAN_TYPE, fan_type),
                              SET(FAN_REQUIRED, fan_required)};

/* The instances: a value that is the ID of an object links to it, and may link back. */

static InstanceData chassis[] = {{"Name", "Enclosure"}, {"Fans", FANS}};
static SetData fans[] = {{FAN_1}, {FAN_2}};
static InstanceData fan_1[] = {{"Name", "Fan 1"}, {"Chassis", CHASSIS}};
static InstanceData fan_2[] = {{"Name", "Fan 2"}, {"Chassis", CHASSIS}};

static ObjectEntry instances[] = {HASH(CHASSIS, chassis), SET(FANS, fans), HASH(FAN_1, fan_1),
                                  HASH(FAN_2, fan_2)};

static int PrintType(redisContext* ctx, const char* name, const char* id) {
  char type[ZEPHLANE_VALUE_SIZE] = "";
  if (zephlaneGetHashField(ctx, id, "typeID", type) != 0) { return 1; }
  printf("%s has the type %s\n", name, type);
  return 0;
}

static void PrintValidity(redisContext* ctx, const char* when) {
  printf("fan 1 is %s %s\n", zephlaneValidateResponseObject(ctx, FAN_1) ? "invalid" : "valid",
         when);
}

static int Run(redisContext* ctx) {
  /* All or none of the objects of a call: one that is refused takes the others with it. */
  if (zephlaneCreateMultipleObjects(ctx, types, COUNT_OF(types)) != 0) { return 1; }
  if (zephlaneCreateMultipleObjects(ctx, instances, COUNT_OF(instances)) != 0) { return 1; }
  printf("created %d types and an enclosure of %d objects\n", COUNT_OF(types), COUNT_OF(instances));

  if (zephlaneInsertTypeID(ctx, CHASSIS, SCHEMA, 0) != 0) { return 1; }
  if (PrintType(ctx, "enclosure", CHASSIS) || PrintType(ctx, "fan 1", FAN_1)) { return 1; }
  PrintValidity(ctx, "as created");

  if (zephlaneRemoveFieldFromHash(ctx, FAN_1, "Name") != 0) { return 1; }
  PrintValidity(ctx, "without its name"); /* which the definition requires */

  /* The fields to follow are named, so that the links back are not. */
  if (zephlaneDeleteSubTree(ctx, CHASSIS, "Fans", (char*)NULL) != 0) { return 1; }
  const int left = zephlaneRedisType(ctx, CHASSIS) + zephlaneRedisType(ctx, FANS) +
                   zephlaneRedisType(ctx, FAN_1) + zephlaneRedisType(ctx, FAN_2);
  printf("the enclosure is %s\n", left == ZEPHLANE_TYPE_OTHER ? "gone" : "still there");
  return 0;
}

int main(void) {
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL) { return EXIT_FAILURE; } /* the library has said why */
  const int failed = Run(ctx);
  zephlaneRedisDisconnect(ctx);
  return failed ? EXIT_FAILURE : EXIT_SUCCESS;
}
