// SPDX-License-Identifier: MIT
//
// The steps of linking one reference, for the module and its tests.
#pragma once

#include <memory>

#include <zephlaneAPI/interpreter.h>

#include "support/owners.h"

namespace zephlane {

// The schema file and the property in it that a reference names.
struct ReferenceTarget {
  const char* path;  // as it stands in the reference
  const char* prefix;
  const char* schemaName;
  const char* propertyPath;  // empty: the whole file
};

// One recorded reference.
struct SchemaReference {
  const char* schemaName;  // the schema in which it stands
  const char* routeText;
  const char* destinationID;
  const char* fieldName;  // empty: the destination is a set
  const char* referenceText;
  ReferenceTarget target;
};

// Where a placeholder stands.
struct PlaceholderLocation {
  char fieldName[200];  // empty: the destination is a set
  char destinationID[ZEPHLANE_ID_SIZE];
  char referenceText[200];
};

// What a property path leads to.
struct Replacement {
  char lastToken[200];
  char hashID[ZEPHLANE_ID_SIZE];  // the hash that holds it
  char value[200];
};

// Null on failure, after the report.
[[nodiscard]] CRecord<PlaceholderLocation> getPropLocationReplaceData(
    const redisContext* ctx, const SchemaReference* reference);
[[nodiscard]] CRecord<Replacement> getReferencePathReplaceData(redisContext* ctx,
                                                               const ReferenceTarget* target);
// 0 or -1.
int referenceValueReplacement(redisContext* ctx, const Replacement* replacement,
                              const PlaceholderLocation* destination);

// How many references this run has recorded so far; may be asked by any thread.
[[nodiscard]] unsigned int RecordedReferenceCount() noexcept;

}  // namespace zephlane
