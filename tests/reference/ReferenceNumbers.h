// Conversions from floating point to integers, defined for every input.
#pragma once

#include <cstdint>

namespace velka::reference {

/// Truncation towards zero into 32 bits: beyond the range the nearest end of
/// it, 0 for a value that is no number.
inline int32_t truncate32(double value) {
  if (value != value) {
    return 0;
  }
  if (value >= 2147483647.0) {
    return INT32_MAX;
  }
  if (value <= -2147483648.0) {
    return INT32_MIN;
  }
  return static_cast<int32_t>(value);
}

/// The same end stops for a sum that was made in 64 bits.
inline int32_t clamp32(int64_t value) {
  if (value > INT32_MAX) {
    return INT32_MAX;
  }
  if (value < INT32_MIN) {
    return INT32_MIN;
  }
  return static_cast<int32_t>(value);
}

}  // namespace velka::reference
