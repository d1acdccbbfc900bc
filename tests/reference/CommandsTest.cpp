#include <gtest/gtest.h>

#include "reference/ExpectedStream.h"
#include "reference/ReferenceCommands.h"
#include "reference/ReferenceOptions.h"

namespace velka::reference {
namespace {

TEST(ReferenceCommands, APortraitPageOf3960RowsAt360IsSixtySixLines) {
  EXPECT_EQ(startDocument(1, 100, 3960, 180, 360), ExpectedStream().start(66).bytes());
}

TEST(ReferenceCommands, APageOf16000RowsWrapsModulo256) {
  EXPECT_EQ(startDocument(1, 100, 16000, 180, 360).back(), 0x0A);
}

TEST(ReferenceCommands, ALandscapePageTakesItsWidth) {
  EXPECT_EQ(startDocument(2, 1980, 10, 180, 360), ExpectedStream().start(66).bytes());
}

TEST(ReferenceCommands, AResolutionOfZeroStillYieldsACommand) {
  EXPECT_EQ(startDocument(1, 100, 100, 180, 0), ExpectedStream().start(0).bytes());
  EXPECT_EQ(startDocument(1, 100, 0, 180, 0), ExpectedStream().start(0).bytes());
}

TEST(ReferenceCommands, TheDocumentEndsWithInitialise) {
  EXPECT_EQ(endDocument(), ExpectedStream().end().bytes());
  EXPECT_EQ(endPage(), ExpectedStream().formFeed().bytes());
}

TEST(ReferenceCommands, SetUnitSendsTheLowByte) {
  EXPECT_EQ(setUnit(10), ExpectedStream().unit(10).bytes());
  EXPECT_EQ(setUnit(266), ExpectedStream().unit(10).bytes());
}

TEST(ReferenceCommands, XMoveTruncatesTheSinglePrecisionQuotient) {
  EXPECT_EQ(xMove(1, 6.0F, 1000), (Bytes{0x1B, '$', 0xA6, 0x00}));
  EXPECT_EQ(xMove(2, 6.0F, -1000), (Bytes{0x1B, '\\', 0x5A, 0xFF}));
  // 80 dpi: 4 / 1.3333334 rounds up to 3 in single precision; double precision would give 2.
  EXPECT_EQ(xMove(1, 80.0F / 60.0F, 4), (Bytes{0x1B, '$', 3, 0}));
  EXPECT_FALSE(xMove(3, 6.0F, 1000).has_value());
}

TEST(ReferenceCommands, NoVerticalMoveSendsNothing) {
  EXPECT_EQ(relativeYMove(360, 0), Bytes{});
  EXPECT_EQ(relativeYMove(720, 1), Bytes{});
  EXPECT_FALSE(relativeYMove(0, 5).has_value());
}

TEST(ReferenceCommands, AShortMoveIsOneCommandAfterACarriageReturn) {
  EXPECT_EQ(relativeYMove(360, 300), ExpectedStream().down(300).bytes());
  EXPECT_EQ(relativeYMove(180, 1), ExpectedStream().down(2).bytes());
  EXPECT_EQ(relativeYMove(360, -1), ExpectedStream().down(-1).bytes());
  EXPECT_EQ(relativeYMove(360, 32767), ExpectedStream().down(32767).bytes());
}

TEST(ReferenceCommands, CommandsOfALongMoveOverlap) {
  ExpectedStream expected;
  expected.add({0x0D});
  for (int i = 0; i < 3; ++i) {
    expected.add({0x1B, '(', 'v'});
  }
  expected.add({0x1B, '(', 'v', 2, 0, 0xA3, 0x06}).add(Bytes(12, 0));
  EXPECT_EQ(expected.bytes().size(), 29U);
  EXPECT_EQ(relativeYMove(360, 100000), expected.bytes());
}

TEST(ReferenceCommands, ALongMoveBackKeepsTheLastValueOnly) {
  const Bytes expected = ExpectedStream()
                             .add({0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 0xBF, 0xE3})
                             .add(Bytes(4, 0))
                             .bytes();
  EXPECT_EQ(relativeYMove(360, -40000), expected);
}

TEST(ReferenceCommands, ExtremeMovesStayBounded) {
  for (const int dy : {INT32_MIN, INT32_MAX, -2000000000, 2000000000}) {
    for (const int dpi : {-32768, -360, -1, 1, 60, 360, 32767}) {
      EXPECT_LE(relativeYMove(dpi, dy)->size(), 7U * 131100U + 1U);
    }
  }
}

TEST(ReferenceCommands, AdvanceAlwaysBeginsWithACarriageReturn) {
  EXPECT_EQ(advanceYMove(180, 0), (Bytes{0x0D}));
  EXPECT_EQ(advanceYMove(180, -5), (Bytes{0x0D}));
  EXPECT_EQ(advanceYMove(180, 255), (Bytes{0x0D, 0x1B, 'J', 255}));
  EXPECT_EQ(advanceYMove(180, 256), (Bytes{0x0D, 0x1B, 'J', 255, 0x1B, 'J', 1}));
  EXPECT_EQ(advanceYMove(360, 20), (Bytes{0x0D, 0x1B, 'J', 10}));
}

TEST(ReferenceCommands, EjectModeTwoGivesTheFirstPagesOfACycleZero) {
  tagOEMCFG options = defaultOptions();
  options.sEjectMode = 2;
  const char expected[] = "001001";
  for (uint32_t page = 1; page <= 6; ++page) {
    EXPECT_EQ(ejectMode(options, page), ExpectedStream().eject(expected[page - 1]).bytes()) << page;
  }
}

TEST(ReferenceCommands, EjectModeThreeGivesTheFirstPagesOfACycleOne) {
  tagOEMCFG options = defaultOptions();
  options.sEjectMode = 3;
  const char expected[] = "100100";
  for (uint32_t page = 1; page <= 6; ++page) {
    EXPECT_EQ(ejectMode(options, page), ExpectedStream().eject(expected[page - 1]).bytes()) << page;
  }
}

TEST(ReferenceCommands, FixedEjectModes) {
  tagOEMCFG options = defaultOptions();
  options.sEjectMode = 0;
  EXPECT_EQ(ejectMode(options, 5), ExpectedStream().eject('0').bytes());
  options.sEjectMode = 1;
  EXPECT_EQ(ejectMode(options, 5), ExpectedStream().eject('1').bytes());
  options.sEjectMode = 4;
  EXPECT_EQ(ejectMode(options, 5), Bytes{});
  options.sEjectMode = 7;
  EXPECT_EQ(ejectMode(options, 5), ExpectedStream().eject(0).bytes());
  options.sEjectMode = -1;
  EXPECT_EQ(ejectMode(options, 5), ExpectedStream().eject(0).bytes());
}

TEST(ReferenceCommands, EjectCountsThatCancelGiveNoCommandInTheCyclicModesOnly) {
  tagOEMCFG options = defaultOptions();
  options.sEjectFirstCount = 3;
  options.sEjectSecondCount = -3;
  options.sEjectMode = 2;
  EXPECT_EQ(ejectMode(options, 1), Bytes{});
  options.sEjectMode = 3;
  EXPECT_EQ(ejectMode(options, 1), Bytes{});
  options.sEjectMode = 0;
  EXPECT_EQ(ejectMode(options, 1), ExpectedStream().eject('0').bytes());
}

struct ModeCase {
  int pins;
  int yResolution;
  int printQuality;
  int bytes;  // -1: cannot be printed
  int mode;
};

TEST(ReferenceCommands, BitImageModesByHeadAndResolution) {
  const ModeCase cases[] = {
      {24, 180, 60, 3, 0x20},  {24, 180, 90, 3, 0x26},  {24, 180, 120, 3, 0x21},
      {24, 180, 180, 3, 0x27}, {24, 180, 360, 3, 0x28}, {24, 180, 75, -1, 0},
      {24, 360, 360, 3, 0x28}, {24, 360, 180, -1, 0},   {24, 60, 60, 1, 0},
      {24, 60, 80, 1, 4},      {24, 60, 90, 1, 6},      {24, 60, 120, 1, 1},
      {24, 60, 180, -1, 0},    {24, 75, 60, 0, 0},      {24, 720, 360, 0, 0},
      {72, 180, 360, 3, 0x28}, {72, 180, 180, 9, 0x29}, {72, 60, 180, -1, 0},
      {72, 360, 180, -1, 0},   {72, 90, 180, 0, 0},     {8, 180, 180, 0, 0},
      {48, 360, 360, 0, 0},    {0, 60, 60, 0, 0},       {-24, 180, 180, 0, 0},
  };
  for (const ModeCase& c : cases) {
    const auto found = bitImageMode(c.pins, c.yResolution, c.printQuality);
    EXPECT_EQ(found ? found->bytesPerColumn : -1, c.bytes)
        << c.pins << ' ' << c.yResolution << ' ' << c.printQuality;
    EXPECT_EQ(found ? found->mode : 0, c.mode)
        << c.pins << ' ' << c.yResolution << ' ' << c.printQuality;
  }
}

TEST(ReferenceCommands, TheBlockHeaderNamesColourModeAndColumns) {
  EXPECT_EQ(blockHeader(1, 39, 0x1234), ExpectedStream().block(1, 39, 0x1234, {}).bytes());
}

}  // namespace
}  // namespace velka::reference
