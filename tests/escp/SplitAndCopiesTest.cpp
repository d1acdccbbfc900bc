// Pages whose inks are printed apart, and copies of pages, by hand.
#include <gtest/gtest.h>
#include <unistd.h>

#include "escp/EncodedPage.h"
#include "reference/ExpectedStream.h"
#include "support/Capture.h"

namespace velka::testing {
namespace {

using reference::ExpectedStream;

TEST(SplitPages, PrintBlackThenGoBackForRed) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(30).band(60).band(90).black(0).black(90).red(65);
  const Bytes got = page.encode();
  EXPECT_EQ(got, ExpectedStream()
                     .toX(0)
                     .add(blockOf(0))
                     .unit(10)
                     .down(180)
                     .toX(0)
                     .add(blockOf(0))
                     .unit(10)
                     .down(-60)  // from row 90 back to the band at 60
                     .unit(10)   // the first red block: no distance is left
                     .unit(10)
                     .down(-2)  // red over black
                     .toX(0)
                     .add(blockOf(1))
                     .formFeed()
                     .bytes());
  // The bands above the first red row are gone from the page.
  EXPECT_EQ(page.job.pdev.pRectTree->count, 2U);
}

TEST(SplitPages, ABandWhoseSuccessorStartsAtTheRedRowIsKept) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(60).black(0).red(60);
  page.encode();
  EXPECT_EQ(page.job.pdev.pRectTree->count, 2U);
  EXPECT_EQ(+page.job.pdev.lYCorrection, 0);
}

TEST(SplitPages, WithoutBlackThePaperMovesForwardToTheRed) {
  EncodedPage page(120);
  page.job.options.SplitBlackRed = 1;
  page.band(0).band(60).red(70);
  EXPECT_EQ(page.encode(),
            ExpectedStream().unit(10).down(120).unit(10).toX(0).add(blockOf(1)).formFeed().bytes());
}

TEST(SplitPages, WithoutRedTheStepBackIsStillMade) {
  EncodedPage page(60);
  page.job.options.SplitBlackRed = 1;
  page.job.options.sEjectMode = 0;
  page.band(30).black(30);
  EXPECT_EQ(page.encode(), ExpectedStream()
                               .unit(10)
                               .down(60)
                               .toX(0)
                               .add(blockOf(0))
                               .eject('0')
                               .unit(10)  // no distance, but its unit is sent
                               .formFeed()
                               .bytes());
}

// The same page printed three times in a row, with the end of the job.
Bytes twoPageJob(int copies, int collate, Bytes& page1, Bytes& page2) {
  EncodedPage first(24);
  page1 = ExpectedStream().toX(0).add(blockOf(0)).bytes();
  page2 = ExpectedStream().toX(0).add(blockOf(1)).bytes();
  first.job.options.sCopies = static_cast<int16_t>(copies);
  first.job.pdev.devModeOut.dmCollate = static_cast<int16_t>(collate);
  const Capture capture(STDOUT_FILENO);
  first.band(0).black(0);
  first.generator.EncodeAndSend(&first.job.devobj, 0);
  first.generator.m_pBlackBuf[0] = 255;
  first.generator.m_nBlackFlag = 0;
  first.generator.m_nBlackStarted = 0;
  first.red(0);
  first.generator.EncodeAndSend(&first.job.devobj, 0);
  EndDocOemPDEV(&first.job.devobj);
  return capture.bytes();
}

TEST(Copies, AreRepeatedPageByPageWhenNotCollated) {
  Bytes one;
  Bytes two;
  const Bytes got = twoPageJob(3, 0, one, two);
  ExpectedStream expected;
  for (const Bytes* page : {&one, &one, &one, &two, &two, &two}) expected.add(*page).formFeed();
  EXPECT_EQ(got, expected.end().bytes());
}

TEST(Copies, AreRepeatedAtTheEndWhenCollated) {
  Bytes one;
  Bytes two;
  const Bytes got = twoPageJob(3, 1, one, two);
  ExpectedStream expected;
  for (const Bytes* page : {&one, &two, &one, &two, &one, &two}) expected.add(*page).formFeed();
  EXPECT_EQ(got, expected.end().bytes());
}

TEST(Copies, OneOrFewerAreOne) {
  for (const int copies : {1, 0, -4}) {
    Bytes one;
    Bytes two;
    const Bytes got = twoPageJob(copies, 0, one, two);
    EXPECT_EQ(got, ExpectedStream().add(one).formFeed().add(two).formFeed().end().bytes());
  }
}

TEST(Copies, OfASplitPageHoldBothHalves) {
  EncodedPage page(24);
  page.job.options.SplitBlackRed = 1;
  page.job.options.sCopies = 2;
  page.band(0).black(0).red(0);
  const Bytes once = ExpectedStream()
                         .toX(0)
                         .add(blockOf(0))
                         .unit(10)
                         .unit(10)
                         .down(-2)
                         .toX(0)
                         .add(blockOf(1))
                         .formFeed()
                         .bytes();
  EXPECT_EQ(page.encode(), ExpectedStream().add(once).add(once).bytes());
}

}  // namespace
}  // namespace velka::testing
