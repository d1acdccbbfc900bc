// How the two inks' dots sit in this model's head, and what follows from it.
#pragma once

#include <cstdint>

namespace velka {

/// The dots of one ink: `count` slots from `firstSlot` on, which print as the bits
/// from `firstBit` on of a column's 24 (bit 0 is the most significant of byte 0).
struct NozzleGroup {
  int firstSlot;
  int count;
  int firstBit;

  /// From the band's base to the first row that the group prints.
  [[nodiscard]] constexpr int64_t offset(int passes) const noexcept {
    return int64_t{firstSlot} * passes;
  }
  /// From the band's base to the first row past those that the group prints.
  [[nodiscard]] constexpr int64_t beyond(int passes) const noexcept {
    return int64_t{firstSlot + count} * passes;
  }
};

/// Slot i of a pass stands `passes` x i rows below the pass's first row; the slots
/// between the groups print nothing.
struct HeadLayout {
  NozzleGroup black;
  NozzleGroup red;
  bool skipsCoveredBlack;  ///< later bands leave out black that the last one printed
  bool clampsRuns;         ///< a widened run ends at the page's last column
};

inline constexpr int kHeadSlots = 34;

/// The paper passes black first.
inline constexpr HeadLayout kFrontFeedHead = {{0, 18, 0}, {28, 6, 18}, true, false};
/// The paper runs the other way and passes red first. Deliberate: black rows that
/// red makes the bands overlap in are struck again.
inline constexpr HeadLayout kBackFeedHead = {{16, 18, 6}, {0, 6, 0}, false, true};

}  // namespace velka
