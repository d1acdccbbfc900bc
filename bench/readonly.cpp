// The yardstick of the whole-job measurements: a program that reads the job's raster
// as the filter does, with the same arguments, and prints nothing.
#include "RasterFile.h"

int main(int argc, char* argv[]) {
  constexpr int kFile = 6;
  return argc > kFile && velka::bench::readRaster(argv[kFile]) > 0 ? 0 : 1;
}
