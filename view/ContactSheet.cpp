#include "ContactSheet.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "CairoSurface.h"
#include "PictureRows.h"

namespace velka::view {
namespace {

constexpr double kMargin = 12;
constexpr size_t kMostInARow = 4;

// How a kind of text looks: its size and the height of a line, in pixels.
struct Style {
  double size;
  double line;
};
constexpr Style kHeading{16, 22};
constexpr Style kLabel{16, 20};
constexpr Style kNote{12, 16};

// Measures and draws text.
class Pen {
 public:
  explicit Pen(cairo_t* context) : context_(context) {
    cairo_select_font_face(context_, "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
  }

  double widthOf(const std::string& text, const Style& style) const {
    cairo_set_font_size(context_, style.size);
    cairo_text_extents_t extents{};
    cairo_text_extents(context_, text.c_str(), &extents);
    return std::ceil(std::max(extents.x_advance, extents.x_bearing + extents.width));
  }

  double widestWord(const std::string& text, const Style& style) const {
    std::istringstream words(text);
    double widest = 0;
    for (std::string word; words >> word;) widest = std::max(widest, widthOf(word, style));
    return widest;
  }

  // As many words a line as fit.
  std::vector<std::string> linesOf(const std::string& text, const Style& style,
                                   double width) const {
    std::istringstream words(text);
    std::vector<std::string> lines;
    for (std::string word; words >> word;) {
      const std::string longer = lines.empty() ? word : lines.back() + " " + word;
      if (lines.empty() || widthOf(longer, style) > width) {
        lines.push_back(word);
      } else {
        lines.back() = longer;
      }
    }
    return lines;
  }

  // The place below the last line.
  double draw(const std::vector<std::string>& lines, const Style& style, double x, double y) const {
    cairo_set_font_size(context_, style.size);
    cairo_set_source_rgb(context_, 0, 0, 0);
    for (const std::string& line : lines) {
      cairo_move_to(context_, x, y + style.line - style.line / 4);
      cairo_show_text(context_, line.c_str());
      y += style.line;
    }
    return y;
  }

 private:
  cairo_t* context_;
};

// The texts of a cell, broken to its width.
struct CellText {
  std::vector<std::string> label;
  std::vector<std::string> notes;

  CellText(const Labelled& cell, const Pen& pen, double width)
      : label(pen.linesOf(cell.label, kLabel, width)) {
    for (const std::string& note : cell.notes) {
      for (std::string& line : pen.linesOf(note, kNote, width)) notes.push_back(std::move(line));
    }
  }
  [[nodiscard]] double height() const {
    return static_cast<double>(label.size()) * kLabel.line +
           static_cast<double>(notes.size()) * kNote.line;
  }
};

// Where everything goes; all cells have one size.
struct Layout {
  size_t columns = 1;
  size_t rows = 1;
  double cellWidth = 1;
  double textHeight = 0;
  double pictureHeight = 1;
  std::vector<std::string> heading;

  Layout(const std::vector<Labelled>& cells, size_t count, const SheetHead& head, const Pen& pen) {
    rows = (count + kMostInARow - 1) / kMostInARow;
    columns = head.columns > 0 ? head.columns : (count + rows - 1) / rows;
    rows = (count + columns - 1) / columns;
    for (const Labelled& cell : cells) {
      cellWidth = std::max(
          {cellWidth, static_cast<double>(cell.picture.width), pen.widestWord(cell.label, kLabel)});
      for (const std::string& note : cell.notes) {
        cellWidth = std::max(cellWidth, pen.widestWord(note, kNote));
      }
      pictureHeight = std::max<double>(pictureHeight, cell.picture.height);
    }
    for (const std::string& line : head.lines) {
      widestHeading_ = std::max(widestHeading_, pen.widestWord(line, kHeading));
    }
    for (const Labelled& cell : cells) {
      textHeight = std::max(textHeight, CellText(cell, pen, cellWidth).height());
    }
    for (const std::string& line : head.lines) {
      for (std::string& part : pen.linesOf(line, kHeading, width() - 2 * kMargin)) {
        heading.push_back(std::move(part));
      }
    }
  }

  [[nodiscard]] double headHeight() const {
    return heading.empty() ? 0 : static_cast<double>(heading.size()) * kHeading.line + kMargin;
  }
  [[nodiscard]] double width() const {
    return std::max(kMargin + static_cast<double>(columns) * (cellWidth + kMargin),
                    widestHeading_ + 2 * kMargin);
  }
  [[nodiscard]] double height() const {
    return kMargin + headHeight() +
           static_cast<double>(rows) * (textHeight + pictureHeight + kMargin);
  }
  [[nodiscard]] double left(size_t cell) const {
    return kMargin + static_cast<double>(cell % columns) * (cellWidth + kMargin);
  }
  [[nodiscard]] double top(size_t cell) const {
    const size_t row = cell / columns;
    return kMargin + headHeight() +
           static_cast<double>(row) * (textHeight + pictureHeight + kMargin);
  }

 private:
  double widestHeading_ = 0;
};

void place(cairo_t* context, Picture& picture, double x, double y) {
  const Surface surface = surfaceOf(picture);
  cairo_set_source_surface(context, surface.get(), x, y);
  cairo_paint(context);
  cairo_set_source_rgb(context, 0.5, 0.5, 0.5);
  cairo_set_line_width(context, 1);
  cairo_rectangle(context, x - 0.5, y - 0.5, picture.width + 1.0, picture.height + 1.0);
  cairo_stroke(context);
}

// Something to measure text on.
struct Scratch {
  Picture pixel{1, 1, 180, {kWhite}};
  Surface surface{surfaceOf(pixel)};
  Context context{cairo_create(surface.get())};
};

}  // namespace

Problem tooLargeASheet(const Labelled& picture, size_t count, const SheetHead& head) {
  const Scratch scratch;
  const Pen pen(scratch.context.get());
  const Layout layout({picture}, count, head, pen);
  const Drawing drawing = blankPicture(layout.width(), layout.height(), picture.picture.dpi);
  const auto* why = std::get_if<std::string>(&drawing);
  return why == nullptr ? std::nullopt : Problem(*why);
}

Drawing contactSheet(std::vector<Labelled> pictures, const SheetHead& head) {
  if (pictures.empty()) return "there is nothing to put on the sheet";
  const Scratch scratch;
  const Layout layout(pictures, pictures.size(), head, Pen(scratch.context.get()));
  Drawing drawing = blankPicture(layout.width(), layout.height(), pictures.front().picture.dpi);
  auto* sheet = std::get_if<Picture>(&drawing);
  if (sheet == nullptr) return drawing;
  const Surface surface = surfaceOf(*sheet);
  const Context context(cairo_create(surface.get()));
  const Pen pen(context.get());
  (void)pen.draw(layout.heading, kHeading, kMargin, kMargin);
  for (size_t i = 0; i < pictures.size(); ++i) {
    const CellText text(pictures[i], pen, layout.cellWidth);
    // The text stands right above its picture.
    const double y = layout.top(i) + layout.textHeight - text.height();
    const double below = pen.draw(text.label, kLabel, layout.left(i), y);
    place(context.get(), pictures[i].picture, layout.left(i),
          pen.draw(text.notes, kNote, layout.left(i), below));
  }
  cairo_surface_flush(surface.get());
  // The library leaves in the highest byte what it likes.
  for (uint32_t& pixel : sheet->pixels) pixel &= 0xFFFFFFU;
  if (cairo_status(context.get()) == CAIRO_STATUS_SUCCESS) return drawing;
  return cairo_status_to_string(cairo_status(context.get()));
}

}  // namespace velka::view
