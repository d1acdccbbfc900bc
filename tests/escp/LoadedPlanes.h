// A generator that holds given planes, as if a page had been separated and halftoned.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include "ESCPSML.h"
#include "reference/ReferenceSeparation.h"

namespace velka::testing {

/// A buffer that the generator frees.
inline unsigned char* copyOf(const std::vector<uint8_t>& bytes) {
  auto* copy = static_cast<unsigned char*>(std::malloc(bytes.size() + 1));
  if (copy != nullptr) std::memcpy(copy, bytes.data(), bytes.size());
  return copy;
}

inline void load(CESCPSML& generator, const reference::Separation& planes) {
  generator.m_pBlackBuf = copyOf(planes.black);
  generator.m_dwBlackSize = static_cast<unsigned>(planes.black.size());
  generator.m_pRedBuf = copyOf(planes.red);
  generator.m_dwRedSize = static_cast<unsigned>(planes.red.size());
  generator.m_nPlaneStride = planes.width;
  generator.m_nPageWidth = planes.width;
  generator.m_nPageHeight = planes.height;
}

}  // namespace velka::testing
