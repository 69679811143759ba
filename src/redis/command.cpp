// SPDX-License-Identifier: MIT
//
// Commands as words: read out of a format, or gathered in a vector.
#include "redis/command.h"

#include <charconv>
#include <climits>
#include <cstdarg>
#include <cstring>

#include "support/text.h"

namespace zephlane {

namespace {

// The words of a printf-style command, borrowed where they stand: hiredis itself would copy them
// character by character. It knows the forms in use: a literal word, %s, %s with a literal behind
// it, %d and %u.
class FormattedWords {
 public:
  explicit FormattedWords(std::va_list arguments) noexcept {
    va_copy(arguments_, arguments);
  }
  FormattedWords(const FormattedWords&) = delete;
  FormattedWords& operator=(const FormattedWords&) = delete;
  ~FormattedWords() {
    va_end(arguments_);
  }
  // False for another form, for too many words, or when memory is out.
  [[nodiscard]] bool Take(std::string_view format) noexcept;
  [[nodiscard]] RequestWords Words() const noexcept {
    return {words_, lengths_, size_};
  }

 private:
  static constexpr std::size_t kMaximumWords = 6;

  [[nodiscard]] bool TakeWord(std::string_view word) noexcept;
  [[nodiscard]] bool Add(std::string_view word) noexcept;
  [[nodiscard]] bool AddJoined(std::string_view text, std::string_view literal) noexcept;
  template <typename Number>
  [[nodiscard]] bool AddNumber(Number number) noexcept;

  std::va_list arguments_;
  const char* words_[kMaximumWords];
  std::size_t lengths_[kMaximumWords];
  std::size_t size_ = 0;
  char numbers_[kMaximumWords][12];  // room for any 32-bit number
  CString joined_;
};

bool FormattedWords::Take(std::string_view format) noexcept {
  // By hand: it is done for each command, and a search for each word costs more than the words.
  const char* at = format.data();
  const char* const end = at + format.size();
  while (true) {
    while (at != end && *at == ' ') { ++at; }
    if (at == end) { return true; }
    const char* const begin = at;
    while (at != end && *at != ' ') { ++at; }
    if (!TakeWord({begin, static_cast<std::size_t>(at - begin)})) { return false; }
  }
}

bool FormattedWords::TakeWord(std::string_view word) noexcept {
  if (word.starts_with("%s")) {
    const char* text = va_arg(arguments_, const char*);
    return word.size() == 2 ? Add(text) : AddJoined(text, word.substr(2));
  }
  if (word == "%d") { return AddNumber(va_arg(arguments_, int)); }
  if (word == "%u") { return AddNumber(va_arg(arguments_, unsigned int)); }
  return word.find('%') == std::string_view::npos && Add(word);
}

bool FormattedWords::Add(std::string_view word) noexcept {
  if (size_ == kMaximumWords) { return false; }
  words_[size_] = word.data();
  lengths_[size_] = word.size();
  ++size_;
  return true;
}

bool FormattedWords::AddJoined(std::string_view text, std::string_view literal) noexcept {
  if (joined_) { return false; }  // one word of this form in a command
  const std::size_t length = text.size() + literal.size();
  joined_.reset(static_cast<char*>(std::malloc(length)));
  if (!joined_ || Contains(literal, "%")) { return false; }
  CopyCounted(joined_.get(), text);
  CopyCounted(joined_.get() + text.size(), literal);
  return Add({joined_.get(), length});
}

template <typename Number>
bool FormattedWords::AddNumber(Number number) noexcept {
  if (size_ == kMaximumWords) { return false; }
  char* digits = numbers_[size_];
  const auto end = std::to_chars(digits, digits + sizeof(numbers_[size_]), number).ptr;
  return Add({digits, static_cast<std::size_t>(end - digits)});
}

}  // namespace

Reply Command(redisContext* ctx, const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  FormattedWords words(arguments);
  va_end(arguments);
  return words.Take(format) ? Exchange(ctx, words.Words()) : Reply(nullptr);
}

Reply CommandOfText(redisContext* ctx, const char* text, ...) {
  std::va_list none;
  va_start(none, text);
  Reply reply = ExchangeFormatted(ctx, text, none);
  va_end(none);
  return reply;
}

namespace {

// Words of a command with a word and a key of its own; 0 when no command can have so many, so that
// not even the first word finds room.
std::size_t WordCount(std::size_t per_item, std::size_t count) noexcept {
  std::size_t words = 0;
  const bool overflow = __builtin_mul_overflow(per_item, count, &words) ||
                        __builtin_add_overflow(words, 2, &words) || words > INT_MAX;
  return overflow ? 0 : words;
}

}  // namespace

ArgumentVector::ArgumentVector(const char* word, const char* key, std::size_t per_item,
                               std::size_t count) noexcept
    : capacity_(WordCount(per_item, count)),
      words_(UnfilledArray<const char*>(capacity_)),
      lengths_(words_ ? UnfilledArray<std::size_t>(capacity_) : nullptr) {
  Add(word);
  Add(key);
}

void ArgumentVector::Add(const char* word) noexcept {
  if (!words_ || !lengths_ || word == nullptr || size_ == capacity_) {
    whole_ = false;
    return;
  }
  words_[size_] = word;
  lengths_[size_] = std::strlen(word);
  ++size_;
}

void ArgumentVector::AddAll(char* const* words, std::size_t count) noexcept {
  // Without room for them the items are not looked at: a count may be a negative one in disguise.
  for (std::size_t i = 0; whole_ && i < count; ++i) { Add(words[i]); }
}

void ArgumentVector::AddAll(const SetData* items, std::size_t count) noexcept {
  for (std::size_t i = 0; whole_ && i < count; ++i) { Add(items[i].aObjectID); }
}

Reply ArgumentVector::Send(redisContext* ctx) && noexcept {
  if (!*this) { return Reply(nullptr); }
  Reply reply = Exchange(ctx, {words_.get(), lengths_.get(), size_});
  words_.reset();
  lengths_.reset();
  return reply;
}

bool ArgumentVector::Append(redisContext* ctx) && noexcept {
  const bool queued = *this && Queue(ctx, {words_.get(), lengths_.get(), size_});
  words_.reset();
  lengths_.reset();
  return queued;
}

bool ArgumentVector::Append(RequestBatch* batch) && noexcept {
  return *this && batch->Add({words_.get(), lengths_.get(), size_});
}

}  // namespace zephlane
