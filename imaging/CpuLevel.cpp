#include "CpuLevel.h"

#include <algorithm>

namespace velka {
namespace {

CpuLevel& levelInUse() noexcept {
  static CpuLevel level = highestCpuLevel();
  return level;
}

}  // namespace

CpuLevel highestCpuLevel() noexcept {
#ifdef VELKA_SIMD
  if (__builtin_cpu_supports("avx2") != 0) return CpuLevel::Avx2;
  if (__builtin_cpu_supports("ssse3") != 0) return CpuLevel::Ssse3;
#endif
  return CpuLevel::Vectors;
}

CpuLevel cpuLevel() noexcept {
  return levelInUse();
}

void forceCpuLevel(CpuLevel level) noexcept {
  levelInUse() = std::min(level, highestCpuLevel());
}

}  // namespace velka
