// SPDX-License-Identifier: MIT
//
// The extension keywords of a schema's root, and the messages with the types of their parameters.
#include "interpreter/zephlaneExtensionParser.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::ExtensionReport;
using zephlane::test::FullTable;
using zephlane::test::LinkingReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;
using zephlane::test::PathReport;
using zephlane::test::Quoted;
using zephlane::test::ReportsOfAllocationFaults;
using zephlane::test::ScriptedServer;
using zephlane::test::Taken;
using zephlane::test::TooLongPair;
using zephlane::test::TreeReport;
using zephlane::test::WillRefusePair;
using zephlane::test::WillWritePair;

constexpr char kUuid[] = "1c9d2e3f-aaaa-bbbb-cccc-0123456789ab";
constexpr char kNotFound[] = "Type Not Found";

std::string NullArgument(int line, const std::string& function) {
  return ExtensionReport(line, function + ": Argument is NULL !!!");
}

void ConfigureMessageProperty(const std::string& name) {
  (void)std::snprintf(propertyRuxoMessage, sizeof(propertyRuxoMessage), "%s", name.c_str());
}

// ---- The keywords

class ExtensionKeywords : public ParserTest {
 protected:
  Outcome Parse(const std::string& document) {
    context()->document = Value(document);
    return Observe([&] { return parseZephlaneExtension(context(), Root()); });
  }
};

TEST_F(ExtensionKeywords, AreThreeNamesAndTheConfiguredOne) {
  ConfigureMessageProperty("Messages");
  for (const char* name : {"Messages", "ttl", "instanceCollection", "typeId"}) {
    EXPECT_EQ(isZephlaneExtension(name), 1) << name;
  }
  for (const char* name : {"", "RuxoMessage", "TTL", "typeID", "Message", "Messages "}) {
    EXPECT_EQ(isZephlaneExtension(name), 0) << name;
  }
}

TEST_F(ExtensionKeywords, IncludeTheEmptyNameWhileNoMessagePropertyIsConfigured) {
  EXPECT_EQ(isZephlaneExtension(""), 1);
  EXPECT_EQ(isZephlaneExtension("RuxoMessage"), 0);
}

TEST_F(ExtensionKeywords, AreWrittenInOrder) {
  ScriptedServer server;
  WillWritePair(server);
  WillWritePair(server);
  WillWritePair(server);
  context()->connection = server.ctx();
  EXPECT_EQ(Parse(R"({"ttl": 60, "typeId": "x", "title": "y"})").result, 0);
  EXPECT_EQ(Short(server.Commands()),
            "HMSET H0 typeId H0\n"
            "HMSET H0 instanceCollection S0\n"
            "HMSET H0 ttl 60\n");
}

TEST_F(ExtensionKeywords, GoIntoTheGivenHashWithTheIdOfTheContext) {
  context()->document = Value("{}");
  EXPECT_EQ(parseZephlaneExtension(context(), "another"), 0);
  EXPECT_EQ(Ask({"HGET", "another", "typeId"}), Root());
  EXPECT_EQ(Field("H0", "typeId"), "(nil)");
}

TEST_F(ExtensionKeywords, NullArgumentsAreReported) {
  const std::string report = NullArgument(797, "parseZephlaneExtension");
  EXPECT_EQ(Observe([&] { return parseZephlaneExtension(nullptr, Root()); }).errors, report);
  const Outcome outcome = Observe([&] { return parseZephlaneExtension(context(), nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(ExtensionKeywords, FailWhenTheTypeIdIsNotWritten) {
  ScriptedServer server;
  WillRefusePair(server);
  context()->connection = server.ctx();
  const Outcome outcome = Parse(R"({"ttl": 60})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(678, "---> failed to add < typeId: " + std::string(Root()) + " > !!!") +
                ExtensionReport(804, "typeId"));
  EXPECT_EQ(Short(server.Commands()), "HMSET H0 typeId H0\n");
}

TEST_F(ExtensionKeywords, FailWithTheInstanceCollection) {
  const Outcome outcome = Parse(R"({"instanceCollection": "x", "ttl": 60})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TreeReport("Invalid UUID length.") + ExtensionReport(812, "instanceCollection"));
  EXPECT_EQ(Field("H0", "typeId"), "H0");
  EXPECT_EQ(Field("H0", "ttl"), "(nil)");
}

TEST_F(ExtensionKeywords, FailWithTheTimeToLive) {
  for (const char* value : {"\"3600\"", "1.5", "null", "true", "[]"}) {
    SCOPED_TRACE(value);
    const Outcome outcome = Parse(std::string("{\"ttl\": ") + value + "}");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors,
              ExtensionReport(638, "TTL is not integer type.") + ExtensionReport(821, "ttl"));
  }
  EXPECT_EQ(Field("H0", "instanceCollection"), "S4");
}

TEST_F(ExtensionKeywords, FailWithTheMessages) {
  ConfigureMessageProperty("Messages");
  const Outcome outcome = Parse(R"({"Messages": "text"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(562, "Object has no type!") + ExtensionReport(831, "RuxoMessage"));
}

TEST_F(ExtensionKeywords, TakeNoMemberAsMessagesWhileNoneIsConfigured) {
  const Outcome outcome = Parse(R"({"RuxoMessage": {"values": []}, "Messages": 5})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Ask({"HLEN", Root()}), "3");
}

TEST_F(ExtensionKeywords, TakeNotEvenTheEmptyNameAsMessagesWhileNoneIsConfigured) {
  EXPECT_EQ(Parse(R"({"": {"type": "object", "values": []}})").result, 0);
  EXPECT_EQ(Field("H0", ""), "(nil)");
}

// ---- instanceCollection

class InstanceCollection : public ParserTest {
 protected:
  Outcome Parse(const std::string& document, redisContext* connection = nullptr) {
    json_t* const value = Value(document);
    redisContext* const used = connection != nullptr ? connection : ctx();
    return Observe([&] { return zephlane::parseInstanceCollectionField(used, value, Root()); });
  }
};

TEST_F(InstanceCollection, IsTheNextSetIdWhenTheSchemaGivesNone) {
  for (const char* document :
       {"{}", R"({"instanceCollection": 5})", R"({"instanceCollection": null})",
        R"({"instanceCollection": {}})"}) {
    SCOPED_TRACE(document);
    const std::string id = Taken(generateRedisDataObjectID(2));
    EXPECT_EQ(Parse(document).errors, "");
    EXPECT_EQ(Ask({"HGET", Root(), "instanceCollection"}), id);
    EXPECT_EQ(Ask({"EXISTS", id}), "0");
  }
  EXPECT_EQ(Field("H0", "instanceCollection"), "S3");
}

TEST_F(InstanceCollection, IsTheGivenOneInLowerCase) {
  EXPECT_EQ(Parse(R"({"instanceCollection": "1C9D2E3F-AAAA-bbbb-CCCC-0123456789AB"})").errors, "");
  EXPECT_EQ(Field("H0", "instanceCollection"), kUuid);
  EXPECT_EQ(Short(Taken(generateRedisDataObjectID(2))), "S0");
}

TEST_F(InstanceCollection, MayBeGivenByTwoSchemasSinceItIsNoObjectOfTheTree) {
  const std::string document = "{\"instanceCollection\": " + Quoted(kUuid) + "}";
  EXPECT_EQ(Parse(document).result, 0);
  EXPECT_EQ(isUUIDRegistered(kUuid), 0);
  EXPECT_EQ(Parse(document).result, 0);
}

TEST_F(InstanceCollection, FailsWhenItIsAnObjectOfTheTree) {
  ASSERT_EQ(recordRedisObjectID(kUuid), 0);
  const Outcome outcome = Parse("{\"instanceCollection\": " + Quoted(kUuid) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(736, "Oops! UUID of instanceCollection has been used."));
  EXPECT_EQ(Field("H0", "instanceCollection"), "(nil)");
}

TEST_F(InstanceCollection, FailsWithoutAMessageOfItsOwnWhenTheGivenOneIsNotValid) {
  for (const std::string& text : {std::string(), std::string(35, 'a'), std::string(37, 'a')}) {
    SCOPED_TRACE(text);
    const Outcome outcome = Parse("{\"instanceCollection\": " + Quoted(text) + "}");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, TreeReport("Invalid UUID length."));
  }
}

TEST_F(InstanceCollection, FailsWhenTheGivenOneIsInTheRangeOfGeneratedOnes) {
  const std::string id = "00000000-0000-0000-0001-100000000000";
  const Outcome outcome = Parse("{\"instanceCollection\": " + Quoted(id) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TreeReport("Given UUID is in the range where can only be used by interpreter!") +
                TreeReport("UUID: " + id));
}

TEST_F(InstanceCollection, FailsWithATextOf1024Characters) {
  const Outcome outcome = Parse("{\"instanceCollection\": " + Quoted(std::string(1024, 'a')) + "}");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TreeReport("Input length: 1024, buffer size: 1024"));
  EXPECT_EQ(Parse("{\"instanceCollection\": " + Quoted(std::string(1023, 'a')) + "}").errors,
            TreeReport("Invalid UUID length."));
}

TEST_F(InstanceCollection, FailsWhenTheGivenOneIsNotWritten) {
  ScriptedServer server;
  WillRefusePair(server);
  const Outcome outcome = Parse("{\"instanceCollection\": " + Quoted(kUuid) + "}", server.ctx());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(743, "---> failed to add < instanceCollection: " +
                                                     std::string(kUuid) + " > !!!!"));
}

TEST_F(InstanceCollection, HandsOutTheSameIdAgainWhenItWasNotWritten) {
  ScriptedServer server;
  WillRefusePair(server);
  const Outcome outcome = Parse("{}", server.ctx());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(
      outcome.errors,
      ExtensionReport(761, "---> failed to add < instanceCollection: " + Long("S0") + " > !!!!"));
  EXPECT_EQ(Parse("{}").result, 0);
  EXPECT_EQ(Field("H0", "instanceCollection"), "S0");
}

TEST_F(InstanceCollection, ReportsAnIdThatMemoryIsOutFor) {
  json_t* const document = Value("{}");
  const std::string reports = ReportsOfAllocationFaults(
      [&] { (void)zephlane::parseInstanceCollectionField(ctx(), document, Root()); });
  EXPECT_NE(reports.find(ExtensionReport(754, "Failed to get new UUID for instanceCollection!")),
            std::string::npos);
}

TEST_F(InstanceCollection, NullArgumentsAreReported) {
  json_t* const document = Value("{}");
  const std::string report = NullArgument(709, "parseInstanceCollectionField");
  const auto parse = [](redisContext* connection, json_t* value, const char* hash) {
    return Observe([&] { return zephlane::parseInstanceCollectionField(connection, value, hash); });
  };
  EXPECT_EQ(parse(nullptr, document, Root()).errors, report);
  EXPECT_EQ(parse(ctx(), nullptr, Root()).errors, report);
  EXPECT_EQ(parse(ctx(), document, nullptr).errors, report);
  EXPECT_EQ(parse(ctx(), document, nullptr).result, 1);
}

// ---- ttl

class TimeToLive : public ParserTest {
 protected:
  Outcome Parse(const std::string& text, redisContext* connection = nullptr) {
    json_t* const value = Value(text);
    redisContext* const used = connection != nullptr ? connection : ctx();
    return Observe([&] { return zephlane::parseTTLField(used, value, Root()); });
  }
};

TEST_F(TimeToLive, IsStoredInDecimal) {
  for (const char* value : {"3600", "0", "-1", "4294967297", "9223372036854775807"}) {
    EXPECT_EQ(Parse(value).result, 0);
    EXPECT_EQ(Field("H0", "ttl"), value);
  }
}

TEST_F(TimeToLive, MustBeAnInteger) {
  const Outcome outcome = Parse("\"3600\"");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(638, "TTL is not integer type."));
}

TEST_F(TimeToLive, FailsWhenItIsNotWritten) {
  ScriptedServer server;
  WillRefusePair(server);
  const Outcome outcome = Parse("60", server.ctx());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(647, "---> failed to add < ttl: 60 > !!!"));
}

TEST_F(TimeToLive, NullArgumentsAreReported) {
  json_t* const value = Value("60");
  const std::string report = NullArgument(632, "parseTTLField");
  EXPECT_EQ(Observe([&] { return zephlane::parseTTLField(nullptr, value, Root()); }).errors,
            report);
  EXPECT_EQ(Observe([&] { return zephlane::parseTTLField(ctx(), nullptr, Root()); }).errors,
            report);
  const Outcome outcome = Observe([&] { return zephlane::parseTTLField(ctx(), value, nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

// ---- Messages

class Messages : public ParserTest {
 protected:
  void SetUp() override {
    ParserTest::SetUp();
    ConfigureMessageProperty("RuxoMessage");
  }
  Outcome Parse(const std::string& text) {
    json_t* const messages = Value(text);
    return Observe([&] { return parseRuxoMessageField(context(), messages, Root()); });
  }
  Outcome ParseValues(const std::string& text, const std::string& set) {
    json_t* const values = Value(text);
    return Observe([&] { return zephlane::parseRuxoMsgValue(context(), values, set.c_str()); });
  }
};

TEST_F(Messages, BecomeHashesInASet) {
  ASSERT_EQ(ParseMember("properties", R"({"Reading": {"type": "number"}})").result, 0);
  const Outcome outcome = Parse(R"({"type": "object", "values": [
      {"id": "1.0.1", "MsgType": "Error", "Param": ["#/Reading/type"], "text": "left out"},
      {"id": "1.0.2"}]})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Tree(), R"(hash H0
  DummyKey = DummyValue
  Reading = H1
  RuxoMessage = S0
hash H1
  DummyKey = DummyValue
  type = number
hash H2
  #/Reading/type = number
  MsgType = Error
  id = 1.0.1
hash H3
  id = 1.0.2
set S0
  (dummy)
  H2
  H3
)");
}

TEST_F(Messages, WithoutATypeFail) {
  for (const char* text : {R"({"values": []})", "[]", "\"text\"", "null"}) {
    SCOPED_TRACE(text);
    const Outcome outcome = Parse(text);
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ExtensionReport(562, "Object has no type!"));
  }
}

TEST_F(Messages, WithATypeThatIsNoTextAreANoticeOnly) {
  const Outcome outcome = Parse(R"({"type": 5, "values": []})");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(568, "RuxoMessage type does not present as STRING type !!!"));
  EXPECT_EQ(Field("H0", "RuxoMessage"), "S0");
}

TEST_F(Messages, WithoutValuesFail) {
  const Outcome outcome = Parse(R"({"type": "object"})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(573, "Ruxo Message without message body."));
}

TEST_F(Messages, WithValuesThatAreNoArrayWriteNothing) {
  for (const char* values : {"{}", "null", "\"text\"", "5"}) {
    SCOPED_TRACE(values);
    const Outcome outcome = Parse(std::string(R"({"type": "object", "values": )") + values + "}");
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.errors, "");
  }
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n");
}

TEST_F(Messages, MayBeNone) {
  EXPECT_EQ(Parse(R"({"type": "object", "values": []})").result, 0);
  EXPECT_EQ(Tree(), "hash H0\n  DummyKey = DummyValue\n  RuxoMessage = S0\nset S0\n  (dummy)\n");
}

TEST_F(Messages, FailWhenNoSetCanBeMade) {
  FillObjectTable();
  const Outcome outcome = Parse(R"({"type": "object", "values": []})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, FullTable() + ExtensionReport(581, "create new set table faile !!!!"));
}

TEST_F(Messages, FailWhenTheirPropertyCannotBeWritten) {
  const std::string name(1024, 'n');
  ConfigureMessageProperty(name);
  const Outcome outcome = Parse(R"({"type": "object", "values": []})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TooLongPair(name, Long("S0")) + ExtensionReport(589, "Failed to add pair !!!!"));
}

TEST_F(Messages, FailWithOneOfThem) {
  const Outcome outcome = Parse(R"({"type": "object", "values": [{"id": "1"}, 5, {"id": "2"}]})");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(460, "Message body is not object type") +
                                ExtensionReport(596, "Parsing RuxoMessage field failed !!!!"));
  EXPECT_EQ(Ask({"SCARD", Long("S0")}), "2");
}

TEST_F(Messages, NullArgumentsAreReported) {
  json_t* const messages = Value("{}");
  const std::string report = NullArgument(556, "parseRuxoMessageField");
  EXPECT_EQ(Observe([&] { return parseRuxoMessageField(nullptr, messages, Root()); }).errors,
            report);
  EXPECT_EQ(Observe([&] { return parseRuxoMessageField(context(), nullptr, Root()); }).errors,
            report);
  const Outcome outcome =
      Observe([&] { return parseRuxoMessageField(context(), messages, nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

TEST_F(Messages, EachMustBeAnObject) {
  for (const char* message : {"\"text\"", "5", "null", "[]", "1.5"}) {
    SCOPED_TRACE(message);
    const Outcome outcome = ParseValues(std::string("[") + message + "]", NewSet());
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ExtensionReport(460, "Message body is not object type"));
  }
}

TEST_F(Messages, EachMustHaveATextAsId) {
  for (const char* message : {"{}", R"({"id": 5})", R"({"id": null})", R"({"ID": "x"})"}) {
    SCOPED_TRACE(message);
    const Outcome outcome = ParseValues(std::string("[") + message + "]", NewSet());
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ExtensionReport(468, "Wrong type: RuxoMessage -> id"));
  }
}

TEST_F(Messages, IdOf1024CharactersFails) {
  const std::string id(1024, 'i');
  const std::string text = "<id : " + id + "> insert pair into hash failed!!";
  const Outcome outcome = ParseValues("[{\"id\": " + Quoted(id) + "}]", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, TooLongPair("id", id) + TreeReport(text) + ExtensionReport(482, text));
}

TEST_F(Messages, FailWhenNoHashCanBeMade) {
  const std::string set = NewSet();
  FillObjectTable();
  const Outcome outcome = ParseValues(R"([{"id": "1"}])", set);
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            FullTable() + ExtensionReport(482, "<id : 1> insert pair into hash failed!!"));
}

TEST_F(Messages, MembersOfOtherTypesAreLeftOut) {
  const Outcome outcome = ParseValues(
      R"([{"id": "1", "Param": "#/definitions/A", "MsgType": 5, "title": "x"},
          {"id": "2", "Param": {"A": 1}, "MsgType": ["Error"]}])",
      NewSet());
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Ask({"HGETALL", Long("H1")}), "id\n1");
  EXPECT_EQ(Ask({"HGETALL", Long("H2")}), "id\n2");
}

TEST_F(Messages, BrokenParameterFailsThemAll) {
  const Outcome outcome = ParseValues(R"([{"id": "1", "Param": ["x"]}, {"id": "2"}])", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(321, "param[0]=x format error, should contain #/ !!!!") +
                ExtensionReport(493, "RuxoMessage -> Param: errors !!!"));
  EXPECT_EQ(Ask({"SMEMBERS", Long("S0")}), "00000000-0000-0000-0000-000000000000");
}

TEST_F(Messages, MessageTypeOf1024CharactersFails) {
  const std::string text(1024, 't');
  const Outcome outcome =
      ParseValues(R"([{"id": "1", "MsgType": )" + Quoted(text) + "}]", NewSet());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            TooLongPair("MsgType", text) +
                ExtensionReport(509, "<MsgType : " + text + "> insert pair into hash failed!!"));
}

TEST_F(Messages, FailWhenTheSetTakesNoMember) {
  const Outcome outcome = ParseValues(R"([{"id": "1"}])", StringKey());
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(521, "---> create set table failed !!!!"));
}

TEST_F(Messages, FailCleanlyWhereverMemoryRunsOut) {
  json_t* const messages =
      Value(R"({"type": "object", "values": [{"id": "1", "Param": ["#/definitions/A"]}]})");
  const std::string reports =
      ReportsOfAllocationFaults([&] { (void)parseRuxoMessageField(context(), messages, Root()); });
  EXPECT_NE(reports.find(ExtensionReport(482, "<id : 1> insert pair into hash failed!!")),
            std::string::npos);
  EXPECT_NE(reports.find(ExtensionReport(581, "create new set table faile !!!!")),
            std::string::npos);
}

TEST_F(Messages, NullArgumentsOfTheirValuesAreReported) {
  json_t* const values = Value("[]");
  const std::string report = NullArgument(444, "parseRuxoMsgValue");
  EXPECT_EQ(Observe([&] { return zephlane::parseRuxoMsgValue(nullptr, values, "set"); }).errors,
            report);
  EXPECT_EQ(Observe([&] { return zephlane::parseRuxoMsgValue(context(), nullptr, "set"); }).errors,
            report);
  const Outcome outcome =
      Observe([&] { return zephlane::parseRuxoMsgValue(context(), values, nullptr); });
  EXPECT_EQ(outcome.errors, report);
  EXPECT_EQ(outcome.result, 1);
}

// ---- Parameters of a message

class MessageParameters : public ParserTest {
 protected:
  Outcome Retrieve(const std::string& text) {
    json_t* const params = Value(text);
    return Observe(
        [&] { return zephlane::retrieveRuxoMsgParamArray(context(), params, "message"); });
  }
};

TEST_F(MessageParameters, AreFieldsWithTheTypeTheyLeadTo) {
  ASSERT_EQ(ParseMember("definitions", R"({"Fan": {"properties": {"Reading": "number"}}})").result,
            0);
  EXPECT_EQ(Retrieve(R"(["#/definitions/Fan/Reading", "Thing.json#/definitions/Fan"])").errors, "");
  EXPECT_EQ(Ask({"HGET", "message", "#/definitions/Fan/Reading"}), "number");
  EXPECT_EQ(Ask({"HGET", "message", "Thing.json#/definitions/Fan"}), Long("H2"));
}

TEST_F(MessageParameters, AreRecordedAboveTheOtherReferences) {
  EXPECT_EQ(Retrieve(R"(["Other.json#/definitions/A", "Other.json#/definitions/B"])").result, 0);
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 0);
  EXPECT_EQ(schemaRefListGetFreeSpace(3600, 4000), 3602);
  EXPECT_EQ(schemaRefListSearchEntry("Other.json#/definitions/A"), -1);
}

TEST_F(MessageParameters, OfASchemaNotYetInterpretedHaveNoTypeYet) {
  const Outcome outcome = Retrieve(R"(["Other.json#/definitions/A"])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(Ask({"HGETALL", "message"}), "Other.json#/definitions/A\nType Not Found");
}

TEST_F(MessageParameters, ThatLeadNowhereHaveNoTypeYet) {
  const Outcome outcome = Retrieve(R"(["#/definitions/A"])");
  EXPECT_EQ(outcome.result, 0);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(247,
                            "[Warning] Type information from <Thing.json#/definitions/A> not found "
                            "while parsing"));
  EXPECT_EQ(Ask({"HGET", "message", "#/definitions/A"}), kNotFound);
}

TEST_F(MessageParameters, MayBeNone) {
  EXPECT_EQ(Retrieve("[]").result, 0);
  EXPECT_EQ(Ask({"EXISTS", "message"}), "0");
}

TEST_F(MessageParameters, MustBeText) {
  for (const char* param : {"5", "null", "1.5", "true", "[]", "{}"}) {
    SCOPED_TRACE(param);
    const Outcome outcome = Retrieve(std::string("[") + param + "]");
    EXPECT_EQ(outcome.result, 1);
    EXPECT_EQ(outcome.errors, ExtensionReport(306, "Member of Param array is not string type !"));
  }
}

TEST_F(MessageParameters, MustContainAPointer) {
  const Outcome outcome = Retrieve(R"(["Other.json#/definitions/A", "Thing.json#Reading"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            ExtensionReport(321,
                            "param[1]=Thing.json#Reading format error, should contain #/ "
                            "!!!!"));
  EXPECT_EQ(Ask({"HLEN", "message"}), "1");
}

TEST_F(MessageParameters, FailWithTheReportsOfTheSplit) {
  const Outcome outcome = Retrieve(R"(["text#/A"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, PathReport("Extract path token error !!!") +
                                PathReport("extract schema name from [text#/A] fail"));
  EXPECT_EQ(schemaRefListGetFreeSpace(3600, 4000), 3600);
}

TEST_F(MessageParameters, OfASchemaWhoseNameFillsItsBufferFail) {
  std::memset(context()->resourcePath.schemaName, 's', sizeof(ResourcePath::schemaName));
  const Outcome outcome = Retrieve(R"(["#/definitions/A"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, ExtensionReport(370, "Schema name: " + std::string(200, 's') +
                                                     "\n is greater than string buffer ..."));
}

TEST_F(MessageParameters, Number400IsTheLast) {
  std::string params = "[\"Other.json#/A\"";
  for (int i = 1; i < 400; ++i) { params += ", \"Other.json#/A\""; }
  EXPECT_EQ(Retrieve(params + "]").result, 0);
  const Outcome outcome = Retrieve(R"(["Other.json#/B"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(744, "listSlotIdx == -1") +
                ExtensionReport(386,
                                "Failed to insert entry into Schema Reference List [3600][4000] "
                                "!!!"));
  EXPECT_EQ(Ask({"HKEYS", "message"}), "Other.json#/A");
}

TEST_F(MessageParameters, TextOf1023CharactersIsTheLongest) {
  const std::string longest = "Other.json#/" + std::string(1008, 'a') + "#/b";
  EXPECT_EQ(Retrieve("[" + Quoted(longest) + "]").result, 0);
  EXPECT_EQ(Ask({"HGET", "message", longest}), kNotFound);
  const std::string longer = "Other.json#/" + std::string(1009, 'a') + "#/b";
  const Outcome outcome = Retrieve("[" + Quoted(longer) + "]");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors,
            LinkingReport(755, "PropLocation buffer size!") +
                ExtensionReport(386,
                                "Failed to insert entry into Schema Reference List [3600][4000] "
                                "!!!"));
}

TEST_F(MessageParameters, FailSilentlyWhenTheTypeIsNotWritten) {
  ScriptedServer server;
  WillRefusePair(server);
  context()->connection = server.ctx();
  const Outcome outcome = Retrieve(R"(["Other.json#/A"])");
  EXPECT_EQ(outcome.result, 1);
  EXPECT_EQ(outcome.errors, "");
  EXPECT_EQ(server.Commands(), "HMSET message Other.json#/A Type Not Found\n");
}

TEST_F(MessageParameters, NullArgumentsAreReported) {
  json_t* const params = Value("[]");
  const std::string report = NullArgument(286, "retrieveRuxoMsgParamArray");
  const auto retrieve = [](ParseContext* context, json_t* value, const char* hash) {
    return Observe([&] { return zephlane::retrieveRuxoMsgParamArray(context, value, hash); });
  };
  EXPECT_EQ(retrieve(nullptr, params, "message").errors, report);
  EXPECT_EQ(retrieve(context(), nullptr, "message").errors, report);
  EXPECT_EQ(retrieve(context(), params, nullptr).errors, report);
  EXPECT_EQ(retrieve(context(), params, nullptr).result, 1);
}

// ---- The type at the end of a path

class ParameterType : public ParserTest {
 protected:
  // The type, and what was printed in `errors_`.
  std::string TypeOf(const std::string& route) {
    char type[1024] = "";
    errors_ = Observe([&] {
                zephlane::getParamMemberType(context(), route.c_str(), type);
                return 0;
              }).errors;
    return type;
  }
  static std::string Warning(const std::string& route) {
    return ExtensionReport(
        247, "[Warning] Type information from <" + route + "> not found while parsing");
  }
  static std::string TooLong(int line, const std::string& route) {
    return ExtensionReport(line, "Length is too long to extract!!!\nParam member: <" + route +
                                     ">\nAcceptable length is: 2400");
  }
  void SetField(const std::string& hash, const std::string& field, const std::string& value) {
    ASSERT_EQ(Ask({"HSET", hash, field, value}), "1");
  }
  std::string errors_;
};

TEST_F(ParameterType, IsTheValueOfTheLastField) {
  SetField(Root(), "definitions", Long("H1"));
  SetField(Long("H1"), "Fan", Long("H2"));
  SetField(Long("H2"), "type", "number");
  EXPECT_EQ(TypeOf("Thing.json#/definitions/Fan/type"), "number");
  EXPECT_EQ(Short(TypeOf("Thing.json#/definitions/Fan")), "H2");
  EXPECT_EQ(errors_, "");
}

TEST_F(ParameterType, IsLookedForInTheNamedSchema) {
  ASSERT_EQ(schemaReferTableInsertEntry("Other.json", "other root"), 0);
  SetField("other root", "title", "Other");
  EXPECT_EQ(TypeOf("Other.json#/title"), "Other");
}

TEST_F(ParameterType, IsNotFoundSilentlyWhenTheSchemaIsNotInterpreted) {
  EXPECT_EQ(TypeOf("Missing.json#/title"), kNotFound);
  EXPECT_EQ(errors_, "");
  EXPECT_EQ(TypeOf("http://a.b/Thing.json#/title"), kNotFound);
  EXPECT_EQ(errors_, "");
}

TEST_F(ParameterType, OfAPathWithoutASchemaBeginsAtTheRootPastTheFirstStep) {
  SetField(Root(), "Reading", "number");
  EXPECT_EQ(TypeOf("#/properties/Reading"), "number");
  EXPECT_EQ(errors_, "");
}

TEST_F(ParameterType, IsNotFoundThroughFlattenedProperties) {
  SetField(Root(), "Reading", "number");
  EXPECT_EQ(TypeOf("Thing.json#/properties/Reading"), kNotFound);
  EXPECT_EQ(errors_, Warning("Thing.json#/properties/Reading"));
}

TEST_F(ParameterType, IgnoresEmptySteps) {
  SetField(Root(), "Reading", "number");
  EXPECT_EQ(TypeOf("Thing.json#//Reading/"), "number");
}

TEST_F(ParameterType, IsNotFoundInAPathWithoutSchemaAndSteps) {
  for (const char* route : {"", "#", "#/", "///", "#/#"}) {
    SCOPED_TRACE(route);
    EXPECT_EQ(TypeOf(route), kNotFound);
    EXPECT_EQ(errors_, ExtensionReport(143, "strtok"));
  }
}

TEST_F(ParameterType, IsNotFoundInAPathWithoutSteps) {
  for (const char* route : {"Thing.json", "Thing.json#", "Thing.json#/", "#/properties"}) {
    SCOPED_TRACE(route);
    EXPECT_EQ(TypeOf(route), kNotFound);
    EXPECT_EQ(errors_, ExtensionReport(189, "strtok"));
  }
}

TEST_F(ParameterType, IsNotFoundBelowAValueThatIsNoHash) {
  for (const std::string& value :
       {std::string("number"), Long("S0"), std::string("00000000-0000-0000-0001-ffffffffffff"),
        std::string(kUuid)}) {
    SCOPED_TRACE(value);
    ASSERT_NE(Ask({"HSET", Root(), "Fan", value}), "");
    EXPECT_EQ(TypeOf("Thing.json#/Fan/type"), kNotFound);
    EXPECT_EQ(errors_,
              ExtensionReport(227, "Value is not hash ID while property has sub-property !!!"));
  }
}

TEST_F(ParameterType, IsNotFoundBelowAnIdOf37Characters) {
  SetField(Root(), "Fan", Long("H1") + "0");
  EXPECT_EQ(TypeOf("Thing.json#/Fan/type"), kNotFound);
  EXPECT_EQ(errors_, ExtensionReport(219, "Length of hash ID is incorrect !!!"));
}

TEST_F(ParameterType, IsCutTo1023Characters) {
  SetField(Root(), "title", std::string(1500, 't'));
  EXPECT_EQ(TypeOf("Thing.json#/title"), std::string(1023, 't'));
}

TEST_F(ParameterType, IsLookedForAlongAtMost2399Characters) {
  const std::string longest = "Thing.json#/" + std::string(2387, 'a');
  SetField(Root(), std::string(2387, 'a'), "number");
  EXPECT_EQ(TypeOf(longest), "number");
  EXPECT_EQ(TypeOf(longest + "a"), kNotFound);
  EXPECT_EQ(errors_, TooLong(125, longest + "a"));
}

TEST_F(ParameterType, IsNotFoundFromARootIdOf37Characters) {
  std::memset(context()->rootHashID, '0', sizeof(ParseContext::rootHashID));
  EXPECT_EQ(TypeOf("Thing.json#/title"), kNotFound);
  EXPECT_EQ(errors_, TooLong(132, "Thing.json#/title"));
}

TEST_F(ParameterType, IsNotFoundWithoutAContext) {
  char type[1024] = "";
  const Outcome outcome = Observe([&] {
    zephlane::getParamMemberType(nullptr, "Thing.json#/title", type);
    return 0;
  });
  EXPECT_STREQ(type, kNotFound);
  EXPECT_EQ(outcome.errors, ExtensionReport(115, "getParamMemberType: argument is NULL !!!"));
}

TEST_F(ParameterType, IsNotFoundWhenTheConnectionIsLost) {
  ScriptedServer server;
  server.WillClose();
  context()->connection = server.ctx();
  EXPECT_EQ(TypeOf("Thing.json#/title"), kNotFound);
  EXPECT_EQ(errors_, Warning("Thing.json#/title"));
}

}  // namespace
