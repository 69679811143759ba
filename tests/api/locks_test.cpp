// SPDX-License-Identifier: MIT
//
// Record locks between real processes. This program has one thread, so that it may fork.
#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "support/callFault.h"
#include "support/output.h"
#include "support/process.h"

#include <zephlaneAPI.h>

namespace {

using zephlane::test::ApiReport;
using zephlane::test::Capture;
using zephlane::test::FcntlFault;
using zephlane::test::ForkedChild;
using zephlane::test::Gate;
using zephlane::test::Masked;
using zephlane::test::Output;

constexpr char kPath[] = "/tmp/locks-test.dat";
constexpr char kOtherPath[] = "/tmp/locks-test-other.dat";

// The lowest free descriptor: the same before and after when nothing was left open.
int LowestFreeDescriptor() {
  const int fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
  (void)close(fd);
  return fd;
}

bool IsOpen(int fd) {
  return fcntl(fd, F_GETFD) >= 0;
}

// Takes and releases the lock of kPath; what that printed, or that it failed.
std::string LockAndUnlock() {
  int result = -1;
  const Output printed = Capture([&] { result = processUnlock(processLock(kPath)); });
  return (result == 0 ? "locked" : "failed") + printed.out + printed.err;
}

// Whether another process could lock one byte of the file at `offset`.
std::string ByteIsFree(off_t offset) {
  ForkedChild other([offset]() -> std::string {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_start = offset;
    lock.l_len = 1;
    const int fd = open(kPath, O_RDWR | O_CLOEXEC);
    return fcntl(fd, F_SETLK, &lock) == 0 ? "free" : "taken";
  });
  return other.Result();
}

class Locks : public testing::Test {
 protected:
  void SetUp() override {
    errno = 0;
  }
  void TearDown() override {
    errno = 0;
    (void)std::filesystem::remove_all(kPath);
    (void)std::filesystem::remove_all(kOtherPath);
  }
  // What a lock prints that is called with error_ in errno and is expected to fail.
  Output PrintedByFailingLock(const char* path) {
    int fd = 0;
    Output printed = Capture([&] {
      errno = error_;
      fd = processLock(path);
      error_ = errno;
    });
    EXPECT_EQ(fd, -1);
    EXPECT_EQ(printed.err, "");
    return printed;
  }
  int error_ = 0;
};

TEST_F(Locks, FileNamesArePublishedWithTheirTerminators) {
  EXPECT_STREQ(ZephlaneGenerateUUIDLockFile, "/tmp/uuidLock.dat");
  EXPECT_EQ(sizeof(ZephlaneGenerateUUIDLockFile), 18U);
  EXPECT_STREQ(ZephlaneGenerateEventIDLockFile, "/tmp/eventIDLock.dat");
  EXPECT_EQ(sizeof(ZephlaneGenerateEventIDLockFile), 21U);
}

TEST_F(Locks, MutexesAreFreeAndNotRecursive) {
  for (pthread_mutex_t* mutex : {&zephlaneAutoGenerateUUIDLock, &zephlaneAutoGenerateEventIDLock}) {
    EXPECT_EQ(pthread_mutex_trylock(mutex), 0);
    EXPECT_EQ(pthread_mutex_trylock(mutex), EBUSY);
    EXPECT_EQ(pthread_mutex_unlock(mutex), 0);
  }
}

TEST_F(Locks, MissingFileIsCreatedWithMode0644AndStaysAfterUnlock) {
  const mode_t mask = umask(0);
  const int fd = processLock(kPath);
  (void)umask(mask);
  EXPECT_GE(fd, 0);
  EXPECT_EQ(processUnlock(fd), 0);
  struct stat status {};
  ASSERT_EQ(stat(kPath, &status), 0);
  EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0644));
}

TEST_F(Locks, ContentOfTheFileIsLeftAlone) {
  std::ofstream(kPath) << "content";
  EXPECT_EQ(LockAndUnlock(), "locked");
  std::ifstream file(kPath);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "content");
}

TEST_F(Locks, LockCoversTheWholeFileHoweverLong) {
  std::ofstream(kPath) << "content";
  const int fd = processLock(kPath);
  EXPECT_EQ(ByteIsFree(0), "taken");
  EXPECT_EQ(ByteIsFree(1 << 30), "taken");
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_EQ(ByteIsFree(0), "free");
}

TEST_F(Locks, UnlockReleasesAndCloses) {
  const int fd = processLock(kPath);
  ASSERT_GE(fd, 0);
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_FALSE(IsOpen(fd));
  EXPECT_EQ(ByteIsFree(0), "free");
}

TEST_F(Locks, SuccessPrintsNothing) {
  EXPECT_EQ(LockAndUnlock(), "locked");
}

TEST_F(Locks, OneProcessDoesNotExcludeItself) {
  // The lock belongs to the process: threads are kept apart by the mutex around it.
  const int first = processLock(kPath);
  const int second = processLock(kPath);
  EXPECT_GE(second, 0);
  EXPECT_EQ(processUnlock(second), 0);
  EXPECT_EQ(processUnlock(first), 0);
}

// Between processes

TEST_F(Locks, SecondProcessBlocksUntilUnlock) {
  const int fd = processLock(kPath);
  Gate locked;
  ForkedChild second([&locked] {
    const int own = processLock(kPath);
    locked.Open();
    return std::to_string(processUnlock(own));
  });
  ASSERT_TRUE(second.WaitsForLock());
  EXPECT_FALSE(locked.IsOpen());
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_EQ(second.Result(), "0");
  EXPECT_TRUE(locked.IsOpen());
}

TEST_F(Locks, SecondProcessBlocksUntilTheFirstExits) {
  Gate locked;
  Gate may_exit;
  ForkedChild first([&locked, &may_exit]() -> std::string {
    (void)processLock(kPath);
    locked.Open();
    may_exit.Pass();
    return "exited without unlocking";
  });
  locked.Pass();
  ForkedChild second(LockAndUnlock);
  ASSERT_TRUE(second.WaitsForLock());
  may_exit.Open();
  EXPECT_EQ(first.Result(), "exited without unlocking");
  EXPECT_EQ(second.Result(), "locked");
}

TEST_F(Locks, SecondProcessBlocksUntilTheFirstIsKilled) {
  Gate locked;
  Gate never;
  ForkedChild first([&locked, &never]() -> std::string {
    (void)processLock(kPath);
    locked.Open();
    never.Pass();
    return "";
  });
  locked.Pass();
  ForkedChild second(LockAndUnlock);
  ASSERT_TRUE(second.WaitsForLock());
  first.Kill();
  EXPECT_EQ(second.Result(), "locked");
}

std::string LockUnderInterruptingSignals() {
  struct sigaction action {};  // without SA_RESTART, so that the wait is interrupted
  action.sa_handler = [](int) {};
  (void)sigaction(SIGUSR1, &action, nullptr);
  return LockAndUnlock();
}

TEST_F(Locks, SignalDuringTheWaitIsWaitedOver) {
  const int fd = processLock(kPath);
  ForkedChild second(LockUnderInterruptingSignals);
  for (int i = 0; i < 20; ++i) {
    ASSERT_TRUE(second.WaitsForLock());
    ASSERT_TRUE(second.Deliver(SIGUSR1));
  }
  ASSERT_TRUE(second.WaitsForLock());
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_EQ(second.Result(), "locked");
}

TEST_F(Locks, InterruptedAttemptsAreRepeatedWithoutLimit) {
  const FcntlFault fault(F_SETLKW, EINTR, 1000);
  EXPECT_EQ(LockAndUnlock(), "locked");
  EXPECT_EQ(fault.Calls(), 1001);
}

// Failures

TEST_F(Locks, FileThatCannotBeOpenedIsReported) {
  std::filesystem::create_directory(kPath);
  for (const char* path : {"/tmp/no-such-directory/lock.dat", kPath}) {
    SCOPED_TRACE(path);
    EXPECT_EQ(Masked(PrintedByFailingLock(path).out), ApiReport("open lock file failed"));
  }
  EXPECT_EQ(Masked(PrintedByFailingLock(nullptr).out), ApiReport("open lock file failed"));
}

TEST_F(Locks, StaleDeadlockErrnoFailsTheLockAtOnce) {
  const int before = LowestFreeDescriptor();
  const FcntlFault count(F_SETLKW, 0, 0);
  error_ = EDEADLK;
  const Output printed = PrintedByFailingLock(kPath);
  EXPECT_EQ(Masked(printed.out), ApiReport("File lock deadlock happen") + ApiReport("lock failed"));
  EXPECT_EQ(count.Calls(), 0);
  EXPECT_EQ(LowestFreeDescriptor(), before);
}

TEST_F(Locks, FailedLockIsReportedWithItsErrnoAndClosed) {
  const int before = LowestFreeDescriptor();
  const FcntlFault fault(F_SETLKW, ENOLCK);
  const Output printed = PrintedByFailingLock(kPath);
  EXPECT_EQ(Masked(printed.out),
            ApiReport("errno = " + std::to_string(ENOLCK)) + ApiReport("lock failed"));
  EXPECT_EQ(fault.Calls(), 1);
  EXPECT_EQ(LowestFreeDescriptor(), before);
}

// Holds the other file and waits for the first, which its parent holds.
std::string HoldOtherAndWaitForFirst() {
  const int other = processLock(kOtherPath);
  const int first = processLock(kPath);
  return std::to_string(processUnlock(first)) + std::to_string(processUnlock(other));
}

TEST_F(Locks, DeadlockThatTheKernelSeesIsReportedByItsNumberAndFailsTheNextCallToo) {
  const int fd = processLock(kPath);
  ForkedChild second(HoldOtherAndWaitForFirst);
  ASSERT_TRUE(second.WaitsForLock());
  const Output first_try = PrintedByFailingLock(kOtherPath);
  EXPECT_EQ(Masked(first_try.out),
            ApiReport("errno = " + std::to_string(EDEADLK)) + ApiReport("lock failed"));
  EXPECT_EQ(error_, EDEADLK);  // stays in errno until the next call
  const Output second_try = PrintedByFailingLock(kOtherPath);
  EXPECT_EQ(Masked(second_try.out),
            ApiReport("File lock deadlock happen") + ApiReport("lock failed"));
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_EQ(second.Result(), "00");
}

TEST_F(Locks, UnlockOfBadDescriptorIsReported) {
  for (const int fd : {-1, 9999}) {
    SCOPED_TRACE(fd);
    int result = 0;
    const Output printed = Capture([&] { result = processUnlock(fd); });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(Masked(printed.out), ApiReport("unlock failed"));
    EXPECT_EQ(printed.err, "");
  }
}

TEST_F(Locks, DescriptorIsClosedThoughUnlockingFails) {
  // A descriptor of this kind cannot be locked or unlocked, but can be closed.
  const int fd = open("/tmp", O_PATH | O_CLOEXEC);
  int result = 0;
  const Output printed = Capture([&] { result = processUnlock(fd); });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(Masked(printed.out), ApiReport("unlock failed"));
  EXPECT_FALSE(IsOpen(fd));
}

TEST_F(Locks, UnlockOfDescriptorWithoutLockIsSuccessAndCloses) {
  const int fd = open(kPath, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  EXPECT_EQ(processUnlock(fd), 0);
  EXPECT_FALSE(IsOpen(fd));
}

TEST_F(Locks, UnlockIsNotDisturbedByStaleDeadlockErrno) {
  const int fd = processLock(kPath);
  errno = EDEADLK;
  EXPECT_EQ(processUnlock(fd), 0);
}

// fileLock() by itself

class FileLock : public Locks {
 protected:
  void SetUp() override {
    Locks::SetUp();
    fd_ = open(kPath, O_RDWR | O_CREAT | O_CLOEXEC, 0644);
  }
  void TearDown() override {
    (void)close(fd_);
    Locks::TearDown();
  }
  // The result of fileLock(); what it prints is kept.
  int Apply(int fd, int cmd, short type) {
    int result = 0;
    printed_ = Capture([&] {
      result = fileLock(fd, cmd, type);
      error_ = errno;
    });
    return result;
  }
  int fd_ = -1;
  Output printed_;
};

TEST_F(FileLock, WaitingCommandLocksAndReturnsZero) {
  EXPECT_EQ(Apply(fd_, F_SETLKW, F_WRLCK), 0);
  EXPECT_EQ(ByteIsFree(0), "taken");
  EXPECT_EQ(printed_.out + printed_.err, "");
}

TEST_F(FileLock, OtherCommandsAreOneCallAndPrintNothing) {
  for (const int cmd : {F_SETLK, F_GETLK}) {
    for (const int error : {0, EINTR, EAGAIN, EDEADLK}) {
      SCOPED_TRACE(std::to_string(cmd) + " with errno " + std::to_string(error));
      const FcntlFault fault(cmd, error, error == 0 ? 0 : 1);
      EXPECT_EQ(Apply(fd_, cmd, F_WRLCK), error == 0 ? 0 : -1);
      EXPECT_EQ(fault.Calls(), 1);
      EXPECT_EQ(printed_.out + printed_.err, "");
    }
  }
}

TEST_F(FileLock, OtherCommandDoesNotWaitForTheHolder) {
  EXPECT_EQ(Apply(fd_, F_SETLKW, F_WRLCK), 0);
  ForkedChild second([] {
    const int fd = open(kPath, O_RDWR | O_CLOEXEC);
    const int result = fileLock(fd, F_SETLK, F_WRLCK);
    return std::to_string(result) + (errno == EAGAIN || errno == EACCES ? " taken" : "");
  });
  EXPECT_EQ(second.Result(), "-1 taken");
}

TEST_F(FileLock, OtherCommandIgnoresStaleDeadlockErrno) {
  errno = EDEADLK;
  EXPECT_EQ(fileLock(fd_, F_SETLK, F_WRLCK), 0);
}

TEST_F(FileLock, SharedLocksExcludeOnlyExclusiveOnes) {
  EXPECT_EQ(Apply(fd_, F_SETLKW, F_RDLCK), 0);
  ForkedChild second([] {
    const int fd = open(kPath, O_RDWR | O_CLOEXEC);
    return std::to_string(fileLock(fd, F_SETLK, F_RDLCK)) +
           std::to_string(fileLock(fd, F_SETLK, F_WRLCK));
  });
  EXPECT_EQ(second.Result(), "0-1");
}

TEST_F(FileLock, WaitingCommandReportsDescriptorThatCannotBeLocked) {
  EXPECT_EQ(Apply(-1, F_SETLKW, F_WRLCK), -1);
  EXPECT_EQ(Masked(printed_.out), ApiReport("errno = " + std::to_string(EBADF)));
  EXPECT_EQ(error_, EBADF);
}

TEST_F(FileLock, WaitingCommandFailsAtOnceWithStaleDeadlockErrno) {
  const FcntlFault count(F_SETLKW, 0, 0);
  int result = 0;
  const Output printed = Capture([&] {
    errno = EDEADLK;
    result = fileLock(fd_, F_SETLKW, F_WRLCK);
  });
  EXPECT_EQ(result, -1);
  EXPECT_EQ(count.Calls(), 0);
  EXPECT_EQ(Masked(printed.out), ApiReport("File lock deadlock happen"));
}

}  // namespace
