// The text of a log line: header, source suffix and terminator.
//
// A line goes "2024-03-05 14:07:09.042 [12345] LOG_DEBUG message file.cpp:17"
// and CR LF. The header is written without printf: every line pays for it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <span>
#include <string_view>

#include "LogData.h"

namespace velka {

constexpr std::int64_t kSecondsPerDay = 86400;
/// A number is written only where more than this many bytes are left.
constexpr std::size_t kNumberRoom = 64;

/// A local date and the epoch time of the midnight it began at.
struct LocalDay {
  std::tm date{};
  std::int64_t midnight = 0;
};

/// The local date of `time`. A time beyond the calendar gives 1900-01-01 with
/// `time` itself as midnight.
[[nodiscard]] LocalDay localDayOf(std::int64_t time) noexcept;

/// Whether `time` lies within the 86400 seconds from `midnight` on. They count
/// as the day even where daylight saving makes it an hour longer or shorter.
[[nodiscard]] bool isWithinDay(std::int64_t time, std::int64_t midnight) noexcept;

/// localDayOf with the calling thread's last answer kept.
[[nodiscard]] const LocalDay& cachedLocalDay(std::int64_t time) noexcept;

/// `value` in decimal, zero-padded to `minDigits` (at most the scratch size),
/// never cut; lies at the end of `scratch`.
[[nodiscard]] std::string_view formatNumber(std::uint64_t value, std::size_t minDigits,
                                            std::span<char, kNumberRoom> scratch) noexcept;

/// The nine-character tag of a level; a level out of range has its neighbour's.
[[nodiscard]] std::string_view levelTag(std::int32_t level) noexcept;

/// The part behind the last "/" or "\".
[[nodiscard]] std::string_view baseName(std::string_view path) noexcept;

/// Fills `line` with the header made of its time, thread id and level.
void writeHeader(LogData& line, const LocalDay& day) noexcept;

/// Appends " file:number", each part as far as there is room for it.
void appendSource(LogData& line, std::string_view file, std::int32_t number) noexcept;

/// Ends the line with CR LF and a zero byte; a full line loses its last bytes.
void terminateLine(LogData& line) noexcept;

}  // namespace velka
