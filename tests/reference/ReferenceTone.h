// The tone of one pixel, computed anew from the formulas each time: brightness
// and contrast table, levels table, grey through CIE L* (IEC 61966-2-1 for the
// shape of the transfer function, CIE 15 for L*). No shortcut is taken that the
// formulas do not name; this is what faster forms are compared with.
#pragma once

#include <array>
#include <cstdint>

namespace velka::reference {

/// Entry b is the output (0-255) for input byte b.
std::array<uint8_t, 256> lightTable(int bright, int contrast);

/// Input range, output range and gamma of a levels table.
struct Levels {
  float gamma = 1.0F;
  uint8_t inLow = 0;
  uint8_t inHigh = 255;
  uint8_t outLow = 0;
  uint8_t outHigh = 255;
};

/// Entry b is the output for input byte b. A gamma that drives a value out of
/// 32 bits gives the low byte of the nearest 32-bit integer.
std::array<uint8_t, 256> levelsTable(const Levels& levels);

/// 0 (black) to 255 (white).
uint8_t gray(uint8_t red, uint8_t green, uint8_t blue);

/// Three bytes of a pixel in memory order: blue, green, red.
struct Pixel {
  uint8_t p0;
  uint8_t p1;
  uint8_t p2;
};

/// Each component through the table; pure black and pure white stay.
Pixel applyLight(const std::array<uint8_t, 256>& table, Pixel pixel);

/// The tables of one ink.
struct InkTone {
  bool adjustsLight;  ///< brightness or contrast is not 0
  std::array<uint8_t, 256> light;
  std::array<uint8_t, 256> levels;
};

/// `levelsHundredths` is the midtone in hundredths.
InkTone makeInkTone(int brightness, int contrast, int levelsHundredths);

/// The plane value (0 = full ink) of a pixel.
uint8_t toneOfPixel(const InkTone& ink, Pixel pixel);

}  // namespace velka::reference
