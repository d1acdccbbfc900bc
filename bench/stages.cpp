// Each stage of a page by itself: A4 at 360 x 360 dpi.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "BandWalk.h"
#include "BlockPacking.h"
#include "CommandBuilders.h"
#include "GrowingBuffer.h"
#include "Halftone.h"
#include "InitalizeOemCfg.h"
#include "PagePlacement.h"
#include "RasterFile.h"
#include "RasterLines.h"
#include "Rotation.h"
#include "Separation.h"
#include "StagePage.h"

namespace velka::bench {
namespace {

void countPixels(benchmark::State& state, const StagePage& page) {
  const double pixels = static_cast<double>(page.format.width) * page.format.height;
  state.counters["pixels"] =
      benchmark::Counter(pixels, benchmark::Counter::kIsIterationInvariantRate);
}

void memoryCopy(benchmark::State& state) {
  const StagePage& page = stagePage(Kind::Text);
  std::vector<uint8_t> copy(page.bitmap.size());
  while (state.KeepRunning()) {
    std::memcpy(copy.data(), page.bitmap.data(), copy.size());
    benchmark::DoNotOptimize(copy.data());
    benchmark::ClobberMemory();
  }
  countPixels(state, page);
}

void readRasterFile(benchmark::State& state) {
  const std::string path = "/tmp/velka-bench-stages-" + std::to_string(getpid()) + ".ras";
  const StagePage& page = stagePage(Kind::Text);
  if (!writeRaster(path, Kind::Text, page.format, 1)) state.SkipWithError("no raster file");
  while (state.KeepRunning()) benchmark::DoNotOptimize(readRaster(path));
  unlink(path.c_str());
  countPixels(state, page);
}

void swapAndStore(benchmark::State& state) {
  const StagePage& page = stagePage(Kind::Photo);
  const size_t lineBytes = size_t{page.format.width} * 3;
  std::vector<uint8_t> bitmap(page.bitmap.size());
  while (state.KeepRunning()) {
    for (size_t y = 0; y < page.format.height; ++y)
      storeLine({page.lines.data() + y * lineBytes, lineBytes},
                {bitmap.data() + y * page.stride, page.stride}, page.format.width);
    benchmark::ClobberMemory();
  }
  countPixels(state, page);
}

void offsetCopy(benchmark::State& state, int32_t dots) {
  const StagePage& page = stagePage(Kind::Text);
  std::vector<uint8_t> source = page.bitmap;
  std::vector<uint8_t> output(page.bitmap.size(), 255);
  const auto stride = static_cast<uint32_t>(page.stride);
  while (state.KeepRunning()) {
    placePage({source, stride}, {output, stride}, static_cast<int32_t>(page.format.height),
              {dots, dots});
    benchmark::ClobberMemory();
  }
  countPixels(state, page);
}

void rotate(benchmark::State& state, int turns) {
  const StagePage& page = stagePage(Kind::Text);
  const bool quarter = turns % 2 != 0;
  const auto from = bitmapShape(page.format.width, page.format.height);
  const auto to = quarter ? bitmapShape(page.format.height, page.format.width) : from;
  std::vector<uint8_t> turned(static_cast<size_t>(to->size));
  while (state.KeepRunning()) {
    rotateBitmap(page.bitmap.data(), *from, turned.data(), *to, turns);
    benchmark::ClobberMemory();
  }
  countPixels(state, page);
}

void separate(benchmark::State& state, Kind kind) {
  const StagePage& page = stagePage(kind);
  const size_t width = page.format.width;
  std::vector<uint8_t> black(width * page.format.height, 255);
  std::vector<uint8_t> red(black);
  while (state.KeepRunning()) {
    const InkRules rules = compileInkRules(defaultOemdev[0]);
    for (size_t y = 0; y < page.format.height; ++y) {
      const std::span<const uint8_t> row(page.bitmap.data() + y * page.stride, page.stride);
      if (isBlankRow(row)) continue;
      const RowInk ink = separateRow(rules, row.first(3 * width), black.data() + y * width,
                                     red.data() + y * width);
      benchmark::DoNotOptimize(&ink);
    }
  }
  countPixels(state, page);
}

void halftone(benchmark::State& state, int mode, Kind kind, short weight, short threshold) {
  const StagePage& page = stagePage(kind);
  std::vector<uint8_t> plane(page.black.size());
  while (state.KeepRunning()) {
    // Dots are made in the plane itself; the copy is a small part of the time.
    std::memcpy(plane.data(), page.black.data(), plane.size());
    dither(mode, plane.data(), plane.data(), page.format.height, page.format.width,
           page.format.width, weight, threshold);
    benchmark::ClobberMemory();
  }
  countPixels(state, page);
}

// All bands of one plane, as the standard model cuts them.
void pack(benchmark::State& state, int bandHeight) {
  const StagePage& page = stagePage(Kind::Text);
  const auto width = static_cast<int32_t>(page.format.width);
  const auto height = static_cast<int32_t>(page.format.height);
  const InkPlane plane = {page.blackDots, width, height};
  const int passes = bandHeight / 24;
  std::vector<uint8_t> columns(size_t{page.format.width} * 3);
  while (state.KeepRunning()) {
    for (int32_t top = 0; top + bandHeight <= height; top += bandHeight)
      for (int pass = 0; pass < passes; ++pass) {
        const _RECTL area = {0, top, width - 1, top + bandHeight - 1};
        const PassRows rows = passRows(area, 3, pass);
        const ColumnRange range = completeColumns(plane, area, rows);
        std::memset(columns.data(), 0, columns.size());
        packColumns(plane, range, rows, 3, columns);
        const BlockExtent extent = trimBlock(
            columns, static_cast<uint32_t>(range.end - range.first), page.format.width, 3, 6);
        benchmark::DoNotOptimize(&extent);
      }
  }
  countPixels(state, page);
}

void orloBands(benchmark::State& state, const HeadLayout& layout) {
  const StagePage& page = stagePage(Kind::Receipt);
  std::vector<uint8_t> black = page.blackDots;
  std::vector<uint8_t> red = page.redDots;
  const auto width = int64_t{page.format.width};
  const auto height = int64_t{page.format.height};
  const auto resolution = headResolution(360, 360);
  while (state.KeepRunning()) {
    unsigned char* bytes = nullptr;
    unsigned int length = 0;
    BandWalk walk(layout, *resolution, {black.data(), width, height, height},
                  {red.data(), width, height, height}, {&bytes, &length, &length});
    if (!walk.prepare() || !walk.print({true, true, true}, -60)) state.SkipWithError("no bands");
    std::free(bytes);
  }
  countPixels(state, page);
}

// A page's commands: 100 blocks with their moves.
void buildCommands(benchmark::State& state) {
  const std::vector<uint8_t> block(6000, 0x55);
  while (state.KeepRunning()) {
    unsigned char* bytes = nullptr;
    unsigned int length = 0;
    unsigned int position = 0;
    const CommandSink sink = {&bytes, &length, &position};
    bool whole = true;
    for (int i = 0; i < 100; ++i)
      whole = whole && sink.moveY(360, 48) && sink.moveToX(6, i) && sink.append(block);
    if (!whole) state.SkipWithError("no memory");
    std::free(bytes);
  }
}

void registerAll() {
  const auto add = [](const std::string& name, auto function) {
    benchmark::RegisterBenchmark(name.c_str(), function)->Unit(benchmark::kMillisecond);
  };
  add("memcpy of the page", memoryCopy);
  add("read", readRasterFile);
  add("swap and store", swapAndStore);
  add("offset copy/none", [](benchmark::State& s) { offsetCopy(s, 0); });
  add("offset copy/20 dots", [](benchmark::State& s) { offsetCopy(s, 20); });
  for (const int turns : {1, 2, 3})
    add("rotate/" + std::to_string(90 * turns), [=](benchmark::State& s) { rotate(s, turns); });
  for (const Kind kind : kKinds)
    add("separate/" + std::string(nameOf(kind)), [=](benchmark::State& s) { separate(s, kind); });
  for (const Kind kind : {Kind::Text, Kind::Photo, Kind::Camera}) {
    const std::string page(nameOf(kind));
    for (const int mode : {1, 3, 4, 5, 6})
      add("screen mode " + std::to_string(mode) + "/" + page,
          [=](benchmark::State& s) { halftone(s, mode, kind, 0, 128); });
    add("error diffusion/" + page, [=](benchmark::State& s) { halftone(s, 2, kind, 0, 128); });
    add("error diffusion, weight 7/" + page,
        [=](benchmark::State& s) { halftone(s, 2, kind, 7, 128); });
  }
  add("pack/180 dpi", [](benchmark::State& s) { pack(s, 24); });
  add("pack/360 dpi", [](benchmark::State& s) { pack(s, 48); });
  add("Orlo bands/front", [](benchmark::State& s) { orloBands(s, kFrontFeedHead); });
  add("Orlo bands/back", [](benchmark::State& s) { orloBands(s, kBackFeedHead); });
  add("commands of 100 blocks", buildCommands);
}

}  // namespace
}  // namespace velka::bench

int main(int argc, char* argv[]) {
  velka::bench::registerAll();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
