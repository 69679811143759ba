// SPDX-License-Identifier: MIT
#include "interpreter/schemaDirectory.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace zephlane::test {

void WriteFile(const std::string& path, const std::string& text) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  std::ofstream(path, std::ios::binary) << text;
}

void StartSchemaDirectory() {
  std::filesystem::remove_all(kSchemaDirectory);
  std::filesystem::create_directories(kSchemaDirectory);
  WriteConfiguration(std::string(R"({"DmtfSchemaUri": ")") + kSchemaLocation + "\"}\n");
}

void WriteSchema(const std::string& name, const std::string& text) {
  WriteFile(kSchemaDirectory + name, text);
}

void WriteConfiguration(const std::string& text) {
  WriteFile(kConfigurationFile, text);
}

void RemoveConfiguration() {
  std::filesystem::remove(kConfigurationFile);
}

long OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator{});
}

}  // namespace zephlane::test
