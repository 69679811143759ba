// SPDX-License-Identifier: MIT
//
// Loading schema files, and the names that the interpreter knows.
#include <filesystem>
#include <iterator>
#include <string>

#include <gtest/gtest.h>
#include <jansson.h>

#include "interpreter/schemaDirectory.h"
#include "support/output.h"
#include "support/owners.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::Json;
using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::ScriptedServer;
using zephlane::test::StoreTest;
using zephlane::test::WriteFile;

constexpr char kFile[] = "/tmp/FOSS_schema/File.json";

struct Loaded {
  Json document;
  Output printed;
};

Loaded LoadText(const std::string& text) {
  WriteFile(kFile, text);
  Loaded loaded;
  loaded.printed = Capture([&] { loaded.document.reset(loadZephlaneSchemaFile(kFile)); });
  return loaded;
}

// `count` arrays, one in the other.
std::string Nested(int count) {
  const auto size = static_cast<std::size_t>(count);
  return std::string(size, '[') + std::string(size, ']');
}

TEST(SchemaFiles, DocumentIsLoaded) {
  const Loaded loaded = LoadText(R"({"title": "T"})");
  EXPECT_STREQ(json_string_value(json_object_get(loaded.document.get(), "title")), "T");
  EXPECT_EQ(loaded.printed.out + loaded.printed.err, "");
}

TEST(SchemaFiles, RootMayBeEmptyOrAnArray) {
  EXPECT_TRUE(json_is_object(LoadText("{}").document.get()));
  EXPECT_TRUE(json_is_array(LoadText("[]").document.get()));
}

TEST(SchemaFiles, LastOfTwoEqualKeysIsTaken) {
  const Loaded loaded = LoadText(R"({"title": "A", "title": "B"})");
  EXPECT_STREQ(json_string_value(json_object_get(loaded.document.get(), "title")), "B");
}

TEST(SchemaFiles, MissingFileIsReported) {
  Json document;
  const Output printed =
      Capture([&] { document.reset(loadZephlaneSchemaFile("/tmp/none/File.json")); });
  EXPECT_EQ(document, nullptr);
  EXPECT_EQ(Masked(printed.err), InterpreterReport("zephlaneSchemaInterpreter.cpp",
                                                   "/tmp/none/File.json: not such schema file"));
}

TEST(SchemaFiles, MissingNameIsReportedAsAMissingFile) {
  const Output printed = Capture([] { EXPECT_EQ(loadZephlaneSchemaFile(nullptr), nullptr); });
  EXPECT_EQ(Masked(printed.err),
            InterpreterReport("zephlaneSchemaInterpreter.cpp", "(null): not such schema file"));
}

TEST(SchemaFiles, ParseErrorIsReportedWithoutPrefix) {
  const Loaded loaded = LoadText("{\n  \"title\": \"T\",\n  text\n}\n");
  EXPECT_EQ(loaded.document, nullptr);
  json_error_t error;
  EXPECT_EQ(json_load_file(kFile, 0, &error), nullptr);
  EXPECT_EQ(error.line, 3);
  EXPECT_EQ(loaded.printed.err, "error: on line 3: " + std::string(error.text) + "\n");
}

TEST(SchemaFiles, WhatIsNoDocumentIsReported) {
  for (const std::string text : {"", " ", "text", "1", "null", "true", "\"text\"", "{", "[1,]",
                                 "{} {}", "{\"a\": \"\xff\"}", "{\"a\": 1e999}"}) {
    SCOPED_TRACE(text);
    const Loaded loaded = LoadText(text);
    EXPECT_EQ(loaded.document, nullptr);
    json_error_t error;
    EXPECT_EQ(json_load_file(kFile, 0, &error), nullptr);
    EXPECT_EQ(loaded.printed.err,
              "error: on line " + std::to_string(error.line) + ": " + error.text + "\n");
  }
}

TEST(SchemaFiles, DirectoryIsNoDocument) {
  std::filesystem::create_directories("/tmp/FOSS_schema/Directory.json");
  Json document;
  const Output printed =
      Capture([&] { document.reset(loadZephlaneSchemaFile("/tmp/FOSS_schema/Directory.json")); });
  EXPECT_EQ(document, nullptr);
  EXPECT_TRUE(printed.err.starts_with("error: on line ")) << printed.err;
}

TEST(SchemaFiles, NestingIsLimitedByTheParser) {
  EXPECT_NE(LoadText(Nested(JSON_PARSER_MAX_DEPTH)).document, nullptr);
  const Loaded loaded = LoadText(Nested(JSON_PARSER_MAX_DEPTH + 1));
  EXPECT_EQ(loaded.document, nullptr);
  EXPECT_TRUE(loaded.printed.err.starts_with("error: on line 1: ")) << loaded.printed.err;
}

class InterpretedMark : public StoreTest {};

TEST_F(InterpretedMark, IsTheRootServiceHash) {
  EXPECT_EQ(isSchemaInterpreted(ctx()), 0);
  Ask({"HSET", "00000000-0000-0000-0001-ffffffffffff", "a", "b"});
  EXPECT_EQ(isSchemaInterpreted(ctx()), 1);
}

TEST_F(InterpretedMark, IsNoObjectOfAnotherType) {
  Ask({"SADD", "00000000-0000-0000-0001-ffffffffffff", "a"});
  EXPECT_EQ(isSchemaInterpreted(ctx()), 0);
}

TEST_F(InterpretedMark, IsNotFoundWithoutAConnection) {
  (void)Capture([] { EXPECT_EQ(isSchemaInterpreted(nullptr), 0); });
}

TEST_F(InterpretedMark, IsNotFoundOverALostConnection) {
  ScriptedServer server;
  server.WillClose();
  EXPECT_EQ(isSchemaInterpreted(server.ctx()), 0);
  EXPECT_EQ(server.Commands(), "HGETALL 00000000-0000-0000-0001-ffffffffffff\n");
}

TEST(SpecialNames, AreTheFirstFourOfTheirTable) {
  EXPECT_EQ(G_nSpecialSchemaFileCount, 4);
  EXPECT_EQ(std::size(G_aSpecialSchemaFileTable), 16u);
  EXPECT_STREQ(G_aSpecialSchemaFileTable[0], "schema");
  EXPECT_STREQ(G_aSpecialSchemaFileTable[1], "schema#");
  EXPECT_STREQ(G_aSpecialSchemaFileTable[2], "hyper-schema");
  EXPECT_STREQ(G_aSpecialSchemaFileTable[3], "hyper-schema#");
}

TEST(SpecialNames, AreComparedWhole) {
  for (const char* name : {"schema", "schema#", "hyper-schema", "hyper-schema#"}) {
    EXPECT_EQ(isSpecialSchemaFile(name), 1) << name;
  }
  for (const char* name : {"", "Schema", "schem", "schema##", "hyper", "hyper-schema.json"}) {
    EXPECT_EQ(isSpecialSchemaFile(name), 0) << name;
  }
}

TEST(SpecialNames, AreNotNull) {
  EXPECT_EQ(isSpecialSchemaFile(nullptr), 0);
  EXPECT_EQ(isTypeSchemaEssentialField(nullptr), 0);
}

// An entry added to the table counts once the count says so.
TEST(SpecialNames, FollowTheirCount) {
  G_aSpecialSchemaFileTable[4] = "extra-schema";
  EXPECT_EQ(isSpecialSchemaFile("extra-schema"), 0);
  G_nSpecialSchemaFileCount = 5;
  EXPECT_EQ(isSpecialSchemaFile("extra-schema"), 1);
  G_nSpecialSchemaFileCount = 0;
  EXPECT_EQ(isSpecialSchemaFile("schema"), 0);
}

TEST(Keywords, AreThirtyEight) {
  const char* const keywords[] = {"title",
                                  "$schema",
                                  "type",
                                  "required",
                                  "properties",
                                  "patternProperties",
                                  "items",
                                  "$ref",
                                  "definitions",
                                  "oneOf",
                                  "anyOf",
                                  "allOf",
                                  "enum",
                                  "maximum",
                                  "minimum",
                                  "pattern",
                                  "readonly",
                                  "format",
                                  "additionalProperties",
                                  "additionalItems",
                                  "uniqueItems",
                                  "maxLength",
                                  "minLength",
                                  "maxItems",
                                  "minItems",
                                  "maxProperties",
                                  "minProperties",
                                  "default",
                                  "not",
                                  "dependencies",
                                  "requiredOnCreate",
                                  "links",
                                  "href",
                                  "rel",
                                  "typeId",
                                  "instanceCollection",
                                  "ttl",
                                  "RefSchema"};
  EXPECT_EQ(std::size(keywords), 38u);
  for (const char* keyword : keywords) { EXPECT_EQ(isTypeSchemaEssentialField(keyword), 1); }
}

TEST(Keywords, AreComparedWholeAndWithCase) {
  for (const char* name : {"Title", "titles", "titl", "readOnly", "ref", "description",
                           "longDescription", "RuxoMessage", "id", "refSchema"}) {
    EXPECT_EQ(isTypeSchemaEssentialField(name), 0) << name;
  }
}

// The last keyword is whatever the buffer holds, and it holds nothing until a run fills it.
TEST(Keywords, EndWithTheMessageProperty) {
  EXPECT_EQ(sizeof(propertyRuxoMessage), 1025u);
  EXPECT_STREQ(propertyRuxoMessage, "");
  EXPECT_EQ(isTypeSchemaEssentialField(""), 1);
  const std::string longest(1024, 'm');
  longest.copy(propertyRuxoMessage, longest.size());
  EXPECT_EQ(isTypeSchemaEssentialField(longest.c_str()), 1);
  EXPECT_EQ(isTypeSchemaEssentialField(""), 0);
}

}  // namespace
