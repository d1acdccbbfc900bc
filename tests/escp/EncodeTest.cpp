// Bands to command streams: positioning and passes, by hand.
#include <gtest/gtest.h>

#include "escp/EncodedPage.h"
#include "reference/ExpectedStream.h"

namespace velka::testing {
namespace {

using reference::ExpectedStream;

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
}  // namespace
}  // namespace velka::testing
