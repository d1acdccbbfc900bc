#include "PdfDrawing.h"

#include <cairo-pdf.h>
#include <cairo.h>
#include <cups/raster.h>
#include <fcntl.h>
#include <poppler.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <memory>
#include <span>
#include <string>

#include "OwnFile.h"
#include "ToolLimits.h"

namespace velka::app {
namespace {

constexpr double kPointsPerHundredth = 72.0 / 2540;
// The most that is drawn at a time: 16 MiB of pixels.
constexpr uint32_t kBandPixels = 4U << 20U;

struct Unref {
  void operator()(gpointer object) const noexcept { g_object_unref(object); }
  void operator()(cairo_t* c) const noexcept { cairo_destroy(c); }
  void operator()(cairo_surface_t* s) const noexcept { cairo_surface_destroy(s); }
  void operator()(cups_raster_t* r) const noexcept { cupsRasterClose(r); }
};
using Document = std::unique_ptr<PopplerDocument, Unref>;
using Page = std::unique_ptr<PopplerPage, Unref>;
using Context = std::unique_ptr<cairo_t, Unref>;
using Surface = std::unique_ptr<cairo_surface_t, Unref>;
using Raster = std::unique_ptr<cups_raster_t, Unref>;

Drawn tell(Drawn end, const std::string& what) {
  std::fprintf(stderr, "%s\n", what.c_str());
  return end;
}

Document openDocument(int pdf, Drawn& end) {
  GError* error = nullptr;
  // The document closes its descriptor.
  Document document(poppler_document_new_from_fd(fcntl(pdf, F_DUPFD_CLOEXEC, 3), nullptr, &error));
  if (document) return document;
  const bool locked =
      error != nullptr && g_error_matches(error, POPPLER_ERROR, POPPLER_ERROR_ENCRYPTED) != 0;
  end = locked ? tell(Drawn::Locked, "the PDF wants a password")
               : tell(Drawn::NoDocument,
                      "the PDF cannot be read: " +
                          std::string(error != nullptr ? error->message : "no reason is known"));
  g_clear_error(&error);
  return document;
}

Extent extentOf(PopplerPage* page) {
  Extent extent;
  poppler_page_get_size(page, &extent.width, &extent.height);
  return extent;
}

Extent paperPoints(const DrawingJob& job) {
  return {job.paper.width * kPointsPerHundredth, job.paper.height * kPointsPerHundredth};
}

void paint(cairo_t* context, PopplerPage* page, const Placing& p) {
  const cairo_matrix_t matrix = {p.xx, p.yx, p.xy, p.yy, p.x0, p.y0};
  cairo_transform(context, &matrix);
  // What hangs over the page's own edges is cut there, as it is on any screen.
  const Extent extent = extentOf(page);
  cairo_rectangle(context, 0, 0, extent.width, extent.height);
  cairo_clip(context);
  poppler_page_render_for_printing(page, context);
}

cups_page_header2_t headerOf(const DrawingJob& job, Dots dots) {
  const Extent points = paperPoints(job);
  cups_page_header2_t header = {};
  header.HWResolution[0] = static_cast<unsigned>(job.dpi.x);
  header.HWResolution[1] = static_cast<unsigned>(job.dpi.y);
  header.PageSize[0] = static_cast<unsigned>(std::lround(points.width));
  header.PageSize[1] = static_cast<unsigned>(std::lround(points.height));
  header.cupsPageSize[0] = static_cast<float>(points.width);
  header.cupsPageSize[1] = static_cast<float>(points.height);
  header.cupsWidth = dots.width;
  header.cupsHeight = dots.height;
  header.cupsColorSpace = CUPS_CSPACE_SRGB;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsNumColors = 3;
  header.cupsBytesPerLine = dots.width * 3;
  header.NumCopies = 1;
  return header;
}

// A picture's row, blue first with a byte to spare, as red, green and blue.
void copyRow(const uint8_t* row, std::span<uint8_t> rgb) {
  for (size_t i = 0; i < rgb.size(); i += 3, row += 4) {
    rgb[i] = row[2];
    rgb[i + 1] = row[1];
    rgb[i + 2] = row[0];
  }
}

extern "C" void tookTooLong(int /*signal*/) {
  constexpr std::string_view kText = "the page takes too long to draw\n";
  const ssize_t told = write(STDERR_FILENO, kText.data(), kText.size());
  _exit(told > 0 ? static_cast<int>(Drawn::Failed) : 1);
}

// The clock runs while a page is drawn, not while the printer takes it.
class Deadline {
 public:
  Deadline() {
    std::signal(SIGALRM, tookTooLong);
    alarm(static_cast<unsigned>(
        std::chrono::duration_cast<std::chrono::seconds>(kDrawingLimits.time).count()));
  }
  ~Deadline() { alarm(0); }
  Deadline(const Deadline&) = delete;
  Deadline& operator=(const Deadline&) = delete;
};

class RasterPage {
 public:
  RasterPage(const DrawingJob& job, PopplerPage* page) : page_(page), dots_(dotsOf(job)) {
    const Placing onPaper = placePage(extentOf(page), paperPoints(job), job.wishes);
    placing_ = scaled(onPaper, job.dpi.x / 72.0, job.dpi.y / 72.0);
    bandRows_ = std::clamp(kBandPixels / dots_.width, 1U, dots_.height);
  }

  bool write(cups_raster_t* raster) {
    const Surface band(cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(dots_.width),
                                                  static_cast<int>(bandRows_)));
    if (cairo_surface_status(band.get()) != CAIRO_STATUS_SUCCESS) return false;
    std::vector<uint8_t> line(size_t{dots_.width} * 3);
    for (uint32_t y = 0; y < dots_.height; y += bandRows_) {
      draw(band.get(), y);
      if (!writeRows(raster, band.get(), std::min(bandRows_, dots_.height - y), line)) return false;
    }
    return true;
  }

 private:
  void draw(cairo_surface_t* band, uint32_t top) {
    const Deadline deadline;
    const Context context(cairo_create(band));
    cairo_set_source_rgb(context.get(), 1, 1, 1);
    cairo_paint(context.get());
    cairo_translate(context.get(), 0, -static_cast<double>(top));
    paint(context.get(), page_, placing_);
    cairo_surface_flush(band);
  }

  static bool writeRows(cups_raster_t* raster, cairo_surface_t* band, uint32_t rows,
                        std::vector<uint8_t>& line) {
    const uint8_t* pixels = cairo_image_surface_get_data(band);
    const int stride = cairo_image_surface_get_stride(band);
    const auto bytes = static_cast<unsigned>(line.size());
    for (uint32_t row = 0; row < rows; ++row, pixels += stride) {
      copyRow(pixels, line);
      if (cupsRasterWritePixels(raster, line.data(), bytes) != bytes) return false;
    }
    return true;
  }

  PopplerPage* page_;
  Dots dots_;
  Placing placing_;
  uint32_t bandRows_ = 1;
};

cairo_status_t writeCopy(void* file, const unsigned char* bytes, unsigned length) {
  const int fd = static_cast<UniqueFd*>(file)->get();
  while (length > 0) {
    const ssize_t n = write(fd, bytes, length);
    if (n <= 0 && errno != EINTR) return CAIRO_STATUS_WRITE_ERROR;
    bytes += std::max<ssize_t>(n, 0);
    length -= static_cast<unsigned>(std::max<ssize_t>(n, 0));
  }
  return CAIRO_STATUS_SUCCESS;
}

// The pages as they lie on the paper.
bool leaveCopy(PopplerDocument* document, const std::vector<int>& pages, const DrawingJob& job) {
  if (!makeFreshOwnFile(job.copy.c_str())) return false;
  UniqueFd file = openOwnFile(job.copy.c_str(), O_WRONLY);
  const Extent paper = paperPoints(job);
  const Surface surface(
      cairo_pdf_surface_create_for_stream(writeCopy, &file, paper.width, paper.height));
  for (const int number : pages) {
    const Deadline deadline;
    const Page page(poppler_document_get_page(document, number - 1));
    const Context context(cairo_create(surface.get()));
    if (page) paint(context.get(), page.get(), placePage(extentOf(page.get()), paper, job.wishes));
    cairo_show_page(context.get());
  }
  cairo_surface_finish(surface.get());
  return cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS;
}

Drawn drawPages(PopplerDocument* document, const std::vector<int>& pages, int output,
                const DrawingJob& job) {
  const Raster raster(cupsRasterOpen(output, CUPS_RASTER_WRITE));
  if (!raster) return tell(Drawn::Failed, "no memory for the raster");
  for (const int number : pages) {
    const std::string name = "page " + std::to_string(number);
    const Page page(poppler_document_get_page(document, number - 1));
    if (!page) return tell(Drawn::NoDocument, name + " of the PDF cannot be read");
    cups_page_header2_t header = headerOf(job, dotsOf(job));
    if (cupsRasterWriteHeader2(raster.get(), &header) == 0 ||
        !RasterPage(job, page.get()).write(raster.get()))
      return tell(Drawn::Failed, name + " cannot be drawn to its end");
  }
  return Drawn::Well;
}

// Sanitizers keep shadows of all memory, and more than any limit leaves them.
void limitMemory() {
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
  const rlimit most = {kDrawingLimits.memoryBytes, kDrawingLimits.memoryBytes};
  setrlimit(RLIMIT_AS, &most);
#endif
  const rlimit none = {0, 0};
  setrlimit(RLIMIT_CORE, &none);
}

}  // namespace

Drawn drawPdf(int pdf, int raster, const DrawingJob& job) {
  Drawn end = Drawn::NoDocument;
  const Document document = openDocument(pdf, end);
  if (!document) return end;
  const std::vector<int> pages =
      chosenPages(job.pages, poppler_document_get_n_pages(document.get()));
  if (pages.empty()) return tell(Drawn::NoPage, "the PDF has none of the pages to print");
  if (job.mostPages > 0 && pages.size() > static_cast<size_t>(job.mostPages))
    return tell(Drawn::TooManyPages, "the job has " + std::to_string(pages.size()) +
                                         " pages, and " + std::to_string(job.mostPages) +
                                         " are the most that a job may have");
  if (!job.copy.empty() && !leaveCopy(document.get(), pages, job))
    return tell(Drawn::Failed, "the copy " + job.copy + " cannot be made");
  return drawPages(document.get(), pages, raster, job);
}

int runDrawing(int count, const char* const words[]) {
  DrawingJob job;
  if (!readWords({words, words + count}, job)) {
    return static_cast<int>(tell(Drawn::Failed, "usage: draw x=DPI y=DPI width=N height=N ..."));
  }
  limitMemory();
  return static_cast<int>(drawPdf(STDIN_FILENO, STDOUT_FILENO, job));
}

}  // namespace velka::app
