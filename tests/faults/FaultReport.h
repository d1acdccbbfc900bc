// What the fault shim tells its test: a file that both have mapped, so that it is whole
// whatever way the program ends.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace velka::testing {

/// Room for the functions that can be failed.
inline constexpr size_t kMostFunctions = 48;

struct FaultReport {
  /// Calls of each function since main() began, in the order of `Function`.
  std::array<uint64_t, kMostFunctions> calls = {};
  uint64_t failed = 0;    ///< those that were made to fail, or were cut short
  uint64_t lastSize = 0;  ///< bytes that the last of them asked for
  /// The file of the program or library that made the last of them.
  std::array<char, 128> caller = {};
  int32_t signal = 0;         ///< the fault that ended the program, 0 for none
  uint64_t faultAddress = 0;  ///< what it touched
  /// The file that the faulting instruction lies in.
  std::array<char, 128> faultIn = {};
};

}  // namespace velka::testing
