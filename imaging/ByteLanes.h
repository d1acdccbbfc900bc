// Sixteen bytes worked on at once, in vectors of the compiler's own, which it maps to
// whatever the processor has.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#if defined(VELKA_SIMD) && defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velka {

constexpr size_t kLanes = 16;

using Lanes = uint8_t __attribute__((vector_size(kLanes)));

inline Lanes loadLanes(const uint8_t* bytes) noexcept {
  Lanes value;
  std::memcpy(&value, bytes, sizeof value);
  return value;
}

inline void storeLanes(uint8_t* bytes, Lanes value) noexcept {
  std::memcpy(bytes, &value, sizeof value);
}

inline Lanes allLanes(uint8_t value) noexcept {
  return Lanes{} + value;
}

/// 255 where the bytes are equal, else 0.
inline Lanes equal(Lanes a, Lanes b) noexcept {
  return reinterpret_cast<Lanes>(a == b);
}

inline Lanes least(Lanes a, Lanes b) noexcept {
  return a < b ? a : b;
}

inline Lanes most(Lanes a, Lanes b) noexcept {
  return a > b ? a : b;
}

/// `a` where `mask` is 255, `b` where it is 0.
inline Lanes select(Lanes mask, Lanes a, Lanes b) noexcept {
  return (a & mask) | (b & ~mask);
}

/// a + b, at most 255; a - b, at least 0. The compiler does not find the instructions
/// that x86-64 has for them.
#if defined(VELKA_SIMD) && defined(__SSE2__)
inline Lanes addUpTo255(Lanes a, Lanes b) noexcept {
  return reinterpret_cast<Lanes>(
      _mm_adds_epu8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
}

inline Lanes subtractDownTo0(Lanes a, Lanes b) noexcept {
  return reinterpret_cast<Lanes>(
      _mm_subs_epu8(reinterpret_cast<__m128i>(a), reinterpret_cast<__m128i>(b)));
}
#else
inline Lanes addUpTo255(Lanes a, Lanes b) noexcept {
  return a + least(b, ~a);
}

inline Lanes subtractDownTo0(Lanes a, Lanes b) noexcept {
  return a - least(a, b);
}
#endif

/// Whether all bytes are 255.
inline bool isFull(Lanes mask) noexcept {
#if defined(VELKA_SIMD) && defined(__SSE2__)
  return _mm_movemask_epi8(reinterpret_cast<__m128i>(equal(mask, allLanes(255)))) == 0xFFFF;
#else
  uint64_t halves[2];
  std::memcpy(halves, &mask, sizeof halves);
  return (halves[0] & halves[1]) == ~uint64_t{0};
#endif
}

/// Whether all bytes are 0.
inline bool isEmpty(Lanes mask) noexcept {
  return isFull(equal(mask, Lanes{}));
}

/// The first or last byte of a mask, of 0 and 255 and not empty, that is 255.
inline size_t firstIn(Lanes mask) noexcept {
  uint64_t halves[2];
  std::memcpy(halves, &mask, sizeof halves);
  const size_t half = halves[0] != 0 ? 0 : 1;
  const int zeros = std::endian::native == std::endian::little ? std::countr_zero(halves[half])
                                                               : std::countl_zero(halves[half]);
  return 8 * half + static_cast<size_t>(zeros) / 8;
}

inline size_t lastIn(Lanes mask) noexcept {
  uint64_t halves[2];
  std::memcpy(halves, &mask, sizeof halves);
  const size_t half = halves[1] != 0 ? 1 : 0;
  const int zeros = std::endian::native == std::endian::little ? std::countl_zero(halves[half])
                                                               : std::countr_zero(halves[half]);
  return 8 * half + 7 - static_cast<size_t>(zeros) / 8;
}

/// The last eight bytes of `a`, then the first eight of `b`.
inline Lanes middle(Lanes a, Lanes b) noexcept {
  return __builtin_shufflevector(a, b, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22,
                                 23);
}

/// The first eight bytes of `a` and `b` in turn.
inline Lanes zipFirst(Lanes a, Lanes b) noexcept {
  return __builtin_shufflevector(a, b, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23);
}

/// The last eight bytes of `a` and `b` in turn.
inline Lanes zipLast(Lanes a, Lanes b) noexcept {
  return __builtin_shufflevector(a, b, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15,
                                 31);
}

}  // namespace velka
