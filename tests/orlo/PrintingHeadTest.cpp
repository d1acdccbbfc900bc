// The model of the printer must be right itself before it can judge anything.
#include <gtest/gtest.h>

#include "orlo/PrintingHead.h"

namespace velka::orlotest {
namespace {

TEST(PrintingHead, FrontFeedStrikesEighteenBlackSlotsAGapAndSixRedSlots) {
  const Paper paper = printStream(block(0x27, {{0xFF, 0xFF, 0xFF}}), Feed::Front);
  ASSERT_EQ(paper.complaint, "");
  ASSERT_EQ(paper.black.size(), 18U);
  EXPECT_EQ(paper.black.begin()->first, 0);
  EXPECT_EQ(paper.black.rbegin()->first, 17 * 20);
  ASSERT_EQ(paper.red.size(), 6U);
  EXPECT_EQ(paper.red.begin()->first, 28 * 20);
  EXPECT_EQ(paper.red.rbegin()->first, 33 * 20);
}

TEST(PrintingHead, BackFeedStrikesSixRedSlotsAGapAndEighteenBlackSlots) {
  const Paper paper = printStream(block(0x27, {{0xFF, 0xFF, 0xFF}}), Feed::Back);
  ASSERT_EQ(paper.red.size(), 6U);
  EXPECT_EQ(paper.red.rbegin()->first, 5 * 20);
  ASSERT_EQ(paper.black.size(), 18U);
  EXPECT_EQ(paper.black.begin()->first, 16 * 20);
  EXPECT_EQ(paper.black.rbegin()->first, 33 * 20);
}

TEST(PrintingHead, MovesCountInTheirUnitsAndBackwardToo) {
  const Bytes column = {0x80, 0, 0};
  const Bytes stream = moveY(100) + moveX(3) + block(0x28, {column, column}) + moveY(-40) +
                       block(0x28, {column}) + Bytes{0x0C} + block(0x28, {column});
  const Paper paper = printStream(stream, Feed::Front);
  ASSERT_EQ(paper.complaint, "");
  const std::set<Dot> expected = {{1000, 180}, {1000, 190}, {600, 0}, {0, 0}};
  EXPECT_EQ(paper.black, expected);
  EXPECT_EQ(paper.strikes, 4);
  EXPECT_EQ(paper.pages, 1);
}

TEST(PrintingHead, ComplainsAboutWhatNoPrinterKnows) {
  EXPECT_NE(printStream(Bytes{0x41}, Feed::Front).complaint, "");
  EXPECT_NE(printStream(Bytes{0x1B, 0x78}, Feed::Front).complaint, "");
  EXPECT_NE(printStream(Bytes{0x1B, 0x2A, 0x77, 1, 0, 0, 0, 0}, Feed::Front).complaint, "");
  EXPECT_NE(printStream(Bytes{0x1B, 0x2A, 0x27, 2, 0, 0, 0, 0}, Feed::Front).complaint, "");
}

}  // namespace
}  // namespace velka::orlotest
