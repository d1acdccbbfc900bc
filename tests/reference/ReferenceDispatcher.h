// One page bitmap to the output bitmap that is encoded: print offset, output
// geometry, copy, rotation.
#pragma once

#include <cstdint>

#include "DeviceRecords.h"
#include "reference/ReferenceEncoder.h"

namespace velka::reference {

/// Page geometry in pixels.
struct Geometry {
  uint32_t horzSize = 0;
  uint32_t vertSize = 0;
  uint32_t horzRes = 0;
  uint32_t vertRes = 0;
  int32_t offsetX = 0;
  int32_t offsetY = 0;
  int32_t sizeX = 0;
  int32_t sizeY = 0;
};

/// What the device record and the device mode hold for the whole job.
struct DeviceState {
  int16_t orientation = 1;  ///< 1 portrait, anything else landscape
  int16_t printQuality = 0;
  int16_t yResolution = 0;
  bool collate = false;
  double scaleX = 1.0;
  double scaleY = 1.0;
  int32_t width = 0;  ///< pixels, from the first page
  uint16_t bitCount = 24;
  Geometry source;  ///< its height (or width) grows with every page that is offset
};

/// The page bitmap as the raster lines left it.
struct SourceBitmap {
  Bytes bytes;
  int32_t height = 0;
};

/// Dots right and down; negative left and up.
struct Shift {
  int64_t x = 0;
  int64_t y = 0;
};

/// Resolutions in dots per inch, as sent to the printer.
Shift printShift(const tagOEMCFG& options, int orientation, int printQuality, int yResolution);

/// Quarter turns for the page.
int64_t quarterTurns(const tagOEMCFG& options, int orientation);

/// Bytes of a row padded to a multiple of 4.
size_t paddedStride(int64_t width, int64_t bitCount);

/// 1 counter-clockwise, 2 half, 3 clockwise, anything else a copy. The page must
/// have 24 bits a pixel and rows of `paddedStride`.
PageImage rotate(const PageImage& page, int64_t turns);

/// The geometry after `turns` quarter turns.
Geometry turnGeometry(const Geometry& before, int64_t turns);

/// What a page is sent with.
struct OutputPage {
  bool allocated = false;  ///< false: the output bitmap is beyond 32 bits of bytes
  PageImage image;
  Geometry geometry;  ///< after rotation
  int printQuality = 0;
  int yResolution = 0;
  Bytes startCommands;
};

/// Prepares the page and updates `device.source`.
OutputPage layOutPage(const SourceBitmap& source, const tagOEMCFG& options, DeviceState& device);

/// Lays out, separates and encodes one page. The encoder's result.
bool renderPage(const SourceBitmap& source, const tagOEMCFG& options, uint32_t pageNumber,
                DeviceState& device, GeneratorState& generator, Bytes& out);

}  // namespace velka::reference
