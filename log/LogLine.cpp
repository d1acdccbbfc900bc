#include "LogLine.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <optional>

#include "log4z.h"

namespace velka {
namespace {

using DigitPairs = std::array<char, 200>;

// "00" to "99", one behind the other.
constexpr DigitPairs kDigitPairs = [] {
  DigitPairs pairs{};
  for (std::size_t i = 0; i < 100; ++i) {
    pairs[2 * i] = static_cast<char>('0' + i / 10);
    pairs[2 * i + 1] = static_cast<char>('0' + i % 10);
  }
  return pairs;
}();
static_assert(kDigitPairs[14] == '0' && kDigitPairs[15] == '7' && kDigitPairs[199] == '9');

constexpr std::size_t kLevels = 7;
constexpr std::array<const char*, kLevels> kTags = {
    "LOG_TRACE",  //
    "LOG_DEBUG",  //
    "LOG_INFO ",  //
    "LOG_WARN ",  //
    "LOG_ERROR",  //
    "LOG_ALARM",  //
    "LOG_FATAL",  //
};
constexpr std::array<std::size_t, kLevels> kTagLengths = {9, 9, 9, 9, 9, 9, 9};

constexpr std::size_t kContentSize = LOG_CONTENT_SIZE;

std::size_t usedBytes(const LogData& line) noexcept {
  return static_cast<std::size_t>(std::clamp(line.contentLen, 0, LOG_CONTENT_SIZE));
}

std::uint64_t nonNegative(std::int64_t value) noexcept {
  return static_cast<std::uint64_t>(std::max<std::int64_t>(value, 0));
}

/// Appends to a line for as long as there is room.
class LineWriter {
 public:
  explicit LineWriter(LogData& line) noexcept : line_(line), used_(usedBytes(line)) {}
  ~LineWriter() { line_.contentLen = static_cast<std::int32_t>(used_); }
  LineWriter(const LineWriter&) = delete;
  LineWriter& operator=(const LineWriter&) = delete;

  void character(char c) noexcept {
    if (room() > 1) {
      line_.content[used_++] = c;
    }
  }

  void text(std::string_view text) noexcept {
    const std::size_t count = std::min(text.size(), room());
    std::copy_n(text.data(), count, line_.content + used_);
    used_ += count;
  }

  void number(std::uint64_t value, std::size_t minDigits) noexcept {
    if (room() > kNumberRoom) {
      std::array<char, kNumberRoom> scratch;
      text(formatNumber(value, minDigits, scratch));
    }
  }

 private:
  [[nodiscard]] std::size_t room() const noexcept { return kContentSize - used_; }

  LogData& line_;
  std::size_t used_;
};

void writeDate(LineWriter& out, const std::tm& date) noexcept {
  out.number(nonNegative(std::int64_t{date.tm_year} + 1900), 4);
  out.character('-');
  out.number(nonNegative(std::int64_t{date.tm_mon} + 1), 2);
  out.character('-');
  out.number(nonNegative(date.tm_mday), 2);
}

void writeTimeOfDay(LineWriter& out, std::uint64_t seconds, std::uint32_t milliseconds) noexcept {
  out.number(seconds / 3600, 2);
  out.character(':');
  out.number(seconds % 3600 / 60, 2);
  out.character(':');
  out.number(seconds % 60, 2);
  out.character('.');
  out.number(milliseconds, 3);
}

}  // namespace

LocalDay localDayOf(std::int64_t time) noexcept {
  LocalDay day;
  const std::time_t seconds = time;
  if (localtime_r(&seconds, &day.date) == nullptr) {
    day.date = {};
    day.date.tm_mday = 1;
    day.midnight = time;
    return day;
  }
  // On a copy: where midnight falls into a change of the clock, mktime may move
  // the date it is given. The daylight-saving flag stays that of `time`.
  std::tm midnight = day.date;
  midnight.tm_hour = 0;
  midnight.tm_min = 0;
  midnight.tm_sec = 0;
  day.midnight = std::mktime(&midnight);
  return day;
}

bool isWithinDay(std::int64_t time, std::int64_t midnight) noexcept {
  const std::uint64_t passed =
      static_cast<std::uint64_t>(time) - static_cast<std::uint64_t>(midnight);
  return time >= midnight && passed < static_cast<std::uint64_t>(kSecondsPerDay);
}

const LocalDay& cachedLocalDay(std::int64_t time) noexcept {
  thread_local std::optional<LocalDay> cached;
  if (!cached || !isWithinDay(time, cached->midnight)) {
    cached = localDayOf(time);
  }
  return *cached;
}

std::string_view formatNumber(std::uint64_t value, std::size_t minDigits,
                              std::span<char, kNumberRoom> scratch) noexcept {
  std::size_t first = scratch.size();
  do {
    const std::size_t pair = 2 * static_cast<std::size_t>(value % 100);
    value /= 100;
    scratch[--first] = kDigitPairs[pair + 1];
    scratch[--first] = kDigitPairs[pair];
  } while (value != 0);
  if (scratch[first] == '0') {
    ++first;
  }
  while (first > 0 && scratch.size() - first < minDigits) {
    scratch[--first] = '0';
  }
  return {scratch.data() + first, scratch.size() - first};
}

std::string_view levelTag(std::int32_t level) noexcept {
  const auto index = static_cast<std::size_t>(std::clamp(level, LOG_LEVEL_TRACE, LOG_LEVEL_FATAL));
  return {kTags[index], kTagLengths[index]};
}

std::string_view baseName(std::string_view path) noexcept {
  const std::size_t separator = path.find_last_of("/\\");
  return separator == std::string_view::npos ? path : path.substr(separator + 1);
}

void writeHeader(LogData& line, const LocalDay& day) noexcept {
  line.contentLen = 0;
  LineWriter out(line);
  writeDate(out, day.date);
  out.character(' ');
  // A day of 25 hours ends at hour 24, one of 23 an hour early.
  writeTimeOfDay(out, nonNegative(line.time - day.midnight), line.milliseconds);
  out.text(" [");
  out.number(line.threadId, 4);
  out.text("] ");
  out.text(levelTag(line.level));
  out.character(' ');
}

void appendSource(LogData& line, std::string_view file, std::int32_t number) noexcept {
  LineWriter out(line);
  out.character(' ');
  out.text(baseName(file));
  out.character(':');
  if (number < 0) {
    out.character('-');
  }
  const std::int64_t wide = number;
  out.number(static_cast<std::uint64_t>(wide < 0 ? -wide : wide), 1);
}

void terminateLine(LogData& line) noexcept {
  const std::size_t end = std::min(usedBytes(line), kContentSize - 3);
  std::memcpy(line.content + end, "\r\n", 3);
  line.contentLen = static_cast<std::int32_t>(end + 2);
}

void appendMessage(LogData& line, const char* format, ...) noexcept {
  const std::size_t used = usedBytes(line);
  const std::size_t room = kContentSize - used;
  std::va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(line.content + used, room, format, arguments);
  va_end(arguments);
  const auto wanted = static_cast<std::size_t>(std::max(length, 0));
  line.contentLen = static_cast<std::int32_t>(used + std::min(wanted, room));
}

}  // namespace velka
