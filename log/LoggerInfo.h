// The settings and the run-time state of one logger.
#pragma once

#include <cstdint>
#include <list>
#include <string>
#include <utility>

#include "LogData.h"
#include "LogFile.h"

namespace velka {

/// What can be configured. Guarded by the manager's settings lock.
struct LoggerSettings {
  std::string key;                       ///< name for findLogger and the configuration
  std::string name;                      ///< file name stem
  std::string path = "./log/";           ///< directory, ending in "/" (or "\")
  std::int32_t level = LOG_LEVEL_DEBUG;  ///< lowest level written
  bool display = true;                   ///< console echo, of which there is none
  bool outfile = true;                   ///< write to the file
  bool monthdir = false;                 ///< a subdirectory per month
  std::uint32_t limitsize = 100;         ///< size limit of one file, mebibytes
  bool enable = false;                   ///< in use
  bool fileline = true;                  ///< source file and line behind each line
  std::int64_t reserve = 0;              ///< seconds to keep former files; 0: no account
};

/// Files written so far, oldest first: time first seen and full name.
using FileHistory = std::list<std::pair<std::int64_t, std::string>>;

/// Codes of the setting changes, as in LogData::type.
enum class SettingCode : std::int32_t {
  None = 0,  ///< an ordinary log line
  Enable = 1,
  Name = 2,
  Path = 3,
  Level = 4,
  FileLine = 5,
  Display = 6,
  OutFile = 7,
  LimitSize = 8,
  MonthDir = 9,
  Reserve = 10,
};

/// One change: a text for name and path, else a number (a flag is 0 or not).
struct SettingChange {
  SettingCode code = SettingCode::None;
  std::int64_t number = 0;
  std::string text;
};

/// Applies one change. A negative reserve time becomes 0, a size limit is held
/// within 32 bits, an unknown code does nothing.
void applyChange(LoggerSettings& settings, const SettingChange& change);

/// `path` with a "/" behind it, unless it ends in "/" or "\".
[[nodiscard]] std::string withSeparator(std::string path);

}  // namespace velka

/// One logger. Everything below the settings is guarded by the manager's main
/// lock.
struct LoggerInfo : velka::LoggerSettings {
  std::int64_t fileTime = 0;       ///< creation time of the current file
  std::int64_t fileDay = 0;        ///< local midnight of that day
  std::uint32_t rollIndex = 0;     ///< rolls of that day
  std::uint32_t writtenBytes = 0;  ///< length of the current file
  Log4zFileHandler handle;
  velka::FileHistory history;
};
