#include <cairo-pdf.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <vector>

#include "CairoSurface.h"
#include "PictureFiles.h"

namespace velka::view {
namespace {

// The most pixels of a page that is one image in the file, as an A4 page at 360 dpi is,
// and of each image of a larger page.
constexpr int64_t kImagePixels = int64_t{1} << 24;
constexpr int64_t kPartPixels = int64_t{1} << 22;

// Rows that an image holds more than it shows, under the next one: where two meet
// inside a pixel of the screen, paper would shine through.
constexpr int64_t kOverlap = 64;

// The pixels of the image that the file asked for last; it asks several times.
struct Drawn {
  int64_t top = -1;
  std::vector<uint32_t> pixels;
};

// Rows of a picture that are one image of several; drawn when the file takes them.
// (The drawing library forgets to free some 200 bytes for each such image.)
struct Image {
  PictureRows& rows;
  Drawn& drawn;
  int64_t top;
  int64_t height;

  static cairo_surface_t* acquire(cairo_pattern_t* /*pattern*/, void* data,
                                  cairo_surface_t* /*target*/,
                                  const cairo_rectangle_int_t* /*extents*/) noexcept {
    auto& image = *static_cast<Image*>(data);
    const auto width = static_cast<int>(image.rows.width());
    try {
      image.draw();
    } catch (const std::bad_alloc&) {
      return nullptr;
    }
    return cairo_image_surface_create_for_data(
        reinterpret_cast<unsigned char*>(image.drawn.pixels.data()), CAIRO_FORMAT_RGB24, width,
        static_cast<int>(image.height), 4 * width);
  }

  static void release(cairo_pattern_t* /*pattern*/, void* /*data*/, cairo_surface_t* surface) {
    cairo_surface_destroy(surface);
  }

  void draw() const {
    if (drawn.top == top) return;
    drawn.top = -1;
    drawn.pixels.resize(static_cast<size_t>(height) * rows.width());
    rows.draw(top, drawn.pixels);
    drawn.top = top;
  }
};

std::string shownOutput(const std::string& name) {
  return name == "-" ? "standard output" : name;
}

// What the drawing library tells of a failed write names neither file nor reason.
std::string pdfTrouble(const std::string& name, cairo_status_t status) {
  if (status == CAIRO_STATUS_WRITE_ERROR) return systemTrouble(shownOutput(name));
  return shownOutput(name) + ": " + cairo_status_to_string(status);
}

cairo_status_t writeTo(void* file, const unsigned char* data, unsigned int length) {
  return std::fwrite(data, 1, length, static_cast<std::FILE*>(file)) == length
             ? CAIRO_STATUS_SUCCESS
             : CAIRO_STATUS_WRITE_ERROR;
}

void paint(cairo_t* context, Image& image, int64_t pageTop) {
  cairo_pattern_t* pattern = cairo_pattern_create_raster_source(
      &image, CAIRO_CONTENT_COLOR, static_cast<int>(image.rows.width()),
      static_cast<int>(image.height));
  cairo_raster_source_pattern_set_acquire(pattern, Image::acquire, Image::release);
  cairo_pattern_set_filter(pattern, CAIRO_FILTER_NEAREST);
  cairo_save(context);
  cairo_translate(context, 0, static_cast<double>(image.top - pageTop));
  cairo_set_source(context, pattern);
  cairo_paint(context);
  cairo_restore(context);
  cairo_pattern_destroy(pattern);
}

// A pixel is `points` large. What is drawn must outlive whoever draws it.
cairo_status_t showWhole(cairo_surface_t* page, double points, Picture picture) {
  const Surface image = surfaceOf(picture);
  const Context context(cairo_create(page));
  cairo_scale(context.get(), points, points);
  cairo_set_source_surface(context.get(), image.get(), 0, 0);
  cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_NEAREST);
  cairo_paint(context.get());
  cairo_show_page(context.get());
  return cairo_status(context.get());
}

cairo_status_t showParts(cairo_surface_t* page, double points, PictureRows& rows, int64_t top,
                         int64_t height) {
  Drawn drawn;
  std::vector<Image> images;
  const int64_t most = std::max(kPartPixels / rows.size().width, 2 * kOverlap);
  for (int64_t at = 0; at + kOverlap < height; at += most - kOverlap) {
    images.push_back({rows, drawn, top + at, std::min(most, height - at)});
  }
  const Context context(cairo_create(page));
  cairo_scale(context.get(), points, points);
  for (Image& image : images) paint(context.get(), image, top);
  cairo_show_page(context.get());  // only now they are drawn
  return cairo_status(context.get());
}

Picture strip(PictureRows& rows, int64_t top, int64_t height) {
  Picture picture{
      static_cast<int32_t>(rows.size().width), static_cast<int32_t>(height), rows.size().dpi, {}};
  picture.pixels.resize(static_cast<size_t>(height) * rows.width());
  rows.draw(top, picture.pixels);
  return picture;
}

}  // namespace

struct PdfWriter::Parts {
  explicit Parts(const std::string& output) : name(output), file(output) {}
  std::string name;
  NewFile file;
  Surface surface;
};

PdfWriter::PdfWriter(const std::string& name) : parts_(std::make_unique<Parts>(name)) {}
PdfWriter::~PdfWriter() = default;

Problem PdfWriter::addPage(PictureRows& rows, int64_t top, int64_t height) {
  // Held back for the file's sake, but many pages take their time.
  if (parts_->surface && SignalsHeld::pending()) return parts_->name + ": interrupted";
  const double points = 72 / rows.size().dpi;
  const double wide = static_cast<double>(rows.size().width) * points;
  const double high = static_cast<double>(height) * points;
  if (!parts_->surface) {
    if (auto problem = parts_->file.open()) return problem;
    parts_->surface.reset(
        cairo_pdf_surface_create_for_stream(writeTo, parts_->file.file(), wide, high));
  }
  cairo_pdf_surface_set_size(parts_->surface.get(), wide, high);
  const bool single = height <= std::min<int64_t>(kImagePixels / rows.size().width, kLongestSide);
  const cairo_status_t status =
      single ? showWhole(parts_->surface.get(), points, strip(rows, top, height))
             : showParts(parts_->surface.get(), points, rows, top, height);
  if (status == CAIRO_STATUS_SUCCESS) return std::nullopt;
  return pdfTrouble(parts_->name, status);
}

Problem PdfWriter::add(PictureRows& rows) {
  const PictureSize& size = rows.size();
  if (size.width > kLongestSide) {
    return tooLarge(static_cast<double>(size.width), static_cast<double>(size.height), kLongestSide,
                    kMostRowPixels);
  }
  const auto most = std::max<int64_t>(1, std::llround(std::floor(kLongestPdfPage / 72 * size.dpi)));
  for (int64_t top = 0; top < size.height; top += most) {
    if (auto problem = addPage(rows, top, std::min(most, size.height - top))) return problem;
  }
  return std::nullopt;
}

Problem PdfWriter::add(Picture picture) {
  return add(*rowsOf(std::move(picture)));
}

Problem PdfWriter::finish() {
  if (!parts_->surface) return std::nullopt;
  cairo_surface_finish(parts_->surface.get());
  const cairo_status_t status = cairo_surface_status(parts_->surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return pdfTrouble(parts_->name, status);
  return parts_->file.keep();
}

}  // namespace velka::view
