// Colour levels, brightness and contrast as tables, and quarter turns.
#pragma once

#include <cstdint>

#include "BitmapRecords.h"

/// Parameters of a colour-levels curve. The neutral item is 1.0, 0, 255, 0, 255.
struct COLORLEVELSITEM {
  float fGamma;       ///< the curve's exponent is 1 / fGamma
  uint8_t byInLow;    ///< inputs at or below it give byOutLow
  uint8_t byInHigh;   ///< inputs at or above it give byOutHigh
  uint8_t byOutLow;   ///< output black point
  uint8_t byOutHigh;  ///< output white point
};
static_assert(sizeof(COLORLEVELSITEM) == 8);

/// One ink's adjustments for a page. Channels are 0 red, 1 green, 2 blue and 3 all
/// three together; other channel numbers are ignored everywhere.
class CBmpProcessing {
 public:
  /// Neutral levels that are not ready yet, and a light table without effect.
  CBmpProcessing() noexcept;
  virtual ~CBmpProcessing() = default;
  CBmpProcessing(const CBmpProcessing&) = default;
  CBmpProcessing& operator=(const CBmpProcessing&) = default;

  /// Resets the channel (channel 3: all), takes over `item` and builds its
  /// tables. A null item does nothing.
  void SetColorLevelsData(COLORLEVELSITEM* item, int index) noexcept;

  /// Applies the item of the channel to its table (channel 3: to those of 0, 1
  /// and 2; table 3 stays as it is) and marks it ready (channel 3: all four).
  void InitColorLevelsTable(int index) noexcept;

  /// Makes the channel (channel 3: all tables) neutral and not ready.
  void InitColorLevelsData(int index) noexcept;

  /// Maps a colour through the tables; rgbReserved stays as it was. `out` is not
  /// touched while the red or the green table is not ready (blue is not asked:
  /// whoever builds tables builds all at once), nor when it is null.
  void GetColorLevelsData(tagRGBQUAD in, tagRGBQUAD* out) noexcept;

  /// Builds the light table: `bright` is added to every level, `contrast` is a
  /// percentage added to the 100 that scale the distance from 128.
  void SetLightTable(int bright, int contrast) noexcept;

  /// Maps a pixel through the light table; pure black and pure white stay as they
  /// are. The two numbers are not used. Returns 1.
  int Light(unsigned char& r, unsigned char& g, unsigned char& b, int, int) noexcept;

  /// Turns a 24-bit bitmap whose rows are padded to multiples of 4 bytes.
  ///
  /// `rotation` 1 is a quarter turn counter-clockwise (row 0 on top), 2 a half
  /// turn, 3 a quarter turn clockwise, anything else a copy; the padding of the
  /// result is 0xFF. When `*dst` is null it receives a new buffer that the caller
  /// releases with free; otherwise the result goes to the caller's buffer, which
  /// must hold it and may be `src` itself. Sizes are in bytes, widths in pixels.
  /// Returns false and changes nothing for a null pointer, a `bitCount` other than
  /// 24, sizes that are not positive or too large, and when memory runs out.
  bool RotateImg(unsigned char* src, int64_t width, int64_t height, unsigned char** dst,
                 int64_t* dstSize, int64_t* dstWidth, int64_t* dstHeight, int bitCount,
                 int rotation) noexcept;

  COLORLEVELSITEM m_Levels[4];
  uint8_t m_LevelsTable[4][256];
  uint8_t m_bLevelsReady[4];
  uint16_t m_LightTable[256];
};
