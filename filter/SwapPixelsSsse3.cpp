#include <tmmintrin.h>

#include "SwapPixels.h"

namespace velka {

size_t swapPixelsSsse3(const uint8_t* from, uint8_t* to, size_t bytes) noexcept {
  // Five pixels at a time; the sixteenth byte is written again by the next five.
  constexpr size_t kVector = 16;
  constexpr size_t kStep = 15;
  const __m128i order = _mm_setr_epi8(2, 1, 0, 5, 4, 3, 8, 7, 6, 11, 10, 9, 14, 13, 12, 15);
  size_t at = 0;
  for (; at + kVector <= bytes; at += kStep) {
    const __m128i pixels = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + at));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to + at), _mm_shuffle_epi8(pixels, order));
  }
  return at;
}

}  // namespace velka
