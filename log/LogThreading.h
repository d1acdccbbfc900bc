// Thin wrappers over the POSIX thread, mutex and semaphore.
#pragma once

#include <pthread.h>
#include <semaphore.h>

#include <atomic>
#include <cstdint>

/// One mutex with default attributes: not recursive.
class LockHelper {
 public:
  LockHelper() noexcept;
  ~LockHelper();
  LockHelper(const LockHelper&) = delete;
  LockHelper& operator=(const LockHelper&) = delete;

  void lock() noexcept;
  void unLock() noexcept;

 private:
  pthread_mutex_t mutex_;
};

/// One unnamed semaphore. wait and post report false until it is created.
class SemHelper {
 public:
  SemHelper() noexcept = default;
  ~SemHelper();
  SemHelper(const SemHelper&) = delete;
  SemHelper& operator=(const SemHelper&) = delete;

  /// Creates it with this count, in place of the one there was. Nobody may be
  /// using the former one.
  bool create(unsigned initialCount) noexcept;
  /// Takes one from the count. Below 1 it waits without limit; otherwise it
  /// looks every 50 ms and gives up, with false, once the time is over.
  bool wait(std::int32_t timeoutMs) noexcept;
  /// Adds one to the count.
  bool post() noexcept;

 private:
  sem_t semaphore_{};
  bool created_ = false;
};

/// One joinable thread around run(). A derived class joins the thread in its
/// own destructor: when this one runs, run() has nothing left to stand on.
class ThreadHelper {
 public:
  ThreadHelper() noexcept = default;
  virtual ~ThreadHelper();
  ThreadHelper(const ThreadHelper&) = delete;
  ThreadHelper& operator=(const ThreadHelper&) = delete;

  /// The thread's work.
  virtual void run() noexcept = 0;

  /// Starts the thread with all but the fault signals blocked, so that a
  /// signal meant for the program reaches the threads that do its work. False
  /// when the system refuses or a former thread still works.
  bool startThread() noexcept;
  /// Whether a started thread has not come to the end of run() yet.
  [[nodiscard]] bool isWorking() const noexcept { return joinable_ && !finished_; }
  /// Waits for the thread's end; false when there is none.
  bool joinThread() noexcept;

 private:
  static void* enter(void* self) noexcept;

  pthread_t thread_{};
  bool joinable_ = false;
  std::atomic<bool> finished_;  // meant where there is a thread, whose start sets it
};

namespace velka {

/// Holds a LockHelper for a scope.
class ScopedLock {
 public:
  explicit ScopedLock(LockHelper& lock) noexcept : lock_(lock) { lock_.lock(); }
  ~ScopedLock() { lock_.unLock(); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  LockHelper& lock_;
};

}  // namespace velka
