// Page sizes that hurt. The streams are compared with the literal encoders', the
// dots on paper with the planes where nothing is dropped.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <climits>
#include <cstdlib>

#include "orlo/LiteralEncoder.h"
#include "orlo/LiteralPipeline.h"
#include "orlo/PrintingHead.h"
#include "support/Sweep.h"

namespace velka::orlotest {
namespace {

template <typename Make>
void expectLiteralEverywhere(Make make) {
  for (const ModeRow& mode : allModes())
    for (const Feed feed : {Feed::Front, Feed::Back})
      for (const bool split : {false, true}) {
        const DotPage page = make(mode);
        SCOPED_TRACE(mode.dpi.vertical * 1000 + mode.dpi.horizontal);
        const Bytes stream = encode(page, feed, split, mode.dpi);
        EXPECT_EQ(stream, encodeLiterally(page, feed, split, mode).commands);
        EXPECT_EQ(printStream(stream, feed).complaint, "");
      }
}

TEST(Sizes, OneColumnWide) {
  expectLiteralEverywhere([](const ModeRow&) {
    DotPage page(1, 200);
    for (int y = 60; y < 190; y += 7) page.putBlack(0, y);
    for (int y = 64; y < 190; y += 11) page.putRed(0, y);
    return page;
  });
}

TEST(Sizes, OneRowHighWithInkAboveTheFirstBand) {
  // Planes put together by hand may hold ink where no head reaches: the head then
  // starts above the page.
  expectLiteralEverywhere([](const ModeRow&) {
    DotPage page(30, 1);
    page.putBlack(2, 0);
    page.putRed(5, 0);
    return page;
  });
}

TEST(Sizes, AllInkInOneColumn) {
  expectLiteralEverywhere([](const ModeRow&) {
    DotPage page(500, 200);
    for (int y = 56; y < 200; ++y) {
      page.putBlack(499, y);
      page.putRed(499, y);
    }
    return page;
  });
}

TEST(Sizes, InkInTheLastRowOnly) {
  for (const bool black : {false, true})
    expectLiteralEverywhere([black](const ModeRow&) {
      DotPage page(40, 150);
      black ? page.putBlack(39, 149) : page.putRed(39, 149);
      return page;
    });
}

TEST(Sizes, InkInTheLastRowPrintsWhenItStartsTheOnlyBand) {
  DotPage page(40, 150);
  page.putBlack(3, 149);
  page.putRed(4, 149);
  for (const Feed feed : {Feed::Front, Feed::Back}) {
    const Paper paper = printStream(encode(page, feed, true, {180, 180}), feed);
    EXPECT_EQ(paper.black, (std::set<Dot>{{149 * 20, 60}}));
    EXPECT_EQ(paper.red, (std::set<Dot>{{149 * 20, 80}}));
  }
}

TEST(Sizes, PagesShorterThanTheHead) {
  for (const int height : {2, 5, 17, 18, 19, 33, 34, 35})
    expectLiteralEverywhere([height](const ModeRow&) {
      DotPage page(12, height);
      for (int y = 0; y < height; ++y) {
        page.putBlack(y % 12, y);
        page.putRed((y + 5) % 12, y);
      }
      return page;
    });
}

TEST(Sizes, GapsOfAHundredAndNinetyAndOneMore) {
  for (const int gap : {189, 190, 191, 192})
    expectLiteralEverywhere([gap](const ModeRow&) {
      DotPage page(700, 120);
      for (const int x : {3, 4 + gap, 5 + 2 * gap}) {
        page.putBlack(x, 70);
        page.putRed(x, 100);
      }
      return page;
    });
}

TEST(Sizes, ARunWiderThanABlockCanCountIsSentAsSeveral) {
  constexpr int kWidth = 70000;
  constexpr size_t kFirst = 65532;  // columns of the first block: 10,922 sixtieths
  DotPage page(kWidth, 4);
  for (int x = 0; x < kWidth; ++x) page.putBlack(x, 0);
  const Bytes dot = {0x80, 0, 0};
  EXPECT_EQ(encode(page, Feed::Front, false, {360, 180}),
            moveX(0) + block(0x28, std::vector<Bytes>(kFirst, dot)) + moveX(10922) +
                block(0x28, std::vector<Bytes>(kWidth - kFirst, dot)));
}

TEST(Sizes, WideRunsKeepEveryDotWhereverTheyAreCut) {
  for (const ModeRow mode : {ModeRow{{360, 180}, 0x28}, ModeRow{{120, 60}, 0x01}})
    for (const Feed feed : {Feed::Front, Feed::Back})
      for (const int from : {0, 3, 64, 65531, 65534}) {
        DotPage page(70000, 20);
        for (int x = from; x < page.width; x += 1 + x % 67) page.putBlack(x, 16);
        const Bytes stream = encode(page, feed, false, mode.dpi);
        EXPECT_EQ(stream, encodeLiterally(page, feed, false, mode).commands);
        const Paper paper = printStream(stream, feed);
        ASSERT_EQ(paper.complaint, "");
        std::set<Dot> expected;
        for (int x = from; x < page.width; x += 1 + x % 67)
          expected.insert({int64_t{16} * kUnitsPerInch / mode.dpi.vertical,
                           int64_t{x} * kUnitsPerInch / mode.dpi.horizontal});
        EXPECT_EQ(paper.black, expected);
      }
}

TEST(Sizes, ABlockFartherRightThanItsPlaceCanSayWraps) {
  DotPage page(70000, 20);
  page.putBlack(65536 + 38, 0);
  EXPECT_EQ(encode(page, Feed::Front, false, {60, 180}),
            moveX(38) + block(0x20, padded({{0x80, 0, 0}}, 11)));
}

TEST(Sizes, AHorizontalResolutionBeyondAllSenseIsSafe) {
  DotPage page(70000, 4);
  for (int x = 0; x < page.width; x += 50) page.putBlack(x, 0);
  for (const int across : {720, 3932160, INT_MAX}) {
    const Bytes stream = encode(page, Feed::Front, false, {across, 100});
    // Each block has the columns that it counts, and nothing is left over.
    EXPECT_EQ(printStream(stream, Feed::Front).complaint, "") << across;
  }
}

// Every 31st row with black, every 29th with red; shorter where each dot takes a
// sanitizer's time.
constexpr int kTall = testing::amount(100000, 100000, 20000);

DotPage tallPage(bool black, bool red) {
  DotPage page(3, kTall);
  for (int y = 100; black && y < page.height; y += 31) page.putBlack(1, y);
  for (int y = 100; red && y < page.height; y += 29) page.putRed(2, y);
  return page;
}

// Encodes on a thread with a stack of 256 KiB, far less than a call a band needs.
Bytes encodeOnASmallStack(const DotPage& page, Feed feed, bool split, Resolution dpi) {
  struct Job {
    const DotPage& page;
    Feed feed;
    bool split;
    Resolution dpi;
    Bytes stream;
  } job = {page, feed, split, dpi, {}};
  const auto run = [](void* data) -> void* {
    auto& work = *static_cast<Job*>(data);
    work.stream = encode(work.page, work.feed, work.split, work.dpi);
    return nullptr;
  };
  pthread_attr_t attributes;
  EXPECT_EQ(pthread_attr_init(&attributes), 0);
  EXPECT_EQ(pthread_attr_setstacksize(&attributes, size_t{256} * 1024), 0);
  pthread_t thread{};
  EXPECT_EQ(pthread_create(&thread, &attributes, run, &job), 0);
  EXPECT_EQ(pthread_join(thread, nullptr), 0);
  pthread_attr_destroy(&attributes);
  return job.stream;
}

void expectTallPage(bool black, bool red, Feed feed, bool split, Resolution dpi) {
  const Bytes stream = encodeOnASmallStack(tallPage(black, red), feed, split, dpi);
  const Paper paper = printStream(stream, feed);
  ASSERT_EQ(paper.complaint, "");
  // A few dots at either end are dropped, as on any page.
  constexpr size_t kDropped = 8;
  const size_t blackDots = black ? (kTall - 100U + 30) / 31 : 0;
  const size_t redDots = red ? (kTall - 100U + 28) / 29 : 0;
  EXPECT_LE(paper.black.size(), blackDots);
  EXPECT_GE(paper.black.size() + kDropped, blackDots);
  EXPECT_LE(paper.red.size(), redDots);
  EXPECT_GE(paper.red.size() + kDropped, redDots);
}

TEST(Sizes, AHundredThousandRowsPrintOnASmallStack) {
  for (const Feed feed : {Feed::Front, Feed::Back}) {
    expectTallPage(true, true, feed, false, {180, 180});
    expectTallPage(true, false, feed, true, {180, 180});
    expectTallPage(false, true, feed, true, {180, 180});
    expectTallPage(true, true, feed, false, {360, 360});
  }
}

TEST(Sizes, ReverseMovesBeyondOneCommandOverlapAsTheirBuilderMakesThem) {
  // From 39,969 back to 100: more than one move command carries.
  DotPage page(3, 40100);
  page.putBlack(0, 200);
  page.putBlack(0, 40000);
  page.putRed(0, 100);
  const Bytes stream = encode(page, Feed::Back, true, {360, 360});
  COrloProcesser expected;
  expected.MoveToYPosFromCur(100 - (40000 - 32) - 1, 360);
  const Bytes move = commandsOf(expected);
  EXPECT_EQ(move.size(), 6U + 15U);
  EXPECT_NE(std::search(stream.begin(), stream.end(), move.begin(), move.end()), stream.end());
}

TEST(Sizes, ATallBitmapGoesThroughTheWholePipeline) {
  Bitmap page(2, 100000);
  for (int y = 100; y < page.height - 200; y += 50) page.set(0, y, 0, 0, 0);
  COrloProcesser processor;
  processor.SetColorCFG(plainConfig());
  unsigned char* output = nullptr;
  unsigned int length = 0;
  ASSERT_EQ(processor.GetOrloPrintCmd(page.bytes.data(), page.size(), 2, 100000, &output, 0,
                                      &length, nullptr, 360, 360, 2),
            1);
  const Paper paper = printStream({output, length}, Feed::Back);
  EXPECT_EQ(paper.black.size(), 1994U);
  std::free(output);
}

}  // namespace
}  // namespace velka::orlotest
