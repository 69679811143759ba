#include <stdio.h>
#include <stdlib.h>

#include <zephlaneAPI.h>

int main(void) {
  redisContext* ctx = zephlaneRedisConnect();
  if (ctx == NULL) { return EXIT_FAILURE; }  // the library has said why

  char id[ZEPHLANE_ID_SIZE] = "";
  const InstanceData fan[] = {{"Name", "Fan 1"}, {"Reading", "2400"}};
  char* reading = NULL;
  if (zephlaneGenerateUUID(ctx, id) == 0 && zephlaneCreateHashTable(ctx, id, fan, 2) == 0) {
    reading = zephlaneGetHashFieldV21(ctx, id, "Reading");
  }
  if (reading != NULL) { printf("%s: %s turns at %s rpm\n", id, fan[0].aValue, reading); }
  const int status = reading != NULL ? EXIT_SUCCESS : EXIT_FAILURE;
  free(reading);
  zephlaneRedisDisconnect(ctx);
  return status;
}
