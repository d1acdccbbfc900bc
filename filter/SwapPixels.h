// Red and blue exchanged in many pixels at a time.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velka {

/// Stores the first of `bytes` bytes of three-byte pixels with the first and third byte
/// of each pixel exchanged. Returns how many it stored, whole pixels, at most `bytes`;
/// the rest is left to the caller. The buffers do not overlap.
size_t swapPixelsSsse3(const uint8_t* from, uint8_t* to, size_t bytes) noexcept;

}  // namespace velka
