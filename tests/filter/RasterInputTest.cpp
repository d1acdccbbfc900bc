// Raster lines to the page bitmap.
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "CheckedMath.h"
#include "PreInc.h"
#include "RasterLines.h"
#include "rastovelka.h"
#include "support/RasterBuilder.h"
#include "support/TestPpd.h"

namespace velka::testing {
namespace {

TEST(StoredLine, IsSwappedPixelByPixel) {
  Bytes row(8, 0);
  storeLine(Bytes{10, 20, 30, 1, 2, 3}, row, 2);
  EXPECT_EQ(row, (Bytes{30, 20, 10, 3, 2, 1, 0xFF, 0xFF}));
}

TEST(StoredLine, BytesBehindThePixelsAreCopiedAsTheyAre) {
  Bytes row(8, 0);
  storeLine(Bytes{10, 20, 30, 1, 2, 3, 9}, row, 1);
  EXPECT_EQ(row, (Bytes{30, 20, 10, 1, 2, 3, 9, 0xFF}));
}

TEST(StoredLine, OnlyWhatBothHoldIsStoredAndTheRestOfTheRowIsWhite) {
  Bytes narrow(4, 0xFF);
  storeLine(Bytes(30, 7), narrow, 10);
  EXPECT_EQ(narrow, Bytes(4, 7));
  Bytes wide(9, 0);
  storeLine(Bytes{1, 2, 3, 4}, wide, 3);
  EXPECT_EQ(wide, (Bytes{3, 2, 1, 4, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
  Bytes none;
  storeLine({}, none, 5);
}

// Reads the first page of a stream the way the driver does and returns the bitmap. With
// `told`, the driver is given that header: libcups may refuse one that lies.
Bytes bitmapOf(const Bytes& stream, ppd_file_t* ppd = nullptr,
               const cups_page_header2_t* told = nullptr) {
  const int fd = memfd_create("raster", MFD_CLOEXEC);
  EXPECT_EQ(write(fd, stream.data(), stream.size()), static_cast<ssize_t>(stream.size()));
  lseek(fd, 0, SEEK_SET);
  cups_raster_t* raster = cupsRasterOpen(fd, CUPS_RASTER_READ);
  cups_page_header2_t header = {};
  EXPECT_NE(cupsRasterReadHeader2(raster, &header), 0U);
  if (told != nullptr) header = *told;
  const auto stride =
      static_cast<unsigned>(paddedRowBytes(header.cupsWidth, header.cupsBitsPerPixel));
  const size_t size = size_t{stride} * header.cupsHeight;
  g_oemPDEV = {};
  g_oemPDEV.pBufStart = static_cast<uint8_t*>(std::malloc(size + 1));
  std::memset(g_oemPDEV.pBufStart, 0x77, size);
  GetCupsRasterData(header, raster, ppd, stride);
  Bytes bitmap(g_oemPDEV.pBufStart, g_oemPDEV.pBufStart + g_oemPDEV.dwBufSize);
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biHeight, static_cast<int32_t>(header.cupsHeight));
  EXPECT_EQ(+g_oemPDEV.bmInfoHeader.biSizeImage, size);
  vFreeBuffer(&g_oemPDEV);
  cupsRasterClose(raster);
  close(fd);
  return bitmap;
}

TEST(RasterPage, RowsArePaddedWithWhite) {
  RasterPage page = {rgbHeader(5, 2), {Bytes(15, 1), Bytes(15, 2)}};
  Bytes expected(32, 1);
  std::fill(expected.begin() + 16, expected.end(), uint8_t{2});
  expected[15] = expected[31] = 0xFF;
  EXPECT_EQ(bitmapOf(rasterStream({page})), expected);
}

TEST(RasterPage, AStreamThatEndsEarlyLeavesTheRestWhite) {
  RasterPage page = {rgbHeader(4, 100), std::vector<Bytes>(10, Bytes(12, 3))};
  const Bytes bitmap = bitmapOf(rawStream({page}));
  ASSERT_EQ(bitmap.size(), 1200U);
  EXPECT_EQ(Bytes(bitmap.begin(), bitmap.begin() + 120), Bytes(120, 3));
  EXPECT_EQ(Bytes(bitmap.begin() + 120, bitmap.end()), Bytes(1080, 0xFF));
}

TEST(RasterPage, EveryKindOfStreamGivesTheSameBitmap) {
  const RasterPage page = inkedPage(rgbHeader(33, 50), 4);
  const Bytes plain = bitmapOf(rasterStream({page}, CUPS_RASTER_WRITE));
  EXPECT_EQ(bitmapOf(rasterStream({page}, CUPS_RASTER_WRITE_COMPRESSED)), plain);
  EXPECT_EQ(bitmapOf(rasterStream({page}, CUPS_RASTER_WRITE_PWG)), plain);
}

TEST(RasterPage, LinesLongerThanTheRowAreCut) {
  cups_page_header2_t told = rgbHeader(4, 2);
  told.cupsBytesPerLine = 30;
  const RasterPage page = {rgbHeader(10, 2), std::vector<Bytes>(2, Bytes(30, 5))};
  EXPECT_EQ(bitmapOf(rawStream({page}), nullptr, &told), Bytes(24, 5));
}

TEST(RasterPage, LinesShorterThanTheRowLeaveItsEndWhite) {
  cups_page_header2_t told = rgbHeader(4, 1);
  told.cupsBytesPerLine = 6;
  const RasterPage page = {rgbHeader(2, 1), {Bytes{1, 2, 3, 4, 5, 6}}};
  EXPECT_EQ(bitmapOf(rawStream({page}), nullptr, &told),
            (Bytes{3, 2, 1, 6, 5, 4, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST(RasterPage, StaysWhiteWhereThePdfGivesTheContent) {
  TempFile file(ppdText({1, {}, true}));
  ppd_file_t* ppd = ppdOpenFile(file.path().c_str());
  ASSERT_NE(ppd, nullptr);
  ppdMarkDefaults(ppd);
  RasterPage page = {rgbHeader(4, 2), std::vector<Bytes>(2, Bytes(12, 0))};
  EXPECT_EQ(bitmapOf(rasterStream({page}), ppd), Bytes(24, 0xFF));
  ppdClose(ppd);
}

}  // namespace
}  // namespace velka::testing
