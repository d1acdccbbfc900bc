// The logging statement, on the one manager of the process.
#include "LogTestSupport.h"

using logtest::linesOf;
using logtest::readFile;
using logtest::TempFolder;

namespace {

int evaluations = 0;

int counted() {
  return ++evaluations;
}

}  // namespace

TEST(LogStatement, LogsOnTheMainLoggerAndEvaluatesArgumentsOnlyThen) {
  const TempFolder folder;
  evaluations = 0;
  ILog4zManager* const manager = ILog4zManager::getInstance();
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(ILog4zManager::getInstance(), manager);
  VELKA_LOG_DEBUG("dropped %d", counted());
  EXPECT_EQ(evaluations, 0);

  ASSERT_TRUE(manager->setLoggerPath(0, folder.path().c_str()));
  ASSERT_TRUE(manager->setLoggerName(0, "velka"));
  ASSERT_TRUE(manager->start());
  VELKA_LOG_DEBUG("Init sRotation: %d", counted());
  const std::string where = logtest::numbered(" StatementTest.cpp:", __LINE__ - 1);
  if (evaluations == 1) VELKA_LOG_DEBUG("plain");
  EXPECT_TRUE(manager->setLoggerLevel(0, LOG_LEVEL_INFO));
  VELKA_LOG_DEBUG("dropped %d", counted());
  EXPECT_EQ(evaluations, 1);
  EXPECT_TRUE(manager->stop());
  EXPECT_TRUE(manager->setLoggerLevel(0, LOG_LEVEL_DEBUG));

  const auto lines = linesOf(readFile(folder.file("velka.log")));
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_TRUE(lines[2].ends_with("] LOG_DEBUG Init sRotation: 1" + where)) << lines[2];
  EXPECT_NE(lines[3].find("] LOG_DEBUG plain StatementTest.cpp:"), std::string::npos);
}
