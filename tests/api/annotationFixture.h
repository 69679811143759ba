// SPDX-License-Identifier: MIT
//
// A small schema as a hash tree, for the cases of annotation. The functions take type IDs as they
// are, so the types have names here that can be read; instances need the form of links.
#pragma once

#include <initializer_list>
#include <string>

#include "api/calls.h"
#include "support/scriptedServer.h"
#include "support/store.h"

#include <zephlaneAPI.h>

namespace zephlane::test {

inline constexpr char kSchemaIndex[] = "00000000-0000-0000-0001-eeeeeeeeeeee";
inline constexpr char kLinkType[] = "LinkType";

inline constexpr char kChassis[] = "10000000-0000-0000-0000-000000000001";
inline constexpr char kFans[] = "10000000-0000-0000-0000-000000000002";
inline constexpr char kFan[] = "10000000-0000-0000-0000-000000000003";
inline constexpr char kOtherFan[] = "10000000-0000-0000-0000-000000000004";

// Replies of a scripted server.
inline constexpr char kNothing[] = "$-1\r\n";
inline constexpr char kNoPairs[] = "*0\r\n";
inline constexpr char kOne[] = ":1\r\n";

// The reports of the API module, one for each text.
inline std::string ApiReports(std::initializer_list<std::string> texts) {
  std::string lines;
  for (const std::string& text : texts) { lines += ApiReport(text); }
  return lines;
}

class AnnotationTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"HSET", kSchemaIndex, "odata.4.0.0", "odata"});
    Ask({"HSET", "odata", "definitions", "odataDefinitions"});
    Ask({"HSET", "odataDefinitions", "idRef", kLinkType});
    Ask({"HSET", "schema", "$ref", "#/definitions/Chassis", "definitions", "definitions"});
    Ask({"HSET", "definitions", "Chassis", "ChassisType"});
    Ask({"HSET", "ChassisType", "Name", "StringType", "Fan", "FanType", "Fans", "FansType"});
    Ask({"HSET", "FanType", "Name", "StringType", "Chassis", "ChassisType"});
    Ask({"HSET", "FansType", "type", "array", "items", "FanType"});
  }
  redisContext* scripted() {
    return server_.ctx();
  }
  // The stamp of an object; "(nil)" when it has none.
  std::string Stamp(const std::string& key) {
    return Ask({"HGET", key, "typeID"});
  }
  // Makes `type` offer a member of `members` each, in a set of its own.
  void Offer(const std::string& type, const std::string& keyword,
             std::initializer_list<std::string> members) {
    Ask({"HSET", type, keyword, type + "Alternatives"});
    for (const std::string& member : members) { Ask({"SADD", type + "Alternatives", member}); }
  }
  void WillReply(std::initializer_list<std::string> replies) {
    for (const std::string& reply : replies) { server_.WillReply(reply); }
  }

  ScriptedServer server_;
};

}  // namespace zephlane::test
