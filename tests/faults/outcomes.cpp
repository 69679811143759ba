// SPDX-License-Identifier: MIT
#include "faults/outcomes.h"

#include <cstdlib>

#include "support/owners.h"

namespace zephlane::test {

namespace {

Outcome Missing(unsigned int count, CountAfterFailure after) {
  const bool as_documented = after == CountAfterFailure::kAnything || count == kCountBefore ||
                             (after == CountAfterFailure::kZeroed && count == 0);
  return as_documented ? kFails : Undocumented("count touched by a failure");
}

bool IsText(const char* text, const char* expected) {
  if (!text || !expected) { return text == expected; }
  return std::string_view(text) == expected;
}

// Reads it to its end.
bool IsEnded(const char (&text)[ZEPHLANE_VALUE_SIZE]) {
  return strnlen(text, sizeof(text)) < sizeof(text);
}

}  // namespace

Outcome HeapText(char* text, std::string_view expected) {
  const CString owner(text);
  if (!owner) { return kFails; }
  const std::string_view given = owner.get();
  return Success(expected.empty() ? !given.empty() : given == expected);
}

Outcome HeapTexts(char** texts, unsigned int count, ExpectedTexts expected,
                  CountAfterFailure after) {
  const CArray<char*> owner(texts);
  if (!owner) { return Missing(count, after); }
  bool as_expected = count == expected.count;
  for (unsigned int i = 0; i < count; ++i) {
    const CString text(owner[i]);
    as_expected = as_expected && IsText(text.get(), expected.texts[i]);
    if (text && std::strlen(text.get()) > (1U << 21)) { return Undocumented("endless text"); }
  }
  return Success(as_expected);
}

Outcome HeapPairs(ExtendedPair* pairs, unsigned int count, unsigned int expected,
                  CountAfterFailure after) {
  const CArray<ExtendedPair> owner(pairs);
  if (!owner) { return Missing(count, after); }
  for (unsigned int i = 0; i < count; ++i) {
    const CString field(owner[i].aFieldName);
    const CString value(owner[i].aValue);
    if (!field || !value) { return Undocumented("pair without field or value"); }
    if (std::strlen(field.get()) + std::strlen(value.get()) > (1U << 22)) {
      return Undocumented("endless text");
    }
  }
  return Success(count == expected);
}

Outcome HeapRecords(SetData* records, unsigned int count, ExpectedTexts expected) {
  const CArray<SetData> owner(records);
  if (!owner) { return Missing(count, CountAfterFailure::kUntouched); }
  bool as_expected = count == expected.count;
  for (unsigned int i = 0; i < count; ++i) {
    if (!IsEnded(owner[i].aObjectID)) { return Undocumented("record not ended"); }
    as_expected = as_expected && IsText(owner[i].aObjectID, expected.texts[i]);
  }
  return Success(as_expected);
}

Outcome HeapRecords(InstanceData* records, unsigned int count, unsigned int expected) {
  const CArray<InstanceData> owner(records);
  // The count is one that the function adds to.
  if (!owner) { return count == 0 ? kFails : Undocumented("count touched by a failure"); }
  for (unsigned int i = 0; i < count; ++i) {
    if (!IsEnded(owner[i].aFieldName) || !IsEnded(owner[i].aValue)) {
      return Undocumented("record not ended");
    }
  }
  return Success(count == expected);
}

Outcome HeapPop(PopResult* popped, std::string_view key, std::string_view item) {
  const CRecord<PopResult> owner(popped);
  if (!owner) { return kFails; }
  const CString popped_key(owner->aListKey);
  const CString popped_item(owner->aItem);
  if (!popped_key || !popped_item) { return Undocumented("pair without key or item"); }
  return Success(popped_key.get() == key && popped_item.get() == item);
}

}  // namespace zephlane::test
