// The queue of records that wait for the worker thread, and the rule that
// slows the loggers down when it grows. Lines are written by the thread that
// logs them and never come here.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>

#include "LogData.h"

namespace velka {

/// push and pop need the manager's main lock; the numbers can be read without.
class PendingQueue {
 public:
  void push(LogData* record) {
    records_.push_back(record);
    size_ = records_.size();
    ++pushed_;
  }

  /// The oldest record, or null.
  LogData* pop() noexcept {
    if (records_.empty()) {
      return nullptr;
    }
    LogData* const record = records_.front();
    records_.pop_front();
    size_ = records_.size();
    ++popped_;
    return record;
  }

  [[nodiscard]] std::size_t size() const noexcept { return size_; }
  [[nodiscard]] std::uint64_t pushed() const noexcept { return pushed_; }
  [[nodiscard]] std::uint64_t popped() const noexcept { return popped_; }

 private:
  std::list<LogData*> records_;  // a deque would take memory while it is empty
  std::atomic<std::size_t> size_ = 0;
  std::atomic<std::uint64_t> pushed_ = 0;
  std::atomic<std::uint64_t> popped_ = 0;
};

/// Records that may wait before the loggers are slowed down.
constexpr std::size_t kQueueBound = 20000;

/// How far the queue is over its bound, in percent of the bound.
[[nodiscard]] constexpr std::size_t excessPercent(std::size_t pending) noexcept {
  return pending <= kQueueBound
             ? 0
             : (std::min(pending, 10 * kQueueBound) * 100 - 100 * kQueueBound) / kQueueBound;
}

enum class PushDelay { None, Sleep, SleepIfStillFull };

/// What to do at an excess of `percent`, with a draw of 0 ... 99: the fuller the
/// queue, the likelier a pause; a long pause only if the queue has not emptied.
[[nodiscard]] constexpr PushDelay delayFor(std::size_t percent, std::size_t draw) noexcept {
  if (percent <= 100) {
    if (percent <= draw) {
      return PushDelay::None;
    }
    if (percent <= 50) {
      return PushDelay::Sleep;
    }
  }
  return PushDelay::SleepIfStillFull;
}

/// Applies the rule for `pending` records. `random()` is asked for a number
/// only when the bound is passed and the excess at most 100 percent;
/// `recount()` gives the exact number of records; `sleep(ms)` pauses.
template <class Random, class Recount, class Sleep>
void applyBackPressure(std::size_t pending, Random random, Recount recount, Sleep sleep) {
  if (pending <= kQueueBound) {
    return;
  }
  const std::size_t percent = excessPercent(pending);
  const std::size_t draw = percent <= 100 ? static_cast<std::size_t>(random() % 100) : 0;
  const PushDelay delay = delayFor(percent, draw);
  if (delay == PushDelay::Sleep ||
      (delay == PushDelay::SleepIfStillFull && recount() > kQueueBound)) {
    sleep(std::min<std::size_t>(percent, 100));
  }
}

}  // namespace velka
