// SPDX-License-Identifier: MIT
#include "interpreter/parserTest.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>

#include "support/allocationFault.h"

namespace zephlane::test {

namespace {

constexpr char kHashPrefix[] = "00000000-0000-0000-0001-0";
constexpr char kSetPrefix[] = "00000000-0000-0000-0001-1";
constexpr char kDummy[] = "00000000-0000-0000-0000-000000000000";

// The messages of these modules carry the line of their statement.
bool HasLineOfStatement(const std::string& line) {
  return line.starts_with("[ERROR] zephlaneSchemaInterpreter.cpp:") ||
         line.starts_with("[ERROR] hashTreeOperation.cpp:") ||
         line.starts_with("[ERROR] resourcePathParser.cpp:");
}

std::string MaskedWhereNumbersFollowTheSource(const std::string& printed) {
  std::string masked;
  for (std::size_t at = 0; at < printed.size();) {
    const std::size_t end = std::min(printed.find('\n', at), printed.size() - 1) + 1;
    const std::string line = printed.substr(at, end - at);
    masked += HasLineOfStatement(line) ? Masked(line) : line;
    at = end;
  }
  return masked;
}

unsigned long NextNumber(int kind) {
  const CString id(generateRedisDataObjectID(kind));
  return std::stoul(std::string(id.get()).substr(25), nullptr, 16);
}

std::string WithNumbers(std::string text, const char* prefix, const std::string& letter,
                        unsigned long first) {
  for (std::size_t at = 0; (at = text.find(prefix, at)) != std::string::npos;) {
    const unsigned long number = std::stoul(text.substr(at + 25, 11), nullptr, 16);
    text.replace(at, 36, letter + std::to_string(number - first));
  }
  return text;
}

}  // namespace

std::string Taken(char* text) {
  const CString owner(text);
  return owner ? owner.get() : "(null)";
}

Outcome Observe(const std::function<int()>& call) {
  Outcome outcome;
  outcome.errors = MaskedWhereNumbersFollowTheSource(Capture([&] { outcome.result = call(); }).err);
  return outcome;
}

std::string ObjectReport(int line, const std::string& text) {
  return InterpreterReport("schemaObjectParser.cpp", line, text);
}

std::string ArrayReport(int line, const std::string& text) {
  return InterpreterReport("schemaArrayParser.cpp", line, text);
}

std::string ExtensionReport(int line, const std::string& text) {
  return InterpreterReport("zephlaneExtensionParser.cpp", line, text);
}

std::string LinkingReport(int line, const std::string& text) {
  return InterpreterReport("referenceLinking.cpp", line, text);
}

std::string TreeReport(const std::string& text) {
  return InterpreterReport("hashTreeOperation.cpp", text);
}

std::string SchemaReport(const std::string& text) {
  return InterpreterReport("zephlaneSchemaInterpreter.cpp", text);
}

std::string PathReport(const std::string& text) {
  return InterpreterReport("resourcePathParser.cpp", text);
}

std::string Quoted(const std::string& text) {
  return "\"" + text + "\"";
}

std::string FullTable() {
  return TreeReport("Hash object collection table is out of room !");
}

std::string TooLongPair(const std::string& field, const std::string& value) {
  return TreeReport("Redis key or value is out of range!!") +
         TreeReport("<" + field + " : " + value + "> insert pair into hash failed!!");
}

std::string NoSchemaFile(const std::string& reference) {
  return PathReport("Resource: " + reference) + PathReport("It sould be a .json/.JSON/.Json file!");
}

std::string NameTooLongForTheRoute() {
  return SchemaReport("Failed to create node for route map!") +
         SchemaReport("Spot name not match!!");
}

std::string ReportsOfAllocationFaults(const std::function<void()>& body) {
  std::string reports;
  bool failed = true;
  for (int n = 1; failed; ++n) {
    reports += Capture([&] {
                 AllocationFault fault(n);
                 body();
                 fault.Disarm();
                 failed = fault.Happened();
               }).err;
  }
  return MaskedWhereNumbersFollowTheSource(reports);
}

void WillCreateHash(ScriptedServer& server) {
  server.WillReply("$-1\r\n");  // no companion hash
  server.WillReply(":0\r\n");
  server.WillReply("+OK\r\n");
}

void WillCreateSet(ScriptedServer& server) {
  server.WillReply("$-1\r\n");
  server.WillReply(":0\r\n");
  server.WillReply(":1\r\n");
}

void WillWritePair(ScriptedServer& server) {
  server.WillReply("+OK\r\n");
}

void WillRefusePair(ScriptedServer& server) {
  server.WillReply("+NO\r\n");  // an error reply would count as success
}

void WillAddMember(ScriptedServer& server) {
  server.WillReply(":1\r\n");
}

void ParserTest::SetUp() {
  StoreTest::SetUp();
  previous_directory_ = std::filesystem::current_path();
  char path[] = "/tmp/zephlane-schemas-XXXXXX";
  ASSERT_NE(mkdtemp(path), nullptr);
  directory_ = path;
  std::filesystem::current_path(directory_);
  schemaReferenceListInit();
  ASSERT_EQ(hashTreeInit(ctx()), 0);
  ASSERT_EQ(Ask({"FLUSHALL"}), "OK");
  propertyRuxoMessage[0] = '\0';
  first_hash_ = NextNumber(1);
  first_set_ = NextNumber(2);
  context_.connection = ctx();
  context_.routeMap = parserRouteCreateNode("#");
  const CString root(hashTreeCreateNewHash(ctx(), "DummyKey", "DummyValue"));
  (void)std::snprintf(context_.rootHashID, sizeof(context_.rootHashID), "%s", root.get());
  NameSchema("Thing.json");
  ASSERT_EQ(schemaReferTableInsertEntry("Thing.json", Root()), 0);
}

void ParserTest::TearDown() {
  parserRouteFreeRouteMap(context_.routeMap);
  G_nSchemaURICount = -1;
  propertyRuxoMessage[0] = '\0';
  std::filesystem::current_path(previous_directory_);
  (void)std::filesystem::remove_all(directory_);
  StoreTest::TearDown();
}

json_t* ParserTest::Value(const std::string& text) {
  json_error_t error;
  json_t* value = json_loads(text.c_str(), JSON_DECODE_ANY, &error);
  EXPECT_NE(value, nullptr) << error.text << " in " << text;
  documents_.emplace_back(value);
  return value;
}

json_t* ParserTest::Text(const std::string& text) {
  documents_.emplace_back(json_string(text.c_str()));
  return documents_.back().get();
}

void ParserTest::NameSchema(const std::string& name) {
  char* const buffer = context_.resourcePath.schemaName;
  (void)std::snprintf(buffer, sizeof(context_.resourcePath.schemaName), "%s", name.c_str());
}

void ParserTest::WriteSchema(const std::string& name, const std::string& text) {
  std::ofstream(name) << text;
}

Outcome ParserTest::ParseRoot(const std::string& text) {
  context_.document = Value(text);
  return Observe([&] { return parseRootObject(&context_, context_.document) != 0 ? 1 : 0; });
}

Outcome ParserTest::ParseMember(const std::string& name, const std::string& text) {
  json_t* const object = Value(text);
  return Observe([&] { return parseObject(&context_, name.c_str(), object, Root()); });
}

std::string ParserTest::NewSet() {
  return CString(hashTreeCreateNewSet(ctx(), nullptr)).get();
}

std::string ParserTest::StringKey() {
  EXPECT_EQ(Ask({"SET", "a string", "text"}), "OK");
  return "a string";
}

void ParserTest::FillObjectTable() {
  while (recordRedisObjectID("taken") == 0) {}
}

void ParserTest::FillReferences(int first, int limit, int count) {
  const ResourcePath path{};
  for (int i = 0; i < count; ++i) {
    ASSERT_EQ(schemaRefListInsertEntry("", "", "taken", nullptr, "", &path, first, limit), 0);
  }
}

std::string ParserTest::Tree() {
  return Short(Dump());
}

std::string ParserTest::Short(const std::string& text) const {
  std::string result = WithNumbers(text, kHashPrefix, "H", first_hash_);
  result = WithNumbers(result, kSetPrefix, "S", first_set_);
  for (std::size_t at = 0; (at = result.find(kDummy, at)) != std::string::npos;) {
    result.replace(at, sizeof(kDummy) - 1, "(dummy)");
  }
  return result;
}

std::string ParserTest::Long(const std::string& id) const {
  const bool is_hash = id[0] == 'H';
  char digits[16];
  (void)std::snprintf(digits, sizeof(digits), "%.11lx",
                      (is_hash ? first_hash_ : first_set_) + std::stoul(id.substr(1)));
  return (is_hash ? kHashPrefix : kSetPrefix) + std::string(digits);
}

std::string ParserTest::Field(const std::string& id, const std::string& field) {
  return Short(Ask({"HGET", Long(id), field}));
}

std::string ParserTest::Route() {
  char text[1024] = "";
  parserRouteConcatRoute(context_.routeMap, context_.resourcePath.schemaName, text, sizeof(text));
  return text;
}

}  // namespace zephlane::test
