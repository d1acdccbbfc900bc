#include "support/RasterBuilder.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <random>

namespace velka::testing {

cups_page_header2_t rgbHeader(unsigned width, unsigned height, unsigned xdpi, unsigned ydpi) {
  cups_page_header2_t header = {};
  header.HWResolution[0] = xdpi;
  header.HWResolution[1] = ydpi;
  header.NumCopies = 1;
  header.PageSize[0] = 595;
  header.PageSize[1] = 842;
  header.cupsWidth = width;
  header.cupsHeight = height;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsBytesPerLine = width * 3;
  header.cupsColorOrder = CUPS_ORDER_CHUNKED;
  header.cupsColorSpace = CUPS_CSPACE_SRGB;
  header.cupsNumColors = 3;
  return header;
}

namespace {

struct Rgb {
  uint8_t r, g, b;
};

// A run's colour: mostly what office pages hold, sometimes anything.
Rgb runColour(std::mt19937& random) {
  const auto byte = [&] { return static_cast<uint8_t>(random()); };
  switch (random() % 8) {
    case 0:
    case 1:
      return {0, 0, 0};
    case 2:
      return {255, 0, 0};
    case 3: {
      const uint8_t grey = byte();
      return {grey, grey, grey};
    }
    case 4:
      return {byte(), static_cast<uint8_t>(byte() / 4), static_cast<uint8_t>(byte() / 4)};
    case 5:
      return {byte(), byte(), byte()};
    default:
      return {255, 255, 255};
  }
}

}  // namespace

RasterPage inkedPage(const cups_page_header2_t& header, unsigned seed) {
  std::mt19937 random(seed);
  RasterPage page = {header, {}};
  for (unsigned row = 0; row < header.cupsHeight; ++row) {
    Bytes line(header.cupsBytesPerLine, 0xFF);
    // Half of the rows come in blank stretches, so that bands start anywhere.
    if ((row / 37 + seed) % 2 == 0) {
      for (size_t x = 0; x + 3 <= line.size();) {
        const Rgb colour = runColour(random);
        const size_t end = std::min(line.size(), x + 3 * (1 + random() % 40));
        for (; x + 3 <= end; x += 3) {
          line[x] = colour.r;
          line[x + 1] = colour.g;
          line[x + 2] = colour.b;
        }
        if (x + 3 > line.size()) break;
      }
    }
    page.lines.push_back(std::move(line));
  }
  return page;
}

RasterPage whitePage(const cups_page_header2_t& header) {
  return {header, std::vector<Bytes>(header.cupsHeight, Bytes(header.cupsBytesPerLine, 0xFF))};
}

Bytes rasterStream(const std::vector<RasterPage>& pages, cups_mode_t mode) {
  const int fd = memfd_create("raster", MFD_CLOEXEC);
  cups_raster_t* raster = cupsRasterOpen(fd, mode);
  for (const RasterPage& page : pages) {
    cups_page_header2_t header = page.header;
    cupsRasterWriteHeader2(raster, &header);
    for (Bytes line : page.lines)
      cupsRasterWritePixels(raster, line.data(), static_cast<unsigned>(line.size()));
  }
  cupsRasterClose(raster);
  Bytes bytes = contentsOf(fd);
  close(fd);
  return bytes;
}

Bytes rawStream(const std::vector<RasterPage>& pages) {
  const auto sync = static_cast<uint32_t>(CUPS_RASTER_SYNC);
  Bytes bytes(sizeof sync);
  std::memcpy(bytes.data(), &sync, sizeof sync);
  for (const RasterPage& page : pages) {
    const auto* header = reinterpret_cast<const uint8_t*>(&page.header);
    bytes.insert(bytes.end(), header, header + sizeof page.header);
    for (const Bytes& line : page.lines) bytes.insert(bytes.end(), line.begin(), line.end());
  }
  return bytes;
}

bool cupsTakes(const Bytes& stream) {
  const int fd = memfd_create("raster", MFD_CLOEXEC);
  const bool whole = write(fd, stream.data(), stream.size()) == static_cast<ssize_t>(stream.size());
  lseek(fd, 0, SEEK_SET);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  cups_page_header2_t header = {};
  const bool taken = whole && cupsRasterReadHeader2(raster, &header) != 0;
  cupsRasterClose(raster);
  close(fd);
  return taken;
}

}  // namespace velka::testing
