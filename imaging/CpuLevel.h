// Which of a kernel's forms runs.
//
// Each kernel has a plain form, which defines its result. Some have a form in the
// compiler's own vectors, which suits any processor, or a sibling for the x86-64
// instructions in its file name. Builds for other processors, and those with VELKA_SIMD
// off, hold no such siblings.
#pragma once

#include <cstdint>

namespace velka {

enum class CpuLevel : uint8_t {
  Plain,
  Vectors,  ///< vectors of the compiler's own
  Ssse3,    ///< shuffles of 16 bytes
  Avx2,     ///< vectors of 32 bytes
};

/// The highest level that this build holds and this processor has.
[[nodiscard]] CpuLevel highestCpuLevel() noexcept;

/// The level that the kernels run at: the highest one, unless a test forced another.
[[nodiscard]] CpuLevel cpuLevel() noexcept;

/// Makes the kernels run at `level`, or at the highest one where that is lower.
/// For tests, on one thread.
void forceCpuLevel(CpuLevel level) noexcept;

}  // namespace velka
