// SPDX-License-Identifier: MIT
//
// The files an interpreter run reads, at the places it reads them from, and those it leaves open.
#pragma once

#include <string>

namespace zephlane::test {

inline constexpr char kSchemaDirectory[] = "/tmp/FOSS_schema/";
inline constexpr char kConfigurationFile[] = "/tmp/etc/SchemaURIConf.json";
inline constexpr char kRootSchema[] = "/tmp/FOSS_schema/Root.json";
// The only location that the default configuration accepts.
inline constexpr char kSchemaLocation[] = "http://schemas.example.com/v1/";

void WriteFile(const std::string& path, const std::string& text);

// Empties the schema directory and writes the default configuration.
void StartSchemaDirectory();

// Adds one file to the schema directory.
void WriteSchema(const std::string& name, const std::string& text);

void WriteConfiguration(const std::string& text);
void RemoveConfiguration();

// How many files and connections this process has open: a run leaves none.
long OpenDescriptors();

}  // namespace zephlane::test
