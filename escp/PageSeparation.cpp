// One page of the standard model: bitmap to ink planes and print bands.
#include <algorithm>
#include <cstring>
#include <new>

#include "CheckedMath.h"
#include "DeviceHandle.h"
#include "ESCPSML.h"
#include "GrowingBuffer.h"
#include "Halftone.h"
#include "PageMemory.h"
#include "Separation.h"
#include "WhiteRows.h"

namespace {

constexpr uint8_t kNoInk = 255;

// Rows that a block reads from its band's top on: the tallest head has 72 dots, whatever
// the band's height is.
constexpr int kTallestBlock = 72;

// Rows that one or two head passes cover.
int bandHeight(short ydpi) noexcept {
  return ydpi == 360 ? 48 : 24;
}

// The bytes from a row on that the bitmap really holds.
std::span<const uint8_t> storedRow(const _OEMPDEV& pdev, int row) noexcept {
  const std::span<const uint8_t> stored = velka::storedOutput(pdev);
  const uint64_t offset = uint64_t{pdev.dwBytesPerLineOut} * static_cast<uint64_t>(row);
  return offset >= stored.size() ? stored.first(0) : stored.subspan(offset);
}

// Rows from which on the page is white.
int storedRows(const _OEMPDEV& pdev, int height) noexcept {
  const auto white = static_cast<int>(std::min<uint32_t>(+pdev.dwWhiteRowsOut, INT32_MAX));
  return std::max(height - white, 0);
}

bool isBlank(const _OEMPDEV& pdev, int row) noexcept {
  const auto rest = storedRow(pdev, row);
  return velka::isBlankRow(rest.first(std::min<size_t>(rest.size(), pdev.dwBytesPerLineOut)));
}

void dropTree(_OEMPDEV& pdev) noexcept {
  delete pdev.pRectTree;
  pdev.pRectTree = nullptr;
  pdev.dwRectCount = 0;
}

// False when memory runs out.
[[nodiscard]] bool addBand(_OEMPDEV& pdev, int top, int bottom) noexcept {
  if (pdev.pRectTree == nullptr) pdev.pRectTree = new (std::nothrow) CRectTree;
  if (pdev.pRectTree == nullptr) return false;
  const unsigned long before = pdev.pRectTree->count;
  // The whole width: blank columns are trimmed when the band is packed.
  const _RECTL band = {0, top, pdev.bmInfoHeaderOut.biWidth - 1, bottom};
  pdev.pRectTree->insert(band, static_cast<unsigned long>(band.top),
                         static_cast<unsigned long>(band.left));
  pdev.dwRectCount = static_cast<uint32_t>(pdev.pRectTree->count);
  return pdev.pRectTree->count > before;
}

}  // namespace

CESCPSML::~CESCPSML() {
  ReleasePlanes();
  std::free(m_pCopyBuf);
}

int CESCPSML::SendCurPage3(_DEVOBJ* devobj, bool /*unused*/) noexcept {
  if (!velka::isComplete(devobj)) return 0;
  const int result = MakePlanes(devobj, false) ? EncodeAndSend(devobj, 0) : 0;
  ReleasePlanes();
  return result;
}

bool CESCPSML::MakePlanes(_DEVOBJ* devobj, bool toPageEnd) noexcept {
  if (!velka::isComplete(devobj)) return false;
  const _OEMPDEV& pdev = *devobj->pOemPDEV;
  m_sYResolution = pdev.devModeOut.dmYResolution;
  // The plus makes a value of a field that, packed, cannot be referred to.
  m_nPageWidth = std::max(+pdev.bmInfoHeaderOut.biWidth, 0);
  m_nPageHeight = std::max(+pdev.bmInfoHeaderOut.biHeight, 0);
  m_nPlaneStride = m_nPageWidth;
  m_nBlackFlag = 0;
  m_nRedFlag = 0;
  m_Loss = velka::PageLoss::None;
  // A band that is missing would be half a page, which is worse than none.
  if (!allocatePlanes()) {
    m_Loss = velka::PageLoss::Planes;
  } else if (!separatePage(*devobj, toPageEnd)) {
    m_Loss = velka::PageLoss::Bands;
  } else {
    halftonePlanes(*devobj);
  }
  return m_Loss == velka::PageLoss::None;
}

bool CESCPSML::allocatePlanes() noexcept {
  const auto size = velka::checkedMul32(static_cast<uint32_t>(m_nPageWidth),
                                        static_cast<uint32_t>(m_nPageHeight));
  if (!size) return false;
  const auto provide = [&](unsigned char*& plane, unsigned int& planeSize) {
    if (plane != nullptr && planeSize == *size) return true;
    std::free(plane);
    plane = velka::pageBytes(*size);
    planeSize = plane == nullptr ? 0 : *size;
    return plane != nullptr;
  };
  return provide(m_pBlackBuf, m_dwBlackSize) && provide(m_pRedBuf, m_dwRedSize);
}

void CESCPSML::ReleasePlanes() noexcept {
  const auto release = [](unsigned char*& plane, unsigned int& size) {
    std::free(plane);
    plane = nullptr;
    size = 0;
  };
  release(m_pBlackBuf, m_dwBlackSize);
  release(m_pRedBuf, m_dwRedSize);
  release(m_pImgBuf, m_dwImgSize);
}

bool CESCPSML::separatePage(_DEVOBJ& devobj, bool toPageEnd) noexcept {
  _OEMPDEV& pdev = *devobj.pOemPDEV;
  const velka::InkRules rules = velka::compileInkRules(*devobj.pOemDev);
  dropTree(pdev);
  m_nPlaneRows = 0;
  if (m_nPageWidth == 0) return true;
  const int rows = storedRows(pdev, m_nPageHeight);
  int lastTop = 0;
  int row = 0;
  while (row < rows) {
    if (isBlank(pdev, row)) {
      ++row;
      continue;
    }
    // A band is recorded whole even where it passes the page's last row.
    const int bottom = velka::saturatingAdd(row, bandHeight(m_sYResolution) - 1);
    const int end = std::min(bottom, m_nPageHeight - 1) + 1;
    clearPlaneRows(m_nPlaneRows, row);
    separateBand(pdev, rules, row, end - 1);
    m_nPlaneRows = end;
    lastTop = row;
    if (!addBand(pdev, row, bottom)) return false;
    row = end;
  }
  if (m_nPlaneRows > 0) clearPlanesTo(velka::saturatingAdd(lastTop, kTallestBlock));
  if (m_nImgFlag != 0 || toPageEnd) clearPlanesTo(m_nPageHeight);
  return true;
}

// Nobody looks farther down than the last block reaches, unless a third plane joins the
// two.
void CESCPSML::clearPlanesTo(int row) noexcept {
  const int end = std::min(row, m_nPageHeight);
  if (end <= m_nPlaneRows) return;
  clearPlaneRows(m_nPlaneRows, end);
  m_nPlaneRows = end;
}

void CESCPSML::clearPlaneRows(int first, int end) noexcept {
  const auto width = static_cast<size_t>(m_nPageWidth);
  const size_t at = static_cast<size_t>(first) * width;
  const size_t size = static_cast<size_t>(end - first) * width;
  std::memset(m_pBlackBuf + at, kNoInk, size);
  std::memset(m_pRedBuf + at, kNoInk, size);
}

void CESCPSML::separateBand(_OEMPDEV& pdev, const velka::InkRules& rules, int top,
                            int bottom) noexcept {
  const auto width = static_cast<size_t>(m_nPageWidth);
  int64_t firstRedColumn = -1;
  int32_t firstRedRow = 0;
  for (int row = top; row <= bottom; ++row) {
    const auto rest = storedRow(pdev, row);
    const size_t plane = static_cast<size_t>(row) * width;
    clearPlaneRows(row, row + 1);
    const velka::RowInk ink =
        velka::separateRow(rules, rest.first(std::min(rest.size(), width * 3)), m_pBlackBuf + plane,
                           m_pRedBuf + plane);
    if (ink.black) m_nBlackFlag = 1;
    // A band is looked through column by column, so its first red pixel is the
    // topmost of its leftmost red column.
    const bool earlier = firstRedColumn < 0 || ink.firstRedColumn < firstRedColumn;
    if (ink.firstRedColumn >= 0 && earlier) {
      firstRedColumn = ink.firstRedColumn;
      firstRedRow = row;
    }
  }
  if (firstRedColumn < 0) return;
  if (m_nRedFlag == 0) pdev.lFirstRedRow = firstRedRow;
  m_nRedFlag = 1;
}

void CESCPSML::halftonePlanes(const _DEVOBJ& devobj) noexcept {
  const tagOEMCFG& options = *devobj.pOemDev;
  const auto halftone = [&](unsigned char* plane, int mode) {
    // An error goes down and to the right, so rows below the blocks change none in them.
    Dither(mode, plane, plane, static_cast<unsigned int>(m_nPlaneRows),
           static_cast<unsigned int>(m_nPageWidth), static_cast<unsigned int>(m_nPlaneStride), 0,
           options.sDotErrorFactor, options.sDiffusionThreshold);
  };
  if (m_nBlackFlag != 0) halftone(m_pBlackBuf, options.sDitherBlack);
  if (m_nRedFlag != 0) halftone(m_pRedBuf, options.sDitherRed);
  const bool image = m_nImgFlag != 0 && m_pImgBuf != nullptr && m_dwImgSize >= m_dwBlackSize;
  if (image) mergeImagePlane(devobj);
}

void CESCPSML::mergeImagePlane(const _DEVOBJ& devobj) noexcept {
  const int mode = devobj.pOemPDEV->devModeOut.dmPrintQuality == 180 ? 3 : 5;
  Dither(mode, m_pImgBuf, m_pImgBuf, static_cast<unsigned int>(m_nPageHeight),
         static_cast<unsigned int>(m_nPageWidth), static_cast<unsigned int>(m_nPlaneStride), 0, 0,
         0);
  for (size_t i = 0; i < m_dwBlackSize; ++i) m_pBlackBuf[i] &= m_pImgBuf[i];
  m_nBlackFlag = 1;
}

int CESCPSML::Dither(int mode, unsigned char* in, unsigned char* out, unsigned int rows,
                     unsigned int width, unsigned int stride, unsigned int /*unused*/,
                     short dotFactor, short threshold) noexcept {
  return velka::dither(mode, in, out, rows, width, stride, dotFactor, threshold);
}

bool CESCPSML::IsColorBelongRange(tagRGBQUAD colour, tagRGBQUAD low, tagRGBQUAD high) noexcept {
  return velka::colourInRange(colour, low, high);
}
