// A log facility that finds no memory.
#include <type_traits>

#include "LogTestSupport.h"
#include "support/FailingMemory.h"

using logtest::Access;
using velka::testing::FailingMemory;

static_assert(std::is_nothrow_default_constructible_v<LogerManager>);

TEST(LogWithoutMemory, TheManagerIsMadeAllTheSame) {
  alignas(LogerManager) static std::byte storage[sizeof(LogerManager)];
  LogerManager* manager = nullptr;
  {
    const FailingMemory none(0, FailingMemory::kAll);
    manager = new (storage) LogerManager;
  }
  EXPECT_FALSE(Access::logger(*manager).name.empty());
  EXPECT_EQ(Access::logger(*manager).key, "Main");
  EXPECT_EQ(manager->findLogger("Main"), LOGGER_MAIN_ID);
  EXPECT_EQ(manager->createLogger("Main"), LOGGER_MAIN_ID);
  EXPECT_TRUE(manager->configFromString("[main]\nname=other\n"));
  EXPECT_EQ(Access::logger(*manager).name, "other");
  EXPECT_EQ(manager->createLogger("next"), 1);
  manager->~LogerManager();
}
