#include "RecordPool.h"

#include <cstring>

namespace velka {
namespace {

// A crash at the cause is preferred to a job that goes on without memory. It is a
// write through a null pointer, so that whoever looks for it finds a SIGSEGV: what is
// volatile the compiler can neither leave out nor turn into a trap.
[[noreturn]] __attribute__((no_sanitize("undefined"))) void crash() noexcept {
  volatile char* volatile nowhere = nullptr;
  *nowhere = 0;  // NOLINT(clang-analyzer-core.NullDereference): that is the point
  std::abort();
}

}  // namespace

LogData* RecordPool::takeIdle() noexcept {
  const ScopedLock hold(lock_);
  return count_ == 0 ? nullptr : idle_[--count_];
}

LogData* RecordPool::take() noexcept {
  if (LogData* const idle = takeIdle()) {
    return idle;
  }
  void* const block = allocate_(sizeof(LogData));
  if (block == nullptr) {
    crash();
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
    if (count_ < kMaxIdle) {
      idle_[count_++] = record;
      return;
    }
  }
  std::free(record);
}

void RecordPool::clear() noexcept {
  const ScopedLock hold(lock_);
  while (count_ > 0) {
    std::free(idle_[--count_]);
  }
}

std::size_t RecordPool::idle() noexcept {
  const ScopedLock hold(lock_);
  return count_;
}

}  // namespace velka
