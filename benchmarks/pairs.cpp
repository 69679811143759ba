// SPDX-License-Identifier: MIT
#include "pairs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "commandRecord.h"
#include "results.h"

#include <zephlaneAPI.h>

namespace zephlane::bench {

namespace {

using Clock = std::chrono::steady_clock;

// One side of a pair: what it runs, and the seconds per call of each batch.
class Side {
 public:
  explicit Side(Step call) : call_(std::move(call)) {}
  double RunBatch(redisContext* ctx, const Pair& pair, std::size_t calls) {
    if (pair.prepare) { pair.prepare(ctx); }
    const auto start = Clock::now();
    for (std::size_t i = 0; i < calls; ++i) { call_(ctx); }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    batches_.push_back(seconds / static_cast<double>(calls));
    return seconds;
  }
  [[nodiscard]] double MedianSeconds() {
    return Quantile(batches_, 0.5);
  }

 private:
  Step call_;
  std::vector<double> batches_;
};

void ReplayOnOwnConnection(PreparedCommands* commands) {
  redisContext* ctx = zephlaneRedisConnect();
  commands->Replay(ctx);
  (void)zephlaneRedisDisconnect(ctx);
}

// A pair with the commands its library side sends, recorded before its first run.
class RunnablePair {
 public:
  explicit RunnablePair(Pair pair) : pair_(std::move(pair)) {}

  void Run(benchmark::State& state) {
    redisContext* ctx = SharedConnection();
    if (!commands_) { Record(ctx); }
    Side library(pair_.library);
    Side raw([this](redisContext* connection) { RunRaw(connection); });
    const std::size_t calls = CallsPerBatch();
    bool library_first = true;
    for (auto _ : state) {
      Side& first = library_first ? library : raw;
      Side& second = library_first ? raw : library;
      const double seconds = first.RunBatch(ctx, pair_, calls);
      state.SetIterationTime(seconds + second.RunBatch(ctx, pair_, calls));
      library_first = !library_first;
    }
    state.counters[kLibraryCounter] = library.MedianSeconds();
    state.counters[kRawCounter] = raw.MedianSeconds();
    state.counters[kCommandsCounter] = static_cast<double>(commands_->Count());
  }

 private:
  // Few commands in a row, so that both sides see the same moments. Where there is something to
  // prepare it is done for each call.
  [[nodiscard]] std::size_t CallsPerBatch() const {
    constexpr std::size_t kCommandsPerBatch = 16;
    const std::size_t calls = kCommandsPerBatch / std::max<std::size_t>(commands_->Count(), 1);
    return pair_.prepare ? 1 : std::max<std::size_t>(calls, 1);
  }
  void Record(redisContext* ctx) {
    // The first call may fill what is kept for later ones, such as a configured limit.
    for (int i = 0; i < 2; ++i) {
      if (pair_.prepare) { pair_.prepare(ctx); }
      commands_.emplace(RecordCommands([&] { pair_.library(ctx); }));
    }
  }
  void RunRaw(redisContext* ctx) {
    if (pair_.connects) {
      ReplayOnOwnConnection(&*commands_);
    } else if (pair_.pipelined) {
      commands_->ReplayPipelined(ctx);
    } else {
      commands_->Replay(ctx);
    }
  }

  Pair pair_;
  std::optional<PreparedCommands> commands_;
};

}  // namespace

redisContext* SharedConnection() {
  static redisContext* ctx = zephlaneRedisConnect();
  return ctx;
}

void AddPair(Pair pair) {
  Announce(pair.family, pair.function, pair.allowed);
  const std::string name = pair.family + "/" + pair.function;
  const bool runs_once = pair.connects;
  const auto runnable = std::make_shared<RunnablePair>(std::move(pair));
  auto* benchmark = benchmark::RegisterBenchmark(
      name.c_str(), [runnable](benchmark::State& state) { runnable->Run(state); });
  benchmark->UseManualTime()->Unit(benchmark::kMicrosecond);
  if (runs_once) { benchmark->Iterations(1); }
}

}  // namespace zephlane::bench
