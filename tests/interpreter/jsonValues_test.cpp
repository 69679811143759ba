// SPDX-License-Identifier: MIT
//
// JSON values as the texts that the store holds.
#include <cstring>
#include <memory>
#include <string>

#include <gtest/gtest.h>
#include <jansson.h>

#include "support/output.h"
#include "support/owners.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::CString;
using zephlane::Json;
using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::StoreTest;

std::string Report(const std::string& text) {
  return InterpreterReport("zephlaneSchemaInterpreter.cpp", text);
}

Json Value(const std::string& text) {
  return Json(json_loads(text.c_str(), JSON_DECODE_ANY, nullptr));
}

constexpr const char* kSimple[] = {"\"text\"", "\"\"", "0", "-7", "true", "false"};
constexpr const char* kNotSimple[] = {"1.0", "1e3", "null", "{}", "[]", "[1]"};

TEST(SimpleTypes, AreStringsIntegersAndBooleans) {
  for (const char* text : kSimple) { EXPECT_EQ(isJsonSimpleType(Value(text).get()), 1) << text; }
  for (const char* text : kNotSimple) { EXPECT_EQ(isJsonSimpleType(Value(text).get()), 0) << text; }
  EXPECT_EQ(isJsonSimpleType(nullptr), 0);
}

TEST(SimpleTypes, HaveATextOfTheirOwn) {
  const struct {
    const char* value;
    const char* text;
  } cases[] = {{"\"two words\"", "two words"},
               {"\"\"", ""},
               {"0", "0"},
               {"-7", "-7"},
               {"2147483647", "2147483647"},
               {"-2147483648", "-2147483648"},
               {"true", "true"},
               {"false", "false"}};
  for (const auto& item : cases) {
    const CString text(getJsonSimpleTypeStr(Value(item.value).get()));
    EXPECT_STREQ(text.get(), item.text);
  }
}

// Integers are printed from their low 32 bits.
TEST(SimpleTypes, IntegersWrapAt32Bits) {
  EXPECT_STREQ(CString(getJsonSimpleTypeStr(Value("4294967297").get())).get(), "1");
  EXPECT_STREQ(CString(getJsonSimpleTypeStr(Value("2147483648").get())).get(), "-2147483648");
  EXPECT_STREQ(CString(getJsonSimpleTypeStr(Value("4294967296").get())).get(), "0");
}

TEST(SimpleTypes, TextMayBeOfAnyLength) {
  const std::string text(5000, 't');
  EXPECT_EQ(CString(getJsonSimpleTypeStr(Value("\"" + text + "\"").get())).get(), text);
}

TEST(SimpleTypes, OtherValuesHaveNoText) {
  for (const char* value : kNotSimple) {
    SCOPED_TRACE(value);
    const Json json = Value(value);
    const Output printed = Capture([&] { EXPECT_EQ(getJsonSimpleTypeStr(json.get()), nullptr); });
    EXPECT_EQ(Masked(printed.err), Report("Input is not JSON simple Type !!!!"));
  }
  const Output printed = Capture([] { EXPECT_EQ(getJsonSimpleTypeStr(nullptr), nullptr); });
  EXPECT_EQ(Masked(printed.err), Report("Input is not JSON simple Type !!!!"));
}

// A buffer full of marks before the call, on the heap so that a sanitizer sees its end.
struct Buffer {
  explicit Buffer(std::size_t length) : bytes(std::make_unique<char[]>(length)), size(length) {
    std::memset(bytes.get(), '!', size);
  }
  // All of it, so that what is left behind the text shows.
  [[nodiscard]] std::string Whole() const {
    return {bytes.get(), size};
  }
  std::unique_ptr<char[]> bytes;
  std::size_t size;
};

TEST(IntegerTexts, BufferIsClearedAndTheLengthReturned) {
  const Buffer buffer(8);
  EXPECT_EQ(getJsonIntegerString(Value("-120").get(), buffer.bytes.get(), buffer.size), 4);
  EXPECT_EQ(buffer.Whole(), std::string("-120\0\0\0\0", 8));
}

TEST(IntegerTexts, WrapAt32Bits) {
  const Buffer buffer(12);
  EXPECT_EQ(getJsonIntegerString(Value("4294967297").get(), buffer.bytes.get(), buffer.size), 1);
  EXPECT_STREQ(buffer.bytes.get(), "1");
}

TEST(IntegerTexts, NeverLeaveTheBuffer) {
  const Buffer buffer(4);
  (void)getJsonIntegerString(Value("123456").get(), buffer.bytes.get(), buffer.size);
  EXPECT_STREQ(buffer.bytes.get(), "123");
}

TEST(BooleanTexts, AreTheirNames) {
  const Buffer buffer(8);
  EXPECT_EQ(getJsonBooleanString(Value("true").get(), buffer.bytes.get(), buffer.size), 4);
  EXPECT_EQ(buffer.Whole(), std::string("true\0\0\0\0", 8));
  EXPECT_EQ(getJsonBooleanString(Value("false").get(), buffer.bytes.get(), buffer.size), 5);
  EXPECT_EQ(buffer.Whole(), std::string("false\0\0\0", 8));
}

TEST(BooleanTexts, OtherValuesWriteNothing) {
  for (const char* value : {"\"true\"", "1", "0", "null", "{}", "[]", "1.5"}) {
    SCOPED_TRACE(value);
    const Buffer buffer(8);
    EXPECT_EQ(getJsonBooleanString(Value(value).get(), buffer.bytes.get(), buffer.size), 0);
    EXPECT_EQ(buffer.Whole(), std::string(8, '\0'));
  }
}

TEST(TypeNames, AreJoinedWithoutSeparator) {
  const CString joined(parseMultipleTypeField(Value(R"(["string", 5, "null", null])").get()));
  EXPECT_STREQ(joined.get(), "stringnull");
}

TEST(TypeNames, OfAnEmptyListAreAnEmptyText) {
  EXPECT_STREQ(CString(parseMultipleTypeField(Value("[]").get())).get(), "");
  EXPECT_STREQ(CString(parseMultipleTypeField(Value("[1, {}, []]").get())).get(), "");
}

TEST(TypeNames, OfLength1023AreJoinedAnd1024Refused) {
  const std::string most(1000, 'a');
  const std::string rest(23, 'b');
  const CString joined(parseMultipleTypeField(Value("[\"" + most + "\", \"" + rest + "\"]").get()));
  EXPECT_EQ(joined.get(), most + rest);

  const Json longer = Value("[\"" + most + "\", \"" + rest + "b\"]");
  const Output printed = Capture([&] { EXPECT_EQ(parseMultipleTypeField(longer.get()), nullptr); });
  EXPECT_EQ(Masked(printed.err), Report("type field: " + rest + "b") +
                                     Report("String is too long to store in Redis ..."));
}

class StoredTypeNames : public StoreTest {
 protected:
  // Adds the list to hash `key` and returns what is printed.
  std::string Add(const std::string& list, const char* key, int expected) {
    const Json array = Value(list);
    const Output printed =
        Capture([&] { EXPECT_EQ(parseMultipleTypeFieldAdd(ctx(), array.get(), key), expected); });
    return Masked(printed.err);
  }
};

TEST_F(StoredTypeNames, AreTheTypeOfTheHash) {
  EXPECT_EQ(Add(R"(["string", "null"])", "key", 0), "");
  EXPECT_EQ(Dump(), "hash key\n  type = stringnull\n");
}

TEST_F(StoredTypeNames, ReportWhatCannotBeJoined) {
  const std::string name(1024, 'n');
  EXPECT_EQ(Add("[\"" + name + "\"]", "key", 1),
            Report("type field: " + name) + Report("String is too long to store in Redis ..."));
  EXPECT_EQ(Dump(), "");
}

TEST_F(StoredTypeNames, ReportAFailedPair) {
  EXPECT_EQ(Add(R"(["string"])", nullptr, 1),
            InterpreterReport("hashTreeOperation.cpp", "NULL pointer") +
                Report("Filed name: <type> insert pair into hash failed!!"));
}

}  // namespace
