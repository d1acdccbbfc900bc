// Conversions from floating point to integers, defined for every input.
#pragma once

#include <cmath>
#include <cstdint>

namespace velka::reference {

/// Truncation towards zero into 32 bits, as the processor truncates: 80000000 in
/// hexadecimal for all that 32 bits do not hold, numbers or not.
inline int32_t truncate32(double value) {
  const double whole = std::trunc(value);
  const bool held = -2147483648.0 <= whole && whole <= 2147483647.0;
  return held ? static_cast<int32_t>(whole) : INT32_MIN;
}

/// What 32 bits keep of a sum that was made in 64.
inline int32_t wrap32(int64_t value) {
  const int64_t low = value & 0xFFFFFFFF;
  return static_cast<int32_t>(low < 0x80000000 ? low : low - 0x100000000);
}

}  // namespace velka::reference
