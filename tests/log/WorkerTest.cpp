// Start, banner, files, configuration, stop.
#include <chrono>

#include "LogTestSupport.h"

using logtest::Access;
using logtest::aimAt;
using logtest::contains;
using logtest::eventually;
using logtest::linesOf;
using logtest::logText;
using logtest::readFile;
using logtest::TempFolder;
using logtest::writeFile;

namespace {

/// A line of the log without its header and the number at its end.
std::string bare(const std::string& line) {
  const std::size_t start = line.find("] ");
  return line.substr(start + 2, line.rfind(':') - start - 1);
}

}  // namespace

TEST(LogWorker, FirstTwoLinesAreTheBannerAndTheMainLogger) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  const auto lines = linesOf(readFile(folder.file("velka.log")));
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_EQ(bare(lines[0]),
            "LOG_ALARM -----------------  log4z thread started!   ---------------------------- "
            "log4z.cpp:");
  EXPECT_EQ(bare(lines[1]), "LOG_ALARM logger id=0 key=Main name=velka path=" + folder.path() +
                                "/ level=1 display=true log4z.cpp:");
}

TEST(LogWorker, BannerListsTheEnabledLoggersOnly) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.configFromString("[off]\n[on]\nenable=1\nlevel=fatal\ndisplay=0\npath=/p"));
  ASSERT_TRUE(manager.start());
  const auto lines = linesOf(readFile(folder.file("velka.log")));
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(bare(lines[2]),
            "LOG_ALARM logger id=2 key=on name=on path=/p/ level=6 display=false log4z.cpp:");
}

TEST(LogWorker, NoBannerWhenTheMainLoggerIsTooHigh) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  manager.setLoggerLevel(0, LOG_LEVEL_FATAL);
  ASSERT_TRUE(manager.start());
  EXPECT_FALSE(std::filesystem::exists(folder.file("velka.log")));
}

TEST(LogWorker, LinesBeforeStartAndAfterStopAreDropped) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  EXPECT_FALSE(logText(manager, "early"));
  EXPECT_FALSE(manager.pushLog(manager.makeLogData(0, 1), "a.c", 1));
  EXPECT_FALSE(std::filesystem::exists(folder.file("velka.log")));
  ASSERT_TRUE(manager.start());
  EXPECT_TRUE(logText(manager, "in time"));
  ASSERT_TRUE(manager.stop());
  EXPECT_FALSE(logText(manager, "late"));
  EXPECT_FALSE(manager.pushLog(manager.makeLogData(0, 1), "a.c", 1));
  const std::string text = readFile(folder.file("velka.log"));
  EXPECT_EQ(linesOf(text).size(), 3U);
  EXPECT_TRUE(contains(text, "in time"));
}

TEST(LogWorker, StartsOnceAndStopsOnce) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  EXPECT_FALSE(manager.stop());
  EXPECT_TRUE(manager.start());
  EXPECT_FALSE(manager.start());
  EXPECT_EQ(linesOf(readFile(folder.file("velka.log"))).size(), 2U);
  EXPECT_TRUE(manager.stop());
  EXPECT_FALSE(manager.stop());
}

TEST(LogWorker, StartsAgainAfterStop) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  for (std::size_t round = 1; round <= 3; ++round) {
    ASSERT_TRUE(manager.start());
    EXPECT_TRUE(logText(manager, "round"));
    ASSERT_TRUE(manager.stop());
    EXPECT_EQ(linesOf(readFile(folder.file("velka.log"))).size(), 3 * round);
  }
}

TEST(LogWorker, StopFreesTheIdleRecords) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  EXPECT_GT(Access::idleRecords(manager), 0U);
  ASSERT_TRUE(manager.stop());
  EXPECT_EQ(Access::idleRecords(manager), 0U);
}

TEST(LogWorker, StartGivesUpOnASilentWorkerAndSucceedsLater) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  {
    // The worker cannot write its banner.
    const velka::ScopedLock hold(Access::mainLock(manager));
    EXPECT_FALSE(manager.start());
    EXPECT_FALSE(manager.prePushLog(0, LOG_LEVEL_FATAL));
    EXPECT_FALSE(manager.start());
    EXPECT_FALSE(manager.stop());
  }
  EXPECT_TRUE(eventually([&] { return manager.start(); }));
  EXPECT_TRUE(logText(manager, "after all"));
  EXPECT_TRUE(contains(readFile(folder.file("velka.log")), "after all"));
}

TEST(LogWorker, FileOfADisabledLoggerIsClosed) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  Access::enqueue(manager, manager.makeLogData(0, 1));
  const auto isOpen = [&] {
    const velka::ScopedLock hold(Access::mainLock(manager));
    return Access::logger(manager).handle.isOpen();
  };
  ASSERT_TRUE(eventually(isOpen));
  EXPECT_TRUE(manager.enableLogger(0, false));
  EXPECT_TRUE(eventually([&] { return !isOpen(); }));
}

TEST(LogWorker, ConfigurationIsReadAgainWhenItsTimeHasCome) {
  const TempFolder folder;
  const std::string path = folder.file("log.cfg");
  writeFile(path, "[main]\npath=" + folder.path() + "\n");
  LogerManager manager;
  ASSERT_TRUE(manager.config(path.c_str()));
  ASSERT_TRUE(manager.start());
  writeFile(path, "[late]\nenable=1\n");
  EXPECT_EQ(manager.findLogger("late"), -1);
  // More than -1 seconds have always passed.
  EXPECT_TRUE(manager.setAutoUpdate(-1));
  EXPECT_TRUE(eventually([&] { return manager.findLogger("late") == 1; }));
}

TEST(LogWorker, QueueFarBeyondItsBoundCostsTheLoggerAHundredMilliseconds) {
  using Clock = std::chrono::steady_clock;
  LogerManager manager;
  LogData record{};
  for (int i = 0; i < 41000; ++i) {
    Access::enqueue(manager, &record);
  }
  const Clock::time_point start = Clock::now();
  Access::holdBack(manager);
  const Clock::duration passed = Clock::now() - start;
  while (Access::dequeue(manager) != nullptr) {
  }
  EXPECT_GE(passed, std::chrono::milliseconds(100));
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 41000U);
}

TEST(LogWorker, DestructionEndsTheThreadAndFreesQueuedRecords) {
  const TempFolder folder;
  {
    LogerManager running;
    aimAt(running, folder);
    ASSERT_TRUE(running.start());
    LogerManager idle;
    Access::enqueue(idle, idle.makeLogData(0, 1));
    EXPECT_EQ(idle.getStatusTotalPushQueue(), 1U);
  }
  EXPECT_EQ(linesOf(readFile(folder.file("velka.log"))).size(), 2U);
}
