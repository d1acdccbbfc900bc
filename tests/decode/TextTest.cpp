#include <gtest/gtest.h>

#include "CommandText.h"
#include "reference/ExpectedStream.h"

namespace velka::decode {
namespace {

using reference::ExpectedStream;

std::vector<std::string> linesOf(const std::vector<uint8_t>& stream) {
  CommandReader reader(stream, std::nullopt);
  Carriage carriage;
  std::vector<std::string> lines;
  while (const auto command = reader.next()) {
    lines.push_back(lineOf(*command, carriage));
    carriage.apply(*command);
  }
  return lines;
}

TEST(CommandText, TellsOffsetBytesNameAndMeaningInMillimetres) {
  const auto lines = linesOf(ExpectedStream()
                                 .start(66)
                                 .unit(10)
                                 .down(360)
                                 .toX(90)
                                 .block(1, 39, 1, {1, 2, 3})
                                 .eject('0')
                                 .formFeed()
                                 .bytes());
  const std::string block = "block of 1 columns, 180 x 180 dpi, 24 dots high, mode 39, at ";
  const std::vector<std::string> expected = {
      "        0      2  ESC @     initialise",
      "        2      2  ESC 2     line spacing 4.233 mm",
      "        4      3  ESC C     page length 66 lines, 279.4 mm",
      "        7      6  ESC ( U   unit 0.0706 mm (10/3600 inch)",
      "       13      1  CR        head to the left edge",
      "       14      7  ESC ( v   paper on 25.400 mm, to 25.400 mm",
      "       21      6  ESC ( U   unit 0.4233 mm (60/3600 inch)",
      "       27      4  ESC $     head to 38.100 mm",
      "       31      3  ESC r     print in red",
      "       34      8  ESC *     " + block + "38.100, 25.400 mm",
      "       42      4  GS EOT T  eject mode 0",
      "       46      1  FF        end of the page",
  };
  EXPECT_EQ(lines, expected);
}

TEST(CommandText, TellsTheRarerCommands) {
  const auto lines =
      linesOf({0x1B, '\\', 0xFA, 0xFF, 0x1B, 'J', 180, 0x1B, 25,  'F', 0x1B, 25, 'B',  0x1B, 25, 0,
               0x1D, 4,    'T',  0,    0x1B, 'r', 2,   0x1B, '(', 'v', 2,    0,  0xFA, 0xFF});
  const std::vector<std::string> meanings = {"head left 0.423 mm, to -0.423 mm",
                                             "paper on 25.400 mm, to 25.400 mm",
                                             "feed paper from the front",
                                             "feed paper from the back",
                                             "feed paper in mode 00",
                                             "eject mode 00",
                                             "print in black and red at once",
                                             "paper back 0.423 mm, to 24.977 mm"};
  ASSERT_EQ(lines.size(), meanings.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    EXPECT_TRUE(lines[i].ends_with("  " + meanings[i]) || lines[i].ends_with(" " + meanings[i]))
        << lines[i];
  }
}

TEST(CommandText, TellsMovesThatWereOverwritten) {
  const auto lines = linesOf({0x1B, '(', 'v', 0x1B, '(', 'v', 2, 0, 36, 0, 0, 0, 0, 0});
  ASSERT_EQ(lines.size(), 1U);
  EXPECT_TRUE(lines[0].ends_with("paper on 2.540 mm, to 2.540 mm (overwrote 1 moves before it)"))
      << lines[0];
}

}  // namespace
}  // namespace velka::decode
