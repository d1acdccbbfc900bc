// The driver of a print job. Its log lines carry this file's name.
#include "rastovelka.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CheckedMath.h"
#include "GrowingBuffer.h"
#include "HeaderFields.h"
#include "InitalizeOemCfg.h"
#include "PreInc.h"
#include "RasterLines.h"
#include "SafeFile.h"
#include "StandardDescriptors.h"
#include "log4z.h"

volatile std::sig_atomic_t Canceled = 0;
tagOEMCFG g_oemCfg = {};
_DEVMODE g_devMode = {};
_OEMPDEV g_oemPDEV = {};
_DEVOBJ g_devObj = {};

namespace {

constexpr size_t kTextBytes = 256;
constexpr int kOrloModelNumber = 2;
using Text = std::array<char, kTextBytes>;

int asInt(unsigned int value) noexcept {
  return static_cast<int>(value);
}

// The address of the page bitmap as the log shows it: its low 32 bits.
unsigned int pageAddress() noexcept {
  return static_cast<unsigned int>(reinterpret_cast<uintptr_t>(g_oemPDEV.pBufStart));
}

// Standard error is shared with the job's other filters; the texts carry no line
// end.
void tellUser(const char* text) noexcept {
  std::fputs(text, stderr);
}

bool pageComesFromPdf(ppd_file_t* ppd) noexcept {
  return ppd != nullptr && ppdIsMarked(ppd, "PdfPreprocess", "yes") != 0;
}

void installSignals() noexcept {
  struct sigaction cancel = {};
  cancel.sa_handler = CancelJob;
  cancel.sa_flags = SA_RESTART;
  sigaction(SIGTERM, &cancel, nullptr);
  struct sigaction ignore = {};
  ignore.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &ignore, nullptr);
}

// A white page bitmap, or none where the header asks for more than memory or a
// 32-bit size can hold: the page is then read and not printed.
void allocatePage(const cups_page_header2_t& header, uint64_t stride) noexcept {
  g_oemPDEV.pBufStart = nullptr;
  const auto size = velka::checkedMul32(stride, header.cupsHeight);
  if (!size) return;
  auto* page = static_cast<uint8_t*>(std::malloc(std::max(*size, 1U)));
  if (page != nullptr) std::memset(page, 0xFF, *size);
  g_oemPDEV.pBufStart = page;
  g_oemPDEV.dwBufSize = page == nullptr ? 0 : *size;
}

void readPage(const cups_page_header2_t& header, cups_raster_t* raster, ppd_file_t* ppd,
              int page) noexcept {
  const uint64_t stride = velka::paddedRowBytes(header.cupsWidth, header.cupsBitsPerPixel);
  allocatePage(header, stride);
  GetCupsRasterData(header, raster, ppd, static_cast<unsigned int>(stride));
  // A page that comes from the job's PDF is put in place of the white one here.
  VELKA_LOG_DEBUG("After getting data");
  g_oemPDEV.dwCurPageNum = static_cast<uint32_t>(page);
  VELKA_LOG_DEBUG("curPage is %d, bufStart is 0x%x", page, pageAddress());
}

// Prints page after page until the headers end or the job is cancelled. Returns
// the number of headers read.
int printPages(cups_raster_t* raster, ppd_file_t* ppd) noexcept {
  int page = 0;
  cups_page_header2_t header = {};
  while (Canceled == 0) {
    if (cupsRasterReadHeader2(raster, &header) == 0 || Canceled != 0) break;
    ++page;
    StartPage(ppd, &header, page);
    if (page == 1) StartDoc(ppd, header);
    readPage(header, raster, ppd, page);
    StartPageOemPDEV(&g_devObj);
    VELKA_LOG_DEBUG("After set StartPageOemPDEV");
    if (Canceled != 1) tellUser("Finish print operation.");
  }
  return page;
}

}  // namespace

int RunFilter(int argc, char* argv[]) noexcept {
  velka::fillStandardDescriptors();
  std::setvbuf(stderr, nullptr, _IONBF, 0);
  StartLog4z();
  int fd = 0;
  // Without a PPD the stream is never closed; a static keeps that from being a leak.
  static cups_raster_t* raster = nullptr;
  // Deliberate: a failed start is reported as success, or CUPS would stop the queue.
  if (OpenPageStream(argc, argv, &fd, &raster) != 0) return 0;
  Canceled = 0;
  installSignals();
  ppd_file_t* ppd = nullptr;
  InitializeSetting(argv[5], &ppd);

  Text pdfPath = {};
  std::snprintf(pdfPath.data(), pdfPath.size(), "/tmp/VK_TEMP_CUPS_%s.pdf", argv[1]);
  VELKA_LOG_DEBUG("tempPDF: %s", pdfPath.data());

  const int pages = printPages(raster, ppd);
  VELKA_LOG_DEBUG("EndDoc, bufStart is 0x%x", pageAddress());
  EndDocOemPDEV(&g_devObj);
  // Deliberate: without a PPD nothing is cleaned up.
  if (ppd != nullptr) Shutdown(pdfPath.data(), ppd, raster, fd);
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

int OpenPageStream(int argc, char* argv[], int* fd, cups_raster_t** raster) noexcept {
  constexpr int kWithoutFile = 6;
  constexpr int kWithFile = 7;
  if (argv == nullptr || argv[0] == nullptr || fd == nullptr || raster == nullptr) return 1;
  if (argc != kWithoutFile && argc != kWithFile) return 1;
  *fd = STDIN_FILENO;
  if (argc == kWithFile) {
    *fd = open(argv[6], O_RDONLY | O_CLOEXEC);
    if (*fd < 0) {
      sleep(1);
      return 1;
    }
  }
  *raster = cupsRasterOpen(*fd, CUPS_RASTER_READ);
  if (*raster != nullptr) return 0;
  tellUser("cupsRasterOpen failed.");
  return 1;
}

void InitializeSetting(const char* options, ppd_file_t** ppd) noexcept {
  if (ppd == nullptr) return;
  *ppd = ppdOpenFile(std::getenv("PPD"));  // NOLINT(concurrency-mt-unsafe): one thread reads it
  if (*ppd == nullptr) {
    int line = 0;
    const ppd_status_t status = ppdLastError(&line);
    tellUser("The PPD file could not be opened.");
    std::fprintf(stderr, "%s on line %d.", ppdErrorString(status), line);
    return;
  }
  ppdMarkDefaults(*ppd);
  cups_option_t* jobOptions = nullptr;
  const int count = cupsParseOptions(options, 0, &jobOptions);
  if (count == 0 || jobOptions == nullptr) return;
  cupsMarkOptions(*ppd, count, jobOptions);
  cupsFreeOptions(count, jobOptions);
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
  const bool onlyConsume = pageComesFromPdf(ppd) || g_oemPDEV.pBufStart == nullptr;
  const velka::MallocBytes line = velka::zeroedBytes(header.cupsBytesPerLine);
  const unsigned int rows = line == nullptr || raster == nullptr ? 0 : header.cupsHeight;
  for (unsigned int row = 0; row < rows; ++row) {
    if (cupsRasterReadPixels(raster, line.get(), header.cupsBytesPerLine) == 0) break;
    if (onlyConsume) continue;
    velka::storeLine({line.get(), header.cupsBytesPerLine},
                     {g_oemPDEV.pBufStart + uint64_t{row} * stride, stride}, header.cupsWidth);
  }
  // Always the full page, also when its lines ended early.
  const auto size = velka::checkedMul32(stride, header.cupsHeight);
  g_oemPDEV.bmInfoHeader.biHeight = asInt(header.cupsHeight);
  g_oemPDEV.bmInfoHeader.biSizeImage = size.value_or(0);
  g_oemPDEV.dwBufSize = g_oemPDEV.pBufStart == nullptr ? 0 : size.value_or(0);
}

void CancelJob(int /*signal*/) noexcept {
  Canceled = 1;
}

int Shutdown(const char* pdfPath, ppd_file_t* ppd, cups_raster_t* raster, int fd) noexcept {
  if (raster == nullptr) return 1;
  if (ppd == nullptr || pdfPath == nullptr) return 0;
  std::remove(pdfPath);
  ppdClose(ppd);
  cupsRasterClose(raster);
  return fd == 0 ? 0 : close(fd);
}
