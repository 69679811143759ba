// SPDX-License-Identifier: MIT
//
// Services that write several objects: return messages, tasks, events, trees and deadlines. The
// counters that names are drawn from are set back before each call, so that both sides write the
// same keys.
#include <cstdlib>
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

constexpr unsigned int kIdRange = 4;
constexpr std::size_t kTreeFans = 20;

const std::string kMessages = InstanceId(kIdRange, 0);
const std::string kTask = InstanceId(kIdRange, 1);
const std::string kSource = InstanceId(kIdRange, 2);
const std::string kCopy = InstanceId(kIdRange, 3);
const std::string kChassis = InstanceId(kIdRange, 4);
const std::string kFans = InstanceId(kIdRange, 5);

Step Preparation(std::vector<CommandWords> commands) {
  const auto prepared = std::make_shared<PreparedCommands>(std::move(commands));
  return [prepared](redisContext* ctx) { prepared->ReplayPipelined(ctx); };
}

void Add(const char* family, const char* function, Step library, Step prepare = nullptr) {
  AddPair({.family = family,
           .function = function,
           .allowed = kService,
           .library = std::move(library),
           .prepare = std::move(prepare)});
}

Step CountersSetBack() {
  return Preparation({{"SET", "autoUUID", "10000000-0000-0000-0000-000000a00000"},
                      {"SET", "autoEventID", "00000100"}});
}

void AddMessages() {
  Add(
      "messages", "zephlaneCreateReturnMessage",
      [](redisContext* ctx) {
        (void)zephlaneCreateReturnMessage(ctx, kMessages.c_str(), "Base.1.0.Success", "left", "7",
                                          nullptr);
      },
      CountersSetBack());
  Add(
      "messages", "zephlaneCreateReturnMsgV21",
      [](redisContext* ctx) {
        const char* parameters[] = {"left", "7"};
        (void)zephlaneCreateReturnMsgV21(ctx, kMessages.c_str(), "Base.1.0.Success", parameters, 2);
      },
      CountersSetBack());
}

void AddTasks() {
  Add(
      "tasks", "zephlaneCreateAsyncTask",
      [](redisContext* ctx) { std::free(zephlaneCreateAsyncTask(ctx, "firmware", "bench-tasks")); },
      CountersSetBack());
  Add("tasks", "zephlaneUpdateTaskState",
      [](redisContext* ctx) { (void)zephlaneUpdateTaskState(ctx, kTask.c_str(), "Completed"); });
}

void StoreEventTypes(redisContext* ctx) {
  constexpr char kSchema[] = "01000000-0000-0000-0000-000000000017";
  constexpr char kDefinitions[] = "31000000-0000-0000-0000-000000000001";
  constexpr char kEvent[] = "31000000-0000-0000-0000-000000000002";
  constexpr char kRecord[] = "31000000-0000-0000-0000-000000000003";
  Ask(ctx, "HSET 00000000-0000-0000-0001-eeeeeeeeeeee Event.1.0.0 %s", kSchema);
  Ask(ctx, "HSET %s instanceCollection bench-events definitions %s", kSchema, kDefinitions);
  Ask(ctx, "HSET %s Event %s EventRecord %s", kDefinitions, kEvent, kRecord);
  Ask(ctx, "HSET %s required bench-event-required", kEvent);
  Ask(ctx, "HSET %s required bench-record-required OriginOfCondition %s", kRecord, kEvent);
  Ask(ctx, "SADD bench-event-required Name Events");
  Ask(ctx, "SADD bench-record-required EventId EventType MessageId");
  Ask(ctx, "HSET WEB-OBJ-URI-MAP fan-7 /model/v1/Fans/7");
}

void AddEvents() {
  static char arguments[2][ZEPHLANE_VALUE_SIZE] = {"left", "7"};
  static EventRecord record = {.MemberId = "",
                               .EventType = "Alert",
                               .EventTimestamp = "2024-03-05T14:07:09+08:00",
                               .Severity = "Critical",
                               .Message = "A fan stopped.",
                               .MessageId = "Fan.1.0.Stopped",
                               .MessageArgsCount = 2,
                               .MessageArgs = arguments,
                               .OriginOfCondition = "fan-7",
                               .Oem = ""};
  Add(
      "events", "zephlaneCreateEventObject",
      [](redisContext* ctx) {
        (void)zephlaneCreateEventObject(ctx, "Overheat", nullptr, &record, 1);
      },
      CountersSetBack());
}

// An enclosure with a set of fans.
Step TreeStored() {
  std::vector<CommandWords> commands = {{"HSET", kChassis, "Name", "Enclosure", "Fans", kFans}};
  for (std::size_t i = 0; i < kTreeFans; ++i) {
    const std::string fan = InstanceId(kIdRange, 16 + i);
    commands.push_back({"HSET", fan, "Name", "Fan", "Chassis", kChassis});
    commands.push_back({"SADD", kFans, fan});
  }
  return Preparation(std::move(commands));
}

void AddTrees() {
  Add(
      "trees", "zephlaneDeleteSubTreeV21",
      [](redisContext* ctx) {
        const char* fields[] = {"Fans"};
        (void)zephlaneDeleteSubTreeV21(ctx, kChassis.c_str(), fields, 1);
      },
      TreeStored());
  Add("trees", "zephlaneCopyHash",
      [](redisContext* ctx) { (void)zephlaneCopyHash(ctx, kCopy.c_str(), kSource.c_str(), 0); });
  Add("trees", "zephlaneDeleteHash",
      [](redisContext* ctx) { (void)zephlaneDeleteHash(ctx, "bench-missing"); });
}

void AddDeadlines() {
  Add("deadlines", "zephlaneAddMonotonicExpiredTime", [](redisContext* ctx) {
    (void)zephlaneAddMonotonicExpiredTime(ctx, kSource.c_str(), 3600000);
  });
  Add("deadlines", "zephlaneIsMonotonicTimeExpired",
      [](redisContext* ctx) { (void)zephlaneIsMonotonicTimeExpired(ctx, kSource.c_str()); });
}

}  // namespace

void AddServicePairs(redisContext* ctx) {
  Ask(ctx, "HSET %s Name Fan SpeedRpm 4200 LowestRpm 900 State Enabled", kSource.c_str());
  StoreEventTypes(ctx);
  AddMessages();
  AddTasks();
  AddEvents();
  AddTrees();
  AddDeadlines();
}

}  // namespace zephlane::bench
