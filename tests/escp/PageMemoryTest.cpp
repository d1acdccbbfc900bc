// Pages for which memory runs out: whole or not at all, and never without a word.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "escp/RenderOutcome.h"

namespace velka::testing {
namespace {

constexpr size_t kStartBytes = 7;

// Two bands of black and one of red at 360 dpi, white between them.
reference::SourceBitmap twoBands() {
  reference::SourceBitmap page;
  page.height = 200;
  const size_t stride = reference::paddedStride(30, 24);
  page.bytes.assign(stride * 200, 0xFF);
  const auto paint = [&](size_t row, size_t column, Bytes colour) {
    std::copy(colour.begin(), colour.end(),
              page.bytes.begin() + static_cast<ptrdiff_t>(row * stride + column * 3));
  };
  for (size_t row = 10; row < 14; ++row) paint(row, row, {0, 0, 0});
  for (size_t row = 120; row < 130; ++row) paint(row, row - 110, {0, 0, 0});
  for (size_t row = 125; row < 135; ++row) paint(row, row - 120, {0, 0, 255});
  return page;
}

// Renders the page with `passed` allocations that are served before one is not.
Outcome render(const tagOEMCFG& options, bool collate, size_t passed) {
  Job job(30, 200, 360, 360);
  job.options = options;
  job.mode.dmCollate = collate ? 1 : 0;
  job.setPage(twoBands(), 1);
  return renderWith(job, passed);
}

bool startsWith(const Bytes& all, const Bytes& part) {
  return part.size() <= all.size() && std::equal(part.begin(), part.end(), all.begin());
}

class PageMemory : public ::testing::Test {
 protected:
  // One record is in the pool from then on: a log line takes no memory.
  void SetUp() override { StartLog4z(); }

  // Every allocation of a page fails once. `whole` are the streams that may come out.
  static void expectWholeOrNothing(const tagOEMCFG& options, bool collate,
                                   const std::vector<Bytes>& whole) {
    testing::expectWholeOrNothing([&](size_t passed) { return render(options, collate, passed); },
                                  whole);
  }

  // Likewise for pages of which some may be out already: what comes is the beginning, and
  // `look` sees it.
  template <typename Look>
  static void expectBeginnings(const tagOEMCFG& options, const Look& look) {
    const Outcome full = render(options, false, FailingMemory::kNone);
    for (size_t passed = 0; passed < full.asked; ++passed) {
      SCOPED_TRACE(passed);
      const Outcome less = render(options, false, passed);
      if (less.output == full.output) continue;
      EXPECT_FALSE(less.printed);
      EXPECT_TRUE(startsWith(full.output, less.output));
      look(less);
    }
  }
};

TEST_F(PageMemory, APageThatLacksSomeIsNotPrintedAndTheLogSaysSo) {
  tagOEMCFG options = reference::defaultOptions();
  options.sEjectMode = 1;
  const Bytes full = render(options, false, FailingMemory::kNone).output;
  expectWholeOrNothing(options, false, {startOf(full)});
}

TEST_F(PageMemory, AMovedPageIsNoDifferent) {
  tagOEMCFG options = reference::defaultOptions();
  options.sHrzOffset = 20;
  const Bytes full = render(options, false, FailingMemory::kNone).output;
  expectWholeOrNothing(options, false, {startOf(full)});
}

TEST_F(PageMemory, CopiesAreLostWithoutThePageButNeverHalfOfOne) {
  tagOEMCFG options = reference::defaultOptions();
  const Bytes once = render(options, false, FailingMemory::kNone).output;
  options.sCopies = 3;
  expectWholeOrNothing(options, false, {startOf(once), once});
}

TEST_F(PageMemory, CollatedCopiesToo) {
  tagOEMCFG options = reference::defaultOptions();
  options.sCopies = 3;
  const Bytes once = render(options, true, FailingMemory::kNone).output;
  expectWholeOrNothing(options, true, {startOf(once)});
}

// An upright page is more than none, but somebody asked for another.
TEST_F(PageMemory, APageThatIsNotTurnedIsTold) {
  tagOEMCFG options = reference::defaultOptions();
  const Bytes upright = render(options, false, FailingMemory::kNone).output;
  options.sRotation = 1;
  const Outcome full = render(options, false, FailingMemory::kNone);
  ASSERT_EQ(full.said, "");
  ASSERT_NE(full.output, upright);
  size_t unturned = 0;
  for (size_t passed = 0; passed < full.asked; ++passed) {
    SCOPED_TRACE(passed);
    const Outcome less = render(options, false, passed);
    if (less.output == full.output) continue;
    if (!less.printed) {
      EXPECT_EQ(less.output, startOf(full.output));
      EXPECT_TRUE(less.said.starts_with("page 1 is not printed: ")) << less.said;
      continue;
    }
    ++unturned;
    EXPECT_EQ(less.output, upright);
    EXPECT_EQ(less.said, "page 1 is printed unturned: no memory for its turned bitmap");
  }
  EXPECT_EQ(unturned, 1U);
}

// What is missing of one half must not come out as a page of the other.
TEST_F(PageMemory, CopiesOfASplitPageEndWhereMemoryDoes) {
  tagOEMCFG options = reference::defaultOptions();
  options.SplitBlackRed = 1;
  options.sCopies = 3;
  expectBeginnings(options, [](const Outcome& less) { EXPECT_NE(less.said, ""); });
}

TEST_F(PageMemory, OfASplitPageTheLogSaysHowFarItCame) {
  tagOEMCFG options = reference::defaultOptions();
  options.SplitBlackRed = 1;
  size_t none = 0;
  size_t half = 0;
  expectBeginnings(options, [&](const Outcome& less) {
    const bool started = less.output.size() > kStartBytes;
    EXPECT_EQ(less.said.starts_with("page 1 is not printed to its end: "), started) << less.said;
    EXPECT_EQ(less.said.starts_with("page 1 is not printed: "), !started) << less.said;
    ++(started ? half : none);
  });
  EXPECT_GT(none, 0U);
  EXPECT_GT(half, 0U);
}

TEST_F(PageMemory, WithoutAGeneratorTheLogSaysSoForEachPage) {
  Job job(30, 200, 360, 360);
  delete job.pdev.pEscpSml;
  job.pdev.pEscpSml = nullptr;
  job.setPage(twoBands(), 4);
  const Capture capture(STDOUT_FILENO);
  EXPECT_FALSE(RenderEscpData(&job.devobj));
  EXPECT_EQ(capture.bytes(), Bytes{});
  EXPECT_EQ(saidOfThePage(), "page 4 is not printed: no memory for the command generator");
}

// The rectangle tree of a page among them, and what is in it.
TEST_F(PageMemory, NoObjectOutlivesItsPage) {
  const Capture capture(STDOUT_FILENO);
  const FailingMemory memory;
  Job job(30, 200, 360, 360);
  ASSERT_EQ(memory.objects(), 1) << "the generator";
  for (uint32_t number = 1; number <= 3; ++number) {
    job.setPage(twoBands(), number);
    EXPECT_EQ(StartPageOemPDEV(&job.devobj), 1);
    EXPECT_EQ(memory.objects(), 1);
  }
  // A page that is still pending at the end of the document.
  job.setPage(twoBands(), 4);
  EndDocOemPDEV(&job.devobj);
  EXPECT_EQ(memory.objects(), 0);
}

TEST_F(PageMemory, ATreeThatAPageFindsGoesAsWell) {
  const Capture capture(STDOUT_FILENO);
  const FailingMemory memory;
  Job job(30, 200, 360, 360);
  job.setPage(twoBands(), 1);
  ASSERT_TRUE(RenderEscpData(&job.devobj));
  ASSERT_GT(memory.objects(), 1);
  job.setPage(twoBands(), 2);
  EXPECT_EQ(StartPageOemPDEV(&job.devobj), 1);
  EXPECT_EQ(memory.objects(), 1);
}

// What prints nothing for other reasons is as silent as ever.
TEST_F(PageMemory, WhatPrintsNothingForOtherReasonsIsNotTold) {
  for (const auto& [xdpi, white] : {std::pair{75U, false}, std::pair{360U, true}}) {
    Job job(30, 200, xdpi, 180);
    reference::SourceBitmap page = twoBands();
    if (white) std::fill(page.bytes.begin(), page.bytes.end(), uint8_t{0xFF});
    job.setPage(page, 1);
    const Capture capture(STDOUT_FILENO);
    EXPECT_FALSE(RenderEscpData(&job.devobj));
    EXPECT_EQ(saidOfThePage(), "");
  }
}

}  // namespace
}  // namespace velka::testing
