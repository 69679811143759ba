// SPDX-License-Identifier: MIT
//
// One line for each object and each value. Nodes of a schema read as in a schema file: the property
// name, its type and, where they are simple, its keywords in the same line.
#include "treeText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <string_view>

#include <fmt/format.h>

#include "plainText.h"

namespace zephlane::tool {

namespace {

constexpr char kTypeField[] = "type";
constexpr std::array<const char*, 6> kNameFields = {"title", "Name", "name", "Id", "id", "URI"};
constexpr std::array<std::string_view, 7> kTypeNames = {"string",  "null",    "object", "array",
                                                        "integer", "boolean", "number"};

enum class Colour { kNone, kType, kValue, kFaint };

// A line whose width is known although it holds colours.
class Line {
 public:
  explicit Line(bool colours) : colours_(colours) {}
  void Add(std::string_view text, Colour colour = Colour::kNone) {
    columns_ += Columns(text);
    text_ += colours_ && colour != Colour::kNone
                 ? fmt::format("\x1b[{}m{}\x1b[0m", Code(colour), text)
                 : std::string(text);
  }
  [[nodiscard]] std::size_t Width() const {
    return columns_;
  }
  [[nodiscard]] const std::string& Text() const {
    return text_;
  }

 private:
  static int Code(Colour colour) {
    constexpr int kCyan = 36;
    constexpr int kGreen = 32;
    constexpr int kDim = 2;
    return colour == Colour::kType ? kCyan : colour == Colour::kValue ? kGreen : kDim;
  }
  bool colours_;
  std::size_t columns_ = 0;
  std::string text_;
};

const char* KindWord(Kind kind) {
  switch (kind) {
    case Kind::kHash:
      return "hash";
    case Kind::kSet:
      return "set";
    case Kind::kList:
      return "list";
    case Kind::kOther:
      break;
  }
  return "other";
}

// Generated IDs differ in their last group.
std::string ShortKey(const std::string& key) {
  const std::size_t group = key.rfind('-');
  if (group == std::string::npos) { return key; }
  constexpr std::size_t kShown = 4;
  const std::string tail = key.substr(group + 1);
  const std::size_t zeros = std::min(tail.find_first_not_of('0'), tail.size());
  return "…" + tail.substr(std::min(zeros, tail.size() - std::min(kShown, tail.size())));
}

const TreeEntry* FindPlain(const TreeObject& object, std::string_view field) {
  for (const TreeEntry& entry : object.entries) {
    if (entry.shown == Shown::kPlain && entry.name == field) { return &entry; }
  }
  return nullptr;
}

std::string OwnName(const TreeObject& object) {
  for (const char* field : kNameFields) {
    const TreeEntry* entry = FindPlain(object, field);
    if (entry != nullptr && !entry->value.empty()) { return entry->value; }
  }
  return "";
}

class TreeWriter {
 public:
  TreeWriter(const TreeModel& model, const TreeStyle& style) : model_(model), style_(style) {}

  std::string Text() && {
    const TreeObject& root = Object(model_.root);
    const auto named = model_.names.find(model_.root);
    std::string label = named != model_.names.end() ? named->second : OwnName(root);
    if (label.empty()) { label = model_.root; }
    WriteObject("", "", label, model_.root);
    return std::move(text_);
  }

 private:
  [[nodiscard]] const TreeObject& Object(const std::string& key) const {
    return model_.objects.at(key);
  }

  // `first` goes before the object's own line, `rest` before the lines below it.
  void WriteObject(const std::string& first, const std::string& rest, const std::string& label,
                   const std::string& key) {
    const TreeObject& object = Object(key);
    shown_.insert(key);
    path_.push_back(key);
    Line line(style_.colours);
    line.Add(first);
    if (!label.empty()) { line.Add(Printable(label) + ": "); }
    line.Add(Printable(TypeText(object)), Colour::kType);
    AddKey(line, object, label, key);
    const std::optional<std::string> details = object.is_cut ? std::nullopt : Details(object);
    const bool in_line =
        details && line.Width() + 1 + Columns(*details) <= style_.columns && !first.empty();
    if (in_line) { AddDetails(line, object, *details); }
    if (object.is_cut) { AddHiddenCount(line, object); }
    text_ += line.Text() + "\n";
    if (!in_line && !object.is_cut) { WriteEntries(rest, object); }
    path_.pop_back();
  }

  void WriteEntries(const std::string& indent, const TreeObject& object) {
    std::vector<const TreeEntry*> entries;
    for (const TreeEntry& entry : object.entries) {
      if (!IsShownType(object, entry)) { entries.push_back(&entry); }
    }
    for (const TreeEntry* entry : entries) {
      const bool last = entry == entries.back();
      WriteEntry(indent + (last ? "└─ " : "├─ "), indent + (last ? "   " : "│  "), *entry);
    }
  }

  void WriteEntry(const std::string& first, const std::string& rest, const TreeEntry& entry) {
    if (entry.shown == Shown::kExpanded) {
      WriteObject(first, rest, LabelOf(entry), entry.value);
      return;
    }
    Line line(style_.colours);
    line.Add(first);
    line.Add(Printable(entry.name));
    if (entry.shown == Shown::kPlain) {
      if (!entry.name.empty()) { line.Add(" = "); }
      line.Add(Printable(entry.value), Colour::kValue);
    } else {
      line.Add(entry.name.empty() ? "→ " : " → ");
      line.Add(Printable(TargetName(entry.value)), Colour::kType);
    }
    if (entry.shown == Shown::kElsewhere) { AddMark(line, entry.value); }
    text_ += line.Text() + "\n";
  }

  void AddMark(Line& line, const std::string& key) const {
    const bool is_cycle = std::find(path_.begin(), path_.end(), key) != path_.end();
    line.Add(is_cycle               ? "  ^ see above (cycle)"
             : shown_.contains(key) ? "  ^ see above"
                                    : "  v see below",
             Colour::kFaint);
  }

  void AddKey(Line& line, const TreeObject& object, const std::string& label,
              const std::string& key) const {
    if (label == key) { return; }
    const bool whole = style_.whole_keys || key == model_.root;
    if (!whole && object.is_schema_node) { return; }
    line.Add(" " + Printable(whole ? key : ShortKey(key)), Colour::kFaint);
  }

  void AddDetails(Line& line, const TreeObject& object, const std::string& details) {
    if (!details.empty()) { line.Add(" " + details); }
    for (const TreeEntry& entry : object.entries) {
      if (entry.shown == Shown::kExpanded) { shown_.insert(entry.value); }
    }
  }

  static void AddHiddenCount(Line& line, const TreeObject& object) {
    const auto shown_types =
        std::count_if(object.entries.begin(), object.entries.end(),
                      [&](const TreeEntry& entry) { return IsShownType(object, entry); });
    const std::size_t hidden = object.entries.size() - static_cast<std::size_t>(shown_types);
    if (hidden == 0) { return; }
    const std::string count = object.kind == Kind::kHash  ? Counted(hidden, "field", "fields")
                              : object.kind == Kind::kSet ? Counted(hidden, "member", "members")
                                                          : Counted(hidden, "item", "items");
    line.Add(fmt::format(" (+{})", count), Colour::kFaint);
  }

  // A schema node's type stands in its own line already.
  static bool IsShownType(const TreeObject& object, const TreeEntry& entry) {
    return object.is_schema_node && entry.shown == Shown::kPlain && entry.name == kTypeField;
  }

  static std::string TypeText(const TreeObject& object) {
    const TreeEntry* type = object.is_schema_node ? FindPlain(object, kTypeField) : nullptr;
    return type != nullptr ? SchemaTypeText(type->value) : KindWord(object.kind);
  }

  [[nodiscard]] std::string LabelOf(const TreeEntry& entry) const {
    if (!entry.name.empty()) { return entry.name; }
    const TreeObject& object = Object(entry.value);
    const std::string name = OwnName(object);
    return name.empty() && !object.is_schema_node ? entry.value : name;
  }

  [[nodiscard]] std::string TargetName(const std::string& key) const {
    const auto named = model_.names.find(key);
    if (named != model_.names.end()) { return named->second; }
    const TreeObject& object = Object(key);
    const std::string name = OwnName(object);
    if (!name.empty()) { return name; }
    return object.placed_as.empty() ? key : object.placed_as;
  }

  // An object's content for its own line: {members}, [items] or, for a schema node, (keywords).
  // None when it is not simple, empty when there is none.
  [[nodiscard]] std::optional<std::string> Details(const TreeObject& object) const {
    if (object.kind != Kind::kHash) { return PlainItems(object); }
    if (!object.is_schema_node) { return std::nullopt; }
    std::string keywords;
    for (const TreeEntry& entry : object.entries) {
      if (IsShownType(object, entry)) { continue; }
      const std::optional<std::string> keyword = Keyword(entry);
      if (!keyword) { return std::nullopt; }
      keywords += (keywords.empty() ? "" : ", ") + *keyword;
    }
    return keywords.empty() ? "" : "(" + keywords + ")";
  }

  [[nodiscard]] std::optional<std::string> Keyword(const TreeEntry& entry) const {
    if (entry.shown == Shown::kPlain) {
      return Printable(entry.name) + " = " + Printable(entry.value);
    }
    if (entry.shown == Shown::kNamed) {
      return Printable(entry.name) + " → " + Printable(TargetName(entry.value));
    }
    if (entry.shown == Shown::kElsewhere) { return std::nullopt; }
    const TreeObject& object = Object(entry.value);
    const bool is_simple = object.kind != Kind::kHash && !object.is_cut;
    const std::optional<std::string> items = is_simple ? PlainItems(object) : std::nullopt;
    if (!items) { return std::nullopt; }
    return Printable(entry.name) + " " + *items;
  }

  static std::optional<std::string> PlainItems(const TreeObject& object) {
    std::string items;
    for (const TreeEntry& entry : object.entries) {
      if (entry.shown != Shown::kPlain) { return std::nullopt; }
      items += (items.empty() ? "" : ", ") + Printable(entry.value);
    }
    return object.kind == Kind::kSet ? "{" + items + "}" : "[" + items + "]";
  }

  const TreeModel& model_;
  const TreeStyle& style_;
  std::string text_;
  std::set<std::string> shown_;
  std::vector<std::string> path_;  // keys from the root to the object being written
};

}  // namespace

std::string TreeText(const TreeModel& model, const TreeStyle& style) {
  return TreeWriter(model, style).Text();
}

std::string SchemaTypeText(const std::string& stored) {
  std::string types;
  std::string_view rest = stored;
  while (!rest.empty()) {
    const auto* name = std::find_if(kTypeNames.begin(), kTypeNames.end(),
                                    [&](std::string_view type) { return rest.starts_with(type); });
    if (name == kTypeNames.end()) { return stored; }
    types += (types.empty() ? "" : " | ") + std::string(*name);
    rest.remove_prefix(name->size());
  }
  return types;
}

}  // namespace zephlane::tool
