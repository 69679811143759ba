// SPDX-License-Identifier: MIT
#include "storeObject.h"

#include <algorithm>
#include <memory>
#include <tuple>

#include "heapText.h"
#include "plainText.h"
#include "session.h"

namespace zephlane::tool {

namespace {

template <typename Item>
using Array = std::unique_ptr<Item[], Free>;

std::string Taken(char* text) {
  const HeapText owner(text);
  return owner ? std::string(owner.get()) : std::string();
}

std::vector<Pair> TakenTexts(char** texts, unsigned count) {
  const Array<char*> owner(texts);
  std::vector<Pair> pairs;
  for (unsigned i = 0; owner && i < count; ++i) { pairs.push_back({"", Taken(owner[i])}); }
  return pairs;
}

std::vector<Pair> ReadHash(redisContext* ctx, const std::string& key) {
  unsigned count = 0;
  const Array<ExtendedPair> owner(zephlaneExtendedHashGetAll(ctx, key.c_str(), &count));
  std::vector<Pair> pairs;
  for (unsigned i = 0; owner && i < count; ++i) {
    pairs.push_back({Taken(owner[i].aFieldName), Taken(owner[i].aValue)});
  }
  return pairs;
}

std::vector<Pair> Sorted(std::vector<Pair> pairs) {
  std::sort(pairs.begin(), pairs.end(), [](const Pair& left, const Pair& right) {
    return std::tie(left.name, left.value) < std::tie(right.name, right.value);
  });
  return pairs;
}

}  // namespace

std::string TypeWord(redisContext* ctx, const std::string& key) {
  switch (zephlaneRedisType(ctx, key.c_str())) {
    case ZEPHLANE_TYPE_HASH:
      return "hash";
    case ZEPHLANE_TYPE_SET:
      return "set";
    case ZEPHLANE_TYPE_LIST:
      return "list";
    default:
      break;
  }
  char word[ZEPHLANE_VALUE_SIZE] = "";
  return typeCmd(ctx, key.c_str(), word) == 0 ? word : "none";
}

Kind KindOf(redisContext* ctx, const std::string& key) {
  switch (zephlaneRedisType(ctx, key.c_str())) {
    case ZEPHLANE_TYPE_HASH:
      return Kind::kHash;
    case ZEPHLANE_TYPE_SET:
      return Kind::kSet;
    case ZEPHLANE_TYPE_LIST:
      return Kind::kList;
    default:
      return Kind::kOther;
  }
}

std::vector<Pair> ReadObject(redisContext* ctx, const std::string& key, Kind kind) {
  unsigned count = 0;
  switch (kind) {
    case Kind::kHash:
      return Sorted(ReadHash(ctx, key));
    case Kind::kSet: {
      char** members = zephlaneExtendedSMembers(ctx, key.c_str(), &count);
      return Sorted(TakenTexts(members, count));
    }
    case Kind::kList: {
      char** items = zephlaneExtendedListRange(ctx, key.c_str(), 0, -1, &count);
      return TakenTexts(items, count);
    }
    case Kind::kOther:
      break;
  }
  return {};
}

std::string ReadString(redisContext* ctx, const std::string& key) {
  // getKey() copies to a buffer of 1024 bytes; a string may be longer.
  const Answer answer(static_cast<redisReply*>(redisCommand(ctx, "GET %s", key.c_str())));
  return answer && answer->type == REDIS_REPLY_STRING ? std::string(answer->str, answer->len) : "";
}

std::string ReadField(redisContext* ctx, const std::string& key, const char* field) {
  return Taken(zephlaneGetHashFieldV21(ctx, key.c_str(), field));
}

std::string ObjectText(redisContext* ctx, const std::string& key, Kind kind) {
  std::string text;
  for (const Pair& pair : ReadObject(ctx, key, kind)) {
    if (kind == Kind::kHash) { text += Printable(pair.name) + " = "; }
    text += Printable(pair.value) + "\n";
  }
  return text;
}

}  // namespace zephlane::tool
