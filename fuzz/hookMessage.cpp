// SPDX-License-Identifier: MIT
//
// Messages as they come out of a hook queue, of any length a queue may have, delivered to handlers
// that look at every character they are given. The first byte chooses the family, and how much
// longer than a message the queue's messages are.
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <string>

#include "api/hookQueues.h"
#include "fuzz/fuzzInput.h"

#include <zephlaneAPI/hooks.h>

namespace {

using zephlane::fuzz::Require;

constexpr char kFirst[] = "10000000-0000-0000-0000-00000000000a";
constexpr char kSecond[] = "10000000-0000-0000-0000-00000000000b";

std::size_t read_characters = 0;

int OnPlain(char* id, char* first, char* second) {
  read_characters += std::strlen(id) + std::strlen(first) + std::strlen(second);
  return 0;
}

int OnOem(char* id, char* first, char* second, char* third) {
  read_characters += std::strlen(third);
  return OnPlain(id, first, second);
}

bool RegisterHandlers() {
  for (const char* uuid : {kFirst, kSecond, ""}) {
    (void)zephlaneUpdateFuncInfo(uuid, OnPlain, zephlane::kPlain);
    (void)zephlaneUpdateFuncInfo(
        uuid, reinterpret_cast<HookFunction>(reinterpret_cast<void (*)()>(OnOem)), zephlane::kOem);
  }
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const bool registered = RegisterHandlers();
  if (!registered || size == 0) { return 0; }
  const bool is_oem = (data[0] & 1) != 0;
  const std::size_t longer = data[0] >> 1;
  const std::size_t room = (is_oem ? sizeof(OemHookMessage) : sizeof(HookMessage)) + longer;
  // As the receiver has it: zeros, the message, and one zero behind the longest one.
  const auto bytes = std::make_unique<char[]>(room + 1);
  std::memcpy(bytes.get(), data + 1, std::min(size - 1, room));
  (is_oem ? zephlane::DeliverOem : zephlane::DeliverPlain)(bytes.get());

  const std::string text(zephlane::fuzz::TextOf(data + 1, size - 1));
  const int id = isInvalidMsgID(text.c_str());
  Require(id == 1 || std::strlen(text.c_str()) <= 5, "a message ID has at most five characters");
  return 0;
}
