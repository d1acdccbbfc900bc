#include <gtest/gtest.h>

#include "reference/NumberedPage.h"

namespace velka::reference {
namespace {

PageImage imageOf(int width, int height) {
  return {numbered(width, height).bytes, paddedStride(width, 24), width, height};
}

TEST(ReferenceRotation, AQuarterTurnOfThreeByTwoPadsRowsWithWhite) {
  const PageImage turned = rotate(imageOf(3, 2), 1);
  ASSERT_EQ(turned.width, 2);
  ASSERT_EQ(turned.height, 3);
  ASSERT_EQ(turned.stride, 8U);
  expectPlace(turned, 0, 0, 0, 2);
  expectPlace(turned, 0, 1, 1, 2);
  expectPlace(turned, 2, 0, 0, 0);
  expectPlace(turned, 2, 1, 1, 0);
  for (int row = 0; row < 3; ++row) {
    EXPECT_EQ(turned.byteAt(row, 6), 255);
    EXPECT_EQ(turned.byteAt(row, 7), 255);
  }
}

TEST(ReferenceRotation, HalfTurnAndClockwiseTurn) {
  const PageImage half = rotate(imageOf(3, 2), 2);
  expectPlace(half, 0, 0, 1, 2);
  expectPlace(half, 1, 2, 0, 0);
  const PageImage clockwise = rotate(imageOf(3, 2), 3);
  expectPlace(clockwise, 0, 0, 1, 0);
  expectPlace(clockwise, 2, 1, 0, 2);
}

TEST(ReferenceRotation, OtherTurnsCopy) {
  for (const int64_t turns : {0, 4, -1}) {
    EXPECT_EQ(rotate(imageOf(3, 2), turns).bytes, imageOf(3, 2).bytes);
  }
}

TEST(ReferenceRotation, TheGeometryTurnsWithThePage) {
  const Geometry before{100, 200, 90, 180, 4, 8, 100, 200};
  const Geometry half = turnGeometry(before, 2);
  EXPECT_EQ(half.offsetX, 100 - 90 - 4);
  EXPECT_EQ(half.offsetY, 200 - 180 - 8);
  EXPECT_EQ(half.sizeX, 100);
  const Geometry left = turnGeometry(before, 1);
  EXPECT_EQ(left.horzRes, 180U);
  EXPECT_EQ(left.vertRes, 90U);
  EXPECT_EQ(left.horzSize, 200U);
  EXPECT_EQ(left.vertSize, 100U);
  EXPECT_EQ(left.sizeX, 200);
  EXPECT_EQ(left.sizeY, 100);
  EXPECT_EQ(left.offsetX, 8);
  EXPECT_EQ(left.offsetY, 6);
  const Geometry right = turnGeometry(before, 3);
  EXPECT_EQ(right.offsetX, 12);
  EXPECT_EQ(right.offsetY, 4);
  EXPECT_EQ(right.sizeX, 200);
}

}  // namespace
}  // namespace velka::reference
