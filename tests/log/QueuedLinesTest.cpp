// Lines and changes that wait in the queue.
#include "LogTestSupport.h"

using logtest::Access;
using logtest::aimAt;
using logtest::eventually;
using logtest::logText;
using logtest::readFile;
using logtest::TempFolder;

namespace {

LogData* changeRecord(LogerManager& manager, velka::SettingCode code, std::int32_t value,
                      const char* text = "") {
  LogData* const record = manager.makeLogData(0, 0);
  record->type = static_cast<std::int32_t>(code);
  record->typeValue = value;
  record->contentLen = 0;
  velka::appendMessage(*record, "%s", text);
  return record;
}

bool drained(LogerManager& manager) {
  return manager.getStatusTotalPopQueue() == manager.getStatusTotalPushQueue();
}

}  // namespace

TEST(LogWorker, QueuedLinesAreWrittenInOrderAndTheFileStaysOpen) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  for (const char* text : {"one\r\n", "two\r\n"}) {
    LogData* const line = manager.makeLogData(0, 1);
    line->contentLen = 0;
    velka::appendMessage(*line, "%s", text);
    Access::enqueue(manager, line);
  }
  ASSERT_TRUE(manager.start());
  ASSERT_TRUE(eventually([&] { return drained(manager); }));
  EXPECT_TRUE(
      eventually([&] { return readFile(folder.file("velka.log")).ends_with("one\r\ntwo\r\n"); }));
  const auto isOpen = [&] {
    const velka::ScopedLock hold(Access::mainLock(manager));
    return Access::logger(manager).handle.isOpen();
  };
  EXPECT_TRUE(isOpen());
  EXPECT_TRUE(logText(manager, "closing"));
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(manager.getStatusTotalPushQueue(), 2U);
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 2U);
  EXPECT_EQ(manager.getStatusTotalWriteCount(), 5U);
}

TEST(LogWorker, FileLeftOpenIsUsedByTheNextQueuedLine) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  LogData* const first = manager.makeLogData(0, 1);
  LogData* const next = manager.makeLogData(0, 1);
  next->time = first->time;  // a new day would open the file anew
  EXPECT_TRUE(Access::writeQueued(manager, first));
  EXPECT_TRUE(manager.setLoggerName(0, "other"));
  EXPECT_TRUE(Access::writeQueued(manager, next));
  EXPECT_FALSE(std::filesystem::exists(folder.file("other.log")));
}

TEST(LogWorker, StopWritesWhatIsQueuedAndClosesTheFiles) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  for (int i = 0; i < 500; ++i) {
    Access::enqueue(manager, manager.makeLogData(0, 1));
  }
  ASSERT_TRUE(manager.stop());
  EXPECT_TRUE(drained(manager));
  EXPECT_EQ(manager.getStatusTotalWriteCount(), 502U);
  EXPECT_FALSE(Access::logger(manager).handle.isOpen());
}

TEST(LogWorker, QueuedChangesAreApplied) {
  using velka::SettingCode;
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  Access::enqueue(manager, changeRecord(manager, SettingCode::Name, 0, "hot"));
  Access::enqueue(manager, changeRecord(manager, SettingCode::Path, 0, "/q/"));
  Access::enqueue(manager, changeRecord(manager, SettingCode::Level, LOG_LEVEL_ERROR));
  Access::enqueue(manager, changeRecord(manager, SettingCode::FileLine, 0));
  Access::enqueue(manager, changeRecord(manager, SettingCode::Display, 0));
  Access::enqueue(manager, changeRecord(manager, SettingCode::OutFile, 0));
  Access::enqueue(manager, changeRecord(manager, SettingCode::LimitSize, -1));
  Access::enqueue(manager, changeRecord(manager, SettingCode::MonthDir, 1));
  Access::enqueue(manager, changeRecord(manager, SettingCode::Reserve, -9));
  Access::enqueue(manager, changeRecord(manager, SettingCode::Enable, 0));
  Access::enqueue(manager, changeRecord(manager, static_cast<SettingCode>(99), 1));
  ASSERT_TRUE(manager.stop());
  const LoggerInfo& main = Access::logger(manager);
  EXPECT_EQ(main.name, "hot");
  EXPECT_EQ(main.path, "/q/");
  EXPECT_EQ(main.level, LOG_LEVEL_ERROR);
  EXPECT_FALSE(main.fileline);
  EXPECT_FALSE(main.display);
  EXPECT_FALSE(main.outfile);
  EXPECT_EQ(main.limitsize, 0U);
  EXPECT_TRUE(main.monthdir);
  EXPECT_EQ(main.reserve, 0);
  EXPECT_FALSE(main.enable);
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 11U);
}

// What a record held before it was used again stands behind its end.
TEST(LogWorker, QueuedChangesEndWhereTheirTextDoes) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  for (const std::int32_t length : {2, 0, -1}) {
    LogData* const record = changeRecord(manager, velka::SettingCode::Name, 0, "former");
    record->contentLen = length;
    Access::enqueue(manager, record);
    ASSERT_TRUE(eventually([&] { return drained(manager); }));
  }
  ASSERT_TRUE(manager.stop());
  EXPECT_EQ(Access::logger(manager).name, "");
}

TEST(LogWorker, QueuedRecordsOfNoLoggerAreDropped) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  ASSERT_TRUE(manager.start());
  for (const std::int32_t id : {-1, 7, 20, INT32_MAX}) {
    Access::enqueue(manager, manager.makeLogData(id, 1));
    LogData* const change = changeRecord(manager, velka::SettingCode::Level, 6);
    change->loggerId = id;
    Access::enqueue(manager, change);
  }
  ASSERT_TRUE(manager.stop());
  EXPECT_EQ(manager.getStatusTotalPopQueue(), 8U);
  EXPECT_EQ(manager.getStatusTotalWriteCount(), 2U);
  EXPECT_EQ(Access::logger(manager).level, LOG_LEVEL_DEBUG);
}
