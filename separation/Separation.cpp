#include "Separation.h"

#include <algorithm>
#include <cstring>

#include "CpuLevel.h"

namespace velka {
namespace {

constexpr uint32_t kWhite = 0xFFFFFF;

std::array<uint8_t, 3> channels(tagRGBQUAD c) noexcept {
  return {c.rgbBlue, c.rgbGreen, c.rgbRed};
}

bool rangeIsValid(tagRGBQUAD low, tagRGBQUAD high) noexcept {
  return low.rgbBlue <= high.rgbBlue && low.rgbGreen <= high.rgbGreen && low.rgbRed <= high.rgbRed;
}

// Indexed by in range (1) + near grey (2).
std::array<Ink, 4> routeTable(int outputColorType, int colorRangeUseFor) noexcept {
  constexpr Ink B = Ink::Black;
  constexpr Ink R = Ink::Red;
  constexpr Ink N = Ink::None;
  // Order: outside the range, inside, outside but near grey, inside and near grey.
  if (outputColorType == 1) return {B, B, B, B};
  if (outputColorType == 2) return {R, R, R, R};
  if (outputColorType == 3 && colorRangeUseFor == 1) return {R, B, B, B};
  if (outputColorType == 3 && colorRangeUseFor == 2) return {B, R, B, B};
  return {N, N, N, N};
}

// Bytes of white at the start of `bytes`, in whole steps of 24.
size_t whiteRun(std::span<const uint8_t> bytes) noexcept {
  constexpr size_t kStep = 8 * kRgbBytes;
  size_t n = 0;
  for (; n + kStep <= bytes.size(); n += kStep) {
    std::array<uint64_t, 3> words{};
    std::memcpy(words.data(), bytes.data() + n, kStep);
    if ((words[0] & words[1] & words[2]) != ~uint64_t{0}) break;
  }
  return n;
}

// Pixels at the start of a row that are separated many at a time.
size_t separateFirstPixels(const InkRules& rules, std::span<const uint8_t> pixels, uint8_t* black,
                           uint8_t* red, RowInk& found) noexcept {
  if (cpuLevel() == CpuLevel::Plain) return 0;
  auto* sort = sortPixels;
#ifdef VELKA_SIMD
  if (cpuLevel() >= CpuLevel::Ssse3) sort = sortPixelsSsse3;
#endif
  return separatePixels(*sort, rules.rowRules(), pixels.data(), pixels.size() / kRgbBytes, black,
                        red, found);
}

}  // namespace

InkRules::InkRules(const ColourRouting& routing, const InkTone& black, const InkTone& red) noexcept
    : solidApplies_(routing.outputColorType == 3),
      solid_(routing.solid),
      rangeLow_(routing.rangeLow),
      rangeHigh_(routing.rangeHigh),
      tones_{ToneTable(black), ToneTable(red)} {
  const auto route = routeTable(routing.outputColorType, routing.colorRangeUseFor);
  for (unsigned marks = 0; marks < route_.size(); ++marks) {
    const bool white = (marks & (kAbove239 | kPastTintedWhite)) != 0;
    const size_t index = (marks & kInRange) + ((marks & kNearGreyMark) != 0 ? 2U : 0U);
    route_[marks] = white ? Ink::None : route[index];
  }
  const auto low = channels(routing.rangeLow);
  const auto high = channels(routing.rangeHigh);
  const bool valid = rangeIsValid(routing.rangeLow, routing.rangeHigh);
  for (size_t channel = 0; channel < kRgbBytes; ++channel) {
    // Deliberate: the third byte needs 250 for a tinted white, the others 200.
    const int tintedWhite = channel == 2 ? 249 : 199;
    for (int v = 0; v < 256; ++v) {
      uint8_t& mark = marks_[channel][static_cast<size_t>(v)];
      if (v > 239) mark |= kAbove239;
      if (v > tintedWhite) mark |= kPastTintedWhite;
      if (valid && low[channel] <= v && v <= high[channel]) mark |= kInRange;
    }
    for (size_t ink = 0; ink < tones_.size(); ++ink)
      std::copy_n(tones_[ink].contributions(channel), 256, &contributions_[channel][256 * ink]);
  }
}

RowRules InkRules::rowRules() const noexcept {
  RowRules rules{};
  const bool valid = rangeIsValid(rangeLow_, rangeHigh_);
  for (size_t i = 0; i < kRgbBytes; ++i) {
    rules.low[i] = valid ? channels(rangeLow_)[i] : 255;
    rules.high[i] = valid ? channels(rangeHigh_)[i] : 0;
    rules.solid[i] = channels(solid_)[i];
    rules.contributions[i] = contributions_[i].data();
  }
  rules.solidApplies = solidApplies_;
  for (const unsigned index : {0U, 1U, 2U, 3U})
    rules.route[index] = route_[(index & 1U) | ((index & 2U) != 0 ? kNearGreyMark : 0U)];
  rules.black[static_cast<size_t>(Ink::Black)] = tones_[0].black();
  rules.black[static_cast<size_t>(Ink::Red)] = tones_[1].black();
  rules.graySteps = GrayScale::instance().steps();
  return rules;
}

InkRules compileInkRules(const tagOEMCFG& options) noexcept {
  const ColourRouting routing = {options.OutputColorType, options.ColorRangeUseFor,
                                 options.minColorOffset, options.maxColorOffset,
                                 options.solidColor};
  return {routing, InkTone{options.BrightnessBlack, options.ContrastBlack, options.LevelsBlack},
          InkTone{options.BrightnessRed, options.ContrastRed, options.LevelsRed}};
}

RowInk separateRow(const InkRules& rules, std::span<const uint8_t> pixels, uint8_t* black,
                   uint8_t* red) noexcept {
  RowInk found;
  const size_t count = pixels.size() / kRgbBytes;
  const uint8_t* const bytes = pixels.data();
  InkDot dot = rules.dot(0xFF, 0xFF, 0xFF);
  uint32_t previous = kWhite;
  for (size_t x = separateFirstPixels(rules, pixels, black, red, found); x < count; ++x) {
    const uint8_t* p = bytes + x * kRgbBytes;
    const uint32_t colour = p[0] | uint32_t{p[1]} << 8U | uint32_t{p[2]} << 16U;
    if (colour == kWhite) {
      x += whiteRun({p + kRgbBytes, (count - x - 1) * kRgbBytes}) / kRgbBytes;
      continue;
    }
    if (colour != previous) dot = rules.dot(p[0], p[1], p[2]);
    previous = colour;
    if (dot.ink == Ink::None) continue;
    const auto column = static_cast<int64_t>(x);
    if (dot.ink == Ink::Black) {
      black[x] = dot.value;
      found.lastBlackColumn = column;
      if (found.firstBlackColumn < 0) found.firstBlackColumn = column;
    } else {
      red[x] = dot.value;
      found.lastRedColumn = column;
      if (found.firstRedColumn < 0) found.firstRedColumn = column;
    }
  }
  found.black = found.firstBlackColumn >= 0;
  return found;
}

bool isBlankRow(std::span<const uint8_t> row) noexcept {
  // Every byte white says the same as: the first pixel is white and the row
  // repeats it to its very end.
  constexpr size_t kProbe = 1;
  return row.size() < kRgbBytes ||
         (row[0] == 0xFF && std::memcmp(row.data(), row.data() + kProbe, row.size() - kProbe) == 0);
}

bool colourInRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept {
  const auto c = channels(colour);
  const auto l = channels(low);
  const auto h = channels(high);
  if (!rangeIsValid(low, high)) return false;
  for (size_t i = 0; i < kRgbBytes; ++i)
    if (c[i] < l[i] || c[i] > h[i]) return false;
  return true;
}

}  // namespace velka
