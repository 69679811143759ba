// SPDX-License-Identifier: MIT
//
// The steps of splitting a reference, for the module and its tests. Each returns 0 or -1 (the
// extractors) or 0 or 1, after its own report.
#pragma once

#include <cstddef>
#include <string_view>

#include <zephlaneAPI/interpreter.h>

namespace zephlane {

// The schema file name into 200 characters. An input without a name leaves `out` untouched.
int extractResourceSchemaName(const char* input, char* out);
// What comes before the name that ends the first `length` characters, into 2000 characters.
int extractResourcePathPrefix(const char* input, std::size_t length, char* out);
// From the last '#' to the end, into 200 characters.
int extractPropertyPath(const char* input, char* out);

// Whether a split reference leads to a place inside a schema: its property path has one '#', in
// front, and a "#/".
[[nodiscard]] bool IsPointerPath(const ResourcePath& path) noexcept;

// A reference that ends with its only '#'.
int SplitFileReference(const char* reference, ResourcePath* out);
// A reference with a '#' inside.
int SplitPointerReference(const char* reference, ResourcePath* out);

}  // namespace zephlane
