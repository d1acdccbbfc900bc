// Letters made of square cells, so that their edges lie on rows and columns of dots.
#pragma once

#include <array>
#include <cstdint>

namespace velka::calibration {

inline constexpr int kGlyphColumns = 5;
inline constexpr int kGlyphRows = 9;  ///< seven above the line that letters stand on

/// A letter's rows from the top, in each the leftmost cell at bit 4.
using Glyph = std::array<uint8_t, kGlyphRows>;

/// Of those characters that the pages of ours use; null for any other.
[[nodiscard]] const Glyph* glyphOf(char character);

}  // namespace velka::calibration
