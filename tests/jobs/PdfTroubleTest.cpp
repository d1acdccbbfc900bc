// PDF jobs that are cancelled while a tool works, and whose tools, disks or neighbours
// fail them.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "jobs/PdfJobFixture.h"
#include "support/Processes.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

const std::vector<std::string> kTools = {"sh",   "grep",  "cut", "pdfinfo", "pdftoppm", "cat",
                                         "head", "sleep", "rm",  "mv",      "kill"};

size_t linesThatHold(const std::string& text) {
  const std::vector<std::string> lines = logMessages();
  return static_cast<size_t>(std::count_if(lines.begin(), lines.end(), [&](const auto& line) {
    return line.find(text) != std::string::npos;
  }));
}

// A job of three pages; page 2 comes out white, the others as they are.
void expectPageTwoWhite(const JobId& id, const FilterJob& job,
                        const std::string& program = kFilter) {
  const Pages pages = rasterPages(3);
  Pictures pictures = picturesOf(id.pdf(), pages);
  pictures[1] = std::nullopt;
  const FilterResult result = runFilter(program, job);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(3));
  expectSameStream(result.output, expectedPdfStream(reference::defaultOptions(), pages, pictures));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

// As on a disk that is full: the tool itself may see it or not.
TEST(PdfJobs, AHalfPicturePrintsAWhitePageAndOneLineSaysSo) {
  for (const char* status : {"0", "3"}) {
    const JobId id("half");
    ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
    const ToolFolder tools(kTools);
    tools.addScript("pdftoppm",
                    "/usr/bin/pdftoppm \"$@\"; case \"$*\" in *'-f 2 '*) "
                    "for root; do :; done; head -c 20000 \"$root-2.ppm\" >\"$root.half\"; "
                    "cat \"$root.half\" >\"$root-2.ppm\"; rm \"$root.half\"; exit " +
                        std::string(status) + ";; esac");
    const TempFile ppd(ppdText({1, {}, true}));
    FilterJob job = jobOf(id.text(), ppd, rasterPages(3));
    job.path = tools.path();
    expectPageTwoWhite(id, job);
    EXPECT_EQ(linesThatHold("no page from the PDF: its picture holds 19985 of 45000 bytes"), 1U);
    EXPECT_EQ(linesThatHold("no page"), 1U);
  }
}

// A /tmp of so many bytes while it lives, for this process and what it starts.
class SmallTmp {
 public:
  explicit SmallTmp(const std::string& bytes)
      : mounted_(unshare(CLONE_NEWNS) == 0 &&
                 mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                 mount("tmpfs", "/tmp", "tmpfs", 0, ("mode=1777,size=" + bytes).c_str()) == 0) {}
  ~SmallTmp() {
    if (mounted_) umount("/tmp");
  }
  SmallTmp(const SmallTmp&) = delete;
  SmallTmp& operator=(const SmallTmp&) = delete;
  [[nodiscard]] bool mounted() const { return mounted_; }

 private:
  bool mounted_;
};

// The log is on that disk as well.
TEST(PdfJobs, AFullDiskHasRoomForTheLineThatSaysSo) {
#ifdef __SANITIZE_THREAD__
  GTEST_SKIP() << "a process under this sanitizer gets not one byte of a tmpfs so small";
#endif
  constexpr size_t kPages = 6;
  std::string document;
  {
    const JobId made("made");
    ASSERT_TRUE(makePdf(made.pdf(), postscriptPages(kPages)));
    document = textOf(made.pdf());
  }
  // Room for the log, and for less than a picture of 45,000 bytes beside it.
  const SmallTmp tmp(std::to_string(document.size() / 4096 * 4096 + (72U << 10U)));
  if (!tmp.mounted()) GTEST_SKIP() << "only root can mount a /tmp, and not everywhere";
  const JobId id("full");
  writeText(id.pdf(), document);
  const TempFile ppd(ppdText({1, {}, true}));
  writeText("/tmp/filler", std::string(36U << 10U, 'x'));
  EXPECT_EQ(runFilter(kFilter, jobOf(id.text(), ppd, rasterPages(kPages))).status, 0);
  EXPECT_EQ(linesThatHold("no page from the PDF: its picture holds "), kPages);
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

// The limit on files that the whole job has: the tool is ended at it.
TEST(PdfJobs, APictureThatMayNotGrowPrintsAWhitePage) {
  const JobId id("limit");
  ASSERT_TRUE(
      makePdf(id.pdf(), postscriptPage(1) + postscriptPage(2, 200, 200) + postscriptPage(3)));
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, rasterPages(3));
  // 102,400 bytes: more than a small page, less than the large one.
  job.arguments.insert(job.arguments.begin(), {"-c", "ulimit -f 200; exec \"$0\" \"$@\"", kFilter});
  expectPageTwoWhite(id, job, "/bin/sh");
  EXPECT_EQ(linesThatHold("no page from the PDF: its picture holds "), 1U);
}

// The picture is whole and larger than the memory there is.
TEST(PdfJobs, APictureThatCannotBeReadIsRemovedAndOneLineSaysSo) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  GTEST_SKIP() << "the sanitizers need address space without limits";
#endif
  const JobId id("beyond");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(1)));
  ToolFolder tools(kTools);
  tools.addScript("pdftoppm",
                  "for root; do :; done; printf 'P6\\n14000 14000\\n255\\n' >\"$root-1.ppm\"; "
                  "/usr/bin/truncate -s 588000017 \"$root-1.ppm\"");
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, rasterPages(1));
  job.path = tools.path();
  job.addressSpace = size_t{400} << 20U;
  EXPECT_EQ(runFilter(kFilter, job).status, 0);
  EXPECT_EQ(linesThatHold("no page from the PDF: its picture cannot be read"), 1U);
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

TEST(PdfJobs, AnotherJobsHungCountDoesNotWhitenThem) {
  const JobId id("neighbour");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(12)));
  const int held = open("/tmp/PdfPages", O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  ASSERT_EQ(flock(held, LOCK_EX | LOCK_NB), 0);
  const Pages pages = rasterPages(3);
  const Pictures pictures = picturesOf(id.pdf(), pages);
  const TempFile ppd(ppdText({1, {}, true}));
  const FilterResult result = runFilter(kFilter, jobOf(id.text(), ppd, pages));
  expectSameStream(result.output, expectedPdfStream(reference::defaultOptions(), pages, pictures));
  close(held);
  unlink("/tmp/PdfPages");
}

TEST(PdfJobs, CountThePagesOnceAndLogThemPageByPage) {
  const JobId id("once");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(12)));
  const TempFolder notes;
  const ToolFolder tools(kTools);
  tools.addScript("pdfinfo", "echo run >>" + (notes / "runs") + "; echo 'Pages:          12'");
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, rasterPages(3));
  job.path = tools.path();
  ASSERT_EQ(runFilter(kFilter, job).status, 0);
  EXPECT_EQ(textOf(notes / "runs"), "run\n");
  EXPECT_EQ(linesThatHold("temp: /tmp/VK_TEMP_CUPS_" + id.text() + "-%.2d.ppm"), 3U);
}

TEST(PdfJobs, LogTheToolsStatusAlsoWhereTheCallerIgnoresItsChildren) {
  const JobId id("children");
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, rasterPages(1));
  job.arguments.insert(job.arguments.begin(), {"--ignore-signal=CHLD", kFilter});
  EXPECT_EQ(runFilter("/usr/bin/env", job).status, 0);
  EXPECT_EQ(linesThatHold(", ret: 256"), 1U);
}

// A tool that asks the filter to end and then hangs, with a child that hangs too; both
// take no notice of being asked themselves. Page 2 is what it draws.
class HangingTool {
 public:
  explicit HangingTool(const std::string& tool) : tools_(kTools) {
    const std::string hang = "trap '' TERM; sleep 60 & echo $! >" + file("child") + "; echo $$ >" +
                             file("tool") + "; kill -TERM $(cat " + file("filter") +
                             "); sleep 60; echo late >" + file("late") + "; exit 1";
    tools_.addScript(tool, "case \"$*\" in *" + std::string(tool == "pdfinfo" ? "" : "'-f 2 '") +
                               "*) " + hang + ";; esac; exec /usr/bin/" + tool + " \"$@\"");
  }
  FilterResult cancel(FilterJob job) {
    job.path = tools_.path();
    feedAfter(job, [&](int pid) { writeText(file("filter"), std::to_string(pid)); });
    return runFilter(kFilter, job);
  }
  void expectGone() const {
    EXPECT_FALSE(TempFile::exists(file("late")));
    for (const char* process : {"tool", "child"}) {
      const int pid = std::atoi(textOf(file(process)).c_str());
      ASSERT_GT(pid, 0) << process;
      EXPECT_TRUE(ends(pid)) << process;
    }
  }

 private:
  [[nodiscard]] std::string file(const std::string& name) const { return notes_ / name; }
  TempFolder notes_;
  ToolFolder tools_;
};

TEST(PdfJobs, ThatAreCancelledEndTheToolThatDrawsWithAllItStarted) {
  const JobId id("hang");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
  const Pages pages = rasterPages(3);
  Pictures pictures = picturesOf(id.pdf(), pages);
  pictures[1] = std::nullopt;
  const TempFile ppd(ppdText({1, {}, true}));
  HangingTool tool("pdftoppm");
  const FilterResult result = tool.cancel(jobOf(id.text(), ppd, pages));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(1));
  tool.expectGone();
  expectSameStream(result.output,
                   expectedPdfStream(reference::defaultOptions(), {pages[0], pages[1]}, pictures));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

TEST(PdfJobs, ThatAreCancelledEndTheToolThatCountsAndDrawNothing) {
  const JobId id("hangcount");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
  const Pages pages = rasterPages(3);
  const TempFile ppd(ppdText({1, {}, true}));
  HangingTool tool("pdfinfo");
  const FilterResult result = tool.cancel(jobOf(id.text(), ppd, pages));
  EXPECT_EQ(result.status, 0);
  tool.expectGone();
  EXPECT_EQ(linesThatHold("no page from the PDF: the job is cancelled"), 1U);
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
  EXPECT_FALSE(TempFile::exists("/tmp/PdfPages"));
}

// The address sanitizer's companion opens a pipe to look at an object, and calls the object
// wrong where it gets none.
constexpr int kFewest = testing::amount(4, 8, 4);

// However few descriptors there are: the tools here write to standard output and would
// read standard input.
TEST(PdfJobs, NeverLetAToolWriteToThePrinter) {
  const ToolFolder tools({"sh", "grep", "cut"});
  for (const char* tool : {"pdfinfo", "pdftoppm"})
    ASSERT_EQ(symlink("/bin/echo", (tools.path() + "/" + tool).c_str()), 0);
  const TempFile ppd(ppdText({1, {}, true}));
  const Pages pages = rasterPages(1);
  int printed = 0;
  std::string ends;
  for (int descriptors = kFewest; descriptors < kFewest + 7; ++descriptors) {
    const JobId id("few");
    writeText(id.pdf(), "a document");
    FilterJob job = jobOf(id.text(), ppd, pages);
    job.path = tools.path();
    job.arguments.insert(
        job.arguments.begin(),
        {"-c", "ulimit -n " + std::to_string(descriptors) + "; exec \"$0\" \"$@\"", kFilter});
    const FilterResult result = runFilter("/bin/sh", job);
    // With too few of them not even the PPD or the raster can be opened.
    ends += std::to_string(descriptors) + ": " + result.errors + "\n";
    if (result.errors != finished(1)) continue;
    ++printed;
    expectSameStream(result.output, expectedPdfStream(reference::defaultOptions(), pages,
                                                      Pictures(1, std::nullopt)));
  }
  EXPECT_GE(printed, 5) << ends;
}

}  // namespace
}  // namespace velka::testing
