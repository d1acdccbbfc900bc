// Whole jobs with DotPlacement 1: what the streams strike, by two readers that know
// nothing of the encoders, is what the literal pipeline's planes hold.
#include <gtest/gtest.h>

#include <algorithm>

#include "PageReader.h"
#include "exact/Job.h"
#include "support/Sweep.h"

namespace velka::exacttest {
namespace {

std::vector<Struck> decoded(const Bytes& stream, int model) {
  using namespace velka::decode;
  const Model head = model == kOrlo ? Model::OrloBack : Model::Standard;
  PageReader reader({stream.data(), stream.size()}, head);
  std::vector<Struck> pages;
  while (const auto page = reader.next()) {
    Struck struck;
    for (const Block& block : page->blocks)
      forEachDot(block, head, [&](Ink ink, int64_t x, int64_t y) {
        ++struck[{ink == Ink::Black ? 0 : 1, y, x}];
      });
    pages.push_back(std::move(struck));
  }
  EXPECT_FALSE(reader.fault()) << reader.fault()->what;
  return pages;
}

void expectPaper(const Job& job) {
  const Bytes stream = print(job, true);
  const std::vector<Struck> expected = wanted(job);
  const PrintedJob paper = printOut(stream, job.pins());
  ASSERT_FALSE(paper.fault) << *paper.fault;
  EXPECT_FALSE(paper.rest);
  ASSERT_EQ(paper.pages.size(), expected.size());
  EXPECT_EQ(decoded(stream, job.model), expected);
  const bool split = job.options.SplitBlackRed == 1;
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(paper.pages[i].struck, expected[i]) << "page " << i + 1;
    EXPECT_LE(paper.pages[i].movesBack, split ? 1 : 0) << "page " << i + 1;
  }
}

bool holds(const Struck& struck, const Struck& dots) {
  return std::all_of(dots.begin(), dots.end(),
                     [&](const auto& dot) { return struck.count(dot.first) != 0; });
}

// Compares what pages cost that the original stream prints whole.
void expectNoMore(const Job& job, int& compared) {
  const PrintedJob original = printOut(print(job, false), job.pins());
  const PrintedJob exact = printOut(print(job, true), job.pins());
  const std::vector<Struck> dots = wanted(job);
  ASSERT_EQ(exact.pages.size(), dots.size());
  if (original.pages.size() != dots.size()) return;
  for (size_t i = 0; i < dots.size(); ++i) {
    if (!holds(original.pages[i].struck, dots[i])) continue;
    ++compared;
    EXPECT_LE(exact.pages[i].bytes, original.pages[i].bytes) << "page " << i + 1;
    EXPECT_LE(exact.pages[i].passes, original.pages[i].passes) << "page " << i + 1;
    EXPECT_LE(exact.pages[i].moves, original.pages[i].moves) << "page " << i + 1;
  }
}

TEST(ExactJobs, StrikeEveryDotOfTheLiteralPlanesOnce) {
  constexpr unsigned kJobs = testing::amount(250U, 60U, 20U);
  for (unsigned seed = 1; seed <= kJobs && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    expectPaper(randomJob(seed));
  }
}

// A page with dots of both inks at its ends, in its middle, and here and there.
RasterPage sparsePage(unsigned width, unsigned height, unsigned xdpi, unsigned ydpi) {
  RasterPage page = testing::whitePage(testing::rgbHeader(width, height, xdpi, ydpi));
  const auto paint = [&](size_t row, size_t column, Bytes colour) {
    std::copy(colour.begin(), colour.end(),
              page.lines[row].begin() + static_cast<ptrdiff_t>(column * 3));
  };
  for (const size_t row : {size_t{0}, size_t{height / 2}, size_t{height - 1}})
    for (size_t column = 0; column < width; column += 1 + width / 7)
      paint(row, column, column % 2 == 0 ? Bytes{0, 0, 0} : Bytes{255, 0, 0});
  paint(height - 1, width - 1, {255, 0, 0});
  paint(height / 2, width - 1, {0, 0, 0});
  return page;
}

TEST(ExactJobs, OfHugePagesLoseNothingEither) {
  struct Size {
    unsigned width;
    unsigned height;
    unsigned xdpi;
    unsigned ydpi;
  };
  // Blocks of more columns than they count, moves of more units than one command has.
  const Size sizes[] = {{70000, 40, 180, 180}, {66000, 30, 360, 360}, {30, 12000, 60, 60},
                        {20, 60000, 180, 180}, {9, 100000, 360, 360}, {70000, 20, 80, 60}};
  for (const Size& size : sizes)
    for (const int model : {1, kOrlo})
      for (int split = 0; split < testing::amount(2, 2, 1); ++split) {
        SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height));
        Job job = jobOf(model);
        job.options.SplitBlackRed = static_cast<int16_t>(split);
        job.choose("SplitBlackRed", split);
        job.pages = {sparsePage(size.width, size.height, size.xdpi, size.ydpi)};
        expectPaper(job);
      }
}

TEST(ExactJobs, CostNoMoreThanTheOriginalStreamWhereThatPrintsAll) {
  constexpr unsigned kJobs = testing::amount(100U, 40U, 10U);
  int compared = 0;
  for (unsigned seed = 1001; seed <= 1000 + kJobs && !HasFailure(); ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    expectNoMore(randomJob(seed), compared);
  }
  EXPECT_GE(compared, static_cast<int>(kJobs / 5));
}

}  // namespace
}  // namespace velka::exacttest
