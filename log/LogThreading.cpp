#include "LogThreading.h"

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>

LockHelper::LockHelper() noexcept {
  pthread_mutex_init(&mutex_, nullptr);
}

LockHelper::~LockHelper() {
  pthread_mutex_destroy(&mutex_);
}

void LockHelper::lock() noexcept {
  pthread_mutex_lock(&mutex_);
}

void LockHelper::unLock() noexcept {
  pthread_mutex_unlock(&mutex_);
}

SemHelper::~SemHelper() {
  if (created_) {
    sem_destroy(&semaphore_);
  }
}

bool SemHelper::create(unsigned initialCount) noexcept {
  if (created_) {
    sem_destroy(&semaphore_);
  }
  created_ = sem_init(&semaphore_, 0, initialCount) == 0;
  return created_;
}

bool SemHelper::wait(std::int32_t timeoutMs) noexcept {
  constexpr useconds_t kPollMicroseconds = 50000;
  using Clock = std::chrono::steady_clock;
  if (!created_) {
    return false;
  }
  if (timeoutMs < 1) {
    return sem_wait(&semaphore_) == 0;
  }
  const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
  do {
    usleep(kPollMicroseconds);
    if (sem_trywait(&semaphore_) == 0) {
      return true;
    }
    if (errno != EAGAIN) {
      return false;
    }
  } while (Clock::now() < deadline);
  return false;
}

bool SemHelper::post() noexcept {
  return created_ && sem_post(&semaphore_) == 0;
}

ThreadHelper::~ThreadHelper() {
  joinThread();
}

void* ThreadHelper::enter(void* self) noexcept {
  auto* const helper = static_cast<ThreadHelper*>(self);
  helper->run();
  helper->finished_ = true;
  return nullptr;
}

bool ThreadHelper::startThread() noexcept {
  if (isWorking()) {
    return false;
  }
  joinThread();
  sigset_t blocked;
  sigset_t former;
  sigfillset(&blocked);
  for (const int fault : {SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP}) {
    sigdelset(&blocked, fault);
  }
  finished_ = false;
  pthread_sigmask(SIG_SETMASK, &blocked, &former);
  joinable_ = pthread_create(&thread_, nullptr, &ThreadHelper::enter, this) == 0;
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
  return joinable_;
}

bool ThreadHelper::joinThread() noexcept {
  if (!joinable_) {
    return false;
  }
  joinable_ = false;
  return pthread_join(thread_, nullptr) == 0;
}
