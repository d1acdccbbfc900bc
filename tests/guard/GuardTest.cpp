// What the scheduler is told of a job's pages, and which jobs stop.
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include "Version.h"
#include "guard/GuardJob.h"
#include "support/TestPdf.h"

namespace {

using namespace velka::testing;

const PpdText kOrlo = {2, {}, false};

Bytes streamOf(const cups_page_header2_t& header) {
  return rasterStream({inkedPage(header, 1)});
}

cups_page_header2_t greyHeader() {
  cups_page_header2_t header = rgbHeader(60, 60);
  header.cupsBitsPerPixel = 8;
  header.cupsBytesPerLine = 60;
  header.cupsColorSpace = CUPS_CSPACE_SW;
  header.cupsNumColors = 1;
  return header;
}

TEST(Messages, StandOnLinesOfTheirOwnWhateverStandsBefore) {
  const FilterResult result = guarded(streamOf(rgbHeader(60, 60)));
  EXPECT_EQ(result.errors,
            "\nDEBUG: velkaguard " + std::string(velka::version()) +
                "\n\nSTATE: -velka-colors-error,velka-resolution-error,velka-page-size-error,"
                "velka-page-length-warning,velka-pdf-copy-error\n\nINFO: Printing page 1\n"
                "\nATTR: job-media-progress=100\n\nPAGE: 1 1\n");
}

TEST(Messages, OfALargePageTellItsProgressInTenths) {
  const Bytes stream = rasterStream({whitePage(rgbHeader(2400, 2000))});
  const FilterResult result = guarded(stream);
  EXPECT_EQ(result.output, stream);
  const Texts progress = told(result, "ATTR");
  ASSERT_GE(progress.size(), 5U);
  EXPECT_LE(progress.size(), 10U);
  EXPECT_EQ(progress.back(), "job-media-progress=100");
  for (const std::string& text : progress) EXPECT_EQ(text.back(), '0');
}

TEST(CopiesOfPages, AreCountedAsTheModelPrintsThem) {
  cups_page_header2_t header = rgbHeader(60, 60);
  header.NumCopies = 3;
  const Bytes stream = rasterStream({inkedPage(header, 1), inkedPage(header, 2)});
  const FilterResult standard = guarded(stream);
  EXPECT_EQ(told(standard, "PAGE"), (Texts{"1 3", "2 3"}));
  EXPECT_EQ(told(standard, "INFO"),
            (Texts{"Printing page 1, 3 copies", "Printing page 2, 3 copies"}));
  EXPECT_EQ(told(guarded(stream, kOrlo), "PAGE"), (Texts{"1 1", "2 1"}));
}

// refused(...): nothing but the four bytes goes on, so that the printing filter has no page.
void expectRefused(const FilterResult& result, const Bytes& stream, const std::string& reason,
                   const std::string& text) {
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, firstBytes(stream, 4));
  EXPECT_EQ(raised(result), Texts{reason});
  ASSERT_EQ(told(result, "ERROR").size(), 1U);
  EXPECT_NE(told(result, "ERROR")[0].find(text), std::string::npos) << told(result, "ERROR")[0];
  EXPECT_EQ(told(result, "PAGE"), Texts{});
}

TEST(AFirstPageThatCannotPrint, StopsTheJobBeforeIt) {
  for (const PpdText& ppd : {PpdText{}, kOrlo}) {
    const Bytes grey = streamOf(greyHeader());
    expectRefused(guarded(grey, ppd), grey, "velka-colors-error", "8 bits a pixel");
    const Bytes fine = streamOf(rgbHeader(60, 60, 300, 300));
    expectRefused(guarded(fine, ppd), fine, "velka-resolution-error", "300 x 300 dpi");
    const Bytes large = rawStream({{rgbHeader(30000, 30000), {}}});
    expectRefused(guarded(large, ppd), large, "velka-page-size-error", "30000 x 30000 pixels");
  }
}

TEST(ALaterPageThatCannotPrint, IsToldOfAndNotCountedAndTheJobGoesOn) {
  const auto pages = {inkedPage(rgbHeader(60, 60), 1), inkedPage(greyHeader(), 2),
                      inkedPage(rgbHeader(60, 60), 3)};
  const Bytes stream = rasterStream(pages);
  const FilterResult result = guarded(stream);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(told(result, "PAGE"), (Texts{"1 1", "3 1"}));
  EXPECT_EQ(raised(result), Texts{"velka-colors-error"});
  EXPECT_EQ(told(result, "ERROR").size(), 1U);
}

TEST(APageThatIsTooLongForItsCommand, PrintsAndIsToldOf) {
  const Bytes stream = rasterStream({whitePage(rgbHeader(8, 7680))});
  const FilterResult result = guarded(stream);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(raised(result), Texts{"velka-page-length-warning"});
  EXPECT_EQ(told(result, "PAGE"), Texts{"1 1"});
}

TEST(AHeaderThatLibcupsRefuses, IsToldOfWhereverItStands) {
  cups_page_header2_t nonsense = rgbHeader(60, 60);
  nonsense.cupsHeight = 0;
  const Bytes first = rawStream({{nonsense, {}}});
  const FilterResult refused = guarded(first);
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.output, firstBytes(first, 4));
  EXPECT_EQ(told(refused, "ERROR"),
            Texts{"The header of page 1 makes no sense: the job is not printed"});
  const Bytes later = rawStream({inkedPage(rgbHeader(60, 60), 1), {nonsense, {Bytes(70000)}}});
  const FilterResult lost = guarded(later);
  EXPECT_EQ(lost.status, 1);
  EXPECT_EQ(lost.output, later);
  EXPECT_EQ(told(lost, "ERROR"), Texts{"The header of page 2 makes no sense: it is not printed, "
                                       "and nothing behind it"});
  EXPECT_EQ(told(lost, "PAGE"), Texts{"1 1"});
}

// A job of the copy, with or without it.
FilterResult guardedCopy(const std::string& id, const Bytes& stream) {
  const TempFile file(ppdText({1, {}, true}), ".ppd");
  FilterJob job;
  job.arguments = {id, "user", "title", "1", ""};
  job.ppd = file.path();
  job.input = stream;
  return runFilter(VELKA_GUARD, job);
}

TEST(PagesFromTheCopy, StopWhereThereIsNone) {
  const JobId id("guard");
  const Bytes stream = streamOf(rgbHeader(60, 60));
  expectRefused(guardedCopy(id.text(), stream), stream, "velka-pdf-copy-error",
                "There is no PDF copy of the job at " + id.pdf());
  ASSERT_EQ(symlink("/etc/hostname", id.pdf().c_str()), 0);
  expectRefused(guardedCopy(id.text(), stream), stream, "velka-pdf-copy-error",
                "There is no PDF copy of the job at");
  expectRefused(guardedCopy("a job", stream), stream, "velka-pdf-copy-error",
                "There is no PDF copy of the job at");
}

TEST(PagesFromTheCopy, AreToldOfWhereTheyAreNotInIt) {
  const JobId id("guard");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(2)));
  std::vector<RasterPage> pages(2, inkedPage(rgbHeader(60, 60), 1));
  const FilterResult whole = guardedCopy(id.text(), rasterStream(pages));
  EXPECT_EQ(whole.status, 0);
  EXPECT_EQ(told(whole, "ERROR"), Texts{});
  EXPECT_EQ(raised(whole), Texts{});
  pages.push_back(pages[0]);
  const Bytes stream = rasterStream(pages);
  const FilterResult result = guardedCopy(id.text(), stream);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, stream);
  EXPECT_EQ(told(result, "ERROR"),
            Texts{"Page 3 is not in the PDF copy of the job, which has 2 pages: it stays white; "
                  "print the job with PdfPreprocess=no"});
  EXPECT_EQ(raised(result), Texts{"velka-pdf-copy-error"});
}

// The printing filter removes the copy at its own end, which may come first.
TEST(PagesFromTheCopy, AreCountedAlthoughItsNameIsGone) {
  const JobId id("guard");
  ASSERT_TRUE(makePdf(id.pdf(), postscriptPages(1)));
  const Bytes stream = rasterStream(std::vector<RasterPage>(2, inkedPage(rgbHeader(60, 60), 1)));
  const TempFile file(ppdText({1, {}, true}), ".ppd");
  FilterJob job;
  job.arguments = {id.text(), "user", "title", "1", ""};
  job.ppd = file.path();
  job.feed = [&](int /*pid*/, int fd) {
    const size_t half = stream.size() / 2;
    EXPECT_EQ(write(fd, stream.data(), half), static_cast<ssize_t>(half));
    int left = 1;
    while (ioctl(fd, FIONREAD, &left) == 0 && left > 0) usleep(2000);
    unlink(id.pdf().c_str());
    EXPECT_EQ(write(fd, stream.data() + half, stream.size() - half),
              static_cast<ssize_t>(stream.size() - half));
  };
  const FilterResult result = runFilter(VELKA_GUARD, job);
  ASSERT_EQ(told(result, "ERROR").size(), 1U) << result.errors;
  EXPECT_EQ(told(result, "ERROR")[0].substr(0, 13), "Page 2 is not");
}

// The table of what it lets through is the filter's own behaviour.
TEST(Resolutions, ThatItLetsThroughAreThoseThatPrint) {
  const TempFile standard(ppdText({}), ".ppd");
  const TempFile orlo(ppdText(kOrlo), ".ppd");
  size_t printed = 0;
  for (const unsigned across : {60U, 80U, 90U, 120U, 180U, 300U, 360U, 600U, 720U})
    for (const unsigned down : {60U, 90U, 120U, 180U, 300U, 360U, 720U}) {
      RasterPage page = whitePage(rgbHeader(240, 240, across, down));
      for (Bytes& line : page.lines) line.assign(line.size(), 0);
      const Bytes stream = rasterStream({page});
      for (const TempFile* ppd : {&standard, &orlo}) {
        FilterJob job;
        job.ppd = ppd->path();
        job.input = stream;
        const Bytes commands = runFilter(VELKA_FILTER, job).output;
        // A page without dots is a start, a form feed and an end; blocks without data are
        // short, and what they hold of the Orlo model's is in no mode of its head.
        const bool passed = runFilter(VELKA_GUARD, job).status == 0;
        const bool known = down == 60 || down == 180 || down == 360 || across >= 361;
        if (known) {
          EXPECT_EQ(passed, commands.size() > 200) << across << " x " << down;
        } else {
          EXPECT_FALSE(passed) << across << " x " << down;
        }
        printed += passed ? 1 : 0;
      }
    }
  constexpr unsigned kPrinted = 2 * (10 + 2 * 7);
  EXPECT_EQ(printed, kPrinted);
}

}  // namespace
