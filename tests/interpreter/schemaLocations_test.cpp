// SPDX-License-Identifier: MIT
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <jansson.h>

#include "interpreter/schemaDirectory.h"
#include "support/output.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::kConfigurationFile;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::WriteConfiguration;

constexpr char kSource[] = "resourcePathParser.cpp";
constexpr char kUri[] = "http://schemas.example.com/v1/";

std::string Reports(const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts) { lines += InterpreterReport(kSource, text); }
  return lines;
}

struct Load {
  int result = -1;
  std::string errors;
};

Load LoadOf(const std::string& text) {
  WriteConfiguration(text);
  Load load;
  const Output printed = Capture([&] { load.result = loadSchemaURIConf(kConfigurationFile); });
  EXPECT_EQ(printed.out, "");
  load.errors = Masked(printed.err);
  return load;
}

// A configuration whose "OemSchemaUris" is `oem`.
std::string WithOem(const std::string& oem) {
  return std::string(R"({"DmtfSchemaUri": ")") + kUri + R"(", "OemSchemaUris": )" + oem + "}";
}

std::string OemObjects(int count) {
  std::string text;
  for (int i = 1; i <= count; ++i) {
    const std::string number = std::to_string(i);
    text += std::string(i == 1 ? "" : ", ") + R"({"Uri": "http://oem.example.com/)" + number +
            R"(/", "Directory": "oem)" + number + "\"}";
  }
  return "[" + text + "]";
}

std::string Uri(int entry) {
  return G_aSchemaUriInfoTable[entry].uri;
}

std::string Directory(int entry) {
  return G_aSchemaUriInfoTable[entry].directory;
}

TEST(SchemaLocations, NothingIsAcceptedBeforeTheFirstLoad) {
  EXPECT_EQ(G_nSchemaURICount, -1);
  EXPECT_EQ(isValidDmtfURL(""), 0);
  EXPECT_EQ(isValidDmtfURL(kUri), 0);
}

TEST(SchemaLocations, PublishedLocationAloneGivesOneEntry) {
  const Load load = LoadOf(std::string(R"({"DmtfSchemaUri": ")") + kUri + "\"}");
  EXPECT_EQ(load.result, 0);
  EXPECT_EQ(load.errors, "");
  EXPECT_EQ(G_nSchemaURICount, 1);
  EXPECT_EQ(Uri(0), kUri);
  EXPECT_EQ(Directory(0), "schemas");
  EXPECT_EQ(Uri(1), "");
}

TEST(SchemaLocations, OemLocationsFollowInOrder) {
  EXPECT_EQ(LoadOf(WithOem(OemObjects(2))).result, 0);
  EXPECT_EQ(G_nSchemaURICount, 3);
  EXPECT_EQ(Uri(1), "http://oem.example.com/1/");
  EXPECT_EQ(Directory(1), "oem1");
  EXPECT_EQ(Uri(2), "http://oem.example.com/2/");
  EXPECT_EQ(Directory(2), "oem2");
}

TEST(SchemaLocations, EmptyOemArrayGivesOneEntry) {
  EXPECT_EQ(LoadOf(WithOem("[]")).result, 0);
  EXPECT_EQ(G_nSchemaURICount, 1);
}

TEST(SchemaLocations, FourteenOemObjectsAreAccepted) {
  const Load load = LoadOf(WithOem(OemObjects(14)));
  EXPECT_EQ(load.result, 0);
  EXPECT_EQ(load.errors, "");
  EXPECT_EQ(G_nSchemaURICount, 15);
  EXPECT_EQ(Uri(14), "http://oem.example.com/14/");
  EXPECT_EQ(Directory(14), "oem14");
  EXPECT_EQ(Uri(15), "");
}

// The message counts the published location in, so it names 15 where 14 is the limit.
TEST(SchemaLocations, FifteenOemObjectsAreRefusedWithFifteenInTheMessage) {
  const Load load = LoadOf(WithOem(OemObjects(15)));
  EXPECT_EQ(load.result, 1);
  EXPECT_EQ(load.errors,
            Reports({"Too many elements in OemSchemaUris. \nMax allowable number is 15"}));
  EXPECT_EQ(G_nSchemaURICount, 1);
  EXPECT_EQ(Uri(0), kUri);
  EXPECT_EQ(Uri(1), "");
}

TEST(SchemaLocations, OemValueOfAnotherTypeIsRefused) {
  for (const char* oem :
       {"{}", R"({"Uri": "a", "Directory": "b"})", "\"text\"", "1", "1.5", "true", "null"}) {
    SCOPED_TRACE(oem);
    const Load load = LoadOf(WithOem(oem));
    EXPECT_EQ(load.result, 1);
    EXPECT_EQ(load.errors, Reports({"OemSchemaUris is not array type."}));
    EXPECT_EQ(G_nSchemaURICount, 1);
  }
}

TEST(SchemaLocations, OemElementsOfAnotherTypeAreIgnored) {
  const Load load = LoadOf(WithOem(
      R"(["text", 1, {"Uri": "http://oem.example.com/", "Directory": "oem"}, null, [{}], 1.5])"));
  EXPECT_EQ(load.result, 0);
  std::vector<std::string> expected;
  for (const char* index : {"0", "1", "3", "4", "5"}) {
    expected.push_back("OemSchemaUris[" + std::string(index) +
                       "] is not object type. ignore this element");
  }
  EXPECT_EQ(load.errors, Reports(expected));
  EXPECT_EQ(G_nSchemaURICount, 2);
  EXPECT_EQ(Uri(1), "http://oem.example.com/");
}

TEST(SchemaLocations, OemObjectWithoutDirectoryLosesItsEntryToTheNext) {
  const Load load =
      LoadOf(WithOem(R"([{"Uri": "http://a/"}, {"Uri": "http://b/", "Directory": "b"}])"));
  EXPECT_EQ(load.result, 0);
  EXPECT_EQ(load.errors, Reports({"Gets Directory fail."}));
  EXPECT_EQ(G_nSchemaURICount, 2);
  EXPECT_EQ(Uri(1), "http://b/");
  EXPECT_EQ(Directory(1), "b");
}

TEST(SchemaLocations, BadDirectoryLeavesTheUriInAnEntryThatDoesNotCount) {
  const Load load = LoadOf(WithOem(R"([{"Uri": "http://a/", "Directory": 1}])"));
  EXPECT_EQ(load.result, 0);
  EXPECT_EQ(load.errors, Reports({"Gets Directory fail. not a string"}));
  EXPECT_EQ(G_nSchemaURICount, 1);
  EXPECT_EQ(Uri(1), "http://a/");
  EXPECT_EQ(isValidDmtfURL("http://a/"), 0);
}

// Where "Uri" is bad, "Directory" is not looked at.
TEST(SchemaLocations, BadUriSkipsTheObject) {
  const struct {
    const char* object;
    const char* report;
  } cases[] = {{"{}", "Gets Uri fail."},
               {R"({"Directory": 5})", "Gets Uri fail."},
               {R"({"Uri": null})", "Gets Uri fail. not a string"},
               {R"({"Uri": ["http://a/"]})", "Gets Uri fail. not a string"},
               {R"({"Uri": {}})", "Gets Uri fail. not a string"},
               {R"({"Uri": 7})", "Gets Uri fail. not a string"}};
  for (const auto& item : cases) {
    SCOPED_TRACE(item.object);
    const Load load = LoadOf(WithOem("[" + std::string(item.object) + "]"));
    EXPECT_EQ(load.result, 0);
    EXPECT_EQ(load.errors, Reports({item.report}));
    EXPECT_EQ(G_nSchemaURICount, 1);
    EXPECT_EQ(Uri(1), "");
  }
}

TEST(SchemaLocations, MissingOrMistypedPublishedLocationIsRefused) {
  const struct {
    const char* text;
    const char* report;
  } cases[] = {{"{}", "Gets DmtfSchemaUri fail."},
               {"[]", "Gets DmtfSchemaUri fail."},
               {R"([{"DmtfSchemaUri": "http://a/"}])", "Gets DmtfSchemaUri fail."},
               {R"({"dmtfSchemaUri": "http://a/"})", "Gets DmtfSchemaUri fail."},
               {R"({"DmtfSchemaUri": null})", "Gets DmtfSchemaUri fail. not a string"},
               {R"({"DmtfSchemaUri": 1})", "Gets DmtfSchemaUri fail. not a string"},
               {R"({"DmtfSchemaUri": 1.5})", "Gets DmtfSchemaUri fail. not a string"},
               {R"({"DmtfSchemaUri": true})", "Gets DmtfSchemaUri fail. not a string"},
               {R"({"DmtfSchemaUri": {"a": "b"}})", "Gets DmtfSchemaUri fail. not a string"},
               {R"({"DmtfSchemaUri": ["http://a/"]})", "Gets DmtfSchemaUri fail. not a string"}};
  for (const auto& item : cases) {
    SCOPED_TRACE(item.text);
    const Load load = LoadOf(item.text);
    EXPECT_EQ(load.result, 1);
    EXPECT_EQ(load.errors, Reports({item.report, "Get field DmtfSchemaUri fail !!!\n"}));
    EXPECT_EQ(G_nSchemaURICount, 0);
  }
}

TEST(SchemaLocations, UriOf255CharactersIsTakenAnd256Refused) {
  const std::string longest(255, 'u');
  EXPECT_EQ(LoadOf(R"({"DmtfSchemaUri": ")" + longest + "\"}").result, 0);
  EXPECT_EQ(Uri(0), longest);
  EXPECT_EQ(isValidDmtfURL(longest.c_str()), 1);

  const Load load = LoadOf(R"({"DmtfSchemaUri": "u)" + longest + "\"}");
  EXPECT_EQ(load.result, 1);
  EXPECT_EQ(load.errors, Reports({"String u" + longest + " is too long, longer then 256.",
                                  "Get field DmtfSchemaUri fail !!!\n"}));
}

TEST(SchemaLocations, DirectoryOf255CharactersIsTakenAnd256Refused) {
  const std::string longest(255, 'd');
  EXPECT_EQ(LoadOf(WithOem(R"([{"Uri": "http://a/", "Directory": ")" + longest + "\"}]")).result,
            0);
  EXPECT_EQ(Directory(1), longest);
  EXPECT_EQ(G_nSchemaURICount, 2);

  const Load load = LoadOf(WithOem(R"([{"Uri": "http://a/", "Directory": "d)" + longest + "\"}]"));
  EXPECT_EQ(load.result, 0);
  EXPECT_EQ(load.errors, Reports({"String d" + longest + " is too long, longer then 256."}));
  EXPECT_EQ(G_nSchemaURICount, 1);
}

TEST(SchemaLocations, MissingFileIsReportedByTheLoaderAndTheLoad) {
  int result = 0;
  const Output printed = Capture([&] { result = loadSchemaURIConf("/tmp/none.json"); });
  EXPECT_EQ(result, 1);
  EXPECT_EQ(
      Masked(printed.err),
      InterpreterReport("zephlaneSchemaInterpreter.cpp", "/tmp/none.json: not such schema file") +
          InterpreterReport(kSource, "Failed to open configure file /tmp/none.json !!!\n"));
  EXPECT_EQ(G_nSchemaURICount, 0);
}

TEST(SchemaLocations, MissingFileNameIsReportedAsAMissingFile) {
  const Output printed = Capture([] { EXPECT_EQ(loadSchemaURIConf(nullptr), 1); });
  EXPECT_TRUE(
      Masked(printed.err)
          .ends_with(InterpreterReport(kSource, "Failed to open configure file (null) !!!\n")));
}

TEST(SchemaLocations, FileThatIsNotADocumentIsRefused) {
  for (const char* text :
       {"", "text", "1", "null", "\"http://a/\"", "{\"DmtfSchemaUri\": ", "{} {}"}) {
    SCOPED_TRACE(text);
    const Load load = LoadOf(text);
    json_error_t error;
    EXPECT_EQ(json_load_file(kConfigurationFile, 0, &error), nullptr);
    EXPECT_EQ(load.result, 1);
    EXPECT_EQ(load.errors,
              "error: on line " + std::to_string(error.line) + ": " + error.text + "\n" +
                  Reports({"Failed to open configure file /tmp/etc/SchemaURIConf.json !!!\n"}));
    EXPECT_EQ(G_nSchemaURICount, 0);
  }
}

TEST(SchemaLocations, EachLoadStartsFromAnEmptyTable) {
  EXPECT_EQ(LoadOf(WithOem(OemObjects(14))).result, 0);
  EXPECT_EQ(LoadOf(R"({"DmtfSchemaUri": "http://b/"})").result, 0);
  EXPECT_EQ(G_nSchemaURICount, 1);
  EXPECT_EQ(Uri(0), "http://b/");
  EXPECT_EQ(Uri(14), "");
  EXPECT_EQ(Directory(14), "");

  EXPECT_EQ(LoadOf("{}").result, 1);
  EXPECT_EQ(Uri(0), "");
  EXPECT_EQ(isValidDmtfURL("http://b/"), 0);
}

TEST(SchemaLocations, PrefixIsComparedWholeWithTheCountedEntries) {
  EXPECT_EQ(LoadOf(WithOem(OemObjects(2))).result, 0);
  EXPECT_EQ(isValidDmtfURL(kUri), 1);
  EXPECT_EQ(isValidDmtfURL("http://oem.example.com/2/"), 1);
  EXPECT_EQ(isValidDmtfURL("http://oem.example.com/2"), 0);
  EXPECT_EQ(isValidDmtfURL("http://oem.example.com/2/3/"), 0);
  EXPECT_EQ(isValidDmtfURL("HTTP://OEM.EXAMPLE.COM/2/"), 0);
  EXPECT_EQ(isValidDmtfURL(""), 0);
  EXPECT_EQ(isValidDmtfURL(nullptr), 0);
  G_nSchemaURICount = 2;
  EXPECT_EQ(isValidDmtfURL("http://oem.example.com/2/"), 0);
  G_nSchemaURICount = 0;
  EXPECT_EQ(isValidDmtfURL(kUri), 0);
}

TEST(SchemaLocations, DumpPrintsNothing) {
  EXPECT_EQ(LoadOf(WithOem(OemObjects(2))).result, 0);
  const Output printed = Capture([] { dumpSchemaURITable(); });
  EXPECT_EQ(printed.out + printed.err, "");
}

// Saving one entry, with an object that has one key of each kind.
class SavedEntries : public testing::Test {
 protected:
  void SetUp() override {
    G_aSchemaUriInfoTable[1] = {};
    object_ = json_pack("{s:s, s:i, s:n}", "text", "value", "number", 1, "null");
  }
  void TearDown() override {
    json_decref(object_);
  }
  Load Save(const char* tag, int index, int element) {
    Load load;
    const Output printed =
        Capture([&] { load.result = saveSchemaURIEntry(object_, tag, index, element); });
    load.errors = Masked(printed.err);
    return load;
  }

  json_t* object_ = nullptr;
};

TEST_F(SavedEntries, ElementChoosesTheField) {
  EXPECT_EQ(Save("text", 15, 1).result, 0);
  EXPECT_EQ(Uri(15), "value");
  EXPECT_EQ(Directory(15), "");
  EXPECT_EQ(Save("text", 15, 2).result, 0);
  EXPECT_EQ(Directory(15), "value");
}

TEST_F(SavedEntries, TargetIsClearedBeforeTheCopy) {
  std::fill(std::begin(G_aSchemaUriInfoTable[3].uri), std::end(G_aSchemaUriInfoTable[3].uri), 'x');
  EXPECT_EQ(Save("text", 3, 1).result, 0);
  const std::string whole(G_aSchemaUriInfoTable[3].uri, sizeof(G_aSchemaUriInfoTable[3].uri));
  EXPECT_EQ(whole, "value" + std::string(251, '\0'));
}

TEST_F(SavedEntries, IndexBeyondTheTableIsRefused) {
  for (const int index : {16, 1000, -1}) {
    SCOPED_TRACE(index);
    const Load load = Save("text", index, 1);
    EXPECT_EQ(load.result, 1);
    EXPECT_EQ(load.errors,
              Reports({"nIndex=[" + std::to_string(index) + "] out of boundary 0~16"}));
  }
}

TEST_F(SavedEntries, ArgumentsAreCheckedInOrder) {
  EXPECT_EQ(Save(nullptr, 16, 3).errors, Reports({"nIndex=[16] out of boundary 0~16"}));
  EXPECT_EQ(Save(nullptr, 1, 3).errors, Reports({"tagName is NULL"}));
  EXPECT_EQ(Save("none", 1, 3).errors, Reports({"Gets none fail."}));
  EXPECT_EQ(Save("number", 1, 3).errors, Reports({"Gets number fail. not a string"}));
  EXPECT_EQ(Save("null", 1, 3).errors, Reports({"Gets null fail. not a string"}));
  EXPECT_EQ(Save("text", 1, 3).errors, Reports({"Unsupported element ID: 3."}));
  EXPECT_EQ(Save("text", 1, 0).errors, Reports({"Unsupported element ID: 0."}));
  EXPECT_EQ(Save("text", 1, 0).result, 1);
  EXPECT_EQ(Uri(1) + Directory(1), "");
}

TEST_F(SavedEntries, MissingObjectHasNoKeys) {
  json_decref(object_);
  object_ = nullptr;
  EXPECT_EQ(Save("text", 1, 1).errors, Reports({"Gets text fail."}));
}

}  // namespace
