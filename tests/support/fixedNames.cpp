// SPDX-License-Identifier: MIT
#include "support/fixedNames.h"

#include <arpa/inet.h>
#include <mntent.h>
#include <mqueue.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <iterator>

namespace zephlane::test {

namespace {

constexpr std::string_view kFixedPaths[] = {kPasswordFile, "/tmp/uuidLock.dat",
                                            "/tmp/eventIDLock.dat", "/tmp/FOSS_schema", "/tmp/etc"};

bool PortIsFree() {
  const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const int reuse = 1;
  (void)setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &reuse, sizeof(reuse));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(kRedisPort);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const bool is_free = bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
  (void)close(fd);
  return is_free;
}

// Where the file system of the message queues is mounted, the latest one when it is more than once;
// empty when nowhere.
std::string QueueDirectory() {
  std::string directory;
  std::FILE* mounts = setmntent("/proc/self/mounts", "re");
  if (mounts == nullptr) { return directory; }
  while (const mntent* mount = getmntent(mounts)) {
    if (std::string_view(mount->mnt_type) == "mqueue") { directory = mount->mnt_dir; }
  }
  (void)endmntent(mounts);
  return directory;
}

std::vector<std::string> Queues() {
  std::vector<std::string> queues;
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(QueueDirectory(), error)) {
    const std::string name = entry.path().filename();
    if (name.starts_with("mq_") || name.starts_with("oemmq_")) { queues.push_back("/" + name); }
  }
  return queues;
}

}  // namespace

bool IsFixedPath(std::string_view path) {
  return std::ranges::find(kFixedPaths, path) != std::end(kFixedPaths);
}

std::vector<std::string> FixedNamesInUse() {
  std::vector<std::string> in_use;
  if (!PortIsFree()) {
    in_use.push_back("TCP port " + std::to_string(kRedisPort) + " of 127.0.0.1 is in use");
  }
  for (const std::string_view path : kFixedPaths) {
    std::error_code error;
    if (std::filesystem::exists(std::filesystem::symlink_status(path, error))) {
      in_use.push_back(std::string(path) + " exists");
    }
  }
  for (const std::string& queue : Queues()) {
    in_use.push_back("message queue " + queue + " exists");
  }
  return in_use;
}

void RemoveFixedNames() {
  for (const std::string_view path : kFixedPaths) {
    std::error_code error;
    (void)std::filesystem::remove_all(path, error);
  }
  for (const std::string& queue : Queues()) { (void)mq_unlink(queue.c_str()); }
}

}  // namespace zephlane::test
