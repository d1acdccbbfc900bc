#include "Picture.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <utility>

#include "PageCells.h"
#include "PageRows.h"
#include "Scaling.h"
#include "TextFormat.h"

namespace velka::view {
namespace {

Drawing wholeOrWhy(RowsDrawing drawing) {
  if (auto* why = std::get_if<std::string>(&drawing)) return std::move(*why);
  return wholePicture(*std::get<Rows>(drawing));
}

}  // namespace

std::string tooLarge(double width, double height, int64_t side, int64_t all) {
  return decode::format("a picture of %.0f x %.0f pixels is too large (at most %" PRId64
                        " a side and %" PRId64 " in all); a smaller --scale or --dpi may help",
                        width, height, side, all);
}

Drawing blankPicture(double width, double height, double dpi) {
  const double wide = std::max(1.0, std::round(width));
  const double high = std::max(1.0, std::round(height));
  if (!(wide <= kLongestSide && high <= kLongestSide &&
        wide * high <= static_cast<double>(kMostPixels))) {
    return tooLarge(wide, high, kLongestSide, kMostPixels);
  }
  Picture picture{static_cast<int32_t>(wide), static_cast<int32_t>(high), dpi, {}};
  picture.pixels.assign(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height),
                        kWhite);
  return picture;
}

double streamDpi(const PaperView& view) {
  return static_cast<double>(decode::kUnitsPerInch) / static_cast<double>(view.grid.cell());
}

Drawing drawPage(const decode::Page& page, const PaperView& view, uint64_t& outside) {
  outside = dotsBesidePaper(page, view);
  return wholeOrWhy(pageRows(page, view));
}

uint64_t dotsBesidePaper(const decode::Page& page, const PaperView& view) {
  return decode::dotsOutside(page, view.model,
                             decode::paperOf(page, view.model, view.grid, view.width));
}

Drawing resample(Picture picture, double dpi) {
  return wholeOrWhy(scaled(rowsOf(std::move(picture)), dpi));
}

}  // namespace velka::view
