// SPDX-License-Identifier: MIT
//
// A namespace of the process's own: mounts with an empty /tmp, a network with nothing but loopback,
// and message queues. Root needs no more; an ordinary user adds a user namespace.
#pragma once

#include <string>
#include <vector>

namespace zephlane::test {

// Enters one. What lies directly below /tmp and is or holds one of `keep` stays visible, but never
// the library's fixed names. An empty result means done; otherwise it says what the machine
// refused, and nothing has changed.
std::string EnterPrivateNamespace(const std::vector<std::string>& keep);

}  // namespace zephlane::test
