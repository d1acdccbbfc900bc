#include <tmmintrin.h>

#include <cstring>

#include "DiffusionWave.h"

namespace velka {
namespace {

constexpr size_t kLanes = 16;
constexpr size_t kSkew = 2;  // columns from a row to the one above
constexpr size_t kLag = kSkew * (kLanes - 1);

/// Sixteen steps of the wave: a vector holds what the lanes read at one step.
struct Block {
  __m128i at[kLanes];
};

bool isPaper(const Block& block) noexcept {
  __m128i all = block.at[0];
  for (const __m128i& row : block.at) all = _mm_and_si128(all, row);
  return _mm_movemask_epi8(_mm_cmpeq_epi8(all, _mm_set1_epi8(-1))) == 0xFFFF;
}

/// Rows become columns and columns rows.
Block transposed(Block block) noexcept {
  if (isPaper(block)) return block;
  for (int round = 0; round < 4; ++round) {
    Block next;
    for (size_t i = 0; i < kLanes / 2; ++i) {
      next.at[2 * i] = _mm_unpacklo_epi8(block.at[i], block.at[i + kLanes / 2]);
      next.at[2 * i + 1] = _mm_unpackhi_epi8(block.at[i], block.at[i + kLanes / 2]);
    }
    block = next;
  }
  return block;
}

__m128i load(const uint8_t* bytes) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

void store(uint8_t* bytes, __m128i value) noexcept {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
}

/// floor(m x weight / 16) for the halves of a byte, by look-up.
struct Weight {
  __m128i high;
  __m128i low;

  explicit Weight(int weight) noexcept {
    uint8_t highs[16];
    uint8_t lows[16];
    for (int i = 0; i < 16; ++i) {
      highs[i] = static_cast<uint8_t>(i * weight);
      lows[i] = static_cast<uint8_t>(i * weight / 16);
    }
    high = load(highs);
    low = load(lows);
  }
  [[nodiscard]] __m128i of(__m128i highHalf, __m128i lowHalf) const noexcept {
    return _mm_add_epi8(_mm_shuffle_epi8(high, highHalf), _mm_shuffle_epi8(low, lowHalf));
  }
};

/// The part of a lane's sixteen columns from `x` on that lies on the page.
struct Inside {
  size_t first = 0;   ///< of the sixteen
  size_t column = 0;  ///< of the page
  size_t size = 0;

  Inside(ptrdiff_t x, size_t columns) noexcept {
    const auto page = static_cast<ptrdiff_t>(columns);
    const auto lanes = static_cast<ptrdiff_t>(kLanes);
    const ptrdiff_t begin = x < 0 ? -x : 0;
    const ptrdiff_t end = page - x < lanes ? page - x : lanes;
    if (begin >= end) return;
    first = static_cast<size_t>(begin);
    column = static_cast<size_t>(x + begin);
    size = static_cast<size_t>(end - begin);
  }
};

/// One group of sixteen rows.
class Group {
 public:
  Group(const DiffusionRows& plane, size_t top, uint8_t threshold) noexcept
      : in_(plane.in + top * plane.stride),
        out_(plane.out + top * plane.stride),
        stride_(plane.stride),
        columns_(plane.columns),
        threshold_(_mm_set1_epi8(static_cast<char>(threshold))),
        writesInput_(plane.in != plane.out) {}

  void diffuse() noexcept {
    const size_t steps = columns_ + kLag;
    Block now = read(0);
    here_ = now.at[0];
    next_ = now.at[1];
    afterNext_ = now.at[2];
    for (size_t step = 0; step < steps; step += kLanes) {
      const Block ahead = read(step + kLanes);
      if (isQuiet(now)) {
        if (writesInput_) write(step, out_, transposed(now), kLanes - 1);
        here_ = ahead.at[0];
        next_ = ahead.at[1];
        afterNext_ = ahead.at[2];
      } else if (isEdge(step)) {
        run<true>(step, now, ahead);
      } else {
        run<false>(step, now, ahead);
      }
      now = ahead;
    }
  }

 private:
  [[nodiscard]] ptrdiff_t columnOf(size_t step, size_t lane) const noexcept {
    return static_cast<ptrdiff_t>(step) - static_cast<ptrdiff_t>(kSkew * lane);
  }

  [[nodiscard]] bool isEdge(size_t step) const noexcept {
    return step < kLag || step + kLanes > columns_;
  }

  /// What the lanes read from `step` on; paper beside the page.
  [[nodiscard]] Block read(size_t step) const noexcept {
    Block rows;
    for (size_t lane = 0; lane < kLanes; ++lane) {
      const ptrdiff_t x = columnOf(step, lane);
      const uint8_t* row = in_ + lane * stride_;
      if (!isEdge(step)) {
        rows.at[lane] = load(row + x);
        continue;
      }
      uint8_t bytes[kLanes];
      std::memset(bytes, 0xFF, sizeof bytes);
      const Inside inside(x, columns_);
      if (inside.size > 0) std::memcpy(bytes + inside.first, row + inside.column, inside.size);
      rows.at[lane] = load(bytes);
    }
    return transposed(rows);
  }

  /// The first `lanes` rows of a block, as far as they lie on the page.
  void write(size_t step, uint8_t* plane, const Block& rows, size_t lanes) const noexcept {
    for (size_t lane = 0; lane < lanes; ++lane) writeRow(step, plane, rows, lane);
  }

  void writeRow(size_t step, uint8_t* plane, const Block& rows, size_t lane) const noexcept {
    const ptrdiff_t x = columnOf(step, lane);
    uint8_t* row = plane + lane * stride_;
    if (!isEdge(step)) return store(row + x, rows.at[lane]);
    uint8_t bytes[kLanes];
    store(bytes, rows.at[lane]);
    const Inside inside(x, columns_);
    if (inside.size > 0) std::memcpy(row + inside.column, bytes + inside.first, inside.size);
  }

  /// 255 in the lanes that are beside the page.
  [[nodiscard]] Block outside(size_t step) const noexcept {
    Block rows;
    for (size_t lane = 0; lane < kLanes; ++lane) {
      uint8_t bytes[kLanes];
      std::memset(bytes, 0xFF, sizeof bytes);
      const Inside inside(columnOf(step, lane), columns_);
      if (inside.size > 0) std::memset(bytes + inside.first, 0, inside.size);
      rows.at[lane] = load(bytes);
    }
    return transposed(rows);
  }

  /// Whether the next sixteen steps meet full ink and paper alone, and no error.
  [[nodiscard]] bool isQuiet(const Block& now) const noexcept {
    const __m128i ink = _mm_setzero_si128();
    const __m128i paper = _mm_set1_epi8(-1);
    __m128i quiet = _mm_cmpeq_epi8(here_, now.at[0]);
    quiet = _mm_and_si128(quiet, _mm_cmpeq_epi8(next_, now.at[1]));
    quiet = _mm_and_si128(quiet, _mm_cmpeq_epi8(afterNext_, now.at[2]));
    for (const __m128i& value : now.at) {
      quiet = _mm_and_si128(quiet,
                            _mm_or_si128(_mm_cmpeq_epi8(value, ink), _mm_cmpeq_epi8(value, paper)));
    }
    return _mm_movemask_epi8(quiet) == 0xFFFF;
  }

  template <bool kEdge>
  void run(size_t step, const Block& now, const Block& ahead) noexcept {
    const __m128i ones = _mm_set1_epi8(-1);
    const __m128i lowHalf = _mm_set1_epi8(15);
    // The last lane hands nothing on to its right.
    const __m128i spreads = _mm_srli_si128(ones, 1);
    const Weight seven(7);
    const Weight five(5);
    const Weight three(3);
    Block hold;
    if (kEdge) hold = outside(step);
    Block values;
    Block dots;
    for (size_t i = 0; i < kLanes; ++i) {
      const __m128i value = kEdge ? _mm_or_si128(here_, hold.at[i]) : here_;
      const __m128i dot = _mm_cmpeq_epi8(_mm_min_epu8(value, threshold_), value);
      values.at[i] = value;
      dots.at[i] = _mm_xor_si128(dot, ones);
      const __m128i error = _mm_xor_si128(_mm_xor_si128(value, ones), dot);
      const __m128i high = _mm_and_si128(_mm_srli_epi16(error, 4), lowHalf);
      const __m128i low = _mm_and_si128(error, lowHalf);
      const auto give = [](__m128i to, __m128i part, __m128i plus, __m128i minus) noexcept {
        return _mm_subs_epu8(_mm_adds_epu8(to, _mm_and_si128(part, plus)),
                             _mm_and_si128(part, minus));
      };
      // One lane on is one row down.
      const __m128i below = _mm_slli_si128(dot, 1);
      const __m128i belowMinus = _mm_slli_si128(dots.at[i], 1);
      const __m128i last = i + 3 < kLanes ? now.at[(i + 3) % kLanes] : ahead.at[(i + 3) % kLanes];
      here_ = give(next_, _mm_slli_si128(three.of(high, low), 1), below, belowMinus);
      here_ = give(here_, seven.of(high, low), _mm_and_si128(dot, spreads),
                   _mm_andnot_si128(dot, spreads));
      next_ = give(afterNext_, _mm_slli_si128(five.of(high, low), 1), below, belowMinus);
      afterNext_ = give(last, _mm_slli_si128(high, 1), below, belowMinus);
    }
    const Block final = transposed(values);
    if (writesInput_) write(step, in_, final, kLanes - 1);
    writeRow(step, in_, final, kLanes - 1);
    write(step, out_, transposed(dots), kLanes - 1);
  }

  uint8_t* in_;
  uint8_t* out_;
  size_t stride_;
  size_t columns_;
  __m128i threshold_;
  bool writesInput_;
  // What has been received so far for this step and the two after it.
  __m128i here_{};
  __m128i next_{};
  __m128i afterNext_{};
};

}  // namespace

size_t diffuseWaveSsse3(const DiffusionRows& plane, uint8_t threshold) noexcept {
  size_t top = 0;
  for (; plane.rows - top >= kLanes; top += kLanes - 1) Group(plane, top, threshold).diffuse();
  return top;
}

}  // namespace velka
