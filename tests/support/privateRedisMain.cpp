// SPDX-License-Identifier: MIT
//
// zephlane-private-redis [--no-server] [--no-namespace] PROGRAM [ARGUMENT...]
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "support/privateRedis.h"

int main(int argc, char** argv) {
  zephlane::test::PrivateRedisOptions options;
  int next = 1;
  for (; next < argc && std::string_view(argv[next]).starts_with("--"); ++next) {
    const std::string_view option = argv[next];
    if (option == "--no-server") {
      options.with_server = false;
    } else if (option == "--no-namespace") {
      options.with_namespace = false;
    } else {
      next = argc;
    }
  }
  if (next >= argc) {
    (void)std::fputs(
        "usage: zephlane-private-redis [--no-server] [--no-namespace] PROGRAM [ARGUMENT...]\n",
        stderr);
    return 2;
  }
  return zephlane::test::RunInPrivateRedis(options, {argv + next, argv + argc});
}
