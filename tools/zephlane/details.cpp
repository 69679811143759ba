// SPDX-License-Identifier: MIT
#include "details.h"

#include <array>
#include <new>
#include <utility>

#include "heapText.h"
#include "plainText.h"
#include "storeObject.h"

namespace zephlane::tool {

namespace {

constexpr std::array kEventLinks = {"Events", "MessageArgs", "OriginOfCondition"};
constexpr char kRecords[] = "Events";
constexpr std::size_t kIndent = 2;

Json Made(json_t* value) {
  if (value == nullptr) { throw std::bad_alloc(); }
  return Json(value);
}

// `text` itself when it is UTF-8; otherwise each byte beyond ASCII is replaced.
std::string Utf8(const std::string& text) {
  const Json whole(json_stringn(text.data(), text.size()));
  if (whole) { return text; }
  std::string replaced;
  for (const char byte : text) {
    if (static_cast<unsigned char>(byte) < 0x80U) {
      replaced += byte;
    } else {
      replaced += "\xef\xbf\xbd";
    }
  }
  return replaced;
}

void Append(json_t* array, Json value) {
  if (json_array_append_new(array, value.release()) != 0) { throw std::bad_alloc(); }
}

const json_t* Member(const json_t* object, const char* name) {
  return json_object_get(object, name);
}

// Puts the objects that the event's or record's fields name in the place of their keys.
void Expand(redisContext* ctx, json_t* object) {
  for (const char* field : kEventLinks) {
    const char* key = json_string_value(Member(object, field));
    if (key == nullptr) { continue; }
    Json linked = ReadDetails(ctx, key);
    if (!json_is_null(linked.get())) { SetMember(object, field, std::move(linked)); }
  }
}

// A piece of inline text: what is not at the top stands in brackets.
std::string Piece(const json_t* value) {
  if (json_is_object(value)) { return "{" + InlineText(value) + "}"; }
  if (json_is_array(value)) { return "[" + InlineText(value) + "]"; }
  return InlineText(value);
}

std::string Lines(const json_t* value, std::size_t indent);

std::string ObjectLines(const json_t* object, std::size_t indent) {
  std::string text;
  const char* name = nullptr;
  json_t* value = nullptr;
  json_object_foreach(const_cast<json_t*>(object), name, value) {
    text += std::string(indent, ' ') + Printable(name);
    const bool is_plain = !json_is_object(value) && !json_is_array(value);
    text += is_plain ? " = " + InlineText(value) + "\n"
                     : ":\n" + Lines(value, json_is_object(value) ? indent + kIndent : indent);
  }
  return text;
}

std::string ArrayLines(const json_t* array, std::size_t indent) {
  std::string text;
  for (std::size_t i = 0; i < json_array_size(array); ++i) {
    std::string element = Lines(json_array_get(array, i), indent + kIndent);
    if (element.size() > indent) { element[indent] = '-'; }
    text += element;
  }
  return text;
}

std::string Lines(const json_t* value, std::size_t indent) {
  if (json_is_object(value)) { return ObjectLines(value, indent); }
  if (json_is_array(value)) { return ArrayLines(value, indent); }
  return std::string(indent, ' ') + InlineText(value) + "\n";
}

}  // namespace

Json JsonText(const std::string& text) {
  const std::string valid = Utf8(text);
  return Made(json_stringn(valid.data(), valid.size()));
}

void SetMember(json_t* object, const std::string& name, Json value) {
  if (json_object_set_new(object, Utf8(name).c_str(), value.release()) != 0) {
    throw std::bad_alloc();
  }
}

Json ReadDetails(redisContext* ctx, const std::string& key) {
  const Kind kind = KindOf(ctx, key);
  if (kind == Kind::kOther) { return Made(json_null()); }
  Json details = Made(kind == Kind::kHash ? json_object() : json_array());
  for (const Pair& pair : ReadObject(ctx, key, kind)) {
    if (kind == Kind::kHash) {
      SetMember(details.get(), pair.name, JsonText(pair.value));
    } else {
      Append(details.get(), JsonText(pair.value));
    }
  }
  return details;
}

Json ReadEventDetails(redisContext* ctx, const std::string& key) {
  Json event = ReadDetails(ctx, key);
  if (!json_is_object(event.get())) { return event; }
  Expand(ctx, event.get());
  const json_t* keys = Member(event.get(), kRecords);
  if (!json_is_array(keys)) { return event; }
  Json records = Made(json_array());
  for (std::size_t i = 0; i < json_array_size(keys); ++i) {
    Json record = ReadDetails(ctx, json_string_value(json_array_get(keys, i)));
    if (json_is_object(record.get())) { Expand(ctx, record.get()); }
    Append(records.get(), std::move(record));
  }
  SetMember(event.get(), kRecords, std::move(records));
  return event;
}

std::string InlineText(const json_t* details) {
  std::string text;
  const auto add = [&text](const std::string& piece) {
    text += (text.empty() ? "" : ", ") + piece;
  };
  if (json_is_string(details)) { return Printable(json_string_value(details)); }
  if (json_is_integer(details)) { return std::to_string(json_integer_value(details)); }
  if (json_is_null(details)) { return "(no such object)"; }
  for (std::size_t i = 0; i < json_array_size(details); ++i) {
    add(Piece(json_array_get(details, i)));
  }
  const char* name = nullptr;
  json_t* value = nullptr;
  json_object_foreach(const_cast<json_t*>(details), name, value) {
    add(Printable(name) + " = " + Piece(value));
  }
  return text;
}

std::string IndentedText(const json_t* details) {
  return Lines(details, 0);
}

std::string JsonLine(const json_t* value) {
  const HeapText text(json_dumps(value, JSON_COMPACT | JSON_ENCODE_ANY));
  if (!text) { throw std::bad_alloc(); }
  return text.get();
}

}  // namespace zephlane::tool
