#include <immintrin.h>

#include "WavePair.h"

// A vector holds both groups, one in each half. Values are kept less 128, as signed
// bytes, so that one saturating addition gives a neighbour its share of either sign.
namespace velka {
namespace {

constexpr size_t kLanes = 16;
// Columns ahead that are asked for: more rows are under way than the processor foresees.
constexpr size_t kFetched = 128;

struct Block {
  __m256i at[kLanes];
};

__m256i all(uint8_t value) noexcept {
  return _mm256_set1_epi8(static_cast<char>(value));
}

__m128i load(const uint8_t* bytes) noexcept {
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes));
}

void store(uint8_t* bytes, __m128i value) noexcept {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(bytes), value);
}

__m256i loadBoth(const uint8_t* upper, const uint8_t* lower) noexcept {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(load(upper)), load(lower), 1);
}

void storeBoth(uint8_t* upper, uint8_t* lower, __m256i value) noexcept {
  store(upper, _mm256_castsi256_si128(value));
  store(lower, _mm256_extracti128_si256(value, 1));
}

bool isFull(__m256i mask) noexcept {
  return _mm256_movemask_epi8(mask) == -1;
}

/// In each half, rows become columns and columns rows.
Block transposed(Block block) noexcept {
  for (int round = 0; round < 4; ++round) {
    Block next;
    for (size_t i = 0; i < kLanes / 2; ++i) {
      next.at[2 * i] = _mm256_unpacklo_epi8(block.at[i], block.at[i + kLanes / 2]);
      next.at[2 * i + 1] = _mm256_unpackhi_epi8(block.at[i], block.at[i + kLanes / 2]);
    }
    block = next;
  }
  return block;
}

/// The last of the rows that `transposed` makes.
__m256i lastRow(const Block& block) noexcept {
  __m256i last[kLanes / 2];
  for (size_t i = 0; i < kLanes / 2; ++i)
    last[i] = _mm256_unpackhi_epi8(block.at[i], block.at[i + kLanes / 2]);
  for (size_t size = kLanes / 4; size > 0; size /= 2)
    for (size_t i = 0; i < size; ++i) last[i] = _mm256_unpackhi_epi8(last[i], last[i + size]);
  return last[0];
}

/// floor(error x 7, 5, 3 or 1 / 16), bytes of even and odd place apart.
struct Shares {
  __m256i even;
  __m256i odd;
  __m256i one;

  explicit Shares(__m256i error) noexcept
      : even(_mm256_and_si256(error, _mm256_set1_epi16(0xFF))),
        odd(_mm256_andnot_si256(_mm256_set1_epi16(0xFF), error)),
        one(_mm256_and_si256(_mm256_srli_epi16(error, 4), all(15))) {}

  [[nodiscard]] __m256i of(short weight) const noexcept {
    const __m256i factor = _mm256_set1_epi16(static_cast<short>(weight << 12));
    return _mm256_or_si256(
        _mm256_mulhi_epu16(even, factor),
        _mm256_andnot_si256(_mm256_set1_epi16(0xFF), _mm256_mulhi_epu16(odd, factor)));
  }
};

class Pair {
 public:
  explicit Pair(WavePair& pair) noexcept
      : pair_(pair), threshold_(signedBytes(all(pair.threshold))) {
    now_ = read(0);
    ahead_ = read(kLanes);
    for (size_t i = 0; i < 3; ++i)
      received_[i] = signedBytes(loadBoth(pair.groups[0].received[i], pair.groups[1].received[i]));
  }
  ~Pair() {
    for (size_t i = 0; i < 3; ++i)
      storeBoth(pair_.groups[0].received[i], pair_.groups[1].received[i],
                signedBytes(received_[i]));
  }
  Pair(const Pair&) = delete;
  Pair& operator=(const Pair&) = delete;

  /// Makes sixteen steps, with that many more to make after them.
  void advance(size_t stepsLeft) noexcept {
    if (isQuiet()) {
      for (size_t i = 0; i < 3; ++i) received_[i] = ahead_.at[i];
    } else {
      makeSteps();
    }
    for (WaveRows& group : pair_.groups) group.first += kLanes;
    now_ = ahead_;
    ahead_ = read(kLanes, stepsLeft < kFetched ? 0 : kFetched);
  }

 private:
  static __m256i signedBytes(__m256i bytes) noexcept { return _mm256_xor_si256(bytes, all(128)); }

  [[nodiscard]] Block read(size_t step, size_t fetched = 0) const noexcept {
    Block rows;
    const uint8_t* upper = pair_.groups[0].first + step;
    const uint8_t* lower = pair_.groups[1].first + step;
    for (__m256i& row : rows.at) {
      row = signedBytes(loadBoth(upper, lower));
      _mm_prefetch(upper + fetched, _MM_HINT_T0);
      _mm_prefetch(lower + fetched, _MM_HINT_T0);
      upper += pair_.rowStep;
      lower += pair_.rowStep;
    }
    return transposed(rows);
  }

  /// Whether the next sixteen steps meet full ink and paper alone, and no error.
  [[nodiscard]] bool isQuiet() const noexcept {
    __m256i quiet = _mm256_cmpeq_epi8(received_[0], now_.at[0]);
    for (size_t i = 1; i < 3; ++i)
      quiet = _mm256_and_si256(quiet, _mm256_cmpeq_epi8(received_[i], now_.at[i]));
    if (!isFull(quiet)) return false;
    for (const __m256i& value : now_.at) {
      const __m256i ends =
          _mm256_or_si256(_mm256_cmpeq_epi8(value, all(127)), _mm256_cmpeq_epi8(value, all(128)));
      quiet = _mm256_and_si256(quiet, ends);
    }
    return isFull(quiet);
  }

  void makeSteps() noexcept {
    Block values;
    Block dots;
    for (size_t i = 0; i < kLanes; ++i) {
      values.at[i] = received_[0];
      dots.at[i] = _mm256_cmpgt_epi8(received_[0], threshold_);
      const __m256i last = i + 3 < kLanes ? now_.at[(i + 3) % kLanes] : ahead_.at[(i + 3) % kLanes];
      spread(dots.at[i], last);
    }
    dots = transposed(dots);
    uint8_t* upper = pair_.groups[0].first;
    uint8_t* lower = pair_.groups[1].first;
    for (size_t lane = 0; lane + 1 < kLanes; ++lane) {
      storeBoth(upper, lower, dots.at[lane]);
      upper += pair_.rowStep;
      lower += pair_.rowStep;
    }
    storeBoth(upper, lower, signedBytes(lastRow(values)));
  }

  /// Hands the error of a step on, whose dots are 255 for none, and takes in the values
  /// that are read three steps later.
  void spread(__m256i dots, __m256i last) noexcept {
    const Shares shares(_mm256_xor_si256(signedBytes(received_[0]), dots));
    const __m256i sign = _mm256_or_si256(dots, all(1));
    // One lane on is one row down; the last lane hands nothing on to its right.
    const __m256i right = _mm256_sign_epi8(shares.of(7), _mm256_and_si256(sign, allButLast()));
    const __m256i leftDown = _mm256_slli_si256(_mm256_sign_epi8(shares.of(3), sign), 1);
    const __m256i down = _mm256_slli_si256(_mm256_sign_epi8(shares.of(5), sign), 1);
    const __m256i rightDown = _mm256_slli_si256(_mm256_sign_epi8(shares.one, sign), 1);
    received_[0] = _mm256_adds_epi8(_mm256_adds_epi8(received_[1], leftDown), right);
    received_[1] = _mm256_adds_epi8(received_[2], down);
    received_[2] = _mm256_adds_epi8(last, rightDown);
  }

  static __m256i allButLast() noexcept {
    return _mm256_set_epi64x(0x00FFFFFFFFFFFFFF, -1, 0x00FFFFFFFFFFFFFF, -1);
  }

  WavePair& pair_;
  __m256i threshold_;
  Block now_;    ///< what is read at the next sixteen steps
  Block ahead_;  ///< and at the sixteen after them
  __m256i received_[3];
};

}  // namespace

void advancePairAvx2(WavePair& pair, size_t blocks) noexcept {
  Pair both(pair);
  while (blocks-- > 0) both.advance(blocks * kLanes);
}

}  // namespace velka
