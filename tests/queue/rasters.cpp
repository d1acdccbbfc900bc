// queue-rasters FOLDER: rasters that no rasteriser makes of a document, as jobs of their own.
#include <fstream>
#include <string>

#include "support/RasterBuilder.h"

namespace {

using namespace velka::testing;

// Half black, so that every page leaves dots.
RasterPage blackPage(const cups_page_header2_t& header) {
  RasterPage page = whitePage(header);
  for (size_t row = 0; row < page.lines.size() / 2; ++row)
    page.lines[row].assign(page.lines[row].size(), 0);
  return page;
}

cups_page_header2_t greyHeader() {
  cups_page_header2_t header = rgbHeader(360, 360);
  header.cupsBitsPerPixel = 8;
  header.cupsBytesPerLine = 360;
  header.cupsColorSpace = CUPS_CSPACE_SW;
  header.cupsNumColors = 1;
  return header;
}

cups_page_header2_t setsHeader() {
  cups_page_header2_t header = rgbHeader(360, 360);
  header.NumCopies = 3;
  header.Collate = CUPS_TRUE;
  return header;
}

bool write(const std::string& path, const std::vector<RasterPage>& pages) {
  const Bytes bytes = rasterStream(pages);
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
  return file.good();
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 2) return 2;
  const std::string folder = argv[1];
  const cups_page_header2_t good = rgbHeader(360, 360);
  const bool written =
      write(folder + "/good.ras", {blackPage(good)}) &&
      write(folder + "/sets.ras", {blackPage(setsHeader()), blackPage(setsHeader())}) &&
      write(folder + "/grey.ras", {blackPage(greyHeader())}) &&
      write(folder + "/300dpi.ras", {blackPage(rgbHeader(600, 600, 300, 300))}) &&
      write(folder + "/long.ras", {blackPage(rgbHeader(180, 7740))});
  return written ? 0 : 1;
}
