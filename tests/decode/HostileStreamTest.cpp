// Streams that nobody means: every part of the decoder must end in good order, in a
// time and in memory that go with the stream's length.
#include <gtest/gtest.h>

#include <random>

#include "CommandText.h"
#include "DotGrid.h"
#include "ModelGuess.h"
#include "PageCheck.h"
#include "PageReader.h"
#include "StreamStats.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

TEST(HostileStreams, MovesAsFarAsTheyGoAreExact) {
  ExpectedStream stream;
  stream.unit(255);
  for (int i = 0; i < 1000; ++i) stream.down(32767);
  stream.add({0x1B, '$', 0xFF, 0xFF}).block(0, 39, 1, {0x80, 0, 0}).formFeed();
  PageReader reader(stream.bytes(), Model::Standard);
  const auto page = reader.next();
  ASSERT_TRUE(page.has_value());
  EXPECT_EQ(page->blocks.at(0).y, int64_t{1000} * 32767 * 255);
  EXPECT_EQ(page->blocks.at(0).x, int64_t{65535} * 255);
  Grid grid;
  grid.add(*page);
  const Area area = inkedArea(*page, Model::Standard, grid);
  EXPECT_FALSE(drawCells(*page, Model::Standard, grid, {area.right, area.bottom}).has_value());
}

// Long forms with a dot at their far end: the cost must go with the dots.
TEST(HostileStreams, CountingPlacesTouchesNoMoreCellsThanTheDotsAreWorth) {
  ExpectedStream stream;
  for (int page = 0; page < 100; ++page) {
    stream.start(255).unit(10).down(15000).toX(1000).block(page % 2, 40, 2, {1, 0, 0, 0, 1, 0});
    stream.formFeed();
  }
  const StreamStats stats = readStats(stream.end().bytes(), Model::Standard, {}, {});
  EXPECT_EQ(stats.places, (std::array<uint64_t, 2>{100, 100}));
  EXPECT_FALSE(stats.fault.has_value());
  // 200 dots of two cells each, written and looked at once; the forms have 9 million each.
  EXPECT_EQ(stats.touched, 800U);
  const Stream solid = ExpectedStream()
                           .start(1)
                           .block(0, 39, 30, Stream(size_t{30} * 3, 0xFF))
                           .formFeed()
                           .end()
                           .bytes();
  // Every cell of 30 x 30 once, and 24 x 30 dots.
  EXPECT_EQ(readStats(solid, Model::Standard, {}, {}).touched, 900U + 720U);
}

TEST(HostileStreams, AUnitOfZeroMovesNothing) {
  const Stream stream = ExpectedStream()
                            .unit(0)
                            .down(100)
                            .add({0x1B, '$', 9, 9})
                            .block(0, 0, 1, {1})
                            .formFeed()
                            .bytes();
  PageReader reader(stream, Model::Standard);
  const auto page = reader.next();
  ASSERT_TRUE(page.has_value());
  EXPECT_EQ(page->blocks.at(0).x, 0);
  EXPECT_EQ(page->blocks.at(0).y, 0);
}

TEST(HostileStreams, ManyLongEmptyFormsAreCountedWithoutDrawingThem) {
  // 20,000 forms of 42.5 inches: their cells alone would be 200 thousand million.
  ExpectedStream stream;
  stream.add({0x1B, 'C', 255});
  for (int i = 0; i < 20000; ++i) stream.block(0, 39, 1, {0x80, 0, 0}).formFeed();
  const StreamStats stats = readStats(stream.bytes(), Model::Standard, {}, {29764, true});
  EXPECT_EQ(stats.pages, 20000U);
  ASSERT_TRUE(stats.coverage.has_value());
  EXPECT_NEAR(stats.coverage->at(0), 1.0 / (7650.0 * 1489), 1e-12);
}

void readEveryWay(Bytes stream) {
  const ModelGuess guess = guessModel(stream);
  EXPECT_FALSE(guess.why.empty());
  for (const Model model : {Model::Standard, Model::OrloFront, Model::OrloBack}) {
    uint64_t pages = 0;
    PageReader reader(stream, model);
    while (const auto page = reader.next()) {
      pages += page->ended ? 1 : 0;
      Grid grid;
      grid.add(*page);
      const Area area = inkedArea(*page, model, grid);
      EXPECT_LE(area.left, area.right);
      const PageFlaws flaws = checkPage(*page, model);
      EXPECT_EQ(flaws.any(), !textOf(flaws).empty());
      EXPECT_TRUE(drawCells(*page, model, grid, {2000, 2000}).has_value());
    }
    EXPECT_EQ(readStats(stream, model, {}, {29764, true}).pages, pages);
    CommandReader commands(stream, model);
    Carriage carriage;
    while (const auto command = commands.next()) {
      EXPECT_FALSE(lineOf(*command, carriage).empty());
      carriage.apply(*command);
    }
  }
}

TEST(HostileStreams, RandomCommandsAndBytesAreReadEveryWay) {
  std::mt19937 random(20240607);  // NOLINT: the same bytes each time
  const Stream likely = {0x1B, 0x1B, 0x1B, 0x1D, 0x04, 'T', '(', 'U', 'v', '*', 'r', 'C', 'J',
                         '$',  '\\', 0x0C, 0x0D, 0,    1,   2,   39,  40,  41,  255, '@', 25};
  for (int run = 0; run < 1000; ++run) {
    Stream bytes(random() % 300);
    for (uint8_t& byte : bytes) {
      byte =
          random() % 4 == 0 ? static_cast<uint8_t>(random()) : likely.at(random() % likely.size());
    }
    readEveryWay(bytes);
  }
}

}  // namespace
}  // namespace velka::decode
