// SPDX-License-Identifier: MIT
//
// The launcher, run as a program. Where it uses the machine's own names it is run within a
// namespace of an outer launcher, which stands for a machine that nothing else uses.
#include "support/privateRedis.h"

#include <mqueue.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "support/process.h"
#include "support/store.h"

namespace {

using zephlane::test::EndedProgram;
using zephlane::test::RunProgramToEnd;
using zephlane::test::StoreTest;
using Words = std::vector<std::string>;

constexpr char kLauncher[] = ZEPHLANE_PRIVATE_REDIS;
constexpr char kRefusal[] =
    "private Redis: this machine grants no private namespace (none was asked for), and its own "
    "names are not free:\n";

EndedProgram Launch(const Words& words) {
  Words all = {kLauncher};
  all.insert(all.end(), words.begin(), words.end());
  return RunProgramToEnd(all);
}

// Runs a shell script on a machine of its own, all of whose names are free; $0 is the launcher.
EndedProgram OnOtherMachine(const std::string& script) {
  return Launch({"--no-server", "sh", "-c", script, kLauncher});
}

// Asks the server that the program of the launcher sees, with the password it sees.
std::string Client(const std::string& command) {
  return "redis-cli --no-auth-warning -a \"$(cat /tmp/redis.requirepass)\" " + command;
}

class PrivateRedis : public StoreTest {
 protected:
  void SetUp() override {
    const char* mark = std::getenv(zephlane::test::kPrivateRedisMark);
    if (mark == nullptr || std::string_view(mark) != zephlane::test::kInNamespace) {
      GTEST_SKIP() << "this machine grants no namespace, and a run within a run would wait for it";
    }
    StoreTest::SetUp();
    (void)std::filesystem::create_directories(directory_);
  }
  void TearDown() override {
    std::error_code error;
    (void)std::filesystem::remove_all(directory_, error);
    if (!IsSkipped()) { StoreTest::TearDown(); }
  }
  // An executable script of our own /tmp, which stands for that of the machine.
  static void WriteScript(const std::string& path, const std::string& body) {
    std::ofstream(path) << "#!/bin/sh\n" << body << "\n";
    (void)chmod(path.c_str(), 0755);
  }

  const std::string directory_ = "/tmp/two words";
};

// The namespace

TEST_F(PrivateRedis, HidesTheMachinesTmp) {
  std::ofstream("/tmp/two words/file");
  EXPECT_EQ(Launch({"--no-server", "sh", "-c", "test -e '/tmp/two words'"}).status, 1);
  EXPECT_EQ(Launch({"--no-server", "sh", "-c", "echo > /tmp/own-file"}).status, 0);
  EXPECT_FALSE(std::filesystem::exists("/tmp/own-file"));
}

TEST_F(PrivateRedis, HidesTheMachinesPortFilesAndQueues) {
  const mqd_t queue = mq_open("/mq_x", O_RDWR | O_CREAT | O_CLOEXEC, 0770, nullptr);
  EXPECT_GE(queue, 0);
  // Within, a launcher that needs the fixed names finds all of them free.
  const EndedProgram ended =
      Launch({"--no-server", kLauncher, "--no-server", "--no-namespace", "echo", "free"});
  (void)mq_close(queue);
  (void)mq_unlink("/mq_x");
  EXPECT_EQ(ended.out, "free\n");
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(ended.status, 0);
}

TEST_F(PrivateRedis, NeverShowsTheMachinesFixedFilesThoughTheProgramNamesThem) {
  // Ours is the password file of the machine for the program.
  ASSERT_TRUE(std::filesystem::exists("/tmp/redis.requirepass"));
  EXPECT_EQ(Launch({"--no-server", "test", "-e", "/tmp/redis.requirepass"}).status, 1);
}

TEST_F(PrivateRedis, ServerIsEmptyAndNotTheMachines) {
  EXPECT_EQ(Ask({"SET", "key", "ours"}), "OK");
  const EndedProgram ended =
      Launch({"sh", "-c", Client("dbsize") + " && " + Client("set key theirs")});
  EXPECT_EQ(ended.out, "0\nOK\n");
  EXPECT_EQ(Dump(), "string key\n  ours\n");
}

TEST_F(PrivateRedis, ServerRequiresThePasswordOfTheFile) {
  const EndedProgram ended = Launch({"redis-cli", "dbsize"});
  EXPECT_EQ(ended.out.substr(0, 6), "NOAUTH");
}

TEST_F(PrivateRedis, TellsTheProgramThatItRunsInANamespace) {
  const EndedProgram ended = Launch({"--no-server", "printenv", zephlane::test::kPrivateRedisMark});
  EXPECT_EQ(ended.out, std::string(zephlane::test::kInNamespace) + "\n");
}

// The program

TEST_F(PrivateRedis, ExitStatusPassesThrough) {
  for (const int status : {0, 1, 7, 125, 255}) {
    SCOPED_TRACE(status);
    EXPECT_EQ(Launch({"--no-server", "sh", "-c", "exit " + std::to_string(status)}).status, status);
  }
}

TEST_F(PrivateRedis, SignalThatEndedTheProgramPassesThroughAsANumber) {
  EXPECT_EQ(Launch({"--no-server", "sh", "-c", "kill -KILL $$"}).status, 128 + 9);
  EXPECT_EQ(Launch({"sh", "-c", "kill -SEGV $$"}).status, 128 + 11);
}

TEST_F(PrivateRedis, SignalToTheLauncherGoesToTheProgram) {
  // A program that would wait for ever, and has just told the launcher to end.
  const std::string script =
      "trap 'echo ended; exit 3' TERM; kill -TERM $PPID; while :; do :; done";
  const EndedProgram ended = Launch({"--no-server", "sh", "-c", script});
  EXPECT_EQ(ended.out, "ended\n");
  EXPECT_EQ(ended.status, 3);
}

TEST_F(PrivateRedis, ArgumentsPassThroughAsTheyAre) {
  const std::string script = "for word in \"$@\"; do echo \"[$word]\"; done";
  const EndedProgram ended =
      Launch({"--no-server", "sh", "-c", script, "sh", "two words", "", "--no-server", "*"});
  EXPECT_EQ(ended.out, "[two words]\n[]\n[--no-server]\n[*]\n");
}

TEST_F(PrivateRedis, ArgumentLongerThanAFileNameMayBeIsNoPath) {
  const EndedProgram ended = Launch({"--no-server", "sh", "-c", ": " + std::string(5000, 'x')});
  EXPECT_EQ(ended.status, 0);
  EXPECT_EQ(ended.err, "");
}

TEST_F(PrivateRedis, ProgramBelowTmpStaysVisibleWithItsDirectory) {
  WriteScript("/tmp/two words/program", "cat '/tmp/two words/file'; echo > '/tmp/two words/made'");
  std::ofstream("/tmp/two words/file") << "content\n";
  const EndedProgram ended = Launch({"--no-server", "/tmp/two words/program"});
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(ended.out, "content\n");
  EXPECT_TRUE(std::filesystem::exists("/tmp/two words/made"));
}

TEST_F(PrivateRedis, ProgramDirectlyInTmpStaysVisible) {
  WriteScript("/tmp/two words.sh", "echo ran");
  const EndedProgram ended = Launch({"--no-server", "/tmp/two words.sh"});
  (void)std::filesystem::remove("/tmp/two words.sh");
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(ended.out, "ran\n");
}

TEST_F(PrivateRedis, WorkingDirectoryBelowTmpStaysTheSame) {
  std::ofstream("/tmp/two words/file") << "content\n";
  const auto before = std::filesystem::current_path();
  std::filesystem::current_path("/tmp/two words");
  const EndedProgram ended = Launch({"--no-server", "sh", "-c", "pwd; cat file"});
  std::filesystem::current_path(before);
  EXPECT_EQ(ended.out, "/tmp/two words\ncontent\n");
}

TEST_F(PrivateRedis, ProgramThatCannotBeRunIsSaid) {
  const EndedProgram ended = Launch({"--no-server", "/no/such/program"});
  EXPECT_EQ(ended.status, 127);
  EXPECT_EQ(ended.err, "/no/such/program: No such file or directory\n");
}

TEST_F(PrivateRedis, WrongUsageIsExplained) {
  for (const Words& words : {Words{}, Words{"--no-server"}, Words{"--no-such-option", "true"}}) {
    const EndedProgram ended = Launch(words);
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(
        ended.err,
        "usage: zephlane-private-redis [--no-server] [--no-namespace] PROGRAM [ARGUMENT...]\n");
  }
}

// Without a namespace

TEST_F(PrivateRedis, WithoutNamespaceItWorksWhereAllNamesAreFree) {
  const EndedProgram ended =
      OnOtherMachine("\"$0\" --no-namespace sh -c '" + Client("set key value") + "'; echo $?");
  EXPECT_EQ(ended.out, "OK\n0\n");
  EXPECT_EQ(ended.err, "");
}

TEST_F(PrivateRedis, VariableAsksForTheSameAsTheOption) {
  const EndedProgram ended = OnOtherMachine(
      "ZEPHLANE_NO_NAMESPACE=1 \"$0\" --no-server printenv ZEPHLANE_PRIVATE_REDIS_RUNNING");
  EXPECT_EQ(ended.out, std::string(zephlane::test::kOnTheMachine) + "\n");
}

TEST_F(PrivateRedis, WithoutNamespaceTheProgramSeesTheMachine) {
  const EndedProgram ended =
      OnOtherMachine("echo theirs > /tmp/other; \"$0\" --no-namespace cat /tmp/other");
  EXPECT_EQ(ended.out, "theirs\n");
}

// Makes each of the fixed files and a queue of each kind; $queues is where the queues are.
constexpr char kMakeAll[] =
    "while read -r _ directory type _; do"
    "  if [ $type = mqueue ]; then queues=$directory; fi; "
    "done < /proc/self/mounts; "
    "mkdir -p /tmp/etc/below /tmp/FOSS_schema/below; "
    "touch /tmp/uuidLock.dat /tmp/eventIDLock.dat $queues/mq_x $queues/oemmq_x $queues/other";

TEST_F(PrivateRedis, WithoutNamespaceItRemovesAllThatItAndTheProgramMade) {
  const EndedProgram ended =
      OnOtherMachine("\"$0\" --no-namespace sh -c '" + std::string(kMakeAll) +
                     "; ls $queues'; echo $?; ls /tmp; \"$0\" --no-namespace echo free again");
  EXPECT_NE(ended.out.find("mq_x\noemmq_x\nother\n0\n"), std::string::npos);
  EXPECT_NE(ended.out.find("free again\n"), std::string::npos);
  EXPECT_EQ(ended.out.find("redis"), std::string::npos) << ended.out;
  EXPECT_EQ(ended.err, "");
}

TEST_F(PrivateRedis, WithoutNamespaceAnInterruptedRunRemovesWhatItMadeToo) {
  const EndedProgram ended = OnOtherMachine(
      "\"$0\" --no-namespace sh -c '" + std::string(kMakeAll) +
      "; kill -INT $PPID; while :; do :; done'; echo $?; \"$0\" --no-namespace true");
  EXPECT_EQ(ended.out, "130\n");
  EXPECT_EQ(ended.err, "");
  EXPECT_EQ(ended.status, 0);
}

TEST_F(PrivateRedis, WithoutNamespaceStatusAndSignalPassThrough) {
  const EndedProgram ended = OnOtherMachine(
      "\"$0\" --no-namespace sh -c 'exit 7'; echo $?; "
      "\"$0\" --no-namespace sh -c 'kill -KILL $$'; echo $?");
  EXPECT_EQ(ended.out, "7\n137\n");
}

TEST_F(PrivateRedis, WithoutNamespaceRunsWaitForEachOther) {
  const EndedProgram ended = OnOtherMachine("for run in 1 2 3; do \"$0\" --no-namespace sh -c '" +
                                            Client("dbsize") + "' & done; wait");
  EXPECT_EQ(ended.out, "0\n0\n0\n");
  EXPECT_EQ(ended.err, "");
}

TEST_F(PrivateRedis, WithoutNamespaceARunWithinARunIsRefusedAsItWouldWaitForItself) {
  const EndedProgram ended = OnOtherMachine(
      "\"$0\" --no-server --no-namespace \"$0\" --no-server --no-namespace echo ran; echo $?");
  EXPECT_EQ(ended.out, "125\n");
  EXPECT_EQ(ended.err, "private Redis: this already runs on the machine's own names\n");
}

// What is in the way without a namespace

// Runs `prepare` on another machine, and then the launcher; what of /tmp is there after that.
EndedProgram RefusedAfter(const std::string& prepare) {
  return OnOtherMachine(prepare + "; \"$0\" --no-namespace echo ran; echo $?; ls /tmp");
}

TEST_F(PrivateRedis, EachFixedFileInTheWayIsNamedAndLeftAlone) {
  for (const char* name :
       {"redis.requirepass", "uuidLock.dat", "eventIDLock.dat", "FOSS_schema", "etc"}) {
    const std::string path = std::string("/tmp/") + name;
    for (const char* prepare : {"touch ", "mkdir ", "ln -s /no/such/file "}) {
      SCOPED_TRACE(prepare + path);
      const EndedProgram ended = RefusedAfter(prepare + path);
      EXPECT_EQ(ended.err, kRefusal + ("  " + path) + " exists\n");
      EXPECT_EQ(ended.out.substr(0, 4), "125\n");
      EXPECT_NE(ended.out.find("\n" + std::string(name) + "\n"), std::string::npos) << ended.out;
    }
  }
}

TEST_F(PrivateRedis, QueueInTheWayIsNamedAndLeftAlone) {
  for (const char* name : {"mq_x", "oemmq_x"}) {
    SCOPED_TRACE(name);
    const EndedProgram ended = OnOtherMachine(
        std::string(kMakeAll) + "; rm -r /tmp/etc /tmp/FOSS_schema /tmp/*.dat $queues/*; touch " +
        "$queues/" + name + "; \"$0\" --no-namespace echo ran; echo $?; ls $queues");
    EXPECT_EQ(ended.err, std::string(kRefusal) + "  message queue /" + name + " exists\n");
    EXPECT_EQ(ended.out, "125\n" + std::string(name) + "\n");
  }
}

TEST_F(PrivateRedis, PortInTheWayIsNamed) {
  // A machine with a server whose password file is gone.
  const std::string script =
      "rm /tmp/redis.requirepass; \"$0\" --no-namespace echo ran; echo $?; redis-cli ping";
  const EndedProgram ended = Launch({"sh", "-c", script, kLauncher});
  EXPECT_EQ(ended.err, std::string(kRefusal) + "  TCP port 6379 of 127.0.0.1 is in use\n");
  EXPECT_EQ(ended.out.substr(0, 10), "125\nNOAUTH");
}

TEST_F(PrivateRedis, AllThatIsInTheWayIsNamedAtOnce) {
  const EndedProgram ended =
      Launch({"sh", "-c", std::string(kMakeAll) + "; \"$0\" --no-namespace echo ran", kLauncher});
  EXPECT_EQ(ended.status, 125);
  std::string named = ended.err;
  for (const char* line :
       {"  TCP port 6379 of 127.0.0.1 is in use\n", "  /tmp/redis.requirepass exists\n",
        "  /tmp/uuidLock.dat exists\n", "  /tmp/eventIDLock.dat exists\n",
        "  /tmp/FOSS_schema exists\n", "  /tmp/etc exists\n", "  message queue /mq_x exists\n",
        "  message queue /oemmq_x exists\n"}) {
    const std::size_t at = named.find(line);
    ASSERT_NE(at, std::string::npos) << line;
    named.erase(at, std::string_view(line).size());
  }
  EXPECT_EQ(named, kRefusal);
}

TEST_F(PrivateRedis, OtherNamesAreNotInTheWay) {
  const EndedProgram ended =
      OnOtherMachine(std::string(kMakeAll) +
                     "; rm -r /tmp/etc /tmp/FOSS_schema /tmp/*.dat $queues/mq_x $queues/oemmq_x; "
                     "touch /tmp/other; \"$0\" --no-namespace echo ran; ls $queues /tmp/other");
  EXPECT_NE(ended.out.find("ran\n"), std::string::npos);
  EXPECT_NE(ended.out.find("/tmp/other\n"), std::string::npos);
  EXPECT_NE(ended.out.find("\nother\n"), std::string::npos);
  EXPECT_EQ(ended.err, "");
}

TEST_F(PrivateRedis, ServerThatDoesNotStartIsSaidWithWhatItPrinted) {
  // A program in front of the real server that fails as it might.
  WriteScript("/tmp/two words/redis-server", "echo out of order");
  const EndedProgram ended =
      Launch({"--no-server", "sh", "-c", "PATH=\"$1:$PATH\" \"$0\" --no-namespace echo ran",
              kLauncher, "/tmp/two words"});
  EXPECT_EQ(ended.status, 125);
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(ended.err,
            "private Redis: redis-server did not start (is the package redis-server installed?): "
            "out of order\n\n");
}

}  // namespace
