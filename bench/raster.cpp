// Rasters to look at a profile with:
//   velka-bench-raster KIND XDPI YDPI PAGES FILE     A4 pages, drawn
//   velka-bench-raster --repeat RASTER PAGES FILE    the first page of another raster
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "RasterFile.h"

namespace {

unsigned number(const char* text) noexcept {
  return static_cast<unsigned>(std::atoi(text));
}

}  // namespace

int main(int argc, char* argv[]) {
  using namespace velka::bench;
  constexpr int kRepeated = 5;
  constexpr int kDrawn = 6;
  if (argc == kRepeated && std::string_view(argv[1]) == "--repeat")
    return repeatRaster(argv[2], argv[4], number(argv[3])) ? 0 : 1;
  const auto kind = argc == kDrawn ? kindOf(argv[1]) : std::nullopt;
  if (kind && number(argv[2]) > 0 && number(argv[3]) > 0) {
    const Format format = a4(number(argv[2]), number(argv[3]));
    return writeRaster(argv[5], *kind, format, number(argv[4])) ? 0 : 1;
  }
  std::fputs(
      "usage: velka-bench-raster text|receipt|photo|camera|white XDPI YDPI PAGES FILE\n"
      "       velka-bench-raster --repeat RASTER PAGES FILE\n",
      stderr);
  return 2;
}
