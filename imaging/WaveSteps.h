// The steps of a diffusion wave: what sixteen rows do abreast, each two columns behind
// the one above.
#pragma once

#include "ByteLanes.h"

namespace velka {

/// Every lane takes what the one above it holds, the first one 0.
inline Lanes oneDown(Lanes a) noexcept {
  return __builtin_shufflevector(Lanes{}, a, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28,
                                 29, 30);
}

/// floor(error x weight / 16) for the weights of the four neighbours. With the halves of
/// a byte apart, no product leaves its byte.
struct WaveShares {
  Lanes seven;
  Lanes five;
  Lanes three;
  Lanes one;

  explicit WaveShares(Lanes error) noexcept {
    one = error >> 4;
    const Lanes low = error & 15;
    const Lanes high2 = one + one;
    const Lanes low2 = low + low;
    const Lanes high4 = high2 + high2;
    const Lanes low4 = low2 + low2;
    three = high2 + one + ((low2 + low) >> 4);
    five = high4 + one + ((low4 + low) >> 4);
    seven = high4 + high4 - one + ((low4 + low4 - low) >> 4);
  }
};

/// Sixteen steps of the wave: a vector holds what the lanes read at one step.
struct WaveBlock {
  Lanes at[kLanes];
  bool paper = false;  ///< known to be 255 throughout
};

inline bool isPaper(const WaveBlock& block) noexcept {
  Lanes every = block.at[0];
  for (const Lanes& row : block.at) every &= row;
  return isFull(every);
}

/// Rows become columns and columns rows.
inline WaveBlock transposed(WaveBlock block) noexcept {
  for (int round = 0; round < 4; ++round) {
    WaveBlock next;
    for (size_t i = 0; i < kLanes / 2; ++i) {
      next.at[2 * i] = zipFirst(block.at[i], block.at[i + kLanes / 2]);
      next.at[2 * i + 1] = zipLast(block.at[i], block.at[i + kLanes / 2]);
    }
    block = next;
  }
  return block;
}

/// What the last lane holds at each step: the last of the rows that `transposed` makes.
inline Lanes lastRow(const WaveBlock& steps) noexcept {
  Lanes last[kLanes / 2];
  for (size_t i = 0; i < kLanes / 2; ++i) last[i] = zipLast(steps.at[i], steps.at[i + kLanes / 2]);
  for (size_t size = kLanes / 4; size > 0; size /= 2)
    for (size_t i = 0; i < size; ++i) last[i] = zipLast(last[i], last[i + size]);
  return last[0];
}

/// What has been received so far for a step and the two after it.
struct WaveReceived {
  Lanes here;
  Lanes next;
  Lanes afterNext;
};

/// Sixteen steps in the making.
struct WaveSteps {
  const WaveBlock& now;    ///< what is read at these steps
  const WaveBlock& ahead;  ///< and at the sixteen after them
  Lanes threshold;
  WaveReceived received;
  WaveBlock values;  ///< of the pixels, at last
  WaveBlock dots;    ///< 0, and 255 for none

  WaveSteps(const WaveBlock& readNow, const WaveBlock& readAhead, Lanes blackUpTo,
            const WaveReceived& soFar) noexcept
      : now(readNow), ahead(readAhead), threshold(blackUpTo), received(soFar) {}

  /// Step `i`; lanes where `hold` is 255 are beside the page and stay paper.
  void make(size_t i, Lanes hold) noexcept {
    const Lanes value = received.here | hold;
    const Lanes dot = equal(least(value, threshold), value);
    values.at[i] = value;
    dots.at[i] = ~dot;
    const WaveShares shares(~value ^ dot);
    // One lane on is one row down.
    const Lanes below = oneDown(dot);
    const Lanes last = i + 3 < kLanes ? now.at[(i + 3) % kLanes] : ahead.at[(i + 3) % kLanes];
    const Lanes here = give(received.next, oneDown(shares.three), below);
    received = {give(here, shares.seven & spreads(), dot),
                give(received.afterNext, oneDown(shares.five), below),
                give(last, oneDown(shares.one), below)};
  }

  static Lanes give(Lanes to, Lanes share, Lanes darker) noexcept {
    return subtractDownTo0(addUpTo255(to, share & darker), share & ~darker);
  }

  /// All lanes but the last, which hands nothing on to its right.
  static Lanes spreads() noexcept {
    Lanes lanes = allLanes(255);
    lanes[kLanes - 1] = 0;
    return lanes;
  }
};

}  // namespace velka
