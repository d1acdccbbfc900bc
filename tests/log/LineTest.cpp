// The text of a line: numbers, header, suffix, terminator.
#include <array>
#include <cstdio>
#include <random>
#include <thread>

#include "LogLine.h"
#include "LogTestSupport.h"

using logtest::blankLine;
using logtest::contentOf;
using logtest::ZoneScope;
using velka::cachedLocalDay;
using velka::localDayOf;

namespace {

std::string number(std::uint64_t value, std::size_t digits) {
  std::array<char, velka::kNumberRoom> scratch{};
  return std::string(velka::formatNumber(value, digits, scratch));
}

std::string header(std::int64_t time, std::uint32_t ms, std::uint32_t thread, std::int32_t level,
                   const velka::LocalDay& day) {
  const auto line = blankLine();
  line->time = time;
  line->milliseconds = ms;
  line->threadId = thread;
  line->level = level;
  velka::writeHeader(*line, day);
  return std::string(contentOf(*line));
}

std::string header(std::int64_t time, std::uint32_t ms, std::uint32_t thread, std::int32_t level) {
  return header(time, ms, thread, level, localDayOf(time));
}

// The header written with printf, for ordinary days.
std::string plainHeader(std::int64_t time, std::uint32_t ms, std::uint32_t thread,
                        const char* tag) {
  const std::time_t seconds = time;
  std::tm date{};
  localtime_r(&seconds, &date);
  std::array<char, 128> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d.%03u [%04u] %s ",
                date.tm_year + 1900, date.tm_mon + 1, date.tm_mday, date.tm_hour, date.tm_min,
                date.tm_sec, ms, thread, tag);
  return text.data();
}

std::string lineWith(std::size_t length, char filler, std::string_view file, std::int32_t number) {
  const auto line = blankLine();
  std::memset(line->content, filler, sizeof line->content);
  line->contentLen = static_cast<std::int32_t>(length);
  velka::appendSource(*line, file, number);
  return std::string(contentOf(*line)).substr(length);
}

constexpr std::int64_t kHour = 3600;
constexpr std::int64_t kMarch5 = 1709647629;  // 2024-03-05 14:07:09 UTC

}  // namespace

TEST(LogNumber, IsPaddedToItsWidthAndNeverCut) {
  EXPECT_EQ(number(0, 1), "0");
  EXPECT_EQ(number(0, 2), "00");
  EXPECT_EQ(number(7, 2), "07");
  EXPECT_EQ(number(77, 4), "0077");
  EXPECT_EQ(number(100, 2), "100");
  EXPECT_EQ(number(12345, 4), "12345");
  EXPECT_EQ(number(18446744073709551615U, 3), "18446744073709551615");
}

TEST(LogNumber, AgreesWithPrintfForEveryWidth) {
  std::mt19937_64 random(5);
  for (int i = 0; i < 20000; ++i) {
    const std::uint64_t value = random() >> (random() % 64);
    const int digits = static_cast<int>(random() % 24);
    std::array<char, 64> expected{};
    std::snprintf(expected.data(), expected.size(), "%0*llu", digits,
                  static_cast<unsigned long long>(value));
    ASSERT_EQ(number(value, static_cast<std::size_t>(digits)), expected.data());
  }
}

TEST(LogNumber, WidthBeyondTheScratchFillsItWithZeros) {
  EXPECT_EQ(number(3, 500), std::string(63, '0') + "3");
}

TEST(LogHeader, HasDateTimeThreadAndTag) {
  const ZoneScope zone("UTC");
  EXPECT_EQ(header(kMarch5, 42, 12345, LOG_LEVEL_DEBUG),
            "2024-03-05 14:07:09.042 [12345] LOG_DEBUG ");
}

TEST(LogHeader, PadsAShortThreadId) {
  const ZoneScope zone("UTC");
  EXPECT_EQ(header(kMarch5, 42, 77, LOG_LEVEL_DEBUG), "2024-03-05 14:07:09.042 [0077] LOG_DEBUG ");
}

TEST(LogHeader, CarriesTheNineCharacterTagOfEachLevel) {
  const std::array<std::string_view, 7> tags = {"LOG_TRACE", "LOG_DEBUG", "LOG_INFO ", "LOG_WARN ",
                                                "LOG_ERROR", "LOG_ALARM", "LOG_FATAL"};
  for (std::int32_t level = 0; level < 7; ++level) {
    EXPECT_EQ(velka::levelTag(level), tags[static_cast<std::size_t>(level)]);
  }
}

TEST(LogHeader, LevelOutOfRangeTakesTheNearestTag) {
  EXPECT_EQ(velka::levelTag(-1), "LOG_TRACE");
  EXPECT_EQ(velka::levelTag(7), "LOG_FATAL");
  EXPECT_EQ(velka::levelTag(INT32_MIN), "LOG_TRACE");
  EXPECT_EQ(velka::levelTag(INT32_MAX), "LOG_FATAL");
}

TEST(LogHeader, AgreesWithPrintfOnOrdinaryDays) {
  const ZoneScope zone("IST-5:30");
  std::mt19937_64 random(11);
  for (int i = 0; i < 5000; ++i) {
    const auto time = static_cast<std::int64_t>(random() % 4102444800U);
    const auto ms = static_cast<std::uint32_t>(random() % 1000);
    const auto thread = static_cast<std::uint32_t>(random() >> (32 + random() % 32));
    ASSERT_EQ(header(time, ms, thread, LOG_LEVEL_INFO), plainHeader(time, ms, thread, "LOG_INFO "));
  }
}

TEST(LogHeader, LastMillisecondOfADayAndFirstOfTheNextHaveDifferentDates) {
  const ZoneScope zone("UTC");
  const std::int64_t last = 1709683199;  // 2024-03-05 23:59:59
  std::thread([&] {
    EXPECT_EQ(header(last, 999, 1, 1, cachedLocalDay(last)),
              "2024-03-05 23:59:59.999 [0001] LOG_DEBUG ");
    EXPECT_EQ(header(last + 1, 0, 1, 1, cachedLocalDay(last + 1)),
              "2024-03-06 00:00:00.000 [0001] LOG_DEBUG ");
  }).join();
}

TEST(LogHeader, EachThreadKeepsItsOwnDay) {
  const ZoneScope zone("UTC");
  const velka::LocalDay* here = &cachedLocalDay(kMarch5);
  const velka::LocalDay* there = nullptr;
  std::thread([&] { there = &cachedLocalDay(kMarch5 + velka::kSecondsPerDay); }).join();
  EXPECT_NE(here, there);
  EXPECT_EQ(here->date.tm_mday, 5);
}

TEST(LogHeader, CachedDayIsKeptForTheWholeDayEvenWhenTheZoneChanges) {
  std::thread([] {
    const ZoneScope utc("UTC");
    const std::int64_t midnight = cachedLocalDay(kMarch5).midnight;
    const ZoneScope other("XST-3");
    EXPECT_EQ(cachedLocalDay(midnight).midnight, midnight);
    EXPECT_EQ(cachedLocalDay(midnight + 86399).midnight, midnight);
    EXPECT_NE(cachedLocalDay(midnight + 86400).midnight, midnight + 86400);
  }).join();
}

constexpr const char* kCentralEurope = "CET-1CEST,M3.5.0,M10.5.0/3";

TEST(LogHeader, DayOfTwentyFiveHoursEndsAtHourTwentyFour) {
  const ZoneScope zone(kCentralEurope);
  std::thread([] {
    EXPECT_EQ(cachedLocalDay(1729933200).date.tm_mday, 26);  // the day before
    const std::int64_t midnight = 1729980000;                // 2024-10-27 00:00 CEST
    const std::int64_t noon = midnight + 13 * kHour;         // 12:00 CET, 13 hours on
    EXPECT_EQ(header(midnight, 0, 1, 1, cachedLocalDay(midnight)).substr(0, 19),
              "2024-10-27 00:00:00");
    EXPECT_EQ(header(noon, 0, 1, 1, cachedLocalDay(noon)).substr(0, 19), "2024-10-27 13:00:00");
  }).join();
}

TEST(LogHeader, FirstLineAfterTheClockWentForwardCountsFromMidnightInSummerTime) {
  const ZoneScope zone(kCentralEurope);
  // 2024-03-31 14:00 CEST. Midnight is taken in the line's own time, which was
  // an hour before the day began, and so the hour comes out right.
  const std::int64_t afternoon = 1711886400;
  const velka::LocalDay day = localDayOf(afternoon);
  EXPECT_EQ(day.midnight, afternoon - 14 * kHour);
  EXPECT_EQ(day.date.tm_mday, 31);
  EXPECT_EQ(header(afternoon, 5, 1, 1, day).substr(0, 23), "2024-03-31 14:00:00.005");
}

TEST(LogHeader, ThreadThatSawMidnightLagsAnHourAfterTheClockWentForward) {
  const ZoneScope zone(kCentralEurope);
  std::thread([] {
    const std::int64_t midnight = 1711839600;  // 2024-03-31 00:00 CET
    EXPECT_EQ(header(midnight, 0, 1, 1, cachedLocalDay(midnight)).substr(0, 19),
              "2024-03-31 00:00:00");
    const std::int64_t nextDay = midnight + 23 * kHour + 1800;  // 2024-04-01 00:30 CEST
    EXPECT_EQ(header(nextDay, 0, 1, 1, cachedLocalDay(nextDay)).substr(0, 19),
              "2024-03-31 23:30:00");
  }).join();
}

TEST(LogHeader, TimesBeyondTheCalendarAreHarmless) {
  const ZoneScope zone("UTC");
  for (const std::int64_t time : {INT64_MAX, INT64_MIN}) {
    EXPECT_EQ(header(time, 0, 1, 1, cachedLocalDay(time)),
              "1900-01-01 00:00:00.000 [0001] LOG_DEBUG ");
  }
}

TEST(LogDay, CoversItsMidnightAndTheLastSecondOnly) {
  EXPECT_TRUE(velka::isWithinDay(1000, 1000));
  EXPECT_TRUE(velka::isWithinDay(1000 + 86399, 1000));
  EXPECT_FALSE(velka::isWithinDay(1000 + 86400, 1000));
  EXPECT_FALSE(velka::isWithinDay(999, 1000));
  EXPECT_FALSE(velka::isWithinDay(INT64_MAX, INT64_MIN));
  EXPECT_FALSE(velka::isWithinDay(INT64_MIN, INT64_MAX));
}

TEST(LogSource, IsTheBaseNameOfEitherKindOfPath) {
  EXPECT_EQ(lineWith(0, 'x', "C:\\src\\a.c", 12), " a.c:12");
  EXPECT_EQ(lineWith(0, 'x', "src/a.c", 12), " a.c:12");
  EXPECT_EQ(lineWith(0, 'x', "a.c", 12), " a.c:12");
  EXPECT_EQ(lineWith(0, 'x', "", 12), " :12");
  EXPECT_EQ(lineWith(0, 'x', "a\\b/c\\d", 12), " d:12");
  EXPECT_EQ(lineWith(0, 'x', "dir/", 0), " :0");
}

TEST(LogSource, NegativeLineNumbersKeepTheirSign) {
  EXPECT_EQ(lineWith(0, 'x', "a.c", -5), " a.c:-5");
  EXPECT_EQ(lineWith(0, 'x', "a.c", INT32_MIN), " a.c:-2147483648");
}

TEST(LogSource, NumberNeedsMoreThanSixtyFourBytesOfRoom) {
  EXPECT_EQ(lineWith(8192 - 65 - 5, 'x', "a.c", 9), " a.c:9");
  EXPECT_EQ(lineWith(8192 - 64 - 5, 'x', "a.c", 9), " a.c:");
}

TEST(LogSource, IsCutAtTheEndOfTheContent) {
  EXPECT_EQ(lineWith(8192, 'x', "a.c", 9), "");
  EXPECT_EQ(lineWith(8191, 'x', "a.c", 9), "a");
  EXPECT_EQ(lineWith(8189, 'x', "a.c", 9), " a.");
  EXPECT_EQ(lineWith(8000, 'x', std::string(9000, 'f'), 9), " " + std::string(191, 'f'));
}

TEST(LogTerminator, StandsBehindTheText) {
  const auto line = blankLine();
  std::memcpy(line->content, "abcdef", 6);
  line->contentLen = 3;
  velka::terminateLine(*line);
  EXPECT_EQ(contentOf(*line), "abc\r\n");
  EXPECT_EQ(line->content[5], '\0');
}

TEST(LogTerminator, TakesTheLastBytesOfAFullLine) {
  for (const std::int32_t length : {8189, 8190, 8192, 9000, INT32_MAX}) {
    const auto line = blankLine();
    std::memset(line->content, 'x', sizeof line->content);
    line->contentLen = length;
    velka::terminateLine(*line);
    EXPECT_EQ(contentOf(*line), std::string(8189, 'x') + "\r\n");
    EXPECT_EQ(line->content[8191], '\0');
  }
}

TEST(LogTerminator, NegativeLengthCountsAsEmpty) {
  const auto line = blankLine();
  line->contentLen = -4;
  velka::terminateLine(*line);
  EXPECT_EQ(contentOf(*line), "\r\n");
}

TEST(LogMessage, IsAppendedAndCutAtTheEndOfTheContent) {
  const auto line = blankLine();
  std::memcpy(line->content, "head ", 5);
  line->contentLen = 5;
  velka::appendMessage(*line, "%s %d", "n", -3);
  EXPECT_EQ(contentOf(*line), "head n -3");
  velka::appendMessage(*line, "%s", std::string(9000, 'y').c_str());
  EXPECT_EQ(line->contentLen, 8192);
  velka::appendMessage(*line, "%s", "more");
  EXPECT_EQ(line->contentLen, 8192);
  velka::terminateLine(*line);
  EXPECT_EQ(contentOf(*line), "head n -3" + std::string(8180, 'y') + "\r\n");
}

TEST(LogMessage, FormatErrorAppendsNothing) {
  const auto line = blankLine();
  // No multibyte form exists for this wide character in the "C" locale.
  const wchar_t unprintable[] = {0x12345, 0};
  velka::appendMessage(*line, "%ls", unprintable);
  EXPECT_EQ(line->contentLen, 0);
}
