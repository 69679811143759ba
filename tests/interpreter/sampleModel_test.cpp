// SPDX-License-Identifier: MIT
//
// The sample model, interpreted whole. sampleModel.txt is the resulting store as text; run with
// ZEPHLANE_UPDATE_EXPECTED=1 to write it anew after a deliberate change, and read the difference.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "support/memoryUse.h"
#include "support/output.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace {

namespace fs = std::filesystem;

using zephlane::test::Capture;
using zephlane::test::DeepestStackUse;
using zephlane::test::Output;
using zephlane::test::ResidentKilobytes;
using zephlane::test::StoreTest;

constexpr char kRootSchema[] = "/tmp/FOSS_schema/ServiceRoot.v1_0_0.json";
constexpr char kExpectedStore[] = ZEPHLANE_SOURCE "/tests/interpreter/sampleModel.txt";

std::string TextOf(const char* path) {
  std::ifstream stream(path);
  return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// The first value or member that still is a reference's text. Names of fields may be such texts,
// and the "$ref" of a schema's root stays: it says which definition describes its instances.
std::string FirstPlaceholder(const std::string& store) {
  std::istringstream lines(store);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t value = line.find(" = ");
    const std::string text = value == std::string::npos ? line : line.substr(value);
    const bool is_root_reference = line.starts_with("  $ref = ");
    if (text.find("#/") != std::string::npos && !is_root_reference) { return line; }
  }
  return "";
}

class SampleModel : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    fs::create_directories("/tmp/etc");
    fs::remove_all("/tmp/FOSS_schema");
    fs::copy(ZEPHLANE_SOURCE "/schemas", "/tmp/FOSS_schema");
    fs::rename("/tmp/FOSS_schema/SchemaURIConf.json", "/tmp/etc/SchemaURIConf.json");
  }
  int Interpret() {
    int result = -1;
    printed_ = Capture([&] { result = zephlaneSchemaInterpreter(kRootSchema); });
    return result;
  }
  Output printed_;
};

TEST_F(SampleModel, InternalisesWithoutAMessage) {
  EXPECT_EQ(Interpret(), 0);
  EXPECT_EQ(printed_.err, "");
}

TEST_F(SampleModel, GivesTheExpectedStore) {
  ASSERT_EQ(Interpret(), 0);
  const std::string store = Dump();
  if (std::getenv("ZEPHLANE_UPDATE_EXPECTED") != nullptr) {
    std::ofstream(kExpectedStore) << store;
  }
  // Not EXPECT_EQ: a difference of texts of this size is better read with diff.
  EXPECT_TRUE(store == TextOf(kExpectedStore)) << "run with ZEPHLANE_UPDATE_EXPECTED=1 and compare";
}

TEST_F(SampleModel, LeavesNoDummyAndNoPlaceholder) {
  ASSERT_EQ(Interpret(), 0);
  const std::string store = Dump();
  EXPECT_EQ(store.find("DummyKey"), std::string::npos);
  EXPECT_EQ(store.find("00000000-0000-0000-0000-000000000000"), std::string::npos);
  EXPECT_EQ(FirstPlaceholder(store), "");
}

TEST_F(SampleModel, SecondRunReturnsZeroAndWritesNothing) {
  ASSERT_EQ(Interpret(), 0);
  const std::string store = Dump();
  EXPECT_EQ(Ask({"CONFIG", "RESETSTAT"}), "OK");
  EXPECT_EQ(Interpret(), 0);
  EXPECT_EQ(Dump(), store);
  EXPECT_EQ(Ask({"INFO", "commandstats"}).find("cmdstat_hmset"), std::string::npos);
}

TEST_F(SampleModel, ProgressCountsWhatWasRead) {
  ASSERT_EQ(Interpret(), 0);
  InterpreterProgress progress{};
  zephlaneSchemaInterpreterProgress(&progress);
  EXPECT_EQ(progress.nFiles, 83U);
  EXPECT_EQ(progress.nObjects, 1373U);
  EXPECT_EQ(progress.nReferences, 837U);
}

#ifndef ZEPHLANE_SANITIZED
TEST_F(SampleModel, ResidentMemoryGrowsByLessThanTwoMegabytes) {
  const long before = ResidentKilobytes();
  EXPECT_GT(before, 0);
  ASSERT_EQ(Interpret(), 0);
  const long grown = ResidentKilobytes() - before;
  RecordProperty("grown_kilobytes", std::to_string(grown));
  std::printf("resident memory grew by %ld kB\n", grown);
  EXPECT_LT(grown, 2 * 1024);
}

TEST_F(SampleModel, UsesLessStackThanASmallThreadHas) {
  int result = -1;
  const std::size_t used = DeepestStackUse([&] { result = Interpret(); });
  EXPECT_EQ(result, 0);
  RecordProperty("stack_bytes", std::to_string(used));
  std::printf("resident memory %ld kB, deepest stack %zu bytes\n", ResidentKilobytes(), used);
  EXPECT_GT(used, 0U);
  EXPECT_LT(used, 64U * 1024);
}
#endif

}  // namespace
