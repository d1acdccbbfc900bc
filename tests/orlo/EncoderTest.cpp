// Streams of small pages, written out by hand.
#include <gtest/gtest.h>

#include <algorithm>

#include "BandWalk.h"
#include "orlo/PageMaker.h"

namespace velka::orlotest {
namespace {

const Bytes kBlank = {0, 0, 0};
const Bytes kFirstSlot = {0x80, 0, 0};
const Bytes kColourMode3 = {0x1B, 0x72, 0x02};
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

TEST(Runs, ASingleColumnIsWidenedByTenFromTheSixtiethOfAnInchBeforeIt) {
  DotPage page(100, 30);
  page.putBlack(20, 0);
  EXPECT_EQ(encode(page, Feed::Front, false, {360, 180}),
            moveX(3) + block(0x28, padded({kBlank, kBlank, kFirstSlot}, 11)));
}

TEST(Runs, FrontFeedWidensPastThePageAndBackFeedDoesNot) {
  DotPage page(22, 60);
  page.putBlack(20, 16);
  const std::vector<Bytes> front = {kBlank, kBlank, kFirstSlot};
  EXPECT_EQ(encode(page, Feed::Front, false, {360, 180}),
            moveY(2 * 16) + moveX(3) + block(0x28, padded(front, 11)));
  const std::vector<Bytes> back = {kBlank, kBlank, {0x02, 0, 0}, kBlank};
  EXPECT_EQ(encode(page, Feed::Back, false, {360, 180}),
            kColourMode3 + moveX(3) + block(0x28, back));
}

TEST(Runs, AHundredAndNinetyBlankColumnsStayInTheBlockAndOneMoreMakesTwo) {
  for (const int gap : {190, 191}) {
    DotPage page(300, 30);
    page.putBlack(0, 0);
    page.putBlack(gap + 1, 0);
    const Bytes stream = encode(page, Feed::Front, false, {60, 180});
    std::vector<Bytes> whole = padded({kFirstSlot}, static_cast<size_t>(gap) + 2);
    whole.back() = kFirstSlot;
    const Bytes one = moveX(0) + block(0x20, whole);
    const Bytes single = block(0x20, padded({kFirstSlot}, 11));
    EXPECT_EQ(stream, gap == 190 ? one : moveX(0) + single + moveX(192) + single);
  }
}

TEST(Runs, PositionsAreDividedInSinglePrecisionAndCut) {
  // At 80 columns an inch column 7 lies at 5.25 sixtieths.
  DotPage page(100, 30);
  page.putBlack(7, 0);
  EXPECT_EQ(encode(page, Feed::Front, false, {80, 60}),
            moveX(5) + block(0x04, padded({kFirstSlot}, 11)));
}

TEST(Resolutions, EachSupportedPairHasItsMode) {
  for (const ModeRow& mode : allModes()) {
    const auto found = headResolution(mode.dpi.horizontal, mode.dpi.vertical);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->mode, mode.mode);
    EXPECT_EQ(found->passes, mode.dpi.vertical == 360 ? 2 : 1);
  }
}

TEST(Resolutions, AnUnsupportedPairWritesNothing) {
  DotPage page(20, 60);
  page.putBlack(0, 40);
  for (const Resolution dpi :
       {Resolution{80, 180}, Resolution{180, 360}, Resolution{180, 60}, Resolution{0, 180}})
    for (const Feed feed : {Feed::Front, Feed::Back})
      for (const bool split : {false, true}) EXPECT_TRUE(encode(page, feed, split, dpi).empty());
}

TEST(Resolutions, AVerticalOneThatTheTableLacksPrintsInModeZero) {
  DotPage page(20, 60);
  page.putBlack(0, 0);
  EXPECT_EQ(encode(page, Feed::Front, false, {120, 120}),
            moveX(0) + block(0x00, padded({kFirstSlot}, 11)));
}

TEST(Selector, KnowsTwoFeedsAndTwoSplits) {
  DotPage page(20, 60);
  page.putBlack(0, 40);
  for (const int feed : {-1, 0, 3}) {
    COrloProcesser processor;
    load(processor, page);
    unsigned char* output = nullptr;
    unsigned int length = 77;
    EXPECT_EQ(processor.Encode2EscpSml(&output, 0, &length, 180, 180, feed), 0);
    processor.m_SplitBlackRed = 1;
    EXPECT_EQ(processor.Encode2EscpSml(&output, 0, &length, 180, 180, feed), 0);
    processor.m_SplitBlackRed = 2;
    EXPECT_EQ(processor.Encode2EscpSml(&output, 0, &length, 180, 180, 1), 0);
    EXPECT_EQ(length, 77U);
    EXPECT_TRUE(commandsOf(processor).empty());
  }
}

TEST(Encoders, CountTheirFirstMoveFromTheCurrentRow) {
  DotPage page(20, 200);
  page.putBlack(0, 100);
  COrloProcesser processor;
  load(processor, page);
  unsigned char* output = nullptr;
  unsigned int length = 0;
  EXPECT_EQ(processor.Encode2EscpSmlNoSlipt(&output, 0, &length, 180, 180, 1, 120), 1);
  EXPECT_EQ(commandsOf(processor), moveY(-40) + moveX(0) + block(0x27, padded({kFirstSlot}, 11)));
}

TEST(Encoders, TheRedSweepAloneStandsWhereTheBlackOneLeftTheHead) {
  DotPage page(20, 200);
  page.putBlack(0, 100);
  page.putRed(0, 60);
  COrloProcesser processor;
  load(processor, page);
  unsigned char* output = nullptr;
  unsigned int length = 0;
  EXPECT_EQ(processor.Encode2EscpSmlHaveSlipt(&output, 0, &length, 180, 180, 1, 0, 2), 1);
  EXPECT_EQ(commandsOf(processor), moveX(0) + block(0x27, padded({{0, 0, 0x20}}, 11)));
  EXPECT_EQ(processor.Encode2EscpSmlHaveSlipt(&output, 0, &length, 180, 180, 1, 0, 3), 0);
  EXPECT_EQ(processor.Encode2EscpSmlHaveSliptFeedFromBack(&output, 0, &length, 180, 180, 2, 0, 0),
            0);
}

TEST(Encoders, APageWithoutInkSendsNothing) {
  const DotPage page(20, 60);
  for (const ModeRow& mode : allModes())
    for (const Feed feed : {Feed::Front, Feed::Back})
      for (const bool split : {false, true})
        EXPECT_TRUE(encode(page, feed, split, mode.dpi).empty());
}

TEST(Encoders, StrikeNoRowOfAPageWithoutHeight) {
  DotPage page(20, 60);
  page.putBlack(0, 0);
  for (const int64_t height : {int64_t{0}, int64_t{-1}, INT64_MIN}) {
    COrloProcesser processor;
    load(processor, page);
    processor.m_PageHeight = height;
    unsigned char* output = nullptr;
    unsigned int length = 0;
    processor.Encode2EscpSmlNoSlipt(&output, 0, &length, 180, 180, 1, 0);
    const Bytes commands = commandsOf(processor);
    EXPECT_EQ(std::ranges::count(commands, uint8_t{'*'}), 0) << height;
  }
}

TEST(Encoders, SizeTheOutputByTheCommandsAndThreeBytes) {
  DotPage page(20, 60);
  page.putBlack(0, 0);
  const Bytes commands = encode(page, Feed::Front, false, {180, 180});
  for (const size_t room : {size_t{0}, commands.size() + 2, commands.size() + 3}) {
    COrloProcesser processor;
    load(processor, page);
    Bytes buffer(room + 1, 0xEE);
    unsigned char* output = buffer.data();
    unsigned int length = 0;
    EXPECT_EQ(
        processor.Encode2EscpSml(&output, static_cast<unsigned int>(room), &length, 180, 180, 1),
        1);
    EXPECT_EQ(length, commands.size() + 3);
    const bool fits = room == commands.size() + 3;
    const Bytes filled = commands + Bytes{0x0D, 0x0A, 0x0C, 0xEE};
    EXPECT_EQ(buffer, fits ? filled : Bytes(room + 1, 0xEE));
    EXPECT_EQ(commandsOf(processor), commands);
  }
}

}  // namespace
}  // namespace velka::orlotest
