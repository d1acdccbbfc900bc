#include "ContactSheet.h"

#include <algorithm>

#include "CairoSurface.h"

namespace velka::view {
namespace {

constexpr double kMargin = 12;
constexpr double kLabelHeight = 24;
constexpr double kTextSize = 16;
constexpr size_t kMostInARow = 4;

struct Layout {
  size_t columns = 1;
  size_t rows = 1;
  double cellWidth = 0;
  double cellHeight = 0;

  explicit Layout(const std::vector<Labelled>& pictures) {
    double width = 1;
    double height = 1;
    for (const Labelled& one : pictures) {
      width = std::max<double>(width, one.picture.width);
      height = std::max<double>(height, one.picture.height);
    }
    cellWidth = width + kMargin;
    cellHeight = height + kMargin + kLabelHeight;
    rows = (pictures.size() + kMostInARow - 1) / kMostInARow;
    columns = (pictures.size() + rows - 1) / rows;
  }
};

void label(cairo_t* context, const std::string& text, double x, double y, double width) {
  cairo_save(context);
  cairo_rectangle(context, x, y, width, kLabelHeight);
  cairo_clip(context);
  cairo_set_source_rgb(context, 0, 0, 0);
  cairo_select_font_face(context, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, kTextSize);
  cairo_move_to(context, x, y + kLabelHeight - 6);
  cairo_show_text(context, text.c_str());
  cairo_restore(context);
}

void place(cairo_t* context, Picture& picture, double x, double y) {
  const Surface surface = surfaceOf(picture);
  cairo_set_source_surface(context, surface.get(), x, y);
  cairo_paint(context);
  cairo_set_source_rgb(context, 0.5, 0.5, 0.5);
  cairo_set_line_width(context, 1);
  cairo_rectangle(context, x - 0.5, y - 0.5, picture.width + 1.0, picture.height + 1.0);
  cairo_stroke(context);
}

}  // namespace

Drawing contactSheet(std::vector<Labelled> pictures) {
  if (pictures.empty()) return "there is nothing to put on the sheet";
  const Layout layout(pictures);
  const double dpi = pictures.front().picture.dpi;
  Drawing drawing =
      blankPicture(kMargin + static_cast<double>(layout.columns) * layout.cellWidth,
                   kMargin + static_cast<double>(layout.rows) * layout.cellHeight, dpi);
  auto* sheet = std::get_if<Picture>(&drawing);
  if (sheet == nullptr) return drawing;
  const Surface surface = surfaceOf(*sheet);
  const Context context(cairo_create(surface.get()));
  for (size_t i = 0; i < pictures.size(); ++i) {
    const size_t row = i / layout.columns;
    const double x = kMargin + static_cast<double>(i % layout.columns) * layout.cellWidth;
    const double y = kMargin + static_cast<double>(row) * layout.cellHeight;
    label(context.get(), pictures[i].label, x, y, layout.cellWidth - kMargin);
    place(context.get(), pictures[i].picture, x, y + kLabelHeight);
  }
  cairo_surface_flush(surface.get());
  if (cairo_status(context.get()) == CAIRO_STATUS_SUCCESS) return drawing;
  return cairo_status_to_string(cairo_status(context.get()));
}

}  // namespace velka::view
