// SPDX-License-Identifier: MIT
//
// Whether a stored instance fits the definition its "typeID" names. Only its top level is examined.
// Result 1 stands for an invalid instance and for one that could not be read.
#include <cstddef>
#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/objects.h>
#include <zephlaneAPI/validation.h>

using zephlane::ApiError;
using zephlane::CArray;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kValueSize;

static_assert(offsetof(UnknownProperty, next) == ZEPHLANE_VALUE_SIZE);

namespace zephlane {
namespace {

constexpr char kPrintableWord[] = "^[!-~]+$";
constexpr char kDigits[] = "^[0-9]+$";  // no sign, no point, no exponent

// The list of unknown properties of one call.
class UnknownProperties {
 public:
  UnknownProperties() = default;
  UnknownProperties(const UnknownProperties&) = delete;
  UnknownProperties& operator=(const UnknownProperties&) = delete;
  ~UnknownProperties() {
    FreeAll(head_);
  }
  [[nodiscard]] UnknownProperty** Head() noexcept {
    return &head_;
  }
  [[nodiscard]] UnknownProperty** Tail() noexcept {
    return &tail_;
  }
  static void FreeAll(UnknownProperty* first) noexcept {
    CRecord<UnknownProperty> property(first);
    while (property) { property.reset(property->next); }
  }

 private:
  UnknownProperty* head_ = nullptr;
  UnknownProperty* tail_ = nullptr;
};

// Fields of an instance that no schema needs to define.
bool IsAlwaysKnown(std::string_view field) {
  return field == kTypeIdAnnotation || field == "Type" || field == kTtlIdField || field == "typeId";
}

bool Append(const char* name, UnknownProperty** head, UnknownProperty** tail) {
  auto property = ZeroedRecord<UnknownProperty>();
  if (!property) { return false; }
  CopyCut(property->aName, name);
  UnknownProperty*& link = *head ? (*tail)->next : *head;
  *tail = property.get();
  link = property.release();
  return true;
}

enum class MatchResult { kMatches, kDiffers, kNoPattern };

// A pattern, compiled when it is first matched. The properties of an instance meet the same pattern
// one after another, and compiling costs as much as asking Redis.
class Expression {
 public:
  [[nodiscard]] MatchResult Match(const char* pattern, const char* text) {
    if (!compiled_ || !*compiled_ || std::strcmp(pattern, pattern_) != 0) {
      CopyCut(pattern_, pattern);
      compiled_.emplace(pattern, REG_EXTENDED | REG_NOSUB);
    }
    if (!*compiled_) {
      ApiError{}("regcomp() error!! \n\n");
      return MatchResult::kNoPattern;
    }
    return regexec(compiled_->Get(), text, 0, nullptr, 0) == 0 ? MatchResult::kMatches
                                                               : MatchResult::kDiffers;
  }

 private:
  char pattern_[kValueSize] = "";
  std::optional<Regex> compiled_;
};

// The patterns of one call.
struct Expressions {
  Expression property_name;
  Expression printable_word;
  Expression digits;
};

// Whether a value fits a type text, which may hold several names without a separator. The tests
// are by substring and fall through from one to the next.
MatchResult MatchType(std::string_view type, const char* value, Expressions* expressions) {
  if (Contains(type, "string")) {
    const MatchResult result = expressions->printable_word.Match(kPrintableWord, value);
    if (result != MatchResult::kDiffers) { return result; }
  }
  if (Contains(type, "number") || Contains(type, "integer")) {
    const MatchResult result = expressions->digits.Match(kDigits, value);
    if (result != MatchResult::kDiffers) { return result; }
  }
  const std::string_view text = value;
  const bool is_boolean = Contains(type, "boolean") && (text == "true" || text == "false");
  return is_boolean ? MatchResult::kMatches : MatchResult::kDiffers;
}

int ValidatePattern(redisContext* ctx, const char* type_id, const char* property,
                    Expressions* expressions) {
  constexpr char kFunction[] = "validatePatternProperties";
  char patterns_id[kValueSize] = "";
  if (getHashField(ctx, type_id, "patternProperties", patterns_id) != kDone) {
    ApiError{}("error: [%s], Failed to validate pattern\n", kFunction);
    return kFailed;
  }
  unsigned int count = 0;
  const CArray<InstanceData> patterns(zephlaneHashGetAll(ctx, patterns_id, &count));
  if (!patterns) { return kFailed; }
  if (count != 1) {
    ApiError{}("error: [%s], Invalid key-value pair number in patternProperties hash table.\n",
               kFunction);
    return kFailed;
  }
  // The pattern is used as written: anchored only where it anchors itself.
  const MatchResult result = expressions->property_name.Match(patterns[0].aFieldName, property);
  if (result == MatchResult::kDiffers) {
    ApiError{}("error: [%s], Failed to validate pattern\n", kFunction);
  }
  return result == MatchResult::kMatches ? kDone : kFailed;
}

int ValidateAdditional(redisContext* ctx, const char* instance_id, const char* type_id,
                       const char* property, Expressions* expressions) {
  constexpr char kFunction[] = "validateAdditionalProperties";
  char allowed[kValueSize] = "";
  if (getHashField(ctx, type_id, "additionalProperties", allowed) != kDone) { return kFailed; }
  if (std::strcmp(allowed, "true") == 0) { return kDone; }
  if (std::strcmp(allowed, "false") == 0) {
    ApiError{}("error: [%s], No more additional property allowed\n", kFunction);
    return kFailed;
  }
  char value[kValueSize] = "";
  char type[kValueSize] = "";
  if (getHashField(ctx, instance_id, property, value) != kDone ||
      getHashField(ctx, allowed, "type", type) != kDone) {
    return kFailed;
  }
  const MatchResult result = MatchType(type, value, expressions);
  if (result == MatchResult::kDiffers) {
    ApiError{}("error: [%s], additionalProperty validate fail, request type[%s]\n", kFunction,
               type);
  }
  return result == MatchResult::kMatches ? kDone : kFailed;
}

bool IsAccepted(redisContext* ctx, const char* instance_id, const char* type_id,
                const char* property, Expressions* expressions) {
  return ValidatePattern(ctx, type_id, property, expressions) == kDone ||
         ValidateAdditional(ctx, instance_id, type_id, property, expressions) == kDone;
}

}  // namespace
}  // namespace zephlane

int zephlaneValidateResponseObject(redisContext* ctx, const char* aInstanceID) {
  constexpr char kFunction[] = "zephlaneValidateResponseObject";
  if (!aInstanceID) { return kFailed; }
  if (!zephlane::ContainsUuid(aInstanceID)) {
    ApiError{}("error: [%s], Invalid request InstanceID\n", kFunction);
    return kFailed;
  }
  char type_id[kValueSize] = "";
  if (getHashField(ctx, aInstanceID, zephlane::kTypeIdAnnotation, type_id) != kDone) {
    return kFailed;
  }
  if (validateRequired(ctx, aInstanceID, type_id) != kDone) { return kFailed; }
  zephlane::UnknownProperties unknown;
  if (validateProperties(ctx, aInstanceID, type_id, unknown.Head(), unknown.Tail()) != kDone) {
    return kFailed;
  }
  zephlane::Expressions expressions;
  for (const UnknownProperty* property = *unknown.Head(); property; property = property->next) {
    if (!zephlane::IsAccepted(ctx, aInstanceID, type_id, property->aName, &expressions)) {
      // The property comes first here, the function second.
      ApiError{}("error: [%s], Invalid property [%s]\n", property->aName, kFunction);
      return kFailed;
    }
  }
  return kDone;
}

int validateRequired(redisContext* ctx, const char* aInstanceID, const char* aTypeID) {
  if (!ctx || !aInstanceID || !aTypeID) { return kFailed; }
  char required[kValueSize] = "";
  if (getHashField(ctx, aTypeID, "required", required) != kDone) { return kDone; }
  unsigned int count = 0;
  const CArray<SetData> names(zephlaneSMembers(ctx, required, &count));
  if (!names) { return kFailed; }
  for (unsigned int i = 0; i < count; ++i) {
    if (getHashField(ctx, aInstanceID, names[i].aObjectID, nullptr) != kDone) { return kFailed; }
  }
  return kDone;
}

int validateProperties(redisContext* ctx, const char* aInstanceID, const char* aTypeID,
                       UnknownProperty** aHead, UnknownProperty** aTail) {
  if (!ctx || !aInstanceID || !aTypeID || !aHead || !aTail) { return kFailed; }
  unsigned int count = 0;
  const CArray<InstanceData> pairs(zephlaneHashGetAll(ctx, aInstanceID, &count));
  if (!pairs) { return kFailed; }
  for (unsigned int i = 0; i < count; ++i) {
    const char* name = pairs[i].aFieldName;
    const bool is_defined = getHashField(ctx, aTypeID, name, nullptr) == kDone;
    if (is_defined || zephlane::IsAlwaysKnown(name)) { continue; }
    if (!zephlane::Append(name, aHead, aTail)) {
      ApiError{}("error: [%s], Failed to malloc() for properties list\n", "validateProperties");
      zephlane::UnknownProperties::FreeAll(std::exchange(*aHead, nullptr));
      *aTail = nullptr;
      return kFailed;
    }
  }
  return kDone;
}

int validatePatternProperties(redisContext* ctx, const char* aTypeID, const char* aPropertyName) {
  if (!ctx || !aTypeID || !aPropertyName) { return kFailed; }
  zephlane::Expressions expressions;
  return zephlane::ValidatePattern(ctx, aTypeID, aPropertyName, &expressions);
}

int validateAdditionalProperties(redisContext* ctx, const char* aInstanceID, const char* aTypeID,
                                 const char* aPropertyName) {
  if (!ctx || !aInstanceID || !aTypeID || !aPropertyName) { return kFailed; }
  zephlane::Expressions expressions;
  return zephlane::ValidateAdditional(ctx, aInstanceID, aTypeID, aPropertyName, &expressions);
}
