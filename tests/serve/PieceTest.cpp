#include <gtest/gtest.h>

#include "Pieces.h"
#include "RasterPixels.h"
#include "support/RasterBuilder.h"
#include "support/TestPpd.h"

namespace velka::serve {
namespace {

// Each pixel tells its place.
view::Rows counted(int32_t width, int32_t height) {
  view::Picture picture{width, height, 180, {}};
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x) picture.pixels.push_back(static_cast<uint32_t>(y << 8 | x));
  return view::rowsOf(std::move(picture));
}

TEST(Piece, HoldsThePixelsOfItsFrameAndNoOthers) {
  const view::Rows rows = counted(40, 30);
  const std::string bytes = drawPiece(*rows, {5, 7, 3, 2});
  ASSERT_EQ(bytes.size(), 24U);
  const auto at = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
  for (size_t pixel = 0; pixel < 6; ++pixel) {
    EXPECT_EQ(at(4 * pixel), 0);
    EXPECT_EQ(at(4 * pixel + 1), 7 + pixel / 3);
    EXPECT_EQ(at(4 * pixel + 2), 5 + pixel % 3);
    EXPECT_EQ(at(4 * pixel + 3), 255);
  }
}

TEST(Piece, OfAFrameThatReachesBesideThePictureIsWhatLiesOnIt) {
  const view::PictureSize whole{40, 30, 180};
  const Frame piece = onPicture({-10, 20, 30, 30}, whole);
  EXPECT_EQ(piece.left, 0);
  EXPECT_EQ(piece.top, 20);
  EXPECT_EQ(piece.width, 20);
  EXPECT_EQ(piece.height, 10);
  const Frame beside = onPicture({100, 100, 5, 5}, whole);
  EXPECT_EQ(beside.width * beside.height, 0);
  EXPECT_EQ(drawPiece(*counted(40, 30), beside), "");
  EXPECT_EQ(onPicture({-50, -50, 20, 20}, whole).width, 0);
}

TEST(Piece, IsNoLargerThanScreensAre) {
  EXPECT_TRUE(isSound({0, 0, 3840, 2160}));
  EXPECT_FALSE(isSound({0, 0, 0, 10}));
  EXPECT_FALSE(isSound({0, 0, 8193, 10}));
  EXPECT_FALSE(isSound({0, 0, 8000, 8000}));
  EXPECT_FALSE(isSound({INT64_MAX, 0, 10, 10}));
  EXPECT_FALSE(isSound({0, INT64_MIN, 10, 10}));
}

TEST(RasterPixels, AreThePagesOwnAndWhiteWhereRowsAreMissing) {
  auto header = testing::rgbHeader(8, 4, 60, 180);
  testing::RasterPage first = testing::inkedPage(header, 1);
  testing::RasterPage second = testing::inkedPage(header, 2);
  second.lines.pop_back();
  const auto stream = testing::rasterStream({first, second});
  const testing::TempFile file(std::string(stream.begin(), stream.end()), ".ras");
  RasterPixels pixels;
  ASSERT_EQ(readRaster(file.path(), 2, pixels), std::nullopt);
  EXPECT_EQ(pixels.width, 8);
  EXPECT_EQ(pixels.height, 4);
  for (int64_t y = 0; y < 3; ++y) {
    const auto& line = second.lines[static_cast<size_t>(y)];
    for (int64_t x = 0; x < 8; ++x) {
      const auto i = static_cast<size_t>(3 * x);
      EXPECT_EQ(pixels.at(x, y),
                uint32_t{line[i]} << 16U | uint32_t{line[i + 1]} << 8U | line[i + 2]);
    }
  }
  for (int64_t x = 0; x < 8; ++x) EXPECT_EQ(pixels.at(x, 3), 0xFFFFFFU);
  EXPECT_NE(readRaster(file.path(), 3, pixels), std::nullopt);
}

TEST(RasterPixels, AreSquareOnTheScreen) {
  RasterPixels pixels{2, 3, 60, 180, {}};
  for (uint8_t i = 0; i < 18; ++i) pixels.rgb.push_back(i);
  const view::Rows rows = rowsOf(pixels);
  EXPECT_EQ(rows->size().width, 6);
  EXPECT_EQ(rows->size().height, 3);
  std::vector<uint32_t> row(6);
  rows->draw(1, row);
  EXPECT_EQ(row,
            (std::vector<uint32_t>{0x060708, 0x060708, 0x060708, 0x090A0B, 0x090A0B, 0x090A0B}));
}

}  // namespace
}  // namespace velka::serve
