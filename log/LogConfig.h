// The configuration text of the loggers.
//
// Lines, trimmed of blanks, tabs and line ends at both sides:
//   [key]        starts the section of the logger with that key; "Main" or
//                "main" is the main logger, any other key makes a logger
//   path=DIR     directory of the file; a "/" is added where missing
//   name=STEM    file name without ".log"
//   level=NAME   trace, debug, info, warn, warning, error, alarm, fatal; all
//                means trace
//   display=, outfile=, monthdir=, fileline=, enable=   "false" or "0" is
//                false, everything else true
//   limitsize=N  mebibytes
//   reserve=N    seconds
// Keys and values are read without regard to case, except that section keys,
// directories and names are kept as they are. Blanks around "=" and inside the
// brackets do not count. Passed over: lines that start with "#" or ";", lines
// without "=", unknown keys, unknown levels, an empty path or name, numbers
// with anything but digits and a minus sign or beyond 64 bits, a negative
// limitsize, and all lines outside a section or below a broken or empty section
// line. A byte order mark in front of the text is skipped. A limitsize beyond 32 bits is the
// largest there is; a negative reserve is 0. When a key is given twice the later one wins.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "LoggerInfo.h"

namespace velka {

struct ConfigSection {
  std::string key;
  std::vector<SettingChange> changes;
};

/// Whether a configuration last looked at `passed` seconds ago is due again:
/// after more than `interval` seconds, and never with an interval of 0.
[[nodiscard]] constexpr bool isUpdateDue(std::int64_t passed, std::int32_t interval) noexcept {
  return interval != 0 && passed > interval;
}

/// The sections of a text, in order; a section may come again.
[[nodiscard]] std::vector<ConfigSection> parseConfig(std::string_view text);

}  // namespace velka
