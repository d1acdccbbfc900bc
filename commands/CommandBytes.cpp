#include "CommandBytes.h"

#include <algorithm>
#include <limits>

#include "CheckedMath.h"

namespace velka {
namespace {

constexpr uint32_t kLongestYMove = 32767;   // what one ESC ( v carries
constexpr int64_t kLongestAdvance = 255;    // what one ESC J carries
constexpr int64_t kMostAdvances = 1 << 24;  // more than any paper takes; bounds the buffer

constexpr uint8_t lowByte(uint32_t value) noexcept {
  return static_cast<uint8_t>(value);
}
constexpr uint8_t highByte(uint32_t value) noexcept {
  return static_cast<uint8_t>(value >> 8U);
}

uint32_t distanceIn360ths(int16_t ydpi, int64_t rows) noexcept {
  constexpr uint64_t kMost = std::numeric_limits<int32_t>::max();
  if (ydpi <= 0) return 0;
  const uint64_t magnitude =
      rows < 0 ? 0 - static_cast<uint64_t>(rows) : static_cast<uint64_t>(rows);
  const uint64_t units = checkedMul(magnitude, 360).value_or(std::numeric_limits<uint64_t>::max());
  return static_cast<uint32_t>(std::min(units / static_cast<uint64_t>(ydpi), kMost));
}

// Parameter of GS 04 T for a page at place r of a cycle whose first `run` pages
// get one value and whose rest gets the other. A place that 16 bits turn negative
// can lie outside both.
uint8_t cycleParameter(int16_t r, int16_t run, uint8_t inRun, uint8_t otherwise) noexcept {
  if (r == 0 || r > run) return otherwise;
  return r > 0 ? inRun : 0;
}

}  // namespace

std::array<uint8_t, 7> startDocument(int32_t lines) noexcept {
  return {kEsc, '@', kEsc, '2', kEsc, 'C', lowByte(static_cast<uint32_t>(lines))};
}

std::array<uint8_t, 3> pageLength(int32_t lines) noexcept {
  return {kEsc, 'C', lowByte(static_cast<uint32_t>(lines))};
}

int32_t formLines(const _DEVOBJ& devobj) noexcept {
  const _OEMPDEV& pdev = *devobj.pOemPDEV;
  const bool portrait = devobj.pDevMode->dmOrientation == 1;
  const tagSIZE page = pdev.devGdiInfo.szlPhysSize;
  return portrait ? pageLengthInLines(page.cy, pdev.devModeOut.dmYResolution)
                  : pageLengthInLines(page.cx, pdev.devModeOut.dmPrintQuality);
}

int32_t pageLengthInLines(int32_t extent, int16_t dpi) noexcept {
  return truncateToInt32(static_cast<double>(extent) / dpi * 6.0);
}

std::array<uint8_t, 2> endDocument() noexcept {
  return {kEsc, '@'};
}

std::array<uint8_t, 6> setUnit(int unit) noexcept {
  return {kEsc, '(', 'U', 1, 0, lowByte(static_cast<uint32_t>(unit))};
}

std::array<uint8_t, 4> horizontalMove(MoveKind kind, float divisor, int x) noexcept {
  const float position = static_cast<float>(x) / divisor;
  const auto v = static_cast<uint32_t>(truncateToInt32(position));
  return {kEsc, static_cast<uint8_t>(kind == MoveKind::Absolute ? '$' : '\\'), lowByte(v),
          highByte(v)};
}

RelativeYMove::RelativeYMove(int16_t ydpi, int64_t rows) noexcept
    : distance_(distanceIn360ths(ydpi, rows)),
      commands_((distance_ + kLongestYMove - 1) / kLongestYMove),
      forward_(rows >= 0) {}

void RelativeYMove::write(std::span<uint8_t> out) const noexcept {
  if (commands_ == 0 || out.size() < size()) return;
  out[0] = kCarriageReturn;
  uint32_t remaining = distance_;
  for (uint32_t i = 0; i < commands_; ++i) {
    const uint32_t step = std::min(remaining, kLongestYMove);
    // Deliberate: a backward move sends the whole remaining distance, unclamped.
    const uint32_t value = forward_ ? step : 0U - remaining;
    const std::array<uint8_t, 7> command = {kEsc, '(', 'v', 2, 0, lowByte(value), highByte(value)};
    // Deliberate: 3 bytes on although a command has 7, so that of several
    // commands only the last stays whole.
    std::copy(command.begin(), command.end(), out.begin() + 1 + ptrdiff_t{3} * i);
    remaining -= step;
  }
}

AdvanceYMove::AdvanceYMove(int16_t ydpi, int rows) noexcept
    : distance_(ydpi == 0 ? 0 : int64_t{rows} * 180 / ydpi),
      commands_(static_cast<uint32_t>(std::clamp<int64_t>(
          (distance_ + kLongestAdvance - 1) / kLongestAdvance, 0, kMostAdvances))) {}

void AdvanceYMove::write(std::span<uint8_t> out) const noexcept {
  if (out.size() < size()) return;
  out[0] = kCarriageReturn;
  int64_t remaining = distance_;
  for (uint32_t i = 0; i < commands_; ++i) {
    const std::array<uint8_t, 3> command = {
        kEsc, 'J', lowByte(static_cast<uint32_t>(std::min(remaining, kLongestAdvance)))};
    std::copy(command.begin(), command.end(), out.begin() + 1 + ptrdiff_t{3} * i);
    if (remaining > kLongestAdvance) remaining -= kLongestAdvance;
  }
}

std::optional<std::array<uint8_t, 4>> ejectMode(const tagOEMCFG& options, uint32_t page) noexcept {
  const auto command = [](uint8_t p) { return std::array<uint8_t, 4>{kGs, 0x04, 'T', p}; };
  switch (options.sEjectMode) {
    case 0:
      return command('0');
    case 1:
      return command('1');
    case 2:
    case 3: {
      const auto cycle =
          static_cast<uint32_t>(options.sEjectFirstCount + options.sEjectSecondCount);
      if (cycle == 0) return std::nullopt;
      const auto r = static_cast<int16_t>(page % cycle);
      return options.sEjectMode == 2
                 ? command(cycleParameter(r, options.sEjectFirstCount, '0', '1'))
                 : command(cycleParameter(r, options.sEjectSecondCount, '1', '0'));
    }
    case 4:
      return std::nullopt;
    default:
      return command(0);
  }
}

std::array<uint8_t, 3> selectColour(int colour) noexcept {
  return {kEsc, 'r', lowByte(static_cast<uint32_t>(colour))};
}

std::array<uint8_t, kBlockHeaderBytes> blockHeader(int colour, uint16_t mode,
                                                   uint32_t columns) noexcept {
  return {kEsc,
          'r',
          lowByte(static_cast<uint32_t>(colour)),
          kEsc,
          '*',
          lowByte(mode),
          lowByte(columns),
          highByte(columns)};
}

}  // namespace velka
