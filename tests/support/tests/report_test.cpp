// SPDX-License-Identifier: MIT
#include "support/report.h"

#include <algorithm>
#include <set>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "support/output.h"

namespace {

using zephlane::ApiError;
using zephlane::InterpreterError;
using zephlane::test::Capture;
using zephlane::test::Output;

TEST(Report, ApiPrefixHasNameInTwentyColumnsAndLineInThree) {
  const std::pair<int, const char*> cases[] = {
      {7, "  7"}, {42, " 42"}, {894, "894"}, {1234, "1234"}};
  for (const auto& [line, shown] : cases) {
    const Output printed = Capture([line = line] { ApiError{line}("text\n"); });
    EXPECT_EQ(printed.out, std::string("[ERROR]      zephlaneAPI.cpp:") + shown + ": text\n");
    EXPECT_EQ(printed.err, "");
  }
}

TEST(Report, InterpreterPrefixHasPlainNameAndLineInFourColumns) {
  const std::pair<int, const char*> cases[] = {
      {7, "   7"}, {42, "  42"}, {894, " 894"}, {1234, "1234"}, {12345, "12345"}};
  for (const auto& [line, shown] : cases) {
    const Output printed = Capture([line = line] {
      InterpreterError{"schemaObjectParser.cpp", line}("text\n");
    });
    EXPECT_EQ(printed.err, std::string("[ERROR] schemaObjectParser.cpp:") + shown + ": text\n");
    EXPECT_EQ(printed.out, "");
  }
}

TEST(Report, LineIsThatOfTheStatement) {
  int line = 0;
  const Output printed = Capture([&line] {
    line = __LINE__ + 1;
    ApiError{}("text\n");
    InterpreterError{"module.cpp"}("text\n");
  });
  char expected[64] = "";
  (void)std::snprintf(expected, sizeof(expected), "[ERROR]      zephlaneAPI.cpp:%3d: text\n", line);
  EXPECT_EQ(printed.out, expected);
  (void)std::snprintf(expected, sizeof(expected), "[ERROR] module.cpp:%4d: text\n", line + 1);
  EXPECT_EQ(printed.err, expected);
}

TEST(Report, ArgumentsAreFormattedAndNewlinesAreTheCallersOwn) {
  const Output printed = Capture([] {
    ApiError{1}("%s is %d%%\n\n", "key", 50);
    ApiError{2}("no newline");
  });
  EXPECT_EQ(printed.out,
            "[ERROR]      zephlaneAPI.cpp:  1: key is 50%\n\n"
            "[ERROR]      zephlaneAPI.cpp:  2: no newline");
}

TEST(Report, TextOfAnyLengthIsPrintedWhole) {
  const std::string text(100000, 't');
  const Output printed = Capture([&text] { ApiError{1}("%s\n", text.c_str()); });
  EXPECT_EQ(printed.out, "[ERROR]      zephlaneAPI.cpp:  1: " + text + "\n");
}

constexpr int kReports = 2000;

void ReportMany(const char* text) {
  for (int i = 0; i < kReports; ++i) {
    ApiError{1}("%s\n", text);
    InterpreterError{"module.cpp", 1}("%s\n", text);
  }
}

// Each different line with how often it occurs.
std::multiset<std::string> Lines(const std::string& text) {
  std::multiset<std::string> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    lines.insert(text.substr(begin, end - begin));
    begin = end + 1;
  }
  return lines;
}

TEST(Report, ReportsOfTwoThreadsDoNotMix) {
  const Output printed = Capture([] {
    std::thread one(ReportMany, "one");
    std::thread two(ReportMany, "two");
    one.join();
    two.join();
  });
  for (const auto& [text, prefix] : {std::pair(printed.out, "[ERROR]      zephlaneAPI.cpp:  1: "),
                                     std::pair(printed.err, "[ERROR] module.cpp:   1: ")}) {
    const std::multiset<std::string> lines = Lines(text);
    EXPECT_EQ(lines.size(), 2U * kReports);
    EXPECT_EQ(lines.count(prefix + std::string("one")), std::size_t{kReports});
    EXPECT_EQ(lines.count(prefix + std::string("two")), std::size_t{kReports});
  }
}

}  // namespace
