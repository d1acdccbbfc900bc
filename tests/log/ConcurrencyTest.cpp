// Many threads on one manager: what the thread sanitizer is to look at.
#include <array>
#include <atomic>
#include <cstdio>
#include <thread>

#include "LogTestSupport.h"

using logtest::Access;
using logtest::aimAt;
using logtest::linesOf;
using logtest::logText;
using logtest::numbered;
using logtest::readFile;
using logtest::TempFolder;

namespace {

/// The C library guards its time zone with a lock that the thread sanitizer does
/// not see; with TZ set it does not read the zone again for every line.
class FixedZone : public testing::Environment {
 public:
  void SetUp() override { zone_ = std::make_unique<logtest::ZoneScope>("UTC"); }
  void TearDown() override { zone_.reset(); }

 private:
  std::unique_ptr<logtest::ZoneScope> zone_;
};

[[maybe_unused]] const testing::Environment* const fixedZone =
    testing::AddGlobalTestEnvironment(new FixedZone);

/// Runs `work(i)` for i = 0 ... count - 1, each on a thread of its own.
template <class Work>
void onThreads(int count, Work work) {
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&work, i] { work(i); });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

void changeSettings(LogerManager& manager, int round) {
  const bool odd = round % 2 != 0;
  manager.setLoggerFileLine(0, odd);
  manager.setLoggerLevel(0, odd ? LOG_LEVEL_TRACE : LOG_LEVEL_DEBUG);
  manager.setLoggerDisplay(0, odd);
  manager.setLoggerName(0, odd ? "odd" : "even");
  manager.setLoggerMonthdir(0, round % 5 == 0);
  manager.setLoggerLimitsize(0, static_cast<std::uint32_t>(round));
  manager.setLoggerReserveTime(0, odd ? 100000 : 0);
  manager.createLogger(numbered("k", static_cast<std::size_t>(round) % 30).c_str());
  manager.enableLogger(round % 20, round % 20 == 0 || odd);
}

void readEverything(LogerManager& manager) {
  manager.getStatusTotalWriteCount();
  manager.getStatusTotalWriteBytes();
  manager.getStatusTotalPushQueue();
  manager.getStatusTotalPopQueue();
  manager.getStatusActiveLoggers();
  manager.isLoggerEnable(3);
  manager.findLogger("k3");
}

}  // namespace

TEST(LogThreads, LinesOfManyThreadsNeitherMixNorGetLost) {
  constexpr int kThreads = 6;
  constexpr std::size_t kLines = 60;
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  onThreads(kThreads, [&](int thread) {
    for (std::size_t i = 0; i < kLines; ++i) {
      logText(manager, numbered(numbered("t", static_cast<std::size_t>(thread)) + " n", i));
    }
  });
  const auto lines = linesOf(readFile(folder.file("velka.log")));
  ASSERT_EQ(lines.size(), 2U + kThreads * kLines);
  std::array<std::size_t, kThreads> next{};
  for (std::size_t i = 2; i < lines.size(); ++i) {
    const std::size_t tag = lines[i].find("] LOG_DEBUG t");
    ASSERT_NE(tag, std::string::npos) << lines[i];
    const std::string text = lines[i].substr(tag + 12);
    std::size_t thread = kThreads;
    std::size_t number = 0;
    ASSERT_EQ(std::sscanf(text.c_str(), "t%zu n%zu", &thread, &number), 2) << text;
    ASSERT_LT(thread, next.size());
    EXPECT_EQ(number, next[thread]++);
    EXPECT_EQ(text, numbered(numbered("t", thread) + " n", number) + " a.c:7");
  }
  EXPECT_EQ(manager.getStatusTotalWriteCount(), lines.size());
}

TEST(LogThreads, SettingsStatusAndQueueMayBeUsedWhileOthersLog) {
  const TempFolder folder;
  logtest::writeFile(folder.file("log.cfg"), "[main]\nlevel=trace\n[extra]\nname=x\n");
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.config(folder.file("log.cfg").c_str()));
  ASSERT_TRUE(manager.setAutoUpdate(-1));
  ASSERT_TRUE(manager.start());
  std::atomic<int> accepted = 0;
  onThreads(5, [&](int thread) {
    for (int round = 0; round < 100; ++round) {
      if (thread == 0) {
        changeSettings(manager, round);
      } else if (thread == 1) {
        readEverything(manager);
        Access::enqueue(manager, manager.makeLogData(0, 1));
      } else if (thread == 2 && round % 10 == 0) {
        EXPECT_TRUE(manager.updateConfig());
      } else {
        accepted += logText(manager, "busy") ? 1 : 0;
      }
    }
  });
  ASSERT_TRUE(manager.stop());
  EXPECT_EQ(accepted, 290);
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 100U);
  EXPECT_EQ(manager.getStatusTotalWriteCount(), 2U + 290U + 100U);
}

TEST(LogThreads, StartAndStopMayCrossLoggingThreads) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  std::atomic<int> accepted = 0;
  std::atomic<int> starts = 0;
  std::atomic<int> stops = 0;
  onThreads(5, [&](int thread) {
    for (int round = 0; round < (thread < 2 ? 4 : 150); ++round) {
      if (thread < 2) {
        starts += manager.start() ? 1 : 0;
        stops += manager.stop() ? 1 : 0;
      } else {
        accepted += logText(manager, "busy") ? 1 : 0;
      }
    }
  });
  stops += manager.stop() ? 1 : 0;
  EXPECT_GE(starts, 1);
  EXPECT_EQ(starts, stops);
  EXPECT_EQ(linesOf(readFile(folder.file("velka.log"))).size(),
            static_cast<std::size_t>(2 * starts + accepted));
}

TEST(LogThreads, OnlyOneOfManyStartsWins) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  std::atomic<int> starts = 0;
  onThreads(4, [&](int) { starts += manager.start() ? 1 : 0; });
  EXPECT_EQ(starts, 1);
  EXPECT_EQ(linesOf(readFile(folder.file("velka.log"))).size(), 2U);
}

TEST(LogThreads, TheOneManagerIsMadeOnce) {
  std::vector<ILog4zManager*> seen(4);
  onThreads(4, [&](int i) { seen[static_cast<std::size_t>(i)] = ILog4zManager::getInstance(); });
  EXPECT_EQ(seen, std::vector<ILog4zManager*>(4, seen[0]));
}
