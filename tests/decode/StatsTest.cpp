#include <gtest/gtest.h>

#include "StreamStats.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

constexpr int64_t kWidth = 3600;

StreamStats statsOf(const Stream& stream, Model model = Model::Standard) {
  return readStats(stream, model, {100, 50}, {kWidth, false});
}

ExpectedStream blackBlock() {
  return ExpectedStream().block(0, 39, 2, {0xFF, 0, 1, 0, 0, 0x80});  // 10 dots
}

TEST(Stats, CountPagesBandsBlocksAndDots) {
  const Stream stream = ExpectedStream()
                            .start(6)
                            .add(blackBlock())
                            .unit(10)
                            .down(-2)
                            .block(1, 0, 3, {1, 3, 7})
                            .down(50)
                            .add(blackBlock())
                            .formFeed()
                            .end()
                            .bytes();
  const StreamStats stats = statsOf(stream);
  EXPECT_FALSE(stats.fault.has_value());
  EXPECT_EQ(stats.bytes, stream.size());
  EXPECT_EQ(stats.pages, 1U);
  EXPECT_EQ(stats.bands, 2U);
  EXPECT_EQ(stats.blocks, 3U);
  EXPECT_EQ(stats.dots, (std::array<uint64_t, 2>{20, 6}));
  EXPECT_EQ(stats.passes, 3U);
  EXPECT_EQ(stats.paperMoves, 2U);
  EXPECT_EQ(stats.movedOn, 500);
  EXPECT_EQ(stats.movedBack, 20);
}

TEST(Stats, APlaceStruckTwiceHoldsOneDot) {
  const Stream column = {0x80, 0, 0x01};
  const Stream twice = ExpectedStream()
                           .start(6)
                           .block(0, 39, 1, column)
                           .toX(0)
                           .block(0, 39, 1, column)
                           .toX(0)
                           .block(1, 39, 1, column)
                           .formFeed()
                           .bytes();
  const StreamStats stats = statsOf(twice);
  EXPECT_EQ(stats.dots, (std::array<uint64_t, 2>{4, 2}));
  EXPECT_EQ(stats.places, (std::array<uint64_t, 2>{2, 2}));
  // The next form's places are others.
  Stream pages = twice;
  pages.insert(pages.end(), twice.begin(), twice.end());
  EXPECT_EQ(statsOf(pages).places, (std::array<uint64_t, 2>{4, 4}));
}

TEST(Stats, PlacesAreCountedBeyondTheFormAndBesideThePaper) {
  const Stream column = {0x80, 0, 0};
  const Stream stream = ExpectedStream()
                            .start(1)
                            .block(0, 39, 1, column)
                            .toX(500)
                            .block(0, 39, 1, column)
                            .unit(10)
                            .down(1000)
                            .block(1, 39, 1, column)
                            .formFeed()
                            .end()
                            .bytes();
  EXPECT_EQ(statsOf(stream).places, (std::array<uint64_t, 2>{2, 1}));
  const auto narrow = readStats(stream, Model::Standard, {}, {kWidth, true});
  EXPECT_EQ(narrow.places, (std::array<uint64_t, 2>{1, 1}));
}

TEST(Stats, WithoutTheLengthOfTheFormThereArePlacesButNoCoverage) {
  const StreamStats stats = statsOf(ExpectedStream().add(blackBlock()).formFeed().bytes());
  EXPECT_EQ(stats.places, (std::array<uint64_t, 2>{10, 0}));
  EXPECT_FALSE(stats.coverage.has_value());
}

TEST(Stats, OnTheOrloHeadEveryMoveButThePassStepStartsABand) {
  const Stream strike = {0x1B, '*', 40, 1, 0, 0xFF, 0, 0};
  ExpectedStream stream;
  stream.start(6).add({0x1B, 'r', 2}).add(strike).unit(10).down(1).add(strike);
  // Six rows of 1/180 inch, less the step made already; then back for the next sweep.
  stream.down(11).add(strike).down(1).add(strike).down(-13).add(strike).formFeed().end();
  EXPECT_EQ(statsOf(stream.bytes(), Model::OrloBack).bands, 3U);
}

TEST(Stats, AMoveThatOverwroteAnotherStartsABand) {
  const Stream stream = ExpectedStream()
                            .add(blackBlock())
                            .add({0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 1, 0, 0, 0, 0, 0})
                            .add(blackBlock())
                            .formFeed()
                            .bytes();
  EXPECT_EQ(statsOf(stream).bands, 2U);
}

// A move of 1000 units whose commands overlap counts as that, however it was sent.
TEST(Stats, AMoveThatOverwroteAnotherCountsAsLongAsItIs) {
  const Stream longMove = {0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 100, 0, 0, 0, 0, 0};
  const Stream back = {0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 0xCE, 0xFF, 0, 0, 0, 0};
  const StreamStats stats =
      statsOf(ExpectedStream().start(6).unit(10).add(longMove).add(back).formFeed().bytes());
  EXPECT_EQ(stats.paperMoves, 2U);
  EXPECT_EQ(stats.movedOn, 1000);
  EXPECT_EQ(stats.movedBack, 500);
  // 1500 units of moves and the rest of a form of 3600 units, 500 from its top.
  EXPECT_NEAR(stats.seconds, (1500 + 3100) * 25.4 / 3600 / 50, 1e-9);
}

TEST(Stats, BlocksOfOneInkWithoutAPaperMoveAreOnePass) {
  const Stream column = {0x80, 0, 0};
  const Stream one =
      ExpectedStream().block(0, 39, 1, column).toX(40).block(0, 39, 1, column).formFeed().bytes();
  EXPECT_EQ(statsOf(one).passes, 1U);
  const Stream two =
      ExpectedStream().block(0, 39, 1, column).toX(40).block(1, 39, 1, column).formFeed().bytes();
  EXPECT_EQ(statsOf(two).passes, 2U);
}

TEST(Stats, TheTimeAddsUpTheWaysOfHeadAndPaper) {
  // An inch down; a pass from 1 to 2 inches; the rest of a form of two inches.
  const Stream data(size_t{60} * 1, 0x80);
  const Stream stream = ExpectedStream()
                            .start(12)
                            .unit(10)
                            .down(360)
                            .toX(60)
                            .block(0, 0, 60, data)
                            .formFeed()
                            .bytes();
  // 25.4 mm of paper twice at 50 mm/s, 50.8 mm of head at 100 mm/s.
  EXPECT_NEAR(statsOf(stream).seconds, 2 * 25.4 / 50 + 50.8 / 100, 1e-9);
}

TEST(Stats, APassStartsAtItsNearerEnd) {
  // The second pass begins where the first ended: no way back is needed.
  const Stream data(size_t{60} * 1, 0x80);
  const Stream stream =
      ExpectedStream().toX(0).block(0, 0, 60, data).toX(0).block(1, 0, 60, data).formFeed().bytes();
  EXPECT_NEAR(statsOf(stream).seconds, 2 * 25.4 / 100, 1e-9);
}

TEST(Stats, CoverageIsTheShareOfTheFormAndCountsADotOnce) {
  // A form of one by one inch; 60 x 8 dots of 1/60 inch, struck twice: 8 of 60 rows.
  const Stream data(size_t{60} * 1, 0xFF);
  const Stream stream = ExpectedStream()
                            .start(6)
                            .block(0, 0, 60, data)
                            .toX(0)
                            .block(0, 0, 60, data)
                            .formFeed()
                            .bytes();
  const StreamStats stats = statsOf(stream);
  ASSERT_TRUE(stats.coverage.has_value());
  EXPECT_NEAR(stats.coverage->at(0), 8.0 / 60, 1e-9);
  EXPECT_EQ(stats.coverage->at(1), 0);
}

TEST(Stats, CoverageIsUnknownWithoutAFormLength) {
  EXPECT_FALSE(statsOf(blackBlock().formFeed().bytes()).coverage.has_value());
}

TEST(Stats, TellTheFaultAndCountWhatStandsBeforeIt) {
  const StreamStats stats = statsOf(blackBlock().formFeed().add({'x'}).bytes());
  ASSERT_TRUE(stats.fault.has_value());
  EXPECT_EQ(stats.fault->offset, 15U);
  EXPECT_EQ(stats.pages, 1U);
  EXPECT_EQ(stats.dots[0], 10U);
}

TEST(Stats, OnTheOrloHeadThePinsDecideTheInk) {
  const Stream stream = {0x1B, '*', 39, 1, 0, 0xFF, 0xFF, 0xFF, 0x0C};
  EXPECT_EQ(statsOf(stream, Model::OrloFront).dots, (std::array<uint64_t, 2>{18, 6}));
  EXPECT_EQ(statsOf(stream, Model::OrloBack).dots, (std::array<uint64_t, 2>{18, 6}));
}

}  // namespace
}  // namespace velka::decode
