// SPDX-License-Identifier: MIT
#include "complaints.h"

#include <fcntl.h>
#include <regex.h>
#include <unistd.h>

#include <memory>

#include <fmt/format.h>

#include "heapText.h"
#include "plainText.h"
#include "storeObject.h"
#include "treeWords.h"

namespace zephlane::tool {

namespace {

// Drops what the library prints.
class Hush {
 public:
  explicit Hush(Console& console) : console_(console) {
    const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
    console_.DivertPrinting(nothing);
    (void)close(nothing);
  }
  Hush(const Hush&) = delete;
  Hush& operator=(const Hush&) = delete;
  ~Hush() {
    console_.TakeBackPrinting();
  }

 private:
  Console& console_;
};

// Properties that the definition does not name.
std::vector<std::string> FindUnknown(redisContext* ctx, const std::string& key,
                                     const std::string& type) {
  UnknownProperty* first = nullptr;
  UnknownProperty* last = nullptr;
  (void)validateProperties(ctx, key.c_str(), type.c_str(), &first, &last);
  std::vector<std::string> names;
  std::unique_ptr<UnknownProperty, Free> property(first);
  while (property) {
    names.emplace_back(property->aName);
    property.reset(property->next);
  }
  return names;
}

std::string PatternReason(redisContext* ctx, const std::string& type) {
  const std::string id = ReadField(ctx, type, "patternProperties");
  if (id.empty()) { return "there is no pattern that it could match"; }
  const std::vector<Pair> patterns = ReadObject(ctx, id, KindOf(ctx, id));
  if (patterns.size() != 1) {
    return fmt::format("there are {} patterns, of which none is used", patterns.size());
  }
  const std::string& pattern = patterns.front().name;
  regex_t compiled;
  if (regcomp(&compiled, pattern.c_str(), REG_EXTENDED | REG_NOSUB) != 0) {
    return fmt::format("the pattern {} is no regular expression", Printable(pattern));
  }
  regfree(&compiled);
  return fmt::format("it does not match the pattern {}", Printable(pattern));
}

std::string AcceptedValues(const std::string& type) {
  const auto contains = [&type](const char* name) { return type.find(name) != std::string::npos; };
  std::string accepted;
  const auto add = [&accepted](const char* text) {
    accepted += (accepted.empty() ? "" : " or ") + std::string(text);
  };
  if (contains("string")) { add("printable ASCII without blanks"); }
  if (contains("number") || contains("integer")) { add("digits only"); }
  if (contains("boolean")) { add("true or false"); }
  return accepted.empty() ? "nothing" : accepted;
}

std::string AdditionalReason(redisContext* ctx, const std::string& key, const std::string& type,
                             const std::string& property) {
  const std::string allowed = ReadField(ctx, type, "additionalProperties");
  if (allowed.empty()) { return "the definition does not say that it allows additional ones"; }
  if (allowed == "false") { return "additional properties are not allowed"; }
  const std::string wanted = ReadField(ctx, allowed, "type");
  if (wanted.empty()) { return "the type of additional properties cannot be read"; }
  const std::string value = ReadField(ctx, key, property.c_str());
  if (value.empty()) { return "as an additional property it needs a value"; }
  return fmt::format("its value {} is not of the type of additional properties, {} ({})",
                     Printable(value), Printable(SchemaTypeText(wanted)), AcceptedValues(wanted));
}

bool IsAccepted(redisContext* ctx, const std::string& key, const std::string& type,
                const std::string& property) {
  return validatePatternProperties(ctx, type.c_str(), property.c_str()) == 0 ||
         validateAdditionalProperties(ctx, key.c_str(), type.c_str(), property.c_str()) == 0;
}

void AddMissing(redisContext* ctx, const std::string& key, const std::string& type,
                std::vector<Complaint>& complaints) {
  const std::string required = ReadField(ctx, type, "required");
  for (const Pair& member : ReadObject(ctx, required, KindOf(ctx, required))) {
    if (ReadField(ctx, key, member.value.c_str()).empty()) {
      complaints.push_back({member.value, "required, but missing or empty"});
    }
  }
}

}  // namespace

std::vector<Complaint> FindComplaints(Console& console, redisContext* ctx, const std::string& key,
                                      const std::string& type) {
  const Hush hush(console);
  std::vector<Complaint> complaints;
  AddMissing(ctx, key, type, complaints);
  for (const std::string& property : FindUnknown(ctx, key, type)) {
    if (IsAccepted(ctx, key, type, property)) { continue; }
    complaints.push_back({property, fmt::format("not defined; {}; {}", PatternReason(ctx, type),
                                                AdditionalReason(ctx, key, type, property))});
  }
  return complaints;
}

}  // namespace zephlane::tool
