// SPDX-License-Identifier: MIT
#include "outage/storeCalls.h"

#include <cstring>
#include <type_traits>

#include <jansson.h>

#include <zephlaneAPI.h>

#include "support/owners.h"

namespace zephlane::test {

namespace {

constexpr char kKey[] = "10000000-0000-0000-0000-00000000000a";
constexpr char kSecondKey[] = "10000000-0000-0000-0000-00000000000b";
constexpr char kThirdKey[] = "10000000-0000-0000-0000-00000000000c";
// Not there, and not looked for before the store was asked for a root hash.
constexpr char kSchemaFile[] = "Thing.json";

const InstanceData kPairs[] = {{"field", "value"}};
const SetData item = {"item"};
SetData found_item = {};

// Results as text. What a pointer leads to is read to its end and freed.

std::string Told(int result) {
  return std::to_string(result);
}

std::string ToldPointer(const void* result) {
  return result == nullptr ? "NULL" : "a result";
}

std::size_t read_characters = 0;

std::string Told(char* result) {
  const CString text(result);
  if (text) { read_characters += std::strlen(text.get()); }
  return ToldPointer(result);
}

unsigned int count = 0;

unsigned int* Count() {
  count = 0;
  return &count;
}

template <typename Item>
std::string Told(Item* result) {
  const CArray<Item> records(result);
  for (unsigned int i = 0; records && i < count; ++i) {
    if constexpr (std::is_same_v<Item, char*>) {
      (void)Told(records[i]);
    } else if constexpr (std::is_same_v<Item, ExtendedPair>) {
      (void)Told(records[i].aFieldName);
      (void)Told(records[i].aValue);
    } else if constexpr (std::is_same_v<Item, InstanceData>) {
      read_characters += std::strlen(records[i].aFieldName) + std::strlen(records[i].aValue);
    } else {
      read_characters += std::strlen(records[i].aObjectID);
    }
  }
  return ToldPointer(result);
}

std::string Told(PopResult* result) {
  const CRecord<PopResult> popped(result);
  if (popped) {
    (void)Told(popped->aListKey);
    (void)Told(popped->aItem);
  }
  return ToldPointer(result);
}

// The properties that a validation has found unknown.
class UnknownProperties {
 public:
  UnknownProperties() = default;
  UnknownProperties(const UnknownProperties&) = delete;
  UnknownProperties& operator=(const UnknownProperties&) = delete;
  ~UnknownProperties() {
    while (head_ != nullptr) {
      const CRecord<UnknownProperty> first(head_);
      head_ = first->next;
    }
  }
  UnknownProperty** Head() {
    return &head_;
  }
  UnknownProperty** Tail() {
    return &tail_;
  }

 private:
  UnknownProperty* head_ = nullptr;
  UnknownProperty* tail_ = nullptr;
};

std::string ValidateProperties(redisContext* ctx) {
  UnknownProperties unknown;
  return Told(validateProperties(ctx, kKey, kSecondKey, unknown.Head(), unknown.Tail()));
}

// Arguments that last

// Zeroed, as callers have them, and each an object of its own.
char* Out() {
  static char first[ZEPHLANE_VALUE_SIZE];
  static char second[ZEPHLANE_VALUE_SIZE];
  static char third[ZEPHLANE_VALUE_SIZE];
  static char* const buffers[] = {first, second, third};
  static unsigned int next = 0;
  char* const buffer = buffers[next++ % 3];
  std::memset(buffer, 0, ZEPHLANE_VALUE_SIZE);
  return buffer;
}

char** Texts() {
  static char text[] = "text";
  static char* texts[] = {text, nullptr};
  return texts;
}

const char** ConstTexts() {
  static const char* texts[] = {"text"};
  return texts;
}

EventRecord* Record() {
  static EventRecord record;
  record = EventRecord{};
  return &record;
}

ObjectEntry* Entry() {
  static InstanceData pairs[] = {{"field", "value"}};
  static ObjectEntry entry = {kKey, ZEPHLANE_TYPE_HASH, 1, pairs};
  return &entry;
}

const ExtendedPair* ExtendedPairs() {
  static char name[] = "field";
  static char value[] = "value";
  static const ExtendedPair pairs[] = {{name, value}};
  return pairs;
}

json_t* TypeArray() {
  static const Json types(json_pack("[s, s]", "string", "null"));
  return types.get();
}

json_t* Document() {
  static const Json document(json_object());
  return document.get();
}

const StoreCall kCalls[] = {
    {"zephlaneInsertTypeID",
     [](redisContext* ctx) { return Told(zephlaneInsertTypeID(ctx, kKey, "Thing.1.0.0", 1)); },
     "1"},
    {"zephlaneGetCollectionSchemaTypeId",
     [](redisContext* ctx) { return Told(zephlaneGetCollectionSchemaTypeId(ctx, kKey)); }, "NULL"},
    {"getRootTypeIdFromRef",
     [](redisContext* ctx) { return Told(getRootTypeIdFromRef(ctx, kKey, Out())); }, "1"},
    {"getOdataIDRefTypeId", [](redisContext* ctx) { return Told(getOdataIDRefTypeId(ctx, Out())); },
     "1"},
    {"isObject", [](redisContext* ctx) { return Told(isObject(ctx, kKey)); }, "-1"},
    {"insertTypeID",
     [](redisContext* ctx) { return Told(insertTypeID(ctx, kKey, kSecondKey, kThirdKey, 1)); },
     "1"},
    {"addTypeIdfForHash",
     [](redisContext* ctx) { return Told(addTypeIdfForHash(ctx, kKey, kSecondKey, kThirdKey, 1)); },
     "1"},
    {"addTypeIdfForSet",
     [](redisContext* ctx) { return Told(addTypeIdfForSet(ctx, kKey, kSecondKey, kThirdKey, 1)); },
     "1"},
    {"addTypeIdfForList",
     [](redisContext* ctx) { return Told(addTypeIdfForList(ctx, kKey, kSecondKey, kThirdKey, 1)); },
     "1"},
    {"createHashTable",
     [](redisContext* ctx) { return Told(createHashTable(ctx, kKey, kPairs, 1)); }, "1"},
    {"redisHashMultipleSet",
     [](redisContext* ctx) { return Told(redisHashMultipleSet(ctx, kKey, Texts(), Texts(), 1)); },
     "1"},
    {"copyHash", [](redisContext* ctx) { return Told(copyHash(ctx, kKey, kSecondKey)); }, "1"},
    {"redisHashMultipleGet",
     [](redisContext* ctx) { return Told(redisHashMultipleGet(ctx, kKey, Texts(), 1, Count())); },
     "NULL"},
    {"getHashField",
     [](redisContext* ctx) { return Told(getHashField(ctx, kKey, "field", Out())); }, "1"},
    {"redisHashGet", [](redisContext* ctx) { return Told(redisHashGet(ctx, kKey, "field")); },
     "NULL"},
    {"isFieldMatched",
     [](redisContext* ctx) { return Told(isFieldMatched(ctx, kKey, "field", "value")); }, "0"},
    {"removeFieldFromHash",
     [](redisContext* ctx) { return Told(removeFieldFromHash(ctx, kKey, "field")); }, "1"},
    {"hsetKey", [](redisContext* ctx) { return Told(hsetKey(ctx, kKey, "field", "value")); }, "1"},
    {"addTtlToHash", [](redisContext* ctx) { return Told(addTtlToHash(ctx, kKey, 9)); }, "0"},
    {"isHashTimeOut", [](redisContext* ctx) { return Told(isHashTimeOut(ctx, kKey)); }, "0"},
    {"getRestTtlTimeFromHash",
     [](redisContext* ctx) { return Told(getRestTtlTimeFromHash(ctx, kKey, Count())); }, "1"},
    {"setKeyTimeout", [](redisContext* ctx) { return Told(setKeyTimeout(ctx, kKey, 9)); }, "1"},
    {"redisSetCardinality", [](redisContext* ctx) { return Told(redisSetCardinality(ctx, kKey)); },
     "-1"},
    {"getInstanceCount",
     [](redisContext* ctx) { return Told(getInstanceCount(ctx, kKey, Count())); }, "1"},
    {"getInstance", [](redisContext* ctx) { return Told(getInstance(ctx, kKey, 1, &found_item)); },
     "1"},
    {"deleteInstanceInSet",
     [](redisContext* ctx) { return Told(deleteInstanceInSet(ctx, kKey, "member")); }, "1"},
    {"sismember", [](redisContext* ctx) { return Told(sismember(ctx, kKey, "member")); }, "-1"},
    {"sdiffKey", [](redisContext* ctx) { return Told(sdiffKey(ctx, kKey)); }, "-1"},
    {"saddCmd", [](redisContext* ctx) { return Told(saddCmd(ctx, "key member")); }, "1"},
    {"redisSetMultipleAdd",
     [](redisContext* ctx) { return Told(redisSetMultipleAdd(ctx, kKey, Texts(), 1)); }, "1"},
    {"createSetTable", [](redisContext* ctx) { return Told(createSetTable(ctx, kKey, &item, 1)); },
     "1"},
    {"listRange", [](redisContext* ctx) { return Told(listRange(ctx, kKey, 0, -1, Count())); },
     "NULL"},
    {"listLength", [](redisContext* ctx) { return Told(listLength(ctx, kKey, Count())); }, "1"},
    {"listIndex", [](redisContext* ctx) { return Told(listIndex(ctx, kKey, 0)); }, "NULL"},
    {"listLeftPop", [](redisContext* ctx) { return Told(listLeftPop(ctx, kKey)); }, "NULL"},
    {"redisListRightPop", [](redisContext* ctx) { return Told(redisListRightPop(ctx, kKey)); },
     "NULL"},
    {"listRightPush", [](redisContext* ctx) { return Told(listRightPush(ctx, kKey, "item")); },
     "1"},
    {"redisListRightMultiplePush",
     [](redisContext* ctx) { return Told(redisListRightMultiplePush(ctx, kKey, Texts(), 1)); },
     "1"},
    {"redisListLeftPush",
     [](redisContext* ctx) { return Told(redisListLeftPush(ctx, kKey, Texts(), 1)); }, "1"},
    {"createListTable",
     [](redisContext* ctx) { return Told(createListTable(ctx, kKey, &item, 1)); }, "1"},
    {"redisListBlockLeftPop",
     [](redisContext* ctx) { return Told(redisListBlockLeftPop(ctx, 1, Texts(), 1)); }, "NULL"},
    {"redisListBlockRightPop",
     [](redisContext* ctx) { return Told(redisListBlockRightPop(ctx, 1, Texts(), 1)); }, "NULL"},
    {"lremCmd", [](redisContext* ctx) { return Told(lremCmd(ctx, kKey, 1, "item")); }, "1"},
    {"listSET", [](redisContext* ctx) { return Told(listSET(ctx, kKey, 0, "item")); }, "1"},
    {"deleteKey", [](redisContext* ctx) { return Told(deleteKey(ctx, kKey)); }, "0"},
    {"setKey", [](redisContext* ctx) { return Told(setKey(ctx, kKey, "value")); }, "1"},
    {"getKey", [](redisContext* ctx) { return Told(getKey(ctx, kKey, Out())); }, "1"},
    {"incrKey", [](redisContext* ctx) { return Told(incrKey(ctx, kKey)); }, "1"},
    {"renameKey", [](redisContext* ctx) { return Told(renameKey(ctx, kKey, kSecondKey)); }, "1"},
    {"typeCmd", [](redisContext* ctx) { return Told(typeCmd(ctx, kKey, Out())); }, "1"},
    {"publishToChannel",
     [](redisContext* ctx) { return Told(publishToChannel(ctx, "channel", "message")); }, "1"},
    {"subscribeFromChannel",
     [](redisContext* ctx) { return Told(subscribeFromChannel(ctx, "channel")); }, "1"},
    {"pipelineReceiveReply", [](redisContext* ctx) { return Told(pipelineReceiveReply(ctx, 1)); },
     "1"},
    {"zephlaneCreateEventObject",
     [](redisContext* ctx) {
       return Told(zephlaneCreateEventObject(ctx, "name", nullptr, Record(), 1));
     },
     "1"},
    {"zephlanePrepareEventObject",
     [](redisContext* ctx) {
       return Told(zephlanePrepareEventObject(ctx, "name", nullptr, Record(), 1));
     },
     "NULL"},
    {"zephlaneProcessEventObject",
     [](redisContext* ctx) { return Told(zephlaneProcessEventObject(ctx, kKey, 0)); }, "1"},
    {"generateEventID", [](redisContext* ctx) { return Told(generateEventID(ctx, Out())); }, "0"},
    {"createEventRecords",
     [](redisContext* ctx) { return Told(createEventRecords(ctx, kKey, kSecondKey, Record(), 1)); },
     "1"},
    {"createOriginObject",
     [](redisContext* ctx) { return Told(createOriginObject(ctx, kKey, kSecondKey, kThirdKey)); },
     "1"},
    {"getEventObjectTypeInfo",
     [](redisContext* ctx) { return Told(getEventObjectTypeInfo(ctx, Out(), Out(), Out())); }, "1"},
    {"isValidateEventObject",
     [](redisContext* ctx) { return Told(isValidateEventObject(ctx, kKey, kSecondKey)); }, "1"},
    {"sendEventObject", [](redisContext* ctx) { return Told(sendEventObject(ctx, kKey)); }, "1"},
    {"deleteEventObject", [](redisContext* ctx) { return Told(deleteEventObject(ctx, kKey)); },
     "1"},
    {"zephlaneAddMonotonicExpiredTime",
     [](redisContext* ctx) { return Told(zephlaneAddMonotonicExpiredTime(ctx, kKey, 9)); }, "1"},
    {"zephlaneIsMonotonicTimeExpired",
     [](redisContext* ctx) { return Told(zephlaneIsMonotonicTimeExpired(ctx, kKey)); }, "-1"},
    {"zephlaneConvertJsonToRedis",
     [](redisContext* ctx) { return Told(zephlaneConvertJsonToRedis(ctx, kKey, kSecondKey)); },
     "1"},
    {"hashTreeInit", [](redisContext* ctx) { return Told(hashTreeInit(ctx)); }, "1"},
    {"createZephlaneServiceInstanceSet",
     [](redisContext* ctx) { return Told(createZephlaneServiceInstanceSet(ctx, kKey)); }, "1"},
    {"deleteAllHashObject",
     [](redisContext* ctx) {
       deleteAllHashObject(ctx);
       return std::string("nothing");
     },
     "nothing"},
    {"deleteTypeSchemaHashObject",
     [](redisContext* ctx) {
       deleteTypeSchemaHashObject(ctx);
       return std::string("nothing");
     },
     "nothing"},
    {"hashTreeHashAddSinglePair",
     [](redisContext* ctx) { return Told(hashTreeHashAddSinglePair(ctx, "field", "value", kKey)); },
     "1"},
    {"hashTreeCreateNewHash",
     [](redisContext* ctx) { return Told(hashTreeCreateNewHash(ctx, "field", "value")); }, "NULL"},
    {"hashTreeCreateHashWithoutRecordHashID",
     [](redisContext* ctx) {
       return Told(hashTreeCreateHashWithoutRecordHashID(ctx, "field", "value"));
     },
     "NULL"},
    {"hashTreeCreateNewTypeSchemaHash",
     [](redisContext* ctx) {
       return Told(hashTreeCreateNewTypeSchemaHash(ctx, "field", "value", kKey));
     },
     "1"},
    {"hashTreeCreateNewSet",
     [](redisContext* ctx) { return Told(hashTreeCreateNewSet(ctx, "member")); }, "NULL"},
    {"hashTreeInstanceSetInsertMember",
     [](redisContext* ctx) { return Told(hashTreeInstanceSetInsertMember(ctx, kKey, "member")); },
     "1"},
    {"hashAddMultipleTypeString",
     [](redisContext* ctx) {
       return Told(hashAddMultipleTypeString(ctx, "type", TypeArray(), kKey));
     },
     "1"},
    {"hashTreeParentInsertItemsSet",
     [](redisContext* ctx) { return Told(hashTreeParentInsertItemsSet(ctx, kKey)); }, "NULL"},
    {"hashTreeParentInsertItemsHash",
     [](redisContext* ctx) {
       return Told(hashTreeParentInsertItemsHash(ctx, kKey, "field", "value"));
     },
     "NULL"},
    {"hashTreeParentInsertPropertyHash",
     [](redisContext* ctx) {
       return Told(hashTreeParentInsertPropertyHash(ctx, kKey, "property", "type"));
     },
     "NULL"},
    {"hashTreeParentInsertPropertySet",
     [](redisContext* ctx) { return Told(hashTreeParentInsertPropertySet(ctx, kKey, "property")); },
     "NULL"},
    {"hashTreeGetHashFieldValue",
     [](redisContext* ctx) { return Told(hashTreeGetHashFieldValue(ctx, kKey, "field", Out())); },
     "1"},
    {"hashTreeCreateSchemaTitleUUIDMapping",
     [](redisContext* ctx) { return Told(hashTreeCreateSchemaTitleUUIDMapping(ctx)); }, "1"},
    {"hashTreeRemoveDummyData",
     [](redisContext* ctx) { return Told(hashTreeRemoveDummyData(ctx)); }, "1"},
    {"zephlaneOemHookFunctionUnregister",
     [](redisContext* ctx) { return Told(zephlaneOemHookFunctionUnregister(ctx, kKey, Texts())); },
     "0"},
    {"mappingMsgQueueToUUID",
     [](redisContext* ctx) { return Told(mappingMsgQueueToUUID(ctx, kKey, "/mq_outage", 0)); },
     "1"},
    {"zephlaneTriggerOemHookFunc",
     [](redisContext* ctx) {
       return Told(zephlaneTriggerOemHookFunc(ctx, kKey, "1", "a", "b", "c"));
     },
     "1"},
    {"zephlaneOemMessageHandler",
     [](redisContext* ctx) {
       return Told(zephlaneOemMessageHandler(ctx, kKey, "1", "a", "b", "c"));
     },
     "1"},
    {"zephlaneHasOemMessageHandler",
     [](redisContext* ctx) { return Told(zephlaneHasOemMessageHandler(ctx, kKey)); }, "1"},
    {"zephlanePublishToChannel",
     [](redisContext* ctx) { return Told(zephlanePublishToChannel(ctx, "channel", "message")); },
     "1"},
    {"zephlaneSubscribeFromChannel",
     [](redisContext* ctx) { return Told(zephlaneSubscribeFromChannel(ctx, "channel")); }, "1"},
    {"zephlaneGenerateUUID",
     [](redisContext* ctx) { return Told(zephlaneGenerateUUID(ctx, Out())); }, "0"},
    {"zephlaneLoadConfig",
     [](redisContext* ctx) {
       return Told(zephlaneLoadConfig(ctx, "setting", Out(), ZEPHLANE_VALUE_SIZE));
     },
     "0"},
    {"zephlaneGetLinksObject",
     [](redisContext* ctx) { return Told(zephlaneGetLinksObject(ctx, Out())); }, "1"},
    {"parseReferenceSchemaFile",
     [](redisContext* ctx) { return Told(parseReferenceSchemaFile(ctx, kSchemaFile)); }, "NULL"},
    {"generateSchemaRootHash",
     [](redisContext* ctx) { return Told(generateSchemaRootHash(ctx, Document())); }, "NULL"},
    {"isSchemaInterpreted", [](redisContext* ctx) { return Told(isSchemaInterpreted(ctx)); }, "0"},
    {"parseMultipleTypeFieldAdd",
     [](redisContext* ctx) { return Told(parseMultipleTypeFieldAdd(ctx, TypeArray(), kKey)); },
     "1"},
    {"zephlaneCreateListTable",
     [](redisContext* ctx) { return Told(zephlaneCreateListTable(ctx, kKey, &item, 1)); }, "1"},
    {"zephlaneCreateExtendedListTable",
     [](redisContext* ctx) { return Told(zephlaneCreateExtendedListTable(ctx, kKey, Texts(), 1)); },
     "1"},
    {"zephlaneListLeftPush",
     [](redisContext* ctx) { return Told(zephlaneListLeftPush(ctx, kKey, Texts(), 1)); }, "1"},
    {"zephlaneListRightPush",
     [](redisContext* ctx) { return Told(zephlaneListRightPush(ctx, kKey, "item")); }, "1"},
    {"zephlaneListRange",
     [](redisContext* ctx) { return Told(zephlaneListRange(ctx, kKey, 0, -1, Count())); }, "NULL"},
    {"zephlaneExtendedListRange",
     [](redisContext* ctx) { return Told(zephlaneExtendedListRange(ctx, kKey, 0, -1, Count())); },
     "NULL"},
    {"zephlaneListLength",
     [](redisContext* ctx) { return Told(zephlaneListLength(ctx, kKey, Count())); }, "1"},
    {"zephlaneListIndex",
     [](redisContext* ctx) {
       return Told(zephlaneListIndex(ctx, kKey, 0, ZEPHLANE_VALUE_SIZE, Out()));
     },
     "1"},
    {"zephlaneListIndexV21",
     [](redisContext* ctx) { return Told(zephlaneListIndexV21(ctx, kKey, 0)); }, "NULL"},
    {"zephlaneListLeftPop",
     [](redisContext* ctx) {
       return Told(zephlaneListLeftPop(ctx, kKey, ZEPHLANE_VALUE_SIZE, Out()));
     },
     "1"},
    {"zephlaneListLeftPopV21",
     [](redisContext* ctx) { return Told(zephlaneListLeftPopV21(ctx, kKey)); }, "NULL"},
    {"zephlaneListRightPop",
     [](redisContext* ctx) { return Told(zephlaneListRightPop(ctx, kKey)); }, "NULL"},
    {"zephlaneListBlockLeftPop",
     [](redisContext* ctx) {
       return Told(zephlaneListBlockLeftPop(ctx, kKey, 1, ZEPHLANE_VALUE_SIZE, Out()));
     },
     "1"},
    {"zephlaneListBlockLeftPopV21",
     [](redisContext* ctx) { return Told(zephlaneListBlockLeftPopV21(ctx, 1, Texts(), 1)); },
     "NULL"},
    {"zephlaneListBlockRightPop",
     [](redisContext* ctx) { return Told(zephlaneListBlockRightPop(ctx, 1, Texts(), 1)); }, "NULL"},
    {"zephlaneLREM", [](redisContext* ctx) { return Told(zephlaneLREM(ctx, kKey, 1, "item")); },
     "1"},
    {"zephlaneReplaceListItemByIndex",
     [](redisContext* ctx) { return Told(zephlaneReplaceListItemByIndex(ctx, kKey, 0, "item")); },
     "1"},
    {"zephlaneClearETagCache",
     [](redisContext* ctx) { return Told(zephlaneClearETagCache(ctx, "/uri")); }, "1"},
    {"zephlaneCreateReturnMessage",
     [](redisContext* ctx) {
       return Told(zephlaneCreateReturnMessage(ctx, kKey, "1", "parameter", nullptr));
     },
     "1"},
    {"zephlaneCreateReturnMsgV21",
     [](redisContext* ctx) {
       return Told(zephlaneCreateReturnMsgV21(ctx, kKey, "1", ConstTexts(), 1));
     },
     "1"},
    {"zephlaneCreateUriUuidMap",
     [](redisContext* ctx) { return Told(zephlaneCreateUriUuidMap(ctx, "/uri", kKey)); }, "1"},
    {"zephlaneCreateHashTable",
     [](redisContext* ctx) { return Told(zephlaneCreateHashTable(ctx, kKey, kPairs, 1)); }, "1"},
    {"zephlaneCreateExtendedHashTable",
     [](redisContext* ctx) {
       return Told(zephlaneCreateExtendedHashTable(ctx, kKey, ExtendedPairs(), 1));
     },
     "1"},
    {"zephlaneCreateSetTable",
     [](redisContext* ctx) { return Told(zephlaneCreateSetTable(ctx, kKey, &item, 1)); }, "1"},
    {"zephlaneCreateExtendedSetTable",
     [](redisContext* ctx) { return Told(zephlaneCreateExtendedSetTable(ctx, kKey, Texts(), 1)); },
     "1"},
    {"zephlaneCopyHash",
     [](redisContext* ctx) { return Told(zephlaneCopyHash(ctx, kKey, kSecondKey, 9)); }, "1"},
    {"zephlaneDeleteKey", [](redisContext* ctx) { return Told(zephlaneDeleteKey(ctx, kKey)); },
     "0"},
    {"zephlaneDeleteHash", [](redisContext* ctx) { return Told(zephlaneDeleteHash(ctx, kKey)); },
     "0"},
    {"zephlaneRemoveInstanceFromSet",
     [](redisContext* ctx) { return Told(zephlaneRemoveInstanceFromSet(ctx, kKey, "member")); },
     "1"},
    {"zephlaneRemoveFieldFromHash",
     [](redisContext* ctx) { return Told(zephlaneRemoveFieldFromHash(ctx, kKey, "field")); }, "1"},
    {"zephlaneDeleteHashByField",
     [](redisContext* ctx) { return Told(zephlaneDeleteHashByField(ctx, kKey, "field", "value")); },
     "1"},
    {"zephlaneVariableSetStr",
     [](redisContext* ctx) { return Told(zephlaneVariableSetStr(ctx, "name", "value")); }, "1"},
    {"zephlaneVariableGetStr",
     [](redisContext* ctx) { return Told(zephlaneVariableGetStr(ctx, "name", Out())); }, "1"},
    {"zephlaneGetUuid", [](redisContext* ctx) { return Told(zephlaneGetUuid(ctx, "/uri", Out())); },
     "1"},
    {"zephlaneGetHashField",
     [](redisContext* ctx) { return Told(zephlaneGetHashField(ctx, kKey, "field", Out())); }, "1"},
    {"zephlaneGetHashFieldV21",
     [](redisContext* ctx) { return Told(zephlaneGetHashFieldV21(ctx, kKey, "field")); }, "NULL"},
    {"zephlaneGetHashMultipleFieldV21",
     [](redisContext* ctx) {
       return Told(zephlaneGetHashMultipleFieldV21(ctx, kKey, Texts(), 1, Count()));
     },
     "NULL"},
    {"zephlaneGetSchemaTypeIdByField",
     [](redisContext* ctx) {
       return Told(zephlaneGetSchemaTypeIdByField(ctx, "field", "value", kKey, Out()));
     },
     "1"},
    {"zephlaneGetSchemaTypeIdByTitle",
     [](redisContext* ctx) { return Told(zephlaneGetSchemaTypeIdByTitle(ctx, "title", Out())); },
     "1"},
    {"zephlaneIsFieldMatched",
     [](redisContext* ctx) { return Told(zephlaneIsFieldMatched(ctx, kKey, "field", "value")); },
     "0"},
    {"zephlaneDumpHash", [](redisContext* ctx) { return Told(zephlaneDumpHash(ctx, kKey)); }, "1"},
    {"zephlaneCheckTTL", [](redisContext* ctx) { return Told(zephlaneCheckTTL(ctx, kKey, 1)); },
     "0"},
    {"zephlaneSetKeyTimeout",
     [](redisContext* ctx) { return Told(zephlaneSetKeyTimeout(ctx, kKey, 9)); }, "1"},
    {"zephlaneIsMember",
     [](redisContext* ctx) { return Told(zephlaneIsMember(ctx, kKey, "member")); }, "1"},
    {"zephlaneSMembers",
     [](redisContext* ctx) { return Told(zephlaneSMembers(ctx, kKey, Count())); }, "NULL"},
    {"zephlaneExtendedSMembers",
     [](redisContext* ctx) { return Told(zephlaneExtendedSMembers(ctx, kKey, Count())); }, "NULL"},
    {"zephlaneHashGetAll",
     [](redisContext* ctx) { return Told(zephlaneHashGetAll(ctx, kKey, Count())); }, "NULL"},
    {"zephlaneExtendedHashGetAll",
     [](redisContext* ctx) { return Told(zephlaneExtendedHashGetAll(ctx, kKey, Count())); },
     "NULL"},
    {"zephlaneRedisType", [](redisContext* ctx) { return Told(zephlaneRedisType(ctx, kKey)); },
     "0"},
    {"zephlaneCreateAsyncTask",
     [](redisContext* ctx) { return Told(zephlaneCreateAsyncTask(ctx, "argument", "channel")); },
     "NULL"},
    {"zephlaneUpdateTaskState",
     [](redisContext* ctx) { return Told(zephlaneUpdateTaskState(ctx, kKey, "Completed")); }, "1"},
    {"zephlaneFindObjectByField",
     [](redisContext* ctx) {
       return Told(zephlaneFindObjectByField(ctx, kKey, "field", "value", 0, Out()));
     },
     "1"},
    {"zephlaneDeleteSubTree",
     [](redisContext* ctx) { return Told(zephlaneDeleteSubTree(ctx, kKey, "field", nullptr)); },
     "0"},
    {"zephlaneDeleteSubTreeV21",
     [](redisContext* ctx) { return Told(zephlaneDeleteSubTreeV21(ctx, kKey, ConstTexts(), 1)); },
     "0"},
    {"deleteAllSpecifiedObjects",
     [](redisContext* ctx) {
       return Told(deleteAllSpecifiedObjects(ctx, kKey, ConstTexts(), 1, kSecondKey));
     },
     "0"},
    {"zephlaneCreateMultipleObjects",
     [](redisContext* ctx) { return Told(zephlaneCreateMultipleObjects(ctx, Entry(), 1)); }, "1"},
    {"zephlaneRenameObjectID",
     [](redisContext* ctx) { return Told(zephlaneRenameObjectID(ctx, kKey, kSecondKey)); }, "1"},
    {"zephlaneSADD",
     [](redisContext* ctx) { return Told(zephlaneSADD(ctx, kKey, "member", nullptr)); }, "1"},
    {"zephlaneSdiffKey",
     [](redisContext* ctx) { return Told(zephlaneSdiffKey(ctx, kKey, nullptr)); }, "-1"},
    {"zephlaneSdiffKeyV21",
     [](redisContext* ctx) { return Told(zephlaneSdiffKeyV21(ctx, ConstTexts(), 1)); }, "-1"},
    {"zephlaneHashAppendTTLObject",
     [](redisContext* ctx) { return Told(zephlaneHashAppendTTLObject(ctx, kKey, 9)); }, "0"},
    {"zephlaneIsHashOverdue",
     [](redisContext* ctx) { return Told(zephlaneIsHashOverdue(ctx, kKey)); }, "0"},
    {"zephlaneRenewCollection",
     [](redisContext* ctx) { return Told(zephlaneRenewCollection(ctx, 0, "first", "second", 0)); },
     "1"},
    {"zephlaneRenewObjectURI",
     [](redisContext* ctx) { return Told(zephlaneRenewObjectURI(ctx, 2, "first", "second")); },
     "1"},
    {"zephlaneValidateResponseObject",
     [](redisContext* ctx) { return Told(zephlaneValidateResponseObject(ctx, kKey)); }, "1"},
    {"validateRequired",
     [](redisContext* ctx) { return Told(validateRequired(ctx, kKey, kSecondKey)); }, "0"},
    {"validateProperties", ValidateProperties, "1"},
    {"validatePatternProperties",
     [](redisContext* ctx) { return Told(validatePatternProperties(ctx, kKey, "property")); }, "1"},
    {"validateAdditionalProperties",
     [](redisContext*
            ctx) { return Told(validateAdditionalProperties(ctx, kKey, kSecondKey, "property")); },
     "1"},
    {"pipelineCreateObject",
     [](redisContext*
            ctx) { return Told(pipelineCreateObject(ctx, kKey, ZEPHLANE_TYPE_HASH, kPairs, 1)); },
     "0"},
};

}  // namespace

std::span<const StoreCall> StoreCalls() {
  return kCalls;
}

}  // namespace zephlane::test
