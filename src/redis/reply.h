// SPDX-License-Identifier: MIT
//
// A Redis reply, owned and asked. A null reply means that none came: the connection was lost or the
// server broke the protocol.
#pragma once

#include <memory>
#include <string_view>

#include <hiredis/hiredis.h>

namespace zephlane {

class Reply {
 public:
  explicit Reply(void* raw) noexcept : raw_(static_cast<redisReply*>(raw)) {}
  explicit operator bool() const noexcept {
    return raw_ != nullptr;
  }
  [[nodiscard]] bool Is(int type) const noexcept {
    return raw_ && raw_->type == type;
  }
  // 0 for a reply of another type. Precondition: a reply came.
  [[nodiscard]] long long Integer() const noexcept {
    return raw_->integer;
  }
  // Empty for nil and for replies without text. Precondition: a reply came.
  [[nodiscard]] std::string_view Text() const noexcept {
    return TextOf(*raw_);
  }
  // 0 for a reply that is no array. Precondition: a reply came.
  [[nodiscard]] std::size_t ElementCount() const noexcept {
    return raw_->elements;
  }
  // Empty for a nil element. Precondition: index below ElementCount().
  [[nodiscard]] std::string_view ElementText(std::size_t index) const noexcept {
    return TextOf(*raw_->element[index]);
  }
  [[nodiscard]] bool ElementHasText(std::size_t index) const noexcept {
    return raw_->element[index]->str != nullptr;
  }
  [[nodiscard]] bool IsInteger(long long value) const noexcept {
    return Is(REDIS_REPLY_INTEGER) && raw_->integer == value;
  }

 private:
  static std::string_view TextOf(const redisReply& reply) noexcept {
    return reply.str != nullptr ? std::string_view(reply.str, reply.len) : std::string_view();
  }
  struct Release {
    void operator()(redisReply* reply) const noexcept {
      freeReplyObject(reply);
    }
  };
  std::unique_ptr<redisReply, Release> raw_;
};

}  // namespace zephlane
