// Whole jobs whose pages come from a PDF, and what the literal reference makes of them
// when it is fed with the tool's own pictures.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "jobs/JobFixture.h"
#include "reference/ReferenceDispatcher.h"
#include "support/TestPdf.h"

namespace velka::testing {

using Pages = std::vector<RasterPage>;

// What one page of the job holds: a picture, or nothing where none can be had.
using Pictures = std::vector<std::optional<Picture>>;

inline reference::DeviceState firstPageDevice(const cups_page_header2_t& header) {
  reference::DeviceState device;
  device.printQuality = static_cast<int16_t>(header.HWResolution[0]);
  device.yResolution = static_cast<int16_t>(header.HWResolution[1]);
  if (header.HWResolution[0] >= 361) {
    device.scaleX = header.HWResolution[0] / 360.0;
    device.scaleY = header.HWResolution[1] / 360.0;
  }
  device.width = static_cast<int32_t>(header.cupsWidth);
  device.source.horzRes = header.cupsWidth;
  device.source.vertRes = header.cupsHeight;
  device.source.sizeX = static_cast<int32_t>(header.cupsWidth);
  device.source.sizeY = static_cast<int32_t>(header.cupsHeight);
  return device;
}

inline reference::SourceBitmap sourceOf(const RasterPage& page,
                                        const std::optional<Picture>& picture,
                                        reference::DeviceState& device) {
  const cups_page_header2_t& h = page.header;
  if (!picture) {
    const size_t stride = reference::paddedStride(h.cupsWidth, 24);
    return {Bytes(stride * h.cupsHeight, 0xFF), static_cast<int32_t>(h.cupsHeight)};
  }
  device.width = picture->width;
  device.source.sizeX = picture->width;
  device.source.sizeY = picture->height;
  device.source.horzRes = static_cast<uint32_t>(picture->width);
  device.source.vertRes = static_cast<uint32_t>(picture->height);
  return {bitmapOf(*picture), picture->height};
}

inline Bytes expectedPdfStream(tagOEMCFG options, const Pages& pages, const Pictures& pictures) {
  options.sCopies = static_cast<int16_t>(pages[0].header.NumCopies);
  reference::DeviceState device = firstPageDevice(pages[0].header);
  reference::GeneratorState generator;
  Bytes out;
  for (size_t i = 0; i < pages.size(); ++i)
    reference::renderPage(sourceOf(pages[i], pictures[i], device), options,
                          static_cast<uint32_t>(i + 1), device, generator, out);
  reference::sendEndOfJob(options, generator, out);
  return out;
}

// Raster pages whose lines hold ink, which must not show.
inline Pages rasterPages(size_t count, unsigned xdpi = 180, unsigned ydpi = 180,
                         unsigned width = 150, unsigned height = 100) {
  return Pages(count, inkedPage(rgbHeader(width, height, xdpi, ydpi), 2));
}

inline Pictures picturesOf(const std::string& pdf, const Pages& pages) {
  Pictures pictures;
  for (size_t i = 0; i < pages.size(); ++i) {
    const auto& dpi = pages[i].header.HWResolution;
    const Picture picture = drawPage(pdf, static_cast<int>(i + 1), dpi[0], dpi[1]);
    pictures.push_back(picture.width > 0 ? std::optional(picture) : std::nullopt);
  }
  return pictures;
}

inline FilterJob jobOf(const std::string& id, const TempFile& ppd, const Pages& pages) {
  FilterJob job;
  job.arguments[0] = id;
  job.ppd = ppd.path();
  job.input = rasterStream(pages);
  return job;
}

// Feeds a job's input once `before` has been called with the filter's process id.
inline void feedAfter(FilterJob& job, const std::function<void(int pid)>& before) {
  job.feed = [&job, before](int pid, int fd) {
    before(pid);
    for (size_t done = 0; done < job.input.size();) {
      const ssize_t n = write(fd, job.input.data() + done, job.input.size() - done);
      if (n <= 0) return;
      done += static_cast<size_t>(n);
    }
  };
}

}  // namespace velka::testing
