// SPDX-License-Identifier: MIT
//
// Fixed keys, fields and IDs of the store. They are what other processes read: never change one.
#pragma once

namespace zephlane {

// Companion hash of a hash with a time-to-live
inline constexpr char kTtlIdField[] = "TtlId";
inline constexpr char kTtlSecondsField[] = "TtlSec";

// Tables of the object store
inline constexpr char kUriUuidMap[] = "UriUuidMap";
inline constexpr char kVariables[] = "zephlaneVariable";
inline constexpr char kWebObjectUriMap[] = "WEB-OBJ-URI-MAP";
inline constexpr char kInstanceCollectionField[] = "instanceCollection";
inline constexpr char kStrongETagField[] = "ETagStrong";
inline constexpr char kWeakETagField[] = "ETagWeak";

// Identity and configuration
inline constexpr char kAutoUuid[] = "autoUUID";
inline constexpr char kDefaultSettings[] = "defaultSettings";
inline constexpr char kMaximumUuidField[] = "maximumUUID";
inline constexpr char kMessagePropertyField[] = "RuxoMessage";
inline constexpr char kRootServices[] = "ZephlaneRootServices";

inline constexpr char kAutoEventId[] = "autoEventID";

// Annotation and events
inline constexpr char kTypeIdAnnotation[] = "typeID";
inline constexpr char kCollectionMemberTypes[] = "schemaTypeIdMembersMapping";
inline constexpr char kEventOccurredChannel[] = "EVENT_OCCURRED";
inline constexpr char kTaskStateChannel[] = "TASK_STATE_CHANGE";
inline constexpr char kTreeUpdateChannel[] = "WebServiceUpdateTree";

// Deadlines and scripts
inline constexpr char kExpiredTimes[] = "keyExpiredTime";
inline constexpr char kScriptHashes[] = "redisSHAScripts";

// Hash tree
inline constexpr char kSchemaInstances[] = "ZephlaneSchemaInstances";
inline constexpr char kSchemaTitles[] = "ZephlaneSchemaTitleUuidHash";
inline constexpr char kRootServiceId[] = "00000000-0000-0000-0001-ffffffffffff";
inline constexpr char kSchemaIndexId[] = "00000000-0000-0000-0001-eeeeeeeeeeee";
inline constexpr char kDummyMember[] = "00000000-0000-0000-0000-000000000000";
inline constexpr char kDummyField[] = "DummyKey";
inline constexpr char kDummyValue[] = "DummyValue";
inline constexpr char kHashIdPrefix[] = "00000000-0000-0000-0001-0";
inline constexpr char kSetIdPrefix[] = "00000000-0000-0000-0001-1";

}  // namespace zephlane
