// Halftoning of one ink plane, pixel by pixel: fixed threshold, four ordered
// screens, and error diffusion after Floyd and Steinberg (1976).
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace velka::reference {

/// `plane` holds rows x stride bytes, 255 = no ink. Returns as many bytes, 0 a
/// dot and 255 none; bytes of a row that lie past the columns treated are 255.
/// Mode 1: threshold; 3, 4, 5, 6: screens of 6, 8, 12, 16; any other: error
/// diffusion, which leaves the diffused values in `plane`.
/// `dotFactor` is in tenths and, as `threshold`, only for error diffusion.
std::vector<uint8_t> dither(int mode, std::vector<uint8_t>& plane, size_t rows, size_t width,
                            size_t stride, int16_t dotFactor, int16_t threshold);

}  // namespace velka::reference
