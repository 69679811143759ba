// SPDX-License-Identifier: MIT
//
// What a call prints, and what a report looks like.
#pragma once

#include <functional>
#include <string>

namespace zephlane::test {

struct Output {
  std::string out;
  std::string err;
};

// Runs `body` with standard output and standard error caught, C stdio flushed before and after.
Output Capture(const std::function<void()>& body);

// `printed` with the line numbers of its reports replaced by "###", after checking that each was
// printed in the report's width. Use it for messages that carry the line of their statement.
std::string Masked(const std::string& printed);

// The report of the API module with a masked line; `text` without the newline that ends it.
std::string ApiReport(const std::string& text);
// The report of an interpreter module with a masked line.
std::string InterpreterReport(const std::string& source, const std::string& text);
// The report of an interpreter module with a number of its own.
std::string InterpreterReport(const std::string& source, int line, const std::string& text);

}  // namespace zephlane::test
