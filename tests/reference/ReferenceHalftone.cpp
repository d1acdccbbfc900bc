#include "reference/ReferenceHalftone.h"

#include <algorithm>

#include "reference/ReferenceScreens.h"

namespace velka::reference {

namespace {

using Plane = std::vector<uint8_t>;

template <size_t Size>
void orderedScreen(const int (&screen)[Size][Size], int scale, const Plane& in, Plane& out,
                   size_t rows, size_t width, size_t stride) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < width; ++x) {
      const int value = in.at(y * stride + x);
      const int entry = screen[x % Size][y % Size] * scale;  // the column selects the screen's row
      out.at(y * stride + x) = (value != 0 && entry <= value) ? 255 : 0;
    }
  }
}

void fixedThreshold(const Plane& in, Plane& out, size_t rows, size_t columns, size_t stride) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      out.at(y * stride + x) = in.at(y * stride + x) < 101 ? 0 : 255;
    }
  }
}

void addClamped(uint8_t& value, int amount) {
  int sum = value + amount;
  if (sum < 1) {
    sum = 0;
  }
  if (sum > 254) {
    sum = 255;
  }
  value = static_cast<uint8_t>(sum);
}

void spreadError(Plane& plane, size_t x, size_t y, int e, size_t rows, size_t columns,
                 size_t stride) {
  if (x + 1 < columns) {
    addClamped(plane.at(y * stride + x + 1), e * 7 / 16);
  }
  if (y + 1 < rows) {
    const size_t below = (y + 1) * stride + x;
    if (x >= 1) {
      addClamped(plane.at(below - 1), e * 3 / 16);
    }
    addClamped(plane.at(below), e * 5 / 16);
    if (x + 1 < columns) {
      addClamped(plane.at(below + 1), e * 1 / 16);
    }
  }
}

void diffuseError(Plane& in, Plane& out, size_t rows, size_t columns, size_t stride, int dotFactor,
                  int threshold) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      const int v = in.at(y * stride + x);
      double printed = 255.0;
      out.at(y * stride + x) = 255;
      if (v <= threshold) {
        out.at(y * stride + x) = 0;
        printed = (dotFactor / 10.0) * v;
      }
      const int e = static_cast<int>(v - printed);
      spreadError(in, x, y, e, rows, columns, stride);
    }
  }
}

}  // namespace

std::vector<uint8_t> dither(int mode, std::vector<uint8_t>& plane, size_t rows, size_t width,
                            size_t stride, int16_t dotFactor, int16_t threshold) {
  Plane out(rows * stride, 255);
  const size_t columns = std::min(stride, width);
  switch (mode) {
    case 1:
      fixedThreshold(plane, out, rows, columns, stride);
      break;
    case 3:
      orderedScreen(screen6, 14, plane, out, rows, width, stride);
      break;
    case 4:
      orderedScreen(screen8, 8, plane, out, rows, width, stride);
      break;
    case 5:
      orderedScreen(screen12, 3, plane, out, rows, width, stride);
      break;
    case 6:
      orderedScreen(screen16, 2, plane, out, rows, width, stride);
      break;
    default:
      diffuseError(plane, out, rows, columns, stride, dotFactor, threshold);
  }
  return out;
}

}  // namespace velka::reference
