// Pages for which the encoders find no memory.
#include <gtest/gtest.h>

#include <cstdlib>

#include "orlo/LiteralPipeline.h"
#include "orlo/PageMaker.h"
#include "support/FailingMemory.h"

namespace velka::orlotest {
namespace {

using ::velka::testing::FailingMemory;

// Both inks in several bands, two passes each.
Bitmap inkedBitmap() {
  Bitmap page(20, 300);
  for (int y = 70; y < 280; y += 3) page.set(y % 20, y, 0, 0, 0);
  for (int y = 75; y < 280; y += 31) page.set(y % 19, y, 0, 0, 255);
  return page;
}

struct Encoded {
  int result = -1;
  Bytes commands;
  PageLoss loss = PageLoss::None;
  size_t asked = 0;
};

// The commands of the page's planes, with `passed` allocations before one fails.
Encoded encodePage(bool split, int feed, size_t passed) {
  COrloProcesser processor;
  DotPage page(20, 300);
  for (int y = 70; y < 280; y += 3) page.putBlack(y % 20, y);
  for (int y = 75; y < 280; y += 31) page.putRed(y % 19, y);
  load(processor, page);
  processor.m_SplitBlackRed = split ? 1 : 0;
  unsigned char* output = nullptr;
  unsigned int length = 0;
  Encoded encoded;
  {
    const FailingMemory memory(passed);
    encoded.result = processor.Encode2EscpSml(&output, 0, &length, 360, 360, feed);
    encoded.asked = memory.asked();
  }
  encoded.commands = commandsOf(processor);
  return encoded;
}

// The same from the bitmap on, as the dispatcher gets it.
Encoded printPage(bool split, int feed, size_t passed) {
  const Bitmap page = inkedBitmap();
  _COLORCFG_ORLO config = plainConfig();
  config.SplitBlackRed = split ? 1 : 0;
  COrloProcesser processor;
  processor.SetColorCFG(config);
  unsigned char* output = nullptr;
  unsigned int length = 0;
  Encoded encoded;
  {
    const FailingMemory memory(passed);
    encoded.result =
        processor.GetOrloPrintCmd(page.bytes.data(), page.size(), page.width, page.height, &output,
                                  0, &length, nullptr, 360, 360, feed);
    encoded.asked = memory.asked();
  }
  if (output != nullptr) encoded.commands.assign(output, output + length);
  encoded.loss = processor.LostForMemory();
  std::free(output);
  return encoded;
}

bool isStartOf(const Bytes& part, const Bytes& all) {
  return part.size() < all.size() && std::equal(part.begin(), part.end(), all.begin());
}

// Whichever append it is: the colour mode that opens a page of back feed, a move, a
// block, the carriage return behind a pass.
TEST(OrloMemory, AnyAppendThatFailsEndsTheEncoderWithZero) {
  for (const bool split : {false, true})
    for (const int feed : {1, 2}) {
      const Encoded full = encodePage(split, feed, FailingMemory::kNone);
      ASSERT_EQ(full.result, 1);
      ASSERT_GT(full.asked, 30U);
      for (size_t passed = 0; passed < full.asked; ++passed) {
        SCOPED_TRACE(passed);
        const Encoded less = encodePage(split, feed, passed);
        EXPECT_EQ(less.result, 0);
        EXPECT_TRUE(isStartOf(less.commands, full.commands));
      }
    }
}

TEST(OrloMemory, APageThatLacksSomeSaysWhatIsLost) {
  for (const bool split : {false, true})
    for (const int feed : {1, 2}) {
      const Encoded full = printPage(split, feed, FailingMemory::kNone);
      ASSERT_EQ(full.result, 1);
      ASSERT_EQ(full.loss, PageLoss::None);
      for (size_t passed = 0; passed < full.asked; ++passed) {
        SCOPED_TRACE(passed);
        const Encoded less = printPage(split, feed, passed);
        EXPECT_TRUE(isStartOf(less.commands, full.commands));
        const bool planes = less.loss == PageLoss::Planes;
        const bool commands = less.loss == PageLoss::Commands;
        EXPECT_EQ(less.result, planes || commands ? 3 : 1);
        EXPECT_EQ(less.loss == PageLoss::Rest, !less.commands.empty());
        EXPECT_NE(less.loss, PageLoss::None);
      }
    }
}

TEST(OrloMemory, WhatPrintsNothingForOtherReasonsLosesNothing) {
  const Bitmap ink = inkedBitmap();
  const Bitmap white(20, 300);
  for (const auto& [page, dpi, feed] :
       {std::tuple{&ink, 75, 1}, std::tuple{&ink, 180, 3}, std::tuple{&white, 180, 1}}) {
    COrloProcesser processor;
    processor.SetColorCFG(plainConfig());
    unsigned char* output = nullptr;
    unsigned int length = 0;
    processor.GetOrloPrintCmd(page->bytes.data(), page->size(), page->width, page->height, &output,
                              0, &length, nullptr, dpi, 180, feed);
    EXPECT_EQ(output, nullptr);
    EXPECT_EQ(processor.LostForMemory(), PageLoss::None);
  }
}

}  // namespace
}  // namespace velka::orlotest
