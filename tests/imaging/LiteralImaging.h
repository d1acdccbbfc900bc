// The image operations written down once more, straight from their formulas and
// as slow as that is. They use nothing of the library they are compared with.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "LiteralScreens.h"
#include "support/Sweep.h"

namespace velka::literal {

// Sanitizers make the comparisons over all colours tens of times slower, so there
// they look at every 251st colour only (a prime, so all bytes still take part).
constexpr uint32_t kColorStep = testing::amount(1U, 251U, 2503U);

using Bytes = std::vector<uint8_t>;
using Table = std::array<uint8_t, 256>;

/// As the processor makes an integer of a number: the lowest one where none fits.
inline int truncated(double v) {
  if (v >= 2147483648.0 || v <= -2147483649.0 || v != v) return -2147483647 - 1;
  return static_cast<int>(v);
}

inline Table lightTable(int bright, int contrast) {
  Table table{};
  size_t entry = 0;
  for (int i = -128; i < 128; ++i) {
    float v = (static_cast<float>(contrast) + 100.0F) / 100.0F;
    v = static_cast<float>(i) * v;
    v = v + (static_cast<float>(bright) + 128.0F);
    v = v + 0.5F;
    const int n = truncated(v);
    table[entry++] = static_cast<uint8_t>(n < 0 ? 0 : (n > 255 ? 255 : n));
  }
  return table;
}

inline Table levelsTable(float gamma, int inLow, int inHigh, int outLow, int outHigh) {
  Table table{};
  for (int x = 0; x < 256; ++x) {
    double t = 0.0;
    if (x > inLow) {
      const int n = truncated((x - inLow) * (255.0 / (inHigh - inLow)) + 0.5);
      t = (n >= 256 ? 255 : n) / 255.0;
    }
    const int y = truncated(std::pow(t, 1.0 / static_cast<double>(gamma)) * 255.0 + 0.5);
    const int entry = truncated(y * ((outHigh - outLow) / 255.0) + outLow + 0.5);
    table[static_cast<size_t>(x)] = static_cast<uint8_t>(entry);
  }
  return table;
}

inline double toLinear(double c) {
  return c > 0.04045 ? std::pow((c + 0.055) / 1.055, 2.2) : c / 12.92;
}

inline uint8_t gray(uint8_t r, uint8_t g, uint8_t b) {
  if (r == g && g == b && (r == 0 || r == 255)) {
    return r;
  }
  const double y = 0.2026729 * toLinear(r / 255.0) + 0.7151522 * toLinear(g / 255.0) +
                   0.0721750 * toLinear(b / 255.0);
  const double f = y > 0.008856451679035631 ? std::pow(y, 0.3333333333333333)
                                            : (903.2962962962963 * y + 16.0) / 116.0;
  const double lightness = 116.0 * f - 16.0;
  return static_cast<uint8_t>(lightness / 100.0 * 255.0 + 0.55);
}

/// The tone of a pixel of blue, green and red bytes.
class Tone {
 public:
  Tone(int brightness, int contrast, int levels)
      : lit_(brightness != 0 || contrast != 0),
        light_(lightTable(brightness, contrast)),
        levels_(levelsTable(static_cast<float>(levels) / 100.0F, 0, 255, 0, 255)) {}

  [[nodiscard]] uint8_t operator()(uint8_t p0, uint8_t p1, uint8_t p2) const {
    const bool black = p0 == 0 && p1 == 0 && p2 == 0;
    const bool white = p0 == 255 && p1 == 255 && p2 == 255;
    if (lit_ && !black && !white) {
      p0 = light_[p0];
      p1 = light_[p1];
      p2 = light_[p2];
    }
    return gray(levels_[p2], levels_[p1], levels_[p0]);
  }

 private:
  bool lit_;
  Table light_;
  Table levels_;
};

inline uint8_t addClamped(uint8_t v, int part) {
  const int sum = v + part;
  return static_cast<uint8_t>(sum < 1 ? 0 : (sum > 254 ? 255 : sum));
}

inline void diffuse(Bytes& in, Bytes& out, size_t rows, size_t columns, size_t stride,
                    int dotFactor, int threshold) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      const uint8_t v = in[y * stride + x];
      const bool dot = v <= threshold;
      const double level = dot ? (dotFactor / 10.0) * v : 255.0;
      const int e = static_cast<int>(v - level);
      out[y * stride + x] = dot ? 0 : 255;
      const auto give = [&](size_t row, size_t column, int weight) {
        uint8_t& target = in[row * stride + column];
        target = addClamped(target, e * weight / 16);
      };
      if (x + 1 < columns) give(y, x + 1, 7);
      if (y + 1 == rows) continue;
      if (x > 0) give(y + 1, x - 1, 3);
      give(y + 1, x, 5);
      if (x + 1 < columns) give(y + 1, x + 1, 1);
    }
  }
}

inline void screen(const Bytes& in, Bytes& out, size_t rows, size_t columns, size_t stride,
                   const int* ranks, size_t side, int scale) {
  for (size_t y = 0; y < rows; ++y) {
    for (size_t x = 0; x < columns; ++x) {
      const int value = in[y * stride + x];
      const int limit = ranks[(x % side) * side + y % side] * scale;
      out[y * stride + x] = value != 0 && limit <= value ? 255 : 0;
    }
  }
}

/// Needs width <= stride; `out` keeps what lies past the width.
inline void dither(int mode, Bytes& in, Bytes& out, size_t rows, size_t width, size_t stride,
                   int dotFactor, int threshold) {
  switch (mode) {
    case 1:
      for (size_t y = 0; y < rows; ++y) {
        for (size_t x = 0; x < width; ++x) {
          out[y * stride + x] = in[y * stride + x] < 101 ? 0 : 255;
        }
      }
      return;
    case 3:
      return screen(in, out, rows, width, stride, kRanks6, 6, 14);
    case 4:
      return screen(in, out, rows, width, stride, kRanks8, 8, 8);
    case 5:
      return screen(in, out, rows, width, stride, kRanks12, 12, 3);
    case 6:
      return screen(in, out, rows, width, stride, kRanks16, 16, 2);
    default:
      return diffuse(in, out, rows, width, stride, dotFactor, threshold);
  }
}

inline Bytes rotate(const Bytes& src, size_t width, size_t height, int rotation) {
  const bool quarter = rotation == 1 || rotation == 3;
  const size_t outWidth = quarter ? height : width;
  const size_t outHeight = quarter ? width : height;
  const size_t srcStride = (width * 24 + 31) / 32 * 4;
  const size_t dstStride = (outWidth * 24 + 31) / 32 * 4;
  Bytes dst(outHeight * dstStride, 0xFF);
  for (size_t y = 0; y < height; ++y) {
    for (size_t x = 0; x < width; ++x) {
      size_t row = y;
      size_t column = x;
      if (rotation == 1) row = width - 1 - x, column = y;
      if (rotation == 2) row = height - 1 - y, column = width - 1 - x;
      if (rotation == 3) row = x, column = height - 1 - y;
      for (size_t i = 0; i < 3; ++i) {
        dst[row * dstStride + 3 * column + i] = src[y * srcStride + 3 * x + i];
      }
    }
  }
  return dst;
}

}  // namespace velka::literal
