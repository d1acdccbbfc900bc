#include "GrayScale.h"

#include <bit>
#include <cmath>

#include "CheckedMath.h"
#include "ColorManagment.h"

namespace velka {
namespace {

int grayByFormula(CColorManagment& color, double luminance) {
  const double lightness = 116.0 * color.Fn_XYZToLab(luminance) - 16.0;
  return truncateToInt32(lightness / 100.0 * 255.0 + 0.55);
}

/// The smallest luminance of at least this grey. Positive doubles are ordered like
/// their bit patterns, so halving the patterns ends at the exact value.
double cutPoint(CColorManagment& color, int gray) {
  auto below = std::bit_cast<uint64_t>(0.0);
  auto reached = std::bit_cast<uint64_t>(1.0);
  while (reached - below > 1) {
    const uint64_t middle = below + (reached - below) / 2;
    (grayByFormula(color, std::bit_cast<double>(middle)) >= gray ? reached : below) = middle;
  }
  return std::bit_cast<double>(reached);
}

uint32_t inUnits(double luminance) {
  return static_cast<uint32_t>(std::llround(luminance * 4294967296.0));
}

std::array<Contributions, 3> makeContributions() {
  std::array<Contributions, 3> contributions{};
  CColorManagment color;
  for (size_t channel = 0; channel < 3; ++channel) {
    for (size_t v = 0; v < 256; ++v) {
      const double linear = color.ToLinear(static_cast<double>(v) / 255.0);
      contributions[channel][v] = inUnits(gsRGBcm[1][channel] * linear);
    }
  }
  return contributions;
}

}  // namespace

const std::array<Contributions, 3>& channelContributions() {
  static const std::array<Contributions, 3> contributions = makeContributions();
  return contributions;
}

GrayScale::GrayScale() {
  const auto& [red, green, blue] = channelContributions();
  std::array<uint32_t, 255> cuts{};  // cuts[g] is the smallest Y above grey g
  CColorManagment color;
  for (int gray = 1; gray <= 254; ++gray) {
    cuts[static_cast<size_t>(gray - 1)] = inUnits(cutPoint(color, gray));
  }
  // The formula gives white 254; it is 255 by decree.
  cuts[254] = red[255] + green[255] + blue[255];
  constexpr uint32_t kCell = 1U << kCellShift;
  uint32_t gray = 0;
  for (uint32_t cell = 0; cell < steps_.size(); ++cell) {
    const uint32_t start = cell * kCell;
    while (gray < cuts.size() && cuts[gray] <= start) {
      ++gray;
    }
    const bool holdsCut = gray < cuts.size() && cuts[gray] - start < kCell;
    const uint32_t untilNext = holdsCut ? cuts[gray] - start : kCell;
    steps_[cell] = gray * kCell + (kCell - untilNext) - start;
  }
}

const GrayScale& GrayScale::instance() {
  static const GrayScale scale;
  return scale;
}

uint8_t grayOfRgb(uint8_t r, uint8_t g, uint8_t b) {
  const auto& [red, green, blue] = channelContributions();
  return GrayScale::instance().gray(red[r] + green[g] + blue[b]);
}

}  // namespace velka
