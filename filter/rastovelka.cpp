// The driver of a print job. Its log lines carry this file's name.
#include "rastovelka.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>

#include "CheckedMath.h"
#include "DotPlacement.h"
#include "ESCPSML.h"
#include "FixedText.h"
#include "GrowingBuffer.h"
#include "HeaderFields.h"
#include "InitalizeOemCfg.h"
#include "JobEnds.h"
#include "JobLog.h"
#include "MarkedOptions.h"
#include "OwnFile.h"
#include "PageCount.h"
#include "PageDrawing.h"
#include "PageFiles.h"
#include "PageLimit.h"
#include "PpmImage.h"
#include "PreInc.h"
#include "RasterInput.h"
#include "RasterPage.h"
#include "StandardOutput.h"
#include "log4z.h"

tagOEMCFG g_oemCfg = {};
_DEVMODE g_devMode = {};
_OEMPDEV g_oemPDEV = {};
_DEVOBJ g_devObj = {};

namespace {

using velka::isOrloModel;

int asInt(unsigned int value) noexcept {
  return static_cast<int>(value);
}

// The address of the page bitmap as the log shows it: its low 32 bits.
unsigned int pageAddress() noexcept {
  return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(g_oemPDEV.pBufStart));
}

// Says that a page is lost, and for what.
void tellRoom(int page, velka::PageRoom room, const velka::PageSize& size) {
  if (room == velka::PageRoom::Refused)
    VELKA_LOG_DEBUG("page %d is not printed: no memory for its bitmap of %u x %u pixels", page,
                    size.width, size.height);
  if (room == velka::PageRoom::TooLarge)
    VELKA_LOG_DEBUG(
        "page %d is not printed: its bitmap of %u x %u pixels is larger than %u bytes, the most "
        "that a page may take",
        page, size.width, size.height, static_cast<unsigned int>(size.mostBytes));
}

// What kept the job from its end, in one line each. A reader that is gone is the backend's
// to tell.
void tellLostEnd(const velka::RasterInput& raster) noexcept {
  if (raster.error() != 0)
    VELKA_LOG_DEBUG("the raster is not read to its end: %s", strerrordesc_np(raster.error()));
  const int writing = velka::printerError();
  if (writing != 0 && writing != EPIPE)
    VELKA_LOG_DEBUG("the job is not printed to its end: %s", strerrordesc_np(writing));
}

// What stays the same from page to page.
struct PageSource {
  velka::RasterInput& raster;
  ppd_file_t* ppd;
  char** argv;
  const char* pdfPath;
};

// Reads the page's lines into a bitmap. Where memory for either is not to be had, the
// page is not printed and the job goes on.
void readRaster(const cups_page_header2_t& header, const PageSource& from, int page) noexcept {
  const velka::PageSize size = {header.cupsWidth, header.cupsHeight, header.cupsBitsPerPixel,
                                velka::mostPageBytes(from.ppd, header)};
  tellRoom(page, velka::makePage(g_oemPDEV, size), size);
  const velka::PageRoom lines =
      velka::readLines(g_oemPDEV, header, from.raster, from.ppd, size.stride(), size.mostBytes);
  if (lines == velka::PageRoom::Had) return;
  VELKA_LOG_DEBUG("page %d is not printed: no memory for its lines of %u bytes", page,
                  header.cupsBytesPerLine);
  velka::dropPage(g_oemPDEV);
}

void readPage(const cups_page_header2_t& header, const PageSource& from, char* ppmName,
              int page) noexcept {
  readRaster(header, from, page);
  // The original stream takes every page for as wide as the first.
  if (velka::placement() == velka::DotPlacement::Exact)
    g_oemPDEV.bmInfoHeader.biWidth = asInt(header.cupsWidth);
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
    if (!from.raster.nextHeader(header) || Canceled != 0) break;
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
std::span<uint8_t> resizePage(int page, const velka::PageSize& size) noexcept {
  const velka::PageRoom room = velka::replacePage(g_oemPDEV, size);
  tellRoom(page, room, size);
  const bool fits = room != velka::PageRoom::TooLarge;
  InitPdfProcessOemPDEV(fits ? static_cast<unsigned int>(size.stride()) : 0, asInt(size.width),
                        asInt(size.height));
  if (g_oemPDEV.pBufStart == nullptr) return {};
  return {g_oemPDEV.pBufStart, g_oemPDEV.dwBufSize};
}

}  // namespace

int RunFilter(int argc, char* argv[]) noexcept {
  velka::prepareProcess(argc, argv);
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

  velka::RasterInput input(raster);
  const int pages = printPages({input, ppd, argv, pdfPath.text()});
  const uint64_t linesBefore = ILog4zManager::getInstance()->getStatusTotalWriteCount();
  VELKA_LOG_DEBUG("EndDoc, bufStart is 0x%x", pageAddress());
  velka::tellIfLogEnded(linesBefore);
  EndDocOemPDEV(&g_devObj);
  tellLostEnd(input);
  // A cancelled job leaves no pictures of its pages. One that runs to its end leaves
  // those whose name it could not foresee.
  if (Canceled != 0 && velka::pagesComeFromPdf(ppd)) velka::removePageFiles(argv[1], pages);
  // Deliberate: without a PPD nothing is cleaned up.
  if (ppd != nullptr) Shutdown(pdfPath.text(), ppd, raster, fd);
  return pages == 0 ? 1 : 0;
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
  const bool orlo = isOrloModel(ppd);
  g_devObj = {&g_oemPDEV, &g_devMode, &g_oemCfg, orlo ? 1 : 0};
  velka::setPlacement(velka::chosenPlacement(ppd));
  if (velka::placement() == velka::DotPlacement::Exact) VELKA_LOG_DEBUG("Init DotPlacement: 1");
  VELKA_LOG_DEBUG("Initializing configures finish");
  StartDocOemPDEV(&g_oemPDEV);
  if (g_oemPDEV.pEscpSml != nullptr) g_oemPDEV.pEscpSml->SetCancelFlag(&Canceled);
  // The generator makes the copies, pages are not repeated for them.
  g_oemCfg.sCopies = g_devMode.dmCopies;
  g_devMode.dmCopies = 1;
  VELKA_LOG_DEBUG("Finish StartDoc");
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
  if (count.toolFailed && Canceled == 0)
    VELKA_LOG_DEBUG("no page count from the PDF: its tool cannot be run");
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

void UsePdfprocess(ppd_file_t* ppd, char* ppmName, char* argv[], int page,
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
  if (data == nullptr) {
    // Deliberate: a picture without pixels is left for whoever looks into it. One that we
    // had no memory for, say, is whole, and nobody would come for it.
    if (size == 0 && velka::holdsOwnBytes(ppmName)) {
      velka::removeOwnFile(ppmName);
      VELKA_LOG_DEBUG("no page from the PDF: its picture cannot be read");
    }
    return;
  }
  const std::span<const uint8_t> picture(data, contents + size);
  if (picture.size() < velka::pixelBytes(width, height)) {
    // Half a page is worse than none. It goes first: on a disk that is full the line needs
    // its room.
    velka::removeOwnFile(ppmName);
    VELKA_LOG_DEBUG("no page from the PDF: its picture holds %zu of %llu bytes", picture.size(),
                    static_cast<unsigned long long>(velka::pixelBytes(width, height)));
    return;
  }
  const auto pixels = static_cast<uint32_t>(width);
  const velka::PageSize wanted = {pixels, static_cast<uint32_t>(height), header.cupsBitsPerPixel,
                                  velka::mostPageBytes(ppd, header)};
  const std::span<uint8_t> bitmap = resizePage(page, wanted);
  velka::storePpmRows(picture, pixels, wanted.height, bitmap, wanted.stride());
  std::remove(ppmName);
}
