// SPDX-License-Identifier: MIT
//
// The layouts of the interpreter's records, which programs on 64-bit and 32-bit machines share.
#include <cstddef>

#include <gtest/gtest.h>

#include <zephlaneAPI.h>

namespace {

constexpr std::size_t Aligned(std::size_t offset, std::size_t alignment) {
  return (offset + alignment - 1) / alignment * alignment;
}

constexpr std::size_t kPointer = sizeof(void*);

TEST(RecordLayout, SchemaLocationIsTwoTexts) {
  EXPECT_EQ(offsetof(SchemaUriInfo, uri), 0u);
  EXPECT_EQ(offsetof(SchemaUriInfo, directory), 256u);
  EXPECT_EQ(sizeof(SchemaUriInfo), 512u);
  EXPECT_EQ(sizeof(G_aSchemaUriInfoTable), 16u * 512u);
}

TEST(RecordLayout, ResourcePathIsFourTexts) {
  EXPECT_EQ(offsetof(ResourcePath, path), 0u);
  EXPECT_EQ(offsetof(ResourcePath, prefix), 2200u);
  EXPECT_EQ(offsetof(ResourcePath, schemaName), 4200u);
  EXPECT_EQ(offsetof(ResourcePath, propertyPath), 4400u);
  EXPECT_EQ(sizeof(ResourcePath), 4600u);
}

TEST(RecordLayout, RouteSpotIsANameAndALink) {
  EXPECT_EQ(offsetof(RouteSpot, name), 0u);
  EXPECT_EQ(sizeof(RouteSpot::name), 100u);
  EXPECT_EQ(offsetof(RouteSpot, next), Aligned(100, kPointer));
}

TEST(RecordLayout, ParseContextKeepsItsOrder) {
  EXPECT_EQ(offsetof(ParseContext, connection), 0u);
  EXPECT_EQ(offsetof(ParseContext, rootHashID), kPointer);
  EXPECT_EQ(sizeof(ParseContext::rootHashID), 37u);
  EXPECT_EQ(offsetof(ParseContext, reserved), kPointer + 40);
  EXPECT_EQ(sizeof(ParseContext::reserved), 4u);
  EXPECT_EQ(offsetof(ParseContext, document), Aligned(kPointer + 44, kPointer));
  EXPECT_EQ(offsetof(ParseContext, resourcePath), offsetof(ParseContext, document) + kPointer);
  EXPECT_EQ(offsetof(ParseContext, routeMap), offsetof(ParseContext, resourcePath) + 4600);
}

}  // namespace
