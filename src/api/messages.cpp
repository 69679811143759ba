// SPDX-License-Identifier: MIT
//
// Return messages: a hash with the message ID, a list with its arguments, and membership in the
// collection a requester reads. The older form writes objects that stay; the V21 form gives each
// key a lifetime of 30 seconds.
#include <cstdarg>
#include <cstring>

#include "api/commonSteps.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/messages.h>
#include <zephlaneAPI/trees.h>

using zephlane::ApiError;
using zephlane::CString;
using zephlane::kDone;
using zephlane::kFailed;
using zephlane::kIdSize;
using zephlane::kValueSize;

namespace zephlane {
namespace {

constexpr char kMessageIdField[] = "MsgId";
constexpr char kParametersField[] = "Params";
constexpr unsigned int kLifetimeSeconds = 30;

void DeleteMessage(redisContext* ctx, const char* message_id) {
  if (deleteKey(ctx, message_id) == kFailed) { ApiError{}("Failed to delete message object!\n"); }
}

void DeleteParameters(redisContext* ctx, const char* parameters_id) {
  if (deleteKey(ctx, parameters_id) == kFailed) {
    ApiError{}("Failed to delete parameter object!\n");
  }
}

// Writes one field of the message; `failure` is what is reported when Redis does not take it.
bool StoreField(redisContext* ctx, const char* message_id, const char* field, const char* value,
                const char* failure, int line = __builtin_LINE()) {
  const CString field_copy = Duplicate(field);
  const CString value_copy = Duplicate(value);
  if (!field_copy || !value_copy) {
    ApiError{line}("calloc!\n");
    return false;
  }
  char* const fields[] = {field_copy.get()};
  char* const values[] = {value_copy.get()};
  if (redisHashMultipleSet(ctx, message_id, fields, values, 1) != kDone) {
    ApiError{line}("%s\n", failure);
    return false;
  }
  return true;
}

// The list of a message's arguments; false after a report where there is one. Nothing is undone.
bool StoreParameters(redisContext* ctx, const char* parameters_id, const char** params, int count) {
  // The command layer reads its items only.
  if (count < 0 || redisListRightMultiplePush(ctx, parameters_id, const_cast<char* const*>(params),
                                              static_cast<unsigned int>(count)) != kDone) {
    ApiError{}("Failed to push param string to list!\n");
    return false;
  }
  if (setKeyTimeout(ctx, parameters_id, kLifetimeSeconds) != kDone) {
    ApiError{}("Failed to set expiration time for param array!\n");
    return false;
  }
  return true;
}

// The message ID, its lifetime, and the message's place in the collection.
bool StoreMessage(redisContext* ctx, const char* message_id, const char* text,
                  const char* collection) {
  if (!StoreField(ctx, message_id, kMessageIdField, text,
                  "Failed to stores property: message id")) {
    return false;
  }
  if (setKeyTimeout(ctx, message_id, kLifetimeSeconds) != kDone) {
    ApiError{}("Failed to set expiration time for message object!\n");
    return false;
  }
  char* const members[] = {const_cast<char*>(message_id)};  // read only
  if (redisSetMultipleAdd(ctx, collection, members, 1) != kDone) {
    ApiError{}("Failed to create return message!\n");
    return false;
  }
  // Renewed by every message.
  if (setKeyTimeout(ctx, collection, kLifetimeSeconds) != kDone) {
    ApiError{}("Failed to set expiration time for ReturnMessage collection!\n");
    return false;
  }
  return true;
}

// Pushes the variable arguments up to their NULL.
bool PushArguments(redisContext* ctx, const char* parameters_id, std::va_list arguments) {
  for (const char* text = va_arg(arguments, const char*); text != nullptr;
       text = va_arg(arguments, const char*)) {
    if (listRightPush(ctx, parameters_id, text) != kDone) { return false; }
  }
  return true;
}

}  // namespace
}  // namespace zephlane

int zephlaneCreateReturnMessage(redisContext* ctx, const char* aCollection, const char* aMsgId,
                                ...) {
  if (!ctx || !aCollection || !aMsgId) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  char message_id[kIdSize] = "";
  if (zephlaneGenerateUUID(ctx, message_id) != kDone) { return kFailed; }
  if (std::strlen(aMsgId) >= kValueSize) {
    ApiError{}("Return MessageId is too long\n");
    return kFailed;
  }
  char parameters_id[kIdSize] = "";
  if (zephlaneGenerateUUID(ctx, parameters_id) != kDone) { return kFailed; }
  InstanceData pairs[2];
  zephlane::CopyCut(pairs[0].aFieldName, zephlane::kMessageIdField);
  zephlane::CopyCut(pairs[0].aValue, aMsgId);
  // Written even when no arguments follow: then it names a list that does not exist.
  zephlane::CopyCut(pairs[1].aFieldName, zephlane::kParametersField);
  zephlane::CopyCut(pairs[1].aValue, parameters_id);
  if (createHashTable(ctx, message_id, pairs, 2) != kDone) { return kFailed; }
  std::va_list arguments;
  va_start(arguments, aMsgId);
  const bool pushed = zephlane::PushArguments(ctx, parameters_id, arguments);
  va_end(arguments);
  if (!pushed) {
    zephlane::DeleteMessage(ctx, message_id);
    zephlane::DeleteParameters(ctx, parameters_id);
    return kFailed;
  }
  // The result is not looked at: a message that no collection lists counts as created.
  (void)zephlaneSADD(ctx, aCollection, message_id, nullptr);
  return kDone;
}

int zephlaneCreateReturnMsgV21(redisContext* ctx, const char* aCollection, const char* aMsgId,
                               const char** aParams, int nParams) {
  if (!ctx || !aMsgId || !aCollection) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  char message_id[kIdSize] = "";
  if (zephlaneGenerateUUID(ctx, message_id) != kDone) { return kFailed; }
  const bool has_parameters = nParams != 0 && aParams;
  char parameters_id[kIdSize] = "";
  if (has_parameters) {
    if (zephlaneGenerateUUID(ctx, parameters_id) != kDone) { return kFailed; }
    if (!zephlane::StoreParameters(ctx, parameters_id, aParams, nParams)) { return kFailed; }
  }
  const bool is_stored =
      (!has_parameters ||
       zephlane::StoreField(ctx, message_id, zephlane::kParametersField, parameters_id,
                            "Failed to stores property: param list uuid")) &&
      zephlane::StoreMessage(ctx, message_id, aMsgId, aCollection);
  if (is_stored) { return kDone; }
  // A membership already added stays.
  if (has_parameters) { zephlane::DeleteParameters(ctx, parameters_id); }
  zephlane::DeleteMessage(ctx, message_id);
  return kFailed;
}
