// The log facility: levelled lines, written through to one file per logger.
//
// A line is opened, appended, synchronised and closed by the thread that logs
// it, so it is on disk when the logging call returns, whatever happens to the
// process afterwards. Logging before start() or after stop() is dropped.
#pragma once

#include <cstdint>

#include "LogData.h"

/// The log manager as the rest of the program sees it. All operations may be
/// called from any thread, accept null pointers and bad ids (they then report
/// false, 0 or -1) and never throw. Ids are 0 ... highest id in use.
class ILog4zManager {
 public:
  /// The one manager of the process, made on first use and never destroyed:
  /// nothing is pending at the end of the process, every line is on disk.
  static ILog4zManager* getInstance() noexcept;

  ILog4zManager() = default;
  ILog4zManager(const ILog4zManager&) = delete;
  ILog4zManager& operator=(const ILog4zManager&) = delete;
  virtual ~ILog4zManager() = default;

  // The order of the virtual operations is part of the interface.

  /// Reads the configuration file at `path` (grammar: LogConfig.h) and applies
  /// it. Allowed once; false when a path is set already or the file cannot be
  /// read (not a regular file, above 1 MiB), which changes nothing.
  virtual bool config(const char* path) noexcept = 0;
  /// Applies a configuration text held in memory; false for null.
  virtual bool configFromString(const char* text) noexcept = 0;
  /// Id of the logger with this key, made if there is none yet. A new logger
  /// is named after its key and disabled. -1: null or empty key, or 20 in use.
  virtual std::int32_t createLogger(const char* key) noexcept = 0;
  /// Starts the worker thread and waits up to 3 s for its sign of life. False
  /// when running already, or when the thread cannot be made or stays silent
  /// (logging is then off).
  virtual bool start() noexcept = 0;
  /// Ends the worker thread and frees the idle records; false unless running.
  virtual bool stop() noexcept = 0;
  /// Id of the logger with this key, or -1.
  virtual std::int32_t findLogger(const char* key) noexcept = 0;
  /// First step of a logging statement: whether a line of this level would be
  /// written. Sleeps up to 100 ms while the queue of pending records is over
  /// its bound.
  virtual bool prePushLog(std::int32_t id, std::int32_t level) noexcept = 0;
  /// Last step: ends the line with " file:line" (unless `file` is null or the
  /// logger's suffix is off) and CR LF, writes it through to the disk and takes
  /// the record back. Returns whether the logger accepted the line.
  virtual bool pushLog(LogData* data, const char* file, std::int32_t line) noexcept = 0;

  /// Settings of one logger, in force at once; false for a bad id.
  virtual bool enableLogger(std::int32_t id, bool enable) noexcept = 0;
  /// File name stem. False for null or 8192 bytes and more; empty: no change.
  virtual bool setLoggerName(std::int32_t id, const char* name) noexcept = 0;
  /// Directory; gets a "/" behind it unless it ends in "/" or "\". False for
  /// null or, with that, 8192 bytes and more; empty: no change.
  virtual bool setLoggerPath(std::int32_t id, const char* path) noexcept = 0;
  virtual bool setLoggerLevel(std::int32_t id, std::int32_t level) noexcept = 0;
  /// Whether lines carry the source file and line.
  virtual bool setLoggerFileLine(std::int32_t id, bool enable) noexcept = 0;
  /// Kept for display only: there is no console echo.
  virtual bool setLoggerDisplay(std::int32_t id, bool enable) noexcept = 0;
  /// Whether lines go to the file at all.
  virtual bool setLoggerOutFile(std::int32_t id, bool enable) noexcept = 0;
  /// Size limit of one file, in mebibytes.
  virtual bool setLoggerLimitsize(std::int32_t id, std::uint32_t limitsize) noexcept = 0;
  /// Whether files go into a subdirectory per month.
  virtual bool setLoggerMonthdir(std::int32_t id, bool enable) noexcept = 0;
  /// Seconds for which former files are kept; 0 keeps no account of them, a
  /// negative value counts as 0.
  virtual bool setLoggerReserveTime(std::int32_t id, std::int64_t seconds) noexcept = 0;
  /// Seconds after which the worker re-reads the configuration file; 0: never.
  /// Always true.
  virtual bool setAutoUpdate(std::int32_t seconds) noexcept = 0;
  /// Re-reads the configuration file and applies it as changes of settings.
  /// False when no path is set or the file cannot be read.
  virtual bool updateConfig() noexcept = 0;
  virtual bool isLoggerEnable(std::int32_t id) noexcept = 0;
  /// Lines and bytes written, records put into and taken from the queue.
  virtual std::uint64_t getStatusTotalWriteCount() noexcept = 0;
  virtual std::uint64_t getStatusTotalWriteBytes() noexcept = 0;
  virtual std::uint64_t getStatusTotalPushQueue() noexcept = 0;
  virtual std::uint64_t getStatusTotalPopQueue() noexcept = 0;
  /// Number of enabled loggers.
  virtual std::uint32_t getStatusActiveLoggers() noexcept = 0;
  /// Second step: a record whose content holds the line header already. The
  /// caller owns it until pushLog or freeLogData. Never null: the process is
  /// ended on purpose when there is no memory for it.
  virtual LogData* makeLogData(std::int32_t id, std::int32_t level) noexcept = 0;
  /// Takes a record back unwritten.
  virtual void freeLogData(LogData* data) noexcept = 0;
};

namespace velka {

/// Third step: appends the printf-formatted message behind what `line` holds,
/// cut at the end of its content. A format error appends nothing.
__attribute__((format(printf, 2, 3))) void appendMessage(LogData& line, const char* format,
                                                         ...) noexcept;

}  // namespace velka

/// One logging statement on `manager` (evaluated for each step). A macro, for
/// two reasons: it takes the file and line of the statement, and the message's
/// arguments are not evaluated unless the line will be written.
#define VELKA_LOG_AT(manager, id, level, ...)                           \
  do {                                                                  \
    if ((manager)->prePushLog((id), (level))) {                         \
      LogData* const velkaLine = (manager)->makeLogData((id), (level)); \
      velka::appendMessage(*velkaLine, __VA_ARGS__);                    \
      (manager)->pushLog(velkaLine, __FILE__, __LINE__);                \
    }                                                                   \
  } while (false)

/// VELKA_LOG_DEBUG(format, ...): a debug line on the main logger.
#define VELKA_LOG_DEBUG(...) \
  VELKA_LOG_AT(ILog4zManager::getInstance(), LOGGER_MAIN_ID, LOG_LEVEL_DEBUG, __VA_ARGS__)

#include "LogerManager.h"
