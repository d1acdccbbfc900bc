// A manager that writes.
#pragma once

#include "LogTestSupport.h"

namespace logtest {

/// A started manager that logs into a folder of its own, its banner gone.
class LogWriting : public testing::Test {
 protected:
  void SetUp() override {
    aimAt(manager, folder);
    ASSERT_TRUE(manager.start());
    ASSERT_EQ(truncate(path().c_str(), 0), 0);
  }

  [[nodiscard]] std::string path() const { return folder.file("velka.log"); }
  [[nodiscard]] std::string text() const { return readFile(path()); }

  TempFolder folder;
  LogerManager manager;
};

}  // namespace logtest
