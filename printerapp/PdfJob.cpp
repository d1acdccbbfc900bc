#include "PdfJob.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <exception>
#include <memory>

#include "Child.h"
#include "JobStart.h"
#include "Limits.h"
#include "OwnFile.h"
#include "PdfDrawing.h"
#include "PrintJob.h"
#include "Programs.h"

namespace velka::app {
namespace {

struct Deleter {
  void operator()(pappl_pr_options_t* options) const noexcept {
    papplJobDeletePrintOptions(options);
  }
  void operator()(cups_raster_t* raster) const noexcept { cupsRasterClose(raster); }
};
using Options = std::unique_ptr<pappl_pr_options_t, Deleter>;
using Raster = std::unique_ptr<cups_raster_t, Deleter>;

// The drawing process, whose raster is read while its words are heard.
class Drawing {
 public:
  std::string start(const std::string& file, const DrawingJob& job) {
    const UniqueFd pdf(open(file.c_str(), O_RDONLY | O_CLOEXEC));
    if (!pdf) return "the document cannot be read";
    ChildProgram program;
    program.program = ownProgram();
    program.arguments = wordsOf(job);
    program.arguments.insert(program.arguments.begin(), {"velka-printer-app", "draw"});
    program.environment = {{"LC_ALL", "C.UTF-8"}};
    program.input = pdf.get();
    return child_.start(program);
  }

  static ssize_t read(void* self, unsigned char* bytes, size_t length) {
    return static_cast<Drawing*>(self)->readSomeRaster({bytes, length});
  }

  // Why it did not draw all pages; empty where it did.
  std::string end(bool early) {
    if (early) child_.signal(SIGKILL);
    child_.closeOut();
    while (child_.err() >= 0) hear();
    const std::string how = child_.wait();
    if (how.empty() || early) return {};
    return said_.empty() ? "the page could not be drawn: the process " + how : said_;
  }

 private:
  ssize_t readSomeRaster(std::span<uint8_t> bytes) {
    while (true) {
      std::array<pollfd, 2> ready = {{{child_.out(), POLLIN, 0}, {child_.err(), POLLIN, 0}}};
      if (poll(ready.data(), ready.size(), -1) < 0 && errno != EINTR) return -1;
      if (ready[1].revents != 0) hear();
      if (ready[0].revents != 0) return readSome(child_.out(), bytes);
    }
  }

  // The last line counts; the library that draws remarks on much that does no harm.
  void hear() {
    std::array<uint8_t, 4096> buffer;
    const ssize_t n = readSome(child_.err(), buffer);
    if (n <= 0) {
      child_.closeErr();
      return;
    }
    line_.append(buffer.begin(), buffer.begin() + n);
    for (size_t end = line_.find('\n'); end != std::string::npos; end = line_.find('\n')) {
      said_ = line_.substr(0, end);
      line_.erase(0, end + 1);
    }
  }

  Child child_;
  std::string line_;
  std::string said_;
};

Scaling scalingOf(pappl_scaling_t scaling) {
  switch (scaling) {
    case PAPPL_SCALING_AUTO:
      return Scaling::Auto;
    case PAPPL_SCALING_FILL:
      return Scaling::Fill;
    case PAPPL_SCALING_FIT:
      return Scaling::Fit;
    case PAPPL_SCALING_NONE:
      return Scaling::None;
    default:
      return Scaling::AutoFit;
  }
}

Turn turnOf(pappl_job_t* job, const pappl_pr_options_t& options) {
  const bool stated = papplJobGetAttribute(job, "orientation-requested") != nullptr;
  switch (options.orientation_requested) {
    case IPP_ORIENT_PORTRAIT:
      // The printer's own default, which is no wish.
      return stated ? Turn::Portrait : Turn::None;
    case IPP_ORIENT_LANDSCAPE:
      return Turn::Landscape;
    case IPP_ORIENT_REVERSE_LANDSCAPE:
      return Turn::ReverseLandscape;
    case IPP_ORIENT_REVERSE_PORTRAIT:
      return Turn::ReversePortrait;
    default:
      return Turn::None;
  }
}

std::vector<PageRange> rangesOf(pappl_job_t* job) {
  std::vector<PageRange> ranges;
  ipp_attribute_t* attribute = papplJobGetAttribute(job, "page-ranges");
  for (int i = 0; attribute != nullptr && i < ippGetCount(attribute); ++i) {
    PageRange range;
    range.first = ippGetRange(attribute, i, &range.last);
    ranges.push_back(range);
  }
  return ranges;
}

bool hasFidelity(pappl_job_t* job) {
  ipp_attribute_t* attribute = papplJobGetAttribute(job, "ipp-attribute-fidelity");
  return attribute != nullptr && ippGetBoolean(attribute, 0) != 0;
}

// A job's own words come first, its pair of the head, its choice or its quality; then the
// printer's default choice, where somebody made one.
Resolution resolutionFor(pappl_job_t* job, const pappl_pr_options_t& options,
                         const JobChoices& choices) {
  const Resolution usual = {options.printer_resolution[0], options.printer_resolution[1]};
  const Model* model = modelOf(job);
  const VendorOption* offered = model == nullptr ? nullptr : model->option("Resolution");
  const auto chosen = choices.vendor.find("Resolution");
  if (offered == nullptr || chosen == choices.vendor.end() ||
      papplJobGetAttribute(job, "printer-resolution") != nullptr)
    return usual;
  const bool stated = papplJobGetAttribute(job, "Resolution") != nullptr;
  const bool set = chosen->second != offered->defaultChoice &&
                   papplJobGetAttribute(job, "print-quality") == nullptr;
  const Resolution named = resolutionOf(chosen->second);
  return (stated || set) && named.x > 0 ? named : usual;
}

DrawingJob drawingOf(pappl_job_t* job, const pappl_pr_options_t& options,
                     const JobChoices& choices) {
  DrawingJob drawing;
  drawing.dpi = resolutionFor(job, options, choices);
  drawing.paper = {static_cast<double>(options.media.size_width),
                   static_cast<double>(options.media.size_length)};
  drawing.wishes = {scalingOf(options.print_scaling), turnOf(job, options), hasFidelity(job)};
  drawing.pages = rangesOf(job);
  drawing.mostPages = limits.pages;
  return drawing;
}

// Copies that the printer does not make itself are drawn again, so that they come collated.
class PdfJob {
 public:
  PdfJob(pappl_job_t* job, pappl_device_t* device, pappl_pr_options_t* options)
      : job_(job),
        choices_(choicesOf(job, *options)),
        byPrinter_(modelOf(job) != nullptr && modelOf(job)->copiesByPrinter),
        copies_(std::max(options->copies, 1)),
        print_(job, options, device, byPrinter_ ? static_cast<unsigned>(copies_) : 1U),
        drawing_(drawingOf(job, *options, choices_)) {}

  bool run() {
    const std::string id = filterJobId(job_);
    const bool copy = choices_.vendor["PdfPreprocess"] == "yes";
    if (copy) drawing_.copy = "/tmp/VK_TEMP_CUPS_" + id + ".pdf";
    const bool printed = print_.start(id, copy) && drawAll();
    const bool ended = print_.end();
    // The filter takes it away, unless it did not come so far.
    if (copy) removeOwnFile(drawing_.copy.c_str());
    return printed && ended;
  }

 private:
  bool drawAll() {
    const int rounds = byPrinter_ ? 1 : copies_;
    for (int round = 0; round < rounds; ++round) {
      if (!drawOnce()) return false;
    }
    return true;
  }

  bool drawOnce() {
    Drawing drawing;
    const char* file = papplJobGetFilename(job_);
    if (file == nullptr) return print_.fail("the document is gone");
    const std::string trouble = drawing.start(file, drawing_);
    if (!trouble.empty()) return print_.fail(trouble);
    const bool taken = copyPages(drawing);
    const std::string why = drawing.end(!taken);
    return why.empty() ? taken : print_.fail(why);
  }

  // False where no more pages are taken, true where none follow.
  bool copyPages(Drawing& drawing) {
    const Raster raster(cupsRasterOpenIO(&Drawing::read, &drawing, CUPS_RASTER_READ));
    cups_page_header2_t header = {};
    while (raster && cupsRasterReadHeader2(raster.get(), &header) != 0) {
      if (papplJobIsCanceled(job_) || !print_.startPage(header)) return false;
      bool whole = true;
      if (!copyLines(raster.get(), header, whole)) return false;
      // What was not drawn to its end is not printed as if it were.
      if (!whole) return true;
      if (!print_.endPage()) return false;
    }
    return true;
  }

  bool copyLines(cups_raster_t* raster, const cups_page_header2_t& header, bool& whole) {
    std::vector<uint8_t> line(header.cupsBytesPerLine);
    const auto bytes = static_cast<unsigned>(line.size());
    for (unsigned y = 0; y < header.cupsHeight; ++y) {
      whole = cupsRasterReadPixels(raster, line.data(), bytes) == bytes;
      if (!whole) return true;
      if (papplJobIsCanceled(job_) || !print_.writeLine(line)) return false;
    }
    return true;
  }

  pappl_job_t* job_;
  JobChoices choices_;
  bool byPrinter_;
  int copies_;
  PrintJob print_;
  DrawingJob drawing_;
};

bool printPdf(pappl_job_t* job, pappl_device_t* device, void* /*data*/) {
  if (!isFirstToPrint(job)) return true;
  try {
    const Options options(papplJobCreatePrintOptions(job, 0, true));
    if (!options) return false;
    return PdfJob(job, device, options.get()).run();
  } catch (const std::exception& e) {
    papplLogJob(job, PAPPL_LOGLEVEL_ERROR, "The document cannot be printed: %s", e.what());
    return false;
  }
}

}  // namespace

void addPdfFilter(pappl_system_t* system) {
  papplSystemAddMIMEFilter(system, "application/pdf", "image/pwg-raster", printPdf, nullptr);
}

}  // namespace velka::app
