// SPDX-License-Identifier: MIT
//
// What the interpreter's stages work on: a schema in hand with its root hash and route, values of
// JSON, and a small directory of schema files that leads through every module.
#pragma once

#include <jansson.h>

#include "faults/everyFunction.h"

#include <zephlaneAPI/interpreter.h>

namespace zephlane::test {

inline constexpr char kSchemaFiles[] = "/tmp/FOSS_schema";
inline constexpr char kRootFile[] = "/tmp/FOSS_schema/Root.json";
inline constexpr char kConfigurationFile[] = "/tmp/etc/SchemaURIConf.json";
// Configured as location of schemas.
inline constexpr char kLocation[] = "http://schemas.example.com/v1/";

// The tables of the hash tree as at the start of a run.
void StartTree(Stage& stage);

// A value that lives until ReleaseSchema().
void HoldValue(Stage& stage, const char* text);
json_t* HeldValue();

// The schema "Thing.json", registered with a root hash, and its files around it; `document` is the
// held value too.
void HoldSchema(Stage& stage, const char* document);
ParseContext* HeldSchema();
const char* HeldRoot();

// Writes the schema files and the configuration, without loading either.
void WriteSchemaFiles();

void ReleaseSchema(Stage& stage);

// Frees a text that a preparation has no use for.
void FreeText(char* text);

}  // namespace zephlane::test
