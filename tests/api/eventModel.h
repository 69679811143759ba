// SPDX-License-Identifier: MIT
//
// What cases about events share: the part of a model that events are typed by, records, and what
// the counters of a store give.
#pragma once

#include <cstdio>
#include <initializer_list>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "redis/reply.h"
#include "support/scriptedServer.h"
#include "support/store.h"
#include "support/text.h"

#include <zephlaneAPI.h>

namespace zephlane::test {

inline constexpr char kIndex[] = "00000000-0000-0000-0001-eeeeeeeeeeee";
inline constexpr char kEventSchema[] = "01000000-0000-0000-0000-000000000017";
inline constexpr char kEventCollection[] = "02000000-0000-0000-0000-000000000017";
inline constexpr char kDefinitions[] = "00000000-0000-0000-0001-000000000001";
inline constexpr char kEventType[] = "00000000-0000-0000-0001-000000000002";
inline constexpr char kRecordType[] = "00000000-0000-0000-0001-000000000003";
inline constexpr char kLinkType[] = "00000000-0000-0000-0001-000000000004";
inline constexpr char kRequiredOfEvent[] = "00000000-0000-0000-0001-100000000001";
inline constexpr char kRequiredOfRecord[] = "00000000-0000-0000-0001-100000000002";

inline constexpr char kUriMap[] = "WEB-OBJ-URI-MAP";
inline constexpr char kFan[] = "fan 7";  // a key in that map

// As the interpreter leaves it, with one required property for each of the two types.
inline void StoreEventModel(redisContext* ctx) {
  Ask(ctx, {"HSET", kIndex, "Event.1.0.0", kEventSchema});
  Ask(ctx,
      {"HSET", kEventSchema, "instanceCollection", kEventCollection, "definitions", kDefinitions});
  Ask(ctx, {"HSET", kDefinitions, "Event", kEventType, "EventRecord", kRecordType});
  Ask(ctx, {"HSET", kEventType, "required", kRequiredOfEvent});
  Ask(ctx, {"HSET", kRecordType, "required", kRequiredOfRecord, "OriginOfCondition", kLinkType});
  Ask(ctx, {"SADD", kRequiredOfEvent, "Events"});
  Ask(ctx, {"SADD", kRequiredOfRecord, "EventId"});
  Ask(ctx, {"HSET", kUriMap, kFan, "/model/v1/Fans/7"});
}

// The n-th UUID of a store.
inline std::string Uuid(int n) {
  char uuid[ZEPHLANE_ID_SIZE] = "";
  (void)std::snprintf(uuid, sizeof(uuid), "10000000-0000-0000-0000-%012x", n);
  return uuid;
}

// A record with a timestamp of its own.
inline EventRecord Record(std::string_view member_id) {
  EventRecord record{};
  CopyCut(record.MemberId, member_id);
  CopyCut(record.EventType, "Alert");
  CopyCut(record.EventTimestamp, "2024-03-05T14:07:09+08:00");
  CopyCut(record.MessageId, "Fan.1.0.Stopped");
  return record;
}

// A store that holds the model and nothing else.
class EventTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    char uuid[ZEPHLANE_ID_SIZE] = "";
    ASSERT_EQ(zephlaneGenerateUUID(ctx(), uuid), 0);  // from here on the maximum is known
    ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
    StoreEventModel(ctx());
  }
  // The store without model and counters.
  std::string DumpOfEvents() {
    Ask({"DEL", kIndex, kEventSchema, kDefinitions, kEventType, kRecordType, kRequiredOfEvent,
         kRequiredOfRecord, kUriMap, "autoUUID", "autoEventID"});
    return Dump();
  }
  // Only so many UUIDs are left.
  void LeaveUuids(int count) {
    char counter[ZEPHLANE_ID_SIZE] = "";
    (void)std::snprintf(counter, sizeof(counter), "7fffffff-ffff-ffff-ffff-%012llx",
                        0xffffffffffffULL - static_cast<unsigned int>(count));
    Ask({"SET", "autoUUID", counter});
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  void WillReplyAll(std::initializer_list<std::string> replies) {
    for (const std::string& reply : replies) { server_.WillReply(reply); }
  }
  // The n-th UUID is drawn.
  void WillDraw(int n) {
    WillReplyAll({n == 1 ? "$-1\r\n" : Bulk(Uuid(n - 1)), "+OK\r\n"});
  }
  // The schema is looked up.
  void WillGiveTypes() {
    WillReplyAll({Bulk(kEventSchema), Bulk(kEventCollection), Bulk(kDefinitions), Bulk(kEventType),
                  Bulk(kRecordType)});
  }

  ScriptedServer server_;
};

inline const std::string kTypeLookup = std::string("HGET ") + kIndex + " Event.1.0.0\nHGET " +
                                       kEventSchema + " instanceCollection\n" + "HGET " +
                                       kEventSchema + " definitions\nHGET " + kDefinitions +
                                       " Event\n" + "HGET " + kDefinitions + " EventRecord\n";

inline std::string Drawing(int n) {
  return "GET autoUUID\nSET autoUUID " + Uuid(n) + "\n";
}

}  // namespace zephlane::test
