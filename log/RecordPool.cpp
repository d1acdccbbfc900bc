#include "RecordPool.h"

#include <cstring>

namespace velka {

// The room is taken once, so that giving a record back cannot fail.
RecordPool::RecordPool(Allocate allocate) : allocate_(allocate) {
  idle_.reserve(kMaxIdle);
}

LogData* RecordPool::takeIdle() noexcept {
  const ScopedLock hold(lock_);
  if (idle_.empty()) {
    return nullptr;
  }
  LogData* const record = idle_.back();
  idle_.pop_back();
  return record;
}

LogData* RecordPool::take() noexcept {
  if (LogData* const idle = takeIdle()) {
    return idle;
  }
  void* const block = allocate_(sizeof(LogData));
  if (block == nullptr) {
    // A crash at the cause is preferred to a job that goes on without memory.
    __builtin_trap();
  }
  std::memset(block, 0, offsetof(LogData, content));
  return static_cast<LogData*>(block);
}

void RecordPool::giveBack(LogData* record) noexcept {
  if (record == nullptr) {
    return;
  }
  {
    const ScopedLock hold(lock_);
    if (idle_.size() < kMaxIdle) {
      idle_.push_back(record);
      return;
    }
  }
  std::free(record);
}

void RecordPool::clear() noexcept {
  const ScopedLock hold(lock_);
  for (LogData* const record : idle_) {
    std::free(record);
  }
  idle_.clear();
}

std::size_t RecordPool::idle() noexcept {
  const ScopedLock hold(lock_);
  return idle_.size();
}

}  // namespace velka
