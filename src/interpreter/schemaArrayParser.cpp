// SPDX-License-Identifier: MIT
//
// Turns a JSON array of a schema into a set: simple elements as their text, objects as the ID of
// their own hash or as a reference. A "type" list is no set but one joined text.
// A report's number is the message's own. Nothing written before a failure is undone.
#include <charconv>
#include <cstring>

#include "interpreter/hashTreeOperation.h"
#include "interpreter/zephlaneSchemaInterpreter.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/text.h"

#include <zephlaneAPI/interpreter.h>

namespace zephlane {
namespace {

constexpr char kSource[] = "schemaArrayParser.cpp";

// The route's name of an element.
class ElementName {
 public:
  explicit ElementName(std::size_t index) noexcept {
    constexpr std::string_view kPrefix = "INDEX_";
    CopyCounted(text_, kPrefix);
    *std::to_chars(text_ + kPrefix.size(), text_ + sizeof(text_) - 1, index).ptr = '\0';
  }
  [[nodiscard]] const char* Get() const noexcept {
    return text_;
  }

 private:
  char text_[sizeof(RouteSpot::name)] = "";
};

bool AddSimpleElement(const ParseContext* context, const json_t* element, const char* set_id) {
  const CString text(getJsonSimpleTypeStr(element));
  if (!text || std::strlen(text.get()) >= kValueSize) {
    InterpreterError{kSource, 462}("Get JSON simple string fail\n");
    return false;
  }
  if (AddSetMember(context->connection, set_id, text.get()) == 1) {
    InterpreterError{kSource, 474}("---> create set table faile !!!!\n");
    return false;
  }
  return true;
}

// False only for an element that fails the whole array.
bool ParseElement(ParseContext* context, std::size_t index, json_t* element, const char* set_id) {
  if (json_is_object(element)) {
    if (set_id) {
      // Ignored on purpose: a broken alternative is reported but does not fail the array.
      (void)parseObjectWithoutFieldName(context, index, element, set_id);
    } else {
      InterpreterError{kSource, 449}("EXCEPTION!!!\n");
    }
    return true;
  }
  if (json_is_array(element)) {
    // Arrays in arrays are not supported, and no error either.
    InterpreterError{kSource, 454}("EXCEPTION!!! Array contains element array is not supportted\n");
    return true;
  }
  // Reals and nulls are never stored.
  return !isJsonSimpleType(element) || AddSimpleElement(context, element, set_id);
}

}  // namespace
}  // namespace zephlane

using zephlane::CString;
using zephlane::ElementName;
using zephlane::InterpreterError;
using zephlane::kSource;

int parseArray(ParseContext* aContext, const char* aFieldName, json_t* aArray,
               const char* aParentHashID) {
  if (!aContext || !aFieldName || !aArray || !aParentHashID) {
    InterpreterError{kSource, 513}("Arguement is NULL pointer\n");
    return 1;
  }
  if (!json_is_array(aArray)) {
    InterpreterError{kSource, 519}("Input argument is not json array type!\n");
    return 1;
  }
  redisContext* ctx = aContext->connection;
  if (std::strcmp(aFieldName, "type") == 0) {
    if (parseMultipleTypeFieldAdd(ctx, aArray, aParentHashID) == 0) { return 0; }
    InterpreterError{kSource, 532}("parsing field: %s failed !!!\n", aFieldName);
    return 1;
  }
  const CString set_id(hashTreeCreateNewSet(ctx, nullptr));
  if (!set_id) {
    InterpreterError{kSource, 543}("Failed to create new set!!!\n");
    return 1;
  }
  if (hashTreeHashAddSinglePair(ctx, aFieldName, set_id.get(), aParentHashID) != 0) {
    InterpreterError{kSource, 552}("Redis hash add pair\n");
    return 1;
  }
  if (parseArrayElements(aContext, aFieldName, aArray, set_id.get()) == 1) {
    InterpreterError{kSource, 562}("parseArrayElements fail\n");
    return 1;
  }
  return 0;
}

int parseArrayElements(ParseContext* aContext, const char* /*aFieldName*/, json_t* aArray,
                       const char* aSetID) {
  if (!aContext) { return 1; }
  for (std::size_t i = 0; i < json_array_size(aArray); ++i) {
    json_t* element = json_array_get(aArray, i);
    if (!element) { return 0; }
    const ElementName name(i);
    zephlane::PushRoute(aContext, name.Get());
    if (!zephlane::ParseElement(aContext, i, element, aSetID)) { return 1; }
    // A broken alternative may have left its own names on the route: then this pop fails.
    if (!zephlane::PopRoute(aContext, name.Get())) { return 1; }
  }
  return 0;
}

// No function of the library calls this variant; programs of the field do.
int parseSomeOfArrayField(ParseContext* aContext, const char* aFieldName, json_t* aArray,
                          const char* aParentSetID) {
  if (!json_is_array(aArray)) {
    InterpreterError{kSource, 374}("[%s] field should be array type! [%s]\n",
                                   zephlane::Shown(aFieldName), zephlane::Shown(aParentSetID));
    return 1;
  }
  if (json_array_size(aArray) == 0) {
    InterpreterError{kSource, 380}("NO ELEMENTS in array ...\n");
    return 1;
  }
  if (!aContext) { return 1; }
  for (std::size_t i = 0; i < json_array_size(aArray); ++i) {
    json_t* element = json_array_get(aArray, i);
    if (!element) { return 0; }
    if (!json_is_object(element)) {
      InterpreterError{kSource, 389}("((((( element is not object of %s array !!! )))))\n",
                                     zephlane::Shown(aFieldName));
      continue;
    }
    const ElementName name(i);
    zephlane::PushRoute(aContext, name.Get());
    (void)parseObjectWithoutFieldName(aContext, i, element, aParentSetID);
    if (!zephlane::PopRoute(aContext, name.Get())) { return 1; }
  }
  return 0;
}
