// SPDX-License-Identifier: MIT
//
// The list of references that wait for linking.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "interpreter/parserTest.h"

namespace {

using zephlane::test::LinkingReport;
using zephlane::test::Observe;
using zephlane::test::Outcome;
using zephlane::test::ParserTest;

constexpr char kId[] = "00000000-0000-0000-0001-000000000000";

class ReferenceList : public ParserTest {
 protected:
  struct Entry {
    std::string destination = kId;
    std::string schema = "Thing.json";
    std::string route = "Thing.json#/A";
    std::string field = "A";
    std::string text = "#/definitions/B";
    ResourcePath path{};
    int first = 0;
    int limit = 3600;
  };
  static Outcome Insert(const Entry& entry) {
    return Observe([&] {
      return schemaRefListInsertEntry(entry.destination.c_str(), entry.schema.c_str(),
                                      entry.route.c_str(), entry.field.c_str(), entry.text.c_str(),
                                      &entry.path, entry.first, entry.limit);
    });
  }
  static void ExpectRefused(const Entry& entry, int line, const char* text) {
    const Outcome outcome = Insert(entry);
    EXPECT_EQ(outcome.result, -1);
    EXPECT_EQ(outcome.errors, LinkingReport(line, text));
  }
};

TEST_F(ReferenceList, HandsOutTheLowestFreeSlotOfARange) {
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 0);
  EXPECT_EQ(schemaRefListGetFreeSpace(17, 18), 17);
  EXPECT_EQ(schemaRefListGetFreeSpace(3999, 4000), 3999);
  EXPECT_EQ(Insert({}).result, 0);
  EXPECT_EQ(Insert({}).result, 0);
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 2);
  EXPECT_EQ(schemaRefListGetFreeSpace(1, 3600), 2);
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 2), -1);
}

TEST_F(ReferenceList, HasNoSlotOutsideItsRange) {
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 4001), -1);
  EXPECT_EQ(schemaRefListGetFreeSpace(4000, 4000), -1);
  EXPECT_EQ(schemaRefListGetFreeSpace(5, 5), -1);
  EXPECT_EQ(schemaRefListGetFreeSpace(6, 5), -1);
}

TEST_F(ReferenceList, KeepsItsTwoRangesApart) {
  FillReferences(0, 3600, 3600);
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), -1);
  EXPECT_EQ(schemaRefListGetFreeSpace(3600, 4000), 3600);
  FillReferences(3600, 4000, 400);
  EXPECT_EQ(schemaRefListGetFreeSpace(3600, 4000), -1);
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 4000), -1);
}

TEST_F(ReferenceList, IsEmptyAgainAfterTheNextStart) {
  EXPECT_EQ(Insert({}).result, 0);
  schemaReferenceListInit();
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/A"), -1);
}

TEST_F(ReferenceList, FindsTheFirstEntryOfARoute) {
  EXPECT_EQ(Insert({.route = "Thing.json#/B"}).result, 0);
  EXPECT_EQ(Insert({}).result, 0);
  EXPECT_EQ(Insert({}).result, 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/A"), 1);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/B"), 0);
}

TEST_F(ReferenceList, FindsNoEntryOfAnotherRoute) {
  EXPECT_EQ(schemaRefListSearchEntry(""), -1);
  EXPECT_EQ(Insert({}).result, 0);
  for (const char* route : {"", "Thing.json#/", "Thing.json#/AB", "thing.json#/A"}) {
    EXPECT_EQ(schemaRefListSearchEntry(route), -1) << route;
  }
}

TEST_F(ReferenceList, SearchStopsBeforeTheMessageParameters) {
  EXPECT_EQ(Insert({.first = 3600, .limit = 4000}).result, 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/A"), -1);
  EXPECT_EQ(Insert({.first = 3599, .limit = 3600}).result, 0);
  EXPECT_EQ(schemaRefListSearchEntry("Thing.json#/A"), 3599);
}

TEST_F(ReferenceList, NullArgumentsAreReported) {
  const ResourcePath path{};
  const auto insert = [](const char* destination, const char* schema, const char* route,
                         const char* text, const ResourcePath* record) {
    const Outcome outcome = Observe([&] {
      return schemaRefListInsertEntry(destination, schema, route, "A", text, record, 0, 3600);
    });
    EXPECT_EQ(outcome.result, -1);
    return outcome.errors;
  };
  const std::string report = LinkingReport(717, "NULL pointer !!!");
  EXPECT_EQ(insert(nullptr, "s", "r", "t", &path), report);
  EXPECT_EQ(insert("d", nullptr, "r", "t", &path), report);
  EXPECT_EQ(insert("d", "s", nullptr, "t", &path), report);
  EXPECT_EQ(insert("d", "s", "r", nullptr, &path), report);
  EXPECT_EQ(insert("d", "s", "r", "t", nullptr), report);
}

TEST_F(ReferenceList, TakesAnEntryWithoutAField) {
  const ResourcePath path{};
  EXPECT_EQ(schemaRefListInsertEntry("d", "s", "r", nullptr, "t", &path, 0, 3600), 0);
  EXPECT_EQ(schemaRefListSearchEntry("r"), 0);
}

TEST_F(ReferenceList, FullRangeRefusesTheNextEntry) {
  FillReferences(0, 3600, 3600);
  ExpectRefused({}, 744, "listSlotIdx == -1");
}

TEST_F(ReferenceList, RangeThatIsNoneRefusesAnEntry) {
  ExpectRefused({.limit = 4001}, 744, "listSlotIdx == -1");
  ExpectRefused({.first = 3600, .limit = 3600}, 744, "listSlotIdx == -1");
}

TEST_F(ReferenceList, LooksForASlotBeforeItLooksAtLengths) {
  FillReferences(0, 3600, 3600);
  ExpectRefused({.field = std::string(1024, 'f')}, 744, "listSlotIdx == -1");
}

TEST_F(ReferenceList, PlaceholderLocationHasLimits) {
  EXPECT_EQ(Insert({.field = std::string(1023, 'f')}).result, 0);
  EXPECT_EQ(Insert({.destination = std::string(36, 'd')}).result, 0);
  ExpectRefused({.field = std::string(1024, 'f')}, 755, "PropLocation buffer size!");
  ExpectRefused({.destination = std::string(37, 'd')}, 755, "PropLocation buffer size!");
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 2);
}

TEST_F(ReferenceList, TextsHaveLimits) {
  EXPECT_EQ(Insert({.schema = std::string(199, 's')}).result, 0);
  EXPECT_EQ(Insert({.route = std::string(1023, 'r')}).result, 0);
  EXPECT_EQ(Insert({.text = std::string(1023, 't')}).result, 0);
  ExpectRefused({.schema = std::string(200, 's')}, 765, "referPath buffer size!");
  ExpectRefused({.route = std::string(1024, 'r')}, 765, "referPath buffer size!");
  ExpectRefused({.text = std::string(1024, 't')}, 765, "referPath buffer size!");
  EXPECT_EQ(schemaRefListGetFreeSpace(0, 3600), 3);
}

TEST_F(ReferenceList, LocationIsLookedAtBeforeTheOtherTexts) {
  ExpectRefused({.route = std::string(1024, 'r'), .field = std::string(1024, 'f')}, 755,
                "PropLocation buffer size!");
}

// A record whose parts fill their buffers holds texts without an end.
TEST_F(ReferenceList, PartsOfThePathMustEndWithinTheirBuffers) {
  std::vector<Entry> entries(4);
  std::memset(entries[0].path.path, 'p', sizeof(ResourcePath::path));
  std::memset(entries[1].path.prefix, 'p', sizeof(ResourcePath::prefix));
  std::memset(entries[2].path.schemaName, 'p', sizeof(ResourcePath::schemaName));
  std::memset(entries[3].path.propertyPath, 'p', sizeof(ResourcePath::propertyPath));
  for (const Entry& entry : entries) { ExpectRefused(entry, 765, "referPath buffer size!"); }
}

TEST_F(ReferenceList, PartsOfThePathMayFillTheirBuffersButTheEnd) {
  Entry entry;
  std::memset(entry.path.path, 'p', sizeof(ResourcePath::path) - 1);
  std::memset(entry.path.prefix, 'p', sizeof(ResourcePath::prefix) - 1);
  std::memset(entry.path.schemaName, 'p', sizeof(ResourcePath::schemaName) - 1);
  std::memset(entry.path.propertyPath, 'p', sizeof(ResourcePath::propertyPath) - 1);
  EXPECT_EQ(Insert(entry).result, 0);
}

}  // namespace
