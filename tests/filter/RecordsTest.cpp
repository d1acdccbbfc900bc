// The device records, their buffers and their lists.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

#include "ESCPSML.h"
#include "PreInc.h"
#include "reference/ReferenceOptions.h"
#include "support/Capture.h"
#include "support/RasterBuilder.h"

namespace velka::testing {
namespace {

TEST(DeviceMode, ComesFromTheHeaderAlwaysUpright) {
  cups_page_header2_t header = rgbHeader(10, 20, 360, 180);
  header.Orientation = CUPS_ORIENT_90;
  header.Collate = CUPS_TRUE;
  header.NumCopies = 65538;
  _DEVMODE mode = {9, 9, 9, 9, 9};
  InitDevmode(&mode, &header);
  EXPECT_EQ(+mode.dmOrientation, 1);
  EXPECT_EQ(+mode.dmPrintQuality, 360);
  EXPECT_EQ(+mode.dmYResolution, 180);
  EXPECT_EQ(+mode.dmCollate, 1);
  EXPECT_EQ(+mode.dmCopies, 2);
}

TEST(DeviceMode, IsLeftAloneWithoutAHeader) {
  _DEVMODE mode = {9, 9, 9, 9, 9};
  InitDevmode(&mode, nullptr);
  EXPECT_EQ(+mode.dmOrientation, 9);
  InitDevmode(nullptr, nullptr);
}

std::pair<double, double> scalesAt(unsigned xdpi, unsigned ydpi) {
  const cups_page_header2_t header = rgbHeader(10, 20, xdpi, ydpi);
  _OEMPDEV pdev = {};
  InitOemPDEV(&pdev, &header);
  return {+pdev.dScaleX, +pdev.dScaleY};
}

TEST(DeviceRecord, OnlyTheHorizontalResolutionDecidesOnScaling) {
  EXPECT_EQ(scalesAt(360, 720), std::pair(1.0, 1.0));
  EXPECT_EQ(scalesAt(720, 360), std::pair(2.0, 1.0));
  EXPECT_EQ(scalesAt(361, 180), std::pair(361 / 360.0, 0.5));
}

TEST(DeviceRecord, HoldsThePagesGeometry) {
  const cups_page_header2_t header = rgbHeader(10, 20);
  _OEMPDEV pdev = {};
  pdev.dwBufSize = 5;
  pdev.dwCurPageNum = 3;
  InitOemPDEV(&pdev, &header);
  EXPECT_EQ(+pdev.bmInfoHeader.biWidth, 10);
  EXPECT_EQ(+pdev.bmInfoHeader.biHeight, 20);
  EXPECT_EQ(+pdev.bmInfoHeader.biBitCount, 24);
  EXPECT_EQ(+pdev.bmInfoHeader.biSize, 0U);
  EXPECT_EQ(+pdev.dwBitsOffset, 54U);
  EXPECT_EQ(+pdev.srcGdiInfo.ulHorzRes, 10U);
  EXPECT_EQ(+pdev.srcGdiInfo.ulVertRes, 20U);
  EXPECT_EQ(+pdev.srcGdiInfo.szlPhysSize.cx, 10);
  EXPECT_EQ(+pdev.srcGdiInfo.szlPhysSize.cy, 20);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  EXPECT_EQ(+pdev.dwCurPageNum, 0U);
}

TEST(DeviceRecord, KeepsNothingOfTheOneBefore) {
  const cups_page_header2_t header = rgbHeader(10, 20);
  _OEMPDEV pdev = {};
  pdev.bState = 1;
  pdev.dwReserved2 = pdev.dwReserved3 = pdev.dwReserved4 = pdev.dwReserved6 = pdev.dwReserved7 = 1;
  pdev.dwRectCount = pdev.dwBufSizeOut = pdev.dwWhiteRows = pdev.dwWhiteRowsOut = 1;
  pdev.dwMostBytes = 1;
  pdev.srcGdiInfo.ptlPhysOffset = {1, 1};
  InitOemPDEV(&pdev, &header);
  EXPECT_EQ(+pdev.bState, 0);
  EXPECT_EQ(pdev.dwReserved2 + pdev.dwReserved3 + pdev.dwReserved4, 0U);
  EXPECT_EQ(pdev.dwReserved6 + pdev.dwReserved7, 0U);
  EXPECT_EQ(pdev.dwRectCount + pdev.dwBufSizeOut, 0U);
  EXPECT_EQ(pdev.dwWhiteRows + pdev.dwWhiteRowsOut + pdev.dwMostBytes, 0U);
  EXPECT_EQ(pdev.srcGdiInfo.ptlPhysOffset.x + pdev.srcGdiInfo.ptlPhysOffset.y, 0);
}

TEST(DeviceRecord, WidthsBeyondThirtyOneBitsAreKeptAsTheirSignedValue) {
  cups_page_header2_t header = rgbHeader(10, 20);
  header.cupsHeight = 4294967295U;
  header.cupsBitsPerPixel = 65560;
  _OEMPDEV pdev = {};
  InitOemPDEV(&pdev, &header);
  EXPECT_EQ(+pdev.bmInfoHeader.biHeight, -1);
  EXPECT_EQ(+pdev.bmInfoHeader.biBitCount, 24);
}

TEST(PageBuffers, GrowByExactlyTheCountAndKeepTheirContents) {
  _OEMPDEV pdev = {};
  ASSERT_EQ(bGrowBuffer(&pdev, 3), 1);
  EXPECT_EQ(+pdev.dwBufSize, 3U);
  EXPECT_EQ(+pdev.pBufStart[2], 0);
  pdev.pBufStart[0] = 7;
  ASSERT_EQ(bGrowBuffer(&pdev, 2), 1);
  EXPECT_EQ(Bytes(pdev.pBufStart, pdev.pBufStart + pdev.dwBufSize), (Bytes{7, 0, 0, 0, 0}));
  vFreeBuffer(&pdev);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  vFreeBuffer(&pdev);
}

TEST(PageBuffers, TheOutputBufferGrowsByItself) {
  _OEMPDEV pdev = {};
  ASSERT_EQ(bGrowOutputBuffer(&pdev, 4), 1);
  EXPECT_EQ(+pdev.dwBufSizeOut, 4U);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  vFreeOutputBuffer(&pdev);
  EXPECT_EQ(+pdev.pBufStartOut, nullptr);
}

TEST(PageBuffers, ThePageBufferCanBecomeTheOutputBuffer) {
  _OEMPDEV pdev = {};
  ASSERT_EQ(bGrowBuffer(&pdev, 3), 1);
  ASSERT_EQ(bGrowOutputBuffer(&pdev, 9), 1);
  uint8_t* page = pdev.pBufStart;
  vMoveBufferToOutput(&pdev);
  EXPECT_EQ(+pdev.pBufStartOut, page);
  EXPECT_EQ(+pdev.dwBufSizeOut, 3U);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  vMoveBufferToOutput(&pdev);
  EXPECT_EQ(+pdev.pBufStartOut, page);
  vFreeOutputBuffer(&pdev);
}

TEST(PageBuffers, GrowingAnEmptyRecordByNothingSucceeds) {
  _OEMPDEV pdev = {};
  EXPECT_EQ(bGrowBuffer(&pdev, 0), 1);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  vFreeBuffer(&pdev);
}

TEST(PageBuffers, GrowingPastThirtyTwoBitsReleasesTheBuffer) {
  _OEMPDEV pdev = {};
  ASSERT_EQ(bGrowBuffer(&pdev, 16), 1);
  EXPECT_EQ(bGrowBuffer(&pdev, 4294967290U), 0);
  EXPECT_EQ(+pdev.pBufStart, nullptr);
  EXPECT_EQ(+pdev.dwBufSize, 0U);
  EXPECT_EQ(bGrowBuffer(nullptr, 1), 0);
  EXPECT_EQ(bGrowOutputBuffer(nullptr, 1), 0);
}

TEST(SectionList, LinksItsRectanglesBothWays) {
  _OEMPDEV pdev = {};
  for (int i = 0; i < 3; ++i) EXPECT_EQ(bGrowSectionRect(&pdev, {i, i, i, i}), 1);
  EXPECT_EQ(+pdev.dwSectionCount, 3U);
  ASSERT_NE(+pdev.pSectionTail, nullptr);
  EXPECT_EQ(+pdev.pSectionTail->rect.left, 2);
  EXPECT_EQ(+pdev.pSectionTail->pNext, nullptr);
  EXPECT_EQ(+pdev.pSectionTail->pPrev->pNext, +pdev.pSectionTail);
  EXPECT_EQ(+pdev.pSectionTail->pPrev->pPrev->rect.left, 0);
  EXPECT_EQ(+pdev.pSectionTail->pPrev->pPrev->pPrev, nullptr);
  vFreeSectionRect(&pdev);
  EXPECT_EQ(+pdev.pSectionTail, nullptr);
  EXPECT_EQ(+pdev.dwSectionCount, 0U);
  vFreeSectionRect(&pdev);
}

TEST(PageHooks, AHandleThatNoPageFilledIsLeftAlone) {
  _DEVOBJ empty = {};
  const Capture capture(STDOUT_FILENO);
  EndDocOemPDEV(&empty);
  EndDocOemPDEV(nullptr);
  EXPECT_EQ(StartPageOemPDEV(&empty), 0);
  EXPECT_EQ(StartPageOemPDEV(nullptr), 0);
  EXPECT_EQ(capture.bytes(), Bytes{});
}

// The records of a one-page job.
struct Records {
  tagOEMCFG options = reference::defaultOptions();
  _DEVMODE mode = {};
  _OEMPDEV pdev = {};
  _DEVOBJ devobj = {&pdev, &mode, &options, 0};

  Records() {
    const cups_page_header2_t header = rgbHeader(8, 4);
    InitDevmode(&mode, &header);
    InitOemPDEV(&pdev, &header);
    StartDocOemPDEV(&pdev);
  }
  void setWhitePage() {
    bGrowBuffer(&pdev, 24 * 4);
    std::fill(pdev.pBufStart, pdev.pBufStart + 96, uint8_t{0xFF});
  }
};

TEST(PageHooks, APageThatIsNotPendingIsReleasedWithoutPrinting) {
  Records records;
  records.setWhitePage();
  bGrowSectionRect(&records.pdev, {});
  records.pdev.pRectTree = new CRectTree;
  const Capture capture(STDOUT_FILENO);
  EXPECT_EQ(StartPageOemPDEV(&records.devobj), 0);
  EXPECT_EQ(capture.bytes(), Bytes{});
  EXPECT_EQ(+records.pdev.pBufStart, nullptr);
  EXPECT_EQ(+records.pdev.pSectionTail, nullptr);
  EXPECT_EQ(+records.pdev.pRectTree, nullptr);
  EndDocOemPDEV(&records.devobj);
}

TEST(PageHooks, TheEndOfTheDocumentPrintsAPageStillPending) {
  Records records;
  records.setWhitePage();
  const Capture capture(STDOUT_FILENO);
  EndDocOemPDEV(&records.devobj);
  EXPECT_EQ(capture.bytes(), (Bytes{0x1B, '@', 0x1B, '2', 0x1B, 'C', 0, 0x1B, '@'}));
  EXPECT_EQ(+records.pdev.pEscpSml, nullptr);
  EXPECT_EQ(+records.pdev.pBufStart, nullptr);
}

TEST(PageHooks, TheGeneratorIsCreatedOnce) {
  Records records;
  CESCPSML* const first = records.pdev.pEscpSml;
  ASSERT_NE(first, nullptr);
  StartDocOemPDEV(&records.pdev);
  EXPECT_EQ(+records.pdev.pEscpSml, first);
  StartDocOemPDEV(nullptr);
  const Capture capture(STDOUT_FILENO);
  EndDocOemPDEV(&records.devobj);
  EXPECT_EQ(+records.pdev.dwCurPageNum, 0U);
}

}  // namespace
}  // namespace velka::testing
