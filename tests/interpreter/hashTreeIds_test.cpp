// SPDX-License-Identifier: MIT
//
// The IDs of the hash tree: those it generates, and those a schema may give itself.
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "interpreter/hashTreeFixture.h"
#include "support/allocationFault.h"

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::ErrorsOf;
using zephlane::test::kHash0;
using zephlane::test::kSet0;
using zephlane::test::kSet1;
using zephlane::test::RegexFault;
using zephlane::test::TextOf;
using zephlane::test::TreeReports;

TEST(GeneratedIds, BeginAtZeroForEachKind) {
  EXPECT_EQ(TextOf(generateRedisDataObjectID(1)), kHash0);
  EXPECT_EQ(TextOf(generateRedisDataObjectID(2)), kSet0);
}

TEST(GeneratedIds, DoNotAdvanceTheCounter) {
  EXPECT_EQ(TextOf(generateRedisDataObjectID(1)), TextOf(generateRedisDataObjectID(1)));
}

TEST(GeneratedIds, FollowTheirOwnCounterInLowerCaseHex) {
  for (int i = 0; i < 0xabc; ++i) { increaseRedisHashIDCounter(); }
  increaseRedisSetIDCounter();
  EXPECT_EQ(TextOf(generateRedisDataObjectID(1)), "00000000-0000-0000-0001-000000000abc");
  EXPECT_EQ(TextOf(generateRedisDataObjectID(2)), kSet1);
}

TEST(GeneratedIds, OfAnUnknownKindAreEmptyTexts) {
  for (const int kind : {0, 3, 4, -1}) { EXPECT_EQ(TextOf(generateRedisDataObjectID(kind)), ""); }
}

TEST(GeneratedIds, AreMissingOnlyWhenMemoryIsOut) {
  const std::string errors = ErrorsOf([] {
    AllocationFault fault(1);
    char* const id = generateRedisDataObjectID(1);
    fault.Disarm();
    EXPECT_EQ(id, nullptr);
  });
  EXPECT_EQ(errors, "");
}

// Lower-casing into a buffer of `size` bytes.
struct Lowered {
  int result = -1;
  std::string text;
  std::string errors;
};

Lowered Lower(const std::string& source, std::size_t size) {
  Lowered lowered;
  const auto out = std::make_unique<char[]>(size + 1);  // the last one must stay as it is
  out[size] = '!';
  lowered.errors = ErrorsOf([&] { lowered.result = toLowerUUID(source.c_str(), out.get(), size); });
  EXPECT_EQ(out[size], '!');
  lowered.text.assign(out.get(), strnlen(out.get(), size));
  return lowered;
}

constexpr char kUpper[] = "ABCDEF01-2345-6789-ABCD-EF0123456789";
constexpr char kLower[] = "abcdef01-2345-6789-abcd-ef0123456789";

TEST(LowerCaseIds, UuidIsLowerCased) {
  EXPECT_EQ(Lower(kUpper, 37).result, 0);
  EXPECT_EQ(Lower(kUpper, 37).text, kLower);
  EXPECT_EQ(Lower(kUpper, 1024).text, kLower);
}

TEST(LowerCaseIds, UuidDoesNotFitIn36Bytes) {
  const Lowered lowered = Lower(kUpper, 36);
  EXPECT_EQ(lowered.result, 1);
  EXPECT_EQ(lowered.text, "");
  EXPECT_EQ(lowered.errors, TreeReports({"Input length: 36, buffer size: 36"}));
}

// Length and hyphens make a UUID here, not its digits.
TEST(LowerCaseIds, AnyTextOf36CharactersWithFourHyphensIsLowerCased) {
  EXPECT_EQ(Lower("ZephlaneRootServices-A-B-C-D12345678", 37).text,
            "zephlanerootservices-a-b-c-d12345678");
}

TEST(LowerCaseIds, OtherTextsAreCopiedUnchanged) {
  for (const char* text :
       {"AbC", "", "ABCDEF01-2345-6789-ABCD-EF012345678", "A-B-C-D-E",
        "ABCDEF01-2345-6789-ABCD0EF0123456789", "ABCDEF01-2345-6789-ABCD-EF012345678-",
        "ABCDEF01-2345-6789-ABCD-EF01234567890"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(Lower(text, 40).result, 0);
    EXPECT_EQ(Lower(text, 40).text, text);
  }
}

TEST(LowerCaseIds, OtherTextMustBeShorterThanTheBuffer) {
  EXPECT_EQ(Lower("AbC", 4).text, "AbC");
  const Lowered lowered = Lower("AbC", 3);
  EXPECT_EQ(lowered.result, 1);
  EXPECT_EQ(lowered.text, "");
  EXPECT_EQ(lowered.errors, TreeReports({"Input length: 3, buffer size: 3"}));
  EXPECT_EQ(Lower("", 0).errors, TreeReports({"Input length: 0, buffer size: 0"}));
}

TEST(LowerCaseIds, NullArgumentsAreRefused) {
  char out[37] = "";
  const std::string errors = ErrorsOf([&] {
    EXPECT_EQ(toLowerUUID(nullptr, out, sizeof(out)), 1);
    EXPECT_EQ(toLowerUUID(kUpper, nullptr, 37), 1);
  });
  const std::string report = "toLowerUUID: Argument is NULL !!!";
  EXPECT_EQ(errors, TreeReports({report, report}));
}

TEST(GivenIds, MayBeAnyLowerCaseUuidOutsideTheReservedRanges) {
  for (const char* id :
       {"abcdef01-2345-6789-abcd-ef0123456789", "00000000-0000-0000-0002-000000000000",
        "00000000-0000-0001-0001-000000000000", "10000000-0000-0000-0001-000000000000"}) {
    SCOPED_TRACE(id);
    EXPECT_EQ(ErrorsOf([&] { EXPECT_EQ(isSchemaGivenUUIDValid(id), 1); }), "");
  }
}

TEST(GivenIds, MayBeTheFixedOnesOfTheReservedRange) {
  EXPECT_EQ(isSchemaGivenUUIDValid("00000000-0000-0000-0001-ffffffffffff"), 1);
  EXPECT_EQ(isSchemaGivenUUIDValid("00000000-0000-0000-0001-eeeeeeeeeeee"), 1);
}

TEST(GivenIds, MayBeginWithTheNameOfTheRootServiceSet) {
  EXPECT_EQ(isSchemaGivenUUIDValid("ZephlaneRootServices1234567890123456"), 1);
  EXPECT_EQ(isSchemaGivenUUIDValid("ZephlaneRootServices    !?&%$       "), 1);
}

TEST(GivenIds, MayLieInTheRangeOfTests) {
  EXPECT_EQ(isSchemaGivenUUIDValid("00000000-0000-0000-0000-fedc00000001"), 1);
  EXPECT_EQ(isSchemaGivenUUIDValid("00000000-0000-0000-0000-fedcffffffff"), 1);
}

TEST(GivenIds, InTheRangeOfTheInterpreterAreRefused) {
  for (const std::string id :
       {"00000000-0000-0000-0001-000000000005", "00000000-0000-0000-0001-100000000000",
        "00000000-0000-0000-0001-fffffffffffe", "00000000-0000-0000-0001-FFFFFFFFFFFF",
        "00000000-0000-0000-0001xxxxxxxxxxxxx"}) {
    SCOPED_TRACE(id);
    const std::string errors = ErrorsOf([&] { EXPECT_EQ(isSchemaGivenUUIDValid(id.c_str()), 0); });
    EXPECT_EQ(errors,
              TreeReports({"Given UUID is in the range where can only be used by interpreter!",
                           "UUID: " + id}));
  }
}

TEST(GivenIds, BesideTheRangeOfTestsAreRefused) {
  for (const std::string id :
       {"00000000-0000-0000-0000-000000000001", "00000000-0000-0000-0000-000000000000",
        "00000000-0000-0000-0000-fedb00000001", "00000000-0000-0000-0000-FEDC00000001",
        "00000000-0000-0000-0000xfedc00000001"}) {
    SCOPED_TRACE(id);
    const std::string errors = ErrorsOf([&] { EXPECT_EQ(isSchemaGivenUUIDValid(id.c_str()), 0); });
    EXPECT_EQ(
        errors,
        TreeReports({"Given UUID is in the range where can only be used by interpreter unittest!",
                     "UUID: " + id}));
  }
}

TEST(GivenIds, OfAnotherShapeAreRefused) {
  for (const std::string id :
       {"ABCDEF01-2345-6789-ABCD-EF0123456789", "abcdef01-2345-6789-abcd-ef012345678g",
        "abcdef012345-6789-abcd-ef0123456789-", "00000000-0000-0000-0000-fedc0000000g"}) {
    SCOPED_TRACE(id);
    const std::string errors = ErrorsOf([&] { EXPECT_EQ(isSchemaGivenUUIDValid(id.c_str()), 0); });
    EXPECT_EQ(errors, TreeReports({"Invalid UUID!\n\nInvalid: " + id +
                                   "\nValid pattern: [0-9a-f]{8}-[0-9a-f]{4}-[0-9a-f]{4}-"
                                   "[0-9a-f]{4}-[0-9a-f]{12}\n"}));
  }
}

TEST(GivenIds, OfAnotherLengthAreRefused) {
  for (const char* id :
       {"", "abcdef01-2345-6789-abcd-ef012345678", "abcdef01-2345-6789-abcd-ef01234567890",
        "ZephlaneRootServices", "ZephlaneRootServices12345678901234567"}) {
    SCOPED_TRACE(id);
    const std::string errors = ErrorsOf([&] { EXPECT_EQ(isSchemaGivenUUIDValid(id), 0); });
    EXPECT_EQ(errors, TreeReports({"Invalid UUID length."}));
  }
}

TEST(GivenIds, NullIsRefused) {
  const std::string errors = ErrorsOf([] { EXPECT_EQ(isSchemaGivenUUIDValid(nullptr), 0); });
  EXPECT_EQ(errors, TreeReports({"isSchemaGivenUUIDValid: Argument is NULL !!!"}));
}

TEST(GivenIds, AreRefusedWhenThePatternDoesNotCompile) {
  const RegexFault fault;
  const std::string errors = ErrorsOf(
      [] { EXPECT_EQ(isSchemaGivenUUIDValid("abcdef01-2345-6789-abcd-ef0123456789"), 0); });
  EXPECT_EQ(errors, TreeReports({"regcomp() fail\n"}));
}

}  // namespace
