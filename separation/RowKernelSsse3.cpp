#include <tmmintrin.h>

#include "RowKernel.h"

namespace velka {
namespace {

constexpr size_t kLanes = RowSteps::kPixels;
constexpr char kNearGrey = 9;

__m128i load(const void* bytes) noexcept {
  return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

void store(void* bytes, __m128i value) noexcept {
  _mm_storeu_si128(static_cast<__m128i*>(bytes), value);
}

__m128i all(uint8_t value) noexcept {
  return _mm_set1_epi8(static_cast<char>(value));
}

__m128i atLeast(__m128i value, __m128i limit) noexcept {
  return _mm_cmpeq_epi8(_mm_max_epu8(value, limit), value);
}

__m128i atMost(__m128i value, __m128i limit) noexcept {
  return _mm_cmpeq_epi8(_mm_min_epu8(value, limit), value);
}

bool isFull(__m128i mask) noexcept {
  return _mm_movemask_epi8(_mm_cmpeq_epi8(mask, all(0xFF))) == 0xFFFF;
}

/// Sixteen pixels, a vector for each of their bytes.
struct Pixels {
  __m128i at[3];
};

/// Which bytes of three neighbouring vectors make up one byte of sixteen pixels.
struct Picker {
  __m128i from[3];

  explicit Picker(int channel) noexcept {
    for (int vector = 0; vector < 3; ++vector) {
      uint8_t indices[kLanes];
      for (int pixel = 0; pixel < static_cast<int>(kLanes); ++pixel) {
        const int index = 3 * pixel + channel - 16 * vector;
        indices[pixel] = index >= 0 && index < 16 ? static_cast<uint8_t>(index) : 0x80;
      }
      from[vector] = load(indices);
    }
  }
  [[nodiscard]] __m128i of(const __m128i* vectors) const noexcept {
    return _mm_or_si128(
        _mm_or_si128(_mm_shuffle_epi8(vectors[0], from[0]), _mm_shuffle_epi8(vectors[1], from[1])),
        _mm_shuffle_epi8(vectors[2], from[2]));
  }
};

class Sorter {
 public:
  Sorter(const RowRules& rules, RowSteps& steps) noexcept : steps_(steps) {
    uint8_t routes[kLanes] = {};
    for (size_t i = 0; i < 4; ++i) routes[i] = static_cast<uint8_t>(rules.route[i]);
    route_ = load(routes);
    uint8_t blacks[kLanes] = {};
    for (size_t i = 0; i < 3; ++i) blacks[i] = rules.black[i];
    black_ = load(blacks);
    for (size_t i = 0; i < 3; ++i) {
      low_[i] = all(rules.low[i]);
      high_[i] = all(rules.high[i]);
      solid_[i] = all(rules.solid[i]);
    }
    solidApplies_ = all(rules.solidApplies ? 0xFF : 0);
  }

  /// The pixels of columns x to x + 15, as step `step` unless they have no ink. Returns
  /// the next one's number.
  size_t sort(const uint8_t* bytes, size_t x, size_t step) noexcept {
    const __m128i vectors[3] = {load(bytes), load(bytes + kLanes), load(bytes + 2 * kLanes)};
    if (isFull(_mm_and_si128(_mm_and_si128(vectors[0], vectors[1]), vectors[2]))) return step;
    const Pixels p = {{pick_[0].of(vectors), pick_[1].of(vectors), pick_[2].of(vectors)}};
    const __m128i ink = inkOf(p);
    const __m128i none = _mm_cmpeq_epi8(ink, _mm_setzero_si128());
    const size_t at = step * kLanes;
    store(steps_.inks + at, ink);
    if (!isFull(settle(p, ink, none, at))) {
      // Black is 1, red is 2.
      const __m128i red = _mm_and_si128(_mm_srli_epi16(ink, 1), all(1));
      for (size_t i = 0; i < 3; ++i) {
        store(steps_.tones[i] + at, _mm_unpacklo_epi8(p.at[i], red));
        store(steps_.tones[i] + at + kLanes / 2, _mm_unpackhi_epi8(p.at[i], red));
      }
    }
    steps_.columns[step] = x;
    return step + (isFull(none) ? 0 : 1);
  }

 private:
  [[nodiscard]] __m128i inkOf(const Pixels& p) const noexcept {
    const __m128i least = _mm_min_epu8(_mm_min_epu8(p.at[0], p.at[1]), p.at[2]);
    const __m128i most = _mm_max_epu8(_mm_max_epu8(p.at[0], p.at[1]), p.at[2]);
    const __m128i nearGrey = atMost(_mm_subs_epu8(most, least), _mm_set1_epi8(kNearGrey));
    __m128i inRange = all(0xFF);
    for (size_t i = 0; i < 3; ++i) {
      const __m128i inside = _mm_and_si128(atLeast(p.at[i], low_[i]), atMost(p.at[i], high_[i]));
      inRange = _mm_and_si128(inRange, inside);
    }
    // Deliberate: the third byte needs 250 for a tinted white, the others 200.
    const __m128i tinted =
        _mm_and_si128(_mm_and_si128(atLeast(p.at[0], all(200)), atLeast(p.at[1], all(200))),
                      atLeast(p.at[2], all(250)));
    const __m128i white = _mm_or_si128(atLeast(least, all(240)), tinted);
    const __m128i index =
        _mm_or_si128(_mm_and_si128(inRange, all(1)), _mm_and_si128(nearGrey, all(2)));
    return _mm_andnot_si128(white, _mm_shuffle_epi8(route_, index));
  }

  /// Full ink for the solid colour, its own value for pure black. Returns which pixels
  /// need no grey.
  __m128i settle(const Pixels& p, __m128i ink, __m128i none, size_t at) noexcept {
    __m128i solid = solidApplies_;
    for (size_t i = 0; i < 3; ++i) {
      solid = _mm_and_si128(solid, _mm_cmpeq_epi8(p.at[i], solid_[i]));
    }
    const __m128i bytes = _mm_or_si128(_mm_or_si128(p.at[0], p.at[1]), p.at[2]);
    const __m128i pure = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
    const __m128i black = _mm_and_si128(pure, _mm_shuffle_epi8(black_, ink));
    const __m128i settled = _mm_or_si128(_mm_or_si128(solid, pure), none);
    store(steps_.settled + at, settled);
    store(steps_.values + at, _mm_andnot_si128(solid, black));
    return settled;
  }

  RowSteps& steps_;
  Picker pick_[3] = {Picker(0), Picker(1), Picker(2)};
  __m128i route_{};
  __m128i black_{};
  __m128i low_[3]{};
  __m128i high_[3]{};
  __m128i solid_[3]{};
  __m128i solidApplies_{};
};

}  // namespace

void sortPixelsSsse3(const RowRules& rules, const uint8_t* pixels, size_t x, size_t count,
                     RowSteps& steps) noexcept {
  Sorter sorter(rules, steps);
  size_t sorted = 0;
  for (const size_t end = x + count * kLanes; x < end; x += kLanes)
    sorted = sorter.sort(pixels + 3 * x, x, sorted);
  steps.count = sorted;
}

}  // namespace velka
