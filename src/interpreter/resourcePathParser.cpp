// SPDX-License-Identifier: MIT
//
// Which schema locations are accepted, and how a reference splits into prefix, schema file name and
// property path. A referenced file is always read from the root schema's directory: its prefix is
// only compared with the configured locations.
#include "interpreter/resourcePathParser.h"

#include <algorithm>
#include <cstring>

#include "support/owners.h"
#include "support/report.h"
#include "support/text.h"

namespace {

constexpr char kDmtfUriTag[] = "DmtfSchemaUri";
constexpr char kOemUrisTag[] = "OemSchemaUris";
constexpr char kOemUriTag[] = "Uri";
constexpr char kOemDirectoryTag[] = "Directory";
constexpr char kDmtfDirectory[] = "schemas";

enum UriElement { kUriElement = 1, kDirectoryElement = 2 };

}  // namespace

SchemaUriInfo G_aSchemaUriInfoTable[ZEPHLANE_SCHEMA_URI_ENTRIES] = {};
int G_nSchemaURICount = -1;

namespace zephlane {
namespace {

constexpr char kSource[] = "resourcePathParser.cpp";
constexpr std::size_t kMaximumOemUris = 14;
constexpr std::size_t kSchemaNameSize = sizeof(ResourcePath::schemaName);
constexpr std::size_t kPrefixSize = sizeof(ResourcePath::prefix);
constexpr std::size_t kPropertyPathSize = sizeof(ResourcePath::propertyPath);
constexpr std::size_t kFormerSize = 2400;
constexpr char kDefaultDirectory[] = "/tmp/FOSS_schema/";

bool HasSchemaExtension(std::string_view text) {
  for (std::size_t dot = text.find('.'); dot != std::string_view::npos;
       dot = text.find('.', dot + 1)) {
    const std::string_view extension = text.substr(dot, 5);
    if (extension == ".json" || extension == ".JSON" || extension == ".Json") { return true; }
  }
  return false;
}

// Sets `text` to the component that is a schema file name. The first component is never looked at,
// so a name right below the root directory is not found.
bool FindNameComponent(const char* input, std::string_view* name) {
  Tokenizer components(input);
  (void)components.Next("/");
  for (;;) {
    const std::string_view component = components.Next("/");
    if (component.empty()) { return false; }
    char special[kSchemaNameSize];
    CopyCut(special, component);
    if (HasSchemaExtension(component) || isSpecialSchemaFile(special)) {
      *name = component;
      return true;
    }
  }
}

int SaveName(std::string_view name, char* out) {
  if (CopyTerminated({out, kSchemaNameSize}, name)) { return 0; }
  InterpreterError{kSource}("Length of schema name is out of buffer size\n");
  return -1;
}

// A text that names no schema file may still be a meta-schema's special name.
bool IsAcceptableName(const char* input) {
  const char* last_hash = std::strrchr(input, '#');
  if (HasSchemaExtension(input) || last_hash == input) { return true; }
  char name[kSchemaNameSize] = "";
  if (extractResourceSchemaName(input, name) != 0) {
    InterpreterError{kSource}("extract schema name from [%s] fail\n", input);
    return false;
  }
  if (isSpecialSchemaFile(name)) { return true; }
  InterpreterError{kSource}("Resource: %s\n", input);
  InterpreterError{kSource}("It sould be a .json/.JSON/.Json file!\n");
  return false;
}

bool HasPointerSlash(const char* reference) {
  if (std::strstr(reference, "#/")) { return true; }
  InterpreterError{kSource}(
      "Reference to specific property should add '/' right after '#' symbol !!!\n");
  InterpreterError{kSource}("Reference path: %s\n", reference);
  return false;
}

int SplitFileName(const char* input, ResourcePath* out) {
  if (extractResourcePathPrefix(input, std::strlen(input), out->prefix) != 0) {
    InterpreterError{kSource}("Failed to extract resource prefix\n");
    return 1;
  }
  const bool is_accepted = out->prefix[0] == '\0' ||
                           std::strcmp(out->prefix, kDefaultDirectory) == 0 ||
                           isValidDmtfURL(out->prefix);
  if (!is_accepted) {
    InterpreterError{kSource}("Resource prefix is invalid [%s]\n", out->prefix);
    return 1;
  }
  if (extractResourceSchemaName(input, out->schemaName) != 0) {
    InterpreterError{kSource}("Failed to extract schema name\n");
    return 1;
  }
  return 0;
}

int SplitLocalPointer(const char* reference, ResourcePath* out) {
  if (std::strcmp(reference, "#") != 0 && !HasPointerSlash(reference)) { return 1; }
  if (extractPropertyPath(reference, out->propertyPath) != 0) {
    InterpreterError{kSource}("Failed to extract property path: %s\n", reference);
    return 1;
  }
  return 0;
}

// Prefix and name of a reference's part before its '#'. The default directory is no accepted
// location here.
int SplitFormer(const char* former, const char* reference, ResourcePath* out) {
  if (extractResourcePathPrefix(former, std::strlen(former), out->prefix) != 0) {
    InterpreterError{kSource}("Failed to extract resource prefix: %s\n", reference);
    return 1;
  }
  if (out->prefix[0] != '\0' && !isValidDmtfURL(out->prefix)) {
    InterpreterError{kSource}("Resource prefix is invalid [%s]\n", out->prefix);
    return 1;
  }
  if (extractResourceSchemaName(former, out->schemaName) != 0) {
    InterpreterError{kSource}("Failed to extract schema name: %s\n", reference);
    return 1;
  }
  return 0;
}

// Saves one OEM location; it counts only when both of its texts were saved.
bool SaveOemEntry(const json_t* entry, std::size_t element, int index) {
  if (!json_is_object(entry)) {
    InterpreterError{kSource}("%s[%zu] is not object type. ignore this element\n", kOemUrisTag,
                              element);
    return false;
  }
  return saveSchemaURIEntry(entry, kOemUriTag, index, kUriElement) == 0 &&
         saveSchemaURIEntry(entry, kOemDirectoryTag, index, kDirectoryElement) == 0;
}

int LoadOemUris(const json_t* locations) {
  if (!json_is_array(locations)) {
    InterpreterError{kSource}("%s is not array type.\n", kOemUrisTag);
    return 1;
  }
  if (json_array_size(locations) > kMaximumOemUris) {
    // The number counts the published location in, so it is one more than the limit.
    InterpreterError{kSource}("Too many elements in %s. \nMax allowable number is %d\n",
                              kOemUrisTag, static_cast<int>(kMaximumOemUris) + 1);
    return 1;
  }
  int next = 1;
  for (std::size_t i = 0; i < json_array_size(locations); ++i) {
    const json_t* entry = json_array_get(locations, i);
    if (!entry) { break; }
    if (SaveOemEntry(entry, i, next)) { ++next; }
  }
  G_nSchemaURICount = next;
  dumpSchemaURITable();
  return 0;
}

}  // namespace

int extractResourceSchemaName(const char* input, char* out) {
  if (!input || !out) {
    InterpreterError{kSource}("%s: argument is null !\n", "extractResourceSchemaName");
    return -1;
  }
  if (!std::strchr(input, '/')) {
    const bool is_name = HasSchemaExtension(input) || isSpecialSchemaFile(input);
    return is_name ? SaveName(input, out) : 0;
  }
  std::string_view name;
  if (!FindNameComponent(input, &name)) {
    InterpreterError{kSource}("Extract path token error !!!\n");
    return -1;
  }
  return SaveName(name, out);
}

int extractResourcePathPrefix(const char* input, std::size_t length, char* out) {
  if (!input || !out) {
    InterpreterError{kSource}("Argument is null!!!\n");
    return -1;
  }
  if (!std::strchr(input, '/')) { return 0; }
  char name[kSchemaNameSize] = "";
  if (extractResourceSchemaName(input, name) != 0) {
    InterpreterError{kSource}("Failed to extract resource schema name!!\n");
    return -1;
  }
  // The name is taken to end the input.
  const std::size_t prefix_length = length - std::min(length, std::strlen(name));
  if (!CopyTerminated({out, kPrefixSize}, {input, prefix_length})) {
    InterpreterError{kSource}("Length of path prefix is out of range !!!\n");
    return -1;
  }
  return 0;
}

int extractPropertyPath(const char* input, char* out) {
  if (!input || !out) {
    InterpreterError{kSource}("Argument is null!!!\n");
    return -1;
  }
  const char* last_hash = std::strrchr(input, '#');
  if (!last_hash) {
    InterpreterError{kSource}("strrchr\n");
    return -1;
  }
  if (!CopyTerminated({out, kPropertyPathSize}, last_hash)) {
    InterpreterError{kSource}("Length of path to destination proertyis out of buffer size !!!\n");
    return -1;
  }
  return 0;
}

bool IsPointerPath(const ResourcePath& path) noexcept {
  const char* pointer = path.propertyPath;
  return pointer[0] == '#' && std::strrchr(pointer, '#') == pointer && Contains(pointer, "#/");
}

int SplitFileReference(const char* reference, ResourcePath* out) {
  const std::size_t length = std::strlen(reference) - 1;
  char former[kFormerSize];
  if (!CopyTerminated(former, {reference, length})) {
    InterpreterError{kSource}("Reference path length is too long ......... !!!\n");
    return 1;
  }
  return SplitFormer(former, reference, out);
}

int SplitPointerReference(const char* reference, ResourcePath* out) {
  if (!HasPointerSlash(reference)) { return 1; }
  const std::size_t length = std::strcspn(reference, "#");
  if (length == 0) {
    InterpreterError{kSource}("Something wrong with reference path !!!\n");
    return 1;
  }
  char former[kFormerSize];
  if (!CopyTerminated(former, {reference, length})) {
    InterpreterError{kSource}("Reference former is out of range !!!\n");
    InterpreterError{kSource}("--> %s\n", reference);
    return 1;
  }
  if (SplitFormer(former, reference, out) != 0) { return 1; }
  if (extractPropertyPath(reference, out->propertyPath) != 0) {
    InterpreterError{kSource}("Failed to extract property path: %s\n", reference);
    return 1;
  }
  return 0;
}

}  // namespace zephlane

using zephlane::InterpreterError;
using zephlane::kSource;

int loadSchemaURIConf(const char* aFileName) {
  G_nSchemaURICount = 0;
  std::memset(G_aSchemaUriInfoTable, 0, sizeof(G_aSchemaUriInfoTable));
  const zephlane::Json root(loadZephlaneSchemaFile(aFileName));
  if (!root) {
    InterpreterError{kSource}("Failed to open configure file %s !!!\n\n",
                              zephlane::Shown(aFileName));
    return 1;
  }
  if (saveSchemaURIEntry(root.get(), kDmtfUriTag, 0, kUriElement) != 0) {
    InterpreterError{kSource}("Get field %s fail !!!\n\n", kDmtfUriTag);
    return 1;
  }
  zephlane::CopyCut(G_aSchemaUriInfoTable[0].directory, kDmtfDirectory);
  G_nSchemaURICount = 1;
  const json_t* oem_locations = json_object_get(root.get(), kOemUrisTag);
  return oem_locations ? zephlane::LoadOemUris(oem_locations) : 0;
}

int saveSchemaURIEntry(const json_t* aObject, const char* aTagName, int nIndex, int nElementId) {
  if (nIndex < 0 || nIndex >= ZEPHLANE_SCHEMA_URI_ENTRIES) {
    InterpreterError{kSource}("nIndex=[%d] out of boundary 0~%d\n", nIndex,
                              ZEPHLANE_SCHEMA_URI_ENTRIES);
    return 1;
  }
  if (!aTagName) {
    InterpreterError{kSource}("tagName is NULL\n");
    return 1;
  }
  const json_t* value = json_object_get(aObject, aTagName);
  if (!value) {
    InterpreterError{kSource}("Gets %s fail.\n", aTagName);
    return 1;
  }
  if (!json_is_string(value)) {
    InterpreterError{kSource}("Gets %s fail. not a string\n", aTagName);
    return 1;
  }
  SchemaUriInfo& entry = G_aSchemaUriInfoTable[nIndex];
  const char* text = json_string_value(value);
  if (json_string_length(value) >= sizeof(entry.uri)) {
    InterpreterError{kSource}("String %s is too long, longer then %d.\n", text,
                              static_cast<int>(sizeof(entry.uri)));
    return 1;
  }
  if (nElementId != kUriElement && nElementId != kDirectoryElement) {
    InterpreterError{kSource}("Unsupported element ID: %d.\n", nElementId);
    return 1;
  }
  return zephlane::CopyWhole(nElementId == kUriElement ? entry.uri : entry.directory, text) ? 0 : 1;
}

// A hook of a former debug print: it does nothing, and stays because programs link against it.
void dumpSchemaURITable(void) {}

int isValidDmtfURL(const char* aPrefix) {
  for (int i = 0; aPrefix && i < G_nSchemaURICount && i < ZEPHLANE_SCHEMA_URI_ENTRIES; ++i) {
    if (std::strcmp(aPrefix, G_aSchemaUriInfoTable[i].uri) == 0) { return 1; }
  }
  return 0;
}

int parseResourcePath(const char* aInput, ResourcePath* aResourcePath) {
  if (!aInput || !aResourcePath) {
    InterpreterError{kSource}("Input argument is NULL\n");
    return 1;
  }
  if (!zephlane::IsAcceptableName(aInput)) { return 1; }
  if (!zephlane::CopyTerminated(aResourcePath->path, aInput)) {
    InterpreterError{kSource}("Source path is out of range. Acceptable length is (%zu) !!!\n",
                              sizeof(aResourcePath->path));
    return 1;
  }
  const char* last_hash = std::strrchr(aInput, '#');
  if (!last_hash) { return zephlane::SplitFileName(aInput, aResourcePath); }
  if (last_hash == aInput) { return zephlane::SplitLocalPointer(aInput, aResourcePath); }
  return last_hash[1] == '\0' ? zephlane::SplitFileReference(aInput, aResourcePath)
                              : zephlane::SplitPointerReference(aInput, aResourcePath);
}
