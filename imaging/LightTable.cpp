#include "LightTable.h"

#include "ByteMath.h"
#include "CheckedMath.h"

namespace velka {

void fillLightTable(int brightness, int contrast, uint16_t (&table)[256]) {
  const float slope = static_cast<float>(int64_t{contrast} + 100) / 100.0F;
  const auto middle = static_cast<float>(int64_t{brightness} + 128);
  for (int i = -128; i <= 127; ++i) {
    const float scaled = static_cast<float>(i) * slope;
    const float shifted = scaled + middle;
    const float rounded = shifted + 0.5F;
    table[i + 128] = static_cast<uint16_t>(clampToByte(truncateToInt32(rounded)));
  }
}

void fillIdentity(uint16_t (&table)[256]) {
  for (unsigned i = 0; i < 256; ++i) {
    table[i] = static_cast<uint16_t>(i);
  }
}

void applyLight(const uint16_t (&table)[256], unsigned char& r, unsigned char& g,
                unsigned char& b) {
  const bool black = (r | g | b) == 0;
  const bool white = (r & g & b) == 255;
  if (black || white) {
    return;
  }
  r = lowByte(table[r]);
  g = lowByte(table[g]);
  b = lowByte(table[b]);
}

}  // namespace velka
