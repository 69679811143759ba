// SPDX-License-Identifier: MIT
//
// Arguments that calls of several families share.
#pragma once

#include <zephlaneAPI/types.h>

namespace zephlane::test {

inline constexpr char kUuid[] = "10000000-0000-0000-0000-00000000000a";
inline constexpr char kSecondUuid[] = "10000000-0000-0000-0000-00000000000b";
inline constexpr char kThirdUuid[] = "10000000-0000-0000-0000-00000000000c";

inline constexpr InstanceData kPairs[] = {{"name", "value"}, {"size", "3"}};
// The set of the common content has the second member already.
inline constexpr SetData kMembers[] = {{"newcomer"}, {"member"}};
inline constexpr SetData kItems[] = {{"third"}, {"fourth"}};

inline constexpr const char* kFields[] = {"name", "size", "none"};
inline constexpr const char* kFieldValues[] = {"value", "3", nullptr};
inline constexpr const char* kMemberTexts[] = {"newcomer", "member"};
inline constexpr const char* kOneMember[] = {"member"};
inline constexpr const char* kListKeys[] = {"none", "list"};
inline constexpr const char* kListItems[] = {"first", "second"};

// As the functions take them, which do not write to them.
inline char* const* Words(const char* const* words) {
  return const_cast<char* const*>(words);
}

}  // namespace zephlane::test
