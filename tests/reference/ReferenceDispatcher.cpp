#include "reference/ReferenceDispatcher.h"

#include <algorithm>

#include "reference/ReferenceNumbers.h"

namespace velka::reference {

namespace {

int64_t offsetInDots(int32_t tenthsOfMillimetre, int dpi) {
  const double dots = static_cast<double>(tenthsOfMillimetre) * 100 * dpi / 25400 + 0.5;
  return truncate32(dots);
}

int64_t directed(int32_t direction, int64_t atZero, int64_t atOne) {
  if (direction == 0) {
    return atZero;
  }
  return direction == 1 ? atOne : 0;
}

int64_t divided(int64_t value, double scale) {
  return truncate32(static_cast<double>(value) / scale);
}

uint32_t asUnsigned(int64_t value) {
  return static_cast<uint32_t>(value);
}

// The output geometry before any offset.
Geometry scaledGeometry(const DeviceState& device) {
  Geometry g = device.source;
  const int32_t offset = truncate32(device.source.offsetX / device.scaleX);
  g.offsetX = offset;
  g.offsetY = offset;  // the vertical offset takes the horizontal value, on purpose
  g.vertRes = asUnsigned(divided(device.source.vertRes, device.scaleY));
  g.vertSize = asUnsigned(divided(device.source.vertSize, device.scaleY));
  g.sizeY = wrap32(divided(device.source.sizeY, device.scaleY));
  return g;
}

void growGeometry(Geometry& g, int64_t& height, Shift shift, DeviceState& device) {
  g.horzSize = asUnsigned(divided(device.source.horzSize, device.scaleX) + shift.x);
  g.horzRes = asUnsigned(divided(device.source.horzRes, device.scaleX) + shift.x);
  g.sizeX = wrap32(divided(device.source.sizeX, device.scaleX) + shift.x);
  const bool portrait = device.orientation == 1;
  const int64_t growth = portrait ? shift.y : wrap32(-shift.y);
  height = wrap32(height + growth);
  g.vertRes = asUnsigned(g.vertRes + growth);
  g.vertSize = asUnsigned(g.vertSize + growth);
  g.sizeY = wrap32(g.sizeY + growth);
  if (portrait && shift.y != 0) {
    device.source.sizeY = g.sizeY;
  }
  if (!portrait && shift.x != 0) {
    device.source.sizeX = g.sizeX;
  }
}

void copyWhole(const Bytes& source, Bytes& destination) {
  for (size_t i = 0; i < source.size() && i < destination.size(); ++i) {
    destination.at(i) = source.at(i);
  }
}

void copyShifted(const Bytes& source, size_t sourceStride, Bytes& destination,
                 size_t destinationStride, Shift shift) {
  const size_t length = std::min(sourceStride, destinationStride);
  const auto toColumn = static_cast<size_t>(std::max<int64_t>(shift.x, 0)) * 3;
  const auto fromColumn = static_cast<size_t>(std::max<int64_t>(-shift.x, 0)) * 3;
  for (int64_t row = std::max<int64_t>(shift.y, 0);; ++row) {
    const int64_t sourceRow = row - shift.y;
    const size_t to = static_cast<size_t>(row) * destinationStride + toColumn;
    const size_t from = static_cast<size_t>(sourceRow) * sourceStride + fromColumn;
    // A row that would end exactly at a buffer's end is not copied any more.
    if (to + length >= destination.size() || from + length >= source.size()) {
      return;
    }
    for (size_t i = 0; i < length; ++i) {
      destination.at(to + i) = source.at(from + i);
    }
  }
}

}  // namespace

Shift printShift(const tagOEMCFG& options, int orientation, int printQuality, int yResolution) {
  if (options.sHrzOffset == 0 && options.sVtcOffset == 0) {
    return {};
  }
  const int64_t hx = offsetInDots(options.sHrzOffset, printQuality);
  const int64_t vy = offsetInDots(options.sVtcOffset, yResolution);
  Shift shift;
  if (orientation == 1) {
    shift.x = directed(options.sHrzDir, hx, wrap32(-hx));
    shift.y = directed(options.sVtcDir, vy, wrap32(-vy));
  } else {
    shift.y = directed(options.sHrzDir, wrap32(-hx), hx);
    shift.x = directed(options.sVtcDir, vy, wrap32(-vy));
  }
  if (options.sRotation != 0) {
    shift.x = wrap32(-shift.x);
    shift.y = wrap32(-shift.y);
  }
  return shift;
}

int64_t quarterTurns(const tagOEMCFG& options, int orientation) {
  const int64_t rotation = options.sRotation;
  return orientation == 2 ? ((rotation * 90 + 270) % 360) / 90 : rotation;
}

size_t paddedStride(int64_t width, int64_t bitCount) {
  return static_cast<size_t>((bitCount * width + 31) / 32 * 4);
}

PageImage rotate(const PageImage& page, int64_t turns) {
  const bool sideways = turns == 1 || turns == 3;
  PageImage turned;
  turned.width = sideways ? page.height : page.width;
  turned.height = sideways ? page.width : page.height;
  turned.stride = paddedStride(turned.width, 24);
  turned.bytes.assign(turned.stride * static_cast<size_t>(turned.height), 0xFF);
  for (int y = 0; y < page.height; ++y) {
    for (int x = 0; x < page.width; ++x) {
      int row = y;
      int column = x;
      if (turns == 1) {
        row = page.width - 1 - x;
        column = y;
      } else if (turns == 2) {
        row = page.height - 1 - y;
        column = page.width - 1 - x;
      } else if (turns == 3) {
        row = x;
        column = page.height - 1 - y;
      }
      const size_t at = static_cast<size_t>(row) * turned.stride + 3 * static_cast<size_t>(column);
      const Pixel pixel = page.pixelAt(y, x);
      turned.bytes.at(at) = pixel.p0;
      turned.bytes.at(at + 1) = pixel.p1;
      turned.bytes.at(at + 2) = pixel.p2;
    }
  }
  return turned;
}

Geometry turnGeometry(const Geometry& before, int64_t turns) {
  Geometry after = before;
  const int64_t restX = int64_t{before.sizeX} - before.horzRes - before.offsetX;
  const int64_t restY = int64_t{before.sizeY} - before.vertRes - before.offsetY;
  if (turns == 2) {
    after.offsetX = wrap32(restX);
    after.offsetY = wrap32(restY);
  }
  if (turns == 1 || turns == 3) {
    after.horzRes = before.vertRes;
    after.vertRes = before.horzRes;
    after.horzSize = before.vertSize;
    after.vertSize = before.horzSize;
    after.sizeX = before.sizeY;
    after.sizeY = before.sizeX;
    after.offsetX = turns == 1 ? before.offsetY : wrap32(restY);
    after.offsetY = turns == 1 ? wrap32(restX) : before.offsetX;
  }
  return after;
}

OutputPage layOutPage(const SourceBitmap& source, const tagOEMCFG& options, DeviceState& device) {
  OutputPage page;
  page.printQuality = device.printQuality;
  page.yResolution = device.yResolution;
  if (device.scaleX > 1.0 || device.scaleY > 1.0) {
    page.printQuality = 360;
    page.yResolution = 360;
  }
  const Shift shift = printShift(options, device.orientation, page.printQuality, page.yResolution);
  page.geometry = scaledGeometry(device);
  int64_t height = source.height;
  growGeometry(page.geometry, height, shift, device);
  const int64_t width = wrap32(device.width + shift.x);
  page.startCommands = startDocument(device.orientation, page.geometry.sizeX, page.geometry.sizeY,
                                     page.printQuality, page.yResolution);
  if (width <= 0 || height <= 0) {
    page.allocated = true;  // an empty page: nothing to copy or turn
    return page;
  }
  const size_t stride = paddedStride(width, device.bitCount);
  if (width > INT32_MAX || height > INT32_MAX ||
      stride > UINT32_MAX / static_cast<uint64_t>(height)) {
    return page;
  }
  page.allocated = true;
  page.image.width = static_cast<int>(width);
  page.image.height = static_cast<int>(height);
  page.image.stride = stride;
  page.image.bytes.assign(stride * static_cast<size_t>(height), 0xFF);
  if (shift.x == 0 && shift.y == 0) {
    copyWhole(source.bytes, page.image.bytes);
  } else if (source.height > 0) {
    const size_t sourceStride = source.bytes.size() / static_cast<size_t>(source.height);
    copyShifted(source.bytes, sourceStride, page.image.bytes, stride, shift);
  }
  const int64_t turns = quarterTurns(options, device.orientation);
  if (turns != 0 && device.bitCount == 24) {
    page.image = rotate(page.image, turns);
    page.geometry = turnGeometry(page.geometry, turns);
  }
  return page;
}

bool renderPage(const SourceBitmap& source, const tagOEMCFG& options, uint32_t pageNumber,
                DeviceState& device, GeneratorState& generator, Bytes& out) {
  const OutputPage page = layOutPage(source, options, device);
  append(out, page.startCommands);
  if (!page.allocated) {
    return false;
  }
  const Separation planes = separatePage(page.image, page.printQuality, page.yResolution, options);
  if (planes.firstRedRow) {
    generator.firstRedRow = *planes.firstRedRow;
  }
  const PageSetting setting{options, page.printQuality, page.yResolution, device.collate,
                            pageNumber};
  return encodeAndSend(planes, setting, generator, out);
}

}  // namespace velka::reference
