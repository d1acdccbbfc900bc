// velka-paper MODEL RASTER: prints a raster's pages as the original stream and
// exactly, strikes both on paper, and says in one line of numbers how that compares with
// what the literal pipeline puts into the planes:
//   dots, and for the original and the exact stream in turn: dots on their place, dots
//   struck more than once, dots elsewhere, pages, pages that ran past their form, bytes,
//   passes of the head, moves of the paper, moves back.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "exact/Job.h"
#include "support/FilterRun.h"
#include "support/TestPpd.h"

namespace velka::exacttest {
namespace {

std::vector<RasterPage> readPages(const char* path) {
  std::vector<RasterPage> pages;
  const int fd = open(path, O_RDONLY | O_CLOEXEC);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  RasterPage page = {};
  while (raster != nullptr && cupsRasterReadHeader2(raster, &page.header) != 0) {
    page.header.NumCopies = 1;
    page.lines.assign(page.header.cupsHeight, Bytes(page.header.cupsBytesPerLine));
    for (Bytes& line : page.lines)
      cupsRasterReadPixels(raster, line.data(), static_cast<unsigned>(line.size()));
    pages.push_back(page);
  }
  cupsRasterClose(raster);
  close(fd);
  return pages;
}

// How often each place of a page was struck: rows of 1/360 inch, columns of the raster.
class Sheet {
 public:
  Sheet(const cups_page_header2_t& header, size_t margin)
      : columns_(header.cupsWidth + margin),
        rows_(header.cupsHeight * 360 / header.HWResolution[1] + 360 * margin / 100),
        columnPitch_(3600 / header.HWResolution[0]),
        cells_{std::vector<uint8_t>(columns_ * rows_), std::vector<uint8_t>(columns_ * rows_)} {}

  void strike(int ink, int64_t y, int64_t x) {
    const bool onGrid = y >= 0 && x >= 0 && y % kRowPitch == 0 && x % columnPitch_ == 0;
    const auto row = static_cast<size_t>(y / kRowPitch);
    const auto column = static_cast<size_t>(x / columnPitch_);
    if (!onGrid || row >= rows_ || column >= columns_) {
      ++elsewhere_;
      return;
    }
    uint8_t& cell = cells_[static_cast<size_t>(ink)][row * columns_ + column];
    if (cell < UINT8_MAX) ++cell;
  }
  // Whether the dot is there; what is left over at the end lies elsewhere.
  bool take(int ink, size_t row, size_t column, long& twice) {
    uint8_t& cell = cells_[static_cast<size_t>(ink)][row * columns_ + column];
    const bool there = cell > 0;
    if (cell > 1) ++twice;
    cell = 0;
    return there;
  }
  [[nodiscard]] long elsewhere() const {
    long count = elsewhere_;
    for (const auto& ink : cells_)
      for (const uint8_t cell : ink) count += cell > 0 ? 1 : 0;
    return count;
  }

 private:
  static constexpr int64_t kRowPitch = 10;
  size_t columns_;
  size_t rows_;
  int64_t columnPitch_;
  long elsewhere_ = 0;
  std::vector<uint8_t> cells_[2];
};

struct Counts {
  long onPlace = 0;
  long twice = 0;
  long elsewhere = 0;
  long pages = 0;
  long pastForm = 0;
  long bytes = 0;
  long passes = 0;
  long moves = 0;
  long movesBack = 0;
};

std::vector<Sheet> blankSheets(const Job& job) {
  constexpr size_t kMargin = 400;
  std::vector<Sheet> sheets;
  for (const RasterPage& page : job.pages) sheets.emplace_back(page.header, kMargin);
  return sheets;
}

void addPage(const PrintedPage& page, Counts& counts) {
  constexpr int64_t kLine = 600;  // 1/6 inch
  ++counts.pages;
  counts.pastForm += page.lastStand > page.formLines * kLine ? 1 : 0;
  counts.bytes += static_cast<long>(page.bytes);
  counts.passes += page.passes;
  counts.moves += page.moves;
  counts.movesBack += page.movesBack;
}

Counts measure(const Job& job, bool exact) {
  std::vector<Sheet> sheets = blankSheets(job);
  const Bytes stream = print(job, exact);
  Counts counts;
  const PrintedJob paper = printOut(stream, job.pins(), [&](size_t page, const Spot& spot) {
    const auto [ink, y, x] = spot;
    if (page < sheets.size()) sheets[page].strike(ink, y, x);
  });
  if (paper.fault) std::fprintf(stderr, "%s\n", paper.fault->c_str());
  for (const PrintedPage& page : paper.pages) addPage(page, counts);
  for (size_t i = 0; i < job.pages.size(); ++i) {
    const size_t pitch = 360 / job.pages[i].header.HWResolution[1];
    forEachWantedDot(job, job.pages[i], [&](int ink, int row, int column) {
      counts.onPlace += sheets[i].take(ink, static_cast<size_t>(row) * pitch,
                                       static_cast<size_t>(column), counts.twice)
                            ? 1
                            : 0;
    });
    counts.elsewhere += sheets[i].elsewhere();
  }
  return counts;
}

void tell(const Counts& c) {
  std::printf("\t%ld\t%ld\t%ld\t%ld\t%ld\t%ld\t%ld\t%ld\t%ld", c.onPlace, c.twice, c.elsewhere,
              c.pages, c.pastForm, c.bytes, c.passes, c.moves, c.movesBack);
}

}  // namespace
}  // namespace velka::exacttest

int main(int argc, char* argv[]) {
  using namespace velka::exacttest;
  if (argc != 3) {
    std::fputs("usage: velka-paper MODEL RASTER\n", stderr);
    return 2;
  }
  Job job = jobOf(std::atoi(argv[1]));
  job.pages = readPages(argv[2]);
  if (job.pages.empty()) {
    std::fputs("velka-paper: no pages\n", stderr);
    return 1;
  }
  long dots = 0;
  for (const RasterPage& page : job.pages)
    forEachWantedDot(job, page, [&](int, int, int) { ++dots; });
  std::printf("%ld", dots);
  tell(measure(job, false));
  tell(measure(job, true));
  std::printf("\n");
  return 0;
}
