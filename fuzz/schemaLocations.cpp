// SPDX-License-Identifier: MIT
//
// The file that names the accepted schema locations.
#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/fuzzInput.h"
#include "support/owners.h"
#include "support/text.h"

#include <zephlaneAPI/interpreter.h>

namespace {

using zephlane::BoundedText;
using zephlane::fuzz::Require;

// A file in memory. Its path is one that any function can open.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : fd_(memfd_create("locations", 0)) {
    Require(write(fd_.Get(), data, size) == static_cast<ssize_t>(size), "the input is stored");
    path_ = "/proc/self/fd/" + std::to_string(fd_.Get());
  }
  [[nodiscard]] const char* Path() const {
    return path_.c_str();
  }

 private:
  zephlane::Descriptor fd_;
  std::string path_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(data, size);
  const int result = loadSchemaURIConf(file.Path());
  Require(result == 0 || result == 1, "the result is one of two");
  Require(G_nSchemaURICount >= 0 && G_nSchemaURICount <= 15, "at most 15 locations are counted");
  Require(result == 1 || G_nSchemaURICount > 0, "a loaded configuration has a location");
  for (const SchemaUriInfo& entry : G_aSchemaUriInfoTable) {
    Require(BoundedText(entry.uri).size() < sizeof(entry.uri) &&
                BoundedText(entry.directory).size() < sizeof(entry.directory),
            "every location is terminated");
  }
  for (int i = 0; i < G_nSchemaURICount; ++i) {
    Require(isValidDmtfURL(G_aSchemaUriInfoTable[i].uri) == 1, "a counted location is accepted");
  }
  return 0;
}
