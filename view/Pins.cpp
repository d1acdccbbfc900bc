#include "Pins.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <utility>
#include <vector>

#include "BlockIndex.h"
#include "PageRows.h"
#include "Scaling.h"

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

// Pixels that a dot can touch on each side of its middle one.
int reachOf(double radius) {
  return static_cast<int>(std::ceil(radius)) + 1;
}

// A disc whose middle lies `phaseX`, `phaseY` eighths of a pixel right of and below
// the middle pixel's corner.
Stamp makeStamp(double radius, int phaseX, int phaseY) {
  const int reach = reachOf(radius);
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

// The stamps of one size of dot, made when they are first wanted.
class Stamps {
 public:
  explicit Stamps(double radius) : radius_(radius) {}

  // For a dot whose middle lies at these parts of a pixel.
  const Stamp& at(double x, double y) {
    const int phaseX = phase(x);
    const int phaseY = phase(y);
    Stamp& stamp = stamps_.at(static_cast<size_t>(phaseY) * kPhases + static_cast<size_t>(phaseX));
    if (stamp.size == 0) stamp = makeStamp(radius_, phaseX, phaseY);
    return stamp;
  }

 private:
  static int phase(double place) {
    return static_cast<int>((place - std::floor(place)) * kPhases) % kPhases;
  }

  double radius_;
  std::array<Stamp, size_t{kPhases} * kPhases> stamps_;
};

// How much of each pixel of some rows an ink covers.
class InkLayer {
 public:
  void clear(int64_t width, int64_t top, int64_t rows) {
    width_ = width;
    top_ = top;
    rows_ = rows;
    cover_.assign(static_cast<size_t>(width * rows), 0);
  }

  // Ink on ink of the same colour is no darker.
  void put(const Stamp& stamp, int64_t column, int64_t row) {
    const int64_t left = column - stamp.size / 2;
    const int64_t above = row - stamp.size / 2 - top_;
    for (int64_t y = std::max<int64_t>(0, -above); y < std::min<int64_t>(stamp.size, rows_ - above);
         ++y) {
      for (int64_t x = std::max<int64_t>(0, -left);
           x < std::min<int64_t>(stamp.size, width_ - left); ++x) {
        cover_[static_cast<size_t>((above + y) * width_ + left + x)] |=
            stamp.cover[static_cast<size_t>(y * stamp.size + x)];
      }
    }
  }

  // Of kPlacesInAll.
  [[nodiscard]] size_t at(size_t pixel) const {
    return static_cast<size_t>(std::popcount(cover_[pixel]));
  }

 private:
  int64_t width_ = 0;
  int64_t top_ = 0;
  int64_t rows_ = 0;
  std::vector<Cover> cover_;
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

// What a pixel looks like under so much red and so much black, of kPlacesInAll each.
class Mixture {
 public:
  Mixture() {
    for (uint32_t red = 0; red <= kPlacesInAll; ++red)
      for (uint32_t black = 0; black <= kPlacesInAll; ++black)
        colours_.at(red).at(black) = inked(inked(kWhite, kRed, red), kBlack, black);
  }
  [[nodiscard]] uint32_t of(size_t red, size_t black) const { return colours_[red][black]; }

 private:
  std::array<std::array<uint32_t, kPlacesInAll + 1>, kPlacesInAll + 1> colours_{};
};

class PinRows : public PictureRows {
 public:
  PinRows(const PictureSize& size, const decode::Page& page, const PaperView& view,
          const decode::Paper& paper)
      : PictureRows(size, {}),
        model_(view.model),
        paper_(paper),
        perUnit_(size.dpi / static_cast<double>(decode::kUnitsPerInch)),
        middle_(static_cast<double>(decode::dotHeight(page, view.grid) * view.grid.cell()) / 2),
        reach_(reachOf(radiusAt(size.dpi)) + 1),
        stamps_(radiusAt(size.dpi)),
        blocks_(page, view.model) {}

  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const override {
    return blocks_.noneTouches(unitsAt(top - reach_), unitsAt(top + rows + reach_));
  }

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    const auto rows = static_cast<int64_t>(pixels.size() / width());
    for (InkLayer& layer : layers_) layer.clear(size().width, top, rows);
    blocks_.forEachTouching(unitsAt(top - reach_), unitsAt(top + rows + reach_),
                            [&](const decode::Block& block) { strike(block, top, rows); });
    for (size_t i = 0; i < pixels.size(); ++i) {
      pixels[i] = mixture_.of(layers_[1].at(i), layers_[0].at(i));
    }
  }

 private:
  static double radiusAt(double dpi) { return kPinDiameter / 2 / 25.4 * dpi; }

  // A little above the pixel, so that no dot is passed over.
  [[nodiscard]] int64_t unitsAt(int64_t row) const {
    return static_cast<int64_t>(std::floor((static_cast<double>(row) / perUnit_) - middle_));
  }

  void strike(const decode::Block& block, int64_t top, int64_t rows) {
    const double half = static_cast<double>(block.mode.columnPitch) / 2;
    forEachDot(block, model_, [&](decode::Ink ink, int64_t x, int64_t y) {
      if (x < 0 || y < 0 || x >= paper_.width || y >= paper_.length) return;
      const double down = (static_cast<double>(y) + middle_) * perUnit_;
      const auto row = static_cast<int64_t>(std::floor(down));
      if (row < top - reach_ || row >= top + rows + reach_) return;
      const double across = (static_cast<double>(x) + half) * perUnit_;
      layers_.at(static_cast<size_t>(ink))
          .put(stamps_.at(across, down), static_cast<int64_t>(std::floor(across)), row);
    });
  }

  decode::Model model_;
  decode::Paper paper_;
  double perUnit_;  // pixels
  double middle_;   // of a dot below its place, units
  int64_t reach_;   // rows that a dot can touch above and below its own
  Stamps stamps_;
  decode::BlockIndex blocks_;
  std::array<InkLayer, 2> layers_;
  Mixture mixture_;
};

// What is drawn coarser than this is drawn at a multiple of it and made smaller.
constexpr double kLeastDpi = 360;

}  // namespace

RowsDrawing pinRows(const decode::Page& page, const PaperView& view, const decode::Paper& paper,
                    double dpi) {
  const double fine = dpi * std::max(1.0, std::ceil(kLeastDpi / dpi));
  const double perUnit = fine / static_cast<double>(decode::kUnitsPerInch);
  const auto pixels = [&](int64_t units) {
    return std::ceil(static_cast<double>(units) * perUnit);
  };
  const PictureSize size = wholePixels(pixels(paper.width), pixels(paper.length), fine);
  if (size.width > kWidestSource || size.height > kLongestSource) return kBeyondDrawing;
  return scaled(std::make_unique<PinRows>(size, page, view, paper), dpi);
}

}  // namespace velka::view
