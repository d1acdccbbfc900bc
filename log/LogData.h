// The record that carries one log line, and the levels and limits around it.
#pragma once

#include <cstddef>
#include <cstdint>

/// Levels of a log line, lowest first; a logger writes its own level and above.
constexpr std::int32_t LOG_LEVEL_TRACE = 0;
constexpr std::int32_t LOG_LEVEL_DEBUG = 1;
constexpr std::int32_t LOG_LEVEL_INFO = 2;
constexpr std::int32_t LOG_LEVEL_WARN = 3;
constexpr std::int32_t LOG_LEVEL_ERROR = 4;
constexpr std::int32_t LOG_LEVEL_ALARM = 5;
constexpr std::int32_t LOG_LEVEL_FATAL = 6;

/// Number of loggers; ids run from 0 to LOGGER_MAX - 1.
constexpr std::int32_t LOGGER_MAX = 20;
/// The main logger, key "Main", which exists and is enabled from the start.
constexpr std::int32_t LOGGER_MAIN_ID = 0;
/// Bytes of text in one record, terminator included.
constexpr std::int32_t LOG_CONTENT_SIZE = 8192;

/// One log line on its way to the file, or one queued change of a setting.
/// Comes from ILog4zManager::makeLogData as one malloc block and goes back
/// through pushLog or freeLogData.
struct LogData {
  std::int32_t loggerId;       ///< logger the line goes to
  std::int32_t type;           ///< 0: log line; else the code of a setting change
  std::int32_t typeValue;      ///< integer argument of a setting change
  std::int32_t level;          ///< LOG_LEVEL_...
  std::int64_t time;           ///< seconds since the epoch when the record was made
  std::uint32_t milliseconds;  ///< millisecond part of that time
  std::uint32_t threadId;      ///< kernel thread id of the logging thread
  std::int32_t contentLen;     ///< bytes used in content, header included, terminator excluded
  char content[LOG_CONTENT_SIZE];
};

static_assert(offsetof(LogData, time) == 16);
static_assert(offsetof(LogData, contentLen) == 32);
static_assert(offsetof(LogData, content) == 36);
