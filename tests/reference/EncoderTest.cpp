#include <gtest/gtest.h>

#include "reference/ExpectedStream.h"
#include "reference/HandmadePage.h"

namespace velka::reference {
namespace {

using Page = HandmadePage;

// The three-column block that a full row of ink at the band's top makes.
ExpectedStream topRowBlock(int colour, int mode = 39) {
  return ExpectedStream().toX(0).block(colour, mode, 3, columnsOf(3, {0x80, 0, 0}));
}

TEST(ReferenceEncoder, BandsArePositionedFromTheLastPrintedBand) {
  Page page(96);
  page.inkRow(black, 0);
  page.inkRow(black, 24);
  page.inkRow(black, 72);
  const Bytes expected = ExpectedStream()
                             .add(topRowBlock(black))
                             .unit(10)
                             .down(48)
                             .add(topRowBlock(black))
                             .unit(10)
                             .down(96)
                             .add(topRowBlock(black))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
  EXPECT_TRUE(page.succeeded);
}

TEST(ReferenceEncoder, RedOverBlackStartsOnePixelHigher) {
  Page page(48);
  page.inkRow(black, 24);
  page.inkRow(red, 24);
  const Bytes expected = ExpectedStream()
                             .unit(10)
                             .down(48)
                             .add(topRowBlock(black))
                             .unit(10)
                             .down(-2)
                             .add(topRowBlock(red))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, BlackDoesNotFollowTheRedPosition) {
  Page page(72);
  page.inkRow(red, 24);
  page.inkRow(black, 48);
  const Bytes expected = ExpectedStream()
                             .unit(10)
                             .down(48)
                             .add(topRowBlock(red))
                             .unit(10)
                             .down(96)
                             .add(topRowBlock(black))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, AnEmptyBlackBlockClearsItsStartedFlag) {
  Page page(48);
  page.inkRow(black, 0);
  page.inkRow(red, 24);
  const Bytes expected = ExpectedStream()
                             .add(topRowBlock(black))
                             .unit(10)
                             .down(48)
                             .add(topRowBlock(red))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
  EXPECT_FALSE(page.state.blackStarted);
  EXPECT_TRUE(page.state.redStarted);
}

TEST(ReferenceEncoder, TheStartedFlagOfAnEarlierPageStillLiftsRed) {
  Page page(24);
  page.inkRow(red, 0);
  page.state.blackStarted = true;
  EXPECT_EQ(page.encode(),
            ExpectedStream().unit(10).down(-2).add(topRowBlock(red)).formFeed().bytes());
  EXPECT_TRUE(page.state.blackStarted);
}

TEST(ReferenceEncoder, TwoPassesStepDownBetweenThemAndUpBeforeRed) {
  Page page(48, 48);
  page.resolution(360, 360);
  for (const int ink : {black, red}) {
    page.inkRow(ink, 0);
    page.inkRow(ink, 1);
  }
  const Bytes expected = ExpectedStream()
                             .add(topRowBlock(black, 40))
                             .unit(10)
                             .down(1)
                             .add(topRowBlock(black, 40))
                             .unit(10)
                             .down(-1)
                             .add(topRowBlock(red, 40))
                             .unit(10)
                             .down(1)
                             .add(topRowBlock(red, 40))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, AnEmptyFirstPassIsNotFollowedByAStep) {
  Page page(48, 48);
  page.resolution(360, 360);
  page.inkRow(black, 1);
  EXPECT_EQ(page.encode(), ExpectedStream().add(topRowBlock(black, 40)).formFeed().bytes());
  EXPECT_TRUE(page.state.blackStarted);
}

TEST(ReferenceEncoder, AnEmptySecondPassLeavesRedUnlifted) {
  Page page(48, 48);
  page.resolution(360, 360);
  page.inkRow(black, 0);
  page.inkRow(red, 0);
  const Bytes expected = ExpectedStream()
                             .add(topRowBlock(black, 40))
                             .unit(10)
                             .down(1)
                             .add(topRowBlock(red, 40))
                             .unit(10)
                             .down(1)
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, TheHorizontalPositionIsTheSkip) {
  Page page(24, 24, 10);
  page.resolution(120, 60);
  for (int column = 5; column < 10; ++column) {
    page.dot(black, 0, column);
  }
  const Bytes expected =
      ExpectedStream().toX(2).block(black, 1, 5, {0x00, 0x80, 0x80, 0x80, 0x80}).formFeed().bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, AnInitialOffsetMovesFirstAndSetsTheRedPosition) {
  Page page(24);
  page.planes.bands.at(0) = {0, 12, 3, 35};
  page.planes.height = 36;
  page.planes.black.assign(144, 255);
  page.planes.red.assign(144, 255);
  page.inkRow(red, 12);
  page.state.initialYOffset = 10;
  const Bytes expected =
      ExpectedStream().unit(10).down(20).unit(10).down(4).add(topRowBlock(red)).formFeed().bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceEncoder, AnUnsupportedResolutionSendsNothing) {
  Page page(24);
  page.inkRow(black, 0);
  page.resolution(75, 180);
  EXPECT_EQ(page.encode(), Bytes{});
  EXPECT_FALSE(page.succeeded);
}

TEST(ReferenceEncoder, AResolutionWithoutDataStillEndsThePage) {
  Page page(24);
  page.inkRow(black, 0);
  page.resolution(180, 75);
  page.setting.options.sEjectMode = 1;
  EXPECT_EQ(page.encode(), ExpectedStream().eject('1').formFeed().bytes());
  EXPECT_TRUE(page.succeeded);
}

TEST(ReferenceEncoder, BandsWithoutInkSendNothing) {
  Page page(48);
  page.setting.options.sEjectMode = 1;
  EXPECT_EQ(page.encode(), Bytes{});
  EXPECT_FALSE(page.succeeded);
}

TEST(ReferenceEncoder, APageWithoutBandsSendsNothing) {
  Page page(0);
  EXPECT_EQ(page.encode(), Bytes{});
  EXPECT_FALSE(page.succeeded);
}

TEST(ReferenceEncoder, TheEjectCommandStandsBeforeTheFormFeed) {
  Page page(24);
  page.inkRow(black, 0);
  page.setting.options.sEjectMode = 2;
  page.setting.pageNumber = 3;
  EXPECT_EQ(page.encode(), ExpectedStream().add(topRowBlock(black)).eject('1').formFeed().bytes());
}

}  // namespace
}  // namespace velka::reference
