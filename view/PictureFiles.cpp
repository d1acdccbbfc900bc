#include "PictureFiles.h"

#include <cairo-pdf.h>
#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <optional>

#include "CairoSurface.h"

namespace velka::view {
namespace {

// The colours of a picture that has at most as many as four bits can count.
std::optional<std::vector<uint32_t>> fewColours(const Picture& picture) {
  constexpr size_t kMost = 16;
  std::vector<uint32_t> colours;
  uint32_t last = kWhite + 1;
  for (const uint32_t pixel : picture.pixels) {
    if (pixel == last) continue;
    last = pixel;
    if (std::ranges::find(colours, pixel) != colours.end()) continue;
    if (colours.size() == kMost) return std::nullopt;
    colours.push_back(pixel);
  }
  return colours;
}

png_byte channel(uint32_t colour, unsigned shift) {
  return static_cast<png_byte>((colour >> shift) & 0xFFU);
}

struct PngWriter {
  png_structp png = nullptr;
  png_infop info = nullptr;

  PngWriter() : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, stop, quiet)) {
    if (png != nullptr) info = png_create_info_struct(png);
  }
  ~PngWriter() { png_destroy_write_struct(&png, &info); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  // Without a word: whoever asked for the picture tells why there is none.
  static void stop(png_structp png, png_const_charp /*text*/) { png_longjmp(png, 1); }
  static void quiet(png_structp /*png*/, png_const_charp /*text*/) {}
};

// What one row needs, made before the jump buffer is set: nothing with a destructor
// may come to life after it.
struct Rows {
  std::optional<std::vector<uint32_t>> colours;
  std::array<png_color, 16> palette{};
  std::vector<png_byte> bytes;
  int depth = 8;

  explicit Rows(const Picture& picture) : colours(fewColours(picture)) {
    bytes.resize(static_cast<size_t>(picture.width) * (colours ? 1 : 3));
    if (!colours) return;
    depth = colours->size() <= 2 ? 1 : colours->size() <= 4 ? 2 : 4;
    std::ranges::transform(*colours, palette.begin(), [](uint32_t colour) {
      return png_color{channel(colour, 16), channel(colour, 8), channel(colour, 0)};
    });
  }

  void fill(const uint32_t* pixels, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      if (colours) {
        bytes[i] = static_cast<png_byte>(std::ranges::find(*colours, pixels[i]) - colours->begin());
        continue;
      }
      for (unsigned part = 0; part < 3; ++part) {
        bytes[3 * i + part] = channel(pixels[i], 16 - 8 * part);
      }
    }
  }
};

bool writeRows(const PngWriter& writer, const Picture& picture, Rows& rows, std::FILE* file) {
  if (writer.info == nullptr) return false;
  // The library reports errors by a jump to here.
  if (setjmp(png_jmpbuf(writer.png)) != 0) return false;  // NOLINT(cert-err52-cpp)
  png_init_io(writer.png, file);
  png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(picture.width),
               static_cast<png_uint_32>(picture.height), rows.depth,
               rows.colours ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (rows.colours) {
    png_set_PLTE(writer.png, writer.info, rows.palette.data(),
                 static_cast<int>(rows.colours->size()));
  }
  const auto perMetre = static_cast<png_uint_32>(std::lround(picture.dpi / 0.0254));
  png_set_pHYs(writer.png, writer.info, perMetre, perMetre, PNG_RESOLUTION_METER);
  png_write_info(writer.png, writer.info);
  png_set_packing(writer.png);
  const auto width = static_cast<size_t>(picture.width);
  for (size_t y = 0; y < static_cast<size_t>(picture.height); ++y) {
    rows.fill(picture.pixels.data() + y * width, width);
    png_write_row(writer.png, rows.bytes.data());
  }
  png_write_end(writer.png, nullptr);
  return true;
}

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

}  // namespace

Problem writePng(const Picture& picture, const std::string& name) {
  NewFile file(name);
  if (auto problem = file.open()) return problem;
  const PngWriter writer;
  Rows rows(picture);
  if (!writeRows(writer, picture, rows, file.file())) {
    return systemTrouble(shownOutput(name));
  }
  return file.keep();
}

struct PdfWriter::Parts {
  explicit Parts(const std::string& output) : name(output), file(output) {}
  std::string name;
  NewFile file;
  Surface surface;
};

PdfWriter::PdfWriter(const std::string& name) : parts_(std::make_unique<Parts>(name)) {}
PdfWriter::~PdfWriter() = default;

Problem PdfWriter::add(Picture picture) {
  // Held back for the file's sake, but many pages take their time.
  if (parts_->surface && SignalsHeld::pending()) return parts_->name + ": interrupted";
  const double points = 72 / picture.dpi;
  const double width = picture.width * points;
  const double height = picture.height * points;
  if (!parts_->surface) {
    if (auto problem = parts_->file.open()) return problem;
    parts_->surface.reset(
        cairo_pdf_surface_create_for_stream(writeTo, parts_->file.file(), width, height));
  }
  cairo_pdf_surface_set_size(parts_->surface.get(), width, height);
  const Surface image = surfaceOf(picture);
  const Context context(cairo_create(parts_->surface.get()));
  cairo_scale(context.get(), points, points);
  cairo_set_source_surface(context.get(), image.get(), 0, 0);
  cairo_pattern_set_filter(cairo_get_source(context.get()), CAIRO_FILTER_NEAREST);
  cairo_paint(context.get());
  cairo_show_page(context.get());
  if (cairo_status(context.get()) == CAIRO_STATUS_SUCCESS) return std::nullopt;
  return pdfTrouble(parts_->name, cairo_status(context.get()));
}

Problem PdfWriter::finish() {
  if (!parts_->surface) return std::nullopt;
  cairo_surface_finish(parts_->surface.get());
  const cairo_status_t status = cairo_surface_status(parts_->surface.get());
  if (status != CAIRO_STATUS_SUCCESS) return pdfTrouble(parts_->name, status);
  return parts_->file.keep();
}

}  // namespace velka::view
