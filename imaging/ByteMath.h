// How a number is brought into a byte.
#pragma once

#include <cstdint>

namespace velka {

/// What is left of a number that is stored in a byte.
constexpr uint8_t lowByte(int value) {
  return static_cast<uint8_t>(value & 0xFF);
}

/// The nearest value of a byte.
constexpr int clampToByte(int value) {
  return value < 0 ? 0 : (value > 255 ? 255 : value);
}

}  // namespace velka
