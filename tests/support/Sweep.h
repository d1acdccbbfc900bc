// How often a test tries what it tries.
#pragma once

#include <cstdlib>

namespace velka::testing {

/// Each test run takes `few`; with VELKA_FAULT_SWEEP set (./dev faults) it is `all`.
template <typename Count>
Count sweep(Count few, Count all) {
  return std::getenv("VELKA_FAULT_SWEEP") == nullptr ? few : all;
}

}  // namespace velka::testing
