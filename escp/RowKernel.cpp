#include "RowKernel.h"

#include "ByteLanes.h"
#include "GrayScale.h"

namespace velka {
namespace {

constexpr uint8_t kNearGrey = 9;

Lanes atLeast(Lanes value, Lanes limit) noexcept {
  return equal(most(value, limit), value);
}

Lanes atMost(Lanes value, Lanes limit) noexcept {
  return equal(least(value, limit), value);
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

class Separator {
 public:
  Separator(const RowRules& rules, uint8_t* black, uint8_t* red, RowInk& found) noexcept
      : rules_(rules), black_(black), red_(red), found_(found) {
    for (size_t i = 0; i < 4; ++i) route_[i] = allLanes(static_cast<uint8_t>(rules.route[i]));
    for (size_t i = 0; i < 3; ++i) {
      low_[i] = allLanes(rules.low[i]);
      high_[i] = allLanes(rules.high[i]);
      solid_[i] = allLanes(rules.solid[i]);
    }
    solidApplies_ = allLanes(rules.solidApplies ? 0xFF : 0);
  }

  /// The pixels of columns x to x + 15.
  void separate(const uint8_t* bytes, size_t x) noexcept {
    const Lanes every =
        loadLanes(bytes) & loadLanes(bytes + kLanes) & loadLanes(bytes + 2 * kLanes);
    if (isFull(every)) return;
    const Pixels p = byChannel(bytes);
    const Lanes ink = inkOf(p);
    if (isEmpty(ink)) return;
    const Lanes toBlack = equal(ink, allLanes(static_cast<uint8_t>(Ink::Black)));
    const Lanes toRed = equal(ink, allLanes(static_cast<uint8_t>(Ink::Red)));
    const Lanes value = valueOf(p, ink, toRed);
    if (put(black_ + x, toBlack, value)) {
      note(toBlack, x, found_.firstBlackColumn, found_.lastBlackColumn);
    }
    if (put(red_ + x, toRed, value)) {
      note(toRed, x, found_.firstRedColumn, found_.lastRedColumn);
    }
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

  /// The plane values of the pixels that have an ink; those of the others may be any.
  [[nodiscard]] Lanes valueOf(const Pixels& p, Lanes ink, Lanes toRed) const noexcept {
    Lanes solid = solidApplies_;
    for (size_t i = 0; i < 3; ++i) solid &= equal(p.at[i], solid_[i]);
    const Lanes pure = equal(p.at[0] | p.at[1] | p.at[2], Lanes{});
    const Lanes known = solid | pure | equal(ink, Lanes{});
    Lanes value{};
    if (!isFull(known)) value = graded(p, toRed);
    const Lanes black =
        select(toRed, allLanes(rules_.tones[2].black), allLanes(rules_.tones[1].black));
    return select(pure, black, value) & ~solid;
  }

  /// The greys of all pixels in their ink's tone.
  [[nodiscard]] Lanes graded(const Pixels& p, Lanes toRed) const noexcept {
    uint8_t bytes[3][kLanes];
    uint8_t values[kLanes];
    for (size_t i = 0; i < 3; ++i) storeLanes(bytes[i], p.at[i]);
    if (isFull(toRed)) {
      grade(bytes, rules_.tones[static_cast<size_t>(Ink::Red)], values);
      return loadLanes(values);
    }
    grade(bytes, rules_.tones[static_cast<size_t>(Ink::Black)], values);
    const Lanes black = loadLanes(values);
    if (isEmpty(toRed)) return black;
    grade(bytes, rules_.tones[static_cast<size_t>(Ink::Red)], values);
    return select(toRed, loadLanes(values), black);
  }

  // Not inlined: the compiler would keep the arrays in registers, at twice the work.
  [[gnu::noinline]] void grade(const uint8_t (&bytes)[3][kLanes], const RowTone& tone,
                               uint8_t* values) const noexcept {
    const uint32_t* first = tone.contributions[0];
    const uint32_t* second = tone.contributions[1];
    const uint32_t* third = tone.contributions[2];
    const uint32_t* steps = rules_.graySteps;
    constexpr unsigned kShift = GrayScale::kCellShift;
#pragma GCC unroll 4
    for (size_t i = 0; i < kLanes; ++i) {
      const uint32_t luminance = first[bytes[0][i]] + second[bytes[1][i]] + third[bytes[2][i]];
      values[i] = static_cast<uint8_t>((steps[luminance >> kShift] + luminance) >> kShift);
    }
  }

  /// Whether there was anything to put.
  static bool put(uint8_t* plane, Lanes mask, Lanes value) noexcept {
    if (isEmpty(mask)) return false;
    storeLanes(plane, select(mask, value, loadLanes(plane)));
    return true;
  }

  static void note(Lanes mask, size_t x, int64_t& first, int64_t& last) noexcept {
    uint8_t marks[kLanes];
    storeLanes(marks, mask);
    size_t begin = 0;
    size_t end = kLanes;
    while (first < 0 && marks[begin] == 0) ++begin;
    while (marks[end - 1] == 0) --end;
    if (first < 0) first = static_cast<int64_t>(x + begin);
    last = static_cast<int64_t>(x + end - 1);
  }

  const RowRules& rules_;
  uint8_t* black_;
  uint8_t* red_;
  RowInk& found_;
  Lanes route_[4]{};
  Lanes low_[3]{};
  Lanes high_[3]{};
  Lanes solid_[3]{};
  Lanes solidApplies_{};
};

}  // namespace

size_t separatePixels(const RowRules& rules, const uint8_t* pixels, size_t count, uint8_t* black,
                      uint8_t* red, RowInk& found) noexcept {
  Separator separator(rules, black, red, found);
  size_t x = 0;
  for (; x + kLanes <= count; x += kLanes) separator.separate(pixels + 3 * x, x);
  return x;
}

}  // namespace velka
