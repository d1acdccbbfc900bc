#include "reference/ReferenceSeparation.h"

#include <cstdlib>

#include "reference/ReferenceHalftone.h"

namespace velka::reference {

namespace {

bool isWhite(Pixel p) {
  if (p.p0 > 239 && p.p1 > 239 && p.p2 > 239) {
    return true;
  }
  return p.p0 > 199 && p.p1 > 199 && p.p2 > 249;  // a light pixel strong in byte 2 is white too
}

bool isInRange(Pixel p, const tagRGBQUAD& min, const tagRGBQUAD& max) {
  if (min.rgbBlue > max.rgbBlue || min.rgbGreen > max.rgbGreen || min.rgbRed > max.rgbRed) {
    return false;
  }
  return min.rgbBlue <= p.p0 && p.p0 <= max.rgbBlue && min.rgbGreen <= p.p1 &&
         p.p1 <= max.rgbGreen && min.rgbRed <= p.p2 && p.p2 <= max.rgbRed;
}

bool isNearGray(Pixel p) {
  return std::abs(p.p0 - p.p1) <= 9 && std::abs(p.p0 - p.p2) <= 9 && std::abs(p.p2 - p.p1) <= 9;
}

bool isSolid(Pixel p, const tagRGBQUAD& solid) {
  return p.p0 == solid.rgbBlue && p.p1 == solid.rgbGreen && p.p2 == solid.rgbRed;
}

// The stored row is compared with itself one pixel further on, padding included.
bool isBlankRow(const PageImage& page, int row) {
  for (size_t i = 0; i < 3; ++i) {
    if (page.byteAt(row, i) != 255) {
      return false;
    }
  }
  for (size_t i = 0; i + 3 < page.stride; ++i) {
    if (page.byteAt(row, i) != page.byteAt(row, i + 3)) {
      return false;
    }
  }
  return true;
}

void setFlags(Separation& result, Ink ink, int type, int row) {
  if (ink == Ink::Red && !result.redFlag) {
    result.firstRedRow = row;
  }
  if (type == 3 && ink == Ink::Black) {
    result.blackFlag = true;
  }
  if (type == 3 && ink == Ink::Red) {
    result.redFlag = true;
  }
  if (type == 1) {
    result.blackFlag = true;
    result.redFlag = false;
  }
  if (type == 2) {
    result.blackFlag = false;
    result.redFlag = true;
  }
}

void storePixel(Separation& result, Pixel pixel, int row, int column, const tagOEMCFG& options,
                const InkTone& blackTone, const InkTone& redTone) {
  const Ink ink = classify(pixel, options);
  if (ink == Ink::None) {
    return;
  }
  uint8_t value = 0;
  if (!(options.OutputColorType == 3 && isSolid(pixel, options.solidColor))) {
    value = toneOfPixel(ink == Ink::Black ? blackTone : redTone, pixel);
  }
  const size_t index =
      static_cast<size_t>(row) * static_cast<size_t>(result.width) + static_cast<size_t>(column);
  (ink == Ink::Black ? result.black : result.red).at(index) = value;
  setFlags(result, ink, options.OutputColorType, row);
}

}  // namespace

uint8_t PageImage::byteAt(int row, size_t byteInRow) const {
  const size_t index = static_cast<size_t>(row) * stride + byteInRow;
  return index < bytes.size() ? bytes.at(index) : 255;
}

Pixel PageImage::pixelAt(int row, int column) const {
  const size_t first = 3 * static_cast<size_t>(column);
  return {byteAt(row, first), byteAt(row, first + 1), byteAt(row, first + 2)};
}

Ink classify(Pixel pixel, const tagOEMCFG& options) {
  if (isWhite(pixel)) {
    return Ink::None;
  }
  const bool inRange = isInRange(pixel, options.minColorOffset, options.maxColorOffset);
  const bool nearGray = isNearGray(pixel);
  if (options.OutputColorType == 3 && options.ColorRangeUseFor == 1) {
    return (inRange || nearGray) ? Ink::Black : Ink::Red;
  }
  if (options.OutputColorType == 3 && options.ColorRangeUseFor == 2) {
    return (inRange && !nearGray) ? Ink::Red : Ink::Black;
  }
  if (options.OutputColorType == 1) {
    return Ink::Black;
  }
  if (options.OutputColorType == 2) {
    return Ink::Red;
  }
  return Ink::None;
}

Separation separateTones(const PageImage& page, int printQuality, int yResolution,
                         const tagOEMCFG& options) {
  Separation result;
  if (page.width <= 0 || page.height <= 0) {
    return result;
  }
  result.width = page.width;
  result.height = page.height;
  const size_t size = static_cast<size_t>(page.width) * static_cast<size_t>(page.height);
  result.black.assign(size, 255);
  result.red.assign(size, 255);
  const InkTone redTone =
      makeInkTone(options.BrightnessRed, options.ContrastRed, options.LevelsRed);
  const InkTone blackTone =
      makeInkTone(options.BrightnessBlack, options.ContrastBlack, options.LevelsBlack);
  const int bandHeight = yResolution == 360 ? 48 : 24;
  int step = static_cast<int>(static_cast<float>(printQuality) / 60.0F);
  if (step < 1) {
    step = 1;
  }
  int row = 0;
  while (row < page.height) {
    if (isBlankRow(page, row)) {
      ++row;
      continue;
    }
    for (int c = 0; c < page.width; ++c) {
      for (int r = row; r < row + bandHeight && r < page.height; ++r) {
        storePixel(result, page.pixelAt(r, c), r, c, options, blackTone, redTone);
      }
    }
    const int firstColumn = 0;
    const int left = firstColumn - firstColumn % step;
    // The band keeps its full height even past the page's last row.
    result.bands.push_back({left, row, page.width - 1, row + bandHeight - 1});
    row += bandHeight;
  }
  return result;
}

Separation separatePage(const PageImage& page, int printQuality, int yResolution,
                        const tagOEMCFG& options) {
  Separation result = separateTones(page, printQuality, yResolution, options);
  const auto height = static_cast<size_t>(result.height);
  const auto width = static_cast<size_t>(result.width);
  if (result.blackFlag) {
    result.black = dither(options.sDitherBlack, result.black, height, width, width,
                          options.sDotErrorFactor, options.sDiffusionThreshold);
  }
  if (result.redFlag) {
    result.red = dither(options.sDitherRed, result.red, height, width, width,
                        options.sDotErrorFactor, options.sDiffusionThreshold);
  }
  return result;
}

}  // namespace velka::reference
