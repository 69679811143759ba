// SPDX-License-Identifier: MIT
#include "cost/callGraph.h"

#include <algorithm>
#include <fstream>
#include <vector>

namespace zephlane::cost {

namespace {

// The text in quotes behind `key`; empty where there is none.
std::string Quoted(const std::string& line, const std::string& key) {
  const std::size_t at = line.find(key + ": \"");
  if (at == std::string::npos) { return ""; }
  const std::size_t begin = at + key.size() + 3;
  return line.substr(begin, line.find('"', begin) - begin);
}

// A label such as "name\nfile:line:column\n32 bytes (static)\n0 dynamic objects".
int FrameOf(const std::string& label) {
  const std::size_t bytes = label.find(" bytes (");
  if (bytes == std::string::npos) { return 0; }
  const std::size_t begin = label.rfind("\\n", bytes) + 2;
  return std::stoi(label.substr(begin, bytes - begin));
}

}  // namespace

CallGraph::CallGraph(const std::filesystem::path& directory) {
  for (const auto& entry : std::filesystem::recursive_directory_iterator(directory)) {
    if (entry.path().extension() != ".ci") { continue; }
    std::ifstream stream(entry.path());
    for (std::string line; std::getline(stream, line);) { ReadLine(line); }
  }
}

void CallGraph::ReadLine(const std::string& line) {
  if (line.starts_with("node:")) {
    Function& function = functions_[Quoted(line, "title")];
    function.frame = std::max(function.frame, FrameOf(Quoted(line, "label")));
  } else if (line.starts_with("edge:")) {
    functions_[Quoted(line, "sourcename")].callees.insert(Quoted(line, "targetname"));
  }
}

int CallGraph::LargestFrame(const std::string& function) const {
  int largest = 0;
  std::set<std::string> seen;
  std::vector<std::string> open = {function};
  while (!open.empty()) {
    const std::string name = open.back();
    open.pop_back();
    const auto found = functions_.find(name);
    if (!seen.insert(name).second || found == functions_.end()) { continue; }
    largest = std::max(largest, found->second.frame);
    open.insert(open.end(), found->second.callees.begin(), found->second.callees.end());
  }
  return largest;
}

}  // namespace zephlane::cost
