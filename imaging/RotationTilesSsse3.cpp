#include <tmmintrin.h>

#include "RotationTiles.h"

namespace velka {
namespace {

constexpr int64_t kPixelBytes = 3;

/// Four pixels, four bytes each.
__m128i loadPixels(const uint8_t* bytes) noexcept {
  const __m128i spread = _mm_setr_epi8(0, 1, 2, -1, 3, 4, 5, -1, 6, 7, 8, -1, 9, 10, 11, -1);
  const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
  return _mm_shuffle_epi8(pixels, spread);
}

/// Stores twelve bytes and not one more: what follows may be there already.
void storePixels(uint8_t* bytes, __m128i pixels) noexcept {
  const __m128i gather = _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1);
  const __m128i packed = _mm_shuffle_epi8(pixels, gather);
  _mm_storel_epi64(reinterpret_cast<__m128i*>(bytes), packed);
  const int rest = _mm_cvtsi128_si32(_mm_srli_si128(packed, 8));
  __builtin_memcpy(bytes + 8, &rest, sizeof rest);
}

void turnTile(const uint8_t* src, int64_t srcStep, uint8_t* dst, int64_t dstStep) noexcept {
  const __m128i a = loadPixels(src);
  const __m128i b = loadPixels(src + srcStep);
  const __m128i c = loadPixels(src + 2 * srcStep);
  const __m128i d = loadPixels(src + 3 * srcStep);
  const __m128i ab = _mm_unpacklo_epi32(a, b);
  const __m128i cd = _mm_unpacklo_epi32(c, d);
  const __m128i abHigh = _mm_unpackhi_epi32(a, b);
  const __m128i cdHigh = _mm_unpackhi_epi32(c, d);
  storePixels(dst, _mm_unpacklo_epi64(ab, cd));
  storePixels(dst + dstStep, _mm_unpackhi_epi64(ab, cd));
  storePixels(dst + 2 * dstStep, _mm_unpacklo_epi64(abHigh, cdHigh));
  storePixels(dst + 3 * dstStep, _mm_unpackhi_epi64(abHigh, cdHigh));
}

}  // namespace

void turnTilesSsse3(const TileTurn& turn) noexcept {
  for (int64_t column = 0; column < turn.columns; column += kTile) {
    const uint8_t* from = turn.src + column * kPixelBytes;
    uint8_t* to = turn.dst + column * turn.dstStep;
    for (int64_t row = 0; row < turn.rows; row += kTile) {
      turnTile(from + row * turn.srcStep, turn.srcStep, to + row * kPixelBytes, turn.dstStep);
    }
  }
}

}  // namespace velka
