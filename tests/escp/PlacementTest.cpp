// Print offsets, output geometry and quarter turns.
#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>

#include "PagePlacement.h"
#include "escp/PageFixture.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

bool operator==(const PageOffset& a, const PageOffset& b) {
  return a.x == b.x && a.y == b.y;
}

PageOffset offsetOf(int hrz, int hrzDir, int vtc, int vtcDir, int rotation, int orientation) {
  tagOEMCFG options = reference::defaultOptions();
  options.sHrzOffset = hrz;
  options.sHrzDir = hrzDir;
  options.sVtcOffset = vtc;
  options.sVtcDir = vtcDir;
  options.sRotation = rotation;
  const _DEVMODE mode = {static_cast<int16_t>(orientation), 360, 180, 0, 1};
  return printOffset(options, mode);
}

TEST(PrintOffset, FiveMillimetresAt360DpiAre71Dots) {
  EXPECT_EQ(tenthsToDots(50, 360), 71);
}

TEST(PrintOffset, NegativeDistancesTruncateTowardsZero) {
  EXPECT_EQ(tenthsToDots(-50, 360), -70);  // -70.87 + 0.5
  EXPECT_EQ(tenthsToDots(-15, 180), -10);  // -10.63 + 0.5
}

constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();

TEST(PrintOffset, DistancesThatFitNoIntegerAreTheLowestOne) {
  EXPECT_EQ(tenthsToDots(std::numeric_limits<int32_t>::max(), 32767), kLowest);
  EXPECT_EQ(tenthsToDots(kLowest, 32767), kLowest);
  // Its negative is itself, in every sense and turn.
  constexpr int kFar = std::numeric_limits<int>::max();
  EXPECT_TRUE(offsetOf(kFar, 1, kFar, 1, 0, 1) == (PageOffset{kLowest, -1521838805}));
  EXPECT_TRUE(offsetOf(kFar, 0, kFar, 0, 1, 1) == (PageOffset{kLowest, -1521838805}));
  EXPECT_TRUE(offsetOf(kFar, 0, kFar, 0, 0, 2) == (PageOffset{1521838805, kLowest}));
}

TEST(PrintOffset, DirectionsNameTheSenses) {
  EXPECT_TRUE(offsetOf(50, 0, 50, 0, 0, 1) == (PageOffset{71, 35}));
  EXPECT_TRUE(offsetOf(50, 1, 50, 1, 0, 1) == (PageOffset{-71, -35}));
  EXPECT_TRUE(offsetOf(50, 2, 50, 0, 0, 1) == (PageOffset{0, 35}));
}

TEST(PrintOffset, LandscapeSwapsTheAxes) {
  EXPECT_TRUE(offsetOf(50, 0, 50, 0, 0, 2) == (PageOffset{35, -71}));
  EXPECT_TRUE(offsetOf(50, 1, 50, 1, 0, 2) == (PageOffset{-35, 71}));
}

TEST(PrintOffset, ARotatedPageIsMovedTheOtherWay) {
  EXPECT_TRUE(offsetOf(50, 0, 50, 0, 1, 1) == (PageOffset{-71, -35}));
  EXPECT_TRUE(offsetOf(50, 0, 50, 0, 9, 1) == (PageOffset{-71, -35}));
}

TEST(QuarterTurns, LandscapeIsTurnedOnceAlready) {
  EXPECT_EQ(quarterTurns(1, 1), 1);
  EXPECT_EQ(quarterTurns(1, 2), 0);
  EXPECT_EQ(quarterTurns(0, 2), 3);
  EXPECT_EQ(quarterTurns(std::numeric_limits<int32_t>::max(), 2),
            (int64_t{std::numeric_limits<int32_t>::max()} * 90 + 270) % 360 / 90);
}

constexpr size_t kPageBytes = size_t{300} * 40;  // 100 x 40 pixels

// What is left in the record after rendering a white page.
GDIINFO geometryAfter(int rotation, int xOffset) {
  Job job(100, 40, 180, 180);
  job.options.sRotation = rotation;
  job.options.sHrzOffset = xOffset;
  job.setPage({Bytes(kPageBytes, 0xFF), 40}, 1);
  const Capture capture(STDOUT_FILENO);
  RenderEscpData(&job.devobj);
  return job.pdev.devGdiInfo;
}

TEST(Geometry, TurnsWithThePicture) {
  const GDIINFO upright = geometryAfter(0, 0);
  EXPECT_EQ(upright.ulHorzRes, 100U);
  EXPECT_EQ(upright.szlPhysSize.cy, 40);
  const GDIINFO turned = geometryAfter(1, 0);
  EXPECT_EQ(turned.ulHorzRes, 40U);
  EXPECT_EQ(turned.ulVertRes, 100U);
  EXPECT_EQ(turned.szlPhysSize.cx, 40);
  EXPECT_EQ(turned.szlPhysSize.cy, 100);
}

TEST(Geometry, EveryTurnFollowsItsRule) {
  GDIINFO g = {};
  g.ulHorzRes = 80;
  g.ulVertRes = 30;
  g.ulHorzSize = 81;
  g.ulVertSize = 31;
  g.ptlPhysOffset = {7, 3};
  g.szlPhysSize = {100, 40};
  GDIINFO half = g;
  turnGeometry(half, 2);
  EXPECT_EQ(half.ptlPhysOffset.x, 13);
  EXPECT_EQ(half.ptlPhysOffset.y, 7);
  EXPECT_EQ(half.ulHorzRes, 80U);
  GDIINFO left = g;
  turnGeometry(left, 1);
  EXPECT_EQ(left.ptlPhysOffset.x, 3);
  EXPECT_EQ(left.ptlPhysOffset.y, 13);
  EXPECT_EQ(left.ulHorzSize, 31U);
  EXPECT_EQ(left.szlPhysSize.cx, 40);
  GDIINFO right = g;
  turnGeometry(right, 3);
  EXPECT_EQ(right.ptlPhysOffset.x, 7);
  EXPECT_EQ(right.ptlPhysOffset.y, 7);
  GDIINFO other = g;
  turnGeometry(other, 5);
  EXPECT_EQ(other.ulHorzRes, 80U);
}

TEST(Geometry, AnOffsetWidensThePage) {
  EXPECT_EQ(geometryAfter(0, 50).szlPhysSize.cx, 135);
}

TEST(Geometry, TheSourceKeepsTheSizeThatAnOffsetGrew) {
  Job job(100, 40, 180, 180);
  job.options.sVtcOffset = 50;
  const Capture capture(STDOUT_FILENO);
  for (uint32_t page = 1; page <= 2; ++page) {
    job.setPage({Bytes(kPageBytes, 0xFF), 40}, page);
    RenderEscpData(&job.devobj);
  }
  EXPECT_EQ(+job.pdev.srcGdiInfo.szlPhysSize.cy, 40 + 35 + 35);
}

// The lowest integer, twice added, is gone again.
TEST(Geometry, SumsThatFitNoIntegerWrap) {
  Job job(100, 40, 180, 360);
  job.options.sVtcOffset = std::numeric_limits<int32_t>::max();
  const Capture capture(STDOUT_FILENO);
  for (uint32_t page = 1; page <= 2; ++page) {
    job.setPage({Bytes(kPageBytes, 0xFF), 40}, page);
    RenderEscpData(&job.devobj);
    EXPECT_EQ(+job.pdev.srcGdiInfo.szlPhysSize.cy, page == 1 ? kLowest + 40 : 40);
    EXPECT_EQ(+job.pdev.bmInfoHeaderOut.biHeight, kLowest + 40);
  }
}

TEST(Geometry, AScaleOfZeroGivesTheLowestInteger) {
  Job job(100, 40, 720, 0);
  const GDIINFO out = scaledGeometry(job.pdev.srcGdiInfo, job.pdev.dScaleX, job.pdev.dScaleY);
  EXPECT_EQ(out.szlPhysSize.cy, kLowest);
  EXPECT_EQ(scaledGeometry({}, 1.0, 0.0).szlPhysSize.cy, kLowest);
}

TEST(Placement, ARowThatWouldEndAtTheBuffersEndIsNotCopied) {
  Bytes source(12, 1);
  Bytes output(12, 9);
  placePage({source, 4}, {output, 4}, 3, {0, 1});
  EXPECT_EQ(output, (Bytes{9, 9, 9, 9, 1, 1, 1, 1, 9, 9, 9, 9}));
}

TEST(Placement, WithoutOffsetEverythingIsCopiedThatBothHold) {
  Bytes source(8, 1);
  Bytes output(12, 9);
  placePage({source, 4}, {output, 4}, 3, {});
  EXPECT_EQ(output, (Bytes{1, 1, 1, 1, 1, 1, 1, 1, 9, 9, 9, 9}));
  Bytes small(4, 9);
  placePage({source, 4}, {small, 4}, 1, {});
  EXPECT_EQ(small, Bytes(4, 1));
}

TEST(Placement, OffsetsLargerThanThePageLeaveItWhite) {
  Bytes source(12, 1);
  for (const PageOffset offset :
       {PageOffset{100, 0}, PageOffset{-100, 0}, PageOffset{0, 100}, PageOffset{0, -100},
        PageOffset{std::numeric_limits<int32_t>::max(), -std::numeric_limits<int32_t>::max()}}) {
    Bytes output(12, 9);
    placePage({source, 4}, {output, 4}, 3, offset);
    EXPECT_EQ(output, Bytes(12, 9));
  }
}

// The stream of one page of ink with the given options.
Bytes inkPage(Job& job) {
  job.setPage({Bytes(kPageBytes, 0), 40}, 1);
  const Capture capture(STDOUT_FILENO);
  RenderEscpData(&job.devobj);
  return capture.bytes();
}

TEST(EmptyPages, ANegativeOffsetBeyondThePagePrintsNothing) {
  Job job(100, 40, 180, 180);
  job.options.sHrzOffset = 5000;
  job.options.sHrzDir = 1;
  EXPECT_EQ(inkPage(job), (Bytes{0x1B, 0x40, 0x1B, 0x32, 0x1B, 0x43, 1}));
  EXPECT_EQ(+job.pdev.dwBufSizeOut, 0U);
}

TEST(EmptyPages, AreNotRotated) {
  Job job(100, 40, 180, 180);
  job.options.sVtcOffset = 5000;
  job.options.sRotation = 1;
  EXPECT_EQ(inkPage(job).size(), 7U);
  EXPECT_LT(+job.pdev.bmInfoHeaderOut.biHeight, 0);
}

TEST(OutputBuffer, OneBeyondThirtyTwoBitsEndsThePageAfterItsStart) {
  Job job(100, 40, 180, 180);
  job.options.sHrzOffset = std::numeric_limits<int32_t>::max();
  EXPECT_EQ(inkPage(job).size(), 7U);
  EXPECT_EQ(+job.pdev.pBufStartOut, nullptr);
}

TEST(OutputResolution, Above360ThePageIsSentAt360) {
  Job job(100, 720, 720, 720);
  job.options.sHrzOffset = 50;
  job.setPage({Bytes(size_t{300} * 720, 0xFF), 720}, 1);
  const Capture capture(STDOUT_FILENO);
  RenderEscpData(&job.devobj);
  EXPECT_EQ(+job.pdev.devModeOut.dmPrintQuality, 360);
  EXPECT_EQ(+job.pdev.devModeOut.dmYResolution, 360);
  EXPECT_EQ(+job.pdev.bmInfoHeaderOut.biWidth, 171);  // 71 dots at 360 dpi
  EXPECT_EQ(capture.bytes().back(), 6);               // one inch
}

}  // namespace
}  // namespace velka::testing
