// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "support/text.h"

#include <zephlaneAPI.h>

namespace zephlane::test {

// Draws three UUIDs and makes and deletes a tree of a hash with two children under them. False when
// a step failed.
inline bool MakeAndDeleteTree(redisContext* ctx) {
  char ids[3][ZEPHLANE_ID_SIZE] = {};
  for (char* id : ids) {
    if (zephlaneGenerateUUID(ctx, id) != 0) { return false; }
  }
  InstanceData links[] = {{"First", ""}, {"Second", ""}};
  CopyCut(links[0].aValue, ids[1]);
  CopyCut(links[1].aValue, ids[2]);
  InstanceData name[] = {{"Name", "Fan"}};
  ObjectEntry entries[] = {{ids[0], ZEPHLANE_TYPE_HASH, 2, links},
                           {ids[1], ZEPHLANE_TYPE_HASH, 1, name},
                           {ids[2], ZEPHLANE_TYPE_HASH, 1, name}};
  const int created = zephlaneCreateMultipleObjects(ctx, entries, 3);
  const int deleted = zephlaneDeleteSubTree(ctx, ids[0], "First", "Second", nullptr);
  return created == 0 && deleted == 0;
}

}  // namespace zephlane::test
