// SPDX-License-Identifier: MIT
//
// The net under every exported function that can allocate: no exception reaches a C caller.
#pragma once

#include <cxxabi.h>

namespace zephlane {

// Runs `body`; an exception, such as running out of memory, yields `failure`.
template <typename Result, typename Body>
Result Guarded(Result failure, Body&& body) {
  try {
    return body();
  } catch (const abi::__forced_unwind&) {
    throw;  // pthread_exit and cancellation must reach the thread's base
  } catch (...) { return failure; }
}

}  // namespace zephlane
