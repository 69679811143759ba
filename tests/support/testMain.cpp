// SPDX-License-Identifier: MIT
//
// main() of every test program: it starts itself again below the launcher that gives it a Redis
// server of its own, unless it only lists its cases.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/privateRedis.h"

namespace {

bool OnlyLists(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (std::string_view(argv[i]).starts_with("--gtest_list_tests")) { return true; }
  }
  return false;
}

[[noreturn]] void StartAgainWithServer(int argc, char** argv) {
  char launcher[] = ZEPHLANE_PRIVATE_REDIS;
  char self[] = "/proc/self/exe";
  char resolved[4096] = "";
  (void)!readlink(self, resolved, sizeof(resolved) - 1);
  std::vector<std::string> emulator = {ZEPHLANE_EMULATOR};  // empty where programs run as they are
  std::vector<char*> words = {launcher};
  for (std::string& word : emulator) { words.push_back(word.data()); }
  words.push_back(resolved);
  words.insert(words.end(), argv + 1, argv + argc);
  words.push_back(nullptr);
  (void)execv(launcher, words.data());
  std::perror(launcher);
  std::exit(127);
}

}  // namespace

int main(int argc, char** argv) {
  if (!OnlyLists(argc, argv) && std::getenv(zephlane::test::kPrivateRedisMark) == nullptr) {
    StartAgainWithServer(argc, argv);
  }
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
