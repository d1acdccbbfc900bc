// Two groups of a diffusion wave as plain data, for kernels that make the steps of both
// in one vector.
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
/// hold two blocks more.
using AdvancePair = void(WavePair& pair, size_t blocks) noexcept;
AdvancePair advancePairAvx2;

}  // namespace velka
