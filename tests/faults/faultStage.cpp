// SPDX-License-Identifier: MIT
#include "faults/faultStage.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>

#include "support/store.h"

#include <zephlaneAPI.h>

extern "C" {
int __lsan_do_recoverable_leak_check() __attribute__((weak));
void __sanitizer_set_report_fd(void* fd) __attribute__((weak));
}

namespace zephlane::test {

namespace {

// One round trip for the whole store.
constexpr char kContentScript[] = R"(
local text = ''
local keys = redis.call('KEYS', '*')
table.sort(keys)
for _, key in ipairs(keys) do
  if key ~= 'autoUUID' and key ~= 'autoEventID' then
    local kind = redis.call('TYPE', key).ok
    local lines = {}
    if kind == 'hash' then
      local flat = redis.call('HGETALL', key)
      for i = 1, #flat, 2 do lines[#lines + 1] = flat[i] .. ' = ' .. flat[i + 1] end
      table.sort(lines)
    elseif kind == 'set' then
      lines = redis.call('SMEMBERS', key)
      table.sort(lines)
    elseif kind == 'list' then
      lines = redis.call('LRANGE', key, 0, -1)
    else
      lines = { redis.call('GET', key) }
    end
    local lifetime = redis.call('TTL', key) >= 0 and ' (expires)' or ''
    text = text .. kind .. ' ' .. key .. lifetime .. '\n  ' .. table.concat(lines, '\n  ') .. '\n'
  end
end
return text
)";

struct NamedLock {
  const char* name;
  pthread_mutex_t& mutex;
};

const NamedLock locks[] = {{"UUID lock", zephlaneAutoGenerateUUIDLock},
                           {"event ID lock", zephlaneAutoGenerateEventIDLock},
                           {"hook lock", zephlaneHookFuncInitLock},
                           {"OEM hook lock", zephlaneOemHookFuncInitLock},
                           {"queue lock", updateMsgQueueLock}};

}  // namespace

FaultStage::FaultStage() : stage_{ConnectToStore(), ConnectToStore()} {
  // What a sanitizer has to say must be seen, also while the output of a call is caught.
  static const std::intptr_t errors = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 3);
  if (__sanitizer_set_report_fd) { __sanitizer_set_report_fd(reinterpret_cast<void*>(errors)); }
}

FaultStage::~FaultStage() {
  redisFree(stage_.ctx);
  redisFree(stage_.store);
}

bool FaultStage::AnswersRight() {
  return Ask(stage_.ctx, {"ECHO", "right answer"}) == "right answer";
}

std::string FaultStage::Content() {
  return Ask(stage_.store, {"EVAL", kContentScript, "0"});
}

std::string HeldLocks() {
  std::string held;
  for (const NamedLock& lock : locks) {
    if (pthread_mutex_trylock(&lock.mutex) != 0) {
      held += std::string(lock.name) + " ";
    } else {
      (void)pthread_mutex_unlock(&lock.mutex);
    }
  }
  return held;
}

long OpenDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator{});
}

bool HasLeaks() {
  return __lsan_do_recoverable_leak_check != nullptr && __lsan_do_recoverable_leak_check() != 0;
}

std::string Described(const Outcome& outcome) {
  constexpr const char* kNames[] = {"success", "other content", "failure", "undocumented"};
  return std::string(kNames[static_cast<int>(outcome.result)]) + " " + outcome.remark;
}

std::vector<FunctionFamily> FaultFamilies() {
  std::vector<FunctionFamily> families;
  for (const FunctionFamily& family : EveryFunction()) {
    const auto run =
        std::find_if(family.cases.begin(), family.cases.end(), [](const auto& function) {
          return std::string_view(function.name) == "zephlaneSchemaInterpreter";
        });
    families.push_back({family.name, {family.cases.begin(), run}});
    if (run != family.cases.end()) { families.push_back({"driver", {run, family.cases.end()}}); }
  }
  return families;
}

std::string FamilyName(const testing::TestParamInfo<FunctionFamily>& info) {
  return std::string(info.param.name);
}

}  // namespace zephlane::test
