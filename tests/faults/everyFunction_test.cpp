// SPDX-License-Identifier: MIT
//
// The table of every function is whole, and each of its calls succeeds on the store it asks for.
#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "faults/everyFunction.h"
#include "support/output.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {
namespace {

// Exported names that are no functions.
const std::set<std::string> kGlobals = {"G_aSchemaUriInfoTable",
                                        "G_aSpecialSchemaFileTable",
                                        "G_nSchemaURICount",
                                        "G_nSpecialSchemaFileCount",
                                        "G_sTimeout",
                                        "OemMqID",
                                        "ZephlaneGenerateEventIDLockFile",
                                        "ZephlaneGenerateUUIDLockFile",
                                        "hookFunctionInitFlag",
                                        "hookOemFunctionInitFlag",
                                        "mqID",
                                        "openedQueueInfoList",
                                        "propertyRuxoMessage",
                                        "updateMsgQueueLock",
                                        "zephlaneAutoGenerateEventIDLock",
                                        "zephlaneAutoGenerateUUIDLock",
                                        "zephlaneFunctionTable",
                                        "zephlaneHookFuncInitLock",
                                        "zephlaneOemFunctionTable",
                                        "zephlaneOemHookFuncInitLock"};

// The names between "global:" and "local:" of the export list.
std::vector<std::string> ExportedFunctions() {
  std::ifstream file(ZEPHLANE_EXPORT_LIST);
  std::vector<std::string> names;
  bool is_global = false;
  for (std::string word; file >> word;) {
    if (word == "local:") { break; }
    if (is_global && word.ends_with(';')) {
      word.pop_back();
      if (kGlobals.count(word) == 0) { names.push_back(word); }
    }
    is_global = is_global || word == "global:";
  }
  std::sort(names.begin(), names.end());
  return names;
}

TEST(EveryFunction, TableHoldsEachExportedFunctionOnce) {
  std::vector<std::string> names;
  for (const FunctionFamily& family : EveryFunction()) {
    for (const FunctionCase& function : family.cases) { names.emplace_back(function.name); }
  }
  std::sort(names.begin(), names.end());
  EXPECT_EQ(names, ExportedFunctions());
  EXPECT_GT(names.size(), 150U);
}

class EveryFunctionTest : public StoreTest {};

TEST_F(EveryFunctionTest, EachCallSucceedsAgainAndAgain) {
  for (const FunctionFamily& family : EveryFunction()) {
    for (const FunctionCase& function : family.cases) {
      if (!MayRepeat(function)) { continue; }
      SCOPED_TRACE(function.name);
      redisContext* own = ConnectToStore();
      for (int run = 0; run < 2; ++run) {
        Stage stage{ctx(), own};
        Outcome outcome;
        const Output printed = Capture([&] {
          Prepare(function, stage);
          outcome = function.call(stage);
          Finish(function, stage);
        });
        EXPECT_EQ(static_cast<int>(outcome.result), static_cast<int>(Result::kSuccess))
            << outcome.remark << printed.out << printed.err;
        EXPECT_EQ(Ask({"PING"}), "PONG");
      }
      redisFree(own);
    }
  }
}

}  // namespace
}  // namespace zephlane::test
