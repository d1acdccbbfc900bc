// app-raster KIND WIDTH HEIGHT XDPI YDPI PAGES OUT.pwg OUT.ras: pages of a pattern in both
// inks, once as a client sends them to the application and once as the filter is to get
// them. KIND is srgb, sgray or black; WIDTH and HEIGHT are hundredths of a millimetre.
#include <cups/cups.h>
#include <cups/raster.h>
#include <fcntl.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "Descriptor.h"

namespace {

struct Job {
  std::string kind;
  int width = 0;
  int height = 0;
  unsigned x = 0;
  unsigned y = 0;
  unsigned pages = 0;
};

struct Colour {
  uint8_t red = 255;
  uint8_t green = 255;
  uint8_t blue = 255;
};

// Stripes of red, of black and of tones that only some options print red, each page moved.
Colour colourAt(unsigned page, unsigned x, unsigned y) {
  if ((x / 24 + y / 24) % 2 == 0) return {};
  const auto tone = static_cast<uint8_t>((x + page * 40) % 256);
  switch ((x / 48 + y / 48 + page) % 3) {
    case 0:
      return {220, tone, 20};
    case 1:
      return {tone, tone, tone};
    default:
      return {static_cast<uint8_t>(80 + tone / 2), 30, 60};
  }
}

uint8_t greyOf(const Colour& c) {
  return static_cast<uint8_t>((c.red * 30 + c.green * 59 + c.blue * 11) / 100);
}

void store(const Job& job, const Colour& c, uint8_t* pwg, uint8_t* rgb) {
  const uint8_t grey = greyOf(c);
  const bool colour = job.kind == "srgb";
  const uint8_t pixel[3] = {colour ? c.red : grey, colour ? c.green : grey, colour ? c.blue : grey};
  std::memcpy(rgb, pixel, 3);
  if (colour) std::memcpy(pwg, pixel, 3);
  if (job.kind == "sgray") *pwg = grey;
  if (job.kind == "black") *pwg = static_cast<uint8_t>(255 - grey);
}

cups_page_header2_t pwgHeader(const Job& job) {
  cups_page_header2_t header = {};
  pwg_media_t* media = pwgMediaForSize(job.width, job.height);
  pwg_media_t size = media == nullptr ? pwg_media_t{} : *media;
  size.width = job.width;
  size.length = job.height;
  cupsRasterInitPWGHeader(&header, &size, (job.kind + "_8").c_str(), static_cast<int>(job.x),
                          static_cast<int>(job.y), "one-sided", "normal");
  return header;
}

cups_page_header2_t filterHeader(const cups_page_header2_t& page) {
  cups_page_header2_t header = {};
  std::memcpy(header.HWResolution, page.HWResolution, sizeof header.HWResolution);
  header.cupsWidth = page.cupsWidth;
  header.cupsHeight = page.cupsHeight;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsNumColors = 3;
  header.cupsColorSpace = CUPS_CSPACE_RGB;
  header.cupsBytesPerLine = page.cupsWidth * 3;
  header.NumCopies = 1;
  return header;
}

int writePages(const Job& job, cups_raster_t* pwg, cups_raster_t* ras) {
  cups_page_header2_t ours = pwgHeader(job);
  cups_page_header2_t filters = filterHeader(ours);
  std::vector<uint8_t> line(ours.cupsBytesPerLine);
  std::vector<uint8_t> rgb(filters.cupsBytesPerLine);
  for (unsigned page = 0; page < job.pages; ++page) {
    if (cupsRasterWriteHeader2(pwg, &ours) == 0 || cupsRasterWriteHeader2(ras, &filters) == 0)
      return 1;
    for (unsigned y = 0; y < ours.cupsHeight; ++y) {
      for (unsigned x = 0; x < ours.cupsWidth; ++x)
        store(job, colourAt(page, x, y), &line[size_t{x} * (ours.cupsBitsPerPixel / 8)],
              &rgb[size_t{x} * 3]);
      if (cupsRasterWritePixels(pwg, line.data(), ours.cupsBytesPerLine) == 0) return 1;
      if (cupsRasterWritePixels(ras, rgb.data(), filters.cupsBytesPerLine) == 0) return 1;
    }
  }
  return 0;
}

velka::UniqueFd create(const char* name) {
  return velka::UniqueFd(open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 9) return 2;
  const Job job = {argv[1],
                   std::atoi(argv[2]),
                   std::atoi(argv[3]),
                   static_cast<unsigned>(std::atoi(argv[4])),
                   static_cast<unsigned>(std::atoi(argv[5])),
                   static_cast<unsigned>(std::atoi(argv[6]))};
  const velka::UniqueFd pwgFile = create(argv[7]);
  const velka::UniqueFd rasFile = create(argv[8]);
  cups_raster_t* pwg = cupsRasterOpen(pwgFile.get(), CUPS_RASTER_WRITE_PWG);
  cups_raster_t* ras = cupsRasterOpen(rasFile.get(), CUPS_RASTER_WRITE);
  if (pwg == nullptr || ras == nullptr) return 1;
  const int status = writePages(job, pwg, ras);
  cupsRasterClose(pwg);
  cupsRasterClose(ras);
  return status;
}
