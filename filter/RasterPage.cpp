#include "RasterPage.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "CheckedMath.h"
#include "GrowingBuffer.h"
#include "MarkedOptions.h"
#include "PageMemory.h"
#include "RasterLines.h"
#include "WhiteRows.h"
#include "rastovelka.h"

namespace velka {
namespace {

constexpr uint32_t kBitsPerPixel = 24;

// With fewer bits than three bytes a pixel, a row's pixels reach into the rows below it.
bool rowsStandAlone(const cups_page_header2_t& header) noexcept {
  return header.cupsBitsPerPixel >= kBitsPerPixel;
}

template <typename Allocate>
PageRoom provide(_OEMPDEV& pdev, const PageSize& size, Allocate allocate) noexcept {
  pdev.pBufStart = nullptr;
  pdev.dwBufSize = 0;
  pdev.dwWhiteRows = 0;
  const auto bytes = checkedMul32(size.stride(), size.height);
  if (!bytes || !size.isAllowed()) return PageRoom::TooLarge;
  pdev.pBufStart = allocate(*bytes);
  if (pdev.pBufStart == nullptr) return PageRoom::Refused;
  pdev.dwBufSize = *bytes;
  return PageRoom::Had;
}

// The lines stored.
uint32_t storeLines(const _OEMPDEV& pdev, const cups_page_header2_t& header, RasterInput& raster,
                    uint8_t* line, uint64_t stride, bool onlyConsume) noexcept {
  uint32_t stored = 0;
  for (uint32_t row = 0; row < header.cupsHeight; ++row) {
    if (!raster.nextLine({line, header.cupsBytesPerLine})) break;
    if (onlyConsume) continue;
    storeLine({line, header.cupsBytesPerLine}, {pdev.pBufStart + stored * stride, stride},
              header.cupsWidth);
    ++stored;
  }
  return stored;
}

}  // namespace

PageRoom makePage(_OEMPDEV& pdev, const PageSize& size) noexcept {
  pdev.dwMostBytes = static_cast<uint32_t>(size.mostBytes);
  return provide(pdev, size, pageBytes);
}

PageRoom replacePage(_OEMPDEV& pdev, const PageSize& size) noexcept {
  if (pdev.pBufStart == nullptr) return PageRoom::Had;
  dropPage(pdev);
  return provide(pdev, size, [](size_t bytes) { return zeroedBytes(bytes).release(); });
}

void dropPage(_OEMPDEV& pdev) noexcept {
  std::free(pdev.pBufStart);
  pdev.pBufStart = nullptr;
  pdev.dwBufSize = 0;
  pdev.dwWhiteRows = 0;
}

PageRoom readLines(_OEMPDEV& pdev, const cups_page_header2_t& header, RasterInput& raster,
                   ppd_file_t* ppd, uint64_t stride, uint64_t mostBytes) noexcept {
  const bool onlyConsume = pagesComeFromPdf(ppd) || pdev.pBufStart == nullptr;
  const bool allowed = header.cupsBytesPerLine <= mostBytes;
  const MallocBytes line = allowed ? zeroedBytes(header.cupsBytesPerLine) : nullptr;
  if (allowed && line == nullptr) raster.leave();
  const uint32_t stored =
      line == nullptr ? 0 : storeLines(pdev, header, raster, line.get(), stride, onlyConsume);
  // Always the full page, also when its lines ended early.
  const uint32_t size = checkedMul32(stride, header.cupsHeight).value_or(0);
  pdev.bmInfoHeader.biHeight = static_cast<int32_t>(header.cupsHeight);
  pdev.bmInfoHeader.biSizeImage = size;
  pdev.dwBufSize = pdev.pBufStart == nullptr ? 0 : size;
  pdev.dwWhiteRows = pdev.pBufStart == nullptr ? 0 : header.cupsHeight - stored;
  if (!rowsStandAlone(header)) whitenPage(pdev);
  if (line != nullptr || onlyConsume) return PageRoom::Had;
  return allowed ? PageRoom::Refused : PageRoom::TooLarge;
}

}  // namespace velka

void GetCupsRasterData(cups_page_header2_t header, cups_raster_t* raster, ppd_file_t* ppd,
                       unsigned int stride) noexcept {
  constexpr uint64_t kAnyLine = std::numeric_limits<uint32_t>::max();
  // Without room for a line the page is white, as without a line.
  velka::RasterInput input(raster);
  (void)velka::readLines(g_oemPDEV, header, input, ppd, stride, kAnyLine);
  velka::whitenPage(g_oemPDEV);
}
