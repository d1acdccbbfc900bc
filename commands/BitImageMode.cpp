#include "BitImageMode.h"

#include <algorithm>
#include <array>

namespace velka {
namespace {

struct ModeRow {
  int ydpi;
  int xdpi;
  BitImageMode mode;
};

constexpr std::array<ModeRow, 10> kColumnModes = {{
    {180, 60, {3, 0x20}},
    {180, 90, {3, 0x26}},
    {180, 120, {3, 0x21}},
    {180, 180, {3, 0x27}},
    {180, 360, {3, 0x28}},
    {360, 360, {3, 0x28}},
    {60, 60, {1, 0x00}},
    {60, 80, {1, 0x04}},
    {60, 90, {1, 0x06}},
    {60, 120, {1, 0x01}},
}};

constexpr BitImageMode kNoData = {0, 0};

constexpr bool knownVertical(int ydpi) noexcept {
  return ydpi == 60 || ydpi == 180 || ydpi == 360;
}

// The 72-dot head has a mode of its own at 180 dpi across.
std::optional<BitImageMode> tallHeadMode(int ydpi) noexcept {
  if (ydpi == 180) return BitImageMode{9, 0x29};
  if (knownVertical(ydpi)) return std::nullopt;
  return kNoData;
}

}  // namespace

std::optional<BitImageMode> columnBitImageMode(int ydpi, int xdpi) noexcept {
  const auto* row = std::ranges::find_if(
      kColumnModes, [=](const ModeRow& r) { return r.ydpi == ydpi && r.xdpi == xdpi; });
  if (row != kColumnModes.end()) return row->mode;
  if (knownVertical(ydpi)) return std::nullopt;
  return kNoData;
}

std::optional<BitImageMode> standardBitImageMode(int16_t headPins, int16_t ydpi,
                                                 int16_t xdpi) noexcept {
  if (headPins == 72 && xdpi == 180) return tallHeadMode(ydpi);
  if (headPins == 24 || headPins == 72) return columnBitImageMode(ydpi, xdpi);
  return kNoData;
}

}  // namespace velka
