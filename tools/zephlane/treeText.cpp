// SPDX-License-Identifier: MIT
//
// One line for each object and each value. Nodes of a schema read as in a schema file: the property
// name, its type and, where they are simple, its keywords in the same line.
#include "treeText.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

#include "line.h"
#include "plainText.h"
#include "treeWords.h"

namespace zephlane::tool {

namespace {

class TreeWriter {
 public:
  TreeWriter(const TreeModel& model, const TreeStyle& style) : model_(model), style_(style) {}

  std::string Text() && {
    const auto named = model_.names.find(model_.root);
    std::string label = named != model_.names.end() ? named->second : OwnName(Object(model_.root));
    WriteObject("", "", label.empty() ? model_.root : label, model_.root);
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
    line.Add(KeyText(object, label, key), Colour::kFaint);
    const bool is_whole = object.is_cut || AddDetails(line, object, key);
    if (object.is_cut) { line.Add(HiddenCount(object), Colour::kFaint); }
    text_ += line.Text() + "\n";
    if (!is_whole) { WriteEntries(rest, object); }
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
    if (entry.shown == Shown::kElsewhere) { line.Add(MarkText(entry.value), Colour::kFaint); }
    text_ += line.Text() + "\n";
  }

  [[nodiscard]] std::string MarkText(const std::string& key) const {
    if (std::find(path_.begin(), path_.end(), key) != path_.end()) {
      return "  ^ see above (cycle)";
    }
    return shown_.contains(key) ? "  ^ see above" : "  v see below";
  }

  // Nodes of a schema are known by their place, other objects by their key.
  [[nodiscard]] std::string KeyText(const TreeObject& object, const std::string& label,
                                    const std::string& key) const {
    const bool whole = style_.whole_keys || key == model_.root;
    if (label == key || (object.is_schema_node && !whole)) { return ""; }
    return " " + Printable(whole ? key : ShortKey(key));
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
    std::string name = OwnName(object);
    if (!name.empty()) { return name; }
    return object.placed_as.empty() ? key : object.placed_as;
  }

  // Adds the object's content to its own line where it is simple and fits; the root's stays below.
  bool AddDetails(Line& line, const TreeObject& object, const std::string& key) {
    const std::optional<std::string> details = Details(object);
    if (!details || key == model_.root) { return false; }
    if (details->empty()) { return true; }
    if (line.Width() + 1 + Columns(*details) > style_.columns) { return false; }
    line.Add(" " + *details);
    for (const TreeEntry& entry : object.entries) {
      if (entry.shown == Shown::kExpanded) { shown_.insert(entry.value); }
    }
    return true;
  }

  // {members}, [items] or, for a schema node, (keywords). None when the content is not simple,
  // empty when there is none.
  [[nodiscard]] std::optional<std::string> Details(const TreeObject& object) const {
    if (object.kind != Kind::kHash) { return SimpleItems(object); }
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
    switch (entry.shown) {
      case Shown::kPlain:
        return Printable(entry.name) + " = " + Printable(entry.value);
      case Shown::kNamed:
        return Printable(entry.name) + " → " + Printable(TargetName(entry.value));
      case Shown::kElsewhere:
        return std::nullopt;
      case Shown::kExpanded:
        break;
    }
    const std::optional<std::string> items = SimpleItems(Object(entry.value));
    if (!items) { return std::nullopt; }
    return Printable(entry.name) + " " + *items;
  }

  static std::optional<std::string> SimpleItems(const TreeObject& object) {
    const bool is_simple =
        object.kind != Kind::kHash && !object.is_cut &&
        std::all_of(object.entries.begin(), object.entries.end(),
                    [](const TreeEntry& entry) { return entry.shown == Shown::kPlain; });
    if (!is_simple) { return std::nullopt; }
    return ItemsText(object);
  }

  const TreeModel& model_;
  const TreeStyle& style_;
  std::string text_;
  std::set<std::string> shown_;    // keys of the objects written so far
  std::vector<std::string> path_;  // keys from the root to the object being written
};

}  // namespace

std::string TreeText(const TreeModel& model, const TreeStyle& style) {
  return TreeWriter(model, style).Text();
}

}  // namespace zephlane::tool
