#include "Pins.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "CairoSurface.h"

namespace velka::view {
namespace {

// Dots are stamped at eighths of a pixel, which no eye tells from exact places.
constexpr int kPhases = 8;

// A dot's ink on the pixels around it, 0 to 255.
struct Stamp {
  int size = 0;
  std::vector<uint8_t> ink;
};

// A disc whose middle lies `phaseX`, `phaseY` eighths of a pixel right of and below
// the middle pixel's corner.
Stamp makeStamp(double radius, int phaseX, int phaseY) {
  const int reach = static_cast<int>(std::ceil(radius)) + 1;
  Stamp stamp;
  stamp.size = 2 * reach + 1;
  const Surface surface(cairo_image_surface_create(CAIRO_FORMAT_A8, stamp.size, stamp.size));
  const Context context(cairo_create(surface.get()));
  cairo_arc(context.get(), reach + static_cast<double>(phaseX) / kPhases,
            reach + static_cast<double>(phaseY) / kPhases, radius, 0, 2 * std::numbers::pi);
  cairo_fill(context.get());
  cairo_surface_flush(surface.get());
  const unsigned char* data = cairo_image_surface_get_data(surface.get());
  const int stride = cairo_image_surface_get_stride(surface.get());
  stamp.ink.assign(static_cast<size_t>(stamp.size) * static_cast<size_t>(stamp.size), 0);
  for (int y = 0; data != nullptr && y < stamp.size; ++y) {
    std::copy_n(data + static_cast<std::ptrdiff_t>(y) * stride, stamp.size,
                stamp.ink.begin() + static_cast<std::ptrdiff_t>(y) * stamp.size);
  }
  return stamp;
}

// How much of each pixel an ink covers.
class InkLayer {
 public:
  InkLayer(const Picture& picture, double radius)
      : width_(picture.width),
        height_(picture.height),
        radius_(radius),
        ink_(picture.pixels.size(), 0) {}

  void strike(double x, double y) {
    const auto column = static_cast<int64_t>(std::floor(x));
    const auto row = static_cast<int64_t>(std::floor(y));
    put(stampAt(phase(x), phase(y)), column, row);
  }

  [[nodiscard]] uint8_t at(size_t pixel) const { return ink_[pixel]; }

 private:
  static int phase(double place) {
    return static_cast<int>((place - std::floor(place)) * kPhases) % kPhases;
  }

  const Stamp& stampAt(int phaseX, int phaseY) {
    Stamp& stamp = stamps_[static_cast<size_t>(phaseY) * kPhases + static_cast<size_t>(phaseX)];
    if (stamp.size == 0) stamp = makeStamp(radius_, phaseX, phaseY);
    return stamp;
  }

  // Ink on ink of the same colour is no darker.
  void put(const Stamp& stamp, int64_t column, int64_t row) {
    const int64_t left = column - stamp.size / 2;
    const int64_t top = row - stamp.size / 2;
    for (int64_t y = std::max<int64_t>(0, -top); y < std::min<int64_t>(stamp.size, height_ - top);
         ++y) {
      for (int64_t x = std::max<int64_t>(0, -left);
           x < std::min<int64_t>(stamp.size, width_ - left); ++x) {
        uint8_t& pixel = ink_[static_cast<size_t>((top + y) * width_ + left + x)];
        pixel = std::max(pixel, stamp.ink[static_cast<size_t>(y) * static_cast<size_t>(stamp.size) +
                                          static_cast<size_t>(x)]);
      }
    }
  }

  int64_t width_;
  int64_t height_;
  double radius_;
  std::vector<uint8_t> ink_;
  std::array<Stamp, size_t{kPhases} * kPhases> stamps_;
};

// An ink takes from each channel what its own colour lacks.
uint32_t inked(uint32_t colour, uint32_t ink, uint32_t amount) {
  uint32_t result = 0;
  for (const unsigned shift : {16U, 8U, 0U}) {
    const uint32_t channel = (colour >> shift) & 0xFFU;
    const uint32_t lacking = 255 - ((ink >> shift) & 0xFFU);
    result |= (channel * (255 * 255 - lacking * amount) / (255 * 255)) << shift;
  }
  return result;
}

}  // namespace

Drawing drawPins(const decode::Page& page, const PaperView& view, int64_t length, double dpi,
                 uint64_t& outside) {
  const double perUnit = dpi / static_cast<double>(decode::kUnitsPerInch);
  Drawing drawing = blankPicture(std::ceil(static_cast<double>(view.width) * perUnit),
                                 std::ceil(static_cast<double>(length) * perUnit), dpi);
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr) return drawing;
  const double radius = kPinDiameter / 2 / 25.4 * dpi;
  std::array<InkLayer, 2> layers{InkLayer(*picture, radius), InkLayer(*picture, radius)};
  const double middle = static_cast<double>(view.grid.dotHeight() * view.grid.cell()) / 2;
  outside = 0;
  for (const decode::Block& block : page.blocks) {
    const double half = static_cast<double>(block.mode.columnPitch) / 2;
    forEachDot(block, view.model, [&](decode::Ink ink, int64_t x, int64_t y) {
      if (x < 0 || y < 0 || x >= view.width || y >= length) {
        ++outside;
        return;
      }
      layers.at(static_cast<size_t>(ink))
          .strike((static_cast<double>(x) + half) * perUnit,
                  (static_cast<double>(y) + middle) * perUnit);
    });
  }
  for (size_t i = 0; i < picture->pixels.size(); ++i) {
    uint32_t& pixel = picture->pixels[i];
    pixel = inked(inked(pixel, kRed, layers[1].at(i)), kBlack, layers[0].at(i));
  }
  return drawing;
}

}  // namespace velka::view
