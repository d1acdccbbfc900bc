#include "LevelsTable.h"

#include <algorithm>
#include <cmath>

#include "BmpProcessing.h"
#include "ByteMath.h"
#include "CheckedMath.h"

namespace velka {

void fillIdentity(uint8_t (&row)[256]) {
  for (int v = 0; v < 256; ++v) {
    row[v] = lowByte(v);
  }
}

void applyLevels(const COLORLEVELSITEM& item, uint8_t (&row)[256]) {
  const double scaleIn = 255.0 / (item.byInHigh - item.byInLow);
  const double scaleOut = (item.byOutHigh - item.byOutLow) / 255.0;
  const double exponent = 1.0 / static_cast<double>(item.fGamma);
  for (uint8_t& entry : row) {
    double t = 0.0;
    if (entry > item.byInLow) {
      // Limited before it is truncated: equal points make this infinite.
      t = truncateToInt32(std::min((entry - item.byInLow) * scaleIn + 0.5, 255.0)) / 255.0;
    }
    const int y = truncateToInt32(std::pow(t, exponent) * 255.0 + 0.5);
    entry = lowByte(truncateToInt32(y * scaleOut + item.byOutLow + 0.5));
  }
}

}  // namespace velka
