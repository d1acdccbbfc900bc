// Runs of columns, resolutions, and what any encoder does with odd pages.
#include <gtest/gtest.h>

#include <algorithm>

#include "orlo/PageMaker.h"

namespace velka::orlotest {
namespace {

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
