// SPDX-License-Identifier: MIT
#include "treeLoader.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <deque>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "schemaNames.h"
#include "storeObject.h"

namespace zephlane::tool {

namespace {

// Fields that say what an object is; following them leads out of it. In a schema, all but the first
// are names of properties.
constexpr std::array<std::string_view, 3> kNeverFollowed = {"typeId", "typeID", "UUID"};
// A schema's reference to its own main definition, which reads better among the definitions.
constexpr char kReferenceField[] = "$ref";

class TreeLoader {
 public:
  TreeLoader(redisContext* ctx, const std::string& root, const TreeRange& range)
      : ctx_(ctx), range_(range), schemas_(ReadSchemaNames(ctx)) {
    const auto own = schemas_.find(root);
    if (own != schemas_.end()) { own_schema_ = own->second.root; }
    model_.root = root;
  }

  TreeModel Load() && {
    Place(model_.root, "", 0);
    ReadPending();
    // Expanding one may find more.
    for (std::size_t i = 0; i < references_.size(); ++i) {
      const Reference reference = references_[i];
      TreeEntry& entry = model_.objects[reference.holder].entries[reference.index];
      if (Place(entry.value, entry.name, reference.level)) { entry.shown = Shown::kExpanded; }
      ReadPending();
    }
    for (const auto& [id, place] : schemas_) {
      model_.names[id] = NameOf(place, id == model_.root);
    }
    return std::move(model_);
  }

 private:
  struct Pending {
    std::string key;
    unsigned level;
  };
  struct Reference {  // to be expanded in its place when nothing else names the object
    std::string holder;
    std::size_t index;
    unsigned level;
  };

  // False when the object has its place already.
  bool Place(const std::string& key, const std::string& field, unsigned level) {
    const auto [at, is_new] = model_.objects.try_emplace(key);
    if (!is_new) { return false; }
    at->second.kind = Type(key);
    at->second.placed_as = field;
    at->second.is_schema_node = IsSchemaNodeId(key) || schemas_.contains(key);
    pending_.push_back({key, level});
    return true;
  }

  void ReadPending() {
    while (!pending_.empty()) {
      const Pending next = std::move(pending_.front());
      pending_.pop_front();
      TreeObject& object = model_.objects[next.key];
      object.is_cut = next.level >= range_.depth;
      for (Pair& pair : ReadObject(ctx_, next.key, object.kind)) {
        object.entries.push_back({std::move(pair.name), std::move(pair.value), Shown::kPlain});
        TreeEntry& entry = object.entries.back();
        if (!object.is_cut) { entry.shown = HowShown(next.key, object, entry); }
      }
      // Lists are shown in their order, whatever their items are.
      if (object.kind != Kind::kList) {
        std::stable_partition(object.entries.begin(), object.entries.end(),
                              [](const TreeEntry& entry) { return entry.shown == Shown::kPlain; });
      }
      if (!object.is_cut) { PlaceLinked(next, object); }
    }
  }

  // Links are marks at first; each that is its object's place is expanded there.
  void PlaceLinked(const Pending& holder, TreeObject& object) {
    for (std::size_t i = 0; i < object.entries.size(); ++i) {
      TreeEntry& entry = object.entries[i];
      if (entry.shown != Shown::kElsewhere) { continue; }
      if (object.is_schema_node && entry.name == kReferenceField) {
        references_.push_back({holder.key, i, holder.level + 1});
      } else if (Place(entry.value, entry.name, holder.level + 1)) {
        entry.shown = Shown::kExpanded;
      }
    }
  }

  Shown HowShown(const std::string& holder, const TreeObject& object, const TreeEntry& entry) {
    const auto schema = schemas_.find(entry.value);
    if (IsNeverFollowed(object, entry.name)) {
      return schema != schemas_.end() && entry.value != holder ? Shown::kNamed : Shown::kPlain;
    }
    if (Type(entry.value) == Kind::kOther) { return Shown::kPlain; }
    const bool of_other_schema = schema != schemas_.end() && schema->second.root != own_schema_;
    return of_other_schema && !range_.all ? Shown::kNamed : Shown::kElsewhere;
  }

  static bool IsNeverFollowed(const TreeObject& object, const std::string& field) {
    const auto count =
        static_cast<std::ptrdiff_t>(object.is_schema_node ? 1 : kNeverFollowed.size());
    const auto end = kNeverFollowed.begin() + count;
    return std::find(kNeverFollowed.begin(), end, field) != end;
  }

  Kind Type(const std::string& key) {
    if (key.empty() || key.size() >= ZEPHLANE_VALUE_SIZE) { return Kind::kOther; }
    const auto [at, is_new] = types_.try_emplace(key, Kind::kOther);
    if (is_new) { at->second = KindOf(ctx_, key); }
    return at->second;
  }

  [[nodiscard]] std::string NameOf(const SchemaPlace& place, bool is_root) const {
    if (place.definition.empty()) { return place.title; }
    return place.root == own_schema_ && !is_root ? place.definition
                                                 : place.title + "/" + place.definition;
  }

  redisContext* ctx_;
  TreeRange range_;
  SchemaNames schemas_;
  std::string own_schema_;
  TreeModel model_;
  std::deque<Pending> pending_;
  std::vector<Reference> references_;
  std::unordered_map<std::string, Kind> types_;
};

}  // namespace

TreeModel LoadTree(redisContext* ctx, const std::string& root, const TreeRange& range) {
  return TreeLoader(ctx, root, range).Load();
}

}  // namespace zephlane::tool
