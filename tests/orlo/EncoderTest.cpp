// Streams of small pages, written out by hand.
#include <gtest/gtest.h>

#include "orlo/PageMaker.h"

namespace velka::orlotest {
namespace {

const Bytes kReturn = {0x0D};

TEST(FrontFeed, RedAloneStartsTwentyEightRowsAboveIt) {
  DotPage page(20, 200);
  page.putRed(0, 100);
  const Bytes expected = moveY(2 * 72) + moveX(0) + block(0x27, padded({{0, 0, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), expected);
}

TEST(FrontFeed, BlackNearAboveRedStartsTwentyEightRowsAboveTheRed) {
  DotPage page(20, 300);
  page.putBlack(0, 100);
  page.putRed(0, 120);
  // Base 92: black in slot 8, red in slot 28.
  const Bytes expected = moveY(2 * 92) + moveX(0) + block(0x27, padded({{0, 0x80, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), expected);
}

TEST(FrontFeed, BlackFarAboveRedStartsAtTheBlack) {
  DotPage page(20, 300);
  page.putBlack(0, 100);
  page.putRed(0, 128);
  const Bytes expected = moveY(2 * 100) + moveX(0) + block(0x27, padded({{0x80, 0, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), expected);
}

TEST(FrontFeed, APageThatStartsAtTheTopMovesNowhereFirst) {
  DotPage page(20, 30);
  page.putBlack(0, 0);
  const Bytes expected = moveX(0) + block(0x27, padded({kFirstSlot}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), expected);
}

TEST(FrontFeed, ASecondBandReturnsTheCarriageAfterItsPass) {
  DotPage page(20, 300);
  page.putBlack(0, 0);
  page.putBlack(0, 18);
  const Bytes first = moveX(0) + block(0x27, padded({kFirstSlot}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), first + moveY(2 * 18) + first + kReturn);
}

TEST(FrontFeed, RedRowsAheadMakeTheNextBandSixRowsLower) {
  DotPage page(20, 300);
  page.putBlack(0, 0);
  page.putRed(0, 28);
  page.putRed(0, 34);
  page.putBlack(0, 18);  // the next band's slot 12
  page.putBlack(0, 10);  // printed by the first band, left out of the next one
  const Bytes first = moveX(0) + block(0x27, padded({{0x80, 0x20, 0x20}}, 11));
  const Bytes second = moveX(0) + block(0x27, padded({{0, 0x08, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, false, {180, 180}), first + moveY(2 * 6) + second + kReturn);
}

TEST(FrontFeed, BandsAt360DpiAreTwoPassesWithAMoveOfOneRowBetween) {
  DotPage page(20, 400);
  page.putBlack(0, 0);
  page.putBlack(1, 1);
  page.putBlack(0, 36);
  const Bytes block0 = moveX(0) + block(0x28, padded({kFirstSlot}, 11));
  const Bytes block1 = moveX(0) + block(0x28, padded({kBlank, kFirstSlot}, 11));
  // The later band's second pass has no run, and still its return.
  const Bytes expected =
      block0 + moveY(1) + block1 + moveY(35) + block0 + kReturn + moveY(1) + kReturn;
  EXPECT_EQ(encode(page, Feed::Front, false, {360, 360}), expected);
}

TEST(FrontFeed, TheMoveBetweenTwoPassesIsMadeWithoutARunToo) {
  DotPage page(20, 400);
  page.putBlack(0, 0);
  EXPECT_EQ(encode(page, Feed::Front, false, {360, 360}),
            moveX(0) + block(0x28, padded({kFirstSlot}, 11)) + moveY(1));
}

TEST(FrontFeed, SplitPrintsBlackThenGoesBackForTheRed) {
  DotPage page(20, 300);
  page.putBlack(0, 50);
  page.putBlack(0, 150);
  page.putRed(0, 60);
  const Bytes black = moveX(0) + block(0x27, padded({kFirstSlot}, 11));
  const Bytes red = moveX(0) + block(0x27, padded({{0, 0, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, true, {180, 180}),
            moveY(2 * 50) + black + moveY(2 * 100) + black + kReturn + moveY(2 * (32 - 150)) + red);
}

TEST(FrontFeed, SplitMakesNoMoveOfNothingBetweenItsSweeps) {
  DotPage page(20, 300);
  page.putBlack(0, 50);
  page.putRed(0, 78);
  const Bytes black = moveX(0) + block(0x27, padded({kFirstSlot}, 11));
  const Bytes red = moveX(0) + block(0x27, padded({{0, 0, 0x20}}, 11));
  EXPECT_EQ(encode(page, Feed::Front, true, {180, 180}), moveY(2 * 50) + black + red);
}

TEST(FrontFeed, SplitWithRedAloneStandsAtTheRedTop) {
  DotPage page(20, 300);
  page.putRed(0, 60);
  page.putRed(0, 90);
  // The head stands at 60, its red dots at 88 to 93: row 60 is lost.
  EXPECT_EQ(encode(page, Feed::Front, true, {180, 180}),
            moveY(2 * 60) + moveX(0) + block(0x27, padded({{0, 0, 0x08}}, 11)));
}

TEST(BackFeed, EveryPageOpensWithBothColours) {
  for (const bool split : {false, true})
    for (const bool red : {false, true}) {
      DotPage page(20, 300);
      red ? page.putRed(0, 60) : page.putBlack(0, 60);
      const Bytes stream = encode(page, Feed::Back, split, {180, 180});
      ASSERT_GT(stream.size(), 3U);
      EXPECT_EQ(Bytes(stream.begin(), stream.begin() + 3), kColourMode3);
    }
}

TEST(BackFeed, TheFirstBandPutsTheHigherInkUnderItsFirstDot) {
  struct Case {
    int black;
    int red;
    int target;
  };
  for (const Case& c :
       {Case{-1, 100, 100}, Case{100, -1, 84}, Case{100, 100, 84}, Case{110, 100, 94},
        Case{115, 100, 99}, Case{116, 100, 100}, Case{130, 100, 100}, Case{100, 200, 84}}) {
    DotPage page(20, 300);
    if (c.black >= 0) page.putBlack(0, c.black);
    if (c.red >= 0) page.putRed(0, c.red);
    const Bytes start = kColourMode3 + moveY(2 * c.target) + moveX(0);
    const Bytes stream = encode(page, Feed::Back, false, {180, 180});
    ASSERT_GT(stream.size(), start.size());
    EXPECT_EQ(Bytes(stream.begin(), stream.begin() + static_cast<ptrdiff_t>(start.size())), start)
        << c.black << ' ' << c.red;
  }
}

TEST(BackFeed, RedSlotsStandAboveTheBlackOnes) {
  DotPage page(20, 300);
  for (int i = 0; i < 6; ++i) page.putRed(i, 20 + i);
  page.putBlack(6, 36);
  page.putBlack(7, 53);
  const std::vector<Bytes> columns = {{0x80, 0, 0}, {0x40, 0, 0}, {0x20, 0, 0}, {0x10, 0, 0},
                                      {0x08, 0, 0}, {0x04, 0, 0}, {0x02, 0, 0}, {0, 0, 0x01}};
  EXPECT_EQ(encode(page, Feed::Back, false, {180, 180}),
            kColourMode3 + moveY(2 * 20) + moveX(0) + block(0x27, padded(columns, 11)));
}

TEST(BackFeed, SplitGoesBackExactlyToTheRedTop) {
  DotPage page(20, 300);
  page.putBlack(0, 50);
  page.putRed(0, 60);
  const Bytes black = moveX(0) + block(0x28, padded({{0x02, 0, 0}}, 11));
  const Bytes red = moveX(0) + block(0x28, padded({kFirstSlot}, 11));
  // The band at 18 leaves the head at 19.
  EXPECT_EQ(encode(page, Feed::Back, true, {360, 360}),
            kColourMode3 + moveY(18) + black + moveY(1) + moveY(41) + red + moveY(1));
}

TEST(BackFeed, SplitWithRedAloneLosesNothing) {
  DotPage page(20, 300);
  page.putRed(0, 60);
  EXPECT_EQ(encode(page, Feed::Back, true, {180, 180}),
            kColourMode3 + moveY(2 * 60) + moveX(0) + block(0x27, padded({kFirstSlot}, 11)));
}
}  // namespace
}  // namespace velka::orlotest
