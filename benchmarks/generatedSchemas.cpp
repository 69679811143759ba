// SPDX-License-Identifier: MIT
#include "generatedSchemas.h"

#include <filesystem>
#include <fstream>

namespace zephlane::bench {

namespace {

constexpr char kLocation[] = "http://schemas.example.com/model/v1/";
constexpr unsigned int kPropertiesPerFile = 20;
// A file's hashes: its root, its definitions, the definition itself, its properties; and its
// property in the root schema.
constexpr unsigned int kObjectsPerFile = kPropertiesPerFile + 4;

std::string PartName(unsigned int n) {
  return "Part" + std::to_string(n);
}

std::string Head(const std::string& name) {
  return R"({"title": ")" + name + R"(.1.0.0", "$ref": "#/definitions/)" + name +
         R"(", "definitions": {")" + name + R"(": {"type": "object", "properties": {)";
}

std::string ReferenceTo(const std::string& name) {
  return R"({"$ref": ")" + std::string(kLocation) + name + ".v1_0_0.json#/definitions/" + name +
         "\"}";
}

void Write(const std::string& folder, const std::string& name, const std::string& properties) {
  std::ofstream(folder + "/" + name + ".v1_0_0.json") << Head(name) + properties + "}}}}\n";
}

// Every part is like the others, and refers to the one before it.
std::string PropertiesOf(unsigned int n) {
  std::string properties = R"("Neighbour": )" + ReferenceTo(PartName(n == 0 ? 0 : n - 1));
  for (unsigned int i = 1; i < kPropertiesPerFile; ++i) {
    properties += R"(, "Reading)" + std::to_string(i) +
                  R"(": {"description": "One of its readings.", "type": "integer", )" +
                  R"("minimum": 0, "maximum": 100, "readonly": true})";
  }
  return properties;
}

}  // namespace

void GenerateSchemas(const std::string& folder, unsigned int objects) {
  std::filesystem::create_directories(folder);
  std::string parts;
  for (unsigned int n = 0; n < objects / kObjectsPerFile; ++n) {
    Write(folder, PartName(n), PropertiesOf(n));
    parts += (n == 0 ? "\"" : ", \"") + PartName(n) + "\": " + ReferenceTo(PartName(n));
  }
  Write(folder, "Root", parts);
}

}  // namespace zephlane::bench
