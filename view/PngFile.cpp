#include <png.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <csetjmp>
#include <utility>

#include "PictureFiles.h"

namespace velka::view {
namespace {

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

// A strip of rows as the file holds them, a byte or three a pixel.
class Strip {
 public:
  explicit Strip(PictureRows& rows) : rows_(rows), most_(rowsInStrip(rows.size().width)) {
    std::ranges::transform(rows.colours(), palette_.begin(), [](uint32_t colour) {
      return png_color{channel(colour, 16), channel(colour, 8), channel(colour, 0)};
    });
  }

  [[nodiscard]] bool hasPalette() const { return !rows_.colours().empty(); }
  [[nodiscard]] int colours() const { return static_cast<int>(rows_.colours().size()); }
  [[nodiscard]] int depth() const {
    return !hasPalette() ? 8 : colours() <= 2 ? 1 : colours() <= 4 ? 2 : 4;
  }
  [[nodiscard]] const png_color* palette() const { return palette_.data(); }

  // The row's bytes; valid until the next call.
  png_const_bytep row(int64_t row) {
    const size_t bytes = rows_.width() * (hasPalette() ? 1 : 3);
    if (row >= top_ + count_) fill(row);
    return bytes_.data() + static_cast<size_t>(row - top_) * bytes;
  }

 private:
  void fill(int64_t top) {
    top_ = top;
    count_ = std::min(most_, rows_.size().height - top);
    const size_t pixels = static_cast<size_t>(count_) * rows_.width();
    bytes_.resize(pixels * (hasPalette() ? 1 : 3));
    if (hasPalette()) return rows_.drawNumbers(top, bytes_);
    pixels_.resize(pixels);
    rows_.draw(top, pixels_);
    auto* to = bytes_.data();
    for (const uint32_t pixel : pixels_) {
      for (const unsigned shift : {16U, 8U, 0U}) *to++ = channel(pixel, shift);
    }
  }

  PictureRows& rows_;
  int64_t most_;
  int64_t top_ = 0;
  int64_t count_ = 0;
  std::array<png_color, 16> palette_{};
  std::vector<png_byte> bytes_;
  std::vector<uint32_t> pixels_;
};

// Halftones do not get much smaller by more effort, only slower: a photograph at 360 dpi
// takes a third of the time of the usual settings and a tenth more room. Shades are
// smaller and faster by their difference to the left neighbour than by whichever filter
// the library would choose for each row.
void setEffort(png_structp png, bool palette) {
  png_set_compression_level(png, palette ? 2 : 3);
  if (palette) return;
  png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_SUB);
  png_set_compression_strategy(png, 0);  // any repetition, not shades alone
}

enum class Written : uint8_t { Whole, Failed, Interrupted };

Written writeRows(const PngWriter& writer, const PictureSize& size, Strip& strip, std::FILE* file) {
  if (writer.info == nullptr) return Written::Failed;
  // The library reports errors by a jump to here: nothing with a destructor may come to
  // life between two of its calls and stay.
  if (setjmp(png_jmpbuf(writer.png)) != 0) return Written::Failed;  // NOLINT(cert-err52-cpp)
  png_init_io(writer.png, file);
  setEffort(writer.png, strip.hasPalette());
  png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(size.width),
               static_cast<png_uint_32>(size.height), strip.depth(),
               strip.hasPalette() ? PNG_COLOR_TYPE_PALETTE : PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  if (strip.hasPalette()) {
    png_set_PLTE(writer.png, writer.info, strip.palette(), strip.colours());
  }
  const auto perMetre = static_cast<png_uint_32>(std::lround(size.dpi / 0.0254));
  png_set_pHYs(writer.png, writer.info, perMetre, perMetre, PNG_RESOLUTION_METER);
  png_write_info(writer.png, writer.info);
  png_set_packing(writer.png);
  for (int64_t y = 0; y < size.height; ++y) {
    png_write_row(writer.png, strip.row(y));
    if (y % 4096 == 4095 && SignalsHeld::pending()) return Written::Interrupted;
  }
  png_write_end(writer.png, nullptr);
  return Written::Whole;
}

std::string shownOutput(const std::string& name) {
  return name == "-" ? "standard output" : name;
}

}  // namespace

Problem writePng(PictureRows& rows, const std::string& name) {
  NewFile file(name);
  if (auto problem = file.open()) return problem;
  const PngWriter writer;
  Strip strip(rows);
  switch (writeRows(writer, rows.size(), strip, file.file())) {
    case Written::Failed:
      return systemTrouble(shownOutput(name));
    case Written::Interrupted:
      return shownOutput(name) + ": interrupted";
    case Written::Whole:
      break;
  }
  return file.keep();
}

Problem writePng(const Picture& picture, const std::string& name) {
  return writePng(*rowsOf(picture), name);
}

}  // namespace velka::view
