// SPDX-License-Identifier: MIT
//
// Interpreter cases that are data. Each folder of cases/ is one case, run in a process and against
// a store of its own; a folder holds
//   *.json              the schema directory; the run starts at Root.json
//   SchemaURIConf.json  the configuration, when the default (schemaDirectory.h) will not do
//   store.txt           the whole store afterwards, as Dump() writes it; absent: the store is empty
//   stderr.txt          standard error; absent: nothing is printed. A report whose number is "###"
//                       may come from any line of its source, any other number must be the printed
//   stdout.txt          standard output, where a case is about it
//   setup.txt           one directive in each line, where a case needs any:
//     root PATH           the path given to the interpreter
//     redis WORD...       a command that fills the store before the run
//     result N            the expected result, when it is not 0
//     no-configuration    the configuration file does not exist
// A folder's name begins with "driver-" (the course of a run) or "parser-" (what a schema becomes).
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "interpreter/schemaDirectory.h"
#include "support/output.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

namespace fs = std::filesystem;

using zephlane::test::Capture;
using zephlane::test::Masked;
using zephlane::test::Output;
using zephlane::test::StoreTest;

std::string TextOf(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

std::vector<std::string> Split(const std::string& text, char at) {
  std::vector<std::string> pieces;
  std::istringstream stream(text);
  for (std::string piece; std::getline(stream, piece, at);) { pieces.push_back(piece); }
  return pieces;
}

// `printed` with the number of a report masked where the expected text masks it.
std::string MaskedLike(const std::string& expected, const std::string& printed) {
  const std::vector<std::string> expected_lines = Split(expected, '\n');
  const std::vector<std::string> lines = Split(printed, '\n');
  std::string text;
  for (std::size_t i = 0; i < lines.size(); ++i) {
    const bool is_masked =
        i < expected_lines.size() && expected_lines[i].find(":###: ") != std::string::npos;
    text += (is_masked ? Masked(lines[i]) : lines[i]) + "\n";
  }
  return text;
}

struct Preparation {
  std::string root = zephlane::test::kRootSchema;
  std::vector<std::vector<std::string>> commands;
  int result = 0;
  bool has_configuration = true;
};

Preparation ReadPreparation(const fs::path& file) {
  Preparation setup;
  for (const std::string& line : Split(TextOf(file), '\n')) {
    std::vector<std::string> words = Split(line, ' ');
    const std::string directive = words.at(0);
    words.erase(words.begin());
    if (directive == "root") {
      setup.root = words.at(0);
    } else if (directive == "redis") {
      setup.commands.push_back(words);
    } else if (directive == "result") {
      setup.result = std::stoi(words.at(0));
    } else if (directive == "no-configuration") {
      setup.has_configuration = false;
    } else {
      ADD_FAILURE() << file << ": " << line;
    }
  }
  return setup;
}

void CopySchemas(const fs::path& folder) {
  zephlane::test::StartSchemaDirectory();
  for (const auto& file : fs::directory_iterator(folder)) {
    if (file.path().extension() != ".json") { continue; }
    const std::string name = file.path().filename();
    if (name == "SchemaURIConf.json") {
      zephlane::test::WriteConfiguration(TextOf(file.path()));
    } else {
      zephlane::test::WriteSchema(name, TextOf(file.path()));
    }
  }
}

std::vector<std::string> CaseNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(ZEPHLANE_SCHEMA_CASES)) {
    if (entry.is_directory()) { names.push_back(entry.path().filename()); }
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& info) {
  std::string name = info.param;
  std::replace(name.begin(), name.end(), '-', '_');
  return name;
}

class SchemaCases : public StoreTest, public testing::WithParamInterface<std::string> {};

TEST_P(SchemaCases, GiveTheExpectedStore) {
  const fs::path folder = fs::path(ZEPHLANE_SCHEMA_CASES) / GetParam();
  const Preparation setup = ReadPreparation(folder / "setup.txt");
  CopySchemas(folder);
  if (!setup.has_configuration) { zephlane::test::RemoveConfiguration(); }
  for (const std::vector<std::string>& command : setup.commands) { Ask(command); }

  int result = -1;
  const long open = zephlane::test::OpenDescriptors();
  const Output printed = Capture([&] { result = zephlaneSchemaInterpreter(setup.root.c_str()); });
  EXPECT_EQ(zephlane::test::OpenDescriptors(), open);
  Ask({"ACL", "SETUSER", "default", "+@all"});  // a case may have denied commands

  const std::string expected_errors = TextOf(folder / "stderr.txt");
  EXPECT_EQ(MaskedLike(expected_errors, printed.err), expected_errors);
  EXPECT_EQ(result, setup.result);
  EXPECT_EQ(Dump(), TextOf(folder / "store.txt"));
  if (fs::exists(folder / "stdout.txt")) { EXPECT_EQ(printed.out, TextOf(folder / "stdout.txt")); }
}

INSTANTIATE_TEST_SUITE_P(Cases, SchemaCases, testing::ValuesIn(CaseNames()), TestName);

}  // namespace
