#include <gtest/gtest.h>

#include "reference/ExpectedStream.h"
#include "reference/NumberedPage.h"
#include "reference/ReferenceDispatcher.h"
#include "reference/ReferenceOptions.h"

namespace velka::reference {
namespace {

constexpr int oneDotATenth = 254;  // dpi at which a tenth of a millimetre is one dot

DeviceState deviceOf(int width, int height, int16_t dpi) {
  DeviceState device;
  device.printQuality = dpi;
  device.yResolution = dpi;
  device.width = width;
  device.source.horzRes = static_cast<uint32_t>(width);
  device.source.vertRes = static_cast<uint32_t>(height);
  device.source.sizeX = width;
  device.source.sizeY = height;
  return device;
}

TEST(ReferenceShift, FiveMillimetresAt360AreSeventyOneDots) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 50;
  EXPECT_EQ(printShift(options, 1, 360, 360).x, 71);
  EXPECT_EQ(printShift(options, 1, 360, 360).y, 0);
  options.sHrzDir = 1;
  EXPECT_EQ(printShift(options, 1, 360, 360).x, -71);
  options.sHrzDir = 2;
  EXPECT_EQ(printShift(options, 1, 360, 360).x, 0);
}

TEST(ReferenceShift, NegativeDistancesTruncateTowardsZero) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = -50;
  EXPECT_EQ(printShift(options, 1, 360, 360).y, -70);
}

TEST(ReferenceShift, LandscapeSwapsTheAxes) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 50;
  options.sVtcOffset = 100;
  EXPECT_EQ(printShift(options, 2, 360, 360).y, -71);
  EXPECT_EQ(printShift(options, 2, 360, 360).x, 142);
  options.sHrzDir = 1;
  options.sVtcDir = 1;
  EXPECT_EQ(printShift(options, 2, 360, 360).y, 71);
  EXPECT_EQ(printShift(options, 2, 360, 360).x, -142);
}

TEST(ReferenceShift, AnyRotationTurnsTheOffsetsRound) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 50;
  options.sVtcOffset = 50;
  options.sRotation = 5;
  EXPECT_EQ(printShift(options, 1, 360, 180).x, -71);
  EXPECT_EQ(printShift(options, 1, 360, 180).y, -35);
}

TEST(ReferenceTurns, LandscapeAddsThreeQuarters) {
  tagOEMCFG options = defaultOptions();
  options.sRotation = 1;
  EXPECT_EQ(quarterTurns(options, 1), 1);
  EXPECT_EQ(quarterTurns(options, 2), 0);
  options.sRotation = 0;
  EXPECT_EQ(quarterTurns(options, 2), 3);
}

TEST(ReferenceLayout, WithoutOffsetThePageIsCopiedWhole) {
  DeviceState device = deviceOf(5, 3, 180);
  const SourceBitmap source = numbered(5, 3);
  const OutputPage page = layOutPage(source, defaultOptions(), device);
  EXPECT_EQ(page.image.bytes, source.bytes);
  EXPECT_EQ(page.image.stride, 16U);
  EXPECT_EQ(page.startCommands, ExpectedStream().start(0).bytes());
}

TEST(ReferenceLayout, AShiftToTheRightWidensThePageAndDropsTheLastRow) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 1;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const PageImage image = layOutPage(numbered(4, 3), options, device).image;
  ASSERT_EQ(image.width, 5);
  ASSERT_EQ(image.height, 3);
  expectWhite(image, 0, 0);
  expectPlace(image, 0, 1, 0, 0);
  expectPlace(image, 1, 4, 1, 3);
  for (int column = 0; column < 5; ++column) {
    expectWhite(image, 2, column);
  }
}

TEST(ReferenceLayout, AShiftToTheLeftNarrowsThePage) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 1;
  options.sHrzDir = 1;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const PageImage image = layOutPage(numbered(4, 3), options, device).image;
  ASSERT_EQ(image.width, 3);
  expectPlace(image, 0, 0, 0, 1);
  expectPlace(image, 1, 2, 1, 3);
  expectWhite(image, 2, 0);
  // The row's padding takes the bytes that follow in the page.
  EXPECT_EQ(image.byteAt(0, 9), 1);
}

TEST(ReferenceLayout, ARowThatFillsTheOutputToItsEndIsNotCopied) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 1;
  options.sHrzDir = 1;
  DeviceState device = deviceOf(5, 2, oneDotATenth);  // the page's rows have a byte to spare
  const PageImage image = layOutPage(numbered(5, 2), options, device).image;
  expectPlace(image, 0, 3, 0, 4);
  expectWhite(image, 1, 0);
}

TEST(ReferenceLayout, AShiftDownLengthensThePageAndTheSheet) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = 1;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const OutputPage page = layOutPage(numbered(4, 3), options, device);
  ASSERT_EQ(page.image.height, 4);
  expectWhite(page.image, 0, 0);
  expectPlace(page.image, 1, 0, 0, 0);
  expectPlace(page.image, 2, 3, 1, 3);
  expectWhite(page.image, 3, 0);
  EXPECT_EQ(page.geometry.sizeY, 4);
  EXPECT_EQ(device.source.sizeY, 4);
}

TEST(ReferenceLayout, TheSheetGrowsWithEveryPage) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = 127;  // half an inch
  DeviceState device = deviceOf(4, 254, oneDotATenth);
  EXPECT_EQ(layOutPage(numbered(4, 254), options, device).startCommands,
            ExpectedStream().start(9).bytes());
  EXPECT_EQ(layOutPage(numbered(4, 254), options, device).startCommands,
            ExpectedStream().start(12).bytes());
  EXPECT_EQ(device.source.vertRes, 254U);
}

TEST(ReferenceLayout, AShiftUpShortensThePage) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = 1;
  options.sVtcDir = 1;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const PageImage image = layOutPage(numbered(4, 3), options, device).image;
  ASSERT_EQ(image.height, 2);
  expectPlace(image, 0, 0, 1, 0);
  expectWhite(image, 1, 0);
}

TEST(ReferenceLayout, AnOffsetPastThePageLeavesNothing) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = 3;
  options.sVtcDir = 1;
  options.sRotation = 0;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const OutputPage page = layOutPage(numbered(4, 3), options, device);
  EXPECT_TRUE(page.allocated);
  EXPECT_LE(page.image.height, 0);
  EXPECT_EQ(page.startCommands, ExpectedStream().start(0).bytes());
}

TEST(ReferenceLayout, AnOutputBeyondThirtyTwoBitsIsNotAllocated) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = INT32_MAX - 4;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  EXPECT_FALSE(layOutPage(numbered(4, 3), options, device).allocated);
}

TEST(ReferenceLayout, AWidthThatFitsNoIntegerWrapsToAnEmptyPage) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = INT32_MAX;
  DeviceState device = deviceOf(4, 3, oneDotATenth);
  const OutputPage page = layOutPage(numbered(4, 3), options, device);
  EXPECT_TRUE(page.allocated);
  EXPECT_EQ(page.image.width, 0);
}

TEST(ReferenceLayout, PagesAbove360AreSentAs360) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 50;
  DeviceState device = deviceOf(4, 1440, 720);
  device.scaleX = 2.0;
  device.scaleY = 2.0;
  const OutputPage page = layOutPage(numbered(4, 1440), options, device);
  EXPECT_EQ(page.printQuality, 360);
  EXPECT_EQ(page.yResolution, 360);
  EXPECT_EQ(page.image.width, 4 + 71);
  EXPECT_EQ(page.image.height, 1440);
  EXPECT_EQ(page.geometry.sizeX, 2 + 71);
  EXPECT_EQ(page.startCommands, ExpectedStream().start(12).bytes());
}

TEST(ReferenceLayout, ARotatedPageKeepsTheLengthItHadBefore) {
  tagOEMCFG options = defaultOptions();
  options.sRotation = 1;
  DeviceState device = deviceOf(2, 60, 60);
  const OutputPage page = layOutPage(numbered(2, 60), options, device);
  EXPECT_EQ(page.image.width, 60);
  EXPECT_EQ(page.image.height, 2);
  EXPECT_EQ(page.startCommands, ExpectedStream().start(6).bytes());
  EXPECT_EQ(page.geometry.sizeX, 60);
  EXPECT_EQ(page.geometry.sizeY, 2);
}

TEST(ReferenceLayout, LandscapeShrinksTheHeightByTheShiftDown) {
  tagOEMCFG options = defaultOptions();
  options.sHrzOffset = 1;
  options.sHrzDir = 1;
  options.sVtcOffset = 2;
  DeviceState device = deviceOf(6, 5, oneDotATenth);
  device.orientation = 2;
  options.sRotation = 1;  // one turn and three more: not turned, but the offsets go round
  const OutputPage page = layOutPage(numbered(6, 5), options, device);
  EXPECT_EQ(page.image.width, 6 - 2);
  EXPECT_EQ(page.image.height, 5 + 1);
  EXPECT_EQ(device.source.sizeX, 4);
  EXPECT_EQ(device.source.sizeY, 5);
}

}  // namespace
}  // namespace velka::reference
