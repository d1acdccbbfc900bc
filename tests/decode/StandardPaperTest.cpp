// Whole pages of the standard model: what the decoder finds on the paper is what the
// planes hold, less what the printer's rules drop and displaced as they say.
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>

#include "ModelGuess.h"
#include "decode/ExpectedPaper.h"
#include "escp/PageFixture.h"
#include "support/Capture.h"

namespace velka::decodetest {
namespace {

using decode::Model;
using testing::Bytes;

struct Dpi {
  uint32_t x;
  uint32_t y;
};
constexpr Dpi kDpis[] = {{60, 180},  {90, 180}, {120, 180}, {180, 180}, {360, 180},
                         {360, 360}, {60, 60},  {80, 60},   {90, 60},   {120, 60}};

// Patches of colour and grey on white.
reference::SourceBitmap patches(std::mt19937& random, uint32_t width, uint32_t height) {
  reference::SourceBitmap page;
  page.height = static_cast<int32_t>(height);
  const size_t stride = reference::paddedStride(width, 24);
  page.bytes.assign(stride * height, 0xFF);
  const auto below = [&](uint32_t limit) { return static_cast<uint32_t>(random() % limit); };
  for (uint32_t patch = below(8); patch > 0; --patch) {
    const uint32_t left = below(width);
    const uint32_t top = below(height);
    const uint32_t right = std::min(width, left + 1 + below(40));
    const uint32_t bottom = std::min(height, top + 1 + below(50));
    uint8_t colour[3] = {};
    if (below(2) == 0) colour[2] = static_cast<uint8_t>(200 + below(56));
    if (below(3) == 0) colour[0] = colour[1] = static_cast<uint8_t>(below(200));
    for (uint32_t y = top; y < bottom; ++y)
      for (uint32_t x = left; x < right; ++x)
        std::memcpy(&page.bytes[y * stride + size_t{x} * 3], colour, 3);
  }
  return page;
}

tagOEMCFG randomOptions(std::mt19937& random) {
  tagOEMCFG options = reference::defaultOptions();
  const auto oneIn = [&](unsigned n) { return random() % n == 0; };
  if (oneIn(4)) options.OutputColorType = static_cast<int16_t>(1 + random() % 2);
  if (oneIn(3)) options.SplitBlackRed = 1;
  if (oneIn(4)) options.sRotation = static_cast<int32_t>(1 + random() % 3);
  if (oneIn(4)) options.sHrzOffset = static_cast<int32_t>(random() % 80);
  if (oneIn(4)) options.sVtcOffset = static_cast<int32_t>(random() % 80);
  if (oneIn(3)) options.sDitherBlack = 1;
  return options;
}

std::string trace(unsigned seed, const Dpi& dpi, const tagOEMCFG& options) {
  return "seed " + std::to_string(seed) + ", " + std::to_string(dpi.x) + " x " +
         std::to_string(dpi.y) + (options.SplitBlackRed != 0 ? ", split" : "");
}

// Dots that lie on paper and ought to, so that no run can pass on white pages alone.
size_t expectPlanesOnPaper(unsigned seed) {
  std::mt19937 random(seed);
  const Dpi dpi = kDpis[random() % std::size(kDpis)];
  const auto width = static_cast<uint32_t>(2 + random() % 150);
  const auto height = static_cast<uint32_t>(1 + random() % 300);
  testing::Job job(width, height, dpi.x, dpi.y);
  job.options = randomOptions(random);
  SCOPED_TRACE(trace(seed, dpi, job.options));
  reference::DeviceState device = testing::deviceState(job);
  const auto source = patches(random, width, height);
  job.setPage(source, 1);
  const testing::Capture capture(STDOUT_FILENO);
  const bool printed = RenderEscpData(&job.devobj);
  const Bytes stream = capture.bytes();
  const reference::OutputPage out = reference::layOutPage(source, job.options, device);
  const reference::Separation planes =
      reference::separatePage(out.image, out.printQuality, out.yResolution, job.options);
  EXPECT_EQ(printed, planes.blackFlag || planes.redFlag);
  EXPECT_EQ(decode::guessModel(stream).model, Model::Standard);
  const auto pages = pagesOf(stream, Model::Standard);
  EXPECT_EQ(pages.size(), printed ? 1U : 0U);
  if (pages.size() != 1) return 0;
  const Dots expected = expectedPaper(
      planes, {static_cast<int>(dpi.x), static_cast<int>(dpi.y), job.options.SplitBlackRed == 1});
  const Dots found = dotsOf(pages[0], Model::Standard);
  EXPECT_TRUE(found[0] == expected[0])
      << "black: " << found[0].size() << " dots, not " << expected[0].size();
  EXPECT_TRUE(found[1] == expected[1])
      << "red: " << found[1].size() << " dots, not " << expected[1].size();
  return found[0].size() + found[1].size();
}

TEST(StandardPaper, HoldsTheHalftonedPlanesOfRandomPages) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  constexpr unsigned kPages = 200;
#else
  constexpr unsigned kPages = 1200;
#endif
  size_t dots = 0;
  for (unsigned seed = 1; seed <= kPages && !::testing::Test::HasFailure(); ++seed)
    dots += expectPlanesOnPaper(seed);
  EXPECT_GT(dots, 100U * kPages);
}

}  // namespace
}  // namespace velka::decodetest
