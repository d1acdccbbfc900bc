// Which bit-image mode the printer takes at a resolution.
#pragma once

#include <cstdint>
#include <optional>

namespace velka {

/// A bit-image mode: what ESC * is given, and how many bytes a column has.
struct BitImageMode {
  uint16_t bytesPerColumn;  ///< 0: blocks carry no data
  uint16_t mode;
  friend bool operator==(const BitImageMode&, const BitImageMode&) = default;
};

/// The mode of the standard model's head with `headPins` dots at a pair of
/// resolutions in dots per inch, or nothing where the head cannot print it.
[[nodiscard]] std::optional<BitImageMode> standardBitImageMode(int16_t headPins, int16_t ydpi,
                                                               int16_t xdpi) noexcept;

/// The mode of a 24-dot column at a pair of resolutions, or nothing where it is
/// not supported. A vertical resolution that the table does not know at all
/// gives mode 0 without data.
[[nodiscard]] std::optional<BitImageMode> columnBitImageMode(int ydpi, int xdpi) noexcept;

}  // namespace velka
