// Jobs whose pages come from a PDF, byte for byte against the literal reference
// fed with the tool's own pictures.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <thread>

#include "jobs/PdfJobFixture.h"

namespace velka::testing {
namespace {

// Every page of the document in its place, nothing left under /tmp.
void expectPrinted(const std::string& postscript, const Pages& pages,
                   const std::vector<std::pair<std::string, std::string>>& ppdOptions = {},
                   const tagOEMCFG& options = reference::defaultOptions()) {
  const JobId id("job");
  ASSERT_TRUE(makePdf(id.pdf(), postscript));
  const Pictures pictures = picturesOf(id.pdf(), pages);
  ASSERT_TRUE(std::all_of(pictures.begin(), pictures.end(), [](const auto& p) { return !!p; }));
  const TempFile ppd(ppdText({1, ppdOptions, true}));
  const FilterResult result = runFilter(kFilter, jobOf(id.text(), ppd, pages));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(pages.size()));
  expectSameStream(result.output, expectedPdfStream(options, pages, pictures));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
  EXPECT_FALSE(TempFile::exists("/tmp/PdfPages"));
}

TEST(PdfJobs, PrintThePdfInPlaceOfTheRaster) {
  for (const int count : {1, 9, 10, 12})
    expectPrinted(postscriptPages(count), rasterPages(static_cast<size_t>(count)));
}

TEST(PdfJobs, AHundredPagesPrint) {
  expectPrinted(postscriptPages(100), rasterPages(100, 60, 60));
}

TEST(PdfJobs, PagesOfDifferentSizesAndTurnsPrintAtTheirOwnSize) {
  expectPrinted(postscriptPage(1, 60, 40) + postscriptPage(2, 31, 77) +
                    postscriptPage(3, 90, 30, 90) + postscriptPage(4, 50, 45, 180),
                rasterPages(4));
}

TEST(PdfJobs, ResolutionsMayDifferAcrossAndDown) {
  expectPrinted(postscriptPages(2), rasterPages(2, 90, 180));
  expectPrinted(postscriptPages(2), rasterPages(2, 360, 180));
  expectPrinted(postscriptPages(2), rasterPages(2, 360, 360));
}

TEST(PdfJobs, OffsetsAndRotationsApply) {
  tagOEMCFG options = reference::defaultOptions();
  options.sRotation = 1;
  options.sHrzOffset = 20;
  options.sVtcOffset = 30;
  expectPrinted(
      postscriptPages(3), rasterPages(3),
      {{"AnticlockwiseRotate", "1"}, {"HorizontalOffsetValue", "2"}, {"VerticalOffsetValue", "3"}},
      options);
}

TEST(PdfJobs, WithoutTheOptionPrintTheRaster) {
  const JobId id("raster");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(1)));
  const TempFile ppd(ppdText({1, {}, false}));
  const Pages pages = rasterPages(1);
  const FilterResult result = runFilter(kFilter, jobOf(id.text(), ppd, pages));
  expectSameStream(result.output, expectedStream(reference::defaultOptions(), pages));
  EXPECT_FALSE(TempFile::exists(id.pdf()));
}

TEST(PdfJobs, TheOptionCountsWhenTheJobSetsIt) {
  const JobId id("option");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(1)));
  const Pages pages = rasterPages(1);
  const Pictures pictures = picturesOf(id.pdf(), pages);
  const TempFile ppd(ppdText({1, {}, false}));
  FilterJob job = jobOf(id.text(), ppd, pages);
  job.arguments[4] = "PdfPreprocess=yes";
  expectSameStream(runFilter(kFilter, job).output,
                   expectedPdfStream(reference::defaultOptions(), pages, pictures));
}

// A job whose pictures cannot be had prints white pages and says nothing.
void expectWhite(const JobId& id, const Pages& pages) {
  const TempFile ppd(ppdText({1, {}, true}));
  const FilterResult result = runFilter(kFilter, jobOf(id.text(), ppd, pages));
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(pages.size()));
  expectSameStream(result.output, expectedPdfStream(reference::defaultOptions(), pages,
                                                    Pictures(pages.size(), std::nullopt)));
}

TEST(PdfJobs, AMissingEmptyOrEncryptedPdfPrintsWhitePages) {
  const JobId id("white");
  expectWhite(id, rasterPages(2));
  writeText(id.pdf(), "");
  expectWhite(id, rasterPages(2));
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(2),
                      "-sOwnerPassword=a -sUserPassword=b -dEncryptionR=3 -dKeyLength=128"));
  expectWhite(id, rasterPages(2));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

TEST(PdfJobs, ACutOffPdfPrintsWhatTheToolMakesOfIt) {
  const JobId id("cut");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
  const std::string whole = textOf(id.pdf());
  const TempFile ppd(ppdText({1, {}, true}));
  const Pages pages = rasterPages(3);
  for (const size_t part : {size_t{2}, size_t{7}}) {
    writeText(id.pdf(), whole.substr(0, whole.size() * part / 8));
    const Pictures pictures = picturesOf(id.pdf(), pages);
    expectSameStream(runFilter(kFilter, jobOf(id.text(), ppd, pages)).output,
                     expectedPdfStream(reference::defaultOptions(), pages, pictures));
  }
}

TEST(PdfJobs, APageBehindTheLastStaysWhiteAtTheWidthOfThePageBefore) {
  const JobId id("behind");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPage(1, 200, 90)));
  const Pages pages = rasterPages(3);
  const Pictures pictures = picturesOf(id.pdf(), pages);
  ASSERT_TRUE(pictures[0] && !pictures[1] && !pictures[2]);
  const TempFile ppd(ppdText({1, {}, true}));
  expectSameStream(runFilter(kFilter, jobOf(id.text(), ppd, pages)).output,
                   expectedPdfStream(reference::defaultOptions(), pages, pictures));
}

TEST(PdfJobs, WithoutPdftoppmPrintWhitePagesAndLeaveNothing) {
  const JobId id("nodraw");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(2)));
  const ToolFolder tools({"sh", "grep", "cut", "pdfinfo"});
  const Environment path("PATH", tools.path());
  expectWhite(id, rasterPages(2));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

TEST(PdfJobs, WithoutPdfinfoPrintWhitePagesAndLeaveTheirPictures) {
  const JobId id("nocount");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(10)));
  const ToolFolder tools({"sh", "grep", "cut", "pdftoppm"});
  const Environment path("PATH", tools.path());
  expectWhite(id, rasterPages(2));
  // Its log is as it always was.
  EXPECT_EQ(logText().find("no page"), std::string::npos);
  EXPECT_EQ(filesOf(id.text()).size(), 2U);
  EXPECT_TRUE(TempFile::exists(id.picture("01")));
  EXPECT_TRUE(TempFile::exists(id.picture("02")));
}

TEST(PdfJobs, TwoAtOnceKeepTheirPagesApart) {
  const JobId nine("nine");
  const JobId twelve("twelve");
  ASSERT_TRUE(makePdf(nine.pdf(), postscriptPages(9)));
  ASSERT_TRUE(makePdf(twelve.pdf(), postscriptPages(12)));
  const Pages pages = rasterPages(6);
  const Bytes expectedNine =
      expectedPdfStream(reference::defaultOptions(), pages, picturesOf(nine.pdf(), pages));
  const Bytes expectedTwelve =
      expectedPdfStream(reference::defaultOptions(), pages, picturesOf(twelve.pdf(), pages));
  // A slow count makes the two meet at the file they share.
  const ToolFolder tools({"sh", "grep", "cut", "pdftoppm", "sleep"});
  tools.addScript("pdfinfo", "sleep 0.1; exec /usr/bin/pdfinfo \"$@\"");
  const Environment path("PATH", tools.path());
  const TempFile ppd(ppdText({1, {}, true}));
  FilterResult second;
  std::thread other([&] { second = runFilter(kFilter, jobOf(twelve.text(), ppd, pages)); });
  const FilterResult first = runFilter(kFilter, jobOf(nine.text(), ppd, pages));
  other.join();
  expectSameStream(first.output, expectedNine);
  expectSameStream(second.output, expectedTwelve);
}

TEST(PdfJobs, AHostileJobIdReachesNeitherTheShellNorAPath) {
  const TempFolder folder;
  const std::string mark = folder / "mark";
  const ToolFolder tools({"sh", "touch", "grep", "cut"});
  for (const char* tool : {"pdfinfo", "pdftoppm"}) tools.addScript(tool, "touch " + mark);
  const Environment path("PATH", tools.path());
  // A folder by which an id with slashes leads out of /tmp's own names.
  const JobId id("step");
  const std::string step = "/tmp/VK_TEMP_CUPS_" + id.text();
  ASSERT_EQ(mkdir(step.c_str(), 0700), 0);
  writeText(folder / "precious.pdf", "precious");
  const std::string out = id.text() + "/../" + folder.path().substr(5) + "/precious";
  ASSERT_TRUE(TempFile::exists(pdfPathOf(out)));
  const TempFile ppd(ppdText({1, {}, true}));
  const Pages pages = rasterPages(1);
  for (const std::string& hostile : {out, "7;touch " + mark, "$(touch " + mark + ")",
                                     "7\ntouch " + mark + "\n", "7|8 " + mark}) {
    const FilterResult result = runFilter(kFilter, jobOf(hostile, ppd, pages));
    EXPECT_EQ(result.status, 0);
    expectSameStream(result.output, expectedPdfStream(reference::defaultOptions(), pages,
                                                      Pictures(1, std::nullopt)));
    const std::vector<std::string> lines = logMessages();
    EXPECT_EQ(
        std::count_if(lines.begin(), lines.end(),
                      [](const auto& l) { return l.rfind("no page from the PDF: ", 0) == 0; }),
        1);
    EXPECT_EQ(logText().find("system cmd"), std::string::npos);
  }
  EXPECT_FALSE(TempFile::exists(mark));
  EXPECT_EQ(textOf(folder / "precious.pdf"), "precious");
  rmdir(step.c_str());
}

TEST(PdfJobs, PlantedLinksAreNotFollowed) {
  const TempFile target("precious");
  const JobId id("planted");
  const Pages pages = rasterPages(3);
  for (const std::string& name : {id.picture("2"), std::string("/tmp/PdfPages")}) {
    ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
    Pictures pictures = picturesOf(id.pdf(), pages);
    // Its own picture's name is taken; the page count has another way.
    if (name == id.picture("2")) pictures[1] = std::nullopt;
    ASSERT_EQ(symlink(target.path().c_str(), name.c_str()), 0);
    const TempFile ppd(ppdText({1, {}, true}));
    const FilterResult result = runFilter(kFilter, jobOf(id.text(), ppd, pages));
    EXPECT_EQ(result.status, 0);
    expectSameStream(result.output,
                     expectedPdfStream(reference::defaultOptions(), pages, pictures));
    EXPECT_EQ(textOf(target.path()), "precious");
    unlink(name.c_str());
  }
}

TEST(PdfJobs, LogTheirCommandsAndNames) {
  const JobId id("log");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(12)));
  const TempFile ppd(ppdText({1, {}, true}));
  ASSERT_EQ(runFilter(kFilter, jobOf(id.text(), ppd, rasterPages(3, 90, 180))).status, 0);
  const std::vector<std::string> lines = logMessages();
  const std::string name = "tempPPM: " + id.picture("03");
  auto at = std::find(lines.begin(), lines.end(), name);
  ASSERT_LT(at + 3, lines.end());
  EXPECT_EQ(*(at - 1), "temp: /tmp/VK_TEMP_CUPS_" + id.text() + "-%.2d.ppm");
  EXPECT_EQ(*(at + 1), "system cmd: pdftoppm -q -aa no -aaVector no -f 3 -l 3 -rx 90 -ry 180 " +
                           id.pdf() + " /tmp/VK_TEMP_CUPS_" + id.text() + ", ret: 0");
  EXPECT_EQ(*(at + 2), name);
  EXPECT_EQ((at + 3)->rfind("PPM width: 75, height: 100, pData: 0x", 0), 0U) << *(at + 3);
  EXPECT_EQ(*(at + 4), "After getting data");
}

TEST(PdfJobs, LogAFailedTool) {
  const JobId id("fail");
  const TempFile ppd(ppdText({1, {}, true}));
  ASSERT_EQ(runFilter(kFilter, jobOf(id.text(), ppd, rasterPages(1))).status, 0);
  const std::vector<std::string> lines = logMessages();
  const auto at = std::find_if(lines.begin(), lines.end(),
                               [](const auto& l) { return l.rfind("system cmd: ", 0) == 0; });
  ASSERT_LT(at + 2, lines.end());
  EXPECT_NE(at->find(", ret: 256"), std::string::npos) << *at;
  EXPECT_EQ(*(at + 1), "tempPPM: ");
  EXPECT_EQ(*(at + 2), "PPM width: 0, height: 0, pData: (nil)");
}

// Runs a job of three pages in which drawing page 2 asks the filter to end.
FilterResult runCancelled(const JobId& id, const ToolFolder& tools, const Pages& pages) {
  const TempFolder folder;
  tools.addScript("pdftoppm",
                  "/usr/bin/pdftoppm \"$@\"; status=$?; case \"$*\" in *'-f 2 '*) "
                  "kill -TERM $(cat " +
                      (folder / "pid") + ");; esac; exit $status");
  const Environment path("PATH", tools.path());
  const TempFile ppd(ppdText({1, {}, true}));
  FilterJob job = jobOf(id.text(), ppd, pages);
  feedAfter(job, [&](int pid) { writeText(folder / "pid", std::to_string(pid)); });
  return runFilter(kFilter, job);
}

TEST(PdfJobs, ThatSigtermEndsFinishTheirPageAndLeaveNoFiles) {
  const JobId id("term");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(3)));
  const Pages pages = rasterPages(3);
  const Pictures pictures = picturesOf(id.pdf(), pages);
  const ToolFolder tools({"sh", "grep", "cut", "pdfinfo", "cat"});
  const FilterResult result = runCancelled(id, tools, pages);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, finished(1));
  expectSameStream(result.output,
                   expectedPdfStream(reference::defaultOptions(), {pages[0], pages[1]}, pictures));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

TEST(PdfJobs, ThatSigtermEndsLeaveNoFilesWhoseNamesTheyCouldNotForesee) {
  const JobId id("termblind");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(10)));
  const ToolFolder tools({"sh", "grep", "cut", "cat"});
  const FilterResult result = runCancelled(id, tools, rasterPages(3));
  EXPECT_EQ(result.errors, finished(1));
  EXPECT_EQ(filesOf(id.text()), std::vector<std::string>{});
}

}  // namespace
}  // namespace velka::testing
