// SPDX-License-Identifier: MIT
#include "support/text.h"

#include <array>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using zephlane::BoundedText;
using zephlane::Contains;
using zephlane::ContainsUuid;
using zephlane::CopyCounted;
using zephlane::CopyCut;
using zephlane::CopyTerminated;
using zephlane::CopyWhole;
using zephlane::Tokenizer;

// Eight bytes that were something else before, and what they hold after a copy, zeros as dots.
class TextBuffer {
 public:
  TextBuffer() {
    bytes_.fill('#');
  }
  [[nodiscard]] std::span<char> Front(std::size_t size) {
    return std::span(bytes_).first(size);
  }
  [[nodiscard]] std::string Shown() const {
    std::string shown(bytes_.data(), bytes_.size());
    for (char& character : shown) { character = character == '\0' ? '.' : character; }
    return shown;
  }

 private:
  std::array<char, 8> bytes_;
};

TEST(CopyCutText, ShorterTextIsTerminatedAndTheRestLeftAlone) {
  TextBuffer buffer;
  CopyCut(buffer.Front(6), "abc");
  EXPECT_EQ(buffer.Shown(), "abc.####");
}

TEST(CopyCutText, LongerTextIsCutToLeaveRoomForTheTerminator) {
  for (const char* text : {"abcde", "abcdef", "abcdefghijkl"}) {
    SCOPED_TRACE(text);
    TextBuffer buffer;
    CopyCut(buffer.Front(6), text);
    EXPECT_EQ(buffer.Shown(), "abcde.##");
  }
}

TEST(CopyCutText, EmptyTextIsATerminatorOnly) {
  TextBuffer buffer;
  CopyCut(buffer.Front(6), std::string_view());
  EXPECT_EQ(buffer.Shown(), ".#######");
}

TEST(CopyCutText, BufferWithoutRoomIsLeftAlone) {
  TextBuffer buffer;
  CopyCut(buffer.Front(0), "abc");
  EXPECT_EQ(buffer.Shown(), "########");
  CopyCut(buffer.Front(1), "abc");
  EXPECT_EQ(buffer.Shown(), ".#######");
}

TEST(CopyCountedText, CopiesTheCharactersAndNoTerminator) {
  TextBuffer buffer;
  CopyCounted(buffer.Front(8).data(), "abc");
  EXPECT_EQ(buffer.Shown(), "abc#####");
  CopyCounted(buffer.Front(8).data(), std::string_view());
  EXPECT_EQ(buffer.Shown(), "abc#####");
}

TEST(CopyTerminatedText, CopiesAndTouchesNothingBehindTheTerminator) {
  TextBuffer buffer;
  EXPECT_TRUE(CopyTerminated(buffer.Front(6), "abc"));
  EXPECT_EQ(buffer.Shown(), "abc.####");
}

TEST(CopyTerminatedText, TooLongTextIsRefusedWithTheBufferUntouched) {
  TextBuffer buffer;
  EXPECT_FALSE(CopyTerminated(buffer.Front(6), "abcdef"));
  EXPECT_FALSE(CopyTerminated(buffer.Front(0), ""));
  EXPECT_EQ(buffer.Shown(), "########");
  EXPECT_TRUE(CopyTerminated(buffer.Front(6), "abcde"));
  EXPECT_EQ(buffer.Shown(), "abcde.##");
}

TEST(CopyWholeText, CopiesAndZeroFillsTheRest) {
  TextBuffer buffer;
  EXPECT_TRUE(CopyWhole(buffer.Front(6), "abc"));
  EXPECT_EQ(buffer.Shown(), "abc...##");
}

TEST(CopyWholeText, LongestTextLeavesRoomForTheTerminator) {
  TextBuffer buffer;
  EXPECT_TRUE(CopyWhole(buffer.Front(6), "abcde"));
  EXPECT_EQ(buffer.Shown(), "abcde.##");
}

TEST(CopyWholeText, TooLongTextIsRefusedWithTheBufferUntouched) {
  TextBuffer buffer;
  EXPECT_FALSE(CopyWhole(buffer.Front(6), "abcdef"));
  EXPECT_FALSE(CopyWhole(buffer.Front(0), ""));
  EXPECT_EQ(buffer.Shown(), "########");
}

TEST(BoundedTextOfABuffer, EndsAtTheTerminatorOrAtTheEnd) {
  const char text[8] = {'a', 'b', 'c', '\0', 'd', 'e', 'f', 'g'};
  EXPECT_EQ(BoundedText(text), "abc");
  EXPECT_EQ(BoundedText(std::span(text).first(3)), "abc");
  EXPECT_EQ(BoundedText(std::span(text).subspan(4)), "defg");
  EXPECT_EQ(BoundedText(std::span(text).first(0)), "");
}

TEST(ContainsText, FindsAPartAnywhere) {
  EXPECT_TRUE(Contains("abcdef", "abc"));
  EXPECT_TRUE(Contains("abcdef", "cde"));
  EXPECT_TRUE(Contains("abcdef", ""));
  EXPECT_FALSE(Contains("abcdef", "fa"));
  EXPECT_FALSE(Contains("", "a"));
}

constexpr const char* kTextsWithUuid[] = {
    "1c9d2e3f-aaaa-bbbb-cccc-0123456789ab",
    "/objects/1c9d2e3f-aaaa-BBBB-cccc-0123456789ab/y",
    "XX1C9D2E3F-AAAA-BBBB-CCCC-0123456789ABCDEF",
    "line\n1c9d2e3f-aaaa-bbbb-cccc-0123456789ab",
    "12345678-1c9d2e3f-aaaa-bbbb-cccc-0123456789ab",
    "a-b-c-1c9d2e3f-aaaa-bbbb-cccc-0123456789ab-1c9d",
};

constexpr const char* kTextsWithoutUuid[] = {
    "",
    "-",
    "Fan 1",
    "1c9d2e3f-aaaa",
    "1c9d2e3f-aaaa-bbbb-cccc-0123456789a",
    "c9d2e3f-aaaa-bbbb-cccc-0123456789ab",
    "1c9d2e3g-aaaa-bbbb-cccc-0123456789ab",
    "1c9d2e3f-aaaa-bbbb-cccc_0123456789ab",
    "1c9d2e3f-aaaa-bbbb-cccc-0123456789a/",
    "1c9d2e3f-aaaaa-bbbb-cccc-0123456789ab",
    "1c9d2e3faaaabbbbcccc0123456789ab",
    "------------------------------------",
};

TEST(ContainsUuidText, FindsAUuidAnywhere) {
  for (const char* text : kTextsWithUuid) { EXPECT_TRUE(ContainsUuid(text)) << text; }
}

TEST(ContainsUuidText, TakesNothingElseForOne) {
  for (const char* text : kTextsWithoutUuid) { EXPECT_FALSE(ContainsUuid(text)) << text; }
}

TEST(ContainsUuidText, EndsWithTheTextWhereverThatIsCut) {
  const std::string uuid = "1c9d2e3f-aaaa-bbbb-cccc-0123456789ab";
  for (std::size_t length = 0; length < uuid.size(); ++length) {
    EXPECT_FALSE(ContainsUuid(std::string_view(uuid).substr(0, length))) << length;
  }
}

// strtok() is what callers of the published functions know, so it says what is right.

constexpr const char* kTexts[] = {"",
                                  "/",
                                  "///",
                                  "a",
                                  "/a",
                                  "a/",
                                  "//a//",
                                  "a/b",
                                  "a//b",
                                  "/one/two/three/4",
                                  "a/b#c/d",
                                  "#/definitions/Name",
                                  "http://host/schemas/v1/File.json#/definitions/Name",
                                  "no delimiters",
                                  ",;,;",
                                  "a,b;c"};

std::vector<std::string> TokensOfStrtok(std::string text,
                                        const std::vector<const char*>& delimiters) {
  std::vector<std::string> tokens;
  char* rest = nullptr;
  const char* token = strtok_r(text.data(), delimiters[0], &rest);
  for (std::size_t i = 1; token != nullptr; ++i) {
    tokens.emplace_back(token);
    token = strtok_r(nullptr, delimiters[i % delimiters.size()], &rest);
  }
  return tokens;
}

std::vector<std::string> TokensOfTokenizer(std::string_view text,
                                           const std::vector<const char*>& delimiters) {
  std::vector<std::string> tokens;
  Tokenizer tokenizer(text);
  std::string_view token = tokenizer.Next(delimiters[0]);
  for (std::size_t i = 1; !token.empty(); ++i) {
    tokens.emplace_back(token);
    token = tokenizer.Next(delimiters[i % delimiters.size()]);
  }
  return tokens;
}

TEST(TokenizerAgainstStrtok, SameTokensForOneSetOfDelimiters) {
  for (const char* delimiters : {"/", "#", "/#", ",;", " ", ""}) {
    for (const char* text : kTexts) {
      SCOPED_TRACE(std::string(text) + " by " + delimiters);
      EXPECT_EQ(TokensOfTokenizer(text, {delimiters}), TokensOfStrtok(text, {delimiters}));
    }
  }
}

TEST(TokenizerAgainstStrtok, SameTokensWhenEachCallNamesOtherDelimiters) {
  const std::vector<const char*> delimiters[] = {
      {"/", "#"}, {"#", "/"}, {":", "/", "#"}, {"/", ""}};
  for (const auto& sequence : delimiters) {
    for (const char* text : kTexts) {
      SCOPED_TRACE(text);
      EXPECT_EQ(TokensOfTokenizer(text, sequence), TokensOfStrtok(text, sequence));
    }
  }
}

TEST(TokenizerAtTheEnd, StaysAtTheEnd) {
  Tokenizer tokenizer("a/b");
  EXPECT_EQ(tokenizer.Next("/"), "a");
  EXPECT_EQ(tokenizer.Next("/"), "b");
  EXPECT_EQ(tokenizer.Next("/"), "");
  EXPECT_EQ(tokenizer.Next(""), "");
}

TEST(TokenizerOfBorrowedText, ReadsWithoutWriting) {
  const std::string text = "a/b/c";
  Tokenizer tokenizer(text);
  EXPECT_EQ(tokenizer.Next("/").data(), text.data());
  EXPECT_EQ(tokenizer.Next("/").data(), text.data() + 2);
  EXPECT_EQ(text, "a/b/c");
}

}  // namespace
