// Page bitmaps and colour settings at random.
#pragma once

#include <array>
#include <random>

#include "orlo/LiteralPipeline.h"

namespace velka::orlotest {

/// Colours near the limits of the classes, stretches of them and of white.
inline Bitmap randomBitmap(std::mt19937& random) {
  constexpr std::array<uint8_t, 12> kEdges = {0,   1,   100, 105, 109, 128,
                                              130, 199, 200, 239, 240, 250};
  const auto below = [&](size_t n) {
    return std::uniform_int_distribution<size_t>(0, n - 1)(random);
  };
  const auto channel = [&] {
    return below(3) == 0 ? static_cast<uint8_t>(below(256)) : kEdges.at(below(kEdges.size()));
  };
  Bitmap page(1 + static_cast<int>(below(40)), 1 + static_cast<int>(below(90)), below(4));
  for (int y = 0; y < page.height; ++y) {
    if (below(3) == 0) continue;
    for (int x = 0; x < page.width; ++x) {
      const uint8_t grey = channel();
      switch (below(4)) {
        case 0:
          page.set(x, y, channel(), channel(), channel());
          break;
        case 1:
          page.set(x, y, grey, grey, static_cast<uint8_t>(grey ^ below(16)));
          break;
        case 2:
          page.set(x, y, 0, 0, 255);
          break;
        default:
          break;
      }
    }
  }
  return page;
}

/// Any halftone mode and tone.
inline _COLORCFG_ORLO randomConfig(std::mt19937& random) {
  const auto in = [&](int low, int high) {
    return std::uniform_int_distribution<int>(low, high)(random);
  };
  const auto tone = [&](int16_t& brightness, int16_t& contrast, int16_t& levels, int16_t& dither) {
    brightness = static_cast<int16_t>(in(0, 1) == 0 ? 0 : in(-200, 200));
    contrast = static_cast<int16_t>(in(0, 1) == 0 ? 0 : in(-200, 200));
    levels = static_cast<int16_t>(in(0, 300));
    dither = static_cast<int16_t>(in(0, 7));
  };
  _COLORCFG_ORLO config = plainConfig();
  config.OutputColorType = static_cast<uint16_t>(in(0, 2) != 0 ? 3 : in(0, 4));
  config.ColorRangeUseFor = static_cast<uint16_t>(in(0, 3));
  config.minColorOffset.rgbRed = static_cast<uint8_t>(in(0, 255));
  config.maxColorOffset.rgbGreen = static_cast<uint8_t>(in(100, 255));
  tone(config.BrightnessRed, config.ContrastRed, config.LevelsRed, config.sDitherRed);
  tone(config.BrightnessBlack, config.ContrastBlack, config.LevelsBlack, config.sDitherBlack);
  return config;
}

}  // namespace velka::orlotest
