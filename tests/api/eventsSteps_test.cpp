// SPDX-License-Identifier: MIT
//
// The steps that creating, sending and deleting events are made of.
#include <cstddef>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "api/calls.h"
#include "api/eventModel.h"

namespace zephlane::test {
namespace {

// Looking up the types

class GetEventObjectTypeInfo : public EventTest {
 protected:
  // Exactly the room the caller promises, filled to see what is written.
  struct Types {
    char event[ZEPHLANE_ID_SIZE] = "event";
    char record[ZEPHLANE_ID_SIZE] = "record";
    char collection[ZEPHLANE_ID_SIZE] = "collection";
  };
  int Get(redisContext* ctx) {
    return getEventObjectTypeInfo(ctx, types_.event, types_.record, types_.collection);
  }
  void ExpectUntouched() {
    EXPECT_STREQ(types_.event, "event");
    EXPECT_STREQ(types_.record, "record");
    EXPECT_STREQ(types_.collection, "collection");
  }
  Types types_;
};

TEST_F(GetEventObjectTypeInfo, GivesBothTypesAndTheCollection) {
  EXPECT_EQ(Get(ctx()), 0);
  EXPECT_STREQ(types_.event, kEventType);
  EXPECT_STREQ(types_.record, kRecordType);
  EXPECT_STREQ(types_.collection, kEventCollection);
}

TEST_F(GetEventObjectTypeInfo, SendsTheseCommands) {
  WillGiveTypes();
  EXPECT_EQ(Get(scripted()), 0);
  EXPECT_EQ(server_.Commands(), kTypeLookup);
}

TEST_F(GetEventObjectTypeInfo, ValuesAreCutTo36Characters) {
  const std::string longer(37, 'x');
  WillReplyAll({Bulk("schema"), Bulk(longer), Bulk("definitions"), Bulk(longer), Bulk(longer)});
  EXPECT_EQ(Get(scripted()), 0);
  const std::string cut(36, 'x');
  EXPECT_EQ(types_.event, cut);
  EXPECT_EQ(types_.record, cut);
  EXPECT_EQ(types_.collection, cut);
}

TEST_F(GetEventObjectTypeInfo, StopsAtTheFirstFieldThatIsMissing) {
  const std::string found[] = {Bulk(kEventSchema), Bulk(kEventCollection), Bulk(kDefinitions),
                               Bulk(kEventType)};
  std::size_t length_before = 0;
  for (std::size_t missing = 0; missing < 5; ++missing) {
    SCOPED_TRACE(missing);
    ScriptedServer server;
    for (std::size_t i = 0; i < missing; ++i) { server.WillReply(found[i]); }
    server.WillReply("$-1\r\n");
    EXPECT_EQ(Get(server.ctx()), 1);
    ExpectUntouched();
    const std::string commands = server.Commands();
    EXPECT_TRUE(kTypeLookup.starts_with(commands)) << commands;
    EXPECT_GT(commands.size(), length_before);
    length_before = commands.size();
  }
}

TEST_F(GetEventObjectTypeInfo, RefusesNullPointersSilently) {
  ExpectEachFails({
      {"connection", [&] { return Get(nullptr); }, ""},
      {"event",
       [&] {
         return getEventObjectTypeInfo(scripted(), nullptr, types_.record, types_.collection);
       },
       ""},
      {"record",
       [&] { return getEventObjectTypeInfo(scripted(), types_.event, nullptr, types_.collection); },
       ""},
      {"collection",
       [&] { return getEventObjectTypeInfo(scripted(), types_.event, types_.record, nullptr); },
       ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

// Records

class CreateEventRecords : public EventTest {};

TEST_F(CreateEventRecords, AddsToTheSetThatIsGiven) {
  EventRecord records[] = {Record("1"), Record("2")};
  EXPECT_EQ(createEventRecords(ctx(), kRecordType, "a-set", records, 2), 0);
  EXPECT_EQ(Ask({"SCARD", "a-set"}), "2");
  EXPECT_EQ(Ask({"SISMEMBER", "a-set", Uuid(1)}), "1");
  EXPECT_EQ(Ask({"HGET", Uuid(3), "MemberId"}), "2");
}

TEST_F(CreateEventRecords, SendsTheseCommandsForARecordWithArgumentsAndOrigin) {
  char arguments[2][ZEPHLANE_VALUE_SIZE] = {"a", "b"};
  EventRecord record{};
  CopyCut(record.EventTimestamp, "noon");
  CopyCut(record.OriginOfCondition, "fan");
  record.MessageArgs = arguments;
  record.MessageArgsCount = 2;
  WillDraw(1);
  WillDraw(2);
  WillReplyAll({Bulk("0000000f"), "+OK\r\n"});
  WillDraw(3);
  WillReplyAll({":1\r\n", ":2\r\n", Bulk("uri"), Bulk("link"), ":1\r\n", ":1\r\n", "+OK\r\n"});
  WillReplyAll({":1\r\n", Bulk("required"), "*0\r\n"});
  EXPECT_EQ(createEventRecords(scripted(), "type", "set", &record, 1), 0);
  EXPECT_EQ(server_.Commands(),
            Drawing(1) + Drawing(2) + "GET autoEventID\nSET autoEventID 00000010\n" + Drawing(3) +
                "RPUSH " + Uuid(3) + " a\nRPUSH " + Uuid(3) + " b\n" +
                "HGET WEB-OBJ-URI-MAP fan\nHGET type OriginOfCondition\nHSET " + Uuid(2) +
                " typeID link\nHSET " + Uuid(2) + " @odata.id uri\n" + "HMSET " + Uuid(1) +
                " EventId 00000010 EventTimestamp noon MessageArgs " + Uuid(3) +
                " OriginOfCondition " + Uuid(2) + " typeID type\nSADD set " + Uuid(1) +
                "\nHGET type required\nSMEMBERS required\n");
}

TEST_F(CreateEventRecords, StopsAtTheFirstRecordThatFailsAndKeepsThoseBefore) {
  EventRecord records[] = {Record("1"), Record("2"), Record("3")};
  records[1].EventType[0] = '\0';
  Ask({"SADD", kRequiredOfRecord, "EventType"});
  ExpectEachFails(
      {{"second", [&] { return createEventRecords(ctx(), kRecordType, "set", records, 3); },
        ApiReport("Object ID : " + Uuid(3) + "\n") +
            ApiReport("Invalid event record, index = 3.\n")}});
  EXPECT_EQ(Ask({"SCARD", "set"}), "2");
  EXPECT_EQ(Ask({"GET", "autoEventID"}), "00000002");
}

TEST_F(CreateEventRecords, TypeIsWrittenWithAtMost36Characters) {
  for (const std::size_t length : {36, 37, 500}) {
    const std::string type(length, 't');
    Ask({"DEL", "autoUUID"});
    Ask({"HSET", type, "required", kRequiredOfRecord});
    EventRecord record = Record("1");
    EXPECT_EQ(createEventRecords(ctx(), type.c_str(), "set", &record, 1), 0);
    EXPECT_EQ(Ask({"HGET", Uuid(1), "typeID"}), std::string(36, 't'));
  }
}

TEST_F(CreateEventRecords, WithoutRecordsDoesNothing) {
  EventRecord record = Record("1");
  EXPECT_EQ(createEventRecords(scripted(), "type", "set", &record, 0), 0);
  EXPECT_EQ(server_.Received(), "");
}

TEST_F(CreateEventRecords, RefusesNullPointersSilently) {
  EventRecord record = Record("1");
  ExpectEachFails({
      {"connection", [&] { return createEventRecords(nullptr, "type", "set", &record, 1); }, ""},
      {"type", [&] { return createEventRecords(scripted(), nullptr, "set", &record, 1); }, ""},
      {"set", [&] { return createEventRecords(scripted(), "type", nullptr, &record, 1); }, ""},
      {"records", [&] { return createEventRecords(scripted(), "type", "set", nullptr, 1); }, ""},
  });
  EXPECT_EQ(server_.Received(), "");
}

// Origins

class CreateOriginObject : public EventTest {
 protected:
  static constexpr char kCommands[] =
      "HGET WEB-OBJ-URI-MAP fan\nHGET type OriginOfCondition\nHSET origin typeID link\n"
      "HSET origin @odata.id uri\n";
};

TEST_F(CreateOriginObject, StoresTheTypeAndTheUri) {
  EXPECT_EQ(createOriginObject(ctx(), kFan, kRecordType, "origin"), 0);
  EXPECT_EQ(Ask({"HGETALL", "origin"}),
            std::string("typeID\n") + kLinkType + "\n@odata.id\n/model/v1/Fans/7");
}

TEST_F(CreateOriginObject, FailsSilentlyAtTheFirstReadOrWriteThatFails) {
  const std::string replies[] = {Bulk("uri"), Bulk("link"), ":1\r\n", ":1\r\n"};
  const std::string_view commands = kCommands;
  std::size_t end = 0;
  for (std::size_t done = 0; done <= 4; ++done) {
    SCOPED_TRACE(done);
    ScriptedServer server;
    for (std::size_t i = 0; i < done; ++i) { server.WillReply(replies[i]); }
    server.WillClose();
    int result = -1;
    const auto call = [&] { result = createOriginObject(server.ctx(), "fan", "type", "origin"); };
    EXPECT_EQ(PrintedBy(call), "");
    EXPECT_EQ(result, done == 4 ? 0 : 1);
    if (done < 4) { end = commands.find('\n', end) + 1; }
    EXPECT_EQ(server.Commands(), commands.substr(0, end));
  }
}

TEST_F(CreateOriginObject, MissingUriOrTypeWritesNothing) {
  EXPECT_EQ(createOriginObject(ctx(), "unknown", kRecordType, "origin"), 1);
  EXPECT_EQ(createOriginObject(ctx(), kFan, "no type", "origin"), 1);
  EXPECT_EQ(Ask({"EXISTS", "origin"}), "0");
}

TEST_F(CreateOriginObject, RefusesNullPointersSilently) {
  ExpectEachFails({
      {"connection", [] { return createOriginObject(nullptr, kFan, kRecordType, "origin"); }, ""},
      {"key", [&] { return createOriginObject(ctx(), nullptr, kRecordType, "origin"); }, ""},
      {"type", [&] { return createOriginObject(ctx(), kFan, nullptr, "origin"); }, ""},
      {"origin", [&] { return createOriginObject(ctx(), kFan, kRecordType, nullptr); }, ""},
  });
}

// Required properties

class IsValidateEventObject : public EventTest {
 protected:
  void SetUp() override {
    EventTest::SetUp();
    Ask({"HSET", "type", "required", "names"});
    Ask({"SADD", "names", "Name", "Events"});
  }
};

TEST_F(IsValidateEventObject, ObjectWithAllRequiredPropertiesIsValid) {
  Ask({"HSET", "object", "Name", "n", "Events", "e", "Other", "o"});
  EXPECT_EQ(isValidateEventObject(ctx(), "type", "object"), 0);
}

TEST_F(IsValidateEventObject, MissingOrEmptyPropertyIsInvalid) {
  Ask({"HSET", "object", "Name", "n"});
  EXPECT_EQ(isValidateEventObject(ctx(), "type", "object"), 1);
  Ask({"HSET", "object", "Events", ""});
  EXPECT_EQ(isValidateEventObject(ctx(), "type", "object"), 1);
  EXPECT_EQ(isValidateEventObject(ctx(), "type", "no object"), 1);
}

TEST_F(IsValidateEventObject, WithoutRequiredMembersAnythingIsValid) {
  Ask({"DEL", "names"});
  EXPECT_EQ(isValidateEventObject(ctx(), "type", "no object"), 0);
}

TEST_F(IsValidateEventObject, TypeWithoutTheFieldIsAFailure) {
  EXPECT_EQ(isValidateEventObject(ctx(), "no type", "object"), 1);
}

TEST_F(IsValidateEventObject, StopsAtTheFirstMissingProperty) {
  WillReplyAll({Bulk("names"), Bulks({"a", "b", "c"}), Bulk("value"), "$-1\r\n"});
  EXPECT_EQ(isValidateEventObject(scripted(), "type", "object"), 1);
  EXPECT_EQ(server_.Commands(),
            "HGET type required\nSMEMBERS names\nHGET object a\nHGET object b\n");
}

TEST_F(IsValidateEventObject, LosingTheConnectionAtAnyCommandIsAFailure) {
  const std::string replies[] = {Bulk("names"), Bulks({"a"})};
  for (std::size_t done = 0; done <= 2; ++done) {
    ScriptedServer server;
    for (std::size_t i = 0; i < done; ++i) { server.WillReply(replies[i]); }
    server.WillClose();
    EXPECT_EQ(isValidateEventObject(server.ctx(), "type", "object"), 1);
  }
}

TEST_F(IsValidateEventObject, RefusesNullPointers) {
  EXPECT_EQ(isValidateEventObject(nullptr, "type", "object"), 1);
  EXPECT_EQ(isValidateEventObject(ctx(), nullptr, "object"), 1);
  EXPECT_EQ(isValidateEventObject(ctx(), "type", nullptr), 1);
}

// Sending

class SendEventObject : public EventTest {};

TEST_F(SendEventObject, SendsTheseCommands) {
  server_.WillReply("+hash\r\n");
  WillGiveTypes();
  WillReplyAll({":1\r\n", ":0\r\n"});
  EXPECT_EQ(sendEventObject(scripted(), "event"), 0);
  EXPECT_EQ(server_.Commands(), "TYPE event\n" + kTypeLookup + "RPUSH " + kEventCollection +
                                    " event\nPUBLISH EVENT_OCCURRED event\n");
}

TEST_F(SendEventObject, AppendsToTheCollectionInTheOrderOfSending) {
  for (const char* event : {"b", "a", "b"}) {
    Ask({"HSET", event, "field", "value"});
    EXPECT_EQ(sendEventObject(ctx(), event), 0);
  }
  EXPECT_EQ(Ask({"LRANGE", kEventCollection, "0", "-1"}), "b\na\nb");
}

TEST_F(SendEventObject, AnnouncesAtMost98CharactersAndListsAll) {
  for (const std::size_t length : {98, 99, 2000}) {
    ScriptedServer server;
    server.WillReply("+hash\r\n");
    for (const char* value : {kEventSchema, kEventCollection, kDefinitions, "type", "type"}) {
      server.WillReply(Bulk(value));
    }
    server.WillReply(":1\r\n");
    const std::string event(length, 'e');
    EXPECT_EQ(sendEventObject(server.ctx(), event.c_str()), 0);
    EXPECT_TRUE(server.Commands().ends_with(std::string("RPUSH ") + kEventCollection + " " + event +
                                            "\nPUBLISH EVENT_OCCURRED " + std::string(98, 'e') +
                                            "\n"));
  }
}

TEST_F(SendEventObject, WhatIsNoObjectIsReported) {
  Ask({"SET", "string", "text"});
  const std::string report = ApiReport("Empty object.");
  ExpectEachFails({
      {"missing", [&] { return sendEventObject(ctx(), "none"); }, report},
      {"string", [&] { return sendEventObject(ctx(), "string"); }, report},
      {"NULL", [&] { return sendEventObject(ctx(), nullptr); }, report},
      {"connection", [] { return sendEventObject(nullptr, "event"); }, report},
  });
  EXPECT_EQ(Ask({"EXISTS", kEventCollection}), "0");
}

TEST_F(SendEventObject, MissingSchemaIsReported) {
  Ask({"HSET", "event", "field", "value"});
  Ask({"DEL", kIndex});
  ExpectEachFails({{"schema", [&] { return sendEventObject(ctx(), "event"); },
                    ApiReport("Failed to get Event schema ID.")}});
}

TEST_F(SendEventObject, CollectionThatCannotBeAddedToIsReportedAndNothingAnnounced) {
  server_.WillReply("+hash\r\n");
  WillGiveTypes();
  server_.WillReply("-WRONGTYPE Operation against a key\r\n");
  ExpectEachFails({{"push", [&] { return sendEventObject(scripted(), "event"); },
                    ApiReport("Failed to add Event object to the collection.")}});
  EXPECT_EQ(server_.Commands().find("PUBLISH"), std::string::npos);
}

TEST_F(SendEventObject, LosingTheConnectionAtThePublishIsAFailureWithoutAMessage) {
  server_.WillReply("+hash\r\n");
  WillGiveTypes();
  server_.WillReply(":1\r\n");
  server_.WillClose();
  ExpectEachFails({{"lost", [&] { return sendEventObject(scripted(), "event"); }, ""}});
}

// Deleting

class DeleteEventObject : public EventTest {};

TEST_F(DeleteEventObject, DeletesRecordsArgumentsAndOriginsButNotTheEntryInTheCollection) {
  char arguments[1][ZEPHLANE_VALUE_SIZE] = {"x"};
  EventRecord records[] = {Record("1"), Record("2")};
  CopyCut(records[0].OriginOfCondition, kFan);
  records[0].MessageArgs = arguments;
  records[0].MessageArgsCount = 1;
  ASSERT_EQ(zephlaneCreateEventObject(ctx(), "Fan", "", records, 2), 0);
  EXPECT_EQ(deleteEventObject(ctx(), Uuid(1).c_str()), 0);
  EXPECT_EQ(DumpOfEvents(), std::string("list ") + kEventCollection + "\n  " + Uuid(1) + "\n");
}

TEST_F(DeleteEventObject, SendsTheseCommands) {
  WillReplyAll({Bulk("set"), Bulks({"one", "two"}), Bulk("arguments"), ":1\r\n", Bulk("origin"),
                ":1\r\n", ":1\r\n", "$-1\r\n", "$-1\r\n", ":1\r\n", ":1\r\n", ":1\r\n"});
  EXPECT_EQ(deleteEventObject(scripted(), "event"), 0);
  EXPECT_EQ(server_.Commands(),
            "HGET event Events\nSMEMBERS set\n"
            "HGET one MessageArgs\nDEL arguments\nHGET one OriginOfCondition\nDEL origin\nDEL one\n"
            "HGET two MessageArgs\nHGET two OriginOfCondition\nDEL two\nDEL set\nDEL event\n");
}

TEST_F(DeleteEventObject, WithoutRecordSetOnlyTheEventGoes) {
  Ask({"HSET", "event", "Events", "no set"});
  Ask({"HSET", "other", "field", "value"});
  EXPECT_EQ(deleteEventObject(ctx(), "event"), 0);
  EXPECT_EQ(DumpOfEvents(), "hash other\n  field = value\n");
}

TEST_F(DeleteEventObject, WhatHasNoFieldEventsIsAFailureAndStays) {
  Ask({"HSET", "hash", "field", "value"});
  ExpectEachFails({
      {"other hash", [&] { return deleteEventObject(ctx(), "hash"); }, ""},
      {"missing", [&] { return deleteEventObject(ctx(), "none"); }, ""},
      {"NULL", [&] { return deleteEventObject(ctx(), nullptr); }, ""},
      {"connection", [] { return deleteEventObject(nullptr, "hash"); }, ""},
  });
  EXPECT_EQ(Ask({"EXISTS", "hash"}), "1");
}

TEST_F(DeleteEventObject, DeletionsWithoutAReplyAreTriedAllTheSame) {
  WillReplyAll({Bulk("set"), Bulks({"one"}), "$-1\r\n", "$-1\r\n"});
  server_.WillClose();
  // A deletion counts as done without a reply too.
  EXPECT_EQ(deleteEventObject(scripted(), "event"), 0);
}

TEST_F(DeleteEventObject, RecordsThatCannotBeReadAreAFailureAndNothingIsDeleted) {
  server_.WillReply(Bulk("set"));
  server_.WillClose();
  EXPECT_EQ(deleteEventObject(scripted(), "event"), 1);
  EXPECT_EQ(server_.Commands(), "HGET event Events\nSMEMBERS set\n");
}

}  // namespace
}  // namespace zephlane::test
