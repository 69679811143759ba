// SPDX-License-Identifier: MIT
//
// Creating many objects at once, and drawing the names that are unique across processes.
#include <algorithm>
#include <string>
#include <vector>

#include "pairs.h"
#include "storeSetup.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr std::size_t kHashes = 500;
constexpr unsigned int kIdRange = 2;

const InstanceData kSensor[] = {{"Name", "Inlet temperature"},
                                {"Reading", "23.5"},
                                {"Units", "Cel"},
                                {"State", "Enabled"},
                                {"Chassis", "10000000-0000-0000-0000-000000000001"}};
constexpr std::size_t kFields = sizeof(kSensor) / sizeof(kSensor[0]);

// 500 sensors as a caller holds them: an array of pairs each.
class Sensors {
 public:
  Sensors() : pairs_(kHashes * kFields), ids_(kHashes), entries_(kHashes) {
    for (std::size_t i = 0; i < kHashes; ++i) {
      ids_[i] = InstanceId(kIdRange, i);
      InstanceData* first = &pairs_[i * kFields];
      std::copy_n(kSensor, kFields, first);
      entries_[i] = {ids_[i].c_str(), ZEPHLANE_TYPE_HASH, static_cast<int>(kFields), first};
    }
  }
  void Create(redisContext* ctx) {
    (void)zephlaneCreateMultipleObjects(ctx, entries_.data(), static_cast<int>(kHashes));
  }

 private:
  std::vector<InstanceData> pairs_;
  std::vector<std::string> ids_;
  std::vector<ObjectEntry> entries_;
};

}  // namespace

void AddCreationPairs(redisContext* /*ctx*/) {
  static Sensors sensors;
  AddPair({.family = "500 hashes in a pipeline",
           .function = "zephlaneCreateMultipleObjects",
           .allowed = kThroughput,
           .library = [](redisContext* ctx) { sensors.Create(ctx); },
           .pipelined = true});
  AddPair({.family = "identity",
           .function = "zephlaneGenerateUUID",
           .allowed = kSequence,
           .library = [](redisContext* ctx) {
             char uuid[ZEPHLANE_ID_SIZE] = "";
             (void)zephlaneGenerateUUID(ctx, uuid);
           }});
  AddPair({.family = "identity",
           .function = "generateEventID",
           .allowed = kSequence,
           .library = [](redisContext* ctx) {
             char id[ZEPHLANE_ID_SIZE] = "";
             (void)generateEventID(ctx, id);
           }});
}

}  // namespace zephlane::bench
