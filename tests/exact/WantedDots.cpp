// The dots of a job's pages, by the literal forms.
#include <algorithm>

#include "exact/Job.h"
#include "jobs/JobFixture.h"
#include "orlo/LiteralPipeline.h"
#include "reference/ReferenceDispatcher.h"
#include "reference/ReferenceSeparation.h"

namespace velka::exacttest {
namespace {

// Rows and columns of a page's picture, moved as the job asks for and turned.
reference::PageImage placed(const RasterPage& page, const tagOEMCFG& options) {
  const reference::SourceBitmap source = reference::readRaster(testing::forReference(page));
  const auto& header = page.header;
  const auto shift = reference::printShift(options, 1, static_cast<int>(header.HWResolution[0]),
                                           static_cast<int>(header.HWResolution[1]));
  const int64_t width = header.cupsWidth + shift.x;
  const int64_t height = header.cupsHeight + shift.y;
  if (width <= 0 || height <= 0) return {};
  reference::PageImage image = {
      {}, reference::paddedStride(width, 24), static_cast<int>(width), static_cast<int>(height)};
  image.bytes.assign(image.stride * static_cast<size_t>(height), 255);
  const size_t stride = reference::paddedStride(header.cupsWidth, 24);
  for (int64_t y = 0; y < int64_t{header.cupsHeight}; ++y)
    for (int64_t x = 0; x < int64_t{header.cupsWidth}; ++x) {
      const int64_t row = y + shift.y;
      const int64_t column = x + shift.x;
      if (row < 0 || row >= height || column < 0 || column >= width) continue;
      for (int64_t i = 0; i < 3; ++i)
        image.bytes[static_cast<size_t>(row) * image.stride + static_cast<size_t>(column * 3 + i)] =
            source.bytes[static_cast<size_t>(y) * stride + static_cast<size_t>(x * 3 + i)];
    }
  return reference::rotate(image, reference::quarterTurns(options, 1));
}

void visitDots(const std::vector<uint8_t>& plane, int ink, const reference::PageImage& page,
               const OnDot& visit) {
  for (int y = 0; y < page.height; ++y)
    for (int x = 0; x < page.width; ++x)
      if (plane[static_cast<size_t>(y) * static_cast<size_t>(page.width) +
                static_cast<size_t>(x)] == 0)
        visit(ink, y, x);
}

void visitStandardDots(const reference::PageImage& page, const tagOEMCFG& options, int xdpi,
                       int ydpi, const OnDot& visit) {
  const auto planes = reference::separatePage(page, xdpi, ydpi, options);
  if (planes.blackFlag) visitDots(planes.black, 0, page, visit);
  if (planes.redFlag) visitDots(planes.red, 1, page, visit);
}

// The literal pipeline leaves out a page's last row, so it gets a white one below.
void visitOrloDots(const reference::PageImage& page, const tagOEMCFG& options, int ydpi,
                   const OnDot& visit) {
  orlotest::Bitmap bitmap(page.width, page.height + 1,
                          page.stride - size_t{3} * static_cast<size_t>(page.width));
  std::copy(page.bytes.begin(), page.bytes.end(), bitmap.bytes.begin());
  const auto planes = orlotest::separateLiterally(bitmap, orlotest::configOf(options), ydpi, kOrlo);
  if (planes.black.hasData) visitDots(planes.black.bytes, 0, page, visit);
  if (planes.red.hasData) visitDots(planes.red.bytes, 1, page, visit);
}

}  // namespace

void forEachWantedDot(const Job& job, const RasterPage& page, const OnDot& visit) {
  const reference::PageImage image = placed(page, job.options);
  if (image.width <= 0 || image.height <= 0) return;
  const auto xdpi = static_cast<int>(page.header.HWResolution[0]);
  const auto ydpi = static_cast<int>(page.header.HWResolution[1]);
  if (job.model == kOrlo) {
    visitOrloDots(image, job.options, ydpi, visit);
  } else {
    visitStandardDots(image, job.options, xdpi, ydpi, visit);
  }
}

std::vector<Struck> wanted(const Job& job) {
  std::vector<Struck> once;
  once.reserve(job.pages.size());
  for (const RasterPage& page : job.pages) {
    const auto& header = page.header;
    Struck dots;
    forEachWantedDot(job, page, [&](int ink, int row, int column) {
      dots[{ink, int64_t{row} * 3600 / header.HWResolution[1],
            int64_t{column} * 3600 / header.HWResolution[0]}] = 1;
    });
    once.push_back(std::move(dots));
  }
  const auto& first = job.pages.front().header;
  const unsigned copies = job.model == kOrlo ? 1 : std::max(first.NumCopies, 1U);
  std::vector<Struck> all;
  if (first.Collate != CUPS_FALSE) {
    for (unsigned i = 0; i < copies; ++i) all.insert(all.end(), once.begin(), once.end());
  } else {
    for (const Struck& page : once) all.insert(all.end(), copies, page);
  }
  return all;
}

}  // namespace velka::exacttest
