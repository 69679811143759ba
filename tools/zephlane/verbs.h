// SPDX-License-Identifier: MIT
//
// The verbs. Each adds its subcommand with its options, its help and an example, and sets `run`
// when the user chose it. To add a verb: write its source, declare it here, and name it in main.cpp
// and CMakeLists.txt.
#pragma once

#include <functional>

#include <CLI/CLI.hpp>

#include "console.h"

namespace zephlane::tool {

// Does what was asked for; kExitDone or kExitFailed.
using Verb = std::function<int(Console&)>;

void AddInterpret(CLI::App& app, Verb& run);
void AddTree(CLI::App& app, Verb& run);
void AddGet(CLI::App& app, Verb& run);
void AddType(CLI::App& app, Verb& run);
void AddUuid(CLI::App& app, Verb& run);
void AddAnnotate(CLI::App& app, Verb& run);
void AddValidate(CLI::App& app, Verb& run);
void AddRm(CLI::App& app, Verb& run);
void AddTask(CLI::App& app, Verb& run);
void AddHook(CLI::App& app, Verb& run);
void AddEvent(CLI::App& app, Verb& run);
void AddWatch(CLI::App& app, Verb& run);

}  // namespace zephlane::tool
