// SPDX-License-Identifier: MIT
//
// tree, over objects as services store them and over interpreted schemas.
#include <cstdio>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/store.h"
#include "tools/toolRun.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using zephlane::test::EnvironmentVariable;
using zephlane::test::RunTool;
using zephlane::test::RunToolOnTerminals;
using zephlane::test::StoreTest;
using zephlane::test::ToolRun;

constexpr char kChassis[] = "10000000-0000-0000-0000-000000000001";
constexpr char kFans[] = "10000000-0000-0000-0000-000000000002";
constexpr char kFan1[] = "10000000-0000-0000-0000-000000000003";
constexpr char kFan2[] = "10000000-0000-0000-0000-00000000abcd";
constexpr char kMissing[] = "10000000-0000-0000-0000-00000000ffff";

class ToolTree : public StoreTest {
 protected:
  static void ExpectTree(const std::vector<std::string>& arguments, const std::string& tree) {
    std::vector<std::string> words = {"tree"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    const ToolRun run = RunTool(words);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, tree);
    EXPECT_EQ(run.err, "");
  }
};

TEST_F(ToolTree, ShowsFieldsSortedWithLinksBehindValues) {
  Ask({"HSET", kChassis, "Name", "Rack 4", "Fan", kFan1, "Zone", "A\n1"});
  Ask({"HSET", kFan1, "Speed", "1200"});
  ExpectTree({kChassis},
             "Rack 4: hash 10000000-0000-0000-0000-000000000001\n"
             "├─ Name = Rack 4\n"
             "├─ Zone = A\\n1\n"
             "└─ Fan: hash …0003\n"
             "   └─ Speed = 1200\n");
}

TEST_F(ToolTree, FollowsHashSetAndListLinks) {
  Ask({"HSET", "chassis", "Fans", kFans, "Order", "order"});
  Ask({"SADD", kFans, kFan1, kFan2});
  Ask({"HSET", kFan1, "Name", "Front", "Speed", "1200"});
  Ask({"HSET", kFan2, "Speed", "900"});
  Ask({"RPUSH", "order", kFan2, "spare", kFan1});
  ExpectTree({"chassis"},
             "chassis: hash\n"
             "├─ Fans: set …0002\n"
             "│  ├─ Front: hash …0003\n"
             "│  │  ├─ Name = Front\n"
             "│  │  └─ Speed = 1200\n"
             "│  └─ 10000000-0000-0000-0000-00000000abcd: hash\n"
             "│     └─ Speed = 900\n"
             "└─ Order: list order\n"
             "   ├─ → 10000000-0000-0000-0000-00000000abcd  ^ see above\n"
             "   ├─ spare\n"
             "   └─ → Front  ^ see above\n");
}

TEST_F(ToolTree, MissingLinkTargetIsAPlainValue) {
  Ask({"HSET", "chassis", "Fan", kMissing, "Name", "Rack"});
  ExpectTree({"chassis"},
             "Rack: hash chassis\n"
             "├─ Fan = 10000000-0000-0000-0000-00000000ffff\n"
             "└─ Name = Rack\n");
}

TEST_F(ToolTree, NameOfAStringKeyIsAPlainValue) {
  Ask({"SET", "counter", "12"});
  Ask({"HSET", "hash", "Field", "counter"});
  ExpectTree({"hash"},
             "hash: hash\n"
             "└─ Field = counter\n");
}

TEST_F(ToolTree, CyclesEndInAMark) {
  Ask({"HSET", "a", "Next", "b"});
  Ask({"HSET", "b", "Next", "a", "Self", "b"});
  ExpectTree({"a"},
             "a: hash\n"
             "└─ Next: hash b\n"
             "   ├─ Next → a  ^ see above (cycle)\n"
             "   └─ Self → Next  ^ see above (cycle)\n");
}

TEST_F(ToolTree, SharedObjectIsExpandedNearestToTheRoot) {
  Ask({"HSET", "root", "A", "deep", "B", "shared"});
  Ask({"HSET", "deep", "Part", "shared"});
  Ask({"HSET", "shared", "Speed", "1"});
  ExpectTree({"root"},
             "root: hash\n"
             "├─ A: hash deep\n"
             "│  └─ Part → B  v see below\n"
             "└─ B: hash shared\n"
             "   └─ Speed = 1\n");
}

TEST_F(ToolTree, DepthLimitsTheLevelsAndSaysWhatIsHidden) {
  Ask({"HSET", "root", "Set", "set", "Name", "x"});
  Ask({"SADD", "set", "list", "plain"});
  Ask({"RPUSH", "list", "hash"});
  Ask({"HSET", "hash", "a", "1", "b", "2"});
  ExpectTree({"root", "--depth", "0"}, "x: hash root (+2 fields)\n");
  ExpectTree({"root", "--depth", "1"}, "x: hash root\n├─ Name = x\n└─ Set: set set (+2 members)\n");
  ExpectTree({"root", "--depth", "2"},
             "x: hash root\n├─ Name = x\n└─ Set: set set\n"
             "   ├─ plain\n   └─ list: list (+1 item)\n");
  ExpectTree({"root", "--depth", "3"},
             "x: hash root\n├─ Name = x\n└─ Set: set set\n"
             "   ├─ plain\n   └─ list: list\n      └─ hash: hash (+2 fields)\n");
}

TEST_F(ToolTree, SetsAndListsOfValuesStayInTheirLine) {
  Ask({"HSET", "root", "Modes", "modes", "Boot", "boot"});
  Ask({"SADD", "modes", "Quiet", "Fast"});
  Ask({"RPUSH", "boot", "net", "disk"});
  ExpectTree({"root"},
             "root: hash\n"
             "├─ Boot: list boot [net, disk]\n"
             "└─ Modes: set modes {Fast, Quiet}\n");
}

TEST_F(ToolTree, LongSetsAreBrokenIntoLines) {
  const std::string longest(90, 'x');
  Ask({"HSET", "root", "Modes", "modes"});
  Ask({"SADD", "modes", "a", longest});
  ExpectTree({"root"}, "root: hash\n└─ Modes: set modes\n   ├─ a\n   └─ " + longest + "\n");
}

TEST_F(ToolTree, RootMayBeASetOrAList) {
  Ask({"SADD", "set", "b", "a"});
  Ask({"RPUSH", "list", "b", "a"});
  ExpectTree({"set"}, "set: set\n├─ a\n└─ b\n");
  ExpectTree({"list"}, "list: list\n├─ b\n└─ a\n");
}

TEST_F(ToolTree, BookkeepingFieldsAreNotFollowed) {
  Ask({"HSET", kFan1, "UUID", kFan2, "typeID", kFan2, "typeId", kFan2});
  Ask({"HSET", kFan2, "Speed", "900"});
  ExpectTree({kFan1}, std::string(kFan1) + ": hash\n├─ UUID = " + kFan2 + "\n├─ typeID = " + kFan2 +
                          "\n└─ typeId = " + kFan2 + "\n");
}

TEST_F(ToolTree, WholeKeysOnRequest) {
  Ask({"HSET", "root", "Fan", kFan1});
  Ask({"HSET", kFan1, "Speed", "1"});
  ExpectTree({"--keys", "root"},
             std::string("root: hash\n└─ Fan: hash ") + kFan1 + "\n   └─ Speed = 1\n");
}

TEST_F(ToolTree, ValuesTooLongForAKeyAreValues) {
  const std::string value(2000, 'v');
  Ask({"HSET", "root", "Long", value});
  ExpectTree({"root"}, "root: hash\n└─ Long = " + value + "\n");
}

TEST_F(ToolTree, MissingKeyIsAFailure) {
  const ToolRun run = RunTool({"tree", "nothing"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err,
            "zephlane: nothing is neither a hash, a set or a list nor the title of a schema or the "
            "name of a definition.\n");
}

TEST_F(ToolTree, StringIsAFailure) {
  Ask({"SET", "string", "value"});
  const ToolRun run = RunTool({"tree", "string"});
  EXPECT_EQ(run.status, 1);
  EXPECT_EQ(run.out, "");
}

TEST_F(ToolTree, ColoursOnATerminalOnly) {
  Ask({"HSET", "root", "Fan", kFan1, "Name", "x"});
  Ask({"HSET", kFan1, "Speed", "1"});
  EXPECT_EQ(RunToolOnTerminals({"tree", "root"}).out,
            "x: \x1b[36mhash\x1b[0m\x1b[2m root\x1b[0m\r\n"
            "├─ Name = \x1b[32mx\x1b[0m\r\n"
            "└─ Fan: \x1b[36mhash\x1b[0m\x1b[2m …0003\x1b[0m\r\n"
            "   └─ Speed = \x1b[32m1\x1b[0m\r\n");
  EXPECT_THAT(RunTool({"tree", "root"}).out, Not(HasSubstr("\x1b")));
}

TEST_F(ToolTree, NoColoursWhereTheUserWantsNone) {
  const EnvironmentVariable refusal("NO_COLOR", "1");
  Ask({"HSET", "root", "Name", "x"});
  EXPECT_EQ(RunToolOnTerminals({"tree", "root"}).out, "x: hash root\r\n└─ Name = x\r\n");
}

// Two schemas as the interpreter stores them: Fan.1.0.0, whose properties refer to its own
// definitions and to one of Common.1.0.0.
class ToolSchemaTree : public ToolTree {
 protected:
  void SetUp() override {
    ToolTree::SetUp();
    Ask({"SADD", "ZephlaneSchemaInstances", Hash(1), Hash(0xa)});
    Ask({"HSET", "ZephlaneSchemaTitleUuidHash", "Fan.1.0.0", Hash(1), "Common.1.0.0", Hash(0xa)});
    Ask({"HSET", Hash(1), "title", "Fan.1.0.0", "typeId", Hash(1), "$ref", Hash(3), "definitions",
         Hash(2)});
    Ask({"HSET", Hash(2), "Fan", Hash(3), "Mode", Hash(4)});
    Ask({"HSET", Hash(3), "type", "object", "additionalProperties", "false", "Id", Hash(0xc),
         "Mode", Hash(4), "Speed", Hash(5), "Parts", Hash(6)});
    Ask({"HSET", Hash(4), "type", "string", "enum", Set(1)});
    Ask({"SADD", Set(1), "Quiet", "Fast"});
    Ask({"HSET", Hash(5), "type", "integernull", "minimum", "0"});
    Ask({"HSET", Hash(6), "type", "array", "anyOf", Set(2)});
    Ask({"SADD", Set(2), Hash(3), Hash(0xc), Hash(7)});
    Ask({"HSET", Hash(7), "type", "null"});
    Ask({"HSET", Hash(0xa), "title", "Common.1.0.0", "definitions", Hash(0xb)});
    Ask({"HSET", Hash(0xb), "Id", Hash(0xc)});
    Ask({"HSET", Hash(0xc), "type", "string", "maxLength", "64"});
  }
  static std::string Id(char kind, unsigned number) {
    char id[37];
    (void)std::snprintf(id, sizeof(id), "00000000-0000-0000-0001-%c%011x", kind, number);
    return id;
  }
  static std::string Hash(unsigned number) {
    return Id('0', number);
  }
  static std::string Set(unsigned number) {
    return Id('1', number);
  }
};

constexpr char kFanSchema[] =
    "Fan.1.0.0: hash 00000000-0000-0000-0001-000000000001\n"
    "├─ title = Fan.1.0.0\n"
    "├─ typeId = 00000000-0000-0000-0001-000000000001\n"
    "├─ $ref → Fan  v see below\n"
    "└─ definitions: hash\n"
    "   ├─ Fan: object\n"
    "   │  ├─ additionalProperties = false\n"
    "   │  ├─ Id → Common.1.0.0/Id\n"
    "   │  ├─ Mode → Mode  v see below\n"
    "   │  ├─ Parts: array\n"
    "   │  │  └─ anyOf: set\n"
    "   │  │     ├─ → Fan  ^ see above (cycle)\n"
    "   │  │     ├─ null\n"
    "   │  │     └─ → Common.1.0.0/Id\n"
    "   │  └─ Speed: integer | null (minimum = 0)\n"
    "   └─ Mode: string (enum {Fast, Quiet})\n";

TEST_F(ToolSchemaTree, ReadsLikeTheSchemaWithReferencesNamed) {
  ExpectTree({Hash(1)}, kFanSchema);
}

TEST_F(ToolSchemaTree, IsFoundByItsTitle) {
  ExpectTree({"Fan.1.0.0"}, kFanSchema);
}

TEST_F(ToolSchemaTree, DefinitionIsFoundByTheNameThatTreesGiveIt) {
  ExpectTree({"Common.1.0.0/Id"},
             "Common.1.0.0/Id: string 00000000-0000-0000-0001-00000000000c\n└─ maxLength = 64\n");
}

TEST_F(ToolSchemaTree, UnknownDefinitionIsAFailure) {
  for (const char* name : {"Common.1.0.0/Name", "Other.1.0.0/Id", "/Id", "Common.1.0.0/"}) {
    SCOPED_TRACE(name);
    const ToolRun run = RunTool({"tree", name});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
  }
}

TEST_F(ToolSchemaTree, ExpandsOtherSchemasOnRequest) {
  const ToolRun run = RunTool({"tree", "--all", "Fan.1.0.0"});
  EXPECT_THAT(run.out, HasSubstr("   │  ├─ Id: string (maxLength = 64)\n"));
  EXPECT_THAT(run.out, HasSubstr("   │  │     └─ → Common.1.0.0/Id  ^ see above\n"));
}

TEST_F(ToolSchemaTree, OfAPartNamesTheSchemasDefinitions) {
  ExpectTree({Hash(6)},
             "00000000-0000-0000-0001-000000000006: array\n"
             "└─ anyOf: set\n"
             "   ├─ → Fan.1.0.0/Fan\n"
             "   ├─ null\n"
             "   └─ → Common.1.0.0/Id\n");
}

TEST_F(ToolSchemaTree, ReferenceIsExpandedInItsPlaceWhereNothingElseNamesItsTarget) {
  Ask({"HDEL", Hash(1), "definitions"});
  const ToolRun run = RunTool({"tree", Hash(1), "--depth", "1"});
  EXPECT_THAT(run.out, EndsWith("└─ $ref: object (+5 fields)\n"));
}

TEST_F(ToolSchemaTree, ReferencesFoundBehindReferencesAreExpandedToo) {
  Ask({"DEL", Hash(1), Hash(3), Hash(4), Hash(5)});
  Ask({"HSET", Hash(1), "$ref", Hash(3)});
  Ask({"HSET", Hash(3), "$ref", Hash(4)});
  Ask({"HSET", Hash(4), "$ref", Hash(5)});
  Ask({"HSET", Hash(5), "type", "null"});
  EXPECT_THAT(RunTool({"tree", Hash(1)}).out, EndsWith("└─ $ref: hash\n"
                                                       "   └─ $ref: hash\n"
                                                       "      └─ $ref: null\n"));
}

TEST_F(ToolSchemaTree, DefinitionThatIsAReferenceIsNamedAfterItsTarget) {
  Ask({"HSET", Hash(2), "Alias", Hash(0xc), "Whole", Hash(0xa)});
  Ask({"HSET", Hash(0xb), "Back", Hash(4)});
  const ToolRun run = RunTool({"tree", "Fan.1.0.0"});
  EXPECT_THAT(run.out, HasSubstr("   ├─ Alias → Common.1.0.0/Id\n"));
  EXPECT_THAT(run.out, HasSubstr("   └─ Whole → Common.1.0.0\n"));
  EXPECT_THAT(RunTool({"tree", "Common.1.0.0"}).out,
              EndsWith("   ├─ Back → Fan.1.0.0/Mode\n   └─ Id: string (maxLength = 64)\n"));
}

TEST_F(ToolSchemaTree, InstanceSaysOfWhichTypeItIs) {
  Ask({"HSET", kFan1, "Name", "Front", "typeID", Hash(3)});
  ExpectTree({kFan1}, std::string("Front: hash ") + kFan1 +
                          "\n├─ Name = Front\n└─ typeID → Fan.1.0.0/Fan\n");
}

TEST_F(ToolSchemaTree, PropertiesAreFollowedWhateverTheirName) {
  Ask({"HSET", Hash(3), "UUID", Hash(8)});
  Ask({"HSET", Hash(8), "type", "string"});
  EXPECT_THAT(RunTool({"tree", "Fan.1.0.0"}).out, HasSubstr("   │  └─ UUID: string\n"));
}

}  // namespace
