#include "Separation.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "CpuLevel.h"

namespace velka {
namespace {

// What a byte says about the whole pixel when all three channels agree.
constexpr uint8_t kAbove239 = 1;
constexpr uint8_t kPastTintedWhite = 2;  // deliberate: the third byte needs 250, the others 200
constexpr uint8_t kInRange = 4;

constexpr int kNearGrey = 9;
constexpr size_t kPixelBytes = 3;

std::array<uint8_t, 3> channels(tagRGBQUAD c) noexcept {
  return {c.rgbBlue, c.rgbGreen, c.rgbRed};
}

bool rangeIsValid(tagRGBQUAD low, tagRGBQUAD high) noexcept {
  return low.rgbBlue <= high.rgbBlue && low.rgbGreen <= high.rgbGreen && low.rgbRed <= high.rgbRed;
}

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

bool nearGrey(int p0, int p1, int p2) noexcept {
  return std::abs(p0 - p1) <= kNearGrey && std::abs(p0 - p2) <= kNearGrey &&
         std::abs(p2 - p1) <= kNearGrey;
}

// Bytes of white at the start of `bytes`, in whole steps of 24.
size_t whiteRun(std::span<const uint8_t> bytes) noexcept {
  constexpr size_t kStep = 8 * kPixelBytes;
  size_t n = 0;
  for (; n + kStep <= bytes.size(); n += kStep) {
    std::array<uint64_t, 3> words{};
    std::memcpy(words.data(), bytes.data() + n, kStep);
    if ((words[0] & words[1] & words[2]) != ~uint64_t{0}) break;
  }
  return n;
}

// Pixels at the start of a row that are separated many at a time.
size_t separateFirstPixels([[maybe_unused]] const InkRules& rules,
                           [[maybe_unused]] std::span<const uint8_t> pixels,
                           [[maybe_unused]] uint8_t* black, [[maybe_unused]] uint8_t* red,
                           [[maybe_unused]] RowInk& found) noexcept {
#ifdef VELKA_SIMD
  if (cpuLevel() >= CpuLevel::Ssse3) {
    return separatePixelsSsse3(rules.rowRules(), pixels.data(), pixels.size() / kPixelBytes, black,
                               red, found);
  }
#endif
  return 0;
}

}  // namespace

InkRules::InkRules(const ColourRouting& routing, const InkTone& black, const InkTone& red) noexcept
    : route_(routeTable(routing.outputColorType, routing.colorRangeUseFor)),
      solidApplies_(routing.outputColorType == 3),
      solid_(routing.solid),
      rangeLow_(routing.rangeLow),
      rangeHigh_(routing.rangeHigh),
      black_(black),
      red_(red) {
  const auto low = channels(routing.rangeLow);
  const auto high = channels(routing.rangeHigh);
  const bool valid = rangeIsValid(routing.rangeLow, routing.rangeHigh);
  for (size_t channel = 0; channel < kPixelBytes; ++channel) {
    const int tintedWhite = channel == 2 ? 249 : 199;
    for (int v = 0; v < 256; ++v) {
      uint8_t& mark = marks_[channel][static_cast<size_t>(v)];
      if (v > 239) mark |= kAbove239;
      if (v > tintedWhite) mark |= kPastTintedWhite;
      if (valid && low[channel] <= v && v <= high[channel]) mark |= kInRange;
    }
  }
}

Ink InkRules::inkOf(uint8_t p0, uint8_t p1, uint8_t p2) const noexcept {
  const auto mark = static_cast<uint8_t>(marks_[0][p0] & marks_[1][p1] & marks_[2][p2]);
  if ((mark & (kAbove239 | kPastTintedWhite)) != 0) return Ink::None;
  const size_t inRange = (mark & kInRange) != 0 ? 1 : 0;
  const size_t grey = nearGrey(p0, p1, p2) ? 2 : 0;
  return route_[inRange + grey];
}

InkDot InkRules::dot(uint8_t p0, uint8_t p1, uint8_t p2) const noexcept {
  const Ink ink = inkOf(p0, p1, p2);
  if (ink == Ink::None) return {};
  const bool solid =
      solidApplies_ && p0 == solid_.rgbBlue && p1 == solid_.rgbGreen && p2 == solid_.rgbRed;
  if (solid) return {ink, 0};
  return {ink, (ink == Ink::Black ? black_ : red_).tone(p0, p1, p2)};
}

RowRules InkRules::rowRules() const noexcept {
  RowRules rules{};
  const bool valid = rangeIsValid(rangeLow_, rangeHigh_);
  for (size_t i = 0; i < kPixelBytes; ++i) {
    rules.low[i] = valid ? channels(rangeLow_)[i] : 255;
    rules.high[i] = valid ? channels(rangeHigh_)[i] : 0;
    rules.solid[i] = channels(solid_)[i];
    for (const Ink ink : {Ink::None, Ink::Black, Ink::Red})
      rules.tones[static_cast<size_t>(ink)].contributions[i] =
          (ink == Ink::Red ? red_ : black_).contributions(i);
  }
  rules.solidApplies = solidApplies_;
  std::copy(route_.begin(), route_.end(), rules.route);
  rules.tones[static_cast<size_t>(Ink::Black)].black = black_.black();
  rules.tones[static_cast<size_t>(Ink::Red)].black = red_.black();
  rules.cutsBelowCell = GrayScale::instance().cutsBelowCell();
  rules.cuts = GrayScale::instance().cuts();
  rules.cellShift = 32 - GrayScale::kCellBits;
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
  const size_t end = pixels.size() / kPixelBytes * kPixelBytes;
  const uint8_t* previous = nullptr;
  InkDot dot;
  size_t at = separateFirstPixels(rules, pixels, black, red, found) * kPixelBytes;
  while (at < end) {
    const uint8_t* p = pixels.data() + at;
    if (p[0] == 0xFF && p[1] == 0xFF && p[2] == 0xFF) {
      at += std::max(kPixelBytes, whiteRun(pixels.subspan(at, end - at)));
      continue;
    }
    if (previous == nullptr || std::memcmp(p, previous, kPixelBytes) != 0)
      dot = rules.dot(p[0], p[1], p[2]);
    previous = p;
    const size_t x = at / kPixelBytes;
    if (dot.ink == Ink::Black) {
      black[x] = dot.value;
      found.black = true;
      found.lastBlackColumn = static_cast<int64_t>(x);
      if (found.firstBlackColumn < 0) found.firstBlackColumn = static_cast<int64_t>(x);
    } else if (dot.ink == Ink::Red) {
      red[x] = dot.value;
      found.lastRedColumn = static_cast<int64_t>(x);
      if (found.firstRedColumn < 0) found.firstRedColumn = static_cast<int64_t>(x);
    }
    at += kPixelBytes;
  }
  return found;
}

bool isBlankRow(std::span<const uint8_t> row) noexcept {
  // Every byte white says the same as: the first pixel is white and the row
  // repeats it to its very end.
  constexpr size_t kProbe = 1;
  return row.size() < kPixelBytes ||
         (row[0] == 0xFF && std::memcmp(row.data(), row.data() + kProbe, row.size() - kProbe) == 0);
}

bool colourInRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept {
  const auto c = channels(colour);
  const auto l = channels(low);
  const auto h = channels(high);
  if (!rangeIsValid(low, high)) return false;
  for (size_t i = 0; i < kPixelBytes; ++i)
    if (c[i] < l[i] || c[i] > h[i]) return false;
  return true;
}

}  // namespace velka
