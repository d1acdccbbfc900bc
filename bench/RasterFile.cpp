#include "RasterFile.h"

#include <cups/raster.h>
#include <fcntl.h>
#include <unistd.h>

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace velka::bench {
namespace {

struct RasterCloser {
  void operator()(cups_raster_t* raster) const noexcept { cupsRasterClose(raster); }
};
using UniqueRaster = std::unique_ptr<cups_raster_t, RasterCloser>;

cups_page_header2_t headerOf(const Format& format, unsigned bitsPerColour, unsigned colours) {
  cups_page_header2_t header = {};
  header.HWResolution[0] = format.xdpi;
  header.HWResolution[1] = format.ydpi;
  header.PageSize[0] = format.width * 72 / format.xdpi;
  header.PageSize[1] = format.height * 72 / format.ydpi;
  header.cupsPageSize[0] = static_cast<float>(header.PageSize[0]);
  header.cupsPageSize[1] = static_cast<float>(header.PageSize[1]);
  header.NumCopies = 1;
  header.cupsWidth = format.width;
  header.cupsHeight = format.height;
  header.cupsBitsPerColor = bitsPerColour;
  header.cupsBitsPerPixel = bitsPerColour * colours;
  header.cupsBytesPerLine = (format.width * header.cupsBitsPerPixel + 7) / 8;
  header.cupsColorOrder = CUPS_ORDER_CHUNKED;
  header.cupsColorSpace = colours == 1 ? CUPS_CSPACE_K : CUPS_CSPACE_RGB;
  header.cupsNumColors = colours;
  return header;
}

using RowOf = std::function<std::span<const uint8_t>(unsigned)>;

bool write(const std::string& path, unsigned pages, cups_page_header2_t header,
           const RowOf& rowOf) {
  const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
  if (fd < 0) return false;
  const UniqueRaster raster(cupsRasterOpen(fd, CUPS_RASTER_WRITE));
  bool whole = raster != nullptr;
  for (unsigned page = 0; whole && page < pages; ++page) {
    whole = cupsRasterWriteHeader2(raster.get(), &header) != 0;
    for (unsigned y = 0; whole && y < header.cupsHeight; ++y) {
      const auto row = rowOf(y);
      whole = cupsRasterWritePixels(raster.get(), const_cast<uint8_t*>(row.data()),
                                    static_cast<unsigned>(row.size())) != 0;
    }
  }
  return close(fd) == 0 && whole;
}

struct Page {
  cups_page_header2_t header = {};
  std::vector<uint8_t> bytes;
};

std::optional<Page> readPage(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return std::nullopt;
  Page page;
  {
    const UniqueRaster raster(cupsRasterOpen(fd, CUPS_RASTER_READ));
    if (raster != nullptr && cupsRasterReadHeader2(raster.get(), &page.header) != 0) {
      page.bytes.resize(size_t{page.header.cupsBytesPerLine} * page.header.cupsHeight);
      for (size_t at = 0; at < page.bytes.size(); at += page.header.cupsBytesPerLine)
        cupsRasterReadPixels(raster.get(), page.bytes.data() + at, page.header.cupsBytesPerLine);
    }
  }
  close(fd);
  if (page.bytes.empty()) return std::nullopt;
  return page;
}

}  // namespace

bool writeRaster(const std::string& path, Kind kind, const Format& format, unsigned pages) {
  TestPage page(kind, format);
  return write(path, pages, headerOf(format, 8, 3), [&](unsigned y) { return page.row(y); });
}

bool writeOneBitRaster(const std::string& path, Kind kind, const Format& format, unsigned pages) {
  const cups_page_header2_t header = headerOf(format, 1, 1);
  std::vector<uint8_t> bits(header.cupsBytesPerLine);
  TestPage page(kind, format);
  return write(path, pages, header, [&](unsigned y) {
    const auto row = page.row(y);
    bits.assign(bits.size(), 0);
    for (size_t x = 0; x < format.width; ++x)
      if (row[3 * x + 1] < 128) bits[x / 8] |= static_cast<uint8_t>(0x80U >> (x % 8));
    return std::span<const uint8_t>(bits);
  });
}

bool repeatRaster(const std::string& page, const std::string& path, unsigned pages) {
  const auto source = readPage(page);
  if (!source) return false;
  const size_t stride = source->header.cupsBytesPerLine;
  return write(path, pages, source->header, [&](unsigned y) {
    return std::span<const uint8_t>(source->bytes).subspan(y * stride, stride);
  });
}

uint64_t readRaster(const std::string& path) {
  const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return 0;
  uint64_t bytes = 0;
  {
    const UniqueRaster raster(cupsRasterOpen(fd, CUPS_RASTER_READ));
    cups_page_header2_t header = {};
    std::vector<uint8_t> line;
    while (raster != nullptr && cupsRasterReadHeader2(raster.get(), &header) != 0) {
      line.resize(header.cupsBytesPerLine);
      for (unsigned y = 0; y < header.cupsHeight; ++y)
        bytes += cupsRasterReadPixels(raster.get(), line.data(), header.cupsBytesPerLine);
    }
  }
  close(fd);
  return bytes;
}

}  // namespace velka::bench
