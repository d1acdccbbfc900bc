// Tools that hang, write without end, die or leave others behind.
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "kills/KilledJob.h"
#include "support/Eventually.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

bool tells(const Outcome& run, const std::string& text) {
  return run.log.find(text) != std::string::npos;
}

bool appears(const std::string& path) {
  return eventually([&] { return TempFile::exists(path); });
}

class ToolsOfAJob : public ::testing::Test {
 protected:
  // A tool that works beside a child of its own and then hangs, or ends.
  void useTool(const std::string& tool, const std::string& ending) {
    job_.tools().addScript(tool, "sleep 600 >/dev/null & echo >" + mark() + "; " + ending);
  }
  // The tool that draws does this for page 2, `$root-2.ppm` is its file, and its work otherwise.
  void useForPageTwo(const std::string& body) {
    const std::string own = textOf(job_.tools().path() + "/pdftoppm");
    job_.tools().addScript(
        "pdftoppm", "case \"$*\" in *'-f 2 '*) for root; do :; done; " + body + ";; esac\n" + own);
  }
  // Page 2 of what comes without a fault is white.
  void expectPageTwoWhite(const Outcome& good, const Outcome& run) const {
    const std::vector<Bytes> pages = pagesOf(good.result.output);
    ASSERT_EQ(pages.size(), 3U);
    Bytes wanted = joined(pages[0], whitePageOf(pages[0]));
    wanted = joined(joined(wanted, pages[2]), endOfDocument());
    EXPECT_EQ(run.result.status, 0);
    EXPECT_TRUE(run.result.output == wanted) << run.log;
    EXPECT_EQ(run.result.errors, good.result.errors);
    EXPECT_EQ(run.alive, std::vector<std::string>{});
    EXPECT_EQ(run.left, good.left);
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
    const Outcome run = job_.runChanged([this](FilterJob& job) {
      job.drain = [this](int pid, int output) {
        EXPECT_TRUE(appears(mark()));
        kill(pid, SIGKILL);
        return readToEnd(output);
      };
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
    const Outcome run = job_.run();
    EXPECT_EQ(run.result.status, 0);
    EXPECT_EQ(run.alive, std::vector<std::string>{});
  }
}

TEST_F(ToolsOfAJob, ThatDieLoseTheirPageAndTheLogSaysHow) {
  const Outcome good = job_.run();
  const std::string own = textOf(job_.tools().path() + "/pdftoppm");
  for (const int signal : {SIGKILL, SIGSEGV, SIGABRT, SIGTERM, SIGPIPE, SIGHUP}) {
    SCOPED_TRACE(signal);
    useForPageTwo("kill -" + std::to_string(signal) + " $$");
    const Outcome run = job_.run();
    expectPageTwoWhite(good, run);
    EXPECT_TRUE(tells(run, ", ret: " + std::to_string(signal) + ' ') ||
                tells(run, ", ret: " + std::to_string((128 + signal) << 8) + ' '))
        << run.log;
    job_.tools().addScript("pdftoppm", own);
  }
}

TEST_F(ToolsOfAJob, ThatCountAndDieLeaveThePagesWhite) {
  const Outcome good = job_.run();
  const Bytes white = whitePageOf(good.result.output);
  useTool("pdfinfo", "kill -SEGV $$");
  const Outcome run = job_.run();
  EXPECT_EQ(run.result.status, 0);
  EXPECT_EQ(run.result.errors, good.result.errors);
  EXPECT_TRUE(run.result.output == joined(joined(joined(white, white), white), endOfDocument()));
  EXPECT_EQ(run.alive, std::vector<std::string>{});
}

// Its report is cut at 1 MiB, and whoever writes into the pipe behind that is ended.
TEST_F(ToolsOfAJob, ThatCountWithoutEndAreStoppedBeforeTheirTime) {
  useTool("pdfinfo", "exec /usr/bin/yes 'Pages:          3'");
  const Outcome run = job_.run();
  EXPECT_EQ(run.result.status, 0);
  EXPECT_FALSE(tells(run, "took too long"));
  EXPECT_EQ(run.alive, std::vector<std::string>{});
  EXPECT_FALSE(TempFile::exists("/tmp/PdfPages"));
}

// Two thousand million bytes, most of them a hole; the limit of 1 GiB lies inside.
TEST_F(ToolsOfAJob, ThatDrawGigabytesAreStoppedAndLeaveNothing) {
  if (sweep(true, false)) GTEST_SKIP() << "takes a gigabyte of memory: ./dev faults has it";
  const Outcome good = job_.run();
  useForPageTwo(
      "printf 'P6\\n100000 100000\\n255\\n' >$root-2.ppm; /usr/bin/dd if=/dev/zero "
      "of=$root-2.ppm conv=notrunc bs=1M seek=1000 count=1000; exit $?");
  const Outcome run = job_.run();
  expectPageTwoWhite(good, run);
  EXPECT_TRUE(tells(run, "its picture holds 10737418")) << run.log;
}

}  // namespace
}  // namespace velka::testing
