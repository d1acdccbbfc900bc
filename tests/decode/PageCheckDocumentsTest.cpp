// Random documents with every dot in its place, and as the original stream has them.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <random>

#include "decode/Dots.h"
#include "decode/ExactPress.h"
#include "decode/Flaws.h"
#include "escp/PageFixture.h"
#include "reference/ReferenceSeparation.h"
#include "support/Capture.h"
#include "support/Sweep.h"

namespace velka::decodetest {
namespace {

using decode::Model;
using Stream = std::vector<uint8_t>;

constexpr HeadMode kModes[] = {{180, 180, 39, 24}, {360, 180, 40, 24}, {360, 360, 40, 24},
                               {60, 180, 32, 24},  {90, 180, 38, 24},  {120, 180, 33, 24},
                               {60, 60, 0, 8},     {80, 60, 4, 8},     {90, 60, 6, 8},
                               {120, 60, 1, 8}};

// Lines of glyphs, boxes, rules and tone in both inks.
DotPlanes document(std::mt19937& random) {
  const auto below = [&](int limit) { return static_cast<int>(random() % unsigned(limit)); };
  DotPlanes page(40 + below(120), 30 + below(500));
  const bool twoInks = random() % 4 != 0;
  const int margin = below(30);
  for (int y = below(60); y < page.height; y += 3 + below(90)) {
    const int ink = twoInks && random() % 3 == 0 ? 1 : 0;
    const int high = 1 + below(random() % 4 == 0 ? 120 : 30);
    const unsigned kind = unsigned(below(4));
    for (int row = y; row < y + high; ++row)
      for (int x = margin; x < page.width; ++x) {
        const bool edge = row == y || row == y + high - 1 || x == margin || x == page.width - 1;
        const bool dot = kind == 0   ? random() % 3 == 0          // tone
                         : kind == 1 ? edge                       // a box
                         : kind == 2 ? (x * 7 + row / 9) % 5 < 2  // glyphs
                                     : x % 11 < 3;                // bars
        // No two rows are alike, so that one in another's place shows.
        if (dot && random() % 10 != 0) page.put(ink, x, row);
      }
    if (random() % 2 == 0) y += high;
  }
  return page;
}

TEST(PageCheck, PagesWhoseEveryDotHasItsPlaceHaveNoFlaws) {
  std::mt19937 random(31);  // NOLINT: the same pages each time
  size_t dots = 0;
  constexpr int kRuns = testing::amount(3000, 1000, 200);
  for (int run = 0; run < kRuns && !::testing::Test::HasFailure(); ++run) {
    const HeadMode& mode = kModes[size_t(run) % std::size(kModes)];
    const DotPlanes planes = document(random);
    const Stream stream = exactJob(planes, mode);
    EXPECT_EQ(saidOf(stream), "") << "run " << run << ", " << mode.xdpi << " x " << mode.ydpi;
    for (const auto& plane : planes.inks)
      dots += static_cast<size_t>(std::count(plane.begin(), plane.end(), 1));
  }
  EXPECT_GT(dots, size_t{kRuns} * 333);
}

reference::SourceBitmap paintedPage(const DotPlanes& planes) {
  reference::SourceBitmap page;
  page.height = planes.height;
  const size_t stride = reference::paddedStride(static_cast<uint32_t>(planes.width), 24);
  page.bytes.assign(stride * static_cast<size_t>(planes.height), 0xFF);
  for (int y = 0; y < planes.height; ++y)
    for (int x = 0; x < planes.width; ++x) {
      uint8_t* pixel = &page.bytes[static_cast<size_t>(y) * stride + static_cast<size_t>(x) * 3];
      if (planes.at(0, x, y)) std::fill_n(pixel, 3, uint8_t{0});
      if (planes.at(1, x, y)) pixel[0] = pixel[1] = 0;
    }
  return page;
}

Stream originalJob(const DotPlanes& planes, const HeadMode& mode) {
  testing::Job job(static_cast<uint32_t>(planes.width), static_cast<uint32_t>(planes.height),
                   static_cast<uint32_t>(mode.xdpi), static_cast<uint32_t>(mode.ydpi));
  job.setPage(paintedPage(planes), 1);
  const testing::Capture capture(STDOUT_FILENO);
  RenderEscpData(&job.devobj);
  return capture.bytes();
}

// Whether every dot that is on the paper belongs there, whatever is missing.
bool isInPlace(const Stream& stream, const DotPlanes& planes, const HeadMode& mode) {
  const auto pages = pagesOf(stream, Model::Standard);
  if (pages.empty()) return true;
  const Dots dots = dotsOf(pages[0], Model::Standard);
  for (int ink = 0; ink < 2; ++ink)
    for (const auto& [y, x] : dots[size_t(ink)]) {
      const auto row = static_cast<int>(y * mode.ydpi / 3600);
      const auto column = static_cast<int>(x * mode.xdpi / 3600);
      if (y < 0 || row >= planes.height || column >= planes.width) return false;
      const bool black = planes.at(0, column, row) && !planes.at(1, column, row);
      if (!(ink == 0 ? black : planes.at(1, column, row))) return false;
    }
  return true;
}

// Of the original stream's pages those in place must not be blamed; of the others as
// many are found as the stream gives away.
TEST(PageCheck, PagesOfTheOriginalStreamAreBlamedOnlyWhereDotsAreDisplaced) {
  std::mt19937 random(32);                     // NOLINT: the same pages each time
  std::map<bool, std::pair<int, int>> blamed;  // by being in place: blamed, all
  constexpr int kRuns = testing::amount(1500, 500, 150);
  for (int run = 0; run < kRuns; ++run) {
    const HeadMode& mode = kModes[size_t(run) % 3];  // whose columns are exact
    const DotPlanes planes = document(random);
    const Stream stream = originalJob(planes, mode);
    auto& [found, all] = blamed[isInPlace(stream, planes, mode)];
    found += flawsOf(stream).any() ? 1 : 0;
    ++all;
  }
  EXPECT_EQ(blamed[true].first, 0) << "of " << blamed[true].second;
  EXPECT_GT(blamed[true].second, kRuns / 15);
  EXPECT_GT(blamed[false].first, blamed[false].second * 2 / 3) << "of " << blamed[false].second;
}

}  // namespace
}  // namespace velka::decodetest
