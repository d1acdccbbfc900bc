#include <gtest/gtest.h>

#include "reference/ExpectedStream.h"
#include "reference/ReferenceEncoder.h"
#include "reference/ReferenceOptions.h"

namespace velka::reference {
namespace {

constexpr int black = 0;
constexpr int red = 1;

// Three bands of 24 rows at 180 dpi, four columns wide; ink stands in whole rows.
struct Page {
  Page() {
    planes.width = 4;
    planes.height = 72;
    planes.black.assign(288, 255);
    planes.red.assign(288, 255);
    planes.bands = {{0, 0, 3, 23}, {0, 24, 3, 47}, {0, 48, 3, 71}};
    setting.options = defaultOptions();
    setting.options.SplitBlackRed = 1;
    setting.printQuality = 180;
    setting.yResolution = 180;
  }

  void inkRow(int ink, int row) {
    for (size_t column = 0; column < 4; ++column) {
      const size_t index = static_cast<size_t>(row) * 4 + column;
      (ink == black ? planes.black : planes.red).at(index) = 0;
    }
    (ink == black ? planes.blackFlag : planes.redFlag) = true;
  }

  Bytes encode() {
    Bytes out;
    EXPECT_TRUE(encodeAndSend(planes, setting, state, out));
    return out;
  }

  Separation planes;
  PageSetting setting;
  GeneratorState state;
};

// A block of three columns whose dot `row` (0-7) is set.
ExpectedStream rowBlock(int colour, int row = 0) {
  const auto first = static_cast<uint8_t>(0x80U >> static_cast<unsigned>(row));
  return ExpectedStream().toX(0).block(colour, 39, 3, columnsOf(3, {first, 0, 0}));
}

Page pageWithRedInTheLastBand() {
  Page page;
  page.inkRow(black, 0);
  page.inkRow(black, 48);
  page.inkRow(red, 50);
  page.state.firstRedRow = 50;
  return page;
}

ExpectedStream blackHalf() {
  return ExpectedStream().add(rowBlock(black)).unit(10).down(96).add(rowBlock(black));
}

// From a head that already stands at the red band's top.
ExpectedStream redHalfInPlace() {
  return ExpectedStream().unit(10).unit(10).unit(10).down(-2).add(rowBlock(red, 2));
}

TEST(ReferenceSplit, RedFollowsBlackOnTheSamePage) {
  Page page = pageWithRedInTheLastBand();
  EXPECT_EQ(page.encode(),
            ExpectedStream().add(blackHalf()).add(redHalfInPlace()).formFeed().bytes());
  EXPECT_EQ(page.state.yCorrection, 48);
}

TEST(ReferenceSplit, TheEjectCommandEndsTheBlackHalf) {
  Page page = pageWithRedInTheLastBand();
  page.setting.options.sEjectMode = 0;
  EXPECT_EQ(page.encode(),
            ExpectedStream().add(blackHalf()).eject('0').add(redHalfInPlace()).formFeed().bytes());
}

TEST(ReferenceSplit, ABandWhoseSuccessorStartsAtTheFirstRedRowIsKept) {
  Page page;
  page.inkRow(black, 0);
  page.inkRow(black, 48);
  page.inkRow(red, 48);
  page.state.firstRedRow = 48;
  const Bytes expected = ExpectedStream()
                             .add(blackHalf())
                             .unit(10)
                             .down(-48)  // back to the middle band
                             .unit(10)
                             .down(48)  // and down again to the red one
                             .unit(10)
                             .down(-2)
                             .add(rowBlock(red))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
  EXPECT_EQ(page.state.yCorrection, 24);
}

TEST(ReferenceSplit, LaterRedBandsAreMeasuredFromTheOneBefore) {
  Page page;
  page.inkRow(black, 48);
  page.inkRow(red, 25);
  page.inkRow(red, 48);
  page.state.firstRedRow = 25;
  const Bytes expected = ExpectedStream()
                             .unit(10)
                             .down(96)
                             .add(rowBlock(black))
                             .unit(10)
                             .down(-48)
                             .unit(10)
                             .unit(10)
                             .down(-2)
                             .add(rowBlock(red, 1))
                             .unit(10)
                             .down(48)
                             .unit(10)
                             .down(-2)
                             .add(rowBlock(red))
                             .formFeed()
                             .bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceSplit, WithoutBlackTheMoveGoesForward) {
  Page page;
  page.inkRow(red, 50);
  page.state.firstRedRow = 50;
  const Bytes expected =
      ExpectedStream().unit(10).down(96).unit(10).add(rowBlock(red, 2)).formFeed().bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceSplit, WithoutRedTheStepBackIsStillSent) {
  Page page;
  page.inkRow(black, 0);
  page.inkRow(black, 48);
  EXPECT_EQ(page.encode(), ExpectedStream().add(blackHalf()).unit(10).down(-96).formFeed().bytes());
}

TEST(ReferenceSplit, TheLastBandStaysWhenTheFirstRedRowIsOlderThanThePage) {
  Page page;
  page.inkRow(black, 48);
  page.state.firstRedRow = 5000;
  const Bytes expected =
      ExpectedStream().unit(10).down(96).add(rowBlock(black)).unit(10).formFeed().bytes();
  EXPECT_EQ(page.encode(), expected);
  EXPECT_EQ(page.state.yCorrection, 48);
}

TEST(ReferenceSplit, OnlyTheValueOneSplits) {
  Page page = pageWithRedInTheLastBand();
  page.setting.options.SplitBlackRed = 2;
  const Bytes expected =
      ExpectedStream().add(blackHalf()).unit(10).down(-2).add(rowBlock(red, 2)).formFeed().bytes();
  EXPECT_EQ(page.encode(), expected);
}

TEST(ReferenceCopies, EachCopyOfASplitPageHoldsBothHalves) {
  Page page = pageWithRedInTheLastBand();
  page.setting.options.sCopies = 2;
  const ExpectedStream once = ExpectedStream().add(blackHalf()).add(redHalfInPlace()).formFeed();
  EXPECT_EQ(page.encode(), ExpectedStream().add(once).add(once).bytes());
  EXPECT_TRUE(page.state.copyBuffer.empty());
}

TEST(ReferenceCopies, UncollatedCopiesFollowTheirPage) {
  Page page;
  page.setting.options.SplitBlackRed = 0;
  page.setting.options.sEjectMode = 0;
  page.setting.options.sCopies = 3;
  page.inkRow(black, 0);
  const ExpectedStream once = ExpectedStream().add(rowBlock(black)).eject('0').formFeed();
  EXPECT_EQ(page.encode(), ExpectedStream().add(once).add(once).add(once).bytes());
}

TEST(ReferenceCopies, CollatedCopiesWaitForTheEndOfTheJob) {
  Page page;
  page.setting.options.SplitBlackRed = 0;
  page.setting.options.sCopies = 3;
  page.setting.collate = true;
  page.inkRow(black, 0);
  const ExpectedStream first = ExpectedStream().add(rowBlock(black)).formFeed();
  EXPECT_EQ(page.encode(), first.bytes());
  page.inkRow(black, 24);
  const ExpectedStream second =
      ExpectedStream().add(rowBlock(black)).unit(10).down(48).add(rowBlock(black)).formFeed();
  EXPECT_EQ(page.encode(), second.bytes());
  Bytes end;
  sendEndOfJob(page.setting.options, page.state, end);
  EXPECT_EQ(end, ExpectedStream().add(first).add(second).add(first).add(second).end().bytes());
}

TEST(ReferenceCopies, ACountBelowTwoIsOneCopy) {
  for (const int16_t copies : {int16_t{1}, int16_t{0}, int16_t{-7}}) {
    Page page;
    page.setting.options.SplitBlackRed = 0;
    page.setting.options.sCopies = copies;
    page.inkRow(black, 0);
    EXPECT_EQ(page.encode(), ExpectedStream().add(rowBlock(black)).formFeed().bytes());
    Bytes end;
    sendEndOfJob(page.setting.options, page.state, end);
    EXPECT_EQ(end, ExpectedStream().end().bytes());
  }
}

}  // namespace
}  // namespace velka::reference
