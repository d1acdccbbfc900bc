#include "StagePage.h"

#include <array>
#include <memory>

#include "Halftone.h"
#include "InitalizeOemCfg.h"
#include "RasterLines.h"
#include "Separation.h"

namespace velka::bench {
namespace {

std::vector<uint8_t> halftoned(std::vector<uint8_t> plane, const Format& format) {
  std::vector<uint8_t> dots(plane.size());
  dither(0, plane.data(), dots.data(), format.height, format.width, format.width, 0, 128);
  return dots;
}

StagePage make(Kind kind) {
  StagePage page{a4(360, 360), 0, {}, {}, {}, {}, {}, {}};
  const size_t width = page.format.width;
  const size_t height = page.format.height;
  page.stride = (width * 24 + 31) / 32 * 4;
  page.bitmap.assign(page.stride * height, 255);
  page.black.assign(width * height, 255);
  page.red = page.black;
  const InkRules rules = compileInkRules(defaultOemdev[0]);
  TestPage rows(kind, page.format);
  for (size_t y = 0; y < height; ++y) {
    const auto row = rows.row(static_cast<unsigned>(y));
    page.lines.insert(page.lines.end(), row.begin(), row.end());
    const std::span<uint8_t> stored(page.bitmap.data() + y * page.stride, page.stride);
    storeLine(row, stored, page.format.width);
    static_cast<void>(separateRow(rules, stored.first(3 * width), page.black.data() + y * width,
                                  page.red.data() + y * width));
  }
  page.blackDots = halftoned(page.black, page.format);
  page.redDots = halftoned(page.red, page.format);
  return page;
}

}  // namespace

const StagePage& stagePage(Kind kind) {
  static std::array<std::unique_ptr<StagePage>, std::size(kKinds)> pages;
  auto& page = pages[static_cast<size_t>(kind)];
  if (page == nullptr) page = std::make_unique<StagePage>(make(kind));
  return *page;
}

}  // namespace velka::bench
