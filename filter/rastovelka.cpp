// The driver of a print job. Its log lines carry this file's name.
#include "rastovelka.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "CheckedMath.h"
#include "FixedText.h"
#include "GrowingBuffer.h"
#include "HeaderFields.h"
#include "InitalizeOemCfg.h"
#include "JobEnds.h"
#include "MarkedOptions.h"
#include "OwnFile.h"
#include "PageCount.h"
#include "PageDrawing.h"
#include "PageFiles.h"
#include "PageMemory.h"
#include "PpmImage.h"
#include "PreInc.h"
#include "RasterLines.h"
#include "SafeFile.h"
#include "StandardDescriptors.h"
#include "log4z.h"

tagOEMCFG g_oemCfg = {};
_DEVMODE g_devMode = {};
_OEMPDEV g_oemPDEV = {};
_DEVOBJ g_devObj = {};

namespace {

constexpr int kOrloModelNumber = 2;

int asInt(unsigned int value) noexcept {
  return static_cast<int>(value);
}

// The address of the page bitmap as the log shows it: its low 32 bits.
unsigned int pageAddress() noexcept {
  return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(g_oemPDEV.pBufStart));
}

// A page bitmap, still to be filled, or none where the header asks for more than
// memory or a 32-bit size can hold: the page is then read and not printed.
void allocatePage(const cups_page_header2_t& header, uint64_t stride) noexcept {
  g_oemPDEV.pBufStart = nullptr;
  const auto size = velka::checkedMul32(stride, header.cupsHeight);
  if (!size) return;
  uint8_t* page = velka::pageBytes(*size);
  g_oemPDEV.pBufStart = page;
  g_oemPDEV.dwBufSize = page == nullptr ? 0 : *size;
}

// Lines that did not come are white.
void whitenRows(const cups_page_header2_t& header, unsigned int stride,
                unsigned int first) noexcept {
  if (g_oemPDEV.pBufStart == nullptr) return;
  std::memset(g_oemPDEV.pBufStart + uint64_t{first} * stride, 0xFF,
              uint64_t{header.cupsHeight - first} * stride);
}

// What stays the same from page to page.
struct PageSource {
  cups_raster_t* raster;
  ppd_file_t* ppd;
  char** argv;
  const char* pdfPath;
};

void readPage(const cups_page_header2_t& header, const PageSource& from, char* ppmName,
              int page) noexcept {
  const uint64_t stride = velka::paddedRowBytes(header.cupsWidth, header.cupsBitsPerPixel);
  allocatePage(header, stride);
  GetCupsRasterData(header, from.raster, from.ppd, static_cast<unsigned int>(stride));
  if (velka::pagesComeFromPdf(from.ppd))
    UsePdfprocess(from.ppd, ppmName, from.argv, page, header, from.pdfPath);
  VELKA_LOG_DEBUG("After getting data");
  g_oemPDEV.dwCurPageNum = static_cast<uint32_t>(page);
  VELKA_LOG_DEBUG("curPage is %d, bufStart is 0x%x", page, pageAddress());
}

// Prints page after page until the headers end or the job is cancelled. Returns
// the number of headers read.
int printPages(const PageSource& from) noexcept {
  int page = 0;
  velka::FixedText ppmName;
  cups_page_header2_t header = {};
  while (Canceled == 0) {
    if (cupsRasterReadHeader2(from.raster, &header) == 0 || Canceled != 0) break;
    ++page;
    StartPage(from.ppd, &header, page);
    if (page == 1) StartDoc(from.ppd, header);
    readPage(header, from, ppmName.chars.data(), page);
    StartPageOemPDEV(&g_devObj);
    VELKA_LOG_DEBUG("After set StartPageOemPDEV");
    // Deliberate: no line end, as in every text on standard error.
    if (Canceled != 1) std::fputs("Finish print operation.", stderr);
  }
  return page;
}

// Gives the record's page buffer the size of the picture. Where the record holds
// none, or memory does not hold the picture, the page is not printed.
std::span<uint8_t> resizePage(uint64_t stride, int width, int height) noexcept {
  const auto size = velka::checkedMul32(stride, static_cast<uint64_t>(height));
  if (g_oemPDEV.pBufStart != nullptr) {
    std::free(g_oemPDEV.pBufStart);
    g_oemPDEV.pBufStart = size ? velka::zeroedBytes(*size).release() : nullptr;
  }
  InitPdfProcessOemPDEV(size ? static_cast<unsigned int>(stride) : 0, width, height);
  if (g_oemPDEV.pBufStart == nullptr) return {};
  return {g_oemPDEV.pBufStart, g_oemPDEV.dwBufSize};
}

}  // namespace

int RunFilter(int argc, char* argv[]) noexcept {
  velka::keepFreedMemory();
  velka::fillStandardDescriptors();
  velka::dropCopyOnEarlyEnd(argc, argv);
  std::setvbuf(stderr, nullptr, _IONBF, 0);
  StartLog4z();
  int fd = 0;
  // Without a PPD the stream is never closed; a static keeps that from being a leak.
  static cups_raster_t* raster = nullptr;
  // Deliberate: a failed start is reported as success; an error status would have CUPS
  // hold the job as failed.
  if (OpenPageStream(argc, argv, &fd, &raster) != 0) return 0;
  Canceled = 0;
  velka::installSignals();
  ppd_file_t* ppd = nullptr;
  InitializeSetting(argv[5], &ppd);

  const velka::FixedText pdfPath = velka::formatText("/tmp/VK_TEMP_CUPS_%s.pdf", argv[1]);
  VELKA_LOG_DEBUG("tempPDF: %s", pdfPath.text());

  const int pages = printPages({raster, ppd, argv, pdfPath.text()});
  VELKA_LOG_DEBUG("EndDoc, bufStart is 0x%x", pageAddress());
  EndDocOemPDEV(&g_devObj);
  // A cancelled job leaves no pictures of its pages. One that runs to its end leaves
  // those whose name it could not foresee.
  if (Canceled != 0 && velka::pagesComeFromPdf(ppd)) velka::removePageFiles(argv[1], pages);
  // Deliberate: without a PPD nothing is cleaned up.
  if (ppd != nullptr) Shutdown(pdfPath.text(), ppd, raster, fd);
  return pages == 0 ? 1 : 0;
}

void StartLog4z() noexcept {
  const mode_t before = umask(022);
  // Opening is emptying: the previous job's lines go.
  velka::openRegularForWriting("/tmp/velka.log", true).reset();
  ILog4zManager* log = ILog4zManager::getInstance();
  log->setLoggerPath(LOGGER_MAIN_ID, "/tmp");
  log->setLoggerName(LOGGER_MAIN_ID, "velka");
  log->start();
  umask(before);
}

void StartPage(ppd_file_t* /*ppd*/, const cups_page_header2_t* header, int page) noexcept {
  if (header == nullptr) return;
  const cups_page_header2_t& h = *header;
  VELKA_LOG_DEBUG("******************************Start Page %d ******************************",
                  page);
  VELKA_LOG_DEBUG("Duplex = %d", velka::enumBits(h.Duplex));
  VELKA_LOG_DEBUG("HWResolution = [ %d %d ]", asInt(h.HWResolution[0]), asInt(h.HWResolution[1]));
  VELKA_LOG_DEBUG("ImagingBoundingBox = [ %d %d %d %d ]", asInt(h.ImagingBoundingBox[0]),
                  asInt(h.ImagingBoundingBox[1]), asInt(h.ImagingBoundingBox[2]),
                  asInt(h.ImagingBoundingBox[3]));
  VELKA_LOG_DEBUG("Margins = [ %d %d ]", asInt(h.Margins[0]), asInt(h.Margins[1]));
  VELKA_LOG_DEBUG("ManualFeed = %d", velka::enumBits(h.ManualFeed));
  VELKA_LOG_DEBUG("MediaPosition = %d", asInt(h.MediaPosition));
  VELKA_LOG_DEBUG("NumCopies = %d", asInt(h.NumCopies));
  VELKA_LOG_DEBUG("Orientation = %d", velka::enumBits(h.Orientation));
  VELKA_LOG_DEBUG("PageSize = [ %d %d ]", asInt(h.PageSize[0]), asInt(h.PageSize[1]));
  VELKA_LOG_DEBUG("cupsWidth = %d", asInt(h.cupsWidth));
  VELKA_LOG_DEBUG("cupsHeight = %d", asInt(h.cupsHeight));
  VELKA_LOG_DEBUG("cupsMediaType = %d", asInt(h.cupsMediaType));
  VELKA_LOG_DEBUG("cupsBitsPerColor = %d", asInt(h.cupsBitsPerColor));
  VELKA_LOG_DEBUG("cupsBitsPerPixel = %d", asInt(h.cupsBitsPerPixel));
  VELKA_LOG_DEBUG("cupsBytesPerLine = %d", asInt(h.cupsBytesPerLine));
  VELKA_LOG_DEBUG("cupsColorOrder = %d", velka::enumBits(h.cupsColorOrder));
  VELKA_LOG_DEBUG("cupsColorSpace = %d", velka::enumBits(h.cupsColorSpace));
  VELKA_LOG_DEBUG("cupsCompression = %d", asInt(h.cupsCompression));
}

void StartDoc(ppd_file_t* ppd, cups_page_header2_t header) noexcept {
  VELKA_LOG_DEBUG("Begin to initialize configures");
  InitalizeOemCfg(&g_oemCfg, ppd, &header);
  InitDevmode(&g_devMode, &header);
  InitOemPDEV(&g_oemPDEV, &header);
  const bool orlo = ppd != nullptr && ppd->model_number == kOrloModelNumber;
  g_devObj = {&g_oemPDEV, &g_devMode, &g_oemCfg, orlo ? 1 : 0};
  VELKA_LOG_DEBUG("Initializing configures finish");
  StartDocOemPDEV(&g_oemPDEV);
  // The generator makes the copies, pages are not repeated for them.
  g_oemCfg.sCopies = g_devMode.dmCopies;
  g_devMode.dmCopies = 1;
  VELKA_LOG_DEBUG("Finish StartDoc");
}

void GetCupsRasterData(cups_page_header2_t header, cups_raster_t* raster, ppd_file_t* ppd,
                       unsigned int stride) noexcept {
  const bool onlyConsume = velka::pagesComeFromPdf(ppd) || g_oemPDEV.pBufStart == nullptr;
  const velka::MallocBytes line = velka::zeroedBytes(header.cupsBytesPerLine);
  const unsigned int rows = line == nullptr || raster == nullptr ? 0 : header.cupsHeight;
  unsigned int stored = 0;
  for (unsigned int row = 0; row < rows; ++row) {
    if (cupsRasterReadPixels(raster, line.get(), header.cupsBytesPerLine) == 0) break;
    if (onlyConsume) continue;
    velka::storeLine({line.get(), header.cupsBytesPerLine},
                     {g_oemPDEV.pBufStart + uint64_t{stored} * stride, stride}, header.cupsWidth);
    ++stored;
  }
  whitenRows(header, stride, stored);
  // Always the full page, also when its lines ended early.
  const auto size = velka::checkedMul32(stride, header.cupsHeight);
  g_oemPDEV.bmInfoHeader.biHeight = asInt(header.cupsHeight);
  g_oemPDEV.bmInfoHeader.biSizeImage = size.value_or(0);
  g_oemPDEV.dwBufSize = g_oemPDEV.pBufStart == nullptr ? 0 : size.value_or(0);
}

void PdftoppmCmd(char* ppmName, char* argv[], int page, const cups_page_header2_t* header,
                 const char* pdfPath) noexcept {
  if (ppmName == nullptr || argv == nullptr || argv[0] == nullptr || header == nullptr ||
      pdfPath == nullptr)
    return;
  ppmName[0] = '\0';
  const char* jobId = argv[1];
  const velka::ToolWatch drawing{velka::pageLimits.drawing, Canceled};
  if (const char* why = velka::whyNoTool(jobId, pdfPath, drawing)) {
    VELKA_LOG_DEBUG("no page from the PDF: %s", why);
    return;
  }
  const velka::PageDigits count =
      velka::knownDigits(pdfPath, {velka::pageLimits.counting, Canceled});
  if (count.late) VELKA_LOG_DEBUG("no page count from the PDF: its tool took too long");
  if (count.digits != -1) {
    VELKA_LOG_DEBUG(
        "temp: %s",
        velka::formatText("/tmp/VK_TEMP_CUPS_%s-%%.%dd.ppm", jobId, count.digits).text());
    velka::copyText(velka::pageFileName(jobId, page, count.digits), ppmName);
    VELKA_LOG_DEBUG("tempPPM: %s", ppmName);
  }
  const velka::FixedText command = velka::formatText(
      "pdftoppm -q -aa no -aaVector no -f %d -l %d -rx %d -ry %d %s /tmp/VK_TEMP_CUPS_%s", page,
      page, asInt(header->HWResolution[0]), asInt(header->HWResolution[1]), pdfPath, jobId);
  const velka::PageDrawing drawn = velka::drawPage(command, jobId, page, drawing);
  if (drawn.refusal != nullptr) {
    VELKA_LOG_DEBUG("no page from the PDF: %s", drawn.refusal);
    ppmName[0] = '\0';
  }
  if (drawn.end.late) VELKA_LOG_DEBUG("the tool that draws the page took too long and was ended");
  // The named one is looked at where it is read.
  if (ppmName[0] == '\0') velka::removeHalfPageFiles(jobId, page);
  VELKA_LOG_DEBUG("system cmd: %s, ret: %d", command.text(), drawn.end.status);
  VELKA_LOG_DEBUG("tempPPM: %s", ppmName);
}

void UsePdfprocess(ppd_file_t* /*ppd*/, char* ppmName, char* argv[], int page,
                   cups_page_header2_t header, const char* pdfPath) noexcept {
  PdftoppmCmd(ppmName, argv, page, &header, pdfPath);
  unsigned char* contents = nullptr;
  unsigned int size = 0;
  PpmFileData(ppmName, &contents, &size);
  const velka::MallocBytes file(contents);
  int width = 0;
  int height = 0;
  const unsigned char* data = PpmBitmapData(contents, size, &width, &height);
  VELKA_LOG_DEBUG("PPM width: %d, height: %d, pData: %p", width, height,
                  static_cast<const void*>(data));
  // Deliberate: a picture without pixels is left for whoever looks into it.
  if (data == nullptr) return;
  const std::span<const uint8_t> picture(data, contents + size);
  if (picture.size() < velka::pixelBytes(width, height)) {
    // Half a page is worse than none.
    VELKA_LOG_DEBUG("no page from the PDF: its picture holds %zu of %llu bytes", picture.size(),
                    static_cast<unsigned long long>(velka::pixelBytes(width, height)));
    velka::removeOwnFile(ppmName);
    return;
  }
  const auto pixels = static_cast<uint32_t>(width);
  const uint64_t stride = velka::paddedRowBytes(pixels, header.cupsBitsPerPixel);
  const std::span<uint8_t> bitmap = resizePage(stride, width, height);
  velka::storePpmRows(picture, pixels, static_cast<uint32_t>(height), bitmap, stride);
  std::remove(ppmName);
}
