// One page to two halftoned ink planes and the bands to be printed, one pixel at
// a time: columns outside, rows inside, as the first red row depends on it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "BitmapRecords.h"
#include "DeviceRecords.h"
#include "reference/ReferenceTone.h"

namespace velka::reference {

/// Rows of blue, green, red bytes; what lies past the data reads as white.
struct PageImage {
  std::vector<uint8_t> bytes;
  size_t stride = 0;
  int width = 0;   ///< pixels; 0 or less: an empty page
  int height = 0;  ///< rows; 0 or less: an empty page

  [[nodiscard]] uint8_t byteAt(int row, size_t byteInRow) const;
  [[nodiscard]] Pixel pixelAt(int row, int column) const;
};

/// The planes hold width x height bytes; 0 = full ink, 255 = none.
struct Separation {
  int width = 0;
  int height = 0;
  std::vector<uint8_t> black;
  std::vector<uint8_t> red;
  bool blackFlag = false;  ///< the black plane took a pixel
  bool redFlag = false;    ///< the red plane took a pixel
  std::vector<_RECTL> bands;
  std::optional<int> firstRedRow;  ///< row of the pixel that set the red flag
};

/// Where a pixel goes.
enum class Ink { None, Black, Red };
Ink classify(Pixel pixel, const tagOEMCFG& options);

/// The planes with their tones, before halftoning.
Separation separateTones(const PageImage& page, int printQuality, int yResolution,
                         const tagOEMCFG& options);

/// The planes as dots: `separateTones`, then each inked plane dithered.
Separation separatePage(const PageImage& page, int printQuality, int yResolution,
                        const tagOEMCFG& options);

}  // namespace velka::reference
