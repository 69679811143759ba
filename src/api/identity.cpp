// SPDX-License-Identifier: MIT
//
// Names unique across processes. Each is the next value of a counter in Redis, read, advanced and
// written back under two locks: a mutex that orders the threads of a process, then a record lock on
// a file that orders the processes. Beside them the readers of the store-wide configuration.
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "api/fileLockHold.h"
#include "redis/command.h"
#include "support/owners.h"
#include "support/report.h"
#include "support/storeKeys.h"
#include "support/text.h"

#include <zephlaneAPI/commands.h>
#include <zephlaneAPI/identity.h>
#include <zephlaneAPI/objects.h>

using zephlane::ApiError;
using zephlane::kDone;
using zephlane::kFailed;

namespace zephlane {
namespace {

constexpr int kNotLocked = -1;

constexpr char kStartUuid[] = "10000000-0000-0000-0000-000000000000";
constexpr char kMaximumDigits[] = "23456789abcdefABCDEF";
constexpr char kDefaultMaximumDigit = '7';

// A UUID as eight 16-bit words, the least significant first, each four digits of the text.
constexpr unsigned int kWordCount = 8;
constexpr unsigned int kWordMaximum = 0xffff;
constexpr std::size_t kWordDigits = 4;
constexpr std::size_t kGroupSize = kWordDigits + 1;
constexpr std::array<std::size_t, kWordCount> kGroupPositions = {32, 28, 24, 19, 14, 9, 4, 0};

// The UUID no counter passes. Computed by the first zephlaneGenerateUUID() of the process and never
// refreshed; read and written only under both zephlaneAutoGenerateUUIDLock and the lock on
// ZephlaneGenerateUUIDLockFile.
char maximum_uuid[kIdSize] = "";
bool maximum_uuid_known = false;

char MaximumDigit(std::string_view setting) {
  const bool accepted = setting.size() == 1 && Contains(kMaximumDigits, setting);
  return accepted ? static_cast<char>(std::tolower(setting[0])) : kDefaultMaximumDigit;
}

// Precondition: both locks are held.
const char* MaximumUuid(redisContext* ctx) {
  if (!maximum_uuid_known) {
    char setting[kValueSize] = "";
    // A setting that cannot be read stays empty, which means the default.
    (void)getHashField(ctx, kDefaultSettings, kMaximumUuidField, setting);
    (void)std::snprintf(maximum_uuid, sizeof(maximum_uuid), "%cfffffff-ffff-ffff-ffff-ffffffffffff",
                        MaximumDigit(setting));
    maximum_uuid_known = true;
  }
  return maximum_uuid;
}

// The number that four digits stand for. Of a stored value that is no UUID they may be other
// characters: then as many count as strtoul() takes, and the mask matters, as they may be "-1".
unsigned int WordOf(const char* group) {
  unsigned int word = 0;
  const char* const end = group + kWordDigits;
  const auto result = std::from_chars(group, end, word, 16);
  if (result.ptr == end) { return word; }
  return static_cast<unsigned int>(std::strtoul(group, nullptr, 16)) & kWordMaximum;
}

void WriteWord(unsigned int word, char* out) {
  constexpr char kDigits[] = "0123456789abcdef";
  for (std::size_t i = kWordDigits; i > 0; --i, word >>= 4) { out[i - 1] = kDigits[word & 0xf]; }
}

// Writes the UUID after `counter` into `uuid`, a buffer of kIdSize.
void WriteNextUuid(const char* counter, char* uuid) {
  char groups[kWordCount * kGroupSize] = "";
  (void)splitUUID(counter, groups);
  unsigned int words[kWordCount];
  for (unsigned int i = 0; i < kWordCount; ++i) { words[i] = WordOf(groups + i * kGroupSize); }
  incrementUUID(words, 0);
  CopyCut({uuid, kIdSize}, kStartUuid);  // for its hyphens
  for (unsigned int i = 0; i < kWordCount; ++i) { WriteWord(words[i], uuid + kGroupPositions[i]); }
}

int WaitForLock(int fd, struct flock* lock) {
  for (;;) {
    // A stale EDEADLK of an earlier, unrelated call fails the lock at once: callers rely on it.
    if (errno == EDEADLK) {
      ApiError{}("File lock deadlock happen\n");
      return kNotLocked;
    }
    const int result = fcntl(fd, F_SETLKW, lock);
    if (result >= 0) { return result; }
    if (errno != EINTR) {
      ApiError{}("errno = %d\n", errno);
      return result;
    }
  }
}

}  // namespace
}  // namespace zephlane

const char ZephlaneGenerateUUIDLockFile[] = "/tmp/uuidLock.dat";
const char ZephlaneGenerateEventIDLockFile[] = "/tmp/eventIDLock.dat";

// Guards the computed maximum, and the hold on ZephlaneGenerateUUIDLockFile with the counter
// "autoUUID" behind it.
pthread_mutex_t zephlaneAutoGenerateUUIDLock = PTHREAD_MUTEX_INITIALIZER;
// Guards the hold on ZephlaneGenerateEventIDLockFile with the counter "autoEventID" behind it.
pthread_mutex_t zephlaneAutoGenerateEventIDLock = PTHREAD_MUTEX_INITIALIZER;

int fileLock(int fd, int cmd, short type) {
  struct flock lock {};  // zero: the whole file, however long it grows
  lock.l_type = type;
  return cmd == F_SETLKW ? zephlane::WaitForLock(fd, &lock) : fcntl(fd, cmd, &lock);
}

int processLock(const char* path) {
  zephlane::Descriptor file(path ? open(path, O_RDWR | O_CREAT, 0644) : zephlane::kNotLocked);
  if (!file) {
    ApiError{}("open lock file failed\n");
    return zephlane::kNotLocked;
  }
  if (fileLock(file.Get(), F_SETLKW, F_WRLCK) == zephlane::kNotLocked) {
    ApiError{}("lock failed\n");
    return zephlane::kNotLocked;
  }
  return file.Release();
}

int processUnlock(int fd) {
  const zephlane::Descriptor file(fd);
  if (fileLock(file.Get(), F_SETLK, F_UNLCK) == zephlane::kNotLocked) {
    ApiError{}("unlock failed\n");
    return zephlane::kNotLocked;
  }
  return 0;
}

int zephlaneGenerateUUID(redisContext* ctx, char* aUuid) {
  if (!aUuid) { return kFailed; }
  const zephlane::MutexHold threads(zephlaneAutoGenerateUUIDLock);
  zephlane::FileLockHold processes(ZephlaneGenerateUUIDLockFile);
  if (!processes) { return kFailed; }
  const char* maximum = zephlane::MaximumUuid(ctx);
  // A buffer of its own: a stored value may be longer than the caller's.
  char counter[zephlane::kValueSize] = "";
  if (getKey(ctx, zephlane::kAutoUuid, counter) != kDone) {
    zephlane::CopyCut(counter, zephlane::kStartUuid);
  }
  // Only equality stops the counter: one above the maximum goes on.
  if (std::strncmp(counter, maximum, zephlane::kIdSize) == 0) {
    zephlane::CopyCut({aUuid, zephlane::kIdSize}, maximum);
    // On this path alone a failed unlocking is reported here too.
    if (!processes.Release()) { ApiError{}("unlock failed\n"); }
    return kFailed;
  }
  zephlane::WriteNextUuid(counter, aUuid);
  // The result is not looked at: a UUID that could not be stored is issued all the same.
  (void)setKey(ctx, zephlane::kAutoUuid, aUuid);
  return processes.Release() ? kDone : kFailed;
}

char* splitUUID(const char* aSource, char* aOut) {
  if (!aSource || !aOut) { return nullptr; }
  const std::string_view source(aSource, strnlen(aSource, zephlane::kIdLength));
  char* group = aOut;
  for (const std::size_t position : zephlane::kGroupPositions) {
    // Positions are not checked for digits, but nothing past the end of the text is read.
    if (position < source.size()) {
      zephlane::CopyCounted(group, source.substr(position, zephlane::kWordDigits));
    }
    group += zephlane::kGroupSize;
  }
  return group - zephlane::kGroupSize;
}

void incrementUUID(unsigned int* nWords, unsigned int nIndex) {
  if (!nWords) { return; }
  for (unsigned int i = nIndex; i < zephlane::kWordCount; ++i) {
    if (nWords[i] != zephlane::kWordMaximum) {
      ++nWords[i];
      return;
    }
    nWords[i] = 0;  // the carry out of the top word is dropped
  }
}

int isInvalidUUID(const regex_t* preg, const char* aText) {
  if (!preg || !aText) { return 1; }
  regmatch_t match;
  // The patterns in use are not anchored, so the length is looked at too.
  const bool valid =
      regexec(preg, aText, 1, &match, 0) == 0 && std::strlen(aText) == zephlane::kIdLength;
  return valid ? 0 : 1;
}

int zephlaneLoadConfig(redisContext* ctx, const char* aKey, char* aOut, size_t nOutSize) {
  char scratch[zephlane::kValueSize] = "";
  std::string_view value;
  if (zephlaneGetHashField(ctx, zephlane::kDefaultSettings, aKey, scratch) == kDone) {
    value = scratch;
  } else if (aKey && std::string_view(aKey) == zephlane::kMessagePropertyField) {
    value = zephlane::kMessagePropertyField;  // the property's name where none is configured
  }
  if (!aOut || value.size() >= nOutSize) {
    ApiError{}("Input buffer size\n");
    return kFailed;
  }
  zephlane::CopyCut({aOut, nOutSize}, value);
  return kDone;
}

int zephlaneGetLinksObject(redisContext* ctx, char* aOut) {
  if (!aOut) {
    ApiError{}("Argument: NULL pointer\n");
    return kFailed;
  }
  unsigned int count = 0;
  const zephlane::CArray<SetData> members(zephlaneSMembers(ctx, zephlane::kRootServices, &count));
  if (!members || count == 0) {
    ApiError{}("empty service root\n");
    return kFailed;
  }
  zephlane::CopyCounted(aOut, zephlane::BoundedText(members[0].aObjectID));
  return kDone;
}
