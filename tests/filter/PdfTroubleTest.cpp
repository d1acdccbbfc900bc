// Pages of a PDF that tools, disks or other people stand in the way of.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "ToolLimits.h"
#include "filter/PdfPageFixture.h"
#include "support/FilterRun.h"

namespace velka::testing {
namespace {

// Tools that note each of their runs.
class CountedTools {
 public:
  explicit CountedTools(const std::string& pages = "9") {
    tools_.addScript("pdfinfo",
                     "echo run >>" + note("pdfinfo") + "; echo 'Pages:          " + pages + "'");
    tools_.addScript("pdftoppm",
                     "echo run >>" + note("pdftoppm") + "; exec /usr/bin/pdftoppm \"$@\"");
  }
  [[nodiscard]] size_t runs(const std::string& tool) const {
    return textOf(note(tool)).size() / std::string("run\n").size();
  }

 private:
  [[nodiscard]] std::string note(const std::string& tool) const { return notes_ / tool; }
  TempFolder notes_;
  ToolFolder tools_{kTools};
  Environment path_{"PATH", tools_.path()};
};

// Texts in the lines of the log, in this order.
void expectLogged(const std::vector<std::string>& texts) {
  const std::string log = logText();
  size_t at = 0;
  for (const std::string& text : texts) {
    at = log.find(text, at);
    ASSERT_NE(at, std::string::npos) << text << "\n" << log;
  }
}

TEST_F(PdfPage, APictureThatLacksPixelsIsNoneAndDoesNotStay) {
  for (const char* ending : {"exit 0", "exit 3", "kill -9 $$"}) {
    whitePage();
    useFakePicture("P6\\n2 2\\n255\\nabcdefghijk", 24, ending);
    expectWhite();
    EXPECT_EQ(std::string(name_.data()), job_.picture("3"));
    EXPECT_EQ(filesOf(id_).size(), 0U) << ending;
  }
}

TEST_F(PdfPage, APictureOfASizeThatNoDiskHoldsIsNone) {
  useFakePicture("P6\\n2147483647 2147483647\\n255\\nabc");
  expectWhite();
}

TEST_F(PdfPage, AWholePictureOfAToolThatFailsIsPrinted) {
  for (const char* ending : {"exit 3", "kill -9 $$"}) {
    whitePage();
    useFakePicture("P6\\n1 1\\n255\\nabc", 24, ending);
    EXPECT_EQ(bitmap(), (Bytes{'c', 'b', 'a', 0})) << ending;
    EXPECT_EQ(filesOf(id_).size(), 0U);
  }
}

TEST_F(PdfPage, AHalfPictureOfAPageWhoseNameIsNotForeseenDoesNotStay) {
  const ToolFolder tools({"sh", "grep", "cut", "printf"});
  tools.addScript("pdftoppm",
                  "for root; do :; done; printf 'P6\\n2 2\\n255\\nabcdefghijk' >\"$root-03.ppm\"");
  const Environment path("PATH", tools.path());
  use(3);
  expectWhite();
  EXPECT_EQ(filesOf(id_).size(), 0U);
}

TEST_F(PdfPage, IsNotDrawnBeyondTheTimeLimit) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  pageLimits.drawing.time = std::chrono::milliseconds(0);
  const ToolFolder tools({"grep", "cut", "sh", "pdfinfo", "sleep"});
  tools.addScript("pdftoppm", "sleep 1; exec /usr/bin/pdftoppm \"$@\"");
  const Environment path("PATH", tools.path());
  StartLog4z();
  use(1);
  expectWhite();
  EXPECT_EQ(filesOf(id_).size(), 1U);
  expectLogged({"the tool that draws the page took too long and was ended", ", ret: 9"});
}

TEST_F(PdfPage, IsNotForeseenWhereTheCountTakesTooLong) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  pageLimits.counting.time = std::chrono::milliseconds(0);
  StartLog4z();
  use(1);
  expectWhite();
  EXPECT_EQ(std::string(name_.data()), "");
  expectLogged({"no page count from the PDF: its tool took too long", ", ret: 0"});
}

TEST_F(PdfPage, ThatIsTooLargeStopsTheToolAndDoesNotStay) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  pageLimits.drawing.fileBytes = 10000;
  use(1);
  expectWhite();
  EXPECT_EQ(filesOf(id_).size(), 1U);
  EXPECT_EQ(std::string(name_.data()), job_.picture("1"));
}

TEST_F(PdfPage, StaysWhiteAndStartsNoToolOnceTheJobIsCancelled) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  const CountedTools tools("3");
  Canceled = 1;
  use(1);
  Canceled = 0;
  expectWhite();
  EXPECT_EQ(tools.runs("pdfinfo") + tools.runs("pdftoppm"), 0U);
  use(1);
  expectPicture(1, 180, 180);
}

TEST_F(PdfPage, CountsThePagesOfADocumentOnce) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(9)));
  const CountedTools tools;
  for (const int page : {1, 2, 9}) {
    use(page);
    expectPicture(page, 180, 180);
  }
  EXPECT_EQ(tools.runs("pdfinfo"), 1U);
}

TEST_F(PdfPage, CountsAnewWhereTheDocumentIsAnother) {
  for (int document = 1; document <= 3; ++document) {
    ASSERT_TRUE(makePdf(pdf_, postscriptPages(9)));
    const CountedTools tools;
    use(1);
    EXPECT_EQ(tools.runs("pdfinfo"), 1U);
  }
}

TEST_F(PdfPage, ThePublicCountCountsAtEachCall) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(9)));
  const CountedTools tools;
  for (int call = 0; call < 3; ++call) EXPECT_EQ(GetPpmFilePagesBits(pdf_.c_str()), 1);
  EXPECT_EQ(tools.runs("pdfinfo"), 3U);
}

// What stands at the PDF's name when no filter of ours has put it there.
class ForeignPdf : public PdfPage {
 protected:
  void expectUntouched() {
    const CountedTools tools;
    use(1);
    expectWhite();
    EXPECT_EQ(GetPpmFilePagesBits(pdf_.c_str()), -1);
    EXPECT_EQ(tools.runs("pdfinfo") + tools.runs("pdftoppm"), 0U);
    struct stat status = {};
    EXPECT_EQ(lstat(pdf_.c_str(), &status), 0);
  }
  TempFolder folder_;
};

TEST_F(ForeignPdf, AFifoDoesNotHoldTheJobUp) {
  ASSERT_EQ(mkfifo(pdf_.c_str(), 0666), 0);
  expectUntouched();
}

TEST_F(ForeignPdf, ALinkIsNotFollowed) {
  ASSERT_TRUE(makePdf(folder_ / "private.pdf", postscriptPages(3)));
  ASSERT_EQ(symlink((folder_ / "private.pdf").c_str(), pdf_.c_str()), 0);
  expectUntouched();
}

TEST_F(ForeignPdf, ASecondNameOfADocumentIsNotPrinted) {
  ASSERT_TRUE(makePdf(folder_ / "private.pdf", postscriptPages(3)));
  ASSERT_EQ(link((folder_ / "private.pdf").c_str(), pdf_.c_str()), 0);
  expectUntouched();
}

TEST_F(ForeignPdf, ADocumentOfSomebodyElseIsNotPrinted) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  if (chown(pdf_.c_str(), 65534, 65534) != 0) GTEST_SKIP() << "only root can give files away";
  expectUntouched();
}

}  // namespace
}  // namespace velka::testing
