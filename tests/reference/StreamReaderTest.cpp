#include <gtest/gtest.h>

#include <random>

#include "reference/ExpectedStream.h"
#include "reference/StreamReader.h"

namespace velka::reference {
namespace {

using Bytes = std::vector<uint8_t>;

Bytes sampleJob() {
  return ExpectedStream()
      .start(66)
      .unit(10)
      .down(300)
      .toX(7)
      .block(0, 39, 2, {0x80, 0, 1, 0xFF, 0, 0})
      .unit(10)
      .down(-1)
      .toX(0)
      .block(1, 1, 3, {1, 2, 4})
      .eject('1')
      .formFeed()
      .end()
      .bytes();
}

TEST(StreamReader, ListsEveryCommandWithItsOffset) {
  const StreamContents contents = readStream(ExpectedStream().start(66).unit(10).down(-2).bytes());
  ASSERT_EQ(contents.commands.size(), 6U);
  const CommandKind kinds[] = {CommandKind::Initialise,     CommandKind::LineSpacing,
                               CommandKind::PageLength,     CommandKind::SetUnit,
                               CommandKind::CarriageReturn, CommandKind::VerticalMove};
  const size_t offsets[] = {0, 2, 4, 7, 13, 14};
  const int values[] = {0, 0, 66, 10, 0, -2};
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(contents.commands[i].kind, kinds[i]) << i;
    EXPECT_EQ(contents.commands[i].offset, offsets[i]) << i;
    EXPECT_EQ(contents.commands[i].value, values[i]) << i;
  }
  EXPECT_FALSE(contents.malformedAt.has_value());
  EXPECT_TRUE(contents.pages.empty());
}

TEST(StreamReader, BlocksCarryColourPositionAndDots) {
  const StreamContents contents = readStream(sampleJob());
  EXPECT_FALSE(contents.malformedAt.has_value());
  ASSERT_EQ(contents.pages.size(), 1U);
  const StreamPage& page = contents.pages[0];
  EXPECT_TRUE(page.ended);
  ASSERT_EQ(page.blocks.size(), 2U);
  EXPECT_EQ(page.blocks[0].colour, 0);
  EXPECT_EQ(page.blocks[0].y, 300);
  EXPECT_EQ(page.blocks[0].x, 7);
  EXPECT_EQ(page.blocks[0].columns, 2);
  EXPECT_EQ(page.blocks[0].bytesPerColumn, 3);
  EXPECT_EQ(page.blocks[0].data, (Bytes{0x80, 0, 1, 0xFF, 0, 0}));
  EXPECT_EQ(page.blocks[1].colour, 1);
  EXPECT_EQ(page.blocks[1].y, 299);
  EXPECT_EQ(page.blocks[1].x, 0);
  EXPECT_EQ(page.blocks[1].mode, 1);
  EXPECT_EQ(page.dots[0], 10U);
  EXPECT_EQ(page.dots[1], 3U);
  EXPECT_EQ(contents.dots[0], 10U);
  EXPECT_EQ(contents.dots[1], 3U);
}

TEST(StreamReader, RelativeMovesStartBehindTheBlock) {
  // Two columns at 60 dpi are two steps of 1/60 inch; minus five leaves four.
  const StreamContents contents = readStream(ExpectedStream()
                                                 .toX(7)
                                                 .block(0, 0, 2, {1, 1})
                                                 .add({0x1B, '\\', 0xFB, 0xFF})
                                                 .block(0, 0, 1, {1})
                                                 .bytes());
  ASSERT_EQ(contents.pages.size(), 1U);
  ASSERT_EQ(contents.pages[0].blocks.size(), 2U);
  EXPECT_EQ(contents.pages[0].blocks[1].x, 4);
  EXPECT_FALSE(contents.pages[0].ended);
}

TEST(StreamReader, EveryFormFeedIsAPage) {
  const StreamContents contents = readStream({0x0C, 0x0C});
  EXPECT_EQ(contents.pages.size(), 2U);
}

TEST(StreamReader, EachModeHasItsBytesPerColumn) {
  const std::pair<int, int> modes[] = {{0, 1},  {1, 1},  {4, 1},  {6, 1},  {32, 3},
                                       {33, 3}, {38, 3}, {39, 3}, {40, 3}, {41, 9}};
  for (const auto& [mode, bytes] : modes) {
    const Bytes data(static_cast<size_t>(2 * bytes), 0x11);
    const StreamContents contents =
        readStream(ExpectedStream().block(0, mode, 2, data).formFeed().bytes());
    EXPECT_FALSE(contents.malformedAt.has_value()) << mode;
    ASSERT_EQ(contents.pages.size(), 1U) << mode;
    EXPECT_EQ(contents.pages[0].blocks.at(0).bytesPerColumn, bytes) << mode;
  }
}

TEST(StreamReader, TellsWhereTheFirstMalformedCommandBegins) {
  const Bytes broken[] = {
      {'x'},
      {0x1B},
      {0x1B, 'x'},
      {0x1B, 'C'},
      {0x1B, 'r', 2},
      {0x1B, '*', 2, 0, 0},            // no such mode
      {0x1B, '*', 39, 1, 0, 1, 2},     // a byte short
      {0x1B, '(', 'U', 2, 0, 10, 10},  // length
      {0x1B, '(', 'v', 1, 0, 10, 10},  // length
      {0x1B, '(', 'w', 2, 0, 10, 10},
      {0x1B, '$', 1},
      {0x1D, 4, 'S', 0},
      {0x1D, 4, 'T'},
  };
  for (const Bytes& bad : broken) {
    const StreamContents contents = readStream(ExpectedStream().start(1).add(bad).bytes());
    ASSERT_TRUE(contents.malformedAt.has_value()) << testing::PrintToString(bad);
    EXPECT_EQ(*contents.malformedAt, 7U) << testing::PrintToString(bad);
    EXPECT_EQ(contents.commands.size(), 3U);
  }
}

TEST(StreamReader, EveryCutOfAJobIsWholeOrMalformedAtItsLastCommand) {
  const Bytes whole = sampleJob();
  const StreamContents all = readStream(whole);
  for (size_t length = 0; length <= whole.size(); ++length) {
    const auto middle = whole.begin() + static_cast<std::ptrdiff_t>(length);
    const StreamContents cut = readStream(Bytes(whole.begin(), middle));
    size_t end = 0;
    for (const StreamCommand& command : cut.commands) {
      EXPECT_EQ(command.offset, end);
      end += command.length;
    }
    EXPECT_EQ(cut.malformedAt.value_or(length), end) << length;
    EXPECT_LE(cut.commands.size(), all.commands.size());
  }
}

TEST(StreamReader, RandomBytesNeverBreakIt) {
  std::mt19937 random(20240607);  // NOLINT: the same bytes each time
  const Bytes likely = {0x1B, 0x1B, 0x1B, 0x1D, 0x04, 'T', '(', 'U', 'v', '*', 'r', 'C',
                        '$',  '\\', 0x0C, 0x0D, 0,    1,   2,   39,  40,  41,  255, '@'};
  size_t commands = 0;
  size_t malformed = 0;
  for (int run = 0; run < 3000; ++run) {
    Bytes bytes(random() % 300);
    for (uint8_t& byte : bytes) {
      byte =
          random() % 4 == 0 ? static_cast<uint8_t>(random()) : likely.at(random() % likely.size());
    }
    const StreamContents contents = readStream(bytes);
    size_t end = 0;
    for (const StreamCommand& command : contents.commands) {
      end += command.length;
    }
    EXPECT_EQ(end, contents.malformedAt.value_or(bytes.size()));
    commands += contents.commands.size();
    malformed += contents.malformedAt.has_value() ? 1 : 0;
  }
  EXPECT_GT(commands, 100U);
  EXPECT_GT(malformed, 100U);
}

TEST(StreamReader, DamagedJobsNeverBreakIt) {
  std::mt19937 random(7);  // NOLINT: the same damage each time
  for (int run = 0; run < 2000; ++run) {
    Bytes bytes = sampleJob();
    for (int i = 0; i < 3; ++i) {
      bytes.at(random() % bytes.size()) = static_cast<uint8_t>(random());
    }
    const StreamContents contents = readStream(bytes);
    EXPECT_LE(contents.malformedAt.value_or(0), bytes.size());
  }
}

TEST(StreamReader, DescriptionNamesCommandsAndTheBreak) {
  const std::string text = describe(
      readStream(ExpectedStream().block(1, 39, 1, {1, 2, 3}).formFeed().add({0x00}).bytes()));
  EXPECT_EQ(
      text,
      "0: colour 1\n3: bit image 1 columns, mode 39\n11: form feed 0\n12: no whole command\n");
}

}  // namespace
}  // namespace velka::reference
