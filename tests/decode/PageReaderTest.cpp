#include <gtest/gtest.h>

#include "PageReader.h"
#include "decode/Dots.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using decodetest::Dots;
using decodetest::dotsOf;
using decodetest::pagesOf;
using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

TEST(PageReader, PutsDotsWhereTheMovesLead) {
  // 300/360 inch down; 7/60 inch right, then two columns of 1/180 inch.
  const Stream stream = ExpectedStream()
                            .start(66)
                            .unit(10)
                            .down(300)
                            .toX(7)
                            .block(0, 39, 2, {0x80, 0, 1, 0x40, 0, 0})
                            .unit(10)
                            .down(-1)
                            .toX(0)
                            .block(1, 1, 2, {1, 0x80})
                            .formFeed()
                            .end()
                            .bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 1U);
  EXPECT_TRUE(pages[0].ended);
  EXPECT_EQ(pages[0].lines, 66);
  EXPECT_EQ(pages[0].headY, 2990);
  const Dots expected = {
      {{{3000, 420}, {3000 + 23 * 20, 420}, {3020, 440}}, {{2990 + 7 * 60, 0}, {2990, 30}}}};
  EXPECT_EQ(dotsOf(pages[0], Model::Standard), expected);
}

TEST(PageReader, FrontFeedStrikesEighteenBlackSlotsAGapAndSixRedSlots) {
  const Stream stream = {0x1B, '*', 39, 1, 0, 0xFF, 0xFF, 0xFF, 0x0C};
  const auto pages = pagesOf(stream, Model::OrloFront);
  ASSERT_EQ(pages.size(), 1U);
  const auto [black, red] = dotsOf(pages[0], Model::OrloFront);
  EXPECT_EQ(black.size(), 18U);
  EXPECT_EQ(black.begin()->first, 0);
  EXPECT_EQ(black.rbegin()->first, 17 * 20);
  EXPECT_EQ(red.size(), 6U);
  EXPECT_EQ(red.begin()->first, 28 * 20);
  EXPECT_EQ(red.rbegin()->first, 33 * 20);
}

TEST(PageReader, BackFeedStrikesSixRedSlotsAGapAndEighteenBlackSlots) {
  const Stream stream = {0x1B, '*', 39, 1, 0, 0xFF, 0xFF, 0xFF, 0x0C};
  const auto pages = pagesOf(stream, Model::OrloBack);
  ASSERT_EQ(pages.size(), 1U);
  const auto [black, red] = dotsOf(pages[0], Model::OrloBack);
  EXPECT_EQ(red.size(), 6U);
  EXPECT_EQ(red.begin()->first, 0);
  EXPECT_EQ(red.rbegin()->first, 5 * 20);
  EXPECT_EQ(black.size(), 18U);
  EXPECT_EQ(black.begin()->first, 16 * 20);
  EXPECT_EQ(black.rbegin()->first, 33 * 20);
}

TEST(PageReader, TheNinthByteOfATallHeadEndsAtDotSeventyTwo) {
  const Stream stream =
      ExpectedStream().block(0, 41, 1, {0x80, 0, 0, 0, 0, 0, 0, 0, 1}).formFeed().bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 1U);
  const Dots expected = {{{{0, 0}, {71 * 20, 0}}, {}}};
  EXPECT_EQ(dotsOf(pages[0], Model::Standard), expected);
}

// Paper stays where it is, and what was set goes.
TEST(PageReader, AnInitialisedPrinterKnowsNoPageLength) {
  const Stream stream =
      ExpectedStream().start(66).add({0x1B, '@'}).block(0, 0, 1, {1}).formFeed().bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 1U);
  EXPECT_EQ(pages[0].lines, 0);
}

TEST(PageReader, RelativeMovesStartBehindTheBlockAndCarriageReturnsAtTheEdge) {
  // Two columns at 60 dpi are two steps of 1/60 inch; minus five leaves four.
  const Stream stream = ExpectedStream()
                            .toX(7)
                            .block(0, 0, 2, {1, 1})
                            .add({0x1B, '\\', 0xFB, 0xFF})
                            .block(0, 0, 1, {1})
                            .add({0x0D})
                            .block(0, 0, 1, {1})
                            .formFeed()
                            .bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 1U);
  ASSERT_EQ(pages[0].blocks.size(), 3U);
  EXPECT_EQ(pages[0].blocks[1].x, 4 * 60);
  EXPECT_EQ(pages[0].blocks[2].x, 0);
}

TEST(PageReader, AnAdvanceMovesByHundredAndEightieths) {
  const Stream stream =
      ExpectedStream().add({0x1B, 'J', 18}).block(0, 0, 1, {1}).formFeed().bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 1U);
  EXPECT_EQ(pages[0].blocks.at(0).y, 360);
}

TEST(PageReader, AFormFeedStartsAtTheTopAndAnInitialisationLeavesThePaper) {
  const Stream stream = ExpectedStream()
                            .unit(10)
                            .down(50)
                            .add({0x1B, '@'})
                            .block(0, 0, 1, {1})
                            .formFeed()
                            .block(0, 0, 1, {1})
                            .formFeed()
                            .bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 2U);
  EXPECT_EQ(pages[0].blocks.at(0).y, 500);
  EXPECT_EQ(pages[1].blocks.at(0).y, 0);
}

TEST(PageReader, TheHeadStandsAtTheTopWhereAPageStartsAndAnywhereWhereItEnds) {
  const Stream stream = ExpectedStream()
                            .unit(10)
                            .down(50)
                            .block(0, 0, 1, {1})
                            .down(7)
                            .formFeed()
                            .formFeed()
                            .block(0, 0, 1, {1})
                            .unit(10)
                            .down(3)
                            .bytes();
  const auto pages = pagesOf(stream, Model::Standard);
  ASSERT_EQ(pages.size(), 3U);
  EXPECT_EQ(pages[0].headY, 570);
  EXPECT_EQ(pages[1].headY, 0);
  EXPECT_EQ(pages[2].headY, 30);
}

TEST(PageReader, EveryFormFeedIsAPageAndWhatFollowsTheLastOnlyWithBlocks) {
  const Stream empty = {0x0C, 0x0C, 0x1B, '@'};
  EXPECT_EQ(pagesOf(empty, Model::Standard).size(), 2U);
  const Stream open = ExpectedStream().formFeed().block(0, 0, 1, {1}).bytes();
  PageReader reader(open, Model::Standard);
  ASSERT_TRUE(reader.next().has_value());
  EXPECT_FALSE(reader.fault().has_value());
  const auto last = reader.next();
  ASSERT_TRUE(last.has_value());
  EXPECT_FALSE(last->ended);
  EXPECT_EQ(last->offset, 1U);
  EXPECT_FALSE(reader.next().has_value());
  ASSERT_TRUE(reader.fault().has_value());
  EXPECT_EQ(reader.fault()->offset, open.size());
  EXPECT_EQ(reader.fault()->what, "the stream ends inside a page");
}

TEST(PageReader, GivesThePageThatAFaultCutOffAndThenTheFault) {
  const Stream stream = ExpectedStream().block(0, 39, 1, {1, 2, 3}).add({'x'}).bytes();
  PageReader reader(stream, Model::Standard);
  const auto page = reader.next();
  ASSERT_TRUE(page.has_value());
  EXPECT_EQ(page->blocks.size(), 1U);
  EXPECT_FALSE(reader.next().has_value());
  ASSERT_TRUE(reader.fault().has_value());
  EXPECT_EQ(reader.fault()->offset, 11U);
}

}  // namespace
}  // namespace velka::decode
