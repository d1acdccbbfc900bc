// Which file a line goes to: months, days, sizes, former files.
#include "LogLine.h"
#include "LogWritingFixture.h"

using logtest::Access;
using logtest::linesOf;
using logtest::logText;
using logtest::LogWriting;
using logtest::readFile;

namespace {

/// The time of all lines of a test: so its day cannot end while the test runs.
constexpr std::int64_t kSomeNoon = 1709640000;

bool logAtNoon(LogerManager& manager, const char* text) {
  LogData* const line = manager.makeLogData(0, LOG_LEVEL_DEBUG);
  line->time = kSomeNoon;
  velka::appendMessage(*line, "%s", text);
  return manager.pushLog(line, "src/a.c", 7);
}

}  // namespace

TEST_F(LogWriting, MonthDirectoryIsThatOfTheLinesTime) {
  const logtest::ZoneScope zone("UTC");
  EXPECT_TRUE(manager.setLoggerMonthdir(0, true));
  LogData* const line = manager.makeLogData(0, 1);
  line->time = 1709647629;
  EXPECT_TRUE(manager.pushLog(line, "a.c", 1));
  EXPECT_EQ(linesOf(readFile(folder.file("2024_03/velka.log"))).size(), 1U);
  EXPECT_EQ(text(), "");
}

TEST_F(LogWriting, SizeLimitCountsARollAndTheFileGrowsOn) {
  EXPECT_TRUE(manager.setLoggerLimitsize(0, 0));
  LoggerInfo& main = Access::logger(manager);
  main.fileDay = velka::localDayOf(kSomeNoon).midnight;
  main.rollIndex = 0;
  main.writtenBytes = 0;
  EXPECT_TRUE(logAtNoon(manager, "one"));
  EXPECT_EQ(main.rollIndex, 0U);
  EXPECT_TRUE(logAtNoon(manager, "two"));
  EXPECT_EQ(main.rollIndex, 1U);
  EXPECT_TRUE(logAtNoon(manager, "three"));
  EXPECT_EQ(main.rollIndex, 2U);
  EXPECT_EQ(linesOf(text()).size(), 3U);
}

TEST_F(LogWriting, SizeLimitIsInMebibytesAndMayBeReached) {
  LoggerInfo& main = Access::logger(manager);
  EXPECT_TRUE(manager.setLoggerLimitsize(0, 2));
  EXPECT_TRUE(logAtNoon(manager, "one"));
  main.rollIndex = 0;
  main.writtenBytes = 2U << 20U;
  EXPECT_TRUE(logAtNoon(manager, "two"));
  EXPECT_EQ(main.rollIndex, 0U);
  main.writtenBytes = (2U << 20U) + 1;
  EXPECT_TRUE(logAtNoon(manager, "three"));
  EXPECT_EQ(main.rollIndex, 1U);
  EXPECT_TRUE(manager.setLoggerLimitsize(0, UINT32_MAX));
  main.writtenBytes = UINT32_MAX;
  EXPECT_TRUE(logAtNoon(manager, "four"));
  EXPECT_EQ(main.rollIndex, 1U);
}

TEST_F(LogWriting, NewDayResetsTheRollAndKeepsTheFile) {
  const logtest::ZoneScope zone("UTC");
  LoggerInfo& main = Access::logger(manager);
  main.rollIndex = 5;
  LogData* const line = manager.makeLogData(0, 1);
  line->time = 1709683200;  // 2024-03-06 00:00
  EXPECT_TRUE(manager.pushLog(line, "a.c", 1));
  EXPECT_EQ(main.rollIndex, 0U);
  EXPECT_EQ(main.fileTime, 1709683200);
  EXPECT_EQ(main.fileDay, 1709683200);
  EXPECT_EQ(linesOf(text()).size(), 1U);
}

TEST_F(LogWriting, TimesBeyondTheCalendarAreHarmless) {
  for (const std::int64_t time : {INT64_MAX, INT64_MIN}) {
    LogData* const line = manager.makeLogData(0, 1);
    line->time = time;
    EXPECT_TRUE(manager.pushLog(line, "a.c", 1));
  }
  EXPECT_EQ(linesOf(text()).size(), 2U);
}

TEST_F(LogWriting, WithoutReserveTimeNoAccountIsKept) {
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_TRUE(Access::logger(manager).history.empty());
}

TEST_F(LogWriting, ReserveTimeDeletesFormerFilesThatAreOld) {
  LoggerInfo& main = Access::logger(manager);
  EXPECT_TRUE(manager.setLoggerReserveTime(0, 1000));
  for (const char* name : {"first", "second", "third"}) {
    EXPECT_TRUE(manager.setLoggerName(0, name));
    EXPECT_TRUE(logText(manager, name));
    EXPECT_TRUE(logText(manager, name));
  }
  ASSERT_EQ(main.history.size(), 3U);
  EXPECT_TRUE(std::filesystem::exists(folder.file("first.log")));
  main.history.front().first -= 2000;
  EXPECT_TRUE(logText(manager, "once more"));
  EXPECT_FALSE(std::filesystem::exists(folder.file("first.log")));
  EXPECT_TRUE(std::filesystem::exists(folder.file("second.log")));
  ASSERT_EQ(main.history.size(), 2U);
  EXPECT_EQ(main.history.back().second, folder.file("third.log"));
}

// Deliberate: a file's age counts from its first use, so going back to an old one
// removes it just after it was opened, and the line with it.
TEST_F(LogWriting, ReserveTimeDeletesTheFileJustOpenedWhereItsFirstUseIsOld) {
  LoggerInfo& main = Access::logger(manager);
  EXPECT_TRUE(manager.setLoggerReserveTime(0, 1000));
  for (const char* name : {"first", "second"}) {
    EXPECT_TRUE(manager.setLoggerName(0, name));
    EXPECT_TRUE(logText(manager, name));
  }
  main.history.front().first -= 2000;
  EXPECT_TRUE(manager.setLoggerName(0, "first"));
  EXPECT_TRUE(logText(manager, "lost"));
  EXPECT_FALSE(std::filesystem::exists(folder.file("first.log")));
  EXPECT_TRUE(logText(manager, "kept"));
  EXPECT_EQ(linesOf(readFile(folder.file("first.log"))).size(), 1U);
}

TEST_F(LogWriting, LongestReserveTimeIsHarmless) {
  EXPECT_TRUE(manager.setLoggerReserveTime(0, INT64_MAX));
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_EQ(Access::logger(manager).history.size(), 1U);
}

TEST_F(LogWriting, RollClosesAFileThatIsStillOpen) {
  LoggerInfo& main = Access::logger(manager);
  LogData* const line = manager.makeLogData(0, LOG_LEVEL_DEBUG);
  {
    const velka::ScopedLock hold(Access::mainLock(manager));
    ASSERT_TRUE(manager.openLogger(line));
    main.rollIndex = 0;
    main.writtenBytes = UINT32_MAX;
    EXPECT_TRUE(manager.setLoggerName(0, "rolled"));
    EXPECT_TRUE(manager.openLogger(line));
  }
  EXPECT_EQ(main.rollIndex, 1U);
  EXPECT_EQ(main.writtenBytes, 0U);
  manager.freeLogData(line);
  EXPECT_TRUE(std::filesystem::exists(folder.file("rolled.log")));
}
