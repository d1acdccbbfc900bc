// The worker thread and its life. Every statement that itself logs stands in
// this file: its lines carry the file's name.
#include "log4z.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <new>

#include "LogPath.h"
#include "NoThrow.h"

namespace {

constexpr std::int32_t kStartTimeoutMs = 3000;
constexpr useconds_t kServeMicroseconds = 50000;

std::int64_t secondsNow() noexcept {
  using std::chrono::steady_clock;
  const auto now = steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

}  // namespace

ILog4zManager* ILog4zManager::getInstance() noexcept {
  // Kept in static storage and never destroyed: the worker may be at work while
  // the process ends, and ending it there would cost each job 50 ms.
  alignas(LogerManager) static std::byte storage[sizeof(LogerManager)];
  static LogerManager* const instance = new (storage) LogerManager;
  return instance;
}

LogerManager::LogerManager() noexcept {
  LoggerInfo& main = loggers_[LOGGER_MAIN_ID];
  main.key = "Main";
  main.name = "velka";
  main.enable = true;
  velka::attempt([&main] { main.name = velka::processName(); });
}

LogerManager::~LogerManager() {
  quit_ = true;
  running_ = false;
  joinThread();
  while (LogData* const record = queue_.pop()) {
    std::free(record);
  }
}

bool LogerManager::start() noexcept {
  const velka::ScopedLock hold(lifecycleLock_);
  // A worker left over from a start that failed still holds the semaphore.
  if (running_ || isWorking()) {
    return false;
  }
  quit_ = false;
  if (!startSignal_.create(0) || !startThread()) {
    return false;
  }
  if (startSignal_.wait(kStartTimeoutMs)) {
    return true;
  }
  quit_ = true;
  running_ = false;
  return false;
}

bool LogerManager::stop() noexcept {
  const velka::ScopedLock hold(lifecycleLock_);
  if (!running_) {
    return false;
  }
  running_ = false;
  joinThread();
  pool_.clear();
  return true;
}

void LogerManager::run() noexcept {
  running_ = true;
  if (quit_) {
    running_ = false;
  }
  velka::attempt([this] { logBanner(); });
  startSignal_.post();
  serve();
  closeFiles();
}

void LogerManager::logBanner() {
  VELKA_LOG_AT(this, LOGGER_MAIN_ID, LOG_LEVEL_ALARM, "%s",
               "-----------------  log4z thread started!   ----------------------------");
  for (std::int32_t id = 0; id <= highestId(); ++id) {
    const std::optional<velka::LoggerSettings> logger = settingsOf(id);
    if (!logger || !logger->enable) {
      continue;
    }
    VELKA_LOG_AT(this, LOGGER_MAIN_ID, LOG_LEVEL_ALARM,
                 "logger id=%d key=%s name=%s path=%s level=%d display=%s", id, logger->key.c_str(),
                 logger->name.c_str(), logger->path.c_str(), logger->level,
                 logger->display ? "true" : "false");
  }
}

void LogerManager::serve() {
  UnflushedWrites unflushed{};
  std::int64_t lastCheck = secondsNow();
  for (;;) {
    while (drainOne(unflushed)) {
    }
    tendFiles(unflushed);
    usleep(kServeMicroseconds);
    if (!running_ && queue_.size() == 0) {
      return;
    }
    autoUpdate(lastCheck);
  }
}

void LogerManager::autoUpdate(std::int64_t& lastCheck) {
  const std::int64_t now = secondsNow();
  if (velka::isUpdateDue(now - lastCheck, autoUpdateSeconds_)) {
    updateConfig();
    lastCheck = now;
  }
}
