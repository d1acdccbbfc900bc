#include "reference/ReferenceJob.h"

#include <algorithm>

namespace velka::reference {

SourceBitmap readRaster(const RasterPage& page) {
  const PageHeader& header = page.header;
  const size_t stride = paddedStride(header.width, header.bitsPerPixel);
  SourceBitmap bitmap;
  bitmap.height = static_cast<int32_t>(header.height);
  bitmap.bytes.assign(stride * header.height, 0xFF);
  for (size_t row = 0; row < header.height; ++row) {
    if (row >= page.lines.size() || page.lines.at(row).size() < header.bytesPerLine) {
      break;
    }
    Bytes line = page.lines.at(row);
    const size_t length = std::min<size_t>(header.bytesPerLine, stride);
    for (size_t x = 0; x < header.width && 3 * x + 2 < length; ++x) {
      std::swap(line.at(3 * x), line.at(3 * x + 2));
    }
    for (size_t i = 0; i < length; ++i) {
      bitmap.bytes.at(row * stride + i) = line.at(i);
    }
  }
  return bitmap;
}

void ReferenceJob::start(const PageHeader& header) {
  device_.orientation = 1;  // always portrait
  device_.printQuality = static_cast<int16_t>(header.xResolution);
  device_.yResolution = static_cast<int16_t>(header.yResolution);
  device_.collate = header.collate;
  if (header.xResolution < 361) {  // only the horizontal resolution is tested
    device_.scaleX = 1.0;
    device_.scaleY = 1.0;
  } else {
    device_.scaleX = header.xResolution / 360.0;
    device_.scaleY = header.yResolution / 360.0;
  }
  device_.width = static_cast<int32_t>(header.width);
  device_.bitCount = static_cast<uint16_t>(header.bitsPerPixel);
  device_.source.horzRes = header.width;
  device_.source.vertRes = header.height;
  device_.source.sizeX = static_cast<int32_t>(header.width);
  device_.source.sizeY = static_cast<int32_t>(header.height);
  options_.sCopies = static_cast<int16_t>(header.copies);
}

void ReferenceJob::page(const RasterPage& page) {
  ++pageNumber_;
  if (pageNumber_ == 1) {
    start(page.header);
  }
  renderPage(readRaster(page), options_, pageNumber_, device_, generator_, out_);
}

void ReferenceJob::end() {
  if (pageNumber_ == 0) {
    return;
  }
  sendEndOfJob(options_, generator_, out_);
}

Bytes runJob(const tagOEMCFG& options, const std::vector<RasterPage>& pages) {
  ReferenceJob job(options);
  for (const RasterPage& page : pages) {
    job.page(page);
  }
  job.end();
  return job.stream();
}

}  // namespace velka::reference
