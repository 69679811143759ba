// SPDX-License-Identifier: MIT
//
// What the tests of the parsers and of reference linking share: a schema in hand with its root
// hash, and the store with the generated IDs in short form. The tables of the process are cleared
// for each case and IDs are counted from its start, so cases run in one process.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <jansson.h>

#include <zephlaneAPI.h>

#include "support/output.h"
#include "support/owners.h"
#include "support/scriptedServer.h"
#include "support/store.h"

namespace zephlane::test {

// What a call gave and what it printed on standard error. The numbers of the modules whose messages
// carry the line of their statement are masked; numbers of a message's own are kept.
struct Outcome {
  int result = -1;
  std::string errors;
};

Outcome Observe(const std::function<int()>& call);

// The text of a heap string, which is freed.
std::string Taken(char* text);

std::string ObjectReport(int line, const std::string& text);
std::string ArrayReport(int line, const std::string& text);
std::string ExtensionReport(int line, const std::string& text);
std::string LinkingReport(int line, const std::string& text);
std::string TreeReport(const std::string& text);
std::string SchemaReport(const std::string& text);
std::string PathReport(const std::string& text);
// In double quotes.
std::string Quoted(const std::string& text);

// What creating a hash or set prints when every slot for created objects is taken.
std::string FullTable();
// What a pair prints that is too long for the store.
std::string TooLongPair(const std::string& field, const std::string& value);
// What a reference prints that names no schema file.
std::string NoSchemaFile(const std::string& reference);
// What a member name of 100 characters or more prints when it is put on the route and taken off.
std::string NameTooLongForTheRoute();

// The reports of `body` run again and again, its first, second, third ... allocation failing, until
// none is left to fail. `body` must be repeatable and allocate nothing of its own.
std::string ReportsOfAllocationFaults(const std::function<void()>& body);

// Replies to what the hash tree sends, in the order of its commands.
void WillCreateHash(ScriptedServer& server);
void WillCreateSet(ScriptedServer& server);
void WillWritePair(ScriptedServer& server);
void WillRefusePair(ScriptedServer& server);
void WillAddMember(ScriptedServer& server);

// The schema in hand is "Thing.json". It is registered, its root hash is H0 and holds the dummy
// pair, the route stands at the document's root, and schema files are looked for in a directory of
// the case's own.
class ParserTest : public StoreTest {
 protected:
  void SetUp() override;
  void TearDown() override;

  [[nodiscard]] ParseContext* context() {
    return &context_;
  }
  [[nodiscard]] const char* Root() const {
    return context_.rootHashID;
  }
  // A value that lives as long as the case.
  json_t* Value(const std::string& text);
  json_t* Text(const std::string& text);
  // Gives the schema in hand another name, which is not registered.
  void NameSchema(const std::string& name);
  static void WriteSchema(const std::string& name, const std::string& text);
  // Interprets `text` as the document of the schema in hand.
  Outcome ParseRoot(const std::string& text);
  // Interprets `text` as the object that member `name` of the document holds.
  Outcome ParseMember(const std::string& name, const std::string& text);
  // A new set of the tree, with the dummy member only: S0 for the first one.
  std::string NewSet();
  // A key of a type that the tree never uses.
  std::string StringKey();
  // Takes every slot for created objects, so that no hash or set can be made any more.
  static void FillObjectTable();
  // Takes slots of the reference list until `count` of those from `first` on are taken.
  static void FillReferences(int first, int limit, int count);

  // The store without what every case starts with: generated IDs as H0, H1 ... and S0, S1 ...,
  // counted from the start of the case, the dummy member as "(dummy)".
  std::string Tree();
  [[nodiscard]] std::string Short(const std::string& text) const;
  // The whole ID of a short one.
  [[nodiscard]] std::string Long(const std::string& id) const;
  // A field of hash H0, H1 ..., shortened; "(nil)" without one.
  std::string Field(const std::string& id, const std::string& field);
  // Where the route stands.
  std::string Route();

 private:
  ParseContext context_{};
  std::vector<Json> documents_;
  unsigned long first_hash_ = 0;
  unsigned long first_set_ = 0;
  std::string directory_;
  std::string previous_directory_;
};

}  // namespace zephlane::test
