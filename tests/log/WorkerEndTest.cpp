// The end of the worker thread: nobody goes on before it.
#include "LogTestSupport.h"

using logtest::Access;
using logtest::aimAt;
using logtest::readFile;
using logtest::TempFolder;

namespace {

std::size_t occurrences(const std::string& text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

}  // namespace

TEST(LogWorkerEnd, HasComeWhenStopReturns) {
  const TempFolder folder;
  LogerManager manager;
  aimAt(manager, folder);
  for (int round = 0; round < 5; ++round) {
    ASSERT_TRUE(manager.start());
    EXPECT_TRUE(manager.isWorking());
    ASSERT_TRUE(manager.stop());
    EXPECT_FALSE(manager.isWorking());
  }
}

// The worker empties the queue before it ends, so what waits there is written.
TEST(LogWorkerEnd, IsWaitedForWhenTheManagerGoes) {
  constexpr int kLines = 500;
  const TempFolder folder;
  {
    LogerManager manager;
    aimAt(manager, folder);
    ASSERT_TRUE(manager.start());
    for (int i = 0; i < kLines; ++i) {
      Access::enqueue(manager, manager.makeLogData(0, LOG_LEVEL_DEBUG));
    }
  }
  EXPECT_EQ(occurrences(readFile(folder.file("velka.log")), "LOG_DEBUG"), std::size_t{kLines});
}
