#include "RowKernel.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "ByteLanes.h"
#include "GrayScale.h"

namespace velka {
namespace {

static_assert(RowSteps::kPixels == kLanes);
constexpr uint8_t kNearGrey = 9;

Lanes atLeast(Lanes value, Lanes limit) noexcept {
  return equal(most(value, limit), value);
}

Lanes atMost(Lanes value, Lanes limit) noexcept {
  return equal(least(value, limit), value);
}

Lanes isInk(Lanes ink, Ink wanted) noexcept {
  return equal(ink, allLanes(static_cast<uint8_t>(wanted)));
}

/// Sixteen pixels, a vector for each of their bytes.
struct Pixels {
  Lanes at[3];
};

/// Byte i of 48 belongs at 16 i mod 47, which is where it is after four perfect shuffles
/// of the 48 bytes.
Pixels byChannel(const uint8_t* bytes) noexcept {
  Pixels p = {{loadLanes(bytes), loadLanes(bytes + kLanes), loadLanes(bytes + 2 * kLanes)}};
  for (int shuffle = 0; shuffle < 4; ++shuffle) {
    const Lanes between = middle(p.at[1], p.at[2]);
    p = {{zipFirst(p.at[0], between), zipLast(p.at[0], middle(p.at[1], p.at[2])),
          zipLast(middle(p.at[0], p.at[1]), p.at[2])}};
  }
  return p;
}

class Sorter {
 public:
  Sorter(const RowRules& rules, RowSteps& steps) noexcept : steps_(steps) {
    for (size_t i = 0; i < 4; ++i) route_[i] = allLanes(static_cast<uint8_t>(rules.route[i]));
    for (size_t i = 0; i < 3; ++i) {
      low_[i] = allLanes(rules.low[i]);
      high_[i] = allLanes(rules.high[i]);
      solid_[i] = allLanes(rules.solid[i]);
      black_[i] = allLanes(rules.black[i]);
    }
    solidApplies_ = allLanes(rules.solidApplies ? 0xFF : 0);
  }

  /// The pixels of columns x to x + 15, as step `step` unless they have no ink. Returns
  /// the next one's number.
  size_t sort(const uint8_t* bytes, size_t x, size_t step) noexcept {
    const Lanes every =
        loadLanes(bytes) & loadLanes(bytes + kLanes) & loadLanes(bytes + 2 * kLanes);
    if (isFull(every)) return step;
    const Pixels p = byChannel(bytes);
    const Lanes ink = inkOf(p);
    const size_t at = step * kLanes;
    storeLanes(steps_.inks + at, ink);
    if (!isFull(settle(p, ink, at))) {
      const Lanes red = isInk(ink, Ink::Red) & 1;
      for (size_t i = 0; i < 3; ++i) storePairs(steps_.tones[i] + at, p.at[i], red);
    }
    steps_.columns[step] = x;
    return step + (isEmpty(ink) ? 0 : 1);
  }

 private:
  [[nodiscard]] Lanes inkOf(const Pixels& p) const noexcept {
    const Lanes lowest = least(least(p.at[0], p.at[1]), p.at[2]);
    const Lanes highest = most(most(p.at[0], p.at[1]), p.at[2]);
    const Lanes nearGrey = atMost(highest - lowest, allLanes(kNearGrey));
    Lanes inRange = allLanes(0xFF);
    for (size_t i = 0; i < 3; ++i) {
      inRange &= atLeast(p.at[i], low_[i]) & atMost(p.at[i], high_[i]);
    }
    // Deliberate: the third byte needs 250 for a tinted white, the others 200.
    const Lanes tinted =
        atLeast(least(p.at[0], p.at[1]), allLanes(200)) & atLeast(p.at[2], allLanes(250));
    const Lanes white = atLeast(lowest, allLanes(240)) | tinted;
    const Lanes ink = select(nearGrey, select(inRange, route_[3], route_[2]),
                             select(inRange, route_[1], route_[0]));
    return ink & ~white;
  }

  /// Full ink for the solid colour, its own value for pure black. Returns which pixels
  /// need no grey.
  Lanes settle(const Pixels& p, Lanes ink, size_t at) noexcept {
    Lanes solid = solidApplies_;
    for (size_t i = 0; i < 3; ++i) solid &= equal(p.at[i], solid_[i]);
    const Lanes pure = equal(p.at[0] | p.at[1] | p.at[2], Lanes{});
    const Lanes black = select(isInk(ink, Ink::Red), black_[2], black_[1]);
    const Lanes settled = solid | pure | isInk(ink, Ink::None);
    storeLanes(steps_.settled + at, settled);
    storeLanes(steps_.values + at, black & pure & ~solid);
    return settled;
  }

  /// Sixteen numbers of two bytes: `low` + 256 `high`.
  static void storePairs(uint16_t* numbers, Lanes low, Lanes high) noexcept {
    constexpr bool kLowFirst = std::endian::native == std::endian::little;
    const Lanes pairs[2] = {kLowFirst ? zipFirst(low, high) : zipFirst(high, low),
                            kLowFirst ? zipLast(low, high) : zipLast(high, low)};
    std::memcpy(numbers, pairs, sizeof pairs);
  }

  RowSteps& steps_;
  Lanes route_[4]{};
  Lanes low_[3]{};
  Lanes high_[3]{};
  Lanes solid_[3]{};
  Lanes black_[3]{};
  Lanes solidApplies_{};
};

/// The greys of all steps that need any. Not inlined: the compiler would keep numbers in
/// vectors and take them out again one by one.
[[gnu::noinline]] void grade(const RowRules& rules, RowSteps& steps) noexcept {
  const uint32_t* const first = rules.contributions[0];
  const uint32_t* const second = rules.contributions[1];
  const uint32_t* const third = rules.contributions[2];
  const uint32_t* const cells = rules.graySteps;
  constexpr unsigned kShift = GrayScale::kCellShift;
  for (size_t at = 0; at < steps.count * kLanes; at += kLanes) {
    if (isFull(loadLanes(steps.settled + at))) continue;
#pragma GCC unroll 16
    for (size_t i = at; i < at + kLanes; ++i) {
      const uint32_t luminance =
          first[steps.tones[0][i]] + second[steps.tones[1][i]] + third[steps.tones[2][i]];
      steps.greys[i] = static_cast<uint8_t>((cells[luminance >> kShift] + luminance) >> kShift);
    }
  }
}

/// An ink's plane and the columns that were put into it.
class PlaneRow {
 public:
  PlaneRow(uint8_t* row, int64_t& first, int64_t& last) noexcept
      : row_(row), first_(first), last_(last) {}

  void put(size_t x, Lanes mask, Lanes value) noexcept {
    storeLanes(row_ + x, select(mask, value, loadLanes(row_ + x)));
    if (isEmpty(mask)) return;
    if (first_ < 0) first_ = static_cast<int64_t>(x + firstIn(mask));
    lastStep_ = x;
    lastMask_ = mask;
  }

  void finish() noexcept {
    if (!isEmpty(lastMask_)) last_ = static_cast<int64_t>(lastStep_ + lastIn(lastMask_));
  }

 private:
  uint8_t* row_;
  int64_t& first_;
  int64_t& last_;
  size_t lastStep_ = 0;
  Lanes lastMask_{};
};

void putSteps(const RowSteps& steps, PlaneRow& black, PlaneRow& red) noexcept {
  for (size_t step = 0; step < steps.count; ++step) {
    const size_t at = step * kLanes;
    const Lanes ink = loadLanes(steps.inks + at);
    const Lanes value = select(loadLanes(steps.settled + at), loadLanes(steps.values + at),
                               loadLanes(steps.greys + at));
    black.put(steps.columns[step], isInk(ink, Ink::Black), value);
    red.put(steps.columns[step], isInk(ink, Ink::Red), value);
  }
}

}  // namespace

void sortPixels(const RowRules& rules, const uint8_t* pixels, size_t x, size_t count,
                RowSteps& steps) noexcept {
  Sorter sorter(rules, steps);
  size_t sorted = 0;
  for (const size_t end = x + count * kLanes; x < end; x += kLanes)
    sorted = sorter.sort(pixels + x * kRgbBytes, x, sorted);
  steps.count = sorted;
}

size_t separatePixels(SortPixels& sort, const RowRules& rules, const uint8_t* pixels, size_t count,
                      uint8_t* black, uint8_t* red, RowInk& found) noexcept {
  RowSteps steps;
  PlaneRow blackRow(black, found.firstBlackColumn, found.lastBlackColumn);
  PlaneRow redRow(red, found.firstRedColumn, found.lastRedColumn);
  const size_t end = count / kLanes;
  for (size_t step = 0; step < end; step += RowSteps::kMost) {
    sort(rules, pixels, step * kLanes, std::min(RowSteps::kMost, end - step), steps);
    grade(rules, steps);
    putSteps(steps, blackRow, redRow);
  }
  blackRow.finish();
  redRow.finish();
  return end * kLanes;
}

}  // namespace velka
