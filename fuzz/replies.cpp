// SPDX-License-Identifier: MIT
//
// Replies of a server that may say anything, to every function that takes a connection. The first
// byte chooses the function, the others are all that the server ever says.
#include <string_view>

#include "fuzz/fuzzInput.h"
#include "fuzz/playedReplies.h"
#include "outage/storeCalls.h"

#include <zephlaneAPI/hashTree.h>
#include <zephlaneAPI/interpreter.h>

namespace {

using zephlane::fuzz::PlayedReplies;
using zephlane::test::StoreCall;
using zephlane::test::StoreCalls;

// What an earlier input left in the tables of the process. The store itself has nothing to say.
void ClearTables() {
  PlayedReplies server("");
  schemaReferenceListInit();
  (void)hashTreeInit(server.ctx());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) { return 0; }
  ClearTables();
  const StoreCall& call = StoreCalls()[data[0] % StoreCalls().size()];
  // It sleeps a second between its readings, which another function makes too.
  if (std::string_view(call.name) == "zephlaneCheckTTL") { return 0; }
  PlayedReplies server(zephlane::fuzz::TextOf(data + 1, size - 1));
  (void)call.call(server.ctx());
  return 0;
}
