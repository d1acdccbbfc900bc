// Whole jobs in this process: PPD, job options and pages of up to 128 x 128 pixels with
// any header out of one input, as the driver runs them. The log is not started and the
// printer is /dev/null.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

#include "AnyPpd.h"
#include "DotPlacement.h"
#include "MarkedOptions.h"
#include "PageLimit.h"
#include "PreInc.h"
#include "RasterPage.h"
#include "rastovelka.h"

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv);

namespace {

using namespace velka;
using namespace velka::fuzz;

constexpr unsigned kMostSide = 128;

void anyField(Input& input, cups_page_header2_t& header) {
  const auto value = input.flag() ? input.number<uint32_t>() : uint32_t{input.byte()};
  const auto at = sizeof value * static_cast<size_t>(input.below(sizeof header / sizeof value));
  std::memcpy(reinterpret_cast<uint8_t*>(&header) + at, &value, sizeof value);
}

cups_page_header2_t anyHeader(Input& input) {
  constexpr unsigned kDpi[] = {180, 360, 60, 120, 90, 80, 72, 600, 720, 0};
  cups_page_header2_t header = {};
  header.cupsWidth = input.byte();
  header.cupsHeight = input.byte();
  header.HWResolution[0] = input.oneOf(kDpi);
  header.HWResolution[1] = input.oneOf(kDpi);
  header.NumCopies = input.byte();
  header.Collate = input.flag() ? CUPS_TRUE : CUPS_FALSE;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsBytesPerLine = std::min(header.cupsWidth, kMostSide) * 3;
  header.cupsColorSpace = CUPS_CSPACE_SRGB;
  header.cupsNumColors = 3;
  for (int fields = input.byte() % 8; fields > 0; --fields) anyField(input, header);
  // What would only take long.
  header.cupsWidth = std::min(header.cupsWidth, kMostSide);
  header.cupsHeight = std::min(header.cupsHeight, kMostSide);
  header.cupsBytesPerLine = std::min(header.cupsBytesPerLine, kMostSide * 8);
  header.NumCopies %= 4;
  return header;
}

Bytes anyRaster(Input& input) {
  Bytes raster = {'3', 'S', 'a', 'R'};
  for (int pages = input.byte() % 4; pages > 0; --pages) {
    const cups_page_header2_t header = anyHeader(input);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&header);
    raster.insert(raster.end(), bytes, bytes + sizeof header);
    const Bytes lines = input.runs(size_t{header.cupsHeight} * header.cupsBytesPerLine, 255);
    raster.insert(raster.end(), lines.begin(), lines.end());
  }
  // A stream that ends early, or has something behind its pages.
  const auto rest = input.take(64);
  raster.insert(raster.end(), rest.begin(), rest.end());
  if (input.flag()) {
    const auto cut = static_cast<ptrdiff_t>(std::min(raster.size() - 4, rest.size()));
    raster.erase(raster.end() - cut, raster.end());
  }
  return raster;
}

// As the driver's own loop, but for its log.
void printPages(cups_raster_t* raster, ppd_file_t* ppd) {
  RasterInput input(raster);
  cups_page_header2_t header = {};
  for (int page = 1; input.nextHeader(header); ++page) {
    StartPage(ppd, &header, page);
    if (page == 1) StartDoc(ppd, header);
    const PageSize size = {header.cupsWidth, header.cupsHeight, header.cupsBitsPerPixel,
                           mostPageBytes(ppd, header)};
    (void)makePage(g_oemPDEV, size);
    if (readLines(g_oemPDEV, header, input, ppd, size.stride(), size.mostBytes) != PageRoom::Had)
      dropPage(g_oemPDEV);
    if (placement() == DotPlacement::Exact)
      g_oemPDEV.bmInfoHeader.biWidth = static_cast<int>(header.cupsWidth);
    g_oemPDEV.dwCurPageNum = static_cast<uint32_t>(page);
    StartPageOemPDEV(&g_devObj);
    require(g_oemPDEV.pBufStart == nullptr && g_oemPDEV.pBufStartOut == nullptr);
  }
  EndDocOemPDEV(&g_devObj);
  require(g_oemPDEV.pEscpSml == nullptr);
}

}  // namespace

// The printer and the texts for people go nowhere, and a page moved far away does not get
// the memory that it asks for.
int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  stderr = std::fopen("/dev/null", "w");
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(__clang__)
  const rlimit memory = {rlim_t{1} << 29U, rlim_t{1} << 29U};
  (void)setrlimit(RLIMIT_AS, &memory);
#endif
  return nowhere >= 0 && stderr != nullptr && dup2(nowhere, STDOUT_FILENO) >= 0 ? 0 : 1;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const std::string text = anyPpd(input);
  std::string options = input.text(input.byte());
  const MemoryFile ppdFile({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  const MemoryFile rasterFile(anyRaster(input));
  std::string words[] = {"rastovelka", "1", "user", "title", "1", options, rasterFile.path()};
  char* argv[8] = {};
  for (size_t i = 0; i < std::size(words); ++i) argv[i] = words[i].data();
  setenv("PPD", ppdFile.path().c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  g_oemCfg = {};
  g_devMode = {};
  g_oemPDEV = {};
  g_devObj = {};
  int fd = -1;
  cups_raster_t* raster = nullptr;
  if (OpenPageStream(7, argv, &fd, &raster) != 0) {
    if (fd >= 0) close(fd);
    return 0;
  }
  ppd_file_t* ppd = nullptr;
  InitializeSetting(argv[5], &ppd);
  printPages(raster, ppd);
  cupsRasterClose(raster);
  ppdClose(ppd);
  close(fd);
  return 0;
}
