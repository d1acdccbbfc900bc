// The options record under a short name, and the standard model's defaults, so
// that a test says only what it changes.
#pragma once

#include "DeviceRecords.h"

namespace velka::reference {

/// What the job's options hold on the standard model when the PPD marks nothing.
inline tagOEMCFG defaultOptions() {
  tagOEMCFG options{};
  options.sHeadPins = 24;
  options.sSpare1 = 2;
  options.OutputColorType = 3;
  options.ColorRangeUseFor = 2;
  options.minColorOffset = {0, 0, 130, 0};
  options.maxColorOffset = {255, 255, 255, 0};
  options.solidColor = {0, 0, 255, 0};
  options.sConfigured = 1;
  options.sCopies = 1;
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

}  // namespace velka::reference
