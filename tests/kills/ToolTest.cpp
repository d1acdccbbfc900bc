// Tools that hang, write without end, die or leave others behind.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "kills/KilledJob.h"

namespace velka::testing {
namespace {

// Half a minute at most.
bool appears(const std::string& path) {
  for (int round = 0; round < 3000 && !TempFile::exists(path); ++round) usleep(10000);
  return TempFile::exists(path);
}

class ToolsOfAJob : public ::testing::Test {
 protected:
  // A tool that works beside a child of its own and then hangs, or ends.
  void useTool(const std::string& tool, const std::string& ending) {
    job_.tools().addScript(tool, "sleep 600 >/dev/null & echo >" + mark() + "; " + ending);
  }
  [[nodiscard]] std::string mark() const { return folder_ / "mark"; }

 private:
  TempFolder folder_;  // before the job, which clears what comes later

 protected:
  KilledJob job_{KilledJob::Kind::Pdf};
};

TEST_F(ToolsOfAJob, GoWithAllTheyStartedWhenTheFilterIsKilledOutright) {
  for (const char* tool : {"pdfinfo", "pdftoppm"}) {
    SCOPED_TRACE(tool);
    unlink(mark().c_str());
    useTool(tool, "sleep 600");
    const Outcome run = job_.runWith([this](int pid) {
      EXPECT_TRUE(appears(mark()));
      kill(pid, SIGKILL);
    });
    EXPECT_EQ(run.result.status, 128 + SIGKILL);
    EXPECT_EQ(run.alive, std::vector<std::string>{});
    useTool(tool, "exit 1");
  }
}

TEST_F(ToolsOfAJob, LeaveNobodyBehindThatTheyStarted) {
  for (const char* tool : {"pdfinfo", "pdftoppm"}) {
    SCOPED_TRACE(tool);
    useTool(tool, "exit 1");
    const Outcome run = job_.runWith([](int /*pid*/) {});
    EXPECT_EQ(run.result.status, 0);
    EXPECT_EQ(run.alive, std::vector<std::string>{});
  }
}

}  // namespace
}  // namespace velka::testing
