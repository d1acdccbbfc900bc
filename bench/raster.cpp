// velka-bench-raster KIND XDPI YDPI PAGES FILE: an A4 raster to look at a profile with.
#include <cstdio>
#include <cstdlib>

#include "RasterFile.h"

int main(int argc, char* argv[]) {
  constexpr int kArguments = 6;
  const auto kind = argc == kArguments ? velka::bench::kindOf(argv[1]) : std::nullopt;
  const auto number = [&](int at) { return static_cast<unsigned>(std::atoi(argv[at])); };
  if (kind && number(2) > 0 && number(3) > 0)
    return velka::bench::writeRaster(argv[5], *kind, velka::bench::a4(number(2), number(3)),
                                     number(4))
               ? 0
               : 1;
  std::fputs("usage: velka-bench-raster text|receipt|photo|camera|white XDPI YDPI PAGES FILE\n",
             stderr);
  return 2;
}
