#include "Picture.h"

#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <utility>

#include "CairoSurface.h"
#include "Pins.h"

namespace velka::view {
namespace {

uint32_t colourOf(uint8_t cell) {
  if ((cell & decode::kBlackCell) != 0) return kBlack;
  return (cell & decode::kRedCell) != 0 ? kRed : kWhite;
}

Drawing drawCells(const decode::Page& page, const PaperView& view, const decode::Paper& paper,
                  uint64_t& outside) {
  Drawing drawing = blankPaper(view, paper);
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr) return drawing;
  const auto grid = decode::drawCells(page, view.model, view.grid, paper);
  if (!grid) return "the page is too large to draw";
  outside = grid->outside;
  // A picture has at least one pixel, a grid may have none.
  for (int64_t y = 0; y < std::min<int64_t>(grid->height, picture->height); ++y) {
    for (int64_t x = 0; x < std::min<int64_t>(grid->width, picture->width); ++x) {
      picture->pixels[static_cast<size_t>(y * picture->width + x)] = colourOf(grid->at(x, y));
    }
  }
  return drawing;
}

double wantedDpi(const PaperView& view, double own) {
  return view.dpi ? *view.dpi : own * view.scale;
}

}  // namespace

Drawing blankPicture(double width, double height, double dpi) {
  const double wide = std::max(1.0, std::round(width));
  const double high = std::max(1.0, std::round(height));
  if (!(wide <= kLongestSide && high <= kLongestSide &&
        wide * high <= static_cast<double>(kMostPixels))) {
    std::array<char, 160> text{};
    (void)std::snprintf(text.data(), text.size(),
                        "a picture of %.0f x %.0f pixels is too large (at most %d a side and "
                        "%lld in all); a smaller --scale or --dpi may help",
                        wide, high, kLongestSide, static_cast<long long>(kMostPixels));
    return text.data();
  }
  Picture picture{static_cast<int32_t>(wide), static_cast<int32_t>(high), dpi, {}};
  picture.pixels.assign(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height),
                        kWhite);
  return picture;
}

double streamDpi(const PaperView& view) {
  return static_cast<double>(decode::kUnitsPerInch) / static_cast<double>(view.grid.cell());
}

Drawing blankPaper(const PaperView& view, const decode::Paper& paper) {
  const auto cell = static_cast<double>(view.grid.cell());
  return blankPicture(std::ceil(static_cast<double>(paper.width) / cell),
                      std::ceil(static_cast<double>(paper.length) / cell), streamDpi(view));
}

Drawing drawPage(const decode::Page& page, const PaperView& view, uint64_t& outside) {
  const decode::Paper paper = decode::paperOf(page, view.model, view.grid, view.width);
  if (view.pins) {
    constexpr double kPinsDpi = 360;  // a dot is not quite three pixels wide
    return drawPins(page, view, paper, wantedDpi(view, kPinsDpi), outside);
  }
  Drawing drawing = drawCells(page, view, paper, outside);
  const double dpi = wantedDpi(view, streamDpi(view));
  auto* picture = std::get_if<Picture>(&drawing);
  if (picture == nullptr || dpi == picture->dpi) return drawing;
  return resample(std::move(*picture), dpi);
}

Drawing resample(Picture picture, double dpi) {
  const double factor = dpi / picture.dpi;
  Drawing drawing = blankPicture(picture.width * factor, picture.height * factor, dpi);
  auto* target = std::get_if<Picture>(&drawing);
  if (target == nullptr) return drawing;
  const Surface to = surfaceOf(*target);
  const Surface from = surfaceOf(picture);
  const Context context(cairo_create(to.get()));
  cairo_scale(context.get(), static_cast<double>(target->width) / picture.width,
              static_cast<double>(target->height) / picture.height);
  cairo_set_source_surface(context.get(), from.get(), 0, 0);
  cairo_pattern_t* source = cairo_get_source(context.get());
  cairo_pattern_set_filter(source, factor > 1 ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_GOOD);
  // Without this the outermost pixels would be mixed with nothing.
  cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
  cairo_paint(context.get());
  cairo_surface_flush(to.get());
  if (cairo_status(context.get()) == CAIRO_STATUS_SUCCESS) return drawing;
  return cairo_status_to_string(cairo_status(context.get()));
}

}  // namespace velka::view
