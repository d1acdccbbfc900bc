// Where the log files lie, and what becomes of former ones.
#pragma once

#include <cstdint>
#include <string>

#include "LogLine.h"
#include "LoggerInfo.h"

namespace velka {

/// Directory of a logger's file for a line of that day: its path and, with
/// month directories, "2024_03/" behind it.
[[nodiscard]] std::string directoryFor(const LoggerSettings& settings, const LocalDay& day);

/// Makes every directory along `path`, up to its last "/", that does not exist
/// (mode 0777 less the umask). What fails shows when the file is opened.
void createDirectories(const std::string& path);

/// Deletes the files at the front of the history that are older than `oldest`
/// and then adds (now, name) unless the last entry has that name already. A
/// history of less than two files is left alone.
void updateHistory(FileHistory& history, std::int64_t now, std::int64_t oldest,
                   const std::string& name);

/// Base name of the running program, or "velka" when it cannot be found out.
[[nodiscard]] std::string processName();

}  // namespace velka
