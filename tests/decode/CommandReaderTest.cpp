#include <gtest/gtest.h>

#include <random>

#include "CommandReader.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;
using Stream = std::vector<uint8_t>;

struct Contents {
  std::vector<Command> commands;
  std::optional<Fault> fault;
};

Contents readAll(Bytes stream, bool orlo = false) {
  CommandReader reader(stream, orlo ? Model::OrloBack : Model::Standard);
  Contents contents;
  while (const auto command = reader.next()) contents.commands.push_back(*command);
  contents.fault = reader.fault();
  return contents;
}

Stream sampleJob() {
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

TEST(CommandReader, ReadsEachCommandWithItsOffsetSizeAndValue) {
  const Stream stream = ExpectedStream().start(66).unit(10).down(-2).bytes();
  const Contents contents = readAll(stream);
  ASSERT_EQ(contents.commands.size(), 6U);
  const CommandKind kinds[] = {CommandKind::Initialise,     CommandKind::LineSpacing,
                               CommandKind::PageLength,     CommandKind::SetUnit,
                               CommandKind::CarriageReturn, CommandKind::PaperMove};
  const size_t offsets[] = {0, 2, 4, 7, 13, 14};
  const size_t sizes[] = {2, 2, 3, 6, 1, 7};
  const int values[] = {0, 0, 66, 10, 0, -2};
  for (size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(contents.commands[i].kind, kinds[i]) << i;
    EXPECT_EQ(contents.commands[i].offset, offsets[i]) << i;
    EXPECT_EQ(contents.commands[i].size, sizes[i]) << i;
    EXPECT_EQ(contents.commands[i].value, values[i]) << i;
  }
  EXPECT_FALSE(contents.fault.has_value());
}

TEST(CommandReader, ReadsTheRarerCommands) {
  const Stream stream = {0x1B, '\\', 0xFB, 0xFF, 0x1B, '$', 0x01, 0x02, 0x1B,
                         'J',  9,    0x1D, 4,    'T',  '0', 0x1B, 25,   'F'};
  const Contents contents = readAll(stream);
  ASSERT_EQ(contents.commands.size(), 5U);
  EXPECT_EQ(contents.commands[0].kind, CommandKind::HeadBy);
  EXPECT_EQ(contents.commands[0].value, -5);
  EXPECT_EQ(contents.commands[1].kind, CommandKind::HeadTo);
  EXPECT_EQ(contents.commands[1].value, 513);
  EXPECT_EQ(contents.commands[2].kind, CommandKind::PaperAdvance);
  EXPECT_EQ(contents.commands[2].value, 9);
  EXPECT_EQ(contents.commands[3].kind, CommandKind::EjectMode);
  EXPECT_EQ(contents.commands[3].value, '0');
  EXPECT_EQ(contents.commands[4].kind, CommandKind::FeedMode);
  EXPECT_EQ(contents.commands[4].value, 'F');
}

TEST(CommandReader, EachModeHasItsBytesPerColumnAndItsPitches) {
  struct Row {
    int code;
    int bytes;
    int across;
    int down;
  };
  const Row rows[] = {{0, 1, 60, 60},    {1, 1, 120, 60},   {4, 1, 80, 60},   {6, 1, 90, 60},
                      {32, 3, 60, 180},  {33, 3, 120, 180}, {38, 3, 90, 180}, {39, 3, 180, 180},
                      {40, 3, 360, 180}, {41, 9, 180, 180}};
  for (const Row& row : rows) {
    const Stream data(static_cast<size_t>(2 * row.bytes), 0x11);
    const Stream stream = ExpectedStream().block(0, row.code, 2, data).formFeed().bytes();
    const Contents contents = readAll(stream);
    ASSERT_EQ(contents.commands.size(), 3U) << row.code;
    const Command& block = contents.commands[1];
    EXPECT_EQ(block.mode.bytesPerColumn, row.bytes) << row.code;
    EXPECT_EQ(block.mode.columnPitch, 3600 / row.across) << row.code;
    EXPECT_EQ(block.mode.dotPitch, 3600 / row.down) << row.code;
    EXPECT_EQ(Stream(block.data.begin(), block.data.end()), data) << row.code;
  }
}

TEST(CommandReader, OnTheOrloHeadEveryColumnHasThreeBytes) {
  const Stream stream = {0x1B, '*', 1, 2, 0, 1, 2, 3, 4, 5, 6, 0x0C};
  const Contents contents = readAll(stream, true);
  ASSERT_EQ(contents.commands.size(), 2U);
  EXPECT_EQ(contents.commands[0].data.size(), 6U);
  const Stream tall = {0x1B, '*', 41, 0, 0};
  EXPECT_TRUE(readAll(tall, true).fault.has_value());
  EXPECT_FALSE(readAll(tall, false).fault.has_value());
}

TEST(CommandReader, AMoveOfSeveralCommandsKeepsItsLastAndSkipsItsPadding) {
  // 40,000 units back: the first command is cut to three bytes by the second.
  const Stream stream = {0x0D, 0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 0xBF, 0xE3, 0, 0, 0, 0, 0x0C};
  const Contents contents = readAll(stream);
  EXPECT_FALSE(contents.fault.has_value());
  ASSERT_EQ(contents.commands.size(), 3U);
  EXPECT_EQ(contents.commands[1].value, -7233);
  EXPECT_EQ(contents.commands[1].size, 14U);
  EXPECT_EQ(contents.commands[1].overwritten, 1U);
}

TEST(CommandReader, TellsWhereTheFirstMalformedCommandBegins) {
  const std::pair<Stream, const char*> broken[] = {
      {{'x'}, "unknown command 78"},
      {{0x1B}, "the stream ends inside a command"},
      {{0x1B, 'x', 1, 2}, "unknown command 1B 78 01"},
      {{0x1B, 'C'}, "the stream ends inside a command"},
      {{0x1B, 'r', 3}, "unknown colour 3"},
      {{0x1B, '*', 2, 0, 0}, "block of unknown mode 2"},
      {{0x1B, '*', 39, 1, 0, 1, 2}, "the stream ends inside a block"},
      {{0x1B, '*', 39}, "the stream ends inside a command"},
      {{0x1B, '(', 'U', 2, 0, 10, 10}, "unknown command 1B 28 55"},
      {{0x1B, '(', 'v', 1, 0, 10, 10}, "unknown command 1B 28 76"},
      {{0x1B, '(', 'w', 2, 0, 10, 10}, "unknown command 1B 28 77"},
      {{0x1B, '$', 1}, "the stream ends inside a command"},
      {{0x1D, 4, 'S', 0}, "unknown command 1D 04 53"},
      {{0x1D, 4, 'T'}, "the stream ends inside a command"},
      {{0x1B, '(', 'v', 0x1B, '(', 'v'}, "the stream ends inside a long paper move"},
      {{0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 1, 2, 0, 0, 0},
       "the stream ends inside a long paper move"},
      {{0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 1, 2, 0, 0, 0, 7},
       "long paper move without its padding"},
      {{0x1B, '(', 'v', 0x1B, '(', 'v', 3, 0, 1, 2, 0, 0, 0, 0}, "paper move of unknown length"},
  };
  for (const auto& [bad, what] : broken) {
    const Stream stream = ExpectedStream().start(1).add(bad).bytes();
    const Contents contents = readAll(stream);
    ASSERT_TRUE(contents.fault.has_value()) << what;
    EXPECT_EQ(contents.fault->offset, 7U) << what;
    EXPECT_EQ(contents.fault->what, what);
    EXPECT_EQ(contents.commands.size(), 3U);
  }
}

TEST(CommandReader, OnlyTheOrloHeadPrintsBothInksAtOnce) {
  const Stream both = {0x1B, 'r', 2};
  ASSERT_TRUE(readAll(both).fault.has_value());
  EXPECT_EQ(readAll(both).fault->what, "unknown colour 2");
  EXPECT_FALSE(readAll(both, true).fault.has_value());
}

TEST(CommandReader, StaysAtItsFault) {
  const Stream stream = {'x', 0x0C};
  CommandReader reader(stream, Model::Standard);
  EXPECT_FALSE(reader.next().has_value());
  EXPECT_FALSE(reader.next().has_value());
  ASSERT_TRUE(reader.fault().has_value());
  EXPECT_EQ(reader.fault()->offset, 0U);
}

// The commands must lie end to end and reach to the fault, or to the stream's end.
void expectEndToEnd(const Contents& contents, size_t length) {
  size_t end = 0;
  for (const Command& command : contents.commands) {
    ASSERT_EQ(command.offset, end);
    end += command.size;
  }
  EXPECT_EQ(contents.fault ? contents.fault->offset : length, end);
}

TEST(CommandReader, EveryCutOfAJobIsWholeOrMalformedAtItsLastCommand) {
  const Stream whole = sampleJob();
  const size_t all = readAll(whole).commands.size();
  for (size_t length = 0; length <= whole.size(); ++length) {
    const Contents cut = readAll(Bytes(whole).first(length));
    expectEndToEnd(cut, length);
    EXPECT_LE(cut.commands.size(), all);
  }
  EXPECT_FALSE(readAll(whole).fault.has_value());
}

TEST(CommandReader, DamagedJobsAreReadEndToEndUpToTheirFault) {
  std::mt19937 random(7);  // NOLINT: the same damage each time
  size_t faults = 0;
  for (int run = 0; run < 2000; ++run) {
    Stream bytes = sampleJob();
    for (int i = 0; i < 3; ++i) bytes.at(random() % bytes.size()) = static_cast<uint8_t>(random());
    const Contents contents = readAll(bytes, run % 2 == 1);
    expectEndToEnd(contents, bytes.size());
    faults += contents.fault ? 1 : 0;
  }
  EXPECT_GT(faults, 500U);
}

}  // namespace
}  // namespace velka::decode
