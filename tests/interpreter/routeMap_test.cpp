// SPDX-License-Identifier: MIT
//
// The route map: the path from a document's root to the node being parsed.
#include <initializer_list>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "support/allocationFault.h"
#include "support/output.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::AllocationFault;
using zephlane::test::Capture;
using zephlane::test::InterpreterReport;
using zephlane::test::Masked;
using zephlane::test::Output;

std::string Report(const std::string& text) {
  return InterpreterReport("zephlaneSchemaInterpreter.cpp", text);
}

class RouteMaps : public testing::Test {
 protected:
  ~RouteMaps() override {
    parserRouteFreeRouteMap(head_);
  }
  void Make(std::initializer_list<std::string> names) {
    for (const std::string& name : names) {
      if (head_ == nullptr) {
        head_ = parserRouteCreateNode(name.c_str());
      } else {
        EXPECT_EQ(parserRouteInsertEnd(head_, name.c_str()), 0);
      }
    }
  }
  [[nodiscard]] std::string Names() const {
    std::string names;
    for (const RouteSpot* spot = head_; spot != nullptr; spot = spot->next) {
      names += std::string(names.empty() ? "" : " ") + spot->name;
    }
    return names;
  }
  // The route as text, from a buffer of `room` bytes that is said to have `size`.
  [[nodiscard]] std::string Route(const char* schema, std::size_t room = 1024,
                                  std::size_t size = 1024) const {
    const auto out = std::make_unique<char[]>(room);
    parserRouteConcatRoute(head_, schema, out.get(), size);
    return out.get();
  }

  RouteSpot* head_ = nullptr;
};

TEST_F(RouteMaps, SpotIsNamedAndAlone) {
  head_ = parserRouteCreateNode("#");
  ASSERT_NE(head_, nullptr);
  EXPECT_STREQ(head_->name, "#");
  EXPECT_EQ(head_->next, nullptr);
}

TEST_F(RouteMaps, NameOf99CharactersIsTakenAnd100RefusedSilently) {
  const std::string longest(99, 'n');
  head_ = parserRouteCreateNode(longest.c_str());
  ASSERT_NE(head_, nullptr);
  EXPECT_EQ(head_->name, longest);
  RouteSpot* refused = head_;
  const Output printed = Capture([&] { refused = parserRouteCreateNode((longest + "n").c_str()); });
  EXPECT_EQ(refused, nullptr);
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(RouteMaps, SpotWithoutNameIsReported) {
  const Output printed = Capture([] { EXPECT_EQ(parserRouteCreateNode(nullptr), nullptr); });
  EXPECT_EQ(Masked(printed.err), Report("create node: spotName"));
}

TEST_F(RouteMaps, ExhaustedMemoryIsReported) {
  const Output printed = Capture([] {
    AllocationFault fault(1);
    RouteSpot* const spot = parserRouteCreateNode("#");
    fault.Disarm();
    EXPECT_EQ(spot, nullptr);
  });
  EXPECT_EQ(Masked(printed.err), Report("malloc: parser tracking spot"));
}

TEST_F(RouteMaps, SpotsAreAppendedAtTheTail) {
  Make({"#", "properties", "Links"});
  EXPECT_EQ(Names(), "# properties Links");
}

TEST_F(RouteMaps, AppendingNeedsAHeadAndAName) {
  Make({"#"});
  const Output printed = Capture([&] {
    EXPECT_EQ(parserRouteInsertEnd(nullptr, "a"), -1);
    EXPECT_EQ(parserRouteInsertEnd(head_, nullptr), -1);
  });
  EXPECT_EQ(Masked(printed.err), Report("NULL"));
  EXPECT_EQ(Names(), "#");
}

TEST_F(RouteMaps, AppendingReportsASpotThatCannotBeMade) {
  Make({"#"});
  const std::string name(100, 'n');
  Output printed = Capture([&] { EXPECT_EQ(parserRouteInsertEnd(head_, name.c_str()), -1); });
  EXPECT_EQ(Masked(printed.err), Report("Failed to create node for route map!"));
  printed = Capture([&] {
    AllocationFault fault(1);
    const int result = parserRouteInsertEnd(head_, "a");
    fault.Disarm();
    EXPECT_EQ(result, -1);
  });
  EXPECT_EQ(Masked(printed.err), Report("malloc: parser tracking spot") +
                                     Report("Failed to create node for route map!"));
  EXPECT_EQ(Names(), "#");
}

TEST_F(RouteMaps, TailIsRemovedByItsName) {
  Make({"#", "properties", "Links"});
  EXPECT_EQ(parserRouteDeleteEnd(&head_, "Links"), 0);
  EXPECT_EQ(Names(), "# properties");
}

TEST_F(RouteMaps, RemovingTheOnlySpotClearsTheHead) {
  Make({"#"});
  EXPECT_EQ(parserRouteDeleteEnd(&head_, "#"), 0);
  EXPECT_EQ(head_, nullptr);
}

TEST_F(RouteMaps, TailOfAnotherNameStays) {
  Make({"#", "properties"});
  Output printed = Capture([&] { EXPECT_EQ(parserRouteDeleteEnd(&head_, "#"), -1); });
  EXPECT_EQ(Masked(printed.err), Report("Spot name not match!!"));
  EXPECT_EQ(Names(), "# properties");

  EXPECT_EQ(parserRouteDeleteEnd(&head_, "properties"), 0);
  printed = Capture([&] { EXPECT_EQ(parserRouteDeleteEnd(&head_, "other"), -1); });
  EXPECT_EQ(Masked(printed.err), Report("Spot name not match!!"));
  EXPECT_EQ(Names(), "#");
}

TEST_F(RouteMaps, RemovingNeedsANameAndToleratesNoHead) {
  Make({"#"});
  const Output printed = Capture([&] {
    EXPECT_EQ(parserRouteDeleteEnd(&head_, nullptr), -1);
    EXPECT_EQ(parserRouteDeleteEnd(nullptr, "#"), 0);
  });
  EXPECT_EQ(Masked(printed.err), Report("Value pointer is null"));
  EXPECT_EQ(Names(), "#");
}

TEST_F(RouteMaps, RouteSkipsTheRootAndPropertyMaps) {
  Make({"#", "properties", "Links", "properties", "Oem"});
  EXPECT_EQ(Route("Chassis.json"), "Chassis.json#/Links/Oem");
}

TEST_F(RouteMaps, RouteOfTheRootEndsWithItsHash) {
  Make({"#"});
  EXPECT_EQ(Route("Chassis.json"), "Chassis.json#");
}

// Any leading part of "properties" is taken for it, and any name with a '#' first for the root.
TEST_F(RouteMaps, RouteSkipsLeadingPartsOfPropertiesToo) {
  Make({"#", "definitions", "prop", "p", "#anchor", "propertiesOf", "Prop", "items"});
  EXPECT_EQ(Route("A.json"), "A.json#/definitions/propertiesOf/Prop/items");
}

TEST_F(RouteMaps, EmptyRouteIsReportedAndNothingWritten) {
  char out[8] = "before";
  const Output printed =
      Capture([&] { parserRouteConcatRoute(nullptr, "A.json", out, sizeof(out)); });
  EXPECT_EQ(Masked(printed.err), Report("EMPTY!!"));
  EXPECT_STREQ(out, "before");
}

// The size bounds the schema name alone: callers give room for the route they have.
TEST_F(RouteMaps, SizeBoundsTheSchemaNameButNotTheSpots) {
  Make({"#", "definitions", "A"});
  EXPECT_EQ(Route("Chassis.json", 1024, 14), "Chassis.json#/definitions/A");
  EXPECT_EQ(Route("Chassis.json", 1024, 13), "Chassis.json/definitions/A");
  EXPECT_EQ(Route("Chassis.json", 1024, 5), "Chas/definitions/A");
  EXPECT_EQ(Route("Chassis.json", 1024, 1), "/definitions/A");
}

TEST_F(RouteMaps, RouteFillsABufferOfItsLength) {
  const std::string name(99, 'n');
  Make({"#", name, name, name});
  const std::string whole = "A.json#/" + name + "/" + name + "/" + name;
  EXPECT_EQ(Route("A.json", whole.size() + 1, whole.size() + 1), whole);
}

TEST_F(RouteMaps, DisplayReturnsItsArgumentAndPrintsNothing) {
  Make({"#", "a"});
  const Output printed = Capture([&] {
    EXPECT_EQ(parserRouteDisplayRoute(head_), head_);
    EXPECT_EQ(parserRouteDisplayRoute(nullptr), nullptr);
  });
  EXPECT_EQ(printed.out + printed.err, "");
}

TEST_F(RouteMaps, NothingIsFreedWithoutASpot) {
  parserRouteFreeRouteMap(nullptr);
}

}  // namespace
