// The object behind ILog4zManager: loggers, record pool, worker thread.
//
// Locks, in the order in which they may be taken:
//   lifecycle  start and stop, against each other
//   main       the loggers' files and the queue
//   settings   the loggers' settings, their keys, the configuration's path;
//              held for a few assignments only
// The record pool's own lock is innermost: nothing is locked under it, and of the
// others only lifecycle is ever held around it, when stop empties the pool.
// A logging statement is never made under a lock.
// So a setting is in force for the next line wherever it is changed, and the
// worker may itself re-read the configuration.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "LogConfig.h"
#include "LogData.h"
#include "LogThreading.h"
#include "LoggerInfo.h"
#include "PendingQueue.h"
#include "RecordPool.h"
#include "log4z.h"

namespace velka {
struct LogerManagerAccess;
}

/// One log manager; the program has one in ILog4zManager::getInstance().
class LogerManager : public ThreadHelper, public ILog4zManager {
 public:
  /// Logger 0 is there and enabled, with the program's name for its file ("velka"
  /// without memory for that). Nothing else here needs memory.
  LogerManager() noexcept;
  /// Ends the worker thread, if it runs, and frees files and records.
  ~LogerManager() override;

  /// The worker thread: lists the enabled loggers in the log, then serves the
  /// queue every 50 ms until it is stopped.
  void run() noexcept override;

  bool config(const char* path) noexcept override;
  bool configFromString(const char* text) noexcept override;
  std::int32_t createLogger(const char* key) noexcept override;
  bool start() noexcept override;
  bool stop() noexcept override;
  std::int32_t findLogger(const char* key) noexcept override;
  bool prePushLog(std::int32_t id, std::int32_t level) noexcept override;
  bool pushLog(LogData* data, const char* file, std::int32_t line) noexcept override;
  bool enableLogger(std::int32_t id, bool enable) noexcept override;
  bool setLoggerName(std::int32_t id, const char* name) noexcept override;
  bool setLoggerPath(std::int32_t id, const char* path) noexcept override;
  bool setLoggerLevel(std::int32_t id, std::int32_t level) noexcept override;
  bool setLoggerFileLine(std::int32_t id, bool enable) noexcept override;
  bool setLoggerDisplay(std::int32_t id, bool enable) noexcept override;
  bool setLoggerOutFile(std::int32_t id, bool enable) noexcept override;
  bool setLoggerLimitsize(std::int32_t id, std::uint32_t limitsize) noexcept override;
  bool setLoggerMonthdir(std::int32_t id, bool enable) noexcept override;
  bool setLoggerReserveTime(std::int32_t id, std::int64_t seconds) noexcept override;
  bool setAutoUpdate(std::int32_t seconds) noexcept override;
  bool updateConfig() noexcept override;
  bool isLoggerEnable(std::int32_t id) noexcept override;
  std::uint64_t getStatusTotalWriteCount() noexcept override;
  std::uint64_t getStatusTotalWriteBytes() noexcept override;
  std::uint64_t getStatusTotalPushQueue() noexcept override;
  std::uint64_t getStatusTotalPopQueue() noexcept override;
  std::uint32_t getStatusActiveLoggers() noexcept override;
  LogData* makeLogData(std::int32_t id, std::int32_t level) noexcept override;
  void freeLogData(LogData* data) noexcept override;

  /// Makes the file of the line's logger ready for it; the caller holds the
  /// main lock. False when the logger does not write the line, or when its file
  /// cannot be opened, which switches its file output off.
  bool openLogger(const LogData* data);
  /// The console echo: does nothing, because a filter's output channels belong
  /// to the scheduler.
  static void showColorText(const char* text, std::int32_t level) noexcept;

 private:
  friend struct velka::LogerManagerAccess;  // the tests' way in

  /// What decides about a line.
  struct LineRules {
    bool outfile;
    bool fileline;
  };
  using UnflushedWrites = std::array<std::uint32_t, LOGGER_MAX>;

  // log4z.cpp
  void logBanner();
  void serve();
  void autoUpdate(std::int64_t& lastCheck);

  // LogerManagerSettings.cpp
  [[nodiscard]] std::int32_t highestId() noexcept;
  [[nodiscard]] std::optional<velka::LoggerSettings> settingsOf(std::int32_t id);
  bool changeSetting(std::int32_t id, const velka::SettingChange& change) noexcept;
  bool changeNumber(std::int32_t id, velka::SettingCode code, std::int64_t number) noexcept;
  void applyConfig(const std::string& text, bool hot);
  /// Nothing for a key that no logger has; the caller holds the settings lock.
  [[nodiscard]] std::optional<std::int32_t> knownId(const std::string& key) const;
  std::int32_t idForKey(const std::string& key);

  // LogerManagerWriting.cpp
  /// Nothing when the logger does not accept lines of this level.
  [[nodiscard]] std::optional<LineRules> rulesFor(std::int32_t id, std::int32_t level) noexcept;
  void holdBack();
  bool acceptLine(LogData& data, const char* file, std::int32_t line);
  /// Writes an ended line; the caller holds the main lock.
  bool writeLine(const LogData& data, bool closeAfter);
  bool openFile(LoggerInfo& logger, const velka::LoggerSettings& settings, std::int64_t time);
  bool giveUpFile(LoggerInfo& logger, const std::string& fileName);
  bool drainOne(UnflushedWrites& unflushed);
  void handleRecord(const LogData& data, UnflushedWrites& unflushed);
  void tendFiles(UnflushedWrites& unflushed);
  void closeFiles() noexcept;

  std::atomic<bool> running_ = false;
  std::atomic<bool> quit_ = false;  // the worker of a failed start must not go on
  SemHelper startSignal_;
  std::atomic<std::int32_t> autoUpdateSeconds_ = 0;
  std::string configPath_;
  std::array<LoggerInfo, LOGGER_MAX> loggers_;
  std::map<std::string, std::int32_t> ids_;  // of all loggers but the main one
  std::int32_t highestId_ = 0;
  LockHelper lifecycleLock_;
  LockHelper mainLock_;
  LockHelper settingsLock_;
  velka::PendingQueue queue_;
  velka::RecordPool pool_;
  std::atomic<std::uint64_t> writeCount_ = 0;
  std::atomic<std::uint64_t> writeBytes_ = 0;
};
