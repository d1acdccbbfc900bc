#include "PageRaster.h"

#include <algorithm>

namespace velka::app {
namespace {

constexpr uint8_t kWhite = 0xFF;

bool isRgb(const cups_page_header2_t& page) noexcept {
  const cups_cspace_t space = page.cupsColorSpace;
  return page.cupsBitsPerPixel == 24 && page.cupsBitsPerColor == 8 &&
         (space == CUPS_CSPACE_SRGB || space == CUPS_CSPACE_RGB || space == CUPS_CSPACE_ADOBERGB);
}

bool isGrey(const cups_page_header2_t& page) noexcept {
  return page.cupsBitsPerPixel == 8 &&
         (page.cupsColorSpace == CUPS_CSPACE_SW || page.cupsColorSpace == CUPS_CSPACE_W);
}

bool isBlack(const cups_page_header2_t& page) noexcept {
  return (page.cupsBitsPerPixel == 8 || page.cupsBitsPerPixel == 1) &&
         page.cupsColorSpace == CUPS_CSPACE_K;
}

// The grey of pixel x where a line holds ink, not light.
uint8_t inkGrey(std::span<const uint8_t> line, size_t x, bool bits) noexcept {
  if (!bits) return static_cast<uint8_t>(kWhite - line[x]);
  return (line[x / 8] & (0x80U >> (x % 8))) != 0 ? 0 : kWhite;
}

}  // namespace

std::optional<cups_page_header2_t> filterHeader(const cups_page_header2_t& page,
                                                unsigned copies) noexcept {
  if (!isRgb(page) && !isGrey(page) && !isBlack(page)) return std::nullopt;
  if (page.cupsWidth == 0 || page.cupsHeight == 0) return std::nullopt;
  cups_page_header2_t header = page;
  header.cupsColorOrder = CUPS_ORDER_CHUNKED;
  header.cupsColorSpace = CUPS_CSPACE_RGB;
  header.cupsBitsPerColor = 8;
  header.cupsBitsPerPixel = 24;
  header.cupsNumColors = 3;
  header.cupsBytesPerLine = page.cupsWidth * 3;
  header.cupsCompression = 0;
  header.NumCopies = copies;
  header.Collate = copies > 1 ? CUPS_TRUE : CUPS_FALSE;
  return header;
}

void toRgb(const cups_page_header2_t& page, std::span<const uint8_t> line,
           std::span<uint8_t> rgb) noexcept {
  if (isRgb(page)) {
    const size_t there = std::min(line.size(), rgb.size());
    std::copy_n(line.begin(), there, rgb.begin());
    std::fill(rgb.begin() + static_cast<std::ptrdiff_t>(there), rgb.end(), kWhite);
    return;
  }
  const bool bits = page.cupsBitsPerPixel == 1;
  const size_t there = bits ? line.size() * 8 : line.size();
  for (size_t x = 0; x < rgb.size() / 3; ++x) {
    uint8_t grey = kWhite;
    if (x < there) grey = isGrey(page) ? line[x] : inkGrey(line, x, bits);
    std::fill_n(rgb.begin() + static_cast<std::ptrdiff_t>(x * 3), 3, grey);
  }
}

}  // namespace velka::app
