// How often a test tries what it tries.
#pragma once

#include <cstdlib>

namespace velka::testing {

/// Each test run takes `few`; with VELKA_FAULT_SWEEP set (./dev faults) it is `all`.
template <typename Count>
Count sweep(Count few, Count all) {
  return std::getenv("VELKA_FAULT_SWEEP") == nullptr ? few : all;
}

/// How much of the same a test takes. The address sanitizer makes it three times as slow, the
/// thread sanitizer up to twenty times, and what they look for shows in the first rounds.
template <typename Count>
constexpr Count amount([[maybe_unused]] Count all, [[maybe_unused]] Count sanitized,
                       [[maybe_unused]] Count threads) {
#if defined(__SANITIZE_THREAD__)
  return threads;
#elif defined(__SANITIZE_ADDRESS__)
  return sanitized;
#else
  return all;
#endif
}

}  // namespace velka::testing
