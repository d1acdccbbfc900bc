// A page whose pixels tell where they came from.
#pragma once

#include <gtest/gtest.h>

#include "reference/ReferenceDispatcher.h"

namespace velka::reference {

// A bitmap whose pixel bytes tell their place: (row, column, 7).
inline SourceBitmap numbered(int width, int height) {
  SourceBitmap source;
  source.height = height;
  const size_t stride = paddedStride(width, 24);
  source.bytes.assign(stride * static_cast<size_t>(height), 0xFF);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const size_t at = static_cast<size_t>(row) * stride + 3 * static_cast<size_t>(column);
      source.bytes.at(at) = static_cast<uint8_t>(row);
      source.bytes.at(at + 1) = static_cast<uint8_t>(column);
      source.bytes.at(at + 2) = 7;
    }
  }
  return source;
}

inline void expectPlace(const PageImage& image, int row, int column, int fromRow, int fromColumn) {
  const Pixel pixel = image.pixelAt(row, column);
  EXPECT_EQ(pixel.p0, fromRow) << row << ',' << column;
  EXPECT_EQ(pixel.p1, fromColumn) << row << ',' << column;
  EXPECT_EQ(pixel.p2, 7) << row << ',' << column;
}

inline void expectWhite(const PageImage& image, int row, int column) {
  const Pixel pixel = image.pixelAt(row, column);
  EXPECT_EQ(pixel.p0 + pixel.p1 + pixel.p2, 3 * 255) << row << ',' << column;
}

}  // namespace velka::reference
