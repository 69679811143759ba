// SPDX-License-Identifier: MIT
//
// References as they stand in schema files, split into prefix, schema file name and property path.
// One location is configured.
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/fuzzInput.h"
#include "interpreter/resourcePathParser.h"
#include "support/text.h"

#include <zephlaneAPI/interpreter.h>

namespace {

using zephlane::BoundedText;
using zephlane::fuzz::Require;

constexpr char kLocation[] = "http://schemas.example.com/v1/";

template <std::size_t kSize>
bool IsTerminated(const char (&field)[kSize]) {
  return BoundedText(field).size() < kSize;
}

void CheckParts(const ResourcePath& parts, const std::string& input) {
  const std::string_view prefix = BoundedText(parts.prefix);
  const std::string_view property = BoundedText(parts.propertyPath);
  Require(BoundedText(parts.path) == input, "a split reference keeps its whole text");
  Require(prefix.empty() || prefix.back() == '/', "a prefix ends with a slash");
  Require(prefix.empty() || input.starts_with(prefix), "a prefix begins the reference");
  Require(property.empty() || input.ends_with(property), "a property path ends the reference");
  Require(property.empty() || property[0] == '#', "a property path begins with its mark");
  Require(zephlane::Contains(input, BoundedText(parts.schemaName)),
          "a schema name is part of the reference");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  G_nSchemaURICount = 1;
  zephlane::CopyCut(G_aSchemaUriInfoTable[0].uri, kLocation);
  const std::string input(zephlane::fuzz::TextOf(data, size)
                              .substr(0, strnlen(reinterpret_cast<const char*>(data), size)));
  // On the heap, so that a byte too many is seen.
  const auto parts = std::make_unique<ResourcePath>();
  const int result = parseResourcePath(input.c_str(), parts.get());
  Require(IsTerminated(parts->path) && IsTerminated(parts->prefix) &&
              IsTerminated(parts->schemaName) && IsTerminated(parts->propertyPath),
          "every part is terminated");
  if (result == 0) { CheckParts(*parts, input); }
  (void)zephlane::IsPointerPath(*parts);
  return 0;
}
