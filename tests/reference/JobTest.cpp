#include <gtest/gtest.h>

#include "PageReader.h"
#include "StreamStats.h"
#include "reference/ExpectedStream.h"
#include "reference/ReferenceJob.h"
#include "reference/ReferenceOptions.h"

namespace velka::reference {
namespace {

struct Rgb {
  uint8_t red;
  uint8_t green;
  uint8_t blue;
};
constexpr Rgb blackInk{0, 0, 0};
constexpr Rgb redInk{255, 0, 0};

// A white page of four columns; 180 rows are six lines at 180 dpi.
RasterPage whitePage(uint32_t height = 180, uint32_t width = 4, uint32_t dpi = 180) {
  RasterPage page;
  page.header.width = width;
  page.header.height = height;
  page.header.bytesPerLine = 3 * width;
  page.header.xResolution = dpi;
  page.header.yResolution = dpi;
  page.lines.assign(height, Bytes(size_t{3} * width, 255));
  return page;
}

void paint(RasterPage& page, size_t row, size_t column, Rgb colour) {
  page.lines.at(row).at(3 * column) = colour.red;
  page.lines.at(row).at(3 * column + 1) = colour.green;
  page.lines.at(row).at(3 * column + 2) = colour.blue;
}

void paintRow(RasterPage& page, size_t row, Rgb colour) {
  for (size_t column = 0; column < page.header.width; ++column) {
    paint(page, row, column, colour);
  }
}

ExpectedStream rowBlock(int colour, int mode = 39, uint8_t first = 0x80) {
  return ExpectedStream().toX(0).block(colour, mode, 3, columnsOf(3, {first, 0, 0}));
}

TEST(ReferenceRaster, ColoursTurnIntoBlueGreenRedOnWhitePadding) {
  RasterPage page = whitePage(1, 5);
  paint(page, 0, 0, {10, 20, 30});
  const SourceBitmap bitmap = readRaster(page);
  Bytes expected(16, 255);
  expected.at(0) = 30;
  expected.at(1) = 20;
  expected.at(2) = 10;
  EXPECT_EQ(bitmap.bytes, expected);
}

TEST(ReferenceRaster, MissingLinesStayWhite) {
  RasterPage page = whitePage(100);
  for (Bytes& line : page.lines) {
    line.assign(line.size(), 0);
  }
  page.lines.resize(10);
  const SourceBitmap bitmap = readRaster(page);
  EXPECT_EQ(bitmap.height, 100);
  EXPECT_EQ(bitmap.bytes.size(), 1200U);
  EXPECT_EQ(bitmap.bytes.at(119), 0);
  EXPECT_EQ(bitmap.bytes.at(120), 255);
}

TEST(ReferenceRaster, AShortLineEndsThePage) {
  RasterPage page = whitePage(3);
  for (Bytes& line : page.lines) {
    line.assign(line.size(), 0);
  }
  page.lines.at(1).pop_back();
  const SourceBitmap bitmap = readRaster(page);
  EXPECT_EQ(bitmap.bytes.at(11), 0);
  EXPECT_EQ(bitmap.bytes.at(12), 255);
  EXPECT_EQ(bitmap.bytes.at(24), 255);
}

TEST(ReferenceRaster, LongLinesFillThePaddingAndAreCutAtTheRow) {
  RasterPage page = whitePage(2, 5);
  page.header.bytesPerLine = 20;
  page.lines = {Bytes(20, 1), Bytes(20, 2)};
  Bytes expected(16, 1);
  append(expected, Bytes(16, 2));
  EXPECT_EQ(readRaster(page).bytes, expected);
}

TEST(ReferenceRaster, LinesShorterThanTheWidthSwapWholePixelsOnly) {
  RasterPage page = whitePage(1, 4);
  page.header.bytesPerLine = 5;
  page.lines = {{1, 2, 3, 4, 5}};
  Bytes expected = {3, 2, 1, 4, 5};
  append(expected, Bytes(7, 255));
  EXPECT_EQ(readRaster(page).bytes, expected);
}

TEST(ReferenceJob, OnePageFromStartToEnd) {
  RasterPage page = whitePage();
  paintRow(page, 30, blackInk);
  paintRow(page, 60, redInk);
  const Bytes expected = ExpectedStream()
                             .start(6)
                             .unit(10)
                             .down(60)
                             .add(rowBlock(0))
                             .unit(10)
                             .down(60)
                             .add(rowBlock(1))
                             .formFeed()
                             .end()
                             .bytes();
  EXPECT_EQ(runJob(defaultOptions(), {page}), expected);
}

TEST(ReferenceJob, WithoutAPageNothingIsSent) {
  EXPECT_EQ(runJob(defaultOptions(), {}), Bytes{});
}

TEST(ReferenceJob, AWhitePageSendsItsStartAlone) {
  EXPECT_EQ(runJob(defaultOptions(), {whitePage(), whitePage()}),
            ExpectedStream().start(6).start(6).end().bytes());
}

TEST(ReferenceJob, PagesAreNumberedForTheEjectRule) {
  tagOEMCFG options = defaultOptions();
  options.sEjectMode = 2;
  RasterPage page = whitePage();
  paintRow(page, 0, blackInk);
  ExpectedStream expected;
  for (const int p : {0x30, 0x30, 0x31}) {
    expected.start(6).add(rowBlock(0)).eject(p).formFeed();
  }
  EXPECT_EQ(runJob(options, {page, page, page}), expected.end().bytes());
}

TEST(ReferenceJob, TheFirstHeaderSetsCopiesAndResolution) {
  RasterPage first = whitePage();
  paintRow(first, 0, blackInk);
  RasterPage second = first;
  first.header.copies = 65536 + 2;
  first.header.collate = true;
  second.header.copies = 5;
  second.header.xResolution = 60;
  const ExpectedStream body = ExpectedStream().add(rowBlock(0)).formFeed();
  const Bytes expected =
      ExpectedStream().start(6).add(body).start(6).add(body).add(body).add(body).end().bytes();
  EXPECT_EQ(runJob(defaultOptions(), {first, second}), expected);
}

TEST(ReferenceJob, ALaterWiderPageRunsThroughTheFirstWidthsRows) {
  RasterPage second = whitePage(180, 8);
  for (size_t column = 4; column < 8; ++column) {
    paint(second, 0, column, blackInk);
  }
  const Bytes expected =
      ExpectedStream().start(6).start(6).unit(10).down(2).add(rowBlock(0)).formFeed().end().bytes();
  EXPECT_EQ(runJob(defaultOptions(), {whitePage(), second}), expected);
}

TEST(ReferenceJob, ALaterShorterPageKeepsTheFirstPagesSheet) {
  RasterPage second = whitePage(90);
  paintRow(second, 24, blackInk);
  const Bytes expected = ExpectedStream()
                             .start(6)
                             .start(6)
                             .unit(10)
                             .down(48)
                             .add(rowBlock(0))
                             .formFeed()
                             .end()
                             .bytes();
  EXPECT_EQ(runJob(defaultOptions(), {whitePage(), second}), expected);
}

TEST(ReferenceJob, HighResolutionsAreSentAs360) {
  RasterPage page = whitePage(720, 4, 720);
  paintRow(page, 48, blackInk);
  const Bytes expected = ExpectedStream()
                             .start(6)
                             .unit(10)
                             .down(48)
                             .add(rowBlock(0, 40))
                             .unit(10)
                             .down(1)
                             .formFeed()
                             .end()
                             .bytes();
  EXPECT_EQ(runJob(defaultOptions(), {page}), expected);
}

TEST(ReferenceJob, OnlyTheHorizontalResolutionDecidesTheScale) {
  ReferenceJob mixed(defaultOptions());
  RasterPage page = whitePage(8);
  page.header.xResolution = 360;
  page.header.yResolution = 720;
  mixed.page(page);
  EXPECT_EQ(mixed.device().scaleX, 1.0);
  EXPECT_EQ(mixed.device().scaleY, 1.0);
  ReferenceJob wide(defaultOptions());
  page.header.xResolution = 720;
  page.header.yResolution = 360;
  wide.page(page);
  EXPECT_EQ(wide.device().scaleX, 2.0);
  EXPECT_EQ(wide.device().scaleY, 1.0);
}

TEST(ReferenceJob, AnOffsetLengthensTheSheetOfEveryLaterPage) {
  tagOEMCFG options = defaultOptions();
  options.sVtcOffset = 254;  // one inch
  EXPECT_EQ(runJob(options, {whitePage(), whitePage()}),
            ExpectedStream().start(12).start(18).end().bytes());
}

TEST(ReferenceJob, TheFirstRedRowOutlivesItsPage) {
  tagOEMCFG options = defaultOptions();
  options.SplitBlackRed = 1;
  RasterPage first = whitePage();
  paintRow(first, 48, redInk);
  RasterPage second = whitePage();
  paintRow(second, 0, blackInk);
  paintRow(second, 24, blackInk);
  paintRow(second, 48, blackInk);
  ReferenceJob job(options);
  job.page(first);
  EXPECT_EQ(job.generator().firstRedRow, 48);
  const size_t before = job.stream().size();
  job.page(second);
  EXPECT_EQ(job.generator().firstRedRow, 48);
  const Bytes stream = job.stream();
  const Bytes tail(stream.begin() + static_cast<std::ptrdiff_t>(before), stream.end());
  // The middle band's successor starts at that row, so the paper returns to row 24.
  const Bytes expected = ExpectedStream()
                             .start(6)
                             .add(rowBlock(0))
                             .unit(10)
                             .down(48)
                             .add(rowBlock(0))
                             .unit(10)
                             .down(48)
                             .add(rowBlock(0))
                             .unit(10)
                             .down(-48)
                             .formFeed()
                             .bytes();
  EXPECT_EQ(tail, expected);
}

TEST(ReferenceJob, ZeroWidthsAndResolutionsEndSafely) {
  RasterPage page = whitePage(5, 0);
  EXPECT_EQ(runJob(defaultOptions(), {page}), ExpectedStream().start(0).end().bytes());
  tagOEMCFG options = defaultOptions();
  options.SplitBlackRed = 1;
  RasterPage inked = whitePage();
  paintRow(inked, 30, blackInk);
  inked.header.xResolution = 0;
  inked.header.yResolution = 0;
  EXPECT_EQ(runJob(options, {inked}), ExpectedStream().start(0).end().bytes());
}

TEST(ReferenceJob, TheStreamReadsBackWithTheDotsOfThePage) {
  RasterPage page = whitePage(96, 12);
  paintRow(page, 0, blackInk);
  paintRow(page, 40, redInk);
  const Bytes stream = runJob(defaultOptions(), {page});
  decode::PageReader reader(stream, decode::Model::Standard);
  const auto decoded = reader.next();
  ASSERT_TRUE(decoded.has_value());
  ASSERT_EQ(decoded->blocks.size(), 2U);
  EXPECT_EQ(decoded->blocks[1].y, 800);
  EXPECT_FALSE(reader.next().has_value());
  EXPECT_FALSE(reader.fault().has_value());
  EXPECT_EQ(decode::readStats(stream, decode::Model::Standard, {}, {}).dots,
            (std::array<uint64_t, 2>{11, 11}));
}

}  // namespace
}  // namespace velka::reference
