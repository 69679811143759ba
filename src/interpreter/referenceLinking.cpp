// SPDX-License-Identifier: MIT
//
// The list of references that could not be resolved where they were met, and the pass that resolves
// them once every schema is in the store: it walks the hash tree along each reference's path and
// puts the hash ID found there in the placeholder's place. A reference that cannot be linked is
// reported and keeps its placeholder; the pass never stops early.
// A report's number is the message's own.
#include "interpreter/referenceLinking.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <string>
#include <vector>

#include "interpreter/hashTreeOperation.h"
#include "support/guard.h"
#include "support/report.h"
#include "support/text.h"

#include <zephlaneAPI/objects.h>

namespace zephlane {

namespace {

constexpr char kSource[] = "referenceLinking.cpp";
constexpr std::size_t kSlots = 4000;
constexpr std::size_t kReferenceSlots = 3600;
constexpr std::size_t kShortText = sizeof(Replacement::value);

// Room for the texts of a record, each with its terminator.
constexpr std::size_t kSchemaNameSize = sizeof(ResourcePath::schemaName);
constexpr std::size_t kRecordSize =
    kSchemaNameSize + kValueSize + kIdSize + kValueSize + kValueSize + sizeof(ResourcePath);

// The slots below 3600 hold references, those from there on message parameters. Filled by the
// parsers and read by linking, both in the interpreting thread; only the count may be read by
// others. The marks of use lie apart, so that looking for a free slot touches no record.
SchemaReference references[kSlots];
char in_use[kSlots];
std::atomic<unsigned int> recorded_references = 0;

// The texts of the records, one behind the other: there is room for the longest of each, and a run
// touches only what its texts need. Records are never freed individually.
char texts[kSlots * kRecordSize];
char* free_texts = texts;

// Precondition: a free slot, and a text that fits a record.
const char* Keep(std::string_view text) {
  char* kept = free_texts;
  CopyCounted(kept, text);
  kept[text.size()] = '\0';
  free_texts += text.size() + 1;
  return kept;
}

bool FitsRecord(const char* schema_name, const char* route_text, const char* reference_text,
                const ResourcePath& path) {
  return std::strlen(route_text) < kValueSize && std::strlen(schema_name) < kSchemaNameSize &&
         std::strlen(reference_text) < kValueSize &&
         BoundedText(path.path).size() < sizeof(path.path) &&
         BoundedText(path.schemaName).size() < sizeof(path.schemaName) &&
         BoundedText(path.propertyPath).size() < sizeof(path.propertyPath) &&
         BoundedText(path.prefix).size() < sizeof(path.prefix);
}

void ReportNullArgument(const char* function, int line) {
  InterpreterError{kSource, line}("%s: argument is NULL !\n", function);
}

// The root hash ID of an interpreted schema; null after a report.
const char* InternalizedHashId(const char* schema_name, int not_internalized, int no_id) {
  if (!isReferenceSchemaHasInternalized(schema_name)) {
    InterpreterError{kSource, not_internalized}("%s might not been internalized!!!\n", schema_name);
    return nullptr;
  }
  const char* id = getSchemaHashID(schema_name);
  if (!id) { InterpreterError{kSource, no_id}("Get schema hash ID failed !!!\n"); }
  return id;
}

// Path steps without a hash of their own: members of "properties" lie in the enclosing hash, and
// "oneOf" and "anyOf" are sets. A leading part of one of these words is skipped like the word.
bool IsSkippedToken(std::string_view token) {
  for (const std::string_view word : {"properties", "oneOf", "anyOf"}) {
    if (word.starts_with(token)) { return true; }
  }
  return false;
}

// Walks a property path from a schema's root hash through the hash tree.
class PathWalk {
 public:
  PathWalk(redisContext* ctx, std::string_view root_hash_id, std::string_view property_path)
      : ctx_(ctx), hash_id_(root_hash_id), tokens_(property_path) {}

  // False when the path leads nowhere; the report is made where it has one.
  [[nodiscard]] bool Run();
  // Fills the replacement with where the walk ended; false after a report.
  [[nodiscard]] bool Fill(Replacement* replacement) const;

 private:
  [[nodiscard]] bool NextToken() {
    token_ = tokens_.Next("#/");
    return !token_.empty();
  }
  [[nodiscard]] bool Read(const char* field) {
    value_[0] = '\0';
    return hashTreeGetHashFieldValue(ctx_, hash_id_.c_str(), field, value_) == 0;
  }
  // Reads the token's field from the hash in hand, or from those its "definitions" and "items" lead
  // to. A hash met again for the same token ends the search: schemas may be cyclic.
  [[nodiscard]] bool Find();
  void Descend() {
    hash_id_ = std::string(BoundedText(value_).substr(0, kIdLength));
  }

  redisContext* ctx_;
  std::string hash_id_;
  Tokenizer tokens_;
  std::string_view token_;
  std::string last_token_;
  char value_[kValueSize] = "";
};

bool PathWalk::Run() {
  if (!NextToken()) {
    InterpreterError{kSource, 248}("PropPath error !!!\n");
    return false;
  }
  for (;;) {
    if (IsSkippedToken(token_)) {
      if (!NextToken()) { return true; }
      continue;
    }
    if (token_.size() >= kShortText) {
      InterpreterError{kSource, 275}("Path token length is too long !!!\n");
      return false;
    }
    last_token_ = token_;
    if (!Find()) { return false; }
    if (!NextToken()) { return true; }
    Descend();
    value_[0] = '\0';
  }
}

bool PathWalk::Find() {
  std::vector<std::string> visited;
  while (!Read(last_token_.c_str())) {
    visited.push_back(hash_id_);
    if (!Read("definitions") && !Read("items")) { return false; }
    Descend();
    if (std::find(visited.begin(), visited.end(), hash_id_) != visited.end()) { return false; }
  }
  return true;
}

bool PathWalk::Fill(Replacement* replacement) const {
  if (!CopyWhole(replacement->lastToken, last_token_) || !CopyWhole(replacement->value, value_)) {
    InterpreterError{kSource, 325}("replaceInfo buffer size!\n");
    return false;
  }
  CopyCut(replacement->hashID, hash_id_);
  return true;
}

enum class WalkResult { kDone, kFailed, kOutOfMemory };

WalkResult WalkPath(redisContext* ctx, std::string_view root_id, std::string_view property_path,
                    Replacement* replacement) {
  return Guarded(WalkResult::kOutOfMemory, [&] {
    PathWalk walk(ctx, root_id, property_path);
    return walk.Run() && walk.Fill(replacement) ? WalkResult::kDone : WalkResult::kFailed;
  });
}

void LinkReference(redisContext* ctx, const SchemaReference& reference) {
  const auto destination = getPropLocationReplaceData(ctx, &reference);
  if (!destination) {
    InterpreterError{kSource, 894}("Can't get replace information ..... \n");
    return;
  }
  const ReferenceTarget& target = reference.target;
  const auto replacement = getReferencePathReplaceData(ctx, &target);
  if (!replacement) {
    InterpreterError{kSource,
                     904}("Something wrong while getting replace data from reference path\n");
    InterpreterError{kSource, 905}("Reference path: %s\n", target.path);
    InterpreterError{kSource, 906}("Schema name: %s\n", target.schemaName);
    InterpreterError{kSource, 907}("Dest property: %s\n", target.propertyPath);
    return;
  }
  (void)referenceValueReplacement(ctx, replacement.get(), destination.get());
}

int ReplaceMember(redisContext* ctx, const Replacement& replacement,
                  const PlaceholderLocation& destination) {
  const char* set_key = destination.destinationID;
  if (zephlaneRemoveInstanceFromSet(ctx, set_key, destination.referenceText) == 1) {
    InterpreterError{kSource, 820}("Remove entry <%s> from set <%s>  failed !!!!\n",
                                   destination.referenceText, set_key);
    return -1;
  }
  const std::string_view value = replacement.value;
  if (AddSetMember(ctx, set_key, value.substr(0, kIdSize)) == 1) {
    InterpreterError{kSource, 829}("Insert entry to \"%s\"  failed !!!!\n", set_key);
    return -1;
  }
  return 0;
}

}  // namespace

unsigned int RecordedReferenceCount() noexcept {
  return recorded_references.load(std::memory_order_relaxed);
}

CRecord<PlaceholderLocation> getPropLocationReplaceData(const redisContext* ctx,
                                                        const SchemaReference* reference) {
  if (!ctx || !reference) {
    ReportNullArgument("getPropLocationReplaceData", 502);
    return nullptr;
  }
  if (!InternalizedHashId(reference->schemaName, 509, 516)) { return nullptr; }
  auto location = ZeroedRecord<PlaceholderLocation>();
  if (!location) {
    InterpreterError{kSource, 534}("malloc failed: destination hash ID !!!\n");
    return nullptr;
  }
  if (!CopyWhole(location->destinationID, reference->destinationID) ||
      !CopyWhole(location->fieldName, reference->fieldName) ||
      !CopyWhole(location->referenceText, reference->referenceText)) {
    InterpreterError{kSource, 544}("referPath buffer size!\n");
    return nullptr;
  }
  return location;
}

CRecord<Replacement> getReferencePathReplaceData(redisContext* ctx, const ReferenceTarget* target) {
  if (!ctx || !target) {
    ReportNullArgument("getReferencePathReplaceData", 174);
    return nullptr;
  }
  const char* root_id = InternalizedHashId(target->schemaName, 181, 188);
  if (!root_id) { return nullptr; }
  auto replacement = ZeroedRecord<Replacement>();
  if (!replacement) {
    InterpreterError{kSource, 210}("malloc failed !!!\n");
    return nullptr;
  }
  const std::string_view property_path = target->propertyPath;
  if (property_path.empty()) {
    if (CopyWhole(replacement->value, root_id)) { return replacement; }
    InterpreterError{kSource, 225}("schema hash id length is too long !!!\n");
    return nullptr;
  }
  switch (WalkPath(ctx, root_id, property_path, replacement.get())) {
    case WalkResult::kDone:
      return replacement;
    case WalkResult::kOutOfMemory:
      InterpreterError{kSource, 237}("malloc failed: pathForExtract !!!\n");
      return nullptr;
    default:
      return nullptr;
  }
}

int referenceValueReplacement(redisContext* ctx, const Replacement* replacement,
                              const PlaceholderLocation* destination) {
  if (!ctx || !replacement || !destination) {
    ReportNullArgument("referenceValueReplacement", 808);
    return -1;
  }
  if (zephlaneRedisType(ctx, destination->destinationID) == ZEPHLANE_TYPE_SET) {
    return ReplaceMember(ctx, *replacement, *destination);
  }
  if (hashTreeHashAddSinglePair(ctx, destination->fieldName, replacement->value,
                                destination->destinationID) != 0) {
    InterpreterError{kSource, 841}("FAILED!!!\n");
    return -1;
  }
  return 0;
}

}  // namespace zephlane

using zephlane::InterpreterError;
using zephlane::kSource;

void schemaReferenceListInit(void) {
  // Records that are not in use are never looked at, so they need not be cleared.
  std::memset(zephlane::in_use, 0, sizeof(zephlane::in_use));
  zephlane::free_texts = zephlane::texts;
  zephlane::recorded_references = 0;
}

int schemaRefListGetFreeSpace(int nFirstSlot, int nSlotLimit) {
  if (nFirstSlot < 0 || nSlotLimit > static_cast<int>(zephlane::kSlots) ||
      nFirstSlot >= nSlotLimit) {
    return -1;
  }
  const char* first = zephlane::in_use + nFirstSlot;
  const void* free_mark = std::memchr(first, 0, static_cast<std::size_t>(nSlotLimit - nFirstSlot));
  if (!free_mark) { return -1; }
  return static_cast<int>(static_cast<const char*>(free_mark) - zephlane::in_use);
}

int schemaRefListInsertEntry(const char* aDestinationID, const char* aSchemaName,
                             const char* aRouteText, const char* aFieldName,
                             const char* aReferenceText, const ResourcePath* aResourcePath,
                             int nFirstSlot, int nSlotLimit) {
  if (!aDestinationID || !aSchemaName || !aRouteText || !aReferenceText || !aResourcePath) {
    InterpreterError{kSource, 717}("NULL pointer !!!\n");
    return -1;
  }
  const int slot = schemaRefListGetFreeSpace(nFirstSlot, nSlotLimit);
  if (slot == -1) {
    InterpreterError{kSource, 744}("listSlotIdx == -1\n");
    return -1;
  }
  const char* field = aFieldName ? aFieldName : "";
  if (std::strlen(field) >= zephlane::kValueSize ||
      std::strlen(aDestinationID) >= zephlane::kIdSize) {
    InterpreterError{kSource, 755}("PropLocation buffer size!\n");
    return -1;
  }
  if (!zephlane::FitsRecord(aSchemaName, aRouteText, aReferenceText, *aResourcePath)) {
    InterpreterError{kSource, 765}("referPath buffer size!\n");
    return -1;
  }
  const ResourcePath& path = *aResourcePath;
  zephlane::references[slot] = {
      zephlane::Keep(aSchemaName),
      zephlane::Keep(aRouteText),
      zephlane::Keep(aDestinationID),
      zephlane::Keep(field),
      zephlane::Keep(aReferenceText),
      {zephlane::Keep(path.path), zephlane::Keep(path.prefix), zephlane::Keep(path.schemaName),
       zephlane::Keep(path.propertyPath)},
  };
  zephlane::in_use[slot] = 1;
  ++zephlane::recorded_references;
  return 0;
}

int schemaRefListSearchEntry(const char* aRouteText) {
  if (!aRouteText) { return -1; }
  for (std::size_t i = 0; i < zephlane::kReferenceSlots; ++i) {
    if (zephlane::in_use[i] && std::strcmp(zephlane::references[i].routeText, aRouteText) == 0) {
      return static_cast<int>(i);
    }
  }
  return -1;
}

int resourceReferenceLinking(ParseContext* aContext) {
  if (!aContext) {
    zephlane::ReportNullArgument("resourceReferenceLinking", 874);
    return 1;
  }
  for (std::size_t i = 0; i < zephlane::kSlots; ++i) {
    if (!zephlane::in_use[i]) { continue; }
    zephlane::LinkReference(aContext->connection, zephlane::references[i]);
  }
  return 0;
}
