// Forms: fed for every page, as long as the page, ejected as the options say.
#include <gtest/gtest.h>

#include <algorithm>

#include "exact/Job.h"
#include "jobs/JobFixture.h"

namespace velka::exacttest {
namespace {

using testing::inkedPage;
using testing::rgbHeader;
using testing::whitePage;

Job standardJob(std::vector<RasterPage> pages) {
  Job job;
  job.pages = std::move(pages);
  return job;
}

TEST(ExactForm, ABlankPageFeedsItsForm) {
  const auto header = rgbHeader(60, 180);
  const Job job = standardJob({inkedPage(header, 1), whitePage(header), inkedPage(header, 2)});
  EXPECT_EQ(printOut(print(job, true), Pins::Standard).pages.size(), 3U);
  EXPECT_EQ(printOut(print(job, false), Pins::Standard).pages.size(), 2U);
  const PrintedJob blank = printOut(print(standardJob({whitePage(header)}), true), Pins::Standard);
  ASSERT_EQ(blank.pages.size(), 1U);
  EXPECT_TRUE(blank.pages[0].struck.empty());
}

TEST(ExactForm, IsAsLongAsThePageWhateverItsOffset) {
  const auto header = rgbHeader(60, 1800);
  for (const int direction : {0, 1}) {
    Job job = standardJob({inkedPage(header, 1), inkedPage(header, 2), inkedPage(header, 3)});
    job.choose("VerticalOffset", direction);
    job.choose("VerticalOffsetValue", 20);
    const PrintedJob exact = printOut(print(job, true), Pins::Standard);
    ASSERT_EQ(exact.pages.size(), 3U);
    for (const PrintedPage& page : exact.pages) EXPECT_EQ(page.formLines, 60);
    const PrintedJob original = printOut(print(job, false), Pins::Standard);
    EXPECT_NE(original.pages.front().formLines, original.pages.back().formLines);
  }
}

TEST(ExactForm, OfALaterPageIsThatPagesOwn) {
  const Job job = standardJob({inkedPage(rgbHeader(60, 360), 1), inkedPage(rgbHeader(60, 720), 2)});
  const PrintedJob exact = printOut(print(job, true), Pins::Standard);
  ASSERT_EQ(exact.pages.size(), 2U);
  EXPECT_EQ(exact.pages[0].formLines, 12);
  EXPECT_EQ(exact.pages[1].formLines, 24);
}

TEST(ExactForm, OfCollatedCopiesIsThatOfTheirPages) {
  auto first = rgbHeader(60, 360);
  first.NumCopies = 3;
  first.Collate = CUPS_TRUE;
  auto second = rgbHeader(60, 720);
  const Job job = standardJob({inkedPage(first, 1), inkedPage(second, 2), whitePage(second)});
  const PrintedJob exact = printOut(print(job, true), Pins::Standard);
  ASSERT_EQ(exact.pages.size(), 9U);
  for (size_t i = 0; i < 9; ++i) EXPECT_EQ(exact.pages[i].formLines, i % 3 == 0 ? 12 : 24) << i;
}

TEST(ExactForm, IsEjectedRightBeforeTheFormFeedSplitOrNot) {
  for (const int split : {0, 1}) {
    Job job = standardJob({inkedPage(rgbHeader(60, 200), 1)});
    job.choose("SplitBlackRed", split);
    job.choose("PaperEnd", 1);
    const Bytes stream = print(job, true);
    const Bytes original = print(job, false);
    const auto ejects = [](const Bytes& bytes) {
      const Bytes command = {0x1D, 4, 'T'};
      return std::search(bytes.begin(), bytes.end(), command.begin(), command.end());
    };
    ASSERT_NE(ejects(original), original.end());
    const auto at = ejects(stream);
    ASSERT_NE(at, stream.end());
    EXPECT_EQ(Bytes(at + 4, stream.end()), (Bytes{0x0C, 0x1B, '@'}));
  }
}

TEST(ExactForm, IsNotFedForAPairThatTheHeadDoesNotTake) {
  const Job job = standardJob({inkedPage(rgbHeader(60, 180, 75, 180), 1)});
  EXPECT_EQ(print(job, true), print(job, false));
}

// The log of a job is that of the original, but for one line.
TEST(DotPlacement, IsToldInTheLogOnlyWhereItIsExact) {
  Job job = standardJob({inkedPage(rgbHeader(60, 180), 1)});
  const auto linesOf = [&](bool exact) {
    print(job, exact);
    return testing::logMessages();
  };
  const auto told = [](const std::vector<std::string>& lines) {
    return std::count_if(lines.begin(), lines.end(), [](const std::string& line) {
      return line.find("DotPlacement") != std::string::npos;
    });
  };
  const auto original = linesOf(false);
  const auto exact = linesOf(true);
  EXPECT_EQ(told(original), 0);
  EXPECT_EQ(told(exact), 1);
  EXPECT_EQ(exact.size(), original.size() + 1);
}

TEST(DotPlacement, OfTheOriginalIsTheStreamWithoutTheOption) {
  for (unsigned seed = 2001; seed <= 2012; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    const Job job = randomJob(seed);
    const testing::TempFile ppd(testing::ppdText({job.model, job.choices, false}));
    testing::FilterJob run;
    run.ppd = ppd.path();
    run.input = testing::rasterStream(job.pages);
    EXPECT_EQ(print(job, false), testing::runFilter(testing::kFilter, run).output);
  }
}

}  // namespace
}  // namespace velka::exacttest
