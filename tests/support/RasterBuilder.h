// CUPS raster streams made for a test.
#pragma once

#include <cups/raster.h>

#include <cstdint>
#include <string>
#include <vector>

#include "support/Capture.h"

namespace velka::testing {

/// A page header of chunked 24-bit RGB.
cups_page_header2_t rgbHeader(unsigned width, unsigned height, unsigned xdpi = 180,
                              unsigned ydpi = 180);

/// A page: its header and lines of cupsBytesPerLine bytes. Fewer lines than the
/// header says make a page that ends early.
struct RasterPage {
  cups_page_header2_t header;
  std::vector<Bytes> lines;
};

/// A page of lines from one seed: black text-like runs, red runs, greys, white.
RasterPage inkedPage(const cups_page_header2_t& header, unsigned seed);

/// A white page.
RasterPage whitePage(const cups_page_header2_t& header);

/// The stream as libcups writes it. Version 2 is compressed, version 3 is not.
Bytes rasterStream(const std::vector<RasterPage>& pages, cups_mode_t mode = CUPS_RASTER_WRITE);

/// A version 3 stream written byte by byte, so that the headers may say anything.
Bytes rawStream(const std::vector<RasterPage>& pages);

/// Whether libcups takes the first header of a stream. Which of those that lie it refuses
/// differs from release to release.
bool cupsTakes(const Bytes& stream);

}  // namespace velka::testing
