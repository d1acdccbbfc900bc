#include "reference/ReferenceTone.h"

#include <cmath>

#include "reference/ReferenceNumbers.h"

namespace velka::reference {

namespace {

double toLinear(double c) {
  if (c > 0.04045) {
    return std::pow((c + 0.055) / 1.055, 2.2);  // 2.2 where sRGB has 2.4, on purpose
  }
  return c / 12.92;
}

double labComponent(double t) {
  if (t > 0.008856451679035631) {
    return std::pow(t, 0.3333333333333333);
  }
  return (903.2962962962963 * t + 16) / 116;
}

}  // namespace

std::array<uint8_t, 256> lightTable(int bright, int contrast) {
  std::array<uint8_t, 256> table{};
  for (int i = -128; i <= 127; ++i) {
    const float slope = static_cast<float>(contrast + 100) / 100.0F;
    float v = static_cast<float>(i) * slope;
    v = v + static_cast<float>(bright + 128);
    v = v + 0.5F;
    int entry = truncate32(v);
    if (entry < 0) {
      entry = 0;
    }
    if (entry > 255) {
      entry = 255;
    }
    const int index = i + 128;
    table.at(static_cast<size_t>(index)) = static_cast<uint8_t>(entry);
  }
  return table;
}

std::array<uint8_t, 256> levelsTable(const Levels& levels) {
  std::array<uint8_t, 256> table{};
  const int inRange = levels.inHigh - levels.inLow;
  const int outRange = levels.outHigh - levels.outLow;
  const double scaleIn = 255.0 / inRange;
  const double scaleOut = outRange / 255.0;
  const double exponent = 1.0 / static_cast<double>(levels.gamma);
  for (int x = 0; x < 256; ++x) {
    double t = 0.0;
    if (x > levels.inLow) {
      const double stretched = (x - levels.inLow) * scaleIn + 0.5;
      const int n = stretched >= 256 ? 255 : truncate32(stretched);
      t = n / 255.0;
    }
    const int y = truncate32(std::pow(t, exponent) * 255.0 + 0.5);
    const int entry = truncate32(y * scaleOut + levels.outLow + 0.5);
    table.at(static_cast<size_t>(x)) = static_cast<uint8_t>(entry & 0xFF);
  }
  return table;
}

uint8_t gray(uint8_t red, uint8_t green, uint8_t blue) {
  const double r = red / 255.0;
  const double g = green / 255.0;
  const double b = blue / 255.0;
  if (r == 0.0 && g == 0.0 && b == 0.0) {
    return static_cast<uint8_t>(truncate32(r * 255.0));
  }
  if (r == 1.0 && g == 1.0 && b == 1.0) {
    return static_cast<uint8_t>(truncate32(r * 255.0));
  }
  const double linearR = toLinear(r);
  const double linearG = toLinear(g);
  const double linearB = toLinear(b);
  const double y = 0.2026729 * linearR + 0.7151522 * linearG + 0.0721750 * linearB;
  const double lightness = 116 * labComponent(y) - 16;
  return static_cast<uint8_t>(truncate32((lightness / 100.0) * 255.0 + 0.55));
}

Pixel applyLight(const std::array<uint8_t, 256>& table, Pixel pixel) {
  if (pixel.p0 == 0 && pixel.p1 == 0 && pixel.p2 == 0) {
    return pixel;
  }
  if (pixel.p0 == 255 && pixel.p1 == 255 && pixel.p2 == 255) {
    return pixel;
  }
  return {table.at(pixel.p0), table.at(pixel.p1), table.at(pixel.p2)};
}

InkTone makeInkTone(int brightness, int contrast, int levelsHundredths) {
  InkTone ink{};
  ink.adjustsLight = brightness != 0 || contrast != 0;
  ink.light = lightTable(brightness, contrast);
  Levels levels;
  levels.gamma = static_cast<float>(levelsHundredths) / 100.0F;
  ink.levels = levelsTable(levels);
  return ink;
}

uint8_t toneOfPixel(const InkTone& ink, Pixel pixel) {
  if (ink.adjustsLight) {
    pixel = applyLight(ink.light, pixel);
  }
  const uint8_t levelled0 = ink.levels.at(pixel.p0);
  const uint8_t levelled1 = ink.levels.at(pixel.p1);
  const uint8_t levelled2 = ink.levels.at(pixel.p2);
  return gray(levelled2, levelled1, levelled0);
}

}  // namespace velka::reference
