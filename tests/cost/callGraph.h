// SPDX-License-Identifier: MIT
//
// The stack frames of the library's functions, as the compiler tells them in the call graphs that
// -fcallgraph-info=su writes beside each object.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace zephlane::cost {

class CallGraph {
 public:
  // Reads every call graph below a directory.
  explicit CallGraph(const std::filesystem::path& directory);
  // Bytes of the largest frame among an exported function and all of the library's functions that
  // it leads to; 0 for an unknown function.
  [[nodiscard]] int LargestFrame(const std::string& function) const;

 private:
  struct Function {
    int frame = 0;
    std::set<std::string> callees;
  };
  void ReadLine(const std::string& line);
  std::map<std::string, Function> functions_;
};

}  // namespace zephlane::cost
