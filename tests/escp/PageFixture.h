// A job's records filled by hand, so that a page can be rendered without a
// process around it.
#pragma once

#include <cstdlib>
#include <cstring>
#include <vector>

#include "DeviceRecords.h"
#include "ESCPSML.h"
#include "PreInc.h"
#include "reference/ReferenceDispatcher.h"
#include "reference/ReferenceOptions.h"

namespace velka::testing {

/// The records of one job, drained when it goes.
struct Job {
  tagOEMCFG options = reference::defaultOptions();
  _DEVMODE mode = {1, 180, 180, 0, 1};
  _OEMPDEV pdev = {};
  _DEVOBJ devobj = {&pdev, &mode, &options, 0};

  Job(uint32_t width, uint32_t height, uint32_t xdpi, uint32_t ydpi) {
    cups_page_header2_t header = {};
    header.cupsWidth = width;
    header.cupsHeight = height;
    header.cupsBitsPerPixel = 24;
    header.HWResolution[0] = xdpi;
    header.HWResolution[1] = ydpi;
    header.NumCopies = 1;
    InitDevmode(&mode, &header);
    InitOemPDEV(&pdev, &header);
    StartDocOemPDEV(&pdev);
  }
  ~Job() {
    StartPageOemPDEV(&devobj);
    delete pdev.pEscpSml;
  }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;

  /// Puts a page bitmap into the record, as the raster reader leaves it: the last
  /// `whiteRows` rows hold anything, for they count as white.
  void setPage(const reference::SourceBitmap& page, uint32_t number, uint32_t whiteRows = 0) {
    vFreeBuffer(&pdev);
    pdev.pBufStart = static_cast<uint8_t*>(std::malloc(page.bytes.size() + 1));
    if (!page.bytes.empty()) std::memcpy(pdev.pBufStart, page.bytes.data(), page.bytes.size());
    pdev.dwBufSize = static_cast<uint32_t>(page.bytes.size());
    pdev.dwWhiteRows = whiteRows;
    const size_t white = whiteRows == 0 ? 0 : page.bytes.size() / size_t(page.height) * whiteRows;
    if (white > 0) std::memset(pdev.pBufStart + page.bytes.size() - white, 0x21, white);
    pdev.bmInfoHeader.biHeight = page.height;
    pdev.dwCurPageNum = number;
  }
};

/// The same job for the reference.
inline reference::DeviceState deviceState(const Job& job) {
  reference::DeviceState state;
  state.orientation = job.mode.dmOrientation;
  state.printQuality = job.mode.dmPrintQuality;
  state.yResolution = job.mode.dmYResolution;
  state.collate = job.mode.dmCollate != 0;
  state.scaleX = job.pdev.dScaleX;
  state.scaleY = job.pdev.dScaleY;
  state.width = job.pdev.bmInfoHeader.biWidth;
  state.source.horzRes = job.pdev.srcGdiInfo.ulHorzRes;
  state.source.vertRes = job.pdev.srcGdiInfo.ulVertRes;
  state.source.sizeX = job.pdev.srcGdiInfo.szlPhysSize.cx;
  state.source.sizeY = job.pdev.srcGdiInfo.szlPhysSize.cy;
  return state;
}

}  // namespace velka::testing
