#include "Scaling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace velka::view {
namespace {

// Of every pixel the nearest one below it.
class Enlarged : public PictureRows {
 public:
  Enlarged(const PictureSize& size, Rows source)
      : PictureRows(size, source->colours()), source_(std::move(source)) {
    const int64_t across = source_->size().width;
    for (int64_t x = 0; x < size.width; ++x) columns_.push_back(below(x, across, size.width));
  }

  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const override {
    const int64_t first = rowBelow(top);
    return source_->isBlank(first, rowBelow(top + rows - 1) - first + 1);
  }

  void drawNumbers(int64_t top, std::span<uint8_t> numbers) override {
    spread(top, numbers,
           [&](int64_t row, std::span<uint8_t> to) { source_->drawNumbers(row, to); });
  }

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    spread(top, pixels, [&](int64_t row, std::span<uint32_t> to) { source_->draw(row, to); });
  }

 private:
  static int64_t below(int64_t place, int64_t source, int64_t target) {
    return (2 * place + 1) * source / (2 * target);
  }

  [[nodiscard]] int64_t rowBelow(int64_t row) const {
    return below(row, source_->size().height, size().height);
  }

  template <typename Pixel, typename Draw>
  void spread(int64_t top, std::span<Pixel> pixels, Draw drawSource) const {
    if (pixels.empty()) return;
    const size_t across = source_->width();
    const auto rows = static_cast<int64_t>(pixels.size() / width());
    const int64_t first = rowBelow(top);
    const auto height = static_cast<size_t>(rowBelow(top + rows - 1) - first + 1);
    std::vector<Pixel> source(height * across);
    drawSource(first, std::span<Pixel>(source));
    auto* to = pixels.data();
    for (int64_t row = top; row < top + rows; ++row) {
      const Pixel* from = source.data() + static_cast<size_t>(rowBelow(row) - first) * across;
      for (const int64_t column : columns_) *to++ = from[column];
    }
  }

  Rows source_;
  std::vector<int64_t> columns_;
};

// What a colour lacks of white: paper adds nothing to a sum of these.
using Lack = std::array<uint32_t, 3>;

Lack lackOf(uint32_t colour) {
  return {255 - ((colour >> 16U) & 0xFFU), 255 - ((colour >> 8U) & 0xFFU), 255 - (colour & 0xFFU)};
}

// Each pixel is the mean of the area of the source that it covers, to the last part of
// a pixel. Areas are counted in parts so fine that nothing is rounded before the mean:
// a source pixel is target width by target height parts, a target pixel source width
// by source height parts.
class Reduced : public PictureRows {
 public:
  Reduced(const PictureSize& size, Rows source)
      : PictureRows(size, {}), source_(std::move(source)), row_(3 * width()), sum_(3 * width()) {
    const int64_t across = source_->size().width;
    for (int64_t x = 0; x < across; ++x) {
      const int64_t left = x * size.width;
      const int64_t column = left / across;
      const int64_t parts = std::min(size.width, (column + 1) * across - left);
      shares_.push_back({static_cast<size_t>(3 * column), static_cast<uint32_t>(parts),
                         static_cast<uint32_t>(size.width - parts)});
    }
    const auto& colours = source_->colours();
    for (const uint32_t colour : colours) lacks_.push_back(lackOf(colour));
    paper_ = static_cast<uint8_t>(std::ranges::find(colours, kWhite) - colours.begin());
  }

  [[nodiscard]] bool isBlank(int64_t top, int64_t rows) const override {
    const auto [first, end] = sourceRows(top, rows);
    return source_->isBlank(first, end - first);
  }

  void draw(int64_t top, std::span<uint32_t> pixels) override {
    auto* to = pixels.data();
    const auto rows = static_cast<int64_t>(pixels.size() / width());
    for (int64_t row = top; row < top + rows; ++row, to += width()) drawRow(row, to);
  }

 private:
  // Where a source pixel goes: parts to a target pixel, the rest to the one behind it.
  struct Share {
    size_t to;
    uint32_t parts;
    uint32_t rest;
  };

  // The rows of the source that cover some of ours.
  [[nodiscard]] std::pair<int64_t, int64_t> sourceRows(int64_t top, int64_t rows) const {
    const int64_t down = source_->size().height;
    return {top * down / size().height, ((top + rows) * down + size().height - 1) / size().height};
  }

  void drawRow(int64_t row, uint32_t* to) {
    const int64_t down = source_->size().height;
    const int64_t high = size().height;
    const auto [first, end] = sourceRows(row, 1);
    std::ranges::fill(sum_, 0);
    for (int64_t from = first; from < end; ++from) {
      const int64_t parts =
          std::min((from + 1) * high, (row + 1) * down) - std::max(from * high, row * down);
      addRow(from, static_cast<uint64_t>(parts));
    }
    const auto all = static_cast<uint64_t>(source_->size().width * down);
    for (size_t i = 0; i < sum_.size(); i += 3) {
      const auto channel = [&](size_t at) {
        return static_cast<uint32_t>(255 - (2 * sum_[i + at] + all) / (2 * all));
      };
      *to++ = channel(0) << 16U | channel(1) << 8U | channel(2);
    }
  }

  void addRow(int64_t row, uint64_t parts) {
    fetch(row);
    if (blank_) return;
    if (summed_ != row) sumAcross(row);
    summed_ = row;
    for (size_t i = 0; i < sum_.size(); ++i) sum_[i] += row_[i] * parts;
  }

  // Rows come one after the other, so a strip of them is drawn at once.
  void fetch(int64_t row) {
    if (row >= stripTop_ && row < stripTop_ + stripRows_) return;
    stripTop_ = row;
    stripRows_ = std::min(rowsInStrip(source_->size().width), source_->size().height - row);
    blank_ = source_->isBlank(row, stripRows_);
    if (blank_) return;
    const size_t pixels = static_cast<size_t>(stripRows_) * source_->width();
    if (lacks_.empty()) {
      colours_.resize(pixels);
      source_->draw(row, colours_);
    } else {
      numbers_.resize(pixels);
      source_->drawNumbers(row, numbers_);
    }
  }

  void sumAcross(int64_t row) {
    std::ranges::fill(row_, 0);
    const size_t at = static_cast<size_t>(row - stripTop_) * source_->width();
    if (lacks_.empty()) {
      addPixels(colours_.data() + at, kWhite, lackOf);
    } else {
      addPixels(numbers_.data() + at, paper_, [&](uint8_t number) { return lacks_[number]; });
    }
  }

  template <typename Pixel, typename LackOf>
  void addPixels(const Pixel* pixels, Pixel paper, LackOf lackOfPixel) {
    for (const Share& share : shares_) {
      const Pixel pixel = *pixels++;
      if (pixel == paper) continue;
      const Lack lack = lackOfPixel(pixel);
      for (size_t i = 0; i < lack.size(); ++i)
        row_[share.to + i] += uint64_t{lack[i]} * share.parts;
      if (share.rest == 0) continue;
      for (size_t i = 0; i < lack.size(); ++i)
        row_[share.to + 3 + i] += uint64_t{lack[i]} * share.rest;
    }
  }

  Rows source_;
  std::vector<Lack> lacks_;  // of the source's colours, where it has numbers
  uint8_t paper_ = 0;        // its number; one that no colour has where there is none
  std::vector<Share> shares_;
  std::vector<uint64_t> row_;  // a source row, summed across
  std::vector<uint64_t> sum_;
  std::vector<uint8_t> numbers_;
  std::vector<uint32_t> colours_;
  int64_t stripTop_ = 0;
  int64_t stripRows_ = 0;
  int64_t summed_ = -1;
  bool blank_ = false;
};

}  // namespace

RowsDrawing scaled(Rows rows, double dpi) {
  const PictureSize& own = rows->size();
  const double factor = dpi / own.dpi;
  const PictureSize wanted = dpi == own.dpi
                                 ? own
                                 : wholePixels(static_cast<double>(own.width) * factor,
                                               static_cast<double>(own.height) * factor, dpi);
  if (auto problem = checkSize(wanted)) return *problem;
  if (dpi == own.dpi) return rows;
  if (factor > 1) return std::make_unique<Enlarged>(wanted, std::move(rows));
  return std::make_unique<Reduced>(wanted, std::move(rows));
}

}  // namespace velka::view
