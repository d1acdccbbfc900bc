// Bands to command streams: positioning, passes, split pages and copies, by hand.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "escp/PageFixture.h"
#include "reference/ExpectedStream.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

using reference::ExpectedStream;

constexpr size_t kWidth = 12;

// A page of 12 columns whose planes are inked by hand.
struct EncodedPage {
  Job job;
  CESCPSML& generator;

  explicit EncodedPage(uint32_t height, uint32_t ydpi = 180)
      : job(kWidth, height, ydpi, ydpi), generator(*job.pdev.pEscpSml) {
    job.pdev.devModeOut = job.mode;
    job.pdev.dwCurPageNum = 1;
    job.pdev.pRectTree = new CRectTree;
    generator.m_nPlaneStride = static_cast<int>(kWidth);
    generator.m_nPageWidth = static_cast<int>(kWidth);
    generator.m_nPageHeight = static_cast<int>(height);
    const size_t size = kWidth * height;
    for (auto [plane, bytes] : {std::pair{&generator.m_pBlackBuf, &generator.m_dwBlackSize},
                                std::pair{&generator.m_pRedBuf, &generator.m_dwRedSize}}) {
      *plane = static_cast<unsigned char*>(std::malloc(size));
      std::memset(*plane, 255, size);
      *bytes = static_cast<unsigned int>(size);
    }
  }

  EncodedPage& band(int top, int rows = 24, int left = 0,
                    int right = static_cast<int>(kWidth) - 1) {
    job.pdev.pRectTree->insert({left, top, right, top + rows - 1}, static_cast<unsigned long>(top),
                               static_cast<unsigned long>(left));
    return *this;
  }
  // One dot at column 0 of a row.
  EncodedPage& black(int row) {
    generator.m_pBlackBuf[static_cast<size_t>(row) * kWidth] = 0;
    generator.m_nBlackFlag = 1;
    return *this;
  }
  EncodedPage& red(int row) {
    generator.m_pRedBuf[static_cast<size_t>(row) * kWidth] = 0;
    if (generator.m_nRedFlag == 0) job.pdev.lFirstRedRow = row;
    generator.m_nRedFlag = 1;
    return *this;
  }

  // The stream of EncodeAndSend; `result` is what it must return.
  Bytes encode(int result = 1) {
    const Capture capture(STDOUT_FILENO);
    EXPECT_EQ(generator.EncodeAndSend(&job.devobj, 0), result);
    return capture.bytes();
  }
};

// The block of one dot at the top of column 0: eleven blank columns follow, so no
// column but the dot's would be left, and the block is one column short.
Bytes blockOf(int colour, int mode = 0x27) {
  return ExpectedStream().block(colour, mode, 0, {}).bytes();
}

TEST(Encoding, OneBlackBandAtTheTopNeedsNoVerticalMove) {
  EncodedPage page(24);
  EXPECT_EQ(page.band(0).black(0).encode(),
            ExpectedStream().toX(0).add(blockOf(0)).formFeed().bytes());
}

TEST(Encoding, ABandFurtherDownIsReachedByOneMove) {
  EncodedPage page(60);
  EXPECT_EQ(page.band(30).black(30).encode(),
            ExpectedStream().unit(10).down(60).toX(0).add(blockOf(0)).formFeed().bytes());
}

TEST(Encoding, RedOverBlackStartsARowHigher) {
  EncodedPage page(60);
  EXPECT_EQ(page.band(30).black(30).red(30).encode(), ExpectedStream()
                                                          .unit(10)
                                                          .down(60)
                                                          .toX(0)
                                                          .add(blockOf(0))
                                                          .unit(10)
                                                          .down(-2)
                                                          .toX(0)
                                                          .add(blockOf(1))
                                                          .formFeed()
                                                          .bytes());
}

TEST(Encoding, RedFollowsBlackButBlackNeverFollowsRed) {
  EncodedPage page(100);
  page.band(0).band(30).band(60).red(30).black(0).black(60);
  EXPECT_EQ(page.encode(), ExpectedStream()
                               .toX(0)
                               .add(blockOf(0))  // black at 0
                               .unit(10)
                               .down(60)
                               .toX(0)
                               .add(blockOf(1))  // red at 30; black there was empty
                               .unit(10)
                               .down(120)  // black from 0 to 60, though red stands at 30
                               .toX(0)
                               .add(blockOf(0))
                               .formFeed()
                               .bytes());
}

TEST(Encoding, At360EachBandHasTwoPassesARowApart) {
  EncodedPage page(48, 360);
  page.band(0, 48).black(0).black(1);
  EXPECT_EQ(page.encode(), ExpectedStream()
                               .toX(0)
                               .add(blockOf(0, 0x28))
                               .unit(10)
                               .down(1)
                               .toX(0)
                               .add(blockOf(0, 0x28))
                               .formFeed()
                               .bytes());
}

TEST(Encoding, APassWithoutDotsIsNotFollowedByTheInterleaveStep) {
  EncodedPage page(48, 360);
  page.band(0, 48).black(1);
  EXPECT_EQ(page.encode(), ExpectedStream().toX(0).add(blockOf(0, 0x28)).formFeed().bytes());
}

TEST(Encoding, RectanglesOfOneTopAreOneBand) {
  EncodedPage page(24);
  page.band(0, 24, 0, 5).band(0, 24, 6, 11).black(0);
  page.generator.m_pBlackBuf[6] = 0;
  EXPECT_EQ(page.encode(),
            ExpectedStream().toX(0).add(blockOf(0)).toX(2).add(blockOf(0)).formFeed().bytes());
}

TEST(Encoding, BandsWithoutInkSendNothingAtAll) {
  EncodedPage page(24);
  page.job.options.sEjectMode = 0;
  EXPECT_EQ(page.band(0).encode(0), Bytes{});
}

TEST(Encoding, NoBandsSendNothingAtAll) {
  EncodedPage page(24);
  EXPECT_EQ(page.black(0).encode(0), Bytes{});
}

TEST(Encoding, AnUnsupportedPairSendsNothing) {
  EncodedPage page(24);
  page.job.pdev.devModeOut.dmPrintQuality = 75;
  EXPECT_EQ(page.band(0).black(0).encode(0), Bytes{});
}

TEST(Encoding, AHeadWithoutDataStillEjectsItsPage) {
  EncodedPage page(24);
  page.job.options.sHeadPins = 8;
  page.job.options.sEjectMode = 1;
  EXPECT_EQ(page.band(0).black(0).encode(), ExpectedStream().eject('1').formFeed().bytes());
}

TEST(Encoding, TheEjectCommandStandsBeforeTheFormFeed) {
  EncodedPage page(24);
  page.job.options.sEjectMode = 0;
  EXPECT_EQ(page.band(0).black(0).encode(),
            ExpectedStream().toX(0).add(blockOf(0)).eject('0').formFeed().bytes());
}

TEST(Encoding, AnInitialOffsetMovesTheRedPositionOnly) {
  EncodedPage page(100);
  page.job.pdev.lInitialYOffset = 5;
  page.band(30).black(30);
  EXPECT_EQ(page.encode(), ExpectedStream()
                               .unit(10)
                               .down(10)
                               .unit(10)
                               .down(60)
                               .toX(0)
                               .add(blockOf(0))
                               .formFeed()
                               .bytes());
  EncodedPage redPage(100);
  redPage.job.pdev.lInitialYOffset = 5;
  redPage.band(30).red(30);
  EXPECT_EQ(redPage.encode(), ExpectedStream()
                                  .unit(10)
                                  .down(10)
                                  .unit(10)
                                  .down(50)
                                  .toX(0)
                                  .add(blockOf(1))
                                  .formFeed()
                                  .bytes());
}

TEST(EmptyBlocks, ClearTheStartedFlagOfTheirColour) {
  EncodedPage page(60);
  page.band(0).band(30).black(0).encode();
  EXPECT_EQ(page.generator.m_nBlackStarted, 0);
  EncodedPage full(60);
  full.band(0).band(30).black(0).black(30).encode();
  EXPECT_EQ(full.generator.m_nBlackStarted, 1);
}

TEST(SplitPages, PrintBlackThenGoBackForRed) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(30).band(60).band(90).black(0).black(90).red(65);
  const Bytes got = page.encode();
  EXPECT_EQ(got, ExpectedStream()
                     .toX(0)
                     .add(blockOf(0))
                     .unit(10)
                     .down(180)
                     .toX(0)
                     .add(blockOf(0))
                     .unit(10)
                     .down(-60)  // from row 90 back to the band at 60
                     .unit(10)   // the first red block: no distance is left
                     .unit(10)
                     .down(-2)  // red over black
                     .toX(0)
                     .add(blockOf(1))
                     .formFeed()
                     .bytes());
  // The bands above the first red row are gone from the page.
  EXPECT_EQ(page.job.pdev.pRectTree->count, 2U);
}

TEST(SplitPages, ABandWhoseSuccessorStartsAtTheRedRowIsKept) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(60).black(0).red(60);
  page.encode();
  EXPECT_EQ(page.job.pdev.pRectTree->count, 2U);
  EXPECT_EQ(+page.job.pdev.lYCorrection, 0);
}

TEST(SplitPages, WithoutBlackThePaperMovesForwardToTheRed) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(60).red(70);
  EXPECT_EQ(page.encode(),
            ExpectedStream().unit(10).down(120).unit(10).toX(0).add(blockOf(1)).formFeed().bytes());
}

TEST(SplitPages, WithoutRedTheStepBackIsStillMade) {
  EncodedPage page(60);
  page.job.options.SplitBlackRed = 1;
  page.job.options.sEjectMode = 0;
  page.band(30).black(30);
  EXPECT_EQ(page.encode(), ExpectedStream()
                               .unit(10)
                               .down(60)
                               .toX(0)
                               .add(blockOf(0))
                               .eject('0')
                               .unit(10)  // no distance, but its unit is sent
                               .formFeed()
                               .bytes());
}

// The same page printed three times in a row, with the end of the job.
Bytes twoPageJob(int copies, int collate, Bytes& page1, Bytes& page2) {
  EncodedPage first(24);
  page1 = ExpectedStream().toX(0).add(blockOf(0)).bytes();
  page2 = ExpectedStream().toX(0).add(blockOf(1)).bytes();
  first.job.options.sCopies = static_cast<int16_t>(copies);
  first.job.pdev.devModeOut.dmCollate = static_cast<int16_t>(collate);
  const Capture capture(STDOUT_FILENO);
  first.band(0).black(0);
  first.generator.EncodeAndSend(&first.job.devobj, 0);
  first.generator.m_pBlackBuf[0] = 255;
  first.generator.m_nBlackFlag = 0;
  first.generator.m_nBlackStarted = 0;
  first.red(0);
  first.generator.EncodeAndSend(&first.job.devobj, 0);
  EndDocOemPDEV(&first.job.devobj);
  return capture.bytes();
}

TEST(Copies, AreRepeatedPageByPageWhenNotCollated) {
  Bytes one;
  Bytes two;
  const Bytes got = twoPageJob(3, 0, one, two);
  ExpectedStream expected;
  for (const Bytes* page : {&one, &one, &one, &two, &two, &two}) expected.add(*page).formFeed();
  EXPECT_EQ(got, expected.end().bytes());
}

TEST(Copies, AreRepeatedAtTheEndWhenCollated) {
  Bytes one;
  Bytes two;
  const Bytes got = twoPageJob(3, 1, one, two);
  ExpectedStream expected;
  for (const Bytes* page : {&one, &two, &one, &two, &one, &two}) expected.add(*page).formFeed();
  EXPECT_EQ(got, expected.end().bytes());
}

TEST(Copies, OneOrFewerAreOne) {
  for (const int copies : {1, 0, -4}) {
    Bytes one;
    Bytes two;
    const Bytes got = twoPageJob(copies, 0, one, two);
    EXPECT_EQ(got, ExpectedStream().add(one).formFeed().add(two).formFeed().end().bytes());
  }
}

TEST(Copies, OfASplitPageHoldBothHalves) {
  EncodedPage page(24);
  page.job.options.SplitBlackRed = 1;
  page.job.options.sCopies = 2;
  page.band(0).black(0).red(0);
  const Bytes once = ExpectedStream()
                         .toX(0)
                         .add(blockOf(0))
                         .unit(10)
                         .unit(10)
                         .down(-2)
                         .toX(0)
                         .add(blockOf(1))
                         .formFeed()
                         .bytes();
  EXPECT_EQ(page.encode(), ExpectedStream().add(once).add(once).bytes());
}

}  // namespace
}  // namespace velka::testing
