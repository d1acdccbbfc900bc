#include "PictureRows.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace velka::view {
namespace {

// The colours of a picture that has at most as many as four bits can count.
std::vector<uint32_t> fewColours(const Picture& picture) {
  constexpr size_t kMost = 16;
  std::vector<uint32_t> colours;
  uint32_t last = kWhite + 1;
  for (const uint32_t pixel : picture.pixels) {
    if (pixel == last) continue;
    last = pixel;
    if (std::ranges::find(colours, pixel) != colours.end()) continue;
    if (colours.size() == kMost) return {};
    colours.push_back(pixel);
  }
  return colours;
}

class PixelRows : public PictureRows {
 public:
  explicit PixelRows(Picture picture)
      : PictureRows({picture.width, picture.height, picture.dpi}, fewColours(picture)),
        pixels_(std::move(picture.pixels)) {}

  void drawNumbers(int64_t top, std::span<uint8_t> numbers) override {
    std::ranges::transform(at(top, numbers.size()), numbers.begin(), [&](uint32_t pixel) {
      return static_cast<uint8_t>(std::ranges::find(colours(), pixel) - colours().begin());
    });
  }

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    std::ranges::copy(at(top, pixels.size()), pixels.begin());
  }

 private:
  [[nodiscard]] std::span<const uint32_t> at(int64_t top, size_t pixels) const {
    return std::span(pixels_).subspan(static_cast<size_t>(top) * width(), pixels);
  }

  std::vector<uint32_t> pixels_;
};

}  // namespace

void PictureRows::drawNumbers(int64_t /*top*/, std::span<uint8_t> numbers) {
  std::ranges::fill(numbers, uint8_t{0});
}

void PictureRows::draw(int64_t top, std::span<uint32_t> pixels) {
  std::vector<uint8_t> numbers(pixels.size());
  drawNumbers(top, numbers);
  std::ranges::transform(numbers, pixels.begin(), [&](uint8_t number) { return colours_[number]; });
}

Problem checkSize(const PictureSize& size) {
  const bool fits = size.width <= kLongestRowsSide && size.height <= kLongestRowsSide &&
                    size.width * size.height <= kMostRowPixels;
  if (fits) return std::nullopt;
  return tooLarge(static_cast<double>(size.width), static_cast<double>(size.height),
                  kLongestRowsSide, kMostRowPixels);
}

PictureSize wholePixels(double width, double height, double dpi) {
  const auto whole = [](double pixels) {
    constexpr double kBeyondAll = 1e15;
    return static_cast<int64_t>(std::clamp(std::round(pixels), 1.0, kBeyondAll));
  };
  return {whole(width), whole(height), dpi};
}

Rows rowsOf(Picture picture) {
  return std::make_unique<PixelRows>(std::move(picture));
}

Drawing wholePicture(PictureRows& rows) {
  const PictureSize& size = rows.size();
  Drawing drawing =
      blankPicture(static_cast<double>(size.width), static_cast<double>(size.height), size.dpi);
  if (auto* picture = std::get_if<Picture>(&drawing)) rows.draw(0, picture->pixels);
  return drawing;
}

int64_t rowsInStrip(int64_t width) {
  constexpr int64_t kStripPixels = int64_t{1} << 20;
  return std::clamp<int64_t>(kStripPixels / std::max<int64_t>(1, width), 1, 4096);
}

}  // namespace velka::view
