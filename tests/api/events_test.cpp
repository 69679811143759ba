// SPDX-License-Identifier: MIT
//
// Events as producers see them: creating, preparing, sending and deleting. The steps by themselves
// are in eventsSteps_test.cpp, event IDs and many producers at once in eventIds_test.cpp.
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/clockFault.h"
#include "api/eventModel.h"

namespace zephlane::test {
namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr bool kIs64Bit = sizeof(void*) == 8;

static_assert(offsetof(EventRecord, MemberId) == 0);
static_assert(offsetof(EventRecord, EventType) == 256);
static_assert(offsetof(EventRecord, EventTimestamp) == 512);
static_assert(offsetof(EventRecord, Severity) == 768);
static_assert(offsetof(EventRecord, Message) == 1024);
static_assert(offsetof(EventRecord, MessageId) == 1280);
static_assert(offsetof(EventRecord, MessageArgsCount) == 1536);
static_assert(offsetof(EventRecord, MessageArgs) == (kIs64Bit ? 1544 : 1540));
static_assert(offsetof(EventRecord, OriginOfCondition) == (kIs64Bit ? 1552 : 1544));
static_assert(offsetof(EventRecord, Oem) == (kIs64Bit ? 1589 : 1581));
static_assert(sizeof(EventRecord) == (kIs64Bit ? 1632 : 1620));
static_assert(sizeof(*EventRecord::MessageArgs) == 1024);

class CreateEvent : public EventTest {
 protected:
  int Create(EventRecord& record) {
    return zephlaneCreateEventObject(ctx(), "Fan", "oem", &record, 1);
  }
  // What is printed when that fails.
  std::string PrintedByFailing(EventRecord record, int count = 1) {
    std::vector<EventRecord> records(static_cast<std::size_t>(count), record);
    int result = -1;
    std::string printed = PrintedBy(
        [&] { result = zephlaneCreateEventObject(ctx(), "Fan", "oem", records.data(), count); });
    EXPECT_EQ(result, 1);
    return printed;
  }
  // Field of the only record of the first event.
  std::string Stored(const char* field) {
    return Ask({"HGET", Uuid(3), field});
  }
};

// What is stored

TEST_F(CreateEvent, StoresTheEventItsRecordSetAndTheRecord) {
  EventRecord record = Record("1");
  CopyCut(record.Severity, "Warning");
  CopyCut(record.Message, "A fan stopped.");
  CopyCut(record.Oem, "record's");
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(DumpOfEvents(),
            std::string("list ") + kEventCollection + "\n  " + Uuid(1) + "\n" +  //
                "hash " + Uuid(1) + "\n  Events = " + Uuid(2) + "\n  Name = Fan\n  Oem = oem\n" +
                "  typeID = " + kEventType + "\n" +  //
                "set " + Uuid(2) + "\n  " + Uuid(3) + "\n" + "hash " + Uuid(3) +
                "\n  EventId = 00000001\n  EventTimestamp = 2024-03-05T14:07:09+08:00\n"
                "  EventType = Alert\n  MemberId = 1\n  Message = A fan stopped.\n"
                "  MessageId = Fan.1.0.Stopped\n  Oem = record's\n  Severity = Warning\n"
                "  typeID = " +
                kRecordType + "\n");
}

TEST_F(CreateEvent, StoresEachRecordWithAnIdOfItsOwn) {
  EventRecord records[] = {Record("1"), Record("2"), Record("3")};
  EXPECT_EQ(zephlaneCreateEventObject(ctx(), "Fan", nullptr, records, 3), 0);
  EXPECT_EQ(Ask({"SCARD", Uuid(2)}), "3");
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(Ask({"SISMEMBER", Uuid(2), Uuid(3 + 2 * i)}), "1");
    EXPECT_EQ(Ask({"HMGET", Uuid(3 + 2 * i), "MemberId", "EventId"}),
              std::to_string(i + 1) + "\n0000000" + std::to_string(i + 1));
  }
  EXPECT_EQ(Ask({"GET", "autoUUID"}), Uuid(8));
}

TEST_F(CreateEvent, StoresMessageArgumentsAsAListInOrder) {
  char arguments[3][ZEPHLANE_VALUE_SIZE] = {"fan 7", "", "1200 rpm"};
  EventRecord record = Record("1");
  record.MessageArgs = arguments;
  record.MessageArgsCount = 3;
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(Stored("MessageArgs"), Uuid(5));
  EXPECT_EQ(Ask({"LRANGE", Uuid(5), "0", "-1"}), "fan 7\n\n1200 rpm");
}

TEST_F(CreateEvent, RecordWithoutArgumentsGetsAnEmptyMessageArgs) {
  char arguments[1][ZEPHLANE_VALUE_SIZE] = {"fan 7"};
  EventRecord counted_none = Record("1");
  counted_none.MessageArgs = arguments;
  EventRecord counted_less = counted_none;
  counted_less.MessageArgsCount = -1;
  EventRecord no_array = Record("1");
  no_array.MessageArgsCount = 1;
  for (EventRecord* record : {&counted_none, &counted_less, &no_array}) {
    Ask({"DEL", "autoUUID"});
    EXPECT_EQ(Create(*record), 0);
    EXPECT_EQ(Ask({"HEXISTS", Uuid(3), "MessageArgs"}), "0");
    EXPECT_EQ(Ask({"GET", "autoUUID"}), Uuid(4));
  }
}

TEST_F(CreateEvent, StoresTheOriginAsALinkObject) {
  EventRecord record = Record("1");
  CopyCut(record.OriginOfCondition, kFan);
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(Stored("OriginOfCondition"), Uuid(4));
  EXPECT_EQ(Ask({"HGETALL", Uuid(4)}),
            std::string("typeID\n") + kLinkType + "\n@odata.id\n/model/v1/Fans/7");
}

TEST_F(CreateEvent, OriginThatCannotBeToldLeavesTheFieldEmptyWithoutAMessage) {
  EventRecord none = Record("1");
  EventRecord unknown = Record("1");
  CopyCut(unknown.OriginOfCondition, "fan 8");
  EventRecord untyped = Record("1");
  CopyCut(untyped.OriginOfCondition, kFan);
  for (EventRecord* record : {&none, &unknown, &untyped}) {
    if (record == &untyped) { Ask({"HDEL", kRecordType, "OriginOfCondition"}); }
    Ask({"DEL", "autoUUID"});
    EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(*record), 0); }), "");
    EXPECT_EQ(Ask({"HEXISTS", Uuid(3), "OriginOfCondition"}), "0");
    EXPECT_EQ(Ask({"EXISTS", Uuid(4)}), "0");
  }
}

TEST_F(CreateEvent, EmptyTimestampIsFilledInTheCallersArray) {
  ASSERT_EQ(setenv("TZ", "CST-8", 1), 0);
  tzset();
  FakeClocks clocks;
  clocks.time = 1709618829;
  EventRecord record = Record("1");
  record.EventTimestamp[0] = '\0';
  EXPECT_EQ(Create(record), 0);
  EXPECT_STREQ(record.EventTimestamp, "2024-03-05T14:07:09+08:00");
  EXPECT_EQ(Stored("EventTimestamp"), "2024-03-05T14:07:09+08:00");
}

TEST_F(CreateEvent, TimestampOfTheCallersStaysAsItIs) {
  EventRecord record = Record("1");
  CopyCut(record.EventTimestamp, "at noon");
  EXPECT_EQ(Create(record), 0);
  EXPECT_STREQ(record.EventTimestamp, "at noon");
  EXPECT_EQ(Stored("EventTimestamp"), "at noon");
}

TEST_F(CreateEvent, MissingNameAndOemTextAreNotWritten) {
  EventRecord record = Record("1");
  for (const char* text : {static_cast<const char*>(nullptr), ""}) {
    Ask({"DEL", "autoUUID"});
    EXPECT_EQ(zephlaneCreateEventObject(ctx(), text, text, &record, 1), 0);
    EXPECT_EQ(Ask({"HKEYS", Uuid(1)}), "Events\ntypeID");
  }
}

// Limits

TEST_F(CreateEvent, NameIsCutTo1023CharactersAndOemTextTo36) {
  EventRecord record = Record("1");
  for (const std::size_t extra : {0, 1, 5000}) {
    Ask({"DEL", "autoUUID"});
    const std::string name(1023 + extra, 'n');
    const std::string oem(36 + extra, 'o');
    EXPECT_EQ(zephlaneCreateEventObject(ctx(), name.c_str(), oem.c_str(), &record, 1), 0);
    EXPECT_EQ(Ask({"HGET", Uuid(1), "Name"}), std::string(1023, 'n'));
    EXPECT_EQ(Ask({"HGET", Uuid(1), "Oem"}), std::string(36, 'o'));
  }
}

TEST_F(CreateEvent, RecordTextsEndBeforeTheLastCharacterOfTheirBuffers) {
  EventRecord record{};
  std::memset(record.MemberId, 'm', sizeof(record.MemberId));
  std::memset(record.EventType, 't', 255);
  std::memset(record.EventTimestamp, 'i', sizeof(record.EventTimestamp));
  std::memset(record.Severity, 's', sizeof(record.Severity));
  std::memset(record.Message, 'e', sizeof(record.Message));
  std::memset(record.MessageId, 'd', sizeof(record.MessageId));
  std::memset(record.OriginOfCondition, 'c', sizeof(record.OriginOfCondition));
  std::memset(record.Oem, 'o', sizeof(record.Oem));
  Ask({"HSET", kUriMap, std::string(36, 'c'), "uri"});
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(Ask({"HMGET", Uuid(3), "Oem", "MemberId", "EventType", "EventTimestamp", "Severity",
                 "Message", "MessageId", "OriginOfCondition"}),
            std::string(36, 'o') + "\n" + std::string(255, 'm') + "\n" + std::string(255, 't') +
                "\n" + std::string(255, 'i') + "\n" + std::string(255, 's') + "\n" +
                std::string(255, 'e') + "\n" + std::string(255, 'd') + "\n" + Uuid(4));
}

TEST_F(CreateEvent, ArgumentsAreCutTo1023Characters) {
  char arguments[2][ZEPHLANE_VALUE_SIZE];
  std::memset(arguments, 'a', sizeof(arguments));
  arguments[0][1023] = '\0';
  EventRecord record = Record("1");
  record.MessageArgs = arguments;
  record.MessageArgsCount = 2;
  EXPECT_EQ(Create(record), 0);
  const std::string cut(1023, 'a');
  EXPECT_EQ(Ask({"LRANGE", Uuid(5), "0", "-1"}), cut + "\n" + cut);
}

// What is sent

TEST_F(CreateEvent, AnnouncesTheEventToSubscribers) {
  redisContext* subscriber = ConnectToStore();
  ASSERT_EQ(subscribeFromChannel(subscriber, "EVENT_OCCURRED"), 0);
  EventRecord record = Record("1");
  EXPECT_EQ(Create(record), 0);
  void* raw = nullptr;
  ASSERT_EQ(redisGetReply(subscriber, &raw), REDIS_OK);
  EXPECT_EQ(Reply(raw).ElementText(2), Uuid(1));
  redisFree(subscriber);
}

TEST_F(CreateEvent, SendsTheseCommands) {
  EventRecord record = Record("1");
  WillGiveTypes();
  for (int n = 1; n <= 4; ++n) { WillDraw(n); }
  WillReplyAll({"$-1\r\n", "+OK\r\n", "$-1\r\n", "+OK\r\n", ":1\r\n"});  // ID, origin, record, set
  WillReplyAll({Bulk("required"), Bulks({"EventId"}), Bulk("00000001"), "+OK\r\n"});
  WillReplyAll({Bulk("required 2"), Bulks({"Name", "Events"}), Bulk("Fan"), Bulk(Uuid(2))});
  WillReplyAll({":1\r\n", ":0\r\n"});
  EXPECT_EQ(zephlaneCreateEventObject(scripted(), "Fan", "", &record, 1), 0);
  const std::string event = Uuid(1);
  const std::string set = Uuid(2);
  EXPECT_EQ(
      server_.Commands(),
      kTypeLookup + Drawing(1) + Drawing(2) + Drawing(3) + Drawing(4) +
          "GET autoEventID\nSET autoEventID 00000001\nHGET WEB-OBJ-URI-MAP \nHMSET " + Uuid(3) +
          " MemberId 1 EventType Alert EventId 00000001 EventTimestamp "
          "2024-03-05T14:07:09+08:00 MessageId Fan.1.0.Stopped typeID " +
          kRecordType + "\nSADD " + set + " " + Uuid(3) + "\nHGET " + kRecordType +
          " required\nSMEMBERS required\nHGET " + Uuid(3) + " EventId\n" +  //
          "HMSET " + event + " Name Fan Events " + set + " typeID " + kEventType + "\nHGET " +
          kEventType + " required\nSMEMBERS required 2\nHGET " + event + " Name\nHGET " + event +
          " Events\n" +  //
          "RPUSH " + kEventCollection + " " + event + "\nPUBLISH EVENT_OCCURRED " + event + "\n");
}

TEST_F(CreateEvent, WritesTheElevenFieldsOfARecordInOrder) {
  char arguments[1][ZEPHLANE_VALUE_SIZE] = {"x"};
  EventRecord record = Record("1");
  CopyCut(record.Severity, "OK");
  CopyCut(record.Message, "Text");
  CopyCut(record.Oem, "oem");
  CopyCut(record.OriginOfCondition, kFan);
  record.MessageArgs = arguments;
  record.MessageArgsCount = 1;
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(Ask({"HKEYS", Uuid(3)}),
            "Oem\nMemberId\nEventType\nEventId\nEventTimestamp\nSeverity\nMessage\nMessageId\n"
            "MessageArgs\nOriginOfCondition\ntypeID");
  EXPECT_EQ(Ask({"HKEYS", Uuid(1)}), "Name\nEvents\nOem\ntypeID");
}

// Failures

TEST_F(CreateEvent, RefusesNullInput) {
  EventRecord record = Record("1");
  const std::string report = ApiReport("Null input.");
  const auto create = [&](redisContext* ctx, EventRecord* records, int count) {
    return zephlaneCreateEventObject(ctx, "Fan", "", records, count);
  };
  ExpectEachFails({{"connection", [&] { return create(nullptr, &record, 1); }, report},
                   {"records", [&] { return create(scripted(), nullptr, 1); }, report},
                   {"none", [&] { return create(scripted(), &record, 0); }, report},
                   {"less", [&] { return create(scripted(), &record, -1); }, report}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateEvent, MissingSchemaIsReportedBeforeAnyUuidIsDrawn) {
  const std::pair<const char*, const char*> links[] = {{kIndex, "Event.1.0.0"},
                                                       {kEventSchema, "instanceCollection"},
                                                       {kEventSchema, "definitions"},
                                                       {kDefinitions, "Event"},
                                                       {kDefinitions, "EventRecord"}};
  for (const auto& [key, field] : links) {
    SCOPED_TRACE(field);
    Ask({"FLUSHALL"});
    StoreEventModel(ctx());
    Ask({"HDEL", key, field});
    EXPECT_EQ(PrintedByFailing(Record("1")), ApiReport("Failed to get Event schema ID."));
    EXPECT_EQ(DumpOfEvents(), "");
    EXPECT_EQ(Ask({"EXISTS", "autoUUID"}), "0");
  }
}

TEST_F(CreateEvent, EachUuidThatCannotBeDrawnIsReported) {
  const std::string records = ApiReport("Failed to create event records.");
  const std::string reports[] = {
      ApiReport("Failed to generate UUID for creating object."),
      ApiReport("Failed to generate UUID for creating array."),
      ApiReport("Failed to generate UUID for creating record.\n") + records,
      ApiReport("Failed to generate UUID for creating origin.\n") + records,
      ApiReport("Failed to generate UUID for creating message args.\n") + records};
  char arguments[1][ZEPHLANE_VALUE_SIZE] = {"x"};
  EventRecord record = Record("1");
  record.MessageArgs = arguments;
  record.MessageArgsCount = 1;
  for (int left = 0; left < 5; ++left) {
    SCOPED_TRACE(left);
    LeaveUuids(left);
    EXPECT_EQ(PrintedByFailing(record), reports[left]);
    EXPECT_EQ(Ask({"GET", "autoUUID"}), "7fffffff-ffff-ffff-ffff-ffffffffffff");
  }
}

TEST_F(CreateEvent, EventIdThatCannotBeDrawnIsReported) {
  namespace fs = std::filesystem;
  fs::remove(ZephlaneGenerateEventIDLockFile);
  fs::create_directory(ZephlaneGenerateEventIDLockFile);  // cannot be opened for writing
  EXPECT_EQ(PrintedByFailing(Record("1")), ApiReport("open lock file failed") +
                                               ApiReport("Failed to generate event id.\n") +
                                               ApiReport("Failed to create event records."));
  fs::remove(ZephlaneGenerateEventIDLockFile);
}

TEST_F(CreateEvent, TimestampThatCannotBeToldIsReported) {
  FakeClocks clocks;
  clocks.time = -1;
  EventRecord record = Record("1");
  record.EventTimestamp[0] = '\0';
  EXPECT_EQ(PrintedByFailing(record), ApiReport("Failed to create timestamp.\n") +
                                          ApiReport("Failed to create event records."));
  EXPECT_EQ(DumpOfEvents(), "");
}

TEST_F(CreateEvent, ArgumentsThatCannotBePushedAreReported) {
  char arguments[1][ZEPHLANE_VALUE_SIZE] = {"x"};
  EventRecord record = Record("1");
  record.MessageArgs = arguments;
  record.MessageArgsCount = 1;
  Ask({"SET", Uuid(5), "a text in the list's place"});
  EXPECT_EQ(PrintedByFailing(record), ApiReport("Failed to create message args.\n") +
                                          ApiReport("Failed to create event records."));
}

TEST_F(CreateEvent, InvalidRecordIsReportedWithTheCountInPlaceOfItsIndexAndStays) {
  Ask({"SADD", kRequiredOfRecord, "Severity"});
  EXPECT_EQ(PrintedByFailing(Record("1"), 3), ApiReport("Object ID : " + Uuid(3) + "\n") +
                                                  ApiReport("Invalid event record, index = 3.\n") +
                                                  ApiReport("Failed to create event records."));
  EXPECT_EQ(Ask({"SMEMBERS", Uuid(2)}), Uuid(3));
  EXPECT_EQ(Ask({"EXISTS", Uuid(3)}), "1");
  EXPECT_EQ(Ask({"EXISTS", Uuid(1), kEventCollection}), "0");
}

TEST_F(CreateEvent, RecordThatCannotBeWrittenIsReportedWithTheCountInPlaceOfItsIndex) {
  EventRecord records[] = {Record("1"), Record("2")};
  WillGiveTypes();
  for (int n = 1; n <= 4; ++n) { WillDraw(n); }
  WillReplyAll({"$-1\r\n", "+OK\r\n", "$-1\r\n"});
  server_.WillClose();
  const auto create = [&] { return zephlaneCreateEventObject(scripted(), "Fan", "", records, 2); };
  ExpectEachFails({{"lost", create,
                    ApiReport("Object ID : " + Uuid(3) + "\n") +
                        ApiReport("Failed to create event, index = 2.\n") +
                        ApiReport("Failed to create event records.")}});
}

TEST_F(CreateEvent, EventThatCannotBeWrittenIsReported) {
  EventRecord record = Record("1");
  WillGiveTypes();
  for (int n = 1; n <= 4; ++n) { WillDraw(n); }
  WillReplyAll({"$-1\r\n", "+OK\r\n", "$-1\r\n", "+OK\r\n", ":1\r\n"});
  WillReplyAll({Bulk("required"), Bulks({"EventId"}), Bulk("00000001"), "+REFUSED\r\n"});
  const auto create = [&] { return zephlaneCreateEventObject(scripted(), "Fan", "", &record, 1); };
  ExpectEachFails(
      {{"status", create,
        ApiReport("Failed to create event instance.") + ApiReport("aEventObjectID = " + Uuid(1))}});
  EXPECT_THAT(server_.Commands(), HasSubstr("HMSET " + Uuid(1)));
}

TEST_F(CreateEvent, InvalidEventIsReportedAndStaysUnsent) {
  Ask({"SADD", kRequiredOfEvent, "Description"});
  EXPECT_EQ(PrintedByFailing(Record("1")),
            ApiReport("Input event object is invalid.") + ApiReport("aEventObjectID = " + Uuid(1)));
  EXPECT_EQ(Ask({"EXISTS", Uuid(1), Uuid(2), Uuid(3), kEventCollection}), "3");
}

TEST_F(CreateEvent, CollectionThatCannotBeAddedToIsReportedAndTheEventStays) {
  Ask({"SET", kEventCollection, "a text in the list's place"});
  EXPECT_EQ(PrintedByFailing(Record("1")),
            ApiReport("Failed to add Event object to the collection."));
  EXPECT_EQ(Ask({"EXISTS", Uuid(1), Uuid(2), Uuid(3)}), "3");
}

TEST_F(CreateEvent, SetThatCannotBeAddedToIsNoFailure) {
  Ask({"SET", Uuid(2), "a text in the set's place"});
  EventRecord record = Record("1");
  EXPECT_EQ(PrintedBy([&] { EXPECT_EQ(Create(record), 0); }), "");
}

// The interpreter runs once in a process: in this case.
TEST_F(CreateEvent, TypesEventsByTheInterpretedSampleModel) {
  namespace fs = std::filesystem;
  Ask({"FLUSHALL"});
  fs::create_directories("/tmp/etc");
  fs::remove_all("/tmp/FOSS_schema");
  fs::copy(ZEPHLANE_SOURCE "/schemas", "/tmp/FOSS_schema");
  fs::rename("/tmp/FOSS_schema/SchemaURIConf.json", "/tmp/etc/SchemaURIConf.json");
  const char* root = "/tmp/FOSS_schema/ServiceRoot.v1_0_0.json";
  EXPECT_EQ(Capture([&] { EXPECT_EQ(zephlaneSchemaInterpreter(root), 0); }).err, "");
  Ask({"HSET", kUriMap, kFan, "/model/v1/Fans/7"});
  EventRecord record = Record("1");
  CopyCut(record.OriginOfCondition, kFan);
  EXPECT_EQ(Create(record), 0);
  EXPECT_EQ(Ask({"LRANGE", kEventCollection, "0", "-1"}), Uuid(1));
  const std::string type = Ask({"HGET", Uuid(3), "typeID"});
  EXPECT_EQ(Ask({"HEXISTS", type, "MessageArgs"}), "1");
  const std::string link = Ask({"HGET", Uuid(4), "typeID"});
  EXPECT_EQ(Ask({"HGET", type, "OriginOfCondition"}), link);
  record.MessageId[0] = '\0';  // required
  EXPECT_THAT(PrintedByFailing(record), HasSubstr("Invalid event record, index = 1."));
}

// Preparing

class PrepareEvent : public EventTest {
 protected:
  char* Prepare() {
    return zephlanePrepareEventObject(ctx(), "Fan", nullptr, &record_, 1);
  }
  EventRecord record_ = Record("1");
};

TEST_F(PrepareEvent, StoresTheEventWithoutListingIt) {
  EXPECT_EQ(Taken(Prepare()), Uuid(1));
  EXPECT_EQ(Ask({"EXISTS", Uuid(1), Uuid(2), Uuid(3)}), "3");
  EXPECT_EQ(Ask({"EXISTS", kEventCollection}), "0");
}

TEST_F(PrepareEvent, EndsWithTheCheckOfTheEvent) {
  WillGiveTypes();
  for (int n = 1; n <= 4; ++n) { WillDraw(n); }
  WillReplyAll({"$-1\r\n", "+OK\r\n", "$-1\r\n", "+OK\r\n", ":1\r\n"});
  WillReplyAll({Bulk("required"), "*0\r\n", "+OK\r\n", Bulk("required 2"), "*0\r\n"});
  EXPECT_EQ(Taken(zephlanePrepareEventObject(scripted(), "Fan", "", &record_, 1)), Uuid(1));
  EXPECT_THAT(server_.Commands(), EndsWith("required\nSMEMBERS required 2\n"));
}

TEST_F(PrepareEvent, RefusesNullInput) {
  const std::string report = ApiReport("Null input.");
  const auto prepare = [&](redisContext* ctx, EventRecord* records, int count) {
    return zephlanePrepareEventObject(ctx, "Fan", "", records, count);
  };
  ExpectEachGivesNull({{"connection", [&] { return prepare(nullptr, &record_, 1); }, report},
                       {"records", [&] { return prepare(scripted(), nullptr, 1); }, report},
                       {"none", [&] { return prepare(scripted(), &record_, 0); }, report}});
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(PrepareEvent, FailuresAreReportedAsWhenCreating) {
  Ask({"SADD", kRequiredOfEvent, "Description"});
  ExpectEachGivesNull(
      {{"invalid", [&] { return Prepare(); },
        ApiReport("Input event object is invalid.") + ApiReport("aEventObjectID = " + Uuid(1))}});
  LeaveUuids(0);
  ExpectEachGivesNull({{"UUID", [&] { return Prepare(); },
                        ApiReport("Failed to generate UUID for creating object.")}});
  Ask({"DEL", kIndex});
  ExpectEachGivesNull(
      {{"schema", [&] { return Prepare(); }, ApiReport("Failed to get Event schema ID.")}});
}

// Each allocation fails once; the reports of all failures.
std::string ReportsOfEachAllocation(const std::function<char*()>& prepare) {
  std::string reports;
  for (int n = 1;; ++n) {
    bool happened = false;
    reports += PrintedBy([&] {
      AllocationFault fault(n);
      const CString event(prepare());
      fault.Disarm();
      happened = fault.Happened();
    });
    if (!happened) { return reports; }
  }
}

TEST_F(PrepareEvent, OutOfMemoryIsReportedWhereverItHappens) {
  const std::string reports = ReportsOfEachAllocation([&] { return Prepare(); });
  EXPECT_THAT(reports, HasSubstr(ApiReport("Failed to create event, index = 1.\n")));
  EXPECT_THAT(reports, HasSubstr(ApiReport("Failed to create event instance.")));
  EXPECT_THAT(reports, HasSubstr(ApiReport("Invalid event record, index = 1.\n")));
  EXPECT_THAT(reports, HasSubstr(ApiReport("Input event object is invalid.")));
  EXPECT_THAT(reports, EndsWith(ApiReport("malloc")));
}

// Sending and deleting what was prepared

TEST_F(PrepareEvent, ActionZeroSendsTheEvent) {
  const std::string event = Taken(Prepare());
  EXPECT_EQ(zephlaneProcessEventObject(ctx(), event.c_str(), 0), 0);
  EXPECT_EQ(Ask({"LRANGE", kEventCollection, "0", "-1"}), event);
}

TEST_F(PrepareEvent, ActionOneDeletesTheEvent) {
  const std::string event = Taken(Prepare());
  EXPECT_EQ(zephlaneProcessEventObject(ctx(), event.c_str(), 1), 0);
  EXPECT_EQ(DumpOfEvents(), "");
}

TEST_F(PrepareEvent, AnyOtherActionIsReportedAndSendsNothing) {
  for (const int action : {2, -1, 256}) {
    ExpectEachFails(
        {{"action", [&] { return zephlaneProcessEventObject(scripted(), "id", action); },
          ApiReport("invalid action " + std::to_string(action))}});
  }
  EXPECT_EQ(server_.Received(), "");
}

}  // namespace
}  // namespace zephlane::test
