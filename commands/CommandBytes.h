// The byte sequences of the printer's command set as pure functions: values in,
// bytes out. Both encoders build their streams from these.
//
// Notation: ESC = 1B, GS = 1D, CR = 0D, FF = 0C; 16-bit values go out low byte
// first.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "DeviceRecords.h"

namespace velka {

inline constexpr uint8_t kEsc = 0x1B;
inline constexpr uint8_t kGs = 0x1D;
inline constexpr uint8_t kCarriageReturn = 0x0D;
inline constexpr uint8_t kFormFeed = 0x0C;

/// Units of the two kinds of move, in 1/3600 inch.
inline constexpr int kVerticalUnit = 10;    // 1/360 inch
inline constexpr int kHorizontalUnit = 60;  // 1/60 inch

/// ESC @, ESC 2, ESC C n: reset, 1/6 inch lines, page length in lines. Lengths
/// of 256 lines and more wrap deliberately.
[[nodiscard]] std::array<uint8_t, 7> startDocument(int32_t lines) noexcept;

/// ESC C n alone, for a page whose form is not as long as the one before.
[[nodiscard]] std::array<uint8_t, 3> pageLength(int32_t lines) noexcept;

/// The lines of a page's form, that of the device record, which must be complete.
[[nodiscard]] int32_t formLines(const _DEVOBJ& devobj) noexcept;

/// The page length in lines of 1/6 inch: extent / dpi x 6, truncated.
[[nodiscard]] int32_t pageLengthInLines(int32_t extent, int16_t dpi) noexcept;

/// ESC @.
[[nodiscard]] std::array<uint8_t, 2> endDocument() noexcept;

/// ESC ( U: the unit of the moves that follow becomes unit/3600 inch.
[[nodiscard]] std::array<uint8_t, 6> setUnit(int unit) noexcept;

enum class MoveKind : uint8_t { Absolute, Relative };

/// ESC $ (absolute) or ESC \ (relative) to x / divisor, the quotient taken in
/// single precision and truncated.
[[nodiscard]] std::array<uint8_t, 4> horizontalMove(MoveKind kind, float divisor, int x) noexcept;

/// A relative paper move: CR and as many ESC ( v as the distance needs.
class RelativeYMove {
 public:
  /// `rows` at `ydpi` rows an inch; negative is backward. A resolution of zero
  /// or less moves nothing; distances beyond 32 bits saturate.
  RelativeYMove(int16_t ydpi, int64_t rows) noexcept;

  /// Bytes to reserve: one more than the commands need even for no move at all.
  [[nodiscard]] size_t capacity() const noexcept { return size_t{7} * commands_ + 1; }
  /// Bytes that are sent: nothing for less than one unit.
  [[nodiscard]] size_t size() const noexcept { return commands_ == 0 ? 0 : capacity(); }
  /// Writes size() bytes to `out`, which holds zeros.
  void write(std::span<uint8_t> out) const noexcept;

 private:
  uint32_t distance_;  // 1/360 inch
  uint32_t commands_;
  bool forward_;
};

/// The older forward move: CR and ESC J n in steps of at most 255/180 inch.
class AdvanceYMove {
 public:
  AdvanceYMove(int16_t ydpi, int rows) noexcept;
  [[nodiscard]] size_t size() const noexcept { return size_t{3} * commands_ + 1; }
  /// Writes size() bytes.
  void write(std::span<uint8_t> out) const noexcept;

 private:
  int64_t distance_;  // 1/180 inch
  uint32_t commands_;
};

/// GS 04 T p, or nothing where the eject rule asks for no command.
/// @param page number of the page, from 1
[[nodiscard]] std::optional<std::array<uint8_t, 4>> ejectMode(const tagOEMCFG& options,
                                                              uint32_t page) noexcept;

/// ESC r c: the ink of the blocks that follow; `colour` is 0 black, 1 red, 2 both.
[[nodiscard]] std::array<uint8_t, 3> selectColour(int colour) noexcept;

/// ESC r c, ESC * m n: the header of a raster block. `colour` is 0 black, 1 red;
/// `columns` goes out with its low 16 bits.
inline constexpr size_t kBlockHeaderBytes = 8;
[[nodiscard]] std::array<uint8_t, kBlockHeaderBytes> blockHeader(int colour, uint16_t mode,
                                                                 uint32_t columns) noexcept;

}  // namespace velka
