// Device records and page buffers. Its log lines carry this file's name.
#include "PreInc.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

#include "DeviceHandle.h"
#include "ESCPSML.h"
#include "HeaderFields.h"
#include "log4z.h"

namespace {

constexpr uint32_t kBitmapHeadersBytes = 54;
using velka::kFirstScaledDpi;
constexpr double kMostDpi = 360.0;
constexpr int16_t kPortrait = 1;

int16_t low16(uint32_t value) noexcept {
  return static_cast<int16_t>(value);
}

// A buffer of the device record as plain values: the record is packed, so its
// fields cannot be referred to.
struct Buffer {
  uint8_t* bytes;
  uint32_t size;
};

// The buffer grown by exactly `extra`; on failure the old one, with the size that
// was asked for.
bool grow(Buffer& buffer, uint32_t extra) noexcept {
  const uint32_t old = buffer.bytes == nullptr ? 0 : buffer.size;
  buffer.size = old + extra;
  if (buffer.size < old) return false;
  auto* grown = static_cast<uint8_t*>(std::calloc(std::max(buffer.size, 1U), 1));
  if (grown == nullptr) return false;
  if (old > 0) std::memcpy(grown, buffer.bytes, old);
  std::free(buffer.bytes);
  buffer.bytes = grown;
  return true;
}

void releaseRectTree(_OEMPDEV& pdev) noexcept {
  delete pdev.pRectTree;
  pdev.pRectTree = nullptr;
  pdev.dwRectCount = 0;
}

void releasePage(_OEMPDEV& pdev) noexcept {
  vFreeBuffer(&pdev);
  vFreeOutputBuffer(&pdev);
  vFreeSectionRect(&pdev);
  releaseRectTree(pdev);
}

void logDeviceRecord(const _OEMPDEV& pdev) {
  VELKA_LOG_DEBUG("Init bmInfoHeader.biWidth: %d", pdev.bmInfoHeader.biWidth);
  VELKA_LOG_DEBUG("Init bmInfoHeader.biHeight: %d", pdev.bmInfoHeader.biHeight);
  VELKA_LOG_DEBUG("Init bmInfoHeader.biBitCount: %d", pdev.bmInfoHeader.biBitCount);
  VELKA_LOG_DEBUG("Init dwCurPageNum: %d", static_cast<int>(pdev.dwCurPageNum));
  VELKA_LOG_DEBUG("Init srcGdiInfo.szlPhysSize.cx: %d", pdev.srcGdiInfo.szlPhysSize.cx);
  VELKA_LOG_DEBUG("Init srcGdiInfo.szlPhysSize.cy: %d", pdev.srcGdiInfo.szlPhysSize.cy);
  VELKA_LOG_DEBUG("Init srcGdiInfo.ptlPhysOffset.x: %d", pdev.srcGdiInfo.ptlPhysOffset.x);
  VELKA_LOG_DEBUG("Init srcGdiInfo.ptlPhysOffset.y: %d", pdev.srcGdiInfo.ptlPhysOffset.y);
  VELKA_LOG_DEBUG("Init srcGdiInfo.ulVertRes: %d", static_cast<int>(pdev.srcGdiInfo.ulVertRes));
}

}  // namespace

void InitDevmode(_DEVMODE* devmode, const cups_page_header2_t* header) noexcept {
  if (devmode == nullptr || header == nullptr) return;
  *devmode = {};
  // Deliberate: the header's orientation is not used, pages arrive upright.
  devmode->dmOrientation = kPortrait;
  devmode->dmPrintQuality = low16(header->HWResolution[0]);
  devmode->dmYResolution = low16(header->HWResolution[1]);
  devmode->dmCollate = low16(static_cast<uint32_t>(velka::enumBits(header->Collate)));
  devmode->dmCopies = low16(header->NumCopies);
  VELKA_LOG_DEBUG("Init dmPrintQuality: %d, dmYResolution: %d", devmode->dmPrintQuality,
                  devmode->dmYResolution);
  VELKA_LOG_DEBUG("Init dmOrientation: %d", devmode->dmOrientation);
  VELKA_LOG_DEBUG("Init dmCollate: %d", devmode->dmCollate);
  VELKA_LOG_DEBUG("Init dmCopies: %d", devmode->dmCopies);
}

void InitOemPDEV(_OEMPDEV* pdev, const cups_page_header2_t* header) noexcept {
  if (pdev == nullptr || header == nullptr) return;
  pdev->bState = 0;
  pdev->pBufStart = nullptr;
  pdev->dwBufSize = 0;
  pdev->dwBitsOffset = kBitmapHeadersBytes;
  pdev->dwReserved2 = 0;
  pdev->dwReserved3 = 0;
  pdev->pSectionHead = nullptr;
  pdev->dwReserved4 = 0;
  pdev->pRectTree = nullptr;
  pdev->dwRectCount = 0;
  pdev->pBufStartOut = nullptr;
  pdev->dwBufSizeOut = 0;
  pdev->pEscpSml = nullptr;
  pdev->dwCurPageNum = 0;
  pdev->dwReserved6 = 0;
  pdev->dwReserved7 = 0;
  pdev->dwWhiteRows = 0;
  pdev->dwWhiteRowsOut = 0;
  pdev->dwMostBytes = 0;

  // Deliberate: the horizontal resolution alone decides whether either is scaled.
  const bool scaled = header->HWResolution[0] >= kFirstScaledDpi;
  pdev->dScaleX = scaled ? header->HWResolution[0] / kMostDpi : 1.0;
  pdev->dScaleY = scaled ? header->HWResolution[1] / kMostDpi : 1.0;

  const auto width = static_cast<int32_t>(header->cupsWidth);
  const auto height = static_cast<int32_t>(header->cupsHeight);
  pdev->bmInfoHeader.biWidth = width;
  pdev->bmInfoHeader.biHeight = height;
  pdev->bmInfoHeader.biBitCount = static_cast<uint16_t>(header->cupsBitsPerPixel);
  pdev->srcGdiInfo.ulHorzRes = header->cupsWidth;
  pdev->srcGdiInfo.ulVertRes = header->cupsHeight;
  pdev->srcGdiInfo.szlPhysSize = {width, height};
  pdev->srcGdiInfo.ptlPhysOffset = {0, 0};
  logDeviceRecord(*pdev);
}

void StartDocOemPDEV(_OEMPDEV* pdev) noexcept {
  if (pdev == nullptr || pdev->pEscpSml != nullptr) return;
  pdev->pEscpSml = new (std::nothrow) CESCPSML;
}

int StartPageOemPDEV(_DEVOBJ* devobj) noexcept {
  if (devobj == nullptr || devobj->pOemPDEV == nullptr) return 0;
  _OEMPDEV& pdev = *devobj->pOemPDEV;
  const bool pending = pdev.dwCurPageNum != 0 && pdev.pBufStart != nullptr;
  const bool rendered = pending && RenderEscpData(devobj);
  releasePage(pdev);
  return rendered ? 1 : 0;
}

void EndDocOemPDEV(_DEVOBJ* devobj) noexcept {
  if (!velka::isComplete(devobj)) return;
  _OEMPDEV& pdev = *devobj->pOemPDEV;
  if (pdev.pBufStart != nullptr) {
    RenderEscpData(devobj);
    VELKA_LOG_DEBUG("After RenderEscpData function");
  }
  if (pdev.pEscpSml != nullptr) {
    pdev.pEscpSml->SendCollatedCopies(devobj);
    pdev.pEscpSml->SendEndDocCmd(devobj);
  }
  VELKA_LOG_DEBUG("After SendEndDocCmd function");
  delete pdev.pEscpSml;
  pdev.pEscpSml = nullptr;
  pdev.dwCurPageNum = 0;
  releasePage(pdev);
  VELKA_LOG_DEBUG("EndDocOemPDEV finished");
}

int bGrowBuffer(_OEMPDEV* pdev, uint32_t bytes) noexcept {
  if (pdev == nullptr) return 0;
  Buffer buffer = {pdev->pBufStart, pdev->dwBufSize};
  const bool grown = grow(buffer, bytes);
  pdev->pBufStart = buffer.bytes;
  pdev->dwBufSize = buffer.size;
  if (!grown) {
    vFreeBuffer(pdev);
    pdev->dwBufSize = 0;
  }
  return grown ? 1 : 0;
}

int bGrowOutputBuffer(_OEMPDEV* pdev, uint32_t bytes) noexcept {
  if (pdev == nullptr) return 0;
  Buffer buffer = {pdev->pBufStartOut, pdev->dwBufSizeOut};
  const bool grown = grow(buffer, bytes);
  pdev->pBufStartOut = buffer.bytes;
  pdev->dwBufSizeOut = buffer.size;
  if (!grown) {
    vFreeOutputBuffer(pdev);
    pdev->dwBufSizeOut = 0;
  }
  return grown ? 1 : 0;
}

void vFreeBuffer(_OEMPDEV* pdev) noexcept {
  if (pdev == nullptr || pdev->pBufStart == nullptr) return;
  std::free(pdev->pBufStart);
  pdev->pBufStart = nullptr;
  pdev->dwBufSize = 0;
  pdev->dwWhiteRows = 0;
  VELKA_LOG_DEBUG("Free pBufStart");
}

void vFreeOutputBuffer(_OEMPDEV* pdev) noexcept {
  if (pdev == nullptr || pdev->pBufStartOut == nullptr) return;
  std::free(pdev->pBufStartOut);
  pdev->pBufStartOut = nullptr;
  pdev->dwBufSizeOut = 0;
  pdev->dwWhiteRowsOut = 0;
  VELKA_LOG_DEBUG("Free pBufStartOut");
}

void vMoveBufferToOutput(_OEMPDEV* pdev) noexcept {
  if (pdev == nullptr || pdev->pBufStart == nullptr) return;
  vFreeOutputBuffer(pdev);
  pdev->pBufStartOut = pdev->pBufStart;
  pdev->dwBufSizeOut = pdev->dwBufSize;
  pdev->dwWhiteRowsOut = pdev->dwWhiteRows;
  pdev->pBufStart = nullptr;
  pdev->dwBufSize = 0;
  pdev->dwWhiteRows = 0;
  // The log tells of the page buffer's end, whichever it is.
  VELKA_LOG_DEBUG("Free pBufStart");
}

int bGrowSectionRect(_OEMPDEV* pdev, _RECTL rect) noexcept {
  if (pdev == nullptr) return 0;
  auto* node = new (std::nothrow) SectionRectNode{rect, pdev->pSectionTail, nullptr};
  if (node == nullptr) return 0;
  if (node->pPrev != nullptr) {
    node->pPrev->pNext = node;
    ++pdev->dwSectionCount;
  } else {
    pdev->dwSectionCount = 1;
  }
  pdev->pSectionTail = node;
  return 1;
}

void vFreeSectionRect(_OEMPDEV* pdev) noexcept {
  if (pdev == nullptr) return;
  SectionRectNode* node = pdev->pSectionTail;
  while (node != nullptr) {
    SectionRectNode* previous = node->pPrev;
    delete node;
    node = previous;
  }
  pdev->pSectionTail = nullptr;
  pdev->dwSectionCount = 0;
}
