// SPDX-License-Identifier: MIT
#include "generatedSchemas.h"

#include <fstream>

namespace zephlane::bench {

namespace {

constexpr char kLocation[] = "http://schemas.example.com/model/v1/";
constexpr unsigned int kPropertiesPerFile = 20;
// The objects of a file, with its property in the root schema.
constexpr unsigned int kObjectsPerFile = kPropertiesPerFile + 2;

std::string FileOf(const std::string& name) {
  return name + ".v1_0_0.json";
}

std::string Head(const std::string& name) {
  return R"({"title": ")" + name + R"(.1.0.0", "$ref": "#/definitions/)" + name +
         R"(", "definitions": {")" + name + R"(": {"type": "object", "properties": {)";
}

std::string ReferenceTo(const std::string& name) {
  return R"({"$ref": ")" + std::string(kLocation) + FileOf(name) + "#/definitions/" + name + "\"}";
}

void Write(const std::string& folder, const std::string& name, const std::string& properties) {
  std::ofstream(folder + "/" + FileOf(name)) << Head(name) + properties + "}}}}\n";
}

// Every part is like the others, and refers to one of them.
std::string PropertiesWith(const std::string& neighbour) {
  std::string properties = R"("Neighbour": )" + ReferenceTo(neighbour);
  for (unsigned int i = 1; i < kPropertiesPerFile; ++i) {
    properties += R"(, "Reading)" + std::to_string(i) +
                  R"(": {"description": "One of its readings.", "type": "integer", )" +
                  R"("minimum": 0, "maximum": 100, "readonly": true})";
  }
  return properties;
}

}  // namespace

std::string GenerateSchemas(const std::string& folder, unsigned int objects) {
  const std::string set = "Set" + std::to_string(objects);
  std::string parts;
  std::string neighbour = set + "Part0";
  for (unsigned int n = 0; n < objects / kObjectsPerFile; ++n) {
    const std::string part = set + "Part" + std::to_string(n);
    Write(folder, part, PropertiesWith(neighbour));
    parts += (n == 0 ? "\"" : ", \"") + part + "\": " + ReferenceTo(part);
    neighbour = part;
  }
  Write(folder, set + "Root", parts);
  return FileOf(set + "Root");
}

}  // namespace zephlane::bench
