// SPDX-License-Identifier: MIT
#include "support/privateNamespace.h"

#include <fcntl.h>
#include <net/if.h>
#include <sched.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "support/fixedNames.h"

namespace zephlane::test {

namespace {

std::string Refused(const std::string& what) {
  return what + ": " + std::strerror(errno);
}

bool WriteFile(const char* path, const std::string& text) {
  const int fd = open(path, O_WRONLY | O_CLOEXEC);
  if (fd < 0) { return false; }
  const bool written = write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
  (void)close(fd);
  return written;
}

// The user keeps the own number: what is mapped is only what the right to make namespaces needs.
bool MapUser(uid_t user, gid_t group) {
  const std::string user_map = std::to_string(user) + " " + std::to_string(user) + " 1";
  const std::string group_map = std::to_string(group) + " " + std::to_string(group) + " 1";
  return WriteFile("/proc/self/setgroups", "deny") && WriteFile("/proc/self/uid_map", user_map) &&
         WriteFile("/proc/self/gid_map", group_map);
}

std::string Unshare() {
  constexpr int kSpaces = CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWIPC;
  if (unshare(kSpaces) == 0) { return ""; }
  const uid_t user = geteuid();
  const gid_t group = getegid();
  if (unshare(CLONE_NEWUSER | kSpaces) != 0) { return Refused("unshare"); }
  return MapUser(user, group) ? "" : Refused("user map");
}

// What of /tmp stays visible: the entries directly below it that lead to `keep`, opened so that
// they can be mounted again. The library's own names never stay: those are what is to be private.
std::map<std::string, int> OpenKept(const std::vector<std::string>& keep) {
  std::map<std::string, int> opened;
  for (const std::string& path : keep) {
    std::error_code not_a_path;  // an argument of the program may be any text
    const std::string whole = std::filesystem::weakly_canonical(path, not_a_path).string();
    if (!whole.starts_with("/tmp/")) { continue; }
    const std::string top = whole.substr(0, whole.find('/', sizeof("/tmp/") - 1));
    if (opened.contains(top) || IsFixedPath(top)) { continue; }
    const int fd = open(top.c_str(), O_PATH | O_CLOEXEC);
    if (fd >= 0) { opened[top] = fd; }
  }
  return opened;
}

bool MakeMountPoint(const std::string& path, int source) {
  struct stat status {};
  if (fstat(source, &status) != 0) { return false; }
  if (S_ISDIR(status.st_mode)) { return mkdir(path.c_str(), 0755) == 0; }
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
  return fd >= 0 && close(fd) == 0;
}

std::string MountTmp(const std::vector<std::string>& keep) {
  std::error_code no_directory;
  const std::string directory = std::filesystem::current_path(no_directory).string();
  const std::map<std::string, int> kept = OpenKept(keep);
  if (mount("tmpfs", "/tmp", "tmpfs", 0, "mode=1777") != 0) { return Refused("mount /tmp"); }
  for (const auto& [top, fd] : kept) {
    const std::string source = "/proc/self/fd/" + std::to_string(fd);
    if (!MakeMountPoint(top, fd) ||
        mount(source.c_str(), top.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0) {
      return Refused("mount " + top);
    }
    (void)close(fd);
  }
  // The working directory still is the one below the old /tmp: enter it again by name.
  if (!directory.empty() && chdir(directory.c_str()) != 0) { (void)!chdir("/"); }
  return "";
}

std::string RaiseLoopback() {
  const int fd = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  ifreq request{};
  request.ifr_name[0] = 'l';
  request.ifr_name[1] = 'o';
  request.ifr_flags = IFF_UP;
  const bool raised = fd >= 0 && ioctl(fd, SIOCSIFFLAGS, &request) == 0;
  const std::string refusal = raised ? "" : Refused("loopback");
  (void)close(fd);
  return refusal;
}

// The queues' file system shows those of the new namespace only when mounted anew; nothing but
// listing them needs it, so a refusal is none of the whole.
void MountQueues() {
  constexpr char kUsual[] = "/dev/mqueue";
  constexpr char kWhereThereIsNone[] = "/tmp/.mqueue";
  if (mount("mqueue", kUsual, "mqueue", 0, nullptr) == 0) { return; }
  (void)mkdir(kWhereThereIsNone, 01777);
  (void)mount("mqueue", kWhereThereIsNone, "mqueue", 0, nullptr);
}

std::string Enter(const std::vector<std::string>& keep) {
  std::string refusal = Unshare();
  if (refusal.empty() && mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
    refusal = Refused("mount");
  }
  if (refusal.empty()) { refusal = MountTmp(keep); }
  if (refusal.empty()) { refusal = RaiseLoopback(); }
  if (refusal.empty()) { MountQueues(); }
  return refusal;
}

// A refused namespace must leave the process as it was, so a child tries first.
std::string EnterInChild(const std::vector<std::string>& keep) {
  int result[2];
  if (pipe2(result, O_CLOEXEC) != 0) { return Refused("pipe"); }
  const pid_t child = fork();
  if (child < 0) { return Refused("fork"); }
  if (child == 0) {
    const std::string refusal = Enter(keep);
    (void)!write(result[1], refusal.data(), refusal.size());
    _exit(0);
  }
  (void)close(result[1]);
  char text[256] = "";
  const ssize_t length = read(result[0], text, sizeof(text) - 1);
  (void)close(result[0]);
  (void)waitpid(child, nullptr, 0);
  return length > 0 ? text : "";
}

}  // namespace

std::string EnterPrivateNamespace(const std::vector<std::string>& keep) {
  const std::string refusal = EnterInChild(keep);
  return refusal.empty() ? Enter(keep) : refusal;
}

}  // namespace zephlane::test
