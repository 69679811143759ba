// SPDX-License-Identifier: MIT
#include "faults/replies.h"

namespace zephlane::test {

namespace {

std::string Line(char type, const std::string& text) {
  return type + text + "\r\n";
}

std::string Bulk(const std::string& text) {
  return Line('$', std::to_string(text.size())) + text + "\r\n";
}

std::string BulkOf(std::size_t size) {
  return Bulk(std::string(size, 'x'));
}

std::string Array(std::initializer_list<std::string> elements) {
  std::string raw = Line('*', std::to_string(elements.size()));
  for (const std::string& element : elements) { raw += element; }
  return raw;
}

std::string Serialised(const redisReply& reply) {
  switch (reply.type) {
    case REDIS_REPLY_INTEGER:
      return Line(':', std::to_string(reply.integer));
    case REDIS_REPLY_NIL:
      return "$-1\r\n";
    case REDIS_REPLY_STATUS:
      return Line('+', std::string(reply.str, static_cast<std::size_t>(reply.len)));
    case REDIS_REPLY_ERROR:
      return Line('-', std::string(reply.str, static_cast<std::size_t>(reply.len)));
    case REDIS_REPLY_ARRAY: {
      std::string raw = Line('*', std::to_string(reply.elements));
      for (std::size_t i = 0; i < reply.elements; ++i) { raw += Serialised(*reply.element[i]); }
      return raw;
    }
    default:
      return Bulk(std::string(reply.str, static_cast<std::size_t>(reply.len)));
  }
}

using Text = const std::string&;

constexpr BadReply kBadReplies[] = {
    {"closed before the reply", [](Text) { return std::string(); }, true},
    {"closed within the reply", [](Text right) { return right.substr(0, right.size() / 2); }, true},
    {"closed after the reply", [](Text right) { return right; }, true},
    {"error", [](Text) { return Line('-', "WRONGTYPE Operation against a key"); }},
    {"nil", [](Text) { return Line('$', "-1"); }},
    {"nil array", [](Text) { return Line('*', "-1"); }},
    {"status", [](Text) { return Line('+', "OK"); }},
    {"integer 0", [](Text) { return Line(':', "0"); }},
    {"integer -1", [](Text) { return Line(':', "-1"); }},
    {"integer above 32 bits", [](Text) { return Line(':', "5000000000"); }},
    {"integer of 63 bits", [](Text) { return Line(':', "9223372036854775807"); }},
    {"empty bulk", [](Text) { return Bulk(""); }},
    {"bulk of 1 byte", [](Text) { return BulkOf(1); }},
    {"bulk of 1023 bytes", [](Text) { return BulkOf(1023); }},
    {"bulk of 1024 bytes", [](Text) { return BulkOf(1024); }},
    {"bulk of 1 MiB", [](Text) { return BulkOf(std::size_t{1} << 20); }},
    {"bulk with a zero byte", [](Text) { return Bulk(std::string("ab\0cd\0", 6)); }},
    {"empty array", [](Text) { return Array({}); }},
    {"array of odd length",
     [](Text) {
       return Array({Bulk("a"), Bulk("b"), Bulk("c")});
     }},
    {"array of long texts",
     [](Text) {
       return Array({BulkOf(1023), BulkOf(1024)});
     }},
    {"array of a huge text",
     [](Text) {
       return Array({Bulk("a"), BulkOf(std::size_t{1} << 20)});
     }},
    {"array with nil",
     [](Text) {
       return Array({Line('$', "-1"), Bulk("a")});
     }},
    {"array with nested arrays",
     [](Text) {
       return Array({Array({Bulk("a"), Bulk("b")}), Array({})});
     }},
    {"array of integers",
     [](Text) {
       return Array({Line(':', "1"), Line(':', "-1")});
     }},
    {"what no protocol says", [](Text) { return Line('?', "what"); }, true},
};

}  // namespace

ServedConnection::Handler Recorder(redisContext* store, std::vector<Exchange>* exchanges) {
  return [store, exchanges](const ServedConnection::Command& command) {
    (void)redisAppendFormattedCommand(store, command.raw.data(), command.raw.size());
    void* raw = nullptr;
    (void)redisGetReply(store, &raw);
    auto* const reply = static_cast<redisReply*>(raw);
    exchanges->push_back({std::string(command.word), Serialised(*reply)});
    freeReplyObject(reply);
    return ServedConnection::Answer{exchanges->back().raw};
  };
}

std::span<const BadReply> BadReplies() {
  return kBadReplies;
}

std::string_view Replay::Right(std::size_t index, std::string_view word) const {
  if (index < exchanges_.size() && exchanges_[index].word == word) { return exchanges_[index].raw; }
  for (const Exchange& exchange : exchanges_) {
    if (exchange.word == word) { return exchange.raw; }
  }
  return "+OK\r\n";
}

ServedConnection::Answer Replay::operator()(const ServedConnection::Command& command) {
  if (command.word == kSyncWord) { return {kSyncReply}; }
  const std::size_t index = next_++;
  if (index == bad_index_) { return {bad_raw_, closes_}; }
  // Wrong answers may make a call longer, but not without end.
  was_cut_off_ = index > 4 * exchanges_.size() + 200;
  return {Right(index, command.word), was_cut_off_};
}

}  // namespace zephlane::test
