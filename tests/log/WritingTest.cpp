// From the logging call to the file, without looking at the worker.
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>

#include <csignal>

#include "LogWritingFixture.h"

using logtest::Access;
using logtest::contains;
using logtest::linesOf;
using logtest::logText;
using logtest::LogWriting;
using logtest::readFile;
using logtest::writeFile;

namespace {

std::string digitsMasked(std::string text) {
  for (char& c : text) {
    c = c >= '0' && c <= '9' ? 'd' : c;
  }
  return text;
}

}  // namespace

TEST_F(LogWriting, LineIsInTheFileWhenTheCallReturns) {
  EXPECT_TRUE(logText(manager, "Init sRotation: 0"));
  const std::string id = std::to_string(syscall(SYS_gettid));
  const std::string thread = std::string(id.size() < 4 ? 4 - id.size() : 0, '0') + id;
  EXPECT_EQ(digitsMasked(text().substr(0, 23)), "dddd-dd-dd dd:dd:dd.ddd");
  EXPECT_EQ(text().substr(23), " [" + thread + "] LOG_DEBUG Init sRotation: 0 a.c:7\r\n");
  EXPECT_FALSE(Access::logger(manager).handle.isOpen());
}

TEST_F(LogWriting, LinesFollowOneAnotherAndAreCounted) {
  const std::uint64_t lines = manager.getStatusTotalWriteCount();
  const std::uint64_t bytes = manager.getStatusTotalWriteBytes();
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_TRUE(logText(manager, "two"));
  EXPECT_EQ(linesOf(text()).size(), 2U);
  EXPECT_EQ(manager.getStatusTotalWriteCount(), lines + 2);
  EXPECT_EQ(manager.getStatusTotalWriteBytes(), bytes + text().size());
  EXPECT_EQ(Access::logger(manager).writtenBytes, text().size());
  EXPECT_EQ(manager.getStatusTotalPushQueue(), 0U);
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 0U);
}

TEST_F(LogWriting, SuffixNeedsTheSettingAndAFile) {
  EXPECT_TRUE(manager.pushLog(manager.makeLogData(0, 1), nullptr, 9));
  EXPECT_TRUE(manager.setLoggerFileLine(0, false));
  EXPECT_TRUE(manager.pushLog(manager.makeLogData(0, 1), "a.c", 9));
  const auto lines = linesOf(text());
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_TRUE(lines[0].ends_with("] LOG_DEBUG "));
  EXPECT_TRUE(lines[1].ends_with("] LOG_DEBUG "));
}

TEST_F(LogWriting, OverlongMessageEndsInALineEndAllTheSame) {
  EXPECT_TRUE(logText(manager, std::string(10000, 'm')));
  EXPECT_EQ(text().size(), 8191U);
  EXPECT_TRUE(text().ends_with("mmm\r\n"));
  EXPECT_TRUE(logText(manager, "next"));
  EXPECT_EQ(linesOf(text()).size(), 2U);
}

TEST_F(LogWriting, LevelsBelowTheLoggersAreNotWritten) {
  EXPECT_FALSE(manager.prePushLog(0, LOG_LEVEL_TRACE));
  EXPECT_TRUE(manager.setLoggerLevel(0, LOG_LEVEL_WARN));
  EXPECT_FALSE(manager.prePushLog(0, LOG_LEVEL_INFO));
  EXPECT_TRUE(manager.prePushLog(0, LOG_LEVEL_WARN));
  EXPECT_FALSE(manager.pushLog(manager.makeLogData(0, LOG_LEVEL_INFO), "a.c", 1));
  EXPECT_EQ(text(), "");
  EXPECT_EQ(Access::idleRecords(manager), 1U);
}

TEST_F(LogWriting, BadIdsDisabledLoggersAndNullAreRefused) {
  for (const std::int32_t id : {-1, 1, 20, INT32_MIN, INT32_MAX}) {
    EXPECT_FALSE(manager.pushLog(manager.makeLogData(id, 1), "a.c", 1));
  }
  EXPECT_FALSE(manager.pushLog(nullptr, "a.c", 1));
  manager.freeLogData(nullptr);
  EXPECT_TRUE(manager.enableLogger(0, false));
  EXPECT_FALSE(manager.prePushLog(0, LOG_LEVEL_FATAL));
  EXPECT_FALSE(manager.pushLog(manager.makeLogData(0, LOG_LEVEL_FATAL), "a.c", 1));
  EXPECT_EQ(text(), "");
}

TEST_F(LogWriting, LoggerWithoutFileOutputAcceptsAndWritesNothing) {
  EXPECT_TRUE(manager.setLoggerOutFile(0, false));
  const std::uint64_t lines = manager.getStatusTotalWriteCount();
  EXPECT_TRUE(logText(manager, "unseen"));
  EXPECT_EQ(text(), "");
  EXPECT_EQ(manager.getStatusTotalWriteCount(), lines);
}

TEST_F(LogWriting, RecordsComeBackFromTheCallAndFromFreeing) {
  LogData* const first = manager.makeLogData(0, 1);
  manager.freeLogData(first);
  LogData* const second = manager.makeLogData(0, LOG_LEVEL_ERROR);
  EXPECT_EQ(second, first);
  EXPECT_EQ(second->type, 0);
  EXPECT_EQ(second->typeValue, 0);
  EXPECT_EQ(second->loggerId, 0);
  EXPECT_EQ(second->level, LOG_LEVEL_ERROR);
  EXPECT_LT(second->milliseconds, 1000U);
  EXPECT_EQ(
      second->contentLen,
      static_cast<std::int32_t>(std::string_view(second->content, 100).find("LOG_ERROR ") + 10));
  EXPECT_TRUE(manager.pushLog(second, "a.c", 1));
  EXPECT_EQ(Access::idleRecords(manager), 1U);
}

TEST_F(LogWriting, DamagedLengthsAreHarmless) {
  for (const std::int32_t length : {INT32_MIN, -1, 8192, 8193, INT32_MAX}) {
    LogData* const line = manager.makeLogData(0, 1);
    std::memset(line->content, 'x', sizeof line->content);
    line->contentLen = length;
    EXPECT_TRUE(manager.pushLog(line, "a.c", 1));
  }
  EXPECT_EQ(linesOf(text()).size(), 5U);
}

TEST_F(LogWriting, FileThatCannotBeOpenedTurnsTheOutputOff) {
  EXPECT_TRUE(manager.setLoggerPath(0, path().c_str()));  // a file, no directory
  const std::uint64_t lines = manager.getStatusTotalWriteCount();
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_FALSE(Access::logger(manager).outfile);
  EXPECT_TRUE(manager.setLoggerPath(0, folder.path().c_str()));
  EXPECT_TRUE(logText(manager, "two"));
  EXPECT_EQ(manager.getStatusTotalWriteCount(), lines);
  EXPECT_EQ(text(), "");
}

TEST_F(LogWriting, FileWhoseLengthCannotBeHadIsNotUsedAgain) {
  ASSERT_TRUE(logText(manager, "before"));
  const std::string before = text();
  logtest::unseekable = SEEK_END;
  logText(manager, "lost");
  logtest::unseekable = -1;
  EXPECT_FALSE(Access::logger(manager).outfile);
  EXPECT_FALSE(Access::logger(manager).handle.isOpen());
  EXPECT_EQ(text(), before);
}

TEST_F(LogWriting, LinkInPlaceOfTheLogTurnsTheOutputOff) {
  writeFile(folder.file("victim"), "precious");
  ASSERT_EQ(unlink(path().c_str()), 0);
  ASSERT_EQ(symlink(folder.file("victim").c_str(), path().c_str()), 0);
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_FALSE(Access::logger(manager).outfile);
  EXPECT_EQ(readFile(folder.file("victim")), "precious");
}

TEST_F(LogWriting, FifoInPlaceOfTheLogTurnsTheOutputOff) {
  ASSERT_EQ(unlink(path().c_str()), 0);
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  EXPECT_TRUE(logText(manager, "one"));
  EXPECT_FALSE(Access::logger(manager).outfile);
}

TEST_F(LogWriting, LogThatWasTakenAwayIsMadeAgain) {
  std::filesystem::remove_all(folder.path());
  EXPECT_TRUE(logText(manager, "again"));
  EXPECT_EQ(linesOf(text()).size(), 1U);
}

TEST_F(LogWriting, ShortWriteClosesTheFileAndTheNextLineOpensIt) {
  rlimit former{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
  const auto formerAction = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small = {10, former.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const bool accepted = logText(manager, "cut");
  setrlimit(RLIMIT_FSIZE, &former);
  std::signal(SIGXFSZ, formerAction);
  EXPECT_TRUE(accepted);
  EXPECT_EQ(text().size(), 10U);
  EXPECT_FALSE(Access::logger(manager).handle.isOpen());
  EXPECT_TRUE(Access::logger(manager).outfile);
  EXPECT_TRUE(logText(manager, "whole"));
  EXPECT_TRUE(contains(text(), "LOG_DEBUG whole a.c:7\r\n"));
}

TEST_F(LogWriting, EveryLoggerHasItsOwnFileAndLevel) {
  for (std::int32_t id = 1; id < LOGGER_MAX; ++id) {
    const std::string key = logtest::numbered("k", static_cast<std::size_t>(id));
    ASSERT_EQ(manager.createLogger(key.c_str()), id);
    EXPECT_FALSE(logText(manager, "too early", id));
    EXPECT_TRUE(manager.setLoggerPath(id, folder.path().c_str()));
    EXPECT_TRUE(manager.enableLogger(id, true));
    EXPECT_TRUE(logText(manager, key, id, LOG_LEVEL_FATAL));
    const auto lines = linesOf(readFile(folder.file(key + ".log")));
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_TRUE(lines[0].ends_with("LOG_FATAL " + key + " a.c:7"));
  }
  EXPECT_EQ(text(), "");
}

TEST_F(LogWriting, OpeningRefusesWhatTheLoggerDoesNotWrite) {
  EXPECT_FALSE(manager.openLogger(nullptr));
  LogData* const line = manager.makeLogData(0, LOG_LEVEL_DEBUG);
  {
    const velka::ScopedLock hold(Access::mainLock(manager));
    line->loggerId = 3;
    EXPECT_FALSE(manager.openLogger(line));
    line->loggerId = 0;
    line->level = LOG_LEVEL_TRACE;
    EXPECT_FALSE(manager.openLogger(line));
    line->level = LOG_LEVEL_DEBUG;
    EXPECT_TRUE(manager.openLogger(line));
    EXPECT_TRUE(Access::logger(manager).handle.isOpen());
    EXPECT_TRUE(manager.openLogger(line));
    EXPECT_TRUE(manager.setLoggerOutFile(0, false));
    EXPECT_FALSE(manager.openLogger(line));
  }
  manager.freeLogData(line);
}

TEST(LogEcho, PrintsNothing) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  LogerManager::showColorText("text", LOG_LEVEL_FATAL);
  LogerManager::showColorText(nullptr, -1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}
