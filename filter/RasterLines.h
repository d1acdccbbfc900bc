// Raster lines to bitmap rows.
#pragma once

#include <cstdint>
#include <span>

namespace velka {

/// Stores a raster line of red, green, blue bytes as a bitmap row of blue, green,
/// red bytes. The first `pixels` three-byte pixels are swapped, what follows them
/// is copied as it is; what of the row the line does not reach becomes white.
void storeLine(std::span<const uint8_t> line, std::span<uint8_t> row, uint32_t pixels) noexcept;

}  // namespace velka
