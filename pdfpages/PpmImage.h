// Portable pixmaps as pdftoppm writes them: a magic line, a line of width, space
// and height, a maxval line, then red, green and blue bytes.
#pragma once

#include <cstdint>
#include <span>

namespace velka {

inline constexpr uint64_t kPixelBytes = 3;

struct PpmHeader {
  bool hasSize = false;
  int32_t width = 0;  ///< 0 .. INT32_MAX, larger numbers are cut to that
  int32_t height = 0;
  size_t pixels = 0;  ///< where the pixel data starts; 0 where there is none
};

/// Reads a header. Only line ends and the first space after the magic line are
/// looked for: the magic is not, the maxval is not, and a comment is misread.
[[nodiscard]] PpmHeader readPpmHeader(std::span<const uint8_t> file) noexcept;

/// Bytes of all pixels of a picture whose size is not negative.
[[nodiscard]] constexpr uint64_t pixelBytes(int32_t width, int32_t height) noexcept {
  return kPixelBytes * static_cast<uint64_t>(width) * static_cast<uint64_t>(height);
}

/// Stores pixels as rows of `stride` bytes. Rows are cut to the stride; pixels that
/// are missing are white, the bytes behind a row's pixels stay as they are. `page`
/// holds stride x height bytes.
void storePpmRows(std::span<const uint8_t> pixels, uint32_t width, uint32_t height,
                  std::span<uint8_t> page, uint64_t stride) noexcept;

}  // namespace velka
