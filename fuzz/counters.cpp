// SPDX-License-Identifier: MIT
//
// The stored values of the two counters, whatever somebody has written there. What is drawn is
// always well formed, and one more than a well-formed value.
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <string_view>

#include "fuzz/fuzzInput.h"
#include "fuzz/playedReplies.h"

#include <zephlaneAPI/events.h>
#include <zephlaneAPI/identity.h>

namespace {

using zephlane::fuzz::PlayedReplies;
using zephlane::fuzz::Require;

constexpr std::string_view kMaximum = "7fffffff-ffff-ffff-ffff-ffffffffffff";
constexpr char kNoSetting[] = "$-1\r\n";

bool IsDigit(char character) {
  return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f');
}

bool IsUuid(std::string_view text) {
  if (text.size() != 36) { return false; }
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool is_hyphen = i == 8 || i == 13 || i == 18 || i == 23;
    if (is_hyphen ? text[i] != '-' : !IsDigit(text[i])) { return false; }
  }
  return true;
}

bool IsEventId(std::string_view text) {
  return text.size() == 8 && std::all_of(text.begin(), text.end(), IsDigit);
}

// One more, all hexadecimal digits taken as one number; past the last one it begins with zeros.
std::string OneMore(std::string_view text) {
  std::string next(text);
  for (std::size_t i = next.size(); i > 0; --i) {
    char& digit = next[i - 1];
    if (digit == '-') { continue; }
    if (digit != 'f') {
      digit = digit == '9' ? 'a' : static_cast<char>(digit + 1);
      return next;
    }
    digit = '0';
  }
  return next;
}

std::string Bulk(std::string_view text) {
  return "$" + std::to_string(text.size()) + "\r\n" + std::string(text) + "\r\n";
}

// The first draw of a process asks for the maximum too; here it never is the fuzzed one.
bool KnowMaximum() {
  PlayedReplies server(std::string(kNoSetting) + kNoSetting + "+OK\r\n");
  char uuid[ZEPHLANE_ID_SIZE] = "";
  return zephlaneGenerateUUID(server.ctx(), uuid) == 0;
}

void DrawUuid(std::string_view stored) {
  PlayedReplies server(Bulk(stored) + "+OK\r\n");
  char uuid[ZEPHLANE_ID_SIZE] = "";
  const int result = zephlaneGenerateUUID(server.ctx(), uuid);
  Require(IsUuid({uuid, 36}) && uuid[36] == '\0', "what is drawn is a UUID");
  const bool is_maximum = stored.substr(0, stored.find('\0')) == kMaximum;
  Require((result == 1) == is_maximum, "only the maximum ends the drawing");
  if (result == 0 && IsUuid(stored)) { Require(uuid == OneMore(stored), "it is the next one"); }
}

void DrawEventId(std::string_view stored) {
  PlayedReplies server(Bulk(stored) + "+OK\r\n");
  char id[9] = "";
  Require(generateEventID(server.ctx(), id) == 0, "an event ID is drawn");
  Require(IsEventId({id, 8}) && id[8] == '\0', "what is drawn is an event ID");
  if (!IsEventId(stored)) { return; }
  Require(id == (stored == "ffffffff" ? "00000001" : OneMore(stored)), "it is the next one");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool known = KnowMaximum();
  Require(known, "a UUID is drawn");
  const std::string_view stored = zephlane::fuzz::TextOf(data, size);
  DrawUuid(stored);
  DrawEventId(stored);
  return 0;
}
