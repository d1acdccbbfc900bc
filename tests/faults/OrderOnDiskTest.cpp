// The system calls behind each line of the log: what has been logged is on the disk.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <numeric>

#include "LogerManager.h"
#include "faults/SystemCalls.h"
#include "log4z.h"
#include "support/FilterRun.h"
#include "support/RasterBuilder.h"
#include "support/TestPdf.h"

namespace velka::testing {
namespace {

using Words = std::vector<std::string>;

// A line: its file is opened at its end, its length looked at, the line written and synced;
// then its pages leave the cache, which they can do once they are on the disk, and what
// that left open is synced again.
Words lineAfter(Words folders) {
  const Words line = {"open to append",  "look", "write", "sync",
                      "leave the cache", "sync", "close"};
  folders.insert(folders.end(), line.begin(), line.end());
  return folders;
}

void append(Words& words, const Words& more, size_t times) {
  for (size_t i = 0; i < times; ++i) words.insert(words.end(), more.begin(), more.end());
}

std::string joined(const Words& texts) {
  return std::accumulate(texts.begin(), texts.end(), std::string());
}

void expectOneLineAWrite(const Words& writes) {
  for (const std::string& line : writes) {
    EXPECT_TRUE(line.ends_with("\r\n")) << line;
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1) << line;
  }
}

// A job of two pages, in the place of the calling process.
void becomeJob(const std::string& ppd, const std::string& raster) {
  setenv("PPD", ppd.c_str(), 1);
  // No process under a tracer can be looked into for leaks.
  setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
  setenv("LSAN_OPTIONS", "detect_leaks=0", 1);
  if (freopen("/dev/null", "w", stdout) == nullptr || freopen("/dev/null", "w", stderr) == nullptr)
    _exit(1);
  execl(VELKA_FILTER, VELKA_FILTER, "1", "user", "title", "1", "", raster.c_str(), nullptr);
}

TEST(OrderOnDisk, EachLineOfAJobIsOnTheDiskBeforeTheNextBegins) {
  const TempFile ppd(ppdText({}));
  const Bytes stream =
      rasterStream({inkedPage(rgbHeader(40, 60), 1), inkedPage(rgbHeader(40, 60), 2)});
  const TempFile raster({reinterpret_cast<const char*>(stream.data()), stream.size()});
  const auto calls = systemCallsOf([&] { becomeJob(ppd.path(), raster.path()); });
  if (calls.empty()) GTEST_SKIP() << "no process may be traced here";
  const Words writes = writesTo("/tmp/velka.log", calls);
  expectOneLineAWrite(writes);
  ASSERT_GT(writes.size(), 80U);
  EXPECT_EQ(joined(writes), logText());
  // The lines of the job before go first.
  Words expected = {"open", "look", "empty", "close"};
  append(expected, lineAfter({"make /tmp"}), writes.size());
  EXPECT_EQ(whatBecomesOf("/tmp/velka.log", calls), expected);
}

// A file that has reached its size goes on under its name.
TEST(OrderOnDisk, ARollMakesFoldersAndNeitherEmptiesNorRenames) {
  constexpr size_t kLines = 5;
  const TempFolder folder;
  const auto calls = systemCallsOf([&] {
    LogerManager manager;
    manager.setLoggerPath(LOGGER_MAIN_ID, folder.path().c_str());
    manager.setLoggerName(LOGGER_MAIN_ID, "roll");
    manager.setLoggerMonthdir(LOGGER_MAIN_ID, true);
    manager.setLoggerLimitsize(LOGGER_MAIN_ID, 0);
    manager.start();
    for (size_t i = 2; i < kLines; ++i)
      VELKA_LOG_AT(&manager, LOGGER_MAIN_ID, LOG_LEVEL_INFO, "line %zu", i);
    _exit(0);
  });
  if (calls.empty()) GTEST_SKIP() << "no process may be traced here";
  ASSERT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
  const std::string month = std::filesystem::directory_iterator(folder.path())->path();
  const Words writes = writesTo(month + "/roll.log", calls);
  expectOneLineAWrite(writes);
  EXPECT_EQ(joined(writes), textOf(month + "/roll.log"));
  Words expected;
  append(expected, lineAfter({"make /tmp", "make " + folder.path(), "make " + month}), kLines);
  EXPECT_EQ(whatBecomesOf(month + "/roll.log", calls), expected);
}

}  // namespace
}  // namespace velka::testing
