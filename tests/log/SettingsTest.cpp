// Loggers, their keys and settings, and the shape of the interface.
#include <array>
#include <cstring>
#include <type_traits>

#include "LogTestSupport.h"

using logtest::Access;

namespace {

/// The two words of a pointer to a member function, as the platform's ABI keeps them.
using Words = std::array<std::size_t, 2>;

constexpr std::size_t kNoSlot = 9999;

/// The place that the words of a virtual operation name. Most processors keep one plus
/// the byte offset into the table; ARM ones, whose code may lie at odd addresses, keep
/// the offset itself and mark the second word.
std::size_t slotIn(Words words) {
  if (words[1] % 2 == 1) return words[0] / sizeof(void*);
  return words[0] % 2 == 1 ? (words[0] - 1) / sizeof(void*) : kNoSlot;
}

/// The place of a virtual operation in the table, destructors included.
template <class Member>
std::size_t slotOf(Member member) {
  static_assert(sizeof member == sizeof(Words));
  Words words{};
  std::memcpy(words.data(), &member, sizeof words);
  return slotIn(words);
}

}  // namespace

TEST(LogInterface, PlacesAreReadFromEitherFormOfAMemberPointer) {
  constexpr std::size_t kOffset = 5 * sizeof(void*);
  EXPECT_EQ(slotIn({kOffset + 1, 0}), 5U);
  EXPECT_EQ(slotIn({kOffset, 1}), 5U);
  EXPECT_EQ(slotIn({kOffset, 0}), kNoSlot);
}

TEST(LogInterface, OperationsStandInTheirOrder) {
  using M = ILog4zManager;
  const std::vector<std::size_t> slots = {
      slotOf(&M::config),
      slotOf(&M::configFromString),
      slotOf(&M::createLogger),
      slotOf(&M::start),
      slotOf(&M::stop),
      slotOf(&M::findLogger),
      slotOf(&M::prePushLog),
      slotOf(&M::pushLog),
      slotOf(&M::enableLogger),
      slotOf(&M::setLoggerName),
      slotOf(&M::setLoggerPath),
      slotOf(&M::setLoggerLevel),
      slotOf(&M::setLoggerFileLine),
      slotOf(&M::setLoggerDisplay),
      slotOf(&M::setLoggerOutFile),
      slotOf(&M::setLoggerLimitsize),
      slotOf(&M::setLoggerMonthdir),
      slotOf(&M::setLoggerReserveTime),
      slotOf(&M::setAutoUpdate),
      slotOf(&M::updateConfig),
      slotOf(&M::isLoggerEnable),
      slotOf(&M::getStatusTotalWriteCount),
      slotOf(&M::getStatusTotalWriteBytes),
      slotOf(&M::getStatusTotalPushQueue),
      slotOf(&M::getStatusTotalPopQueue),
      slotOf(&M::getStatusActiveLoggers),
      slotOf(&M::makeLogData),
      slotOf(&M::freeLogData),
  };
  for (std::size_t i = 0; i < slots.size(); ++i) {
    EXPECT_EQ(slots[i], i + 2);
  }
}

TEST(LogInterface, ThreadIsTheFirstBase) {
  LogerManager manager;
  EXPECT_EQ(static_cast<void*>(static_cast<ThreadHelper*>(&manager)), static_cast<void*>(&manager));
}

TEST(LogInterface, RecordHasItsFieldsInOrder) {
  static_assert(std::is_trivial_v<LogData>);
  EXPECT_EQ(offsetof(LogData, loggerId), 0U);
  EXPECT_EQ(offsetof(LogData, type), 4U);
  EXPECT_EQ(offsetof(LogData, typeValue), 8U);
  EXPECT_EQ(offsetof(LogData, level), 12U);
  EXPECT_EQ(offsetof(LogData, time), 16U);
  EXPECT_EQ(offsetof(LogData, milliseconds), 24U);
  EXPECT_EQ(offsetof(LogData, threadId), 28U);
  EXPECT_EQ(offsetof(LogData, contentLen), 32U);
  EXPECT_EQ(offsetof(LogData, content), 36U);
  EXPECT_EQ(sizeof(LogData::content), 8192U);
}

TEST(LogSettings, MainLoggerStartsWithTheDefaults) {
  LogerManager manager;
  const LoggerInfo& main = Access::logger(manager);
  EXPECT_EQ(main.key, "Main");
  EXPECT_EQ(main.name, "log_test");
  EXPECT_EQ(main.path, "./log/");
  EXPECT_EQ(main.level, LOG_LEVEL_DEBUG);
  EXPECT_TRUE(main.display);
  EXPECT_TRUE(main.outfile);
  EXPECT_FALSE(main.monthdir);
  EXPECT_EQ(main.limitsize, 100U);
  EXPECT_TRUE(main.enable);
  EXPECT_TRUE(main.fileline);
  EXPECT_EQ(main.reserve, 0);
  EXPECT_FALSE(main.handle.isOpen());
  EXPECT_FALSE(manager.isLoggerEnable(1));
  EXPECT_EQ(manager.getStatusActiveLoggers(), 1U);
}

TEST(LogSettings, PathGetsASeparatorUnlessItHasOne) {
  LogerManager manager;
  const LoggerInfo& main = Access::logger(manager);
  EXPECT_TRUE(manager.setLoggerPath(0, "/tmp"));
  EXPECT_EQ(main.path, "/tmp/");
  EXPECT_TRUE(manager.setLoggerPath(0, ""));
  EXPECT_EQ(main.path, "/tmp/");
  EXPECT_TRUE(manager.setLoggerPath(0, "a\\"));
  EXPECT_EQ(main.path, "a\\");
  EXPECT_FALSE(manager.setLoggerPath(0, nullptr));
  EXPECT_EQ(main.path, "a\\");
}

TEST(LogSettings, EmptyNameChangesNothing) {
  LogerManager manager;
  EXPECT_TRUE(manager.setLoggerName(0, "velka"));
  EXPECT_TRUE(manager.setLoggerName(0, ""));
  EXPECT_EQ(Access::logger(manager).name, "velka");
  EXPECT_FALSE(manager.setLoggerName(0, nullptr));
}

TEST(LogSettings, TextsOfEightKibibytesAreRefused) {
  LogerManager manager;
  EXPECT_TRUE(manager.setLoggerName(0, std::string(8191, 'n').c_str()));
  EXPECT_FALSE(manager.setLoggerName(0, std::string(8192, 'm').c_str()));
  EXPECT_EQ(Access::logger(manager).name, std::string(8191, 'n'));
  EXPECT_TRUE(manager.setLoggerPath(0, std::string(8190, 'p').c_str()));
  EXPECT_FALSE(manager.setLoggerPath(0, std::string(8191, 'p').c_str()));
}

TEST(LogSettings, EverySettingIsInForceAtOnce) {
  LogerManager manager;
  const LoggerInfo& main = Access::logger(manager);
  EXPECT_TRUE(manager.setLoggerLevel(0, LOG_LEVEL_FATAL));
  EXPECT_EQ(main.level, LOG_LEVEL_FATAL);
  EXPECT_TRUE(manager.setLoggerFileLine(0, false));
  EXPECT_FALSE(main.fileline);
  EXPECT_TRUE(manager.setLoggerDisplay(0, false));
  EXPECT_FALSE(main.display);
  EXPECT_TRUE(manager.setLoggerOutFile(0, false));
  EXPECT_FALSE(main.outfile);
  EXPECT_TRUE(manager.setLoggerLimitsize(0, 4000000000U));
  EXPECT_EQ(main.limitsize, 4000000000U);
  EXPECT_TRUE(manager.setLoggerMonthdir(0, true));
  EXPECT_TRUE(main.monthdir);
  EXPECT_TRUE(manager.setLoggerReserveTime(0, std::int64_t{1} << 40));
  EXPECT_EQ(main.reserve, std::int64_t{1} << 40);
  EXPECT_TRUE(manager.enableLogger(0, false));
  EXPECT_FALSE(main.enable);
  EXPECT_FALSE(manager.isLoggerEnable(0));
  EXPECT_EQ(manager.getStatusActiveLoggers(), 0U);
}

TEST(LogSettings, NegativeReserveTimeIsZero) {
  LogerManager manager;
  Access::logger(manager).reserve = 3;
  EXPECT_TRUE(manager.setLoggerReserveTime(0, -5));
  EXPECT_EQ(Access::logger(manager).reserve, 0);
}

TEST(LogSettings, IdsNotInUseAreRefused) {
  LogerManager manager;
  for (const std::int32_t id : {-1, 1, 19, 20, INT32_MIN, INT32_MAX}) {
    EXPECT_FALSE(manager.enableLogger(id, true));
    EXPECT_FALSE(manager.setLoggerName(id, "n"));
    EXPECT_FALSE(manager.setLoggerName(id, ""));
    EXPECT_FALSE(manager.setLoggerPath(id, "p"));
    EXPECT_FALSE(manager.setLoggerPath(id, ""));
    EXPECT_FALSE(manager.setLoggerLevel(id, 1));
    EXPECT_FALSE(manager.setLoggerFileLine(id, true));
    EXPECT_FALSE(manager.setLoggerDisplay(id, true));
    EXPECT_FALSE(manager.setLoggerOutFile(id, true));
    EXPECT_FALSE(manager.setLoggerLimitsize(id, 1));
    EXPECT_FALSE(manager.setLoggerMonthdir(id, true));
    EXPECT_FALSE(manager.setLoggerReserveTime(id, 1));
    EXPECT_FALSE(manager.isLoggerEnable(id));
    EXPECT_FALSE(manager.prePushLog(id, LOG_LEVEL_FATAL));
  }
}

TEST(LogSettings, LoggerIsMadeOncePerKey) {
  LogerManager manager;
  EXPECT_EQ(manager.createLogger("Main"), 0);
  EXPECT_EQ(manager.createLogger("a"), 1);
  EXPECT_EQ(manager.createLogger("b"), 2);
  EXPECT_EQ(manager.createLogger("a"), 1);
  EXPECT_EQ(manager.findLogger("b"), 2);
  EXPECT_EQ(manager.findLogger("A"), -1);
  EXPECT_EQ(manager.findLogger(nullptr), -1);
  EXPECT_EQ(manager.createLogger(nullptr), -1);
  EXPECT_EQ(manager.createLogger(""), -1);
  EXPECT_EQ(Access::logger(manager, 1).key, "a");
  EXPECT_EQ(Access::logger(manager, 1).name, "a");
  EXPECT_FALSE(manager.isLoggerEnable(1));
}

TEST(LogSettings, ThereAreTwentyLoggersAtMost) {
  LogerManager manager;
  for (std::int32_t id = 1; id < LOGGER_MAX; ++id) {
    EXPECT_EQ(manager.createLogger(logtest::numbered("k", static_cast<std::size_t>(id)).c_str()),
              id);
    EXPECT_TRUE(manager.enableLogger(id, true));
  }
  EXPECT_EQ(manager.createLogger("one more"), -1);
  EXPECT_EQ(manager.findLogger("one more"), -1);
  EXPECT_EQ(manager.createLogger("k19"), 19);
  EXPECT_EQ(manager.getStatusActiveLoggers(), 20U);
}
