#include <tmmintrin.h>

#include "RowKernel.h"

namespace velka {
namespace {

constexpr size_t kLanes = 16;
constexpr char kNearGrey = 9;
constexpr unsigned kCellShift = 20;  // as GrayScale has it

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

unsigned bits(__m128i mask) noexcept {
  return static_cast<unsigned>(_mm_movemask_epi8(mask));
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

class Separator {
 public:
  Separator(const RowRules& rules, uint8_t* black, uint8_t* red, RowInk& found) noexcept
      : rules_(rules), black_(black), red_(red), found_(found) {
    uint8_t routes[kLanes] = {};
    for (size_t i = 0; i < 4; ++i) routes[i] = static_cast<uint8_t>(rules.route[i]);
    route_ = load(routes);
    uint8_t blacks[kLanes] = {};
    for (size_t i = 0; i < 3; ++i) blacks[i] = rules.tones[i].black;
    pureBlack_ = load(blacks);
    for (size_t i = 0; i < 3; ++i) {
      low_[i] = all(rules.low[i]);
      high_[i] = all(rules.high[i]);
      solid_[i] = all(rules.solid[i]);
    }
    solidApplies_ = all(rules.solidApplies ? 0xFF : 0);
  }

  /// The pixels of columns x to x + 15.
  void separate(const uint8_t* bytes, size_t x) noexcept {
    const __m128i vectors[3] = {load(bytes), load(bytes + kLanes), load(bytes + 2 * kLanes)};
    const __m128i every = _mm_and_si128(_mm_and_si128(vectors[0], vectors[1]), vectors[2]);
    if (bits(_mm_cmpeq_epi8(every, all(0xFF))) == 0xFFFF) return;
    const Pixels p = {{pick_[0].of(vectors), pick_[1].of(vectors), pick_[2].of(vectors)}};
    const __m128i ink = inkOf(p);
    const __m128i toBlack = _mm_cmpeq_epi8(ink, all(static_cast<uint8_t>(Ink::Black)));
    const __m128i toRed = _mm_cmpeq_epi8(ink, all(static_cast<uint8_t>(Ink::Red)));
    const unsigned blackBits = bits(toBlack);
    const unsigned redBits = bits(toRed);
    if ((blackBits | redBits) == 0) return;
    const __m128i value = valueOf(p, ink, blackBits | redBits);
    if (blackBits != 0) {
      put(black_ + x, toBlack, value);
      found_.black = true;
      note(blackBits, x, found_.firstBlackColumn, found_.lastBlackColumn);
    }
    if (redBits != 0) {
      put(red_ + x, toRed, value);
      note(redBits, x, found_.firstRedColumn, found_.lastRedColumn);
    }
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

  /// The plane values of the pixels named by `inked`; those of the others may be any.
  [[nodiscard]] __m128i valueOf(const Pixels& p, __m128i ink, unsigned inked) const noexcept {
    __m128i solid = solidApplies_;
    for (size_t i = 0; i < 3; ++i) {
      solid = _mm_and_si128(solid, _mm_cmpeq_epi8(p.at[i], solid_[i]));
    }
    const __m128i none = _mm_or_si128(_mm_or_si128(p.at[0], p.at[1]), p.at[2]);
    const __m128i pure = _mm_cmpeq_epi8(none, _mm_setzero_si128());
    const __m128i black = _mm_and_si128(pure, _mm_shuffle_epi8(pureBlack_, ink));
    const __m128i known = _mm_andnot_si128(solid, black);
    const unsigned open = inked & ~bits(_mm_or_si128(solid, pure));
    return open == 0 ? known : graded(p, ink, known, open);
  }

  /// `known` with the grey of the pixels named by `open`.
  [[nodiscard]] __m128i graded(const Pixels& p, __m128i ink, __m128i known,
                               unsigned open) const noexcept {
    uint8_t bytes[3][kLanes];
    uint8_t values[kLanes];
    for (size_t i = 0; i < 3; ++i) store(bytes[i], p.at[i]);
    store(values, known);
    const unsigned red = open & bits(_mm_cmpeq_epi8(ink, all(static_cast<uint8_t>(Ink::Red))));
    grade(bytes, red, rules_.tones[static_cast<size_t>(Ink::Red)], values);
    grade(bytes, open & ~red, rules_.tones[static_cast<size_t>(Ink::Black)], values);
    return load(values);
  }

  void grade(const uint8_t (&bytes)[3][kLanes], unsigned open, const RowTone& tone,
             uint8_t* values) const noexcept {
    const uint32_t* first = tone.contributions[0];
    const uint32_t* second = tone.contributions[1];
    const uint32_t* third = tone.contributions[2];
    const uint32_t* steps = rules_.graySteps;
    const auto gray = [&](size_t i) {
      const uint32_t luminance = first[bytes[0][i]] + second[bytes[1][i]] + third[bytes[2][i]];
      return static_cast<uint8_t>((steps[luminance >> kCellShift] + luminance) >> kCellShift);
    };
    if (open == 0xFFFF) {
#pragma GCC unroll 16
      for (size_t i = 0; i < kLanes; ++i) values[i] = gray(i);
      return;
    }
    for (; open != 0; open &= open - 1) {
      const auto i = static_cast<size_t>(__builtin_ctz(open));
      values[i] = gray(i);
    }
  }

  static void put(uint8_t* plane, __m128i mask, __m128i value) noexcept {
    store(plane, _mm_or_si128(_mm_and_si128(mask, value), _mm_andnot_si128(mask, load(plane))));
  }

  static void note(unsigned columns, size_t x, int64_t& first, int64_t& last) noexcept {
    const auto at = static_cast<int64_t>(x);
    if (first < 0) first = at + __builtin_ctz(columns);
    last = at + 31 - __builtin_clz(columns);
  }

  const RowRules& rules_;
  uint8_t* black_;
  uint8_t* red_;
  RowInk& found_;
  Picker pick_[3] = {Picker(0), Picker(1), Picker(2)};
  __m128i route_{};
  __m128i pureBlack_{};
  __m128i low_[3]{};
  __m128i high_[3]{};
  __m128i solid_[3]{};
  __m128i solidApplies_{};
};

}  // namespace

size_t separatePixelsSsse3(const RowRules& rules, const uint8_t* pixels, size_t count,
                           uint8_t* black, uint8_t* red, RowInk& found) noexcept {
  Separator separator(rules, black, red, found);
  size_t x = 0;
  for (; x + kLanes <= count; x += kLanes) separator.separate(pixels + 3 * x, x);
  return x;
}

}  // namespace velka
