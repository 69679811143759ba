// SPDX-License-Identifier: MIT
//
// The part of an interpreted event schema that storing and sending events needs.
#pragma once

#include "support/store.h"

namespace zephlane::test {

class EventSchemaTest : public StoreTest {
 protected:
  void SetUp() override {
    StoreTest::SetUp();
    Ask({"HSET", "00000000-0000-0000-0001-eeeeeeeeeeee", "Event.1.0.0", "schema"});
    Ask({"HSET", "schema", "instanceCollection", "collection", "definitions", "definitions"});
    Ask({"HSET", "definitions", "Event", "eventType", "EventRecord", "recordType"});
    Ask({"HSET", "eventType", "required", "eventNeeds"});
    Ask({"HSET", "recordType", "required", "recordNeeds", "OriginOfCondition", "originType"});
    Ask({"SADD", "eventNeeds", "Name", "Events"});
    Ask({"SADD", "recordNeeds", "EventType", "EventId", "EventTimestamp", "MessageId"});
    Ask({"HSET", "WEB-OBJ-URI-MAP", "fan", "/chassis/fan"});
  }
};

}  // namespace zephlane::test
