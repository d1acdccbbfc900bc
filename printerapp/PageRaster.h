// Pages as the filter takes them: 24 bits a pixel, red, green and blue beside each other.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <optional>
#include <span>

namespace velka::app {

/// The filter's header for a page of this header, which may be of any kind that toRgb()
/// understands; none for the others, and for a page without pixels.
[[nodiscard]] std::optional<cups_page_header2_t> filterHeader(const cups_page_header2_t& page,
                                                              unsigned copies) noexcept;

/// Turns a line of such a page into the filter's: sRGB and RGB of 8 bits as they are, greys
/// and black of 8 bits and black of 1 bit as greys. Pixels that the line lacks stay white.
void toRgb(const cups_page_header2_t& page, std::span<const uint8_t> line,
           std::span<uint8_t> rgb) noexcept;

}  // namespace velka::app
