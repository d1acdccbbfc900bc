// A page of the PDF into the page bitmap.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

#include "filter/PdfPageFixture.h"

namespace velka::testing {
namespace {

TEST_F(PdfPage, OfATwelvePageDocumentIsReadFromATwoDigitName) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(12)));
  use(3);
  EXPECT_EQ(std::string(name_.data()), job_.picture("03"));
  expectPicture(3, 180, 180);
  EXPECT_EQ(filesOf(id_).size(), 1U);
}

TEST_F(PdfPage, OfANinePageDocumentIsReadFromAOneDigitName) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(9)));
  use(3);
  EXPECT_EQ(std::string(name_.data()), job_.picture("3"));
  expectPicture(3, 180, 180);
}

TEST_F(PdfPage, EveryLengthOfDocumentGivesItsFirstAndLastPage) {
  for (const int pages : {1, 10, 100}) {
    ASSERT_TRUE(makePdf(pdf_, postscriptPages(pages)));
    for (const int page : {1, pages}) {
      use(page);
      expectPicture(page, 180, 180);
    }
  }
  EXPECT_EQ(filesOf(id_).size(), 1U);
}

TEST_F(PdfPage, HasTheHeadersResolutionsAcrossAndDown) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(1)));
  use(1, 180, 360);
  expectPicture(1, 180, 360);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, 150);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biHeight, 200);
}

TEST_F(PdfPage, SizesAndTurnsDifferFromPageToPage) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPage(1, 60, 40) + postscriptPage(2, 31, 77) +
                                postscriptPage(3, 60, 40, 90) + postscriptPage(4, 50, 45, 180)));
  for (const int page : {1, 2, 3, 4}) {
    use(page, 90, 120);
    expectPicture(page, 90, 120);
  }
}

TEST_F(PdfPage, RowsArePaddedWithZeros) {
  useFakePicture("P6\\n5 2\\n255\\nabcdefghijklmnoABCDEFGHIJKLMNO");
  const std::string rows("cbafedihglkjonm\0CBAFEDIHGLKJONM\0", 32);
  EXPECT_EQ(bitmap(), Bytes(rows.begin(), rows.end()));
  EXPECT_EQ(filesOf(id_).size(), 0U);
}

TEST_F(PdfPage, BeyondTheDocumentStaysWhite) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(2)));
  use(3);
  expectWhite();
  EXPECT_EQ(filesOf(id_).size(), 1U);
}

TEST_F(PdfPage, OfAMissingEmptyOrEncryptedDocumentStaysWhite) {
  use(1);
  expectWhite();
  writeText(pdf_, "");
  use(1);
  expectWhite();
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(1),
                      "-sOwnerPassword=a -sUserPassword=b -dEncryptionR=3 -dKeyLength=128"));
  use(1);
  expectWhite();
  EXPECT_EQ(std::string(name_.data()), "");
  EXPECT_EQ(filesOf(id_).size(), 1U);
}

TEST_F(PdfPage, OfADocumentThatIsCutOffIsWhatTheToolMakesOfIt) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(3)));
  const std::string whole = textOf(pdf_);
  for (const size_t part : {size_t{1}, size_t{4}, size_t{7}}) {
    whitePage();
    writeText(pdf_, whole.substr(0, whole.size() * part / 8));
    use(1);
    const Picture picture = drawPage(pdf_, 1, 180, 180);
    EXPECT_TRUE(bitmap() == (picture.width > 0 ? bitmapOf(picture) : Bytes(600, 0xFF))) << part;
  }
}

TEST_F(PdfPage, WithoutPdftoppmStaysWhiteAlsoWhereAnOldPictureLies) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(1)));
  writeText(job_.picture("1"), "P6\n1 1\n255\nabc");
  const ToolFolder tools(kTools);
  const Environment path("PATH", tools.path());
  use(1);
  expectWhite();
  EXPECT_EQ(std::string(name_.data()), job_.picture("1"));
  EXPECT_EQ(filesOf(id_).size(), 1U);
}

TEST_F(PdfPage, WithoutPdfinfoStaysWhiteAndItsPictureIsLeft) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(12)));
  const ToolFolder tools({"grep", "cut", "sh", "pdftoppm"});
  const Environment path("PATH", tools.path());
  use(3);
  expectWhite();
  EXPECT_EQ(std::string(name_.data()), "");
  EXPECT_TRUE(TempFile::exists(job_.picture("03")));
  EXPECT_EQ(filesOf(id_).size(), 2U);
}

TEST_F(PdfPage, APictureWithoutPixelsIsLeftAndThePageStaysWhite) {
  useFakePicture("P6\\n5 4\\n255");
  expectWhite();
  EXPECT_TRUE(TempFile::exists(job_.picture("3")));
}

TEST_F(PdfPage, APictureWithACommentIsMisreadAsAnEmptyPage) {
  useFakePicture("P6\\n# by hand\\n1 1\\n255\\nabc");
  EXPECT_EQ(bitmap(), Bytes{});
  EXPECT_NE(+g_oemPDEV.pBufStart, nullptr);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, 0);
  EXPECT_FALSE(TempFile::exists(job_.picture("3")));
}

TEST_F(PdfPage, ADepthThatMemoryDoesNotHoldPrintsNothing) {
  useFakePicture("P6\\n1 9\\n255\\nabcdefghijklmnopqrstuvwxyzA", 0xFFFFFFFF);
  EXPECT_EQ(+g_oemPDEV.pBufStart, nullptr);
  EXPECT_EQ(+g_oemPDEV.dwBufSize, 0U);
}

TEST_F(PdfPage, RowsStayInsideABitmapOfAnotherDepth) {
  useFakePicture("P6\\n4 2\\n255\\nabcdefghijklABCDEFGHIJKL", 8);
  const std::string rows = "cbafCBAF";
  EXPECT_EQ(bitmap(), Bytes(rows.begin(), rows.end()));
}

TEST_F(PdfPage, WithoutABufferNoneIsMade) {
  vFreeBuffer(&g_oemPDEV);
  useFakePicture("P6\\n1 1\\n255\\nabc");
  EXPECT_EQ(+g_oemPDEV.pBufStart, nullptr);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, 1);
  EXPECT_FALSE(TempFile::exists(job_.picture("3")));
}

TEST_F(PdfPage, AJobIdThatAShellWouldActOnStaysWhiteAndRunsNothing) {
  const TempFolder folder;
  const std::string mark = folder / "mark";
  const ToolFolder tools({"sh", "touch"});
  for (const char* tool : {"pdfinfo", "pdftoppm"}) tools.addScript(tool, "touch " + mark);
  const Environment path("PATH", tools.path());
  for (const std::string& id : {"7;touch " + mark, "$(touch " + mark + ")", "7\ntouch " + mark,
                                std::string("../x"), std::string("a b"), std::string("7%n%n")}) {
    id_ = id;
    pdf_ = pdfPathOf(id);
    use(1);
    expectWhite();
    EXPECT_EQ(std::string(name_.data()), "");
  }
  EXPECT_FALSE(TempFile::exists(mark));
}

TEST_F(PdfPage, AJobIdThatLeavesNoRoomForTheCommandStaysWhite) {
  const TempFolder folder;
  const ToolFolder tools({"grep", "cut", "sh", "touch"});
  tools.addScript("pdfinfo", "echo 'Pages:          9'");
  tools.addScript("pdftoppm", "touch " + (folder / "mark"));
  const Environment path("PATH", tools.path());
  for (const size_t length : {100U, 230U, 5000U}) {
    id_ = std::string(length, '7');
    pdf_ = pdfPathOf(id_).substr(0, 255);
    use(1);
    expectWhite();
    EXPECT_EQ(std::string(name_.data()), "");
  }
  EXPECT_FALSE(TempFile::exists(folder / "mark"));
}

TEST_F(PdfPage, APlantedLinkIsNotFollowedAtAnyNameOfThePicture) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(12)));
  const TempFile target("precious");
  for (const char* number : {"3", "03", "0000000003"}) {
    ASSERT_EQ(symlink(target.path().c_str(), job_.picture(number).c_str()), 0);
    use(3);
    expectWhite();
    EXPECT_EQ(textOf(target.path()), "precious");
    EXPECT_EQ(filesOf(id_).size(), 2U);
    unlink(job_.picture(number).c_str());
  }
}

TEST_F(PdfPage, AFifoAtThePicturesNameDoesNotHoldTheJobUp) {
  ASSERT_TRUE(makePdf(pdf_, postscriptPages(12)));
  ASSERT_EQ(mkfifo(job_.picture("03").c_str(), 0666), 0);
  use(3);
  expectWhite();
}

TEST(RenderingCommand, DoesNothingWhereAnArgumentIsAbsent) {
  const cups_page_header2_t header = rgbHeader(4, 4);
  std::string program = "rastovelka";
  std::string id = "7";
  std::array<char*, 3> argv = {program.data(), id.data(), nullptr};
  std::array<char*, 1> none = {nullptr};
  std::array<char, 256> name = {'x'};
  PdftoppmCmd(nullptr, argv.data(), 1, &header, "/tmp/a.pdf");
  PdftoppmCmd(name.data(), nullptr, 1, &header, "/tmp/a.pdf");
  PdftoppmCmd(name.data(), none.data(), 1, &header, "/tmp/a.pdf");
  PdftoppmCmd(name.data(), argv.data(), 1, nullptr, "/tmp/a.pdf");
  PdftoppmCmd(name.data(), argv.data(), 1, &header, nullptr);
  EXPECT_EQ(name[0], 'x');
}

TEST(PdfGeometry, IsSetFromStrideWidthAndHeight) {
  g_oemPDEV = {};
  InitPdfProcessOemPDEV(16, 5, 7);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biSizeImage, 112U);
  EXPECT_EQ(+g_oemPDEV.dwBufSize, 112U);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biWidth, 5);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biHeight, 7);
  EXPECT_EQ(+g_oemPDEV.srcGdiInfo.szlPhysSize.cx, 5);
  EXPECT_EQ(+g_oemPDEV.srcGdiInfo.szlPhysSize.cy, 7);
  EXPECT_EQ(+g_oemPDEV.srcGdiInfo.ulHorzRes, 5U);
  EXPECT_EQ(+g_oemPDEV.srcGdiInfo.ulVertRes, 7U);
  InitPdfProcessOemPDEV(4000000000U, 5, 7);
  EXPECT_EQ(+g_oemPDEV.dwBufSize, 0U);
  for (const int noRows : {0, -1}) {
    g_oemPDEV.dwBufSize = 1;
    InitPdfProcessOemPDEV(16, 5, noRows);
    EXPECT_EQ(+g_oemPDEV.dwBufSize, 0U);
  }
  g_oemPDEV = {};
}

}  // namespace
}  // namespace velka::testing
