// SPDX-License-Identifier: MIT
#include "support/localListener.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace zephlane::test {

LocalListener::LocalListener() : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof(address);
  auto* raw = reinterpret_cast<sockaddr*>(&address);
  EXPECT_EQ(bind(socket_, raw, size), 0);
  EXPECT_EQ(listen(socket_, 4), 0);
  EXPECT_EQ(getsockname(socket_, raw, &size), 0);
  port_ = ntohs(address.sin_port);
}

LocalListener::~LocalListener() {
  (void)close(socket_);
}

int LocalListener::Accept() const {
  return accept4(socket_, nullptr, nullptr, SOCK_CLOEXEC);
}

void LocalListener::Stop() const {
  (void)shutdown(socket_, SHUT_RDWR);
}

}  // namespace zephlane::test
