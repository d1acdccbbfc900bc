#include "RasterPixels.h"

#include <cups/raster.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

#include "CheckedMath.h"
#include "Files.h"

namespace velka::serve {
namespace {

constexpr unsigned kDepth = 24;
constexpr int64_t kMostBytes = int64_t{1} << 30;

class RasterFile {
 public:
  explicit RasterFile(const std::string& name)
      : file_(open(name.c_str(), O_RDONLY | O_CLOEXEC)),
        raster_(file_ < 0 ? nullptr : cupsRasterOpen(file_, CUPS_RASTER_READ)) {}
  ~RasterFile() {
    if (raster_ != nullptr) cupsRasterClose(raster_);
    if (file_ >= 0) (void)close(file_);
  }
  RasterFile(const RasterFile&) = delete;
  RasterFile& operator=(const RasterFile&) = delete;
  [[nodiscard]] cups_raster_t* get() const { return raster_; }

 private:
  int file_;
  cups_raster_t* raster_;
};

// Whether pages come as three bytes a pixel, in a size that memory holds.
view::Problem judge(const cups_page_header2_t& header) {
  const int64_t least = 3 * int64_t{header.cupsWidth};
  if (header.cupsBitsPerPixel != kDepth || header.cupsBytesPerLine < least ||
      header.cupsColorOrder != CUPS_ORDER_CHUNKED) {
    return "the raster is none of 24 bits a pixel";
  }
  if (header.cupsWidth == 0 || header.cupsHeight > kMostBytes / least) {
    return "the page is too large to show";
  }
  return std::nullopt;
}

double dpiOf(unsigned stated) {
  constexpr double kUsual = 180;
  return stated == 0 ? kUsual : stated;
}

// A pixel of a page of 60 x 180 dpi is three wide.
class PixelRows : public view::PictureRows {
 public:
  PixelRows(const view::PictureSize& size, const RasterPixels& pixels)
      : PictureRows(size, {}), pixels_(pixels) {
    for (int64_t x = 0; x < size.width; ++x)
      columns_.push_back(std::min(x * pixels.width / size.width, pixels.width - 1));
  }

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    const auto rows = static_cast<int64_t>(pixels.size() / width());
    auto* to = pixels.data();
    for (int64_t row = top; row < top + rows; ++row) {
      const int64_t y = std::min(row * pixels_.height / size().height, pixels_.height - 1);
      for (const int64_t x : columns_) *to++ = pixels_.at(x, y);
    }
  }

 private:
  const RasterPixels& pixels_;
  std::vector<int64_t> columns_;
};

}  // namespace

view::Problem readRaster(const std::string& name, uint64_t number, RasterPixels& pixels) {
  const RasterFile file(name);
  if (file.get() == nullptr) return view::systemTrouble(name);
  cups_page_header2_t header = {};
  std::vector<uint8_t> line;
  for (uint64_t page = 1; cupsRasterReadHeader2(file.get(), &header) != 0; ++page) {
    if (auto problem = judge(header)) return problem;
    line.resize(header.cupsBytesPerLine);
    const auto wanted = static_cast<unsigned>(line.size());
    const size_t row = size_t{3} * header.cupsWidth;
    if (page == number) pixels.rgb.assign(row * header.cupsHeight, 0xFF);
    for (unsigned y = 0; y < header.cupsHeight; ++y) {
      if (cupsRasterReadPixels(file.get(), line.data(), wanted) != wanted) break;
      if (page == number)
        std::copy_n(line.begin(), row, pixels.rgb.begin() + static_cast<int64_t>(row * y));
    }
    if (page < number) continue;
    pixels.width = header.cupsWidth;
    pixels.height = header.cupsHeight;
    pixels.acrossDpi = dpiOf(header.HWResolution[0]);
    pixels.alongDpi = dpiOf(header.HWResolution[1]);
    return std::nullopt;
  }
  return "the raster has no page " + std::to_string(number);
}

view::Rows rowsOf(const RasterPixels& pixels) {
  const double dpi = std::max(pixels.acrossDpi, pixels.alongDpi);
  const view::PictureSize size =
      view::wholePixels(static_cast<double>(pixels.width) * dpi / pixels.acrossDpi,
                        static_cast<double>(pixels.height) * dpi / pixels.alongDpi, dpi);
  return std::make_unique<PixelRows>(size, pixels);
}

}  // namespace velka::serve
