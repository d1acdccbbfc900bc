// What others do, waited for.
#pragma once

#include <chrono>
#include <thread>

namespace velka::testing {

/// Whether a condition comes true; the bound only ends a failing test.
template <class Condition>
bool eventually(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(3);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

}  // namespace velka::testing
