// SPDX-License-Identifier: MIT
//
// Plays the corpus of a target and what its fuzzer once found through the target's entry.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "fuzz/fuzzInput.h"
#include "support/output.h"

namespace {

namespace fs = std::filesystem;

int PlayAll(const fs::path& folder) {
  int played = 0;
  if (!fs::exists(folder)) { return played; }
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    SCOPED_TRACE(entry.path().string());
    std::ifstream stream(entry.path(), std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(stream), {}};
    const auto* data = reinterpret_cast<const std::uint8_t*>(input.data());
    int result = -1;
    (void)zephlane::test::Capture([&] { result = LLVMFuzzerTestOneInput(data, input.size()); });
    EXPECT_EQ(result, 0);
    ++played;
  }
  return played;
}

TEST(FuzzReplay, CorpusKeepsEveryPromise) {
  EXPECT_GT(PlayAll(fs::path(ZEPHLANE_FUZZ) / "corpus" / ZEPHLANE_FUZZ_TARGET), 0);
}

TEST(FuzzReplay, FormerFindingsStayFixed) {
  (void)PlayAll(fs::path(ZEPHLANE_FUZZ) / "regression" / ZEPHLANE_FUZZ_TARGET);
}

}  // namespace
