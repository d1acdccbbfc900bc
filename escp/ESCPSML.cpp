// The page renderer. Its log lines carry this file's name.
#include "ESCPSML.h"

#include <algorithm>
#include <cstring>

#include "BmpProcessing.h"
#include "CheckedMath.h"
#include "CommandBytes.h"
#include "DeviceHandle.h"
#include "GrowingBuffer.h"
#include "PageMemory.h"
#include "PagePlacement.h"
#include "StandardOutput.h"
#include "WhiteRows.h"
#include "log4z.h"

namespace velka {
namespace {

constexpr int16_t kMostDpi = 360;
constexpr int32_t kOrloModel = 1;

// A record's address as the log shows it: its low 32 bits.
unsigned int shortAddress(const void* record) noexcept {
  return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(record));
}

uint32_t bytesPerRow(uint32_t bytes, int32_t rows) noexcept {
  return rows > 0 ? bytes / static_cast<uint32_t>(rows) : 0;
}

void logRecords(const _DEVOBJ& devobj) {
  VELKA_LOG_DEBUG("pOemPDEV: 0x%x, pOemDev: 0x%x, pDevMode: 0x%x", shortAddress(devobj.pOemPDEV),
                  shortAddress(devobj.pOemDev), shortAddress(devobj.pDevMode));
  VELKA_LOG_DEBUG("bmInfoHeader.biHeight: %d", devobj.pOemPDEV->bmInfoHeader.biHeight);
}

// The output side starts as a copy of the source, at no more than 360 dpi.
void startOutput(const _DEVOBJ& devobj) {
  _OEMPDEV& pdev = *devobj.pOemPDEV;
  pdev.bmFileHeaderOut = pdev.bmFileHeader;
  pdev.bmInfoHeaderOut = pdev.bmInfoHeader;
  pdev.dwLines = static_cast<uint32_t>(pdev.bmInfoHeader.biHeight);
  pdev.dwBytesPerLine = bytesPerRow(pdev.dwBufSize, pdev.bmInfoHeader.biHeight);
  pdev.devModeOut = *devobj.pDevMode;
  VELKA_LOG_DEBUG("pOemPDEV->devModeOut: 0x%x",
                  shortAddress(&pdev) + static_cast<unsigned int>(offsetof(_OEMPDEV, devModeOut)));
  if (pdev.dScaleX > 1.0 || pdev.dScaleY > 1.0) {
    pdev.devModeOut.dmPrintQuality = kMostDpi;
    pdev.devModeOut.dmYResolution = kMostDpi;
  }
  pdev.devGdiInfo = scaledGeometry(pdev.srcGdiInfo, pdev.dScaleX, pdev.dScaleY);
}

// Whether the page can be the output as it is: unmoved and of its size.
bool isOutputAlready(const _OEMPDEV& pdev, const PageOffset& offset, uint32_t outputSize) noexcept {
  return offset.x == 0 && offset.y == 0 && pdev.pBufStart != nullptr &&
         pdev.dwBufSize == outputSize;
}

// Whether the page is more than it may be. It keeps the width of the job's first page, so
// that its own bitmap does not tell; what an offset adds is the queue's own wish.
bool isAboveLimit(const _OEMPDEV& pdev, const PageOffset& offset) noexcept {
  constexpr uint32_t kBitsPerPixel = 24;
  const tagBITMAPINFOHEADER header = pdev.bmInfoHeaderOut;
  const auto without = [](int32_t size, int32_t grown) {
    return static_cast<uint32_t>(std::max<int64_t>(int64_t{size} - std::max(grown, 0), 0));
  };
  const uint64_t stride = paddedRowBytes(without(header.biWidth, offset.x),
                                         std::max<uint32_t>(header.biBitCount, kBitsPerPixel));
  const auto bytes = checkedMul(stride, without(header.biHeight, offset.y));
  return pdev.dwMostBytes != 0 && (!bytes || *bytes > pdev.dwMostBytes);
}

// The contents are left to copyToOutput.
bool makeOutput(_OEMPDEV& pdev, uint32_t size) {
  pdev.pBufStartOut = pageBytes(size);
  pdev.dwBufSizeOut = pdev.pBufStartOut == nullptr ? 0 : size;
  pdev.dwWhiteRowsOut = 0;
  return pdev.pBufStartOut != nullptr;
}

// White where the page does not come to lie. The rows below it are left as they are if
// the page, too, has rows that hold nothing.
void copyToOutput(_OEMPDEV& pdev, const PageOffset& offset, const PageServices& services) {
  const BitmapView source = {{pdev.pBufStart, pdev.pBufStart == nullptr ? 0 : pdev.dwBufSize},
                             pdev.dwBytesPerLine,
                             storedPage(pdev).size(),
                             pdev.bmInfoHeader.biWidth};
  const BitmapView output = {{pdev.pBufStartOut, pdev.dwBufSizeOut}, pdev.dwBytesPerLineOut};
  const size_t size = output.bytes.size();
  const size_t written = pdev.dwWhiteRows == 0 ? size : placedBytes(source, output, offset);
  std::memset(output.bytes.data(), 0xFF, written);
  if (size > written) pdev.dwWhiteRowsOut = static_cast<uint32_t>((size - written) / output.stride);
  if (!source.bytes.empty() && !output.bytes.empty())
    services.placePage(source, output, pdev.bmInfoHeaderOut.biHeight, offset);
  services.freePageBuffer(&pdev);
}

// A width or height of zero or less is an empty page, which needs no bytes.
bool fillOutput(_OEMPDEV& pdev, const PageOffset& offset, const PageServices& services) {
  const tagBITMAPINFOHEADER header = pdev.bmInfoHeaderOut;
  const auto width = static_cast<uint32_t>(std::max(+header.biWidth, 0));
  const auto height = static_cast<uint32_t>(std::max(+header.biHeight, 0));
  const uint64_t stride = paddedRowBytes(width, header.biBitCount);
  const auto size = checkedMul32(stride, height);
  services.freeOutputBuffer(&pdev);
  if (!size || isAboveLimit(pdev, offset)) return false;
  const bool asItIs = isOutputAlready(pdev, offset, *size);
  if (!asItIs && !makeOutput(pdev, *size)) return false;
  VELKA_LOG_DEBUG("RenderEscpData memset pBufStartOut dwBufSizeOut: %d", low32(*size));
  pdev.dwLines = static_cast<uint32_t>(header.biHeight);
  pdev.dwBytesPerLineOut = bytesPerRow(*size, header.biHeight);
  if (asItIs) {
    services.movePageBuffer(&pdev);
  } else {
    copyToOutput(pdev, offset, services);
  }
  pdev.dwBytesPerLine = pdev.dwBytesPerLineOut;
  return true;
}

// Says what memory that ran out took from a page. False, as the page's result then is.
bool tellLoss(const _OEMPDEV& pdev, PageLoss loss) {
  if (loss != PageLoss::None)
    VELKA_LOG_DEBUG("page %d %s", static_cast<int>(pdev.dwCurPageNum), textOf(loss));
  return false;
}

// A page that cannot be turned is printed upright.
void tellUnturned(const _OEMPDEV& pdev) {
  const tagBITMAPINFOHEADER header = pdev.bmInfoHeaderOut;
  // Pixels of other depths are never turned; nothing else but memory stands in the way.
  const bool turnable = header.biBitCount == 24 && header.biWidth > 0 && header.biHeight > 0;
  if (turnable) tellLoss(pdev, PageLoss::Turn);
}

void rotateOutput(_OEMPDEV& pdev, int turns, CBmpProcessing& processing,
                  const PageServices& services) {
  if (turns == 0 || pdev.dwBufSizeOut == 0) return;
  whitenOutput(pdev);
  unsigned char* image = nullptr;
  int64_t size = 0;
  int64_t width = 0;
  int64_t height = 0;
  const tagBITMAPINFOHEADER header = pdev.bmInfoHeaderOut;
  if (!processing.RotateImg(pdev.pBufStartOut, header.biWidth, header.biHeight, &image, &size,
                            &width, &height, header.biBitCount, turns)) {
    tellUnturned(pdev);
    return;
  }
  // The turned picture takes the place of the buffer instead of being copied
  // into a third one.
  MallocBytes turned(image);
  if (size > UINT32_MAX) return;
  services.freeOutputBuffer(&pdev);
  pdev.pBufStartOut = turned.release();
  pdev.dwBufSizeOut = static_cast<uint32_t>(size);
  pdev.bmInfoHeaderOut.biWidth = static_cast<int32_t>(width);
  pdev.bmInfoHeaderOut.biHeight = static_cast<int32_t>(height);
  pdev.bmInfoHeaderOut.biSizeImage = pdev.dwBufSizeOut;
  pdev.dwBytesPerLineOut =
      static_cast<uint32_t>(paddedRowBytes(static_cast<uint32_t>(width), header.biBitCount));
  GDIINFO geometry = pdev.devGdiInfo;
  turnGeometry(geometry, turns);
  pdev.devGdiInfo = geometry;
}

// Whether the page was sent, its loss told.
bool sendBy(bool (*send)(_DEVOBJ&, PageLoss&), _DEVOBJ& devobj) {
  PageLoss loss = PageLoss::None;
  const bool sent = send != nullptr && send(devobj, loss);
  tellLoss(*devobj.pOemPDEV, loss);
  return sent;
}

}  // namespace

bool sendStandardPage(_DEVOBJ& devobj, PageLoss& loss) noexcept {
  CESCPSML& generator = *devobj.pOemPDEV->pEscpSml;
  const bool sent = generator.SendCurPage3(&devobj, false) != 0;
  loss = generator.LostForMemory();
  return sent;
}

bool renderPage(_DEVOBJ* devobj, const PageServices& services) noexcept {
  if (!isComplete(devobj)) return false;
  _OEMPDEV& pdev = *devobj->pOemPDEV;
  if (pdev.pEscpSml == nullptr) return tellLoss(pdev, PageLoss::Generator);
  logRecords(*devobj);
  startOutput(*devobj);
  const PageOffset offset = printOffset(*devobj->pOemDev, pdev.devModeOut);
  services.growGeometry(pdev, pdev.devModeOut.dmOrientation, offset);
  pdev.pEscpSml->SendStartDocCmd(devobj);
  VELKA_LOG_DEBUG("RenderEscpData after SendStartDocCmd");
  if (!fillOutput(pdev, offset, services)) return tellLoss(pdev, PageLoss::Output);
  CBmpProcessing processing;
  rotateOutput(pdev, quarterTurns(devobj->pOemDev->sRotation, pdev.devModeOut.dmOrientation),
               processing, services);
  services.freeSections(&pdev);
  if (devobj->nModel != kOrloModel) return sendBy(services.sendStandardPage, *devobj);
  const bool sent = sendBy(services.sendOrloPage, *devobj);
  writeToPrinter({&kFormFeed, 1});
  return sent;
}

}  // namespace velka
