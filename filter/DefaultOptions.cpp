// The built-in options of the two models.
#include "InitalizeOemCfg.h"

namespace {

constexpr tagOEMCFG standardDefaults() noexcept {
  tagOEMCFG options = {};
  options.sHeadPins = 24;
  options.sSpare1 = 2;
  options.OutputColorType = 3;
  options.ColorRangeUseFor = 2;
  options.minColorOffset = {.rgbBlue = 0, .rgbGreen = 0, .rgbRed = 130, .rgbReserved = 0};
  options.maxColorOffset = {.rgbBlue = 255, .rgbGreen = 255, .rgbRed = 255, .rgbReserved = 0};
  options.solidColor = {.rgbBlue = 0, .rgbGreen = 0, .rgbRed = 255, .rgbReserved = 0};
  options.sConfigured = 2;
  options.sCopies = 1;
  options.sDotErrorFactor = 0;
  options.sDiffusionThreshold = 128;
  options.sEjectMode = 4;
  options.sEjectFirstCount = 2;
  options.sEjectSecondCount = 1;
  options.sSpare6 = 100;
  options.sSpare7 = 3;
  options.LevelsRed = 50;
  options.sDitherRed = 2;
  options.LevelsBlack = 30;
  options.sDitherBlack = 2;
  options.sModel = 1;
  return options;
}

constexpr tagOEMCFG orloDefaults() noexcept {
  tagOEMCFG options = standardDefaults();
  options.minColorOffset.rgbRed = 150;
  options.sModel = 2;
  return options;
}

}  // namespace

constexpr std::array<tagOEMCFG, 2> defaultOemdev = {standardDefaults(), orloDefaults()};
