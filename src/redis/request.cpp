// SPDX-License-Identifier: MIT
//
// hiredis writes with write(), which raises SIGPIPE when the server is gone, and formats each word
// with printf. Commands are therefore encoded and sent here; hiredis reads the replies, and sends
// what callers have queued in it.
#include "redis/request.h"

#include <sys/socket.h>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <ctime>
#include <string_view>

#include "support/owners.h"
#include "support/text.h"

namespace zephlane {

namespace {

// Keeps a SIGPIPE of this thread from being delivered while hiredis writes. One that was pending
// before is the caller's, and stays.
class BrokenPipeHold {
 public:
  BrokenPipeHold() noexcept {
    sigset_t pending;
    (void)sigemptyset(&pending);
    (void)sigpending(&pending);
    held_ = sigismember(&pending, SIGPIPE) == 0;
    (void)sigemptyset(&pipe_);
    (void)sigaddset(&pipe_, SIGPIPE);
    held_ = held_ && pthread_sigmask(SIG_BLOCK, &pipe_, &before_) == 0;
  }
  BrokenPipeHold(const BrokenPipeHold&) = delete;
  BrokenPipeHold& operator=(const BrokenPipeHold&) = delete;
  ~BrokenPipeHold() {
    if (!held_) { return; }
    constexpr timespec kAtOnce{};
    while (sigtimedwait(&pipe_, nullptr, &kAtOnce) == -1 && errno == EINTR) {}
    (void)pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }

 private:
  sigset_t pipe_{};
  sigset_t before_{};
  bool held_ = false;
};

// A command in the protocol's own form. Most fit into the buffer on the stack.
class EncodedRequest {
 public:
  explicit EncodedRequest(const RequestWords& words) noexcept;
  EncodedRequest(const EncodedRequest&) = delete;
  EncodedRequest& operator=(const EncodedRequest&) = delete;
  // False when memory is out.
  explicit operator bool() const noexcept {
    return bytes_ != nullptr;
  }
  [[nodiscard]] std::string_view Bytes() const noexcept {
    return {bytes_, static_cast<std::size_t>(end_ - bytes_)};
  }

 private:
  static constexpr std::size_t kBufferSize = 2048;
  // A count or length with its mark before and its line end behind.
  static constexpr std::size_t kNumberSize = 1 + 20 + 2;

  [[nodiscard]] static std::size_t LargestSize(const RequestWords& words) noexcept;
  void AddNumber(char mark, std::size_t number) noexcept;
  void AddLineEnd() noexcept;

  char buffer_[kBufferSize];
  CString large_;
  char* bytes_ = nullptr;
  char* end_ = nullptr;
};

EncodedRequest::EncodedRequest(const RequestWords& words) noexcept {
  const std::size_t size = LargestSize(words);
  if (size > kBufferSize) { large_.reset(static_cast<char*>(std::malloc(size))); }
  bytes_ = size > kBufferSize ? large_.get() : buffer_;
  if (bytes_ == nullptr) { return; }
  end_ = bytes_;
  AddNumber('*', words.count);
  for (std::size_t i = 0; i < words.count; ++i) {
    AddNumber('$', words.lengths[i]);
    std::memcpy(end_, words.texts[i], words.lengths[i]);
    end_ += words.lengths[i];
    AddLineEnd();
  }
}

// More than malloc() can give when the sum is too large to be held.
std::size_t EncodedRequest::LargestSize(const RequestWords& words) noexcept {
  std::size_t size = kNumberSize;
  for (std::size_t i = 0; i < words.count; ++i) {
    if (__builtin_add_overflow(size, words.lengths[i], &size) ||
        __builtin_add_overflow(size, kNumberSize + 2, &size)) {
      return SIZE_MAX;
    }
  }
  return size;
}

void EncodedRequest::AddNumber(char mark, std::size_t number) noexcept {
  *end_++ = mark;
  end_ = std::to_chars(end_, end_ + 20, number).ptr;
  AddLineEnd();
}

void EncodedRequest::AddLineEnd() noexcept {
  *end_++ = '\r';
  *end_++ = '\n';
}

// Marks the connection as hiredis does after a failed write: it serves no further command.
void MarkFailed(redisContext& ctx) noexcept {
  ctx.err = REDIS_ERR_IO;
  char text[sizeof(ctx.errstr)];
  CopyCut(ctx.errstr, strerror_r(errno, text, sizeof(text)));
}

bool SendAll(redisContext& ctx, std::string_view bytes) noexcept {
  while (!bytes.empty()) {
    const ssize_t sent = send(ctx.fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno != EINTR) {
      MarkFailed(ctx);
      return false;
    }
  }
  return true;
}

bool IsBlocking(const redisContext& ctx) noexcept {
  return (ctx.flags & REDIS_BLOCK) != 0;
}

// Its output buffer is text that ends in a NUL.
bool HasQueued(const redisContext& ctx) noexcept {
  return ctx.obuf != nullptr && ctx.obuf[0] != '\0';
}

// hiredis sends what callers have queued, and serves connections that do not block: it then has to
// send this command as well, behind what is queued.
bool SendsItself(const redisContext& ctx) noexcept {
  return !IsBlocking(ctx) || HasQueued(ctx);
}

// A lost connection shows when the replies are read.
void SendBehindQueued(redisContext& ctx, std::string_view bytes) noexcept {
  if (HasQueued(ctx)) {
    const BrokenPipeHold hold;
    for (int done = 0; done == 0 && redisBufferWrite(&ctx, &done) == REDIS_OK;) {}
  }
  if (ctx.err == 0) { (void)SendAll(ctx, bytes); }
}

Reply ReceiveReply(redisContext* ctx) noexcept {
  void* raw = nullptr;
  return Reply(redisGetReply(ctx, &raw) == REDIS_OK ? raw : nullptr);
}

Reply SendAndReceive(redisContext* ctx, std::string_view bytes) noexcept {
  return SendAll(*ctx, bytes) ? ReceiveReply(ctx) : Reply(nullptr);
}

}  // namespace

Reply Exchange(redisContext* ctx, const RequestWords& words) noexcept {
  if (ctx->err != 0) { return Reply(nullptr); }
  if (SendsItself(*ctx)) {
    const BrokenPipeHold hold;
    return Reply(redisCommandArgv(ctx, static_cast<int>(words.count),
                                  const_cast<const char**>(words.texts), words.lengths));
  }
  const EncodedRequest request(words);
  return request ? SendAndReceive(ctx, request.Bytes()) : Reply(nullptr);
}

Reply ExchangeFormatted(redisContext* ctx, const char* format, std::va_list arguments) noexcept {
  if (ctx->err != 0) { return Reply(nullptr); }  // hiredis would keep it queued for ever
  const BrokenPipeHold hold;
  return Reply(redisvCommand(ctx, format, arguments));
}

bool Queue(redisContext* ctx, const RequestWords& words) noexcept {
  return redisAppendCommandArgv(ctx, static_cast<int>(words.count),
                                const_cast<const char**>(words.texts), words.lengths) == REDIS_OK;
}

bool RequestBatch::Add(const RequestWords& words) noexcept {
  if (!IsBlocking(*ctx_)) { return Queue(ctx_, words); }
  const EncodedRequest request(words);
  if (!request) { return false; }
  const std::string_view bytes = request.Bytes();
  if (bytes.size() > kBufferSize - size_) { Send(); }
  if (bytes.size() > kBufferSize) {
    SendBehindQueued(*ctx_, bytes);
    return true;
  }
  CopyCounted(buffer_ + size_, bytes);
  size_ += bytes.size();
  return true;
}

void RequestBatch::Send() noexcept {
  SendBehindQueued(*ctx_, {buffer_, size_});
  size_ = 0;
}

Reply NextReply(redisContext* ctx) noexcept {
  if (!HasQueued(*ctx)) { return ReceiveReply(ctx); }  // of many replies only the first is sent for
  const BrokenPipeHold hold;
  return ReceiveReply(ctx);
}

}  // namespace zephlane
