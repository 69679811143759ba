// SPDX-License-Identifier: MIT
//
// A lock file held for a scope. Order everywhere: the process-local mutex first, then the file; the
// file lock is held only while the mutex is, because a record lock belongs to the whole process and
// would not keep two of its threads apart.
#pragma once

#include <utility>

#include <zephlaneAPI/identity.h>

namespace zephlane {

class FileLockHold {
 public:
  explicit FileLockHold(const char* path) : fd_(processLock(path)) {}
  FileLockHold(const FileLockHold&) = delete;
  FileLockHold& operator=(const FileLockHold&) = delete;
  ~FileLockHold() {
    if (fd_ >= 0) { (void)processUnlock(fd_); }
  }
  // False when the lock was not got, which is reported.
  explicit operator bool() const noexcept {
    return fd_ >= 0;
  }
  // Ends the hold before the end of the scope. False when unlocking failed, which is reported; the
  // lock is gone all the same. Precondition: held.
  [[nodiscard]] bool Release() {
    return processUnlock(std::exchange(fd_, -1)) == 0;
  }

 private:
  int fd_;
};

}  // namespace zephlane
