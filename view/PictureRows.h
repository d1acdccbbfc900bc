// Pictures that are drawn some rows at a time, so that none is too long for memory.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "Outcome.h"
#include "Picture.h"

namespace velka::view {

/// A picture's size and resolution.
struct PictureSize {
  int64_t width = 1;
  int64_t height = 1;
  double dpi = 180;
};

/// A picture that draws its rows when they are wanted, in any order and as often as
/// they are.
class PictureRows {
 public:
  PictureRows(const PictureSize& size, std::vector<uint32_t> colours)
      : size_(size), colours_(std::move(colours)) {}
  virtual ~PictureRows() = default;
  PictureRows(const PictureRows&) = delete;
  PictureRows& operator=(const PictureRows&) = delete;

  [[nodiscard]] const PictureSize& size() const { return size_; }
  [[nodiscard]] size_t width() const { return static_cast<size_t>(size_.width); }

  /// The colours that its pixels are drawn as the numbers of, 16 at most; none:
  /// they are drawn as colours.
  [[nodiscard]] const std::vector<uint32_t>& colours() const { return colours_; }

  /// Whether these rows are known to be paper alone.
  [[nodiscard]] virtual bool isBlank(int64_t /*top*/, int64_t /*rows*/) const { return false; }

  /// Fills `numbers` with the rows from `top` on; only where there are colours().
  virtual void drawNumbers(int64_t top, std::span<uint8_t> numbers);

  /// Fills `pixels` with the rows from `top` on, 0x00RRGGBB each.
  virtual void draw(int64_t top, std::span<uint32_t> pixels);

 private:
  PictureSize size_;
  std::vector<uint32_t> colours_;
};

/// Rows, or why there are none.
using Rows = std::unique_ptr<PictureRows>;
using RowsDrawing = std::variant<Rows, std::string>;

/// The most pixels on a side (what readers of PNG take) and in all: a roll of five
/// metres and 15 inches at 360 dpi fits.
inline constexpr int64_t kLongestRowsSide = 1'000'000;
inline constexpr int64_t kMostRowPixels = int64_t{1} << 30;

/// What is wrong with a picture of that size.
[[nodiscard]] Problem checkSize(const PictureSize& size);

/// Whole pixels, at least one a side; a size beyond all pictures stays beyond them.
[[nodiscard]] PictureSize wholePixels(double width, double height, double dpi);

/// A picture's pixels as rows.
[[nodiscard]] Rows rowsOf(Picture picture);

/// All rows as one picture, where it is not too large for that.
[[nodiscard]] Drawing wholePicture(PictureRows& rows);

/// As many rows of that many pixels as make a strip of moderate size.
[[nodiscard]] int64_t rowsInStrip(int64_t width);

}  // namespace velka::view
