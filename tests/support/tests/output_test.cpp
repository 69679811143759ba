// SPDX-License-Identifier: MIT
#include "support/output.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::Masked;
using zephlane::test::Output;

TEST(CapturedOutput, HoldsBothStreamsApart) {
  const Output printed = Capture([] {
    (void)std::printf("out %d\n", 1);
    (void)std::fputs("err\n", stderr);
  });
  EXPECT_EQ(printed.out, "out 1\n");
  EXPECT_EQ(printed.err, "err\n");
}

TEST(CapturedOutput, HoldsWhatGoesPastTheStreamsAndWhatProgramsPrint) {
  const Output printed = Capture([] {
    (void)!write(STDOUT_FILENO, "raw ", 4);
    (void)!std::system("echo program; echo warning >&2");
  });
  EXPECT_EQ(printed.out, "raw program\n");
  EXPECT_EQ(printed.err, "warning\n");
}

TEST(CapturedOutput, EndsWithTheBody) {
  const Output outer = Capture([] {
    (void)std::printf("before ");
    const Output inner = Capture([] { (void)std::printf("within"); });
    (void)std::printf("after");
    EXPECT_EQ(inner.out, "within");
  });
  EXPECT_EQ(outer.out, "before after");
}

TEST(MaskedOutput, HidesLinesPrintedInTheirWidth) {
  for (const char* line : {"  7", " 42", "894", "1234"}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(Masked("[ERROR]      zephlaneAPI.cpp:" + std::string(line) + ": text\n"),
              ApiReport("text"));
  }
  for (const char* line : {"   7", "  42", " 894", "1234", "12345"}) {
    SCOPED_TRACE(line);
    EXPECT_EQ(Masked("[ERROR] module.cpp:" + std::string(line) + ": text\n"),
              InterpreterReport("module.cpp", "text"));
  }
}

TEST(MaskedOutput, LeavesReportsOfAnotherFormAsTheyAre) {
  for (const char* report :
       {"[ERROR]      zephlaneAPI.cpp:7: text\n", "[ERROR]      zephlaneAPI.cpp:   7: text\n",
        "[ERROR] zephlaneAPI.cpp:  7: text\n", "[ERROR] module.cpp:  7: text\n",
        "[ERROR] module.cpp:   7 text\n", "text [ERROR] module.cpp:   7: text\n"}) {
    EXPECT_EQ(Masked(report), report);
  }
}

TEST(MaskedOutput, HidesTheLineOfEachReport) {
  EXPECT_EQ(
      Masked("[ERROR]      zephlaneAPI.cpp:  1: one\n[ERROR]      zephlaneAPI.cpp: 22: two\n"),
      ApiReport("one") + ApiReport("two"));
}

TEST(InterpreterReports, MayHaveANumberOfTheirOwn) {
  EXPECT_EQ(InterpreterReport("module.cpp", 7, "text"), "[ERROR] module.cpp:   7: text\n");
  EXPECT_EQ(InterpreterReport("module.cpp", 894, "text"), "[ERROR] module.cpp: 894: text\n");
}

}  // namespace
