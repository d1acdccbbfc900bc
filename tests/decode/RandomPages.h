// Pages and options at random for the tests of whole pages.
#pragma once

#include <cstdint>
#include <random>

#include "DeviceRecords.h"
#include "reference/ReferenceDispatcher.h"

namespace velka::decodetest {

struct Dpi {
  uint32_t x;
  uint32_t y;
};
/// All pairs of resolutions that print.
inline constexpr Dpi kDpis[] = {{60, 180},  {90, 180}, {120, 180}, {180, 180}, {360, 180},
                                {360, 360}, {60, 60},  {80, 60},   {90, 60},   {120, 60}};

/// Patches of colour and grey on white.
reference::SourceBitmap patches(std::mt19937& random, uint32_t width, uint32_t height);

/// What both models take: inks, colour ranges, tones, screens, order of the inks,
/// rotation, offsets.
tagOEMCFG randomOptions(std::mt19937& random);

}  // namespace velka::decodetest
