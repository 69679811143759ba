// SPDX-License-Identifier: MIT
#include "support/store.h"

#include <algorithm>
#include <fstream>
#include <iterator>

#include "support/fixedNames.h"

namespace zephlane::test {

namespace {

std::string AsText(const redisReply* reply) {
  if (reply == nullptr) { return "(no reply)"; }
  switch (reply->type) {
    case REDIS_REPLY_INTEGER:
      return std::to_string(reply->integer);
    case REDIS_REPLY_NIL:
      return "(nil)";
    case REDIS_REPLY_ERROR:
      return "(error) " + std::string(reply->str, reply->len);
    case REDIS_REPLY_ARRAY: {
      std::string lines;
      for (std::size_t i = 0; i < reply->elements; ++i) {
        lines += (i == 0 ? "" : "\n") + AsText(reply->element[i]);
      }
      return lines;
    }
    default:
      return std::string(reply->str, reply->len);
  }
}

redisReply* Send(redisContext* ctx, const std::vector<std::string>& words) {
  std::vector<const char*> texts;
  std::vector<std::size_t> lengths;
  for (const std::string& word : words) {
    texts.push_back(word.data());
    lengths.push_back(word.size());
  }
  return static_cast<redisReply*>(
      redisCommandArgv(ctx, static_cast<int>(words.size()), texts.data(), lengths.data()));
}

std::vector<std::string> Elements(redisContext* ctx, const std::vector<std::string>& words) {
  redisReply* reply = Send(ctx, words);
  std::vector<std::string> elements;
  for (std::size_t i = 0; i < reply->elements; ++i) {
    elements.push_back(AsText(reply->element[i]));
  }
  freeReplyObject(reply);
  return elements;
}

std::vector<std::string> Sorted(std::vector<std::string> lines) {
  std::sort(lines.begin(), lines.end());
  return lines;
}

std::vector<std::string> ContentLines(redisContext* ctx, const std::string& type,
                                      const std::string& key) {
  if (type == "set") { return Sorted(Elements(ctx, {"SMEMBERS", key})); }
  if (type == "list") { return Elements(ctx, {"LRANGE", key, "0", "-1"}); }
  if (type == "string") { return {Ask(ctx, {"GET", key})}; }
  std::vector<std::string> pairs;
  const std::vector<std::string> flat = Elements(ctx, {"HGETALL", key});
  for (std::size_t i = 0; i + 1 < flat.size(); i += 2) {
    pairs.push_back(flat[i] + " = " + flat[i + 1]);
  }
  return Sorted(pairs);
}

}  // namespace

redisContext* ConnectToStore() {
  std::ifstream file(kPasswordFile);
  const std::string password{std::istreambuf_iterator<char>(file),
                             std::istreambuf_iterator<char>()};
  redisContext* ctx = redisConnect("127.0.0.1", kRedisPort);
  freeReplyObject(Send(ctx, {"AUTH", password}));
  return ctx;
}

std::string Ask(redisContext* ctx, const std::vector<std::string>& words) {
  redisReply* reply = Send(ctx, words);
  std::string text = AsText(reply);
  freeReplyObject(reply);
  return text;
}

std::string Dump(redisContext* ctx) {
  std::string text;
  for (const std::string& key : Sorted(Elements(ctx, {"KEYS", "*"}))) {
    const std::string type = Ask(ctx, {"TYPE", key});
    text += type + " " + key + "\n";
    for (const std::string& line : ContentLines(ctx, type, key)) { text += "  " + line + "\n"; }
  }
  return text;
}

Pointers::Pointers(std::initializer_list<const char*> texts) : texts_(texts.begin(), texts.end()) {
  for (std::string& text : texts_) { pointers_.push_back(text.data()); }
}

void StoreTest::SetUp() {
  ctx_ = ConnectToStore();
  own_ = ConnectToStore();
  ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
}

void StoreTest::TearDown() {
  redisFree(ctx_);
  redisFree(own_);
}

}  // namespace zephlane::test
