// Two groups of a diffusion wave that advance together, for the kernels that make the
// steps of both at once.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velka {

/// One of the groups: sixteen rows of a plane that is halftoned in place, each two
/// columns behind the one above.
struct WaveRows {
  uint8_t* first;           ///< what the first row reads at the next step
  uint8_t received[3][16];  ///< what each row has received for that step and the next two
};

struct WavePair {
  WaveRows groups[2];
  ptrdiff_t rowStep;  ///< from what a row reads to what the next one reads
  uint8_t threshold;
};

/// Makes `blocks` times sixteen steps of both groups, and moves them on. The rows must
/// hold two more blocks for every one of their sixteen.
void advancePairAvx2(WavePair& pair, size_t blocks) noexcept;

}  // namespace velka
