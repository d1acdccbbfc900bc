// What this model takes for white without looking at it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "orlo/RandomBitmaps.h"
#include "reference/ReferenceHalftone.h"

namespace velka::orlotest {
namespace {

// The commands of a page whose last `white` rows hold what `page` has there and are said
// to be white.
Bytes commandsOf(const Bitmap& page, uint32_t white, const _COLORCFG_ORLO& config, int dpi,
                 int feedMode) {
  COrloProcesser processor;
  processor.SetColorCFG(config);
  processor.SetWhiteRows(white);
  unsigned char* output = nullptr;
  unsigned int length = 0;
  processor.GetOrloPrintCmd(page.bytes.data(), page.size(), page.width, page.height, &output, 0,
                            &length, nullptr, dpi, dpi, feedMode);
  Bytes commands =
      output == nullptr ? Bytes{} : Bytes(output, output + static_cast<size_t>(length));
  std::free(output);
  return commands;
}

TEST(WhiteRows, RowsThatNoLineCameForCountAsWhiteWhateverTheyHold) {
  std::mt19937 random(32);
  for (int round = 0; round < 400; ++round) {
    SCOPED_TRACE(round);
    Bitmap page = randomBitmap(random);
    _COLORCFG_ORLO config = randomConfig(random);
    config.SplitBlackRed = static_cast<uint16_t>(round % 2);
    const auto white =
        std::uniform_int_distribution<uint32_t>(0, static_cast<uint32_t>(page.height) + 3)(random);
    const int dpi = round % 3 == 0 ? 180 : 360;
    const int feedMode = 1 + round / 2 % 2;
    const Bytes got = commandsOf(page, white, config, dpi, feedMode);
    const size_t rows = std::min(white, static_cast<uint32_t>(page.height));
    std::fill(page.bytes.end() - static_cast<ptrdiff_t>(rows * page.stride), page.bytes.end(),
              uint8_t{255});
    ASSERT_EQ(got, commandsOf(page, 0, config, dpi, feedMode));
  }
}

// So planes need not be filled or halftoned there. At the threshold of 128 the errors
// that reach a white pixel take no more than 126 from it, however they add up.
TEST(WhiteRows, BelowTheLastInkNoModePutsADot) {
  std::mt19937 random(33);
  for (int round = 0; round < 3000; ++round) {
    const auto width = 1 + random() % 60;
    const auto inked = 1 + random() % 20;
    const auto white = 1 + random() % 40;
    // The darkest that prints no dot leaves the largest error of that sign.
    const bool darkest = round % 3 == 0;
    std::vector<uint8_t> plane(width * (inked + white), 255);
    for (size_t i = 0; i < width * inked; ++i)
      plane[i] = darkest ? 129 : static_cast<uint8_t>(random() % 4 == 0 ? 255 : random());
    const auto dots = reference::dither(static_cast<int>(random() % 8), plane, inked + white, width,
                                        width, 0, 128);
    ASSERT_EQ(std::count(dots.begin() + static_cast<ptrdiff_t>(width * inked), dots.end(), 0), 0)
        << round;
  }
}

}  // namespace
}  // namespace velka::orlotest
