// From page pixels to two ink planes: which ink a pixel is printed with and how
// dark. Everything that does not depend on the pixel is compiled into InkRules
// once a page.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "DeviceRecords.h"
#include "RowKernel.h"
#include "ToneTable.h"

namespace velka {

/// An ink and the value its plane gets: 0 full ink .. 255.
struct InkDot {
  Ink ink = Ink::None;
  uint8_t value = 255;
};

/// How a page's colours are told apart, as both printer models share it.
struct ColourRouting {
  int outputColorType;   ///< 1 black only, 2 red only, 3 both; else nothing
  int colorRangeUseFor;  ///< with both: the range selects 1 black, 2 red; else nothing
  tagRGBQUAD rangeLow;
  tagRGBQUAD rangeHigh;
  tagRGBQUAD solid;  ///< with both: full ink without tone
};

/// The compiled rules of a page.
class InkRules {
 public:
  InkRules(const ColourRouting& routing, const InkTone& black, const InkTone& red) noexcept;

  /// Ink and value of one pixel, its three bytes in memory order.
  [[nodiscard]] InkDot dot(uint8_t p0, uint8_t p1, uint8_t p2) const noexcept {
    const Ink ink = inkOf(p0, p1, p2);
    if (ink == Ink::None) return {};
    if (solidApplies_ && p0 == solid_.rgbBlue && p1 == solid_.rgbGreen && p2 == solid_.rgbRed)
      return {ink, 0};
    return {ink, tones_[ink == Ink::Red ? 1 : 0].tone(p0, p1, p2)};
  }

  /// The same rules as plain data, which refers to this object's tables.
  [[nodiscard]] RowRules rowRules() const noexcept;

 private:
  // What a byte says about the whole pixel when all three channels agree.
  static constexpr uint8_t kInRange = 1;
  static constexpr uint8_t kAbove239 = 2;
  static constexpr uint8_t kPastTintedWhite = 4;
  static constexpr unsigned kNearGreyMark = 8;
  static constexpr int kNearGrey = 9;

  // Without branches: on photographs they would be foreseen wrongly too often.
  [[nodiscard]] Ink inkOf(uint8_t p0, uint8_t p1, uint8_t p2) const noexcept {
    const auto mark = static_cast<unsigned>(marks_[0][p0] & marks_[1][p1] & marks_[2][p2]);
    const int most = std::max(std::max<int>(p0, p1), int{p2});
    const int least = std::min(std::min<int>(p0, p1), int{p2});
    return route_[mark | (most - least <= kNearGrey ? kNearGreyMark : 0U)];
  }

  // Per channel and byte: how it stands to the white limits and the range.
  std::array<std::array<uint8_t, 256>, 3> marks_{};
  std::array<Ink, 16> route_{};  // indexed by all marks
  bool solidApplies_ = false;
  tagRGBQUAD solid_{};
  tagRGBQUAD rangeLow_{};
  tagRGBQUAD rangeHigh_{};
  std::array<ToneTable, 2> tones_;                            // of black and red
  std::array<std::array<uint32_t, 512>, 3> contributions_{};  // the same by channel, then ink
};

/// The rules that the options record asks for.
[[nodiscard]] InkRules compileInkRules(const tagOEMCFG& options) noexcept;

/// Separates one row. Pixels that stay white leave their plane bytes alone.
/// @param pixels three bytes a pixel; only whole pixels are read
/// @param black,red one byte a pixel, at least as many as `pixels` holds
[[nodiscard]] RowInk separateRow(const InkRules& rules, std::span<const uint8_t> pixels,
                                 uint8_t* black, uint8_t* red) noexcept;

/// Whether a stored row, padding included, is white throughout.
[[nodiscard]] bool isBlankRow(std::span<const uint8_t> row) noexcept;

/// The range test by itself: every bound valid and every channel inside.
[[nodiscard]] bool colourInRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept;

}  // namespace velka
