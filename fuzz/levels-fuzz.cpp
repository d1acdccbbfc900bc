// Kernels at every level of this processor against their plain form.
#include <memory>
#include <tuple>

#include "BmpProcessing.h"
#include "CpuLevel.h"
#include "Halftone.h"
#include "Input.h"
#include "RasterLines.h"
#include "Separation.h"

namespace {

using namespace velka;
using namespace velka::fuzz;

template <typename Run>
void requireSame(const Run& run) {
  forceCpuLevel(CpuLevel::Plain);
  const auto plain = run();
  for (int level = 1; level <= static_cast<int>(highestCpuLevel()); ++level) {
    forceCpuLevel(static_cast<CpuLevel>(level));
    require(run() == plain);
  }
}

void halftone(Input& input) {
  const auto mode = input.flag() ? 2 : int{input.byte()};
  const auto factor = input.flag() ? int16_t{0} : input.number<int16_t>();
  const auto threshold = input.flag() ? int16_t{input.byte()} : input.number<int16_t>();
  const auto width = static_cast<unsigned>(1 + input.below(128));
  const auto stride = width + static_cast<unsigned>(input.below(4));
  const auto rows = static_cast<unsigned>(1 + input.below(70));
  const bool inPlace = input.flag();
  const Bytes plane = input.runs(size_t{rows} * stride, 255);
  requireSame([&] {
    Bytes in = plane;
    Bytes out(in.size(), 9);
    dither(mode, in.data(), inPlace ? in.data() : out.data(), rows, width, stride, factor,
           threshold);
    return std::tuple(in, out);
  });
}

tagRGBQUAD colour(Input& input) {
  return {input.byte(), input.byte(), input.byte(), 0};
}

InkTone tone(Input& input) {
  const auto brightness = input.number<int16_t>();
  const auto contrast = input.number<int16_t>();
  return {brightness, contrast, input.number<int16_t>()};
}

void separation(Input& input) {
  const ColourRouting routing = {input.byte() % 5, input.byte() % 4, colour(input), colour(input),
                                 colour(input)};
  const InkTone black = tone(input);
  const auto rules = std::make_unique<InkRules>(routing, black, tone(input));
  const auto width = static_cast<size_t>(input.below(400));
  const Bytes pixels = input.runs(3 * width + static_cast<size_t>(input.below(3)), 255);
  requireSame([&] {
    Bytes ink(width, 77);
    Bytes red(width, 78);
    const RowInk found = separateRow(*rules, pixels, ink.data(), red.data());
    return std::tuple(ink, red, found.black, found.firstRedColumn, found.lastRedColumn,
                      found.firstBlackColumn, found.lastBlackColumn);
  });
}

void line(Input& input) {
  const Bytes row = input.runs(static_cast<size_t>(input.below(500)), 7);
  const auto stored = static_cast<size_t>(input.below(500));
  const auto pixels = static_cast<uint32_t>(input.below(200));
  requireSame([&] {
    Bytes out(stored, 0x77);
    storeLine(row, out, pixels);
    return out;
  });
}

void turn(Input& input) {
  const int64_t width = 1 + input.below(130);
  const int64_t height = 1 + input.below(130);
  const int rotation = input.byte() % 5;
  Bytes page = input.runs(static_cast<size_t>((width * 3 + 3) / 4 * 4 * height), 255);
  requireSame([&] {
    unsigned char* turned = nullptr;
    int64_t size = 0;
    int64_t turnedWidth = 0;
    int64_t turnedHeight = 0;
    require(CBmpProcessing().RotateImg(page.data(), width, height, &turned, &size, &turnedWidth,
                                       &turnedHeight, 24, rotation));
    Bytes bytes(turned, turned + size);
    std::free(turned);
    return bytes;
  });
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  constexpr void (*kKernels[])(Input&) = {halftone, separation, line, turn};
  kKernels[input.byte() % 4](input);
  return 0;
}
