#include "Pins.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>
#include <vector>

namespace velka::view {
namespace {

// Pixels are looked at in 4 x 4 places, a bit each, so that the ink of dots that overlap
// adds up to what they cover together.
constexpr int kPlaces = 4;
constexpr int kPlacesInAll = kPlaces * kPlaces;
using Cover = uint16_t;

// Dots are stamped at eighths of a pixel, which no eye tells from exact places.
constexpr int kPhases = 8;

// What of the pixels around it a dot covers.
struct Stamp {
  int size = 0;
  std::vector<Cover> cover;
};

// What a disc around `x`, `y` covers of the pixel whose corner is the origin.
Cover coverOf(double x, double y, double radius) {
  Cover cover = 0;
  for (int place = 0; place < kPlacesInAll; ++place) {
    const int row = place / kPlaces;
    const double dx = (place % kPlaces + 0.5) / kPlaces - x;
    const double dy = (row + 0.5) / kPlaces - y;
    if (dx * dx + dy * dy <= radius * radius) cover |= static_cast<Cover>(1U << place);
  }
  return cover;
}

// A disc whose middle lies `phaseX`, `phaseY` eighths of a pixel right of and below
// the middle pixel's corner.
Stamp makeStamp(double radius, int phaseX, int phaseY) {
  const int reach = static_cast<int>(std::ceil(radius)) + 1;
  Stamp stamp;
  stamp.size = 2 * reach + 1;
  for (int y = 0; y < stamp.size; ++y) {
    for (int x = 0; x < stamp.size; ++x) {
      stamp.cover.push_back(coverOf(reach - x + static_cast<double>(phaseX) / kPhases,
                                    reach - y + static_cast<double>(phaseY) / kPhases, radius));
    }
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
        cover_(picture.pixels.size(), 0) {}

  void strike(double x, double y) {
    const auto column = static_cast<int64_t>(std::floor(x));
    const auto row = static_cast<int64_t>(std::floor(y));
    put(stampAt(phase(x), phase(y)), column, row);
  }

  // Of kPlacesInAll.
  [[nodiscard]] uint32_t at(size_t pixel) const {
    return static_cast<uint32_t>(std::popcount(cover_[pixel]));
  }

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
        cover_[static_cast<size_t>((top + y) * width_ + left + x)] |=
            stamp.cover[static_cast<size_t>(y * stamp.size + x)];
      }
    }
  }

  int64_t width_;
  int64_t height_;
  double radius_;
  std::vector<Cover> cover_;
  std::array<Stamp, size_t{kPhases} * kPhases> stamps_;
};

// An ink takes from each channel what its own colour lacks, as far as it covers it.
uint32_t inked(uint32_t colour, uint32_t ink, uint32_t amount) {
  uint32_t result = 0;
  for (const unsigned shift : {16U, 8U, 0U}) {
    const uint32_t channel = (colour >> shift) & 0xFFU;
    const uint32_t lacking = 255 - ((ink >> shift) & 0xFFU);
    result |= (channel * (255 * kPlacesInAll - lacking * amount) / (255 * kPlacesInAll)) << shift;
  }
  return result;
}

// What is drawn coarser than this is drawn at a multiple of it and made smaller.
constexpr double kLeastDpi = 360;

Drawing drawFine(const decode::Page& page, const PaperView& view, const decode::Paper& paper,
                 double dpi, uint64_t& outside) {
  const double perUnit = dpi / static_cast<double>(decode::kUnitsPerInch);
  Drawing drawing = blankPicture(std::ceil(static_cast<double>(paper.width) * perUnit),
                                 std::ceil(static_cast<double>(paper.length) * perUnit), dpi);
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr) return drawing;
  const double radius = kPinDiameter / 2 / 25.4 * dpi;
  std::array<InkLayer, 2> layers{InkLayer(*picture, radius), InkLayer(*picture, radius)};
  const double middle =
      static_cast<double>(decode::dotHeight(page, view.grid) * view.grid.cell()) / 2;
  outside = 0;
  for (const decode::Block& block : page.blocks) {
    const double half = static_cast<double>(block.mode.columnPitch) / 2;
    forEachDot(block, view.model, [&](decode::Ink ink, int64_t x, int64_t y) {
      if (x < 0 || y < 0 || x >= paper.width || y >= paper.length) {
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

}  // namespace

Drawing drawPins(const decode::Page& page, const PaperView& view, const decode::Paper& paper,
                 double dpi, uint64_t& outside) {
  Drawing drawing =
      drawFine(page, view, paper, dpi * std::max(1.0, std::ceil(kLeastDpi / dpi)), outside);
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr || dpi == picture->dpi) return drawing;
  return resample(std::move(*picture), dpi);
}

}  // namespace velka::view
