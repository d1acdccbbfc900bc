// What lies on the paper must be what the planes hold. Rows that are dropped or
// displaced on purpose are named here, rule by rule.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>

#include "orlo/LiteralEncoder.h"
#include "orlo/PaperRules.h"
#include "orlo/PrintingHead.h"
#include "support/Sweep.h"

namespace velka::orlotest {
namespace {

std::string describe(const DotPage& page, Feed feed, bool split, ModeRow mode) {
  return std::to_string(page.width) + " x " + std::to_string(page.height) +
         (feed == Feed::Front ? " front" : " back") + (split ? " split " : " unsplit ") +
         std::to_string(mode.dpi.vertical) + " x " + std::to_string(mode.dpi.horizontal);
}

void expectPaper(const DotPage& page, Feed feed, bool split, ModeRow mode) {
  SCOPED_TRACE(describe(page, feed, split, mode));
  const Bytes stream = encode(page, feed, split, mode.dpi);
  EXPECT_EQ(stream, encodeLiterally(page, feed, split, mode).commands);
  const Paper paper = printStream(stream, feed);
  ASSERT_EQ(paper.complaint, "");
  const Expected expected = expectedPaper(page, feed, split, mode);
  EXPECT_TRUE(samePaper(paper.black, expected.black, mode.dpi.horizontal));
  EXPECT_TRUE(samePaper(paper.red, expected.red, mode.dpi.horizontal));
  // Only back feed in one sweep strikes a dot twice.
  if (feed == Feed::Front || split) {
    EXPECT_EQ(static_cast<size_t>(paper.strikes), expected.black.size() + expected.red.size());
  }
}

template <typename Make>
void expectPaperEverywhere(Make make) {
  for (const ModeRow& mode : allModes())
    for (const Feed feed : {Feed::Front, Feed::Back})
      for (const bool split : {false, true}) expectPaper(make(feed, mode), feed, split, mode);
}

TEST(Paper, EqualsThePlanesOfRandomPages) {
  std::mt19937 random(20240611);
  for (const int perMille : {4, 20, 100, 400, 1000})
    for (int round = 0; round < testing::amount(4, 2, 1); ++round)
      expectPaperEverywhere([&](Feed feed, const ModeRow& mode) {
        const int width = std::uniform_int_distribution<int>(1, 420)(random);
        const int height = std::uniform_int_distribution<int>(1, 400)(random);
        return randomPage(random, width, height, perMille, feed, mode.dpi.vertical);
      });
}

TEST(Paper, EqualsThePlanesOfRandomPagesOfOneInk) {
  std::mt19937 random(7);
  for (const bool red : {false, true})
    for (const int perMille : {10, 60, 500})
      expectPaperEverywhere([&](Feed feed, const ModeRow& mode) {
        DotPage page = randomPage(random, 60, 300, perMille, feed, mode.dpi.vertical);
        (red ? page.black : page.red) = DotPage(60, 300).black;
        return page;
      });
}

TEST(Paper, HoldsEveryDotOfARedRunThatStartsWhereTheHeadsGapEnds) {
  for (const int distance : {-1, 0, 1})
    expectPaperEverywhere([&](Feed feed, const ModeRow& mode) {
      const int p = passesAt(mode.dpi.vertical);
      DotPage page(20, 300);
      for (int y = 0; y < 12; ++y) {
        page.putBlack(3, 40 + y);
        page.putRed(4, 40 + (feed == Feed::Front ? 28 : -16) * p + distance + y);
      }
      return page;
    });
}

TEST(Paper, HoldsEveryDotOfAFullPageAboveItsEnd) {
  expectPaperEverywhere([](Feed feed, const ModeRow& mode) {
    const int k = passesAt(mode.dpi.vertical);
    DotPage page(12, 260);
    for (int y = 0; y < page.height; ++y)
      for (int x = 0; x < page.width; ++x) {
        if (feed == Feed::Front || y >= 16 * k) page.putBlack(x, y);
        if (feed == Feed::Back || y >= 28 * k) page.putRed(x, y);
      }
    return page;
  });
}

TEST(Paper, DropsBlackBelowTheLastBandInFrontFeedWithoutSplit) {
  // Bands at 0 and 40; the second one's head reaches row 73, past the page.
  DotPage page(10, 70);
  page.putBlack(0, 0);
  page.putBlack(1, 40);
  page.putBlack(2, 60);
  const Paper paper = printStream(encode(page, Feed::Front, false, {180, 180}), Feed::Front);
  EXPECT_EQ(paper.black, (std::set<Dot>{{0, 0}, {40 * 20, 20}}));
}

TEST(Paper, DropsRedBelowTheLastBandInBackFeedWithoutSplit) {
  DotPage page(10, 70);
  page.putRed(0, 0);
  page.putRed(1, 40);
  page.putRed(2, 60);
  const Paper paper = printStream(encode(page, Feed::Back, false, {180, 180}), Feed::Back);
  EXPECT_EQ(paper.red, (std::set<Dot>{{0, 0}, {40 * 20, 20}}));
}

TEST(Paper, DropsTheLastRowOfTheLowerInkWhereTheHeadEndsARowAboveItAt360Dpi) {
  // Bands at 0 and 40; the second one's passes end at row 107, the page at row 108.
  const auto at = [](int64_t row, int64_t column) { return Dot{row * 10, column * 10}; };
  DotPage front(10, 109);
  front.putBlack(0, 0);
  front.putBlack(1, 40);
  front.putRed(2, 96);
  front.putRed(3, 108);
  const Paper first = printStream(encode(front, Feed::Front, false, {360, 360}), Feed::Front);
  EXPECT_EQ(first.black, (std::set<Dot>{at(0, 0), at(40, 1)}));
  EXPECT_EQ(first.red, (std::set<Dot>{at(96, 2)}));
  DotPage back(10, 109);
  back.putBlack(0, 32);
  back.putBlack(1, 108);
  back.putRed(2, 0);
  back.putRed(3, 40);
  const Paper second = printStream(encode(back, Feed::Back, false, {360, 360}), Feed::Back);
  EXPECT_EQ(second.black, (std::set<Dot>{at(32, 0)}));
  EXPECT_EQ(second.red, (std::set<Dot>{at(0, 2), at(40, 3)}));
}

TEST(Paper, GoesOnWhileTheHeadStaysOneRowAboveThePagesEnd) {
  // The second band's head ends at row 73: a page of 75 rows has one more.
  for (const int height : {74, 75}) {
    DotPage page(10, height);
    page.putBlack(0, 0);
    page.putBlack(1, 40);
    page.putBlack(2, 60);
    const Paper paper = printStream(encode(page, Feed::Front, false, {180, 180}), Feed::Front);
    EXPECT_EQ(paper.black.size(), height == 74 ? 2U : 3U);
  }
}

TEST(Paper, NeverDropsTheEndOfAPageAfterItsFirstBand) {
  // The first band's head reaches past the page; the second one still comes.
  DotPage page(10, 30);
  page.putBlack(0, 0);
  page.putBlack(1, 25);
  const Paper paper = printStream(encode(page, Feed::Front, false, {180, 180}), Feed::Front);
  EXPECT_EQ(paper.black.size(), 2U);
}

TEST(Paper, DropsTheFirstRedRowsOfASplitFrontFeedPageWithoutBlack) {
  for (const ModeRow& mode : allModes()) {
    const int p = passesAt(mode.dpi.vertical);
    DotPage page(10, 200);
    for (int y = 70; y < 140; ++y) page.putRed(0, y);
    const Paper paper = printStream(encode(page, Feed::Front, true, mode.dpi), Feed::Front);
    const int64_t down = kUnitsPerInch / mode.dpi.vertical;
    ASSERT_EQ(paper.red.size(), static_cast<size_t>(70 - 28 * p));
    EXPECT_EQ(paper.red.begin()->first, (70 + 28 * p) * down);
  }
}

TEST(Paper, RedLiesOneRowLowAfterABlackSweepInFrontFeedAt360Dpi) {
  DotPage page(10, 200);
  page.putBlack(0, 10);
  page.putRed(0, 100);
  const Paper paper = printStream(encode(page, Feed::Front, true, {360, 360}), Feed::Front);
  EXPECT_EQ(paper.red, (std::set<Dot>{{101 * 10, 0}}));
  const Paper coarse = printStream(encode(page, Feed::Front, true, {180, 180}), Feed::Front);
  EXPECT_EQ(coarse.red, (std::set<Dot>{{100 * 20, 0}}));
}

TEST(Paper, RedLiesExactlyAfterABlackSweepInBackFeedAt360Dpi) {
  DotPage page(10, 200);
  page.putBlack(0, 60);
  page.putRed(0, 20);
  const Paper paper = printStream(encode(page, Feed::Back, true, {360, 360}), Feed::Back);
  EXPECT_EQ(paper.black, (std::set<Dot>{{60 * 10, 0}}));
  EXPECT_EQ(paper.red, (std::set<Dot>{{20 * 10, 0}}));
}

TEST(Paper, BlackIsStruckAgainWhereRedDrivesTheBandsInBackFeed) {
  DotPage page(10, 300);
  page.putBlack(0, 40);  // slot 24 of the band at 16, slot 18 of the next one at 22
  page.putRed(1, 16);
  page.putRed(1, 22);
  const Paper paper = printStream(encode(page, Feed::Back, false, {180, 180}), Feed::Back);
  EXPECT_EQ(paper.black.size(), 1U);
  EXPECT_EQ(paper.red.size(), 2U);
  EXPECT_EQ(paper.strikes, 4);
}

}  // namespace
}  // namespace velka::orlotest
