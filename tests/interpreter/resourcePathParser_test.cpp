// SPDX-License-Identifier: MIT
#include "interpreter/resourcePathParser.h"

#include <cstdio>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interpreter/schemaDirectory.h"
#include "support/output.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::kSchemaLocation;
using zephlane::test::Masked;
using zephlane::test::Output;

constexpr char kSource[] = "resourcePathParser.cpp";
const std::string kLocation = kSchemaLocation;

std::string Repeat(std::size_t count, char character) {
  return std::string(count, character);
}

// The reports `texts`, one line each.
std::string Reports(const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts) { lines += InterpreterReport(kSource, text); }
  return lines;
}

struct Split {
  int result = -1;
  ResourcePath parts{};
  std::string errors;
};

Split SplitOf(const std::string& input) {
  Split split;
  const Output printed =
      Capture([&] { split.result = parseResourcePath(input.c_str(), &split.parts); });
  EXPECT_EQ(printed.out, "");
  split.errors = Masked(printed.err);
  return split;
}

// Accepts one location, so that URLs below it can be split.
class ResourcePaths : public testing::Test {
 protected:
  void SetUp() override {
    std::snprintf(G_aSchemaUriInfoTable[0].uri, sizeof(G_aSchemaUriInfoTable[0].uri), "%s",
                  kSchemaLocation);
    G_nSchemaURICount = 1;
  }
};

struct Accepted {
  std::string input;
  std::string prefix;
  std::string schemaName;
  std::string propertyPath;
};

void PrintTo(const Accepted& accepted, std::ostream* out) {
  *out << accepted.input;
}

class AcceptedPaths : public ResourcePaths, public testing::WithParamInterface<Accepted> {};

TEST_P(AcceptedPaths, AreSplitIntoTheirParts) {
  const Accepted& expected = GetParam();
  const Split split = SplitOf(expected.input);
  EXPECT_EQ(split.result, 0);
  EXPECT_EQ(split.errors, "");
  EXPECT_EQ(split.parts.path, expected.input);
  EXPECT_EQ(split.parts.prefix, expected.prefix);
  EXPECT_EQ(split.parts.schemaName, expected.schemaName);
  EXPECT_EQ(split.parts.propertyPath, expected.propertyPath);
}

INSTANTIATE_TEST_SUITE_P(
    Files, AcceptedPaths,
    testing::Values(Accepted{"Resource.v1_0_0.json", "", "Resource.v1_0_0.json", ""},
                    Accepted{"Resource.JSON", "", "Resource.JSON", ""},
                    Accepted{"Resource.Json", "", "Resource.Json", ""},
                    Accepted{".json", "", ".json", ""},
                    // The extension may stand anywhere in the name.
                    Accepted{"Resource.json.old", "", "Resource.json.old", ""},
                    Accepted{"/tmp/FOSS_schema/Resource.json", "/tmp/FOSS_schema/", "Resource.json",
                             ""},
                    Accepted{kLocation + "Resource.json", kLocation, "Resource.json", ""},
                    Accepted{"Resource.json#", "", "Resource.json", ""},
                    Accepted{kLocation + "Resource.json#", kLocation, "Resource.json", ""},
                    // Only the last character is taken off.
                    Accepted{"Resource.json##", "", "Resource.json#", ""}));

INSTANTIATE_TEST_SUITE_P(
    SpecialNames, AcceptedPaths,
    testing::Values(Accepted{"schema", "", "schema", ""}, Accepted{"schema#", "", "schema", ""},
                    Accepted{"hyper-schema", "", "hyper-schema", ""},
                    Accepted{"hyper-schema#", "", "hyper-schema", ""},
                    Accepted{kLocation + "schema", kLocation, "schema", ""},
                    Accepted{kLocation + "hyper-schema#", kLocation, "hyper-schema", ""},
                    // A step of the pointer that is a special name makes the whole reference one.
                    Accepted{"schema#/links/schema", "", "schema", "#/links/schema"}));

INSTANTIATE_TEST_SUITE_P(
    Pointers, AcceptedPaths,
    testing::Values(Accepted{"#", "", "", "#"},
                    Accepted{"#/definitions/Id", "", "", "#/definitions/Id"},
                    Accepted{"#/", "", "", "#/"},
                    Accepted{"#/definitions/A.json", "", "", "#/definitions/A.json"},
                    Accepted{"Resource.json#/definitions/Id", "", "Resource.json",
                             "#/definitions/Id"},
                    Accepted{kLocation + "Resource.json#/definitions/Id", kLocation,
                             "Resource.json", "#/definitions/Id"},
                    // The file ends at the first '#', the property path begins at the last.
                    Accepted{"Resource.json#/a#/b#/c", "", "Resource.json", "#/c"},
                    Accepted{"Resource.json#/a#b", "", "Resource.json", "#b"},
                    // The extension is looked for in the whole input, so the name may be missing.
                    Accepted{"Resource#/definitions/A.json", "", "", "#/definitions/A.json"}));

struct Refused {
  std::string input;
  std::vector<std::string> reports;
};

void PrintTo(const Refused& refused, std::ostream* out) {
  *out << refused.input;
}

class RefusedPaths : public ResourcePaths, public testing::WithParamInterface<Refused> {};

TEST_P(RefusedPaths, AreReported) {
  const Refused& expected = GetParam();
  const Split split = SplitOf(expected.input);
  EXPECT_EQ(split.result, 1);
  EXPECT_EQ(split.errors, Reports(expected.reports));
}

Refused NotASchemaFile(const std::string& input) {
  return {input, {"Resource: " + input, "It sould be a .json/.JSON/.Json file!"}};
}

Refused WithoutSlash(const std::string& input) {
  return {input,
          {"Reference to specific property should add '/' right after '#' symbol !!!",
           "Reference path: " + input}};
}

Refused WithoutName(const std::string& input) {
  return {input, {"Extract path token error !!!", "extract schema name from [" + input + "] fail"}};
}

Refused InvalidPrefix(const std::string& input, const std::string& prefix) {
  return {input, {"Resource prefix is invalid [" + prefix + "]"}};
}

INSTANTIATE_TEST_SUITE_P(Names, RefusedPaths,
                         testing::Values(NotASchemaFile("Resource.txt"),
                                         NotASchemaFile("Resource.JsOn"), NotASchemaFile("Schema"),
                                         NotASchemaFile("schemas"), NotASchemaFile(""),
                                         NotASchemaFile("##"), WithoutName("/"),
                                         WithoutName("/tmp/Resource.txt"), WithoutName("#/a#"),
                                         // The first component is never the name.
                                         WithoutName("schema/definitions"),
                                         WithoutName("hyper-schema#/definitions/A")));

INSTANTIATE_TEST_SUITE_P(
    Prefixes, RefusedPaths,
    testing::Values(
        InvalidPrefix("/etc/Resource.json", "/etc/"),
        InvalidPrefix("tmp/FOSS_schema/Resource.json", "tmp/FOSS_schema/"),
        InvalidPrefix("/tmp/FOSS_schema//Resource.json", "/tmp/FOSS_schema//"),
        InvalidPrefix(kLocation + "v2/Resource.json", kLocation + "v2/"),
        InvalidPrefix("http://other.example.com/Resource.json#", "http://other.example.com/"),
        // With a '#' the schema directory itself is no accepted location.
        InvalidPrefix("/tmp/FOSS_schema/Resource.json#", "/tmp/FOSS_schema/"),
        InvalidPrefix("/tmp/FOSS_schema/Resource.json#/definitions/Id", "/tmp/FOSS_schema/"),
        // The name is taken to end the input, so what follows it shifts the prefix.
        InvalidPrefix("a/B.json/tail", "a/B.jso")));

INSTANTIATE_TEST_SUITE_P(
    Pointers, RefusedPaths,
    testing::Values(WithoutSlash("#definitions"), WithoutSlash("#definitions/Id"),
                    WithoutSlash("Resource.json#definitions/Id"),
                    Refused{"#/a.json#/b", {"Something wrong with reference path !!!"}}));

INSTANTIATE_TEST_SUITE_P(
    RootFiles, RefusedPaths,
    testing::Values(
        Refused{"/Resource.json",
                {"Extract path token error !!!", "Failed to extract resource schema name!!",
                 "Failed to extract resource prefix"}},
        Refused{"/Resource.json#",
                {"Extract path token error !!!", "Failed to extract resource schema name!!",
                 "Failed to extract resource prefix: /Resource.json#"}},
        Refused{"/Resource.json#/definitions/Id",
                {"Extract path token error !!!", "Failed to extract resource schema name!!",
                 "Failed to extract resource prefix: /Resource.json#/definitions/Id"}}));

TEST_F(ResourcePaths, NullArgumentsAreRefused) {
  ResourcePath parts{};
  Output printed = Capture([&] { EXPECT_EQ(parseResourcePath(nullptr, &parts), 1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Input argument is NULL"}));
  printed = Capture([] { EXPECT_EQ(parseResourcePath("Resource.json", nullptr), 1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Input argument is NULL"}));
}

TEST_F(ResourcePaths, SchemaDirectoryIsAcceptedWithoutConfiguration) {
  G_nSchemaURICount = -1;
  EXPECT_EQ(SplitOf("/tmp/FOSS_schema/Resource.json").result, 0);
  EXPECT_EQ(SplitOf(kLocation + "Resource.json").errors,
            Reports({"Resource prefix is invalid [" + kLocation + "]"}));
}

TEST_F(ResourcePaths, SchemaDirectoryWithHashIsAcceptedWhenConfigured) {
  std::snprintf(G_aSchemaUriInfoTable[0].uri, sizeof(G_aSchemaUriInfoTable[0].uri), "%s",
                "/tmp/FOSS_schema/");
  const Split split = SplitOf("/tmp/FOSS_schema/Resource.json#");
  EXPECT_EQ(split.result, 0);
  EXPECT_STREQ(split.parts.prefix, "/tmp/FOSS_schema/");
}

TEST_F(ResourcePaths, InputOf2199CharactersIsSplitAnd2200Refused) {
  const std::string head = "A.json#/";
  const std::string tail = "#/b";
  const std::string longest = head + Repeat(2199 - head.size() - tail.size(), 'a') + tail;
  const Split split = SplitOf(longest);
  EXPECT_EQ(split.result, 0);
  EXPECT_EQ(split.parts.path, longest);
  EXPECT_STREQ(split.parts.schemaName, "A.json");
  EXPECT_STREQ(split.parts.propertyPath, "#/b");

  const Split too_long = SplitOf(longest + "b");
  EXPECT_EQ(too_long.result, 1);
  EXPECT_EQ(too_long.errors,
            Reports({"Source path is out of range. Acceptable length is (2200) !!!"}));
  EXPECT_STREQ(too_long.parts.path, "");
}

TEST_F(ResourcePaths, NameOf199CharactersIsTakenAnd200Refused) {
  const std::string longest = Repeat(194, 'n') + ".json";
  EXPECT_EQ(SplitOf(longest).parts.schemaName, longest);
  EXPECT_EQ(SplitOf("/tmp/FOSS_schema/" + longest).parts.schemaName, longest);
  EXPECT_EQ(SplitOf(longest + "#/a").parts.schemaName, longest);

  const std::string length = "Length of schema name is out of buffer size";
  EXPECT_EQ(SplitOf("n" + longest).errors, Reports({length, "Failed to extract schema name"}));
  EXPECT_EQ(SplitOf("/tmp/FOSS_schema/n" + longest).errors,
            Reports({length, "Failed to extract resource schema name!!",
                     "Failed to extract resource prefix"}));
  EXPECT_EQ(SplitOf("n" + longest + "#").errors,
            Reports({length, "Failed to extract schema name: n" + longest + "#"}));
  EXPECT_EQ(SplitOf("n" + longest + "#/a").errors,
            Reports({length, "Failed to extract schema name: n" + longest + "#/a"}));
}

TEST_F(ResourcePaths, PropertyPathOf199CharactersIsTakenAnd200Refused) {
  const std::string longest = "#/" + Repeat(197, 'p');
  EXPECT_EQ(SplitOf(longest).parts.propertyPath, longest);
  EXPECT_EQ(SplitOf("A.json" + longest).parts.propertyPath, longest);

  const std::string length = "Length of path to destination proertyis out of buffer size !!!";
  for (const std::string& input : {longest + "p", "A.json" + longest + "p"}) {
    const Split split = SplitOf(input);
    EXPECT_EQ(split.result, 1);
    EXPECT_EQ(split.errors, Reports({length, "Failed to extract property path: " + input}));
    EXPECT_STREQ(split.parts.propertyPath, "");
  }
}

TEST_F(ResourcePaths, PrefixOf2000CharactersIsRefused) {
  const Split split = SplitOf("/" + Repeat(1998, 'd') + "/A.json");
  EXPECT_EQ(split.result, 1);
  EXPECT_EQ(split.errors, Reports({"Length of path prefix is out of range !!!",
                                   "Failed to extract resource prefix"}));
}

// What the steps give by themselves: their result, their output and their reports.
struct Step {
  int result = 1;
  std::string out;
  std::string errors;
};

using Extractor = int (*)(const char* input, char* out);

Step StepOf(Extractor extract, const std::string& input) {
  Step step;
  // Of the size the functions are promised, so that a sanitizer sees one byte too many.
  const auto out = std::make_unique<char[]>(200);
  step.errors = Masked(Capture([&] { step.result = extract(input.c_str(), out.get()); }).err);
  step.out = out.get();
  return step;
}

Step PrefixOf(const std::string& input, std::size_t length) {
  Step step;
  const auto out = std::make_unique<char[]>(2000);
  step.errors = Masked(Capture([&] {
                         step.result =
                             zephlane::extractResourcePathPrefix(input.c_str(), length, out.get());
                       }).err);
  step.out = out.get();
  return step;
}

Step PrefixOf(const std::string& input) {
  return PrefixOf(input, input.size());
}

TEST(SchemaNames, NullArgumentsAreRefused) {
  char out[200] = "";
  const std::string report = Reports({"extractResourceSchemaName: argument is null !"});
  Output printed =
      Capture([&] { EXPECT_EQ(zephlane::extractResourceSchemaName(nullptr, out), -1); });
  EXPECT_EQ(Masked(printed.err), report);
  printed = Capture([] { EXPECT_EQ(zephlane::extractResourceSchemaName("A.json", nullptr), -1); });
  EXPECT_EQ(Masked(printed.err), report);
}

TEST(SchemaNames, InputWithoutNameIsSuccessAndWritesNothing) {
  char out[200] = "before";
  EXPECT_EQ(zephlane::extractResourceSchemaName("Resource.txt", out), 0);
  EXPECT_STREQ(out, "before");
}

TEST(SchemaNames, FirstComponentWithAnExtensionOrSpecialNameIsTaken) {
  const struct {
    const char* input;
    const char* name;
  } cases[] = {{"/tmp/FOSS_schema/Resource.json", "Resource.json"},
               {"tmp/A.json/B.json", "A.json"},
               {"/tmp/schema/B.json", "schema"},
               {"/tmp/hyper-schema#", "hyper-schema#"},
               {"tmp//A.json", "A.json"},
               {"A.json/B.json", "B.json"}};
  for (const auto& item : cases) {
    SCOPED_TRACE(item.input);
    const Step step = StepOf(zephlane::extractResourceSchemaName, item.input);
    EXPECT_EQ(step.result, 0);
    EXPECT_EQ(step.out, item.name);
    EXPECT_EQ(step.errors, "");
  }
}

TEST(SchemaNames, FirstComponentIsNeverExamined) {
  for (const char* input :
       {"/Resource.json", "//Resource.json", "/", "///", "A.json/", "A.json/b", "/schema"}) {
    SCOPED_TRACE(input);
    const Step step = StepOf(zephlane::extractResourceSchemaName, input);
    EXPECT_EQ(step.result, -1);
    EXPECT_EQ(step.out, "");
    EXPECT_EQ(step.errors, Reports({"Extract path token error !!!"}));
  }
}

TEST(SchemaNames, LengthOf200IsRefusedInEachForm) {
  const std::string longest = Repeat(194, 'n') + ".json";
  for (const std::string before : {"", "a/"}) {
    EXPECT_EQ(StepOf(zephlane::extractResourceSchemaName, before + longest).out, longest);
    const Step step = StepOf(zephlane::extractResourceSchemaName, before + longest + "n");
    EXPECT_EQ(step.result, -1);
    EXPECT_EQ(step.errors, Reports({"Length of schema name is out of buffer size"}));
  }
}

TEST(PathPrefixes, NullArgumentsAreRefused) {
  char out[2000] = "";
  Output printed =
      Capture([&] { EXPECT_EQ(zephlane::extractResourcePathPrefix(nullptr, 0, out), -1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Argument is null!!!"}));
  printed =
      Capture([] { EXPECT_EQ(zephlane::extractResourcePathPrefix("a/A.json", 8, nullptr), -1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Argument is null!!!"}));
}

TEST(PathPrefixes, InputWithoutSlashHasNone) {
  char out[2000] = "before";
  EXPECT_EQ(zephlane::extractResourcePathPrefix("A.json", 6, out), 0);
  EXPECT_STREQ(out, "before");
}

TEST(PathPrefixes, IsWhatPrecedesANameAtTheEnd) {
  EXPECT_EQ(PrefixOf("/tmp/FOSS_schema/Resource.json").out, "/tmp/FOSS_schema/");
  EXPECT_EQ(PrefixOf("a//A.json").out, "a//");
  EXPECT_EQ(PrefixOf("a/A.json/tail").out, "a/A.jso");
}

TEST(PathPrefixes, MissingNameIsReportedTwice) {
  const Step step = PrefixOf("/A.json");
  EXPECT_EQ(step.result, -1);
  EXPECT_EQ(step.errors,
            Reports({"Extract path token error !!!", "Failed to extract resource schema name!!"}));
}

TEST(PathPrefixes, LengthOf1999IsTakenAnd2000Refused) {
  const std::string longest = "/" + Repeat(1997, 'd') + "/";
  EXPECT_EQ(PrefixOf(longest + "A.json").out, longest);
  const Step step = PrefixOf("/" + longest + "A.json");
  EXPECT_EQ(step.result, -1);
  EXPECT_EQ(step.out, "");
  EXPECT_EQ(step.errors, Reports({"Length of path prefix is out of range !!!"}));
}

TEST(PropertyPaths, NullArgumentsAreRefused) {
  char out[200] = "";
  Output printed = Capture([&] { EXPECT_EQ(zephlane::extractPropertyPath(nullptr, out), -1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Argument is null!!!"}));
  printed = Capture([] { EXPECT_EQ(zephlane::extractPropertyPath("#/a", nullptr), -1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Argument is null!!!"}));
}

TEST(PropertyPaths, InputWithoutHashIsReported) {
  const Step step = StepOf(zephlane::extractPropertyPath, "A.json");
  EXPECT_EQ(step.result, -1);
  EXPECT_EQ(step.errors, Reports({"strrchr"}));
}

TEST(PropertyPaths, BeginsAtTheLastHash) {
  EXPECT_EQ(StepOf(zephlane::extractPropertyPath, "A.json#/a#/b").out, "#/b");
  EXPECT_EQ(StepOf(zephlane::extractPropertyPath, "A.json#").out, "#");
}

TEST(PropertyPaths, LengthOf199IsTakenAnd200Refused) {
  const std::string longest = "#" + Repeat(198, 'p');
  EXPECT_EQ(StepOf(zephlane::extractPropertyPath, longest).out, longest);
  const Step step = StepOf(zephlane::extractPropertyPath, longest + "p");
  EXPECT_EQ(step.result, -1);
  EXPECT_EQ(step.errors,
            Reports({"Length of path to destination proertyis out of buffer size !!!"}));
}

// The steps for references with a '#', beyond the length that parseResourcePath() lets through.
TEST(LongReferences, FileOf2400CharactersIsRefused) {
  ResourcePath parts{};
  const std::string file(2400, 'f');
  const Output printed =
      Capture([&] { EXPECT_EQ(zephlane::SplitFileReference((file + "#").c_str(), &parts), 1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Reference path length is too long ......... !!!"}));
}

TEST(LongReferences, FileOf2399CharactersIsLookedAt) {
  ResourcePath parts{};
  const std::string file = Repeat(2394, 'f') + ".json";
  const Output printed =
      Capture([&] { EXPECT_EQ(zephlane::SplitFileReference((file + "#").c_str(), &parts), 1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Length of schema name is out of buffer size",
                                          "Failed to extract schema name: " + file + "#"}));
}

TEST(LongReferences, FileOf2400CharactersBeforeAPointerIsRefused) {
  ResourcePath parts{};
  const std::string reference = Repeat(2400, 'f') + "#/a";
  const Output printed =
      Capture([&] { EXPECT_EQ(zephlane::SplitPointerReference(reference.c_str(), &parts), 1); });
  EXPECT_EQ(Masked(printed.err),
            Reports({"Reference former is out of range !!!", "--> " + reference}));
}

TEST(LongReferences, FileOf2399CharactersBeforeAPointerIsLookedAt) {
  ResourcePath parts{};
  const std::string reference = Repeat(2394, 'f') + ".json#/a";
  const Output printed =
      Capture([&] { EXPECT_EQ(zephlane::SplitPointerReference(reference.c_str(), &parts), 1); });
  EXPECT_EQ(Masked(printed.err), Reports({"Length of schema name is out of buffer size",
                                          "Failed to extract schema name: " + reference}));
}

}  // namespace
