// From the bitmap to the planes.
#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <random>

#include "orlo/LiteralPipeline.h"
#include "orlo/RandomBitmaps.h"

namespace velka::orlotest {
namespace {

// Runs a page through a processor, whose planes then can be looked at.
int separate(COrloProcesser& processor, const Bitmap& page, const _COLORCFG_ORLO& config,
             int verticalDpi, int feedMode) {
  processor.SetColorCFG(config);
  unsigned char* output = nullptr;
  unsigned int length = 0;
  const int result =
      processor.GetOrloPrintCmd(page.bytes.data(), page.size(), page.width, page.height, &output, 0,
                                &length, nullptr, 180, verticalDpi, feedMode);
  std::free(output);
  return result;
}

// What a plane stands for: behind its filled bytes nothing prints.
Bytes bytesOf(const OrloPlane& plane) {
  Bytes bytes(plane.data, plane.data + plane.filled);
  bytes.resize(plane.size, 255);
  return bytes;
}

void expectPlane(const OrloPlane& plane, const LiteralPlane& expected) {
  ASSERT_EQ(plane.size, expected.bytes.size());
  EXPECT_EQ(bytesOf(plane), expected.bytes);
  EXPECT_EQ(plane.hasData, expected.hasData);
  EXPECT_EQ(plane.left, expected.left);
  EXPECT_EQ(plane.top, expected.top);
  EXPECT_EQ(plane.right, expected.right);
  EXPECT_EQ(plane.bottom, expected.bottom);
}

void expectAsLiterally(const Bitmap& page, const _COLORCFG_ORLO& config, int verticalDpi,
                       int feedMode) {
  COrloProcesser processor;
  separate(processor, page, config, verticalDpi, feedMode);
  const LiteralPlanes expected = separateLiterally(page, config, verticalDpi, feedMode);
  expectPlane(processor.m_BlackBuf, expected.black);
  expectPlane(processor.m_RedBuf, expected.red);
}

TEST(Pipeline, EqualsTheLiteralOneOnRandomPages) {
  std::mt19937 random(31);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    const Bitmap page = randomBitmap(random);
    const _COLORCFG_ORLO config = randomConfig(random);
    expectAsLiterally(page, config, round % 2 == 0 ? 180 : 360, 1 + round % 3);
    if (HasFailure()) return;
  }
}

// Which planes a single pixel goes to. It stands below the rows that the head
// distance drops and above the last one, which is blank.
struct OnePixel {
  bool black;
  bool red;
};
OnePixel classOf(uint8_t b, uint8_t g, uint8_t r, const _COLORCFG_ORLO& config) {
  Bitmap page(3, 102);
  page.set(1, 100, b, g, r);
  COrloProcesser processor;
  separate(processor, page, config, 180, 1);
  return {processor.m_BlackBuf.hasData, processor.m_RedBuf.hasData};
}

TEST(Classing, RedIsBlackWhereOnlyBlackIsPrinted) {
  _COLORCFG_ORLO config = plainConfig();
  config.OutputColorType = 1;
  const OnePixel pixel = classOf(0, 0, 255, config);
  EXPECT_TRUE(pixel.black);
  EXPECT_FALSE(pixel.red);
}

TEST(Classing, RedIsRedWhereAnEmptyRangeSelectsBlack) {
  _COLORCFG_ORLO config = plainConfig();
  config.ColorRangeUseFor = 1;
  config.minColorOffset = {10, 10, 10, 0};
  config.maxColorOffset = {5, 255, 255, 0};
  const OnePixel pixel = classOf(0, 0, 255, config);
  EXPECT_TRUE(pixel.red);
  EXPECT_FALSE(pixel.black);
}

TEST(Classing, TintedWhiteNeedsTwoHundredFiftyOfRed) {
  const OnePixel white = classOf(210, 205, 250, plainConfig());
  EXPECT_FALSE(white.black || white.red);
  const OnePixel ink = classOf(210, 205, 249, plainConfig());
  EXPECT_TRUE(ink.black || ink.red);
}

TEST(Classing, NineApartIsGreyAndTenApartIsNot) {
  for (const uint16_t use : {uint16_t{1}, uint16_t{2}}) {
    _COLORCFG_ORLO config = plainConfig();
    config.ColorRangeUseFor = use;
    // The range holds the colour where it selects red and not where it selects black.
    config.minColorOffset = {0, 0, static_cast<uint8_t>(use == 2 ? 0 : 250), 0};
    EXPECT_TRUE(classOf(100, 105, 109, config).black);
    EXPECT_TRUE(classOf(100, 105, 110, config).red);
  }
}

TEST(Classing, OtherTypesAndUsesPrintNothing) {
  _COLORCFG_ORLO config = plainConfig();
  config.OutputColorType = 4;
  EXPECT_FALSE(classOf(0, 0, 0, config).black);
  config.OutputColorType = 3;
  config.ColorRangeUseFor = 3;
  EXPECT_FALSE(classOf(0, 0, 0, config).black);
  EXPECT_FALSE(classOf(0, 0, 255, config).red);
}

TEST(Classing, TheKeyColourGetsFullInkWithTwoColoursOnly) {
  _COLORCFG_ORLO config = plainConfig();
  config.solidColor = {200, 100, 200, 0};
  config.sDitherRed = 3;
  config.sDitherBlack = 3;
  Bitmap page(6, 104);
  for (int x = 0; x < 6; ++x)
    for (int y = 90; y < 100; ++y) page.set(x, y, 200, 100, 200);
  COrloProcesser two;
  separate(two, page, config, 180, 1);
  constexpr size_t kFrom = 540;  // row 90
  constexpr size_t kTo = 600;
  EXPECT_EQ(Bytes(two.m_RedBuf.data + kFrom, two.m_RedBuf.data + kTo), Bytes(60, 0));
  config.OutputColorType = 2;
  COrloProcesser one;
  separate(one, page, config, 180, 1);
  const Bytes plane(one.m_RedBuf.data + kFrom, one.m_RedBuf.data + kTo);
  EXPECT_NE(plane, Bytes(60, 0));
}

TEST(HeadDistance, FrontFeedDropsTheFirstRedRows) {
  for (const int dpi : {60, 180, 360}) {
    Bitmap page(2, 100);
    for (int y = 0; y < 99; ++y) page.set(0, y, 0, 0, 255);
    COrloProcesser processor;
    separate(processor, page, plainConfig(), dpi, 1);
    EXPECT_EQ(processor.m_RedBuf.top, dpi == 360 ? 56 : 28);
    EXPECT_EQ(processor.m_RedBuf.bottom, 98);
  }
}

TEST(HeadDistance, BackFeedDropsTheFirstBlackRowsAndNoRed) {
  for (const int dpi : {60, 180, 360}) {
    Bitmap page(2, 100);
    for (int y = 0; y < 99; ++y) {
      page.set(0, y, 0, 0, 0);
      page.set(1, y, 0, 0, 255);
    }
    COrloProcesser processor;
    separate(processor, page, plainConfig(), dpi, 2);
    EXPECT_EQ(processor.m_BlackBuf.top, dpi == 360 ? 32 : 16);
    EXPECT_EQ(processor.m_RedBuf.top, 0);
  }
}

TEST(HeadDistance, DroppedInkGivesThePlaneNoData) {
  Bitmap page(2, 40);
  page.set(0, 27, 0, 0, 255);
  COrloProcesser front;
  EXPECT_EQ(separate(front, page, plainConfig(), 180, 1), 0);
  EXPECT_FALSE(front.m_RedBuf.hasData);
  EXPECT_EQ(bytesOf(front.m_RedBuf), Bytes(80, 255));
}

TEST(LastRow, CountsOnlyWhereBothInksAreThereAlready) {
  for (const bool red : {false, true}) {
    Bitmap page(2, 60);
    page.set(0, 40, 0, 0, 0);
    if (red) page.set(1, 41, 0, 0, 255);
    page.set(0, 59, 0, 0, 0);
    COrloProcesser processor;
    separate(processor, page, plainConfig(), 180, 1);
    EXPECT_EQ(processor.m_BlackBuf.bottom, red ? 59 : 40);
  }
}

TEST(LastRow, OfAOneRowPageNeverPrints) {
  Bitmap page(2, 1);
  page.set(0, 0, 0, 0, 0);
  COrloProcesser processor;
  EXPECT_EQ(separate(processor, page, plainConfig(), 180, 1), 0);
}

TEST(LastRow, ThatIsBlankCostsTheRowAboveItNothing) {
  Bitmap page(2, 60);
  page.set(0, 58, 0, 0, 0);
  COrloProcesser processor;
  EXPECT_EQ(separate(processor, page, plainConfig(), 180, 1), 1);
  EXPECT_EQ(processor.m_BlackBuf.bottom, 58);
  EXPECT_EQ(processor.m_BlackBuf.data[size_t{58} * 2], 0);
}

TEST(Boxes, HoldPixelsTooLightToPrint) {
  // Stored, but above the threshold: no dot, and still in the box.
  Bitmap page(9, 60);
  page.set(2, 40, 230, 230, 230);
  page.set(7, 45, 230, 230, 230);
  COrloProcesser processor;
  EXPECT_NE(separate(processor, page, plainConfig(), 180, 1), 0);
  EXPECT_EQ(processor.m_BlackBuf.left, 2);
  EXPECT_EQ(processor.m_BlackBuf.top, 40);
  EXPECT_EQ(processor.m_BlackBuf.right, 7);
  EXPECT_EQ(processor.m_BlackBuf.bottom, 45);
  EXPECT_EQ(bytesOf(processor.m_BlackBuf), Bytes(540, 255));
  EXPECT_EQ(processor.m_RowWidth, 9U);
}

TEST(Bitmaps, RowsTooShortForTheirWidthAreWhiteBeyondTheirEnd) {
  // 60 rows of 6 bytes for 5 pixels each.
  Bytes bytes(360, 0);
  COrloProcesser processor;
  processor.SetColorCFG(plainConfig());
  unsigned char* output = nullptr;
  unsigned int length = 0;
  EXPECT_EQ(processor.GetOrloPrintCmd(bytes.data(), 360, 5, 60, &output, 0, &length, nullptr, 180,
                                      180, 1),
            1);
  std::free(output);
  EXPECT_EQ(processor.m_BlackBuf.right, 1);
  EXPECT_EQ(Bytes(processor.m_BlackBuf.data, processor.m_BlackBuf.data + 5),
            (Bytes{0, 0, 255, 255, 255}));
}

TEST(Bitmaps, WithoutAByteARowAreWhite) {
  const Bytes bytes(10, 0);
  COrloProcesser processor;
  processor.SetColorCFG(plainConfig());
  unsigned char* output = nullptr;
  unsigned int length = 0;
  EXPECT_EQ(
      processor.GetOrloPrintCmd(bytes.data(), 10, 5, 60, &output, 0, &length, nullptr, 180, 180, 1),
      0);
  EXPECT_EQ(output, nullptr);
}

}  // namespace
}  // namespace velka::orlotest
