// Whole pages of a job, from the device records to standard output.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "ESCPSML.h"
#include "OrloPage.h"
#include "orlo/LiteralPipeline.h"
#include "orlo/PrintingHead.h"

namespace velka::orlotest {
namespace {

// What `body` writes to standard output.
template <typename Body>
Bytes captured(Body body) {
  std::fflush(stdout);
  const int kept = dup(STDOUT_FILENO);
  std::FILE* file = std::tmpfile();
  dup2(fileno(file), STDOUT_FILENO);
  body();
  dup2(kept, STDOUT_FILENO);
  close(kept);
  std::rewind(file);
  Bytes bytes;
  for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
    bytes.push_back(static_cast<uint8_t>(c));
  std::fclose(file);
  return bytes;
}

int growOutput(_OEMPDEV* pdev, uint32_t bytes) {
  pdev->pBufStartOut = static_cast<uint8_t*>(std::malloc(std::max(bytes, 1U)));
  pdev->dwBufSizeOut = bytes;
  return 1;
}
void freePage(_OEMPDEV* pdev) {
  std::free(pdev->pBufStart);
  pdev->pBufStart = nullptr;
  pdev->dwBufSize = 0;
}
void freeOutput(_OEMPDEV* pdev) {
  std::free(pdev->pBufStartOut);
  pdev->pBufStartOut = nullptr;
  pdev->dwBufSizeOut = 0;
}

void movePage(_OEMPDEV* pdev) {
  freeOutput(pdev);
  pdev->pBufStartOut = pdev->pBufStart;
  pdev->dwBufSizeOut = pdev->dwBufSize;
  pdev->pBufStart = nullptr;
  pdev->dwBufSize = 0;
}

// No page of these tests runs out of memory.
bool sendPage(_DEVOBJ& devobj) {
  PageLoss loss = PageLoss::Rest;
  const bool sent = sendOrloPage(devobj, loss);
  EXPECT_EQ(loss, PageLoss::None);
  return sent;
}

class OrloJob : public ::testing::Test {
 protected:
  OrloJob() {
    options_.OutputColorType = 3;
    options_.ColorRangeUseFor = 2;
    options_.minColorOffset = {0, 0, 130, 0};
    options_.maxColorOffset = {255, 255, 255, 0};
    options_.solidColor = {0, 0, 255, 0};
    options_.LevelsRed = 100;
    options_.LevelsBlack = 100;
    options_.sDitherRed = 1;
    options_.sDitherBlack = 1;
    options_.sModel = 2;
    mode_ = {1, 180, 180, 0, 1};
    pdev_.devModeOut = mode_;
    pdev_.dScaleX = 1.0;
    pdev_.dScaleY = 1.0;
    pdev_.pEscpSml = &generator_;
  }
  ~OrloJob() override {
    freePage(&pdev_);
    freeOutput(&pdev_);
  }

  void setResolution(int16_t across, int16_t down) {
    mode_.dmPrintQuality = across;
    mode_.dmYResolution = down;
    pdev_.devModeOut = mode_;
  }

  // What one page writes, sent without the renderer.
  Bytes send(const Bitmap& page, bool expected = true) {
    freeOutput(&pdev_);
    growOutput(&pdev_, page.size());
    std::memcpy(pdev_.pBufStartOut, page.bytes.data(), page.bytes.size());
    pdev_.bmInfoHeaderOut.biWidth = page.width;
    pdev_.bmInfoHeaderOut.biHeight = page.height;
    return captured([&] { EXPECT_EQ(sendPage(devobj_), expected); });
  }

  // What one page writes through the renderer.
  Bytes render(const Bitmap& page, bool expected) {
    freePage(&pdev_);
    pdev_.pBufStart = static_cast<uint8_t*>(std::malloc(page.size()));
    pdev_.dwBufSize = page.size();
    std::memcpy(pdev_.pBufStart, page.bytes.data(), page.bytes.size());
    pdev_.bmInfoHeader.biWidth = page.width;
    pdev_.bmInfoHeader.biHeight = page.height;
    pdev_.bmInfoHeader.biBitCount = 24;
    pdev_.srcGdiInfo.szlPhysSize = {page.width, page.height};
    constexpr PageServices kServices = {.freePageBuffer = freePage,
                                        .movePageBuffer = movePage,
                                        .freeOutputBuffer = freeOutput,
                                        .freeSections = [](_OEMPDEV*) {},
                                        .sendOrloPage = sendOrloPage};
    return captured([&] { EXPECT_EQ(renderPage(&devobj_, kServices), expected); });
  }

  _OEMPDEV pdev_{};
  _DEVMODE mode_{};
  tagOEMCFG options_{};
  CESCPSML generator_;
  _DEVOBJ devobj_ = {&pdev_, &mode_, &options_, 1};
};

// A page with a bar of each ink, all rows that a head reaches.
Bitmap barPage(int blackFrom, int blackTo, int redFrom, int redTo) {
  Bitmap page(24, 400);
  for (int y = blackFrom; y < blackTo; ++y) page.set(5, y, 0, 0, 0);
  for (int y = redFrom; y < redTo; ++y) page.set(9, y, 0, 0, 255);
  return page;
}

std::set<Dot> bar(int column, int from, int to, int across, int down) {
  std::set<Dot> dots;
  for (int y = from; y < to; ++y)
    dots.insert({y * kUnitsPerInch / down, column * kUnitsPerInch / across});
  return dots;
}

TEST_F(OrloJob, PagesThatDifferEachPrintRightInBackFeedSplit) {
  options_.SplitBlackRed = 1;
  for (const int16_t dpi : {int16_t{180}, int16_t{360}}) {
    setResolution(dpi, dpi);
    for (const auto& [black, red] : {std::pair{40, 200}, std::pair{300, 10}, std::pair{-1, 90},
                                     std::pair{150, -1}, std::pair{33, 33}}) {
      SCOPED_TRACE(black * 1000 + red);
      const int blackTo = black < 0 ? -1 : black + 60;
      const int redTo = red < 0 ? -1 : red + 50;
      const Bitmap page = barPage(std::max(black, 0), blackTo, std::max(red, 0), redTo);
      const Paper paper = printStream(send(page), Feed::Back);
      ASSERT_EQ(paper.complaint, "");
      EXPECT_EQ(paper.black, bar(5, std::max(black, 0), blackTo, dpi, dpi));
      EXPECT_EQ(paper.red, bar(9, std::max(red, 0), redTo, dpi, dpi));
    }
  }
}

TEST_F(OrloJob, TheSamePageHasTheSameCommandsWhateverCameBefore) {
  options_.SplitBlackRed = 1;
  const Bitmap page = barPage(50, 90, 60, 100);
  const Bytes first = send(page);
  send(barPage(300, 350, 20, 30));
  EXPECT_EQ(send(page), first);
}

TEST_F(OrloJob, CommandsAreThoseOfTheProcessorWithTheJobsSettings) {
  options_.SplitBlackRed = 0;
  options_.BrightnessBlack = 30;
  options_.ContrastRed = -20;
  options_.sDitherBlack = 4;
  options_.sFaceDetect = 1;
  Bitmap page(60, 200, 2);
  for (int y = 20; y < 190; ++y)
    for (int x = 0; x < 60; ++x)
      page.set(x, y, static_cast<uint8_t>(x * 4), static_cast<uint8_t>(y), 180);
  _COLORCFG_ORLO config = plainConfig();
  config.BrightnessBlack = 30;
  config.ContrastRed = -20;
  config.sDitherBlack = 4;
  const LiteralPlanes planes = separateLiterally(page, config, 180, 2);
  DotPage dots(60, 200);
  dots.black = planes.black;
  dots.red = planes.red;
  EXPECT_EQ(send(page), encode(dots, Feed::Back, false, {180, 180}));
}

TEST_F(OrloJob, FrontFeedFollowsTheModelOption) {
  options_.sModel = 1;
  const Bytes stream = send(barPage(0, 20, 0, 0));
  EXPECT_EQ(stream.at(0), 0x1B);
  EXPECT_NE(Bytes(stream.begin(), stream.begin() + 3), (Bytes{0x1B, 0x72, 0x02}));
  EXPECT_EQ(printStream(stream, Feed::Front).black, bar(5, 0, 20, 180, 180));
}

TEST_F(OrloJob, PagesWithoutCommandsSendNothing) {
  EXPECT_TRUE(send(Bitmap(24, 40), false).empty());
  setResolution(80, 180);
  EXPECT_TRUE(send(barPage(50, 90, 60, 100), false).empty());
  setResolution(180, 180);
  options_.sModel = 7;
  EXPECT_TRUE(send(barPage(50, 90, 60, 100), false).empty());
}

TEST_F(OrloJob, PagesWithoutPixelsSendNothing) {
  const Bitmap page = barPage(50, 90, 60, 100);
  send(page);
  for (const int32_t size : {0, -5}) {
    pdev_.bmInfoHeaderOut.biWidth = size;
    EXPECT_TRUE(captured([&] { EXPECT_FALSE(sendPage(devobj_)); }).empty());
    pdev_.bmInfoHeaderOut.biWidth = page.width;
    pdev_.bmInfoHeaderOut.biHeight = size;
    EXPECT_TRUE(captured([&] { EXPECT_FALSE(sendPage(devobj_)); }).empty());
    pdev_.bmInfoHeaderOut.biHeight = page.height;
  }
  freeOutput(&pdev_);
  EXPECT_TRUE(captured([&] { EXPECT_FALSE(sendPage(devobj_)); }).empty());
  _DEVOBJ empty = {};
  EXPECT_TRUE(captured([&] { EXPECT_FALSE(sendPage(empty)); }).empty());
}

TEST_F(OrloJob, ARenderedPageStartsTheDocumentAndEndsWithAFormFeed) {
  const Bitmap page = barPage(50, 90, 60, 100);
  const Bytes commands = send(page);
  // 400 rows at 180 dpi are 13 lines of 1/6 inch.
  const Bytes start = {0x1B, 0x40, 0x1B, 0x32, 0x1B, 0x43, 13};
  EXPECT_EQ(render(page, true), start + commands + Bytes{0x0C});
}

TEST_F(OrloJob, AWhitePageIsItsStartAndAFormFeed) {
  const Bytes start = {0x1B, 0x40, 0x1B, 0x32, 0x1B, 0x43, 13};
  EXPECT_EQ(render(Bitmap(24, 400), false), start + Bytes{0x0C});
}

TEST_F(OrloJob, APageShiftedOutOfItselfIsItsStartAndAFormFeed) {
  // 100 mm to the left of a page 24 pixels wide leaves no width at all.
  options_.sHrzDir = 1;
  options_.sHrzOffset = 1000;
  const Bytes stream = render(barPage(50, 90, 60, 100), false);
  ASSERT_EQ(stream.size(), 8U);
  EXPECT_EQ(stream.back(), 0x0C);
}

TEST_F(OrloJob, CopiesAreNotMultiplied) {
  // Copies are not this model's: one page in, one page out.
  options_.sCopies = 3;
  mode_.dmCopies = 3;
  const Bytes stream = render(barPage(50, 90, 60, 100), true);
  const Paper paper = printStream(std::span(stream).subspan(7), Feed::Back);
  EXPECT_EQ(paper.complaint, "");
  EXPECT_EQ(paper.pages, 1);
}

}  // namespace
}  // namespace velka::orlotest
