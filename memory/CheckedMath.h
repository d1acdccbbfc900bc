// Sizes and conversions that must stay defined for any input: a page header may
// hold any 32-bit value, an option any number.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>

namespace velka {

/// a x b, or nothing where 64 bits do not hold it.
[[nodiscard]] constexpr std::optional<uint64_t> checkedMul(uint64_t a, uint64_t b) noexcept {
  uint64_t product = 0;
  if (__builtin_mul_overflow(a, b, &product)) return std::nullopt;
  return product;
}

/// a x b, or nothing where 32 bits do not hold it: the size of a buffer whose
/// length is kept in a 32-bit field.
[[nodiscard]] constexpr std::optional<uint32_t> checkedMul32(uint64_t a, uint64_t b) noexcept {
  const auto product = checkedMul(a, b);
  if (!product || *product > std::numeric_limits<uint32_t>::max()) return std::nullopt;
  return static_cast<uint32_t>(*product);
}

/// Bytes of a bitmap row of `width` pixels, padded to a multiple of four. Any
/// 32-bit width with any 32-bit pixel depth fits.
[[nodiscard]] constexpr uint64_t paddedRowBytes(uint32_t width, uint32_t bitsPerPixel) noexcept {
  return (static_cast<uint64_t>(width) * bitsPerPixel + 31) / 32 * 4;
}
static_assert(paddedRowBytes(5, 24) == 16);
static_assert(paddedRowBytes(0, 24) == 0);

/// Truncation towards zero. What fits no integer, not-a-number too, is the lowest one:
/// x86-64's own instruction (cvttsd2si) gives that, so printers in the field know no
/// other outcome. Every floating-point number of a page becomes an integer here.
[[nodiscard]] constexpr int32_t truncateToInt32(double value) noexcept {
  constexpr int32_t kLowest = std::numeric_limits<int32_t>::min();
  const bool fits = value > kLowest - 1.0 && value < std::numeric_limits<int32_t>::max() + 1.0;
  return fits ? static_cast<int32_t>(value) : kLowest;
}
static_assert(truncateToInt32(-2.9) == -2 && truncateToInt32(1e10) == INT32_MIN);

/// a + b and -a with their low 32 bits, as sums of what was truncated need it.
[[nodiscard]] constexpr int32_t wrappingAdd(int32_t a, int32_t b) noexcept {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
[[nodiscard]] constexpr int32_t wrappingNegate(int32_t a) noexcept {
  return static_cast<int32_t>(0U - static_cast<uint32_t>(a));
}

/// a + b, saturated to +-INT32_MAX.
[[nodiscard]] constexpr int32_t saturatingAdd(int32_t a, int32_t b) noexcept {
  constexpr int64_t kMost = std::numeric_limits<int32_t>::max();
  const int64_t sum = static_cast<int64_t>(a) + b;
  if (sum > kMost) return static_cast<int32_t>(kMost);
  if (sum < -kMost) return static_cast<int32_t>(-kMost);
  return static_cast<int32_t>(sum);
}

/// The low 32 bits of a value as a signed number: how a wide or unsigned value
/// is kept in a signed 32-bit field.
[[nodiscard]] constexpr int32_t low32(uint64_t value) noexcept {
  return static_cast<int32_t>(static_cast<uint32_t>(value));
}

}  // namespace velka
