// Whole pages of the standard model: what the decoder finds on the paper is what the
// planes hold, less what the printer's rules drop and displaced as they say.
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

#include "ModelGuess.h"
#include "decode/ExpectedPaper.h"
#include "decode/RandomPages.h"
#include "escp/PageFixture.h"
#include "support/Capture.h"
#include "support/Sweep.h"

namespace velka::decodetest {
namespace {

using decode::Model;
using testing::Bytes;

// What only this model takes.
void randomiseSheets(std::mt19937& random, tagOEMCFG& options) {
  if (random() % 3 == 0) options.sEjectMode = static_cast<int16_t>(random() % 5);
  if (random() % 4 == 0) options.sCopies = static_cast<int16_t>(2 + random() % 2);
}

// Copies of a page are the same on paper; what follows a page may be a form feed more.
void expectCopies(const std::vector<decode::Page>& pages, const Dots& first, int copies) {
  const auto printed =
      std::ranges::count_if(pages, [](const decode::Page& page) { return !page.blocks.empty(); });
  EXPECT_EQ(printed, copies);
  for (const decode::Page& page : pages) {
    EXPECT_TRUE(page.blocks.empty() || dotsOf(page, Model::Standard) == first);
  }
}

// Only the renderer's output is caught, so that failures are seen.
Bytes render(testing::Job& job, bool& printed) {
  const testing::Capture capture(STDOUT_FILENO);
  printed = RenderEscpData(&job.devobj);
  return capture.bytes();
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
  randomiseSheets(random, job.options);
  SCOPED_TRACE(trace(seed, dpi, job.options));
  reference::DeviceState device = testing::deviceState(job);
  const auto source = patches(random, width, height);
  job.setPage(source, 1);
  bool printed = false;
  const Bytes stream = render(job, printed);
  const reference::OutputPage out = reference::layOutPage(source, job.options, device);
  const reference::Separation planes =
      reference::separatePage(out.image, out.printQuality, out.yResolution, job.options);
  EXPECT_EQ(printed, planes.blackFlag || planes.redFlag);
  EXPECT_EQ(decode::guessModel(stream).model, Model::Standard);
  const auto pages = pagesOf(stream, Model::Standard);
  EXPECT_EQ(pages.empty(), !printed);
  if (pages.empty()) return 0;
  const Dots expected = expectedPaper(
      planes, {static_cast<int>(dpi.x), static_cast<int>(dpi.y), job.options.SplitBlackRed == 1});
  const Dots found = dotsOf(pages[0], Model::Standard);
  EXPECT_TRUE(found[0] == expected[0])
      << "black: " << found[0].size() << " dots, not " << expected[0].size();
  EXPECT_TRUE(found[1] == expected[1])
      << "red: " << found[1].size() << " dots, not " << expected[1].size();
  if (found[0].size() + found[1].size() > 0) expectCopies(pages, found, job.options.sCopies);
  return found[0].size() + found[1].size();
}

TEST(StandardPaper, HoldsTheHalftonedPlanesOfRandomPages) {
  constexpr unsigned kPages = testing::amount(1200U, 200U, 60U);
  size_t dots = 0;
  for (unsigned seed = 1; seed <= kPages && !::testing::Test::HasFailure(); ++seed)
    dots += expectPlanesOnPaper(seed);
  EXPECT_GT(dots, 100U * kPages);
}

}  // namespace
}  // namespace velka::decodetest
