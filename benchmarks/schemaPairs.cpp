// SPDX-License-Identifier: MIT
//
// Annotation of an enclosure with a set of fans, and validation of a fan, against types that lie in
// the store as the interpreter leaves them.
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "commandRecord.h"
#include "pairs.h"
#include "storeSetup.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

constexpr char kIndex[] = "00000000-0000-0000-0001-eeeeeeeeeeee";
constexpr char kOdata[] = "30000000-0000-0000-0000-000000000001";
constexpr char kOdataDefinitions[] = "30000000-0000-0000-0000-000000000002";
constexpr char kReferenceType[] = "30000000-0000-0000-0000-000000000003";
constexpr char kSchema[] = "30000000-0000-0000-0000-000000000004";
constexpr char kDefinitions[] = "30000000-0000-0000-0000-000000000005";
constexpr char kChassisType[] = "30000000-0000-0000-0000-000000000006";
constexpr char kFansType[] = "30000000-0000-0000-0000-000000000007";
constexpr char kFanType[] = "30000000-0000-0000-0000-000000000008";
constexpr char kFanRequired[] = "30000000-0000-0000-0000-000000000009";
constexpr char kTextType[] = "30000000-0000-0000-0000-00000000000a";
constexpr char kPatterns[] = "30000000-0000-0000-0000-00000000000b";

constexpr unsigned int kIdRange = 3;
constexpr std::size_t kFans = 20;

const std::string kChassis = InstanceId(kIdRange, 0);
const std::string kFanSet = InstanceId(kIdRange, 1);
const std::string kRemarkedFan = InstanceId(kIdRange, 2);

std::string FanId(std::size_t n) {
  return InstanceId(kIdRange, 16 + n);
}

void StoreTypes(redisContext* ctx) {
  Ask(ctx, "HSET %s odata.4.0.0 %s", kIndex, kOdata);
  Ask(ctx, "HSET %s definitions %s", kOdata, kOdataDefinitions);
  Ask(ctx, "HSET %s idRef %s", kOdataDefinitions, kReferenceType);
  Ask(ctx, "HSET %s $ref #/definitions/Chassis definitions %s", kSchema, kDefinitions);
  Ask(ctx, "HSET %s Chassis %s Fan %s", kDefinitions, kChassisType, kFanType);
  for (const char* field : {"Name", "Model", "Serial", "Location"}) {
    Ask(ctx, "HSET %s %s %s", kChassisType, field, kTextType);
  }
  Ask(ctx, "HSET %s Fans %s", kChassisType, kFansType);
  Ask(ctx, "HSET %s type array items %s", kFansType, kFanType);
  for (const char* field : {"Name", "Slot", "SpeedRpm", "LowestRpm", "State", "Health"}) {
    Ask(ctx, "HSET %s %s %s", kFanType, field, kTextType);
  }
  Ask(ctx, "HSET %s Chassis %s required %s patternProperties %s additionalProperties false",
      kFanType, kChassisType, kFanRequired, kPatterns);
  Ask(ctx, "SADD %s Name Slot State", kFanRequired);
  Ask(ctx, "HSET %s %s %s", kPatterns, "^([A-Za-z][A-Za-z0-9_]*)?@(odata|Model)\\.[A-Za-z0-9_.]+$",
      kTextType);
}

void StoreFan(redisContext* ctx, const std::string& id, std::size_t n) {
  Ask(ctx,
      "HSET %s Name Fan-%d Slot %d SpeedRpm 4200 LowestRpm 900 State Enabled Health OK Chassis %s",
      id.c_str(), static_cast<int>(n), static_cast<int>(n), kChassis.c_str());
}

void StoreInstances(redisContext* ctx) {
  Ask(ctx, "HSET %s Name Enclosure Model E-2 Serial 0815 Location Rack-3 Fans %s", kChassis.c_str(),
      kFanSet.c_str());
  for (std::size_t i = 0; i < kFans; ++i) {
    StoreFan(ctx, FanId(i), i);
    Ask(ctx, "SADD %s %s", kFanSet.c_str(), FanId(i).c_str());
  }
  StoreFan(ctx, kRemarkedFan, kFans);
  Ask(ctx, "HSET %s @odata.id /Fans/20 @odata.type #Fan.1.0.0.Fan Name@Model.note new typeID %s",
      kRemarkedFan.c_str(), kFanType);
}

// Takes all stamps of the tree away, in one round trip.
Step Unstamping() {
  std::vector<CommandWords> commands = {{"HDEL", kChassis, "typeID"}};
  for (std::size_t i = 0; i < kFans; ++i) { commands.push_back({"HDEL", FanId(i), "typeID"}); }
  const auto prepared = std::make_shared<PreparedCommands>(std::move(commands));
  return [prepared](redisContext* ctx) { prepared->ReplayPipelined(ctx); };
}

}  // namespace

void AddSchemaPairs(redisContext* ctx) {
  StoreTypes(ctx);
  StoreInstances(ctx);
  AddPair({.family = "annotation",
           .function = "zephlaneInsertTypeID",
           .allowed = kSequence,
           .library =
               [](redisContext* connection) {
                 (void)zephlaneInsertTypeID(connection, kChassis.c_str(), kSchema, 0);
               },
           .prepare = Unstamping()});
  static const std::string plain_fan = InstanceId(kIdRange, 3);
  StoreFan(ctx, plain_fan, kFans + 1);
  Ask(ctx, "HSET %s typeID %s", plain_fan.c_str(), kFanType);
  AddPair({.family = "validation",
           .function = "zephlaneValidateResponseObject",
           .allowed = kSequence,
           .library = [](redisContext* connection) {
             (void)zephlaneValidateResponseObject(connection, plain_fan.c_str());
           }});
  AddPair({.family = "validation",
           .function = "the same, 3 fields by a pattern",
           .allowed = kSequence,
           .library = [](redisContext* connection) {
             (void)zephlaneValidateResponseObject(connection, kRemarkedFan.c_str());
           }});
}

}  // namespace zephlane::bench
