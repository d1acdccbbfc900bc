#include "DotDrawing.h"

#include <cairo-pdf.h>

#include <new>

#include "CairoObjects.h"
#include "DotFont.h"

namespace velka::calibration {
namespace {

// Rasterisers fill each dot that a box touches, and round the height of the page; so each
// box stays inside its dots. A single dot's line is still one where dots lie elsewhere.
constexpr double kInset = 0.25;
constexpr double kLineInset = 0.49;

using Bytes = std::vector<uint8_t>;

cairo_status_t append(void* bytes, const unsigned char* data, unsigned int length) noexcept {
  auto& all = *static_cast<Bytes*>(bytes);
  try {
    all.insert(all.end(), data, data + length);
  } catch (const std::bad_alloc&) {
    return CAIRO_STATUS_NO_MEMORY;
  }
  return CAIRO_STATUS_SUCCESS;
}

// Half of a fine row is what the height of a page is rounded by.
double insetOf(double dots, int dpi) {
  return dots <= 1 || dpi > 180 ? kLineInset : kInset;
}

void fill(cairo_t* context, const DotBox& box, int dpi) {
  constexpr double kFull = 255;
  cairo_set_source_rgb(context, box.colour.red / kFull, box.colour.green / kFull,
                       box.colour.blue / kFull);
  const double x = insetOf(box.width, dpi);
  const double y = insetOf(box.height, dpi);
  cairo_rectangle(context, box.left + x, box.top + y, box.width - 2 * x, box.height - 2 * y);
  cairo_fill(context);
}

void draw(cairo_surface_t* surface, const DotDrawing& drawing) {
  const Context context(cairo_create(surface));
  const double pointsPerDot = 72.0 / drawing.dpi;
  cairo_scale(context.get(), pointsPerDot, pointsPerDot);
  for (const DotBox& box : drawing.boxes) fill(context.get(), box, drawing.dpi);
  cairo_show_page(context.get());
}

bool isInked(const Glyph& glyph, int row, int column) {
  if (row >= kGlyphRows || column >= kGlyphColumns) return false;
  return (glyph[static_cast<size_t>(row)] >> (kGlyphColumns - 1 - column) & 1) != 0;
}

DotBox boxOf(int left, int top, int width, int height) {
  return {double(left), double(top), double(width), double(height)};
}

// The strokes of a letter, in cells: across, and where cells lie above each other down,
// so that no light shines through between them.
void addGlyph(const Glyph& glyph, std::vector<DotBox>& boxes) {
  for (int row = 0; row < kGlyphRows; ++row) {
    for (int column = 0; column < kGlyphColumns; ++column) {
      if (!isInked(glyph, row, column)) continue;
      int right = column + 1;
      int bottom = row + 1;
      while (isInked(glyph, row, right)) ++right;
      while (isInked(glyph, bottom, column)) ++bottom;
      const bool across = column == 0 || !isInked(glyph, row, column - 1);
      const bool down = (row == 0 || !isInked(glyph, row - 1, column)) && bottom > row + 1;
      if (across) boxes.push_back(boxOf(column, row, right - column, 1));
      if (down) boxes.push_back(boxOf(column, row, 1, bottom - row));
    }
  }
}

}  // namespace

int letterPitch(int cell) {
  return (kGlyphColumns + 1) * cell;
}

void DotDrawing::addText(std::string_view text, int left, int top, int cell, Colour colour) {
  for (const char character : text) {
    std::vector<DotBox> strokes;
    if (const Glyph* glyph = glyphOf(character)) {
      addGlyph(*glyph, strokes);
    } else {
      strokes.push_back(boxOf(0, 0, kGlyphColumns, kGlyphRows));
    }
    for (const DotBox& box : strokes) {
      boxes.push_back({left + box.left * cell, top + box.top * cell, box.width * cell,
                       box.height * cell, colour});
    }
    left += letterPitch(cell);
  }
}

std::variant<std::vector<uint8_t>, std::string> pdfOf(const DotDrawing& drawing) {
  Bytes bytes;
  const Surface surface(
      cairo_pdf_surface_create_for_stream(append, &bytes, drawing.width, drawing.height));
  cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_TITLE, drawing.title.c_str());
  // The same page must be the same file tomorrow.
  cairo_pdf_surface_set_metadata(surface.get(), CAIRO_PDF_METADATA_CREATE_DATE, "");
  draw(surface.get(), drawing);
  cairo_surface_finish(surface.get());
  const cairo_status_t status = cairo_surface_status(surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return cairo_status_to_string(status);
  return bytes;
}

}  // namespace velka::calibration
