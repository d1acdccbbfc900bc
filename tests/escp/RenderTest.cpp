// Whole pages through the renderer, against the literal reference.
#include <gtest/gtest.h>
#include <unistd.h>

#include <random>

#include "escp/PageFixture.h"
#include "support/Capture.h"
#include "support/StreamText.h"
#include "support/Sweep.h"

namespace velka::testing {
namespace {

struct Pair {
  uint32_t xdpi;
  uint32_t ydpi;
};

constexpr Pair kPairs[] = {{60, 180},  {90, 180},  {120, 180}, {180, 180}, {360, 180},
                           {360, 360}, {60, 60},   {80, 60},   {90, 60},   {120, 60},
                           {720, 360}, {720, 720}, {75, 180},  {180, 90}};

// A page of runs of colour between blank stretches; `bytes` rows padded to four.
reference::SourceBitmap randomPage(std::mt19937& random, uint32_t width, uint32_t height) {
  reference::SourceBitmap page;
  page.height = static_cast<int32_t>(height);
  const size_t stride = reference::paddedStride(width, 24);
  page.bytes.assign(stride * height, 0xFF);
  const bool noise = random() % 4 == 0;
  for (uint32_t row = 0; row < height; ++row) {
    if (!noise && random() % 3 == 0) row += static_cast<uint32_t>(random() % 40);
    if (row >= height) break;
    uint32_t x = 0;
    while (x < width) {
      uint8_t colour[3] = {};
      switch (random() % 6) {
        case 0:
          break;
        case 1:
          colour[2] = 255;
          break;
        case 2:
          colour[0] = colour[1] = colour[2] = static_cast<uint8_t>(random());
          break;
        case 3:
          for (uint8_t& c : colour) c = static_cast<uint8_t>(random());
          break;
        default:
          colour[0] = colour[1] = colour[2] = 255;
      }
      const uint32_t end =
          std::min<uint32_t>(width, x + 1 + static_cast<uint32_t>(random() % (noise ? 2 : 30)));
      for (; x < end; ++x) std::memcpy(&page.bytes[row * stride + size_t{x} * 3], colour, 3);
    }
  }
  return page;
}

template <typename T, size_t N>
T pick(std::mt19937& random, const T (&values)[N]) {
  return values[random() % N];
}

tagOEMCFG randomOptions(std::mt19937& random) {
  tagOEMCFG o = reference::defaultOptions();
  const auto sometimes = [&](unsigned oneIn) { return random() % oneIn == 0; };
  if (sometimes(3)) o.OutputColorType = pick<int16_t>(random, {0, 1, 2, 3, 4});
  if (sometimes(3)) o.ColorRangeUseFor = pick<int16_t>(random, {0, 1, 2, 3});
  if (sometimes(3)) o.minColorOffset.rgbRed = static_cast<uint8_t>(random());
  if (sometimes(4)) o.maxColorOffset.rgbGreen = static_cast<uint8_t>(random());
  if (sometimes(3)) o.SplitBlackRed = 1;
  if (sometimes(3)) o.sRotation = pick<int32_t>(random, {1, 2, 3, 4, -1});
  if (sometimes(3)) {
    o.sHrzOffset = pick<int32_t>(random, {10, 50, 3, 700, -20});
    o.sHrzDir = pick<int32_t>(random, {0, 1, 2});
    o.sVtcOffset = pick<int32_t>(random, {0, 7, 100, 2000});
    o.sVtcDir = pick<int32_t>(random, {0, 1, 5});
  }
  if (sometimes(3)) o.sDitherBlack = pick<int16_t>(random, {0, 1, 3, 4, 5, 6});
  if (sometimes(3)) o.sDitherRed = pick<int16_t>(random, {0, 1, 3, 4, 5, 6});
  if (sometimes(3)) o.BrightnessBlack = static_cast<int16_t>(random() % 401 - 200);
  if (sometimes(3)) o.ContrastRed = static_cast<int16_t>(random() % 401 - 200);
  if (sometimes(4)) o.LevelsBlack = pick<int16_t>(random, {0, 100, 300, -50});
  if (sometimes(4)) o.sDotErrorFactor = pick<int16_t>(random, {5, 10, -3});
  if (sometimes(4)) o.sDiffusionThreshold = pick<int16_t>(random, {-1, 0, 90, 256});
  if (sometimes(3)) o.sEjectMode = static_cast<int16_t>(random() % 7 - 1);
  if (sometimes(4)) o.sHeadPins = pick<int16_t>(random, {8, 48, 72, 5});
  if (sometimes(4)) o.sCopies = 3;
  return o;
}

// Makes the last `rows` rows white.
void whiten(reference::SourceBitmap& page, uint32_t rows) {
  const size_t white = page.bytes.size() / static_cast<size_t>(page.height) * rows;
  std::fill(page.bytes.end() - static_cast<ptrdiff_t>(white), page.bytes.end(), uint8_t{0xFF});
}

// Renders `pages` of one job both ways and compares streams and results. Where lines are
// missing, the renderer is told so instead of being given white ones.
void expectSameJob(unsigned seed, bool linesMissing) {
  std::mt19937 random(seed);
  const Pair pair = kPairs[random() % std::size(kPairs)];
  const auto width = static_cast<uint32_t>(1 + random() % 150);
  const auto height = static_cast<uint32_t>(1 + random() % 200);
  Job job(width, height, pair.xdpi, pair.ydpi);
  job.options = randomOptions(random);
  if (random() % 8 == 0) job.mode.dmOrientation = 2;
  if (random() % 2 == 0) job.mode.dmCollate = 1;
  reference::DeviceState device = deviceState(job);
  reference::GeneratorState generator;
  if (random() % 8 == 0) job.pdev.lInitialYOffset = static_cast<int32_t>(random() % 30);
  generator.initialYOffset = job.pdev.lInitialYOffset;
  const Capture capture(STDOUT_FILENO);
  Bytes expected;
  for (uint32_t number = 1; number <= 3; ++number) {
    // The second page has another height and is laid out for another width.
    auto page = number == 2 ? randomPage(random, width + 5, height / 2 + 1)
                            : randomPage(random, width, height);
    const auto rows = static_cast<uint32_t>(page.height);
    const auto missing = linesMissing ? static_cast<uint32_t>(random() % (rows + 1)) : 0U;
    whiten(page, missing);
    job.setPage(page, number, missing);
    const bool result = RenderEscpData(&job.devobj);
    EXPECT_EQ(result, reference::renderPage(page, job.options, number, device, generator, expected))
        << "seed " << seed << " page " << number;
    StartPageOemPDEV(&job.devobj);
  }
  EndDocOemPDEV(&job.devobj);
  reference::sendEndOfJob(job.options, generator, expected);
  const Bytes got = capture.bytes();
  ASSERT_TRUE(got == expected) << "seed " << seed << " " << pair.xdpi << "x" << pair.ydpi << " "
                               << width << "x" << height << "\n"
                               << differenceOf(got, expected);
}

constexpr unsigned kJobs = amount(1500U, 300U, 60U);

TEST(Rendering, EqualsTheLiteralReferenceOnRandomJobs) {
  for (unsigned seed = 1; seed <= kJobs && !HasFatalFailure(); ++seed) expectSameJob(seed, false);
}

TEST(Rendering, RowsThatNoLineCameForCountAsWhiteWhateverTheyHold) {
  for (unsigned seed = 1; seed <= kJobs && !HasFatalFailure(); ++seed) expectSameJob(seed, true);
}

}  // namespace
}  // namespace velka::testing
