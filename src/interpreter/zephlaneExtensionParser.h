// SPDX-License-Identifier: MIT
//
// The steps of writing the extension keywords, for the module and its tests. Each returns 0 or 1
// after its own report.
#pragma once

#include <zephlaneAPI/interpreter.h>

namespace zephlane {

int parseInstanceCollectionField(redisContext* ctx, const json_t* schema, const char* root_hash_id);
int parseTTLField(redisContext* ctx, const json_t* ttl, const char* root_hash_id);
int parseRuxoMsgValue(ParseContext* context, const json_t* values, const char* set_id);
int retrieveRuxoMsgParamArray(ParseContext* context, const json_t* params,
                              const char* message_hash_id);
// The type found at the end of `route_text`, or "Type Not Found", into 1024 characters.
void getParamMemberType(const ParseContext* context, const char* route_text, char* out);

}  // namespace zephlane
