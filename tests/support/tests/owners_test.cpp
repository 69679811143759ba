// SPDX-License-Identifier: MIT
//
// What an owner promises past the freeing itself, which the leak checker watches.
#include "support/owners.h"

#include <fcntl.h>

#include <cerrno>
#include <cstdint>
#include <string_view>

#include <gtest/gtest.h>

#include "support/allocationFault.h"

namespace {

using zephlane::CArray;
using zephlane::CString;
using zephlane::CStringArray;
using zephlane::Descriptor;
using zephlane::Duplicate;
using zephlane::Json;
using zephlane::MutexHold;
using zephlane::Regex;
using zephlane::test::AllocationFault;
using zephlane::test::RegexFault;

bool IsOpen(int fd) {
  return fcntl(fd, F_GETFD) >= 0;
}

TEST(Arrays, NoItemsAreNoFailure) {
  EXPECT_NE(zephlane::ZeroedArray<int>(0), nullptr);
  EXPECT_NE(zephlane::UnfilledArray<int>(0), nullptr);
}

TEST(Arrays, SizeThatCannotExistIsFailureAndDoesNotWrapAround) {
  EXPECT_EQ(zephlane::UnfilledArray<char[1024]>(SIZE_MAX / 1024 + 2), nullptr);
}

TEST(Arrays, ZeroedItemsAreZero) {
  const CArray<int> items = zephlane::ZeroedArray<int>(100);
  for (int i = 0; i < 100; ++i) { EXPECT_EQ(items[i], 0); }
}

TEST(Arrays, RunningOutOfMemoryIsNull) {
  AllocationFault fault(1, true);
  const CArray<int> zeroed = zephlane::ZeroedArray<int>(1);
  const CArray<int> unfilled = zephlane::UnfilledArray<int>(1);
  const auto record = zephlane::ZeroedRecord<int>();
  errno = 0;
  const CString text = Duplicate("text");
  fault.Disarm();
  EXPECT_EQ(errno, ENOMEM);
  EXPECT_EQ(zeroed, nullptr);
  EXPECT_EQ(unfilled, nullptr);
  EXPECT_EQ(record, nullptr);
  EXPECT_EQ(text, nullptr);
}

TEST(DuplicateText, IsTerminatedAndOfItsOwn) {
  const std::string_view text("abcdef", 3);
  const CString copy = Duplicate(text);
  EXPECT_STREQ(copy.get(), "abc");
  EXPECT_NE(copy.get(), text.data());
  EXPECT_STREQ(Duplicate({}).get(), "");
}

TEST(CStringArrays, ReleasedStringsAreTheCallersToFree) {
  CStringArray strings(2);
  ASSERT_TRUE(strings);
  strings.Set(0, Duplicate("first"));
  char** released = strings.Release();
  EXPECT_STREQ(released[0], "first");
  EXPECT_EQ(released[1], nullptr);
  std::free(released[0]);
  std::free(released);
}

TEST(CStringArrays, UnreleasedStringsAreFreedWithTheArray) {
  CStringArray strings(3);
  strings.Set(0, Duplicate("first"));
  strings.Set(2, Duplicate("third"));
}

TEST(CStringArrays, NoStringsAreNoFailureAndNoMemoryIs) {
  EXPECT_TRUE(CStringArray(0));
  AllocationFault fault(1);
  const CStringArray strings(2);
  fault.Disarm();
  EXPECT_FALSE(strings);
}

TEST(Descriptors, AreClosedAtTheEndOfTheScope) {
  int fd = -1;
  {
    const Descriptor owner(open("/dev/null", O_RDONLY | O_CLOEXEC));
    fd = owner.Get();
    EXPECT_TRUE(owner);
    EXPECT_TRUE(IsOpen(fd));
  }
  EXPECT_FALSE(IsOpen(fd));
}

TEST(Descriptors, ReleasedOneStaysOpen) {
  int fd = -1;
  {
    Descriptor owner(open("/dev/null", O_RDONLY | O_CLOEXEC));
    fd = owner.Release();
    EXPECT_FALSE(owner);
  }
  EXPECT_TRUE(IsOpen(fd));
  EXPECT_EQ(close(fd), 0);
}

TEST(Descriptors, NumberZeroIsADescriptorAndMinusOneIsNone) {
  EXPECT_FALSE(Descriptor(-1));
  Descriptor standard_input(0);
  EXPECT_TRUE(standard_input);
  EXPECT_EQ(standard_input.Release(), 0);
}

TEST(JsonValues, OneReferenceIsGivenBack) {
  json_t* value = json_string("text");
  {
    const Json first(json_incref(value));
    EXPECT_EQ(value->refcount, 2U);
  }
  EXPECT_EQ(value->refcount, 1U);
  const Json second(value);
}

TEST(Regexes, SayWhetherTheyWereCompiled) {
  const Regex digits("^[0-9]+$", REG_EXTENDED);
  ASSERT_TRUE(digits);
  EXPECT_EQ(regexec(digits.Get(), "123", 0, nullptr, 0), 0);
  EXPECT_EQ(regexec(digits.Get(), "12x", 0, nullptr, 0), REG_NOMATCH);
  EXPECT_FALSE(Regex("[", REG_EXTENDED));
}

TEST(Regexes, OneThatWasNotCompiledIsNotFreed) {
  const RegexFault fault;
  EXPECT_FALSE(Regex("[0-9]", REG_EXTENDED));
}

TEST(MutexHolds, LastAsLongAsTheirScope) {
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  {
    const MutexHold hold(mutex);
    EXPECT_EQ(pthread_mutex_trylock(&mutex), EBUSY);
  }
  EXPECT_EQ(pthread_mutex_trylock(&mutex), 0);
  EXPECT_EQ(pthread_mutex_unlock(&mutex), 0);
}

}  // namespace
