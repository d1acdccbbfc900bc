// Exact pages through the renderer: front feed, which no job of a queue reaches, and
// memory that runs out.
#include <gtest/gtest.h>

#include <algorithm>

#include "DotPlacement.h"
#include "escp/RenderOutcome.h"
#include "exact/PlainPrinter.h"
#include "orlo/LiteralPipeline.h"

namespace velka::exacttest {
namespace {

using testing::Bytes;
using testing::FailingMemory;
using testing::Outcome;
using testing::startOf;

constexpr int kWidth = 30;
constexpr int kHeight = 200;
constexpr int kStandardModel = 0;
constexpr int kOrloModel = 1;

// Bars of both inks down the page, and the last row.
reference::SourceBitmap bars() {
  reference::SourceBitmap page;
  page.height = kHeight;
  const size_t stride = reference::paddedStride(kWidth, 24);
  page.bytes.assign(stride * kHeight, 0xFF);
  const auto paint = [&](int row, int column, Bytes colour) {
    std::copy(colour.begin(), colour.end(),
              page.bytes.begin() + static_cast<ptrdiff_t>(row) * static_cast<ptrdiff_t>(stride) +
                  column * ptrdiff_t{3});
  };
  for (int row = 0; row < kHeight; row += 1 + row % 3) paint(row, row % 15, {0, 0, 0});
  for (int row = 0; row < kHeight; row += 1 + row % 5) paint(row, 15 + row % 15, {0, 0, 255});
  paint(kHeight - 1, kWidth - 1, {0, 0, 0});
  return page;
}

// What a page of these options writes, `passed` allocations being served before one is not.
Outcome render(int model, const tagOEMCFG& options, size_t passed = FailingMemory::kNone) {
  testing::Job job(kWidth, kHeight, 180, 180);
  job.options = options;
  job.devobj.nModel = model;
  job.setPage(bars(), 1);
  return testing::renderWith(job, passed);
}

class ExactPage : public ::testing::Test {
 protected:
  // One record is in the pool from then on: a log line takes no memory.
  void SetUp() override {
    StartLog4z();
    setPlacement(DotPlacement::Exact);
  }
  void TearDown() override { setPlacement(DotPlacement::Original); }

  static void expectWholeOrNothing(int model, const tagOEMCFG& options,
                                   const std::vector<Bytes>& less) {
    testing::expectWholeOrNothing([&](size_t passed) { return render(model, options, passed); },
                                  less);
  }
};

Bytes withFormFeed(Bytes bytes) {
  bytes.push_back(0x0C);
  return bytes;
}

TEST_F(ExactPage, ThatLacksMemoryIsNotPrintedAndTheLogSaysSo) {
  for (const int16_t split : {int16_t{0}, int16_t{1}}) {
    tagOEMCFG options = reference::defaultOptions();
    options.SplitBlackRed = split;
    options.sEjectMode = 1;
    expectWholeOrNothing(kStandardModel, options,
                         {startOf(render(kStandardModel, options).output)});
  }
}

TEST_F(ExactPage, LosesItsCopiesWithoutThePageButNeverHalfOfOne) {
  tagOEMCFG options = reference::defaultOptions();
  const Bytes once = render(kStandardModel, options).output;
  options.sCopies = 3;
  expectWholeOrNothing(kStandardModel, options, {startOf(once), once});
}

TEST_F(ExactPage, OfTheOrloModelFeedsItsFormWithoutMemoryToo) {
  tagOEMCFG options = reference::defaultOptions();
  options.sModel = 2;
  const Bytes start = startOf(render(kOrloModel, options).output);
  expectWholeOrNothing(kOrloModel, options, {start, withFormFeed(start)});
}

std::map<Spot, int> dotsOf(const std::vector<uint8_t>& plane, int ink) {
  std::map<Spot, int> dots;
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x)
      if (plane[static_cast<size_t>(y) * kWidth + static_cast<size_t>(x)] == 0)
        dots[{ink, int64_t{y} * 20, int64_t{x} * 20}] = 1;
  return dots;
}

// The head's first rows of red lie below its first 28 rows of black.
TEST_F(ExactPage, InFrontFeedHoldsAllThatTheHeadReaches) {
  tagOEMCFG options = reference::defaultOptions();
  options.sDitherBlack = options.sDitherRed = 1;
  for (const int16_t split : {int16_t{0}, int16_t{1}}) {
    options.SplitBlackRed = split;
    options.sModel = 1;
    orlotest::Bitmap bitmap(kWidth, kHeight + 1,
                            reference::paddedStride(kWidth, 24) - size_t{3} * kWidth);
    const Bytes page = bars().bytes;
    std::copy(page.begin(), page.end(), bitmap.bytes.begin());
    _COLORCFG_ORLO config = orlotest::plainConfig();
    config.LevelsBlack = options.LevelsBlack;
    config.LevelsRed = options.LevelsRed;
    const auto planes = orlotest::separateLiterally(bitmap, config, 180, 1);
    std::map<Spot, int> wanted = dotsOf(planes.black.bytes, 0);
    wanted.merge(dotsOf(planes.red.bytes, 1));
    ASSERT_GT(wanted.size(), 100U);
    const PrintedJob paper = printOut(render(kOrloModel, options).output, Pins::OrloFront);
    ASSERT_EQ(paper.pages.size(), 1U);
    EXPECT_EQ(paper.pages[0].struck, wanted);
    EXPECT_LE(paper.pages[0].movesBack, split == 1 ? 1 : 0);
  }
}

}  // namespace
}  // namespace velka::exacttest
